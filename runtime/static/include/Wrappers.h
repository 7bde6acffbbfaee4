// Wrappers: objects that hold one plain value where an object is needed, above all as an
// alternative of a `_eUnion`. Each enumeration `X` has its wrapper `X::_eWrapper`.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>
#include <type_traits>

#include "runtime/Class.h"
#include "runtime/Comparator.h"
#include "runtime/Failure.h"
#include "runtime/Storable.h"
#include "runtime/StringUtils.h"

template <class T>
class _eWrapperBase : public _eStorable {
public:
    explicit _eWrapperBase(const T& value = T()) : value(value) {}

    // Wrappers come from the plain global allocator, not from the pool.
    static void* operator new(std::size_t size) { return ::operator new(size); }
    static void operator delete(void* block, std::size_t) { ::operator delete(block); }

    // Two wrappers of one class compare their values (a string's compares nothing);
    // anything else is ordered by class.
    _eRank rank(const _eAnyBase* other) const override {
        if constexpr (!std::is_same_v<T, _eString>) {
            if (other != nullptr && typeid(*other) == typeid(*this))
                return _n1_SimpleComparator<T>::order(value, static_cast<const _eWrapperBase*>(other)->value);
        }
        return defaultRank(other);
    }

    // A wrapper is stored whole by `store`; writing its fields alone is never asked for.
    void storeFields(StoreStream&) const override { raiseCannotHappen(_xPlaces::wrapperStoreFields); }

    // Wrappers stand at level 1, without a parent record.
    static const _eFullTypeInfo* _aTypeRecord() { return nullptr; }

    const T& get() const { return value; }
    bool equalFields(const _eWrapperBase& other) const { return value == other.value; }

protected:
    void set(const T& newValue) {
        _eFreeze freeze(this);
        value = newValue;
    }

private:
    T value;  // the wrapped value
};

template <class T>
class _eStorableWrapperBase : public _eWrapperBase<T> {
public:
    using _eWrapperBase<T>::_eWrapperBase;
};

// The rows of the built-in types: "int", "bool", "char", "real", "byte".
template <class T>
struct _aBasicTypeRow;
template <>
struct _aBasicTypeRow<std::int32_t> { static constexpr int index = 0; };
template <>
struct _aBasicTypeRow<bool> { static constexpr int index = 1; };
template <>
struct _aBasicTypeRow<wchar_t> { static constexpr int index = 2; };
template <>
struct _aBasicTypeRow<double> { static constexpr int index = 3; };
template <>
struct _aBasicTypeRow<unsigned char> { static constexpr int index = 4; };

// The writers and readers of plain values on a storage stream.
MB_API void _aStoreValue(StoreStream& stream, std::int32_t value);
MB_API void _aStoreValue(StoreStream& stream, bool value);
MB_API void _aStoreValue(StoreStream& stream, wchar_t value);
MB_API void _aStoreValue(StoreStream& stream, double value);
MB_API void _aStoreValue(StoreStream& stream, unsigned char value);
MB_API void _aStoreValue(StoreStream& stream, const _eString& value);
MB_API void _aFillValue(FillStream& stream, std::int32_t& value);
MB_API void _aFillValue(FillStream& stream, bool& value);
MB_API void _aFillValue(FillStream& stream, wchar_t& value);
MB_API void _aFillValue(FillStream& stream, double& value);
MB_API void _aFillValue(FillStream& stream, unsigned char& value);
MB_API void _aFillValue(FillStream& stream, _eString& value);
MB_API void _aStoreEnum(StoreStream& stream, const wchar_t* storageName, std::int32_t value);
MB_API std::int32_t _aFillEnum(FillStream& stream, const wchar_t* storageName);

inline _eString _aValueText(std::int32_t v) { return intToString(v); }
inline _eString _aValueText(bool v) { return boolToString(v); }
inline _eString _aValueText(wchar_t v) { return charToString(v); }
inline _eString _aValueText(double v) { return doubleToString(v); }
inline _eString _aValueText(unsigned char v) { return byteToString(v); }

// A number, truth value, character or byte.
template <class T>
class _eBasicTypeWrapper final : public _eClass<_eBasicTypeWrapper<T>, _eStorableWrapperBase<T>> {
public:
    static constexpr _aTypeSlot _aType{&_aModule28, _aBasicTypeRow<T>::index};
    using _eClass<_eBasicTypeWrapper<T>, _eStorableWrapperBase<T>>::_eClass;

    void store(StoreStream& stream) const override { _aStoreValue(stream, this->get()); }
    void fill(FillStream& stream) override {
        T read{};
        _aFillValue(stream, read);
        this->set(read);
    }

    _eString toString() const override { return _aValueText(this->get()); }
};

template <class T>
class _eStorableWrapper;

// A string, printed as the sequence of its characters.
template <>
class _eStorableWrapper<_eString> final
    : public _eClass<_eStorableWrapper<_eString>, _eStorableWrapperBase<_eString>> {
public:
    using _eClass<_eStorableWrapper<_eString>, _eStorableWrapperBase<_eString>>::_eClass;

    // "seq of char".
    static _eHndl<_eInstblTypeInfo> _aBuildType() {
        return _aTypeOf({&_aModule28, 6})->instantiate({_aTypeOf({&_aModule28, 2})});
    }

    void store(StoreStream& stream) const override { _aStoreValue(stream, get()); }
    void fill(FillStream& stream) override {
        _eString read;
        _aFillValue(stream, read);
        set(read);
    }

    _eString toString() const override { return seqText(get()); }
};

// The wrapper of an enumeration `X`: `X` gives `_eEnum`, `count`, `_aType`, `storageName`
// and `labels`, one per value.
template <class X>
class _eEnumWrapper final : public _eClass<_eEnumWrapper<X>, _eStorableWrapperBase<typename X::_eEnum>> {
    static_assert(std::size(X::labels) == std::size_t(X::count), "one label per value");

public:
    static constexpr _aTypeSlot _aType = X::_aType;
    static constexpr const wchar_t* storageName = X::storageName;
    using _eClass<_eEnumWrapper<X>, _eStorableWrapperBase<typename X::_eEnum>>::_eClass;

    void store(StoreStream& stream) const override { _aStoreEnum(stream, storageName, this->get()); }
    void fill(FillStream& stream) override { this->set(typename X::_eEnum(_aFillEnum(stream, storageName))); }

    _eString toString() const override { return label(this->get()); }

    static _eString label(typename X::_eEnum value) { return X::labels[value]; }
};
