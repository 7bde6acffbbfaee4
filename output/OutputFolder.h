// The one place where a folder update reaches the file system: files of plain names within one
// folder, and the record folder inside it. A name that would make a path of its own (a "/",
// "." or "..", a control character) is refused before anything is touched, and a link or
// anything but a plain file under a generated file's name is left alone, so that nothing a
// model or a record says makes an update read or write outside the folder.
#pragma once

#include <string>

class OutputFolder {
public:
    explicit OutputFolder(const std::string& path);

    // Whether the folder is there and is a folder; `error` says why not.
    bool usable(std::string& error) const;
    // Whether anything at all stands at the folder's path.
    bool present() const;
    // The path of a file of that name in the folder; empty for a name that isn't plain.
    std::string pathOf(const std::string& name) const;
    // Whether a plain file of that name is there, and whether anything at all is.
    bool holdsFile(const std::string& name) const;
    bool holdsAnything(const std::string& name) const;
    // The file's bytes; false with the reason in `error`.
    bool read(const std::string& name, std::string& text, std::string& error) const;
    // As `read` where anything stands at the name (`holdsAnything`); else false with `there`
    // false and no reason. One look serves both questions.
    bool readIfThere(const std::string& name, std::string& text, bool& there, std::string& error) const;
    // Writes into a new file beside it and renames that into place, so that the file is either
    // as it was or wholly written; a file there before keeps its permissions.
    bool write(const std::string& name, const std::string& text, std::string& error) const;
    bool remove(const std::string& name, std::string& error) const;

    // The record of the last generation: whether there is one, and its text.
    bool readRecord(std::string& text, bool& present, std::string& error) const;
    bool writeRecord(const std::string& text, std::string& error) const;
    // "DIR/.modelbridge/record"
    std::string recordPath() const;

private:
    std::string folder;  // ends in "/"
};
