// The node store under DynamicObject, seen through handles: a handle is a node index, so the
// indices that new properties receive show how nodes are allocated, released and reused.

#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/allocator/Allocator.h>
#include <orv/utils/BlockAllocator.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/StringTable.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>

using orv::test::AssertionCapture;
using orv::test::dump;
using orv::test::Texts;
using orv::utils::BlockAllocator;
using orv::utils::DynamicObject;
using orv::utils::StringTable;
namespace type = orv::utils::type;

namespace {

unsigned int add(DynamicObject& object, unsigned int parent, const char* key)
{
    return object.addChild(parent, key, static_cast<unsigned int>(std::strlen(key)));
}

bool erase(DynamicObject& object, unsigned int parent, const char* key)
{
    return object.eraseChild(parent, key, static_cast<unsigned int>(std::strlen(key)));
}

} // namespace

TEST(DynamicObjectTrie, AFreshObjectHoldsThreeNodesWithTheRootAtTwo)
{
    DynamicObject object;
    EXPECT_EQ(object.getRoot(), 2u);
    EXPECT_TRUE(object.empty());
    EXPECT_EQ(object.getType(object.getRoot()), type::null);
    // Node 1 is the unreachable first node and node 3 the root's value: neither is a property.
    EXPECT_EQ(object.getType(1u), type::null);
    EXPECT_EQ(object.getType(3u), type::null);
    // The first key takes nodes 4 (its character), 5 (its end) and 6 (its value).
    EXPECT_EQ(add(object, object.getRoot(), "a"), 5u);
    EXPECT_FALSE(object.empty());

    object.clear();
    EXPECT_TRUE(object.empty());
    EXPECT_EQ(add(object, object.getRoot(), "b"), 5u);
}

TEST(DynamicObjectTrie, NodesReleasedLastGoBackToTheBlockAndOthersToTheFreeList)
{
    DynamicObject object;
    const unsigned int root = object.getRoot();
    // Releasing the newest nodes lowers the bump count: the same indices come again.
    EXPECT_EQ(add(object, root, "a"), 5u);
    EXPECT_TRUE(erase(object, root, "a"));
    EXPECT_EQ(add(object, root, "a"), 5u);

    // "b" takes 7, 8, 9. Erasing "a" frees its value (6) and end (5), while its character node
    // stays, as "b" hangs off it. The free list is last in, first out: the next key gets 5 for its
    // character and 6 for its end, then 10 from the block.
    EXPECT_EQ(add(object, root, "b"), 8u);
    object.setInt(8u, 80);
    EXPECT_TRUE(erase(object, root, "a"));
    EXPECT_EQ(add(object, root, "c"), 6u);
    EXPECT_EQ(add(object, root, "d"), 12u);
    EXPECT_EQ(object.getInt("b", 0), 80);
    EXPECT_EQ(object.getProperty("a"), 0u);
    EXPECT_EQ(object.countChildren(root), 3u);
}

TEST(DynamicObjectTrie, ReleasingTheLastSlotOfABlockBeforeAnEmptyBlockStartsANewBlock)
{
    BlockAllocator<DynamicObject::Node> allocator(4);
    StringTable table(100);
    DynamicObject object(allocator, table);
    EXPECT_FALSE(object.isOwningNodeAllocator() || object.isOwningStringTable());
    const unsigned int root = object.getRoot();
    // Node 4 closes the first block, 5 and 6 open the second.
    EXPECT_EQ(add(object, root, "a"), 5u);
    object.setInt(5u, 1);
    // Freeing 6, 5, then 4 takes the count of the second block below zero: it wraps, and the next
    // node comes from a third block (9 to 12), with nothing reused.
    EXPECT_TRUE(erase(object, root, "a"));
    EXPECT_EQ(add(object, root, "b"), 10u);
    object.setInt(10u, 2);
    EXPECT_EQ(add(object, root, "c"), 13u);
    object.setInt(13u, 3);
    EXPECT_EQ(dump(object), "{\"b\":2,\"c\":3}");
}

