// Failure objects and their bounded text writer.
#include <gtest/gtest.h>

#include <string>

#include "runtime/Failure.h"

namespace {

std::wstring summaryAndDetail(const _xCeption& failure, unsigned room) {
    wchar_t buffer[128];
    wchar_t* pos = buffer;
    unsigned remaining = room;
    failure.writeSummary(pos, remaining);
    failure.writeDetail(pos, remaining);
    return std::wstring(buffer);
}

}  // namespace

TEST(Failure, AppendBoundedStopsAtRoom) {
    wchar_t buffer[8] = L"xxxxxxx";
    wchar_t* pos = buffer;
    unsigned remaining = 0;
    appendBounded(pos, L"abc", remaining);
    EXPECT_EQ(pos, buffer);
    EXPECT_EQ(buffer[0], L'\0');

    remaining = 3;
    appendBounded(pos, L"abcdef", remaining);
    EXPECT_EQ(remaining, 0u);
    EXPECT_EQ(pos, buffer + 3);
    EXPECT_EQ(std::wstring(buffer), L"abc");
}

TEST(Failure, TextsOfEachKind) {
    EXPECT_EQ(summaryAndDetail(_xNoChoice(L"Btree_2", 194), 127), L"Choice expression failed to select option\n");
    EXPECT_EQ(summaryAndDetail(_xCannotHappen(L"Wrappers", 55, _xAbsurdMethod), 127),
              L"runtime-system error\nAbsurd method called");
    EXPECT_EQ(summaryAndDetail(_xCannotHappen(L"Wrappers", 55, _xAbsurdMethod), 10), L"runtime-sy");

    // The detail of a choice failure writes nothing and leaves the room as it was.
    wchar_t buffer[4] = L"abc";
    wchar_t* pos = buffer;
    unsigned remaining = 3;
    _xNoChoice(L"Btree_2", 221).writeDetail(pos, remaining);
    EXPECT_EQ(pos, buffer);
    EXPECT_EQ(remaining, 3u);
    EXPECT_EQ(std::wstring(buffer), L"abc");
}

TEST(Failure, RaisedFailuresAreCaughtAtEveryLevel) {
    EXPECT_THROW(raiseNoChoice(_xPlaces::leafPushBack), _xNoChoice);
    EXPECT_THROW(raiseNoChoice(_xPlaces::leafPushBack), _xDebug);
    EXPECT_THROW(raiseNoChoice(_xPlaces::leafPushBack), _eFormat);
    EXPECT_THROW(raiseCannotHappen(_xPlaces::importerEquality), _xCannotHappen);
    EXPECT_THROW(raiseCannotHappen(_xPlaces::importerEquality), _xCeption);
    EXPECT_EQ(_xPlaces::importerEquality.line, 456u);
    EXPECT_EQ(std::wstring(_xPlaces::stackEntryOrder.file), L"Generated/Pstack");
}
