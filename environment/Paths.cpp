#include "environment/Paths.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <optional>
#include <string>
#include <string_view>

#include "environment/DirectoryListings.h"
#include "environment/PlatformText.h"

namespace {

constexpr std::size_t pathLimit = PATH_MAX;  // bytes, the terminator included

std::string workingDirectory() {
    std::string buffer(pathLimit, '\0');
    if (getcwd(buffer.data(), buffer.size()) == nullptr) return {};
    buffer.resize(std::char_traits<char>::length(buffer.c_str()));
    return buffer;
}

// The spelling of `component` in `directory`: itself if it exists so, else the one entry that
// matches it ignoring case. Empty if neither.
std::string spelledEntry(const std::string& directory, const std::string& component) {
    struct stat status;
    std::string exact = directory + "/" + component;
    if (lstat(exact.c_str(), &status) == 0) return component;
    return DirectoryListings::uniqueMatch(directory, component);
}

// The length of the longest prefix of the absolute `text` that exists as given, ending at a
// separator or at the end of `text`, and its status; 0 when no component exists.
std::size_t existingPrefix(const std::string& text, struct stat& status) {
    for (std::size_t end = text.size(); end > 0; end = text.rfind('/', end - 1)) {
        if (lstat(text.substr(0, end).c_str(), &status) == 0) return end;
    }
    return 0;
}

// `result` as a string: `path` itself when nothing in it changed and it is ASCII (`text` is its
// bytes), for then its bytes made a string again give it back unit for unit.
_eString unlessSame(const std::string& result, const std::string& text, const _eString& path) {
    return isAscii(text) && result == text ? path : fromPlatformText(result);
}

}  // namespace

std::string resolvedBytes(const _eString& text) {
    if (text.isEmpty()) return {};
    std::string path = toPlatformText(text);
    if (path[0] != '/') {
        std::string cwd = workingDirectory();
        if (cwd.empty()) return {};
        path = cwd + "/" + path;
    }
    bool trailing = path.back() == '/';
    // One pass: each component kept is followed by a separator; the last one goes at the end
    // unless the path ended in one.
    std::string out = "/";
    out.reserve(path.size() + 1);
    std::size_t start = 0;
    while (start <= path.size()) {
        std::size_t end = path.find('/', start);
        if (end == std::string::npos) end = path.size();
        std::string_view part(path.data() + start, end - start);
        if (part == "..") {
            if (out.size() > 1) out.resize(out.rfind('/', out.size() - 2) + 1);
        } else if (!part.empty() && part != ".") {
            out.append(part);
            out += '/';
        }
        start = end + 1;
    }
    if (!trailing && out.size() > 1) out.pop_back();
    if (out.size() >= pathLimit) return {};
    return out;
}

_eString resolvePath(const _eString& text) {
    std::string bytes = resolvedBytes(text);
    return bytes.empty() ? _eString() : fromPlatformText(bytes);
}

std::optional<std::string> spelledBytes(const std::string& text) {
    if (text.size() < 2 || text[0] != '/') return std::nullopt;
    // A name in a directory whose listing is kept and current is answered from the listing.
    if (std::size_t cut = text.rfind('/'); cut > 0 && cut + 1 < text.size()) {
        if (auto entry = DirectoryListings::known(text.substr(0, cut), text.substr(cut + 1))) {
            if (entry->exact) return std::nullopt;
            return entry->unique.empty() ? text : text.substr(0, cut + 1) + entry->unique;
        }
    }
    // Where a prefix of the path exists as given, so does every component in it: those stay
    // without a look each, and the one after it is known not to exist as given.
    struct stat status;
    std::size_t known = existingPrefix(text, status);
    if (known == text.size()) return std::nullopt;
    // What the prefix's look found holds for the folder that is read next, unless it is a link.
    const struct stat* folder = known > 0 && S_ISDIR(status.st_mode) ? &status : nullptr;
    std::string result = text.substr(0, known);
    std::size_t start = known + 1;
    bool missing = true;
    while (start < text.size()) {
        std::size_t end = text.find('/', start);
        if (end == std::string::npos) end = text.size();
        std::string component = text.substr(start, end - start);
        std::string spelled =
            missing ? DirectoryListings::uniqueMatch(result, component, folder) : spelledEntry(result, component);
        missing = false;
        if (spelled.empty()) return result + text.substr(start - 1);
        result += "/" + spelled;
        start = end + 1;
    }
    if (text.back() == '/') result += "/";
    return result;
}

_eString correctCase(const _eString& path) {
    std::string text = toPlatformText(path);
    std::optional<std::string> spelled = spelledBytes(text);
    return spelled ? unlessSame(*spelled, text, path) : path;
}

bool isAscii(std::string_view bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

int lastComponentStart(const _eString& path) {
    // Run by run from the front: a unit asked by its place is a walk down the string's tree.
    int start = 0;
    int at = 0;
    forEachRun(path, [&](const wchar_t* units, int length) {
        for (int k = 0; k < length; ++k)
            if (units[k] == pathSeparator) start = at + k + 1;
        at += length;
    });
    return start;
}
