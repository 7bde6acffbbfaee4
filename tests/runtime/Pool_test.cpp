// The block pool: size classes, zeroed blocks, the flush rule and what the sanitizers see.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "runtime/Pool.h"

namespace {

bool allZero(const void* block, std::size_t size) {
    const auto* bytes = static_cast<const unsigned char*>(block);
    for (std::size_t i = 0; i < size; ++i)
        if (bytes[i] != 0) return false;
    return true;
}

// A private pool, so that the counters start from zero.
_ePool freshPool() {
    _ePool pool{};
    pool.setActive(true);
    return pool;
}

}  // namespace

TEST(Pool, BlocksAreCarvedFromChunksZeroedAndReusedWithinTheirClass) {
    if (MODELBRIDGE_POOL_BYPASS) GTEST_SKIP() << "every block goes to the system allocator in this build";
    constexpr auto chunk = std::int64_t(_ePool::chunkBytes);
    constexpr std::size_t granule = _ePool::granule;
    _ePool pool = freshPool();
    auto* a = static_cast<char*>(pool.allocate(1));
    EXPECT_EQ(pool.pooledBytes(), chunk);
    auto* b = static_cast<char*>(pool.allocate(granule));  // same class as 1: the next block of the chunk
    EXPECT_EQ(b, a + granule);
    EXPECT_EQ(_ePool::chunkOf(a)->live, 2u);
    std::memset(a, 0xAB, granule);
    pool.release(a, 1);
    EXPECT_EQ(pool.freeListBytes(), std::int64_t(granule));
    EXPECT_EQ(pool.freeBlocks(0), 1u);
    EXPECT_EQ(pool.allocate(granule), a);
    EXPECT_TRUE(allZero(a, granule));
    EXPECT_EQ(pool.freeListBytes(), 0);
    // A block above the largest class comes from the system allocator, zeroed all the same,
    // whatever the block it reuses held; one left unzeroed is still taken from the free list.
    constexpr std::size_t large = _ePool::largestPooled + 8;
    auto* big = static_cast<char*>(pool.allocate(large));
    std::memset(big, 0xAB, large);
    pool.release(big, large);
    big = static_cast<char*>(pool.allocate(large));
    EXPECT_TRUE(allZero(big, large));
    EXPECT_EQ(pool.liveLargeBytes(), std::int64_t(large));
    pool.release(big, large);
    pool.release(a, granule);
    EXPECT_EQ(pool.allocateUnzeroed(granule), a);

    void* c = pool.allocate(granule + 1);           // the next class: a chunk of its own
    void* d = pool.allocate(_ePool::largestPooled);  // the last class
    EXPECT_EQ(pool.pooledBytes(), 3 * chunk);
    EXPECT_NE(_ePool::chunkOf(c), _ePool::chunkOf(a));
    pool.release(c, granule + 1);
    pool.release(d, _ePool::largestPooled);
    pool.release(b, granule);
    // The chunk of class 0 still has a live block: it stays, and so does its free block.
    pool.flush();
    EXPECT_EQ(pool.flushCount(), 1);
    EXPECT_EQ(pool.pooledBytes(), chunk);
    EXPECT_EQ(pool.freeBlocks(0), 1u);
    EXPECT_EQ(pool.freeBlocks(_ePool::classCount - 1), 0u);
    pool.release(a, granule);
    pool.flush();
    EXPECT_EQ(pool.pooledBytes(), 0);
    EXPECT_EQ(pool.freeListBytes(), 0);
    EXPECT_EQ(pool.freeBlocks(0), 0u);
}

#if MODELBRIDGE_POOL_MAPS && !MODELBRIDGE_POOL_BYPASS
TEST(Pool, ChunksMappedInSlabsAreTakenAgainByAnyClass) {
    _ePool pool = freshPool();
    constexpr std::size_t size = 64;
    auto* a = static_cast<char*>(pool.allocate(size));
    _ePool::Chunk* chunk = _ePool::chunkOf(a);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(chunk) % _ePool::chunkBytes, 0u);
    std::memset(a, 0xAB, size);
    pool.release(a, size);
    pool.flush();
    EXPECT_EQ(pool.pooledBytes(), 0);
    // The chunk given back is the next one taken, by another class, its blocks zeroed as ever.
    auto* b = static_cast<char*>(pool.allocate(size + _ePool::granule));
    EXPECT_EQ(_ePool::chunkOf(b), chunk);
    EXPECT_EQ(chunk->sizeClass, _ePool::classOf(size + _ePool::granule));
    EXPECT_TRUE(allZero(b, size + _ePool::granule));
    // Then chunks come from the slab, one after the other.
    void* c = pool.allocate(size);
    EXPECT_NE(_ePool::chunkOf(c), chunk);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(c) % _ePool::chunkBytes, _ePool::headerBytes);
    pool.release(b, size + _ePool::granule);
    pool.release(c, size);
    pool.flush();
    EXPECT_EQ(pool.pooledBytes(), 0);
}
#endif

#if MODELBRIDGE_SANITIZE && !MODELBRIDGE_POOL_BYPASS
TEST(PoolDeathTest, UseAfterReleaseIsReported) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            auto* block = static_cast<volatile int*>(_ePool::shared.allocate(48));
            _ePool::shared.release(const_cast<int*>(block), 48);
            block[2] = 5;
        },
        "use-after-poison");
}
#else
TEST(PoolDeathTest, ReleasedBlockWaitsInItsList) {
    if (MODELBRIDGE_POOL_BYPASS) GTEST_SKIP() << "every block goes to the system allocator in this build";
    void* block = _ePool::shared.allocate(48);
    std::size_t before = _ePool::shared.freeBlocks(_ePool::classOf(48));
    _ePool::shared.release(block, 48);
    EXPECT_EQ(_ePool::shared.freeBlocks(_ePool::classOf(48)), before + 1);
    EXPECT_EQ(_ePool::shared.allocate(48), block);
    _ePool::shared.release(block, 48);
}
#endif
