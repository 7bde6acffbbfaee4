// The block pool: every counted object, tree node and node array comes from here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "runtime/Config.h"

class MB_API _ePool {
public:
    static constexpr std::size_t classCount = 64;   // size classes of 16 bytes each
    static constexpr std::size_t granule = 16;
    static constexpr std::size_t largestPooled = classCount * granule;  // 1024

    struct SizeClass {
        void* head;          // first free block; the next pointer is each block's first word
        std::size_t blocks;  // blocks now in this list
    };

    // A block of at least `size` bytes, all of them zero.
    void* allocate(std::size_t size) {
        if (MODELBRIDGE_POOL_BYPASS || size == 0 || size > largestPooled) return allocateLarge(size);
        std::size_t index = (size - 1) >> 4;
        SizeClass& list = lists[index];
        if (active && list.head != nullptr) {
            void* block = list.head;
            MB_UNPOISON(block, roundedSize(index));
            list.head = *static_cast<void**>(block);
            --list.blocks;
            freeBytes -= std::int64_t(roundedSize(index));
            std::memset(block, 0, size);
            return block;
        }
        return allocateFresh(index, size);
    }

    // Gives a block back; `size` is the size that was asked for.
    void release(void* block, std::size_t size) {
        if (MODELBRIDGE_POOL_BYPASS || size == 0 || size > largestPooled || !active) {
            releaseLarge(block, size);
            return;
        }
        std::size_t index = (size - 1) >> 4;
        SizeClass& list = lists[index];
        *static_cast<void**>(block) = list.head;
        list.head = block;
        ++list.blocks;
        freeBytes += std::int64_t(roundedSize(index));
        MB_POISON(block, roundedSize(index));
    }

    // Frees every block of the free lists to the system allocator.
    void flush();

    static constexpr std::size_t roundedSize(std::size_t index) { return granule * (index + 1); }
    static constexpr std::size_t classOf(std::size_t size) { return (size - 1) >> 4; }

    bool isActive() const { return active; }
    void setActive(bool on) { active = on; }
    std::int64_t pooledBytes() const { return totalPooled; }
    std::int64_t liveLargeBytes() const { return largeBytes; }
    std::int64_t freeListBytes() const { return freeBytes; }
    std::int64_t flushCount() const { return flushes; }
    std::size_t freeBlocks(std::size_t index) const { return lists[index].blocks; }

    // The one pool of the process. Its state is constant-initialised, so it is usable
    // before any constructor of the library has run and after every destructor has.
    static _ePool shared;

    SizeClass lists[classCount];
    bool active = true;  // off after process exit: blocks then go straight back to the system
    std::int64_t totalPooled;  // bytes obtained for pooled sizes, less those given back
    std::int64_t largeBytes;   // bytes live in blocks above the largest class
    std::int64_t freeBytes;    // bytes now waiting in the free lists
    std::int64_t flushes;      // times the lists were emptied

private:
    void* allocateLarge(std::size_t size);
    void* allocateFresh(std::size_t index, std::size_t size);
    void releaseLarge(void* block, std::size_t size);
};
