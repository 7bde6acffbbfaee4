// Text to and from the operating system. Text from outside holds bytes, one unit per byte; text
// goes out so that bytes stay bytes and every other character becomes UTF-8.
#pragma once

#include <string>
#include <string_view>

#include "runtime/Seq.h"

// A run of units from 128 to 255 that forms a valid UTF-8 sequence goes out as those bytes;
// every other unit as its UTF-8 sequence. So a name read from a UTF-8 file keeps its bytes, and
// a host's L"Kund\u00e9" becomes the UTF-8 "Kundé".
MB_API std::string toPlatformText(const _eString& text);
// Each byte becomes the unit of its value.
MB_API _eString fromPlatformText(std::string_view bytes);
// Appends the UTF-8 sequence of one unit.
void appendUtf8(std::string& out, std::uint32_t unit);
// Appends a unit of written text: up to 255 the byte of its value, above that its UTF-8 sequence.
inline void appendOutputUnit(std::string& out, std::uint32_t unit) {
    if (unit < 256)
        out.push_back(char(unit));
    else
        appendUtf8(out, unit);
}
// Appends every unit of `text` as `appendOutputUnit` does.
inline void appendOutputText(std::string& out, const _eString& text) {
    forEachRun(text, [&](const wchar_t* units, int length) {
        for (int i = 0; i < length; ++i) appendOutputUnit(out, std::uint32_t(units[i]));
    });
}
