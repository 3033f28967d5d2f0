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

} // namespace

TEST(PropertyPath, KeysAreNonEmptyAndFreeOfSeparatorsAndNullTextsAreMisuse)
{
    for (const char* key : {"", "a.b", "a[0", "]"}) {
        EXPECT_FALSE(checkPropertyKey(key)) << key;
    }
    EXPECT_FALSE(checkPropertyKey("", 0));
    EXPECT_TRUE(checkPropertyKey("a b"));
    EXPECT_TRUE(checkPropertyKey("\xc3\xa9t\xc3\xa9"));
    // The counted form looks at its bytes only, zero included.
    EXPECT_TRUE(checkPropertyKey("ab.c", 2));
    EXPECT_TRUE(checkPropertyKey("a\0b", 3));

    // Null texts are misuse.
    AssertionCapture capture;
    RecordingParser parser;
    EXPECT_FALSE(parseProperty(nullptr, parser, nullptr));
    EXPECT_FALSE(checkPropertyPath(nullptr, nullptr));
    EXPECT_FALSE(checkPropertyKey(nullptr));
    EXPECT_EQ(capture.texts(), Texts(3, "Null string given as a key"));
}

TEST(PropertyPath, PathsReportTheirStepsInOrderAndFaultsNameTheFirstOffendingByteAndItsPosition)
{
    const auto unexpected = [](const std::string& character, int position) {
        return "Unexpected '" + character + "' character at position " + std::to_string(position) + ".";
    };
    const struct {
        std::string path;
        std::string steps;
        std::string message; // empty for a valid path
    } cases[] = {
        {"", "", ""},
        {"a[1].b[2]", "key(a) index(1) key(b) index(2)", ""},
        {"[3][4]", "index(3) index(4)", ""},
        {"a.", "key(a)", ""},
        {"a[0].b.c", "key(a) index(0) key(b) key(c)", ""},
        {"a[123456]", "key(a) index(123456)", ""},
        {"x[007]", "key(x) index(7)", ""},
        {"sp ace.\xe2\x82\xac", "key(sp ace) key(\xe2\x82\xac)", ""},
        // Steps before the fault are reported; the result is false all the same.
        {"a.b[1]c", "key(a) key(b) index(1)", unexpected("c", 6)},
        {"a..b", "key(a)", unexpected(".", 2)},
        {".a", "", unexpected(".", 0)},
        {"a[]", "key(a)", unexpected("]", 2)},
        {"a[x]", "key(a)", unexpected("x", 2)},
        {"a.[0]", "key(a)", unexpected("[", 2)},
        {"a]", "", unexpected("]", 1)},
        {"a[1[", "key(a)", unexpected("[", 3)},
        {"a[-1]", "key(a)", unexpected("-", 2)},
        {"a[\x80]", "key(a)", unexpected("\x80", 2)},
        {"a[12", "key(a)", "Expected ']' character at position 4."},
        {"[", "", "Expected ']' character at position 1."},
        {"a[1234567]", "key(a)", "Property array out of bound: maximum array index length is 5."},
    };
    for (const auto& c : cases) {
        RecordingParser parser;
        RecordingLogger logger;
        const unsigned int size = static_cast<unsigned int>(c.path.size());
        EXPECT_EQ(parseProperty(c.path.data(), size, parser, &logger), c.message.empty()) << c.path;
        EXPECT_EQ(parser.steps, c.steps) << c.path;
        // Every fault is invalid data.
        EXPECT_EQ(logger.lines, c.message.empty() ? Texts{} : Texts{"error|invalid data|" + c.message}) << c.path;
        // The check walks the same grammar and must agree, message included; without a logger, silently.
        RecordingLogger checkLogger;
        EXPECT_EQ(checkPropertyPath(c.path.data(), size, &checkLogger), c.message.empty()) << c.path;
        EXPECT_EQ(checkLogger.lines, logger.lines) << c.path;
        EXPECT_EQ(checkPropertyPath(c.path.data(), size, nullptr), c.message.empty()) << c.path;
        RecordingParser quiet;
        EXPECT_EQ(parseProperty(c.path.data(), size, quiet, nullptr), c.message.empty()) << c.path;
    }
}

TEST(PropertyPath, AFalseStepStopsTheParseSilently)
{
    RecordingLogger logger;
    const struct {
        const char* path;
        int stopAt;
        const char* steps;
    } cases[] = {{"a.b", 0, "key(a)"}, {"a.b", 1, "key(a) key(b)"}, {"[2].a", 0, "index(2)"}};
    for (const auto& c : cases) {
        RecordingParser parser(c.stopAt);
        EXPECT_FALSE(parseProperty(c.path, parser, &logger)) << c.path;
        EXPECT_EQ(parser.steps, c.steps) << c.path;
    }
    EXPECT_EQ(logger.lines, Texts{});
}

TEST(PropertyPath, ArrayKeysAreTheDecimalIndexInBrackets)
{
    for (unsigned int index : {0u, 1u, 9u, 10u, 100u, 12345u, 99999u, 4294967295u}) {
        char buffer[16];
        char expected[16];
        const int length = std::snprintf(expected, sizeof(expected), "[%u]", index);
        EXPECT_EQ(formatArrayKey(index, buffer), static_cast<unsigned int>(length)) << index;
        EXPECT_STREQ(buffer, expected);
    }
}
