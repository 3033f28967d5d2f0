#include <orv/utils/DynamicValue.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/details/TypeCompatibility.h>
#include <orv/utils/Assertion.h>

#include <cstring>
#include <ostream>
#include <string_view>

namespace orv {
namespace utils {
namespace {

const char* const emptyText = "";

static_assert(sizeof(DynamicValue) == 16, "a value is its 8-byte data and its 64-bit tag");

} // namespace

DynamicValue::DynamicValue()
    : type_(type::null)
{
    data_.integer = 0;
}

DynamicValue::DynamicValue(int value)
    : type_(type::integer)
{
    data_.integer = value;
}

DynamicValue::DynamicValue(long long value)
    : type_(type::integer)
{
    data_.integer = value;
}

DynamicValue::DynamicValue(double value)
    : type_(type::real)
{
    data_.real = value;
}

DynamicValue::DynamicValue(bool value)
    : type_(type::boolean)
{
    data_.integer = 0;
    data_.boolean = value;
}

DynamicValue::DynamicValue(const char* text)
    : type_(type::null)
{
    data_.integer = 0;
    if (text == nullptr) {
        assignString(emptyText, 0);
        ORV_FAIL("null pointer not allowed as string value initializer for DynamicValue");
        return;
    }
    assignString(text, static_cast<unsigned int>(std::strlen(text)));
}

DynamicValue::DynamicValue(const char* text, unsigned int length)
    : type_(type::null)
{
    data_.integer = 0;
    if (text == nullptr) {
        assignString(emptyText, 0);
        ORV_FAIL("null pointer not allowed as string value initializer for DynamicValue");
        return;
    }
    assignString(text, length);
}

DynamicValue::DynamicValue(const DynamicValue& other)
    : type_(type::null)
{
    data_.integer = 0;
    *this = other;
}

DynamicValue::~DynamicValue()
{
    releaseString();
}

DynamicValue& DynamicValue::operator=(const DynamicValue& other)
{
    if (this == &other) {
        return *this;
    }
    if (other.type_ == type::string) {
        const String* text = other.ownedString();
        if (text == nullptr) {
            assignString(emptyText, 0);
        } else {
            assignString(text->data(), static_cast<unsigned int>(text->size()));
        }
        return *this;
    }
    releaseString();
    data_ = other.data_;
    type_ = other.type_;
    return *this;
}

void DynamicValue::setInt(long long value)
{
    releaseString();
    data_.integer = value;
    type_ = type::integer;
}

void DynamicValue::setReal(double value)
{
    releaseString();
    data_.real = value;
    type_ = type::real;
}

void DynamicValue::setBool(bool value)
{
    releaseString();
    data_.integer = 0;
    data_.boolean = value;
    type_ = type::boolean;
}

void DynamicValue::setString(const char* text)
{
    ORV_CHECK(text != nullptr, "unable to set string value from null pointer");
    if (text == nullptr) {
        // The hook returned: the value stays as it was.
        return;
    }
    assignString(text, static_cast<unsigned int>(std::strlen(text)));
}

void DynamicValue::setString(const char* text, unsigned int length)
{
    ORV_CHECK(text != nullptr, "unable to set string value from null pointer");
    if (text == nullptr) {
        // The hook returned: the value stays as it was.
        return;
    }
    assignString(text, length);
}

void DynamicValue::reset()
{
    releaseString();
    data_.integer = 0;
    type_ = type::null;
}

long long DynamicValue::getInt() const
{
    if (type_ == type::real) {
        return static_cast<long long>(data_.real);
    }
    ORV_CHECK(type_ == type::integer, "Unable the retrieve this value of type " << type_ << " as an int");
    // With a returning hook the caller gets the raw bits of the data.
    return data_.integer;
}

double DynamicValue::getReal() const
{
    if (type_ == type::integer) {
        return static_cast<double>(data_.integer);
    }
    ORV_CHECK(type_ == type::real, "Unable the retrieve this value of type " << type_ << " as a real");
    // With a returning hook the caller gets the raw bits of the data.
    return data_.real;
}

bool DynamicValue::getBool() const
{
    ORV_CHECK(type_ == type::boolean, "Unable the retrieve this value of type " << type_ << " as a bool");
    // With a returning hook the caller gets whatever the first byte holds.
    unsigned char firstByte = 0;
    std::memcpy(&firstByte, &data_, 1);
    return firstByte != 0;
}

const char* DynamicValue::getString() const
{
    ORV_CHECK(type_ == type::string, "Unable the retrieve this value of type " << type_ << " as a string");
    // The data of another kind is no text: with a returning hook the caller gets the empty text
    // rather than a wild pointer.
    const String* text = ownedString();
    return text == nullptr ? emptyText : text->c_str();
}

unsigned int DynamicValue::getStringLength() const
{
    ORV_CHECK(type_ == type::string, "Unable the retrieve this value of type " << type_ << " as a string");
    // As for getString: another kind has no text, so its length is 0.
    const String* text = ownedString();
    return text == nullptr ? 0 : static_cast<unsigned int>(text->size());
}

type::Type DynamicValue::getType() const
{
    return static_cast<type::Type>(type_);
}

bool DynamicValue::isTypeCompatible(type::Type type) const
{
    // The tag is never array or object, so the shared rule gives the value's own table.
    return details::isTypeCompatible(static_cast<type::Type>(type_), type);
}

bool DynamicValue::operator==(const DynamicValue& other) const
{
    if (type_ != other.type_) {
        return false;
    }
    switch (type_) {
    case type::null:
        return true;
    case type::integer:
        return data_.integer == other.data_.integer;
    case type::real:
        return data_.real == other.data_.real;
    case type::boolean:
        return getBool() == other.getBool();
    case type::string: {
        const String* left = ownedString();
        const String* right = other.ownedString();
        const std::size_t leftSize = left == nullptr ? 0 : left->size();
        const std::size_t rightSize = right == nullptr ? 0 : right->size();
        return leftSize == rightSize && (leftSize == 0 || std::memcmp(left->data(), right->data(), leftSize) == 0);
    }
    default:
        return false;
    }
}

bool DynamicValue::operator!=(const DynamicValue& other) const
{
    return !(*this == other);
}

void DynamicValue::releaseString()
{
    if (type_ == type::string) {
        ORV_DELETE(data_.string);
        data_.integer = 0;
        type_ = type::null;
    }
}

void DynamicValue::assignString(const char* text, unsigned int length)
{
    if (type_ == type::string && data_.string != nullptr) {
        data_.string->assign(text, length);
        return;
    }
    releaseString();
    // A failed allocation leaves a string value without text, which reads as empty.
    data_.string = ORV_NEW(String)(text, length);
    type_ = type::string;
}

const String* DynamicValue::ownedString() const
{
    return type_ == type::string ? data_.string : nullptr;
}

std::ostream& operator<<(std::ostream& stream, const DynamicValue& value)
{
    switch (value.getType()) {
    case type::integer:
        return stream << value.getInt();
    case type::real:
        return stream << value.getReal();
    case type::boolean:
        return stream << value.getBool();
    case type::string:
        return stream << std::string_view(value.getString(), value.getStringLength());
    default:
        return stream << "null";
    }
}

} // namespace utils
} // namespace orv
