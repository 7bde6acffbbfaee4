// The fields of `XMLImporter`, kept behind its one pointer. A copy of the state shares every
// handle by count, as a copy of the importer does.
#pragma once

#include "Generated/XMLImporter.h"
#include "Generated/XMLParser.h"
#include "xml/XMLDocument.h"
#include <string>
#include <vector>

#include "xml/XMLLex.h"

struct XMLImporter::State {
    _eHndl<XMLDocument> document;               // of the last parse that could open its file
    _eHndl<FileName> parsedFile;                // of the last parse without any error
    _eHndl<Time> parsedFileTime;                // that file's modification time after the parse
    [[maybe_unused]] std::int32_t linesParsed = 0;  // lines read over all parses; a fixed field nothing reads
    XMLErrors errors;                           // every error so far; it only grows
    XMLErrors callErrors;                       // those of the last call that generated
    _eHndl<const Environment> environment;      // taken at construction
    std::int32_t tabWidth = 4;                  // column step of a tab in the lexer
    _eString parseDiagnostics;                  // report of the last parse
    ImportExtensions extensions;                // what the host chose beyond the specified behaviour
    std::vector<std::string> libraryFolders;    // the extensions' folders, copied
    _eHndl<ImportOptions> layout;               // a host's layout of generated text; null: the defaults
    _eHndl<ImportOptions> importOptions;        // the layout with what the extensions add; null: the defaults
    ProgressSink progressSink = nullptr;        // a host's display of progress; null: none
    void* progressContext = nullptr;            // handed back to the sink
};
