#ifndef ORV_UTILS_ABSTRACTDYNAMICOBJECTLISTENER_H
#define ORV_UTILS_ABSTRACTDYNAMICOBJECTLISTENER_H

#include <orv/utils/Common.h>

namespace orv {
namespace utils {

/// Observes the operations of a DynamicObject: each operation calls its "before" slot with no
/// argument, then its "after" slot with what it did. The slot order is part of the interface that
/// hosts build against, reserved slots included; every operation does nothing unless overridden.
/// Listeners run on the caller's thread, inside the operation, and are not owned by the object.
class ORV_UTILS_API AbstractDynamicObjectListener {
public:
    // Slots 0 and 1: every insertion of a key into the trie.
    virtual void beforeAddProperty();
    virtual void afterAddProperty(const char* key, unsigned int length, unsigned int property);
    // Slots 2 to 9: the scalar writes.
    virtual void beforeSetInt();
    virtual void afterSetInt(unsigned int property, long long value);
    virtual void beforeSetReal();
    virtual void afterSetReal(unsigned int property, double value);
    virtual void beforeSetString();
    virtual void afterSetString(unsigned int property, const String& value);
    virtual void beforeSetBool();
    virtual void afterSetBool(unsigned int property, bool value);
    // Slots 10 and 11: the counted path lookup.
    virtual void beforeGetProperty();
    virtual void afterGetProperty(const char* key, unsigned int length);
    // Slots 12 and 13.
    virtual void beforeRetrieve();
    virtual void afterRetrieve(unsigned int property);
    // Slots 14 to 17: kept for the slot order; the library never calls them.
    virtual void reserved14();
    virtual void reserved15();
    virtual void reserved16();
    virtual void reserved17();
    // Slots 18 and 19: a subtree copied in from an object.
    virtual void beforePut();
    virtual void afterPut(unsigned int property);
    // Slots 20 to 23: kept for the slot order; the library never calls them.
    virtual void reserved20();
    virtual void reserved21();
    virtual void reserved22();
    virtual void reserved23();
    // Slots 24 and 25.
    virtual void beforeResetProperty();
    virtual void afterResetProperty(unsigned int property);
    // Slots 26 and 27: a copy of a whole object's nodes.
    virtual void beforeCopy();
    virtual void afterCopy();

    // Last, so that the operations above keep their slot numbers.
    virtual ~AbstractDynamicObjectListener();
};

} // namespace utils
} // namespace orv

#endif
