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
