#include "support/TestSupport.h"
#include "utils/StreamTestSupport.h"

#include <orv/utils/FileInputOutput.h>

#include <gtest/gtest.h>

#include <string>

namespace orv {
namespace test {
namespace {

using utils::FileInputOutput;

std::string failure(const std::string& message)
{
    return "error|invalid operation|" + message;
}

TEST(FileInputOutput, StaysReadableUntilAReadMeetsTheEnd)
{
    TemporaryFile file("ten");
    file.write("0123456789");
    FileInputOutput io(file.c_str());
    EXPECT_STREQ(io.getDescription(), file.c_str());
    EXPECT_FALSE(io.isOpen());
    ASSERT_TRUE(io.openForReading(nullptr));
    EXPECT_TRUE(io.isOpen() && io.isReadable());
    EXPECT_FALSE(io.isWritable());

    // A peek into the end leaves no trace; a read that meets it closes the file.
    EXPECT_EQ(readSome(io, 20, true), "0123456789");
    EXPECT_EQ(readSome(io, 10), "0123456789");
    EXPECT_TRUE(io.isReadable()) << "no read has met the end yet";
    EXPECT_EQ(readSome(io, 10), "");
    EXPECT_FALSE(io.isReadable());
    EXPECT_FALSE(io.isOpen());
    EXPECT_EQ(readSome(io, 10), "");
    EXPECT_EQ(readSome(io, 10, true), "");

    // A file read to the end may be opened again, and is read from its start.
    RecordingLogger logger;
    ASSERT_TRUE(io.openForReading(&logger));
    EXPECT_EQ(readSome(io, 3), "012");
    EXPECT_EQ(readSome(io, 50, true), "3456789");
    EXPECT_EQ(readSome(io, 4), "3456");
    EXPECT_TRUE(io.isReadable());
    EXPECT_TRUE(io.close(&logger));
    EXPECT_TRUE(logger.lines.empty());
}

TEST(FileInputOutput, RefusesWhatItsStateDoesNotAllow)
{
    TemporaryFile file("twice");
    file.write("an older and longer content");
    const std::string path = file.path();
    FileInputOutput io(file.c_str());
    RecordingLogger logger;

    EXPECT_FALSE(io.close(&logger));
    EXPECT_FALSE(io.write("x", 1, &logger));
    ASSERT_TRUE(io.openForReading(&logger));
    EXPECT_FALSE(io.openForReading(&logger));
    EXPECT_FALSE(io.openForWriting(&logger));
    EXPECT_FALSE(io.write("x", 1, &logger));
    EXPECT_TRUE(io.close(&logger));
    ASSERT_TRUE(io.openForWriting(&logger));
    EXPECT_FALSE(io.openForWriting(&logger));
    EXPECT_FALSE(io.openForReading(&logger));
    EXPECT_TRUE(io.write("new", 3, &logger));
    EXPECT_TRUE(io.close(&logger));
    EXPECT_FALSE(io.close(nullptr));
    EXPECT_EQ(file.read(), "new") << "opening for writing truncates";
    const std::string unwritable = failure("Can't write to the io on " + path + ", it is not currently writable.");
    EXPECT_EQ(logger.lines,
        (Texts {
            failure("Can't close the io on " + path + ", it is not open."),
            unwritable,
            failure("Can't open the io on " + path + " for reading, it is already open for reading."),
            failure("Can't open the io on " + path + " for writing, it is already open for reading."),
            unwritable,
            failure("Can't open the io on " + path + " for writing, it is already open for writing."),
            failure("Can't open the io on " + path + " for reading, it is already open for writing."),
        }));
}

TEST(FileInputOutput, AMissingFileGivesTheStreamStateAndStaysClosed)
{
    TemporaryFile file("missing");
    const std::string code = std::to_string(static_cast<int>(std::ios_base::failbit));
    FileInputOutput io(file.c_str());
    FileInputOutput unwritable((file.path() + "/no/such/folder").c_str());
    RecordingLogger logger;
    EXPECT_FALSE(io.openForReading(&logger));
    EXPECT_FALSE(io.openForReading(nullptr));
    EXPECT_FALSE(unwritable.openForWriting(&logger));
    EXPECT_EQ(logger.lines,
        (Texts { failure("Can't open the io on " + file.path() + " for reading, unable to get a valid stream (error code '"
                     + code + "')."),
            failure("Can't open the io on " + file.path()
                + "/no/such/folder for writing, unable to get a valid stream (error code '" + code + "').") }));
    // The failed streams must have been closed.
    for (FileInputOutput* closed : { &io, &unwritable }) {
        EXPECT_FALSE(closed->isOpen());
        EXPECT_FALSE(closed->close(nullptr));
    }
}

TEST(FileInputOutput, AFailedWriteLeavesTheFileNeitherWritableNorOpen)
{
    // The device takes the open but refuses every byte once the buffer reaches it.
    FileInputOutput io("/dev/full");
    ASSERT_TRUE(io.openForWriting(nullptr));
    const std::string block(1 << 20, 'x');
    RecordingLogger logger;
    EXPECT_FALSE(io.write(block.data(), static_cast<unsigned int>(block.size()), &logger));
    EXPECT_EQ(logger.lines, Texts { failure("Can't write to the io on /dev/full.") });
    EXPECT_FALSE(io.isWritable());
    EXPECT_FALSE(io.isOpen());
    // The failed state passes the "already open" test, and the stream is replaced.
    EXPECT_TRUE(io.openForWriting(&logger));
    EXPECT_TRUE(io.isWritable());
    EXPECT_TRUE(io.close(&logger));
    EXPECT_FALSE(io.close(nullptr));
    EXPECT_EQ(logger.lines.size(), 1u);
}

TEST(FileInputOutput, ReadingWithoutAnInputStreamIsABrokenContract)
{
    TemporaryFile file("nostream");
    FileInputOutput io(file.c_str());
    AssertionCapture capture;
    RecordingLogger logger;
    char buffer[4];
    unsigned int size = 4;
    EXPECT_FALSE(io.read(buffer, size, &logger));
    EXPECT_EQ(size, 0u);
    size = 4;
    ASSERT_TRUE(io.openForWriting(nullptr));
    EXPECT_FALSE(io.peekRead(buffer, size, &logger));
    EXPECT_EQ(size, 0u);
    EXPECT_EQ(capture.texts(), (Texts { "accessing a null scoped ptr", "accessing a null scoped ptr" }));
    EXPECT_TRUE(logger.lines.empty());
}

} // namespace
} // namespace test
} // namespace orv
