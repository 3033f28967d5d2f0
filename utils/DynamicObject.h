#ifndef ORV_UTILS_DYNAMICOBJECT_H
#define ORV_UTILS_DYNAMICOBJECT_H

#include <orv/utils/Assertion.h>
#include <orv/utils/BlockAllocator.h>
#include <orv/utils/Common.h>
#include <orv/utils/Type.h>
#include <orv/utils/details/DynamicObjectNode.h>

/// The C view of a DynamicObject: the address of the object itself.
struct orv_DynamicObject;

namespace orv {
namespace utils {

class AbstractDataInputOutput;
class AbstractDynamicObjectListener;
class AbstractLogger;
class AbstractObjectBuilder;
class DynamicObjectBuilder;
class DynamicValue;
class StringTable;
class TypeManager;
class Uuid;

namespace impl {
class DynamicObjectIndex;
class DynamicObjectPropertyChildrenIterator;
class DynamicObjectPathCreator;
} // namespace impl

/// A tree of typed properties (null, integer, real, string, boolean, array, object) addressed by
/// paths such as `a.b[3].c`. The whole tree is one ternary search trie over the characters of the
/// full paths, kept in fixed blocks of 16-byte nodes that refer to each other by index: a lookup
/// costs the length of the path and allocates nothing, and a copy is a copy of the blocks.
///
/// A property is named by a handle, the index of its end-of-key node (0 for none), or by a path.
/// A handle stays valid until its property is erased; erased nodes are reused at once, so a stale
/// handle may come to name another property. Misuse (invalid handles, wrong types) goes to the
/// failed assertion hook, and the operation then carries on as far as it safely can.
///
/// Overload families: reads (`getInt`...) by path never create and give the default for a missing
/// path; writes (`setInt`...) by path create what is missing; the strict operations (`getType`,
/// `countChildren`, `resize`, `addChild`...) by path assert when the path names nothing and go on
/// with handle 0. Path forms without a length fire no listener for their lookup.
class ORV_UTILS_API DynamicObject {
public:
    using Node = details::DynamicObjectNode;
    using NodeAllocator = BlockAllocator<Node>;

    /// Names an object whose allocator and string table a new object shares, and whose nodes it copies.
    class Ref {
    public:
        explicit Ref(DynamicObject& object) : object_(object) {}
        DynamicObject& get() const { return object_; }

    private:
        DynamicObject& object_;
    };

    static constexpr unsigned int maximumArraySize = 100000;
    static constexpr unsigned int maximumArrayIndexLength = 5;
    static constexpr unsigned int defaultBlockSize = 128;
    static constexpr unsigned int stringTableSeed = 100;

    /// Owns a new allocator of 128-node blocks and a new string table.
    DynamicObject();
    /// Shares `allocator` and `stringTable`, which must outlive the object.
    DynamicObject(NodeAllocator& allocator, StringTable& stringTable);
    /// Owns a new allocator of the same block size and a copy of the string table; handles carry over.
    DynamicObject(const DynamicObject& other);
    /// Shares the allocator and string table of the referenced object and copies its nodes.
    explicit DynamicObject(const Ref& other);
    ~DynamicObject();

    /// Copies the nodes and the string table of `other`; listeners stay. Handles of `other` are
    /// valid here afterwards, also across different block sizes.
    DynamicObject& operator=(const DynamicObject& other);

    /// Back to an empty object whose root is handle 2 again. No listener is called.
    void clear();
    bool empty() const;
    unsigned int getRoot() const { return root_; }

    NodeAllocator& getNodeAllocator() const { return *nodeAllocator_; }
    StringTable& getStringTable() const { return *stringTable_; }
    bool isOwningNodeAllocator() const { return isOwning_; }
    bool isOwningStringTable() const { return isOwning_; }
    static unsigned int getMaximumArraySize() { return maximumArraySize; }

    orv_DynamicObject& getWrapper();
    const orv_DynamicObject& getWrapper() const;

