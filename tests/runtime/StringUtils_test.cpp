// Plain values as text and the string helpers.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

#include "runtime/StringUtils.h"

namespace {
std::wstring text(const _eString& s) { return toWString(s); }
}  // namespace

TEST(StringUtils, NumbersAndTruthValues) {
    EXPECT_EQ(text(intToString(INT_MIN)), L"-2147483648");
    EXPECT_EQ(text(intToString(0)), L"0");
    EXPECT_EQ(text(intToString(42)), L"42");
    EXPECT_EQ(text(byteToString(255)), L"255");
    EXPECT_EQ(text(byteToString(0)), L"0");
    EXPECT_EQ(text(boolToString(true)), L"true");
    EXPECT_EQ(text(boolToString(false)), L"false");
    EXPECT_EQ(text(charToString(L'x')), L"x");
    EXPECT_EQ(charToString(L'x').size(), 1);
}

TEST(StringUtils, DoublesNeverReadAsIntegers) {
    EXPECT_EQ(text(doubleToString(0)), L"0.0");
    EXPECT_EQ(text(doubleToString(3)), L"3.0");
    EXPECT_EQ(text(doubleToString(-2)), L"-2.0");
    EXPECT_EQ(text(doubleToString(2.5)), L"2.5");
    EXPECT_EQ(text(doubleToString(100000)), L"100000.0");
    EXPECT_EQ(text(doubleToString(1000000)), L"1e+06");
    EXPECT_EQ(text(doubleToString(1e20)), L"1e+20");
    EXPECT_EQ(text(doubleToString(0.0001)), L"0.0001");
    EXPECT_EQ(text(doubleToString(std::numeric_limits<double>::infinity())), L"inf.0");
    EXPECT_EQ(text(doubleToString(std::nan(""))), L"nan.0");
}

TEST(StringUtils, JoinPutsSeparatorsBetweenOnly) {
    EXPECT_EQ(text(join({}, L",")), L"");
    EXPECT_EQ(text(join({L"one"}, L",")), L"one");
    EXPECT_EQ(text(join({L"a", L"", L"c"}, L", ")), L"a, , c");
}

TEST(StringUtils, DigitsAndIntegers) {
    EXPECT_FALSE(isAllDigits(L""));
    EXPECT_TRUE(isAllDigits(L"0123456789"));
    EXPECT_FALSE(isAllDigits(L"12a"));
    EXPECT_FALSE(isAllDigits(L" 1"));
    EXPECT_FALSE(isInteger(L""));
    EXPECT_FALSE(isInteger(L"+"));
    EXPECT_FALSE(isInteger(L"-"));
    EXPECT_TRUE(isInteger(L"-5"));
    EXPECT_TRUE(isInteger(L"+5"));
    EXPECT_TRUE(isInteger(L"5"));
    EXPECT_FALSE(isInteger(L"+-5"));
    EXPECT_FALSE(isInteger(L"5-"));
    EXPECT_TRUE(containsUnit(L"abc", L'c'));
    EXPECT_FALSE(containsUnit(L"abc", L'd'));
    EXPECT_FALSE(containsUnit(L"", L'a'));
}

TEST(StringUtils, StringsPrintAsSequencesOfCharacters) {
    EXPECT_EQ(text(seqText(L"ab")), L"seq{a,b}");
    EXPECT_EQ(text(seqText(L"")), L"seq{}");
    EXPECT_EQ(text(seqText(L"x")), L"seq{x}");
}
