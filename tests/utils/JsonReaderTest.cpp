#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/JsonDeserializer.h>
#include <orv/utils/JsonSerializer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace orv {
namespace test {
namespace {

using utils::BufferInput;
using utils::deserializeJson;

/// Gives its bytes through `read` only (no look-ahead), records the size of every request, and
/// fails the request with the given number, counting from 1.
class ScriptedInput : public utils::AbstractDataInputOutput {
public:
    explicit ScriptedInput(std::string bytes, std::size_t failingRead = 0)
        : bytes_(std::move(bytes))
        , failingRead_(failingRead)
    {
    }

    bool isWritable() const override { return false; }
    bool write(const char*, unsigned int, utils::AbstractLogger*) override { return false; }
    bool isReadable() const override { return true; }
    bool read(char* buffer, unsigned int& size, utils::AbstractLogger*) override
    {
        requests.push_back(size);
        if (requests.size() == failingRead_) {
            return false;
        }
        size = static_cast<unsigned int>(std::min<std::size_t>(size, bytes_.size() - position_));
        std::memcpy(buffer, bytes_.data() + position_, size);
        position_ += size;
        return true;
    }

    std::vector<unsigned int> requests;

private:
    std::string bytes_;
    std::size_t position_ = 0;
    std::size_t failingRead_;
};

struct Outcome {
    bool result;
    std::string events;
    /// The logged lines up to the first line break: the parser's context lines follow it.
    Texts log;
    Texts fullLog;
};

Texts firstLines(const Texts& lines)
{
    Texts heads;
    for (const std::string& line : lines) {
        heads.push_back(line.substr(0, line.find('\n')));
    }
    return heads;
}

Outcome readJson(utils::AbstractDataInputOutput& input, bool stopAfterValue = false, const std::string& refuse = "")
{
    RecordingBuilder builder;
    RecordingLogger logger;
    builder.setLogger(&logger);
    builder.refuseAt(refuse);
    const bool result = deserializeJson(builder, input, stopAfterValue);
    return { result, builder.line(), firstLines(logger.lines), logger.lines };
}

Outcome readJson(const std::string& text, bool stopAfterValue = false, const std::string& refuse = "")
{
    BufferInput input(text.data(), static_cast<unsigned int>(text.size()));
    return readJson(input, stopAfterValue, refuse);
}

std::string jsonIssue(const std::string& message)
{
    return "error|invalid data|JSON issue: " + message;
}

TEST(JsonReader, TurnsEveryValueIntoItsEvents)
{
    Outcome outcome = readJson(R"({"a":[1,2.5,"x",null,true,[]]})");
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.events, "begin beginObject child(a) beginArray child int(1) child real(2.5) child string(x) "
                              "child null child bool(true) child beginArray endArray endArray endObject end");
    EXPECT_TRUE(outcome.log.empty());
    // Escapes arrive decoded, duplicate keys as they are, and a scalar may stand at the root.
    EXPECT_EQ(readJson(R"({"k\"\u00e9":"a\nb","k":{},"k":-0})").events,
              "begin beginObject child(k\"\xc3\xa9) string(a\nb) child(k) beginObject endObject child(k) int(0) endObject end");
    EXPECT_EQ(readJson(" \"root\" ").events, "begin string(root) end");

    // An empty input is a document without a value: the result is the builder's `end`.
    outcome = readJson("");
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.events, "begin !end");
}

TEST(JsonReader, GivesTheSameEventsWhateverTheChunkBoundaries)
{
    // Strings, keys and numbers of every length cross the 256-byte boundary at every offset.
    std::string text = "[";
    std::string expected = "begin beginArray";
    for (int i = 0; i < 120; ++i) {
        const std::string word(static_cast<std::size_t>(i), static_cast<char>('a' + i % 26));
        const std::string number = "-" + std::to_string(i + 1) + std::string(static_cast<std::size_t>(i % 7), '1');
        text += (i == 0 ? "{\"" : ",{\"") + word + "\":\"" + word + "\u00e9\",\"n\":[" + number + "," + number + ".5]}";
        expected += " child beginObject child(" + word + ") string(" + word + "\xc3\xa9) child(n) beginArray child int("
            + number + ") child real(" + number + ".5) endArray endObject";
    }
    text += "]";
    expected += " endArray end";
    ASSERT_GT(text.size(), 10000u);
    ScriptedInput input(text);
    const Outcome outcome = readJson(input);
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.events, expected);
    // Every request is one fixed chunk, up to the one that finds the end.
    EXPECT_EQ(input.requests, std::vector<unsigned int>((text.size() + 255) / 256 + 1, 256u));
}

