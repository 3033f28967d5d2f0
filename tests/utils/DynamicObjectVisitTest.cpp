// The walks over a dynamic object: the depth-first iterator, the children walk under it, and the
// object as a producer of builder events.

#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/allocator/Allocator.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectIterator.h>
#include <orv/utils/StringTable.h>

#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/JsonSerializer.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

using orv::test::dump;
using orv::test::RecordingBuilder;
using orv::utils::DynamicObject;
using orv::utils::DynamicObjectIterator;
using orv::utils::StringTable;
using namespace std::string_literals;

TEST(DynamicObjectVisit, SendsOneDocumentWithKeysInIteratorOrder)
{
    DynamicObject object;
    object.setInt("b.list[0]", 1);
    object.setReal("b.list[1]", 2.5);
    object.setString("b.list[2]", "x");
    object.setBool("b.list[3]", true);
    object.resize("b.list", 5);
    object.setString("a", "first");
    RecordingBuilder builder;
    EXPECT_TRUE(object.visit(builder));
    EXPECT_EQ(builder.line(), "begin beginObject child(a) string(first) child(b) beginObject child(list) beginArray "
                              "child int(1) child real(2.5) child string(x) child bool(true) child null endArray "
                              "endObject endObject end");
    EXPECT_TRUE(builder.isComplete());

    // One property, and an array emptied by erasing its element.
    builder.clear();
    const unsigned int list = object.getProperty("b.list");
    EXPECT_TRUE(object.visit(list, builder));
    EXPECT_EQ(builder.line(), "begin beginArray child int(1) child real(2.5) child string(x) child bool(true) child "
                              "null endArray end");
    object.setInt("e[0]", 1);
    object.eraseChild("e", 0u);
    builder.clear();
    EXPECT_TRUE(object.visit(object.getProperty("e"), builder));
    EXPECT_EQ(builder.line(), "begin beginArray endArray end");
}

TEST(DynamicObjectVisit, AFalseAnswerStopsTheWalkAtOnce)
{
    DynamicObject object;
    object.setInt("a[1]", 1);
    object.setInt("b", 2);
    for (const char* token : {"begin", "beginObject", "child(a)", "child", "int(1)", "endArray", "end"}) {
        RecordingBuilder builder;
        builder.refuseAt(token);
        EXPECT_FALSE(object.visit(builder)) << token;
        const std::string& line = builder.line();
        EXPECT_EQ(line.substr(line.size() - std::string(token).size()), token) << line;
    }
}

TEST(DynamicObjectVisit, TheTrieDumpShowsEveryNodeAndLinkAndUnknownStringsAreMarked)
{
    DynamicObject object;
    RecordingBuilder builder;
    EXPECT_TRUE(object.visitTrie(object.getRoot(), builder));
    EXPECT_EQ(builder.line(), "begin beginObject child(handle) int(2) child(\0) beginObject child(handle) int(3) "
                              "child(value) null endObject child(greater) null child(less) null endObject end"s);

    object.setString("a", "v");
    builder.clear();
    EXPECT_TRUE(object.visitTrie(object.getRoot(), builder));
    EXPECT_EQ(builder.line(),
              "begin beginObject child(handle) int(2) child(\0) beginObject child(handle) int(3) child(children count) "
              "int(1) endObject child(greater) beginObject child(handle) int(4) child(a) beginObject child(handle) "
              "int(5) child(\0) beginObject child(handle) int(6) child(value) string(v) endObject child(greater) null "
              "child(less) null endObject child(greater) null child(less) null endObject child(less) null endObject "
              "end"s);
    // A string unknown to the table goes out empty from the walk, and named as such from the dump.
    object.getStringTable() = StringTable(DynamicObject::stringTableSeed);
    builder.clear();
    EXPECT_TRUE(object.visit(builder));
    EXPECT_EQ(builder.line(), "begin beginObject child(a) string() endObject end");
    builder.clear();
    EXPECT_TRUE(object.visitTrie(object.getProperty("a"), builder));
    EXPECT_NE(builder.line().find("string(unknown string)"), std::string::npos);
}

