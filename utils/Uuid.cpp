#include <orv/utils/Uuid.h>

#include <orv/utils/AssertingLogger.h>
#include <orv/utils/details/Logging.h>

#include <cstdio>
#include <cstring>
#include <iomanip>
#include <ostream>
#include <sstream>
#include <string>

namespace orv {
namespace utils {
namespace {

const Uuid nullUuid;

// Reads one piece of the text as a hexadecimal number. A piece that does not parse leaves the
// field as it was: that is how malformed digits have always been taken.
template <typename T>
void readHexPiece(const char* text, unsigned int offset, unsigned int length, T& field)
{
    std::istringstream stream(std::string(text + offset, length));
    unsigned long value = 0;
    stream >> std::hex >> value;
    if (!stream.fail()) {
        field = static_cast<T>(value);
    }
}

} // namespace

const Uuid uniqueId = Uuid::create("0ba23f91-d30e-4574-b0ed-ee0aa81d00b9");

Uuid::Uuid()
{
    std::memset(&data_, 0, sizeof(data_));
}

Uuid::Uuid(const orv_Uuid& data) : data_(data) {}

Uuid Uuid::create(const char* text)
{
    Uuid result;
    AssertingLogger logger;
    result.set(text, &logger);
    return result;
}

unsigned int Uuid::getStringLength()
{
    return 36;
}

bool Uuid::set(const char* text, AbstractLogger* logger)
{
    if (text == nullptr) {
        ORV_LOG_ERROR(logger, error::invalidArgument, "The given string parameter is NULL");
        clear();
        return false;
    }
    if (std::strlen(text) != getStringLength()) {
        ORV_LOG_ERROR(logger, error::invalidArgument,
                      "The given string '" << text
                                           << "' doesn't have the right format of 36 characters "
                                              "(\"12345678-9ABC-DEF1-2345-6789ABCDEF12\").");
        clear();
        return false;
    }
    // The separators at 8, 13, 18 and 23 are not examined.
    readHexPiece(text, 0, 8, data_.data1);
    readHexPiece(text, 9, 4, data_.data2);
    readHexPiece(text, 14, 4, data_.data3);
    static const unsigned int byteOffsets[8] = {19, 21, 24, 26, 28, 30, 32, 34};
    for (unsigned int i = 0; i < 8; ++i) {
        readHexPiece(text, byteOffsets[i], 2, data_.data4[i]);
    }
    return true;
}

void Uuid::clear()
{
    std::memset(&data_, 0, sizeof(data_));
}

bool Uuid::isValid() const
{
    return *this != nullUuid;
}

void Uuid::computeString(char* buffer) const
{
    std::snprintf(buffer, 37, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x", data_.data1,
                  static_cast<unsigned int>(data_.data2), static_cast<unsigned int>(data_.data3), data_.data4[0],
                  data_.data4[1], data_.data4[2], data_.data4[3], data_.data4[4], data_.data4[5], data_.data4[6],
                  data_.data4[7]);
}

bool Uuid::operator==(const Uuid& other) const
{
    return std::memcmp(&data_, &other.data_, sizeof(data_)) == 0;
}

bool Uuid::operator!=(const Uuid& other) const
{
    return !(*this == other);
}

bool Uuid::operator<(const Uuid& other) const
{
    return std::memcmp(&data_, &other.data_, sizeof(data_)) < 0;
}

std::ostream& operator<<(std::ostream& stream, const Uuid& uuid)
{
    char buffer[37];
    uuid.computeString(buffer);
    return stream << buffer;
}

} // namespace utils
} // namespace orv
