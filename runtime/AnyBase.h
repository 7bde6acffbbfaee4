// The root of every counted object: the count word, its freeze bit, the virtual operations.
#pragma once

#include <cstddef>
#include <cstdint>
#include <typeinfo>

#include "runtime/Config.h"
#include "runtime/Pool.h"

struct _eFullTypeInfo;
class StoreStream;
class FillStream;

// Result of every three-way comparison.
enum _eRank : int { rankBelow = 0, rankSame = 1, rankAbove = 2 };

class MB_API _eAnyBase {
public:
    _eAnyBase() = default;
    // A copy is a new object: it starts without counts.
    _eAnyBase(const _eAnyBase&) : count(0) {}
    _eAnyBase& operator=(const _eAnyBase&) { return *this; }
    virtual ~_eAnyBase();

    virtual _eRank rank(const _eAnyBase* other) const;
    virtual const _eFullTypeInfo* _aGetFullTypeInfo() const;
    virtual _eAnyBase* clone() const = 0;
    virtual const std::type_info& typeIdentity() const;
    virtual bool isEqual(const _eAnyBase* other) const = 0;
    virtual void store(StoreStream& stream) const;
    virtual void fill(FillStream& stream);

    // Objects come from the block pool; deletion through the virtual destructor passes the
    // size of the object's own class.
    static void* operator new(std::size_t size) { return _ePool::shared.allocate(size); }
    static void operator delete(void* block, std::size_t size) { _ePool::shared.release(block, size); }

    // The count word. Negative means frozen: bit 31 is the freeze bit.
    std::int32_t countWord() const noexcept { return count; }
    bool isFrozen() const noexcept { return count < 0; }
    void addCount() const noexcept { count = std::int32_t(std::uint32_t(count) + 1u); }
    // Gives up one count; true when that was the last one and the object must go.
    bool dropCount() const noexcept {
        std::int32_t was = count;
        count = std::int32_t(std::uint32_t(count) - 1u);
        return was == 1;
    }
    void toggleFreeze() const noexcept { count = std::int32_t(std::uint32_t(count) + 0x80000000u); }
    void setCount(std::int32_t value) const noexcept { count = value; }

    // The default order of objects of different classes: by depth and type names.
    _eRank defaultRank(const _eAnyBase* other) const;

private:
    mutable std::int32_t count = 0;  // handles held on this object; bit 31 the freeze bit
};

// Freezes an object for the length of a scope that changes it, so that a handle taken on it
// meanwhile gets a snapshot. An object that is frozen already stays in its outer bracket's care.
class _eFreeze {
public:
    explicit _eFreeze(const _eAnyBase* object) noexcept
        : held(object->countWord() >= 0 ? object : nullptr) {
        if (held != nullptr) held->toggleFreeze();
    }
    ~_eFreeze() {
        if (held != nullptr) held->toggleFreeze();
    }
    _eFreeze(const _eFreeze&) = delete;
    _eFreeze& operator=(const _eFreeze&) = delete;

private:
    const _eAnyBase* held;
};
