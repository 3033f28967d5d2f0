#include <orv/utils/DynamicObject.h>

#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/details/TypeCompatibility.h>
#include <orv/utils/AssertingLogger.h>
#include <orv/utils/DynamicObjectBuilder.h>
#include <orv/utils/DynamicValue.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/impl/DynamicObjectHelpers.h>
#include <orv/utils/impl/DynamicObjectIndex.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>

namespace orv {
namespace utils {

namespace impl {

/// Follows a parsed path from the root, creating each missing step. A name step through a
/// property that is neither null nor an object, or an index step through one that is neither null
/// nor an array, replaces that property, silently.
class DynamicObjectPathCreator : public AbstractPropertyParser {
public:
    explicit DynamicObjectPathCreator(DynamicObject& object) : object_(object), current_(object.getRoot()) {}

    bool key(const char* key, unsigned int length) override
    {
        const type::Type type = object_.getType(current_);
        if (type != type::null && type != type::object) {
            object_.resetProperty(current_);
        }
        current_ = object_.doAddChild(current_, key, length);
        return current_ != 0;
    }

    bool key(const char* key) override { return this->key(key, static_cast<unsigned int>(std::strlen(key))); }

    bool index(unsigned int index) override
    {
        const type::Type type = object_.getType(current_);
        if (type != type::null && type != type::array) {
            object_.resetProperty(current_);
        }
        if (index >= object_.countChildren(current_)) {
            object_.resize(current_, index + 1);
        }
        // Past the largest array the resize was ignored, and there is no element to go on with.
        current_ = object_.getChild(current_, index);
        return current_ != 0;
    }

    unsigned int getCurrent() const { return current_; }

private:
    DynamicObject& object_;
    unsigned int current_;
};

} // namespace impl

namespace {

using impl::checkKey;
using impl::measure;

// The conversion of x86 processors, which is what a real outside the integer range has always given.
long long truncate(double value)
{
    if (!(value > -9223372036854775808.0 && value < 9223372036854775808.0)) {
        return LLONG_MIN;
    }
    return static_cast<long long>(value);
}

} // namespace

unsigned int DynamicObject::computeBlockShift(unsigned int blockSize)
{
    if (blockSize == 0 || (blockSize & (blockSize - 1)) != 0) {
        return noBlockShift;
    }
    unsigned int shift = 0;
    while ((1u << shift) != blockSize) {
        ++shift;
    }
    return shift;
}

DynamicObject::DynamicObject()
    : nodeAllocator_(ORV_NEW(NodeAllocator)(defaultBlockSize)),
      stringTable_(ORV_NEW(StringTable)(stringTableSeed)),
      isOwning_(true),
      root_(0),
      lastBlockUsed_(defaultBlockSize),
      firstFreeNode_(0),
      blockShift_(computeBlockShift(nodeAllocator_->blockSize_)),
      index_(nullptr),
      shapeStamp_(0)
{
    addRootProperty();
}

DynamicObject::DynamicObject(NodeAllocator& allocator, StringTable& stringTable)
    : nodeAllocator_(&allocator),
      stringTable_(&stringTable),
      isOwning_(false),
      root_(0),
      lastBlockUsed_(allocator.blockSize_),
      firstFreeNode_(0),
      blockShift_(computeBlockShift(nodeAllocator_->blockSize_)),
      index_(nullptr),
      shapeStamp_(0)
{
    addRootProperty();
}

DynamicObject::DynamicObject(const DynamicObject& other)
    : nodeAllocator_(ORV_NEW(NodeAllocator)(other.nodeAllocator_->blockSize_)),
      stringTable_(ORV_NEW(StringTable)(*other.stringTable_)),
      isOwning_(true),
      root_(0),
      lastBlockUsed_(other.nodeAllocator_->blockSize_),
      firstFreeNode_(0),
      blockShift_(computeBlockShift(nodeAllocator_->blockSize_)),
      index_(nullptr),
      shapeStamp_(0)
{
    doMemoryCopy(other);
}

DynamicObject::DynamicObject(const Ref& other)
    : nodeAllocator_(other.get().nodeAllocator_),
      stringTable_(other.get().stringTable_),
      isOwning_(false),
      root_(0),
      lastBlockUsed_(other.get().nodeAllocator_->blockSize_),
      firstFreeNode_(0),
      blockShift_(computeBlockShift(nodeAllocator_->blockSize_)),
      index_(nullptr),
      shapeStamp_(0)
{
    doMemoryCopy(other.get());
}

DynamicObject::~DynamicObject()
{
    doClear();
    ORV_DELETE(index_);
    if (isOwning_) {
        ORV_DELETE(nodeAllocator_);
        ORV_DELETE(stringTable_);
    }
}

DynamicObject& DynamicObject::operator=(const DynamicObject& other)
{
    if (this == &other) {
        return *this;
    }
    doClear();
    *stringTable_ = *other.stringTable_;
    if (nodeAllocator_->blockSize_ == other.nodeAllocator_->blockSize_) {
        doMemoryCopy(other);
    } else {
        doCopyAcrossBlockSizes(other);
    }
    return *this;
}

void DynamicObject::clear()
{
    doClear();
    addRootProperty();
}

bool DynamicObject::empty() const
{
    return getType(root_) == type::null;
}

orv_DynamicObject& DynamicObject::getWrapper()
{
    return reinterpret_cast<orv_DynamicObject&>(*this);
}

const orv_DynamicObject& DynamicObject::getWrapper() const
{
    return reinterpret_cast<const orv_DynamicObject&>(*this);
}

void DynamicObject::setListener(AbstractDynamicObjectListener* listener)
{
    listeners_.clear();
    if (listener != nullptr) {
        listeners_.push_back(listener);
    }
}

void DynamicObject::addListener(AbstractDynamicObjectListener* listener)
{
    listeners_.push_back(listener);
}

void DynamicObject::removeListener(AbstractDynamicObjectListener* listener)
{
    listeners_.erase(std::remove(listeners_.begin(), listeners_.end(), listener), listeners_.end());
}

// Lookups.

unsigned int DynamicObject::lookUpProperty(const char* key, unsigned int length) const
{
    unsigned int property;
    unsigned int valueIndex;
    findValueNode(root_, key, length, property, valueIndex);
    return property;
}

unsigned int DynamicObject::getProperty(const char* key, unsigned int length) const
{
    if (!checkKey(key)) {
        return 0;
    }
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeGetProperty(); });
    const unsigned int property = lookUpProperty(key, length);
    notify([key, length](AbstractDynamicObjectListener& listener) { listener.afterGetProperty(key, length); });
    return property;
}

