// `_eStorable`: the root of the values that can go to a storage stream.
#pragma once

#include "runtime/TypeInfo.h"

class MB_API _eStorable : public _eAny {
public:
    // No fields of its own: any two of one class are equal.
    bool isEqual(const _eAnyBase* other) const override {
        return other == this || (other != nullptr && typeid(*other) == typeid(*this));
    }
    const _eFullTypeInfo* _aGetFullTypeInfo() const override { return _aTypeRecord(); }
    static const _eFullTypeInfo* _aTypeRecord() {
        static const _eFullTypeInfo record(L"_eStorable", nullptr);
        return &record;
    }
};
