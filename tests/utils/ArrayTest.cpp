#include <orv/allocator/Allocator.h>
#include <orv/utils/Array.h>

#include <gtest/gtest.h>

#include <climits>

using orv::utils::Array;

namespace {

struct Counted {
    static int live;
    Counted() { ++live; }
    ~Counted() { --live; }
    short value = 7;
};
int Counted::live = 0;

} // namespace

TEST(Array, OwnsOneBlockWithItsByteCountAheadAndBuildsEveryElement)
{
    const orv::allocator::Allocator& allocator = orv::allocator::Allocator::instance();
    const std::size_t blocks = allocator.getLiveBlockCount();
    {
        Array<Counted> array(5);
        EXPECT_EQ(array.size(), 5u);
        EXPECT_EQ(Counted::live, 5);
        EXPECT_EQ(array[4].value, 7);
        EXPECT_EQ(orv::utils::details::getArrayByteCount(array.data()), 5 * sizeof(Counted));
        EXPECT_EQ(allocator.getLiveBlockCount(), blocks + 1);
    }
    EXPECT_EQ(Counted::live, 0);
    EXPECT_EQ(allocator.getLiveBlockCount(), blocks);
    orv::utils::details::releaseArray(nullptr);
}

TEST(Array, IsEmptyWhenTheBytesDoNotFitTheCountWord)
{
    Array<int> empty(0);
    EXPECT_EQ(empty.begin(), empty.end());
    Array<int> tooLarge(UINT_MAX / 2);
    EXPECT_EQ(tooLarge.size(), 0u);
    EXPECT_EQ(tooLarge.data(), nullptr);
}
