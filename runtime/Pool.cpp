#include "runtime/Pool.h"

#include <new>

constinit _ePool _ePool::shared{};

namespace {

// The pool is on from the start, so that objects made by static initialisers are pooled too.
// At process exit the free lists are forgotten, the chunks without a live block go back to the
// system allocator, and the pool is switched off, so that every other chunk goes back as soon
// as its last block is released: a leak checker sees only real leaks.
struct PoolLifetime {
    ~PoolLifetime() { _ePool::shared.shutDown(); }
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
    return block;
}

void* _ePool::carveFromNewChunk(std::size_t index) {
    // A flush walks every free block: the next one waits until a quarter of the pool more has
    // been released, so that blocks of chunks that stay in use are not walked again and again.
    if (freeBytes > totalPooled / 4 && freeBytes >= flushFloor) flush();
    void* memory = ::operator new(chunkBytes, std::align_val_t(chunkBytes), std::nothrow);
    if (memory == nullptr) {
        flush();
        memory = ::operator new(chunkBytes, std::align_val_t(chunkBytes));
    }
    auto* chunk = static_cast<Chunk*>(memory);
    *chunk = {nullptr, chunks, std::uint32_t(index), 0, 0};
    if (chunks != nullptr) chunks->previous = chunk;
    chunks = chunk;
    totalPooled += std::int64_t(chunkBytes);
    // The blocks that fit after the head; what is left over at the end stays unused.
    std::size_t size = roundedSize(index);
    char* first = static_cast<char*>(memory) + headerBytes;
    std::size_t count = (chunkBytes - headerBytes) / size;
    MB_POISON(first, count * size);
    SizeClass& list = lists[index];
    list.fresh = first + size;
    list.freshEnd = first + count * size;
    MB_UNPOISON(first, size);
    return first;
}

void _ePool::freeChunk(Chunk* chunk) {
    SizeClass& list = lists[chunk->sizeClass];
    if (chunkOf(list.fresh) == chunk) list.fresh = list.freshEnd = nullptr;
    if (chunk->previous != nullptr) chunk->previous->next = chunk->next;
    if (chunk->next != nullptr) chunk->next->previous = chunk->previous;
    if (chunks == chunk) chunks = chunk->next;
    totalPooled -= std::int64_t(chunkBytes);
    MB_UNPOISON(chunk, chunkBytes);
    ::operator delete(static_cast<void*>(chunk), std::align_val_t(chunkBytes));
}

void _ePool::releaseLarge(void* block, std::size_t size) {
    ::operator delete(block);
    largeBytes -= std::int64_t(size);
}

void _ePool::flush() {
    for (std::size_t index = 0; index < classCount; ++index) {
        SizeClass& list = lists[index];
        // Keeps the blocks of chunks that still have a live block, in their order; their
        // links are open to change until the list is done.
        void** link = &list.head;
        while (*link != nullptr) {
            void* block = *link;
            MB_UNPOISON(block, sizeof(void*));
            void* next = *static_cast<void**>(block);
            if (chunkOf(block)->live == 0) {
                *link = next;
                --list.blocks;
                freeBytes -= std::int64_t(roundedSize(index));
            } else {
                link = static_cast<void**>(block);
            }
        }
        for (void* block = list.head; block != nullptr;) {
            void* next = *static_cast<void**>(block);
            MB_POISON(block, roundedSize(index));
            block = next;
        }
    }
    for (Chunk* chunk = chunks; chunk != nullptr;) {
        Chunk* next = chunk->next;
        if (chunk->live == 0) freeChunk(chunk);
        chunk = next;
    }
    flushFloor = freeBytes + totalPooled / 4;
    ++flushes;
}

void _ePool::shutDown() {
    for (SizeClass& list : lists) list = {nullptr, 0, nullptr, nullptr};
    freeBytes = 0;
    for (Chunk* chunk = chunks; chunk != nullptr;) {
        Chunk* next = chunk->next;
        if (chunk->live == 0) freeChunk(chunk);
        chunk = next;
    }
    active = false;
}
