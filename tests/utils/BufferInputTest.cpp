#include "support/TestSupport.h"

#include <orv/utils/BufferInput.h>

#include <gtest/gtest.h>

namespace orv {
namespace test {
namespace {

using utils::BufferInput;

TEST(BufferInput, CountsWhatIsLeftAndStaysReadableAtTheEnd)
{
    BufferInput input("abcdefghij", 10);
    char buffer[4];
    unsigned int size = 4;
    input.read(buffer, size, nullptr);
    input.peekRead(buffer, size, nullptr);
    input.read(buffer, size, nullptr);
    EXPECT_EQ(input.getReadableDataSize(), 2u);
    input.read(buffer, size, nullptr);
    EXPECT_EQ(size, 2u);
    EXPECT_EQ(input.getReadableDataSize(), 0u);
    EXPECT_TRUE(input.isReadable());
    EXPECT_FALSE(input.isWritable());
}

TEST(BufferInput, WritingAndANullBufferAreBrokenContracts)
{
    BufferInput input("abc", 3);
    AssertionCapture capture;
    RecordingLogger logger;
    EXPECT_FALSE(input.write("x", 1, &logger));
    EXPECT_TRUE(logger.lines.empty());

    BufferInput nowhere(nullptr, 10);
    char buffer[4];
    unsigned int size = 4;
    EXPECT_TRUE(nowhere.read(buffer, size, nullptr));
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(capture.texts(), (Texts { "'write' is not supported.", "buffer" }));
}

} // namespace
} // namespace test
} // namespace orv
