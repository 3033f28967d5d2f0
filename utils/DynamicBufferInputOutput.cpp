#include <orv/utils/DynamicBufferInputOutput.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/details/Logging.h>

#include <cstring>
#include <limits>
#include <stdexcept>

namespace orv {
namespace utils {

DynamicBufferInputOutput::DynamicBufferInputOutput(const char* description)
    : bytes_(nullptr)
    , size_(0)
    , capacity_(0)
    , position_(0)
    , description_(description != nullptr ? description : "")
{
}

DynamicBufferInputOutput::~DynamicBufferInputOutput()
{
    allocator::Allocator::instance().deallocate(bytes_, capacity_);
}

void DynamicBufferInputOutput::clear()
{
    size_ = 0;
    position_ = 0;
}

const char* DynamicBufferInputOutput::getDescription() const
{
    return description_.c_str();
}

bool DynamicBufferInputOutput::isWritable() const
{
    return true;
}

bool DynamicBufferInputOutput::writeGrowing(const char* buffer, unsigned int size, AbstractLogger* logger)
{
    constexpr std::size_t largest = std::numeric_limits<unsigned int>::max();
    if (size > largest - size_) {
        throw std::length_error("vector<T> too long");
    }
    const std::size_t required = static_cast<std::size_t>(size_) + size;
    if (required > capacity_) {
        // Grow by half, as writers of many small pieces (the JSON writer) expect; a large piece
        // takes exactly what it needs.
        std::size_t grown = static_cast<std::size_t>(capacity_) + capacity_ / 2;
        if (grown < required) {
            grown = required;
        }
        if (grown > largest) {
            grown = largest;
        }
        // Moved rather than copied: a large buffer's pages change place without being touched.
        char* larger
            = static_cast<char*>(allocator::Allocator::instance().reallocate(bytes_, grown, __FILE__, __LINE__));
        if (larger == nullptr) {
            ORV_LOG_ERROR(logger, error::badAllocation, "Unable to allocate " << grown << " bytes for the buffer.");
            return false;
        }
        bytes_ = larger;
        capacity_ = static_cast<unsigned int>(grown);
    }
    if (size != 0) {
        std::memcpy(bytes_ + size_, buffer, size);
    }
    size_ += size;
    return true;
}

bool DynamicBufferInputOutput::isReadable() const
{
    return true;
}

bool DynamicBufferInputOutput::read(char* buffer, unsigned int& size, AbstractLogger* logger)
{
    if (!peekRead(buffer, size, logger)) {
        return false;
    }
    position_ += size;
    return true;
}

bool DynamicBufferInputOutput::peekRead(char* buffer, unsigned int& size, AbstractLogger*)
{
    const unsigned int available = size_ - position_;
    if (available < size) {
        size = available;
    }
    if (size != 0) {
        std::memcpy(buffer, bytes_ + position_, size);
    }
    return true;
}

} // namespace utils
} // namespace orv