unsigned int DynamicObject::getProperty(const char* key) const
{
    return checkKey(key) ? lookUpProperty(key, measure(key)) : 0;
}

bool DynamicObject::hasProperty(const char* key, unsigned int length) const
{
    return checkKey(key) && lookUpProperty(key, length) != 0;
}

bool DynamicObject::hasProperty(const char* key) const
{
    return checkKey(key) && lookUpProperty(key, measure(key)) != 0;
}

unsigned int DynamicObject::addProperty(const char* key, unsigned int length)
{
    if (!checkKey(key)) {
        return 0;
    }
    impl::DynamicObjectPathCreator creator(*this);
    if (!parseProperty(key, length, creator, nullptr)) {
        return 0;
    }
    return creator.getCurrent();
}

unsigned int DynamicObject::addProperty(const char* key)
{
    return checkKey(key) ? addProperty(key, measure(key)) : 0;
}

unsigned int DynamicObject::getPropertyAsserts(const char* key, unsigned int length) const
{
    if (!checkKey(key)) {
        return 0;
    }
    const unsigned int property = getProperty(key, length);
    ORV_CHECK(property != 0, "Unable to find property for the key '" << impl::keyText(key, length) << "'");
    return property;
}

unsigned int DynamicObject::getPropertyAsserts(const char* key) const
{
    if (!checkKey(key)) {
        return 0;
    }
    const unsigned int property = getProperty(key);
    ORV_CHECK(property != 0, "Unable to find property for the key '" << key << "'");
    return property;
}

DynamicObject::Node* DynamicObject::reportInvalidProperty()
{
    ORV_FAIL("Invalid property");
    return nullptr;
}

// Reads.

long long DynamicObject::getInt(unsigned int property, long long defaultValue) const
{
    if (property == 0) {
        return defaultValue;
    }
    const Node* value = findValueNodeAsserts(property);
    if (value == nullptr) {
        return defaultValue;
    }
    switch (value->value.type) {
    case type::integer:
        return value->getInteger();
    case type::real:
        return truncate(value->getReal());
    case type::null:
    case type::string:
    case type::boolean:
    case type::array:
    case type::object:
        return defaultValue;
    default:
        ORV_FAIL(static_cast<unsigned int>(value->value.type) << " is an unknown orv::utils::type");
        return defaultValue;
    }
}

