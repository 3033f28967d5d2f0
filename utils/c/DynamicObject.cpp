#include <orv/utils/c/DynamicObject.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/Assertion.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/StringTable.h>

#include <string>

using orv::utils::DynamicObject;

namespace {

DynamicObject* object(orv_DynamicObject* o)
{
    ORV_CHECK(o != nullptr, "o");
    // The hook returned: there is no object to go on with, and the call answers its failure value.
    return reinterpret_cast<DynamicObject*>(o);
}

} // namespace

extern "C" {

orv_DynamicObject* orv_dynamicObject_create(void)
{
    DynamicObject* created = ORV_NEW(DynamicObject)();
    return created != nullptr ? &created->getWrapper() : nullptr;
}

void orv_dynamicObject_delete(orv_DynamicObject* o)
{
    if (o != nullptr) {
        ORV_DELETE(reinterpret_cast<DynamicObject*>(o));
    }
}

unsigned int orv_dynamicObject_getRoot(orv_DynamicObject* o)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->getRoot() : 0;
}

orv_bool orv_dynamicObject_hasProperty(orv_DynamicObject* o, const char* key, unsigned int length)
{
    DynamicObject* self = object(o);
    return self != nullptr && self->hasProperty(key, length);
}

unsigned int orv_dynamicObject_getProperty(orv_DynamicObject* o, const char* key, unsigned int length)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->getProperty(key, length) : 0;
}

unsigned int orv_dynamicObject_addProperty(orv_DynamicObject* o, const char* key, unsigned int length)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->addProperty(key, length) : 0;
}

void orv_dynamicObject_resetProperty(orv_DynamicObject* o, unsigned int property)
{
    DynamicObject* self = object(o);
    if (self != nullptr) {
        self->resetProperty(property);
    }
}

int orv_dynamicObject_getType(orv_DynamicObject* o, unsigned int property)
{
    DynamicObject* self = object(o);
    return self != nullptr ? static_cast<int>(self->getType(property)) : 0;
}

unsigned int orv_dynamicObject_countChildren(orv_DynamicObject* o, unsigned int property)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->countChildren(property) : 0;
}

orv_bool orv_dynamicObject_hasChildAtKey(
    orv_DynamicObject* o, unsigned int property, const char* key, unsigned int length)
{
    DynamicObject* self = object(o);
    return self != nullptr && self->getChild(property, key, length) != 0;
}

unsigned int orv_dynamicObject_getChildAtKey(
    orv_DynamicObject* o, unsigned int property, const char* key, unsigned int length)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->getChild(property, key, length) : 0;
}

unsigned int orv_dynamicObject_getChildAtIndex(orv_DynamicObject* o, unsigned int property, unsigned int index)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->getChild(property, index) : 0;
}

unsigned int orv_dynamicObject_addChildAtKey(
    orv_DynamicObject* o, unsigned int property, const char* key, unsigned int length)
{
    DynamicObject* self = object(o);
    if (self == nullptr) {
        return 0;
    }
    // A C key is outside text: one that can't name a child would otherwise be stored after the
    // failed check as a path of its own, or stand for the parent itself when it is empty.
    if (key != nullptr && !orv::utils::checkPropertyKey(key, length)) {
        ORV_FAIL("The given child key, " << std::string(key, length) << " is invalid.");
        return 0;
    }
    return self->addChild(property, key, length);
}

orv_bool orv_dynamicObject_resize(orv_DynamicObject* o, unsigned int property, unsigned int size)
{
    DynamicObject* self = object(o);
    return self != nullptr && self->resize(property, size);
}

long long orv_dynamicObject_getInt(orv_DynamicObject* o, unsigned int property, long long defaultValue)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->getInt(property, defaultValue) : defaultValue;
}

double orv_dynamicObject_getReal(orv_DynamicObject* o, unsigned int property, double defaultValue)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->getReal(property, defaultValue) : defaultValue;
}

orv_bool orv_dynamicObject_getBool(orv_DynamicObject* o, unsigned int property, orv_bool defaultValue)
{
    DynamicObject* self = object(o);
    return self != nullptr ? self->getBool(property, defaultValue != 0) : defaultValue;
}

const char* orv_dynamicObject_getString(orv_DynamicObject* o, unsigned int property, const char* defaultValue)
{
    DynamicObject* self = object(o);
    if (self == nullptr) {
        return defaultValue;
    }
    return self->getStringTable().retrieve(self->getStringHash(property, 0), defaultValue);
}

void orv_dynamicObject_setInt(orv_DynamicObject* o, unsigned int property, long long value)
{
    DynamicObject* self = object(o);
    if (self != nullptr) {
        self->setInt(property, value);
    }
}

void orv_dynamicObject_setReal(orv_DynamicObject* o, unsigned int property, double value)
{
    DynamicObject* self = object(o);
    if (self != nullptr) {
        self->setReal(property, value);
    }
}

void orv_dynamicObject_setBool(orv_DynamicObject* o, unsigned int property, orv_bool value)
{
    DynamicObject* self = object(o);
    if (self != nullptr) {
        self->setBool(property, value != 0);
    }
}

void orv_dynamicObject_setString(orv_DynamicObject* o, unsigned int property, const char* value, unsigned int length)
{
    DynamicObject* self = object(o);
    if (self != nullptr) {
        self->setString(property, value, length);
    }
}

} // extern "C"
