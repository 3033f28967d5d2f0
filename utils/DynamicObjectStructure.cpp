// The operations of DynamicObject that change the shape of the tree: children, arrays, renames,
// resets and copies of subtrees.

#include <orv/utils/DynamicObject.h>

#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/impl/DynamicObjectHelpers.h>
#include <orv/utils/impl/DynamicObjectIndex.h>
#include <orv/utils/impl/DynamicObjectPropertyChildrenIterator.h>

#include <cstring>

namespace orv {
namespace utils {

namespace {

using impl::checkKey;
using impl::measure;

// Room for "[4294967295]" and its terminator.
constexpr unsigned int arrayKeyCapacity = 16;

} // namespace

unsigned int DynamicObject::findChildrenStart(unsigned int parent) const
{
    if (parent == root_) {
        return root_;
    }
    unsigned int start;
    findNode(parent, ".", 1, false, start);
    return start;
}

// Children by key.

unsigned int DynamicObject::doAddChild(unsigned int parent, const char* key, unsigned int length,
                                       InsertionTrail* trail, bool scanned)
{
    if (trail != nullptr) {
        trail->madeValue = nullptr;
    }
    if (!checkKey(key)) {
        return 0;
    }
    if (length == 0) {
        return parent;
    }
    // Byte 0 marks the end of a key in the trie, so no stored key can hold one; a name that does
    // (a path or key from outside) names nothing that could be added.
    if (!scanned && std::memchr(key, 0, length) != nullptr) {
        return 0;
    }
    bool added = false;
    unsigned int property = 0;
    unsigned int valueIndex = 0;
    Node* value = nullptr;
    // Where the child's own piece of key begins, for the side index: the root for its children,
    // otherwise the node behind the parent's `.`.
    KeyPlace place{0, 0};
    unsigned int stand = 0;
    const char* piece = key;
    unsigned int pieceLength = length;
    if (parent == root_) {
        // Children of the root have no leading separator.
        if (key[0] == '.') {
            ++key;
            --length;
        }
        if (trail != nullptr) {
            trail->setOwner(root_);
        }
        value = addProperty(root_, key, length, added, property, valueIndex, &place, trail);
        stand = root_;
        piece = key;
        pieceLength = length;
    } else if (key[0] == '.') {
        value = addProperty(parent, key, length, added, property, valueIndex, &place);
        stand = place.firstLevel;
        piece = key + 1;
        pieceLength = length - 1;
    } else {
        // A trail of this parent's children starts behind its `.` already.
        unsigned int start = trail != nullptr && trail->owner == parent && trail->stamp == shapeStamp_ ? trail->start : 0;
        if (start == 0) {
            findNode(parent, ".", 1, false, start);
        }
        if (start != 0) {
            if (trail != nullptr) {
                trail->setOwner(parent);
            }
            value = addProperty(start, key, length, added, property, valueIndex, &place, trail);
            stand = start;
        } else {
            if (trail != nullptr) {
                // The first child makes the `.`: the trail starts with the next one.
                trail->start = 0;
            }
            const impl::DottedKey dotted(key, length);
            value = addProperty(parent, dotted.text(), dotted.length(), added, property, valueIndex, &place);
            stand = place.firstLevel;
        }
    }
    ORV_CHECK(value != nullptr, "Unable to add a child.");
    if (value == nullptr) {
        return 0;
    }
    if (added) {
        Node* parentValue = findValueNodeAsserts(parent);
        if (parentValue != nullptr) {
            // A parent of another kind (a misuse already reported) starts counting afresh rather
            // than from its old payload.
            const unsigned long long count =
                parentValue->value.type == type::object ? parentValue->getPayload() : 0;
            parentValue->setPayload(count + 1);
            parentValue->value.type = type::object;
            indexChild(stand, piece, pieceLength, place.level, count + 1);
        }
    }
    return property;
}

unsigned int DynamicObject::addChild(unsigned int parent, const char* key, unsigned int length)
{
    if (!checkKey(key)) {
        return 0;
    }
    ORV_CHECK(isTypeCompatible(parent, type::object), "The given property is not an object.");
    ORV_CHECK(checkPropertyKey(key, length), "The given child key, " << impl::keyText(key, length) << " is invalid.");
    // Either way the child is added: the parent becomes an object.
    return doAddChild(parent, key, length);
}

unsigned int DynamicObject::addChild(unsigned int parent, const char* key)
{
    return checkKey(key) ? addChild(parent, key, measure(key)) : 0;
}

unsigned int DynamicObject::addChild(const char* parentKey, const char* key, unsigned int length)
{
    return addChild(getPropertyAsserts(parentKey), key, length);
}

unsigned int DynamicObject::addChild(const char* parentKey, unsigned int parentLength, const char* key,
                                     unsigned int length)
{
    return addChild(getPropertyAsserts(parentKey, parentLength), key, length);
}

unsigned int DynamicObject::findChildToErase(unsigned int parent, const char* key, unsigned int length) const
{
    const bool isRoot = parent == root_;
    const impl::DottedKey dotted(key, isRoot ? 0 : length);
    unsigned int child;
    unsigned int valueIndex;
    if (findValueNode(findNode(parent, isRoot ? key : dotted.text(), isRoot ? length : dotted.length(), true, child),
                      valueIndex) == nullptr) {
        return 0;
    }
    return child;
}

void DynamicObject::finishErasingChild(unsigned int parent, const char* key, unsigned int length)
{
    const bool isRoot = parent == root_;
    const impl::DottedKey dotted(key, isRoot ? 0 : length);
    const char* fullKey = isRoot ? key : dotted.text();
    const unsigned int fullLength = isRoot ? length : dotted.length();
    // A key with a separator reaches below the parent's children, to a property whose shortcut
    // belongs to another level: the index is then made afresh.
    const bool reachesBelow = std::memchr(key, '.', length) != nullptr || std::memchr(key, '[', length) != nullptr;
    if (!reachesBelow) {
        forgetChild(isRoot ? root_ : findChildrenStart(parent), key, length);
    }
    eraseProperty(parent, fullKey, fullLength);
    if (reachesBelow && index_ != nullptr) {
        rebuildIndex();
    }
    Node* parentValue = findValueNodeAsserts(parent);
    if (parentValue != nullptr) {
        const unsigned long long count = parentValue->getPayload() - 1;
        parentValue->setPayload(count);
        if (count == 0) {
            // An emptied object becomes null.
            parentValue->value.type = type::null;
        }
    }
}

bool DynamicObject::eraseChild(unsigned int parent, const char* key, unsigned int length)
{
    if (!checkKey(key)) {
        return false;
    }
    const unsigned int child = findChildToErase(parent, key, length);
    if (child == 0) {
        return false;
    }
    // An end-of-key node is kept alive by its children: they go first.
    resetProperty(child);
    finishErasingChild(parent, key, length);
    return true;
}

bool DynamicObject::eraseChild(const char* parentKey, const char* key, unsigned int length)
{
    return eraseChild(getPropertyAsserts(parentKey), key, length);
}

bool DynamicObject::eraseChild(const char* parentKey, unsigned int parentLength, const char* key,
                               unsigned int length)
{
    return eraseChild(getPropertyAsserts(parentKey, parentLength), key, length);
}

unsigned int DynamicObject::getChild(unsigned int parent, const char* key, unsigned int length) const
{
    if (!checkKey(key) || length == 0) {
        return 0;
    }
    const unsigned int start = findChildrenStart(parent);
    if (start == 0) {
        return 0;
    }
    unsigned int child;
    unsigned int valueIndex;
    findValueNode(start, key, length, child, valueIndex);
    return child;
}

unsigned int DynamicObject::getChild(const char* parentKey, const char* key, unsigned int length) const
{
    return getChild(getPropertyAsserts(parentKey), key, length);
}

unsigned int DynamicObject::getChild(const char* parentKey, unsigned int parentLength, const char* key,
                                     unsigned int length) const
{
    return getChild(getPropertyAsserts(parentKey, parentLength), key, length);
}

bool DynamicObject::hasChild(unsigned int parent, const char* key, unsigned int length) const
{
    return getChild(parent, key, length) != 0;
}

bool DynamicObject::hasChild(unsigned int parent, const char* key) const
{
    return checkKey(key) && getChild(parent, key, measure(key)) != 0;
}

bool DynamicObject::hasChild(const char* parentKey, const char* key, unsigned int length) const
{
    return checkKey(parentKey) && hasChild(getProperty(parentKey), key, length);
}

bool DynamicObject::hasChild(const char* parentKey, unsigned int parentLength, const char* key,
                             unsigned int length) const
{
    return checkKey(parentKey) && hasChild(getProperty(parentKey, parentLength), key, length);
}

// Children by position.

unsigned int DynamicObject::addElement(unsigned int array, unsigned int index, InsertionTrail* trail)
{
    if (trail != nullptr) {
        // Elements hang behind no `.`: a trail that records them is no object's, whatever object
        // it served before.
        trail->setOwner(0);
    }
    char key[arrayKeyCapacity];
    const unsigned int length = formatArrayKey(index, key);
    unsigned int element = trail != nullptr ? addElementAlong(array, index, key, length, *trail) : 0;
    if (element != 0) {
        return element;
    }
    bool added;
    unsigned int valueIndex;
    KeyPlace place{0, 0};
    if (addProperty(array, key, length, added, element, valueIndex, &place, trail) == nullptr) {
        return 0;
    }
    // An element's piece is its index and closing bracket, from behind the `[`.
    indexChild(place.firstLevel, key + 1, length - 1, place.level, index + 1);
    return element;
}

unsigned int DynamicObject::getChild(unsigned int parent, unsigned int index) const
{
    switch (getType(parent)) {
    case type::array: {
        char key[arrayKeyCapacity];
        const unsigned int length = formatArrayKey(index, key);
        unsigned int child;
        unsigned int valueIndex;
        findValueNode(parent, key, length, child, valueIndex);
        return child;
    }
    case type::object: {
        // Linear in the position: callers that walk all children use the iterator instead.
        impl::DynamicObjectPropertyChildrenIterator children(*this, parent);
        children.next();
        for (unsigned int i = 0; i < index && !children.end(); ++i) {
            children.next();
        }
        return children.end() ? 0 : children.getProperty();
    }
    default:
        return 0;
    }
}

unsigned int DynamicObject::getChild(const char* parentKey, unsigned int index) const
{
    return checkKey(parentKey) ? getChild(getProperty(parentKey), index) : 0;
}

unsigned int DynamicObject::getChild(const char* parentKey, unsigned int parentLength, unsigned int index) const
{
    return checkKey(parentKey) ? getChild(getProperty(parentKey, parentLength), index) : 0;
}

bool DynamicObject::eraseChild(unsigned int parent, unsigned int index)
{
    Node* parentValue = findValueNodeAsserts(parent);
    if (parentValue == nullptr) {
        return false;
    }
    const unsigned int parentType = parentValue->value.type;
    if (parentType > type::object) {
        ORV_FAIL(parentType << " is an unknown orv::utils::type");
        return false;
    }
    if (parentType != type::null && parentType != type::array) {
        ORV_FAIL("Not an array.");
        return false;
    }
    const unsigned int count = countChildren(parent);
    if (index >= count) {
        return false;
    }
    // Elements keep their end-of-key nodes, and so their handles, by position. The erased element's
    // node content (its value and subtree) bubbles to the last position, each later one moving down
    // by one, and the last position is then erased.
    char key[arrayKeyCapacity];
    Node* previous = nullptr;
    for (unsigned int position = index; position < count; ++position) {
        const unsigned int length = formatArrayKey(position, key);
        unsigned int element;
        Node* node = findNode(parent, key, length, true, element);
        unsigned int valueIndex;
        if (findValueNode(node, valueIndex) == nullptr || node->trie.less != 0) {
            ORV_FAIL("Invalid state, " << element << " is not a valid property node.");
            return false;
        }
        if (node->trie.greater != 0) {
            const Node* separator = getNode(node->trie.greater);
            if (separator == nullptr ||
                (separator->trie.splitChar != '.' && separator->trie.splitChar != '[')) {
                ORV_FAIL("Invalid state, the greater node of " << element << " is not a valid property separator.");
                return false;
            }
        }
        if (previous != nullptr) {
            ++shapeStamp_;
            const Node swapped = *previous;
            *previous = *node;
            *node = swapped;
        }
        previous = node;
    }
    parentValue->setPayload(parentValue->getPayload() - 1);
    const unsigned int length = formatArrayKey(count - 1, key);
    unsigned int last;
    findNode(parent, key, length, true, last);
    resetProperty(last);
    // The swaps moved node contents only: the shortcuts of the other positions still hold.
    unsigned int elements;
    findNode(parent, "[", 1, false, elements);
    forgetChild(elements, key + 1, length - 1);
    // The count is not tested for 0 here: the array stays an array with no element, unlike an array
    // resized to 0. Callers rely on it.
    return eraseProperty(parent, key, length);
}

bool DynamicObject::eraseChild(const char* parentKey, unsigned int index)
{
    return eraseChild(getPropertyAsserts(parentKey), index);
}

bool DynamicObject::eraseChild(const char* parentKey, unsigned int parentLength, unsigned int index)
{
    return eraseChild(getPropertyAsserts(parentKey, parentLength), index);
}

bool DynamicObject::resize(unsigned int property, unsigned int newSize)
{
    ORV_CHECK(isTypeCompatible(property, type::array), "Can't resize a property that is not an array.");
    // The call goes on: the property becomes an array.
    const unsigned int count = countChildren(property);
    Node* value = findValueNode(property);
    if (value == nullptr) {
        return false;
    }
    // A request for the maximum size or more is ignored and reported as done, so an array holds
    // at most maximumArraySize - 1 elements.
    if (count == newSize || newSize >= maximumArraySize) {
        return true;
    }
    value->setPayload(newSize);
    value->value.type = newSize == 0 ? type::null : type::array;
    for (unsigned int index = count; index < newSize; ++index) {
        if (addElement(property, index) == 0) {
            return false;
        }
    }
    char key[arrayKeyCapacity];
    unsigned int elements = 0;
    if (count > newSize) {
        findNode(property, "[", 1, false, elements);
    }
    for (unsigned int index = count; index > newSize; --index) {
        const unsigned int length = formatArrayKey(index - 1, key);
        unsigned int element;
        findNode(property, key, length, true, element);
        resetProperty(element);
        forgetChild(elements, key + 1, length - 1);
        eraseProperty(property, key, length);
    }
    return true;
}

bool DynamicObject::resize(const char* key, unsigned int newSize)
{
    return resize(getPropertyAsserts(key), newSize);
}

bool DynamicObject::resize(const char* key, unsigned int length, unsigned int newSize)
{
    return resize(getPropertyAsserts(key, length), newSize);
}

/// One property whose reset is under way: an array losing its elements from the last, or an
/// object losing its children in the order of its children walk. While the reset of one of them
/// runs, `pending` says that its erase is to be finished when that reset is.
struct DynamicObject::ResetFrame {
    unsigned int property;
    /// Whether the property had a value node at the start: only then is it cleared at the end.
    bool hadValue;
    /// type::array or type::object for a property with children to erase, else type::null.
    type::Type kind;
    bool pending;
    /// Arrays: the elements left, the node behind `[`, and the key of the element being erased.
    unsigned int elementsLeft;
    unsigned int elements;
    char key[arrayKeyCapacity];
    unsigned int keyLength;
    /// Objects: the walk that names the next child, and the number of children erased so far.
    impl::DynamicObjectPropertyChildrenIterator* children;
    std::size_t erased;
};

void DynamicObject::beginReset(unsigned int property, Vector<ResetFrame>& stack)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeResetProperty(); });
    ResetFrame frame{property, false, type::null, false, 0, 0, {}, 0, nullptr, 0};
    Node* value = property != 0 ? findValueNodeAsserts(property) : nullptr;
    frame.hadValue = value != nullptr;
    if (value != nullptr && value->value.type == type::array) {
        // What resize(property, 0) does before it erases the elements, last first.
        ORV_CHECK(isTypeCompatible(property, type::array), "Can't resize a property that is not an array.");
        const unsigned int count = countChildren(property);
        value = findValueNode(property);
        if (value != nullptr && count != 0) {
            value->setPayload(0);
            value->value.type = type::null;
            findNode(property, "[", 1, false, frame.elements);
            frame.kind = type::array;
            frame.elementsLeft = count;
        }
    } else if (value != nullptr && value->value.type == type::object) {
        frame.kind = type::object;
        frame.children = ORV_NEW(impl::DynamicObjectPropertyChildrenIterator)(*this, property);
    }
    stack.push_back(frame);
}

