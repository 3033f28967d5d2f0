#include <orv/utils/DynamicBufferInputOutput.h>

#include <gtest/gtest.h>

#include <string>

namespace orv {
namespace test {
namespace {

std::string readSome(utils::DynamicBufferInputOutput& io, unsigned int size, bool peek = false)
{
    std::string buffer(size, '#');
    EXPECT_TRUE(peek ? io.peekRead(&buffer[0], size, nullptr) : io.read(&buffer[0], size, nullptr));
    buffer.resize(size);
    return buffer;
}

TEST(DynamicBufferInputOutput, KeepsConsumedBytesUntilCleared)
{
    utils::DynamicBufferInputOutput io("scratch");
    EXPECT_EQ(io.data(), nullptr);
    EXPECT_TRUE(io.empty());
    EXPECT_STREQ(io.getDescription(), "scratch");

    ASSERT_TRUE(io.write("abcde", 5, nullptr));
    EXPECT_EQ(readSome(io, 3), "abc");
    EXPECT_EQ(io.size(), 5u);
    EXPECT_FALSE(io.empty());
    EXPECT_EQ(std::string(io.data(), io.size()), "abcde");
    EXPECT_EQ(readSome(io, 10, true), "de");
    // Writing appends behind the read position and doesn't move it.
    io.write("fg", 2, nullptr);
    EXPECT_EQ(readSome(io, 10), "defg");

    io.clear();
    EXPECT_EQ(io.size(), 0u);
    EXPECT_TRUE(io.empty());
    EXPECT_EQ(readSome(io, 10), "");
    io.write("xyz", 3, nullptr);
    EXPECT_EQ(readSome(io, 10), "xyz");
}

} // namespace
} // namespace test
} // namespace orv
