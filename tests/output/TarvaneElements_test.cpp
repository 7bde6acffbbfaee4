// Tokens laid out in lines: separators, indentation, blank lines, breaking and comments.
#include <gtest/gtest.h>

#include <random>

#include "environment/PlatformText.h"
#include "output/ReservedWords.h"
#include "output/TarvaneElements.h"
#include "support/TempDir.h"

namespace {

// The text that `writeTo` makes of the tokens.
std::string layout(const std::vector<std::wstring>& words, FileError::_eEnum* status = nullptr,
                   const ImportOptions& options = ImportOptions::defaults()) {
    TempDir dir;
    _eHndl<Environment> env(new Environment());
    Tokens tokens;
    for (const auto& w : words) tokens.pushBack(_eString(std::wstring_view(w)));
    _eHndl<FileRef> file = env->open(fromPlatformText(dir / "out.tv"), FileModes(FileModeType::create)).as<FileRef>();
    FileError::_eEnum result;
    TarvaneElements(tokens).writeTo(*env, file, options, result);
    if (status != nullptr) *status = result;
    env->close(file, result);
    return dir.read("out.tv");
}

std::vector<std::wstring> split(const std::wstring& text) {
    std::vector<std::wstring> out;
    std::wstring word;
    for (wchar_t c : text) {
        if (c == L' ') {
            out.push_back(word);
            word.clear();
        } else {
            word.push_back(c);
        }
    }
    if (!word.empty()) out.push_back(word);
    return out;
}

}  // namespace

TEST(TarvaneLayout, BlankLinesOnlyBehindOuterBlocks) {
    std::string text = layout(split(
        L"class A ^= interface function f begin if x then y fi ; z ; end ; function g ; end ;"));
    EXPECT_EQ(text,
              "class A ^=\n"
              "interface\n"
              "\tfunction f begin\n"
              "\t\tif x then y\n"
              "\t\tfi;\n"
              "\t\tz;\n"
              "\tend;\n"
              "\n"
              "\tfunction g;\n"
              "end;\n");
}

TEST(TarvaneLayout, LongLinesBreakBeforeTheTokenThatPassesTheWidth) {
    std::vector<std::wstring> words(11, L"aaaaaaaaa");
    words[0] = L"bbbbbbbbbb";  // ten characters: the tenth word ends exactly in column 100
    std::string text = layout(words);
    std::string first = "bbbbbbbbbb";
    for (int i = 0; i < 9; ++i) first += " aaaaaaaaa";
    EXPECT_EQ(text, first + "\n\taaaaaaaaa\n");

    std::wstring longWord(150, L'x');
    EXPECT_EQ(layout({longWord}), std::string(150, 'x') + "\n");
    EXPECT_EQ(layout({L"a", longWord}), "a\n\t" + std::string(150, 'x') + "\n");
    EXPECT_EQ(layout({L"a", L"\n", L"b", L"c"}), "a\nb c\n");
}

TEST(TarvaneLayout, CommentsStandAloneAndWrapUnderThemselves) {
    std::wstring words;
    for (int i = 0; i < 30; ++i) words += L" word" + std::to_wstring(i);
    std::string text = layout({L"x", L";", L"//" + words, L"y"});
    std::vector<std::string> lines;
    for (std::size_t at = 0, next; at < text.size(); at = next + 1) {
        next = text.find('\n', at);
        lines.push_back(text.substr(at, next - at));
    }
    ASSERT_GE(lines.size(), 4u);
    EXPECT_EQ(lines[0], "x;");
    EXPECT_EQ(lines[1].rfind("// word0 word1", 0), 0u);
    EXPECT_LE(lines[1].size(), 100u);
    EXPECT_EQ(lines[2].rfind("// word", 0), 0u) << lines[2];
    EXPECT_EQ(lines.back(), "y");
    std::string joined;
    for (std::size_t i = 1; i + 1 < lines.size(); ++i) joined += lines[i].substr(i == 1 ? 2 : 2);
    EXPECT_EQ(joined, std::string(words.begin(), words.end()));
}

// A comment that starts at or past the margin still ends: each piece carries at least one of
// its characters, however short it is, and none is lost.
TEST(TarvaneLayout, CommentsAtTheMarginEndWithNothingLost) {
    const std::size_t margin = 20;
    ImportOptions narrow(std::int32_t(margin), _eString(std::wstring(margin, L' ')), _eString());
    for (std::wstring comment : {L"//", L"//x", L"// a", L"//abcdef", L"// one two three four five six seven"}) {
        std::string text = layout({L"class", L"A", L"^=", L"interface", comment, L"end", L";"}, nullptr, narrow);
        std::size_t from = text.find("interface\n");
        std::size_t to = text.rfind("end;");
        ASSERT_NE(from, std::string::npos);
        ASSERT_NE(to, std::string::npos);
        std::string joined;
        std::size_t pieces = 0;
        for (std::size_t at = from + 10, next; at < to; at = next + 1, ++pieces) {
            next = text.find('\n', at);
            std::string line = text.substr(at, next - at);
            ASSERT_EQ(line.substr(0, margin), std::string(margin, ' '));
            std::string piece = line.substr(margin);
            if (pieces > 0) {
                ASSERT_GT(piece.size(), 2u) << piece;
                ASSERT_EQ(piece.substr(0, 2), "//");
                piece = piece.substr(2);
            }
            joined += piece;
        }
        EXPECT_EQ(joined, std::string(comment.begin(), comment.end()));
        EXPECT_EQ(pieces, comment.size() <= 3 ? 1u : comment.size() - 2);
    }
}

