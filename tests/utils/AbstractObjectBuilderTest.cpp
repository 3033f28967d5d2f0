#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"

#include <orv/utils/AbstractObjectBuilder.h>

#include <gtest/gtest.h>

#include <string>
#include <utility>

extern "C" const char* orv_test_sendDocumentFromC(orv_ObjectBuilder* builder);

namespace orv {
namespace test {
namespace {

/// Overrides nothing: every event gets the base answer.
class BareBuilder : public utils::AbstractObjectBuilder { };

TEST(AbstractObjectBuilder, RefusesWhatAConsumerDoesNotOverride)
{
    BareBuilder builder;
    EXPECT_TRUE(builder.begin());
    EXPECT_TRUE(builder.end());
    EXPECT_FALSE(builder.integer(1)); // no logger: refused all the same

    RecordingLogger logger;
    builder.setLogger(&logger);
    EXPECT_EQ(builder.getLogger(), &logger);
    EXPECT_FALSE(builder.null() || builder.boolean(true) || builder.integer(1) || builder.real(1.0));
    EXPECT_FALSE(builder.string("text") || builder.string("text", 2));
    EXPECT_FALSE(builder.beginObject() || builder.objectChild("key") || builder.objectChild("key", 3));
    EXPECT_FALSE(builder.endObject() || builder.beginArray() || builder.arrayChild() || builder.endArray());
    Texts expected;
    for (const auto& [kind, count] : { std::pair<const char*, int> { "Null", 1 }, { "Boolean", 1 }, { "Integer", 1 },
             { "Real", 1 }, { "String", 2 }, { "Object", 4 }, { "Array", 3 } }) {
        expected.insert(expected.end(), count,
            std::string("error|invalid operation|") + kind + " properties not supported by this object builder.");
    }
    EXPECT_EQ(logger.lines, expected);
}

TEST(ObjectBuilderC, TheTableForwardsEveryEventAndEveryRefusalEvenFromACopy)
{
    RecordingBuilder builder;
    EXPECT_EQ(orv_test_sendDocumentFromC(&builder.getWrapper()), nullptr);
    const char expected[] = "begin beginObject child(a) beginArray child int(1) child real(0.5) child bool(true) "
                            "child null child string(x\0y) endArray child(b) string() endObject end";
    EXPECT_EQ(builder.line(), std::string(expected, sizeof expected - 1));
    EXPECT_TRUE(builder.isComplete());

    RecordingBuilder refusing;
    refusing.refuseAt("real(0.5)");
    EXPECT_STREQ(orv_test_sendDocumentFromC(&refusing.getWrapper()), "builder->real(ctx, 0.5)");
    EXPECT_EQ(refusing.line(), "begin beginObject child(a) beginArray child int(1) child real(0.5)");

    // A copy's table still addresses the original.
    RecordingBuilder original;
    RecordingLogger logger;
    original.setLogger(&logger);
    RecordingBuilder copy(original);
    EXPECT_EQ(copy.getLogger(), &logger);
    RecordingBuilder assigned;
    assigned = original;
    copy.getWrapper().begin(copy.getWrapper().ctx);
    assigned.getWrapper().null(assigned.getWrapper().ctx);
    EXPECT_EQ(original.line(), "begin null");
    EXPECT_EQ(copy.line() + assigned.line(), "");
}

TEST(ObjectBuilderC, ZeroTerminatedTextsAreMeasuredAndMissingBuildersAndTextsAreRefused)
{
    RecordingBuilder builder;
    utils::AbstractObjectBuilder& events = builder;
    EXPECT_TRUE(events.begin() && events.beginObject() && events.objectChild("key") && events.string("some text"));
    AssertionCapture capture;
    EXPECT_FALSE(events.string(nullptr) || events.objectChild(nullptr));
    EXPECT_EQ(capture.texts(), (Texts { "value", "key" }));

    capture.clear();
    RecordingLogger logger;
    builder.setLogger(&logger);
    orv_ObjectBuilder& table = builder.getWrapper();
    EXPECT_FALSE(table.objectChild(table.ctx, nullptr, 3));
    EXPECT_TRUE(table.objectChild(table.ctx, nullptr, 0));
    EXPECT_FALSE(table.string(table.ctx, nullptr, 5));
    EXPECT_EQ(logger.lines,
        (Texts { "error|invalid argument|Null text of 3 bytes passed to the object builder.",
            "error|invalid argument|Null text of 5 bytes passed to the object builder." }));

    EXPECT_EQ(table.end(nullptr), 0);
    EXPECT_EQ(table.boolean(nullptr, 1), 0);
    EXPECT_EQ(table.integer(nullptr, 1), 0);
    EXPECT_EQ(table.real(nullptr, 1.0), 0);
    EXPECT_EQ(table.string(nullptr, "a", 1), 0);
    EXPECT_EQ(capture.texts(), Texts(5, "ctx"));
    EXPECT_EQ(builder.line(), "begin beginObject child(key) string(some text) child()");
}

TEST(RecordingBuilder, MarksEveryEventThatBreaksTheGrammar)
{
    // In order: an element without arrayChild, two children without a value, a value where a key
    // belongs, a key without value, an array closed over an open object, a second root, a second end.
    RecordingBuilder b;
    EXPECT_TRUE(b.begin() && b.beginArray() && b.integer(1) && b.arrayChild() && b.arrayChild() && b.beginObject()
        && b.integer(2) && b.objectChild("k") && b.endObject() && b.string("v") && b.endArray() && b.endObject()
        && b.endArray() && b.null() && b.end() && b.end());
    EXPECT_EQ(b.line(),
        "begin beginArray !int(1) child !child beginObject !int(2) child(k) !endObject string(v) "
        "!endArray endObject endArray !null end !end");
    EXPECT_FALSE(b.isComplete());

    b.clear();
    EXPECT_TRUE(b.begin() && b.real(-0.1) && b.end());
    EXPECT_TRUE(b.isComplete());
    b.begin();
    EXPECT_FALSE(b.isComplete()) << "a document that has begun is not complete";
    EXPECT_EQ(b.line(), "begin real(-0.1) end begin");
}

} // namespace
} // namespace test
} // namespace orv
