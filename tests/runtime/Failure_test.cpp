// Failure objects, their bounded texts, and the language-level exceptions that are thrown.
#include <gtest/gtest.h>

#include <string>

#include "runtime/Failure.h"
#include "runtime/UrelException.h"

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

TEST(Failure, TextsOfEachKindWithinTheirRoom) {
    EXPECT_EQ(summaryAndDetail(_xNoChoice(L"Btree_2", 194), 127), L"Choice expression failed to select option\n");
    EXPECT_EQ(summaryAndDetail(_xCannotHappen(L"Wrappers", 55, _xAbsurdMethod), 127),
              L"runtime-system error\nAbsurd method called");
    EXPECT_EQ(summaryAndDetail(_xCannotHappen(L"Wrappers", 55, _xAbsurdMethod), 10), L"runtime-sy");
    EXPECT_EQ(summaryAndDetail(_xCannotHappen(L"Wrappers", 55, _xAbsurdMethod), 0), L"");

    // The detail of a choice failure writes nothing and leaves the room as it was.
    wchar_t buffer[4] = L"abc";
    wchar_t* pos = buffer;
    unsigned remaining = 3;
    _xNoChoice(L"Btree_2", 221).writeDetail(pos, remaining);
    EXPECT_EQ(pos, buffer);
    EXPECT_EQ(remaining, 3u);
    EXPECT_EQ(std::wstring(buffer), L"abc");

    EXPECT_THROW(raiseNoChoice(_xPlaces::leafPushBack), _eFormat);
    EXPECT_THROW(raiseCannotHappen(_xPlaces::importerEquality), _xCeption);
}

TEST(Failure, StreamFailuresThrowTheWrappedException) {
    _eHndl<_aStreamException> a(new _aStreamException(L"bad stream", SerialErrorType::corruptStream));
    EXPECT_TRUE(a->isEqual(_eHndl<_aStreamException>(static_cast<_aStreamException*>(a->clone())).get()));
    for (auto* other : {new _aStreamException(L"bad stream", SerialErrorType::readError),
                        new _aStreamException(L"bad Stream", SerialErrorType::corruptStream)})
        EXPECT_FALSE(a->isEqual(_eHndl<_aStreamException>(other).get()));
    try {
        streamFailure(SerialErrorType::missingType, L"unknown type");
        FAIL() << "streamFailure returned";
    } catch (const _aUrelExceptionWrapper& thrown) {
        EXPECT_EQ(toWString(thrown.message()), L"unknown type");
        EXPECT_EQ(thrown.errorCode(), SerialErrorType::missingType);
        EXPECT_NE(dynamic_cast<const _aStreamException*>(thrown.getException().get()), nullptr);
    }
}
