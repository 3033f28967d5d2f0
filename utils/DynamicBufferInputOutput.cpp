#include <orv/utils/DynamicBufferInputOutput.h>

#include <cstring>
#include <limits>
#include <stdexcept>

namespace orv {
namespace utils {

DynamicBufferInputOutput::DynamicBufferInputOutput(const char* description)
    : position_(0)
    , description_(description != nullptr ? description : "")
{
}

void DynamicBufferInputOutput::clear()
{
    bytes_.clear();
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

bool DynamicBufferInputOutput::write(const char* buffer, unsigned int size, AbstractLogger*)
{
    const std::size_t stored = bytes_.size();
    constexpr std::size_t largest = std::numeric_limits<unsigned int>::max();
    if (size > largest - stored) {
        throw std::length_error("vector<T> too long");
    }
    const std::size_t required = stored + size;
    const std::size_t capacity = bytes_.capacity();
    if (required > capacity) {
        // Grow by half, as writers of many small pieces (the JSON writer) expect; a large piece
        // takes exactly what it needs.
        std::size_t grown = capacity + capacity / 2;
        if (grown < required) {
            grown = required;
        }
        if (grown > largest) {
            grown = largest;
        }
        bytes_.reserve(grown);
    }
    bytes_.insert(bytes_.end(), buffer, buffer + size);
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
    const unsigned int available = static_cast<unsigned int>(bytes_.size()) - position_;
    if (available < size) {
        size = available;
    }
    if (size != 0) {
        std::memcpy(buffer, bytes_.data() + position_, size);
    }
    return true;
}

} // namespace utils
} // namespace orv
