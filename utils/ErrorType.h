#ifndef ORV_UTILS_ERRORTYPE_H
#define ORV_UTILS_ERRORTYPE_H

#include <orv/utils/c/Types.h>

namespace orv {
namespace utils {

class Uuid;

/// A kind of error: an id, the only thing compared, and a caption of at most 127 characters.
class ORV_UTILS_API ErrorType {
public:
    static constexpr unsigned int captionMaximumLength = ORV_ERROR_CAPTION_SIZE - 1;

    ErrorType(const Uuid& id, const char* caption);
    ErrorType(const orv_ErrorType& data);
    ErrorType(const ErrorType& other);
    ErrorType& operator=(const ErrorType& other);

    bool operator==(const ErrorType& other) const;
    bool operator!=(const ErrorType& other) const;

    const char* getCaption() const { return data_.caption; }
    const orv_ErrorType& getData() const { return data_; }

private:
    orv_ErrorType data_;
};

static_assert(sizeof(orv_ErrorType) == 144, "an error kind is 144 bytes");

} // namespace utils
} // namespace orv

#endif
