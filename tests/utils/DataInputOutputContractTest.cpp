// The rules every byte stream keeps, run once for each implementation: the library's three and a
// stream made of C callbacks.

#include "utils/StreamTestSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/FileInputOutput.h>
#include <orv/utils/c/DataInputOutput.h>

#include <gtest/gtest.h>

#include <memory>
#include <random>
#include <string>

extern "C" orv_DataInputOutput* orv_test_createMemoryStream(const char* description, void** userData);
extern "C" void orv_test_destroyMemoryStream(orv_DataInputOutput* io, void* userData);

namespace orv {
namespace test {
namespace {

using utils::AbstractDataInputOutput;

// Each maker gives a stream holding given bytes and, for the writable kinds, a stream to write
// and then the same data back for reading.

struct BufferInputMaker {
    std::string bytes;
    std::unique_ptr<utils::BufferInput> stream;

    AbstractDataInputOutput& readable(const std::string& content)
    {
        bytes = content;
        stream.reset(new utils::BufferInput(bytes.data(), static_cast<unsigned int>(bytes.size())));
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
        return *AbstractDataInputOutput::fromCstruct(io);
    }
    AbstractDataInputOutput& forWriting() { return *AbstractDataInputOutput::fromCstruct(io); }
    AbstractDataInputOutput& writtenForReading() { return *AbstractDataInputOutput::fromCstruct(io); }
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

TYPED_TEST(ReadableStreamContract, AShortCountMeansTheEnd)
{
    AbstractDataInputOutput& stream = this->maker_.readable("0123456789");
    EXPECT_EQ(readSome(stream, 0), "");
    EXPECT_EQ(readSome(stream, 4), "0123");
    EXPECT_EQ(readSome(stream, 4), "4567");
    EXPECT_EQ(readSome(stream, 4), "89");
    EXPECT_EQ(readSome(stream, 4), "");
    EXPECT_EQ(readSome(stream, 4), "");
}

TYPED_TEST(ReadableStreamContract, PeekReadConsumesNothing)
{
    AbstractDataInputOutput& stream = this->maker_.readable("0123456789");
    EXPECT_EQ(readSome(stream, 0, true), "");
    EXPECT_EQ(readSome(stream, 3, true), "012");
    EXPECT_EQ(readSome(stream, 3, true), "012");
    EXPECT_EQ(readSome(stream, 5), "01234");
    EXPECT_EQ(readSome(stream, 20, true), "56789");
    EXPECT_TRUE(stream.isReadable());
    EXPECT_EQ(readSome(stream, 20), "56789");
    EXPECT_EQ(readSome(stream, 20, true), "");
    EXPECT_EQ(readSome(stream, 20), "");
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
            const std::string peeked = readSome(stream, wanted, true);
            ASSERT_EQ(peeked, bytes.substr(received.size(), wanted));
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

} // namespace
} // namespace test
} // namespace orv
