// Brings a folder of generated files up to date with a new generation without losing what the
// user wrote: each file is created, left alone, replaced or merged by what the record of the
// last generation and the file as it stands say, and the record is written anew.
#pragma once

#include <functional>
#include <set>
#include <string>
#include <vector>

#include "modelbridge/FolderUpdate.h"
#include "output/GenerationRecord.h"
#include "output/TarvaneOutput.h"

// A file of the new generation, laid out only when the record can't give its text: a recorded
// file made from the same `source` has the very text that laying it out would give.
struct PlannedFile {
    std::string name;                         // its name in the folder
    std::string source;                       // what its text is made from; empty: always laid out
    std::function<std::string()> header;      // its header, as laying it out writes it
    std::function<GeneratedFile()> layOut;    // the whole file
};

class FolderUpdate {
public:
    // `files` is the new generation, `modelClasses` the ids of every class the model holds (a
    // recorded file whose classes are all gone is stale).
    static UpdateReport run(const std::string& folder, const std::vector<GeneratedFile>& files,
                            const std::set<std::string>& modelClasses, const UpdateOptions& options);
    // The same for files made as they are needed; the classes of the files made count as the
    // model's too. `sourcesHold`, asked at the end, says whether the texts laid out depended on
    // nothing but their source; when it says no, no file of this run keeps its source.
    static UpdateReport run(const std::string& folder, const std::vector<PlannedFile>& files,
                            const std::set<std::string>& modelClasses, const UpdateOptions& options,
                            const std::function<bool()>& sourcesHold);

    // A laid-out file as an update sees it: `headerLines` lines of header, then declarations
    // keyed by the ids of their elements.
    static GeneratedFile generatedFile(const std::string& name, const TarvaneOutput::Layout& layout,
                                       std::size_t headerLines);
};
