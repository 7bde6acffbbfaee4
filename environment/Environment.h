// The one door to the platform: files, paths, the clock and module versions. The host creates
// it and hands it to `XMLImporter`. Results that can fail are values, never exceptions.
#pragma once

#include <cstdint>

#include "environment/EnvironmentEnums.h"
#include "environment/FileRef.h"
#include "environment/FilePath.h"
#include "environment/FileStats.h"
#include "environment/Time.h"
#include "runtime/Set.h"
#include "runtime/Union.h"

using FileModes = _eSet<FileModeType::_eEnum>;

class MB_API Environment : public _eClass<Environment, _eAny> {
public:
    static constexpr _aTypeSlot _aType{&_aModule28, 19};

    Environment() = default;

    // It has no state that the system reads, so any two are equal.
    bool equalFields(const Environment&) const { return true; }

    // A `FileRef`, or a `FileError::_eWrapper`. `append` keeps an existing file and starts at its end.
    _eUnion open(const _eString& path, const FileModes& modes) const;
    void close(const _eHndl<FileRef>& file, FileError::_eEnum& error) const;
    // The size in bytes; the position in the file is unchanged.
    void fileSize(const _eHndl<FileRef>& file, std::int32_t& size, FileError::_eEnum& error) const;
    // The next byte as the unit of its value, without decoding.
    void readByte(const _eHndl<FileRef>& file, wchar_t& unit, FileError::_eEnum& error) const {
        file.get()->readByte(unit, error);
    }
    // Units up to 255 as one byte each, larger units as UTF-8.
    void writeText(const _eHndl<FileRef>& file, const _eString& text, FileError::_eEnum& error) const;
    // A `FileStats`, or a `FileError::_eWrapper`.
    _eUnion stats(const _eString& path) const;
    bool fileExists(const _eString& path) const;
    // `name` against `directory`, resolved and spelled as the file system spells it; null on failure.
    _eHndl<FilePath> fullPath(const _eString& directory, const _eString& name) const;
    // The four version numbers of a loaded module, most significant first; zeros if not found.
    _eSeq<int> moduleVersion(const _eString& moduleName) const;
    _eHndl<Time> currentTime() const;
    std::int32_t processorTime() const;
    std::int32_t ticksPerSecond() const { return 1000; }
    // The process-wide profiler: start it, and later stop it into a report on `file`.
    void startProfiler() const;
    void writeProfile(const _eHndl<FileRef>& file, FileError::_eEnum& error) const;

    // The platform's mode text for a mode set, given whether the file exists.
    static const char* modeText(const FileModes& modes, bool exists);
};
