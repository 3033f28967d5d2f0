// Property keys and paths: the grammar, the steps it reports and the positions of its messages.

#include "support/TestSupport.h"

#include <orv/utils/AbstractPropertyParser.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

using orv::test::AssertionCapture;
using orv::test::RecordingLogger;
using orv::test::Texts;
using orv::utils::AbstractPropertyParser;
using orv::utils::checkPropertyKey;
using orv::utils::checkPropertyPath;
using orv::utils::formatArrayKey;
using orv::utils::parseProperty;

namespace {

/// Writes the steps as `key(a) index(1)`; answers false at the step numbered `stopAt`.
class RecordingParser : public AbstractPropertyParser {
public:
    explicit RecordingParser(int stopAt = -1) : stopAt_(stopAt) {}

    std::string steps;

    bool key(const char* key, unsigned int length) override { return record("key(" + std::string(key, length) + ")"); }
    bool key(const char* key) override { return record("terminated(" + std::string(key) + ")"); }
    bool index(unsigned int index) override { return record("index(" + std::to_string(index) + ")"); }

private:
    bool record(const std::string& step)
    {
        steps += (steps.empty() ? "" : " ") + step;
        return count_++ != stopAt_;
    }

    int stopAt_;
    int count_ = 0;
};

struct Parsed {
    bool result;
    std::string steps;
    Texts messages;
};

Parsed parse(const std::string& path)
{
    RecordingParser parser;
    RecordingLogger logger;
    const bool result = parseProperty(path.data(), static_cast<unsigned int>(path.size()), parser, &logger);
    // The check walks the same grammar and must agree, message included.
    RecordingLogger checkLogger;
    EXPECT_EQ(checkPropertyPath(path.data(), static_cast<unsigned int>(path.size()), &checkLogger), result) << path;
    EXPECT_EQ(checkLogger.lines, logger.lines) << path;
    return Parsed{result, parser.steps, logger.messages()};
}

} // namespace

TEST(PropertyPath, KeysAreNonEmptyAndFreeOfSeparators)
{
    EXPECT_FALSE(checkPropertyKey("", 0));
    EXPECT_FALSE(checkPropertyKey(""));
    EXPECT_TRUE(checkPropertyKey("a b"));
    EXPECT_TRUE(checkPropertyKey("\xc3\xa9t\xc3\xa9"));
    EXPECT_FALSE(checkPropertyKey("a.b"));
    EXPECT_FALSE(checkPropertyKey("a[0"));
    EXPECT_FALSE(checkPropertyKey("]"));
    // The counted form looks at its bytes only, zero included.
    EXPECT_TRUE(checkPropertyKey("ab.c", 2));
    EXPECT_TRUE(checkPropertyKey("a\0b", 3));
}

TEST(PropertyPath, ValidPathsReportTheirStepsInOrder)
{
    EXPECT_EQ(parse("a[1].b[2]").steps, "key(a) index(1) key(b) index(2)");
    EXPECT_EQ(parse("[3]").steps, "index(3)");
    EXPECT_EQ(parse("[3][4]").steps, "index(3) index(4)");
    EXPECT_EQ(parse("a.").steps, "key(a)");
    EXPECT_EQ(parse("a[0].b.c").steps, "key(a) index(0) key(b) key(c)");
    EXPECT_EQ(parse("a[123456]").steps, "key(a) index(123456)");
    EXPECT_EQ(parse("x[007]").steps, "key(x) index(7)");
    EXPECT_EQ(parse("sp ace.\xe2\x82\xac").steps, "key(sp ace) key(\xe2\x82\xac)");
    const Parsed empty = parse("");
    EXPECT_TRUE(empty.result);
    EXPECT_EQ(empty.steps, "");
    for (const char* path : {"a[1].b[2]", "[3]", "a.", "a[123456]"}) {
        EXPECT_TRUE(parse(path).result) << path;
        EXPECT_EQ(parse(path).messages, Texts{}) << path;
    }
}

