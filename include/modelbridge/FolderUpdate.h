// Updating a folder of generated files without losing what the user wrote in them: what a host
// asks for, and what happened to each file. Plain C++17, shared by hosts of the importer and of
// the facade; installed beside the headers of both, the guard making the two copies one.
//
// A folder that has been updated holds, besides the generated files, the folder ".modelbridge"
// with the record of the last generation: the text generated for each file and the model ids of
// the declarations in it. An update compares the new generation with that record and with the
// file as it stands, so that the model's changes land and the user's stay.
#ifndef MODELBRIDGE_FOLDER_UPDATE_H
#define MODELBRIDGE_FOLDER_UPDATE_H

#include <string>
#include <vector>

struct UpdateOptions {
    // Write the files and the record; false: only tell what an update would do.
    bool write = true;
    // Files that the record doesn't know, and files the merge can't settle, are replaced by the
    // new generation instead of being left alone.
    bool overwrite = false;
    // Files of classes gone from the model are removed when they are as last generated.
    bool prune = false;
    // A file the merge can't settle is written with conflict markers around the lines in
    // conflict, instead of being left alone.
    bool conflictMarkers = false;
    // Each report entry carries a unified diff of the file's change.
    bool diff = false;
};

// What an update did to one file, or would do.
enum class FileOutcome {
    created,    // there was no file: the new generation is written
    unchanged,  // the file is up to date and is not touched
    updated,    // the file was as last generated: the new generation replaces it
    merged,     // the user had changed it: the model's changes are merged into the user's text
    conflict,   // the merge can't settle it: left as it stands (or written with markers)
    foreign,    // a file the record doesn't know differs from the new generation: left alone
    stale,      // its class is gone from the model: left as it stands
    pruned,     // its class is gone from the model and it was as last generated: removed
    failed,     // the file system refused a read or a write
};

// A place where both the user and the model changed the same text.
struct UpdateConflict {
    int line = 0;        // in the user's file, counted from 1
    std::string member;  // the first line of the declaration, as the new generation writes it
};

struct FileUpdate {
    std::string file;         // the file's name in the folder
    FileOutcome outcome = FileOutcome::unchanged;
    std::string renamedFrom;  // the file it was before its class was renamed, or empty
    // Members deleted from the model whose text the user had changed: kept commented out at the
    // end of the class. Each by its first line.
    std::vector<std::string> orphaned;
    // Members kept that way before whose model element is back: in place again.
    std::vector<std::string> restored;
    std::vector<UpdateConflict> conflicts;
    std::string message;      // why it failed, or what was left alone and why
    std::string diff;         // with `UpdateOptions::diff`: the change as a unified diff
    // Whether the file is, or would be, written, renamed or removed.
    bool changes = false;
};

struct UpdateReport {
    // The record was read and every file could be settled: no conflict, no foreign file, no
    // failure. Stale files and orphaned members are reported but don't make an update fail.
    bool ok = false;
    // Why nothing was done: the record can't be read ("FILE:LINE: reason"), or the folder can't be
    // used. Empty otherwise.
    std::string error;
    std::vector<FileUpdate> files;  // in the order of the file names
};

// The word for an outcome: "created", "unchanged", ...
inline const char* outcomeName(FileOutcome outcome) {
    static const char* const names[] = {"created", "unchanged", "updated", "merged", "conflict",
                                        "foreign", "stale",     "pruned",  "failed"};
    return names[int(outcome)];
}

#endif
