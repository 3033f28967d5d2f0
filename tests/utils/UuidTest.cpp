#include "support/TestSupport.h"

#include <orv/utils/Uuid.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using orv::test::AssertionCapture;
using orv::test::RecordingLogger;
using orv::test::Texts;
using orv::utils::Uuid;

namespace {

std::string text(const Uuid& uuid)
{
    char buffer[37];
    uuid.computeString(buffer);
    return buffer;
}

} // namespace

TEST(Uuid, TextRoundTripsInLowerCaseAndTheFieldsLandInGuidLayout)
{
    Uuid id;
    EXPECT_FALSE(id.isValid());
    ASSERT_TRUE(id.set("0BA23F91-D30E-4574-B0ED-EE0AA81D00B9", nullptr));
    EXPECT_EQ(text(id), "0ba23f91-d30e-4574-b0ed-ee0aa81d00b9");
    EXPECT_EQ(id, orv::utils::uniqueId);
    EXPECT_EQ(id.getData().data1, 0x0ba23f91u);
    EXPECT_EQ(id.getData().data2, 0xd30e);
    EXPECT_EQ(id.getData().data3, 0x4574);
    EXPECT_EQ(id.getData().data4[0], 0xb0);
    EXPECT_EQ(id.getData().data4[7], 0xb9);

    std::ostringstream stream;
    stream << id;
    EXPECT_EQ(stream.str(), "0ba23f91-d30e-4574-b0ed-ee0aa81d00b9");
    EXPECT_EQ(Uuid::getStringLength(), 36u);

    // The separators are not examined.
    Uuid loose;
    ASSERT_TRUE(loose.set("0ba23f91xd30eyb574zb0ed_ee0aa81d00b9", nullptr));
    EXPECT_EQ(text(loose), "0ba23f91-d30e-b574-b0ed-ee0aa81d00b9");

    Uuid one;
    one.set("00000000-0000-0000-0000-000000000001", nullptr);
    EXPECT_TRUE(one.isValid());
    one.clear();
    EXPECT_FALSE(one.isValid());
}

TEST(Uuid, MalformedTextIsLoggedAndNullsTheValue)
{
    RecordingLogger logger;
    Uuid id = orv::utils::uniqueId;
    EXPECT_FALSE(id.set(nullptr, &logger));
    EXPECT_FALSE(id.isValid());

    id = orv::utils::uniqueId;
    EXPECT_FALSE(id.set("0ba23f91-d30e-4574-b0ed-ee0aa81d00b", &logger));
    EXPECT_FALSE(id.isValid());
    id = orv::utils::uniqueId;
    EXPECT_FALSE(id.set("0ba23f91-d30e-4574-b0ed-ee0aa81d00b9a", nullptr));
    EXPECT_FALSE(id.isValid());
    EXPECT_EQ(logger.lines, (Texts{"error|invalid argument|The given string parameter is NULL",
                                   "error|invalid argument|The given string '0ba23f91-d30e-4574-b0ed-ee0aa81d00b' "
                                   "doesn't have the right format of 36 characters "
                                   "(\"12345678-9ABC-DEF1-2345-6789ABCDEF12\")."}));

    // A piece whose digits don't parse keeps the field it had; a piece that starts with digits
    // takes what it can read.
    Uuid partial = orv::utils::uniqueId;
    EXPECT_TRUE(partial.set("zzzzzzzz-d30e-45zz-b0ed-ee0aa81d00b9", nullptr));
    EXPECT_EQ(text(partial), "0ba23f91-d30e-0045-b0ed-ee0aa81d00b9");

    AssertionCapture capture;
    Uuid::create("not a uuid");
    ASSERT_EQ(capture.texts().size(), 1u);
    EXPECT_EQ(capture.texts()[0].rfind("The given string 'not a uuid'", 0), 0u);
}

TEST(Uuid, OrdersByItsBytesInMemoryNotByItsText)
{
    // The first field is stored little-endian: its last text digits are its first bytes, so the
    // text that sorts later sorts first here.
    const Uuid a = Uuid::create("01000000-0000-0000-0000-000000000000");
    const Uuid b = Uuid::create("00000002-0000-0000-0000-000000000000");
    EXPECT_TRUE(a < b);
    EXPECT_FALSE(b < a);
    EXPECT_FALSE(a < a);
    EXPECT_NE(a, b);
    const Uuid tail1 = Uuid::create("00000000-0000-0000-0000-000000000001");
    const Uuid tail2 = Uuid::create("00000000-0000-0000-0000-000000000002");
    EXPECT_TRUE(tail1 < tail2);
}
