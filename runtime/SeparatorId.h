// The separators between the parameters of a template type, apart from the other enumerations
// because the type table itself holds them.
#pragma once

#include <cstdint>

#include "runtime/TypeSlot.h"

template <class X>
class _eEnumWrapper;

// What stands between the parameters of a template type: `map` has `RightArrow`, the others `Comma`.
struct _eSeparatorId {
    enum _eEnum : std::int32_t {
        Comma, LeftArrow, RightArrow, DoubleArrow
    };
    static constexpr int count = 4;
    static constexpr _aTypeSlot _aType{&_aModule29, 10};
    static constexpr const wchar_t* storageName = L"_SeparatorId";
    static constexpr const wchar_t* labels[count] = {
        L"Comma", L"LeftArrow", L"RightArrow", L"DoubleArrow"
    };
    using _eWrapper = _eEnumWrapper<_eSeparatorId>;
};
