#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectSerialization.h>
#include <orv/utils/RandomManager.h>
#include <orv/utils/SerializedBuffer.h>

#include <gtest/gtest.h>

#include <string>

using namespace orv::utils;

TEST(SerializedBuffer, CarriesItsSizeAheadAndIsReleasedByTheCaller)
{
    RandomManager manager;
    unsigned int size = 0;
    char* text = serializeRandomManager(size, manager, nullptr);
    ASSERT_NE(text, nullptr);
    EXPECT_EQ(getSerializedBufferSize(text), size);
    RandomManager restored;
    restored.seed(1);
    EXPECT_TRUE(deserializeRandomManager(text, size, restored, nullptr));
    EXPECT_EQ(restored.getSeed(), manager.getSeed());
    freeSerializedBuffer(text);

    DynamicObject object;
    object.setString("a.b", "text");
    char* stored = serializeDynamicObject(size, object, nullptr);
    ASSERT_NE(stored, nullptr);
    EXPECT_EQ(getSerializedBufferSize(stored), size);
    // No terminating zero: the size is the whole text.
    EXPECT_NE(std::string(stored, size).find("text"), std::string::npos);
    freeSerializedBuffer(stored);
    freeSerializedBuffer(nullptr);
    EXPECT_EQ(getSerializedBufferSize(nullptr), 0u);
}