unsigned int DynamicObject::nextChildToReset(ResetFrame& frame)
{
    if (frame.kind == type::array) {
        if (frame.elementsLeft == 0) {
            return 0;
        }
        --frame.elementsLeft;
        frame.keyLength = formatArrayKey(frame.elementsLeft, frame.key);
        unsigned int element;
        findNode(frame.property, frame.key, frame.keyLength, true, element);
        // Even a missing element is reset, as a handle 0, as resize does.
        frame.pending = true;
        return element;
    }
    if (frame.kind != type::object || frame.children == nullptr || countChildren(frame.property) == 0) {
        return 0;
    }
    // Each erase frees nodes of its own: more erases than nodes come from counts or links that
    // lie, in a loaded blob.
    if (++frame.erased > blocks_.size() * nodeAllocator_->getBlockSize() && !checkNesting(frame.erased, 0)) {
        return 0;
    }
    impl::DynamicObjectPropertyChildrenIterator& children = *frame.children;
    children.restart();
    do {
        children.next();
    } while (!children.end() && children.getKeyLength() == 0);
    // A key that extends this property's own text (`a-x` beside `a`) is walked as if it were a child
    // but cannot be erased as one: stop rather than try it for ever.
    const unsigned int child = children.end() ? 0 : findChildToErase(frame.property, children.getKey(), children.getKeyLength());
    frame.pending = child != 0;
    return child;
}

