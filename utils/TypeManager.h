#ifndef ORV_UTILS_TYPEMANAGER_H
#define ORV_UTILS_TYPEMANAGER_H

#include <orv/utils/Common.h>
#include <orv/utils/Type.h>
#include <orv/utils/Uuid.h>

namespace orv {
namespace utils {

class AbstractLogger;
class Property;
class StaticObject;

namespace details {
class TypeMetadata;
}

/// The registry of the library's own type identity: each type is known by an id and a name, with
/// its direct base types and, for classes that can be made by id, a creator. One manager per
/// process lives in the facilities. It takes no lock: registrations happen at start-up, and
/// look-ups are read-only afterwards.
class ORV_UTILS_API TypeManager {
public:
    /// Makes an instance of one reflected class. The base makes nothing.
    class ORV_UTILS_API StaticObjectCreator {
    public:
        virtual StaticObject* operator()(AbstractLogger* logger) const;
        virtual ~StaticObjectCreator();
    };

    /// One owned creator per type id. A creator is given by reference and the factory keeps a
    /// clone of it, so `Creator` must offer `StaticObjectCreator* clone() const` returning an object
    /// made with ORV_NEW.
    class ORV_UTILS_API CreatorAbstractFactory {
    public:
        CreatorAbstractFactory();
        ~CreatorAbstractFactory();

        /// A creator already there for `id` is replaced.
        template <typename Creator> void registerCreator(const Uuid& id, const Creator& creator)
        {
            addCreator(id, creator.clone());
        }
        /// Destroys the creator of `id`; false, and logged, when there is none.
        bool unregisterCreator(const Uuid& id, AbstractLogger* logger);
        /// Null when `id` has no creator.
        const StaticObjectCreator* findCreator(const Uuid& id) const;
        void clear();

        CreatorAbstractFactory(const CreatorAbstractFactory&) = delete;
        CreatorAbstractFactory& operator=(const CreatorAbstractFactory&) = delete;

    private:
        void addCreator(const Uuid& id, StaticObjectCreator* creator);

        Map<Uuid, StaticObjectCreator*> creators_;
    };

    TypeManager();
    /// Destroys every type and every creator.
    ~TypeManager();

    /// Registering the same id under the same name again is harmless (a warning); a clash of the
    /// id alone or of the name alone is an error.
    bool registerType(const Uuid& id, const char* name, AbstractLogger* logger);
    /// Also removes the type's creator, and the type from the bases of every other type. An
    /// unknown id is ignored.
    void unregisterType(const Uuid& id);
    /// Destroys every type; creators stay.
    void clearTypes();

    /// Registers the numeric, boolean, text, vector and object types that the properties of
    /// reflected classes are described with. On a failure nothing of them stays registered.
    bool registerBaseTypes(AbstractLogger* logger);
    /// Unregisters the base types, except DynamicObject, which only clearTypes removes.
    void unregisterBaseTypes();

    bool isTypeRegistered(const Uuid& id) const;
    bool isTypeRegistered(const char* name) const;
    /// The ids of all registered types, ordered by name.
    Vector<Uuid> getTypeIds() const;
    /// An unknown name is a broken contract; the null id is the answer then.
    const Uuid& getTypeId(const char* name) const;
    /// An unknown id is a broken contract (here and below); the empty text is the answer then.
    const char* getTypeName(const Uuid& id) const;
    /// Object, unless the type is one of the numeric, boolean or text base types; null for an unknown id.
    type::Type getType(const Uuid& id) const;

    /// Logged and false for an unknown id, or when `base` already derives from `derived`.
    bool addBaseType(const Uuid& derived, const Uuid& base, AbstractLogger* logger);
    /// False when either id is unknown; a type derives from itself.
    bool isDerivedFrom(const Uuid& derived, const Uuid& base) const;
    /// Whether the type derives from StaticObject; false for an unknown id.
    bool isStaticObject(const Uuid& id) const;

    /// Logged and false for an unknown id or an invalid property.
    bool registerProperty(const Uuid& id, const Property& property, AbstractLogger* logger);
    /// Own and inherited properties of the type.
    unsigned int countProperties(const Uuid& id) const;
    /// Inherited properties first, base by base, and the type's own last.
    const Property& getProperty(const Uuid& id, unsigned int index) const;
    /// For keys known to be there: a missing one is a broken contract (see isPropertyRegistered).
    /// Own properties hide inherited ones of the same key.
    const Property& getProperty(const Uuid& id, const char* key) const;
    const Property& getProperty(const Uuid& id, const char* key, unsigned int size) const;
    bool isPropertyRegistered(const Uuid& id, const char* key) const;
    bool isPropertyRegistered(const Uuid& id, const char* key, unsigned int size) const;

    /// Calls the creator registered for `id`; logged and null for an unknown type or one without
    /// a creator.
    StaticObject* createStaticObject(const Uuid& id, AbstractLogger* logger) const;
    CreatorAbstractFactory& getCreatorFactory();
    const CreatorAbstractFactory& getCreatorFactory() const;
    /// The creator of `id`, or the default one, which makes nothing.
    const StaticObjectCreator& getCreator(const Uuid& id) const;

    TypeManager(const TypeManager&) = delete;
    TypeManager& operator=(const TypeManager&) = delete;

private:
    details::TypeMetadata* findMetadata(const Uuid& id) const;
    /// An unknown id is a broken contract; null is the answer then.
    details::TypeMetadata* getMetadata(const Uuid& id) const;
    /// Null when the type has no such property; a null key is a broken contract.
    const Property* getPropertyPtr(const Uuid& id, const char* key, unsigned int size) const;

    Map<Uuid, details::TypeMetadata*> typesById_;
    Map<String, details::TypeMetadata*> typesByName_;
    CreatorAbstractFactory creatorFactory_;
    StaticObjectCreator defaultCreator_;
};

} // namespace utils
} // namespace orv

#endif
