// Text to and from the operating system: path names go out as UTF-8, one code point per unit.
#pragma once

#include <string>
#include <string_view>

#include "runtime/Seq.h"

// Units up to 0x7F are one byte each; larger units take their UTF-8 sequence.
std::string toPlatformText(const _eString& text);
// Valid UTF-8 sequences become their code points; any other byte becomes the unit of its value.
_eString fromPlatformText(std::string_view bytes);
// Appends the UTF-8 sequence of one unit.
void appendUtf8(std::string& out, std::uint32_t unit);
// Appends a unit of written text: up to 255 the byte of its value, above that its UTF-8 sequence.
inline void appendOutputUnit(std::string& out, std::uint32_t unit) {
    if (unit < 256)
        out.push_back(char(unit));
    else
        appendUtf8(out, unit);
}
