// Text on its way to a file, gathered so that the file gets a few large writes instead of
// one for every token: each write costs a call through the stream's locks and buffers.
#pragma once

#include <string_view>

#include "environment/FileRef.h"
#include "runtime/Seq.h"

class TextBatch {
public:
    // Writes end up in `file`; `status` keeps the first failed write's code.
    TextBatch(const _eHndl<FileRef>& file, FileError::_eEnum& status) : file(*file.get()), status(status) {}
    TextBatch(const TextBatch&) = delete;
    TextBatch& operator=(const TextBatch&) = delete;

    void put(const _eString& text);
    void put(std::wstring_view units);
    // Writes what has been gathered.
    void flush();

private:
    static constexpr int capacity = 4096;
    FileRef& file;
    FileError::_eEnum& status;
    int used = 0;
    wchar_t units[capacity];
};
