#ifndef ORV_UTILS_DETAILS_DYNAMICOBJECTNODE_H
#define ORV_UTILS_DETAILS_DYNAMICOBJECTNODE_H

#include <cstddef>
#include <cstring>

namespace orv {
namespace utils {
namespace details {

/// One 16-byte node of a dynamic object's trie. Nodes refer to each other by 32-bit index into the
/// object's blocks, 0 meaning none, so that a block can be copied or stored as it lies. The three
/// views share the two flag bytes at offsets 12 and 13.
union DynamicObjectNode {
    /// A character of a key (splitChar not 0) or the end of a key (splitChar 0, the property itself).
    struct Trie {
        unsigned int greater;
        unsigned int equal;
        unsigned int less;
        unsigned char isValue;
        signed char splitChar;
        unsigned char zero[2];
    } trie;

    /// The leaf under an end-of-key node. The payload is kept as two words so that the node keeps
    /// the alignment of its index fields; it is read and written through the accessors below.
    struct Value {
        unsigned int payloadLow;
        unsigned int payloadHigh;
        unsigned char type;
        unsigned char zero[3];
        unsigned char isValue;
        signed char splitChar;
        unsigned char padding[2];
    } value;

    /// A slot on the free list: only the first word means anything.
    struct Free {
        unsigned int next;
        unsigned int stale[2];
        unsigned char isValue;
        signed char splitChar;
        unsigned char padding[2];
    } free;

    unsigned char bytes[16];

    unsigned long long getPayload() const
    {
        unsigned long long payload;
        std::memcpy(&payload, &value.payloadLow, sizeof(payload));
        return payload;
    }

    void setPayload(unsigned long long payload) { std::memcpy(&value.payloadLow, &payload, sizeof(payload)); }

    long long getInteger() const
    {
        long long integer;
        std::memcpy(&integer, &value.payloadLow, sizeof(integer));
        return integer;
    }

    void setInteger(long long integer) { std::memcpy(&value.payloadLow, &integer, sizeof(integer)); }

    double getReal() const
    {
        double real;
        std::memcpy(&real, &value.payloadLow, sizeof(real));
        return real;
    }

    void setReal(double real) { std::memcpy(&value.payloadLow, &real, sizeof(real)); }

    bool isValueNode() const { return trie.isValue != 0; }

    /// A trie node that ends a key: its index is a property handle.
    bool isEndOfKey() const { return trie.isValue == 0 && trie.splitChar == 0; }
};

static_assert(sizeof(DynamicObjectNode) == 16, "a dynamic object node is 16 bytes");
static_assert(alignof(DynamicObjectNode) == 4, "nodes are packed in blocks with no padding");
static_assert(offsetof(DynamicObjectNode::Trie, greater) == 0, "greater link at byte 0");
static_assert(offsetof(DynamicObjectNode::Trie, equal) == 4, "equal link at byte 4");
static_assert(offsetof(DynamicObjectNode::Trie, less) == 8, "less link at byte 8");
static_assert(offsetof(DynamicObjectNode::Trie, isValue) == 12, "value flag at byte 12");
static_assert(offsetof(DynamicObjectNode::Trie, splitChar) == 13, "split character at byte 13");
static_assert(offsetof(DynamicObjectNode::Value, payloadLow) == 0, "payload at byte 0");
static_assert(offsetof(DynamicObjectNode::Value, type) == 8, "value type at byte 8");
static_assert(offsetof(DynamicObjectNode::Value, isValue) == 12, "value flag shared at byte 12");
static_assert(offsetof(DynamicObjectNode::Value, splitChar) == 13, "split character shared at byte 13");
static_assert(offsetof(DynamicObjectNode::Free, next) == 0, "free list link at byte 0");
static_assert(offsetof(DynamicObjectNode::Free, isValue) == 12, "value flag shared at byte 12");

} // namespace details
} // namespace utils
} // namespace orv

#endif
