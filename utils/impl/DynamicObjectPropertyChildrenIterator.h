#ifndef ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H
#define ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H

#include <orv/utils/Common.h>

#include <cstring>

namespace orv {
namespace utils {

class DynamicObject;

namespace impl {

/// A stack of plain values whose first entries live in the stack object itself, and which moves to
/// a Vector only when it outgrows them: a walk of a few levels allocates nothing.
template <typename T, unsigned int inlineCapacity> class InlineStack {
public:
    InlineStack()
        : data_(inline_)
        , size_(0)
        , capacity_(inlineCapacity)
    {
    }
    InlineStack(const InlineStack&) = delete;
    InlineStack& operator=(const InlineStack&) = delete;

    bool empty() const { return size_ == 0; }
    unsigned int size() const { return size_; }
    const T* data() const { return data_; }
    T back() const { return data_[size_ - 1]; }
    T operator[](unsigned int index) const { return data_[index]; }

    void push_back(T value)
    {
        if (size_ == capacity_) {
            grow();
        }
        data_[size_++] = value;
    }
    void pop_back() { --size_; }
    void clear() { size_ = 0; }

private:
    void grow()
    {
        Vector<T> larger(static_cast<std::size_t>(capacity_) * 2);
        std::memcpy(larger.data(), data_, sizeof(T) * size_);
        overflow_.swap(larger);
        data_ = overflow_.data();
        capacity_ = static_cast<unsigned int>(overflow_.size());
    }

    T* data_;
    unsigned int size_;
    unsigned int capacity_;
    T inline_[inlineCapacity];
    Vector<T> overflow_;
};

/// Lists the direct children of one object property by an in-order walk of the trie below it
/// (smaller, equal, greater links), so that keys come in ascending order of signed bytes, a key
/// before the keys it is a prefix of. The walk does not enter the `.` and `[` separators under
/// the children, which lead to grandchildren. The object must not change while the walk is open,
/// except that `restart` begins a fresh walk after a change.
class DynamicObjectPropertyChildrenIterator {
public:
    /// `property` 0 means the root. Before the first `next` the current child is the start itself.
    DynamicObjectPropertyChildrenIterator(const DynamicObject& object, unsigned int property);
    DynamicObjectPropertyChildrenIterator(const DynamicObjectPropertyChildrenIterator&) = delete;
    DynamicObjectPropertyChildrenIterator& operator=(const DynamicObjectPropertyChildrenIterator&) = delete;

    /// Moves to the next child; `end` tells when there is none.
    void next();
    bool end() const { return current_ == 0; }
    void restart();

    unsigned int getProperty() const { return current_; }
    /// The child's key without the leading `.` of the walk. The end-of-key character that closes
    /// the walk's buffer follows it, so the key is terminated while the child is current.
    const char* getKey() const
    {
        if (key_.empty()) {
            return "";
        }
        return key_[0] == '.' ? key_.data() + 1 : key_.data();
    }
    unsigned int getKeyLength() const
    {
        if (key_.empty()) {
            return 0;
        }
        // Less the leading `.` and the end-of-key character that closes the buffer.
        const unsigned int length = key_.size() - 1;
        return key_[0] == '.' ? length - 1 : length;
    }

private:
    /// Climbs from the node on top of the stack to the next node to explore; 0 ends the walk.
    unsigned int stepUp();

    // Deep enough for the keys of most objects; a deeper walk moves to the heap.
    InlineStack<unsigned int, 32> stack_;
    InlineStack<char, 64> key_;
    const DynamicObject& object_;
    unsigned int start_;
    unsigned int startValue_;
    unsigned int current_;
};

} // namespace impl
} // namespace utils
} // namespace orv

#endif
