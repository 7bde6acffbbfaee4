// `FileRef`: an open file. Copies work on the same stream; only `Environment::close` closes it.
#pragma once

#include <cstddef>
#include <cstdio>

#include "environment/EnvironmentEnums.h"
#include "runtime/Class.h"

class MB_API FileRef : public _eClass<FileRef, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule28, 21};

    FileRef(std::FILE* stream, bool openedForChange)
        : stream(stream), openedForChange(openedForChange), lastWasWrite(openedForChange) {}

    bool equalFields(const FileRef& other) const {
        return stream == other.stream && openedForChange == other.openedForChange &&
               lastWasWrite == other.lastWasWrite;
    }

    // One byte as the unit of its value; `endOfFile` again and again at the end.
    void readByte(wchar_t& unit, FileError::_eEnum& error) {
        if (MB_UNLIKELY(stream == nullptr)) {
            error = FileError::fileNotOpen;
            return;
        }
        if (MB_UNLIKELY(lastWasWrite)) turnTo(false);
        int c = getc_unlocked(stream);
        if (MB_UNLIKELY(c == EOF)) {
            error = readFailure();
            return;
        }
        unit = wchar_t(c);
        error = FileError::success;
    }

    // The stream demands a repositioning between reading and writing.
    void turnTo(bool writing) {
        std::fseek(stream, 0, SEEK_CUR);
        lastWasWrite = writing;
    }

    std::FILE* getStream() const { return stream; }
    bool isOpenedForChange() const { return openedForChange; }
    bool isLastWrite() const { return lastWasWrite; }
    // After `close`: every later transfer reports `fileNotOpen`.
    void forgetStream() { stream = nullptr; }

private:
    FileError::_eEnum readFailure() const;

    std::FILE* stream;     // the platform's buffered stream; null once closed
    bool openedForChange;  // the mode set held `create` or `append`
    bool lastWasWrite;     // the direction of the last transfer
};

// Writes `count` units as `Environment::writeText` writes a text of them.
void writeUnits(FileRef& file, const wchar_t* units, std::size_t count, FileError::_eEnum& error);
