// `_eStorable`: the root of the values that can go to a storage stream.
#pragma once

#include "runtime/Any.h"

class MB_API _eStorable : public _eAny {
public:
    // No fields of its own: any two of one class are equal.
    bool isEqual(const _eAnyBase* other) const override {
        return other == this || (other != nullptr && typeid(*other) == typeid(*this));
    }
    // Writes the fields, in the order of their declaration.
    virtual void storeFields(StoreStream& stream) const = 0;
};
