#include "support/TestSupport.h"

#include <orv/allocator/Allocator.h>
#include <orv/utils/DynamicValue.h>
#include <orv/utils/Type.h>

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>

using orv::test::AssertionCapture;
using orv::test::Texts;
using namespace orv::utils;

namespace {

std::string print(const DynamicValue& value)
{
    std::ostringstream stream;
    stream << value;
    return stream.str();
}

std::size_t liveBlocks()
{
    return orv::allocator::Allocator::instance().getLiveBlockCount();
}

} // namespace

TEST(Type, NamesEveryKindAndNothingElse)
{
    const char* const names[] = { "null", "integer", "real", "string", "boolean", "array", "object" };
    for (int kind = 0; kind < 7; ++kind) {
        EXPECT_STREQ(toString(static_cast<type::Type>(kind)), names[kind]) << kind;
    }
    EXPECT_EQ(toString(static_cast<type::Type>(7)), nullptr);
}

TEST(DynamicValue, NumbersConvertBetweenIntegerAndRealOnly)
{
    AssertionCapture capture;
    EXPECT_EQ(DynamicValue(3.9).getInt(), 3);
    EXPECT_EQ(DynamicValue(-3.9).getInt(), -3);
    EXPECT_EQ(DynamicValue(2).getReal(), 2.0);
    EXPECT_EQ(DynamicValue(-1).getInt(), -1LL);
    EXPECT_EQ(DynamicValue(-1).getType(), type::integer);
    EXPECT_EQ(DynamicValue(9007199254740993LL).getInt(), 9007199254740993LL);
    EXPECT_EQ(DynamicValue(0.5).getType(), type::real);
    EXPECT_TRUE(DynamicValue(true).getBool());
    EXPECT_FALSE(DynamicValue(false).getBool());
    EXPECT_TRUE(capture.texts().empty());
}

TEST(DynamicValue, GettersOfAnotherKindRaiseTheirTextWithTheTagAsANumber)
{
    AssertionCapture capture;
    DynamicValue text("x");
    text.getInt();
    DynamicValue flag(true);
    EXPECT_EQ(flag.getInt(), 1);
    flag.getReal();
    DynamicValue number(7);
    number.getBool();
    DynamicValue none;
    EXPECT_STREQ(none.getString(), "");
    EXPECT_EQ(number.getStringLength(), 0u);
    EXPECT_EQ(capture.texts(),
        (Texts { "Unable the retrieve this value of type 3 as an int",
            "Unable the retrieve this value of type 4 as an int", "Unable the retrieve this value of type 4 as a real",
            "Unable the retrieve this value of type 1 as a bool",
            "Unable the retrieve this value of type 0 as a string",
            "Unable the retrieve this value of type 1 as a string" }));
}

TEST(DynamicValue, NullTextsAreBrokenContracts)
{
    AssertionCapture capture;
    DynamicValue fromNull(static_cast<const char*>(nullptr));
    DynamicValue fromCountedNull(nullptr, 4);
    EXPECT_EQ(fromNull.getType(), type::string);
    EXPECT_EQ(fromNull.getStringLength(), 0u);
    EXPECT_EQ(fromCountedNull.getType(), type::string);
    EXPECT_EQ(fromCountedNull.getStringLength(), 0u);

    DynamicValue kept(5);
    kept.setString(nullptr);
    kept.setString(nullptr, 3);
    EXPECT_EQ(kept, DynamicValue(5));
    EXPECT_EQ(capture.texts(),
        (Texts { "null pointer not allowed as string value initializer for DynamicValue",
            "null pointer not allowed as string value initializer for DynamicValue",
            "unable to set string value from null pointer", "unable to set string value from null pointer" }));
}

