#include "environment/Environment.h"

#include <dlfcn.h>
#include <link.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <limits>
#include <optional>
#include <string>

#include "environment/DirectoryListings.h"
#include "environment/Paths.h"
#include "environment/PlatformText.h"
#include "runtime/Profiler.h"

namespace {

_eUnion failure(FileError::_eEnum error) { return _eHndl<FileError::_eWrapper>(new FileError::_eWrapper(error)); }

FileError::_eEnum openFailure(int number) {
    switch (number) {
        case ENOENT: return FileError::fileNotFound;
        case EACCES:
        case EROFS: return FileError::attribError;
        default: return FileError::otherError;
    }
}

}  // namespace

_eHndl<Time> utcTime(std::time_t moment, bool& ok) {
    std::tm parts;
    ok = gmtime_r(&moment, &parts) != nullptr;
    if (!ok) return {};
    return _eHndl<Time>(new Time(parts.tm_sec, parts.tm_min, parts.tm_hour, parts.tm_wday, parts.tm_mday,
                                 parts.tm_mon + 1, parts.tm_year + 1900));
}

FileError::_eEnum FileRef::readFailure() const {
    if (!std::ferror(stream)) return FileError::endOfFile;
    return errno == EBADF ? FileError::attribError : FileError::readError;
}

const char* Environment::modeText(const FileModes& modes, bool exists) {
    bool text = modes.contains(FileModeType::text);
    bool read = modes.contains(FileModeType::read);
    bool create = modes.contains(FileModeType::create);
    bool append = modes.contains(FileModeType::append);
    if (create || (append && !exists)) {
        if (text) return read ? "wt+" : "wt";
        return read ? "wb+" : "wb";
    }
    if (append) return text ? "rt+" : "rb+";
    return text ? "rt" : "rb";
}

_eUnion Environment::open(const _eString& path, const FileModes& modes) const {
    bool append = modes.contains(FileModeType::append);
    bool exists = append && fileExists(path);
    // The stream open of this platform knows no text mode: "t" is dropped from the mode text.
    std::string mode;
    for (const char* m = modeText(modes, exists); *m != '\0'; ++m)
        if (*m != 't') mode.push_back(*m);
    std::FILE* stream = DirectoryListings::openCreating(toPlatformText(path), mode.c_str());
    if (stream == nullptr) return failure(openFailure(errno));
    if (append && exists) std::fseek(stream, 0, SEEK_END);
    return _eHndl<FileRef>(new FileRef(stream, modes.contains(FileModeType::create) || append));
}

void Environment::close(const _eHndl<FileRef>& file, FileError::_eEnum& error) const {
    std::FILE* stream = file->getStream();
    if (stream == nullptr) {
        error = FileError::fileNotOpen;
        return;
    }
    file.get()->forgetStream();
    error = std::fclose(stream) == 0 ? FileError::success : FileError::closeError;
}

void Environment::startProfiler() const { ::startProfiler(); }

void Environment::writeProfile(const _eHndl<FileRef>& file, FileError::_eEnum& error) const {
    ::writeProfile(*file.get(), error);
}

void Environment::fileSize(const _eHndl<FileRef>& file, std::int32_t& size, FileError::_eEnum& error) const {
    std::FILE* stream = file->getStream();
    size = 0;
    error = FileError::seekError;
    if (stream == nullptr) return;
    long here = std::ftell(stream);
    if (here < 0 || std::fseek(stream, 0, SEEK_END) != 0) return;
    long end = std::ftell(stream);
    // A size beyond 32 bits has no answer; a directory claims the largest offset there is.
    if (end < 0 || end > std::numeric_limits<std::int32_t>::max()) return;
    size = std::int32_t(end);
    if (std::fseek(stream, here, SEEK_SET) != 0) return;
    error = FileError::success;
}

