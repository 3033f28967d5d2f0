#include <orv/utils/TypeManager.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/AssertingLogger.h>
#include <orv/utils/Facilities.h>
#include <orv/utils/LoggerCWrapper.h>
#include <orv/utils/Property.h>
#include <orv/utils/c/TypeManager.h>
#include <orv/utils/details/ClassTypeId.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/details/TypeMetadata.h>

#include <cstring>

namespace orv {
namespace utils {
namespace {

// The reflected object classes are not part of the library yet: the registry knows their ids
// from here, and their own getClassTypeId takes over once they join.
const Uuid& staticObjectTypeId()
{
    static const Uuid id = Uuid::create("7027fee4-32de-4a3a-a634-65811d6429e2");
    return id;
}

const Uuid& scriptedParamsTypeId()
{
    static const Uuid id = Uuid::create("f7052c64-3554-4627-8ed2-2f96c65232e2");
    return id;
}

// What a base type registers beyond its id and name. A failing step unregisters the type and
// then all base types.
using MetadataStep = bool (*)(TypeManager&, AbstractLogger*);

struct BaseType {
    const Uuid& (*id)();
    const char* name;
    MetadataStep setMetadata;
};

// The components of the vector and quaternion types are real properties of their owner.
template <const Uuid& (*owner)(), unsigned int count> bool registerComponents(TypeManager& manager, AbstractLogger* logger)
{
    static const char* const keys[] = { "x", "y", "z", "w" };
    static_assert(count <= sizeof(keys) / sizeof(keys[0]), "a type has at most four components");
    for (unsigned int i = 0; i < count; ++i) {
        if (!manager.registerProperty(owner(), Property(keys[i], owner(), details::getClassTypeId<double>(), manager),
                                      logger)) {
            return false;
        }
    }
    return true;
}

// The metadata setters of StaticObject and ScriptedParams fill their empty steps once reflected
// objects exist.
const BaseType baseTypes[] = {
    { &details::getClassTypeId<int>, "int", nullptr },
    { &details::getClassTypeId<long long>, "int64", nullptr },
    { &details::getClassTypeId<double>, "double", nullptr },
    { &details::getClassTypeId<float>, "float", nullptr },
    { &details::getClassTypeId<bool>, "bool", nullptr },
    { &details::getClassTypeId<String>, "orv::utils::String", nullptr },
    { &details::getClassTypeId<std::string>, "std::String", nullptr },
    { &details::getClassTypeId<const char*>, "cstring", nullptr },
    { &details::getClassTypeId<Vector3<double>>, "orv::utils::Vector3r",
      &registerComponents<details::getClassTypeId<Vector3<double>>, 3> },
    { &details::getClassTypeId<Vector2<double>>, "orv::utils::Vector2r",
      &registerComponents<details::getClassTypeId<Vector2<double>>, 2> },
    { &details::getClassTypeId<Quaternion<double>>, "orv::utils::Quaternionr",
      &registerComponents<details::getClassTypeId<Quaternion<double>>, 4> },
    { &details::getClassTypeId<DynamicObject>, "orv::utils::DynamicObject", nullptr },
    { &staticObjectTypeId, "StaticObject", nullptr },
    { &scriptedParamsTypeId, "ScriptedParams", nullptr },
};

// DynamicObject is left out on purpose: it stays registered until clearTypes.
const Uuid& (*const baseTypesToUnregister[])() = {
    &details::getClassTypeId<int>,
    &details::getClassTypeId<long long>,
    &details::getClassTypeId<double>,
    &details::getClassTypeId<float>,
    &details::getClassTypeId<bool>,
    &details::getClassTypeId<String>,
    &details::getClassTypeId<std::string>,
    &details::getClassTypeId<const char*>,
    &details::getClassTypeId<Vector3<double>>,
    &details::getClassTypeId<Vector2<double>>,
    &details::getClassTypeId<Quaternion<double>>,
    &staticObjectTypeId,
    &scriptedParamsTypeId,
};

const Uuid noId;
const char* const noName = "";

// What a look-up of a missing property answers when the assertion hook returns.
const Property& noProperty()
{
    static const Property none;
    return none;
}

} // namespace

StaticObject* TypeManager::StaticObjectCreator::operator()(AbstractLogger*) const
{
    return nullptr;
}

TypeManager::StaticObjectCreator::~StaticObjectCreator() = default;

TypeManager::CreatorAbstractFactory::CreatorAbstractFactory() = default;

TypeManager::CreatorAbstractFactory::~CreatorAbstractFactory()
{
    clear();
}

bool TypeManager::CreatorAbstractFactory::unregisterCreator(const Uuid& id, AbstractLogger* logger)
{
    auto found = creators_.find(id);
    if (found == creators_.end()) {
        ORV_LOG_ERROR(logger, error::invalidArgument, "No creator already registered for " << id << ".");
        return false;
    }
    ORV_DELETE(found->second);
    creators_.erase(found);
    return true;
}

const TypeManager::StaticObjectCreator* TypeManager::CreatorAbstractFactory::findCreator(const Uuid& id) const
{
    auto found = creators_.find(id);
    return found == creators_.end() ? nullptr : found->second;
}

void TypeManager::CreatorAbstractFactory::clear()
{
    for (auto& entry : creators_) {
        ORV_DELETE(entry.second);
    }
    creators_.clear();
}

void TypeManager::CreatorAbstractFactory::addCreator(const Uuid& id, StaticObjectCreator* creator)
{
    StaticObjectCreator*& slot = creators_[id];
    ORV_DELETE(slot);
    slot = creator;
}

TypeManager::TypeManager() = default;

TypeManager::~TypeManager()
{
    creatorFactory_.clear();
    clearTypes();
}

bool TypeManager::registerType(const Uuid& id, const char* name, AbstractLogger* logger)
{
    ORV_CHECK(name != nullptr, "Invalid type name.");
    if (name == nullptr) {
        // The hook returned: a type without a name can't be looked up, so nothing is registered.
        return false;
    }
    const details::TypeMetadata* byId = findMetadata(id);
    if (byId != nullptr && std::strcmp(byId->getName(), name) != 0) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "While trying to register a type with name " << name << ", another type named " << byId->getName()
                                                         << ",  was found with the same id, " << id << ".");
        return false;
    }
    auto byName = typesByName_.find(String(name));
    if (byName == typesByName_.end()) {
        details::TypeMetadata* metadata = ORV_NEW(details::TypeMetadata)(name, id);
        typesById_[id] = metadata;
        typesByName_[String(name)] = metadata;
        return true;
    }
    const Uuid& knownId = byName->second->getTypeId();
    if (knownId == id) {
        ORV_LOG_WARNING(logger, "Trying to register an already registered type: '" << name << "' {" << id << "}");
        return true;
    }
    ORV_LOG_ERROR(logger, error::invalidArgument,
        "While trying to register a type with id {" << id << "}, another type with id {" << knownId
                                                    << "}, was found with the same name '" << name << "'.");
    return false;
}

