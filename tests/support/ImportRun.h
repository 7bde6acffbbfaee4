// A model imported through the importer as a host imports it: parsed with the extensions
// chosen, listed, every class generated into a file of its own and all into one file. The
// texts are kept without their header, which names files and the time.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "Generated/XMLImporter.h"
#include "environment/PlatformText.h"
#include "support/GeneratedText.h"
#include "support/TempDir.h"

using Extensions = ImportExtensions;

struct ImportRun {
    ImportRun(const std::string& model, Extensions extensions, const std::string& fileName = "model.xmi") {
        _eHndl<Environment> environment(new Environment());
        XMLImporter importer(environment.get());
        importer.chooseExtensions(extensions);
        importer.attemptParse(fromPlatformText(dir.write(fileName, model)), L"", parsed);
        _eSeq<_eString> list = importer.getClassList();
        _eSet<_eString> all;
        _eString directory = fromPlatformText(dir.path() + "/");
        for (int i = 0; i < list.size(); ++i) {
            classes.push_back(toWString(list.at(i)));
            all.add(list.at(i));
            bool written = false;
            importer.generateClassFile(directory, list.at(i), written);
            std::string name = toPlatformText(list.at(i)) + ".tv";
            if (written && std::filesystem::exists(dir / name)) files[name] = body(dir.read(name));
        }
        importer.generateSingleFile(directory, L"all", all, generated);
        single = body(dir.read("all.tv"));
        errors = wideTexts(importer.getErrorList(true));
    }

    // The text after the header's seven lines.
    static std::string body(const std::string& file) { return afterHeader(file); }

    TempDir dir;
    bool parsed = false;
    bool generated = false;              // the file of all classes
    std::vector<std::wstring> classes;   // as listed
    std::map<std::string, std::string> files;  // of each class that was written
    std::string single;                  // the file of all classes
    std::vector<std::wstring> errors;    // after everything
};
