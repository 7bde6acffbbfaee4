// The parser's actions.
#pragma once

#include <cstdint>

#include "runtime/static/include/Wrappers.h"

// What the parser does for a symbol in a state.
struct ActionName {
    enum _eEnum : std::int32_t {
        error, shift, reduce, sh_red, halt, skip
    };
    static constexpr int count = 6;
    static constexpr _aTypeSlot _aType{&_aModule10, 0};
    static constexpr const wchar_t* storageName = L"ActionName";
    static constexpr const wchar_t* labels[count] = {
        L"error", L"shift", L"reduce", L"sh_red", L"halt",
        L"skip"
    };
    using _eWrapper = _eEnumWrapper<ActionName>;
};
