// Text gathered and written in large pieces comes out as the same bytes as written piece by piece.
#include <gtest/gtest.h>

#include <unistd.h>

#include <random>

#include "environment/Environment.h"
#include "environment/PlatformText.h"
#include "output/TextBatch.h"
#include "support/TempDir.h"

namespace {

_eHndl<FileRef> created(const Environment& env, const std::string& path) {
    return env.open(fromPlatformText(path), FileModes(FileModeType::create)).as<FileRef>();
}

}  // namespace

TEST(TextBatch, WritesTheSameBytesAsOneWriteOfEveryPiece) {
    TempDir dir;
    _eHndl<Environment> env(new Environment());
    std::mt19937 random(41);
    // Pieces of every length up to past the batch's room, built up unit by unit so that the
    // longer ones lie in several leaves; units ASCII and not, one piece empty.
    std::vector<_eString> pieces{_eString()};
    const wchar_t units[] = {L'a', L'\n', L' ', 0xE9, 0xFF, 0x20AC, L'z'};
    for (int length : {1, 31, 32, 33, 700, 4095, 4096, 4097, 9000, 3, 5000}) {
        _eString piece;
        for (int i = 0; i < length; ++i) piece.pushBack(units[random() % std::size(units)]);
        pieces.push_back(piece);
    }
    FileError::_eEnum batched = FileError::otherError;
    _eHndl<FileRef> out = created(*env, dir / "batched");
    {
        TextBatch batch(out, batched);
        batched = FileError::success;
        for (const _eString& piece : pieces) batch.put(piece);
        batch.flush();
    }
    FileError::_eEnum status;
    env->close(out, status);
    _eHndl<FileRef> plain = created(*env, dir / "plain");
    for (const _eString& piece : pieces) env->writeText(plain, piece, status);
    env->close(plain, status);
    EXPECT_EQ(batched, FileError::success);
    EXPECT_GT(dir.read("plain").size(), 20000u);
    EXPECT_EQ(dir.read("batched"), dir.read("plain"));
}

TEST(TextBatch, KeepsTheFirstFailure) {
    if (access("/dev/full", W_OK) != 0) GTEST_SKIP() << "no /dev/full";
    _eHndl<Environment> env(new Environment());
    _eHndl<FileRef> full = created(*env, "/dev/full");
    ASSERT_FALSE(full.isNull());
    FileError::_eEnum status = FileError::success;
    TextBatch batch(full, status);
    for (int i = 0; i < 20; ++i) batch.put(_eString(std::wstring(1000, L'x')));
    batch.flush();
    EXPECT_EQ(status, FileError::writeError);
    // A later failure of another kind leaves the first in place.
    FileError::_eEnum closed;
    env->close(full, closed);
    batch.put(std::wstring_view(L"y"));
    batch.flush();
    EXPECT_EQ(status, FileError::writeError);
}
