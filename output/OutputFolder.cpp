#include "output/OutputFolder.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "output/GenerationRecord.h"

namespace {

std::string systemReason() { return std::strerror(errno); }

// A descriptor to read the plain file at `path`; -1 where it can't be opened, the reason in
// `errno`. A link is not followed, and a pipe is opened without waiting for a writer, so that
// what stands there can be looked at.
int openPlain(const std::string& path) {
    return ::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK);
}

// The bytes of the file `fd` was opened on, or, where `fd` is -1, the reason the open failed.
bool readOpened(int fd, const std::string& path, std::string& text, std::string& error) {
    struct stat info {};
    int refused = fd < 0 ? errno : ::fstat(fd, &info) != 0 ? errno : S_ISDIR(info.st_mode) ? EISDIR : 0;
    if (refused != 0 || !S_ISREG(info.st_mode)) {
        error = "cannot read '" + path + "': " + (refused != 0 ? std::strerror(refused) : "not a plain file");
        if (fd >= 0) ::close(fd);
        return false;
    }
    // Read straight into the text, with room for one byte more than the file had: a read that
    // leaves room over has met the end, so a file that didn't grow takes one read.
    std::size_t size = 0;
    std::size_t room = std::size_t(std::max<off_t>(info.st_size, 0)) + 1;
    ssize_t got = 0;
    for (;;) {
        text.resize(size + room);
        got = ::read(fd, text.data() + size, room);
        if (got > 0) size += std::size_t(got);
        if (got <= 0 || std::size_t(got) < room) break;
        room = 65536;
    }
    text.resize(size);
    if (got < 0) error = "cannot read '" + path + "': " + systemReason();
    ::close(fd);
    return got >= 0;
}

// The bytes of a plain file; false with the reason.
bool readPlain(const std::string& path, std::string& text, std::string& error) {
    return readOpened(openPlain(path), path, text, error);
}

// Writes `text` to a new file in the folder of `path` and renames it to `path`.
bool writeByRename(const std::string& folder, const std::string& name, const std::string& text, std::string& error) {
    std::string path = folder + name;
    std::string temporary = folder + "." + name + ".XXXXXX";
    int fd = ::mkstemp(temporary.data());
    if (fd < 0) {
        error = "cannot write into '" + folder + "': " + systemReason();
        return false;
    }
    struct stat before {};
    mode_t mode = ::lstat(path.c_str(), &before) == 0 && S_ISREG(before.st_mode) ? before.st_mode & 07777 : 0644;
    bool ok = ::fchmod(fd, mode) == 0;
    for (std::size_t done = 0; ok && done < text.size();) {
        ssize_t put = ::write(fd, text.data() + done, text.size() - done);
        ok = put > 0;
        if (ok) done += std::size_t(put);
    }
    if (!ok) error = "cannot write '" + path + "': " + systemReason();
    if (::close(fd) != 0 && ok) ok = false, error = "cannot write '" + path + "': " + systemReason();
    if (ok && ::rename(temporary.c_str(), path.c_str()) != 0) ok = false, error = "cannot replace '" + path + "': " + systemReason();
    if (!ok) ::unlink(temporary.c_str());
    return ok;
}

}  // namespace

OutputFolder::OutputFolder(const std::string& path) : folder(path.empty() ? "./" : path) {
    if (folder.back() != '/') folder += '/';
}

bool OutputFolder::usable(std::string& error) const {
    struct stat info {};
    if (::stat(folder.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) return true;
    error = "cannot use the folder '" + folder + "': " + (errno != 0 ? systemReason() : "not a folder");
    return false;
}

bool OutputFolder::present() const {
    struct stat info {};
    return ::lstat(folder.c_str(), &info) == 0;
}

std::string OutputFolder::pathOf(const std::string& name) const {
    return GenerationRecord::plainFileName(name) ? folder + name : std::string();
}

bool OutputFolder::holdsFile(const std::string& name) const {
    struct stat info {};
    return !pathOf(name).empty() && ::lstat(pathOf(name).c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool OutputFolder::holdsAnything(const std::string& name) const {
    struct stat info {};
    return !pathOf(name).empty() && ::lstat(pathOf(name).c_str(), &info) == 0;
}

bool OutputFolder::read(const std::string& name, std::string& text, std::string& error) const {
    if (pathOf(name).empty()) {
        error = "'" + name + "' is not a plain file name";
        return false;
    }
    errno = 0;
    return readPlain(pathOf(name), text, error);
}

bool OutputFolder::readIfThere(const std::string& name, std::string& text, bool& there, std::string& error) const {
    std::string path = pathOf(name);
    there = !path.empty();
    if (!there) return false;
    errno = 0;
    int fd = openPlain(path);
    if (fd < 0) {
        // Nothing by that name, or a look at what stands there.
        int reason = errno;
        there = reason != ENOENT && holdsAnything(name);
        errno = reason;
        if (!there) return false;
    }
    return readOpened(fd, path, text, error);
}

bool OutputFolder::write(const std::string& name, const std::string& text, std::string& error) const {
    std::string path = pathOf(name);
    if (path.empty()) {
        error = "'" + name + "' is not a plain file name";
        return false;
    }
    if (holdsAnything(name) && !holdsFile(name)) {
        error = "'" + path + "' is not a plain file";
        return false;
    }
    return writeByRename(folder, name, text, error);
}

bool OutputFolder::remove(const std::string& name, std::string& error) const {
    if (!holdsFile(name) || ::unlink(pathOf(name).c_str()) != 0) {
        error = "cannot remove '" + pathOf(name) + "': " + (errno != 0 ? systemReason() : "not a plain file");
        return false;
    }
    return true;
}

std::string OutputFolder::recordPath() const {
    return folder + GenerationRecord::folder + "/" + GenerationRecord::file;
}

bool OutputFolder::readRecord(std::string& text, bool& present, std::string& error) const {
    struct stat info {};
    std::string recordFolder = folder + GenerationRecord::folder;
    present = ::lstat(recordFolder.c_str(), &info) == 0;
    if (present && !S_ISDIR(info.st_mode)) {
        error = "'" + recordFolder + "' is not a folder";
        return false;
    }
    present = present && ::lstat(recordPath().c_str(), &info) == 0;
    errno = 0;
    return !present || readPlain(recordPath(), text, error);
}

bool OutputFolder::writeRecord(const std::string& text, std::string& error) const {
    std::string recordFolder = folder + GenerationRecord::folder;
    struct stat info {};
    if (::lstat(recordFolder.c_str(), &info) != 0 && ::mkdir(recordFolder.c_str(), 0777) != 0) {
        error = "cannot make '" + recordFolder + "': " + systemReason();
        return false;
    }
    if (::lstat(recordFolder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode)) {
        error = "'" + recordFolder + "' is not a folder";
        return false;
    }
    return writeByRename(recordFolder + "/", GenerationRecord::file, text, error);
}
