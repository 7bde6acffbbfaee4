#include "runtime/Pool.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

constinit _ePool _ePool::shared{};

namespace {

#if MODELBRIDGE_POOL_MAPS
// Chunks mapped from the system in slabs of 16, each chunk aligned to its size. A chunk given
// back keeps its pages and waits to be taken again, for any class: a process that parses again
// and again uses the same pages rather than having the system map them afresh each time, as
// glibc's heap would keep them too. Shared by every pool.
struct ChunkSource {
    static constexpr std::size_t slabBytes = 16 * _ePool::chunkBytes;
    char* next;   // the part of the newest slab not handed out yet
    char* end;
    void* spare;  // chunks given back, each linked to the next by its first word
};
constinit ChunkSource source{};

void* takeChunk() {
    if (source.spare != nullptr) {
        void* chunk = source.spare;
        source.spare = *static_cast<void**>(chunk);
        return chunk;
    }
    if (source.next == source.end) {
        // One chunk more than the slab, so that an aligned slab lies within; the rest goes back.
        const std::size_t bytes = ChunkSource::slabBytes + _ePool::chunkBytes;
        void* mapped = ::mmap(nullptr, bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped == MAP_FAILED) return nullptr;
        char* start = static_cast<char*>(mapped);
        auto* slab = reinterpret_cast<char*>((reinterpret_cast<std::uintptr_t>(start) + _ePool::chunkBytes - 1) &
                                             ~std::uintptr_t(_ePool::chunkBytes - 1));
        if (slab != start) ::munmap(start, std::size_t(slab - start));
        std::size_t after = std::size_t(start + bytes - (slab + ChunkSource::slabBytes));
        if (after != 0) ::munmap(slab + ChunkSource::slabBytes, after);
        source.next = slab;
        source.end = slab + ChunkSource::slabBytes;
    }
    void* chunk = source.next;
    source.next += _ePool::chunkBytes;
    return chunk;
}

void giveChunkBack(void* chunk) {
    *static_cast<void**>(chunk) = source.spare;
    source.spare = chunk;
}
#else
void* takeChunk() { return ::operator new(_ePool::chunkBytes, std::align_val_t(_ePool::chunkBytes), std::nothrow); }

void giveChunkBack(void* chunk) { ::operator delete(chunk, std::align_val_t(_ePool::chunkBytes)); }
#endif

// The pool is on from the start, so that objects made by static initialisers are pooled too.
// At process exit the free lists are forgotten, the chunks without a live block go back, and
// the pool is switched off, so that every other chunk goes back as soon as its last block is
// released: a leak checker sees only real leaks.
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
    void* memory = takeChunk();
    if (memory == nullptr) {
        flush();
        memory = takeChunk();
        if (memory == nullptr) throw std::bad_alloc();
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
    giveChunkBack(chunk);
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
