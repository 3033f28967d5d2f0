#include <orv/utils/impl/DynamicObjectPropertyChildrenIterator.h>

#include <orv/utils/DynamicObject.h>

namespace orv {
namespace utils {
namespace impl {

namespace {

bool isSeparator(signed char character)
{
    return character == '.' || character == '[';
}

/// The walk's failed assertions, out of its loops.
__attribute__((noinline, cold)) void reportWalkFailure(const char* text)
{
    ORV_FAIL(text);
}

} // namespace

DynamicObjectPropertyChildrenIterator::DynamicObjectPropertyChildrenIterator(const DynamicObject& object,
                                                                             unsigned int property)
    : object_(object), start_(property != 0 ? property : object.getRoot()), startValue_(0), current_(start_)
{
    startValue_ = findValueIndex(object_, start_);
}

void DynamicObjectPropertyChildrenIterator::restart()
{
    stack_.setSize(0);
    key_.setSize(0);
    current_ = start_;
}

void DynamicObjectPropertyChildrenIterator::next()
{
    advance(object_, start_, startValue_, current_, stack_, key_);
}

unsigned int DynamicObjectPropertyChildrenIterator::findValueIndex(const DynamicObject& object, unsigned int property)
{
    unsigned int valueIndex = 0;
    object.findValueNode(object.getNode(property), valueIndex);
    return valueIndex;
}

struct DynamicObjectPropertyChildrenIterator::Nodes {
    explicit Nodes(const DynamicObject& object)
        : object(object)
        , blocks(object.blocks_.data())
        // A block size that is not a power of two takes DynamicObject::getNode for every node.
        , count(object.blockShift_ != DynamicObject::noBlockShift ? object.blocks_.size() : 0)
        , shift(object.blockShift_ != DynamicObject::noBlockShift ? object.blockShift_ : 0)
        , mask((1u << shift) - 1)
        , nodeCount(object.blocks_.size() * object.getNodeAllocator().getBlockSize())
    {
    }

    /// What DynamicObject::getNode gives, with the block table in registers. Index 0 wraps to
    /// an offset past every block, and so goes to getNode too.
    const DynamicObject::Node* get(unsigned int index) const
    {
        const unsigned int offset = index - 1;
        const std::size_t block = offset >> shift;
        if (block < count) {
            return blocks[block] + (offset & mask);
        }
        return object.getNode(index);
    }

