// How a dynamic object is checked against a type that the type manager knows.

#include <orv/utils/DynamicObject.h>

#include <orv/utils/Property.h>
#include <orv/utils/TypeManager.h>

#include <cstring>

namespace orv {
namespace utils {

bool DynamicObject::isTypeCompatible(unsigned int property, const Uuid& id, const TypeManager& manager) const
{
    if (property == 0 || !manager.isTypeRegistered(id)) {
        return false;
    }
    const type::Type kind = manager.getType(id);
    if (kind != type::object) {
        return isTypeCompatible(property, kind);
    }
    // Only the children that the type describes are looked at, and the property's own stored type
    // is not: a scalar has no children, so it fits any object type.
    const unsigned int count = manager.countProperties(id);
    for (unsigned int i = 0; i < count; ++i) {
        const Property& described = manager.getProperty(id, i);
        const char* key = described.getKey();
        const unsigned int child = getChild(property, key, static_cast<unsigned int>(std::strlen(key)));
        if (child != 0 && !isTypeCompatible(child, described.getTypeId(), manager)) {
            return false;
        }
    }
    return true;
}

bool DynamicObject::isTypeCompatible(const char* key, const Uuid& id, const TypeManager& manager) const
{
    return isTypeCompatible(getProperty(key), id, manager);
}

bool DynamicObject::isTypeCompatible(const char* key, unsigned int length, const Uuid& id,
                                     const TypeManager& manager) const
{
    return isTypeCompatible(getProperty(key, length), id, manager);
}

} // namespace utils
} // namespace orv
