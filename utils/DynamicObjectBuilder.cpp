#include <orv/utils/DynamicObjectBuilder.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/DynamicObjectHelpers.h>

namespace orv {
namespace utils {

namespace {

const char* const noCurrentProperty = "No current property.";

/// The bytes that no child name may hold: the path separators, and 0, which ends keys in the trie.
constexpr struct RefusedKeyBytes {
    bool refused[256];
    constexpr RefusedKeyBytes() : refused()
    {
        refused[0] = true;
        refused[static_cast<unsigned char>('.')] = true;
        refused[static_cast<unsigned char>('[')] = true;
        refused[static_cast<unsigned char>(']')] = true;
    }
    constexpr bool operator[](unsigned char byte) const { return refused[byte]; }
} isRefusedInKey;

} // namespace

DynamicObjectBuilder::DynamicObjectBuilder(DynamicObject& object, unsigned int property)
    : properties_()
    , types_()
    , object_(object)
    , trails_()
    , pendingChild_(0)
    , freshValue_(nullptr)
    , freshStamp_(0)
{
    const unsigned int start = property != 0 ? property : object.getRoot();
    properties_.push_back(start);
    types_.push_back(object.getType(start));
}

void DynamicObjectBuilder::growTrails(std::size_t depth)
{
    trails_.resize(depth);
}

void DynamicObjectBuilder::setPendingChild(unsigned int child, const DynamicObject::InsertionTrail& trail)
{
    pendingChild_ = child;
    freshValue_ = trail.madeValue;
    freshStamp_ = object_.shapeStamp_;
}

bool DynamicObjectBuilder::beginProperty(type::Type type)
{
    ORV_CHECK(properties_.size() == types_.size(), "Invalid state");
    // The hook returned: the shorter stack decides whether there is a current property.
    if (properties_.empty() || types_.empty()) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, noCurrentProperty);
        return false;
    }
    type::Type& current = types_.back();
    if (current == type::null || current == type) {
        current = type;
        return true;
    }
    ORV_LOG_ERROR(logger_, error::invalidOperation, "The current property is not of the expected type");
    return false;
}

bool DynamicObjectBuilder::endProperty(type::Type type)
{
    ORV_CHECK(properties_.size() == types_.size(), "Invalid state");
    ORV_CHECK(!types_.empty() && types_.back() == type, "Invalid call sequence");
    // The hook returned: the property is closed all the same, so the next event meets its parent.
    if (!properties_.empty()) {
        properties_.pop_back();
    }
    if (!types_.empty()) {
        types_.pop_back();
    }
    return true;
}

unsigned int DynamicObjectBuilder::currentForScalar(type::Type type)
{
    // A refused type is stored all the same and then fails the closing check: a scalar event
    // answers true, so the log and that assertion are all a producer leaves behind.
    beginProperty(type);
    return properties_.empty() ? 0 : properties_.back();
}

bool DynamicObjectBuilder::null()
{
    if (takeFreshValue() != nullptr) {
        // A fresh value is a null already.
        return true;
    }
    const unsigned int property = currentForScalar(type::null);
    if (property != 0) {
        object_.resetProperty(property);
        endProperty(type::null);
    }
    return true;
}

bool DynamicObjectBuilder::boolean(bool value)
{
    if (DynamicObject::Node* fresh = takeFreshValue()) {
        fresh->value.type = type::boolean;
        fresh->setPayload(value ? 1 : 0);
        return true;
    }
    const unsigned int property = currentForScalar(type::boolean);
    if (property != 0) {
        object_.setBool(property, value);
        endProperty(type::boolean);
    }
    return true;
}

bool DynamicObjectBuilder::integer(long long value)
{
    if (DynamicObject::Node* fresh = takeFreshValue()) {
        fresh->value.type = type::integer;
        fresh->setInteger(value);
        return true;
    }
    const unsigned int property = currentForScalar(type::integer);
    if (property != 0) {
        object_.setInt(property, value);
        endProperty(type::integer);
    }
    return true;
}

bool DynamicObjectBuilder::real(double value)
{
    if (DynamicObject::Node* fresh = takeFreshValue()) {
        fresh->value.type = type::real;
        fresh->setReal(value);
        return true;
    }
    const unsigned int property = currentForScalar(type::real);
    if (property != 0) {
        object_.setReal(property, value);
        endProperty(type::real);
    }
    return true;
}

