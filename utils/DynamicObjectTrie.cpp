// The node store and the trie walks under DynamicObject. Every comparison of a key character with
// a node's split character is between signed 8-bit values, and the end of a key compares as 0.

#include <orv/utils/DynamicObject.h>

#include <orv/utils/impl/DynamicObjectHelpers.h>

#include <algorithm>
#include <cstring>

namespace orv {
namespace utils {

DynamicObject::Node* DynamicObject::allocateNode(char splitChar, unsigned int& index)
{
    const unsigned int blockSize = nodeAllocator_->blockSize_;
    Node* node = nullptr;
    if (firstFreeNode_ != 0) {
        index = firstFreeNode_;
        node = getNode(index);
        if (node == nullptr) {
            index = 0;
            return nullptr;
        }
        firstFreeNode_ = node->free.next;
    } else {
        // lastBlockUsed_ may have wrapped below 0 on a release (see deallocateNode): it then reads
        // as above the block size and a fresh block is taken.
        if (lastBlockUsed_ >= blockSize) {
            Node* block = nodeAllocator_->allocate();
            if (block == nullptr) {
                index = 0;
                return nullptr;
            }
            blocks_.push_back(block);
            lastBlockUsed_ = 0;
        }
        const unsigned int slot = lastBlockUsed_++;
        index = static_cast<unsigned int>(blocks_.size() - 1) * blockSize + slot + 1;
        node = blocks_.back() + slot;
    }
    std::memset(node, 0, sizeof(Node));
    node->trie.splitChar = static_cast<signed char>(splitChar);
    return node;
}

DynamicObject::Node* DynamicObject::allocateValueNode(unsigned int& index)
{
    Node* node = allocateNode(0, index);
    if (node != nullptr) {
        node->value.isValue = 1;
        node->value.type = type::null;
    }
    return node;
}

void DynamicObject::deallocateNode(Node* node, unsigned int index)
{
    const unsigned int lastIndex =
        static_cast<unsigned int>(blocks_.size() - 1) * nodeAllocator_->blockSize_ + lastBlockUsed_;
    if (index == lastIndex) {
        // The most recent slot of the bump allocation goes back to it. Freeing the last slot of the
        // previous block while the last block is empty wraps the count; the next allocation then
        // starts a new block.
        --lastBlockUsed_;
    } else {
        node->free.next = firstFreeNode_;
        firstFreeNode_ = index;
    }
}

DynamicObject::Node* DynamicObject::findNode(unsigned int start, const char* key, unsigned int length,
                                             bool toProperty, unsigned int& index) const
{
    // Every lookup runs this loop, one node per step: it keeps the cursor in a register, reads the
    // block table once, and picks the next link by its offset in the node rather than by a branch
    // (greater at byte 0, equal at 4, less at 8).
    unsigned int current = start;
    unsigned int position = 0;
    Node* const* const blocks = blocks_.data();
    const std::size_t blockCount = blocks_.size();
    const unsigned int shift = blockShift_;
    const unsigned int mask = shift != noBlockShift ? (1u << shift) - 1 : 0;
    while (current != 0 && position < length) {
        const Node* node;
        const unsigned int offset = current - 1;
        if (shift != noBlockShift && (offset >> shift) < blockCount) {
            node = blocks[offset >> shift] + (offset & mask);
        } else {
            node = getNode(current);
            if (node == nullptr) {
                current = 0;
                break;
            }
        }
        if (node->isValueNode()) {
            ORV_FAIL("unclean state during trie search - detected leaf node");
            // The hook returned: a leaf has no links to follow, and the key is not there.
            current = 0;
            break;
        }
        const signed char c = static_cast<signed char>(key[position]);
        const signed char split = node->trie.splitChar;
        const bool equal = c == split;
        if (equal && position + 1 == length && toProperty) {
            // The last character matched: the walk stays on its node.
            ++position;
            break;
        }
        const unsigned int linkOffset = c < split ? 8u : (equal ? 4u : 0u);
        std::memcpy(&current, node->bytes + linkOffset, sizeof(current));
        position += equal ? 1 : 0;
    }
    index = current;
    if (index != 0 && toProperty) {
        const Node* node = getNode(index);
        if (node != nullptr && node->trie.splitChar != 0) {
            // Down the level after the key: its end-of-key node ends the chain of smaller characters.
            index = node->trie.equal;
            while (index != 0) {
                node = getNode(index);
                if (node == nullptr) {
                    index = 0;
                } else if (node->trie.splitChar == 0) {
                    break;
                } else {
                    index = node->trie.less;
                }
            }
        }
    }
    return getNode(index);
}

DynamicObject::Node* DynamicObject::findValueNode(Node* node, unsigned int& valueIndex) const
{
    valueIndex = 0;
    if (node == nullptr || !node->isEndOfKey()) {
        return nullptr;
    }
    Node* value = getNode(node->trie.equal);
    if (value == nullptr || !value->isValueNode()) {
        return nullptr;
    }
    valueIndex = node->trie.equal;
    return value;
}

DynamicObject::Node* DynamicObject::findValueNode(unsigned int property) const
{
    unsigned int valueIndex;
    return findValueNode(getNode(property), valueIndex);
}

DynamicObject::Node* DynamicObject::findValueNode(unsigned int start, const char* key, unsigned int length,
                                                  unsigned int& property, unsigned int& valueIndex) const
{
    Node* value = findValueNode(findNode(start, key, length, true, property), valueIndex);
    if (value == nullptr) {
        property = 0;
        valueIndex = 0;
    }
    return value;
}

DynamicObject::Node* DynamicObject::addProperty(unsigned int start, const char* key, unsigned int length,
                                                bool& added, unsigned int& property, unsigned int& valueIndex)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeAddProperty(); });
    added = false;
    property = 0;
    valueIndex = 0;

    // Blocks never move, so a link may point into a node while other nodes are allocated.
    unsigned int startLink = start;
    unsigned int* link = &startLink;
    unsigned int position = 0;
    while (position < length && *link != 0) {
        property = *link;
        Node* node = getNode(*link);
        if (node == nullptr || node->isValueNode()) {
            return nullptr;
        }
        const signed char c = static_cast<signed char>(key[position]);
        if (c == node->trie.splitChar) {
            link = &node->trie.equal;
            ++position;
        } else if (c < node->trie.splitChar) {
            link = &node->trie.less;
        } else {
            link = &node->trie.greater;
        }
    }
    for (; position < length; ++position) {
        unsigned int index;
        Node* node = allocateNode(key[position], index);
        if (node == nullptr) {
            return nullptr;
        }
        *link = index;
        link = &node->trie.equal;
    }
    // The end-of-key node sits at the bottom of the chain of smaller characters of its level,
    // whatever that chain holds: nothing is ever rebalanced.
    while (*link != 0) {
        Node* node = getNode(*link);
        if (node == nullptr || node->isValueNode()) {
            return nullptr;
        }
        if (node->trie.splitChar == 0) {
            break;
        }
        link = &node->trie.less;
    }
    if (*link == 0) {
        unsigned int index;
        if (allocateNode(0, index) == nullptr) {
            return nullptr;
        }
        *link = index;
    }
    property = *link;
    Node* endOfKey = getNode(property);
    Node* value = nullptr;
    if (endOfKey->trie.equal == 0) {
        value = allocateValueNode(valueIndex);
        if (value == nullptr) {
            return nullptr;
        }
        endOfKey->trie.equal = valueIndex;
        added = true;
    } else {
        valueIndex = endOfKey->trie.equal;
        value = getNode(valueIndex);
        ORV_CHECK(value != nullptr && value->isValueNode(), "Sanity check, that this is a valid node.");
        // The hook returned: a property without a value node cannot be used.
        if (value == nullptr || !value->isValueNode()) {
            return nullptr;
        }
    }
    notify([key, length, property](AbstractDynamicObjectListener& listener) {
        listener.afterAddProperty(key, length, property);
    });
    return value;
}

