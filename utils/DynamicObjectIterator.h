#ifndef ORV_UTILS_DYNAMICOBJECTITERATOR_H
#define ORV_UTILS_DYNAMICOBJECTITERATOR_H

#include <orv/utils/Common.h>

namespace orv {
namespace utils {

class DynamicObject;

/// Walks the properties below a start property depth first, parents before children: object
/// children in ascending order of their key bytes (signed), array elements by position. Each
/// `next` stops at the next property, with its path relative to the start (`a.b[3]`). The object
/// must not change while the iterator is in use.
class ORV_UTILS_API DynamicObjectIterator {
public:
    struct Event {
        unsigned int kind;
        unsigned int property;
        unsigned int keyOffset;
        unsigned int keyLength;
        unsigned int arrayChildIndex;
    };

    static const unsigned char objectChildBegin = 1;
    static const unsigned char objectChildEnd = 2;
    static const unsigned char arrayChildBegin = 3;
    static const unsigned char arrayChildEnd = 4;

    /// From the root, with no depth limit.
    explicit DynamicObjectIterator(const DynamicObject& object);
    DynamicObjectIterator(const DynamicObject& object, unsigned int property);
    /// A maximum depth of 0 gives only the direct children of the start.
    DynamicObjectIterator(const DynamicObject& object, unsigned int property, unsigned int maximumDepth);

    bool end() const { return stack_.empty(); }
    DynamicObjectIterator& next();

    /// The current property; the start before the first `next`.
    unsigned int getProperty() const { return currentProperty_; }
    /// The path of the current property from the start, terminated; empty at the start.
    const char* getKey() const { return isKeyInStore() ? keys_.data() + stack_.back().keyOffset : path_.data(); }
    unsigned int getKeyLength() const
    {
        return isKeyInStore() ? stack_.back().keyLength : static_cast<unsigned int>(path_.size()) - 1;
    }
    const DynamicObject& getDynamicObject() const { return object_; }

private:
    // Lets an object's walk restart one iterator per level of nesting instead of building one per object.
    friend class DynamicObject;

    void initialize(unsigned int property);
    /// Back to the state of a new iterator from `property`, keeping the memory of the stacks.
    void restart(unsigned int property);
    void pushChildren(unsigned int property);
    /// Cuts the path back to the last `separator`, or to nothing.
    void cutPath(char separator);
    /// Whether the current path is an object child's key alone, held in the key store with its
    /// terminator. A walk of direct children (maximum depth 0) reads keys from there instead of
    /// copying each one into the path; the end event of the current child is then on top.
    bool isKeyInStore() const
    {
        return maximumDepth_ == 0 && currentDepth_ != 0 && stack_.back().kind == objectChildEnd;
    }

    const DynamicObject& object_;
    unsigned int maximumDepth_;
    unsigned int currentProperty_;
    unsigned int currentDepth_;
    Vector<Event> stack_;
    Vector<char> path_;
    Vector<char> keys_;
};

} // namespace utils
} // namespace orv

#endif
