// `FilePath`: a path resolved against the file system, split before its last component.
#pragma once

#include "runtime/Class.h"

class MB_API FilePath : public _eClass<FilePath, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule29, 0};

    FilePath(const _eString& directory, const _eString& file) : directory(directory), file(file) {}

    bool equalFields(const FilePath& other) const { return directory == other.directory && file == other.file; }

    _eString toString() const override { return directory + file; }

    const _eString& getDirectory() const { return directory; }
    const _eString& getFile() const { return file; }
    wchar_t lastDirectoryUnit() const { return directory.at(directory.size() - 1); }

private:
    _eString directory;  // up to and including the last separator
    _eString file;       // the last component; empty when the path ended in a separator
};
