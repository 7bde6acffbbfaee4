#include "runtime/Failure.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

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

}  // namespace

void _eFormat::format() const {}

_eFormat::~_eFormat() = default;

_xCeption::_xCeption(const wchar_t* file, unsigned line) {
    // An attached debugger stops here with the raising place in `file` and `line`.
    if (debuggerAttached()) std::raise(SIGTRAP);
    (void)file;
    (void)line;
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
