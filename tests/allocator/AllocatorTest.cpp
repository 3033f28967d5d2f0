#include <orv/allocator/Allocator.h>
#include <orv/allocator/StdAllocator.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <thread>
#include <vector>

using orv::allocator::Allocator;
using orv::allocator::BlockInfo;

TEST(Allocator, CountsLiveBlocksAndBytesAndListsTrackedOnesWithTheirOrigin)
{
    Allocator& allocator = Allocator::instance();
    const std::size_t blocks = allocator.getLiveBlockCount();
    const std::size_t bytes = allocator.getLiveByteCount();
    const unsigned long long mark = allocator.getNextSerial();

    void* a = allocator.allocate(24, "here.cpp", 11);
    void* b = allocator.allocate(1000, "there.cpp", 22);
    ASSERT_NE(a, nullptr);
    ASSERT_NE(b, nullptr);
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(a) % 16, 0u);
    EXPECT_EQ(allocator.getLiveBlockCount(), blocks + 2);
    EXPECT_EQ(allocator.getLiveByteCount(), bytes + 1024);

    std::vector<std::string> seen;
    allocator.forEachLiveBlock(mark, [&seen](const BlockInfo& block) {
        seen.push_back(std::string(block.file) + ":" + std::to_string(block.line) + ":" + std::to_string(block.size));
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"here.cpp:11:24", "there.cpp:22:1000"}));

    // A block made while tracking was off is released correctly after tracking is back on.
    allocator.setBlockTracking(false);
    void* untracked = allocator.allocate(8);
    allocator.setBlockTracking(true);
    allocator.deallocate(untracked, 0);

    allocator.deallocate(a, 0);
    allocator.deallocate(b, 1000);
    allocator.deallocate(nullptr, 0);
    EXPECT_EQ(allocator.getLiveBlockCount(), blocks);
    EXPECT_EQ(allocator.getLiveByteCount(), bytes);
    EXPECT_EQ(allocator.allocate(static_cast<std::size_t>(-1)), nullptr);
}

TEST(Allocator, ReallocationKeepsTheBytesAndTheCountsWhetherTheBlockIsTrackedOrNot)
{
    Allocator& allocator = Allocator::instance();
    const bool tracking = allocator.isBlockTracking();
    const std::size_t bytes = allocator.getLiveByteCount();
    const std::size_t blocks = allocator.getLiveBlockCount();
    for (const bool tracked : {false, true}) {
        allocator.setBlockTracking(tracked);
        const unsigned long long mark = allocator.getNextSerial();
        // Past the sizes the allocator keeps for reuse, and large enough to be mapped on its own.
        unsigned char* block = static_cast<unsigned char*>(allocator.reallocate(nullptr, 100, "a.cpp", 1));
        ASSERT_NE(block, nullptr);
        for (std::size_t i = 0; i < 100; ++i) {
            block[i] = static_cast<unsigned char>(i * 7);
        }
        for (const std::size_t size : {std::size_t(5000), std::size_t(1) << 22, std::size_t(60)}) {
            block = static_cast<unsigned char*>(allocator.reallocate(block, size, "b.cpp", 2));
            ASSERT_NE(block, nullptr);
            EXPECT_EQ(allocator.getLiveByteCount(), bytes + size);
            EXPECT_EQ(allocator.getLiveBlockCount(), blocks + 1);
            for (std::size_t i = 0; i < 60; ++i) {
                ASSERT_EQ(block[i], static_cast<unsigned char>(i * 7)) << size;
            }
            // The whole new size is usable.
            block[size - 1] = static_cast<unsigned char>((size - 1) * 7);
        }
        std::size_t listed = 0;
        allocator.forEachLiveBlock(mark, [&listed](const BlockInfo& info) {
            EXPECT_EQ(std::string(info.file) + ":" + std::to_string(info.line) + ":" + std::to_string(info.size),
                      "b.cpp:2:60");
            ++listed;
        });
        EXPECT_EQ(listed, tracked ? 1u : 0u);
        // Too large: the old block stays as it was.
        EXPECT_EQ(allocator.reallocate(block, static_cast<std::size_t>(-1)), nullptr);
        EXPECT_EQ(block[59], static_cast<unsigned char>(59 * 7));
        allocator.deallocate(block);
    }
    allocator.setBlockTracking(tracking);
    EXPECT_EQ(allocator.getLiveByteCount(), bytes);
    EXPECT_EQ(allocator.getLiveBlockCount(), blocks);
}

