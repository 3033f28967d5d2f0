#ifndef ORV_UTILS_DYNAMICBUFFERINPUTOUTPUT_H
#define ORV_UTILS_DYNAMICBUFFERINPUTOUTPUT_H

#include <orv/utils/AbstractDataInputOutput.h>
#include <orv/utils/Common.h>

#include <cstring>

namespace orv {
namespace utils {

/// A growing buffer of its own: writes append at the end, reads consume from a position of their
/// own. Bytes already read stay stored until `clear`.
class ORV_UTILS_API DynamicBufferInputOutput : public AbstractDataInputOutput {
public:
    explicit DynamicBufferInputOutput(const char* description);
    ~DynamicBufferInputOutput() override;

    /// The first stored byte, consumed or not; null until a byte has ever been written.
    const char* data() const { return bytes_; }
    /// Every stored byte, consumed or not; not the amount left to read.
    unsigned int size() const { return size_; }
    bool empty() const { return size_ == 0; }
    /// Drops the bytes but keeps the memory, and reads from the start again.
    void clear();

    const char* getDescription() const override;
    bool isWritable() const override;
    /// Throws std::length_error only when the stored size would no longer fit an unsigned int.
    /// Inline, so that a writer that knows it holds this very class appends a piece of a few
    /// bytes without a call (the JSON writer sends most of its text that way).
    bool write(const char* buffer, unsigned int size, AbstractLogger* logger) override
    {
        const unsigned int used = size_;
        if (size > capacity_ - used) {
            return writeGrowing(buffer, size, logger);
        }
        char* end = bytes_ + used;
        size_ = used + size;
        // Fixed-size copies from both ends, overlapping in the middle, compile to plain moves.
        if (size == 1) {
            end[0] = buffer[0];
        } else if (size < 4) {
            if (size != 0) {
                end[0] = buffer[0];
                end[size / 2] = buffer[size / 2];
                end[size - 1] = buffer[size - 1];
            }
        } else if (size < 8) {
            std::memcpy(end, buffer, 4);
            std::memcpy(end + size - 4, buffer + size - 4, 4);
        } else if (size <= 16) {
            std::memcpy(end, buffer, 8);
            std::memcpy(end + size - 8, buffer + size - 8, 8);
        } else {
            std::memcpy(end, buffer, size);
        }
        return true;
    }
    bool isReadable() const override;
    bool read(char* buffer, unsigned int& size, AbstractLogger* logger) override;
    bool peekRead(char* buffer, unsigned int& size, AbstractLogger* logger) override;

    DynamicBufferInputOutput(const DynamicBufferInputOutput&) = delete;
    DynamicBufferInputOutput& operator=(const DynamicBufferInputOutput&) = delete;

private:
    /// `write` when the piece does not fit the block.
    bool writeGrowing(const char* buffer, unsigned int size, AbstractLogger* logger);

    // A plain block rather than a vector: appends are one copy, not a construction per byte.
    char* bytes_;
    unsigned int size_;
    unsigned int capacity_;
    unsigned int position_;
    String description_;
};

} // namespace utils
} // namespace orv

#endif
