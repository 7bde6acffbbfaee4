// The three-way merge of a generated file that the user has changed: the text last generated,
// the user's text and the new generation, matched declaration by declaration through the
// model ids of their elements, so that a renamed or moved member keeps what the user wrote in
// it, and lines the user added between members stay after the member they follow.
#pragma once

#include <string>
#include <vector>

#include "modelbridge/FolderUpdate.h"
#include "output/GenerationRecord.h"

struct MergeOutcome {
    bool settled = true;  // no conflict: `text` is the merge
    std::string text;     // the merged file; where it isn't settled, with conflict markers
    std::vector<UpdateConflict> conflicts;
    std::vector<std::string> orphaned;  // members kept commented out, by their first line
    std::vector<std::string> restored;  // members kept so before that are in place again
    std::vector<KeptMember> kept;       // every member the text keeps commented out
};

class MemberMerge {
public:
    // `base` is the record of the last generation of the file, `userText` the file as it
    // stands, `next` the new generation.
    static MergeOutcome merge(const RecordEntry& base, const std::string& userText, const GeneratedFile& next);

    // The number of lines at the start of `lines` that have the shape of a generated header of
    // `headerLines` lines, or 0.
    static std::size_t headerOf(const LineViews& lines, std::size_t headerLines);
    // The line that starts a member kept commented out.
    static std::string keptMarker(const std::string& key);
};
