#include "support/TestSupport.h"

#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/FileInputOutput.h>
#include <orv/utils/JsonSerializer.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

namespace orv {
namespace test {
namespace {

using utils::DynamicBufferInputOutput;
using utils::JsonSerializer;

std::string textOf(const DynamicBufferInputOutput& output)
{
    return output.empty() ? std::string() : std::string(output.data(), output.size());
}

std::string refusal(const std::string& message)
{
    return "error|invalid operation|" + message;
}

class JsonSerializerTest : public testing::Test {
protected:
    JsonSerializerTest() { serializer_.setLogger(&logger_); }

    DynamicBufferInputOutput output_ { "json" };
    JsonSerializer serializer_ { output_, false };
    RecordingLogger logger_;
};

TEST_F(JsonSerializerTest, WritesEveryKindOfValue)
{
    ASSERT_TRUE(serializer_.begin());
    EXPECT_TRUE(serializer_.beginObject());
    EXPECT_TRUE(serializer_.objectChild("a"));
    EXPECT_TRUE(serializer_.real(1.0));
    EXPECT_TRUE(serializer_.objectChild("list", 4));
    EXPECT_TRUE(serializer_.beginArray());
    const long long limits[] = { std::numeric_limits<long long>::min(), -3, 0, std::numeric_limits<long long>::max() };
    for (long long value : limits) {
        EXPECT_TRUE(serializer_.arrayChild());
        EXPECT_TRUE(serializer_.integer(value));
    }
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.null());
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.boolean(true));
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.boolean(false));
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.string("say \"hi\"\n\\/", 11));
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.beginObject() && serializer_.endObject());
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.beginArray() && serializer_.endArray());
    EXPECT_TRUE(serializer_.endArray());
    // Keys are texts like any other, and only the given bytes count.
    EXPECT_TRUE(serializer_.objectChild("k\"eyX", 5));
    EXPECT_TRUE(serializer_.string("", 0));
    EXPECT_TRUE(serializer_.endObject());
    EXPECT_TRUE(serializer_.end());
    EXPECT_EQ(textOf(output_),
        "{\"a\":1.0,\"list\":[-9223372036854775808,-3,0,9223372036854775807,null,true,false,"
        "\"say \\\"hi\\\"\\n\\\\/\",{},[]],\"k\\\"eyX\":\"\"}");
    EXPECT_TRUE(logger_.lines.empty());
}

TEST_F(JsonSerializerTest, BeautifiesWithFourBlanks)
{
    DynamicBufferInputOutput output("pretty");
    JsonSerializer serializer(output, true);
    serializer.begin();
    serializer.beginObject();
    serializer.objectChild("a");
    serializer.beginArray();
    serializer.arrayChild();
    serializer.integer(1);
    serializer.arrayChild();
    serializer.string("b");
    serializer.endArray();
    serializer.endObject();
    EXPECT_TRUE(serializer.end());
    EXPECT_EQ(textOf(output), "{\n    \"a\": [\n        1,\n        \"b\"\n    ]\n}\n");
}

TEST_F(JsonSerializerTest, TheRootIsAnObjectOrAnArray)
{
    ASSERT_TRUE(serializer_.begin());
    EXPECT_FALSE(serializer_.integer(5));
    EXPECT_FALSE(serializer_.null());
    EXPECT_FALSE(serializer_.boolean(true));
    EXPECT_FALSE(serializer_.real(1.5));
    EXPECT_FALSE(serializer_.string("text"));
    EXPECT_EQ(logger_.lines, Texts(5, refusal("Expected object or array")));
    EXPECT_EQ(output_.size(), 0u);

    serializer_.setLogger(nullptr);
    EXPECT_FALSE(serializer_.integer(5));
    EXPECT_EQ(logger_.lines.size(), 5u);

    // The rule holds again for the next document.
    serializer_.setLogger(&logger_);
    EXPECT_TRUE(serializer_.beginArray() && serializer_.endArray());
    EXPECT_TRUE(serializer_.end());
    EXPECT_TRUE(serializer_.begin());
    EXPECT_FALSE(serializer_.integer(5));
    EXPECT_EQ(logger_.lines.size(), 6u);
    EXPECT_EQ(textOf(output_), "[]");
}

TEST_F(JsonSerializerTest, ReportsWhatTheGeneratorRefuses)
{
    ASSERT_TRUE(serializer_.begin());
    ASSERT_TRUE(serializer_.beginObject());
    EXPECT_FALSE(serializer_.integer(5));
    EXPECT_FALSE(serializer_.real(std::nan("")));
    EXPECT_FALSE(serializer_.beginArray());
    EXPECT_TRUE(serializer_.endObject());
    // The root is closed: nothing more belongs to this document.
    EXPECT_FALSE(serializer_.beginObject());
    EXPECT_FALSE(serializer_.integer(1));
    EXPECT_FALSE(serializer_.objectChild("late"));
    EXPECT_FALSE(serializer_.endObject());
    EXPECT_EQ(logger_.lines,
        (Texts {
            refusal("No current property"),
            refusal("No current property"),
            refusal("No current property"),
            refusal("Unexpected YAJL returned status: yajl_gen_generation_complete"),
            refusal("Unexpected YAJL returned status: yajl_gen_generation_complete"),
            refusal("Unexpected YAJL returned status: yajl_gen_generation_complete"),
            refusal("Unexpected YAJL returned status: yajl_gen_generation_complete"),
        }));
    EXPECT_TRUE(serializer_.end());
    EXPECT_EQ(textOf(output_), "{}");
}

