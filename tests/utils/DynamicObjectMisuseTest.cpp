// Misuse of DynamicObject under a returning assertion hook: each broken contract is reported with
// its text, and the object goes on in a usable state without touching memory it does not own.

#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicValue.h>

#include <gtest/gtest.h>

using orv::test::AssertionCapture;
using orv::test::dump;
using orv::test::Texts;
using orv::utils::DynamicObject;
using orv::utils::DynamicValue;
namespace type = orv::utils::type;

namespace {

Texts reported(AssertionCapture& capture)
{
    const Texts texts = capture.texts();
    capture.clear();
    return texts;
}

} // namespace

TEST(DynamicObjectMisuse, HandlesThatNameNoPropertyAreReportedAndChangeNothing)
{
    DynamicObject object;
    object.setInt("a.b", 1);
    const std::string before = dump(object);
    AssertionCapture capture;

    // Past the blocks: the node lookup refuses, then the operation.
    EXPECT_EQ(object.getInt(99999u, 5), 5);
    object.setBool(0xFFFFFFFFu, true);
    EXPECT_EQ(reported(capture), (Texts{"Block index out of range", "Invalid property", "Block index out of range",
                                        "Invalid property"}));
    EXPECT_EQ(object.getType(5000u), type::null);
    EXPECT_EQ(reported(capture), (Texts{"Block index out of range"}));

    // Inside the blocks: node 1 is a character node and node 3 a value node.
    object.setInt(1u, 5);
    object.setInt(3u, 5);
    object.setReal(0u, 1.0);
    object.setString(0u, "x");
    EXPECT_EQ(object.countChildren(0u), 0u);
    EXPECT_FALSE(object.resize(0u, 3));
    EXPECT_FALSE(object.eraseChild(0u, 0u));
    DynamicValue value(3);
    object.retrieveValue(0u, value);
    EXPECT_EQ(value.getType(), type::null);
    EXPECT_EQ(reported(capture), Texts(8, "Invalid property"));

    // Soft operations take handle 0 in their stride.
    EXPECT_EQ(object.getInt(0u, 4), 4);
    EXPECT_EQ(object.getChild(0u, "a", 1), 0u);
    EXPECT_EQ(object.getChild(0u, 1u), 0u);
    EXPECT_FALSE(object.eraseChild(0u, "a", 1));
    EXPECT_FALSE(object.hasChild(0u, "a", 1));
    object.resetProperty(0u);
    EXPECT_EQ(capture.texts(), Texts{});
    EXPECT_EQ(dump(object), before);
}

TEST(DynamicObjectMisuse, StrictPathFormsReportAMissingPathAndGoOnWithHandleZero)
{
    DynamicObject object;
    AssertionCapture capture;
    EXPECT_EQ(object.getType("missing"), type::null);
    EXPECT_EQ(object.countChildren("missing.x", 7), 0u);
    EXPECT_EQ(reported(capture), (Texts{"Unable to find property for the key 'missing'",
                                        "Unable to find property for the key 'missing'", "Invalid property"}));
    // A write through a path that does not parse reaches the handle form with 0.
    object.setInt("a..b", 1);
    object.setInt("c[99999]", 1);
    EXPECT_EQ(reported(capture), (Texts{"Invalid property", "Invalid property"}));

    EXPECT_EQ(object.getInt(nullptr, 3), 3);
    EXPECT_FALSE(object.hasProperty(nullptr));
    EXPECT_EQ(object.addProperty(nullptr, 1), 0u);
    const unsigned int a = object.addProperty("a");
    object.setString(a, nullptr);
    object.setString(a, nullptr, 2);
    EXPECT_EQ(capture.texts(), (Texts{"Null string given as a key", "Null string given as a key",
                                      "Null string given as a key", "Null string given as a value",
                                      "Null string given as a key"}));
    EXPECT_EQ(dump(object), "{\"a\":null,\"c\":null}");
}

TEST(DynamicObjectMisuse, WrongTypesAreReportedAndTheOperationCarriesOn)
{
    DynamicObject object;
    object.setInt("i", 4);
    object.setString("s", "text");
    object.setInt("o.x", 1);
    AssertionCapture capture;

    // The integer is lost to an object with one child, the string resized becomes an array.
    object.addChild(object.getProperty("i"), "c", 1);
    EXPECT_TRUE(object.resize("s", 2));
    EXPECT_FALSE(object.eraseChild("o", 0u));
    object.setInt("n", 1);
    EXPECT_FALSE(object.eraseChild("n", 0u));
    DynamicValue value(1);
    object.retrieveValue("o", value);
    EXPECT_EQ(value.getType(), type::null);
    const unsigned int odd = object.addChild(object.getRoot(), "a]", 2);
    EXPECT_EQ(object.getProperty("a]"), odd);
    EXPECT_EQ(capture.texts(), (Texts{"The given property is not an object.",
                                      "Can't resize a property that is not an array.", "Not an array.",
                                      "Not an array.", "6 is an unknown orv::utils::type",
                                      "The given child key, a] is invalid."}));
    EXPECT_EQ(dump(object), "{\"a]\":null,\"i\":{\"c\":null},\"n\":1,\"o\":{\"x\":1},\"s\":[null,null]}");
}

TEST(DynamicObjectMisuse, RenameRefusesWhatItCannotDo)
{
    DynamicObject object;
    object.setInt("p.x", 1);
    object.setInt("p.y", 2);
    object.setInt("leaf", 3);
    const unsigned int p = object.getProperty("p");
    const std::string before = dump(object);
    AssertionCapture capture;
    EXPECT_EQ(object.renameChild(p, "", 0, "z", 1), 0u);
    EXPECT_EQ(object.renameChild(object.getProperty("leaf"), "x", "z"), 0u);
    EXPECT_EQ(object.renameChild(p, "nope", "z"), 0u);
    EXPECT_EQ(object.renameChild(p, "x", "y"), 0u);
    EXPECT_EQ(reported(capture), (Texts{"No given name for the child to rename.",
                                      "The given property is not an object having children.",
                                      "The given property has no child named 'nope'",
                                      "The given property already has a child named 'y'"}));
    EXPECT_EQ(dump(object), before);
    // An invalid new key is reported, and the rename goes on with it.
    const unsigned int renamed = object.renameChild(p, "x", "x[");
    EXPECT_EQ(capture.texts(), (Texts{"The given child key, 'x[' is invalid."}));
    EXPECT_EQ(object.getChild(p, "x[", 2), renamed);
    EXPECT_EQ(object.getInt(renamed, 0), 1);
}
