// The test suite's view of the importer's private members.
#pragma once

#include "Generated/XMLImporter.h"

class XMLImporterInspector {
public:
    static void addErrors(XMLImporter& importer, const XMLErrors& errors) { importer.addErrors(errors); }
    static ErrorSeverity::_eEnum mostSevereError(const XMLImporter& importer) { return importer.mostSevereError(); }
    static bool noSeriousError(const XMLImporter& importer) { return importer.noSeriousError(); }
    static const _eHndl<XMLDocument>& document(const XMLImporter& importer) { return importer.document; }
    static const _eHndl<FileName>& parsedFile(const XMLImporter& importer) { return importer.parsedFile; }
    static const _eHndl<Time>& parsedFileTime(const XMLImporter& importer) { return importer.parsedFileTime; }
    static void parseWithProgress(XMLImporter& importer, const FileName& file) { importer.parseFile(&file, true); }
};
