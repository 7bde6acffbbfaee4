#include "runtime/Pool.h"

#include <new>

constinit _ePool _ePool::shared{};

namespace {

// The pool is on from the start, so that objects made by static initialisers are pooled too.
// At process exit the free lists go back to the system allocator and the pool is switched
// off, so that blocks released by later destructors go straight back too, and a leak checker
// sees only real leaks.
struct PoolLifetime {
    ~PoolLifetime() {
        _ePool::shared.flush();
        _ePool::shared.setActive(false);
    }
};
PoolLifetime poolLifetime;

}  // namespace

void* _ePool::allocateLarge(std::size_t size) {
    largeBytes += std::int64_t(size);
    void* block;
    try {
        block = ::operator new(size);
    } catch (const std::bad_alloc&) {
        flush();
        block = ::operator new(size);
    }
    std::memset(block, 0, size);
    return block;
}

void* _ePool::allocateFresh(std::size_t index, std::size_t size) {
    std::size_t rounded = roundedSize(index);
    if (freeBytes > totalPooled / 4) flush();
    totalPooled += std::int64_t(rounded);
    void* block = ::operator new(rounded, std::nothrow);
    if (block == nullptr) {
        flush();
        block = ::operator new(rounded);
    }
    std::memset(block, 0, size);
    return block;
}

void _ePool::releaseLarge(void* block, std::size_t size) {
    ::operator delete(block);
    largeBytes -= std::int64_t(size);
}

void _ePool::flush() {
    for (std::size_t index = 0; index < classCount; ++index) {
        SizeClass& list = lists[index];
        while (list.head != nullptr) {
            void* block = list.head;
            MB_UNPOISON(block, roundedSize(index));
            list.head = *static_cast<void**>(block);
            ::operator delete(block);
        }
        list.blocks = 0;
    }
    totalPooled -= freeBytes;
    freeBytes = 0;
    ++flushes;
}
