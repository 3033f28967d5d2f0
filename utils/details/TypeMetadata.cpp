#include <orv/utils/details/TypeMetadata.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/Assertion.h>
#include <orv/utils/details/ClassTypeId.h>
#include <orv/utils/details/Logging.h>

#include <algorithm>
#include <cstring>

namespace orv {
namespace utils {
namespace details {
namespace {

type::Type computeType(const Uuid& id)
{
    if (id == getClassTypeId<long long>() || id == getClassTypeId<int>()) {
        return type::integer;
    }
    if (id == getClassTypeId<float>() || id == getClassTypeId<double>()) {
        return type::real;
    }
    if (id == getClassTypeId<bool>()) {
        return type::boolean;
    }
    if (id == getClassTypeId<String>() || id == getClassTypeId<std::string>() || id == getClassTypeId<const char*>()) {
        return type::string;
    }
    return type::object;
}

} // namespace

TypeMetadata::TypeMetadata(const char* name, const Uuid& id)
    : id_(id)
    , type_(computeType(id))
    , name_(name)
{
}

const char* TypeMetadata::getName() const
{
    return name_.c_str();
}

const Uuid& TypeMetadata::getTypeId() const
{
    return id_;
}

type::Type TypeMetadata::getType() const
{
    return type_;
}

unsigned int TypeMetadata::countBaseTypes() const
{
    return static_cast<unsigned int>(baseTypes_.size());
}

const TypeMetadata& TypeMetadata::getBaseType(unsigned int index) const
{
    ORV_CHECK(index < baseTypes_.size(), "Invalid base type index");
    if (index >= baseTypes_.size()) {
        // The hook returned: the type itself stands in, so the caller still holds a live object.
        return *this;
    }
    return *baseTypes_[index];
}

bool TypeMetadata::addBaseType(const TypeMetadata& base, AbstractLogger* logger)
{
    if (base.isDerivedFrom(*this)) {
        // The names stand in this order; the text has always read this way.
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "The given type," << getName() << ", derives from the current type, " << base.getName() << ".");
        return false;
    }
    if (isDerivedFrom(base)) {
        return true;
    }
    baseTypes_.push_back(&base);
    return true;
}

void TypeMetadata::removeBaseType(const TypeMetadata& base)
{
    baseTypes_.erase(std::remove(baseTypes_.begin(), baseTypes_.end(), &base), baseTypes_.end());
}

bool TypeMetadata::isDerivedFrom(const TypeMetadata& other) const
{
    if (id_ == other.id_) {
        return true;
    }
    for (const TypeMetadata* base : baseTypes_) {
        if (base->isDerivedFrom(other)) {
            return true;
        }
    }
    return false;
}

void TypeMetadata::addProperty(const Property& property)
{
    properties_.push_back(ORV_NEW(Property)(property));
}

unsigned int TypeMetadata::countProperties() const
{
    return countInheritedProperties(*this);
}

const Property& TypeMetadata::getProperty(unsigned int index) const
{
    const Property* property = findInheritedProperty(*this, index);
    ORV_CHECK(property != nullptr, "Invalid property index");
    if (property == nullptr) {
        // The hook returned: an invalid property stands in.
        static const Property noProperty;
        return noProperty;
    }
    return *property;
}

const Property* TypeMetadata::getProperty(const char* name) const
{
    return name == nullptr ? nullptr : getProperty(name, static_cast<unsigned int>(std::strlen(name)));
}

const Property* TypeMetadata::getProperty(const char* name, unsigned int size) const
{
    return findInheritedProperty(*this, name, size);
}

bool TypeMetadata::hasProperty(const char* name) const
{
    return getProperty(name) != nullptr;
}

bool TypeMetadata::hasProperty(const char* name, unsigned int size) const
{
    return getProperty(name, size) != nullptr;
}

unsigned int TypeMetadata::countOwnProperties() const
{
    return static_cast<unsigned int>(properties_.size());
}

const Property& TypeMetadata::getOwnProperty(unsigned int index) const
{
    return *properties_[index];
}

TypeMetadata::~TypeMetadata()
{
    for (Property* property : properties_) {
        ORV_DELETE(property);
    }
}

} // namespace details
} // namespace utils
} // namespace orv
