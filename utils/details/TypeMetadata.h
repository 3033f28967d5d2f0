#ifndef ORV_UTILS_DETAILS_TYPEMETADATA_H
#define ORV_UTILS_DETAILS_TYPEMETADATA_H

#include <orv/utils/Common.h>
#include <orv/utils/Property.h>
#include <orv/utils/Type.h>
#include <orv/utils/Uuid.h>

#include <cstring>

namespace orv {
namespace utils {

class AbstractLogger;

namespace details {

/// What the type manager knows of one registered type: its id, kind, name, direct base types and
/// reflected properties. The bases are owned by the manager and the properties by the metadata; a
/// type never has a cycle nor a redundant direct base.
class ORV_UTILS_API TypeMetadata {
public:
    TypeMetadata(const char* name, const Uuid& id);

    const char* getName() const;
    const Uuid& getTypeId() const;
    /// Worked out from the id alone: the numeric, boolean and text base types have their kind,
    /// every other type is an object.
    type::Type getType() const;

    /// Direct base types only.
    unsigned int countBaseTypes() const;
    const TypeMetadata& getBaseType(unsigned int index) const;
    /// Adding a type that derives from this one fails (it would close a cycle); adding one this
    /// type already derives from changes nothing and succeeds.
    bool addBaseType(const TypeMetadata& base, AbstractLogger* logger);
    /// Removes the direct base at that address; the others keep their order.
    void removeBaseType(const TypeMetadata& base);
    /// A type derives from itself, and from every base of its bases.
    bool isDerivedFrom(const TypeMetadata& other) const;

    /// Keeps a copy.
    void addProperty(const Property& property);
    /// Own properties and inherited ones; a base reached twice counts twice.
    unsigned int countProperties() const;
    /// Inherited properties first, base by base, and the type's own last.
    const Property& getProperty(unsigned int index) const;
    /// Own properties first, then each base's, recursively; null when none matches. Only as many
    /// characters as the name has (or `size`) are compared.
    const Property* getProperty(const char* name) const;
    const Property* getProperty(const char* name, unsigned int size) const;
    bool hasProperty(const char* name) const;
    bool hasProperty(const char* name, unsigned int size) const;
    /// The properties registered on this type itself, in their order of registration.
    unsigned int countOwnProperties() const;
    const Property& getOwnProperty(unsigned int index) const;

    ~TypeMetadata();
    TypeMetadata(const TypeMetadata&) = delete;
    TypeMetadata& operator=(const TypeMetadata&) = delete;

private:
    Uuid id_;
    type::Type type_;
    String name_;
    Vector<const TypeMetadata*> baseTypes_;
    Vector<Property*> properties_;
};

// How the properties of a type resolve over its bases. A node offers countBaseTypes and
// getBaseType as above, plus countOwnProperties and getOwnProperty(index) for the properties
// registered on the type itself, whose elements offer getKey.

/// Own properties plus those of every base, recursively; a base reached twice counts twice.
template <typename Node> unsigned int countInheritedProperties(const Node& node)
{
    unsigned int count = node.countOwnProperties();
    for (unsigned int i = 0; i < node.countBaseTypes(); ++i) {
        count += countInheritedProperties(node.getBaseType(i));
    }
    return count;
}

/// Inherited properties come first, base by base in the order of the bases, and the type's own
/// last; null past the end.
template <typename Node>
auto findInheritedProperty(const Node& node, unsigned int index) -> decltype(&node.getOwnProperty(0))
{
    for (unsigned int i = 0; i < node.countBaseTypes(); ++i) {
        const auto& base = node.getBaseType(i);
        const unsigned int inherited = countInheritedProperties(base);
        if (index < inherited) {
            return findInheritedProperty(base, index);
        }
        index -= inherited;
    }
    return index < node.countOwnProperties() ? &node.getOwnProperty(index) : nullptr;
}

/// The search by name goes the other way: own properties first, then each base in order,
/// recursively, so that a type's property hides a base's of the same name. Only `size`
/// characters are compared, so a shorter name finds a longer key that begins with it.
template <typename Node>
auto findInheritedProperty(const Node& node, const char* name, unsigned int size) -> decltype(&node.getOwnProperty(0))
{
    if (name == nullptr && size != 0) {
        return nullptr;
    }
    for (unsigned int i = 0; i < node.countOwnProperties(); ++i) {
        const auto& property = node.getOwnProperty(i);
        if (size == 0 || std::strncmp(name, property.getKey(), size) == 0) {
            return &property;
        }
    }
    for (unsigned int i = 0; i < node.countBaseTypes(); ++i) {
        if (auto found = findInheritedProperty(node.getBaseType(i), name, size)) {
            return found;
        }
    }
    return nullptr;
}

} // namespace details
} // namespace utils
} // namespace orv

#endif