bool DynamicObject::eraseProperty(unsigned int* link, const char* key, unsigned int length, bool& removed)
{
    Node* node = getNode(*link);
    if (node == nullptr) {
        return false;
    }
    if (node->isValueNode()) {
        ORV_CHECK(length == 0, "Value node reached before the full exploration of the key.");
        deallocateNode(node, *link);
        *link = 0;
        removed = true;
        return true;
    }
    // Character 0 past the end of the key finds the end-of-key node. It does not find one that was
    // placed under a negative character, which lies on a smaller link: that property stays.
    const signed char c = length != 0 ? static_cast<signed char>(key[0]) : 0;
    bool emptied;
    if (c < node->trie.splitChar) {
        emptied = eraseProperty(&node->trie.less, key, length, removed);
    } else if (c == node->trie.splitChar) {
        emptied = length != 0 ? eraseProperty(&node->trie.equal, key + 1, length - 1, removed)
                              : eraseProperty(&node->trie.equal, key, 0, removed);
    } else {
        emptied = eraseProperty(&node->trie.greater, key, length, removed);
    }
    if (emptied && node->trie.less == 0 && node->trie.equal == 0 && node->trie.greater == 0) {
        deallocateNode(node, *link);
        *link = 0;
        return true;
    }
    return false;
}

