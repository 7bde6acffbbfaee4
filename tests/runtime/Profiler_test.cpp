// The profiler's start and stop, the time of nested frames, the report, and the failure trace.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cwchar>
#include <string>

#include "environment/Environment.h"
#include "environment/PlatformText.h"
#include "runtime/Failure.h"
#include "runtime/Profiler.h"
#include "support/TempDir.h"

namespace {

// Keeps the process-wide state as it was before the test: the tests link records and push
// frames that live on their own stack.
class Profiling : public testing::Test {
protected:
    void SetUp() override { saved = profilerState(); }
    void TearDown() override {
        ProfilerState& state = profilerState();
        state.activeFrames = saved.activeFrames;
        state.records = saved.records;
        state.running = saved.running;
        state.startTicks = saved.startTicks;
        state.totalTicks = saved.totalTicks;
        // Whatever the last test linked behind the runtime's own record goes again.
        for (ProfileRecord* record = state.records; record != nullptr; record = record->next)
            if (record->next == added) record->next = nullptr;
    }

    // Spends some processor time that the optimiser can't remove.
    static void spin() {
        volatile std::uint64_t sink = 0;
        for (int i = 0; i < 20000; ++i) sink = sink + std::uint64_t(i);
    }

    ProfileRecord record(const wchar_t* name, const wchar_t* file = L"site.cpp", std::uint32_t line = 1) {
        return ProfileRecord{0, 0, nullptr, name, file, line};
    }
    void link(ProfileRecord& site) {
        if (added == nullptr) added = &site;
        linkProfileRecord(site);
    }

    // Writes the report into a fresh file and gives its bytes.
    std::string report(FileError::_eEnum& error) {
        _eHndl<FileRef> file =
            env->open(fromPlatformText(dir / "profile.txt"), FileModes(FileModeType::create)).as<FileRef>();
        EXPECT_FALSE(file.isNull());
        env->writeProfile(file, error);
        FileError::_eEnum closed;
        env->close(file, closed);
        return dir.read("profile.txt");
    }

    ProfilerState saved{};
    ProfileRecord* added = nullptr;
    TempDir dir;
    _eHndl<Environment> env{new Environment()};
};

}  // namespace

TEST_F(Profiling, TheRuntimesOwnRecordAloneIsListed) {
    const ProfileRecord* own = profilerState().records;
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(std::wstring(own->name), L"bld");
    EXPECT_EQ(own->line, 0u);
    EXPECT_EQ(own->next, nullptr);
    EXPECT_EQ(profilerState().activeFrames, nullptr);
}

TEST_F(Profiling, StartAndStopActOnceEach) {
    ProfilerState& state = profilerState();
    ASSERT_FALSE(state.running);
    std::int64_t before = state.totalTicks;
    env->startProfiler();
    std::uint64_t started = state.startTicks;
    spin();
    startProfiler();
    EXPECT_TRUE(state.running);
    EXPECT_EQ(state.startTicks, started);

    stopProfiler();
    std::int64_t after = state.totalTicks;
    EXPECT_FALSE(state.running);
    EXPECT_GT(after, before);
    spin();
    stopProfiler();
    EXPECT_EQ(state.totalTicks, after);

    // A later run adds to the total.
    startProfiler();
    spin();
    stopProfiler();
    EXPECT_GT(state.totalTicks, after);
}

TEST_F(Profiling, NestedFramesSplitSelfFromTotal) {
    ProfileRecord outer = record(L"outer"), inner = record(L"inner");
    link(outer);
    link(inner);
    startProfiler();
    ProfileFrame outerFrame, innerFrame;
    enterProfileFrame(outerFrame, outer);
    spin();
    enterProfileFrame(innerFrame, inner);
    spin();
    leaveProfileFrame(innerFrame);
    spin();
    leaveProfileFrame(outerFrame);
    stopProfiler();

    EXPECT_GT(inner.total, 0);
    EXPECT_EQ(inner.self, inner.total);
    EXPECT_GT(outer.total, inner.total);
    EXPECT_EQ(outer.self, outer.total - inner.total);
    EXPECT_EQ(profilerState().activeFrames, nullptr);
}

TEST_F(Profiling, StopSettlesTheFramesUnderWay) {
    ProfileRecord outer = record(L"outer"), inner = record(L"inner");
    link(outer);
    link(inner);
    ProfileFrame outerFrame, innerFrame;
    // Frames pushed before the start are measured from the start.
    enterProfileFrame(outerFrame, outer);
    spin();
    startProfiler();
    spin();
    enterProfileFrame(innerFrame, inner);
    spin();
    stopProfiler();
    EXPECT_GT(inner.total, 0);
    EXPECT_EQ(inner.self, inner.total);
    EXPECT_GT(outer.total, inner.total);
    EXPECT_EQ(outer.self, outer.total - inner.total);

    // Leaving while stopped changes nothing; a restart measures afresh from its own start.
    std::int64_t innerTotal = inner.total, outerTotal = outer.total, outerSelf = outer.self;
    leaveProfileFrame(innerFrame);
    EXPECT_EQ(inner.total, innerTotal);
    startProfiler();
    EXPECT_EQ(outerFrame.savedTotal, std::uint64_t(outerTotal));
    EXPECT_EQ(outerFrame.childTime, 0u);
    spin();
    leaveProfileFrame(outerFrame);
    stopProfiler();
    EXPECT_GT(outer.total, outerTotal);
    EXPECT_EQ(outer.self - outerSelf, outer.total - outerTotal);
}