TEST(DynamicObjectTrie, KeysThatArePrefixesOfOthersAllStayReachable)
{
    DynamicObject object;
    const unsigned int root = object.getRoot();
    // "abc" takes 4 to 8; "ab" then puts its end under the 'c' node (9, value 10); "a" under 'b'.
    const unsigned int abc = add(object, root, "abc");
    const unsigned int ab = add(object, root, "ab");
    const unsigned int a = add(object, root, "a");
    EXPECT_EQ(abc, 7u);
    EXPECT_EQ(ab, 9u);
    EXPECT_EQ(a, 11u);
    object.setInt(abc, 3);
    object.setInt(ab, 2);
    object.setInt(a, 1);
    // Adding again finds the same property and does not count it twice.
    EXPECT_EQ(add(object, root, "ab"), ab);
    EXPECT_EQ(object.countChildren(root), 3u);
    EXPECT_EQ(dump(object), "{\"a\":1,\"ab\":2,\"abc\":3}");

    // Erasing "ab" frees its end and value only (9 and 10): the next key reuses exactly those two.
    EXPECT_TRUE(erase(object, root, "ab"));
    EXPECT_EQ(object.getProperty("ab"), 0u);
    EXPECT_EQ(object.getInt("abc", 0), 3);
    EXPECT_EQ(object.getInt("a", 0), 1);
    EXPECT_EQ(add(object, root, "q"), 10u);
    EXPECT_EQ(add(object, root, "r"), 15u);

    // Erasing the long key keeps the short one, and the other way round.
    EXPECT_TRUE(erase(object, root, "abc"));
    EXPECT_EQ(object.getInt("a", 0), 1);
    EXPECT_TRUE(erase(object, root, "a"));
    EXPECT_EQ(dump(object), "{\"q\":null,\"r\":null}");
}

TEST(DynamicObjectTrie, ChildrenComeInSignedByteOrderWhateverTheInsertionOrder)
{
    DynamicObject object;
    for (const char* key : {"b", "a", "ab", "Z", "\x80", "aa", "a-"}) {
        object.setInt(key, 1);
    }
    // Bytes at 0x80 and above are negative, so they sort first; a key comes before its extensions.
    EXPECT_EQ(dump(object), "{\"\x80\":1,\"Z\":1,\"a\":1,\"a-\":1,\"aa\":1,\"ab\":1,\"b\":1}");
    EXPECT_EQ(object.getChild(object.getRoot(), 0u), object.getProperty("\x80"));
    EXPECT_EQ(object.getChild(object.getRoot(), 6u), object.getProperty("b"));
    EXPECT_EQ(object.getChild(object.getRoot(), 7u), 0u);
}

TEST(DynamicObjectTrie, AnEndOfKeyUnderANegativeByteIsFoundButNotErased)
{
    DynamicObject object;
    const unsigned int root = object.getRoot();
    // "a\x80" first: the end of "a" then sits on the smaller side of the 0x80 node. The erase walk
    // compares the end of the key (0) as above 0x80 and misses it: the key stays, the count drops.
    const unsigned int longer = add(object, root, "a\x80");
    const unsigned int shorter = add(object, root, "a");
    object.setInt(shorter, 5);
    EXPECT_EQ(object.getProperty("a\x80"), longer);
    EXPECT_TRUE(erase(object, root, "a"));
    EXPECT_EQ(object.getProperty("a"), shorter);
    EXPECT_EQ(object.countChildren(root), 1u);
    // The value was reset before the erase walk.
    EXPECT_EQ(object.getType(shorter), type::null);
}

