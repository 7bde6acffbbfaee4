// The enumerations of the runtime itself.
#pragma once

#include <cstdint>

#include "runtime/SeparatorId.h"
#include "runtime/static/include/Wrappers.h"

// The classes of run-time check of the modelling language; this library holds `lastChoices` only.
struct DebugType {
    enum _eEnum : std::int32_t {
        preConditions, postConditions, loopInvariants, loopVariants, specVariants, impVariants,
        embAsserts, postAsserts, lastChoices, classInvariants, constraints
    };
    static constexpr int count = 11;
    static constexpr _aTypeSlot _aType{&_aModule29, 8};
    static constexpr const wchar_t* storageName = L"_DebugType";
    static constexpr const wchar_t* labels[count] = {
        L"preConditions", L"postConditions", L"loopInvariants", L"loopVariants", L"specVariants",
        L"impVariants", L"embAsserts", L"postAsserts", L"lastChoices", L"classInvariants",
        L"constraints"
    };
    using _eWrapper = _eEnumWrapper<DebugType>;
};

// Why writing to or reading from a storage stream failed.
struct SerialErrorType {
    enum _eEnum : std::int32_t {
        writeError, internalError, readError, systemVersionError, userVersionError, streamError,
        missingInstantiation, missingHeap, missingType, unexpectedType, corruptStream, unspecifiedError
    };
    static constexpr int count = 12;
    static constexpr _aTypeSlot _aType{&_aModule29, 11};
    static constexpr const wchar_t* storageName = L"_SerialErrorType";
    static constexpr const wchar_t* labels[count] = {
        L"writeError", L"internalError", L"readError", L"systemVersionError", L"userVersionError",
        L"streamError", L"missingInstantiation", L"missingHeap", L"missingType", L"unexpectedType",
        L"corruptStream", L"unspecifiedError"
    };
    using _eWrapper = _eEnumWrapper<SerialErrorType>;
};