TEST(PropertyPath, MalformedPathsNameTheFirstOffendingByteAndItsPosition)
{
    const auto unexpected = [](const std::string& character, int position) {
        return Texts{"Unexpected '" + character + "' character at position " + std::to_string(position) + "."};
    };
    EXPECT_EQ(parse("a..b").messages, unexpected(".", 2));
    EXPECT_EQ(parse(".a").messages, unexpected(".", 0));
    EXPECT_EQ(parse("a[]").messages, unexpected("]", 2));
    EXPECT_EQ(parse("a[1]b").messages, unexpected("b", 4));
    EXPECT_EQ(parse("a[x]").messages, unexpected("x", 2));
    EXPECT_EQ(parse("a.[0]").messages, unexpected("[", 2));
    EXPECT_EQ(parse("a]").messages, unexpected("]", 1));
    EXPECT_EQ(parse("a[1[").messages, unexpected("[", 3));
    EXPECT_EQ(parse("a[-1]").messages, unexpected("-", 2));
    EXPECT_EQ(parse("a[\x80]").messages, unexpected("\x80", 2));
    EXPECT_EQ(parse("a[1]").messages, Texts{});
    EXPECT_EQ(parse("a[12").messages, Texts{"Expected ']' character at position 4."});
    EXPECT_EQ(parse("[").messages, Texts{"Expected ']' character at position 1."});
    EXPECT_EQ(parse("a[1234567]").messages,
              Texts{"Property array out of bound: maximum array index length is 5."});
    // Steps before the fault were reported; the result is false all the same.
    const Parsed partial = parse("a.b[1]c");
    EXPECT_FALSE(partial.result);
    EXPECT_EQ(partial.steps, "key(a) key(b) index(1)");

    // With no logger the results are the same, with no report.
    RecordingParser parser;
    EXPECT_FALSE(parseProperty("a..b", parser, nullptr));
    EXPECT_FALSE(checkPropertyPath("a[", nullptr));
    EXPECT_TRUE(checkPropertyPath("a[0]", nullptr));

    // Every error is invalid data.
    RecordingLogger logger;
    checkPropertyPath("a]", &logger);
    checkPropertyPath("a[1234567]", &logger);
    EXPECT_EQ(logger.lines, (Texts{"error|invalid data|Unexpected ']' character at position 1.",
                                   "error|invalid data|Property array out of bound: maximum array index length is 5."}));
}

TEST(PropertyPath, AFalseStepStopsTheParseSilently)
{
    RecordingLogger logger;
    RecordingParser first(0);
    EXPECT_FALSE(parseProperty("a.b", first, &logger));
    EXPECT_EQ(first.steps, "key(a)");
    RecordingParser last(1);
    EXPECT_FALSE(parseProperty("a.b", last, &logger));
    EXPECT_EQ(last.steps, "key(a) key(b)");
    RecordingParser index(0);
    EXPECT_FALSE(parseProperty("[2].a", index, &logger));
    EXPECT_EQ(index.steps, "index(2)");
    EXPECT_EQ(logger.lines, Texts{});
}

TEST(PropertyPath, NullTextsAreReported)
{
    AssertionCapture capture;
    RecordingParser parser;
    EXPECT_FALSE(parseProperty(nullptr, parser, nullptr));
    EXPECT_FALSE(checkPropertyPath(nullptr, nullptr));
    EXPECT_FALSE(checkPropertyKey(nullptr));
    EXPECT_EQ(capture.texts(), Texts(3, "Null string given as a key"));
}

TEST(PropertyPath, ArrayKeysAreTheDecimalIndexInBrackets)
{
    char buffer[16];
    EXPECT_EQ(formatArrayKey(0, buffer), 3u);
    EXPECT_STREQ(buffer, "[0]");
    EXPECT_EQ(formatArrayKey(99999, buffer), 7u);
    EXPECT_STREQ(buffer, "[99999]");
    EXPECT_EQ(formatArrayKey(4294967295u, buffer), 12u);
    EXPECT_STREQ(buffer, "[4294967295]");
    for (unsigned int index : {1u, 9u, 10u, 100u, 12345u}) {
        char expected[16];
        std::snprintf(expected, sizeof(expected), "[%u]", index);
        formatArrayKey(index, buffer);
        EXPECT_STREQ(buffer, expected);
    }
}
