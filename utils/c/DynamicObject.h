/* Dynamic objects seen from C: the basic reads and writes of a property tree. Compiles as C99.

   A handle is the DynamicObject itself, so these functions and the class interface can be mixed on
   one object. Properties are named by `unsigned int` handles, 0 for none, or by paths such as
   `a.b[3]`; keys and texts are counted, not zero-terminated, and stay the caller's. Misuse (a null
   object, a null key, a bad handle, a key that can't name a child) is a failed assertion, after
   which the call answers 0, false or its default: a host that wants to survive it installs a
   returning hook with orv_setAssertionFailedFunction. */
#ifndef ORV_UTILS_C_DYNAMICOBJECT_H
#define ORV_UTILS_C_DYNAMICOBJECT_H

#include <orv/utils/c/Types.h>

ORV_EXTERN_C_BEGIN

/* The object itself, opaque to C. */
typedef struct orv_DynamicObject orv_DynamicObject;

/* A new empty object with its own nodes and string table; null when memory runs out. The caller
   owns it and releases it with orv_dynamicObject_delete. */
ORV_UTILS_API orv_DynamicObject* orv_dynamicObject_create(void);
/* Destroys an object of orv_dynamicObject_create, or of the class interface's ORV_NEW (null is
   ignored). Every handle and text it gave out dies with it. */
ORV_UTILS_API void orv_dynamicObject_delete(orv_DynamicObject* o);

/* The root's handle: 2 for a new or cleared object. */
ORV_UTILS_API unsigned int orv_dynamicObject_getRoot(orv_DynamicObject* o);

/* Path lookups. The path is matched as stored text (`a.b[3]`, no leading `.`), never created. */
ORV_UTILS_API orv_bool orv_dynamicObject_hasProperty(orv_DynamicObject* o, const char* key, unsigned int length);
ORV_UTILS_API unsigned int orv_dynamicObject_getProperty(orv_DynamicObject* o, const char* key, unsigned int length);
/* Parses the path and creates every missing step, replacing what stands in the way; 0 when the
   path does not parse. */
ORV_UTILS_API unsigned int orv_dynamicObject_addProperty(orv_DynamicObject* o, const char* key, unsigned int length);

/* Makes the property null, children removed. */
ORV_UTILS_API void orv_dynamicObject_resetProperty(orv_DynamicObject* o, unsigned int property);
/* The number of the type: null 0, integer 1, real 2, string 3, boolean 4, array 5, object 6;
   0 for a handle that names nothing. */
ORV_UTILS_API int orv_dynamicObject_getType(orv_DynamicObject* o, unsigned int property);
/* Elements of an array or children of an object; 0 for the other types. */
ORV_UTILS_API unsigned int orv_dynamicObject_countChildren(orv_DynamicObject* o, unsigned int property);

/* Children by key, of an object; by index, of an array, or of an object in key order (linear). */
ORV_UTILS_API orv_bool orv_dynamicObject_hasChildAtKey(
    orv_DynamicObject* o, unsigned int property, const char* key, unsigned int length);
ORV_UTILS_API unsigned int orv_dynamicObject_getChildAtKey(
    orv_DynamicObject* o, unsigned int property, const char* key, unsigned int length);
ORV_UTILS_API unsigned int orv_dynamicObject_getChildAtIndex(
    orv_DynamicObject* o, unsigned int property, unsigned int index);
/* Adds a null child, or finds the one the key already names, and makes the property an object.
   A key that is empty or holds `.`, `[` or `]` is refused with 0. */
ORV_UTILS_API unsigned int orv_dynamicObject_addChildAtKey(
    orv_DynamicObject* o, unsigned int property, const char* key, unsigned int length);
/* Grows an array with nulls or shrinks it; 0 makes it null. Sizes of 100000 and more are ignored
   and reported as success. */
ORV_UTILS_API orv_bool orv_dynamicObject_resize(orv_DynamicObject* o, unsigned int property, unsigned int size);

/* Reads: the value, converted between integer and real, or the default for other types. */
ORV_UTILS_API long long orv_dynamicObject_getInt(orv_DynamicObject* o, unsigned int property, long long defaultValue);
ORV_UTILS_API double orv_dynamicObject_getReal(orv_DynamicObject* o, unsigned int property, double defaultValue);
ORV_UTILS_API orv_bool orv_dynamicObject_getBool(orv_DynamicObject* o, unsigned int property, orv_bool defaultValue);
/* The text, owned by the object's string table and valid while it lives, or `defaultValue`. */
ORV_UTILS_API const char* orv_dynamicObject_getString(
    orv_DynamicObject* o, unsigned int property, const char* defaultValue);

/* Writes: the property takes the value's type, and loses its children first. */
ORV_UTILS_API void orv_dynamicObject_setInt(orv_DynamicObject* o, unsigned int property, long long value);
ORV_UTILS_API void orv_dynamicObject_setReal(orv_DynamicObject* o, unsigned int property, double value);
ORV_UTILS_API void orv_dynamicObject_setBool(orv_DynamicObject* o, unsigned int property, orv_bool value);
/* Copies `length` bytes of `value` into the object's string table. */
ORV_UTILS_API void orv_dynamicObject_setString(
    orv_DynamicObject* o, unsigned int property, const char* value, unsigned int length);

ORV_EXTERN_C_END

#endif
