#include "support/TestSupport.h"

#include <orv/utils/AssertingLogger.h>
#include <orv/utils/BufferLogger.h>
#include <orv/utils/Errors.h>
#include <orv/utils/LoggerCWrapper.h>
#include <orv/utils/OstreamLogger.h>
#include <orv/utils/Uuid.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <thread>
#include <vector>

using orv::test::AssertionCapture;
using orv::test::RecordingLogger;
using orv::test::Texts;
using namespace orv::utils;

TEST(OstreamLogger, WritesOneLinePerLevelToItsStreamAndNullStreamsSwitchLevelsOff)
{
    std::ostringstream errors, warnings, infos;
    OstreamLogger logger(&errors, &warnings, &infos, nullptr);
    EXPECT_TRUE(logger.isLoggingWarning() && logger.isLoggingInfo());
    EXPECT_FALSE(logger.isLoggingTrace());
    logger.logTrace("t.cpp", 1, "dropped");
    logger.logInfo("i.cpp", 2, "an info");
    logger.logWarning("w.cpp", 3, "a warning");
    logger.logError(error::invalidData, "e.cpp", 4, "an error");
    EXPECT_EQ(infos.str() + warnings.str() + errors.str(),
        "i.cpp(2): [info] an info\nw.cpp(3): [warning] a warning\ne.cpp(4): [invalid data] an error\n");
    EXPECT_TRUE(logger.hasErrors());
    logger.resetErrors();
    EXPECT_FALSE(logger.hasErrors());

    // With no error stream an error is still counted.
    OstreamLogger silent(nullptr, nullptr, nullptr, nullptr);
    silent.logError(error::ioProblem, "f", 1, "lost");
    EXPECT_TRUE(silent.hasErrors());
}

TEST(OstreamLogger, LinesFromManyThreadsNeverInterleave)
{
    std::ostringstream stream;
    OstreamLogger logger(&stream, &stream, &stream, &stream);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&logger, t] {
            for (int i = 0; i < 200; ++i) {
                logger.logInfo("file.cpp", static_cast<unsigned int>(t), "message from a thread");
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    std::istringstream lines(stream.str());
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
        EXPECT_EQ(line.substr(line.find(')')), "): [info] message from a thread");
        ++count;
    }
    EXPECT_EQ(count, 800);
}

TEST(BufferLogger, KeepsMessagesAndReplaysThemThroughTheTargetsOwnSwitches)
{
    BufferLogger buffer(true, true, true);
    buffer.logTrace("a", 1, "trace");
    buffer.logInfo("b", 2, "info");
    buffer.logWarning("c", 3, "warning");
    buffer.logError(error::fileNotFound, "d", 4, "error");
    ASSERT_EQ(buffer.getMessages().size(), 4u);
    EXPECT_EQ(buffer.getMessages()[0].kind, 't');
    EXPECT_STREQ(buffer.getMessages()[0].error.getCaption(), "no error");
    EXPECT_FALSE(Uuid(buffer.getMessages()[0].error.getData().id).isValid());
    EXPECT_EQ(buffer.getMessages()[3].error, error::fileNotFound);
    EXPECT_EQ(buffer.getMessages()[3].file, "d");
    EXPECT_EQ(buffer.getMessages()[3].line, 4u);

    const BufferLogger copy(buffer);
    EXPECT_TRUE(copy.hasErrors());
    EXPECT_EQ(copy.getMessages().size(), 4u);
    RecordingLogger target(true, false, true);
    buffer.flush(target);
    EXPECT_EQ(target.lines, (Texts { "trace||trace", "warning||warning", "error|file not found|error" }));
    EXPECT_TRUE(target.hasErrors());
    EXPECT_FALSE(buffer.hasErrors());
    EXPECT_TRUE(buffer.getMessages().empty());

    BufferLogger quiet(false, false, false);
    quiet.logInfo("x", 1, "off");
    EXPECT_TRUE(quiet.getMessages().empty());
}

TEST(AssertingLogger, TurnsErrorsIntoAssertionsAndDropsTheRest)
{
    AssertionCapture capture;
    AssertingLogger logger;
    logger.logWarning("w", 1, "ignored");
    logger.logError(error::invalidArgument, "e", 2, "fatal here");
    EXPECT_EQ(capture.texts(), (Texts{"fatal here"}));
    EXPECT_EQ(capture.files(), (Texts{"e"}));
}

namespace {

struct CRecord {
    std::vector<std::string> lines;
    char info = 1;
};

char cIsLoggingInfo(void* context)
{
    return static_cast<CRecord*>(context)->info;
}

char cNo(void*)
{
    return 0;
}

void cLogInfo(void* context, const char* file, unsigned int line, const char* message)
{
    static_cast<CRecord*>(context)->lines.push_back(std::string(file) + ":" + std::to_string(line) + " " + message);
}

void cLogError(void* context, const orv_ErrorType* error, const char*, unsigned int, const char* message)
{
    static_cast<CRecord*>(context)->lines.push_back(std::string("[") + error->caption + "] " + message);
}

} // namespace

TEST(LoggerCWrapper, ForwardsToACRecordAndLogsNothingAroundNull)
{
    CRecord record;
    orv_Logger c{&record, cNo, nullptr, cIsLoggingInfo, cLogInfo, cNo, nullptr, cLogError};
    LoggerCWrapper logger(&c);
    EXPECT_TRUE(logger.isLoggingInfo());
    EXPECT_FALSE(logger.isLoggingTrace());
    logger.logInfo("f.c", 7, "hello");
    logger.logTrace("f.c", 8, "dropped");
    logger.logError(error::encryption, "f.c", 9, "bad key");
    EXPECT_EQ(record.lines, (std::vector<std::string>{"f.c:7 hello", "[encryption error] bad key"}));
    record.info = 0;
    EXPECT_FALSE(logger.isLoggingInfo());

    LoggerCWrapper nothing(nullptr);
    EXPECT_FALSE(nothing.isLoggingInfo() || nothing.isLoggingWarning() || nothing.isLoggingTrace());
    nothing.logError(error::invalidData, "f", 1, "discarded");
    EXPECT_TRUE(nothing.hasErrors());
}

TEST(AbstractLogger, ItsCRecordReachesTheLoggerAndNamesMissingErrorsUnknown)
{
    RecordingLogger logger(false, true, false);
    orv_Logger& c = logger.getWrapper();
    EXPECT_EQ(c.context, &logger);
    EXPECT_EQ(c.isLoggingInfo(c.context), 1);
    EXPECT_EQ(c.isLoggingWarning(c.context), 0);
    c.logInfo(c.context, "x", 1, "through C");
    c.logWarning(c.context, "x", 2, "level off");
    c.logError(c.context, nullptr, "x", 3, "no kind");
    c.logError(c.context, &error::badAllocation.getData(), "x", 4, "out of memory");
    EXPECT_EQ(logger.lines,
              (Texts{"info||through C", "error|unknown error|no kind", "error|bad allocation|out of memory"}));
    EXPECT_TRUE(logger.hasErrors());
}
