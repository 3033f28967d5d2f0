// The base stream, the memory streams, and the C family: handles of any stream, streams made of C
// callbacks, and the loggers that travel between the two sides. The rules all streams share are in
// the contract suite.

#include "support/TestSupport.h"
#include "utils/StreamTestSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/Errors.h>
#include <orv/utils/FileInputOutput.h>

#include <gtest/gtest.h>

extern "C" const char* orv_test_streamsFromC(orv_DataInputOutput* closedFile);

namespace orv {
namespace test {
namespace {

using utils::AbstractDataInputOutput;
using utils::BufferInput;

/// Keeps the base class's look-ahead and description.
class SilentStream : public AbstractDataInputOutput {
public:
    bool isWritable() const override { return false; }
    bool write(const char*, unsigned int, utils::AbstractLogger*) override { return false; }
    bool isReadable() const override { return false; }
    bool read(char*, unsigned int&, utils::AbstractLogger*) override { return false; }
};

TEST(AbstractDataInputOutput, RefusesToPeekUnlessTheStreamCan)
{
    SilentStream stream;
    EXPECT_STREQ(stream.getDescription(), "no description");
    RecordingLogger logger;
    char buffer[8];
    unsigned int size = 8;
    EXPECT_FALSE(stream.peekRead(buffer, size, &logger));
    EXPECT_FALSE(stream.peekRead(buffer, size, nullptr));
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(logger.lines, Texts { "error|invalid operation|'peekRead' operation is not supported by this data io." });
}

TEST(BufferInput, CountsWhatIsLeftAndRefusesWritingAndANullBuffer)
{
    BufferInput input("abcdefghij", 10);
    EXPECT_EQ(readSome(input, 4), "abcd");
    EXPECT_EQ(readSome(input, 4, true), "efgh");
    EXPECT_EQ(input.getReadableDataSize(), 6u);
    EXPECT_EQ(readSome(input, 8), "efghij");
    EXPECT_EQ(input.getReadableDataSize(), 0u);
    EXPECT_TRUE(input.isReadable());
    EXPECT_FALSE(input.isWritable());

    AssertionCapture capture;
    RecordingLogger logger;
    EXPECT_FALSE(input.write("x", 1, &logger));
    EXPECT_TRUE(logger.lines.empty());
    BufferInput nowhere(nullptr, 10);
    EXPECT_EQ(readSome(nowhere, 4), "");
    EXPECT_EQ(capture.texts(), (Texts { "'write' is not supported.", "buffer" }));
}

TEST(DynamicBufferInputOutput, KeepsConsumedBytesUntilCleared)
{
    utils::DynamicBufferInputOutput io("scratch");
    EXPECT_EQ(io.data(), nullptr);
    EXPECT_TRUE(io.empty());
    EXPECT_STREQ(io.getDescription(), "scratch");

    ASSERT_TRUE(io.write("abcde", 5, nullptr));
    EXPECT_EQ(readSome(io, 3), "abc");
    EXPECT_EQ(std::string(io.data(), io.size()), "abcde");
    // Writing appends behind the read position and doesn't move it.
    io.write("fg", 2, nullptr);
    EXPECT_EQ(readSome(io, 10), "defg");

    io.clear();
    EXPECT_TRUE(io.empty());
    EXPECT_EQ(readSome(io, 10), "");
    io.write("xyz", 3, nullptr);
    EXPECT_EQ(readSome(io, 10), "xyz");
}

TEST(DataInputOutputC, WorksFromAC99Host)
{
    utils::FileInputOutput closedFile("no/such/file");
    EXPECT_EQ(orv_test_streamsFromC(&closedFile.toCstruct()), nullptr)
        << orv_test_streamsFromC(&closedFile.toCstruct());
}

struct CallbackRecord {
    orv_Logger* logger = nullptr;
    unsigned int size = 0;
};

orv_bool recordRead(void* userData, char*, unsigned int* size, orv_Logger* logger)
{
    CallbackRecord* record = static_cast<CallbackRecord*>(userData);
    record->logger = logger;
    record->size = *size;
    *size = 1;
    if (logger != nullptr) {
        logger->logError(logger->context, &utils::error::ioProblem.getData(), "host.c", 1, "host read");
    }
    return 1;
}

TEST(DataInputOutputC, HandsCallbacksTheCFormOfTheLogger)
{
    CallbackRecord record;
    orv_DataInputOutput* io
        = orv_DataInputOutput_create(&record, "recorder", nullptr, nullptr, nullptr, recordRead, nullptr);
    ASSERT_NE(io, nullptr);
    AbstractDataInputOutput& stream = *AbstractDataInputOutput::fromCstruct(io);
    RecordingLogger logger;
    char buffer[8];
    unsigned int size = 7;
    EXPECT_TRUE(stream.read(buffer, size, &logger));
    EXPECT_EQ(record.size, 7u);
    EXPECT_EQ(size, 1u);
    EXPECT_EQ(record.logger, &logger.getWrapper());
    EXPECT_EQ(logger.lines, Texts { "error|io problem|host read" });
    EXPECT_TRUE(stream.read(buffer, size, nullptr));
    EXPECT_EQ(record.logger, nullptr);
    orv_DataInputOutput_destroy(io);
}

TEST(DataInputOutputC, MissingArgumentsAreBrokenContracts)
{
    AssertionCapture capture;
    char buffer[4];
    unsigned int size = 4;
    EXPECT_STREQ(orv_DataInputOutput_getDescription(nullptr), "");
    EXPECT_EQ(orv_DataInputOutput_isWritable(nullptr), 0);
    EXPECT_EQ(orv_DataInputOutput_isReadable(nullptr), 0);
    EXPECT_EQ(orv_DataInputOutput_write(nullptr, "x", 1, nullptr), 0);
    EXPECT_EQ(orv_DataInputOutput_read(nullptr, buffer, nullptr, nullptr), 0);
    EXPECT_EQ(orv_DataInputOutput_peekRead(nullptr, buffer, &size, nullptr), 0);
    EXPECT_EQ(capture.texts(), (Texts { "io", "io", "io", "io", "io", "size", "io" }));

    capture.clear();
    const char bytes[] = "abc";
    BufferInput input(bytes, 3);
    EXPECT_EQ(orv_DataInputOutput_read(&input, nullptr, &size, nullptr), 0);
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(input.getReadableDataSize(), 3u);
    orv_DataInputOutput* io = orv_DataInputOutput_create(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    ASSERT_NE(io, nullptr);
    EXPECT_STREQ(orv_DataInputOutput_getDescription(io), "no description");
    EXPECT_EQ(capture.texts(), (Texts { "buffer", "description" }));
    orv_DataInputOutput_destroy(io);
    orv_DataInputOutput_destroy(nullptr);
}

} // namespace
} // namespace test
} // namespace orv
