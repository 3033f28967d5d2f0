// DynamicObjectBuilder as the consumer of builder events, and DynamicObject::retrieve through it.

#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/DynamicObjectBuilder.h>
#include <orv/utils/StringTable.h>

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

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

    // The children of the merged object go behind its own `.`, whatever container was filled at
    // their depth in between.
    DynamicObject merged;
    DynamicObjectBuilder again(merged, 0);
    EXPECT_EQ(play(again,
                  "begin beginObject child(a) beginObject child(x) int(1) child(z) int(3) endObject child(b) beginArray child int(1) "
                  "endArray child(a) beginObject child(y) int(2) endObject endObject end"),
        "");
    EXPECT_EQ(dump(merged), R"({"a":{"x":1,"y":2,"z":3},"b":[1]})");
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

/// The store of `object` as far as it means anything: its counters, then every node reached from
/// the root and from the free list, with its index. Slots never handed out are saved as they lie
/// in memory, and the rule for releasing the last slot can leave some inside a block.
std::string reachableNodes(const DynamicObject& object)
{
    const std::string blob = saveBlob(object);
    unsigned int words[6];
    std::memcpy(words, blob.data() + 4, sizeof words);
    const std::size_t nodeCount = (blob.size() - 24) / 16;
    std::string seen = blob.substr(0, 24);
    const auto node = [&blob](unsigned int index, unsigned int word) {
        unsigned int value;
        std::memcpy(&value, blob.data() + 24 + (index - 1) * 16 + word * 4, sizeof value);
        return value;
    };
    std::vector<unsigned int> pending { words[2] };
    while (!pending.empty()) {
        const unsigned int index = pending.back();
        pending.pop_back();
        if (index == 0 || index > nodeCount) {
            continue;
        }
        seen += std::to_string(index) + ":" + blob.substr(24 + (index - 1) * 16, 16);
        if ((node(index, 3) & 0xFF) == 0) {
            pending.insert(pending.end(), { node(index, 0), node(index, 1), node(index, 2) });
        }
    }
    for (unsigned int free = words[4], steps = 0; free != 0 && free <= nodeCount && steps < nodeCount; ++steps) {
        seen += "free " + std::to_string(free);
        free = node(free, 0);
    }
    return seen;
}

/// The builder's events as the public operations that its contract names, one call each: what the
/// builder does by shortcuts must leave the very same nodes.
class PlainBuilder : public utils::AbstractObjectBuilder {
public:
    explicit PlainBuilder(DynamicObject& object) : object_(object), stack_ { object.getRoot() } {}

    bool null() override { return scalar([this](unsigned int p) { object_.resetProperty(p); }); }
    bool boolean(bool v) override { return scalar([this, v](unsigned int p) { object_.setBool(p, v); }); }
    bool integer(long long v) override { return scalar([this, v](unsigned int p) { object_.setInt(p, v); }); }
    bool real(double v) override { return scalar([this, v](unsigned int p) { object_.setReal(p, v); }); }
    using AbstractObjectBuilder::string;
    bool string(const char* v, unsigned int n) override
    {
        return scalar([this, v, n](unsigned int p) { object_.setString(p, v, n); });
    }
    bool beginObject() override { return open(utils::type::object); }
    bool beginArray() override { return open(utils::type::array); }
    bool endObject() override { return close(); }
    bool endArray() override { return close(); }
    using AbstractObjectBuilder::objectChild;
    bool objectChild(const char* key, unsigned int size) override
    {
        stack_.push_back(object_.addChild(stack_.back(), key, size));
        return stack_.back() != 0;
    }
    bool arrayChild() override
    {
        const unsigned int count = object_.countChildren(stack_.back());
        object_.resize(stack_.back(), count + 1);
        stack_.push_back(object_.getChild(stack_.back(), count));
        return stack_.back() != 0;
    }

private:
    template <typename Store>
    bool scalar(Store store)
    {
        store(stack_.back());
        return close();
    }
    bool open(utils::type::Type type)
    {
        const utils::type::Type stored = object_.getType(stack_.back());
        if (stored != utils::type::null && stored != type) {
            object_.resetProperty(stack_.back());
        }
        return true;
    }
    bool close()
    {
        stack_.pop_back();
        return true;
    }

    DynamicObject& object_;
    std::vector<unsigned int> stack_;
};

