// The members that every value class shares, written once: `Self` supplies its type's place
// (`_aType`, a module record and a row of its table) and its field comparison (`equalFields`,
// which first calls its base's). A template instantiation builds its type in `_aBuildType`.
#pragma once

#include <type_traits>
#include <typeinfo>

#include "runtime/TypeInfo.h"

// The record of the nearest base with one; null below roots such as `_eAny` and `_eStorable`,
// whose descendants are at level 1.
template <class Base>
inline const _eFullTypeInfo* _aParentRecord() {
    if constexpr (requires { Base::_aTypeRecord(); })
        return Base::_aTypeRecord();
    else
        return nullptr;
}

template <class Self>
inline _eHndl<_eInstblTypeInfo> _aClassType() {
    if constexpr (requires { Self::_aBuildType(); })
        return Self::_aBuildType();
    else
        return _aTypeOf(Self::_aType);
}

// The type records alone, for abstract classes: the concrete ones below them use `_eClass`.
template <class Self, class Base>
class _eAbstractClass : public Base {
public:
    using Base::Base;

    const _eFullTypeInfo* _aGetFullTypeInfo() const override { return _aTypeRecord(); }
    static const _eFullTypeInfo* _aTypeRecord() {
        static const _eFullTypeInfo record(_aClassType<Self>(), _aParentRecord<Base>());
        return &record;
    }
    static _eHndl<_eInstblTypeInfo> _aMyTypeInfo() { return _aTypeRecord()->info; }
};

template <class Self, class Base>
class _eClass : public _eAbstractClass<Self, Base> {
public:
    using _eAbstractClass<Self, Base>::_eAbstractClass;

    _eAnyBase* clone() const override { return new Self(static_cast<const Self&>(*this)); }

    // Identity first, then the dynamic class, then the fields.
    bool isEqual(const _eAnyBase* other) const override {
        if (other == this) return true;
        if (other == nullptr || typeid(*other) != typeid(*this)) return false;
        return static_cast<const Self*>(this)->equalFields(*static_cast<const Self*>(other));
    }

    friend bool operator==(const Self& a, const Self& b) { return a.isEqual(&b); }
};