TEST_F(JsonSerializerTest, RefusesNaNAndInfinitiesAndGoesOn)
{
    ASSERT_TRUE(serializer_.begin());
    ASSERT_TRUE(serializer_.beginArray());
    const double refused[] = { std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
        -std::numeric_limits<double>::infinity() };
    for (double value : refused) {
        EXPECT_TRUE(serializer_.arrayChild());
        EXPECT_FALSE(serializer_.real(value));
    }
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.real(2.5));
    EXPECT_TRUE(serializer_.endArray() && serializer_.end());
    EXPECT_EQ(textOf(output_), "[2.5]");
    EXPECT_EQ(logger_.lines,
        (Texts {
            "error|invalid argument|Invalid real value passed: nan",
            "error|invalid argument|Invalid real value passed: inf",
            "error|invalid argument|Invalid real value passed: -inf",
        }));
}

TEST_F(JsonSerializerTest, BeginsAndEndsOnlyInTurn)
{
    EXPECT_FALSE(serializer_.end());
    EXPECT_FALSE(serializer_.beginObject());
    ASSERT_TRUE(serializer_.begin());
    EXPECT_FALSE(serializer_.begin());
    EXPECT_TRUE(serializer_.end());
    EXPECT_FALSE(serializer_.end());
    EXPECT_TRUE(serializer_.begin());
    EXPECT_TRUE(serializer_.beginArray());
    EXPECT_TRUE(serializer_.end()) << "an open array stays unterminated";
    EXPECT_TRUE(serializer_.begin());
    EXPECT_TRUE(serializer_.beginObject());
    EXPECT_TRUE(serializer_.endObject());
    EXPECT_TRUE(serializer_.end());
    EXPECT_EQ(textOf(output_), "[{}");
    const std::string ended = refusal("The Json building was already ended or has never begun.");
    EXPECT_EQ(logger_.lines, (Texts { ended, ended, refusal("The Json building has already begun"), ended }));

    // A serializer destroyed in the middle of a document releases its generator.
    JsonSerializer abandoned(output_, true);
    abandoned.begin();
    abandoned.beginObject();
}

TEST_F(JsonSerializerTest, StopsAtTheGeneratorsDepthLimit)
{
    ASSERT_TRUE(serializer_.begin());
    int depth = 0;
    while (depth < 1000 && serializer_.beginArray()) {
        ++depth;
        serializer_.arrayChild();
    }
    EXPECT_EQ(depth, 127);
    EXPECT_EQ(logger_.lines, Texts { refusal("Maximum generation depth exceeded") });
}

TEST_F(JsonSerializerTest, AFailedWriteDoesNotStopTheBuild)
{
    utils::FileInputOutput closed("not/open.json");
    JsonSerializer serializer(closed, false);
    serializer.setLogger(&logger_);
    EXPECT_TRUE(serializer.begin());
    EXPECT_TRUE(serializer.beginArray());
    EXPECT_TRUE(serializer.endArray());
    EXPECT_TRUE(serializer.end());
    EXPECT_EQ(
        logger_.lines, Texts(2, refusal("Can't write to the io on not/open.json, it is not currently writable.")));
}

/// The text that "%.20g" gives in the "C" locale, with ".0" when it reads as an integer.
std::string reference(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.20g", value);
    std::string result(text);
    if (result.find_first_not_of("0123456789-") == std::string::npos) {
        result += ".0";
    }
    return result;
}

std::string serializeReal(double value)
{
    DynamicBufferInputOutput output("real");
    JsonSerializer serializer(output, false);
    serializer.begin();
    serializer.beginArray();
    serializer.arrayChild();
    EXPECT_TRUE(serializer.real(value)) << reference(value);
    serializer.endArray();
    serializer.end();
    const std::string text = textOf(output);
    return text.size() >= 2 ? text.substr(1, text.size() - 2) : text;
}

TEST(JsonSerializerNumbers, RealsAreWrittenAsTwentySignificantDigits)
{
    ASSERT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
    EXPECT_EQ(serializeReal(0.1), "0.10000000000000000555");
    EXPECT_EQ(serializeReal(100.0), "100.0");
    EXPECT_EQ(serializeReal(-0.0), "-0.0");
    EXPECT_EQ(serializeReal(1e20), "1e+20");
    EXPECT_EQ(serializeReal(1e21), "1e+21");
    for (double value : { 123456789012345678901.0, 5e-324, -1.7976931348623157e308, 2.2250738585072014e-308 }) {
        EXPECT_EQ(serializeReal(value), reference(value));
    }

    // Any bit pattern that is a finite double gives the text of the reference formatting.
    std::mt19937_64 generator(20240611);
    for (int i = 0; i < 20000; ++i) {
        const unsigned long long bits = generator();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) {
            continue;
        }
        ASSERT_EQ(serializeReal(value), reference(value));
        const double integral = static_cast<double>(static_cast<long long>(bits >> 11) - (1ll << 52));
        ASSERT_EQ(serializeReal(integral), reference(integral));
    }
}

TEST(JsonSerializerNumbers, TheProcessLocaleDoesNotDecideTheDecimalSeparator)
{
    const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string expectedTiny = reference(-2.5e-10);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr) << "scripts/setup.sh installs this locale";
    char probe[16];
    std::snprintf(probe, sizeof probe, "%.1f", 1.5);
    const std::string localized = probe;
    const std::string written = serializeReal(1234.5);
    const std::string tiny = serializeReal(-2.5e-10);
    const std::string afterwards = std::setlocale(LC_NUMERIC, nullptr);
    std::setlocale(LC_NUMERIC, previous.c_str());
    EXPECT_EQ(localized, "1,5") << "the locale must use a comma for the test to mean anything";
    EXPECT_EQ(written, "1234.5");
    EXPECT_EQ(tiny, expectedTiny);
    EXPECT_EQ(afterwards, "de_DE.UTF-8");
}

} // namespace
} // namespace test
} // namespace orv