    // Listeners, called in the order of adding; none is owned.
    void setListener(AbstractDynamicObjectListener* listener);
    void addListener(AbstractDynamicObjectListener* listener);
    void removeListener(AbstractDynamicObjectListener* listener);

    // Path lookups. The path is matched as stored text (`a.b[3]`), not parsed.
    unsigned int getProperty(const char* key, unsigned int length) const;
    unsigned int getProperty(const char* key) const;
    bool hasProperty(const char* key, unsigned int length) const;
    bool hasProperty(const char* key) const;
    /// Parses the path and creates every missing step; 0 if the path does not parse.
    unsigned int addProperty(const char* key, unsigned int length);
    unsigned int addProperty(const char* key);

    // Reads.
    long long getInt(unsigned int property, long long defaultValue) const;
    long long getInt(const char* key, long long defaultValue) const;
    long long getInt(const char* key, unsigned int length, long long defaultValue) const;
    double getReal(unsigned int property, double defaultValue) const;
    double getReal(const char* key, double defaultValue) const;
    double getReal(const char* key, unsigned int length, double defaultValue) const;
    bool getBool(unsigned int property, bool defaultValue) const;
    bool getBool(const char* key, bool defaultValue) const;
    bool getBool(const char* key, unsigned int length, bool defaultValue) const;
    unsigned long long getStringHash(unsigned int property, unsigned long long defaultValue) const;
    unsigned long long getStringHash(const char* key, unsigned long long defaultValue) const;
    unsigned long long getStringHash(const char* key, unsigned int length, unsigned long long defaultValue) const;
    /// The text from the string table, valid while the table lives.
    const char* getString(unsigned int property, const char* defaultValue) const;
    const char* getString(const char* key, const char* defaultValue) const;
    const char* getString(const char* key, unsigned int length, const char* defaultValue) const;

    // Writes: the property takes the written type, and loses its children first.
    void setInt(unsigned int property, long long value);
    void setInt(const char* key, long long value);
    void setInt(const char* key, unsigned int length, long long value);
    void setReal(unsigned int property, double value);
    void setReal(const char* key, double value);
    void setReal(const char* key, unsigned int length, double value);
    void setBool(unsigned int property, bool value);
    void setBool(const char* key, bool value);
    void setBool(const char* key, unsigned int length, bool value);
    void setString(unsigned int property, const char* value);
    void setString(unsigned int property, const char* value, unsigned int valueLength);
    void setString(const char* key, const char* value);
    void setString(const char* key, unsigned int length, const char* value);
    void setString(const char* key, unsigned int length, const char* value, unsigned int valueLength);
    void setValue(unsigned int property, const DynamicValue& value);
    void setValue(const char* key, const DynamicValue& value);
    void setValue(const char* key, unsigned int length, const DynamicValue& value);

