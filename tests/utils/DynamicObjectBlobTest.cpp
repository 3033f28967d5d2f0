// The blob form of a dynamic object: the node store saved and loaded as it lies.

#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObjectIterator.h>
#include <orv/utils/JsonSerializer.h>
#include <orv/utils/StringTable.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace orv {
namespace test {
namespace {

using utils::DynamicObject;

/// Loads exactly the bytes given, from a heap copy of their size, so a read past them is caught.
bool load(DynamicObject& object, const std::string& bytes, utils::AbstractLogger* logger)
{
    std::vector<char> copy(bytes.begin(), bytes.end());
    // The stream takes no null buffer, even for no bytes.
    copy.reserve(1);
    utils::BufferInput input(copy.data(), static_cast<unsigned int>(bytes.size()));
    return object.loadBlob(input, logger);
}

unsigned int wordAt(const std::string& bytes, std::size_t offset)
{
    unsigned int word;
    std::memcpy(&word, bytes.data() + offset, sizeof(word));
    return word;
}

/// Some of everything over three blocks of nodes, with erased properties on the free list.
void fill(DynamicObject& object)
{
    for (int i = 0; i < 40; ++i) {
        object.setInt(("list[" + std::to_string(i) + "].n").c_str(), i);
    }
    object.setReal("a.real", 0.25);
    object.setBool("a.flag", true);
    object.setString("a.text", "words");
    object.eraseChild("a", "flag", 4);
    object.resize("list", 30);
}

TEST(DynamicObjectBlob, LoadsEveryHandleAndTheFreeListBack)
{
    const std::string fresh = saveBlob(DynamicObject());
    ASSERT_EQ(fresh.size(), 2072u);
    EXPECT_EQ(fresh.substr(0, 4), std::string("\x81\0\4\0", 4));
    EXPECT_EQ(wordAt(fresh, 4), 128u);
    EXPECT_EQ(wordAt(fresh, 8), 1u);
    EXPECT_EQ(wordAt(fresh, 12), 2u);

    utils::StringTable table(DynamicObject::stringTableSeed);
    DynamicObject::NodeAllocator allocator(DynamicObject::defaultBlockSize);
    DynamicObject source(allocator, table);
    fill(source);
    const std::string blob = saveBlob(source);
    ASSERT_GT(wordAt(blob, 8), 2u);
    ASSERT_NE(wordAt(blob, 20), 0u);
    EXPECT_EQ(blob.size(), 24 + wordAt(blob, 8) * 128 * 16);

    // Bytes after the last block are left in the stream.
    const std::string trailed = blob + "tail";
    const std::vector<char> bytes(trailed.begin(), trailed.end());
    utils::BufferInput input(bytes.data(), static_cast<unsigned int>(bytes.size()));
    DynamicObject loaded(allocator, table);
    loaded.setInt("old", 1);
    RecordingLogger logger;
    ASSERT_TRUE(loaded.loadBlob(input, &logger));
    EXPECT_EQ(logger.lines, Texts {});
    EXPECT_EQ(input.getReadableDataSize(), 4u);
    EXPECT_EQ(dump(loaded), dump(source));
    EXPECT_EQ(loaded.getProperty("list[29].n"), source.getProperty("list[29].n"));
    // Both objects take the next free node from the same list.
    EXPECT_EQ(loaded.addProperty("new"), source.addProperty("new"));

    // A load over a larger object gives its surplus blocks back.
    ASSERT_TRUE(load(loaded, fresh, nullptr));
    EXPECT_TRUE(loaded.empty());
    EXPECT_EQ(saveBlob(loaded), fresh);

    // Without the table that knows the hash, the text is lost.
    DynamicObject stranger;
    ASSERT_TRUE(load(stranger, blob, nullptr));
    EXPECT_STREQ(stranger.getString("a.text", "default"), "default");
    EXPECT_EQ(stranger.getReal("a.real", 0.0), 0.25);
}

TEST(DynamicObjectBlob, ABadHeaderLeavesTheObjectAsItWas)
{
    const std::string blob = saveBlob(DynamicObject());
    std::string zeroBlocks = blob;
    std::memset(&zeroBlocks[8], 0, 4);
    const std::string prefix = "error|invalid argument|Unable to load dynamic object blob, ";
    const struct {
        std::string bytes;
        std::string line;
        unsigned int blockSize;
    } cases[] = {
        { "\x7f" + blob.substr(1), prefix + "wrong magic number (expecting \x81, got \x7f).", 128 },
        // The bytes go into the text as they are, and a zero byte ends it.
        { blob.substr(0, 3) + "\1" + blob.substr(4), prefix + "wrong version number (expecting 0.4.0, got ", 128 },
        { blob.substr(0, 1) + "\1\3\5" + blob.substr(4),
            prefix + "wrong version number (expecting 0.4.0, got \1.\3.\5).", 128 },
        { zeroBlocks, prefix + "no blocks.", 128 },
        { blob, prefix + "wrong block size (expecting 64, got 128).", 64 },
    };
    for (const auto& c : cases) {
        utils::StringTable table(DynamicObject::stringTableSeed);
        DynamicObject::NodeAllocator allocator(c.blockSize);
        DynamicObject object(allocator, table);
        object.setInt("kept", 3);
        RecordingLogger logger;
        EXPECT_FALSE(load(object, c.bytes, &logger));
        EXPECT_EQ(logger.lines, Texts { c.line });
        EXPECT_FALSE(load(object, c.bytes, nullptr));
        EXPECT_EQ(dump(object), R"({"kept":3})");
    }
}

TEST(DynamicObjectBlob, ACutBlobFailsAtItsCutAndLeavesNoNodes)
{
    DynamicObject source;
    fill(source);
    const std::string blob = saveBlob(source);
    const std::size_t blockBytes = 128 * 16;
    const std::string prefix = "error|invalid argument|Unable to load dynamic object blob, can't read the expected ";
    for (std::size_t cut = 0; cut < blob.size(); ++cut) {
        std::string expected;
        if (cut < 12) {
            expected = prefix + "header.";
        } else if (cut < 16) {
            expected = prefix + "root property.";
        } else if (cut < 20) {
            expected = prefix + "free node index.";
        } else if (cut < 24) {
            expected = prefix + "free node list.";
        } else {
            expected = prefix + "block #" + std::to_string((cut - 24) / blockBytes) + ".";
        }
        // Targets with fewer and with as many blocks as the blob.
        DynamicObject object;
        object.setInt("kept", 3);
        if (cut % 2 != 0) {
            fill(object);
        }
        const std::string before = dump(object);
        RecordingLogger logger;
        ASSERT_FALSE(load(object, blob.substr(0, cut), &logger)) << cut;
        ASSERT_EQ(logger.lines, Texts { expected }) << cut;
        if (cut < 12) {
            ASSERT_EQ(dump(object), before) << cut;
            continue;
        }
        // No blocks are left: the object saves as a header alone.
        const std::string emptied = saveBlob(object);
        ASSERT_EQ(emptied.size(), 24u) << cut;
        ASSERT_EQ(wordAt(emptied, 8), 0u) << cut;
        object.clear();
        ASSERT_TRUE(object.empty());
        ASSERT_EQ(object.getRoot(), 2u);
    }
}

TEST(DynamicObjectBlob, ReportsTheStepThatCouldNotBeWritten)
{
    DynamicObject object;
    fill(object);
    const std::string prefix = "error|invalid argument|Unable to save dynamic object blob, ";
    const Texts expected = { prefix + "can't write the header.", prefix + "can't write the root property.",
        prefix + "can't write the free node index.", prefix + "can't write the free node list.",
        prefix + "can't write the block #0.", prefix + "can't write the block #1." };
    for (int writes = 0; writes < static_cast<int>(expected.size()); ++writes) {
        LimitedStream output(true, true, writes);
        RecordingLogger logger;
        EXPECT_FALSE(object.saveBlob(output, &logger));
        EXPECT_EQ(logger.lines, Texts { expected[writes] });
    }

    RecordingLogger logger;
    LimitedStream closed(false, false, 100);
    EXPECT_FALSE(object.saveBlob(closed, &logger));
    EXPECT_FALSE(object.loadBlob(closed, &logger));
    EXPECT_FALSE(object.loadBlob(closed, nullptr));
    EXPECT_EQ(logger.lines,
        (Texts { prefix + "the given input is not writable.",
            "error|invalid argument|Unable to load dynamic object blob, the given input is not "
            "readable." }));
}

TEST(DynamicObjectBlob, WalksOfABlobWhoseLinksLoopStopWithAFailedAssertion)
{
    // Node contents are not checked on load, so a blob may link a child back to its parent's value
    // or a key character to itself. The walks must stop, not run on or grow without end.
    DynamicObject source;
    source.setInt("a.x.k", 1);
    source.setInt("a.y.k", 1);
    const std::string blob = saveBlob(source);
    const auto nodeOffset = [](unsigned int handle) { return 24 + (handle - 1) * std::size_t(16); };
    const unsigned int parentSeparator = wordAt(blob, nodeOffset(source.getProperty("a")));
    const unsigned int child = source.getProperty("a.x");

    // The children of `x` and `y` made those of `a`: `y` within `x` within `y`, without end.
    std::string deeper = blob;
    for (const char* key : { "a.x", "a.y" }) {
        std::memcpy(&deeper[nodeOffset(source.getProperty(key))], &parentSeparator, sizeof(parentSeparator));
    }
    // The character `x` followed by itself on its greater side, without end.
    std::string wider = blob;
    // The character node of `x` is the one whose equal link is the end of `a.x`.
    for (unsigned int handle = 1; nodeOffset(handle) + 16 <= blob.size(); ++handle) {
        if (wordAt(blob, nodeOffset(handle) + 4) == child && blob[nodeOffset(handle) + 13] == 'x') {
            std::memcpy(&wider[nodeOffset(handle)], &handle, sizeof(handle));
        }
    }
    ASSERT_NE(wider, blob);

    for (const std::string* broken : { &deeper, &wider }) {
        DynamicObject object;
        ASSERT_TRUE(load(object, *broken, nullptr));
        AssertionCapture capture;
        utils::DynamicBufferInputOutput json("json");
        // A loop inside one level ends that level's walk; a loop across levels fails the visit.
        EXPECT_EQ(utils::serializeDynamicObjectToJson(object, json, nullptr), broken == &wider);
        unsigned int steps = 0;
        for (utils::DynamicObjectIterator walk(object); !walk.end() && steps < 100000; walk.next()) {
            ++steps;
        }
        EXPECT_LT(steps, 100000u);
        ASSERT_FALSE(capture.texts().empty());
        for (const std::string& text : capture.texts()) {
            EXPECT_TRUE(text == "Unable to walk the dynamic object, its nodes are broken"
                || text == "unable to walk the children, the node links loop")
                << text;
        }

        // The dump of the raw nodes and the removal of keys, which follow the links themselves,
        // end as well; what they report beyond that depends on where the loop lies.
        capture.clear();
        RecordingBuilder nodes;
        EXPECT_FALSE(object.visitTrie(object.getRoot(), nodes));
        EXPECT_EQ(capture.texts(), Texts { "Unable to walk the dynamic object, its nodes are broken" });
        capture.clear();
        object.eraseChild(object.getProperty("a"), "x", 1);
        object.resetProperty(object.getRoot());
        object.clear();
        EXPECT_EQ(dump(object), "null");
    }
}

} // namespace
} // namespace test
} // namespace orv
