// DynamicObjectBuilder as the consumer of builder events, and DynamicObject::retrieve through it.

#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/DynamicObjectBuilder.h>
#include <orv/utils/StringTable.h>

#include <gtest/gtest.h>

#include <string>

namespace orv {
namespace test {
namespace {

using utils::DynamicObject;
using utils::DynamicObjectBuilder;

TEST(DynamicObjectBuilder, FillsAnObjectFromAnyProducer)
{
    DynamicObject object;
    DynamicObjectBuilder builder(object, 0);
    EXPECT_EQ(play(builder,
                  "begin beginObject child(a) int(1) child(list) beginArray child real(2.5) child "
                  "string(x) child bool(false) child null child beginObject child(deep) beginArray child "
                  "int(-3) endArray endObject endArray child(empty) beginArray endArray endObject end"),
        "");
    // An empty array or object stores nothing, and so reads as null.
    EXPECT_EQ(dump(object), R"({"a":1,"empty":null,"list":[2.5,"x",false,null,{"deep":[-3]}]})");

    // The walk of one object fed to a builder on another gives the same tree, strings included.
    DynamicObject copy;
    DynamicObjectBuilder copier(copy, 0);
    EXPECT_TRUE(utils::serializeDynamicObject(object, copier));
    EXPECT_EQ(dump(copy), dump(object));
}

TEST(DynamicObjectBuilder, ContinuesTheValueItStartsOnAndStoresAScalarOfAnotherTypeBeforeFailing)
{
    DynamicObject object;
    object.setInt("list[2]", 7);
    object.setInt("map.a", 1);
    object.setInt("number", 5);
    object.setString("s", "text");
    const Texts wrongType = { "The current property is not of the expected type" };
    const struct {
        const char* start;
        const char* events;
        const char* refused;
        const char* after;
        Texts messages;
        Texts assertions;
    } cases[] = {
        { "list", "begin beginArray child int(3) endArray end", "", "[null,null,7,3]", {}, {} },
        { "map", "begin beginObject child(b) int(2) endObject end", "", R"({"a":1,"b":2})", {}, {} },
        { "number", "begin beginObject", "beginObject", "5", wrongType, {} },
        { "s", "begin int(4) end", "", "4", wrongType, { "Invalid call sequence" } },
    };
    for (const auto& c : cases) {
        RecordingLogger logger;
        AssertionCapture capture;
        DynamicObjectBuilder builder(object, object.getProperty(c.start));
        builder.setLogger(&logger);
        EXPECT_EQ(play(builder, c.events), c.refused) << c.start;
        EXPECT_EQ(dump(object, object.getProperty(c.start)), c.after) << c.start;
        EXPECT_EQ(logger.messages(), c.messages) << c.start;
        EXPECT_EQ(capture.texts(), c.assertions) << c.start;
    }
}

TEST(DynamicObjectBuilder, RefusesWhatTheCurrentPropertyCannotTake)
{
    const std::string prefix = "error|invalid operation|";
    const struct {
        const char* events;
        const char* refused;
        Texts lines;
    } cases[] = {
        { "begin int(1) int(2) beginObject child(a) child end", "beginObject child(a) child",
            { prefix + "No current property.", prefix + "No current property.", prefix + "No current property.",
                prefix + "No current property." } },
        { "begin beginArray child(a)", "child(a)", { prefix + "The current property is not an object." } },
        { "begin beginObject child", "child", { prefix + "The current property is not an array." } },
        { "begin beginObject child(x]y.z)", "child(x]y.z)",
            { "error|invalid argument|Unable to create a child named x]y.z to the current property, invalid character "
              "']' found." } },
        { "begin beginObject child(a[0])", "child(a[0])",
            { "error|invalid argument|Unable to create a child named a[0] to the current property, invalid character "
              "'[' found." } },
        { "begin beginObject child()", "child()",
            { prefix + "Unable to create a child named  to the current property." } },
    };
    for (const auto& c : cases) {
        for (bool withLogger : { true, false }) {
            DynamicObject object;
            RecordingLogger logger;
            DynamicObjectBuilder builder(object, 0);
            builder.setLogger(withLogger ? &logger : nullptr);
            AssertionCapture capture;
            EXPECT_EQ(play(builder, c.events), c.refused) << c.events;
            EXPECT_EQ(logger.lines, withLogger ? c.lines : Texts {}) << c.events;
            EXPECT_EQ(capture.texts(), Texts {}) << c.events;
        }
    }
}

TEST(DynamicObjectBuilder, ALaterDuplicateKeyReplacesTheEarlierValue)
{
    DynamicObject object;
    DynamicObjectBuilder builder(object, 0);
    AssertionCapture capture;
    EXPECT_EQ(play(builder,
                  "begin beginObject child(a) int(1) child(a) beginObject child(b) int(2) endObject child(a) "
                  "beginArray child string(x) endArray child(c) beginObject child(d) int(1) endObject child(c) "
                  "beginObject child(e) int(2) endObject endObject end"),
        "");
    EXPECT_EQ(capture.texts(), Texts {});
    // Objects under one key merge; values of another kind give way.
    EXPECT_EQ(dump(object), R"({"a":["x"],"c":{"d":1,"e":2}})");
}

TEST(DynamicObjectBuilder, AnArrayTakesTheLargestSizeAndNoMore)
{
    DynamicObject object;
    RecordingLogger logger;
    DynamicObjectBuilder builder(object, 0);
    builder.setLogger(&logger);
    ASSERT_TRUE(builder.begin() && builder.beginArray());
    for (unsigned int i = 0; i < DynamicObject::maximumArraySize; ++i) {
        ASSERT_TRUE(builder.arrayChild() && builder.integer(i)) << i;
    }
    EXPECT_FALSE(builder.arrayChild());
    EXPECT_EQ(logger.messages(), Texts { "The current array property (2) reached its maximum size: 100000." });
    EXPECT_TRUE(builder.endArray() && builder.end());
    EXPECT_EQ(object.countChildren(object.getRoot()), DynamicObject::maximumArraySize);
    EXPECT_EQ(object.getInt("[99999]", -1), 99999);
}

TEST(DynamicObjectRetrieve, RebuildsASubtreeInAnotherObject)
{
    DynamicObject source;
    source.setString("a.b[1]", "text");
    source.setReal("a.c", 0.5);
    RecordingListener listener;
    source.setListener(&listener);

    DynamicObject target;
    target.setInt("kept", 1);
    source.retrieve("a", target);
    EXPECT_EQ(dump(target), R"({"b":[null,"text"],"c":0.5,"kept":1})");
    EXPECT_EQ(listener.events,
        (Texts { "beforeRetrieve", "afterRetrieve(" + std::to_string(source.getProperty("a")) + ")" }));
    // The text is in the target's own table.
    EXPECT_NE(target.getStringTable().retrieve(target.getStringHash("b[1]", 0), nullptr), nullptr);

    // A path that names nothing sends a null.
    listener.events.clear();
    DynamicObject empty;
    source.retrieve("missing", 7, empty);
    EXPECT_TRUE(empty.empty());
    EXPECT_EQ(listener.events,
        (Texts { "beforeGetProperty", "afterGetProperty(missing)", "beforeRetrieve", "afterRetrieve(0)" }));

    // Refusals are failed assertions, and what was built stays: the null is stored over the
    // object all the same, an object can't be.
    AssertionCapture capture;
    source.retrieve(0u, target);
    EXPECT_EQ(capture.texts(), (Texts { "The current property is not of the expected type", "Invalid call sequence" }));
    EXPECT_EQ(dump(target), "null");
    capture.clear();
    DynamicObject scalar;
    scalar.setInt(scalar.getRoot(), 3);
    source.retrieve(source.getRoot(), scalar);
    EXPECT_EQ(capture.texts(), Texts { "The current property is not of the expected type" });
    EXPECT_EQ(dump(scalar), "3");
}

} // namespace
} // namespace test
} // namespace orv
