// The test suite's view of the importer's private members.
#pragma once

#include "Generated/ImporterState.h"

class XMLImporterInspector {
public:
    static void addErrors(XMLImporter& importer, const XMLErrors& errors) { importer.addErrors(errors); }
    static ErrorSeverity::_eEnum mostSevereError(const XMLImporter& importer) { return importer.mostSevereError(); }
    static bool noSeriousError(const XMLImporter& importer) { return importer.noSeriousError(); }
    static const _eHndl<XMLDocument>& document(const XMLImporter& importer) { return importer.state->document; }
    static const _eHndl<FileName>& parsedFile(const XMLImporter& importer) { return importer.state->parsedFile; }
};
