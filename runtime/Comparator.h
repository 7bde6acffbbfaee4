// Comparators: the three-way order that sets and maps keep their elements in.
#pragma once

#include <functional>

#include <cstdint>
#include <type_traits>

#include "runtime/Handle.h"
#include "runtime/Pair.h"
#include "runtime/Seq.h"

template <class T>
class _n1_Comparator : public _eAnyBase {
public:
    virtual _eRank compare(T a, T b) const = 0;
};

template <class T>
struct _aIsHandle : std::false_type {};
template <class C>
struct _aIsHandle<_eHndl<C>> : std::true_type {};
template <class C>
struct _aIsHandle<_eFrom<C>> : std::true_type {};

template <class T>
struct _aIsPair : std::false_type {};
template <class A, class B>
struct _aIsPair<_ePair<A, B>> : std::true_type {};

// The natural order of T. There is one of each, built on first use: `instance()`.
template <class T>
class _n1_SimpleComparator final : public _n1_Comparator<T> {
public:
    static const _n1_SimpleComparator& instance() {
        static const _eHndl<const _n1_SimpleComparator> shared(new _n1_SimpleComparator());
        return *shared;
    }

    _eAnyBase* clone() const override { return new _n1_SimpleComparator(); }
    // Two comparators of one type always agree.
    bool isEqual(const _eAnyBase* other) const override {
        return other != nullptr && typeid(*other) == typeid(*this);
    }

    _eRank compare(T a, T b) const override { return order(a, b); }

    // The order itself, without the virtual call: what sets and maps use.
    static _eRank order(const T& a, const T& b) {
        if constexpr (requires { _aOrderOf(a, b); }) {
            // A type with an order of its own, found beside the type.
            return _aOrderOf(a, b);
        } else if constexpr (std::is_same_v<T, _eString>) {
            return rankStrings(a, b);
        } else if constexpr (_aIsHandle<T>::value) {
            if (a.isNull()) return b.isNull() ? rankSame : rankBelow;
            if (b.isNull()) return rankAbove;
            return a->rank(b.get());
        } else if constexpr (_aIsPair<T>::value) {
            using A = decltype(a.first);
            using B = decltype(a.second);
            _eRank byFirst = _n1_SimpleComparator<A>::order(a.first, b.first);
            return byFirst != rankSame ? byFirst : _n1_SimpleComparator<B>::order(a.second, b.second);
        } else if constexpr (std::is_same_v<T, wchar_t>) {
            return numeric(std::uint32_t(a), std::uint32_t(b));
        } else {
            // Addresses order as numbers: the keys of the storage stream's table of objects.
            static_assert(std::is_arithmetic_v<T> || std::is_enum_v<T> || std::is_pointer_v<T>,
                          "no natural order for this type");
            return numeric(a, b);
        }
    }

private:
    template <class N>
    static _eRank numeric(N a, N b) {
        std::less<N> less;
        return less(a, b) ? rankBelow : (less(b, a) ? rankAbove : rankSame);
    }
};
