// The node store and the trie walks under DynamicObject. Every comparison of a key character with
// a node's split character is between signed 8-bit values, and the end of a key compares as 0.

#include <orv/utils/DynamicObject.h>

#include <orv/utils/impl/DynamicObjectHelpers.h>
#include <orv/utils/impl/DynamicObjectIndex.h>

#include <algorithm>
#include <cstring>

namespace orv {
namespace utils {

DynamicObject::Node* DynamicObject::reportBlockOutOfRange()
{
    ORV_FAIL("Block index out of range");
    return nullptr;
}

DynamicObject::Node* DynamicObject::allocateNodeFromStore(char splitChar, unsigned int& index)
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

void DynamicObject::deallocateNode(Node* node, unsigned int index)
{
    ++shapeStamp_;
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
    if (index_ != nullptr) {
        index_->unmark(index);
    }
}

DynamicObject::Node* DynamicObject::findNode(unsigned int start, const char* key, unsigned int length,
                                             bool toProperty, unsigned int& index) const
{
    // Every lookup runs this loop, one node per step: it keeps the cursor in a register, reads the
    // block table once, and picks the next link by its offset in the node rather than by a branch
    // (greater at byte 0, equal at 4, less at 8). Where a piece of the key begins (at the start,
    // or behind a separator) on a level that the side index covers, one probe may take the walk
    // to the end of the piece at once; a miss goes on node by node.
    unsigned int current = start;
    unsigned int position = 0;
    Node* const* const blocks = blocks_.data();
    const std::size_t blockCount = blocks_.size();
    const unsigned int shift = blockShift_;
    const unsigned int mask = shift != noBlockShift ? (1u << shift) - 1 : 0;
    const impl::DynamicObjectIndex* const sideIndex = toProperty ? index_ : nullptr;
    bool atPiece = true;
    bool pastLastPiece = false;
    // A sound search meets no node twice; more steps than nodes come from links that loop.
    const std::size_t nodeCount = blocks_.size() * nodeAllocator_->getBlockSize();
    std::size_t steps = 0;
    while (current != 0 && position < length) {
        if (++steps > nodeCount && !checkNesting(steps, 0)) {
            current = 0;
            break;
        }
        if (sideIndex != nullptr && atPiece && sideIndex->isIndexed(current)) {
            unsigned int end = position;
            while (end < length && key[end] != '.' && key[end] != '[') {
                ++end;
            }
            const unsigned int target = sideIndex->find(current, key + position, end - position);
            if (target != 0) {
                current = target;
                position = end;
                pastLastPiece = position == length;
                continue;
            }
        }
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
        atPiece = equal && (c == '.' || c == '[');
    }
    index = current;
    if (index != 0 && toProperty) {
        const Node* node = getNode(index);
        // A piece taken from the side index left the walk behind the last character already.
        if (pastLastPiece || (node != nullptr && node->trie.splitChar != 0)) {
            // Down the level after the key: its end-of-key node ends the chain of smaller characters.
            if (!pastLastPiece) {
                index = node->trie.equal;
            }
            while (index != 0) {
                node = ++steps <= nodeCount || checkNesting(steps, 0) ? getNode(index) : nullptr;
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

// Once per insertion, in the middle of the walk: kept inline there.
inline unsigned int DynamicObject::followTrail(const InsertionTrail& trail, const char* key, unsigned int length,
                                       unsigned int& startLink, unsigned int*& link, unsigned int*& firstLink,
                                       unsigned int& bound, signed char& boundCharacter)
{
    const unsigned int shared = length < trail.length ? length : trail.length;
    unsigned int position = 0;
    while (position < shared && key[position] == trail.text[position]) {
        ++position;
    }
    // The recorded nodes of the shared characters are this key's too.
    if (position != 0) {
        link = &trail.matchedNode[position - 1]->trie.equal;
        firstLink = &trail.matchedNode[0]->trie.equal;
    } else {
        link = &startLink;
    }
    if (position < shared) {
        // A character above the recorded one, and below every node that the recorded one went
        // below, follows the recorded way to the matched node and then goes above it. Anything else
        // walks its level from the top.
        const signed char c = static_cast<signed char>(key[position]);
        const signed char recorded = static_cast<signed char>(trail.text[position]);
        if (c > recorded && (trail.bound[position] == 0 || c < trail.boundCharacter[position])) {
            link = &trail.matchedNode[position]->trie.greater;
            bound = trail.bound[position];
            boundCharacter = trail.boundCharacter[position];
        }
    }
    return position;
}

// Every insertion of a new key takes its nodes here: kept inline in its callers.
__attribute__((always_inline)) inline DynamicObject::Node* DynamicObject::takeRun(unsigned int length,
                                                                                  unsigned int& first)
{
    const unsigned int blockSize = nodeAllocator_->blockSize_;
    if (firstFreeNode_ != 0 || lastBlockUsed_ >= blockSize || blockSize - lastBlockUsed_ < length) {
        return nullptr;
    }
    const unsigned int slot = lastBlockUsed_;
    lastBlockUsed_ += length;
    first = static_cast<unsigned int>(blocks_.size() - 1) * blockSize + slot + 1;
    Node* run = blocks_.back() + slot;
    // A run is a handful of nodes: one store each clears them, where a call would cost more.
    for (unsigned int i = 0; i < length; ++i) {
        std::memset(static_cast<void*>(run + i), 0, sizeof(Node));
    }
    return run;
}

__attribute__((always_inline)) inline DynamicObject::Node* DynamicObject::fillKeyRun(
    Node* run, unsigned int first, unsigned int* link, const char* key, unsigned int position, unsigned int length,
    InsertionTrail* trail, unsigned int recorded, unsigned int bound, signed char boundCharacter,
    unsigned int*& firstLink, unsigned int& endOfKeyIndex)
{
    const unsigned int runLength = length - position + 2;
    *link = first;
    for (unsigned int i = 0; position < length; ++i, ++position) {
        run[i].trie.splitChar = static_cast<signed char>(key[position]);
        run[i].trie.equal = first + i + 1;
        if (position == 0) {
            firstLink = &run[i].trie.equal;
        }
        if (position < recorded) {
            trail->recordStep(position, first + i, run + i, bound, boundCharacter);
            bound = 0;
        }
    }
    Node* endOfKey = run + runLength - 2;
    endOfKeyIndex = first + runLength - 2;
    endOfKey->trie.equal = endOfKeyIndex + 1;
    run[runLength - 1].value.isValue = 1;
    run[runLength - 1].value.type = type::null;
    return endOfKey;
}

__attribute__((always_inline)) inline DynamicObject::Node* DynamicObject::makeKeyRun(unsigned int* link, const char* key, unsigned int position,
                                               unsigned int length, InsertionTrail* trail, unsigned int recorded,
                                               unsigned int bound, signed char boundCharacter, unsigned int*& firstLink,
                                               unsigned int& endOfKeyIndex)
{
    unsigned int first = 0;
    Node* run = takeRun(length - position + 2, first);
    return run == nullptr ? nullptr
                          : fillKeyRun(run, first, link, key, position, length, trail, recorded, bound, boundCharacter,
                                       firstLink, endOfKeyIndex);
}

// Kept inline in both of its callers below.
__attribute__((always_inline)) inline unsigned int DynamicObject::addAlongTrail(const char* key, unsigned int length,
                                                                                InsertionTrail& trail,
                                                                                unsigned int& firstLevel)
{
    // The case of a document read in order: nothing listens, and the key leaves the recorded nodes
    // at a link that is still empty, so that all the rest is new and fits as one run. Anything else
    // is left to addProperty, with nothing changed here.
    if (!listeners_.empty() || trail.start == 0 || trail.stamp != shapeStamp_) {
        return 0;
    }
    unsigned int startLink = trail.start;
    unsigned int* link = &startLink;
    unsigned int* firstLink = &startLink;
    unsigned int bound = 0;
    signed char boundCharacter = 0;
    const unsigned int kept = followTrail(trail, key, length, startLink, link, firstLink, bound, boundCharacter);
    if (kept >= length || *link != 0) {
        return 0;
    }
    const unsigned int recorded = length < InsertionTrail::depth ? length : InsertionTrail::depth;
    unsigned int endOfKeyIndex;
    Node* endOfKey =
        makeKeyRun(link, key, kept, length, &trail, recorded, bound, boundCharacter, firstLink, endOfKeyIndex);
    if (endOfKey == nullptr) {
        return 0;
    }
    trail.recordText(key, kept, recorded);
    trail.madeValue = endOfKey + 1;
    firstLevel = *firstLink;
    return endOfKeyIndex;
}

unsigned int DynamicObject::addFirstChildAlong(unsigned int parent, const char* key, unsigned int length,
                                               InsertionTrail& trail, Node*& parentValue)
{
    // The case of a new object read from a document: nothing follows the parent's key on its level
    // yet, so that its `.` and the whole child, value included, are new and fit as one run.
    Node* const node = getNode(parent);
    parentValue = findValueNode(parent);
    if (!listeners_.empty() || parent == root_ || parentValue == nullptr || node->trie.greater != 0
        || (parentValue->value.type != type::null && parentValue->value.type != type::object)) {
        return 0;
    }
    // The `.`, the child's characters, the end of its key and its value.
    unsigned int separator = 0;
    Node* const run = takeRun(length + 3, separator);
    if (run == nullptr) {
        return 0;
    }
    run[0].trie.splitChar = '.';
    node->trie.greater = separator;
    const unsigned int recorded = length < InsertionTrail::depth ? length : InsertionTrail::depth;
    unsigned int* firstLink = &run[0].trie.equal;
    unsigned int endOfKeyIndex = 0;
    Node* const endOfKey = fillKeyRun(run + 1, separator + 1, &run[0].trie.equal, key, 0, length, &trail, recorded, 0,
                                      0, firstLink, endOfKeyIndex);
    trail.recordText(key, 0, recorded);
    trail.start = separator + 1;
    trail.stamp = shapeStamp_;
    trail.setOwner(parent, parentValue);
    trail.madeValue = endOfKey + 1;
    return endOfKeyIndex;
}

unsigned int DynamicObject::addChildAlong(unsigned int parent, const char* key, unsigned int length,
                                          InsertionTrail& trail)
{
    unsigned int firstLevel;
    Node* parentValue = nullptr;
    unsigned int property = 0;
    if (trail.owner == parent) {
        property = addAlongTrail(key, length, trail, firstLevel);
        // The parent's value node stays where it is while the parent lives, and the trail's stamp
        // says that no node was released since it was recorded.
        if (property != 0 && trail.ownerValue == nullptr) {
            trail.ownerValue = findValueNodeAsserts(parent);
        }
        parentValue = trail.ownerValue;
    } else {
        property = addFirstChildAlong(parent, key, length, trail, parentValue);
    }
    if (property == 0 || parentValue == nullptr) {
        return property;
    }
    // As doAddChild counts a child that it made, and gives the level its shortcut.
    const unsigned long long count = parentValue->value.type == type::object ? parentValue->getPayload() : 0;
    parentValue->setPayload(count + 1);
    parentValue->value.type = type::object;
    indexChild(trail.start, key, length, property, count + 1);
    return property;
}

unsigned int DynamicObject::addElementAlong(unsigned int array, unsigned int index, const char* key,
                                            unsigned int length, InsertionTrail& trail)
{
    unsigned int elements;
    const unsigned int element = trail.start == array ? addAlongTrail(key, length, trail, elements) : 0;
    if (element != 0) {
        // As addElement gives the element its shortcut: its piece is its index and closing bracket.
        indexChild(elements, key + 1, length - 1, element, index + 1);
    }
    return element;
}

unsigned int DynamicObject::appendNextElementAlong(unsigned int array, InsertionTrail& trail)
{
    const unsigned int index = trail.nextElement;
    if (index == 0 || trail.start != array || trail.stamp != shapeStamp_ || !listeners_.empty()) {
        return 0;
    }
    // No node was released since the trail was recorded, so the array's value node is still its own.
    Node* const arrayValue = trail.ownerValue;
    if (arrayValue->value.type != type::array || arrayValue->getPayload() != index || index >= maximumArraySize) {
        return 0;
    }
    // The recorded key is "[index - 1]", so the new one differs from it in its last digit alone,
    // one above, unless that digit carries. After a carry the new key's start is the start of a
    // shorter index, which exists: addElement walks it.
    const unsigned int last = trail.length - 2;
    const signed char digit = static_cast<signed char>(trail.text[last] + 1);
    if (digit > '9') {
        return 0;
    }
    // The new digit hangs past the recorded one if it stays below what the recorded one went
    // below, which it does in any array whose elements are all there.
    if (trail.bound[last] != 0 && digit >= trail.boundCharacter[last]) {
        return 0;
    }
    unsigned int* const link = &trail.matchedNode[last]->trie.greater;
    if (*link != 0) {
        return 0;
    }
    // The digit, the bracket, the end of the key and the value.
    unsigned int first = 0;
    Node* const run = takeRun(4, first);
    if (run == nullptr) {
        return 0;
    }
    *link = first;
    run[0].trie.splitChar = digit;
    run[0].trie.equal = first + 1;
    run[1].trie.splitChar = ']';
    run[1].trie.equal = first + 2;
    run[2].trie.equal = first + 3;
    run[3].value.isValue = 1;
    run[3].value.type = type::null;
    trail.text[last] = static_cast<char>(digit);
    trail.recordStep(last, first, run, trail.bound[last], trail.boundCharacter[last]);
    trail.recordStep(last + 1, first + 1, run + 1, 0, 0);
    trail.madeValue = run + 3;
    trail.nextElement = index + 1;
    arrayValue->setPayload(index + 1);
    // As addElement gives the element its shortcut: its piece is its index and closing bracket,
    // from the level behind the `[`.
    const unsigned int element = first + 2;
    indexChild(trail.matchedNode[0]->trie.equal, trail.text + 1, trail.length - 1, element, index + 1);
    return element;
}

DynamicObject::Node* DynamicObject::addProperty(unsigned int start, const char* key, unsigned int length,
                                                bool& added, unsigned int& property, unsigned int& valueIndex)
{
    return addProperty(start, key, length, added, property, valueIndex, nullptr);
}

DynamicObject::Node* DynamicObject::addProperty(unsigned int start, const char* key, unsigned int length,
                                                bool& added, unsigned int& property, unsigned int& valueIndex,
                                                KeyPlace* place, InsertionTrail* trail)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeAddProperty(); });
    added = false;
    valueIndex = 0;
    // The outputs are written once at the end: stores through them would make every step reload
    // the key, which may lie anywhere. On a failure `property` holds the last link followed.
    unsigned int last = 0;

    // Blocks never move, so a link may point into a node while other nodes are allocated; the links
    // after the first and the last character are read once the key is complete.
    unsigned int startLink = start;
    unsigned int* link = &startLink;
    unsigned int* firstLink = &startLink;
    unsigned int position = 0;
    // The smallest node of the current level that the walk went below, and its character.
    unsigned int bound = 0;
    signed char boundCharacter = 0;
    // The characters that the recorded key already has.
    unsigned int kept = 0;
    if (trail != nullptr) {
        trail->madeValue = nullptr;
        if (trail->start == start && trail->stamp == shapeStamp_) {
            position = followTrail(*trail, key, length, startLink, link, firstLink, bound, boundCharacter);
            kept = position;
            last = position != 0 ? trail->matched[position - 1] : 0;
        }
        // Rewritten as the walk goes: a failed insertion leaves none.
        trail->start = 0;
    }
    const unsigned int recorded = trail == nullptr ? 0 : length < InsertionTrail::depth ? length : InsertionTrail::depth;
    // As in a search, more steps than nodes come only from links that loop.
    const std::size_t nodeCount = blocks_.size() * nodeAllocator_->getBlockSize();
    std::size_t steps = 0;
    while (position < length && *link != 0) {
        last = *link;
        Node* node = ++steps <= nodeCount || checkNesting(steps, 0) ? getNode(last) : nullptr;
        if (node == nullptr || node->isValueNode()) {
            property = last;
            return nullptr;
        }
        // The three ways are picked without a branch: which one a key takes at a node is as good as
        // random, and a mispredicted branch costs more than the step itself.
        const signed char c = static_cast<signed char>(key[position]);
        const signed char split = node->trie.splitChar;
        const bool equal = c == split;
        unsigned int* next = c < split ? &node->trie.less : &node->trie.greater;
        next = equal ? &node->trie.equal : next;
        firstLink = equal && position == 0 ? next : firstLink;
        link = next;
        if (position < recorded) {
            trail->recordStep(position, last, node, bound, boundCharacter);
            const bool below = c < split;
            bound = below ? last : bound;
            boundCharacter = below ? split : boundCharacter;
            bound = equal ? 0 : bound;
        }
        position += equal ? 1 : 0;
    }
    const bool madeNodes = position < length;
    Node* endOfKey = nullptr;
    unsigned int endOfKeyIndex = 0;
    if (madeNodes) {
        endOfKey = makeKeyRun(link, key, position, length, trail, recorded, bound, boundCharacter, firstLink, endOfKeyIndex);
        if (endOfKey != nullptr) {
            position = length;
        }
    }
    for (; position < length; ++position) {
        unsigned int index;
        Node* node = allocateNode(key[position], index);
        if (node == nullptr) {
            property = last;
            return nullptr;
        }
        *link = index;
        link = &node->trie.equal;
        if (position == 0) {
            firstLink = link;
        }
        if (position < recorded) {
            trail->recordStep(position, index, node, bound, boundCharacter);
            bound = 0;
        }
    }
    if (recorded != 0) {
        trail->recordText(key, kept, recorded);
        trail->stamp = shapeStamp_;
        trail->start = start;
    }
    unsigned int* const levelLink = link;
    if (endOfKey != nullptr) {
        // Made with the run: the value node follows the end of the key.
        property = endOfKeyIndex;
        valueIndex = endOfKeyIndex + 1;
        added = true;
        Node* value = endOfKey + 1;
        if (trail != nullptr) {
            trail->madeValue = value;
        }
        if (place != nullptr) {
            place->firstLevel = *firstLink;
            place->level = endOfKeyIndex;
        }
        notify([key, length, endOfKeyIndex](AbstractDynamicObjectListener& listener) {
            listener.afterAddProperty(key, length, endOfKeyIndex);
        });
        return value;
    }
    // The end-of-key node sits at the bottom of the chain of smaller characters of its level,
    // whatever that chain holds: nothing is ever rebalanced. Below a character just made there is
    // nothing yet, and what was just written is not read back.
    while (!madeNodes && *link != 0) {
        Node* node = ++steps <= nodeCount || checkNesting(steps, 0) ? getNode(*link) : nullptr;
        if (node == nullptr || node->isValueNode()) {
            property = last;
            return nullptr;
        }
        if (node->trie.splitChar == 0) {
            endOfKey = node;
            endOfKeyIndex = *link;
            break;
        }
        link = &node->trie.less;
    }
    const bool madeEndOfKey = endOfKey == nullptr;
    if (madeEndOfKey) {
        endOfKey = allocateNode(0, endOfKeyIndex);
        if (endOfKey == nullptr) {
            property = last;
            return nullptr;
        }
        *link = endOfKeyIndex;
    }
    property = endOfKeyIndex;
    Node* value = nullptr;
    if (madeEndOfKey || endOfKey->trie.equal == 0) {
        unsigned int index;
        value = allocateValueNode(index);
        if (value == nullptr) {
            return nullptr;
        }
        endOfKey->trie.equal = index;
        valueIndex = index;
        added = true;
        if (trail != nullptr) {
            trail->madeValue = value;
        }
    } else {
        valueIndex = endOfKey->trie.equal;
        value = getNode(valueIndex);
        ORV_CHECK(value != nullptr && value->isValueNode(), "Sanity check, that this is a valid node.");
        // The hook returned: a property without a value node cannot be used.
        if (value == nullptr || !value->isValueNode()) {
            return nullptr;
        }
    }
    if (place != nullptr) {
        place->firstLevel = *firstLink;
        place->level = madeNodes ? endOfKeyIndex : *levelLink;
    }
    notify([key, length, endOfKeyIndex](AbstractDynamicObjectListener& listener) {
        listener.afterAddProperty(key, length, endOfKeyIndex);
    });
    return value;
}

bool DynamicObject::eraseProperty(unsigned int* link, const char* key, unsigned int length, bool& removed)
{
    // The walk down keeps the links it went through, and the way back frees every node that the
    // removal left with no link at all; a node that still leads to another key stays, and so do
    // all above it. The links are kept here rather than on the call stack: a long key or a long
    // chain of siblings is as deep as it is long, and in a loaded blob whose links loop there is
    // no end, so the walk stops after more steps than the object has nodes.
    constexpr std::size_t localDepth = 64;
    unsigned int* local[localDepth];
    Vector<unsigned int*> deeper;
    std::size_t depth = 0;
    const std::size_t nodeCount = blocks_.size() * nodeAllocator_->getBlockSize();
    bool emptied = false;
    for (;;) {
        Node* node = getNode(*link);
        if (node == nullptr) {
            break;
        }
        if (node->isValueNode()) {
            ORV_CHECK(length == 0, "Value node reached before the full exploration of the key.");
            deallocateNode(node, *link);
            *link = 0;
            removed = true;
            emptied = true;
            break;
        }
        if (depth >= nodeCount && !checkNesting(depth, 0)) {
            break;
        }
        if (depth < localDepth) {
            local[depth] = link;
        } else {
            deeper.push_back(link);
        }
        ++depth;
        // Character 0 past the end of the key finds the end-of-key node. It does not find one that
        // was placed under a negative character, which lies on a smaller link: that property stays.
        const signed char c = length != 0 ? static_cast<signed char>(key[0]) : 0;
        if (c < node->trie.splitChar) {
            link = &node->trie.less;
        } else if (c == node->trie.splitChar) {
            link = &node->trie.equal;
            if (length != 0) {
                ++key;
                --length;
            }
        } else {
            link = &node->trie.greater;
        }
    }
    while (emptied && depth != 0) {
        --depth;
        unsigned int* up = depth < localDepth ? local[depth] : deeper[depth - localDepth];
        Node* node = getNode(*up);
        if (node->trie.less != 0 || node->trie.equal != 0 || node->trie.greater != 0) {
            emptied = false;
        } else {
            deallocateNode(node, *up);
            *up = 0;
        }
    }
    return emptied;
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
    ++shapeStamp_;
    // Last block first: released blocks are taken again last first, so that the next nodes of this
    // or another object fill them in the order of their addresses, as a copy or a load writes best.
    for (std::size_t block = blocks_.size(); block > 0; --block) {
        nodeAllocator_->deallocate(blocks_[block - 1]);
    }
    blocks_.clear();
    firstFreeNode_ = 0;
    lastBlockUsed_ = nodeAllocator_->blockSize_;
    if (index_ != nullptr) {
        index_->clear();
    }
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
    copyIndex(other);
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
    copyIndex(other);
    notify([](AbstractDynamicObjectListener& listener) { listener.afterCopy(); });
}

// The side index.

namespace {

using impl::DynamicObjectIndex;

/// A key of a level found by the walks below the nodes: the piece from the stand, and the node the
/// equal link of its last character leads to.
struct LevelKey {
    unsigned int stand;
    unsigned int level;
    unsigned long long piece;
};

/// A node of the walk over the nodes, with the stand it belongs to and the piece so far.
struct LevelFrame {
    unsigned int node;
    unsigned int stand;
    unsigned int level;
    unsigned int length;
    unsigned long long piece;
};

unsigned int unpackPiece(unsigned long long piece, char* text)
{
    unsigned int length = 0;
    for (; length < sizeof(piece) && ((piece >> (8 * length)) & 0xFF) != 0; ++length) {
        text[length] = static_cast<char>((piece >> (8 * length)) & 0xFF);
    }
    return length;
}

} // namespace

void DynamicObject::forgetChild(unsigned int stand, const char* piece, unsigned int length)
{
    if (index_ != nullptr && stand != 0 && index_->isIndexed(stand)) {
        index_->remove(stand, piece, length);
    }
}

namespace {

/// Walks the nodes below `start` without a failed assertion for anything odd (links out of the
/// store, value nodes on the way, loops): the index is rebuilt from loaded blocks, which may be
/// anything. `visit` sees every key of a level as it is met; `intoSeparators` says whether the walk
/// enters the levels behind separators too, each with its first node as its stand.
template <typename NodeAt, typename Visit>
void walkLevels(unsigned int start, bool intoSeparators, std::size_t nodeCount, NodeAt nodeAt, Visit visit)
{
    Vector<LevelFrame> stack;
    stack.push_back(LevelFrame{start, start, 0, 0, 0});
    // In a tree every node is met once; more steps than nodes means a loop.
    std::size_t steps = 0;
    while (!stack.empty() && steps++ <= nodeCount) {
        const LevelFrame frame = stack.back();
        stack.pop_back();
        const DynamicObject::Node* node = nodeAt(frame.node);
        if (node == nullptr || node->isValueNode()) {
            continue;
        }
        if (node->trie.less != 0) {
            stack.push_back(LevelFrame{node->trie.less, frame.stand, frame.level, frame.length, frame.piece});
        }
        if (node->trie.greater != 0) {
            stack.push_back(LevelFrame{node->trie.greater, frame.stand, frame.level, frame.length, frame.piece});
        }
        const signed char c = node->trie.splitChar;
        const unsigned int equal = node->trie.equal;
        if (c == 0) {
            if (frame.length != 0) {
                visit(LevelKey{frame.stand, frame.level, frame.piece});
            }
        } else if (c == '.' || c == '[') {
            if (intoSeparators && equal != 0) {
                stack.push_back(LevelFrame{equal, equal, 0, 0, 0});
            }
        } else if (frame.length < sizeof(frame.piece) && equal != 0) {
            const unsigned long long piece =
                frame.piece | (static_cast<unsigned long long>(static_cast<unsigned char>(c)) << (8 * frame.length));
            stack.push_back(LevelFrame{equal, frame.stand, equal, frame.length + 1, piece});
        }
    }
}

/// Where a walk from `stand` over `text` goes on, as findNode without a property would say, but
/// with 0 instead of a failed assertion for anything odd.
template <typename NodeAt>
unsigned int walkPiece(unsigned int stand, const char* text, unsigned int length, std::size_t nodeCount,
                       NodeAt nodeAt)
{
    unsigned int current = stand;
    unsigned int position = 0;
    for (std::size_t steps = 0; current != 0 && position < length && steps <= nodeCount; ++steps) {
        const DynamicObject::Node* node = nodeAt(current);
        if (node == nullptr || node->isValueNode()) {
            return 0;
        }
        const signed char c = static_cast<signed char>(text[position]);
        if (c == node->trie.splitChar) {
            current = node->trie.equal;
            ++position;
        } else {
            current = c < node->trie.splitChar ? node->trie.less : node->trie.greater;
        }
    }
    return position == length ? current : 0;
}

} // namespace

void DynamicObject::indexLevel(unsigned int stand)
{
    if (index_ == nullptr) {
        index_ = ORV_NEW(DynamicObjectIndex)();
        if (index_ == nullptr) {
            return;
        }
    }
    if (index_->isIndexed(stand)) {
        return;
    }
    index_->mark(stand);
    const std::size_t nodeCount = blocks_.size() * nodeAllocator_->blockSize_;
    auto nodeAt = [this, nodeCount](unsigned int index) {
        return index != 0 && index <= nodeCount ? getNode(index) : nullptr;
    };
    walkLevels(stand, false, nodeCount, nodeAt, [this, stand, nodeCount, &nodeAt](const LevelKey& key) {
        // A shortcut is only kept where the walk of its text agrees, whatever the shape of the level.
        char text[sizeof(key.piece)];
        const unsigned int length = unpackPiece(key.piece, text);
        if (walkPiece(stand, text, length, nodeCount, nodeAt) == key.level) {
            index_->add(stand, text, length, key.level);
        }
    });
}

void DynamicObject::rebuildIndex()
{
    if (index_ != nullptr) {
        index_->clear();
    }
    const std::size_t nodeCount = blocks_.size() * nodeAllocator_->blockSize_;
    auto nodeAt = [this, nodeCount](unsigned int index) {
        return index != 0 && index <= nodeCount ? getNode(index) : nullptr;
    };
    Vector<LevelKey> keys;
    walkLevels(root_, true, nodeCount, nodeAt, [&keys](const LevelKey& key) { keys.push_back(key); });
    std::sort(keys.begin(), keys.end(),
              [](const LevelKey& a, const LevelKey& b) { return a.stand < b.stand; });
    for (std::size_t first = 0; first < keys.size();) {
        std::size_t last = first;
        while (last < keys.size() && keys[last].stand == keys[first].stand) {
            ++last;
        }
        bool worth = keys[first].stand == root_;
        for (std::size_t key = first; key < last && !worth; ++key) {
            char text[sizeof(keys[key].piece)];
            worth = DynamicObjectIndex::isWorthIndexing(last - first, text, unpackPiece(keys[key].piece, text));
        }
        if (worth) {
            indexLevel(keys[first].stand);
        }
        first = last;
    }
}

void DynamicObject::copyIndex(const DynamicObject& other)
{
    // Indices name the same nodes in a copy, unless a block could not be had for it.
    const bool complete = blocks_.size() * nodeAllocator_->blockSize_ >=
                          other.blocks_.size() * other.nodeAllocator_->blockSize_;
    if (other.index_ == nullptr || !complete) {
        if (index_ != nullptr) {
            index_->clear();
        }
        return;
    }
    if (index_ == nullptr) {
        index_ = ORV_NEW(DynamicObjectIndex)(*other.index_);
    } else {
        *index_ = *other.index_;
    }
}

} // namespace utils
} // namespace orv
