// The stored text form of dynamic objects: the builder that writes it, the reader that turns it
// back into events, and the free functions over DynamicObject.

#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectSerialization.h>
#include <orv/utils/details/ArrayAllocation.h>
#include <orv/utils/impl/ProtobufDynamicObjectBuilder.h>
#include <orv/utils/impl/ProtobufDynamicObjectReader.h>

#include <gtest/gtest.h>

#include <string>

namespace orv {
namespace test {
namespace {

using utils::DynamicBufferInputOutput;
using utils::impl::ProtobufDynamicObjectBuilder;
using utils::impl::readProtobufDynamicObject;

struct Reading {
    bool result;
    std::string events;
    Texts log;
};

Reading readText(const std::string& text, const std::string& refuse = "")
{
    RecordingBuilder builder;
    RecordingLogger logger;
    builder.setLogger(&logger);
    builder.refuseAt(refuse);
    const bool result = readProtobufDynamicObject(text.data(), static_cast<unsigned int>(text.size()), builder);
    return { result, builder.line(), logger.lines };
}

const std::string version = "version { major: 0 minor: 4 patch: 0 }\n";

TEST(ProtobufDynamicObject, WritesEventsAsTextThatReadsBackAsTheSameEvents)
{
    DynamicBufferInputOutput output("text");
    ProtobufDynamicObjectBuilder builder(output);
    const std::string tricky("q\"\0\xc3\xa9", 5);
    const std::string events = "begin beginObject child(list) beginArray child int(-9223372036854775808) child "
                               "real(0.1) child string(" + tricky + ") child bool(false) child null child beginArray "
                               "endArray endArray child(" + std::string("k\0y", 3) + ") beginObject endObject endObject";
    EXPECT_EQ(play(builder, events), "");
    // Nothing is written before `end`.
    EXPECT_TRUE(output.empty());
    EXPECT_EQ(play(builder, "end"), "");
    // The null has become an empty object; all else reads back as it was sent.
    std::string expected = events + " end";
    expected.replace(expected.find("null"), 4, "beginObject endObject");
    const Reading reading = readText(textOf(output));
    EXPECT_TRUE(reading.result);
    EXPECT_EQ(reading.events, expected);
    EXPECT_TRUE(reading.log.empty());

    // The builder takes another document; the text carries the writer's version.
    output.clear();
    EXPECT_EQ(play(builder, "begin beginArray child string(\xe2\x82\xac) endArray end"), "");
    EXPECT_EQ(textOf(output), "version {\n  major: 0\n  minor: 4\n  patch: 0\n}\nroot {\n  type: Array\n"
                              "  arrayValue {\n    type: String\n    stringValue: \"\\342\\202\\254\"\n  }\n}\n");
}

TEST(ProtobufDynamicObject, BuilderRefusesEventsOutOfPlaceAndOutputsThatRefuseTheText)
{
    DynamicBufferInputOutput output("text");
    ProtobufDynamicObjectBuilder builder(output);
    RecordingLogger logger;
    builder.setLogger(&logger);
    EXPECT_EQ(play(builder, "end int(1) begin begin child beginObject child child(a) beginArray child(b) end"),
        "end int(1) begin child child child(b) end");
    EXPECT_EQ(logger.messages(), (Texts { "No build is ongoing.", "No build is ongoing.", "A build is already ongoing.",
                                          "The current property is not an array.",
                                          "The current property is not an array.",
                                          "The current property is not an object.", "Build not finished" }));
    EXPECT_EQ(logger.lines.back(), "error|invalid operation|Build not finished");
    // An unfinished build can still be finished.
    EXPECT_EQ(play(builder, "endArray endObject end"), "");
    EXPECT_EQ(readText(textOf(output)).events, "begin beginObject child(a) beginArray endArray endObject end");

    // A failed write drops the message, so that a new build can open; the report shows the message.
    LimitedStream full(false, true, 0);
    ProtobufDynamicObjectBuilder refused(full);
    logger.lines.clear();
    refused.setLogger(&logger);
    EXPECT_EQ(play(refused, "begin int(3) end begin"), "end");
    EXPECT_EQ(logger.lines, Texts { "error|io problem|Unable to serialize the given dynamic object: version {\n"
                                    "  major: 0\n  minor: 4\n  patch: 0\n}\nroot {\n  type: Int\n  intValue: 3\n}\n" });
    // The destructor takes the unfinished message with it.
}

TEST(ProtobufDynamicObject, ReaderChecksTheVersionAndTheValues)
{
    // Only the major version counts.
    Reading reading = readText("version { major: 1 minor: 0 patch: 0 } root { type: Int intValue: 1 }");
    EXPECT_FALSE(reading.result);
    EXPECT_EQ(reading.events, "");
    EXPECT_EQ(reading.log, Texts { "error|invalid data|Error while deserializing: The file originates from a "
                                   "version, v1.0.0, that is not compatible with the current version, v0.4.0." });
    EXPECT_EQ(readText("version { major: 0 minor: 9 patch: 3 } root { type: Bool boolValue: true }").events,
              "begin bool(true) end");
    // No root: nothing to send, and success.
    reading = readText(version);
    EXPECT_TRUE(reading.result);
    EXPECT_EQ(reading.events, "");

    // A scalar without its value is a corrupted file; what came before it was sent.
    const std::pair<const char*, const char*> missing[] = {
        { "Int", "Integer property not having an integer value in the protobuf file." },
        { "Real", "Real property not having a real value in the protobuf file." },
        { "Bool", "Boolean property not having a boolean value in the protobuf file." },
        { "String", "String property not having a string value in the protobuf file." },
    };
    for (const auto& [type, message] : missing) {
        reading = readText(version + "root { type: Array arrayValue { type: Int intValue: 4 } arrayValue { type: "
                           + type + " } }");
        EXPECT_FALSE(reading.result) << type;
        EXPECT_EQ(reading.events, "begin beginArray child int(4) child") << type;
        EXPECT_EQ(reading.log, Texts { std::string("error|corrupted file format|") + message }) << type;
    }
    // Values beside the one the type names are ignored.
    EXPECT_EQ(readText(version + "root { type: String intValue: 1 stringValue: \"s\" arrayValue { type: Int } }").events,
              "begin string(s) end");
    // A refusal of the builder stops the walk.
    reading = readText(version + "root { type: Object objectValue { key: \"a\" value { type: Int intValue: 1 } } "
                                 "objectValue { key: \"b\" value { type: Int intValue: 2 } } }",
                       "child(b)");
    EXPECT_FALSE(reading.result);
    EXPECT_EQ(reading.events, "begin beginObject child(a) int(1) child(b)");
}

TEST(ProtobufDynamicObject, ReaderRefusesTextThatDoesNotParse)
{
    // A required field missing; the report shows what was parsed.
    EXPECT_EQ(readText("root { type: Int intValue: 3 }").log,
              Texts { "error|invalid data|Unable to deserialize a dynamic object: root {\n  type: Int\n  intValue: 3\n}\n" });
    EXPECT_EQ(readText("").log, Texts { "error|invalid data|Unable to deserialize a dynamic object: " });
    for (const std::string& text : { version + "root { intValue: 3 }", version + "root {",
                                     version + "root { type: Int colour: 3 }", version + "root { type: 9 }" }) {
        const Reading reading = readText(text);
        EXPECT_FALSE(reading.result) << text;
        EXPECT_EQ(reading.events, "") << text;
        ASSERT_EQ(reading.log.size(), 1u) << text;
        EXPECT_EQ(reading.log[0].rfind("error|invalid data|Unable to deserialize a dynamic object: ", 0), 0u) << text;
    }
}

TEST(ProtobufDynamicObject, StoresADynamicObjectInACallerOwnedBufferAndReadsItBack)
{
    const auto store = [](const utils::DynamicObject& object) {
        unsigned int size = 0;
        char* text = utils::serializeDynamicObject(size, object, nullptr);
        EXPECT_NE(text, nullptr);
        EXPECT_EQ(utils::details::getArrayByteCount(text), size);
        const std::string result(text, size);
        utils::details::releaseArray(text);
        return result;
    };
    const auto load = [](const std::string& text, utils::DynamicObject& object, RecordingLogger& logger) {
        return utils::deserializeDynamicObject(text.data(), static_cast<unsigned int>(text.size()), object, &logger);
    };
    utils::DynamicObject object;
    object.setInt("b.list[0]", 1);
    object.setString("b.list[1]", "x");
    object.resize("b.list", 3);
    object.setReal("a", 2.5);
    const std::string text = store(object);
    utils::DynamicObject copy;
    RecordingLogger logger;
    EXPECT_TRUE(load(text, copy, logger));
    // The null element is stored as an empty object, and an empty object that the object builder
    // opens and closes stays null in the copy: the copy is equal.
    EXPECT_NE(readText(text).events.find("child beginObject endObject endArray"), std::string::npos);
    EXPECT_EQ(dump(copy), dump(object));
    EXPECT_TRUE(logger.lines.empty());
    // An empty object is stored as an empty object root, not as a missing root.
    EXPECT_EQ(readText(store(utils::DynamicObject())).events, "begin beginObject endObject end");

    // A file without a root or of another major version leaves the object alone; a corrupted
    // value keeps what came before it.
    EXPECT_TRUE(load(version, copy, logger));
    EXPECT_FALSE(load("version { major: 1 minor: 0 patch: 0 } root { type: Object }", copy, logger));
    EXPECT_EQ(dump(copy), dump(object));
    utils::DynamicObject partial;
    EXPECT_FALSE(load(version + "root { type: Object objectValue { key: \"z\" value { type: Int intValue: 4 } }"
                                " objectValue { key: \"y\" value { type: Real } } }", partial, logger));
    EXPECT_EQ(partial.getInt("z", 0), 4);
    EXPECT_EQ(logger.messages().back(), "Real property not having a real value in the protobuf file.");

    LimitedStream full(false, true, 0);
    logger.lines.clear();
    EXPECT_FALSE(utils::serializeDynamicObjectToProtobuf(object, full, &logger));
    EXPECT_EQ(logger.lines.size(), 1u);
}

} // namespace
} // namespace test
} // namespace orv
