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

// Where the file system's times have fractions of a second, a directory last changed a moment
// ago (longer than a tick of its clock) is read once for many lookups; one changed in the very
// tick it is read is read again at each lookup, so that a change in that tick shows.
TEST(DirectoryListings, ADirectorySettledForATickIsReadOnce) {
    DirectoryListings::clear();
    TempDir dir;
    touch(dir / "Entry.tv");
    struct stat status;
    ASSERT_EQ(stat(dir.path().c_str(), &status), 0);
    if (status.st_mtim.tv_nsec == 0) GTEST_SKIP() << "this file system keeps whole seconds";
    // The directory's modification time set `offset` nanoseconds from now, with a fraction of a
    // second whatever the clock gives.
    auto changedAt = [&](long long offset) {
        timespec now{};
        timespec_get(&now, TIME_UTC);
        long long at = now.tv_sec * 1'000'000'000LL + now.tv_nsec + offset;
        timespec times[2] = {now, {time_t(at / 1'000'000'000), long(at % 1'000'000'000) | 1}};
        ASSERT_EQ(utimensat(AT_FDCWD, dir.path().c_str(), times, 0), 0);
    };
    auto readsFor = [&](const char* name) {
        std::size_t before = DirectoryListings::reads();
        for (int i = 0; i < 3; ++i) EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), name), "Entry.tv");
        return DirectoryListings::reads() - before;
    };
    changedAt(10'000'000'000LL);  // not yet settled, however slow the machine
    EXPECT_EQ(readsFor("entry.tv"), 3u);
    changedAt(-500'000'000LL);
    EXPECT_EQ(readsFor("ENTRY.TV"), 1u);
}

TEST(DirectoryListings, FilesTheLibraryCreatesJoinTheListing) {
    DirectoryListings::clear();
    TempDir dir;
    age(dir.path());
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class1.tv"), "");
    std::size_t reads = DirectoryListings::reads();
    for (const char* name : {"Class1.tv", "Class2.tv", "class2.TV"}) {
        std::FILE* file = DirectoryListings::openCreating(dir / name, "w");
        ASSERT_NE(file, nullptr);
        std::fputs(name, file);
        std::fclose(file);
    }
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "CLASS1.TV"), "Class1.tv");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class2.tv"), "");
    EXPECT_EQ(DirectoryListings::reads(), reads);
    // Opening an existing file again empties it; failing to open one, or opening one only to
    // read, leaves the entries as they are.
    std::FILE* again = DirectoryListings::openCreating(dir / "Class1.tv", "w");
    ASSERT_NE(again, nullptr);
    std::fclose(again);
    EXPECT_EQ(dir.read("Class1.tv"), "");
    EXPECT_EQ(dir.read("Class2.tv"), "Class2.tv");
    EXPECT_EQ(DirectoryListings::openCreating(dir / "no/such.tv", "w"), nullptr);
    EXPECT_EQ(DirectoryListings::openCreating(dir / "Missing.tv", "r"), nullptr);
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "missing.tv"), "");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class1.TV"), "Class1.tv");
    EXPECT_EQ(DirectoryListings::reads(), reads);
    // A file made to write and read back.
    std::FILE* both = DirectoryListings::openCreating(dir / "Both.tv", "w+");
    ASSERT_NE(both, nullptr);
    std::fputs("both", both);
    std::rewind(both);
    char back[8] = {};
    EXPECT_NE(std::fgets(back, sizeof back, both), nullptr);
    std::fclose(both);
    EXPECT_STREQ(back, "both");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "BOTH.TV"), "Both.tv");
    // The kept listing answers for a name without a look at the directory.
    auto known = [&](const char* name) { return DirectoryListings::known(dir.path(), name); };
    ASSERT_TRUE(known("Class1.tv").has_value());
    EXPECT_TRUE(known("Class1.tv")->exact);
    EXPECT_EQ(known("Class1.tv")->unique, "Class1.tv");
    ASSERT_TRUE(known("CLASS1.tv").has_value());
    EXPECT_FALSE(known("CLASS1.tv")->exact);
    EXPECT_EQ(known("CLASS1.tv")->unique, "Class1.tv");
    ASSERT_TRUE(known("Other.tv").has_value());
    EXPECT_FALSE(known("Other.tv")->exact);
    EXPECT_EQ(known("Other.tv")->unique, "");
    EXPECT_FALSE(known("Class2.tv").has_value());
    EXPECT_FALSE(DirectoryListings::known(dir / "none", "x").has_value());
    EXPECT_EQ(DirectoryListings::reads(), reads);
    // A file created behind the library's back is seen too; until the directory is read again,
    // its listing answers nothing.
    touch(dir / "CLASS3.tv");
    EXPECT_FALSE(known("CLASS3.tv").has_value());
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "class3.tv"), "CLASS3.tv");
}

// A listing read in the very tick of the directory's last change by others is no answer.
TEST(DirectoryListings, AListingNotToTrustAnswersNothing) {
    DirectoryListings::clear();
    TempDir dir;
    touch(dir / "Entry.tv");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "entry.tv"), "Entry.tv");
    EXPECT_FALSE(DirectoryListings::known(dir.path(), "Entry.tv").has_value());
    age(dir.path());
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "entry.tv"), "Entry.tv");
    ASSERT_TRUE(DirectoryListings::known(dir.path(), "Entry.tv").has_value());
    EXPECT_TRUE(DirectoryListings::known(dir.path(), "Entry.tv")->exact);
}

// Within a look a directory's status is read once, and a listing read in it answers every later
// lookup in it however lately the directory changed; what others change shows after it.
TEST(DirectoryListings, ALookReadsADirectoryOnce) {
    DirectoryListings::clear();
    TempDir dir;
    touch(dir / "Entry.tv");  // changed in this very tick: a listing of it alone is no answer
    std::size_t reads = DirectoryListings::reads();
    std::size_t looks = DirectoryListings::looks();
    {
        DirectoryListings::Look look;
        for (int i = 0; i < 3; ++i) {
            DirectoryListings::Look nested;
            EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "entry.tv"), "Entry.tv");
            auto known = DirectoryListings::known(dir.path(), "ENTRY.TV");
            ASSERT_TRUE(known.has_value());
            EXPECT_EQ(known->unique, "Entry.tv");
        }
        EXPECT_EQ(DirectoryListings::reads() - reads, 1u);
        EXPECT_EQ(DirectoryListings::looks() - looks, 1u);
        // The library's own file joins the listing; the directory is looked at once after it.
        std::FILE* file = DirectoryListings::openCreating(dir / "Made.tv", "w");
        ASSERT_NE(file, nullptr);
        std::fclose(file);
        EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "MADE.tv"), "Made.tv");
        EXPECT_TRUE(DirectoryListings::known(dir.path(), "Made.tv")->exact);
        EXPECT_EQ(DirectoryListings::reads() - reads, 1u);
        EXPECT_EQ(DirectoryListings::looks() - looks, 2u);
        touch(dir / "Other.tv");
    }
    EXPECT_FALSE(DirectoryListings::known(dir.path(), "Other.tv").has_value());
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "other.TV"), "Other.tv");
    EXPECT_EQ(DirectoryListings::uniqueMatch(dir.path(), "made.tv"), "Made.tv");
}