    // Strict operations.
    /// `null` for a handle that names no property.
    type::Type getType(unsigned int property) const;
    type::Type getType(const char* key) const;
    type::Type getType(const char* key, unsigned int length) const;
    bool isTypeCompatible(unsigned int property, type::Type type) const;
    bool isTypeCompatible(const char* key, type::Type type) const;
    bool isTypeCompatible(const char* key, unsigned int length, type::Type type) const;
    unsigned int countChildren(unsigned int property) const;
    unsigned int countChildren(const char* key) const;
    unsigned int countChildren(const char* key, unsigned int length) const;
    /// Sizes of `maximumArraySize` and above are ignored and reported as success.
    bool resize(unsigned int property, unsigned int newSize);
    bool resize(const char* key, unsigned int newSize);
    bool resize(const char* key, unsigned int length, unsigned int newSize);
    void retrieveValue(unsigned int property, DynamicValue& value) const;
    void retrieveValue(const char* key, DynamicValue& value) const;
    void retrieveValue(const char* key, unsigned int length, DynamicValue& value) const;
    unsigned int addChild(unsigned int parent, const char* key, unsigned int length);
    unsigned int addChild(unsigned int parent, const char* key);
    unsigned int addChild(const char* parentKey, const char* key, unsigned int length);
    unsigned int addChild(const char* parentKey, unsigned int parentLength, const char* key, unsigned int length);
    bool eraseChild(unsigned int parent, const char* key, unsigned int length);
    bool eraseChild(const char* parentKey, const char* key, unsigned int length);
    bool eraseChild(const char* parentKey, unsigned int parentLength, const char* key, unsigned int length);
    /// Erases an array element. Later elements move down: a handle names a position, not a value.
    bool eraseChild(unsigned int parent, unsigned int index);
    bool eraseChild(const char* parentKey, unsigned int index);
    bool eraseChild(const char* parentKey, unsigned int parentLength, unsigned int index);
    unsigned int getChild(unsigned int parent, const char* key, unsigned int length) const;
    unsigned int getChild(const char* parentKey, const char* key, unsigned int length) const;
    unsigned int getChild(const char* parentKey, unsigned int parentLength, const char* key,
                          unsigned int length) const;
    /// The element of an array, or the index-th child of an object in key order (linear).
    unsigned int getChild(unsigned int parent, unsigned int index) const;
    unsigned int getChild(const char* parentKey, unsigned int index) const;
    unsigned int getChild(const char* parentKey, unsigned int parentLength, unsigned int index) const;

    // Soft operations: a path that names nothing passes handle 0 on.
    void resetProperty(unsigned int property);
    void resetProperty(const char* key);
    void resetProperty(const char* key, unsigned int length);
    bool hasChild(unsigned int parent, const char* key, unsigned int length) const;
    bool hasChild(unsigned int parent, const char* key) const;
    bool hasChild(const char* parentKey, const char* key, unsigned int length) const;
    bool hasChild(const char* parentKey, unsigned int parentLength, const char* key, unsigned int length) const;
    /// Whether the subtree fits the registered type `id`: for a type of object kind, each child
    /// found under one of the type's property keys (inherited ones included) must fit that
    /// property's value type, recursively, and children under other keys are not looked at; for
    /// any other kind, the stored type decides. False for handle 0 and for an unregistered id.
    bool isTypeCompatible(unsigned int property, const Uuid& id, const TypeManager& manager) const;
    bool isTypeCompatible(const char* key, const Uuid& id, const TypeManager& manager) const;
    bool isTypeCompatible(const char* key, unsigned int length, const Uuid& id, const TypeManager& manager) const;

    /// Renames a child of `parent`; the child and its descendants keep their handles.
    unsigned int renameChild(unsigned int parent, const char* key, unsigned int length, const char* newKey,
                             unsigned int newLength);
    unsigned int renameChild(unsigned int parent, const char* key, const char* newKey);

    /// Copies a subtree of `other` (which may be this object) by value into `property`.
    void put(unsigned int property, const DynamicObject& other, unsigned int otherProperty);
    void put(unsigned int property, const DynamicObject& other);
    void put(const char* key, const DynamicObject& other);
    void put(const char* key, unsigned int length, const DynamicObject& other);
    void put(const char* key, unsigned int length, const DynamicObject& other, const char* otherKey,
             unsigned int otherLength);

    /// Rebuilds the value of `property` in `target`, from `target`'s root, through a
    /// DynamicObjectBuilder whose refusals are failed assertions. A handle of 0 sends a null. What
    /// was built before a refusal stays in `target`.
    void retrieve(unsigned int property, DynamicObject& target) const;
    void retrieve(const char* key, DynamicObject& target) const;
    void retrieve(const char* key, unsigned int length, DynamicObject& target) const;

