// File names: resolution, splitting, forced extensions and the file system's spelling.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "environment/DirectoryListings.h"
#include "environment/Environment.h"
#include "environment/FileName.h"
#include "environment/Paths.h"
#include "environment/PlatformText.h"
#include "support/TempDir.h"

namespace {

class FileNames : public testing::Test {
protected:
    // The temporary directory with a trailing separator, as a default directory.
    _eString base() const { return fromPlatformText(dir.path() + "/"); }
    FileName named(const _eString& name, const _eString& forced = {}) const {
        return FileName(base(), name, forced, env.get());
    }
    std::wstring full(const std::string& rest) const { return toWString(fromPlatformText(dir.path() + rest)); }

    TempDir dir;
    _eHndl<Environment> env{new Environment()};
};

std::wstring text(const _eString& s) { return toWString(s); }

template <class C>
_eRank rankOf(const C& a, const C& b) {
    return a.rank(&b);
}

}  // namespace

TEST_F(FileNames, SplitsNameAndExtensionAtTheLastDot) {
    struct Row {
        const wchar_t* given;
        const wchar_t* forced;
        bool valid;
        const wchar_t* name;
        const wchar_t* extension;
        const wchar_t* file;
    };
    const Row rows[] = {
        {L"model.xmi", L"", true, L"model", L"xmi", L"model.xmi"},
        {L".profile", L"", false, L"", L"profile", L".profile"},
        {L"a.b.c", L"", true, L"a.b", L"c", L"a.b.c"},
        {L"foo.", L"", true, L"foo", L"", L"foo"},
        {L"foo.bar", L"tv", true, L"foo", L"tv", L"foo.tv"},
        {L"foo", L"tv", true, L"foo", L"tv", L"foo.tv"},
        {L"x.y/plain", L"", true, L"plain", L"", L"plain"},
    };
    for (const Row& row : rows) {
        FileName name = named(row.given, row.forced);
        EXPECT_EQ(name.isValid(), row.valid) << row.given;
        EXPECT_EQ(text(name.getName()), row.name) << row.given;
        EXPECT_EQ(text(name.getExtension()), row.extension) << row.given;
        EXPECT_EQ(text(name.fileNameText()), row.file) << row.given;
    }
    EXPECT_EQ(text(named(L"model.xmi").getDirectory()), full("/"));
    EXPECT_EQ(text(named(L"model.xmi").fullPathText()), full("/model.xmi"));
}

TEST_F(FileNames, RelativeAbsoluteDotsAndTrailingSeparators) {
    mkdir((dir / "sub").c_str(), 0755);
    EXPECT_EQ(text(named(L"sub/../sub/./f.txt").fullPathText()), full("/sub/f.txt"));
    EXPECT_EQ(text(named(L"sub//f.txt").fullPathText()), full("/sub/f.txt"));
    // An absolute name ignores the default directory.
    FileName absolute(L"/nowhere/", fromPlatformText(dir.path() + "/sub/f.txt"), L"", env.get());
    EXPECT_EQ(text(absolute.fullPathText()), full("/sub/f.txt"));
    // A relative name without a default directory is taken against the working directory.
    char cwd[4096];
    ASSERT_NE(getcwd(cwd, sizeof cwd), nullptr);
    EXPECT_EQ(text(FileName(L"rel.txt", env.get()).fullPathText()), toWString(fromPlatformText(std::string(cwd) + "/rel.txt")));
    // Up from the root stays at the root.
    EXPECT_EQ(text(FileName(L"/../../etc", env.get()).fullPathText()), L"/etc");
    // Paths as text alone: a trailing separator stays where anything is left of the path.
    const std::pair<const wchar_t*, const wchar_t*> resolved[] = {
        {L"/a/b/../../c/", L"/c/"}, {L"/a/./b/.", L"/a/b"}, {L"/..", L"/"},        {L"/a/..", L"/"},
        {L"/a/../", L"/"},          {L"//a//b//", L"/a/b/"}, {L"/a/b/..", L"/a"}, {L"/a/b/../../..", L"/"},
    };
    for (const auto& [given, path] : resolved) EXPECT_EQ(text(resolvePath(given)), path) << text(given);

    FileName trailing = named(L"sub/");
    EXPECT_FALSE(trailing.isValid());
    EXPECT_EQ(text(trailing.getName()), L"");
    FileName empty = named(L"");
    EXPECT_FALSE(empty.isValid());
    EXPECT_EQ(text(empty.fullPathText()), L"");
    EXPECT_TRUE(env->fullPath(L"", L"").isNull());
    _eHndl<FilePath> root = env->fullPath(L"", L"/");
    ASSERT_FALSE(root.isNull());
    EXPECT_EQ(text(root->getDirectory()), L"/");
    EXPECT_EQ(text(root->getFile()), L"");
}