bool DynamicObjectBuilder::string(const char* value, unsigned int size)
{
    // A null text takes the ordinary way, which reports it.
    DynamicObject::Node* fresh = nullptr;
    if (value != nullptr) {
        fresh = takeFreshValue();
    } else {
        pushPendingChild();
    }
    if (fresh != nullptr) {
        fresh->value.type = type::string;
        fresh->setPayload(object_.stringTable_->add(value, size, nullptr));
        return true;
    }
    const unsigned int property = currentForScalar(type::string);
    if (property != 0) {
        object_.setString(property, value, size);
        endProperty(type::string);
    }
    return true;
}

bool DynamicObjectBuilder::beginContainer(type::Type type)
{
    pushPendingChild();
    if (!beginProperty(type)) {
        return false;
    }
    // A key met twice names the property it already made, with no type on the stack yet: the
    // earlier value gives way to this one, as it does to a scalar.
    const unsigned int property = properties_.back();
    const type::Type stored = object_.getType(property);
    if (stored != type::null && stored != type) {
        object_.resetProperty(property);
    }
    return true;
}

bool DynamicObjectBuilder::beginObject()
{
    return beginContainer(type::object);
}

bool DynamicObjectBuilder::endObject()
{
    pushPendingChild();
    return endProperty(type::object);
}

bool DynamicObjectBuilder::beginArray()
{
    return beginContainer(type::array);
}

bool DynamicObjectBuilder::endArray()
{
    pushPendingChild();
    return endProperty(type::array);
}

bool DynamicObjectBuilder::objectChild(const char* key, unsigned int size)
{
    pushPendingChild();
    if (types_.empty()) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, noCurrentProperty);
        return false;
    }
    if (types_.back() != type::object) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "The current property is not an object.");
        return false;
    }
    // Keys are outside data (a JSON document, a message): one that can't name a child is refused
    // here, where the producer learns of it, instead of failing addChild's contract. Past these
    // checks the parent is an object (or still null) and the key is sound, which is all that
    // addChild asserts before it adds.
    // One pass over the key looks for the separators and for byte 0, which no stored key holds.
    bool refused = key != nullptr && size == 0;
    if (key != nullptr) {
        const unsigned char* bytes = reinterpret_cast<const unsigned char*>(key);
        for (unsigned int i = 0; i < size && !refused; ++i) {
            refused = isRefusedInKey[bytes[i]];
        }
    }
    DynamicObject::InsertionTrail& trail = currentTrail();
    unsigned int child = refused || key == nullptr ? 0 : object_.addChildAlong(properties_.back(), key, size, trail);
    if (child == 0 && !refused) {
        child = object_.doAddChild(properties_.back(), key, size, &trail, true);
    }
    if (child != 0) {
        setPendingChild(child, trail);
        return true;
    }
    if (logger_ != nullptr) {
        const impl::KeyText text = impl::keyText(key != nullptr ? key : "", key != nullptr ? size : 0);
        char invalid = 0;
        for (unsigned int i = 0; i < text.length && invalid == 0; ++i) {
            if (text.text[i] == '.' || text.text[i] == '[' || text.text[i] == ']') {
                invalid = text.text[i];
            }
        }
        if (invalid != 0) {
            ORV_LOG_ERROR(logger_, error::invalidArgument,
                "Unable to create a child named " << text << " to the current property, invalid character '" << invalid
                                                  << "' found.");
        } else {
            ORV_LOG_ERROR(logger_, error::invalidOperation,
                "Unable to create a child named " << text << " to the current property.");
        }
    }
    return false;
}

bool DynamicObjectBuilder::arrayChild()
{
    pushPendingChild();
    if (types_.empty()) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, noCurrentProperty);
        return false;
    }
    if (types_.back() != type::array) {
        ORV_LOG_ERROR(logger_, error::invalidOperation, "The current property is not an array.");
        return false;
    }
    const unsigned int array = properties_.back();
    DynamicObject::InsertionTrail& trail = currentTrail();
    const unsigned int next = object_.appendNextElementAlong(array, trail);
    if (next != 0) {
        setPendingChild(next, trail);
        return true;
    }
    bool full = false;
    const unsigned int element = object_.appendElement(array, &trail, full);
    if (full) {
        ORV_LOG_ERROR(logger_, error::invalidOperation,
            "The current array property (" << array << ") reached its maximum size: " << DynamicObject::maximumArraySize
                                           << ".");
        return false;
    }
    if (element == 0) {
        ORV_LOG_ERROR(
            logger_, error::badAllocation, "The current array property (" << array << ") can't take another element.");
        return false;
    }
    setPendingChild(element, trail);
    return true;
}

bool serializeDynamicObject(const DynamicObject& object, AbstractObjectBuilder& builder)
{
    return object.visit(builder);
}

} // namespace utils
} // namespace orv