    /// Writes the node store as it lies in memory: a header of 24 bytes (magic 0x81, version
    /// 0.4.0, block size, block count, root, slots taken in the last block, free list head), then
    /// every block. The string table is not written: string values travel as hashes only.
    bool saveBlob(AbstractDataInputOutput& output, AbstractLogger* logger) const;
    /// Replaces the nodes with those of a blob saved from an object of the same block size; handles
    /// and the free list come back as they were. A blob refused by its header leaves the object as
    /// it was; one that fails later leaves no nodes at all, and `clear` or another load must follow.
    /// String values read as their default unless this object's table knows their hashes.
    bool loadBlob(AbstractDataInputOutput& input, AbstractLogger* logger);

    /// Sends the tree as one document (`begin`, the root's value, `end`); true only if every event
    /// was accepted. Object keys come in the iterator's order.
    bool visit(AbstractObjectBuilder& builder) const;
    bool visit(unsigned int property, AbstractObjectBuilder& builder) const;
    /// The same with the raw nodes below `property`, as nested objects: a debugging dump.
    bool visitTrie(unsigned int property, AbstractObjectBuilder& builder) const;
    /// The value of one property as builder events, with no `begin` or `end`.
    bool recursiveVisit(unsigned int property, AbstractObjectBuilder& builder) const;
    /// One node and the nodes it links to, as builder events.
    bool recursiveVisitTrie(unsigned int index, AbstractObjectBuilder& builder) const;

private:
    /// Whether a walk may take one more level or child after `steps` of them, meeting an array of
    /// `elementCount` elements; a failed assertion otherwise.
    bool checkNesting(std::size_t steps, unsigned long long elementCount) const;
    friend class impl::DynamicObjectPropertyChildrenIterator;
    friend class DynamicObjectIterator;
    friend class impl::DynamicObjectPathCreator;
    friend class DynamicObjectBuilder;

    Node* getNode(unsigned int index) const
    {
        if (index == 0) {
            return nullptr;
        }
        const unsigned int offset = index - 1;
        unsigned int block;
        unsigned int slot;
        // Every key step goes through here: a power-of-two block size (the default) saves the division.
        if (blockShift_ != noBlockShift) {
            block = offset >> blockShift_;
            slot = offset & ((1u << blockShift_) - 1);
        } else {
            block = offset / nodeAllocator_->blockSize_;
            slot = offset % nodeAllocator_->blockSize_;
        }
        if (__builtin_expect(block >= blocks_.size(), 0)) {
            return reportBlockOutOfRange();
        }
        return blocks_[block] + slot;
    }

    /// The failed assertion of a handle past the blocks, kept out of line so that getNode stays small
    /// enough to inline into every walk. The hook returned: such a handle names nothing, rather than
    /// memory not ours.
    static Node* reportBlockOutOfRange();

    static constexpr unsigned int noBlockShift = 0xFFFFFFFFu;
    /// log2 of the block size when it is a power of two, else noBlockShift.
    static unsigned int computeBlockShift(unsigned int blockSize);

