// DynamicObject as a producer of builder events: the tree of values, and the raw trie.

#include <orv/utils/DynamicObject.h>

#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/DynamicObjectIterator.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/details/Logging.h>

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

bool DynamicObject::recursiveVisit(unsigned int property, AbstractObjectBuilder& builder) const
{
    const unsigned int propertyType = getType(property);
    switch (propertyType) {
    case type::null:
        return builder.null();
    case type::integer:
        return builder.integer(getInt(property, 0));
    case type::real:
        return builder.real(getReal(property, 0.0));
    case type::string: {
        const char* text = stringTable_->retrieve(getStringHash(property, 0), "");
        ORV_CHECK(text != nullptr, "stringValue");
        // The hook returned: the value goes out as the empty text.
        if (text == nullptr) {
            text = "";
        }
        return builder.string(text, static_cast<unsigned int>(std::strlen(text)));
    }
    case type::boolean:
        return builder.boolean(getBool(property, false));
    case type::array: {
        if (!builder.beginArray()) {
            return false;
        }
        const unsigned int count = countChildren(property);
        for (unsigned int index = 0; index < count; ++index) {
            if (!builder.arrayChild() || !recursiveVisit(getChild(property, index), builder)) {
                return false;
            }
        }
        return builder.endArray();
    }
    case type::object: {
        if (!builder.beginObject()) {
            return false;
        }
        DynamicObjectIterator children(*this, property, 0);
        for (children.next(); !children.end(); children.next()) {
            if (!builder.objectChild(children.getKey(), children.getKeyLength()) ||
                !recursiveVisit(children.getProperty(), builder)) {
                return false;
            }
        }
        return builder.endObject();
    }
    default:
        ORV_LOG_ERROR(builder.getLogger(), error::invalidConfiguration,
                      "Error while visiting dynamic object, unexpected property type " << propertyType);
        return false;
    }
}

bool DynamicObject::recursiveVisitTrie(unsigned int index, AbstractObjectBuilder& builder) const
{
    const Node* node = getNode(index);
    if (node == nullptr) {
        return builder.null();
    }
    if (!builder.beginObject() || !builder.objectChild("handle", 6) || !builder.integer(index)) {
        return false;
    }
    if (!node->isValueNode()) {
        // Copied out: the node may be reused while the builder runs.
        const char splitChar = static_cast<char>(node->trie.splitChar);
        const unsigned int links[3] = {node->trie.equal, node->trie.greater, node->trie.less};
        const char* const names[3] = {&splitChar, "greater", "less"};
        const unsigned int lengths[3] = {1, 7, 4};
        for (int i = 0; i < 3; ++i) {
            if (!builder.objectChild(names[i], lengths[i])) {
                return false;
            }
            if (!(links[i] != 0 ? recursiveVisitTrie(links[i], builder) : builder.null())) {
                return false;
            }
        }
        return builder.endObject();
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
    return written && builder.endObject();
}

} // namespace utils
} // namespace orv