TEST(DynamicObjectTrie, LookupsAllocateNothing)
{
    DynamicObject object;
    object.setInt("alpha.beta[3].gamma", 7);
    object.setString("alpha.name", "text");
    // Containers large enough for their children to have shortcuts beside the trie.
    object.resize("alpha.beta", 40);
    for (int i = 0; i < 40; ++i) {
        object.setInt(("alpha.k" + std::to_string(i)).c_str(), i);
    }
    const unsigned int beta = object.getProperty("alpha.beta");
    const unsigned int alpha = object.getProperty("alpha");
    const char path[] = "alpha.beta[3].gamma";

    const orv::allocator::Allocator& allocator = orv::allocator::Allocator::instance();
    const unsigned long long mark = allocator.getNextSerial();
    unsigned int found = 0;
    for (int i = 0; i < 10; ++i) {
        found += object.getProperty(path, sizeof(path) - 1) + object.getChild(beta, 3u) + object.getChild(alpha, "name", 4);
        found += (object.hasProperty("alpha.name") ? 1 : 0) + static_cast<unsigned int>(object.getInt(path, 0));
        found += std::strlen(object.getString("alpha.name", ""));
    }
    EXPECT_EQ(allocator.getNextSerial(), mark);
    EXPECT_NE(found, 0u);
}

TEST(DynamicObjectTrie, CopiesAndAssignmentsAcrossBlockSizesKeepEveryHandle)
{
    DynamicObject source;
    for (int i = 0; i < 40; ++i) {
        source.setInt(("k" + std::to_string(i)).c_str(), i);
    }
    source.setInt("a.b[1]", 4);
    source.setString("a.s", "text");
    const unsigned int k37 = source.getProperty("k37");
    const unsigned int b1 = source.getProperty("a.b[1]");
    const unsigned int s = source.getProperty("a.s");
    // A free node in the source is lost to a copy, which allocates from its block instead.
    source.setInt("gone", 1);
    source.setInt("kept", 2);
    source.eraseChild(source.getRoot(), "gone", 4);
    const std::string text = dump(source);

    DynamicObject* copy = new DynamicObject(source);
    EXPECT_TRUE(copy->isOwningNodeAllocator());
    EXPECT_NE(&copy->getStringTable(), &source.getStringTable());
    EXPECT_EQ(copy->getInt(b1, 0), 4);
    EXPECT_EQ(dump(*copy), text);
    EXPECT_LT(source.addChild(source.getRoot(), "n", 1), copy->addChild(copy->getRoot(), "n", 1));

    // A copy by reference shares the allocator and the table, not the values.
    DynamicObject shared{DynamicObject::Ref(source)};
    EXPECT_EQ(&shared.getStringTable(), &source.getStringTable());
    EXPECT_EQ(&shared.getNodeAllocator(), &source.getNodeAllocator());
    EXPECT_STREQ(shared.getString(s, ""), "text");
    shared.setString(s, "changed");
    EXPECT_STREQ(source.getString(s, ""), "text");

    BlockAllocator<DynamicObject::Node> allocator(5);
    StringTable table(100);
    {
        DynamicObject small(allocator, table);
        small.setInt("old", 1);
        small = *copy;
        // The copy's table was its own: what was assigned from it outlives it.
        delete copy;
        EXPECT_EQ(small.getInt(k37, 0), 37);
        EXPECT_STREQ(small.getString(s, ""), "text");
        EXPECT_EQ(small.getProperty("old"), 0u);
        // Nodes past the copied ones are free in a smaller block size: writing goes on safely.
        small.setInt("later", 5);
        EXPECT_EQ(small.getInt(k37, 0), 37);

        // Into a larger block size, the copied nodes read the same.
        DynamicObject back;
        back = small;
        EXPECT_EQ(back.getInt(k37, 0), 37);
        EXPECT_EQ(back.getInt("later", 0), 5);
    }
    // Self-assignment changes nothing.
    DynamicObject& same = source;
    source = same;
    EXPECT_EQ(dump(source), text.substr(0, text.size() - 1) + ",\"n\":null}");
}