void TypeManager::unregisterType(const Uuid& id)
{
    if (creatorFactory_.findCreator(id) != nullptr) {
        // The creator is known to be there, so a report would be a fault of the factory itself.
        AssertingLogger logger;
        creatorFactory_.unregisterCreator(id, &logger);
    }
    details::TypeMetadata* metadata = findMetadata(id);
    if (metadata == nullptr) {
        return;
    }
    for (auto& entry : typesById_) {
        entry.second->removeBaseType(*metadata);
    }
    typesByName_.erase(String(metadata->getName()));
    typesById_.erase(id);
    ORV_DELETE(metadata);
}

void TypeManager::clearTypes()
{
    for (auto& entry : typesById_) {
        ORV_DELETE(entry.second);
    }
    typesById_.clear();
    typesByName_.clear();
}

bool TypeManager::registerBaseTypes(AbstractLogger* logger)
{
    for (const BaseType& baseType : baseTypes) {
        const Uuid& id = baseType.id();
        if (!registerType(id, baseType.name, logger)) {
            unregisterBaseTypes();
            return false;
        }
        if (baseType.setMetadata != nullptr && !baseType.setMetadata(*this, logger)) {
            unregisterType(id);
            unregisterBaseTypes();
            return false;
        }
    }
    return true;
}

