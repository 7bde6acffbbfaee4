// Files through the environment: modes, bytes, direction changes, sizes and failures.
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "environment/Environment.h"
#include "environment/PlatformText.h"
#include "support/TempDir.h"

namespace {

using Modes = FileModes;
const FileModeType::_eEnum Read = FileModeType::read;
const FileModeType::_eEnum Create = FileModeType::create;
const FileModeType::_eEnum Append = FileModeType::append;
const FileModeType::_eEnum Text = FileModeType::text;

class EnvironmentFiles : public testing::Test {
protected:
    _eString path(const std::string& name) const { return fromPlatformText(dir / name); }

    _eHndl<FileRef> openOk(const std::string& name, const Modes& modes) {
        _eUnion result = env->open(path(name), modes);
        EXPECT_TRUE(result.holds<FileRef>()) << "open " << name;
        return result.as<FileRef>();
    }
    FileError::_eEnum openError(const std::string& name, const Modes& modes) {
        _eUnion result = env->open(path(name), modes);
        if (!result.holds<FileError::_eWrapper>()) return FileError::success;
        return result.as<FileError::_eWrapper>()->get();
    }

    std::string readAll(const _eHndl<FileRef>& file) {
        std::string out;
        wchar_t unit = 0;
        FileError::_eEnum error;
        for (env->readByte(file, unit, error); error == FileError::success; env->readByte(file, unit, error))
            out.push_back(char(unit));
        EXPECT_EQ(error, FileError::endOfFile);
        return out;
    }
    void closeOk(const _eHndl<FileRef>& file) {
        FileError::_eEnum error;
        env->close(file, error);
        EXPECT_EQ(error, FileError::success);
    }

    TempDir dir;
    _eHndl<Environment> env{new Environment()};
};

}  // namespace

TEST_F(EnvironmentFiles, CreateTruncatesAndAppendKeepsAndExtends) {
    dir.write("a.txt", "old content");
    auto file = openOk("a.txt", Modes(Create));
    FileError::_eEnum error;
    env->writeText(file, L"new", error);
    EXPECT_EQ(error, FileError::success);
    closeOk(file);
    EXPECT_EQ(dir.read("a.txt"), "new");

    file = openOk("a.txt", Modes(Append));
    env->writeText(file, L"+more", error);
    closeOk(file);
    EXPECT_EQ(dir.read("a.txt"), "new+more");

    // Append on a missing file creates it.
    file = openOk("fresh.txt", Modes(Append, Text));
    env->writeText(file, L"line\n", error);
    closeOk(file);
    EXPECT_EQ(dir.read("fresh.txt"), "line\n");
}

// Units up to 255 are written as bytes, larger ones as UTF-8, in one text however long (the
// sequences of several bytes fall across every place in the writer's pieces); every byte reads
// back as its unit.
TEST_F(EnvironmentFiles, EveryByteRoundTripsAndEndOfFileRepeats) {
    std::vector<wchar_t> units;
    std::string expected;
    for (int round = 0; round < 9; ++round) {
        for (int u = 0; u < 256; ++u) units.push_back(wchar_t(u)), expected.push_back(char(u));
        units.push_back(wchar_t(0x20AC));
        expected += "\xE2\x82\xAC";
        units.insert(units.end(), std::size_t(round), wchar_t(0x1F600));
        for (int k = 0; k < round; ++k) expected += "\xF0\x9F\x98\x80";
    }
    auto out = openOk("bytes.bin", Modes(Create));
    FileError::_eEnum error;
    wchar_t unit = L'?';
    env->readByte(out, unit, error);
    EXPECT_EQ(error, FileError::attribError);  // a file opened only for writing
    env->writeText(out, _eString(int(units.size()), units.data()), error);
    EXPECT_EQ(error, FileError::success);
    closeOk(out);
    auto file = openOk("bytes.bin", Modes(Read));
    std::string bytes = readAll(file);  // up to the end of the file
    EXPECT_EQ(bytes, expected);
    unit = L'?';
    env->readByte(file, unit, error);  // the end repeats and leaves the unit alone
    EXPECT_EQ(error, FileError::endOfFile);
    EXPECT_EQ(unit, L'?');
    closeOk(file);
    env->readByte(file, unit, error);
    EXPECT_EQ(error, FileError::fileNotOpen);
}

