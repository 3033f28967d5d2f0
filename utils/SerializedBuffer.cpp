#include <orv/utils/SerializedBuffer.h>

#include <orv/utils/details/ArrayAllocation.h>

namespace orv {
namespace utils {

void freeSerializedBuffer(char* buffer)
{
    details::releaseArray(buffer);
}

unsigned int getSerializedBufferSize(const char* buffer)
{
    return buffer != nullptr ? details::getArrayByteCount(buffer) : 0;
}

} // namespace utils
} // namespace orv