TEST_F(Profiling, ASiteActiveTwiceIsTimedByItsOutermostFrame) {
    ProfileRecord site = record(L"recursive");
    link(site);
    startProfiler();
    ProfileFrame first, second;
    enterProfileFrame(first, site);
    spin();
    enterProfileFrame(second, site);
    spin();
    leaveProfileFrame(second);
    std::int64_t innerOnly = site.total;
    leaveProfileFrame(first);
    stopProfiler();
    EXPECT_GT(site.total, innerOnly);
    // The outer activation's total replaces the inner one's instead of adding to it.
    EXPECT_EQ(site.self, site.total);
}

TEST_F(Profiling, ReportLinesShowSharesInHundredths) {
    ProfilerState& state = profilerState();
    ProfileRecord tiny = record(L"tiny", L"tiny.cpp", 3);
    ProfileRecord all = record(L"a_site_name_that_is_longer_than_thirty_two_units", L"Parser.cpp", 404);
    ProfileRecord five = record(L"site", L"x.cpp", 7);
    tiny.total = 99;  // below one hundredth of a percent, and first in the list
    all.total = 1000000;
    all.self = 50000;
    five.total = 50000;
    five.self = 1;
    tiny.next = &all;
    all.next = &five;
    five.next = state.records;
    state.records = &tiny;
    state.totalTicks = 1000000;

    FileError::_eEnum error = FileError::otherError;
    std::string text = report(error);
    EXPECT_EQ(error, FileError::success);
    EXPECT_EQ(text,
              "a_site_name_that_is_longer_than_ 100.00   5.00  Parser.cpp(404)\n"
              "site                               5.00   0.00  x.cpp(7)\n");
}

TEST_F(Profiling, ShortOrEmptyRuns) {
    ProfilerState& state = profilerState();
    FileError::_eEnum error = FileError::otherError;
    state.totalTicks = 1234;
    EXPECT_EQ(report(error), "Unable to profile (total profiling time of 1234 is too low)\n");
    EXPECT_EQ(error, FileError::success);

    // Enough time, but no site has a share: the report is empty.
    state.totalTicks = 10000;
    error = FileError::otherError;
    EXPECT_EQ(report(error), "");
    EXPECT_EQ(error, FileError::success);
}

TEST_F(Profiling, AFailedWriteIsReported) {
    dir.write("readonly.txt", "");
    _eHndl<FileRef> file =
        env->open(fromPlatformText(dir / "readonly.txt"), FileModes(FileModeType::read)).as<FileRef>();
    ASSERT_FALSE(file.isNull());
    ProfilerState& state = profilerState();
    FileError::_eEnum error = FileError::success;
    state.totalTicks = 5;
    env->writeProfile(file, error);
    EXPECT_EQ(error, FileError::writeError);

    ProfileRecord busy = record(L"busy");
    busy.total = 20000;
    link(busy);
    state.totalTicks = 20000;
    error = FileError::success;
    env->writeProfile(file, error);
    EXPECT_EQ(error, FileError::writeError);
    FileError::_eEnum closed;
    env->close(file, closed);
}

TEST_F(Profiling, FailuresRecordTheActiveFrames) {
    ProfilerState& state = profilerState();
    _xNoChoice(L"Btree_2", 194);
    for (const wchar_t* slot : state.failureTrace) EXPECT_EQ(slot, nullptr);

    ProfileRecord outer = record(L"outer", L"Outer.cpp", 10), inner = record(L"inner", L"Inner.cpp", 20);
    ProfileFrame outerFrame, innerFrame;
    enterProfileFrame(outerFrame, outer);
    enterProfileFrame(innerFrame, inner);
    _xCannotHappen(L"Wrappers", 55, _xAbsurdMethod);
    ASSERT_NE(state.failureTrace[0], nullptr);
    ASSERT_NE(state.failureTrace[1], nullptr);
    EXPECT_EQ(std::wstring(state.failureTrace[0]), L"inner (Inner.cpp, line 20)");
    EXPECT_EQ(std::wstring(state.failureTrace[1]), L"outer (Outer.cpp, line 10)");
    EXPECT_EQ(state.failureTrace[2], nullptr);

    // A chain deeper than the table fills every slot with the innermost frames.
    ProfileFrame deep[60];
    for (ProfileFrame& frame : deep) enterProfileFrame(frame, outer);
    _xNoChoice(L"Generated/Parser", 404);
    for (const wchar_t* slot : state.failureTrace) {
        ASSERT_NE(slot, nullptr);
        EXPECT_EQ(std::wstring(slot), L"outer (Outer.cpp, line 10)");
    }
    for (int i = 59; i >= 0; --i) leaveProfileFrame(deep[i]);
    leaveProfileFrame(innerFrame);
    leaveProfileFrame(outerFrame);
    _xNoChoice(L"Btree_2", 194);
    EXPECT_EQ(state.failureTrace[0], nullptr);
}