void DynamicObject::resetProperty(unsigned int property)
{
    // Children go before their parent, and their children before them. The properties under reset
    // are kept on a stack of their own rather than by recursion, since a document may nest as
    // deep as it is long; in a loaded blob whose links loop the nesting has no end, and the reset
    // stops after more levels than the object has nodes.
    Vector<ResetFrame> stack;
    beginReset(property, stack);
    while (!stack.empty()) {
        ResetFrame& frame = stack.back();
        const unsigned int child = nextChildToReset(frame);
        if (frame.pending) {
            if (stack.size() > blocks_.size() * nodeAllocator_->getBlockSize() && !checkNesting(stack.size(), 0)) {
                for (ResetFrame& open : stack) {
                    ORV_DELETE(open.children);
                }
                return;
            }
            beginReset(child, stack);
            continue;
        }
        // Every child is gone: the property is cleared, and the erase that its parent began ends.
        const unsigned int done = frame.property;
        if (frame.hadValue) {
            Node* value = findValueNode(done);
            if (value != nullptr) {
                value->setPayload(0);
                value->value.type = type::null;
            }
        }
        ORV_DELETE(frame.children);
        stack.pop_back();
        notify([done](AbstractDynamicObjectListener& listener) { listener.afterResetProperty(done); });
        if (!stack.empty()) {
            ResetFrame& parent = stack.back();
            parent.pending = false;
            if (parent.kind == type::array) {
                forgetChild(parent.elements, parent.key + 1, parent.keyLength - 1);
                eraseProperty(parent.property, parent.key, parent.keyLength);
            } else {
                finishErasingChild(parent.property, parent.children->getKey(), parent.children->getKeyLength());
            }
        }
    }
}