TEST(JsonReader, ReadsIntegersToTheLimitsOfLongLongAndRealsToTheLimitsOfDouble)
{
    Outcome outcome = readJson("[9223372036854775807,-9223372036854775808,1,-0,999999999999999999,"
                               "-1000000000000000000,1.0,1e2,-0.0,1E+2,1e-400,-1e-400,"
                               "2.4703282292062328e-324,1.7976931348623158e308]");
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.events, "begin beginArray child int(9223372036854775807) child int(-9223372036854775808) "
                              "child int(1) child int(0) child int(999999999999999999) "
                              "child int(-1000000000000000000) "
                              "child real(1) child real(100) child real(-0) child real(100) child real(0) "
                              "child real(-0) child real(5e-324) child real(1.7976931348623157e+308) endArray end");

    // The report is the parser's own: the place is put back in front of the number. No
    // `arrayChild` goes out for a number that doesn't convert.
    outcome = readJson("[1, 9223372036854775808]");
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.events, "begin beginArray child int(1)");
    EXPECT_EQ(readJson("[1, 99999999999999999999]").fullLog,
              Texts { jsonIssue("integer overflow\n                                    [1, 99999999999999999999]\n"
                        "                     (right here) ------^\n") });
    EXPECT_EQ(readJson(R"({"a":[1e400]})").fullLog,
              Texts { jsonIssue("numeric (floating point) overflow\n                                  {\"a\":[1e400]}\n"
                        "                     (right here) ------^\n") });
    EXPECT_EQ(readJson("[0.00001e314]").log, Texts { jsonIssue("numeric (floating point) overflow") });
    // A number at the very end is only complete at the end of the input, past every chunk.
    EXPECT_EQ(readJson("-99999999999999999999").fullLog,
              Texts { jsonIssue("integer overflow\n" + std::string(40, ' ') + "\n                     (right here) ------^\n") });
}

TEST(JsonReader, ReportsBadTextWithTheParsersWordsAndKeepsWhatWasBuilt)
{
    struct Case {
        const char* text;
        const char* message;
        const char* events;
    };
    const Case cases[] = {
        { R"({"a":[1,)", "premature EOF", "begin beginObject child(a) beginArray child int(1)" },
        { " \n\t ", "premature EOF", "begin" },
        { "[1] [2]", "trailing garbage", "begin beginArray child int(1) endArray" },
        { R"({"a":1,})", "invalid object key (must be a string)", "begin beginObject child(a) int(1)" },
        { "[1 2]", "after array element, I expect ',' or ']'", "begin beginArray child int(1)" },
        // The longer prefix of lexical errors leaves ": " in front of the text.
        { "[\"\xff\"]", ": invalid bytes in UTF8 string.", "begin beginArray" },
        { "{\"\xc3\x28\":1}", ": invalid bytes in UTF8 string.", "begin beginObject" },
        { "[1.]", ": malformed number, a digit is required after the decimal point.", "begin beginArray" },
        { "/* c */ 1", ": probable comment found in input text, comments are not enabled.", "begin" },
    };
    for (const Case& c : cases) {
        const Outcome outcome = readJson(c.text);
        EXPECT_FALSE(outcome.result) << c.text;
        EXPECT_EQ(outcome.log, Texts { jsonIssue(c.message) }) << c.text;
        EXPECT_EQ(outcome.events, c.events) << c.text;
    }
    EXPECT_EQ(readJson("{\"a\":1}\nXYZ").fullLog,
              Texts { jsonIssue("trailing garbage\n                               {\"a\":1} XYZ\n"
                                "                     (right here) ------^\n") });
}

TEST(JsonReader, StopsAtTheFirstFalseFromTheBuilder)
{
    Outcome outcome = readJson(R"({"a":[1,2,3]})", false, "int(2)");
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.events, "begin beginObject child(a) beginArray child int(1) child int(2)");
    EXPECT_EQ(outcome.log, Texts { "error|previous error|Build issue: client cancelled parse via callback return value" });

    EXPECT_EQ(readJson("[[]]", false, "endArray").events, "begin beginArray child beginArray endArray");
    // A refused `begin` reads nothing; a refused `end` is the builder's to report.
    BufferInput untouched("[1]", 3);
    EXPECT_FALSE(readJson(untouched, false, "begin").result);
    EXPECT_EQ(untouched.getReadableDataSize(), 3u);
    outcome = readJson("[1]", false, "end");
    EXPECT_FALSE(outcome.result);
    EXPECT_TRUE(outcome.log.empty());
}

