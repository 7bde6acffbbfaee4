// Wrappers of plain values and enumerations.
#include <gtest/gtest.h>

#include <cmath>

#include "Generated/ActionName.h"
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

std::wstring text(const _eAny& a) { return toWString(a.toString()); }

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

TEST(Wrappers, TextsOfValuesAndLabels) {
    const std::pair<std::wstring, const wchar_t*> rows[] = {
        {text(*wrap<IntWrapper>(-12)), L"-12"},
        {text(*wrap<RealWrapper>(2.0)), L"2.0"},
        {text(*wrap<BoolWrapper>(true)), L"true"},
        {text(*wrap<_eBasicTypeWrapper<unsigned char>>(255)), L"255"},
        {text(*wrap<StringWrapper>(_eString(L"ab"))), L"seq{a,b}"},
        {text(*wrap<FileError::_eWrapper>(FileError::otherError)), L"otherError"},
        {text(*wrap<ActionName::_eWrapper>(ActionName::sh_red)), L"sh_red"},
        {text(*wrap<_eSeparatorId::_eWrapper>(_eSeparatorId::RightArrow)), L"RightArrow"},
    };
    for (const auto& [value, expected] : rows) EXPECT_EQ(value, expected);
}
