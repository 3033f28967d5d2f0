// Byte streams: the rules every stream keeps, run once for each implementation (the library's three
// and a stream made of C callbacks), then what each one adds, and the C family: handles of any
// stream, streams made of C callbacks, and the loggers that travel between the two sides.

#include "support/TestSupport.h"
#include "utils/StreamTestSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/Errors.h>
#include <orv/utils/FileInputOutput.h>
#include <orv/utils/c/DataInputOutput.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>
#include <tuple>

extern "C" orv_DataInputOutput* orv_test_createMemoryStream(const char* description, void** userData);
extern "C" void orv_test_destroyMemoryStream(orv_DataInputOutput* io, void* userData);
extern "C" const char* orv_test_streamsFromC(orv_DataInputOutput* closedFile);

namespace orv {
namespace test {
namespace {

using utils::AbstractDataInputOutput;
using utils::BufferInput;

// Each maker gives a stream holding given bytes and, for the writable kinds, a stream to write
// and then the same data back for reading.

struct BufferInputMaker {
    std::string bytes;
    std::unique_ptr<BufferInput> stream;

    AbstractDataInputOutput& readable(const std::string& content)
    {
        bytes = content;
        stream.reset(new BufferInput(bytes.data(), static_cast<unsigned int>(bytes.size())));
        return *stream;
    }
};

struct DynamicBufferMaker {
    utils::DynamicBufferInputOutput stream { "contract" };

    AbstractDataInputOutput& readable(const std::string& content)
    {
        stream.write(content.data(), static_cast<unsigned int>(content.size()), nullptr);
        return stream;
    }
    AbstractDataInputOutput& forWriting() { return stream; }
    AbstractDataInputOutput& writtenForReading() { return stream; }
};

struct FileMaker {
    TemporaryFile file { "contract" };
    utils::FileInputOutput stream { file.c_str() };

    AbstractDataInputOutput& readable(const std::string& content)
    {
        file.write(content);
        EXPECT_TRUE(stream.openForReading(nullptr));
        return stream;
    }
    AbstractDataInputOutput& forWriting()
    {
        EXPECT_TRUE(stream.openForWriting(nullptr));
        return stream;
    }
    AbstractDataInputOutput& writtenForReading()
    {
        EXPECT_TRUE(stream.close(nullptr));
        EXPECT_TRUE(stream.openForReading(nullptr));
        return stream;
    }
};

struct CallbackStreamMaker {
    void* userData = nullptr;
    orv_DataInputOutput* io = orv_test_createMemoryStream("callbacks", &userData);

    ~CallbackStreamMaker() { orv_test_destroyMemoryStream(io, userData); }

    AbstractDataInputOutput& readable(const std::string& content)
    {
        forWriting().write(content.data(), static_cast<unsigned int>(content.size()), nullptr);
        return forWriting();
    }
    AbstractDataInputOutput& forWriting() { return *AbstractDataInputOutput::fromCstruct(io); }
    AbstractDataInputOutput& writtenForReading() { return forWriting(); }
};

std::string noise(std::size_t size)
{
    std::mt19937 generator(1234);
    std::string bytes(size, '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(generator() & 0xFF);
    }
    return bytes;
}

template <typename Maker> class ReadableStreamContract : public testing::Test {
protected:
    Maker maker_;
};

using AllStreams = testing::Types<BufferInputMaker, DynamicBufferMaker, FileMaker, CallbackStreamMaker>;
TYPED_TEST_SUITE(ReadableStreamContract, AllStreams);

TYPED_TEST(ReadableStreamContract, AShortCountMeansTheEndAndPeekReadConsumesNothing)
{
    AbstractDataInputOutput& stream = this->maker_.readable("0123456789");
    EXPECT_TRUE(stream.isReadable());
    const std::tuple<unsigned int, bool, const char*> steps[] = { { 0, true, "" }, { 0, false, "" }, { 3, true, "012" },
        { 3, true, "012" }, { 4, false, "0123" }, { 20, true, "456789" }, { 4, false, "4567" }, { 4, false, "89" },
        { 4, true, "" }, { 4, false, "" }, { 4, false, "" } };
    for (const auto& [size, peek, expected] : steps) {
        EXPECT_EQ(readSome(stream, size, peek), expected) << size << (peek ? " peeked" : " read");
    }
}

TYPED_TEST(ReadableStreamContract, EveryByteArrivesOnceWhateverTheChunks)
{
    const std::string bytes = noise(70000);
    AbstractDataInputOutput& stream = this->maker_.readable(bytes);
    std::string received;
    std::mt19937 generator(99);
    for (;;) {
        const unsigned int wanted = 1 + generator() % 5000;
        if (generator() % 3 == 0) {
            ASSERT_EQ(readSome(stream, wanted, true), bytes.substr(received.size(), wanted));
        }
        const std::string chunk = readSome(stream, wanted);
        if (chunk.empty()) {
            break;
        }
        received += chunk;
        ASSERT_LE(received.size(), bytes.size());
    }
    EXPECT_TRUE(received == bytes) << "the bytes read differ from the bytes held";
}

template <typename Maker> class WritableStreamContract : public testing::Test {
protected:
    Maker maker_;
};

using WritableStreams = testing::Types<DynamicBufferMaker, FileMaker, CallbackStreamMaker>;
TYPED_TEST_SUITE(WritableStreamContract, WritableStreams);

TYPED_TEST(WritableStreamContract, WrittenBytesComeBackInOrder)
{
    AbstractDataInputOutput& output = this->maker_.forWriting();
    EXPECT_TRUE(output.isWritable());
    const std::string pieces[] = { std::string("a\0b", 3), "", noise(5000), "end" };
    std::string expected;
    for (const std::string& piece : pieces) {
        EXPECT_TRUE(output.write(piece.data(), static_cast<unsigned int>(piece.size()), nullptr));
        expected += piece;
    }
    AbstractDataInputOutput& input = this->maker_.writtenForReading();
    std::string received;
    for (std::string chunk; !(chunk = readSome(input, 777)).empty();) {
        received += chunk;
    }
    EXPECT_TRUE(received == expected) << "the bytes read differ from the bytes written";
}

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
    EXPECT_EQ(input.getReadableDataSize(), 6u);
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
    EXPECT_TRUE(io.data() == nullptr && io.empty());
    EXPECT_STREQ(io.getDescription(), "scratch");

    ASSERT_TRUE(io.write("abcde", 5, nullptr));
    EXPECT_EQ(readSome(io, 3), "abc");
    EXPECT_EQ(std::string(io.data(), io.size()), "abcde");
    // Writing appends behind the read position and doesn't move it.
    io.write("fg", 2, nullptr);
    EXPECT_EQ(readSome(io, 10), "defg");

    io.clear();
    EXPECT_TRUE(io.empty());
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
    EXPECT_FALSE(orv_DataInputOutput_isWritable(nullptr) || orv_DataInputOutput_isReadable(nullptr));
    EXPECT_FALSE(orv_DataInputOutput_write(nullptr, "x", 1, nullptr));
    EXPECT_FALSE(orv_DataInputOutput_read(nullptr, buffer, nullptr, nullptr));
    EXPECT_FALSE(orv_DataInputOutput_peekRead(nullptr, buffer, &size, nullptr));
    EXPECT_EQ(capture.texts(), (Texts { "io", "io", "io", "io", "io", "size", "io" }));

    capture.clear();
    BufferInput input("abc", 3);
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
