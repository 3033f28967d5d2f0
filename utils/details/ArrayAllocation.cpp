#include <orv/utils/details/ArrayAllocation.h>

#include <orv/allocator/Allocator.h>

#include <cstdint>
#include <cstring>

namespace orv {
namespace utils {
namespace details {

namespace {

constexpr std::size_t countSize = sizeof(std::uint32_t);

} // namespace

void* allocateArray(unsigned int byteCount, const char* file, unsigned int line)
{
    unsigned char* block =
        static_cast<unsigned char*>(allocator::Allocator::instance().allocate(byteCount + countSize, file, line));
    if (block == nullptr) {
        return nullptr;
    }
    const std::uint32_t count = byteCount;
    std::memcpy(block, &count, countSize);
    return block + countSize;
}

void releaseArray(void* buffer)
{
    if (buffer == nullptr) {
        return;
    }
    allocator::Allocator::instance().deallocate(static_cast<unsigned char*>(buffer) - countSize, 0);
}

unsigned int getArrayByteCount(const void* buffer)
{
    std::uint32_t count = 0;
    std::memcpy(&count, static_cast<const unsigned char*>(buffer) - countSize, countSize);
    return count;
}

} // namespace details
} // namespace utils
} // namespace orv
