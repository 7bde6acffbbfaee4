// The block pool: every counted object, tree node and node array comes from here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "runtime/Config.h"

class MB_API _ePool {
public:
    static constexpr std::size_t classCount = 128;  // size classes of 8 bytes each
    static constexpr std::size_t granule = 8;
    static constexpr std::size_t largestPooled = classCount * granule;  // 1024
    // Pooled blocks are carved from chunks of this size, aligned to it, each for one class.
    static constexpr std::size_t chunkBytes = std::size_t(64) << 10;

    // The head of a chunk: its place in the list of chunks and how many of its blocks are live.
    struct Chunk {
        Chunk* previous;
        Chunk* next;
        std::uint32_t sizeClass;
        std::uint32_t live;  // blocks handed out and not yet released
        std::uint64_t unused;
    };
    static constexpr std::size_t headerBytes = sizeof(Chunk);

    struct SizeClass {
        void* head;          // first free block; the next pointer is each block's first word
        std::size_t blocks;  // blocks now in this list
        char* fresh;         // the part of the class's newest chunk not carved yet
        char* freshEnd;
    };

    // A block of at least `size` bytes, all of them zero. Always inlined: `size` is mostly the
    // constant size of a class, so the choice of list and the zeroing fold to a few stores.
    [[gnu::always_inline]] void* allocate(std::size_t size) {
        void* block = allocateUnzeroed(size);
        std::memset(block, 0, size);
        return block;
    }

    // The same, its bytes left as they are: for a holder that writes each byte before reading
    // it, such as a buffer of text or the storage of a vector.
    [[gnu::always_inline]] void* allocateUnzeroed(std::size_t size) {
        if (MODELBRIDGE_POOL_BYPASS || size == 0 || size > largestPooled) return allocateLarge(size);
        std::size_t index = classOf(size);
        SizeClass& list = lists[index];
        void* block;
        if (list.head != nullptr) {
            block = list.head;
            MB_UNPOISON(block, roundedSize(index));
            list.head = *static_cast<void**>(block);
            // The next block of the list is wherever it was released; fetching it now hides
            // the wait for it from the next allocation of this size.
            __builtin_prefetch(list.head, 1);
            --list.blocks;
            freeBytes -= std::int64_t(roundedSize(index));
        } else if (list.fresh != list.freshEnd) {
            block = list.fresh;
            list.fresh += roundedSize(index);
            MB_UNPOISON(block, roundedSize(index));
        } else {
            block = carveFromNewChunk(index);
        }
        ++chunkOf(block)->live;
        return block;
    }

    // Gives a block back; `size` is the size that was asked for.
    void release(void* block, std::size_t size) {
        if (MODELBRIDGE_POOL_BYPASS || size == 0 || size > largestPooled) {
            releaseLarge(block, size);
            return;
        }
        std::size_t index = classOf(size);
        Chunk* chunk = chunkOf(block);
        --chunk->live;
        if (!active) {
            // After process exit nothing is kept: a chunk goes as its last block does.
            if (chunk->live == 0) freeChunk(chunk);
            return;
        }
        SizeClass& list = lists[index];
        *static_cast<void**>(block) = list.head;
        list.head = block;
        ++list.blocks;
        freeBytes += std::int64_t(roundedSize(index));
        MB_POISON(block, roundedSize(index));
    }

    // Gives every chunk without a live block back, taking its blocks out of the free lists.
    void flush();
    // At process exit: forgets the free lists, gives back every chunk without a live block,
    // and switches the pool off, so that a chunk goes back as soon as its last block does.
    void shutDown();

    static constexpr std::size_t roundedSize(std::size_t index) { return granule * (index + 1); }
    static constexpr std::size_t classOf(std::size_t size) { return (size - 1) / granule; }
    static Chunk* chunkOf(void* block) {
        return reinterpret_cast<Chunk*>(reinterpret_cast<std::uintptr_t>(block) & ~std::uintptr_t(chunkBytes - 1));
    }

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
    Chunk* chunks;       // every chunk held, newest first
    bool active = true;  // off after process exit: chunks then go back as they empty
    std::int64_t totalPooled;  // bytes of the chunks held
    std::int64_t largeBytes;   // bytes live in blocks above the largest class
    std::int64_t freeBytes;    // bytes now waiting in the free lists
    std::int64_t flushes;      // times the lists were emptied
    std::int64_t flushFloor;   // free bytes below which no flush runs again, however few
                               // chunks the last one could give back

private:
    void* allocateLarge(std::size_t size);
    void* carveFromNewChunk(std::size_t index);
    void freeChunk(Chunk* chunk);
    void releaseLarge(void* block, std::size_t size);
};
