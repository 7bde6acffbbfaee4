// What a folder update knows of generated text: each file's text after its header, cut into
// the declarations of model elements, each under a key made of the element's id; and the
// record of the last generation into a folder, read from and written to a text file that a
// user keeps beside the generated files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "output/LineDiff.h"

// A declaration within a file's text.
struct TextPiece {
    // "member ID", "accessor ID", "head ID", "end ID", "section ID interface"; repeated keys of
    // one file get "#2", "#3", ... The id is written with "%XX" for blanks, controls and "%".
    std::string key;
    std::size_t first = 0, end = 0;  // its lines in the text: [first, end), counted from 0
    // Where each "?" the user completes stands: line (counted from 0) and bytes before it.
    std::vector<std::pair<std::size_t, std::size_t>> bodies;

    bool operator==(const TextPiece&) const = default;
};

// A generated file: its name in the folder, the ids of the classes it holds, its header (the
// lines that name the file, the source and the time) and its text after the header.
struct GeneratedFile {
    std::string name;
    std::vector<std::string> classIds;
    std::string header;  // never recorded: it holds paths and a time
    Lines lines;
    std::vector<TextPiece> pieces;  // in the order of their lines
    // A digest of what the text was made from (the model's bytes and every option that shapes
    // the text); the same digest gives the same text. Empty when unknown.
    std::string source;
    // A text read from a record and not split into `lines` yet: "|", the line and its end, for
    // each of `unsplitLines` lines. Empty once split, and for a text laid out.
    std::string unsplit{};
    std::size_t unsplitLines = 0;

    bool operator==(const GeneratedFile&) const = default;
    // The lines of the text, split or not.
    LineViews textLines() const;
    std::size_t lineCount() const { return unsplit.empty() ? lines.size() : unsplitLines; }
    // Moves an unsplit text into `lines`.
    void split();
    // The key of the class whose declaration holds the piece at `index`: the head before it.
    std::string classOf(std::size_t index) const;
};

// A member deleted from the model whose text the user had changed: its text as last generated,
// kept so that the user's text merges again if the element comes back.
struct KeptMember {
    std::string key;
    Lines lines;

    bool operator==(const KeptMember&) const = default;
};

struct RecordEntry {
    GeneratedFile file;
    std::vector<KeptMember> kept;

    bool operator==(const RecordEntry&) const = default;
};

class GenerationRecord {
public:
    std::vector<RecordEntry> entries;  // in the order of their file names

    // The folder within the output folder that holds the record, and the record's file.
    static constexpr const char* folder = ".modelbridge";
    static constexpr const char* file = "record";

    // Reads a record's text; false with "FILE:LINE: reason" in `error` when it can't be read,
    // `path` naming the file. With `split` false the files' texts stay unsplit, for a reader
    // that needs the lines of only a few.
    static bool read(const std::string& text, const std::string& path, GenerationRecord& record, std::string& error,
                     bool split = true);
    // The record's text: stable, one item per line, without paths or times.
    std::string text() const;
    // Whether `text()` would give `text`, found without building it.
    bool writes(std::string_view text) const;

    const RecordEntry* byName(const std::string& name) const;
    // The entry of a file that holds the one class `classId` alone.
    const RecordEntry* byClass(const std::string& classId) const;

    // A generated file's name is a plain file name: no path, no "." or "..", no control
    // character; generated files end in ".tv".
    static bool plainFileName(const std::string& name);
    // An id as a key writes it: blanks, controls and "%" as "%XX".
    static std::string keyText(const std::string& id);
    static std::string idOfKeyText(const std::string& text);
};
