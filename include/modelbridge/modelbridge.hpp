// ModelBridge for C++17 hosts: parse a UML model saved as XMI, list its classes, read its
// diagnostics, and write or render Tarvane class declarations, all with standard types.
//
// Text is UTF-8 throughout: class names, messages and file names. A name read from the model
// comes back as the model spells it in UTF-8, and the same text names the class in every call.
//
// Every call may come from any thread: calls into the library are serialised inside it. A model
// is a cheap handle: copies share one parsed model. Nothing here throws but std::bad_alloc;
// every failure of input or file system comes back as data.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "FolderUpdate.h"
#include "ImportExtensions.h"

#if defined(_WIN32)
#define MODELBRIDGE_FACADE_API
#else
#define MODELBRIDGE_FACADE_API __attribute__((visibility("default")))
#endif

namespace modelbridge {

enum class Severity { information, warning, error, fatal };

// One error or warning: where it arose (an empty file and line 0 where it has no position), its
// message, and the full one-line text as the library reports it.
struct Diagnostic {
    Severity severity = Severity::error;
    std::string file;  // the full path of the input file, or empty
    int line = 0;
    int column = 0;
    std::string message;  // without position and severity
    std::string text;     // "model.xmi (2,6): Fatal error! Syntax error at ''c''."
};

// How a model is read and its text laid out. Every extension is on by default, so that as much
// of a model as the library can read reaches the text; `Options::specified()` turns them all
// off, for exactly the library's specified results.
struct Options {
    bool xmi2 = false;      // also read UML 2 models saved as XMI 2.x (as `extensions.xmi2`)
    bool anywhere = false;  // find classes wherever exporters put them (as `extensions.anywhere`)
    int lineWidth = 100;    // generated lines break beyond this column (20 to 10000)
    std::string indent = "\t";  // one level of indentation (not empty, no line ends)
    std::string filePrefix;     // put before the name of every file written (no "/")
    // The header's time line is taken from the environment variable SOURCE_DATE_EPOCH (seconds
    // since 1970, UTC) when it is set, so that builds repeat byte for byte; false: the clock's.
    bool reproducible = true;
    // Every extension of the importer, each described where the value is declared;
    // `setImportSwitch(options.extensions, "decode-references", false)` sets one by name.
    ImportExtensions extensions = everyExtension();

    // The options of the specified behaviour: no extension.
    static Options specified() {
        Options options;
        options.extensions = ImportExtensions();
        return options;
    }
};

// The outcome of one call that writes: whether it wrote everything, and the diagnostics that
// this call alone gave.
struct Result {
    bool ok = false;
    std::vector<Diagnostic> diagnostics;
    explicit operator bool() const { return ok; }
};

class MODELBRIDGE_FACADE_API Model {
public:
    // Parses the XMI file. Always gives a model: see `ok` and `diagnostics`. Options out of
    // bounds give a model that isn't ok, with the reason as its one diagnostic.
    static Model parse(const std::filesystem::path& file, const Options& options = {});

    // True when the file was parsed without any error or warning.
    bool ok() const;
    // The class names, sorted, without repeats and without the names of built-in types.
    const std::vector<std::string>& classes() const;
    // Every error and warning of the parse, ordered by position.
    const std::vector<Diagnostic>& diagnostics() const;
    // The parse report: "Parsed N lines from file 'model.xmi' in 0 seconds".
    std::string report() const;

    // Writes the class into `directory` (made by the caller) as NAME.tv, with the options'
    // prefix. A name that isn't one of `classes()` is refused before anything is written.
    Result writeClass(std::string_view name, const std::filesystem::path& directory);
    // Writes the named classes, in the model's order, into the one file `file`, whose extension
    // becomes ".tv". No names: every class. Unknown names are refused before anything is written.
    Result writeClasses(const std::vector<std::string>& names, const std::filesystem::path& file);
    // The text that `writeClass(name, ".")` would write, without writing; empty for an unknown name.
    std::string renderClass(std::string_view name);
    // Brings `directory` (made with its parents when missing and `options.write`) up to date
    // with the named classes, every class when none are, one file each: what the user wrote in
    // the files stays and what the model changed lands, by the record of the last generation
    // that the folder keeps (FolderUpdate.h). Unknown names are refused before anything is
    // written, as the report's error. A model that isn't ok updates nothing.
    UpdateReport update(const std::filesystem::path& directory, const UpdateOptions& options = {},
                        const std::vector<std::string>& names = {});

    Model(const Model&) = default;
    Model(Model&&) noexcept = default;
    Model& operator=(const Model&) = default;
    Model& operator=(Model&&) noexcept = default;
    ~Model() = default;

private:
    struct Impl;
    explicit Model(std::shared_ptr<Impl> impl) : impl(std::move(impl)) {}
    std::shared_ptr<Impl> impl;  // never null
};

}  // namespace modelbridge
