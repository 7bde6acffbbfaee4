// A cycle-counting profiler. Instrumented sites own a `ProfileRecord` each and push a
// `ProfileFrame` per activation; start and stop settle the times of the frames under way, and
// the report gives each site's share of the measured time with and without its callees.
#pragma once

#include <cstdint>

#include "environment/EnvironmentEnums.h"
#include "runtime/Config.h"

class FileRef;

// One instrumented site, linked into the list for the life of the process.
struct ProfileRecord {
    std::int64_t total;    // ticks with everything called from the site
    std::int64_t self;     // ticks without what was called from the site
    ProfileRecord* next;
    const wchar_t* name;
    const wchar_t* file;
    std::uint32_t line;
};

// One activation of a site that is under way; `next` is the enclosing frame.
struct ProfileFrame {
    std::uint64_t start;       // when this frame's measuring began
    std::uint64_t savedTotal;  // the record's `total` at that moment
    std::uint64_t childTime;   // spent in nested frames since `start`
    ProfileRecord* record;
    ProfileFrame* next;
};

inline constexpr int failureTraceSlots = 50;

// The process-wide state, one instance, all zero at load but for the runtime's own record.
struct ProfilerState {
    ProfileFrame* activeFrames;
    ProfileRecord* records;
    bool running;
    std::uint64_t startTicks;
    std::int64_t totalTicks;
    wchar_t* failureTrace[failureTraceSlots];
};

ProfilerState& profilerState();

// The processor's cycle counter, read after a serialising instruction.
std::uint64_t readCycleCounter();

// Both are idempotent: a second start while running, or a stop while stopped, does nothing.
void startProfiler();
void stopProfiler();
// Stops the profiler and writes one line per site with a share, on `file` open for writing.
void writeProfile(FileRef& file, FileError::_eEnum& error);

// For instrumented code: link a site's record once, then bracket each activation.
MB_API void linkProfileRecord(ProfileRecord& record);
MB_API void enterProfileFrame(ProfileFrame& frame, ProfileRecord& record);
MB_API void leaveProfileFrame(ProfileFrame& frame);
