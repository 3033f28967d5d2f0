// DynamicObject as a producer of builder events.

#include "support/RecordingBuilder.h"
#include "support/TestSupport.h"

#include <orv/utils/DynamicObject.h>
#include <orv/utils/StringTable.h>

#include <gtest/gtest.h>

#include <string>

using orv::test::RecordingBuilder;
using orv::utils::DynamicObject;
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