    // Every key character and value of a new property comes from here: the bump of the last
    // block is kept inline, the free list and a new block are not.
    Node* allocateNode(char splitChar, unsigned int& index)
    {
        const unsigned int blockSize = nodeAllocator_->blockSize_;
        if (firstFreeNode_ != 0 || lastBlockUsed_ >= blockSize) {
            return allocateNodeFromStore(splitChar, index);
        }
        const unsigned int slot = lastBlockUsed_++;
        index = static_cast<unsigned int>(blocks_.size() - 1) * blockSize + slot + 1;
        Node* node = blocks_.back() + slot;
        std::memset(node, 0, sizeof(Node));
        node->trie.splitChar = static_cast<signed char>(splitChar);
        return node;
    }
    Node* allocateNodeFromStore(char splitChar, unsigned int& index);
    Node* allocateValueNode(unsigned int& index)
    {
        Node* node = allocateNode(0, index);
        if (node != nullptr) {
            node->value.isValue = 1;
            node->value.type = type::null;
        }
        return node;
    }
    void deallocateNode(Node* node, unsigned int index);
    Node* findNode(unsigned int start, const char* key, unsigned int length, bool toProperty,
                   unsigned int& index) const;
    // Every read and write by handle starts here: kept inline.
    Node* findValueNode(Node* node, unsigned int& valueIndex) const
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
    Node* findValueNode(unsigned int property) const
    {
        unsigned int valueIndex;
        return findValueNode(getNode(property), valueIndex);
    }
    Node* findValueNode(unsigned int start, const char* key, unsigned int length, unsigned int& property,
                        unsigned int& valueIndex) const;
    Node* addProperty(unsigned int start, const char* key, unsigned int length, bool& added, unsigned int& property,
                      unsigned int& valueIndex);
    /// Where an insertion left its key: the nodes that the equal links after the key's first and
    /// last characters lead to, which are where a walk of the following text continues.
    struct KeyPlace {
        unsigned int firstLevel;
        unsigned int level;
    };
    /// What the last insertion from one start node passed through, so that the next one, which
    /// mostly shares its beginning and sorts after it (array indices, keys written in order), goes
    /// on from there instead of walking each level of its key again. A builder keeps one for each
    /// container it fills. The first `depth` characters are kept; the rest is walked as usual.
    struct InsertionTrail {
        static constexpr unsigned int depth = 16;
        /// The node the key was walked from; 0 when nothing is recorded.
        unsigned int start = 0;
        /// The property whose children the keys are (the root for its own), 0 for the elements of
        /// an array; set by every insertion that records the trail, with `start`.
        unsigned int owner = 0;
        /// The value node of the property whose children the keys are (the owner, or the array of
        /// the elements) once an insertion has looked it up, null until then.
        Node* ownerValue = nullptr;
        unsigned int length = 0;
        /// shapeStamp_ when recorded: any change of the tree but the addition of keys makes it stale.
        unsigned long long stamp = 0;
        char text[depth] = {};
        /// The node each character was found or made at, as index and address (blocks never move).
        unsigned int matched[depth] = {};
        Node* matchedNode[depth] = {};
        /// For each character, the node of the smallest character of its level that the walk went
        /// below, 0 if none, and that character: a later character above the recorded one and below
        /// this one takes the same way down to the matched node and goes on past it.
        unsigned int bound[depth] = {};
        signed char boundCharacter[depth] = {};
        /// The value node of the property that the last insertion made, still null; null when it
        /// made none.
        Node* madeValue = nullptr;
        /// When the recorded key is the last element of the array `start`, whose value node is
        /// `ownerValue`: the index of the next one. 0 otherwise.
        unsigned int nextElement = 0;

        /// Records where character `position` was found or made, and what bounded it.
        void recordStep(unsigned int position, unsigned int index, Node* node, unsigned int boundIndex,
                        signed char boundSplit)
        {
            matched[position] = index;
            matchedNode[position] = node;
            bound[position] = boundIndex;
            boundCharacter[position] = boundSplit;
        }
        /// Gives the trail a new owner, with its value node if known.
        void setOwner(unsigned int property, Node* value = nullptr)
        {
            owner = property;
            ownerValue = value;
        }
        /// Takes the text of a key whose first `kept` characters the recorded one has already.
        void recordText(const char* key, unsigned int kept, unsigned int recorded)
        {
            // A few characters at most: a loop costs less than a call.
            for (unsigned int i = kept; i < recorded; ++i) {
                text[i] = key[i];
            }
            length = recorded;
            nextElement = 0;
        }
    };
    Node* addProperty(unsigned int start, const char* key, unsigned int length, bool& added, unsigned int& property,
                      unsigned int& valueIndex, KeyPlace* place, InsertionTrail* trail = nullptr);
    /// Takes the part of a recorded insertion that `key` shares: sets `link` to where the walk of
    /// the rest starts (and `firstLink`, `bound` as the walk would have them) and returns the
    /// number of characters already matched.
    static unsigned int followTrail(const InsertionTrail& trail, const char* key, unsigned int length,
                                    unsigned int& startLink, unsigned int*& link, unsigned int*& firstLink,
                                    unsigned int& bound, signed char& boundCharacter);
    bool eraseProperty(unsigned int* link, const char* key, unsigned int length, bool& removed);
    bool eraseProperty(unsigned int property, const char* key, unsigned int length);
    void addRootProperty();
    void doClear();
    void doMemoryCopy(const DynamicObject& other);
    void doCopyAcrossBlockSizes(const DynamicObject& other);

