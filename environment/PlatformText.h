// Text to and from the operating system. Text from outside holds bytes, one unit per byte; text
// goes out so that bytes stay bytes and every other character becomes UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "runtime/Seq.h"

// A run of units from 128 to 255 that forms a valid UTF-8 sequence goes out as those bytes;
// every other unit as its UTF-8 sequence. So a name read from a UTF-8 file keeps its bytes, and
// a host's L"Kund\u00e9" becomes the UTF-8 "Kundé".
MB_API std::string toPlatformText(const _eString& text);
// Each byte becomes the unit of its value.
MB_API _eString fromPlatformText(std::string_view bytes);
// Puts the UTF-8 sequence of one unit at `out`; gives its length, at most 4.
inline std::size_t putUtf8(char* out, std::uint32_t unit) {
    if (unit < 0x80) {
        out[0] = char(unit);
        return 1;
    }
    if (unit < 0x800) {
        out[0] = char(0xC0 | (unit >> 6));
        out[1] = char(0x80 | (unit & 0x3F));
        return 2;
    }
    if (unit < 0x10000) {
        out[0] = char(0xE0 | (unit >> 12));
        out[1] = char(0x80 | ((unit >> 6) & 0x3F));
        out[2] = char(0x80 | (unit & 0x3F));
        return 3;
    }
    out[0] = char(0xF0 | ((unit >> 18) & 0x07));
    out[1] = char(0x80 | ((unit >> 12) & 0x3F));
    out[2] = char(0x80 | ((unit >> 6) & 0x3F));
    out[3] = char(0x80 | (unit & 0x3F));
    return 4;
}
// Appends the UTF-8 sequence of one unit.
inline void appendUtf8(std::string& out, std::uint32_t unit) {
    char bytes[4];
    out.append(bytes, putUtf8(bytes, unit));
}
// Puts the bytes of a unit of written text at `out`: up to 255 the byte of its value, above
// that its UTF-8 sequence. Gives their number, at most 4.
inline std::size_t putOutputUnit(char* out, std::uint32_t unit) {
    if (unit < 256) {
        out[0] = char(unit);
        return 1;
    }
    return putUtf8(out, unit);
}
// The number of bytes `putOutputUnit` puts for `unit`.
inline std::int32_t outputUnitBytes(std::uint32_t unit) {
    return unit < 256 ? 1 : unit < 0x800 ? 2 : unit < 0x10000 ? 3 : 4;
}
// Appends a unit of written text as `putOutputUnit` puts it.
inline void appendOutputUnit(std::string& out, std::uint32_t unit) {
    char bytes[4];
    out.append(bytes, putOutputUnit(bytes, unit));
}
