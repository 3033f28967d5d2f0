// Path and child lookups under containers large enough for the object to keep shortcuts beside its
// trie. The shortcuts are not saved, so a walk of the saved nodes, written here from the node
// layout alone, says what every lookup must answer, whatever the object did before.

#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/BlockAllocator.h>
#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/StringTable.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace orv {
namespace test {
namespace {

using utils::DynamicObject;

/// The saved nodes, walked by text as a lookup by path is defined: signed bytes against the split
/// characters, the end of the path as 0, then down the smaller links to the end-of-key node.
class SavedTrie {
public:
    explicit SavedTrie(const DynamicObject& object) : bytes_(saveBlob(object))
    {
        blockSize_ = word(4);
        root_ = word(12);
    }

    unsigned int find(const std::string& path) const { return find(root_, path); }

    unsigned int find(unsigned int start, const std::string& path) const
    {
        unsigned int index = start;
        std::size_t position = 0;
        while (index != 0 && position < path.size()) {
            const signed char c = static_cast<signed char>(path[position]);
            if (c == split(index)) {
                if (position + 1 == path.size()) {
                    break;
                }
                index = link(index, 4);
                ++position;
            } else {
                index = link(index, c < split(index) ? 8 : 0);
            }
        }
        if (index != 0 && !path.empty() && split(index) != 0) {
            index = link(index, 4);
            while (index != 0 && split(index) != 0) {
                index = link(index, 8);
            }
        }
        // A property is an end-of-key node with a value node under it.
        const bool isProperty = index != 0 && byte(index, 12) == 0 && split(index) == 0 && link(index, 4) != 0 &&
                                byte(link(index, 4), 12) == 1;
        return isProperty ? index : 0;
    }

private:
    unsigned int word(std::size_t offset) const
    {
        unsigned int value;
        std::memcpy(&value, bytes_.data() + offset, sizeof(value));
        return value;
    }

    std::size_t offsetOf(unsigned int index) const
    {
        const std::size_t block = (index - 1) / blockSize_;
        return 24 + (block * blockSize_ + (index - 1) % blockSize_) * 16;
    }

    unsigned int link(unsigned int index, std::size_t at) const { return word(offsetOf(index) + at); }
    unsigned char byte(unsigned int index, std::size_t at) const
    {
        return static_cast<unsigned char>(bytes_[offsetOf(index) + at]);
    }
    signed char split(unsigned int index) const { return static_cast<signed char>(byte(index, 13)); }

