// `_eStorable`: the root of the values that can go to a storage stream.
#pragma once

#include "runtime/TypeInfo.h"

class MB_API _eStorable : public _eAny {
public:
    static constexpr _aTypeSlot _aType{&_aModule31, 0};

    // No fields of its own: any two of one class are equal.
    bool isEqual(const _eAnyBase* other) const override {
        return other == this || (other != nullptr && typeid(*other) == typeid(*this));
    }
    const _eFullTypeInfo* _aGetFullTypeInfo() const override { return _aTypeRecord(); }
    static const _eFullTypeInfo* _aTypeRecord() {
        static const _eFullTypeInfo record(_aTypeOf(_aType), nullptr);
        return &record;
    }

    // The whole object, with its code and type: `storeObject` of the stream.
    void store(StoreStream& stream) const override = 0;
    void fill(FillStream& stream) override = 0;
    // The fields alone, in the order of their declaration.
    virtual void storeFields(StoreStream& stream) const = 0;
};

// `store` of a storable class: the object with its type, or a reference to it when the stream
// has it already.
MB_API void _aStoreObject(StoreStream& stream, const _eStorable& object, const _eHndl<_eInstblTypeInfo>& type);