void DynamicObject::resetProperty(const char* key)
{
    resetProperty(checkKey(key) ? getProperty(key) : 0);
}

void DynamicObject::resetProperty(const char* key, unsigned int length)
{
    resetProperty(checkKey(key) ? getProperty(key, length) : 0);
}

unsigned int DynamicObject::renameChild(unsigned int parent, const char* key, unsigned int length, const char* newKey,
                                        unsigned int newLength)
{
    if (!checkKey(key) || !checkKey(newKey)) {
        return 0;
    }
    ORV_CHECK(length != 0, "No given name for the child to rename.");
    // An empty key would name the start of the search itself, which for the root is the root.
    if (length == 0) {
        return 0;
    }
    ORV_CHECK(checkPropertyKey(newKey, newLength),
              "The given child key, '" << impl::keyText(newKey, newLength) << "' is invalid.");
    // The call goes on with the key as given.
    const unsigned int start = findChildrenStart(parent);
    ORV_CHECK(start != 0, "The given property is not an object having children.");
    if (start == 0) {
        return 0;
    }
    unsigned int child;
    unsigned int oldValueIndex;
    if (findValueNode(start, key, length, child, oldValueIndex) == nullptr) {
        ORV_FAIL("The given property has no child named '" << impl::keyText(key, length) << "'");
        return 0;
    }
    unsigned int existing;
    unsigned int existingValue;
    findValueNode(start, newKey, newLength, existing, existingValue);
    if (existing == child) {
        return child;
    }
    if (existing != 0) {
        ORV_FAIL("The given property already has a child named '" << impl::keyText(newKey, newLength) << "'");
        return 0;
    }
    bool added = false;
    unsigned int renamed = 0;
    unsigned int newValueIndex = 0;
    KeyPlace place{0, 0};
    Node* newValue = addProperty(start, newKey, newLength, added, renamed, newValueIndex, &place);
    if (newValue == nullptr || !added) {
        ORV_FAIL("Can't add to the given property a child named " << impl::keyText(newKey, newLength));
        return 0;
    }
    // The count of children does not change: a level not yet indexed stays so.
    indexChild(start, newKey, newLength, place.level, 0);
    // A key with a separator names a property of another level, and a new end-of-key node that
    // already led to other keys loses them below: either way the index is made afresh at the end.
    bool rebuild = std::memchr(key, '.', length) != nullptr || std::memchr(key, '[', length) != nullptr;
    const Node* oldValue = getNode(oldValueIndex);
    *newValue = *oldValue;
    const unsigned char childType = newValue->value.type;
    if (childType == type::array || childType == type::object) {
        // The children hang off the old end-of-key node through its separator. They move under the
        // new one as they are, so they keep their handles while their paths change.
        const signed char separator = childType == type::array ? '[' : '.';
        unsigned int index = child;
        while (index != 0) {
            const Node* node = getNode(index);
            if (node == nullptr) {
                index = 0;
            } else if (node->isValueNode()) {
                ORV_FAIL("unclean state during trie search - detected leaf node");
                index = 0;
            } else if (separator == node->trie.splitChar) {
                break;
            } else {
                index = separator < node->trie.splitChar ? node->trie.less : node->trie.greater;
            }
        }
        ORV_CHECK(index != child, "Code assertion on trie structure is false");
        Node* separatorNode = index != 0 && index != child ? getNode(index) : nullptr;
        const unsigned int childrenLink = separatorNode != nullptr ? separatorNode->trie.equal : 0;
        const unsigned long long count = newValue->getPayload();
        ORV_CHECK((childrenLink != 0) == (count != 0), "Children links and count do not match");
        if (childrenLink != 0) {
            unsigned int newSeparatorIndex;
            Node* newSeparator = allocateNode(separator, newSeparatorIndex);
            if (newSeparator != nullptr) {
                ++shapeStamp_;
                newSeparator->trie.equal = childrenLink;
                Node* renamedNode = getNode(renamed);
                rebuild = rebuild || renamedNode->trie.greater != 0;
                renamedNode->trie.greater = newSeparatorIndex;
                separatorNode->trie.equal = 0;
            }
        }
    }
    // The children moved with the node behind their separator, which keys their shortcuts.
    if (!rebuild) {
        forgetChild(start, key, length);
    }
    const bool removed = eraseProperty(start, key, length);
    ORV_CHECK(removed, "Can't remove from the given property its child named " << impl::keyText(key, length));
    if (rebuild && index_ != nullptr) {
        rebuildIndex();
    }
    return renamed;
}

