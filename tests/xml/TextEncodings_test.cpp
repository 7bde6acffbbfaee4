// A model saved in another encoding gives the text of the same model saved as plain UTF-8.
#include <gtest/gtest.h>

#include "support/ImportRun.h"
#include "xml/TextEncodings.h"

namespace {

// UTF-8 text of characters below U+10000 as UTF-16 in either byte order, behind its mark.
std::string utf16(const std::string& utf8, bool little) {
    std::string out = little ? "\xFF\xFE" : "\xFE\xFF";
    for (std::size_t at = 0; at < utf8.size();) {
        auto byte = static_cast<unsigned char>(utf8[at]);
        unsigned code = byte;
        int length = byte < 0x80 ? 1 : byte < 0xE0 ? 2 : 3;
        if (length == 2) code = ((byte & 0x1F) << 6) | (utf8[at + 1] & 0x3F);
        if (length == 3) code = ((byte & 0x0F) << 12) | ((utf8[at + 1] & 0x3F) << 6) | (utf8[at + 2] & 0x3F);
        at += std::size_t(length);
        char high = char(code >> 8), low = char(code & 0xFF);
        out += little ? std::string{low, high} : std::string{high, low};
    }
    return out;
}

std::string model(const std::string& declaration, const std::string& className, const std::string& attribute) {
    return declaration +
           "<XMI><XMI.content><UML:Model xmi.id='m'><UML:Namespace.ownedElement><UML:Class xmi.id='k' name='" +
           className + "'><UML:Classifier.feature><UML:Attribute xmi.id='a' name='" + attribute +
           "'/></UML:Classifier.feature></UML:Class></UML:Namespace.ownedElement></UML:Model></XMI.content></XMI>\n";
}

}  // namespace

// The byte-order mark of UTF-8, UTF-16 in both byte orders (with its mark, and without one in
// little-endian order), a declared ISO-8859-1 and windows-1252: each gives the class list and
// the text of the plain file, names in UTF-8. On the specified road a mark is a syntax error.
TEST(TextEncodings, EveryEncodingGivesThePlainText) {
    const std::string plain = model("<?xml version='1.0'?>", "Kund\xC3\xA9", "pr\xC3\xA9is\xE2\x82\xAC");
    ImportRun expected(plain, everyExtension());
    ASSERT_TRUE(expected.parsed);
    ASSERT_EQ(expected.classes, std::vector<std::wstring>{L"Kund\xC3\xA9"});
    ASSERT_NE(expected.single.find("var pr\xC3\xA9is\xE2\x82\xAC: ?;"), std::string::npos) << expected.single;

    const std::string utf16Declared = model("<?xml version='1.0' encoding='UTF-16'?>", "Kund\xC3\xA9", "pr\xC3\xA9is\xE2\x82\xAC");
    const std::string variants[] = {
        "\xEF\xBB\xBF" + plain,
        utf16(utf16Declared, true),
        utf16(utf16Declared, false),
        utf16(utf16Declared, true).substr(2),  // no mark
        model("<?xml version=\"1.0\" encoding = \"ISO-8859-1\"?>", "Kund\xE9", "pr\xE9isx"),
        model("<?xml version='1.0' encoding='windows-1252'?>", "Kund\xE9", "pr\xE9is\x80"),
    };
    for (const std::string& variant : variants) {
        ImportRun decoded(variant, everyExtension());
        EXPECT_TRUE(decoded.parsed && decoded.generated) << variant;
        EXPECT_EQ(decoded.classes, expected.classes) << variant;
        if (variant.find("ISO-8859-1") != std::string::npos) {
            EXPECT_NE(decoded.single.find("var pr\xC3\xA9isx: ?;"), std::string::npos) << decoded.single;
            continue;
        }
        EXPECT_EQ(decoded.single, expected.single) << variant;
    }

    ImportRun specified(variants[0], {});
    EXPECT_FALSE(specified.parsed);
    ImportExtensions switchedOff = everyExtension();
    switchedOff.decodeEncodings = false;
    EXPECT_FALSE(ImportRun(variants[1], switchedOff).parsed);
}

// What can't be a character becomes U+FFFD; an odd byte at the end of UTF-16 too. Only the
// XML declaration declares an encoding.
TEST(TextEncodings, BrokenUtf16) {
    using TextEncodings::Encoding;
    EXPECT_EQ(TextEncodings::toUtf8(std::string("\xFF\xFE" "a\0\x00\xD8" "b\0", 8), Encoding::utf16Little),
              "a\xEF\xBF\xBD" "b");
    EXPECT_EQ(TextEncodings::toUtf8(std::string("\0a\xD8\x3D\xDE\x00\0", 7), Encoding::utf16Big),
              "a\xF0\x9F\x98\x80\xEF\xBF\xBD");
    EXPECT_EQ(TextEncodings::detect("<XMI encoding='latin1'>"), Encoding::asIs) << "no declaration";
    EXPECT_EQ(TextEncodings::detect("<?xml version='1.0'?><XMI encoding='latin1'>"), Encoding::asIs);
    EXPECT_EQ(TextEncodings::detect("<?xml version='1.0' encoding='Latin1'?>"), Encoding::latin1);
}
