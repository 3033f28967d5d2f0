// The public operations of DynamicObject: paths, values, children, arrays, renames and copies.

#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/allocator/Allocator.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicValue.h>
#include <orv/utils/StringTable.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstring>

using orv::test::AssertionCapture;
using orv::test::dump;
using orv::test::Texts;
using orv::utils::DynamicObject;
using orv::utils::DynamicValue;
namespace type = orv::utils::type;

TEST(DynamicObject, PathWritesCreateEveryStepAndReplaceWhatStandsInTheWay)
{
    DynamicObject object;
    object.setInt("a.b[2].c", 5);
    EXPECT_EQ(dump(object), "{\"a\":{\"b\":[null,null,{\"c\":5}]}}");
    EXPECT_EQ(object.addProperty("a.b[2].c"), object.getProperty("a.b[2].c"));
    // A counted path reads only its first bytes: here `a.b[2]`, an object, which has no integer.
    EXPECT_EQ(object.getInt("a.b[2].c", 6, -1), -1);
    EXPECT_EQ(object.getType("a.b[2]", 6), type::object);

    // A name step through a scalar turns it into an object, an index step into an array.
    object.setInt("x", 1);
    object.setInt("x.y", 2);
    EXPECT_EQ(dump(object, object.getProperty("x")), "{\"y\":2}");
    object.setInt("x[1]", 3);
    EXPECT_EQ(dump(object, object.getProperty("x")), "[null,3]");
    EXPECT_EQ(object.getProperty("x.y"), 0u);
    // Writing a scalar over an array removes its elements.
    object.setString("a.b", "flat");
    EXPECT_EQ(object.getProperty("a.b[2].c"), 0u);
    EXPECT_EQ(dump(object), "{\"a\":{\"b\":\"flat\"},\"x\":[null,3]}");

    // A path starting with an index makes the root an array; the empty path names the root.
    DynamicObject list;
    list.setBool("[1]", true);
    EXPECT_EQ(dump(list), "[null,true]");
    EXPECT_EQ(list.addProperty(""), list.getRoot());
    EXPECT_EQ(list.getProperty(""), list.getRoot());

    // Paths that do not parse give 0. The steps before the fault are taken: `a[1]b` made `a` an array.
    DynamicObject scratch;
    for (const char* bad : {"a..b", "a[]", "a[1234567]", "a[x]", ".a", "a[1]b", "a[\x80]", "a]", "a[1"}) {
        EXPECT_EQ(scratch.addProperty(bad), 0u) << bad;
    }
    EXPECT_EQ(dump(scratch), "{\"a\":[null,null]}");
}

TEST(DynamicObject, ReadsConvertOnlyBetweenNumbersAndOtherwiseGiveTheDefault)
{
    AssertionCapture capture;
    DynamicObject object;
    object.setReal("up", 2.9);
    object.setReal("down", -2.9);
    object.setInt("int", -7);
    object.setString("text", "word");
    object.setBool("yes", true);
    object.setReal("nan", std::nan(""));
    EXPECT_EQ(object.getInt("up", 0), 2);
    EXPECT_EQ(object.getInt("down", 0), -2);
    EXPECT_EQ(object.getInt("nan", 0), LLONG_MIN);
    EXPECT_EQ(object.getReal("int", 0.0), -7.0);
    EXPECT_EQ(object.getInt("text", 9), 9);
    EXPECT_EQ(object.getBool("int", false), false);
    EXPECT_EQ(object.getBool("yes", false), true);
    EXPECT_STREQ(object.getString("text", "?"), "word");
    EXPECT_STREQ(object.getString("int", "?"), "?");
    EXPECT_STREQ(object.getString("missing", "?"), "?");
    EXPECT_EQ(object.getStringHash("text", 0ull), object.getStringTable().hash("word", nullptr));
    EXPECT_EQ(object.getStringHash("yes", 5ull), 5ull);
    EXPECT_EQ(object.getInt(0u, 7), 7);
    EXPECT_EQ(object.getInt("missing", 7), 7);
    EXPECT_EQ(object.getReal("missing.deeper", 1.5), 1.5);
    EXPECT_TRUE(object.isTypeCompatible("up", type::integer));
    EXPECT_FALSE(object.isTypeCompatible("text", type::integer));
    EXPECT_TRUE(object.isTypeCompatible(0u, type::object));
    // None of that is misuse.
    EXPECT_EQ(capture.texts(), Texts{});
}