TEST(DynamicValue, StringsOwnTheirBytesAndReuseTheirAllocation)
{
    const char bytes[] = { 'a', '\0', 'b' };
    DynamicValue embedded(bytes, 3);
    ASSERT_EQ(embedded.getStringLength(), 3u);
    EXPECT_EQ(std::string(embedded.getString(), 3), std::string(bytes, 3));
    EXPECT_NE(embedded, DynamicValue("a"));

    // Texts stay short here so that the string keeps them inline: each value then costs one block.
    const std::size_t before = liveBlocks();
    DynamicValue value("first");
    EXPECT_EQ(liveBlocks(), before + 1);
    value.setString("second");
    value.setString("third", 3);
    EXPECT_EQ(liveBlocks(), before + 1);
    EXPECT_STREQ(value.getString(), "thi");

    DynamicValue copy(value);
    EXPECT_EQ(liveBlocks(), before + 2);
    value.setString("changed");
    EXPECT_STREQ(copy.getString(), "thi");

    copy = value;
    EXPECT_STREQ(copy.getString(), "changed");
    copy = copy;
    EXPECT_STREQ(copy.getString(), "changed");
    EXPECT_EQ(liveBlocks(), before + 2);

    copy.setInt(4);
    value.reset();
    EXPECT_EQ(liveBlocks(), before);
    EXPECT_EQ(value.getType(), type::null);

    DynamicValue number(1.5);
    number = DynamicValue("text");
    EXPECT_EQ(number.getType(), type::string);
    number.setBool(true);
    EXPECT_EQ(liveBlocks(), before);
}

TEST(DynamicValue, EqualityNeedsTheSameKindAndValue)
{
    EXPECT_EQ(DynamicValue(), DynamicValue());
    EXPECT_NE(DynamicValue(1), DynamicValue(1.0));
    EXPECT_NE(DynamicValue(0), DynamicValue(false));
    EXPECT_NE(DynamicValue(), DynamicValue(""));
    EXPECT_EQ(DynamicValue(1), DynamicValue(1LL));
    EXPECT_NE(DynamicValue(0x100000001LL), DynamicValue(1));
    EXPECT_EQ(DynamicValue(true), DynamicValue(true));
    EXPECT_NE(DynamicValue(true), DynamicValue(false));
    EXPECT_EQ(DynamicValue("ab"), DynamicValue("abc", 2));
    EXPECT_NE(DynamicValue("ab"), DynamicValue("ac"));
    const DynamicValue notANumber(std::nan(""));
    EXPECT_FALSE(notANumber == notANumber);
    EXPECT_TRUE(notANumber != notANumber);
    EXPECT_EQ(DynamicValue(0.0), DynamicValue(-0.0));
}

TEST(DynamicValue, CompatibilityFollowsTheKindOfTheValue)
{
    const type::Type all[]
        = { type::null, type::integer, type::real, type::string, type::boolean, type::array, type::object };
    for (type::Type kind : all) {
        EXPECT_TRUE(DynamicValue().isTypeCompatible(kind)) << kind;
        const bool numeric = kind == type::integer || kind == type::real;
        EXPECT_EQ(DynamicValue(1).isTypeCompatible(kind), numeric) << kind;
        EXPECT_EQ(DynamicValue(1.5).isTypeCompatible(kind), numeric) << kind;
        EXPECT_EQ(DynamicValue("s").isTypeCompatible(kind), kind == type::string) << kind;
        EXPECT_EQ(DynamicValue(false).isTypeCompatible(kind), kind == type::boolean) << kind;
    }
}

TEST(DynamicValue, PrintsWithTheStreamsOwnFormatting)
{
    EXPECT_EQ(print(DynamicValue()), "null");
    EXPECT_EQ(print(DynamicValue(-12)), "-12");
    EXPECT_EQ(print(DynamicValue(0.25)), "0.25");
    EXPECT_EQ(print(DynamicValue(true)), "1");
    EXPECT_EQ(print(DynamicValue("a\0b", 3)), std::string("a\0b", 3));

    std::ostringstream stream;
    stream << std::boolalpha << DynamicValue(false) << ' ' << std::setw(4) << DynamicValue("ab") << ' '
           << std::setprecision(3) << DynamicValue(3.14159);
    EXPECT_EQ(stream.str(), "false   ab 3.14");
}
