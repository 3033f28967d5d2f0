/* Dynamic objects seen from a C host. Each case returns null when it passes, otherwise the
   expectation that failed; DynamicObjectCTest.cpp runs them. */
#include <orv/utils/c/DynamicObject.h>

#include <string.h>

#define C_EXPECT(condition)                                                                                            \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            orv_dynamicObject_delete(o);                                                                               \
            return #condition;                                                                                         \
        }                                                                                                              \
    } while (0)

/* Reads and writes on an object of its own, and one write on `shared`, an object of the caller's. */
const char* orv_test_dynamicObjectFromC(orv_DynamicObject* shared)
{
    orv_DynamicObject* o = orv_dynamicObject_create();
    unsigned int root, list, last, child;
    orv_dynamicObject_delete(NULL);
    if (o == NULL) {
        return "orv_dynamicObject_create() != NULL";
    }
    root = orv_dynamicObject_getRoot(o);
    C_EXPECT(root == 2);
    C_EXPECT(orv_dynamicObject_getType(o, 0) == 0);

    last = orv_dynamicObject_addProperty(o, "a[2]", 4);
    list = orv_dynamicObject_getProperty(o, "a", 1);
    C_EXPECT(last != 0 && list != 0);
    C_EXPECT(orv_dynamicObject_getType(o, list) == 5);
    C_EXPECT(orv_dynamicObject_countChildren(o, list) == 3);
    C_EXPECT(orv_dynamicObject_getChildAtIndex(o, list, 2) == last);
    C_EXPECT(orv_dynamicObject_getType(o, last) == 0);
    C_EXPECT(orv_dynamicObject_hasProperty(o, "a[2]", 4) && !orv_dynamicObject_hasProperty(o, "a[3]", 4));

    orv_dynamicObject_setReal(o, last, -2.75);
    C_EXPECT(orv_dynamicObject_getReal(o, last, 0.0) == -2.75);
    orv_dynamicObject_setInt(o, last, 1LL << 40);
    C_EXPECT(orv_dynamicObject_getInt(o, last, 0) == 1LL << 40);
    orv_dynamicObject_setBool(o, last, 1);
    C_EXPECT(orv_dynamicObject_getBool(o, last, 0) == 1);
    C_EXPECT(strcmp(orv_dynamicObject_getString(o, last, "none"), "none") == 0);
    orv_dynamicObject_setString(o, last, "text and more", 4);
    C_EXPECT(strcmp(orv_dynamicObject_getString(o, last, "none"), "text") == 0);

    C_EXPECT(orv_dynamicObject_resize(o, list, 1));
    C_EXPECT(orv_dynamicObject_countChildren(o, list) == 1);
    child = orv_dynamicObject_addChildAtKey(o, root, "b", 1);
    C_EXPECT(child != 0 && orv_dynamicObject_addChildAtKey(o, root, "b", 1) == child);
    C_EXPECT(orv_dynamicObject_getChildAtKey(o, root, "b", 1) == child);
    C_EXPECT(orv_dynamicObject_hasChildAtKey(o, root, "a", 1) && !orv_dynamicObject_hasChildAtKey(o, root, "c", 1));
    C_EXPECT(orv_dynamicObject_countChildren(o, root) == 2);
    orv_dynamicObject_resetProperty(o, list);
    C_EXPECT(orv_dynamicObject_getType(o, list) == 0);
    orv_dynamicObject_delete(o);

    o = NULL;
    orv_dynamicObject_setInt(shared, orv_dynamicObject_addProperty(shared, "fromC", 5), 42);
    return NULL;
}

/* Outside texts and handles that are wrong, with the caller's hook returning: every call answers
   its failure value. */
const char* orv_test_dynamicObjectMisuseFromC(void)
{
    orv_DynamicObject* o = orv_dynamicObject_create();
    unsigned int root, value;
    if (o == NULL) {
        return "orv_dynamicObject_create() != NULL";
    }
    root = orv_dynamicObject_getRoot(o);
    value = orv_dynamicObject_addProperty(o, "v", 1);
    orv_dynamicObject_setInt(o, value, 5);

    C_EXPECT(orv_dynamicObject_getRoot(NULL) == 0);
    C_EXPECT(orv_dynamicObject_getInt(NULL, value, 3) == 3);
    orv_dynamicObject_setInt(NULL, value, 6);
    C_EXPECT(!orv_dynamicObject_hasProperty(o, NULL, 1));
    C_EXPECT(orv_dynamicObject_getChildAtKey(o, root, NULL, 1) == 0);
    orv_dynamicObject_setString(o, value, NULL, 3);
    C_EXPECT(orv_dynamicObject_getInt(o, value, 0) == 5);
    /* Paths that don't parse are no misuse; the steps before the fault stay. */
    C_EXPECT(orv_dynamicObject_addProperty(o, "a..b", 4) == 0 && orv_dynamicObject_addProperty(o, "a[x]", 4) == 0);
    C_EXPECT(orv_dynamicObject_addChildAtKey(o, root, "x.y", 3) == 0);
    C_EXPECT(orv_dynamicObject_addChildAtKey(o, root, "", 0) == 0);
    C_EXPECT(orv_dynamicObject_countChildren(o, root) == 2);
    C_EXPECT(orv_dynamicObject_getType(o, orv_dynamicObject_getProperty(o, "a", 1)) == 0);
    C_EXPECT(orv_dynamicObject_getInt(o, 1000000, 4) == 4);
    orv_dynamicObject_delete(o);
    return NULL;
}
