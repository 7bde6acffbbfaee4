// What the standard-typed facade reaches inside an importer that it alone owns: the errors of
// each generation on their own, a fixed time for headers, and text rendered without a file.
#pragma once

#include <string>

#include "Generated/ImporterState.h"

class ImporterAccess {
public:
    // Every error and warning so far, ordered by position.
    static const XMLErrors& errors(const XMLImporter& importer) { return importer.state->errors; }

    // Forgets the errors of the generations before, so that the next one's stand alone.
    static void startGeneration(XMLImporter& importer) {
        if (!importer.state->document.isNull()) importer.state->document.uniquePointer()->clearErrors();
    }
    // The errors of the generations since `startGeneration`.
    static XMLErrors generationErrors(const XMLImporter& importer) {
        return importer.state->document.isNull() ? XMLErrors() : importer.state->document->getErrors();
    }

    // Headers name `time` instead of the clock's; the layout stays as it is.
    static void fixTime(XMLImporter& importer, const _eHndl<Time>& time) {
        const ImportOptions& now = importer.importOptions();
        importer.state->importOptions =
            new ImportOptions(now.getLineWidth(), now.getIndentText(), now.getFilePrefix(), time);
    }

    // The text of the file that `generateClassFile(directory, className)` would write.
    static std::string renderClassFile(const XMLImporter& importer, const _eString& directory,
                                       const _eString& className) {
        const XMLImporter::State& state = *importer.state;
        if (state.document.isNull() || state.environment.isNull()) return {};
        FileName source = state.parsedFile.isNull() ? FileName() : *state.parsedFile;
        return state.document->renderClassFile(className, directory, source, *state.environment,
                                               importer.importOptions());
    }
};
