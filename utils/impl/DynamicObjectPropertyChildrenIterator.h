#ifndef ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H
#define ORV_UTILS_IMPL_DYNAMICOBJECTPROPERTYCHILDRENITERATOR_H

#include <orv/utils/Common.h>
#include <orv/utils/DynamicObject.h>

#include <cstddef>
#include <cstring>

namespace orv {
namespace utils {
namespace impl {

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
    unsigned int size() const { return size_; }
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
    using Node = DynamicObject::Node;

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
    const char* getKey() const { return keyOf(storage_.stacks.key, storage_.stacks.keyLength); }
    unsigned int getKeyLength() const { return keyLengthOf(storage_.stacks.key, storage_.stacks.keyLength); }

    /// The key of a child from the `length` characters the walk pushed for it: without the `.`
    /// that leads from a property to its children, and (for the length) without the end-of-key
    /// character that closes it.
    static const char* keyOf(const char* key, unsigned int length)
    {
        if (length == 0) {
            return "";
        }
        return key[0] == '.' ? key + 1 : key;
    }
    static unsigned int keyLengthOf(const char* key, unsigned int length)
    {
        // Only broken nodes give a child with no key character at all.
        const unsigned int overhead = 1 + (length != 0 && key[0] == '.' ? 1 : 0);
        return length > overhead ? length - overhead : 0;
    }

    // The walk itself, for the iterators and the tree visit, which keep its stacks between steps.

    /// The object's node blocks, read once: nothing changes the object while a walk is open.
    struct Nodes {
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

        const DynamicObject& object;
        DynamicObject::Node* const* blocks;
        std::size_t count;
        unsigned int shift;
        unsigned int mask;
        // No sound walk holds more nodes on its stack, or more key characters, than the object
        // has nodes: links that loop (only a blob from outside can hold them) are caught by this
        // bound instead of running on.
        std::size_t nodeCount;
    };

    /// How a node on the walk's stack was reached from the entry below it: a step back up needs
    /// no look at the parent to know which of its links it returns from, and climbs back over a
    /// run of greater links without reading their nodes.
    enum Link : unsigned char { fromStart = 0, fromLess = 1, fromEqual = 2, fromGreater = 3 };

    /// The walk's stacks, read and written through raw pointers: the nodes down from the start,
    /// the link each was reached by, and the characters of the equal links taken (the child's key).
    struct Stacks {
        unsigned int* nodes;
        unsigned char* links;
        char* key;
        unsigned int depth;
        /// Entries of `nodes` and `links` alike.
        unsigned int room;
        unsigned int keyLength;
        unsigned int keyRoom;
    };

    /// One walk: the object property it lists, the index of that property's value node, and where
    /// its entries begin on the stacks. The walks of nested objects share one set of stacks, each
    /// above the one that found it.
    struct Start {
        unsigned int property;
        unsigned int value;
        unsigned int depth;
        unsigned int keyLength;
    };

    /// Moves `current` from the start (before the first step) or from the last child found to
    /// the next child, and gives the child's value node; at the end, null, with `current` 0 and
    /// the stacks back where the walk began. At a child the stacks end with the child's end-of-key
    /// node and its value node, and with the child's key and the end-of-key character. `storage`
    /// grows the stacks (`growNodes`, `growKey`) when they are full.
    template <typename Growth>
    static const Node* step(const Nodes& nodes, const Start& start, unsigned int& current, Stacks& stacks,
                            Growth& storage);

    /// The index of the value node of `property`; 0 when it has none.
    static unsigned int findValueIndex(const DynamicObject& object, unsigned int property);

    /// The end-of-key node of the child a step found: the entry below its value node, on the
    /// walk's own part of the stacks; 0 when only broken nodes led there.
    static unsigned int childOf(const unsigned int* nodes, unsigned int depth, unsigned int startDepth)
    {
        return depth - startDepth >= 2 ? nodes[depth - 2] : 0;
    }