long long DynamicObject::getInt(const char* key, long long defaultValue) const
{
    return checkKey(key) ? getInt(getProperty(key), defaultValue) : defaultValue;
}

long long DynamicObject::getInt(const char* key, unsigned int length, long long defaultValue) const
{
    return checkKey(key) ? getInt(getProperty(key, length), defaultValue) : defaultValue;
}

double DynamicObject::getReal(unsigned int property, double defaultValue) const
{
    if (property == 0) {
        return defaultValue;
    }
    const Node* value = findValueNodeAsserts(property);
    if (value == nullptr) {
        return defaultValue;
    }
    switch (value->value.type) {
    case type::integer:
        return static_cast<double>(value->getInteger());
    case type::real:
        return value->getReal();
    case type::null:
    case type::string:
    case type::boolean:
    case type::array:
    case type::object:
        return defaultValue;
    default:
        ORV_FAIL(static_cast<unsigned int>(value->value.type) << " is an unknown orv::utils::type");
        return defaultValue;
    }
}

double DynamicObject::getReal(const char* key, double defaultValue) const
{
    return checkKey(key) ? getReal(getProperty(key), defaultValue) : defaultValue;
}

double DynamicObject::getReal(const char* key, unsigned int length, double defaultValue) const
{
    return checkKey(key) ? getReal(getProperty(key, length), defaultValue) : defaultValue;
}

bool DynamicObject::getBool(unsigned int property, bool defaultValue) const
{
    if (property == 0) {
        return defaultValue;
    }
    const Node* value = findValueNodeAsserts(property);
    if (value == nullptr) {
        return defaultValue;
    }
    switch (value->value.type) {
    case type::boolean:
        return value->getPayload() != 0;
    case type::null:
    case type::integer:
    case type::real:
    case type::string:
    case type::array:
    case type::object:
        return defaultValue;
    default:
        ORV_FAIL(static_cast<unsigned int>(value->value.type) << " is an unknown orv::utils::type");
        return defaultValue;
    }
}

bool DynamicObject::getBool(const char* key, bool defaultValue) const
{
    return checkKey(key) ? getBool(getProperty(key), defaultValue) : defaultValue;
}

bool DynamicObject::getBool(const char* key, unsigned int length, bool defaultValue) const
{
    return checkKey(key) ? getBool(getProperty(key, length), defaultValue) : defaultValue;
}

unsigned long long DynamicObject::getStringHash(unsigned int property, unsigned long long defaultValue) const
{
    if (property == 0) {
        return defaultValue;
    }
    const Node* value = findValueNodeAsserts(property);
    if (value == nullptr) {
        return defaultValue;
    }
    switch (value->value.type) {
    case type::string:
        return value->getPayload();
    case type::null:
    case type::integer:
    case type::real:
    case type::boolean:
    case type::array:
    case type::object:
        return defaultValue;
    default:
        ORV_FAIL(static_cast<unsigned int>(value->value.type) << " is an unknown orv::utils::type");
        return defaultValue;
    }
}

unsigned long long DynamicObject::getStringHash(const char* key, unsigned long long defaultValue) const
{
    return checkKey(key) ? getStringHash(getProperty(key), defaultValue) : defaultValue;
}

unsigned long long DynamicObject::getStringHash(const char* key, unsigned int length,
                                                unsigned long long defaultValue) const
{
    return checkKey(key) ? getStringHash(getProperty(key, length), defaultValue) : defaultValue;
}

const char* DynamicObject::getString(unsigned int property, const char* defaultValue) const
{
    // A property that is not a string has hash 0, which the table answers with the default.
    return stringTable_->retrieve(getStringHash(property, 0), defaultValue);
}

const char* DynamicObject::getString(const char* key, const char* defaultValue) const
{
    return checkKey(key) ? getString(getProperty(key), defaultValue) : defaultValue;
}

const char* DynamicObject::getString(const char* key, unsigned int length, const char* defaultValue) const
{
    return checkKey(key) ? getString(getProperty(key, length), defaultValue) : defaultValue;
}

// Writes.