TEST(DynamicObject, DynamicValuesGoInAndOutByType)
{
    DynamicObject object;
    object.setValue("i", DynamicValue(42));
    object.setValue("r", DynamicValue(0.5));
    object.setValue("s", DynamicValue("text"));
    object.setValue("b", DynamicValue(false));
    object.setInt("n", 3);
    object.setValue("n", DynamicValue());
    // A string value with an embedded zero reads back as the table's text, which ends at the zero.
    object.setValue("z", DynamicValue("a\0b", 3));
    EXPECT_EQ(dump(object), "{\"b\":false,\"i\":42,\"n\":null,\"r\":0.5,\"s\":\"text\",\"z\":\"a\"}");

    DynamicValue value(1);
    object.retrieveValue("z", value);
    EXPECT_EQ(value, DynamicValue("a"));
    for (const char* key : {"i", "r", "s", "b", "n"}) {
        object.retrieveValue(key, value);
        DynamicObject copy;
        copy.setValue("v", value);
        EXPECT_EQ(dump(copy, copy.getProperty("v")), dump(object, object.getProperty(key))) << key;
    }
}

TEST(DynamicObject, ChildrenAreCountedAndAnEmptiedObjectBecomesNull)
{
    DynamicObject object;
    const unsigned int root = object.getRoot();
    const unsigned int parent = object.addChild(root, "p");
    EXPECT_EQ(object.getType(parent), type::null);
    const unsigned int x = object.addChild(parent, "x", 1);
    const unsigned int y = object.addChild(parent, "y");
    EXPECT_EQ(object.getType(parent), type::object);
    EXPECT_EQ(object.countChildren(parent), 2u);
    EXPECT_EQ(object.addChild(parent, "x", 1), x);
    EXPECT_EQ(object.countChildren(parent), 2u);
    EXPECT_EQ(object.getChild("p", "y", 1), y);
    EXPECT_TRUE(object.hasChild("p", "x", 1) && !object.hasChild(parent, "z", 1));
    EXPECT_EQ(object.getChild(parent, "x", 0), 0u);
    // A leading separator in the key is reported, and names the same child.
    {
        AssertionCapture capture;
        EXPECT_EQ(object.addChild(parent, ".y", 2), y);
        EXPECT_EQ(object.addChild(root, ".p", 2), parent);
        EXPECT_EQ(capture.texts(), (Texts{"The given child key, .y is invalid.", "The given child key, .p is invalid."}));
    }
    // By position, in key order.
    EXPECT_EQ(object.getChild(parent, 0u), x);
    EXPECT_EQ(object.getChild("p", 1u), y);
    EXPECT_EQ(object.getChild(parent, 2u), 0u);

    object.setInt(x, 1);
    object.setInt(object.addChild(y, "deep", 4), 2);
    EXPECT_FALSE(object.eraseChild(parent, "z", 1));
    EXPECT_TRUE(object.eraseChild(parent, "y", 1));
    EXPECT_EQ(object.getProperty("p.y.deep"), 0u);
    EXPECT_TRUE(object.eraseChild("p", "x", 1));
    EXPECT_EQ(object.getType(parent), type::null);
    // The emptied property takes children again from scratch.
    EXPECT_EQ(object.getChild(parent, "x", 1), 0u);
    object.setInt(object.addChild(parent, "z"), 3);
    EXPECT_EQ(dump(object), "{\"p\":{\"z\":3}}");
}

