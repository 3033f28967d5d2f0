#include "support/TestSupport.h"

#include <orv/utils/DynamicObject.h>
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
    EXPECT_TRUE(serializer_.beginObject() && serializer_.objectChild("a") && serializer_.real(1.0));
    EXPECT_TRUE(serializer_.objectChild("list", 4) && serializer_.beginArray());
    for (long long value : { std::numeric_limits<long long>::min(), 0ll, std::numeric_limits<long long>::max() }) {
        EXPECT_TRUE(serializer_.arrayChild() && serializer_.integer(value));
    }
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.null());
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.boolean(true));
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.boolean(false));
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.string("say \"hi\"\n\\/", 11));
    EXPECT_TRUE(serializer_.arrayChild() && serializer_.beginObject() && serializer_.endObject());
    EXPECT_TRUE(serializer_.endArray());
    // Only the given bytes of a key count.
    EXPECT_TRUE(serializer_.objectChild("k\"eyX", 5) && serializer_.string("", 0));
    EXPECT_TRUE(serializer_.endObject() && serializer_.end());
    EXPECT_EQ(textOf(output_),
        "{\"a\":1.0,\"list\":[-9223372036854775808,0,9223372036854775807,null,true,false,"
        "\"say \\\"hi\\\"\\n\\\\/\",{}],\"k\\\"eyX\":\"\"}");
    EXPECT_TRUE(logger_.lines.empty());

    DynamicBufferInputOutput pretty("pretty");
    JsonSerializer beautifier(pretty, true);
    beautifier.begin();
    beautifier.beginArray();
    beautifier.arrayChild();
    beautifier.integer(1);
    beautifier.endArray();
    beautifier.end();
    EXPECT_EQ(textOf(pretty), "[\n    1\n]\n");
}

TEST_F(JsonSerializerTest, ReportsWhatTheRootRuleAndTheGeneratorRefuse)
{
    ASSERT_TRUE(serializer_.begin());
    EXPECT_FALSE(serializer_.integer(5));
    EXPECT_FALSE(serializer_.string("text"));
    ASSERT_TRUE(serializer_.beginObject());
    EXPECT_FALSE(serializer_.integer(5));
    EXPECT_FALSE(serializer_.real(std::nan("")));
    EXPECT_TRUE(serializer_.endObject());
    EXPECT_FALSE(serializer_.beginObject());
    EXPECT_FALSE(serializer_.objectChild("late"));
    EXPECT_EQ(logger_.lines,
        (Texts {
            refusal("Expected object or array"),
            refusal("Expected object or array"),
            refusal("No current property"),
            refusal("No current property"),
            refusal("Unexpected YAJL returned status: yajl_gen_generation_complete"),
            refusal("Unexpected YAJL returned status: yajl_gen_generation_complete"),
        }));
    // The root rule holds again for the next document; without a logger nothing is reported.
    EXPECT_TRUE(serializer_.end() && serializer_.begin());
    serializer_.setLogger(nullptr);
    EXPECT_FALSE(serializer_.null());
    EXPECT_EQ(logger_.lines.size(), 6u);
    EXPECT_EQ(textOf(output_), "{}");
}

TEST_F(JsonSerializerTest, RefusesNaNAndInfinitiesAndGoesOn)
{
    ASSERT_TRUE(serializer_.begin() && serializer_.beginArray());
    for (double value : { std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
             -std::numeric_limits<double>::infinity() }) {
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
    EXPECT_TRUE(serializer_.beginArray());
    EXPECT_TRUE(serializer_.end()) << "an open array stays unterminated";
    EXPECT_TRUE(serializer_.begin() && serializer_.beginObject() && serializer_.endObject() && serializer_.end());
    EXPECT_EQ(textOf(output_), "[{}");
    const std::string ended = refusal("The Json building was already ended or has never begun.");
    EXPECT_EQ(logger_.lines, (Texts { ended, ended, refusal("The Json building has already begun") }));

    // A serializer destroyed in the middle of a document releases its generator.
    JsonSerializer abandoned(output_, true);
    abandoned.begin();
    abandoned.beginObject();
}

TEST_F(JsonSerializerTest, StopsAtTheGeneratorsDepthLimit)
{
    ASSERT_TRUE(serializer_.begin());
    int depth = 0;
    while (depth < 1000 && serializer_.beginArray() && serializer_.arrayChild()) {
        ++depth;
    }
    EXPECT_EQ(depth, 127);
    EXPECT_EQ(logger_.lines, Texts { refusal("Maximum generation depth exceeded") });
}

TEST_F(JsonSerializerTest, AFailedWriteDoesNotStopTheBuild)
{
    utils::FileInputOutput closed("not/open.json");
    JsonSerializer serializer(closed, false);
    serializer.setLogger(&logger_);
    EXPECT_TRUE(serializer.begin() && serializer.beginArray() && serializer.endArray() && serializer.end());
    EXPECT_EQ(
        logger_.lines, Texts(2, refusal("Can't write to the io on not/open.json, it is not currently writable.")));
}

/// The text that "%.20g" gives in the current locale, with ".0" when it reads as an integer.
std::string reference(double value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.20g", value);
    std::string result(text);
    return result.find_first_not_of("0123456789-") == std::string::npos ? result + ".0" : result;
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

    // Any finite bit pattern, and any integral value, gives the reference text.
    std::mt19937_64 generator(20240611);
    for (int i = 0; i < 20000; ++i) {
        const unsigned long long bits = generator();
        double value;
        std::memcpy(&value, &bits, sizeof value);
        if (std::isfinite(value)) {
            ASSERT_EQ(serializeReal(value), reference(value));
        }
        const double integral = static_cast<double>(static_cast<long long>(bits >> 11) - (1ll << 52));
        ASSERT_EQ(serializeReal(integral), reference(integral));
    }
}

TEST(JsonSerializerNumbers, TheProcessLocaleDoesNotDecideTheDecimalSeparator)
{
    const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string expected = reference(-2.5e-10);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr) << "scripts/setup.sh installs this locale";
    const std::string localized = reference(1.5);
    const std::string written = serializeReal(1234.5);
    const std::string tiny = serializeReal(-2.5e-10);
    const std::string afterwards = std::setlocale(LC_NUMERIC, nullptr);
    std::setlocale(LC_NUMERIC, previous.c_str());
    EXPECT_EQ(localized, "1,5") << "the locale must use a comma for the test to mean anything";
    EXPECT_EQ(written, "1234.5");
    EXPECT_EQ(tiny, expected);
    EXPECT_EQ(afterwards, "de_DE.UTF-8");
}

} // namespace
} // namespace test
} // namespace orv

TEST(JsonSerializer, WritesADynamicObjectCompactlyInTheOrderOfItsKeys)
{
    orv::utils::DynamicObject object;
    object.setInt("b.n", 3);
    object.setReal("b.r", 2.0);
    object.setString("a", "t\"x");
    object.setBool("c[1]", true);
    orv::utils::DynamicBufferInputOutput output("json");
    ASSERT_TRUE(orv::utils::serializeDynamicObjectToJson(object, output, nullptr));
    EXPECT_EQ(std::string(output.data(), output.size()),
              R"({"a":"t\"x","b":{"n":3,"r":2.0},"c":[null,true]})");
}