    const DynamicObject& object;
    DynamicObject::Node* const* blocks;
    std::size_t count;
    unsigned int shift;
    unsigned int mask;
    // No sound walk holds more nodes on its stack than the object has: links that loop (only a
    // blob from outside can hold them) are caught by this bound instead of running on.
    std::size_t nodeCount;
};

namespace {

/// A stack held in locals during a step of the walk: the entries, the count in use and the room,
/// written back to the storage at the end of the step and when it must grow.
template <typename T, typename Storage> struct Cursor {
    explicit Cursor(Storage& storage)
        : storage(storage)
        , data(storage.data())
        , size(storage.size())
        , capacity(storage.capacity())
    {
    }

    void push(T value)
    {
        if (size == capacity) {
            storage.setSize(size);
            storage.grow();
            data = storage.data();
            capacity = storage.capacity();
        }
        data[size++] = value;
    }

    void save() { storage.setSize(size); }

    Storage& storage;
    T* data;
    unsigned int size;
    unsigned int capacity;
};

} // namespace

template <typename NodeStack, typename KeyBuffer>
void DynamicObjectPropertyChildrenIterator::advance(const DynamicObject& object, unsigned int start,
                                                    unsigned int startValue, unsigned int& current,
                                                    NodeStack& nodeStack, KeyBuffer& keyBuffer)
{
    Cursor<unsigned int, NodeStack> stack(nodeStack);
    unsigned int index = stack.size == 0 ? start : stack.data[stack.size - 1];
    if (current == 0 || index == 0) {
        reportWalkFailure("unable to increment from invalid current node");
        // The walk is over: an empty stack is what tells its owner so.
        current = 0;
        nodeStack.setSize(0);
        keyBuffer.setSize(0);
        return;
    }
    Cursor<char, KeyBuffer> key(keyBuffer);
    const Nodes nodes(object);
    // From the start the walk goes down at once; from a child it first climbs back up.
    bool climb = index != start;
    // One step meets each node at most once on the way down and once on the way up.
    std::size_t moves = 0;
    for (;;) {
        if (++moves > 2 * nodes.nodeCount + 2) {
            reportWalkFailure("unable to walk the children, the node links loop");
            break;
        }
        if (climb) {
            climb = false;
            index = 0;
            // Step up: pop the node just finished; the new top is its parent.
            for (;;) {
                if (stack.size == 0) {
                    reportWalkFailure("unable to retrieve next child from empty stack");
                    break;
                }
                const unsigned int child = stack.data[--stack.size];
                if (stack.size == 0) {
                    break;
                }
                const unsigned int parentIndex = stack.data[stack.size - 1];
                const DynamicObject::Node* parent = nodes.get(parentIndex);
                if (parent == nullptr) {
                    reportWalkFailure("unable to convert current to real trie node pointer");
                    break;
                }
                if (parent->trie.less == child) {
                    if (parent->trie.equal != 0 && parent->trie.equal != startValue) {
                        // Back at the separator the walk began from, through its smaller side: other
                        // keys that merely extend the start's text lie beyond, and are not children.
                        if (!isSeparator(parent->trie.splitChar)) {
                            current = parentIndex;
                            key.push(static_cast<char>(parent->trie.splitChar));
                            index = parent->trie.equal;
                        }
                        break;
                    }
                } else if (parent->trie.equal == child) {
                    if (key.size == 0) {
                        reportWalkFailure(
                            "unable to remove one character from key although we are in an equal match case");
                    }
                    if (isSeparator(parent->trie.splitChar)) {
                        break;
                    }
                    if (key.size != 0) {
                        --key.size;
                    }
                } else if (parent->trie.greater == child) {
                    continue;
                } else {
                    reportWalkFailure(
                        "unexpected state in iteration stack - one of the children of current should be the top element");
                    break;
                }
                if (parent->trie.greater != 0) {
                    index = parent->trie.greater;
                    break;
                }
            }
            if (index == 0) {
                break;
            }
        }
        // Go down from `index`.
        // Each step down pushes a node, and each step back up that turns into an equal link
        // pushes a key character: neither can outnumber the object's nodes in a sound walk.
        if (stack.size >= nodes.nodeCount || key.size >= nodes.nodeCount) {
            reportWalkFailure("unable to walk the children, the node links loop");
            break;
        }
        stack.push(index);
        const DynamicObject::Node* node = nodes.get(index);
        if (node == nullptr) {
            reportWalkFailure("unable to convert current to real trie node pointer");
            break;
        }
        if (node->isValueNode()) {
            // current holds the end-of-key node whose equal link led here, just below on the stack.
            stack.save();
            key.save();
            return;
        }
        if (node->trie.less != 0) {
            index = node->trie.less;
        } else if (node->trie.equal == 0 || node->trie.equal == startValue ||
                   (key.size != 0 && isSeparator(node->trie.splitChar))) {
            // Not below: the start's own value, or the separator of a child's own children.
            index = node->trie.greater;
            climb = index == 0;
        } else {
            current = index;
            key.push(static_cast<char>(node->trie.splitChar));
            index = node->trie.equal;
        }
    }
    current = 0;
    nodeStack.setSize(0);
    keyBuffer.setSize(0);
}

// The walk's own storage, and the storage a DynamicObjectIterator keeps for a walk of direct children.
template void DynamicObjectPropertyChildrenIterator::advance(const DynamicObject&, unsigned int, unsigned int,
                                                             unsigned int&, InlineStack<unsigned int, 32>&,
                                                             InlineStack<char, 64>&);
template void DynamicObjectPropertyChildrenIterator::advance(const DynamicObject&, unsigned int, unsigned int,
                                                             unsigned int&, VectorStack<unsigned int>&,
                                                             VectorStack<char>&);

} // namespace impl
} // namespace utils
} // namespace orv
