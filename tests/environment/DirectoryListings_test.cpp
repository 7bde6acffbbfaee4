// Kept listings of directories: what the library creates, and what others change, is seen.
#include <gtest/gtest.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <fstream>

#include "environment/DirectoryListings.h"
#include "support/TempDir.h"

namespace {

void touch(const std::string& path) { std::ofstream(path) << "x"; }

// Sets the directory's modification time an hour back, as if nothing had changed it lately.
void age(const std::string& directory) {
    struct stat status;
    ASSERT_EQ(stat(directory.c_str(), &status), 0);
    timespec times[2] = {status.st_atim, status.st_mtim};
    times[1].tv_sec -= 3600;
    ASSERT_EQ(utimensat(AT_FDCWD, directory.c_str(), times, 0), 0);
}

}  // namespace

TEST(DirectoryListings, ChangesByOthersAreSeenAtOnce) {
    DirectoryListings::clear();
    TempDir dir;
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "readme.txt"), "");
    // Within the same clock tick as the directory's creation and the first reading.
    touch(dir / "ReadMe.TXT");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "readme.txt"), "ReadMe.TXT");
    touch(dir / "README.txt");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "readme.txt"), "");

    // A listing read long after the last change is kept; a later change still shows.
    age(dir.path());
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "Other"), "");
    touch(dir / "other");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "OTHER"), "other");
    std::remove((dir / "other").c_str());
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "OTHER"), "");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir / "missing", "x"), "");
}

TEST(DirectoryListings, FilesTheLibraryCreatesJoinTheListing) {
    DirectoryListings::clear();
    TempDir dir;
    age(dir.path());
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class1.tv"), "");
    for (const char* name : {"Class1.tv", "Class2.tv", "class2.TV"}) {
        std::FILE* file = DirectoryListings::openCreating(dir / name, "w");
        ASSERT_NE(file, nullptr);
        std::fclose(file);
    }
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "CLASS1.TV"), "Class1.tv");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class2.tv"), "");
    // Opening an existing file again, or failing to open one, leaves the entries as they are.
    std::FILE* again = DirectoryListings::openCreating(dir / "Class1.tv", "w");
    ASSERT_NE(again, nullptr);
    std::fclose(again);
    EXPECT_EQ(DirectoryListings::openCreating(dir / "no/such.tv", "w"), nullptr);
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class1.TV"), "Class1.tv");
    // A file created behind the library's back is seen too.
    touch(dir / "CLASS3.tv");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class3.tv"), "CLASS3.tv");
}
