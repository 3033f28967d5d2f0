// DynamicObject as a producer of builder events: the tree of values, and the raw trie.

#include <orv/utils/DynamicObject.h>

#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/DynamicObjectPropertyChildrenIterator.h>

#include <cstring>

namespace orv {
namespace utils {

bool DynamicObject::visit(AbstractObjectBuilder& builder) const
{
    return visit(root_, builder);
}

bool DynamicObject::visit(unsigned int property, AbstractObjectBuilder& builder) const
{
    return builder.begin() && recursiveVisit(property, builder) && builder.end();
}

bool DynamicObject::visitTrie(unsigned int property, AbstractObjectBuilder& builder) const
{
    return builder.begin() && recursiveVisitTrie(property, builder) && builder.end();
}

namespace {

__attribute__((noinline, cold)) void reportMissingString()
{
    ORV_FAIL("stringValue");
}

/// The type of a value node; a missing node counts as null.
inline unsigned int typeOf(const DynamicObject::Node* value)
{
    return value != nullptr ? value->value.type : static_cast<unsigned int>(type::null);
}

/// The string value sent last, with its length: documents repeat values, and a repeated one is
/// not looked up again. It starts as what hash 0 gives, the empty text.
struct LastString {
    unsigned long long hash = 0;
    const char* text = "";
    unsigned int length = 0;
};

/// Sends a value of a type up to boolean, none of which has children.
inline bool sendScalar(unsigned int valueType, const DynamicObject::Node* value, const StringTable& strings,
                       LastString& last, AbstractObjectBuilder& builder)
{
    switch (valueType) {
    case type::integer:
        return builder.integer(value->getInteger());
    case type::real:
        return builder.real(value->getReal());
    case type::string: {
        const unsigned long long hash = value->getPayload();
        if (hash != last.hash) {
            const char* text = strings.retrieve(hash, "", last.length);
            if (text == nullptr) {
                reportMissingString();
                // The hook returned: the value goes out as the empty text.
                text = "";
                last.length = 0;
            }
            last.hash = hash;
            last.text = text;
        }
        return builder.string(last.text, last.length);
    }
    case type::boolean:
        return builder.boolean(value->getPayload() != 0);
    default:
        return builder.null();
    }
}

} // namespace

bool DynamicObject::checkNesting(std::size_t steps, unsigned long long elementCount) const
{
    // Every level of a sound tree, and every child of an object, holds nodes of its own, and no
    // array grows past the largest size: deeper levels, more children or longer arrays come from
    // node links that loop or counts that lie, which only a blob from outside can hold. Walks
    // stop there rather than run on.
    const bool sound = steps < blocks_.size() * nodeAllocator_->getBlockSize() && elementCount <= maximumArraySize;
    ORV_CHECK(sound, "Unable to walk the dynamic object, its nodes are broken");
    return sound;
}

bool DynamicObject::recursiveVisit(unsigned int property, AbstractObjectBuilder& builder) const
{
    using Walk = impl::DynamicObjectPropertyChildrenIterator;
    // The visit keeps its own stack of open arrays and objects rather than recursing. The walks
    // that list the children of open objects share one set of stacks, each nested walk above the
    // one that found its object, and keep their state there between children: one step of a walk
    // goes from a child to the next without starting over. The first levels live here, so that a
    // document of modest nesting allocates nothing.
    struct Level {
        unsigned int property;
        // For an array, the next position and the size; for an object, the children sent so far.
        unsigned int index;
        unsigned int count;
        bool isObject;
        // For an object, its children walk and the child it is at.
        Walk::Start walk;
        unsigned int child;
    };
    impl::InlineStack<Level, 64> levels;
    Walk::Storage<64, 128> storage;
    Walk::Stacks& stacks = storage.stacks;
    const Walk::Nodes nodes(*this);
    LastString lastString;

    // The property whose value goes out next, and its value node: one look-up serves the type and
    // the value, and the walks of objects and arrays find the node on their way to the child.
    unsigned int current = property;
    unsigned int valueIndex = 0;
    const Node* value = findValueNode(getNode(current), valueIndex);
    bool valueDue = true;
    for (;;) {
        if (valueDue) {
            const unsigned int propertyType = typeOf(value);
            switch (propertyType) {
            case type::null:
            case type::integer:
            case type::real:
            case type::string:
            case type::boolean:
                if (!sendScalar(propertyType, value, *stringTable_, lastString, builder)) {
                    return false;
                }
                break;
            case type::array:
                if (!builder.beginArray()) {
                    return false;
                }
                if (!checkNesting(levels.size(), static_cast<unsigned long long>(value->getPayload()))) {
                    return false;
                }
                levels.push_back(Level{current, 0, static_cast<unsigned int>(value->getPayload()), false, {}, 0});
                break;
            case type::object:
                if (!builder.beginObject()) {
                    return false;
                }
                if (!checkNesting(levels.size(), 0)) {
                    return false;
                }
                // The root's children hang off the root itself, as every property's hang off its end of key.
                levels.push_back(Level{current, 0, 0, true,
                                       Walk::Start{current, valueIndex, stacks.depth, stacks.keyLength}, current});
                break;
            default:
                ORV_LOG_ERROR(builder.getLogger(), error::invalidConfiguration,
                              "Error while visiting dynamic object, unexpected property type " << propertyType);
                return false;
            }
        }
        if (levels.empty()) {
            return true;
        }
        Level& level = levels.back();
        if (level.isObject) {
            // The children that hold scalars go out here; an array or object goes round the outer loop.
            valueDue = false;
            for (;;) {
                const Node* childValue = Walk::step(nodes, level.walk, level.child, stacks, storage);
                if (childValue == nullptr) {
                    break;
                }
                if (!checkNesting(++level.count, 0)) {
                    return false;
                }
                const char* key = stacks.key + level.walk.keyLength;
                const unsigned int keyLength = stacks.keyLength - level.walk.keyLength;
                if (!builder.objectChild(Walk::keyOf(key, keyLength), Walk::keyLengthOf(key, keyLength))) {
                    return false;
                }
                // The child is the end-of-key node below its value node, and its key ends with the
                // end-of-key character; only broken nodes give anything else, and no value then.
                current = Walk::childOf(stacks.nodes, stacks.depth, level.walk.depth);
                const bool atValue = keyLength != 0 && key[keyLength - 1] == '\0';
                valueIndex = atValue ? stacks.nodes[stacks.depth - 1] : 0;
                value = atValue ? childValue : nullptr;
                const unsigned int childType = typeOf(value);
                if (childType > type::boolean) {
                    valueDue = true;
                    break;
                }
                if (!sendScalar(childType, value, *stringTable_, lastString, builder)) {
                    return false;
                }
            }
            if (valueDue) {
                continue;
            }
            if (!builder.endObject()) {
                return false;
            }
        } else {
            if (level.index < level.count) {
                if (!builder.arrayChild()) {
                    return false;
                }
                // As getChild finds an element, without asking the array's type again.
                char key[16];
                const unsigned int length = formatArrayKey(level.index++, key);
                value = findValueNode(level.property, key, length, current, valueIndex);
                valueDue = true;
                continue;
            }
            if (!builder.endArray()) {
                return false;
            }
        }
        levels.pop_back();
        valueDue = false;
    }
}

bool DynamicObject::recursiveVisitTrie(unsigned int index, AbstractObjectBuilder& builder) const
{
    // A trie node is an object with its handle and one member per link, equal (named by the split
    // character), greater and less; a value node has its handle and its value. The nodes are
    // written from a stack of their own, not by recursion: a long chain of siblings is as deep as
    // it is long. Each node of a sound trie is met once, so more nodes than the object has, or a
    // deeper stack, come from links that loop in a loaded blob, and the dump stops there.
    struct Frame {
        unsigned int links[3];
        char splitChar;
        int next;
    };
    Vector<Frame> stack;
    const std::size_t nodeCount = blocks_.size() * nodeAllocator_->getBlockSize();
    std::size_t opened = 0;
    // Writes a node, or its opening when it has links to follow: 1 for a node left open, 0 for a
    // node written whole, -1 for a refusal.
    const auto open = [&](unsigned int at) -> int {
        const Node* node = getNode(at);
        if (node == nullptr) {
            return builder.null() ? 0 : -1;
        }
        if (++opened > nodeCount && !checkNesting(opened, 0)) {
            return -1;
        }
        if (!builder.beginObject() || !builder.objectChild("handle", 6) || !builder.integer(at)) {
            return -1;
        }
        if (!node->isValueNode()) {
            // Copied out: the node may be reused while the builder runs.
            stack.push_back(Frame{{node->trie.equal, node->trie.greater, node->trie.less},
                                  static_cast<char>(node->trie.splitChar), 0});
            return 1;
        }
        bool written = true;
        switch (node->value.type) {
        case type::null:
            written = builder.objectChild("value", 5) && builder.null();
            break;
        case type::integer:
            written = builder.objectChild("value", 5) && builder.integer(node->getInteger());
            break;
        case type::real:
            written = builder.objectChild("value", 5) && builder.real(node->getReal());
            break;
        case type::string: {
            const char* text = stringTable_->retrieve(node->getPayload(), "unknown string");
            written = builder.objectChild("value", 5) &&
                      builder.string(text, static_cast<unsigned int>(std::strlen(text)));
            break;
        }
        case type::boolean:
            written = builder.objectChild("value", 5) && builder.boolean(node->getPayload() != 0);
            break;
        case type::array:
        case type::object:
            written = builder.objectChild("children count", 14) &&
                      builder.integer(static_cast<long long>(node->getPayload()));
            break;
        default:
            // An unknown type writes nothing further.
            break;
        }
        return written && builder.endObject() ? 0 : -1;
    };
    if (open(index) < 0) {
        return false;
    }
    static const char* const linkNames[3] = {nullptr, "greater", "less"};
    static const unsigned int linkNameLengths[3] = {1, 7, 4};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (frame.next == 3) {
            stack.pop_back();
            if (!builder.endObject()) {
                return false;
            }
            continue;
        }
        const int link = frame.next++;
        const unsigned int target = frame.links[link];
        if (!builder.objectChild(link == 0 ? &frame.splitChar : linkNames[link], linkNameLengths[link])) {
            return false;
        }
        // The frame is not used past here: opening the target may move the stack.
        if (target == 0 ? !builder.null() : open(target) < 0) {
            return false;
        }
    }
    return true;
}

} // namespace utils
} // namespace orv
