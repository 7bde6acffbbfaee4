// How the bytes of an input stand for characters, as far as the lexer needs to know: the lexer
// reads UTF-8 (or any single-byte text) byte by byte, so input in another encoding is converted
// to UTF-8 before it is read.
#pragma once

#include <string>
#include <string_view>

namespace TextEncodings {

enum class Encoding {
    asIs,         // UTF-8 without a byte-order mark, or anything not told below: read as it stands
    utf8Mark,     // UTF-8 behind its byte-order mark, which is skipped
    utf16Little,  // UTF-16, little-endian, with or without its byte-order mark
    utf16Big,     // UTF-16, big-endian
    latin1,       // declared ISO-8859-1 (or Latin-1)
    windows1252,  // declared windows-1252
};

// The encoding that the first bytes of an input tell: its byte-order mark, the zero bytes of
// UTF-16 around "<?", else the "encoding" of its XML declaration.
Encoding detect(std::string_view head);

// `bytes` in `encoding` as UTF-8, without a byte-order mark. A unit that stands for no character
// (a lone surrogate, an odd last byte) becomes U+FFFD.
std::string toUtf8(std::string_view bytes, Encoding encoding);

// The length of the byte-order mark that `encoding` begins with in `head`: 0, 2 or 3.
std::size_t markLength(std::string_view head, Encoding encoding);

}  // namespace TextEncodings
