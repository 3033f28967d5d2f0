// The block allocator under dynamic objects: reuse of returned blocks, and its lock.

#include "support/TestSupport.h"

#include <orv/utils/BlockAllocator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <thread>
#include <vector>

using orv::utils::BlockAllocator;

TEST(BlockAllocator, ReturnedBlocksAreHandedOutAgainLastFirst)
{
    BlockAllocator<std::uint64_t> allocator(32);
    EXPECT_EQ(allocator.getBlockSize(), 32u);
    std::uint64_t* first = allocator.allocate();
    std::uint64_t* second = allocator.allocate();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(first, second);
    // Each block holds its whole size.
    for (unsigned int i = 0; i < 32; ++i) {
        first[i] = i;
        second[i] = 100 + i;
    }
    EXPECT_EQ(first[31], 31u);
    allocator.deallocate(first);
    allocator.deallocate(second);
    EXPECT_EQ(allocator.allocate(), second);
    EXPECT_EQ(allocator.allocate(), first);
    // A reused block is not cleared.
    EXPECT_EQ(first[5], 5u);
    // Blocks still out at destruction are released with it (the leak check would see them).
}

TEST(BlockAllocator, ThreadsSharingOneAllocatorNeverGetTheSameBlock)
{
    BlockAllocator<int> allocator(16);
    constexpr int threadCount = 4;
    constexpr int rounds = 2000;
    std::atomic<int> overlaps(0);
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&allocator, &overlaps, t]() {
            for (int round = 0; round < rounds; ++round) {
                int* block = allocator.allocate();
                for (int i = 0; i < 16; ++i) {
                    block[i] = t;
                }
                for (int i = 0; i < 16; ++i) {
                    if (block[i] != t) {
                        ++overlaps;
                    }
                }
                allocator.deallocate(block);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(overlaps.load(), 0);
}

TEST(BlockAllocator, KeepsTrackOfManyBlocksThroughReturnsAndReuse)
{
    orv::test::AssertionCapture capture;
    BlockAllocator<char> allocator(8);
    std::vector<char*> blocks;
    for (int i = 0; i < 1000; ++i) {
        blocks.push_back(allocator.allocate());
    }
    // Return every other block, twice: the second return of each is refused.
    for (std::size_t i = 0; i < blocks.size(); i += 2) {
        allocator.deallocate(blocks[i]);
    }
    for (std::size_t i = 0; i < blocks.size(); i += 2) {
        allocator.deallocate(blocks[i]);
    }
    EXPECT_EQ(capture.texts().size(), 500u);
    capture.clear();
    // The returned blocks come back, last returned first, and are out again.
    for (std::size_t i = blocks.size(); i >= 2; i -= 2) {
        EXPECT_EQ(allocator.allocate(), blocks[i - 2]);
    }
    for (char* block : blocks) {
        allocator.deallocate(block);
    }
    EXPECT_EQ(capture.texts(), orv::test::Texts{});
    // Everything is back: a second round hands out the same blocks and no new one.
    std::vector<char*> again;
    for (int i = 0; i < 1000; ++i) {
        again.push_back(allocator.allocate());
    }
    std::sort(blocks.begin(), blocks.end());
    std::sort(again.begin(), again.end());
    EXPECT_EQ(again, blocks);
}