void TypeManager::unregisterBaseTypes()
{
    for (const auto& id : baseTypesToUnregister) {
        unregisterType(id());
    }
}

bool TypeManager::isTypeRegistered(const Uuid& id) const
{
    return typesById_.find(id) != typesById_.end();
}

bool TypeManager::isTypeRegistered(const char* name) const
{
    return name != nullptr && typesByName_.find(String(name)) != typesByName_.end();
}

Vector<Uuid> TypeManager::getTypeIds() const
{
    Vector<Uuid> ids;
    ids.reserve(typesByName_.size());
    for (const auto& entry : typesByName_) {
        ids.push_back(entry.second->getTypeId());
    }
    return ids;
}

const Uuid& TypeManager::getTypeId(const char* name) const
{
    auto found = name == nullptr ? typesByName_.end() : typesByName_.find(String(name));
    ORV_CHECK(
        found != typesByName_.end(), "No type having the name " << (name == nullptr ? "" : name) << " is registered.");
    // With a returning hook the caller gets the null id.
    return found == typesByName_.end() ? noId : found->second->getTypeId();
}

const char* TypeManager::getTypeName(const Uuid& id) const
{
    const details::TypeMetadata* metadata = getMetadata(id);
    return metadata == nullptr ? noName : metadata->getName();
}

type::Type TypeManager::getType(const Uuid& id) const
{
    const details::TypeMetadata* metadata = getMetadata(id);
    return metadata == nullptr ? type::null : metadata->getType();
}

bool TypeManager::addBaseType(const Uuid& derived, const Uuid& base, AbstractLogger* logger)
{
    details::TypeMetadata* derivedMetadata = findMetadata(derived);
    const details::TypeMetadata* baseMetadata = findMetadata(base);
    if (derivedMetadata == nullptr || baseMetadata == nullptr) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "No type having the id " << (derivedMetadata == nullptr ? derived : base) << " is registered.");
        return false;
    }
    return derivedMetadata->addBaseType(*baseMetadata, logger);
}

bool TypeManager::isDerivedFrom(const Uuid& derived, const Uuid& base) const
{
    const details::TypeMetadata* derivedMetadata = findMetadata(derived);
    const details::TypeMetadata* baseMetadata = findMetadata(base);
    if (derivedMetadata == nullptr || baseMetadata == nullptr) {
        return false;
    }
    return derivedMetadata->isDerivedFrom(*baseMetadata);
}

bool TypeManager::isStaticObject(const Uuid& id) const
{
    return isTypeRegistered(id) && isDerivedFrom(id, staticObjectTypeId());
}

bool TypeManager::registerProperty(const Uuid& id, const Property& property, AbstractLogger* logger)
{
    details::TypeMetadata* metadata = findMetadata(id);
    if (metadata == nullptr) {
        ORV_LOG_ERROR(logger, error::invalidArgument, "No type having the id " << id << " is registered.");
        return false;
    }
    if (!property.isValid()) {
        // An invalid property has no key, so nothing stands between the dot and the rest.
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "the property  " << metadata->getName() << ". has not been initialized.");
        return false;
    }
    metadata->addProperty(property);
    return true;
}

unsigned int TypeManager::countProperties(const Uuid& id) const
{
    const details::TypeMetadata* metadata = getMetadata(id);
    return metadata == nullptr ? 0 : metadata->countProperties();
}

