#include "environment/DirectoryListings.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <map>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr std::time_t settleSeconds = 2;
constexpr long settleFineNanoseconds = 100'000'000;
std::size_t directoryReads = 0;
constexpr std::size_t keptDirectories = 16;

// What changes when a directory's entries change.
struct Stamp {
    dev_t device = 0;
    ino_t inode = 0;
    timespec modified{};
    timespec changed{};

    bool operator==(const Stamp& other) const {
        return device == other.device && inode == other.inode && modified.tv_sec == other.modified.tv_sec &&
               modified.tv_nsec == other.modified.tv_nsec && changed.tv_sec == other.changed.tv_sec &&
               changed.tv_nsec == other.changed.tv_nsec;
    }
};

Stamp stampOf(const struct stat& status) { return {status.st_dev, status.st_ino, status.st_mtim, status.st_ctim}; }

// The look this thread is taking, if any: how deep in nested looks, which one it is, and the
// status of each directory met in it.
struct LookState {
    int depth = 0;
    unsigned number = 0;
    std::vector<std::pair<std::string, Stamp>> seen;

    const Stamp* find(const std::string& directory) const {
        if (depth == 0) return nullptr;
        for (const auto& [name, stamp] : seen)
            if (name == directory) return &stamp;
        return nullptr;
    }
    void note(const std::string& directory, const Stamp& stamp) {
        if (depth == 0) return;
        forget(directory);
        seen.emplace_back(directory, stamp);
    }
    void forget(const std::string& directory) {
        std::erase_if(seen, [&](const auto& each) { return each.first == directory; });
    }
};

thread_local LookState look;
std::atomic<unsigned> looksTaken{0};
std::size_t directoryLooks = 0;

// The status of `directory` as it is now.
bool lookAt(const std::string& directory, Stamp& stamp) {
    struct stat status;
    ++directoryLooks;
    if (stat(directory.c_str(), &status) != 0) return false;
    stamp = stampOf(status);
    look.note(directory, stamp);
    return true;
}

// The status of `directory`: as the current look found it, or as it is now.
bool stampOf(const std::string& directory, Stamp& stamp) {
    if (const Stamp* seen = look.find(directory)) {
        stamp = *seen;
        return true;
    }
    return lookAt(directory, stamp);
}

char folded(char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; }

// Hash and equality of names as their letters fold: a name is found by any case of them.
struct FoldedHash {
    std::size_t operator()(std::string_view name) const {
        std::uint64_t hash = 0xcbf29ce484222325ull;
        for (char c : name) hash = (hash ^ static_cast<unsigned char>(folded(c))) * 0x100000001b3ull;
        return std::size_t(hash);
    }
};

struct FoldedEqual {
    bool operator()(std::string_view a, std::string_view b) const {
        return a.size() == b.size() &&
               std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return folded(x) == folded(y); });
    }
};

struct Listing {
    Stamp stamp;
    bool trusted = false;
    bool ownChange = false;  // `stamp` is what the library's own last creation left
    unsigned look = 0;       // the look it was read in, 0 if none
    // The entries by their names as folded: the spelling of the first met, and how many fold to
    // it. A spelling is read only where it is the one.
    std::unordered_map<std::string, int, FoldedHash, FoldedEqual> byFolded;

    void add(const std::string& name) { ++byFolded.try_emplace(name, 0).first->second; }
};

std::map<std::string, Listing>& listings() {
    static std::map<std::string, Listing> kept;
    return kept;
}

// Whether `listing` answers as it stands: trusted, or read in the look being taken.
bool answers(const Listing& listing) { return listing.trusted || (look.depth > 0 && listing.look == look.number); }

bool settled(const Stamp& stamp) {
    timespec now{};
    timespec_get(&now, TIME_UTC);
    if (stamp.modified.tv_nsec == 0) return now.tv_sec - stamp.modified.tv_sec > settleSeconds;
    long long since = (now.tv_sec - stamp.modified.tv_sec) * 1'000'000'000LL + (now.tv_nsec - stamp.modified.tv_nsec);
    return since > settleFineNanoseconds;
}