TEST(DynamicObject, ResetAndScalarWritesRemoveWholeSubtrees)
{
    DynamicObject object;
    object.setInt("o.a.b[1].c", 1);
    object.setString("o.a.s", "t");
    object.setInt("o.z", 2);
    const unsigned int o = object.getProperty("o");
    object.setInt(o, 9);
    EXPECT_EQ(dump(object), "{\"o\":9}");
    object.resetProperty("o");
    EXPECT_EQ(object.getType(o), type::null);
    // Every node comes back: building and resetting the same shape again and again takes no more
    // blocks than the first time.
    std::size_t blocks = 0;
    for (int round = 0; round < 50; ++round) {
        object.setString(("o.a.b[40].c" + std::to_string(round % 2)).c_str(), "text");
        object.setInt("o.z", round);
        object.resetProperty(o);
        if (round == 1) {
            blocks = orv::allocator::Allocator::instance().getLiveBlockCount();
        }
    }
    EXPECT_EQ(orv::allocator::Allocator::instance().getLiveBlockCount(), blocks);
    object.setInt("o.a", 1);
    object.resetProperty("o", 1);
    // Resetting a missing path does nothing.
    object.resetProperty("missing");
    object.resetProperty(object.getRoot());
    EXPECT_TRUE(object.empty());
}

TEST(DynamicObject, ArraysGrowAndShrinkUpToTheirLimit)
{
    DynamicObject object;
    const unsigned int a = object.addProperty("a");
    EXPECT_TRUE(object.resize(a, 3));
    object.setInt(object.getChild(a, 2u), 2);
    object.setInt("a[1].x", 1);
    EXPECT_TRUE(object.resize("a", 1));
    EXPECT_EQ(dump(object), "{\"a\":[null]}");
    EXPECT_TRUE(object.resize("a", 1, 2));
    EXPECT_EQ(dump(object), "{\"a\":[null,null]}");
    EXPECT_TRUE(object.resize(a, 0));
    EXPECT_EQ(object.getType(a), type::null);

    // An array holds at most 99999 elements: a request for 100000 is ignored and reported as done.
    EXPECT_TRUE(object.resize(a, 99999));
    EXPECT_EQ(object.countChildren(a), 99999u);
    EXPECT_EQ(object.getProperty("a[99998]"), object.getChild(a, 99998u));
    EXPECT_TRUE(object.resize(a, 100000));
    EXPECT_EQ(object.countChildren(a), 99999u);
    EXPECT_EQ(object.getChild(a, 99999u), 0u);
    EXPECT_TRUE(object.resize(a, 0));

    const unsigned int last = object.addProperty("b[99998]");
    EXPECT_EQ(object.countChildren("b"), 99999u);
    EXPECT_EQ(object.getChild(object.getProperty("b"), 99998u), last);
    // `c[99999]` parses, but the array can't reach it.
    EXPECT_EQ(object.addProperty("c[99999]"), 0u);
    object.resetProperty("b");
    EXPECT_EQ(dump(object), "{\"a\":null,\"b\":null,\"c\":null}");
}

TEST(DynamicObject, ArrayEraseMovesLaterValuesDownUnderTheSameHandles)
{
    DynamicObject object;
    for (int i = 0; i < 5; ++i) {
        object.setInt(("a[" + std::to_string(i) + "]").c_str(), 10 * i);
    }
    object.setInt("a[3].x", 7);
    const unsigned int a = object.getProperty("a");
    const unsigned int h2 = object.getChild(a, 2u);
    const unsigned int h3 = object.getChild(a, 3u);
    const unsigned int x = object.getProperty("a[3].x");

    EXPECT_TRUE(object.eraseChild(a, 2u));
    EXPECT_EQ(dump(object), "{\"a\":[0,10,{\"x\":7},40]}");
    // A handle names a position: the one of a[2] now reads what was a[3], and so on.
    EXPECT_EQ(object.getChild(a, 2u), h2);
    EXPECT_EQ(object.getChild(a, 3u), h3);
    EXPECT_EQ(object.getInt(h3, 0), 40);
    EXPECT_EQ(object.getChild(a, 4u), 0u);
    // Deeper handles stay with their value, under its new path.
    EXPECT_EQ(object.getProperty("a[2].x"), x);
    EXPECT_EQ(object.getInt(x, 0), 7);

    EXPECT_FALSE(object.eraseChild(a, 4u));
    EXPECT_TRUE(object.eraseChild("a", 3u));
    EXPECT_TRUE(object.eraseChild("a", 1, 0u));
    EXPECT_EQ(dump(object), "{\"a\":[10,{\"x\":7}]}");
    EXPECT_TRUE(object.eraseChild(a, 0u));
    EXPECT_TRUE(object.eraseChild(a, 0u));
    // Erasing the last element leaves an empty array, unlike a resize to 0.
    EXPECT_EQ(object.getType(a), type::array);
    EXPECT_EQ(object.countChildren(a), 0u);
    EXPECT_FALSE(object.eraseChild(a, 0u));
    // A null property is an empty array to this operation.
    EXPECT_FALSE(object.eraseChild(object.addProperty("n"), 0u));
    // The array grows again from an empty state.
    object.setInt("a[0]", 1);
    EXPECT_EQ(dump(object, a), "[1]");
}

