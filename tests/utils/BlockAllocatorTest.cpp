// The block allocator under dynamic objects: reuse of returned blocks, and its lock.

#include "support/TestSupport.h"

#include <orv/utils/BlockAllocator.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

using orv::utils::BlockAllocator;

TEST(BlockAllocator, HandsReturnedBlocksOutAgainLastFirstAndRefusesOthers)
{
    orv::test::AssertionCapture capture;
    BlockAllocator<int> allocator(8);
    EXPECT_EQ(allocator.getBlockSize(), 8u);
    std::vector<int*> blocks;
    for (int i = 0; i < 1000; ++i) {
        blocks.push_back(allocator.allocate());
        // Each block holds its whole size.
        std::fill(blocks.back(), blocks.back() + 8, i);
    }
    // Return every other block, twice: the second return of each is refused, as is a block from elsewhere.
    int outside[4] = {1, 2, 3, 4};
    allocator.deallocate(outside);
    for (int pass = 0; pass < 2; ++pass) {
        for (std::size_t i = 0; i < blocks.size(); i += 2) {
            allocator.deallocate(blocks[i]);
        }
    }
    EXPECT_EQ(capture.texts(), orv::test::Texts(501, "unable to find address among allocated blocks, unable to free"));
    EXPECT_EQ(outside[3], 4);
    capture.clear();
    // The returned blocks come back, last returned first, not cleared, and are out again.
    for (std::size_t i = blocks.size(); i >= 2; i -= 2) {
        EXPECT_EQ(allocator.allocate(), blocks[i - 2]);
        EXPECT_EQ(blocks[i - 2][7], static_cast<int>(i - 2));
    }
    for (int* block : blocks) {
        allocator.deallocate(block);
    }
    EXPECT_EQ(capture.texts(), orv::test::Texts{});
    // Everything is back: a second round hands out the same blocks and no new one.
    std::vector<int*> again;
    for (int i = 0; i < 1000; ++i) {
        again.push_back(allocator.allocate());
    }
    std::sort(blocks.begin(), blocks.end());
    std::sort(again.begin(), again.end());
    EXPECT_EQ(again, blocks);
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
                std::fill(block, block + 16, t);
                overlaps += static_cast<int>(16 - std::count(block, block + 16, t));
                allocator.deallocate(block);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(overlaps.load(), 0);
}
