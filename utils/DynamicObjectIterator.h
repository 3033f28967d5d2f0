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

    bool end() const { return stack_.empty() && walkDepth_ == 0; }
    DynamicObjectIterator& next();

    /// The current property; the start before the first `next`.
    unsigned int getProperty() const { return currentProperty_; }
    /// The path of the current property from the start, terminated; empty at the start.
    const char* getKey() const;
    unsigned int getKeyLength() const;
    const DynamicObject& getDynamicObject() const { return object_; }

private:
    void initialize(unsigned int property);
    void pushChildren(unsigned int property);
    /// One step of the children walk, from `child` (the start before the first) to the next child.
    void step(unsigned int& child);
    /// Cuts the path back to the last `separator`, or to nothing.
    void cutPath(char separator);

    // The direct children of an object (maximum depth 0) are not gathered up front: the iterator
    // steps the children walk itself, one child per `next`, with the key store as the walk's key
    // buffer. The path is then the current key alone, read from there where the walk left it.
    bool isWalkingChildren() const { return currentDepth_ != 0 && walkDepth_ != 0; }

    const DynamicObject& object_;
    unsigned int maximumDepth_;
    unsigned int currentProperty_;
    unsigned int currentDepth_;
    Vector<Event> stack_;
    Vector<char> path_;
    Vector<char> keys_;
    /// The node stack of a children walk, and the count of its entries in use (the Vector's size is
    /// only its room); 0 otherwise, and once the walk has ended. The key store holds the walk's
    /// key buffer, `walkKeyLength_` bytes of it in use.
    Vector<unsigned int> walk_;
    /// Beside each entry of the node stack, the link that led to it.
    Vector<unsigned char> walkLinks_;
    unsigned int walkDepth_;
    unsigned int walkKeyLength_;
    /// The object whose children are walked, and the index of its value node.
    unsigned int walkStart_;
    unsigned int walkStartValue_;
};

} // namespace utils
} // namespace orv

#endif
