#ifndef ORV_UTILS_BUFFERINPUT_H
#define ORV_UTILS_BUFFERINPUT_H

#include <orv/utils/AbstractDataInputOutput.h>

namespace orv {
namespace utils {

/// Reads memory that the caller owns and keeps alive while the object is read. Never writable;
/// always readable, also once every byte is consumed (the reads then answer a count of 0).
class ORV_UTILS_API BufferInput : public AbstractDataInputOutput {
public:
    BufferInput(const char* buffer, unsigned int size);

    unsigned int getReadableDataSize() const { return size_ - position_; }

    const char* getDescription() const override;
    bool isWritable() const override;
    bool write(const char* buffer, unsigned int size, AbstractLogger* logger) override;
    bool isReadable() const override;
    bool read(char* buffer, unsigned int& size, AbstractLogger* logger) override;
    bool peekRead(char* buffer, unsigned int& size, AbstractLogger* logger) override;

private:
    const char* buffer_;
    unsigned int size_;
    unsigned int position_;
};

} // namespace utils
} // namespace orv

#endif
