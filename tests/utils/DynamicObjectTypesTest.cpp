// Checking a dynamic object against the properties of a registered type.

#include <orv/utils/DynamicObject.h>
#include <orv/utils/Property.h>
#include <orv/utils/TypeManager.h>
#include <orv/utils/Uuid.h>
#include <orv/utils/details/ClassTypeId.h>

#include <gtest/gtest.h>

using namespace orv::utils;

TEST(DynamicObject, FitsARegisteredTypeByTheChildrenItsPropertiesName)
{
    TypeManager manager;
    ASSERT_TRUE(manager.registerBaseTypes(nullptr));
    const Uuid pose = Uuid::create("a0000000-0000-4000-8000-00000000000a");
    const Uuid tagged = Uuid::create("b0000000-0000-4000-8000-00000000000b");
    ASSERT_TRUE(manager.registerType(pose, "Pose", nullptr) && manager.registerType(tagged, "Tagged", nullptr));
    ASSERT_TRUE(manager.addBaseType(tagged, pose, nullptr));
    auto add = [&](const Uuid& owner, const char* key, const Uuid& value) {
        return manager.registerProperty(owner, Property(key, owner, value, manager), nullptr);
    };
    ASSERT_TRUE(add(pose, "position", details::getClassTypeId<Vector3<double>>())
        && add(pose, "name", details::getClassTypeId<String>()) && add(pose, "count", details::getClassTypeId<int>())
        && add(tagged, "tag", details::getClassTypeId<bool>()));

    DynamicObject object;
    object.setReal("pose.position.x", 1.5);
    object.setInt("pose.position.y", 2);
    object.setString("pose.name", "arm");
    object.setString("pose.extra", "not described, not looked at");
    EXPECT_TRUE(object.isTypeCompatible("pose", pose, manager));
    // Integers and reals stand for each other; a boolean does not.
    object.setReal("pose.count", 2.5);
    EXPECT_TRUE(object.isTypeCompatible("pose", pose, manager));
    object.setBool("pose.count", true);
    EXPECT_FALSE(object.isTypeCompatible("pose", pose, manager));
    object.setInt("pose.count", 1);

    // The check goes down into the children's own types, and covers inherited properties.
    object.setString("pose.position.z", "high");
    EXPECT_FALSE(object.isTypeCompatible("pose", pose, manager));
    object.setReal("pose.position.z", 0.5);
    object.setInt("pose.tag", 1);
    EXPECT_TRUE(object.isTypeCompatible("pose", pose, manager));
    EXPECT_FALSE(object.isTypeCompatible("pose", tagged, manager));
    object.setBool("pose.tag", false);
    EXPECT_TRUE(object.isTypeCompatible("pose", 4, tagged, manager));

    // A scalar has no children, so it fits any object type; against a value type its kind decides.
    EXPECT_TRUE(object.isTypeCompatible("pose.name", pose, manager));
    EXPECT_TRUE(object.isTypeCompatible("pose.name", details::getClassTypeId<std::string>(), manager));
    EXPECT_FALSE(object.isTypeCompatible("pose.name", details::getClassTypeId<double>(), manager));

    // Nothing to check: no property, or no such type.
    EXPECT_FALSE(object.isTypeCompatible(0u, pose, manager));
    EXPECT_FALSE(object.isTypeCompatible("missing", pose, manager));
    EXPECT_FALSE(object.isTypeCompatible("pose", Uuid::create("c0000000-0000-4000-8000-00000000000c"), manager));
}
