#include "runtime/Failure.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>

#include "runtime/Profiler.h"

namespace {

// True when a debugger traces this process.
bool debuggerAttached() {
#if defined(__linux__)
    std::FILE* status = std::fopen("/proc/self/status", "r");
    if (status == nullptr) return false;
    char line[256];
    bool traced = false;
    while (std::fgets(line, sizeof line, status) != nullptr) {
        if (std::strncmp(line, "TracerPid:", 10) == 0) {
            traced = std::atoi(line + 10) != 0;
            break;
        }
    }
    std::fclose(status);
    return traced;
#else
    return false;
#endif
}

// Slot by slot, the active frames from the innermost as "name (file, line N)", then nulls.
// A slot's earlier text is released when the slot takes a new one: the table holds the only pointer.
void recordFailureTrace() {
    ProfilerState& profiler = profilerState();
    const ProfileFrame* frame = profiler.activeFrames;
    for (wchar_t*& slot : profiler.failureTrace) {
        std::free(slot);
        slot = nullptr;
        if (frame == nullptr) continue;
        const ProfileRecord& record = *frame->record;
        const wchar_t* name = record.name != nullptr ? record.name : L"";
        const wchar_t* file = record.file != nullptr ? record.file : L"";
        std::size_t room = std::wcslen(name) + std::wcslen(file) + 34;
        slot = static_cast<wchar_t*>(std::malloc(room * sizeof(wchar_t)));
        if (slot != nullptr) std::swprintf(slot, room, L"%ls (%ls, line %u)", name, file, unsigned(record.line));
        frame = frame->next;
    }
}

}  // namespace

void _eFormat::format() const {}

_eFormat::~_eFormat() = default;

_xCeption::_xCeption(const wchar_t* file, unsigned line) {
    // An attached debugger stops here with the raising place in `file` and `line`.
    if (debuggerAttached()) std::raise(SIGTRAP);
    (void)file;
    (void)line;
    recordFailureTrace();
}

const char* _xCeption::what() const noexcept {
    wchar_t text[sizeof whatText];
    wchar_t* pos = text;
    unsigned remaining = sizeof whatText - 1;
    *pos = L'\0';
    writeSummary(pos, remaining);
    writeDetail(pos, remaining);
    // The summary's line end joins it to the detail; the texts are ASCII.
    std::size_t out = 0;
    for (const wchar_t* in = text; *in != L'\0' && out + 3 < sizeof whatText; ++in) {
        if (*in == L'\n') {
            if (in[1] != L'\0') whatText[out++] = ':', whatText[out++] = ' ';
        } else {
            whatText[out++] = *in < 128 ? char(*in) : '?';
        }
    }
    whatText[out] = '\0';
    return whatText;
}

void _xDebug::writeDetail(wchar_t*&, unsigned&) const {}

void _xNoChoice::writeSummary(wchar_t*& pos, unsigned& remaining) const {
    appendBounded(pos, L"Choice expression failed to select option\n", remaining);
}

_xCannotHappen::_xCannotHappen(const wchar_t* file, unsigned line, const wchar_t* detail)
    : _xCeption(file, line), detail(detail) {}

void _xCannotHappen::writeSummary(wchar_t*& pos, unsigned& remaining) const {
    appendBounded(pos, L"runtime-system error\n", remaining);
}

void _xCannotHappen::writeDetail(wchar_t*& pos, unsigned& remaining) const {
    appendBounded(pos, detail, remaining);
}

void appendBounded(wchar_t*& pos, const wchar_t* text, unsigned& remaining) {
    while (remaining != 0 && *text != L'\0') {
        *pos++ = *text++;
        --remaining;
    }
    *pos = L'\0';
}

void raiseNoChoice(const _xPlace& place) {
    throw _xNoChoice(place.file, place.line);
}

void raiseCannotHappen(const _xPlace& place, const wchar_t* detail) {
    throw _xCannotHappen(place.file, place.line, detail);
}
