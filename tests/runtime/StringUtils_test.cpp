// Plain values as text and the string helpers.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "runtime/StringUtils.h"

// Each helper's text for a value, as a table.
TEST(StringUtils, ValuesAsText) {
    const std::pair<_eString, const wchar_t*> rows[] = {
        {intToString(INT_MIN), L"-2147483648"}, {intToString(42), L"42"}, {byteToString(255), L"255"},
        {boolToString(false), L"false"},         {charToString(L'x'), L"x"}, {doubleToString(0), L"0.0"},
        {doubleToString(-2), L"-2.0"},           {doubleToString(2.5), L"2.5"}, {doubleToString(100000), L"100000.0"},
        {doubleToString(1000000), L"1e+06"},     {doubleToString(0.0001), L"0.0001"},
        {doubleToString(std::numeric_limits<double>::infinity()), L"inf.0"}, {doubleToString(std::nan("")), L"nan.0"},
        {join({}, L","), L""},                   {join({L"a", L"", L"c"}, L", "), L"a, , c"},
        {seqText(L"ab"), L"seq{a,b}"},           {seqText(L""), L"seq{}"},
    };
    for (const auto& [value, expected] : rows) EXPECT_EQ(toWString(value), expected);
}

TEST(StringUtils, DigitsAndIntegers) {
    for (const wchar_t* yes : {L"0123456789", L"7"}) EXPECT_TRUE(isAllDigits(yes)) << yes;
    for (const wchar_t* no : {L"", L"12a", L" 1", L"-1"}) EXPECT_FALSE(isAllDigits(no)) << no;
    for (const wchar_t* yes : {L"-5", L"+5", L"5"}) EXPECT_TRUE(isInteger(yes)) << yes;
    for (const wchar_t* no : {L"", L"+", L"-", L"+-5", L"5-"}) EXPECT_FALSE(isInteger(no)) << no;
    EXPECT_TRUE(containsUnit(L"abc", L'c'));
    EXPECT_FALSE(containsUnit(L"abc", L'd'));
    EXPECT_FALSE(containsUnit(L"", L'a'));
}

// A word reaches a lookup whole in every form it is written in: a literal, a pointer, a buffer
// that holds a shorter text than it has room for, a string of one leaf or of several.
TEST(StringUtils, TextViewsHoldTheWholeWord) {
    auto units = [](const TextView& view) { return std::wstring(view.text()); };
    const wchar_t* pointer = L"xmi.idref";
    wchar_t buffer[16] = L"name";
    static const wchar_t constant[] = L"UML:Class";
    std::wstring longWord(70, L'w');
    EXPECT_EQ(units(L"xmi.id"), L"xmi.id");
    EXPECT_EQ(units(L""), L"");
    EXPECT_EQ(units(pointer), L"xmi.idref");
    EXPECT_EQ(units(buffer), L"name");
    EXPECT_EQ(units(constant), L"UML:Class");
    EXPECT_EQ(units(_eString(L"visibility")), L"visibility");
    EXPECT_EQ(units(_eString(std::wstring_view(longWord))), longWord);
    EXPECT_TRUE(TextView(L"UML:Class").isIn(_eString(L"UML:Class")));
    EXPECT_FALSE(TextView(L"UML:Class").isIn(_eString(L"UML:Classifier")));
}

// A text of several leaves, of uneven lengths, equals a word only where every unit does: a
// difference is found in any leaf, at either end of one.
TEST(StringUtils, WordsAreComparedAcrossLeaves) {
    const std::wstring word = std::wstring(20, L'a') + std::wstring(30, L'b') + std::wstring(33, L'c');
    const _eString spread = _eString(word.substr(0, 20)) + _eString(word.substr(20, 30)) + _eString(word.substr(50));
    ASSERT_FALSE(spread.rootNode()->isLeaf());
    EXPECT_TRUE(textIs(spread, word));
    EXPECT_TRUE(textIs(_eString(std::wstring_view(word)), word));
    for (std::size_t at : {std::size_t(0), std::size_t(19), std::size_t(20), std::size_t(49), std::size_t(50),
                           word.size() - 1}) {
        std::wstring other = word;
        other[at] = L'x';
        EXPECT_FALSE(textIs(spread, other)) << at;
    }
    EXPECT_FALSE(textIs(spread, word.substr(1)));
}

// Only blanks go, from either end or both, in one leaf or across several; tabs and line ends
// stay, and a text with nothing to trim is the same text.
TEST(StringUtils, TrimmingTakesBlanksOffBothEndsOnly) {
    const std::wstring middle(70, L'x');  // past one leaf
    const std::pair<std::wstring, std::wstring> rows[] = {
        {L"", L""},           {L"   ", L""},         {L" a", L"a"},          {L"a ", L"a"},
        {L"  a b  ", L"a b"}, {L"\ta\n", L"\ta\n"}, {L" \ta ", L"\ta"},     {L"a", L"a"},
        {L"  " + middle + L" ", middle},            {L" " + middle, middle}, {middle + L"  ", middle},
    };
    for (const auto& [text, trimmed] : rows)
        EXPECT_EQ(toWString(trimSpaces(_eString(std::wstring_view(text)))), trimmed) << "\"" << text.size() << "\"";
    _eString untouched = L"name";
    EXPECT_EQ(trimSpaces(untouched).rootNode(), untouched.rootNode());
}