unsigned int DynamicObject::renameChild(unsigned int parent, const char* key, const char* newKey)
{
    if (!checkKey(key) || !checkKey(newKey)) {
        return 0;
    }
    return renameChild(parent, key, measure(key), newKey, measure(newKey));
}

// Copies of subtrees.

/// One container being copied by put: its elements by position, or its children in the order of
/// the source's children walk.
struct DynamicObject::PutFrame {
    unsigned int property;
    unsigned int otherProperty;
    type::Type kind;
    unsigned int index;
    unsigned int count;
    impl::DynamicObjectPropertyChildrenIterator* children;
};

bool DynamicObject::beginPut(unsigned int property, const DynamicObject& other, unsigned int otherProperty,
                             Vector<PutFrame>& stack)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforePut(); });
    const unsigned int sourceType = other.getType(otherProperty);
    switch (sourceType) {
    case type::null:
        // A null source leaves the destination as it is.
        break;
    case type::integer:
        setInt(property, other.getInt(otherProperty, 0));
        break;
    case type::real:
        setReal(property, other.getReal(otherProperty, 0.0));
        break;
    case type::string: {
        // By text: the hash of the source's table means nothing in this object's table.
        const char* text = other.getString(otherProperty, "");
        setString(property, text, measure(text));
        break;
    }
    case type::boolean:
        setBool(property, other.getBool(otherProperty, false));
        break;
    case type::array: {
        const unsigned int count = other.countChildren(otherProperty);
        resize(property, count);
        // More elements than an array can hold come from a count that lies, in a loaded blob.
        if (count <= maximumArraySize || other.checkNesting(0, count)) {
            stack.push_back(PutFrame{property, otherProperty, type::array, 0, count, nullptr});
            return true;
        }
        break;
    }
    case type::object:
        stack.push_back(PutFrame{property, otherProperty, type::object, 0, 0,
                                 ORV_NEW(impl::DynamicObjectPropertyChildrenIterator)(other, otherProperty)});
        return true;
    default:
        ORV_FAIL(sourceType << " is an unknown orv::utils::type");
        break;
    }
    notify([property](AbstractDynamicObjectListener& listener) { listener.afterPut(property); });
    return false;
}