namespace {

/// The keys the walk stops at, with the property's handle checked against a lookup of its path.
std::string walk(const DynamicObject& object, unsigned int start, unsigned int maximumDepth = 0xFFFFFFFFu)
{
    std::string keys;
    DynamicObjectIterator iterator(object, start, maximumDepth);
    EXPECT_EQ(iterator.getKeyLength(), 0u);
    EXPECT_EQ(iterator.getProperty(), start);
    for (iterator.next(); !iterator.end(); iterator.next()) {
        const std::string key(iterator.getKey(), iterator.getKeyLength());
        EXPECT_EQ(std::string(iterator.getKey()), key);
        if (start == object.getRoot()) {
            EXPECT_EQ(object.getProperty(key.c_str()), iterator.getProperty()) << key;
        }
        keys += (keys.empty() ? "" : " ") + key;
    }
    return keys;
}

} // namespace

TEST(DynamicObjectVisit, StringValuesGoOutWholeWhetherRepeatedAlternatedOrUnknown)
{
    // The visit remembers the text it sent last: a value that differs from it, one met again
    // after another, one holding a zero byte and one the table does not know must each go out as
    // themselves.
    DynamicObject object;
    object.setString("a", "v");
    object.setString("b", "v");
    object.setString("c", 1, "x\0y", 3);
    object.setString("d", "v");
    object.setString("e", "");
    object.setString("f", "long text");
    orv::utils::DynamicBufferInputOutput output("json");
    ASSERT_TRUE(orv::utils::serializeDynamicObjectToJson(object, output, nullptr));
    EXPECT_EQ(std::string(output.data(), output.size()),
              "{\"a\":\"v\",\"b\":\"v\",\"c\":\"x\\u0000y\",\"d\":\"v\",\"e\":\"\",\"f\":\"long text\"}");

    // After the table forgets them, every value is the empty text, the first one included.
    object.getStringTable() = StringTable(DynamicObject::stringTableSeed);
    object.setString("g", "w");
    RecordingBuilder builder;
    EXPECT_TRUE(object.visit(builder));
    EXPECT_EQ(builder.line(), "begin beginObject child(a) string() child(b) string() child(c) string() child(d) "
                              "string() child(e) string() child(f) string() child(g) string(w) endObject end");
}

TEST(DynamicObjectIterator, VisitsParentsBeforeChildrenInKeyOrder)
{
    DynamicObject object;
    EXPECT_TRUE(DynamicObjectIterator(object).end());
    object.setInt("b", 1);
    object.setInt("a.x", 2);
    object.setInt("v[0]", 10);
    object.setInt("v[1].y", 20);
    object.setInt("v[1].z[1]", 30);
    object.setInt("Z", 0);
    EXPECT_EQ(walk(object, object.getRoot()), "Z a a.x b v v[0] v[1] v[1].y v[1].z v[1].z[0] v[1].z[1]");
    EXPECT_EQ(walk(object, object.getRoot(), 0), "Z a b v");
    EXPECT_EQ(walk(object, object.getRoot(), 1), "Z a a.x b v v[0] v[1]");
    EXPECT_EQ(walk(object, object.getProperty("v")), "[0] [1] [1].y [1].z [1].z[0] [1].z[1]");
    EXPECT_EQ(walk(object, object.getProperty("b")), "");
    DynamicObjectIterator fromRoot(object);
    EXPECT_EQ(&fromRoot.getDynamicObject(), &object);
    EXPECT_EQ(fromRoot.next().getProperty(), object.getProperty("Z"));
}

