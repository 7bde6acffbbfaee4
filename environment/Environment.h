// The one door to the platform. The host creates it and hands it to `XMLImporter`.
#pragma once

#include "runtime/Class.h"

class MB_API Environment : public _eClass<Environment, _eAny> {
public:
    static constexpr const wchar_t* typeName = L"Environment";

    Environment() = default;

    // It has no state that the system reads, so any two are equal.
    bool equalFields(const Environment&) const { return true; }
};
