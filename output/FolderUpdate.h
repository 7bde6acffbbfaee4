// Brings a folder of generated files up to date with a new generation without losing what the
// user wrote: each file is created, left alone, replaced or merged by what the record of the
// last generation and the file as it stands say, and the record is written anew.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "modelbridge/FolderUpdate.h"
#include "output/GenerationRecord.h"
#include "output/TarvaneOutput.h"

class FolderUpdate {
public:
    // `files` is the new generation, `modelClasses` the ids of every class the model holds (a
    // recorded file whose classes are all gone is stale).
    static UpdateReport run(const std::string& folder, const std::vector<GeneratedFile>& files,
                            const std::set<std::string>& modelClasses, const UpdateOptions& options);

    // A laid-out file as an update sees it: `headerLines` lines of header, then declarations
    // keyed by the ids of their elements.
    static GeneratedFile generatedFile(const std::string& name, const TarvaneOutput::Layout& layout,
                                       std::size_t headerLines);
};