    /// The property named by `key`, as stored text, with no listener call.
    unsigned int lookUpProperty(const char* key, unsigned int length) const;
    /// The property for a strict path form: a missing one is a failed assertion, then 0.
    unsigned int getPropertyAsserts(const char* key, unsigned int length) const;
    unsigned int getPropertyAsserts(const char* key) const;
    /// Where the keys of `parent`'s children start: the root itself, or the node after the
    /// parent's `.`; 0 when the parent has no child.
    unsigned int findChildrenStart(unsigned int parent) const;
    // eraseChild by key, in the two halves around the reset of the child, so that a reset of
    // nested children can run them from its own stack.
    /// The child named `key`, 0 if there is none with a value.
    unsigned int findChildToErase(unsigned int parent, const char* key, unsigned int length) const;
    /// Takes the nodes of an emptied child out of the trie and counts it out of its parent.
    void finishErasingChild(unsigned int parent, const char* key, unsigned int length);
    struct ResetFrame;
    /// Starts the reset of a property (the listeners hear of it) and pushes it.
    void beginReset(unsigned int property, Vector<ResetFrame>& stack);
    struct PutFrame;
    /// Starts the copy of one source property into `property` (the listeners hear of it): a
    /// scalar is stored and done, a container is pushed (true) for its children to follow.
    bool beginPut(unsigned int property, const DynamicObject& other, unsigned int otherProperty,
                  Vector<PutFrame>& stack);
    /// The next child of a property under reset to reset and erase, 0 when there is none (or, for
    /// an array, a missing element, with `pending` set).
    unsigned int nextChildToReset(ResetFrame& frame);
    /// `length` consecutive slots from the last block, cleared, with the index of the first in
    /// `first`: what the one-by-one allocation would hand out when no released slot waits and the
    /// block has room. Null otherwise, with nothing taken.
    Node* takeRun(unsigned int length, unsigned int& first);
    /// Writes the new tail of a key from `position` (its characters, its end and its value) into
    /// `run`, whose first node is `first`, hangs it on `link`, and records it on `trail` up to
    /// `recorded` characters; returns the end of the key.
    Node* fillKeyRun(Node* run, unsigned int first, unsigned int* link, const char* key, unsigned int position,
                     unsigned int length, InsertionTrail* trail, unsigned int recorded, unsigned int bound,
                     signed char boundCharacter, unsigned int*& firstLink, unsigned int& endOfKeyIndex);
    /// Takes a run for the new tail of a key from `position` and fills it; null, with nothing
    /// changed, when released slots wait or the last block has no room for it.
    Node* makeKeyRun(unsigned int* link, const char* key, unsigned int position, unsigned int length,
                     InsertionTrail* trail, unsigned int recorded, unsigned int bound, signed char boundCharacter,
                     unsigned int*& firstLink, unsigned int& endOfKeyIndex);
    /// The new property `key` from the trail's start, when the trail leads straight to an empty
    /// link and the rest fits as one run: its handle, and in `firstLevel` the node behind its first
    /// character. 0, with nothing changed, when addProperty has to do it.
    unsigned int addAlongTrail(const char* key, unsigned int length, InsertionTrail& trail, unsigned int& firstLevel);
    /// The first child of a builder's new object, with the object's `.`, when nothing follows the
    /// object's key on its level and all fits as one run; the trail then records it. 0, with
    /// nothing changed, otherwise. `parentValue` is the object's value node, when it has one.
    unsigned int addFirstChildAlong(unsigned int parent, const char* key, unsigned int length, InsertionTrail& trail,
                                    Node*& parentValue);
    /// A builder's new child of `parent` in that case; 0, with nothing changed, whenever doAddChild
    /// has to do it.
    unsigned int addChildAlong(unsigned int parent, const char* key, unsigned int length, InsertionTrail& trail);
    /// A builder's new element `index` of `array`, of key `key`, in that case; 0, with nothing
    /// changed, whenever addElement has to go through addProperty.
    unsigned int addElementAlong(unsigned int array, unsigned int index, const char* key, unsigned int length,
                                 InsertionTrail& trail);
    /// A builder's next element of `array`, counted in, when the trail recorded the last one and
    /// the new key hangs straight past its last digit; 0, with nothing changed, otherwise (and
    /// appendElement adds it).
    unsigned int appendNextElementAlong(unsigned int array, InsertionTrail& trail);
    /// `scanned` says that the caller has made sure that the key holds no byte 0.
    unsigned int doAddChild(unsigned int parent, const char* key, unsigned int length,
                            InsertionTrail* trail = nullptr, bool scanned = false);
    /// The value node of a property for an operation that needs one; "Invalid property" otherwise.
    Node* findValueNodeAsserts(unsigned int property) const
    {
        Node* value = findValueNode(property);
        return value != nullptr ? value : reportInvalidProperty();
    }
    /// The failed assertion of findValueNodeAsserts, out of line. The hook returned: the caller
    /// gives up on this handle, as for a missing property.
    static Node* reportInvalidProperty();
    /// Appends a null element to an array (or a null property, which becomes one) and returns its
    /// handle, 0 when no node is left. Unlike resize this reaches the last of maximumArraySize
    /// elements, which a builder fills from a document.
    /// `full` tells a refusal of an array that has all its elements already, which adds nothing.
    unsigned int appendElement(unsigned int array, InsertionTrail* trail, bool& full);
    /// Adds the nodes of the element at `index` of `array`, with its shortcut, and returns its
    /// handle; 0 when no node is left. The array's count is the caller's to set.
    unsigned int addElement(unsigned int array, unsigned int index, InsertionTrail* trail = nullptr);
    /// Removes the children of an array or object value before a scalar is stored.
    void prepareScalarWrite(unsigned int property, Node*& value);