TEST(DynamicObject, RenamedChildrenKeepTheirHandlesAndTheirChildren)
{
    DynamicObject object;
    object.setInt("p.keep.x", 1);
    object.setInt("p.keep.y[1]", 2);
    object.setInt("p.list[0]", 3);
    object.setInt("p.other", 4);
    const unsigned int p = object.getProperty("p");
    const unsigned int keep = object.getProperty("p.keep");
    const unsigned int x = object.getProperty("p.keep.x");
    const unsigned int y1 = object.getProperty("p.keep.y[1]");
    const unsigned int list0 = object.getProperty("p.list[0]");

    const unsigned int renamed = object.renameChild(p, "keep", "held");
    EXPECT_EQ(object.getProperty("p.held"), renamed);
    EXPECT_EQ(object.getProperty("p.held.x"), x);
    EXPECT_EQ(object.getProperty("p.held.y[1]"), y1);
    EXPECT_EQ(object.getProperty("p.keep"), 0u);
    EXPECT_NE(renamed, keep);

    const unsigned int list = object.renameChild(p, "list", 4, "array", 5);
    EXPECT_EQ(object.getProperty("p.array"), list);
    EXPECT_EQ(object.getProperty("p.array[0]"), list0);
    EXPECT_EQ(dump(object), "{\"p\":{\"array\":[3],\"held\":{\"x\":1,\"y\":[null,2]},\"other\":4}}");
    // Renaming to its own name changes nothing; the renamed property works like any other.
    EXPECT_EQ(object.renameChild(p, "other", "other"), object.getProperty("p.other"));
    object.resetProperty(renamed);
    // The old name can be used again.
    object.setInt("p.keep", 6);
    EXPECT_EQ(dump(object), "{\"p\":{\"array\":[3],\"held\":null,\"keep\":6,\"other\":4}}");

    // Children of the root.
    DynamicObject top;
    top.setInt("a.b", 1);
    const unsigned int b = top.getProperty("a.b");
    top.renameChild(top.getRoot(), "a", "c");
    EXPECT_EQ(top.getProperty("c.b"), b);
    EXPECT_EQ(dump(top), "{\"c\":{\"b\":1}}");
}

TEST(DynamicObject, PutCopiesSubtreesByValueBetweenTables)
{
    DynamicObject source;
    source.setInt("o.i", 1);
    source.setReal("o.r", 0.25);
    source.setString("o.s", "text");
    source.setBool("o.list[1]", true);
    source.setString("o.list[2].name", "n");
    source.addProperty("o.nothing");

    DynamicObject target;
    target.setInt("dst.old", 5);
    target.put("dst", 3, source, "o", 1);
    EXPECT_EQ(dump(target), "{\"dst\":{\"i\":1,\"list\":[null,true,{\"name\":\"n\"}],\"nothing\":null,\"old\":5,"
                            "\"r\":0.25,\"s\":\"text\"}}");
    // The text went into the target's own table.
    EXPECT_STREQ(target.getStringTable().retrieve(target.getStringHash("dst.s", 0ull), "?"), "text");

    // A null source leaves the destination as it is.
    target.put(target.getProperty("dst.i"), source, source.getProperty("o.nothing"));
    EXPECT_EQ(target.getInt("dst.i", 0), 1);

    // A whole object into a path, and a copy within one object.
    DynamicObject whole;
    whole.put("copy", source);
    EXPECT_EQ(dump(whole, whole.getProperty("copy")), dump(source));
    whole.put(whole.addProperty("again"), whole, whole.getProperty("copy.o.list"));
    EXPECT_EQ(dump(whole, whole.getProperty("again")), "[null,true,{\"name\":\"n\"}]");
    whole.put(whole.getRoot(), source);
    EXPECT_EQ(whole.countChildren(whole.getRoot()), 3u);
}
