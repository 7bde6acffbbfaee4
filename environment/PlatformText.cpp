#include "environment/PlatformText.h"

#include <vector>

namespace {

// The length of the valid UTF-8 sequence at `at`, or 0 if there is none.
std::size_t sequenceLength(std::string_view bytes, std::size_t at, std::uint32_t& unit) {
    auto byte = [&](std::size_t i) { return std::uint32_t(static_cast<unsigned char>(bytes[i])); };
    std::uint32_t lead = byte(at);
    std::size_t length;
    std::uint32_t minimum;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2, minimum = 0x80, unit = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3, minimum = 0x800, unit = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4, minimum = 0x10000, unit = lead & 0x07;
    } else {
        return 0;
    }
    if (at + length > bytes.size()) return 0;
    for (std::size_t i = 1; i < length; ++i) {
        std::uint32_t b = byte(at + i);
        if ((b & 0xC0) != 0x80) return 0;
        unit = (unit << 6) | (b & 0x3F);
    }
    if (unit < minimum || unit > 0x10FFFF || (unit >= 0xD800 && unit <= 0xDFFF)) return 0;
    return length;
}

}  // namespace

std::string toPlatformText(const _eString& text) {
    // ASCII, the common case, is copied as it stands, without a look for sequences.
    std::string ascii(std::size_t(text.size()), '\0');
    std::size_t copied = 0;
    bool onlyAscii = true;
    forEachRun(text, [&](const wchar_t* units, int length) {
        for (int k = 0; onlyAscii && k < length; ++k) {
            if (std::uint32_t(units[k]) >= 0x80)
                onlyAscii = false;
            else
                ascii[copied++] = char(units[k]);
        }
    });
    if (onlyAscii) return ascii;
    std::wstring units = toWString(text);
    // The units as bytes, where they are bytes (a unit above 255 never forms part of a sequence).
    std::string bytes;
    bytes.reserve(units.size());
    for (wchar_t unit : units) bytes.push_back(std::uint32_t(unit) < 256 ? char(unit) : '\0');
    std::string out;
    out.reserve(units.size());
    for (std::size_t i = 0; i < units.size();) {
        std::uint32_t unit = std::uint32_t(units[i]);
        if (unit < 0x80) {
            out.push_back(char(unit));
            ++i;
            continue;
        }
        std::uint32_t decoded = 0;
        std::size_t length = unit < 256 ? sequenceLength(bytes, i, decoded) : 0;
        for (std::size_t k = 1; k < length; ++k)
            if (std::uint32_t(units[i + k]) >= 256) length = 0;
        if (length == 0) {
            appendUtf8(out, unit);
            ++i;
        } else {
            out.append(bytes, i, length);
            i += length;
        }
    }
    return out;
}

_eString fromPlatformText(std::string_view bytes) {
    std::vector<wchar_t> units;
    units.reserve(bytes.size());
    for (char byte : bytes) units.push_back(wchar_t(static_cast<unsigned char>(byte)));
    return _eString(int(units.size()), units.data());
}