void DynamicObject::put(unsigned int property, const DynamicObject& other, unsigned int otherProperty)
{
    // Each container of the source is copied from a stack of its own rather than by recursion: a
    // document may nest as deep as it is long. In a loaded source whose links loop there is no
    // end, and the copy stops after more levels than the source has nodes.
    Vector<PutFrame> stack;
    beginPut(property, other, otherProperty, stack);
    while (!stack.empty()) {
        PutFrame& frame = stack.back();
        unsigned int target = 0;
        unsigned int source = 0;
        bool more = false;
        if (frame.kind == type::array) {
            more = frame.index < frame.count;
            if (more) {
                target = getChild(frame.property, frame.index);
                source = other.getChild(frame.otherProperty, frame.index);
                ++frame.index;
            }
        } else {
            // Past its first child the walk moves on only when that child's copy is complete.
            frame.children->next();
            more = !frame.children->end();
            if (more) {
                target = addChild(frame.property, frame.children->getKey(), frame.children->getKeyLength());
                source = frame.children->getProperty();
            }
        }
        if (!more) {
            const unsigned int done = frame.property;
            ORV_DELETE(frame.children);
            stack.pop_back();
            notify([done](AbstractDynamicObjectListener& listener) { listener.afterPut(done); });
            continue;
        }
        if (stack.size() >= other.blocks_.size() * other.nodeAllocator_->getBlockSize() &&
            !other.checkNesting(stack.size(), 0)) {
            for (PutFrame& open : stack) {
                ORV_DELETE(open.children);
            }
            return;
        }
        beginPut(target, other, source, stack);
    }
}

void DynamicObject::put(unsigned int property, const DynamicObject& other)
{
    put(property, other, other.root_);
}

void DynamicObject::put(const char* key, const DynamicObject& other)
{
    put(addProperty(key), other, other.root_);
}

void DynamicObject::put(const char* key, unsigned int length, const DynamicObject& other)
{
    put(addProperty(key, length), other, other.root_);
}

void DynamicObject::put(const char* key, unsigned int length, const DynamicObject& other, const char* otherKey,
                        unsigned int otherLength)
{
    put(addProperty(key, length), other, other.getPropertyAsserts(otherKey, otherLength));
}

} // namespace utils
} // namespace orv
