// `PoolAllocator<T>`: a standard container's storage from the block pool, for the short-lived
// vectors that are made and dropped by the thousand: a block of a size class is taken from its
// free list and given back to it, without the system allocator's bookkeeping.
#pragma once

#include <cstddef>

#include "runtime/Pool.h"

template <class T>
struct PoolAllocator {
    using value_type = T;

    PoolAllocator() = default;
    template <class U>
    PoolAllocator(const PoolAllocator<U>&) {}

    T* allocate(std::size_t n) { return static_cast<T*>(_ePool::shared.allocateUnzeroed(n * sizeof(T))); }
    void deallocate(T* block, std::size_t n) { _ePool::shared.release(block, n * sizeof(T)); }

    template <class U>
    bool operator==(const PoolAllocator<U>&) const {
        return true;
    }
};