TEST(JsonReader, NestsAsDeepAsTheInputGoesWhileTheWriterStopsAtItsLimit)
{
    std::string expected = "begin";
    for (int level = 0; level < 10000; ++level) {
        expected += level == 0 ? " beginArray" : " child beginArray";
    }
    for (int level = 0; level < 10000; ++level) {
        expected += " endArray";
    }
    EXPECT_EQ(readJson(std::string(10000, '[') + std::string(10000, ']')).events, expected + " end");

    // The JSON writer's generator takes 127 levels; its refusal of the next comes back as a build issue.
    for (const std::size_t depth : { 127u, 128u }) {
        const std::string text = std::string(depth, '[') + std::string(depth, ']');
        BufferInput input(text.data(), static_cast<unsigned int>(text.size()));
        utils::DynamicBufferInputOutput output("json");
        utils::JsonSerializer writer(output, false);
        RecordingLogger logger;
        writer.setLogger(&logger);
        EXPECT_EQ(deserializeJson(writer, input, false), depth == 127);
        EXPECT_EQ(std::string(output.data(), output.size()), depth == 127 ? text : std::string(127, '['));
        EXPECT_EQ(firstLines(logger.lines),
                  depth == 127 ? Texts {}
                               : (Texts { "error|invalid operation|Maximum generation depth exceeded",
                                          "error|previous error|Build issue: client cancelled parse via callback return value" }));
    }
}

TEST(JsonReader, StopsBehindTheValueWhenAskedAndLeavesTheRestInTheStream)
{
    // Values one after another, one of them longer than a chunk, a scalar that only the end of
    // the input completes.
    const std::string longString(600, 'q');
    const std::string stream = "[1] {\"s\":\"" + longString + "\"}\n-12 7";
    BufferInput values(stream.data(), static_cast<unsigned int>(stream.size()));
    EXPECT_EQ(readJson(values, true).events, "begin beginArray child int(1) endArray end");
    EXPECT_EQ(readJson(values, true).events, "begin beginObject child(s) string(" + longString + ") endObject end");
    EXPECT_EQ(readJson(values, true).events, "begin int(-12) end");
    EXPECT_EQ(values.getReadableDataSize(), 2u);
    const Outcome outcome = readJson(values, true);
    EXPECT_TRUE(outcome.result);
    EXPECT_EQ(outcome.events, "begin int(7) end");
    EXPECT_EQ(values.getReadableDataSize(), 0u);
    // At the end of the input there is no value left: an empty document.
    EXPECT_EQ(readJson(values, true).events, "begin !end");

    // Broken text still fails in this mode.
    EXPECT_EQ(readJson(R"({"a":)", true).log, Texts { jsonIssue("premature EOF") });
}

TEST(JsonReader, ReportsStreamsThatFailToRead)
{
    // Without look-ahead the stream refuses, and the parser, which has no fault of its own to
    // tell, adds its bare report.
    ScriptedInput plain("{}");
    Outcome outcome = readJson(plain, true);
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.events, "begin");
    EXPECT_EQ(outcome.log, (Texts { "error|invalid operation|'peekRead' operation is not supported by this data io.",
                                    "error|invalid data|Error while reading the input data.", jsonIssue("") }));

    // A failure midway keeps what was built.
    ScriptedInput failing("[\"" + std::string(300, 'x') + "\"]", 2);
    outcome = readJson(failing);
    EXPECT_FALSE(outcome.result);
    EXPECT_EQ(outcome.events, "begin beginArray");
    EXPECT_EQ(outcome.log, (Texts { "error|invalid data|Error while reading the input data.", jsonIssue("") }));
}

TEST(JsonReader, FillsADynamicObjectThatWritesBackCompactlyInKeyOrderAndKeepsWhatWasReadBeforeAFault)
{
    const std::string text = R"({"o":{"k":"t\"x"},"a":[1,2.0,null,true]})";
    BufferInput input(text.data(), static_cast<unsigned int>(text.size()));
    utils::DynamicObject object;
    EXPECT_TRUE(utils::deserializeDynamicObjectFromJson(object, input, nullptr));
    utils::DynamicBufferInputOutput output("json");
    ASSERT_TRUE(utils::serializeDynamicObjectToJson(object, output, nullptr));
    EXPECT_EQ(textOf(output), R"({"a":[1,2.0,null,true],"o":{"k":"t\"x"}})");

    const std::string truncated = R"({"a":1,"b":[2,)";
    BufferInput broken(truncated.data(), static_cast<unsigned int>(truncated.size()));
    utils::DynamicObject partial;
    RecordingLogger logger;
    EXPECT_FALSE(utils::deserializeDynamicObjectFromJson(partial, broken, &logger));
    EXPECT_EQ(firstLines(logger.lines), Texts { jsonIssue("premature EOF") });
    EXPECT_EQ(dump(partial), R"({"a":1,"b":[2]})");
}

} // namespace
} // namespace test
} // namespace orv
