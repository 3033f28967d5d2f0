#ifndef ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H
#define ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H

#include <orv/utils/Common.h>

#include <cstring>

namespace orv {
namespace utils {

class DynamicObject;

namespace impl {

// The children walk reads and writes its node stack and key buffer through raw pointers kept in
// locals for the length of a step, and asks the storage for more room only when a push finds it
// full: the storage says where its entries are (`data`), how many are in use (`size`, `setSize`),
// how many fit (`capacity`), and grows, keeping the entries in use (`grow`).

/// Storage whose first entries live in the object itself, and which moves to a Vector only when
/// it outgrows them: a walk of a few levels allocates nothing.
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

    T* data() { return data_; }
    const T* data() const { return data_; }
    unsigned int size() const { return size_; }
    void setSize(unsigned int size) { size_ = size; }
    unsigned int capacity() const { return capacity_; }

    bool empty() const { return size_ == 0; }
    T& back() { return data_[size_ - 1]; }
    void push_back(const T& value)
    {
        if (size_ == capacity_) {
            grow();
        }
        data_[size_++] = value;
    }
    void pop_back() { --size_; }

    void grow()
    {
        Vector<T> larger(static_cast<std::size_t>(capacity_) * 2);
        std::memcpy(larger.data(), data_, sizeof(T) * size_);
        overflow_.swap(larger);
        data_ = overflow_.data();
        capacity_ = static_cast<unsigned int>(overflow_.size());
    }

private:
    T* data_;
    unsigned int size_;
    unsigned int capacity_;
    T inline_[inlineCapacity];
    Vector<T> overflow_;
};

/// The same over a Vector that someone else keeps, with the count in use kept beside it: the
/// Vector's own size is only the room, and grows by doubling.
template <typename T> class VectorStack {
public:
    VectorStack(Vector<T>& storage, unsigned int& size)
        : storage_(storage)
        , size_(size)
    {
    }

    T* data() { return storage_.data(); }
    unsigned int size() const { return size_; }
    void setSize(unsigned int size) { size_ = size; }
    unsigned int capacity() const { return static_cast<unsigned int>(storage_.size()); }
    void grow() { storage_.resize(storage_.size() < 8 ? 16 : storage_.size() * 2); }

private:
    Vector<T>& storage_;
    unsigned int& size_;
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
        if (key_.size() == 0) {
            return "";
        }
        return key_.data()[0] == '.' ? key_.data() + 1 : key_.data();
    }
    unsigned int getKeyLength() const
    {
        if (key_.size() == 0) {
            return 0;
        }
        // Less the leading `.` and the end-of-key character that closes the buffer.
        const unsigned int length = key_.size() - 1;
        return key_.data()[0] == '.' ? length - 1 : length;
    }

    /// The walk itself, over a node stack and key buffer that its caller keeps between steps:
    /// moves `current` from `start` (before the first step) or from the last child found to the
    /// next child, or to 0 at the end, when the stack and the buffer are emptied. At a child the
    /// stack ends with the child and its value node, and the buffer with the child's key and the
    /// end-of-key character. `startValue` is the index of the start's value node.
    template <typename NodeStack, typename KeyBuffer>
    static void advance(const DynamicObject& object, unsigned int start, unsigned int startValue, unsigned int& current,
        NodeStack& stack, KeyBuffer& key);
    /// The index of the value node of `property`; 0 when it has none.
    static unsigned int findValueIndex(const DynamicObject& object, unsigned int property);

private:
    /// The object's node blocks, read once per step of the walk: nothing changes the object within a step.
    struct Nodes;

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
