#include "Generated/StackValue.h"

#include "runtime/StringUtils.h"

_eString SimpleTerminal::getText() const {
    std::int32_t code = getToken();
    if (code < 32 || code > 127) return _eString(L"character(") + intToString(code) + L")";
    return _eString(L"'") + _eString(wchar_t(code)) + L"'";
}
