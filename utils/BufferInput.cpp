#include <orv/utils/BufferInput.h>

#include <orv/utils/Assertion.h>

#include <cstring>

namespace orv {
namespace utils {

BufferInput::BufferInput(const char* buffer, unsigned int size)
    : buffer_(buffer)
    , size_(size)
    , position_(0)
{
    ORV_CHECK(buffer != nullptr, "buffer");
    if (buffer == nullptr) {
        // The hook returned: the input holds nothing rather than pointing nowhere.
        size_ = 0;
    }
}

const char* BufferInput::getDescription() const
{
    return "memory buffer input";
}

bool BufferInput::isWritable() const
{
    return false;
}

bool BufferInput::write(const char*, unsigned int, AbstractLogger*)
{
    ORV_FAIL("'write' is not supported.");
    return false;
}

bool BufferInput::isReadable() const
{
    return true;
}

bool BufferInput::read(char* buffer, unsigned int& size, AbstractLogger* logger)
{
    if (!peekRead(buffer, size, logger)) {
        return false;
    }
    position_ += size;
    return true;
}

bool BufferInput::peekRead(char* buffer, unsigned int& size, AbstractLogger*)
{
    const unsigned int available = size_ - position_;
    if (available < size) {
        size = available;
    }
    if (size != 0) {
        std::memcpy(buffer, buffer_ + position_, size);
    }
    return true;
}

} // namespace utils
} // namespace orv
