#include "xml/TextEncodings.h"

#include <cstdint>

#include "environment/PlatformText.h"

namespace TextEncodings {

namespace {

bool startsWith(std::string_view text, std::string_view prefix) { return text.substr(0, prefix.size()) == prefix; }

// The value of "encoding" in the XML declaration that `head` opens with, in lower case; empty
// when there is none.
std::string declaredEncoding(std::string_view head) {
    if (!startsWith(head, "<?xml")) return {};
    std::string_view declaration = head.substr(0, head.find("?>"));
    std::size_t at = declaration.find("encoding");
    if (at == std::string_view::npos) return {};
    at = declaration.find_first_not_of(" \t\r\n", at + 8);
    if (at == std::string_view::npos || declaration[at] != '=') return {};
    at = declaration.find_first_not_of(" \t\r\n", at + 1);
    if (at == std::string_view::npos || (declaration[at] != '"' && declaration[at] != '\'')) return {};
    std::size_t end = declaration.find(declaration[at], at + 1);
    if (end == std::string_view::npos) return {};
    std::string name(declaration.substr(at + 1, end - at - 1));
    for (char& c : name)
        if (c >= 'A' && c <= 'Z') c = char(c - 'A' + 'a');
    return name;
}

constexpr std::uint32_t replacement = 0xFFFD;

// The characters of windows-1252 at 0x80 to 0x9F; the five it leaves out read as Latin-1.
constexpr std::uint16_t windows1252High[32] = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

std::string fromUtf16(std::string_view bytes, bool little) {
    std::string out;
    out.reserve(bytes.size());
    auto unit = [&](std::size_t at) {
        auto first = std::uint8_t(bytes[at]), second = std::uint8_t(bytes[at + 1]);
        return little ? std::uint32_t(first | (second << 8)) : std::uint32_t((first << 8) | second);
    };
    std::size_t at = 0;
    for (; at + 1 < bytes.size(); at += 2) {
        std::uint32_t code = unit(at);
        if (code >= 0xD800 && code < 0xDC00 && at + 3 < bytes.size()) {
            std::uint32_t low = unit(at + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                appendUtf8(out, 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00));
                at += 2;
                continue;
            }
        }
        appendUtf8(out, code >= 0xD800 && code < 0xE000 ? replacement : code);
    }
    if (at < bytes.size()) appendUtf8(out, replacement);
    return out;
}

}  // namespace

Encoding detect(std::string_view head) {
    if (startsWith(head, "\xEF\xBB\xBF")) return Encoding::utf8Mark;
    if (startsWith(head, "\xFF\xFE") || startsWith(head, std::string_view("<\0?\0", 4))) return Encoding::utf16Little;
    if (startsWith(head, "\xFE\xFF") || startsWith(head, std::string_view("\0<\0?", 4))) return Encoding::utf16Big;
    std::string declared = declaredEncoding(head);
    if (declared == "iso-8859-1" || declared == "iso8859-1" || declared == "latin1" || declared == "latin-1" ||
        declared == "l1" || declared == "iso_8859-1")
        return Encoding::latin1;
    if (declared == "windows-1252" || declared == "cp1252") return Encoding::windows1252;
    return Encoding::asIs;
}

std::size_t markLength(std::string_view head, Encoding encoding) {
    switch (encoding) {
        case Encoding::utf8Mark: return 3;
        case Encoding::utf16Little: return startsWith(head, "\xFF\xFE") ? 2 : 0;
        case Encoding::utf16Big: return startsWith(head, "\xFE\xFF") ? 2 : 0;
        default: return 0;
    }
}

std::string toUtf8(std::string_view bytes, Encoding encoding) {
    bytes.remove_prefix(markLength(bytes, encoding));
    switch (encoding) {
        case Encoding::utf16Little: return fromUtf16(bytes, true);
        case Encoding::utf16Big: return fromUtf16(bytes, false);
        case Encoding::latin1:
        case Encoding::windows1252: {
            std::string out;
            out.reserve(bytes.size() + bytes.size() / 8);
            for (char c : bytes) {
                auto byte = std::uint8_t(c);
                bool high = encoding == Encoding::windows1252 && byte >= 0x80 && byte < 0xA0;
                appendUtf8(out, high ? windows1252High[byte - 0x80] : byte);
            }
            return out;
        }
        default: return std::string(bytes);
    }
}

}  // namespace TextEncodings
