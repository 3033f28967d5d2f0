#include <orv/utils/ErrorType.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/Uuid.h>

#include <cstring>

namespace orv {
namespace utils {

ErrorType::ErrorType(const Uuid& id, const char* caption)
{
    std::memset(&data_, 0, sizeof(data_));
    const std::size_t length = std::strlen(caption);
    ORV_CHECK(length <= captionMaximumLength, "Given caption (" << caption
                                                                << ") is longer than the caption maximum length "
                                                                << captionMaximumLength << ".");
    // When the hook returns, the caption is still copied whole: the check above is the only guard.
    data_.id = id.getData();
    std::memcpy(data_.caption, caption, length + 1);
}

ErrorType::ErrorType(const orv_ErrorType& data) : data_(data) {}

ErrorType::ErrorType(const ErrorType& other) : data_(other.data_) {}

ErrorType& ErrorType::operator=(const ErrorType& other)
{
    data_ = other.data_;
    return *this;
}

bool ErrorType::operator==(const ErrorType& other) const
{
    return std::memcmp(&data_.id, &other.data_.id, sizeof(data_.id)) == 0;
}

bool ErrorType::operator!=(const ErrorType& other) const
{
    return !(*this == other);
}

} // namespace utils
} // namespace orv
