#include "support/TestSupport.h"

#include <orv/utils/Assertion.h>
#include <orv/utils/ErrorType.h>
#include <orv/utils/Errors.h>
#include <orv/utils/Uuid.h>

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>

using orv::test::AssertionCapture;
using orv::test::Texts;
using namespace orv::utils;

TEST(Assertion, StartsWithTheAbortingHookAndRoutesThroughTheCurrentOne)
{
    EXPECT_EQ(orv_getAssertionFailedFunction(), &orv_abortOnAssertionFailed);
    {
        AssertionCapture capture;
        EXPECT_NE(orv_getAssertionFailedFunction(), &orv_abortOnAssertionFailed);
        assertionFailed("a.cpp", 3, "first");
        orv_assertionFailed("b.cpp", 4, "second");
        ORV_CHECK(1 + 1 == 3, "composed " << 42 << " text");
        ORV_CHECK(true, "never composed");
        EXPECT_EQ(capture.texts(), (Texts{"first", "second", "composed 42 text"}));
        EXPECT_EQ(capture.files()[0], "a.cpp");
        // The check's file text is relative to the source root.
        EXPECT_EQ(capture.files()[2], "tests/utils/AssertionTest.cpp");
    }
    EXPECT_EQ(orv_getAssertionFailedFunction(), &orv_abortOnAssertionFailed);
}

TEST(Assertion, ThrowingHookPrintsTheLineAndThrowsTheMessageAlone)
{
    const orv_AssertionFailedFunction previous = orv_getAssertionFailedFunction();
    orv_setAssertionFailedFunction(&throwOnAssertionFailed);
    testing::internal::CaptureStderr();
    try {
        assertionFailed("utils/X.cpp", 17, "broken contract");
        ADD_FAILURE() << "no exception";
    } catch (const std::runtime_error& error) {
        EXPECT_STREQ(error.what(), "broken contract");
    }
    orv_setAssertionFailedFunction(previous);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "utils/X.cpp(17): [assertion failed] broken contract\n");
}

TEST(AssertionDeathTest, AbortingHookPrintsTheLineAndAborts)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(orv_abortOnAssertionFailed("f.cpp", 9, "fatal"), "f\\.cpp\\(9\\): \\[assertion failed\\] fatal");
}

TEST(ErrorType, ComparesByIdOnlyAndChecksTheCaptionLength)
{
    const ErrorType renamed(Uuid::create("fa72e664-42da-42cb-b468-bc39a17b8169"), "another caption");
    EXPECT_EQ(renamed, error::invalidData);
    EXPECT_NE(renamed, error::invalidArgument);
    EXPECT_STREQ(error::fileFormatCorrupted.getCaption(), "corrupted file format");
    EXPECT_STREQ(error::previous.getCaption(), "previous error");

    const ErrorType copied(error::threadError.getData());
    EXPECT_EQ(copied, error::threadError);
    EXPECT_STREQ(copied.getCaption(), "thread problem");

    AssertionCapture capture;
    const std::string longest(127, 'c');
    const ErrorType fits(Uuid(), longest.c_str());
    EXPECT_TRUE(capture.texts().empty());
    EXPECT_EQ(std::string(fits.getCaption()), longest);

    // With a returning hook a 128-character caption is still copied whole, one byte past the
    // record: the storage here leaves room for it, so only the message is checked.
    const std::string tooLong(128, 'x');
    alignas(ErrorType) unsigned char storage[sizeof(ErrorType) + 16];
    new (storage) ErrorType(Uuid(), tooLong.c_str());
    EXPECT_EQ(capture.texts(),
              (Texts{"Given caption (" + tooLong + ") is longer than the caption maximum length 127."}));
}

TEST(ErrorType, TableKeepsItsIdsAndCaptions)
{
    struct Row {
        const ErrorType& error;
        const char* id;
        const char* caption;
    };
    const Row rows[] = {
        {error::badAllocation, "aef41a4a-0f40-418a-b3ef-c151faf7be8c", "bad allocation"},
        {error::invalidArgument, "06cb0f65-5199-4c7b-8146-ae6a1d3f97c1", "invalid argument"},
        {error::ioProblem, "a05ee22a-28e0-428d-a592-265a9d02424c", "io problem"},
        {error::stringHashCollision, "eed2b910-e118-424f-81f3-f1316cd7d8c1", "string hash collision"},
        {error::encryption, "7fd9902b-6081-4b2e-9559-2e400055874f", "encryption error"},
    };
    for (const Row& row : rows) {
        char text[37];
        Uuid(row.error.getData().id).computeString(text);
        EXPECT_STREQ(text, row.id);
        EXPECT_STREQ(row.error.getCaption(), row.caption);
    }
}
