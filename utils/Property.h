#ifndef ORV_UTILS_PROPERTY_H
#define ORV_UTILS_PROPERTY_H

#include <orv/utils/Common.h>
#include <orv/utils/Type.h>
#include <orv/utils/Uuid.h>

namespace orv {
namespace utils {

class TypeManager;

/// One reflected member of a registered type: its key, the type that owns it and the type of its
/// value, as the type manager knows them. A default-built property is invalid until assigned;
/// asking an invalid one for its identity is a broken contract.
class ORV_UTILS_API Property {
public:
    /// Invalid.
    Property();
    /// The key must be a non-empty text and both ids valid; anything else is a broken contract and
    /// leaves the property invalid.
    Property(const char* key, const Uuid& ownerTypeId, const Uuid& valueTypeId, const TypeManager& typeManager);

    bool isValid() const;
    /// Back to the invalid state.
    void clear();

    const char* getKey() const;
    const Uuid& getOwnerTypeId() const;
    /// The id of the value's type.
    const Uuid& getTypeId() const;
    const char* getTypeName() const;
    /// The kind of the value's type, as the type manager works it out.
    type::Type getType() const;
    const TypeManager& getTypeManager() const;
    /// Integers and reals stand for each other; every other kind only for itself.
    bool isTypeCompatible(type::Type type) const;

    bool isInt() const;
    bool isReal() const;
    bool isBool() const;
    bool isString() const;
    bool isVector2() const;
    bool isVector3() const;
    bool isQuaternion() const;
    bool isDynamicObject() const;
    /// A type registered as deriving from StaticObject.
    bool isStaticObject() const;
    bool isObject() const;

private:
    bool checkValid() const;

    String key_;
    Uuid ownerTypeId_;
    Uuid valueTypeId_;
    const TypeManager* typeManager_;
};

} // namespace utils
} // namespace orv

#endif
