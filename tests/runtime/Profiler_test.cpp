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

TEST_F(Profiling, FramesSplitSelfFromTotalWhileTheProfilerRuns) {
    ProfilerState& state = profilerState();
    ASSERT_FALSE(state.running);
    ProfileRecord outer = record(L"outer"), inner = record(L"inner"), twice = record(L"recursive");
    link(outer);
    link(inner);
    link(twice);
    ProfileFrame outerFrame, innerFrame;
    // A frame pushed before the start is measured from the start; a second start is ignored.
    enterProfileFrame(outerFrame, outer);
    env->startProfiler();
    std::uint64_t started = state.startTicks;
    spin();
    startProfiler();
    EXPECT_EQ(state.startTicks, started);
    enterProfileFrame(innerFrame, inner);
    spin();
    leaveProfileFrame(innerFrame);
    spin();
    leaveProfileFrame(outerFrame);
    EXPECT_GT(inner.total, 0);
    EXPECT_EQ(inner.self, inner.total);
    EXPECT_GT(outer.total, inner.total);
    EXPECT_EQ(outer.self, outer.total - inner.total);
    EXPECT_EQ(state.activeFrames, nullptr);

    // A site active twice is timed by its outermost frame, not by both.
    ProfileFrame first, second;
    enterProfileFrame(first, twice);
    enterProfileFrame(second, twice);
    spin();
    leaveProfileFrame(second);
    std::int64_t innerOnly = twice.total;
    spin();
    leaveProfileFrame(first);
    EXPECT_GT(twice.total, innerOnly);
    EXPECT_EQ(twice.self, twice.total);

    // A stop settles the frames under way; leaving while stopped changes nothing.
    enterProfileFrame(outerFrame, outer);
    std::int64_t outerTotal = outer.total;
    spin();
    stopProfiler();
    std::int64_t total = state.totalTicks;
    EXPECT_FALSE(state.running);
    EXPECT_GT(outer.total, outerTotal);
    outerTotal = outer.total;
    spin();
    stopProfiler();
    leaveProfileFrame(outerFrame);
    EXPECT_EQ(state.totalTicks, total);
    EXPECT_EQ(outer.total, outerTotal);
    // A later run adds to the total.
    startProfiler();
    spin();
    stopProfiler();
    EXPECT_GT(state.totalTicks, total);
}

TEST_F(Profiling, ReportLinesShowSharesInHundredths) {
    ProfilerState& state = profilerState();
    FileError::_eEnum error = FileError::otherError;
    state.totalTicks = 1234;
    EXPECT_EQ(report(error), "Unable to profile (total profiling time of 1234 is too low)\n");
    EXPECT_EQ(error, FileError::success);
    state.totalTicks = 10000;  // enough time, but no site has a share: the report is empty
    EXPECT_EQ(report(error), "");

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

    error = FileError::otherError;
    std::string text = report(error);
    EXPECT_EQ(error, FileError::success);
    EXPECT_EQ(text,
              "a_site_name_that_is_longer_than_ 100.00   5.00  Parser.cpp(404)\n"
              "site                               5.00   0.00  x.cpp(7)\n");
}

TEST_F(Profiling, FailuresRecordTheInnermostActiveFrames) {
    ProfilerState& state = profilerState();
    ProfileRecord outer = record(L"outer", L"Outer.cpp", 10), inner = record(L"inner", L"Inner.cpp", 20);
    ProfileFrame outerFrame, innerFrame, deep[60];
    enterProfileFrame(outerFrame, outer);
    enterProfileFrame(innerFrame, inner);
    _xCannotHappen(L"Wrappers", 55, _xAbsurdMethod);
    ASSERT_NE(state.failureTrace[1], nullptr);
    EXPECT_EQ(std::wstring(state.failureTrace[0]), L"inner (Inner.cpp, line 20)");
    EXPECT_EQ(std::wstring(state.failureTrace[1]), L"outer (Outer.cpp, line 10)");
    EXPECT_EQ(state.failureTrace[2], nullptr);
    // A chain deeper than the table fills every slot with the innermost frames.
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