void DynamicObject::prepareScalarWrite(unsigned int property, Node*& value)
{
    if ((value->value.type == type::array || value->value.type == type::object) && value->getPayload() > 0) {
        resetProperty(property);
        value = findValueNode(property);
    }
}

void DynamicObject::setInt(unsigned int property, long long value)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeSetInt(); });
    Node* node = findValueNodeAsserts(property);
    if (node != nullptr) {
        prepareScalarWrite(property, node);
    }
    if (node != nullptr) {
        node->value.type = type::integer;
        node->setInteger(value);
    }
    notify([property, value](AbstractDynamicObjectListener& listener) { listener.afterSetInt(property, value); });
}

void DynamicObject::setInt(const char* key, long long value)
{
    setInt(addProperty(key), value);
}

void DynamicObject::setInt(const char* key, unsigned int length, long long value)
{
    setInt(addProperty(key, length), value);
}

void DynamicObject::setReal(unsigned int property, double value)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeSetReal(); });
    Node* node = findValueNodeAsserts(property);
    if (node != nullptr) {
        prepareScalarWrite(property, node);
    }
    if (node != nullptr) {
        node->value.type = type::real;
        node->setReal(value);
    }
    notify([property, value](AbstractDynamicObjectListener& listener) { listener.afterSetReal(property, value); });
}

void DynamicObject::setReal(const char* key, double value)
{
    setReal(addProperty(key), value);
}

void DynamicObject::setReal(const char* key, unsigned int length, double value)
{
    setReal(addProperty(key, length), value);
}

void DynamicObject::setBool(unsigned int property, bool value)
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeSetBool(); });
    Node* node = findValueNodeAsserts(property);
    if (node != nullptr) {
        prepareScalarWrite(property, node);
    }
    if (node != nullptr) {
        node->value.type = type::boolean;
        node->setPayload(value ? 1 : 0);
    }
    notify([property, value](AbstractDynamicObjectListener& listener) { listener.afterSetBool(property, value); });
}

void DynamicObject::setBool(const char* key, bool value)
{
    setBool(addProperty(key), value);
}

void DynamicObject::setBool(const char* key, unsigned int length, bool value)
{
    setBool(addProperty(key, length), value);
}

void DynamicObject::setString(unsigned int property, const char* value, unsigned int valueLength)
{
    // This form shares its message with the keys.
    if (!checkKey(value)) {
        return;
    }
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeSetString(); });
    Node* node = findValueNodeAsserts(property);
    if (node != nullptr) {
        prepareScalarWrite(property, node);
    }
    if (node != nullptr) {
        node->value.type = type::string;
        // The previous text stays in the table: it never removes one.
        node->setPayload(stringTable_->add(value, valueLength, nullptr));
    }
    if (!listeners_.empty()) {
        const String text(value, valueLength);
        notify([property, &text](AbstractDynamicObjectListener& listener) { listener.afterSetString(property, text); });
    }
}

void DynamicObject::setString(unsigned int property, const char* value)
{
    ORV_CHECK(value != nullptr, "Null string given as a value");
    // The hook returned: there is no text to store, and the property stays as it is.
    if (value != nullptr) {
        setString(property, value, measure(value));
    }
}

void DynamicObject::setString(const char* key, const char* value)
{
    setString(addProperty(key), value);
}

void DynamicObject::setString(const char* key, unsigned int length, const char* value)
{
    setString(addProperty(key, length), value);
}

void DynamicObject::setString(const char* key, unsigned int length, const char* value, unsigned int valueLength)
{
    setString(addProperty(key, length), value, valueLength);
}

void DynamicObject::setValue(unsigned int property, const DynamicValue& value)
{
    switch (value.getType()) {
    case type::integer:
        setInt(property, value.getInt());
        break;
    case type::real:
        setReal(property, value.getReal());
        break;
    case type::string:
        setString(property, value.getString(), value.getStringLength());
        break;
    case type::boolean:
        setBool(property, value.getBool());
        break;
    case type::null:
        resetProperty(property);
        break;
    default:
        ORV_FAIL(static_cast<unsigned int>(value.getType()) << " is an unknown orv::utils::type");
        break;
    }
}

void DynamicObject::setValue(const char* key, const DynamicValue& value)
{
    setValue(addProperty(key), value);
}

void DynamicObject::setValue(const char* key, unsigned int length, const DynamicValue& value)
{
    setValue(addProperty(key, length), value);
}

// Types and values.