const Property& TypeManager::getProperty(const Uuid& id, unsigned int index) const
{
    const details::TypeMetadata* metadata = getMetadata(id);
    return metadata == nullptr ? noProperty() : metadata->getProperty(index);
}

const Property& TypeManager::getProperty(const Uuid& id, const char* key) const
{
    return getProperty(id, key, key == nullptr ? 0 : static_cast<unsigned int>(std::strlen(key)));
}

const Property& TypeManager::getProperty(const Uuid& id, const char* key, unsigned int size) const
{
    const Property* property = getPropertyPtr(id, key, size);
    ORV_CHECK(property != nullptr,
        "The type " << id << " have no registered property named " << (key == nullptr ? "" : key) << ".");
    return property == nullptr ? noProperty() : *property;
}

bool TypeManager::isPropertyRegistered(const Uuid& id, const char* key) const
{
    return isPropertyRegistered(id, key, key == nullptr ? 0 : static_cast<unsigned int>(std::strlen(key)));
}

bool TypeManager::isPropertyRegistered(const Uuid& id, const char* key, unsigned int size) const
{
    return getPropertyPtr(id, key, size) != nullptr;
}

const Property* TypeManager::getPropertyPtr(const Uuid& id, const char* key, unsigned int size) const
{
    ORV_CHECK(key != nullptr, "Invalid key");
    const details::TypeMetadata* metadata = getMetadata(id);
    if (key == nullptr || metadata == nullptr) {
        return nullptr;
    }
    return metadata->getProperty(key, size);
}

StaticObject* TypeManager::createStaticObject(const Uuid& id, AbstractLogger* logger) const
{
    const details::TypeMetadata* metadata = findMetadata(id);
    if (metadata == nullptr) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
            "Unable to create an instance of type '" << id << "', no such type is registered.");
        return nullptr;
    }
    const StaticObjectCreator* creator = creatorFactory_.findCreator(id);
    if (creator != nullptr) {
        return (*creator)(logger);
    }
    ORV_LOG_ERROR(logger, error::invalidArgument,
        "Unable to create an instance of type '"
            << metadata->getName()
            << "', no registered creator for this type(ie neither 'registerWithStaticObjectFactory' nor "
               "ORV_DEFINE_STATIC_OBJECT were used on this type).");
    return nullptr;
}

TypeManager::CreatorAbstractFactory& TypeManager::getCreatorFactory()
{
    return creatorFactory_;
}

const TypeManager::CreatorAbstractFactory& TypeManager::getCreatorFactory() const
{
    return creatorFactory_;
}

const TypeManager::StaticObjectCreator& TypeManager::getCreator(const Uuid& id) const
{
    const StaticObjectCreator* creator = creatorFactory_.findCreator(id);
    return creator == nullptr ? defaultCreator_ : *creator;
}

details::TypeMetadata* TypeManager::findMetadata(const Uuid& id) const
{
    auto found = typesById_.find(id);
    return found == typesById_.end() ? nullptr : found->second;
}

details::TypeMetadata* TypeManager::getMetadata(const Uuid& id) const
{
    details::TypeMetadata* metadata = findMetadata(id);
    ORV_CHECK(metadata != nullptr, "No type having the id " << id << " is registered.");
    return metadata;
}

} // namespace utils
} // namespace orv

extern "C" {

orv_bool orv_utils_register_type(const char* id, const char* name, orv_Logger* logger)
{
    orv::utils::LoggerCWrapper wrapper(logger);
    const orv::utils::Uuid typeId = orv::utils::Uuid::create(id);
    orv::utils::TypeManager& typeManager = orv::utils::Facilities::instance().getTypeManager();
    if (!typeManager.registerType(typeId, name, &wrapper)) {
        return 0;
    }
    // Every type that comes from a C host is a scripted parameter class.
    return typeManager.addBaseType(typeId, orv::utils::scriptedParamsTypeId(), &wrapper) ? 1 : 0;
}
}