    /// Grows the walk's stacks into three Vectors, doubling the room and keeping the entries in
    /// use. The stacks may already live in these Vectors, or elsewhere (the inline room of
    /// `Storage`).
    struct VectorGrowth {
        void growNodes(Stacks& grown)
        {
            const std::size_t room = grown.room < 8 ? 16 : std::size_t(grown.room) * 2;
            grown.nodes = moveInto(nodes, grown.nodes, grown.depth, room);
            grown.links = moveInto(links, grown.links, grown.depth, room);
            grown.room = static_cast<unsigned int>(room);
        }
        void growKey(Stacks& grown)
        {
            const std::size_t room = grown.keyRoom < 8 ? 16 : std::size_t(grown.keyRoom) * 2;
            grown.key = moveInto(key, grown.key, grown.keyLength, room);
            grown.keyRoom = static_cast<unsigned int>(room);
        }
        template <typename T> static T* moveInto(Vector<T>& target, const T* entries, unsigned int used, std::size_t room)
        {
            Vector<T> larger(room);
            if (used != 0) {
                std::memcpy(larger.data(), entries, sizeof(T) * used);
            }
            target.swap(larger);
            return target.data();
        }

        Vector<unsigned int>& nodes;
        Vector<unsigned char>& links;
        Vector<char>& key;
    };

    /// Stacks with room for a few levels in the object itself, moving to the heap beyond.
    template <unsigned int inlineNodes, unsigned int inlineKey> class Storage {
    public:
        Storage()
            : stacks{nodes_, links_, key_, 0, inlineNodes, 0, inlineKey}
        {
        }
        Storage(const Storage&) = delete;
        Storage& operator=(const Storage&) = delete;

        void growNodes(Stacks& grown) { VectorGrowth{nodesOverflow_, linksOverflow_, keyOverflow_}.growNodes(grown); }
        void growKey(Stacks& grown) { VectorGrowth{nodesOverflow_, linksOverflow_, keyOverflow_}.growKey(grown); }

        Stacks stacks;

    private:
        unsigned int nodes_[inlineNodes];
        unsigned char links_[inlineNodes];
        char key_[inlineKey];
        Vector<unsigned int> nodesOverflow_;
        Vector<unsigned char> linksOverflow_;
        Vector<char> keyOverflow_;
    };

private:
    /// The walk's failed assertions, out of its loops.
    static void reportWalkFailure(const char* text);

    static bool isSeparator(signed char character) { return character == '.' || character == '['; }

