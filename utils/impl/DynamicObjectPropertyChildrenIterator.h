#ifndef ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H
#define ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H

#include <orv/utils/Common.h>

namespace orv {
namespace utils {

class DynamicObject;

namespace impl {

/// Lists the direct children of one object property by an in-order walk of the trie below it
/// (smaller, equal, greater links), so that keys come in ascending order of signed bytes, a key
/// before the keys it is a prefix of. The walk does not enter the `.` and `[` separators under
/// the children, which lead to grandchildren. The object must not change while the walk is open,
/// except that `restart` begins a fresh walk after a change.
class DynamicObjectPropertyChildrenIterator {
public:
    /// `property` 0 means the root. Before the first `next` the current child is the start itself.
    DynamicObjectPropertyChildrenIterator(const DynamicObject& object, unsigned int property);

    /// Moves to the next child; `end` tells when there is none.
    void next();
    bool end() const { return current_ == 0; }
    void restart();

    unsigned int getProperty() const { return current_; }
    /// The child's key without the leading `.` of the walk; not terminated.
    const char* getKey() const;
    unsigned int getKeyLength() const;

private:
    /// Climbs from the node on top of the stack to the next node to explore; 0 ends the walk.
    unsigned int stepUp();

    Vector<unsigned int> stack_;
    Vector<char> key_;
    const DynamicObject& object_;
    unsigned int start_;
    unsigned int startValue_;
    unsigned int current_;
};

} // namespace impl
} // namespace utils
} // namespace orv

#endif