/// Sends one random value: keys drawn from a small set that shares prefixes, holds bytes above
/// 0x7F and repeats, containers of a few children, some past the size where a level gets its
/// shortcuts and past a hundred.
void sendRandomValue(std::mt19937& random, int depth, std::vector<utils::AbstractObjectBuilder*> builders)
{
    static const char* const keys[] = { "a", "ab", "abc", "b", "ba", "k1", "k10", "k2", "k20", "k3", "z", "\x80", "a\xff",
                                        "longer name", "k" };
    const unsigned int kind = depth >= 4 ? random() % 3 : random() % 5;
    const auto all = [&builders](auto event) {
        for (utils::AbstractObjectBuilder* builder : builders) {
            ASSERT_TRUE(event(*builder));
        }
    };
    if (kind < 3) {
        const long long value = static_cast<long long>(random() % 1000);
        all([value, kind](utils::AbstractObjectBuilder& b) {
            return kind == 0 ? b.integer(value) : kind == 1 ? b.string(std::to_string(value).c_str()) : b.null();
        });
        return;
    }
    const bool isObject = kind == 3;
    all([isObject](utils::AbstractObjectBuilder& b) { return isObject ? b.beginObject() : b.beginArray(); });
    // Past a hundred elements the indices gain a third digit.
    const unsigned int count = random() % (random() % 16 == 0 ? 130 : random() % 4 == 0 ? 50 : 8);
    for (unsigned int i = 0; i < count; ++i) {
        // Mostly ascending names, as documents are written, with jumps back and repeats.
        const std::string key = random() % 3 == 0 ? keys[random() % 15] : "n" + std::to_string(i * 3 + random() % 4);
        all([&key, isObject](utils::AbstractObjectBuilder& b) {
            return isObject ? b.objectChild(key.data(), static_cast<unsigned int>(key.size())) : b.arrayChild();
        });
        sendRandomValue(random, depth + 1, builders);
    }
    all([isObject](utils::AbstractObjectBuilder& b) { return isObject ? b.endObject() : b.endArray(); });
}

TEST(DynamicObjectBuilder, LeavesTheNodesThatThePlainOperationsLeave)
{
    std::mt19937 random(11);
    for (int round = 0; round < 60; ++round) {
        DynamicObject built;
        DynamicObject plain;
        {
            DynamicObjectBuilder builder(built, 0);
            PlainBuilder reference(plain);
            sendRandomValue(random, 0, { &builder, &reference });
        }
        ASSERT_EQ(reachableNodes(built), reachableNodes(plain)) << round;
        ASSERT_EQ(dump(built), dump(plain)) << round;
        // A build goes on after children it just made were erased: their nodes, which its last
        // insertions went through, are on the free list and the next insertion takes them.
        const unsigned int root = built.getRoot();
        const bool isObject = built.getType(root) == utils::type::object;
        if (!isObject && built.getType(root) != utils::type::array) {
            continue;
        }
        DynamicObjectBuilder again(built, 0);
        PlainBuilder referenceAgain(plain);
        ASSERT_TRUE(isObject ? again.beginObject() && referenceAgain.beginObject()
                             : again.beginArray() && referenceAgain.beginArray());
        for (unsigned int step = 0; step < 12; ++step) {
            const std::string key = "n" + std::to_string(step * 3 % 11);
            for (utils::AbstractObjectBuilder* builder : { static_cast<utils::AbstractObjectBuilder*>(&again),
                                                          static_cast<utils::AbstractObjectBuilder*>(&referenceAgain) }) {
                ASSERT_TRUE(isObject ? builder->objectChild(key.c_str()) : builder->arrayChild());
                ASSERT_TRUE(builder->integer(step));
            }
            if (step % 4 == 3) {
                for (DynamicObject* object : { &built, &plain }) {
                    const unsigned int last = object->countChildren(root) - 1;
                    EXPECT_TRUE(isObject ? object->eraseChild(root, key.c_str(), static_cast<unsigned int>(key.size()))
                                         : object->eraseChild(root, last));
                }
            }
        }
        ASSERT_EQ(reachableNodes(built), reachableNodes(plain)) << round;
    }
}

TEST(DynamicObjectBuilder, ADocumentNestedAsDeepAsItIsLongIsBuiltCopiedAndReplaced)
{
    // A copy of the nested value, and a later value under the same key that resets it, go as deep
    // as the document is long, which no call stack holds.
    DynamicObject object;
    DynamicObjectBuilder builder(object, 0);
    RecordingListener listener;
    const unsigned int depth = 200000;
    ASSERT_TRUE(builder.begin() && builder.beginObject() && builder.objectChild("a"));
    for (unsigned int level = 0; level < depth; ++level) {
        ASSERT_TRUE(builder.beginArray() && builder.arrayChild());
    }
    ASSERT_TRUE(builder.integer(1));
    for (unsigned int level = 0; level < depth; ++level) {
        ASSERT_TRUE(builder.endArray());
    }
    EXPECT_EQ(object.getInt("a[0][0][0]", 0), 0);
    EXPECT_EQ(object.getType("a[0][0]"), utils::type::array);
    // A copy by value goes as deep.
    DynamicObject copy;
    copy.put("b", object);
    EXPECT_EQ(copy.getType("b.a[0][0]"), utils::type::array);
    EXPECT_EQ(copy.countChildren(copy.getProperty("b.a[0][0][0][0]")), 1u);
    object.setListener(&listener);
    ASSERT_TRUE(builder.objectChild("a") && builder.integer(2) && builder.endObject() && builder.end());
    EXPECT_EQ(dump(object), R"({"a":2})");
    // Every nested property was reset, the outermost first to start and last to end.
    EXPECT_EQ(listener.events.size(), 2u * (depth + 1) + 4);
    const std::string a = std::to_string(object.getProperty("a"));
    EXPECT_EQ(listener.events[3], "beforeResetProperty");
    EXPECT_EQ(listener.events[listener.events.size() - 2], "afterResetProperty(" + a + ")");
    EXPECT_EQ(listener.events.back(), "afterSetInt(" + a + ",2)");
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
