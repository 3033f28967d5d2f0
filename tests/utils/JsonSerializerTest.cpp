#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/FileInputOutput.h>
#include <orv/utils/JsonDeserializer.h>
#include <orv/utils/JsonSerializer.h>

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

namespace orv {
namespace test {
namespace {

using utils::DynamicBufferInputOutput;
using utils::JsonSerializer;

std::string refusal(const std::string& message)
{
    return "error|invalid operation|" + message;
}

TEST(JsonSerializer, WritesEveryKindOfValue)
{
    DynamicBufferInputOutput output("json");
    JsonSerializer serializer(output, false);
    EXPECT_EQ(play(serializer, "begin beginObject child(a) real(1) child(list) beginArray child "
                                "int(-9223372036854775808) child int(0) child int(9223372036854775807) child null "
                                "child bool(true) child bool(false) child"),
        "");
    EXPECT_TRUE(serializer.string("say \"hi\"\n\\/", 11));
    EXPECT_EQ(play(serializer, "child beginObject endObject endArray child(k\"eyX) string() endObject end"), "");
    EXPECT_EQ(textOf(output),
        "{\"a\":1.0,\"list\":[-9223372036854775808,0,9223372036854775807,null,true,false,"
        "\"say \\\"hi\\\"\\n\\\\/\",{}],\"k\\\"eyX\":\"\"}");

    DynamicBufferInputOutput pretty("pretty");
    JsonSerializer beautifier(pretty, true);
    EXPECT_EQ(play(beautifier, "begin beginArray child int(1) endArray end"), "");
    EXPECT_EQ(textOf(pretty), "[\n    1\n]\n");
}

TEST(JsonSerializer, RefusesEventsOutOfTurnAndValuesJsonCannotHoldAndGoesOn)
{
    const std::string ended = refusal("The Json building was already ended or has never begun.");
    const std::string complete = refusal("Unexpected YAJL returned status: yajl_gen_generation_complete");
    const std::string invalid = "error|invalid argument|Invalid real value passed: ";
    const struct {
        const char* events;
        const char* refused;
        Texts lines;
        const char* text;
    } cases[] = {
        // A scalar can't be the root; a finished document takes nothing more; the next one obeys the rule again.
        { "begin int(5) string(text) beginObject int(5) real(nan) endObject beginObject child(late) end begin null",
            "int(5) string(text) int(5) real(nan) beginObject child(late) null",
            { refusal("Expected object or array"), refusal("Expected object or array"), refusal("No current property"),
                refusal("No current property"), complete, complete, refusal("Expected object or array") },
            "{}" },
        // An open array stays unterminated at `end`.
        { "end beginObject begin begin beginArray end begin beginObject endObject end", "end beginObject begin",
            { ended, ended, refusal("The Json building has already begun") }, "[{}" },
        { "begin beginArray child real(nan) child real(inf) child real(-inf) child real(2.5) endArray end",
            "real(nan) real(inf) real(-inf)", { invalid + "nan", invalid + "inf", invalid + "-inf" }, "[2.5]" },
    };
    for (const auto& c : cases) {
        for (bool withLogger : { true, false }) {
            DynamicBufferInputOutput output("json");
            JsonSerializer serializer(output, false);
            RecordingLogger logger;
            serializer.setLogger(withLogger ? &logger : nullptr);
            EXPECT_EQ(play(serializer, c.events), c.refused) << c.events;
            EXPECT_EQ(logger.lines, withLogger ? c.lines : Texts {}) << c.events;
            EXPECT_EQ(textOf(output), c.text) << c.events;
        }
    }
    // A serializer destroyed in the middle of a document releases its generator.
    DynamicBufferInputOutput output("json");
    JsonSerializer abandoned(output, true);
    EXPECT_EQ(play(abandoned, "begin beginObject"), "");
}

TEST(JsonSerializer, AFailedWriteDoesNotStopTheBuild)
{
    utils::FileInputOutput closed("not/open.json");
    JsonSerializer serializer(closed, false);
    RecordingLogger logger;
    serializer.setLogger(&logger);
    EXPECT_EQ(play(serializer, "begin beginArray endArray end"), "");
    EXPECT_EQ(
        logger.lines, Texts(2, refusal("Can't write to the io on not/open.json, it is not currently writable.")));
}

/// A buffer that sees each piece itself: the writer must not take the plain buffer's shortcut past
/// an override.
class PieceCountingBuffer : public DynamicBufferInputOutput {
public:
    PieceCountingBuffer() : DynamicBufferInputOutput("pieces") {}
    bool write(const char* buffer, unsigned int size, utils::AbstractLogger* logger) override
    {
        ++pieces;
        return DynamicBufferInputOutput::write(buffer, size, logger);
    }
    int pieces = 0;
};

TEST(JsonSerializer, SendsEveryPieceThroughTheStreamsOwnWriteAndGrowsThePlainBuffer)
{
    // Keys and values of 0 to 40 bytes cross every copy size of the buffer's in-line append and
    // many growths of its block; the plain buffer and the derived one must hold the same text.
    std::string events = "begin beginObject";
    std::string expected = "{";
    for (int length = 0; length <= 40; ++length) {
        const std::string key
            = "k" + std::string(static_cast<std::size_t>(length), static_cast<char>('a' + length % 26));
        const std::string value = std::string(static_cast<std::size_t>(length), 'z');
        events += " child(" + key + ") string(" + value + ") ";
        expected += (length == 0 ? "\"" : ",\"") + key + "\":\"" + value + "\"";
    }
    events += " child(n) int(-1234567890123) endObject end";
    expected += ",\"n\":-1234567890123}";

    DynamicBufferInputOutput plain("plain");
    JsonSerializer plainWriter(plain, false);
    EXPECT_EQ(play(plainWriter, events), "");
    EXPECT_EQ(textOf(plain), expected);

    PieceCountingBuffer counting;
    JsonSerializer countingWriter(counting, false);
    EXPECT_EQ(play(countingWriter, events), "");
    EXPECT_EQ(textOf(counting), expected);
    // At least an opening, a closing and one piece per key and per value.
    EXPECT_GT(counting.pieces, 2 + 2 * 42);
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
    play(serializer, "begin beginArray child");
    EXPECT_TRUE(serializer.real(value)) << reference(value);
    play(serializer, "endArray end");
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

TEST(JsonSerializerNumbers, TheProcessLocaleDoesNotDecideTheDecimalSeparatorEitherWay)
{
    const std::string previous = std::setlocale(LC_NUMERIC, nullptr);
    const std::string expected = reference(-2.5e-10);
    ASSERT_NE(std::setlocale(LC_NUMERIC, "de_DE.UTF-8"), nullptr) << "scripts/setup.sh installs this locale";
    const std::string localized = reference(1.5);
    const std::string written = serializeReal(1234.5);
    const std::string tiny = serializeReal(-2.5e-10);
    const std::string text = "[2.5,-1.25e3,0.1]";
    utils::BufferInput input(text.data(), static_cast<unsigned int>(text.size()));
    RecordingBuilder builder;
    const bool read = utils::deserializeJson(builder, input, false);
    const std::string afterwards = std::setlocale(LC_NUMERIC, nullptr);
    std::setlocale(LC_NUMERIC, previous.c_str());
    EXPECT_EQ(localized, "1,5") << "the locale must use a comma for the test to mean anything";
    EXPECT_EQ(written, "1234.5");
    EXPECT_EQ(tiny, expected);
    EXPECT_TRUE(read);
    EXPECT_EQ(builder.line(), "begin beginArray child real(2.5) child real(-1250) child real(0.1) endArray end");
    EXPECT_EQ(afterwards, "de_DE.UTF-8");
}

} // namespace
} // namespace test
} // namespace orv