bool DynamicObject::eraseProperty(unsigned int property, const char* key, unsigned int length)
{
    unsigned int link = property;
    bool removed = false;
    eraseProperty(&link, key, length, removed);
    return removed;
}

void DynamicObject::addRootProperty()
{
    // A first node with character 7 keeps index 1, so that the root property has handle 2; it is
    // reached by nothing afterwards.
    unsigned int first = 0;
    Node* node = allocateNode(7, first);
    ORV_CHECK(node != nullptr, "Unable to add the root p node.");
    unsigned int split = 0;
    Node* splitNode = allocateNode(0, split);
    ORV_CHECK(splitNode != nullptr, "Unable to add the root split node.");
    if (node == nullptr || splitNode == nullptr) {
        root_ = 0;
        return;
    }
    node->trie.equal = split;
    root_ = split;
    unsigned int valueIndex = 0;
    if (allocateValueNode(valueIndex) != nullptr) {
        splitNode->trie.equal = valueIndex;
    }
}

void DynamicObject::doClear()
{
    for (Node* block : blocks_) {
        nodeAllocator_->deallocate(block);
    }
    blocks_.clear();
    firstFreeNode_ = 0;
    lastBlockUsed_ = nodeAllocator_->blockSize_;
}

void DynamicObject::doMemoryCopy(const DynamicObject& other)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeCopy(); });
    const std::size_t blockBytes = sizeof(Node) * nodeAllocator_->blockSize_;
    blocks_.reserve(other.blocks_.size());
    for (const Node* source : other.blocks_) {
        Node* block = nodeAllocator_->allocate();
        if (block == nullptr) {
            break;
        }
        blocks_.push_back(block);
        std::memcpy(block, source, blockBytes);
    }
    // Nodes free in the source are not on this object's free list: a copy loses them, and keeps
    // every index and handle of the source.
    lastBlockUsed_ = other.lastBlockUsed_;
    root_ = other.root_;
    notify([](AbstractDynamicObjectListener& listener) { listener.afterCopy(); });
}

void DynamicObject::doCopyAcrossBlockSizes(const DynamicObject& other)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeCopy(); });
    const std::size_t blockSize = nodeAllocator_->blockSize_;
    const std::size_t sourceBlockSize = other.nodeAllocator_->blockSize_;
    const std::size_t nodeCount = other.blocks_.size() * sourceBlockSize;
    // Nodes go over in index order, so that indices keep naming the same nodes.
    std::size_t copied = 0;
    while (copied < nodeCount) {
        Node* block = nodeAllocator_->allocate();
        if (block == nullptr) {
            break;
        }
        blocks_.push_back(block);
        std::size_t filled = 0;
        while (filled < blockSize && copied < nodeCount) {
            const std::size_t sourceSlot = copied % sourceBlockSize;
            const std::size_t run = std::min(blockSize - filled, std::min(sourceBlockSize - sourceSlot,
                                                                          nodeCount - copied));
            std::memcpy(block + filled, other.blocks_[copied / sourceBlockSize] + sourceSlot, run * sizeof(Node));
            filled += run;
            copied += run;
        }
    }
    // Taken over as it stands, although it now counts slots against another block size.
    lastBlockUsed_ = other.lastBlockUsed_;
    root_ = other.root_;
    notify([](AbstractDynamicObjectListener& listener) { listener.afterCopy(); });
}

} // namespace utils
} // namespace orv