TEST_F(FileNames, TakeTheFileSystemsSpellingWhereItIsClear) {
    mkdir((dir / "Models").c_str(), 0755);
    dir.write("Models/Bank.XMI", "x");
    FileName other = named(L"models/bank.xmi");
    EXPECT_EQ(text(other.fullPathText()), full("/Models/Bank.XMI"));
    EXPECT_EQ(text(other.getExtension()), L"XMI");
    EXPECT_TRUE(other == named(L"MODELS/BANK.xmi"));
    EXPECT_EQ(rankOf(other, named(L"Models/Bank.XMI")), rankSame);

    // From the first missing component on, the path stays as given.
    EXPECT_EQ(text(named(L"MODELS/New/File.txt").fullPathText()), full("/Models/New/File.txt"));
    EXPECT_EQ(text(named(L"MODELS/new/file.txt").fullPathText()), full("/Models/new/file.txt"));

    // Two entries that differ in case only: no spelling is taken.
    dir.write("ab", "1");
    dir.write("AB", "2");
    EXPECT_EQ(text(named(L"Ab").fullPathText()), full("/Ab"));
    EXPECT_EQ(text(named(L"AB").fullPathText()), full("/AB"));
    EXPECT_EQ(text(correctCase(L"/")), L"/");

    // A trailing separator stays, also past a file; a path that exists as given stays as given.
    _eString base = fromPlatformText(dir.path());
    EXPECT_EQ(text(correctCase(base + L"/Models/Bank.XMI")), full("/Models/Bank.XMI"));
    EXPECT_EQ(text(correctCase(base + L"/models/")), full("/Models/"));
    EXPECT_EQ(text(correctCase(base + L"/Models/Bank.XMI/")), full("/Models/Bank.XMI/"));
    EXPECT_EQ(text(correctCase(base + L"/models/bank.xmi/x")), full("/Models/Bank.XMI/x"));
}

// A full path is the path resolved, spelled as the file system spells it, and resolved again,
// whatever units the name holds: ASCII, units that make sequences of their own (é, ÿ, a lone
// byte's unit), units past 255, a surrogate, and past the last code point.
TEST_F(FileNames, AFullPathIsResolvedSpelledAndResolvedAgain) {
    mkdir((dir / "Models").c_str(), 0755);
    dir.write("Models/Bank.XMI", "x");
    _eString base = fromPlatformText(dir.path() + "/");
    const std::wstring names[] = {L"models/bank.xmi", L"Models/New.tv", L"caf\u00e9.tv", L"models/\u00ff\u00c3\u00a9",
                                  L"x\u0080y", L"\u0100\u20ac.tv", std::wstring(1, wchar_t(0xD800)) + L"s.tv",
                                  std::wstring(1, wchar_t(0x110000)) + L"t.tv", L"./models/../models/bank.xmi",
                                  std::wstring(300, L'd') + L"/" + std::wstring(200, L'f') + L".tv"};
    for (const std::wstring& name : names) {
        _eString given(std::wstring_view{name});
        _eString expected = resolvePath(correctCase(resolvePath(base + given)));
        _eHndl<FilePath> actual = env->fullPath(base, given);
        ASSERT_FALSE(actual.isNull()) << text(given);
        EXPECT_EQ(text(actual->getDirectory() + actual->getFile()), text(expected)) << text(given);
        // The file is what follows the last separator.
        std::wstring whole = text(expected);
        EXPECT_EQ(text(actual->getFile()), whole.substr(whole.rfind(L'/') + 1)) << text(given);
    }
}

// A name in a directory whose listing is kept is spelled as a fresh look at the directory
// spells it: as given where it exists so, else the one entry equal to it ignoring ASCII case.
TEST_F(FileNames, AKeptListingSpellsAsTheDirectoryDoes) {
    for (const char* name : {"Bank.XMI", "ab", "AB", "\xC3\x89mile.tv", "Linked"}) dir.write(name, "x");
    ASSERT_EQ(symlink("Bank.XMI", (dir / "link").c_str()), 0);
    struct stat status;
    ASSERT_EQ(stat(dir.path().c_str(), &status), 0);
    timespec times[2] = {status.st_atim, status.st_mtim};
    times[1].tv_sec -= 3600;  // long settled: its listing is kept and trusted
    ASSERT_EQ(utimensat(AT_FDCWD, dir.path().c_str(), times, 0), 0);
    const struct {
        const char* asked;
        const char* spelled;
    } rows[] = {{"Bank.XMI", "Bank.XMI"}, {"bank.xmi", "Bank.XMI"}, {"BANK.xmi", "Bank.XMI"}, {"Ab", "Ab"},
                {"ab", "ab"},             {"missing", "missing"},   {"LINK", "link"},         {"linked", "Linked"},
                {"\xC3\x89MILE.TV", "\xC3\x89mile.tv"},             {"\xC3\xA9mile.tv", "\xC3\xA9mile.tv"}};
    for (const auto& row : rows) {
        _eString asked = fromPlatformText(dir / row.asked);
        DirectoryListings::clear();
        _eString first = correctCase(asked);
        _eString kept = correctCase(asked);
        EXPECT_EQ(text(first), text(fromPlatformText(dir / row.spelled))) << row.asked;
        EXPECT_EQ(text(kept), text(first)) << row.asked;
    }
}
