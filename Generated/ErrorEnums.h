// The enumerations of the diagnostics.
#pragma once

#include <cstdint>

#include "runtime/static/include/Wrappers.h"

// How bad an error is, in ascending order.
struct ErrorSeverity {
    enum _eEnum : std::int32_t {
        inform, warning, serious, fatal
    };
    static constexpr int count = 4;
    static constexpr _aTypeSlot _aType{&_aModule3, 0};
    static constexpr const wchar_t* storageName = L"ErrorSeverity";
    static constexpr const wchar_t* labels[count] = {
        L"inform", L"warning", L"serious", L"fatal"
    };
    using _eWrapper = _eEnumWrapper<ErrorSeverity>;
};

// Whether a parsed model still corresponds to its file.
struct ValidityStatus {
    enum _eEnum : std::int32_t {
        Valid, Unknown, Invalid
    };
    static constexpr int count = 3;
    static constexpr _aTypeSlot _aType{&_aModule22, 1};
    static constexpr const wchar_t* storageName = L"ValidityStatus";
    static constexpr const wchar_t* labels[count] = {
        L"Valid", L"Unknown", L"Invalid"
    };
    using _eWrapper = _eEnumWrapper<ValidityStatus>;
};

// The kinds of error record; each has one row of the message table.
struct XMLErrorType {
    enum _eEnum : std::int32_t {
        fileOpen, fileClose, fileRead, fileWrite, fileTell, fileName,
        tagMismatch, illegalNonterminalAction, unexpectedToken, notXMI, noXMIcontent, duplicateAttribute
    };
    static constexpr int count = 12;
    static constexpr _aTypeSlot _aType{&_aModule21, 0};
    static constexpr const wchar_t* storageName = L"XMLErrorType";
    static constexpr const wchar_t* labels[count] = {
        L"fileOpen", L"fileClose", L"fileRead", L"fileWrite", L"fileTell",
        L"fileName", L"tagMismatch", L"illegalNonterminalAction", L"unexpectedToken", L"notXMI",
        L"noXMIcontent", L"duplicateAttribute"
    };
    using _eWrapper = _eEnumWrapper<XMLErrorType>;
};
