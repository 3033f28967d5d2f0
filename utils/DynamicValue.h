#ifndef ORV_UTILS_DYNAMICVALUE_H
#define ORV_UTILS_DYNAMICVALUE_H

#include <orv/utils/Common.h>
#include <orv/utils/Type.h>

#include <iosfwd>

namespace orv {
namespace utils {

/// One scalar value detached from any object: null, integer, real, string or boolean. It owns its
/// text, so copies are deep.
class ORV_UTILS_API DynamicValue {
public:
    DynamicValue();
    /// Sign-extended to 64 bits.
    explicit DynamicValue(int value);
    explicit DynamicValue(long long value);
    explicit DynamicValue(double value);
    explicit DynamicValue(bool value);
    /// A null text is a broken contract; the value is then the empty string.
    explicit DynamicValue(const char* text);
    /// Keeps exactly `length` bytes, zero bytes included.
    DynamicValue(const char* text, unsigned int length);
    DynamicValue(const DynamicValue& other);
    ~DynamicValue();

    DynamicValue& operator=(const DynamicValue& other);

    void setInt(long long value);
    void setReal(double value);
    void setBool(bool value);
    /// Reuses the owned text when the value is already a string. A null text is a broken contract
    /// and leaves the value as it was.
    void setString(const char* text);
    void setString(const char* text, unsigned int length);
    /// Back to null.
    void reset();

    /// Reals are truncated toward zero. Any other kind is a broken contract.
    long long getInt() const;
    /// Integers are converted. Any other kind is a broken contract.
    double getReal() const;
    bool getBool() const;
    /// The owned text, zero-terminated; `getStringLength` tells how much of it is the value.
    const char* getString() const;
    unsigned int getStringLength() const;

    type::Type getType() const;
    /// Whether a property of kind `type` could take this value: null fits anything, integers and
    /// reals fit each other.
    bool isTypeCompatible(type::Type type) const;

    /// Same kind and same value; 1 and 1.0 differ, and a NaN differs from itself.
    bool operator==(const DynamicValue& other) const;
    bool operator!=(const DynamicValue& other) const;

private:
    void releaseString();
    void assignString(const char* text, unsigned int length);
    const String* ownedString() const;

    union Data {
        long long integer;
        double real;
        bool boolean;
        String* string;
    };

    Data data_;
    /// A type::Type kept in a full 64-bit word; the high word stays 0.
    unsigned long long type_;
};

/// Numbers and texts by the stream's own formatting, booleans by its bool output, "null" for null.
ORV_UTILS_API std::ostream& operator<<(std::ostream& stream, const DynamicValue& value);

} // namespace utils
} // namespace orv

#endif
