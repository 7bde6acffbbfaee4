// One-word counted handles: `_eHndl<T>` holds a value of exactly T, `_eFrom<T>` of T or a descendant.
#pragma once

#include <type_traits>
#include <utility>

#include "runtime/AnyBase.h"

namespace _aHandle {

// Takes a count on `object`; a frozen object is cloned first, so the holder gets a snapshot.
template <class T>
inline T* take(T* object) {
    if (object == nullptr) return nullptr;
    if (MB_UNLIKELY(object->isFrozen())) object = static_cast<T*>(object->clone());
    object->addCount();
    return object;
}

// Deletes an object whose last count has gone. Deleting releases what the object holds, which
// may delete more, down the deepest path through the objects; past a fixed depth the objects
// wait in a list that the outermost deletion works off, so the machine stack stays shallow
// whatever the depth of a tree.
MB_API void destroy(const _eAnyBase* object);

template <class T>
inline void drop(T* object) {
    if (object != nullptr && object->dropCount()) destroy(object);
}

// Moves the holder of a shared object to a fresh clone of it. A frozen object is left alone.
template <class T>
inline void unique(T*& object) {
    if (object != nullptr && object->countWord() > 1) {
        T* copy = static_cast<T*>(object->clone());
        copy->setCount(1);
        object->dropCount();
        object = copy;
    }
}

}  // namespace _aHandle

// The handle operations, shared by both handle kinds. `Derived` supplies the equality.
template <class T, class Derived>
class _aHandleBase {
public:
    _aHandleBase() noexcept = default;
    _aHandleBase(T* object) : ptr(_aHandle::take(object)) {}
    _aHandleBase(const _aHandleBase& other) : ptr(_aHandle::take(other.ptr)) {}
    _aHandleBase(_aHandleBase&& other) noexcept : ptr(other.ptr) { other.ptr = nullptr; }
    ~_aHandleBase() { _aHandle::drop(ptr); }

    Derived& operator=(const _aHandleBase& other) { return assign(other.ptr); }
    Derived& operator=(_aHandleBase&& other) noexcept {
        if (this != &other) {
            T* old = ptr;
            ptr = other.ptr;
            other.ptr = nullptr;
            _aHandle::drop(old);
        }
        return static_cast<Derived&>(*this);
    }
    Derived& operator=(T* object) { return assign(object); }

    // Gives up the count and clears the handle.
    void reset() {
        T* old = ptr;
        ptr = nullptr;
        _aHandle::drop(old);
    }
    void makeUnique() { _aHandle::unique(ptr); }
    T* uniquePointer() {
        _aHandle::unique(ptr);
        return ptr;
    }

    T* get() const noexcept { return ptr; }
    T* operator->() const noexcept { return ptr; }
    T& operator*() const noexcept { return *ptr; }
    explicit operator bool() const noexcept { return ptr != nullptr; }
    bool isNull() const noexcept { return ptr == nullptr; }
    bool operator==(std::nullptr_t) const noexcept { return ptr == nullptr; }

protected:
    Derived& assign(T* object) {
        // The object held already: taking a count and giving one back would change nothing. A
        // frozen one is still taken, so that the holder gets its snapshot.
        if (object == ptr && (object == nullptr || !object->isFrozen())) return static_cast<Derived&>(*this);
        T* fresh = _aHandle::take(object);
        T* old = ptr;
        ptr = fresh;
        _aHandle::drop(old);
        return static_cast<Derived&>(*this);
    }

    T* ptr = nullptr;
};

template <class T>
class _eHndl : public _aHandleBase<T, _eHndl<T>> {
    using Base = _aHandleBase<T, _eHndl<T>>;

public:
    using Base::Base;
    using Base::operator=;
    _eHndl() noexcept = default;
    _eHndl(const _eHndl&) = default;
    _eHndl(_eHndl&&) noexcept = default;
    _eHndl& operator=(const _eHndl&) = default;
    _eHndl& operator=(_eHndl&&) noexcept = default;

    // The class is known exactly, so its own field comparison decides; classes without one
    // (tree nodes) answer through `isEqual`.
    bool operator==(const _eHndl& other) const {
        if (this->ptr == other.ptr) return true;
        if (this->ptr == nullptr || other.ptr == nullptr) return false;
        if constexpr (requires(const T& a) { a.equalFields(a); })
            return this->ptr->equalFields(*other.ptr);
        else
            return this->ptr->isEqual(other.ptr);
    }
};

template <class T>
class _eFrom : public _aHandleBase<T, _eFrom<T>> {
    using Base = _aHandleBase<T, _eFrom<T>>;

public:
    using Base::Base;
    using Base::operator=;
    _eFrom() noexcept = default;
    _eFrom(const _eFrom&) = default;
    _eFrom(_eFrom&&) noexcept = default;
    _eFrom& operator=(const _eFrom&) = default;
    _eFrom& operator=(_eFrom&&) noexcept = default;

    template <class U>
        requires std::is_base_of_v<T, U>
    _eFrom(const _eHndl<U>& other) : Base(other.get()) {}
    template <class U>
        requires(std::is_base_of_v<T, U> && !std::is_same_v<T, U>)
    _eFrom(const _eFrom<U>& other) : Base(other.get()) {}

    // Both must be of one dynamic class, which then compares its fields.
    bool operator==(const _eFrom& other) const {
        if (this->ptr == other.ptr) return true;
        if (this->ptr == nullptr || other.ptr == nullptr) return false;
        if (this->ptr->typeIdentity() != other.ptr->typeIdentity()) return false;
        return this->ptr->isEqual(other.ptr);
    }
};
