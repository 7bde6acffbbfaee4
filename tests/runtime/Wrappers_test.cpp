// Wrappers of plain values and enumerations: equality and order.
#include <gtest/gtest.h>

#include <cmath>

#include "Generated/ErrorEnums.h"
#include "environment/EnvironmentEnums.h"
#include "runtime/Enumerations.h"
#include "support/TestValues.h"

namespace {

using IntWrapper = _eBasicTypeWrapper<std::int32_t>;
using RealWrapper = _eBasicTypeWrapper<double>;
using BoolWrapper = _eBasicTypeWrapper<bool>;
using StringWrapper = _eStorableWrapper<_eString>;

template <class W, class V>
_eHndl<W> wrap(V v) {
    return _eHndl<W>(new W(v));
}

}  // namespace

TEST(Wrappers, EqualityAndRankWithinAndAcrossClasses) {
    auto five = wrap<IntWrapper>(5);
    EXPECT_TRUE(five->isEqual(wrap<IntWrapper>(5).get()));
    EXPECT_FALSE(five->isEqual(wrap<IntWrapper>(6).get()));
    EXPECT_FALSE(five->isEqual(wrap<RealWrapper>(5.0).get()));
    EXPECT_EQ(five->rank(wrap<IntWrapper>(7).get()), rankBelow);
    EXPECT_EQ(five->rank(wrap<IntWrapper>(-7).get()), rankAbove);
    // Different classes fall to the names of their types: "int" is below "real".
    EXPECT_EQ(five->rank(wrap<RealWrapper>(5.0).get()), rankBelow);
    EXPECT_EQ(wrap<RealWrapper>(1.0)->rank(five.get()), rankAbove);

    EXPECT_EQ(wrap<BoolWrapper>(false)->rank(wrap<BoolWrapper>(true).get()), rankBelow);
    auto nan = wrap<RealWrapper>(std::nan(""));
    EXPECT_EQ(nan->rank(wrap<RealWrapper>(std::nan("")).get()), rankSame);
    EXPECT_EQ(wrap<RealWrapper>(2.0)->rank(wrap<RealWrapper>(1.5).get()), rankAbove);
    EXPECT_EQ(wrap<_eBasicTypeWrapper<wchar_t>>(wchar_t(0xFFFF))->rank(wrap<_eBasicTypeWrapper<wchar_t>>(L'a').get()),
              rankAbove);

    // Strings compare nothing of their own.
    EXPECT_EQ(wrap<StringWrapper>(_eString(L"a"))->rank(wrap<StringWrapper>(_eString(L"b")).get()), rankSame);
    EXPECT_FALSE(wrap<StringWrapper>(_eString(L"a"))->isEqual(wrap<StringWrapper>(_eString(L"b")).get()));
    EXPECT_TRUE(wrap<StringWrapper>(_eString(L"a"))->isEqual(wrap<StringWrapper>(_eString(L"a")).get()));

    // Enumerations compare by number.
    auto notFound = wrap<FileError::_eWrapper>(FileError::fileNotFound);
    EXPECT_EQ(notFound->rank(wrap<FileError::_eWrapper>(FileError::endOfFile).get()), rankAbove);
    _eHndl<_eAnyBase> copy(notFound->clone());
    EXPECT_TRUE(notFound->isEqual(copy.get()));
}
