// The listener protocol of DynamicObject: which slots fire, in which order, with what.

#include "support/TestSupport.h"
#include "utils/DynamicObjectTestSupport.h"

#include <orv/utils/DynamicObject.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

using orv::test::AssertionCapture;
using orv::test::RecordingListener;
using orv::test::Texts;
using orv::utils::DynamicObject;
using Events = std::vector<std::string>;


TEST(DynamicObjectListener, EveryInsertionReportsTheKeyAsItGoesIntoTheTrie)
{
    DynamicObject object;
    RecordingListener listener;
    object.addListener(&listener);
    const unsigned int p = object.addChild(object.getRoot(), "p", 1);
    const unsigned int x = object.addChild(p, "x", 1);
    const unsigned int y = object.addChild(p, "y", 1);
    // The first child of a property brings its separator; the others go in after it.
    EXPECT_EQ(listener.events, (Events{"beforeAddProperty", "afterAddProperty(p," + std::to_string(p) + ")",
                                       "beforeAddProperty", "afterAddProperty(.x," + std::to_string(x) + ")",
                                       "beforeAddProperty", "afterAddProperty(y," + std::to_string(y) + ")"}));
    listener.events.clear();
    object.resize(object.addChild(p, "list", 4), 2);
    const unsigned int list = object.getProperty("p.list");
    EXPECT_EQ(listener.events,
              (Events{"beforeAddProperty", "afterAddProperty(list," + std::to_string(list) + ")", "beforeAddProperty",
                      "afterAddProperty([0]," + std::to_string(object.getChild(list, 0u)) + ")", "beforeAddProperty",
                      "afterAddProperty([1]," + std::to_string(object.getChild(list, 1u)) + ")"}));
}

TEST(DynamicObjectListener, AWriteOverChildrenReportsTheResetsInsideTheWrite)
{
    DynamicObject object;
    const unsigned int p = object.addProperty("p");
    const unsigned int x = object.addChild(p, "x", 1);
    const unsigned int y = object.addChild(p, "y", 1);
    object.setInt(y, 2);
    RecordingListener listener;
    object.addListener(&listener);

    object.setInt(p, 7);
    EXPECT_EQ(listener.events,
              (Events{"beforeSetInt", "beforeResetProperty", "beforeResetProperty",
                      "afterResetProperty(" + std::to_string(x) + ")", "beforeResetProperty",
                      "afterResetProperty(" + std::to_string(y) + ")", "afterResetProperty(" + std::to_string(p) + ")",
                      "afterSetInt(" + std::to_string(p) + ",7)"}));
    listener.events.clear();
    object.setReal(p, 0.5);
    object.setString(p, "text");
    object.setBool(p, true);
    EXPECT_EQ(listener.events,
              (Events{"beforeSetReal", "afterSetReal(" + std::to_string(p) + ",0.5)", "beforeSetString",
                      "afterSetString(" + std::to_string(p) + ",text)", "beforeSetBool",
                      "afterSetBool(" + std::to_string(p) + ",true)"}));
}

TEST(DynamicObjectListener, OnlyCountedLookupsAndPutsAndCopiesAreReported)
{
    DynamicObject object;
    object.setInt("a.b", 1);
    DynamicObject other;
    other.setInt("v", 2);
    RecordingListener listener;
    object.addListener(&listener);

    object.getProperty("a.b");
    object.hasProperty("a.b", 3);
    object.getInt("a.b", 0);
    EXPECT_EQ(listener.events, Events{});
    object.getProperty("a.bc", 3);
    object.getInt("a", 1, 0);
    EXPECT_EQ(listener.events,
              (Events{"beforeGetProperty", "afterGetProperty(a.b)", "beforeGetProperty", "afterGetProperty(a)"}));

    listener.events.clear();
    const unsigned int b = object.getProperty("a.b");
    object.put(b, other, other.getProperty("v"));
    EXPECT_EQ(listener.events, (Events{"beforePut", "beforeSetInt", "afterSetInt(" + std::to_string(b) + ",2)",
                                       "afterPut(" + std::to_string(b) + ")"}));

    listener.events.clear();
    object = other;
    EXPECT_EQ(listener.events, (Events{"beforeCopy", "afterCopy"}));
    // clear reports nothing.
    listener.events.clear();
    object.clear();
    EXPECT_EQ(listener.events, Events{});
}

TEST(DynamicObjectListener, ListenersAreCalledInOrderAndRemovedByValue)
{
    DynamicObject object;
    const unsigned int a = object.addProperty("a");
    RecordingListener first;
    RecordingListener second;
    using Counts = std::pair<std::size_t, std::size_t>;
    const auto write = [&] {
        object.setBool(a, true);
        return Counts(first.events.size(), second.events.size());
    };
    object.addListener(&first);
    object.addListener(&second);
    object.addListener(&first);
    EXPECT_EQ(write(), Counts(4, 2));
    object.removeListener(&first);
    EXPECT_EQ(write(), Counts(4, 4));
    object.setListener(&first);
    EXPECT_EQ(write(), Counts(6, 4));
    object.setListener(nullptr);
    EXPECT_EQ(write(), Counts(6, 4));
    // A null entry is reported for each slot, and the others are still called.
    AssertionCapture capture;
    object.addListener(nullptr);
    object.addListener(&second);
    EXPECT_EQ(write(), Counts(6, 6));
    EXPECT_EQ(capture.texts(), (Texts{"listeners_[i]", "listeners_[i]"}));
}

namespace {

// The slot of a virtual operation, read from its member pointer as the platform's C++ ABI lays it
// out: one plus the byte offset in the table of virtual operations.
template <typename... Operations>
std::vector<std::size_t> slotsOf(Operations... operations)
{
    const auto slotOf = [](const auto& operation) {
        std::uintptr_t words[2];
        static_assert(sizeof(operation) == sizeof(words), "a member pointer is two words");
        std::memcpy(words, &operation, sizeof(words));
        return (words[0] - 1) / sizeof(void*);
    };
    return {slotOf(operations)...};
}

} // namespace

TEST(DynamicObjectListener, OperationsKeepTheirSlotsForHosts)
{
    using L = orv::utils::AbstractDynamicObjectListener;
    const std::vector<std::size_t> slots = slotsOf(&L::beforeAddProperty, &L::afterAddProperty, &L::beforeSetInt,
        &L::afterSetInt, &L::beforeSetReal, &L::afterSetReal, &L::beforeSetString, &L::afterSetString,
        &L::beforeSetBool, &L::afterSetBool, &L::beforeGetProperty, &L::afterGetProperty, &L::beforeRetrieve,
        &L::afterRetrieve, &L::reserved14, &L::reserved15, &L::reserved16, &L::reserved17, &L::beforePut, &L::afterPut,
        &L::reserved20, &L::reserved21, &L::reserved22, &L::reserved23, &L::beforeResetProperty,
        &L::afterResetProperty, &L::beforeCopy, &L::afterCopy);
    std::vector<std::size_t> expected(28);
    std::iota(expected.begin(), expected.end(), 0u);
    EXPECT_EQ(slots, expected);
}
