// `_eUnion`: a value of one of several alternative classes; the object behind it tells which.
#pragma once

#include "runtime/Any.h"
#include "runtime/Handle.h"

class _eUnion {
public:
    _eUnion() = default;
    _eUnion(_eAny* object) : value(object) {}
    template <class C>
    _eUnion(const _eHndl<C>& object) : value(object.get()) {}

    // True if the alternative held is exactly of class C.
    template <class C>
    bool holds() const {
        return !value.isNull() && value->typeIdentity() == typeid(C);
    }
    // The alternative as a C; null if it is of another class.
    template <class C>
    _eHndl<C> as() const {
        if (!holds<C>()) return {};
        return static_cast<C*>(value.get());
    }
    _eAny* get() const { return value.get(); }
    bool isNull() const { return value.isNull(); }

    bool operator==(const _eUnion& other) const { return value == other.value; }

private:
    _eFrom<_eAny> value;  // the alternative held
};