type::Type DynamicObject::getType(unsigned int property) const
{
    const Node* value = findValueNode(property);
    return value != nullptr ? static_cast<type::Type>(value->value.type) : type::null;
}

type::Type DynamicObject::getType(const char* key) const
{
    return getType(getPropertyAsserts(key));
}

type::Type DynamicObject::getType(const char* key, unsigned int length) const
{
    return getType(getPropertyAsserts(key, length));
}

bool DynamicObject::isTypeCompatible(unsigned int property, type::Type type) const
{
    return details::isTypeCompatible(getType(property), type);
}

bool DynamicObject::isTypeCompatible(const char* key, type::Type type) const
{
    return isTypeCompatible(getPropertyAsserts(key), type);
}

bool DynamicObject::isTypeCompatible(const char* key, unsigned int length, type::Type type) const
{
    return isTypeCompatible(getPropertyAsserts(key, length), type);
}

unsigned int DynamicObject::countChildren(unsigned int property) const
{
    const Node* value = findValueNodeAsserts(property);
    if (value == nullptr) {
        return 0;
    }
    if (value->value.type == type::array || value->value.type == type::object) {
        return static_cast<unsigned int>(value->getPayload());
    }
    return 0;
}

unsigned int DynamicObject::countChildren(const char* key) const
{
    return countChildren(getPropertyAsserts(key));
}

unsigned int DynamicObject::countChildren(const char* key, unsigned int length) const
{
    return countChildren(getPropertyAsserts(key, length));
}

void DynamicObject::retrieveValue(unsigned int property, DynamicValue& value) const
{
    const Node* node = findValueNodeAsserts(property);
    if (node == nullptr) {
        value.reset();
        return;
    }
    switch (node->value.type) {
    case type::null:
        value.reset();
        break;
    case type::integer:
        value.setInt(node->getInteger());
        break;
    case type::real:
        value.setReal(node->getReal());
        break;
    case type::string:
        value.setString(stringTable_->retrieve(node->getPayload(), ""));
        break;
    case type::boolean:
        value.setBool(node->getPayload() != 0);
        break;
    default:
        // Arrays and objects have no scalar form either.
        ORV_FAIL(static_cast<unsigned int>(node->value.type) << " is an unknown orv::utils::type");
        value.reset();
        break;
    }
}

void DynamicObject::retrieveValue(const char* key, DynamicValue& value) const
{
    retrieveValue(getPropertyAsserts(key), value);
}

void DynamicObject::retrieveValue(const char* key, unsigned int length, DynamicValue& value) const
{
    retrieveValue(getPropertyAsserts(key, length), value);
}

// Copies through builder events.

void DynamicObject::retrieve(unsigned int property, DynamicObject& target) const
{
    notify([](AbstractDynamicObjectListener& listener) { listener.beforeRetrieve(); });
    AssertingLogger logger;
    DynamicObjectBuilder builder(target, 0);
    builder.setLogger(&logger);
    if (builder.begin() && recursiveVisit(property, builder)) {
        builder.end();
    }
    notify([property](AbstractDynamicObjectListener& listener) { listener.afterRetrieve(property); });
}

void DynamicObject::retrieve(const char* key, DynamicObject& target) const
{
    retrieve(checkKey(key) ? getProperty(key) : 0, target);
}

void DynamicObject::retrieve(const char* key, unsigned int length, DynamicObject& target) const
{
    retrieve(checkKey(key) ? getProperty(key, length) : 0, target);
}

unsigned int DynamicObject::appendElement(unsigned int array, InsertionTrail* trail, bool& full)
{
    full = false;
    Node* value = findValueNodeAsserts(array);
    if (value == nullptr) {
        return 0;
    }
    const unsigned int count = value->value.type == type::array ? static_cast<unsigned int>(value->getPayload()) : 0;
    // An index has at most maximumArrayIndexLength digits, which bounds the element count.
    if (count >= maximumArraySize) {
        full = true;
        return 0;
    }
    const unsigned int element = addElement(array, count, trail);
    if (element == 0) {
        return 0;
    }
    // Blocks never move, so the value node is still where it was before the key's nodes came.
    value->setPayload(count + 1);
    value->value.type = type::array;
    if (trail != nullptr) {
        // The trail now records this element: the next one may count up from it.
        trail->nextElement = count + 1;
        trail->ownerValue = value;
    }
    return element;
}

} // namespace utils
} // namespace orv
