// Language-level exceptions: their equality, their records, and the wrapper that is thrown.
#include <gtest/gtest.h>

#include "runtime/UrelException.h"

TEST(UrelException, EqualityWantsClassMessageAndCode) {
    _eHndl<_aStreamException> a(new _aStreamException(L"bad stream", SerialErrorType::corruptStream));
    _eHndl<_aStreamException> b(new _aStreamException(L"bad stream", SerialErrorType::corruptStream));
    _eHndl<_aStreamException> otherCode(new _aStreamException(L"bad stream", SerialErrorType::readError));
    _eHndl<_aStreamException> otherText(new _aStreamException(L"bad Stream", SerialErrorType::corruptStream));
    EXPECT_TRUE(a->isEqual(b.get()));
    EXPECT_TRUE(*a == *b);
    EXPECT_FALSE(a->isEqual(otherCode.get()));
    EXPECT_FALSE(a->isEqual(otherText.get()));

    _eHndl<_aStreamException> copy(static_cast<_aStreamException*>(a->clone()));
    EXPECT_TRUE(copy->isEqual(a.get()));

    const _eFullTypeInfo* record = a->_aGetFullTypeInfo();
    EXPECT_EQ(toWString(record->info->typeName()), L"StreamException");
    EXPECT_EQ(record->level, 2);
    ASSERT_NE(record->parent, nullptr);
    EXPECT_EQ(toWString(record->parent->info->typeName()), L"_UrelException");
    EXPECT_EQ(record->parent->level, 1);
}

TEST(UrelException, StreamFailureThrowsTheWrappedException) {
    try {
        streamFailure(SerialErrorType::missingType, L"unknown type");
        FAIL() << "streamFailure returned";
    } catch (const _aUrelExceptionWrapper& thrown) {
        EXPECT_EQ(toWString(thrown.message()), L"unknown type");
        EXPECT_EQ(thrown.errorCode(), SerialErrorType::missingType);
        const _eUrelException* exception = thrown.getException().get();
        EXPECT_NE(dynamic_cast<const _aStreamException*>(exception), nullptr);

        // A copy of the wrapper shares the exception and holds a count of its own.
        std::int32_t counts = exception->countWord();
        {
            _aUrelExceptionWrapper copy(thrown);
            EXPECT_EQ(copy.getException().get(), exception);
            EXPECT_EQ(exception->countWord(), counts + 1);
        }
        EXPECT_EQ(exception->countWord(), counts);
    }
}