void writeUnits(FileRef& file, const wchar_t* units, std::size_t count, FileError::_eEnum& error) {
    std::FILE* stream = file.getStream();
    if (stream == nullptr) {
        error = FileError::fileNotOpen;
        return;
    }
    if (!file.isLastWrite()) file.turnTo(true);
    // The bytes go out through a buffer on the stack, as many units at a time as surely fit.
    char bytes[4096];
    bool whole = true;
    while (count > 0) {
        std::size_t take = std::min(count, sizeof bytes / 4);
        std::size_t used = 0;
        for (std::size_t i = 0; i < take; ++i) used += putOutputUnit(bytes + used, std::uint32_t(units[i]));
        whole = std::fwrite(bytes, 1, used, stream) == used && whole;
        units += take;
        count -= take;
    }
    error = whole ? FileError::success : FileError::writeError;
}

void Environment::writeText(const _eHndl<FileRef>& file, const _eString& text, FileError::_eEnum& error) const {
    FileRef& ref = *file.get();
    writeUnits(ref, nullptr, 0, error);  // a stream not open, or one turned to writing
    if (error != FileError::success) return;
    forEachRun(text, [&](const wchar_t* units, int length) {
        FileError::_eEnum written;
        writeUnits(ref, units, std::size_t(length), written);
        if (written != FileError::success) error = written;
    });
}

_eUnion Environment::stats(const _eString& path) const {
    std::string name = toPlatformText(path);
    bool trailing = name.size() > 1 && name.back() == '/';
    if (trailing) name.pop_back();
    struct stat status;
    if (::stat(name.c_str(), &status) != 0) return failure(errno == ENOENT ? FileError::fileNotFound : FileError::otherError);
    bool ok1, ok2, ok3;
    _eHndl<Time> created = utcTime(status.st_ctime, ok1);
    _eHndl<Time> modified = utcTime(status.st_mtime, ok2);
    _eHndl<Time> accessed = utcTime(status.st_atime, ok3);
    if (!ok1 || !ok2 || !ok3) return failure(FileError::otherError);
    bool isDirectory = S_ISDIR(status.st_mode);
    if (trailing && !isDirectory) return failure(FileError::directoryNotFound);
    _eSet<FileAttribute::_eEnum> attributes;
    if (isDirectory) attributes.add(FileAttribute::directory);
    if (status.st_mode & 0x80) attributes.add(FileAttribute::write);
    if (status.st_mode & 0x100) attributes.add(FileAttribute::read);
    std::int32_t size = isDirectory ? 0 : std::int32_t(status.st_size);
    return _eHndl<FileStats>(new FileStats(created, modified, accessed, attributes, size));
}

bool Environment::fileExists(const _eString& path) const { return ::access(toPlatformText(path).c_str(), F_OK) == 0; }

_eHndl<FilePath> Environment::fullPath(const _eString& directory, const _eString& name) const {
    bool absolute = !name.isEmpty() && name.first() == pathSeparator;
    std::string bytes = resolvedBytes(absolute ? name : directory + name);
    if (bytes.empty()) return {};
    _eString answer;
    if (isAscii(bytes)) {
        // The units of an ASCII path are its bytes: it is spelled and cut as bytes, and made a
        // string once. Spelled otherwise, it is resolved again.
        std::optional<std::string> spelled = spelledBytes(bytes);
        if (!spelled || *spelled == bytes) {
            std::size_t cut = bytes.rfind('/') + 1;
            return _eHndl<FilePath>(new FilePath(fromPlatformText(std::string_view(bytes).substr(0, cut)),
                                                 fromPlatformText(std::string_view(bytes).substr(cut))));
        }
        answer = resolvePath(fromPlatformText(*spelled));
    } else {
        // Resolved again only when the spelling changed it.
        answer = fromPlatformText(bytes);
        _eString corrected = correctCase(answer);
        if (!(corrected == answer)) answer = resolvePath(corrected);
    }
    if (answer.isEmpty()) return {};
    int cut = lastComponentStart(answer);
    return _eHndl<FilePath>(new FilePath(answer.take(cut), answer.drop(cut)));
}

_eHndl<Time> Environment::currentTime() const {
    bool ok;
    _eHndl<Time> now = utcTime(std::time(nullptr), ok);
    return ok ? now : _eHndl<Time>(new Time());
}

std::int32_t Environment::processorTime() const {
    return std::int32_t(std::int64_t(std::clock()) * 1000 / CLOCKS_PER_SEC);
}