// The listing of `directory` as it is now, read again unless the kept one can be trusted.
const Listing* currentListing(const std::string& directory, const struct stat* status) {
    Stamp now;
    if (status != nullptr) {
        now = stampOf(*status);
        look.note(directory, now);
    } else if (!stampOf(directory, now)) {
        return nullptr;
    }
    auto& kept = listings();
    auto found = kept.find(directory);
    if (found != kept.end() && found->second.stamp == now && answers(found->second)) return &found->second;
    bool ownChange = found != kept.end() && found->second.stamp == now && found->second.ownChange;
    DIR* dir = opendir(directory.c_str());
    if (dir == nullptr) return nullptr;
    ++directoryReads;
    Listing listing;
    while (const dirent* entry = readdir(dir)) listing.add(entry->d_name);
    closedir(dir);
    listing.stamp = now;
    listing.trusted = ownChange || settled(now);
    listing.ownChange = ownChange;
    listing.look = look.depth > 0 ? look.number : 0;
    if (kept.size() >= keptDirectories && found == kept.end()) kept.clear();
    return &(kept[directory] = std::move(listing));
}

// `std::fopen(path, mode)` for a mode that creates ("w..."), where nothing by the name of
// `path` exists yet: one call both asks and creates. Null otherwise, and for every other mode.
std::FILE* createdNew(const std::string& path, const char* mode) {
    if (mode[0] != 'w') return nullptr;
    return std::fopen(path.c_str(), (std::string(mode) + "x").c_str());
}

}  // namespace

std::string DirectoryListings::uniqueMatch(const std::string& directory, const std::string& component,
                                           const struct stat* status) {
    const Listing* listing = currentListing(directory.empty() ? "/" : directory, status);
    if (listing == nullptr) return {};
    auto entry = listing->byFolded.find(component);
    if (entry == listing->byFolded.end() || entry->second != 1) return {};
    return entry->first;
}

std::optional<DirectoryListings::Known> DirectoryListings::known(const std::string& directory,
                                                                 const std::string& component) {
    auto& kept = listings();
    auto found = kept.find(directory);
    if (found == kept.end() || !answers(found->second)) return std::nullopt;
    Stamp now;
    if (!stampOf(directory, now) || !(now == found->second.stamp)) return std::nullopt;
    const auto& entries = found->second.byFolded;
    auto entry = entries.find(component);
    if (entry == entries.end()) return Known{};
    if (entry->second != 1) return std::nullopt;
    return Known{entry->first == component, entry->first};
}

std::FILE* DirectoryListings::openCreating(const std::string& path, const char* mode) {
    std::size_t cut = path.rfind('/');
    std::string directory = cut == std::string::npos ? "." : cut == 0 ? "/" : path.substr(0, cut);
    auto& kept = listings();
    auto found = kept.find(directory);
    if (found == kept.end()) {
        look.forget(directory);
        return std::fopen(path.c_str(), mode);
    }
    Stamp before;
    bool known = stampOf(directory, before) && before == found->second.stamp;
    bool existed = false;
    std::FILE* stream = createdNew(path, mode);
    if (stream == nullptr) {
        struct stat status;
        existed = lstat(path.c_str(), &status) == 0;
        stream = std::fopen(path.c_str(), mode);
    }
    int error = errno;
    bool created = stream != nullptr && !existed;
    if (created) look.forget(directory);
    Stamp after;
    if (created && known && lookAt(directory, after)) {
        found->second.add(path.substr(cut + 1));
        found->second.stamp = after;
        found->second.ownChange = true;
    } else if (!(known && (existed || stream == nullptr))) {
        kept.erase(found);
    }
    errno = error;
    return stream;
}

DirectoryListings::Look::Look() {
    if (look.depth++ > 0) return;
    look.number = ++looksTaken;
    if (look.number == 0) look.number = ++looksTaken;
}

DirectoryListings::Look::~Look() {
    if (--look.depth == 0) look.seen.clear();
}

void DirectoryListings::clear() { listings().clear(); }

std::size_t DirectoryListings::reads() { return directoryReads; }

std::size_t DirectoryListings::looks() { return directoryLooks; }
