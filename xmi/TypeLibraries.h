// `TypeLibraries`: the names of types that a model refers to in other files ("href"): a file
// beside the model, one of the workspace ("platform:/resource/PROJECT/PATH"), one of the folders
// a host names, or a well-known library that needs no file (the UML and Eclipse primitive
// types, Ecore's data types, XML Schema's). Only names are taken from other files; their classes
// are never generated. Each file is read once.
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "environment/Environment.h"
#include "modelbridge/ImportExtensions.h"
#include "runtime/Seq.h"

// Where a model comes from, and where the files it refers to may be found.
struct ModelSource {
    std::string modelPath;                  // the model's file, as the platform names it
    std::vector<std::string> libraryFolders;  // searched by file name, in order
    _eHndl<const Environment> environment;  // reads the other files; null: none is read
    ImportExtensions extensions;            // how the other files are parsed
};

class TypeLibraries {
public:
    explicit TypeLibraries(ModelSource source) : source(std::move(source)) {}

    // The name that `href` leads to; none when it leads nowhere that can be read. `where` then
    // names the file or library that would resolve it.
    std::optional<_eString> typeName(const _eString& href, std::string& where) const;

    // The name of a type that a well-known library gives by its URI alone.
    static std::optional<_eString> wellKnown(const std::string& file, const std::string& fragment);
    // The name of Enterprise Architect's ids of primitive types ("EAJava_int" is "int").
    static std::optional<_eString> wellKnownId(const _eString& id);
    // How many times `typeName` looked for a file (found or not).
    std::size_t filesSought() const { return sought; }

private:
    // The file that `file` of an href names, as the platform names it; empty when none is found.
    std::string locate(const std::string& file) const;
    // The names of the elements of a file by their ids; read on the first request.
    const std::map<std::wstring, _eString>* namesIn(const std::string& path) const;

    ModelSource source;
    mutable std::map<std::string, std::unique_ptr<std::map<std::wstring, _eString>>> files;  // null: unreadable
    mutable std::size_t sought = 0;  // files looked for
};
