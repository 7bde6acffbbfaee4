// The entries of directories by their ASCII lower-case form, kept between lookups.
//
// Writing one file per class into a directory looks up the spelling of every new name, and
// each lookup would otherwise read the whole directory: work that grows with the square of
// the number of files. A listing is used again while the directory's identity and times are
// unchanged and the listing can be trusted:
// - a listing read later than one tick of the file system's clock after the directory's last
//   change is complete, since any change after it moves the times on: two seconds (the
//   coarsest file time stamp) where times have no fraction of a second, a tenth of a second
//   where they have one (there the kernel's coarse clock, at most 10 ms a tick, stamps them);
// - a file created through `openCreating` is added to the listing of its directory, so the
//   library's own changes keep it valid; a listing read when the last change was the library's
//   own is complete too.
// What stays unseen is a change by another process to the same directory within the same
// clock tick as one of the library's own creations there.
//
// A piece of work that changes directories only through `openCreating` can take one look at
// them (`Look`): each directory's status is then read once, and what is read of it answers for
// the rest of the work, as the directory stood at that look. A change by another process within
// the work shows at the next look.
#pragma once

#include <sys/stat.h>

#include <cstdio>
#include <optional>
#include <string>

class DirectoryListings {
public:
    // The one entry of `directory` that equals `component` ignoring ASCII case, or empty when
    // there are none or several, or the directory can't be read. `status`, when given, is the
    // directory's status as the caller has just read it.
    static std::string uniqueMatch(const std::string& directory, const std::string& component,
                                   const struct stat* status = nullptr);
    // What the kept listing of `directory` tells of `component` without reading the directory
    // again: whether an entry is spelled exactly so, and the one entry equal to it ignoring
    // ASCII case (empty if none). Nothing when no listing to trust is kept, the directory has
    // changed since, or several entries are equal ignoring case.
    struct Known {
        bool exact = false;
        std::string unique;
    };
    static std::optional<Known> known(const std::string& directory, const std::string& component);
    // `std::fopen(path, mode)`, keeping the listing of the file's directory up to date.
    static std::FILE* openCreating(const std::string& path, const char* mode);
    // While one lives on a thread, that thread looks at each directory once. Looks nest: the
    // outermost one ends them.
    class Look {
    public:
        Look();
        ~Look();
        Look(const Look&) = delete;
        Look& operator=(const Look&) = delete;
    };
    // Forgets every listing.
    static void clear();
    // How many times a directory was read, and its status looked at, for tests.
    static std::size_t reads();
    static std::size_t looks();
};
