#include "runtime/Profiler.h"

#include <cstdio>
#include <cwchar>
#include <string>

#include "environment/FileRef.h"
#include "environment/PlatformText.h"

#if defined(__x86_64__) || defined(__i386__)
#include <cpuid.h>
#include <x86intrin.h>
#else
#include <ctime>
#endif

namespace {

// The runtime's own site. Nothing pushes a frame for it, so its share stays 0.
ProfileRecord runtimeRecord{0, 0, nullptr, L"bld", L"", 0};

// Constant-initialised, so it holds its values before any code of the library runs.
ProfilerState state{nullptr, &runtimeRecord, false, 0, 0, {}};

// Report lines are at most the name's 32 columns, two shares, and the source position.
std::wstring formatLine(const ProfileRecord& record, std::int32_t totalShare, std::int32_t selfShare) {
    const wchar_t* file = record.file != nullptr ? record.file : L"";
    std::size_t room = 96 + std::wcslen(file);
    std::wstring line(room, L'\0');
    int written = std::swprintf(line.data(), room, L"%-32.32ls %3d.%02d %3d.%02d  %ls(%d)\n",
                                record.name != nullptr ? record.name : L"", totalShare / 100, totalShare % 100,
                                selfShare / 100, selfShare % 100, file, int(record.line));
    line.resize(written < 0 ? 0 : std::size_t(written));
    return line;
}

// Writes the units as the environment writes text; gives the number of bytes written.
std::size_t writeUnits(FileRef& file, const std::wstring& text) {
    std::string bytes;
    for (wchar_t unit : text) appendOutputUnit(bytes, std::uint32_t(unit));
    return std::fwrite(bytes.data(), 1, bytes.size(), file.getStream());
}

}  // namespace

ProfilerState& profilerState() { return state; }

std::uint64_t readCycleCounter() {
#if defined(__x86_64__) || defined(__i386__)
    unsigned a, b, c, d;
    __cpuid(0, a, b, c, d);
    return __rdtsc();
#else
    std::timespec now;
    std::timespec_get(&now, TIME_UTC);
    return std::uint64_t(now.tv_sec) * 1000000000u + std::uint64_t(now.tv_nsec);
#endif
}

void startProfiler() {
    if (state.running) return;
    std::uint64_t now = readCycleCounter();
    for (ProfileFrame* frame = state.activeFrames; frame != nullptr; frame = frame->next) {
        frame->start = now;
        frame->savedTotal = std::uint64_t(frame->record->total);
        frame->childTime = 0;
    }
    state.startTicks = now;
    state.running = true;
}

namespace {

// Settles one frame at `now`: the innermost first, so its `childTime` is complete by its turn.
void settleFrame(ProfileFrame& frame, std::uint64_t now) {
    std::uint64_t elapsed = now - frame.start;
    frame.record->total = std::int64_t(frame.savedTotal + elapsed);
    if (frame.next != nullptr) frame.next->childTime += elapsed;
    frame.record->self += std::int64_t(elapsed - frame.childTime);
}

}  // namespace

void stopProfiler() {
    if (!state.running) return;
    std::uint64_t now = readCycleCounter();
    for (ProfileFrame* frame = state.activeFrames; frame != nullptr; frame = frame->next) settleFrame(*frame, now);
    state.running = false;
    state.totalTicks += std::int64_t(now - state.startTicks);
}

void writeProfile(FileRef& file, FileError::_eEnum& error) {
    stopProfiler();
    if (file.getStream() == nullptr) {
        error = FileError::fileNotOpen;
        return;
    }
    if (!file.isLastWrite()) file.turnTo(true);
    if (state.totalTicks < 10000) {
        int count = std::fprintf(file.getStream(), "Unable to profile (total profiling time of %d is too low)\n",
                                 std::int32_t(std::uint32_t(state.totalTicks)));
        error = count > 0 ? FileError::success : FileError::writeError;
        return;
    }
    std::int64_t divisor = state.totalTicks / 10000;
    error = FileError::success;
    for (ProfileRecord* record = state.records; record != nullptr && error == FileError::success;
         record = record->next) {
        auto totalShare = std::int32_t(record->total / divisor);
        auto selfShare = std::int32_t(record->self / divisor);
        if (totalShare == 0) continue;
        if (writeUnits(file, formatLine(*record, totalShare, selfShare)) < 1) error = FileError::writeError;
    }
}

void linkProfileRecord(ProfileRecord& record) {
    ProfileRecord** last = &state.records;
    while (*last != nullptr) last = &(*last)->next;
    record.next = nullptr;
    *last = &record;
}

void enterProfileFrame(ProfileFrame& frame, ProfileRecord& record) {
    frame.record = &record;
    frame.next = state.activeFrames;
    frame.start = state.running ? readCycleCounter() : 0;
    frame.savedTotal = std::uint64_t(record.total);
    frame.childTime = 0;
    state.activeFrames = &frame;
}

void leaveProfileFrame(ProfileFrame& frame) {
    if (state.running) settleFrame(frame, readCycleCounter());
    state.activeFrames = frame.next;
}