TEST(DynamicObjectIterator, KeysThatExtendAPropertysTextAreWalkedAsItsChildren)
{
    // `a-x` lies in the level of `a`'s separator, on its smaller side. The children walk of `a`
    // enters it and then stops at the separator: the true child `a.c` is not seen. Kept as is.
    DynamicObject object;
    object.setInt("a.c", 1);
    object.setInt("a-x", 2);
    EXPECT_EQ(walk(object, object.getProperty("a"), 0), "-x");
    EXPECT_EQ(object.getChild(object.getProperty("a"), 0u), object.getProperty("a-x"));
    // From the root, `a-x` is reached through that separator too, and the walk of the root ends there.
    object.setInt("b", 3);
    EXPECT_EQ(dump(object), "{\"a\":{\"-x\":2},\"a-x\":2}");

    // In the other order `a`'s end lies below the character of `a-x`, outside the walk of `a`.
    DynamicObject other;
    other.setInt("a-x", 2);
    other.setInt("a.c", 1);
    other.setInt("b", 3);
    EXPECT_EQ(walk(other, other.getProperty("a"), 0), "c");
    EXPECT_EQ(dump(other), "{\"a\":{\"c\":1},\"a-x\":2,\"b\":3}");
}

TEST(DynamicObjectIterator, WalksKeysLongerAndLevelsDeeperThanItsFirstStorage)
{
    // Keys added in descending order chain each one below the last on the smaller side, so the
    // children walk goes nearly 60 nodes deep; keys of 201 bytes outgrow its key buffer too.
    DynamicObject object;
    std::string children;
    std::string fromRoot = "o";
    for (char first = '~'; first > 'A'; --first) {
        if (first == '[' || first == ']') {
            continue;
        }
        const std::string key = first + std::string(200, 'k');
        object.setInt(("o." + key).c_str(), first);
        children.insert(0, key + (children.empty() ? "" : " "));
        fromRoot.insert(1, " o." + key);
    }
    EXPECT_EQ(walk(object, object.getProperty("o"), 0), children);
    EXPECT_EQ(walk(object, object.getRoot()), fromRoot);
}

TEST(DynamicObjectVisit, ObjectsMetAtTheSameDepthEachSendTheirOwnChildren)
{
    // The walk reuses one children iterator per level of nesting: what one object left in it must
    // not reach the next object of that level, whether that one is longer or shorter.
    DynamicObject object;
    object.setInt("a[0].x", 1);
    object.setInt("a[0].y.p", 2);
    object.setInt("a[0].y.q", 3);
    object.setInt("a[1].z", 4);
    object.resize("a", 3);
    object.setInt("b.c.d", 6);
    object.setInt("e", 7);
    RecordingBuilder builder;
    EXPECT_TRUE(object.visit(builder));
    EXPECT_EQ(builder.line(), "begin beginObject child(a) beginArray child beginObject child(x) int(1) child(y) "
                              "beginObject child(p) int(2) child(q) int(3) endObject endObject child beginObject "
                              "child(z) int(4) endObject child null endArray child(b) beginObject "
                              "child(c) beginObject child(d) int(6) endObject endObject child(e) int(7) endObject end");
}

TEST(DynamicObjectVisit, AllocatesPerLevelOfNestingNotPerObjectOrElement)
{
    // Guards the walk's reuse of its storage: objects met at one depth share one children
    // iterator, arrays of scalars take nothing, and only nesting beyond the stack kept in the
    // walk itself (here arrays 100 deep) costs a few more blocks.
    DynamicObject object;
    for (int i = 0; i < 300; ++i) {
        const std::string element = "list[" + std::to_string(i) + "]";
        object.setInt((element + ".x").c_str(), i);
        object.setString((element + ".y").c_str(), "text");
        object.setInt(("grid[" + std::to_string(i) + "][1]").c_str(), i);
    }
    std::string deep = "deep";
    for (int level = 0; level < 100; ++level) {
        deep += "[0]";
    }
    object.setBool(deep.c_str(), true);

    RecordingBuilder builder;
    orv::allocator::Allocator& allocator = orv::allocator::Allocator::instance();
    const unsigned long long before = allocator.getNextSerial();
    EXPECT_TRUE(object.visit(builder));
    EXPECT_LE(allocator.getNextSerial() - before, 16u);
    EXPECT_TRUE(builder.isComplete());
    EXPECT_NE(builder.line().find("child(x) int(299) child(y) string(text) endObject endArray"), std::string::npos);
    std::string nested = "child(deep)";
    for (int level = 0; level < 100; ++level) {
        nested += " beginArray child";
    }
    EXPECT_NE(builder.line().find(nested + " bool(true) endArray"), std::string::npos);
}