    // The side index of the trie (never saved): shortcuts for the pieces of keys on the levels
    // where a walk is long. Kept by every change of structure; lookups only read it.
    /// Records that a walk from `stand` over `piece` goes on from `target`, the child just made
    /// being one of `count` under that stand; the level is indexed once it is worth it. Defined
    /// with the index (impl::DynamicObjectIndex), inline.
    inline void indexChild(unsigned int stand, const char* piece, unsigned int length, unsigned int target,
                    unsigned long long count);
    /// Takes out the shortcut of a child about to be erased.
    void forgetChild(unsigned int stand, const char* piece, unsigned int length);
    /// Records the shortcuts of every child under `stand`, and marks the level as indexed.
    void indexLevel(unsigned int stand);
    /// Drops the whole index and records it afresh from the nodes.
    void rebuildIndex();
    void copyIndex(const DynamicObject& other);

    // Listener notification. A null entry is a failed assertion and is then skipped.
    template <typename Call>
    void notify(Call call) const;
    template <typename Call>
    void notifyListeners(Call call) const;

    NodeAllocator* nodeAllocator_;
    StringTable* stringTable_;
    bool isOwning_;
    Vector<Node*> blocks_;
    Vector<AbstractDynamicObjectListener*> listeners_;
    unsigned int root_;
    unsigned int lastBlockUsed_;
    unsigned int firstFreeNode_;
    // Derived from the allocator's block size, for getNode.
    unsigned int blockShift_;
    // Made by the first level worth indexing; null until then.
    impl::DynamicObjectIndex* index_;
    // Counts the changes that may take a node off a recorded insertion path: releases of nodes,
    // rewired links, a cleared store.
    unsigned long long shapeStamp_;
};

} // namespace utils
} // namespace orv

#endif