// Text to the operating system: runs of byte units that form UTF-8 stay those bytes, every
// other unit becomes its UTF-8 sequence; bytes coming back are units of their value.
TEST(PlatformText, BytesStayBytesAndOtherUnitsBecomeUtf8) {
    struct Row {
        std::wstring units;
        std::string bytes;
    };
    const Row rows[] = {
        {L"plain/a.tv", "plain/a.tv"},
        {L"Kund\u00C3\u00A9", "Kund\xC3\xA9"},           // a UTF-8 name read from a file: not encoded twice
        {L"Kund\u00E9", "Kund\xC3\xA9"},                  // a host's wide literal
        {L"\u00C3", "\xC3\x83"},                           // a lead byte without its continuation
        {L"\u00C3\u00A9\u00E9", "\xC3\xA9\xC3\xA9"},      // a sequence, then a lone byte
        {L"\u00E2\u0082\u00AC\u20AC", "\xE2\x82\xAC\xE2\x82\xAC"},
        {L"\u00C0\u0080", "\xC3\x80\xC2\x80"},             // an overlong form is no sequence
        {L"\u00E2\u0082", "\xC3\xA2\xC2\x82"},             // a sequence cut short
    };
    for (const Row& row : rows) {
        EXPECT_EQ(toPlatformText(_eString(std::wstring_view(row.units))), row.bytes) << row.bytes;
    }
    EXPECT_EQ(toWString(fromPlatformText("Kund\xC3\xA9")), L"Kund\u00C3\u00A9");
    EXPECT_EQ(toPlatformText(fromPlatformText("\xFF\xC3\xA9\x80")), "\xC3\xBF\xC3\xA9\xC2\x80");
}

TEST_F(EnvironmentFiles, ReadAfterWriteOnOneFileAndSizeKeepsThePosition) {
    auto file = openOk("rw.bin", Modes(Create, Read));
    FileError::_eEnum error;
    env->writeText(file, L"abcdef", error);
    std::int32_t size = -1;
    env->fileSize(file, size, error);
    EXPECT_EQ(error, FileError::success);
    EXPECT_EQ(size, 6);
    std::fseek(file->getStream(), 2, SEEK_SET);
    wchar_t unit;
    env->readByte(file, unit, error);
    EXPECT_EQ(error, FileError::success);
    EXPECT_EQ(unit, L'c');
    env->fileSize(file, size, error);
    EXPECT_EQ(size, 6);
    env->readByte(file, unit, error);
    EXPECT_EQ(unit, L'd');
    env->writeText(file, L"X", error);
    EXPECT_EQ(error, FileError::success);
    closeOk(file);
    EXPECT_EQ(dir.read("rw.bin"), "abcdXf");
}

TEST_F(EnvironmentFiles, OpenFailuresMapToFileErrors) {
    EXPECT_EQ(openError("missing.txt", Modes(Read)), FileError::fileNotFound);
    EXPECT_EQ(openError("no/such/dir.txt", Modes(Create)), FileError::fileNotFound);
    dir.write("locked.txt", "x");
    chmod((dir / "locked.txt").c_str(), 0444);
    // Permission bits don't stop the super-user; a kernel file without write access does.
    std::string target = geteuid() != 0 ? dir / "locked.txt" : "/sys/kernel/notes";
    if (access(target.c_str(), F_OK) == 0) {
        _eUnion locked = env->open(fromPlatformText(target), Modes(Create));
        ASSERT_TRUE(locked.holds<FileError::_eWrapper>());
        EXPECT_EQ(locked.as<FileError::_eWrapper>()->get(), FileError::attribError);
    }
    // A directory opens for reading on this platform; writing it is refused as other trouble.
    mkdir((dir / "sub").c_str(), 0755);
    EXPECT_EQ(openError("sub", Modes(Create)), FileError::otherError);
    EXPECT_TRUE(env->fileExists(path("locked.txt")));
    EXPECT_FALSE(env->fileExists(path("missing.txt")));
}

TEST_F(EnvironmentFiles, StatsOfFilesDirectoriesAndMissingPaths) {
    dir.write("f.txt", "12345");
    _eUnion f = env->stats(path("f.txt"));
    ASSERT_TRUE(f.holds<FileStats>());
    auto stats = f.as<FileStats>();
    EXPECT_EQ(stats->getSize(), 5);
    EXPECT_TRUE(stats->getAttributes().contains(FileAttribute::read));
    EXPECT_TRUE(stats->getAttributes().contains(FileAttribute::write));
    EXPECT_FALSE(stats->getAttributes().contains(FileAttribute::directory));
    EXPECT_GE(stats->getLastModified()->getYear(), 2020);

    _eUnion d = env->stats(fromPlatformText(dir.path() + "/"));
    ASSERT_TRUE(d.holds<FileStats>());
    EXPECT_EQ(d.as<FileStats>()->getSize(), 0);
    EXPECT_TRUE(d.as<FileStats>()->getAttributes().contains(FileAttribute::directory));
    EXPECT_TRUE(env->stats(L"/").holds<FileStats>());

    _eUnion trailing = env->stats(path("f.txt/"));
    ASSERT_TRUE(trailing.holds<FileError::_eWrapper>());
    EXPECT_EQ(trailing.as<FileError::_eWrapper>()->get(), FileError::directoryNotFound);
    _eUnion missing = env->stats(path("nothing"));
    ASSERT_TRUE(missing.holds<FileError::_eWrapper>());
    EXPECT_EQ(missing.as<FileError::_eWrapper>()->get(), FileError::fileNotFound);
}