namespace {

/// A document kept as plain maps, ordered as the trie orders keys of letters and digits: byte by
/// byte, a key before the keys it is a prefix of.
struct ModelObject {
    std::map<std::string, std::unique_ptr<ModelObject>> objects;
    std::map<std::string, int> integers;
};

std::string modelJson(const ModelObject& object)
{
    std::map<std::string, std::string> members;
    for (const auto& entry : object.integers) {
        members[entry.first] = std::to_string(entry.second);
    }
    for (const auto& entry : object.objects) {
        members[entry.first] = modelJson(*entry.second);
    }
    std::string text = "{";
    for (const auto& member : members) {
        text += (text.size() > 1 ? ",\"" : "\"") + member.first + "\":" + member.second;
    }
    return text + "}";
}

} // namespace

TEST(DynamicObjectVisit, NestedWalksSharingTheirStacksGiveEachObjectItsOwnChildrenInOrder)
{
    // Random documents of letter and digit keys, written in a shuffled order, against maps. Each
    // has one chain of objects 90 deep with long keys, so that the walks of the open objects,
    // stacked above each other, outgrow the room the visit starts with, in nodes and in key bytes.
    std::mt19937 random(20261122);
    const std::string alphabet = "abcxyzAB019";
    for (int round = 0; round < 30; ++round) {
        ModelObject model;
        std::vector<std::pair<std::string, int>> writes;
        const auto randomKey = [&](std::size_t longest) {
            std::string key(1 + random() % longest, 'a');
            for (char& c : key) {
                c = alphabet[random() % alphabet.size()];
            }
            return key;
        };
        // Leaves anywhere on the chain or in short branches off it.
        std::vector<std::string> chain;
        ModelObject* deepest = &model;
        std::vector<ModelObject*> chainObjects{&model};
        for (int level = 0; level < 90; ++level) {
            std::string key = level % 10 == 0 ? randomKey(20) + std::string(40, 'q') : randomKey(3);
            auto& slot = deepest->objects[key];
            if (slot == nullptr) {
                slot.reset(new ModelObject);
            }
            deepest->integers.erase(key);
            deepest = slot.get();
            chain.push_back(key);
            chainObjects.push_back(deepest);
        }
        for (int leaf = 0; leaf < 400; ++leaf) {
            const std::size_t depth = random() % chainObjects.size();
            std::string path;
            for (std::size_t i = 0; i < depth; ++i) {
                path += (i != 0 ? "." : "") + chain[i];
            }
            ModelObject* owner = chainObjects[depth];
            std::string key = randomKey(4);
            // Each path is written once: the writes go in shuffled.
            if (owner->objects.count(key) != 0 || owner->integers.count(key) != 0 ||
                (depth < chain.size() && key == chain[depth])) {
                continue;
            }
            if (random() % 4 == 0) {
                // A branch: an object holding one integer.
                const std::string inner = randomKey(2);
                auto& branch = owner->objects[key];
                branch.reset(new ModelObject);
                branch->integers[inner] = leaf;
                writes.emplace_back((path.empty() ? "" : path + ".") + key + "." + inner, leaf);
                continue;
            }
            owner->integers[key] = leaf;
            writes.emplace_back((path.empty() ? "" : path + ".") + key, leaf);
        }
        std::string deepPath;
        for (const std::string& key : chain) {
            deepPath += (deepPath.empty() ? "" : ".") + key;
        }
        deepest->integers["end"] = -1;
        writes.emplace_back(deepPath + ".end", -1);
        std::shuffle(writes.begin(), writes.end(), random);

        DynamicObject object;
        for (const auto& write : writes) {
            object.setInt(write.first.c_str(), write.second);
        }
        orv::utils::DynamicBufferInputOutput output("json");
        ASSERT_TRUE(orv::utils::serializeDynamicObjectToJson(object, output, nullptr));
        ASSERT_EQ(std::string(output.data(), output.size()), modelJson(model)) << "round " << round;
    }
}
