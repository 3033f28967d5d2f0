#include <orv/utils/Property.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/TypeManager.h>
#include <orv/utils/details/ClassTypeId.h>
#include <orv/utils/details/TypeCompatibility.h>

namespace orv {
namespace utils {
namespace {

// What an invalid property answers when the assertion hook returns.
const Uuid noId;
const char* const noText = "";

} // namespace

Property::Property()
    : typeManager_(nullptr)
{
}

Property::Property(const char* key, const Uuid& ownerTypeId, const Uuid& valueTypeId, const TypeManager& typeManager)
    : typeManager_(nullptr)
{
    ORV_CHECK(key != nullptr && key[0] != '\0', "Invalid property name.");
    ORV_CHECK(ownerTypeId.isValid(), "Invalid owner type.");
    ORV_CHECK(valueTypeId.isValid(), "Invalid value type.");
    if (key == nullptr || key[0] == '\0' || !ownerTypeId.isValid() || !valueTypeId.isValid()) {
        return;
    }
    key_ = key;
    ownerTypeId_ = ownerTypeId;
    valueTypeId_ = valueTypeId;
    typeManager_ = &typeManager;
}

bool Property::isValid() const
{
    return typeManager_ != nullptr;
}

void Property::clear()
{
    key_.clear();
    ownerTypeId_.clear();
    valueTypeId_.clear();
    typeManager_ = nullptr;
}

bool Property::checkValid() const
{
    ORV_CHECK(isValid(), "Invalid property.");
    return isValid();
}

const char* Property::getKey() const
{
    return checkValid() ? key_.c_str() : noText;
}

const Uuid& Property::getOwnerTypeId() const
{
    return checkValid() ? ownerTypeId_ : noId;
}

const Uuid& Property::getTypeId() const
{
    return checkValid() ? valueTypeId_ : noId;
}

const char* Property::getTypeName() const
{
    return checkValid() ? typeManager_->getTypeName(valueTypeId_) : noText;
}

type::Type Property::getType() const
{
    return checkValid() ? typeManager_->getType(valueTypeId_) : type::null;
}

const TypeManager& Property::getTypeManager() const
{
    if (!checkValid()) {
        // The hook returned: an empty manager stands in, so the caller still holds a live object.
        static const TypeManager noTypes;
        return noTypes;
    }
    return *typeManager_;
}

bool Property::isTypeCompatible(type::Type type) const
{
    return details::isTypeCompatible(getType(), type);
}

bool Property::isInt() const
{
    return getType() == type::integer;
}

bool Property::isReal() const
{
    return getType() == type::real;
}

bool Property::isBool() const
{
    return getType() == type::boolean;
}

bool Property::isString() const
{
    return getType() == type::string;
}

bool Property::isVector2() const
{
    return isValid() && valueTypeId_ == details::getClassTypeId<Vector2<double>>();
}

bool Property::isVector3() const
{
    return isValid() && valueTypeId_ == details::getClassTypeId<Vector3<double>>();
}

bool Property::isQuaternion() const
{
    return isValid() && valueTypeId_ == details::getClassTypeId<Quaternion<double>>();
}

bool Property::isDynamicObject() const
{
    return isValid() && valueTypeId_ == details::getClassTypeId<DynamicObject>();
}

bool Property::isStaticObject() const
{
    return isValid() && typeManager_->isStaticObject(valueTypeId_);
}

bool Property::isObject() const
{
    return getType() == type::object;
}

} // namespace utils
} // namespace orv