    std::string bytes_;
    unsigned int blockSize_;
    unsigned int root_;
};

/// Every path in `paths`, and each one with its last step taken from its parent by handle, must be
/// found where the saved nodes put it, or be missing from both.
void expectLookupsAgree(const DynamicObject& object, const std::vector<std::string>& paths, const char* step)
{
    SCOPED_TRACE(step);
    const SavedTrie saved(object);
    for (const std::string& path : paths) {
        const unsigned int expected = saved.find(path);
        ASSERT_EQ(object.getProperty(path.data(), static_cast<unsigned int>(path.size())), expected) << path;
        const std::size_t cut = path.find_last_of(".[");
        if (cut == std::string::npos || cut == 0) {
            continue;
        }
        const unsigned int parent = saved.find(path.substr(0, cut));
        if (parent == 0) {
            continue;
        }
        if (path[cut] == '.') {
            const std::string key = path.substr(cut + 1);
            EXPECT_EQ(object.getChild(parent, key.data(), static_cast<unsigned int>(key.size())), expected) << path;
        } else if (object.getType(parent) == utils::type::array) {
            const std::string digits = path.substr(cut + 1, path.size() - cut - 2);
            // Positions written other than by the array itself ("[007]") name nothing.
            if (!digits.empty() && digits.find_first_not_of("0123456789") == std::string::npos &&
                path.back() == ']') {
                const unsigned int position = static_cast<unsigned int>(std::stoul(digits));
                if (path.substr(cut) == "[" + std::to_string(position) + "]") {
                    EXPECT_EQ(object.getChild(parent, position), expected) << path;
                }
            }
        }
    }
}

/// Enough children everywhere for every level to be worth indexing: 40 top-level numbers, a list of
/// 60 records of 36 fields, and a grid of 40 rows of 40.
std::vector<std::string> fill(DynamicObject& object)
{
    std::vector<std::string> paths;
    for (int i = 0; i < 40; ++i) {
        paths.push_back("k" + std::to_string(i));
        object.setInt(paths.back().c_str(), i);
    }
    const unsigned int list = object.addProperty("list");
    object.resize(list, 60);
    for (unsigned int e = 0; e < 60; ++e) {
        const unsigned int record = object.getChild(list, e);
        paths.push_back("list[" + std::to_string(e) + "]");
        for (int f = 0; f < 36; ++f) {
            const std::string field = "f" + std::to_string(f);
            object.setInt(object.addChild(record, field.c_str()), static_cast<long long>(e * 100 + f));
            paths.push_back(paths.back().substr(0, paths.back().find(']') + 1) + "." + field);
        }
    }
    for (int r = 0; r < 40; ++r) {
        for (int c = 0; c < 40; ++c) {
            paths.push_back("grid[" + std::to_string(r) + "][" + std::to_string(c) + "]");
            object.setInt(paths.back().c_str(), r * 40 + c);
        }
    }
    // Texts that name nothing, or name something only by another spelling.
    for (const char* odd : {"list[007]", "list[]", "grid[3][40]", "k", "k400", "list[5].f", "list[5].f36",
                            "list.f1", "grid[1]x", "renamed[2].f4", "k7-more", "list[5].f3x",
                            "h", "h-tail", "h[5][5]"}) {
        paths.push_back(odd);
    }
    return paths;
}

TEST(DynamicObjectLookup, AgreesWithAWalkOfTheSavedNodesThroughEveryChangeOfShape)
{
    DynamicObject object;
    std::vector<std::string> paths = fill(object);
    expectLookupsAgree(object, paths, "built");
    EXPECT_EQ(object.getInt("list[59].f35", 0), 5935);

    // Later elements move down by one: their handles stay by position, their values move.
    EXPECT_TRUE(object.eraseChild("list", 5));
    expectLookupsAgree(object, paths, "element erased in the middle");
    EXPECT_EQ(object.getInt("list[5].f1", 0), 601);
    EXPECT_EQ(object.getInt("list[58].f0", 0), 5900);

    // Erased nodes are reused at once by the next properties.
    EXPECT_TRUE(object.eraseChild(object.getRoot(), "k7", 2));
    object.setInt("k7-more", 77);
    object.setInt("list[5].f36", 36);
    object.setInt("k7", 7);
    expectLookupsAgree(object, paths, "child erased and keys added");

    const unsigned int list = object.getProperty("list");
    EXPECT_TRUE(object.resize(list, 20));
    expectLookupsAgree(object, paths, "array shrunk");
    EXPECT_TRUE(object.resize(list, 45));
    object.setInt("list[44].f0", 44);
    EXPECT_TRUE(object.resize("grid[3]", 0));
    EXPECT_TRUE(object.eraseChild("grid", 0));
    expectLookupsAgree(object, paths, "arrays resized");

    // A container renamed keeps its children's handles under a new text.
    const unsigned int field = object.getProperty("list[2].f4");
    EXPECT_NE(object.renameChild(object.getRoot(), "list", "renamed"), 0u);
    EXPECT_NE(object.renameChild(object.getProperty("renamed[3]"), "f3", "f3x"), 0u);
    expectLookupsAgree(object, paths, "renamed");
    EXPECT_EQ(object.getProperty("renamed[2].f4"), field);
    EXPECT_EQ(object.getProperty("list"), 0u);

    // A renamed container may take an end-of-key node that still leads to longer keys, which it
    // loses: "h" was there before "h-tail", and its node stays after its value is gone.
    object.setInt("h", 1);
    object.setInt("h-tail", 2);
    EXPECT_TRUE(object.eraseChild(object.getRoot(), "h", 1));
    EXPECT_EQ(object.getInt("h-tail", 0), 2);
    EXPECT_NE(object.renameChild(object.getRoot(), "grid", "h"), 0u);
    expectLookupsAgree(object, paths, "renamed over a key that others extend");

    const unsigned int copied = object.addProperty("copied");
    object.put(copied, object, object.getProperty("renamed[4]"));
    object.put(copied, object, object.getProperty("renamed[3]"));
    paths.push_back("copied.f10");
    paths.push_back("copied.f3x");
    expectLookupsAgree(object, paths, "put");

    const DynamicObject copy(object);
    expectLookupsAgree(copy, paths, "copy");
    utils::BlockAllocator<DynamicObject::Node> allocator(48);
    utils::StringTable table(100);
    DynamicObject other(allocator, table);
    other.setInt("x", 1);
    other = object;
    expectLookupsAgree(other, paths, "assigned across block sizes");
    other.setInt("renamed[4].f0", -1);
    other.eraseChild("renamed", 1);
    expectLookupsAgree(other, paths, "changed after the assignment");
    expectLookupsAgree(object, paths, "source of the assignment");

    DynamicObject loaded;
    const std::string blob = saveBlob(object);
    utils::BufferInput input(blob.data(), static_cast<unsigned int>(blob.size()));
    ASSERT_TRUE(loaded.loadBlob(input, nullptr));
    expectLookupsAgree(loaded, paths, "loaded");
    loaded.eraseChild("renamed", 0);
    loaded.setInt("renamed[40].f0", 1);
    expectLookupsAgree(loaded, paths, "changed after loading");

    DynamicObject retrieved;
    object.retrieve(object.getRoot(), retrieved);
    EXPECT_EQ(retrieved.getInt("copied.f10", 0), 310);
    EXPECT_EQ(retrieved.getInt("h[38][39]", 0), 1599);
    expectLookupsAgree(retrieved, paths, "retrieved");

    // A key with a separator reaches a property below the parent's children (and, as specified,
    // counts as one of the parent's own).
    EXPECT_TRUE(object.eraseChild(object.getRoot(), "renamed[2].f4", 13));
    // The freed end-of-key node comes back first, as the end of a key that is a prefix of others.
    object.setInt("k", 5);
    expectLookupsAgree(object, paths, "erased through a path");

    object.clear();
    expectLookupsAgree(object, paths, "cleared");
    fill(object);
    expectLookupsAgree(object, paths, "filled again");
}

} // namespace
} // namespace test
} // namespace orv
