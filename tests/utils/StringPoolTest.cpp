#include "support/TestSupport.h"

#include <orv/allocator/Allocator.h>
#include <orv/utils/StringPool.h>

#include <gtest/gtest.h>

using orv::test::AssertionCapture;
using orv::test::Texts;
using orv::utils::String;
using orv::utils::StringPool;

TEST(StringPool, ReusesTheLastRecycledStringAndKeepsOnlyShortOnes)
{
    StringPool pool(2, 4);
    String* first = pool.obtain();
    String* second = pool.obtain();
    String* fresh = pool.obtain();
    ASSERT_NE(first, nullptr);
    ASSERT_NE(fresh, nullptr);
    EXPECT_TRUE(first->empty());

    *first = "four";
    pool.recycle(first);
    EXPECT_EQ(pool.obtain(), first);
    EXPECT_TRUE(first->empty());

    // The limit is on the current length: a string that once was long and shrank is kept.
    second->assign(1000, 'x');
    second->resize(3);
    pool.recycle(second);
    EXPECT_EQ(pool.obtain(), second);
    EXPECT_GE(second->capacity(), 1000u);

    const std::size_t before = orv::allocator::Allocator::instance().getLiveBlockCount();
    *fresh = "five!";
    pool.recycle(fresh);
    EXPECT_LT(orv::allocator::Allocator::instance().getLiveBlockCount(), before);

    // Strings handed out stay alive after the pool is gone.
    {
        StringPool copy(pool);
    }
    *first = "still mine";
    EXPECT_EQ(*first, "still mine");
    ORV_DELETE(first);
    ORV_DELETE(second);

    AssertionCapture capture;
    pool.recycle(nullptr);
    EXPECT_EQ(capture.texts(), (Texts{"null pointer not allowed for parameter 'string'"}));
}