TEST(ReservedWords, ExactWordsGetOneUnderscore) {
    EXPECT_EQ(reservedWords().size(), 106);
    EXPECT_EQ(toWString(escapeReservedWord(L"value")), L"value_");
    EXPECT_EQ(toWString(escapeReservedWord(L"name")), L"name_");
    EXPECT_EQ(toWString(escapeReservedWord(L"End")), L"End");
    EXPECT_EQ(toWString(escapeReservedWord(L"value_")), L"value_");
    EXPECT_EQ(toWString(escapeReservedWord(L"balance")), L"balance");
    for (const wchar_t* w : {L"abstract", L"within", L"fi", L"those", L"nonmember", L"storable"})
        EXPECT_TRUE(reservedWords().contains(w)) << w;
    // Every word of the set is escaped, however the name's text was put together; a word with
    // more behind it or a unit changed is not.
    const _eSeq<_eString>& words = reservedWords().elements();
    for (int i = 0; i < words.size(); ++i) {
        const _eString& word = words.get(i);
        EXPECT_EQ(toWString(escapeReservedWord(word)), toWString(word) + L"_");
        EXPECT_EQ(toWString(escapeReservedWord(word.take(1) + word.drop(1))), toWString(word) + L"_");
        EXPECT_EQ(toWString(escapeReservedWord(word + L"s")), toWString(word) + L"s");
        _eString capital = _eString(std::wstring(1, wchar_t(word.get(0) - L'a' + L'A')).c_str()) + word.drop(1);
        EXPECT_EQ(toWString(escapeReservedWord(capital)), toWString(capital));
    }
}

// A token's word sets are what the sets themselves say, however the token's string was made and
// whatever was asked before: the kept answers never stand for another text.
TEST(TarvaneWords, WordSetsAreTheSetsThatHoldTheText) {
    using E = TarvaneElements;
    const std::pair<const _eSet<_eString>*, unsigned> sets[] = {
        {&E::blockOpeners(), E::opener},       {&E::blockClosers(), E::closer},
        {&E::sectionHeads(), E::sectionHead},  {&E::lineEnders(), E::lineEnder},
        {&E::lineStarters(), E::lineStarter},  {&E::noBlankAfter(), E::blankNotAfter},
        {&E::noBlankBefore(), E::blankNotBefore}};
    std::vector<std::wstring> words = {L"", L"x", L"Class", L"ends", L"en", L"?", L"::", std::wstring(50, L'e')};
    for (const auto& [set, bit] : sets)
        for (int i = 0; i < set->size(); ++i) {
            std::wstring word = toWString(set->at(i));
            words.push_back(word);
            words.push_back(word + L"x");
            words.push_back(L"x" + word);
        }
    std::mt19937 random(3);
    std::vector<_eString> asked;
    for (int round = 0; round < 2000; ++round) {
        const std::wstring& word = words[random() % words.size()];
        // Made anew, built unit by unit, or a string asked before.
        _eString token;
        if (random() % 3 == 0 && !asked.empty()) {
            token = asked[random() % asked.size()];
        } else if (random() % 2 == 0) {
            token = _eString(std::wstring_view(word));
        } else {
            for (wchar_t unit : word) token.pushBack(unit);
        }
        if (asked.size() < 50) asked.push_back(token);
        unsigned expected = 0;
        for (const auto& [set, bit] : sets)
            if (set->contains(token)) expected |= bit;
        ASSERT_EQ(E::wordSets(token), expected) << std::string(word.begin(), word.end());
    }
}

// A comment is cut at its last blank before the room (never within its first three units), else
// at the room.
TEST(TarvaneLayout, CommentsBreakAtTheLastBlankBeforeTheRoom) {
    std::mt19937 random(20261127);
    TarvaneElements elements{Tokens()};
    for (int round = 0; round < 300; ++round) {
        std::wstring units;
        for (int n = int(random() % 400); n > 0; --n) units += random() % 5 == 0 ? L' ' : wchar_t(L'a' + random() % 26);
        int room = int(random() % 130) - 10;
        int lastBlank = -1;
        for (int i = 3; i < room && i < int(units.size()); ++i)
            if (units[std::size_t(i)] == L' ') lastBlank = i;
        EXPECT_EQ(elements.breakPosition(units, room, ImportOptions::defaults()), lastBlank > 0 ? lastBlank : room)
            << "room " << room << " in \"" << std::string(units.begin(), units.end()) << "\"";
    }
}