    // Deep enough for the keys of most objects; a deeper walk moves to the heap.
    Storage<32, 64> storage_;
    const DynamicObject& object_;
    Start start_;
    unsigned int current_;
};

template <typename Growth>
inline const DynamicObjectPropertyChildrenIterator::Node* DynamicObjectPropertyChildrenIterator::step(
    const Nodes& nodes, const Start& start, unsigned int& current, Stacks& stacks, Growth& storage)
{
    // The stacks and the block table are read into locals for the step and the counts written back
    // at its end: the key and link stacks are bytes, and a store through them could otherwise be a
    // store to any field, which would have to be read again after each.
    unsigned int* nodeStack = stacks.nodes;
    unsigned char* links = stacks.links;
    char* key = stacks.key;
    unsigned int depth = stacks.depth;
    unsigned int room = stacks.room;
    unsigned int keyLength = stacks.keyLength;
    unsigned int keyRoom = stacks.keyRoom;
    DynamicObject::Node* const* const blocks = nodes.blocks;
    const std::size_t blockCount = nodes.count;
    const unsigned int shift = nodes.shift;
    const unsigned int mask = nodes.mask;
    const unsigned int startProperty = start.property;
    const unsigned int startValue = start.value;
    const unsigned int startDepth = start.depth;
    const unsigned int startKeyLength = start.keyLength;
    // What DynamicObject::getNode gives. Index 0 wraps to an offset past every block, and so goes
    // to getNode too, which gives null.
    const auto get = [&](unsigned int index) -> const Node* {
        const unsigned int offset = index - 1;
        const std::size_t block = offset >> shift;
        if (__builtin_expect(block < blockCount, 1)) {
            return blocks[block] + (offset & mask);
        }
        return nodes.object.getNode(index);
    };
    const auto pushKey = [&](signed char character) {
        if (__builtin_expect(keyLength == keyRoom, 0)) {
            stacks.keyLength = keyLength;
            storage.growKey(stacks);
            key = stacks.key;
            keyRoom = stacks.keyRoom;
        }
        key[keyLength++] = static_cast<char>(character);
    };

    unsigned int index = depth == startDepth ? startProperty : nodeStack[depth - 1];
    if (current == 0 || index == 0) {
        reportWalkFailure("unable to increment from invalid current node");
        // The walk is over: stacks back at its start are what tell its owner so.
        current = 0;
        stacks.depth = startDepth;
        stacks.keyLength = startKeyLength;
        return nullptr;
    }
    // From the start the walk goes down at once; from a child it first climbs back up.
    bool climb = index != startProperty;
    unsigned char link = fromStart;
    // The entries of this walk end before these; the bounds catch links that loop.
    const std::size_t depthBound = startDepth + nodes.nodeCount;
    const std::size_t keyBound = startKeyLength + nodes.nodeCount;
    // A sound step goes down to each node, and back up from it, at most once.
    const std::size_t roundBound = 2 * nodes.nodeCount + 2;
    std::size_t rounds = 0;
    for (;;) {
        if (++rounds > roundBound) {
            reportWalkFailure("unable to walk the children, the node links loop");
            break;
        }
        if (climb) {
            // Step up: pop the node just finished, and turn at the first parent that has more to give.
            index = 0;
            for (;;) {
                if (depth == startDepth) {
                    reportWalkFailure("unable to retrieve next child from empty stack");
                    break;
                }
                const unsigned char from = links[--depth];
                if (depth == startDepth) {
                    // The start itself is finished: the walk is over.
                    break;
                }
                if (from == fromGreater) {
                    // Its parent is finished too.
                    continue;
                }
                const unsigned int parentIndex = nodeStack[depth - 1];
                const Node* parent = get(parentIndex);
                if (parent == nullptr) {
                    reportWalkFailure("unable to convert current to real trie node pointer");
                    break;
                }
                const signed char split = parent->trie.splitChar;
                if (from == fromLess) {
                    const unsigned int equal = parent->trie.equal;
                    if (equal != 0 && equal != startValue) {
                        // Back at the separator the walk began from, through its smaller side: other
                        // keys that merely extend the start's text lie beyond, and are not children.
                        if (!isSeparator(split)) {
                            current = parentIndex;
                            pushKey(split);
                            index = equal;
                            link = fromEqual;
                        }
                        break;
                    }
                } else {
                    if (keyLength == startKeyLength) {
                        reportWalkFailure(
                            "unable to remove one character from key although we are in an equal match case");
                    }
                    if (isSeparator(split)) {
                        break;
                    }
                    if (keyLength != startKeyLength) {
                        --keyLength;
                    }
                }
                if (parent->trie.greater != 0) {
                    index = parent->trie.greater;
                    link = fromGreater;
                    break;
                }
            }
            if (index == 0) {
                break;
            }
        }
        climb = true;
        // Go down from `index`: to the smaller side first, then into the key, then past it. The
        // loop returns at a child, and leaves to climb back up or, failing, to end the walk.
        bool failed = false;
        for (;;) {
            if (depth >= depthBound || keyLength >= keyBound) {
                reportWalkFailure("unable to walk the children, the node links loop");
                failed = true;
                break;
            }
            const Node* node = get(index);
            if (node == nullptr) {
                reportWalkFailure("unable to convert current to real trie node pointer");
                failed = true;
                break;
            }
            if (__builtin_expect(depth == room, 0)) {
                stacks.depth = depth;
                storage.growNodes(stacks);
                nodeStack = stacks.nodes;
                links = stacks.links;
                room = stacks.room;
            }
            nodeStack[depth] = index;
            links[depth] = link;
            ++depth;
            if (node->isValueNode()) {
                // `current` holds the end-of-key node whose equal link led here, just below on the stack.
                stacks.depth = depth;
                stacks.keyLength = keyLength;
                return node;
            }
            const unsigned int less = node->trie.less;
            const unsigned int equal = node->trie.equal;
            const signed char split = node->trie.splitChar;
            if (less != 0) {
                index = less;
                link = fromLess;
            } else if (equal == 0 || equal == startValue || (keyLength != startKeyLength && isSeparator(split))) {
                // Not below: the start's own value, or the separator of a child's own children.
                index = node->trie.greater;
                link = fromGreater;
                if (index == 0) {
                    break;
                }
            } else {
                current = index;
                pushKey(split);
                index = equal;
                link = fromEqual;
            }
        }
        if (failed) {
            break;
        }
    }
    current = 0;
    stacks.depth = startDepth;
    stacks.keyLength = startKeyLength;
    return nullptr;
}

} // namespace impl
} // namespace utils
} // namespace orv

#endif
