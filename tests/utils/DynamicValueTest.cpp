#include "support/TestSupport.h"

#include <orv/allocator/Allocator.h>
#include <orv/utils/DynamicValue.h>
#include <orv/utils/Type.h>

#include <gtest/gtest.h>

#include <cmath>
#include <iomanip>
#include <sstream>
#include <string>
#include <utility>

using orv::test::AssertionCapture;
using orv::test::Texts;
using namespace orv::utils;

namespace {

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

TEST(DynamicValue, GettersConvertBetweenNumbersOnlyAndRaiseTheirTextWithTheTagAsANumber)
{
    AssertionCapture capture;
    EXPECT_EQ(DynamicValue(3.9).getInt(), 3);
    EXPECT_EQ(DynamicValue(-3.9).getInt(), -3);
    EXPECT_EQ(DynamicValue(2).getReal(), 2.0);
    EXPECT_EQ(DynamicValue(9007199254740993LL).getInt(), 9007199254740993LL);
    EXPECT_TRUE(DynamicValue(true).getBool() && !DynamicValue(false).getBool());
    EXPECT_TRUE(capture.texts().empty());

    DynamicValue("x").getInt();
    EXPECT_EQ(DynamicValue(true).getInt(), 1);
    DynamicValue(true).getReal();
    DynamicValue(7).getBool();
    EXPECT_STREQ(DynamicValue().getString(), "");
    EXPECT_EQ(DynamicValue(7).getStringLength(), 0u);
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
    for (const DynamicValue& value : { DynamicValue(static_cast<const char*>(nullptr)), DynamicValue(nullptr, 4) }) {
        EXPECT_EQ(value.getType(), type::string);
        EXPECT_EQ(value.getStringLength(), 0u);
    }
    DynamicValue kept(5);
    kept.setString(nullptr);
    kept.setString(nullptr, 3);
    EXPECT_EQ(kept, DynamicValue(5));
    const std::string initializer = "null pointer not allowed as string value initializer for DynamicValue";
    const std::string setter = "unable to set string value from null pointer";
    EXPECT_EQ(capture.texts(), (Texts { initializer, initializer, setter, setter }));
}

TEST(DynamicValue, StringsOwnTheirBytesAndReuseTheirAllocation)
{
    const char bytes[] = { 'a', '\0', 'b' };
    DynamicValue embedded(bytes, 3);
    ASSERT_EQ(embedded.getStringLength(), 3u);
    EXPECT_EQ(std::string(embedded.getString(), 3), std::string(bytes, 3));

    // Texts stay short here so that the string keeps them inline: each value then costs one block.
    const std::size_t before = liveBlocks();
    DynamicValue value("first");
    value.setString("second");
    value.setString("third", 3);
    EXPECT_EQ(liveBlocks(), before + 1);
    EXPECT_STREQ(value.getString(), "thi");

    DynamicValue copy(value);
    value.setString("changed");
    EXPECT_STREQ(copy.getString(), "thi");
    copy = value;
    // Assigning a value to itself must not free the text it is about to copy.
    DynamicValue& alias = copy;
    copy = alias;
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
    const std::pair<DynamicValue, DynamicValue> equal[] = { { DynamicValue(), DynamicValue() },
        { DynamicValue(1), DynamicValue(1LL) }, { DynamicValue(true), DynamicValue(true) },
        { DynamicValue("ab"), DynamicValue("abc", 2) }, { DynamicValue(0.0), DynamicValue(-0.0) } };
    const std::pair<DynamicValue, DynamicValue> different[] = { { DynamicValue(1), DynamicValue(1.0) },
        { DynamicValue(0), DynamicValue(false) }, { DynamicValue(), DynamicValue("") },
        { DynamicValue(0x100000001LL), DynamicValue(1) }, { DynamicValue(true), DynamicValue(false) },
        { DynamicValue("ab"), DynamicValue("ac") }, { DynamicValue("a\0b", 3), DynamicValue("a") },
        { DynamicValue(std::nan("")), DynamicValue(std::nan("")) } };
    for (const auto& [left, right] : equal) {
        EXPECT_TRUE(left == right && !(left != right)) << left << " vs " << right;
    }
    for (const auto& [left, right] : different) {
        EXPECT_TRUE(left != right && !(left == right)) << left << " vs " << right;
    }
}

TEST(DynamicValue, CompatibilityFollowsTheKindOfTheValue)
{
    for (int kind = type::null; kind <= type::object; ++kind) {
        const type::Type t = static_cast<type::Type>(kind);
        const bool numeric = t == type::integer || t == type::real;
        EXPECT_TRUE(DynamicValue().isTypeCompatible(t)) << kind;
        EXPECT_EQ(DynamicValue(1).isTypeCompatible(t), numeric) << kind;
        EXPECT_EQ(DynamicValue(1.5).isTypeCompatible(t), numeric) << kind;
        EXPECT_EQ(DynamicValue("s").isTypeCompatible(t), t == type::string) << kind;
        EXPECT_EQ(DynamicValue(false).isTypeCompatible(t), t == type::boolean) << kind;
    }
}

TEST(DynamicValue, PrintsWithTheStreamsOwnFormatting)
{
    std::ostringstream stream;
    stream << DynamicValue() << ' ' << DynamicValue(-12) << ' ' << DynamicValue(0.25) << ' ' << DynamicValue(true)
           << ' ' << DynamicValue("a\0b", 3) << ' ' << std::boolalpha << DynamicValue(false) << ' ' << std::setw(4)
           << DynamicValue("ab") << ' ' << std::setprecision(3) << DynamicValue(3.14159);
    EXPECT_EQ(stream.str(), std::string("null -12 0.25 1 a") + '\0' + "b false   ab 3.14");
}