namespace {

struct Counted {
    explicit Counted(int& live) : live_(live) { ++live_; }
    ~Counted() { --live_; }
    int& live_;
};

} // namespace

TEST(Allocator, PlacementFormsConstructAndDestroyThroughTheAllocator)
{
    int live = 0;
    const std::size_t blocks = Allocator::instance().getLiveBlockCount();
    Counted* object = ORV_NEW(Counted)(live);
    EXPECT_EQ(live, 1);
    EXPECT_EQ(Allocator::instance().getLiveBlockCount(), blocks + 1);
    ORV_DELETE(object);
    EXPECT_EQ(live, 0);
    EXPECT_EQ(Allocator::instance().getLiveBlockCount(), blocks);
    Counted* none = nullptr;
    ORV_DELETE(none);
}

TEST(Allocator, StandardContainersAndThreadsShareIt)
{
    const std::size_t blocks = Allocator::instance().getLiveBlockCount();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i) {
                std::vector<int, orv::allocator::StdAllocator<int>> numbers(static_cast<std::size_t>(i + 1), i);
                ASSERT_EQ(numbers.back(), i);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(Allocator::instance().getLiveBlockCount(), blocks);
}

TEST(Allocator, KeepsReleasedBlocksOfOneSizeForTheNextRequestsUpToItsLimit)
{
    Allocator& allocator = Allocator::instance();
    allocator.setBlockTracking(false);
    allocator.releaseCachedBlocks();
    const std::size_t blocks = allocator.getLiveBlockCount();

    // Blocks of a cached size come back, newest first, without counting as live.
    std::vector<void*> made;
    for (int i = 0; i < 4; ++i) {
        made.push_back(allocator.allocate(2048));
    }
    for (void* block : made) {
        allocator.deallocate(block);
    }
    EXPECT_EQ(allocator.getCachedByteCount(), 4u * 2048);
    EXPECT_EQ(allocator.getLiveBlockCount(), blocks);
    void* again = allocator.allocate(2048);
    EXPECT_EQ(again, made.back());
    EXPECT_EQ(allocator.getCachedByteCount(), 3u * 2048);
    // Other sizes, small or large, neither take from the cache nor go into it.
    allocator.deallocate(allocator.allocate(100));
    allocator.deallocate(allocator.allocate(1 << 20));
    EXPECT_EQ(allocator.getCachedByteCount(), 3u * 2048);

    // Sizes met once give their bins up to the sizes that keep coming: after many one-off sizes,
    // the 2048-byte blocks are still kept.
    for (std::size_t size = 1024; size < 1024 + 64 * 16; size += 16) {
        allocator.deallocate(allocator.allocate(size));
    }
    allocator.deallocate(again);
    EXPECT_GE(allocator.getCachedByteCount(), 2048u);
    EXPECT_EQ(allocator.allocate(2048), again);

    // A limit below what is kept empties the cache; past the limit, releases go to the system.
    allocator.setCacheLimit(4096);
    EXPECT_EQ(allocator.getCachedByteCount(), 0u);
    std::vector<void*> more;
    for (int i = 0; i < 3; ++i) {
        more.push_back(allocator.allocate(2048));
    }
    for (void* block : more) {
        allocator.deallocate(block);
    }
    EXPECT_EQ(allocator.getCachedByteCount(), 4096u);
    allocator.deallocate(again);
    allocator.setCacheLimit(std::size_t(64) << 20);
    allocator.releaseCachedBlocks();
    EXPECT_EQ(allocator.getCachedByteCount(), 0u);
    EXPECT_EQ(allocator.getLiveBlockCount(), blocks);
    allocator.setBlockTracking(true);
}
