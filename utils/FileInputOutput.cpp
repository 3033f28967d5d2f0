#include <orv/utils/FileInputOutput.h>

#include <orv/utils/details/Logging.h>

#include <fstream>

namespace orv {
namespace utils {

namespace {

std::ifstream* newInputStream(const String& path)
{
    return ORV_NEW(std::ifstream)(path.c_str(), std::ios_base::in | std::ios_base::binary);
}

std::ofstream* newOutputStream(const String& path)
{
    return ORV_NEW(std::ofstream)(path.c_str(), std::ios_base::out | std::ios_base::binary);
}

/// The state a stream reports, with a stream the allocator could not give counted as bad.
template <typename Stream> int stateOf(const Stream* stream)
{
    return static_cast<int>(stream != nullptr ? stream->rdstate() : std::ios_base::badbit);
}

} // namespace

FileInputOutput::FileInputOutput(const char* path)
    : path_(path != nullptr ? path : "")
{
}

// The scoped pointers close the streams; `close` is not called.
FileInputOutput::~FileInputOutput() = default;

bool FileInputOutput::refuseWhileOpen(const char* purpose, AbstractLogger* logger) const
{
    const char* openFor = isWritable() ? "writing" : (isReadable() ? "reading" : nullptr);
    if (openFor == nullptr) {
        return false;
    }
    ORV_LOG_ERROR(logger, error::invalidOperation,
        "Can't open the io on " << path_ << " for " << purpose << ", it is already open for " << openFor << ".");
    return true;
}

bool FileInputOutput::openForReading(AbstractLogger* logger)
{
    if (refuseWhileOpen("reading", logger)) {
        return false;
    }
    // Replaces a stream left at the end of its file or failed.
    input_.reset(newInputStream(path_));
    const int state = stateOf(input_.get());
    if ((state & (std::ios_base::failbit | std::ios_base::badbit)) != 0) {
        ORV_LOG_ERROR(logger, error::invalidOperation,
            "Can't open the io on " << path_ << " for reading, unable to get a valid stream (error code '" << state
                                    << "').");
        close(nullptr);
        return false;
    }
    return true;
}

bool FileInputOutput::openForWriting(AbstractLogger* logger)
{
    if (refuseWhileOpen("writing", logger)) {
        return false;
    }
    output_.reset(newOutputStream(path_));
    const int state = stateOf(output_.get());
    if (state != std::ios_base::goodbit) {
        ORV_LOG_ERROR(logger, error::invalidOperation,
            "Can't open the io on " << path_ << " for writing, unable to get a valid stream (error code '" << state
                                    << "').");
        close(nullptr);
        return false;
    }
    return true;
}

bool FileInputOutput::close(AbstractLogger* logger)
{
    if (input_.get() != nullptr) {
        input_->close();
        input_.reset();
        return true;
    }
    if (output_.get() != nullptr) {
        output_->close();
        output_.reset();
        return true;
    }
    ORV_LOG_ERROR(logger, error::invalidOperation, "Can't close the io on " << path_ << ", it is not open.");
    return false;
}

bool FileInputOutput::isOpen() const
{
    return isReadable() || isWritable();
}

const char* FileInputOutput::getDescription() const
{
    return path_.c_str();
}

bool FileInputOutput::isWritable() const
{
    return output_.get() != nullptr && output_->rdstate() == std::ios_base::goodbit;
}

bool FileInputOutput::write(const char* buffer, unsigned int size, AbstractLogger* logger)
{
    if (!isWritable()) {
        ORV_LOG_ERROR(
            logger, error::invalidOperation, "Can't write to the io on " << path_ << ", it is not currently writable.");
        return false;
    }
    output_->write(buffer, static_cast<std::streamsize>(size));
    if (output_->rdstate() != std::ios_base::goodbit) {
        ORV_LOG_ERROR(logger, error::invalidOperation, "Can't write to the io on " << path_ << ".");
        return false;
    }
    return true;
}

bool FileInputOutput::isReadable() const
{
    return input_.get() != nullptr && input_->rdstate() == std::ios_base::goodbit;
}

bool FileInputOutput::read(char* buffer, unsigned int& size, AbstractLogger* logger)
{
    // Without an input stream the scoped pointer's own check reports the programming error.
    std::ifstream* input = input_.operator->();
    if (input == nullptr) {
        // The hook returned: nothing can be read.
        size = 0;
        return false;
    }
    if (!isReadable() && !input->eof()) {
        size = 0;
        ORV_LOG_ERROR(
            logger, error::invalidOperation, "Can't read the io on " << path_ << ", it is not currently readable.");
        return false;
    }
    input->read(buffer, static_cast<std::streamsize>(size));
    if (input->eof()) {
        size = static_cast<unsigned int>(input->gcount());
    } else if (input->fail()) {
        size = 0;
        ORV_LOG_ERROR(logger, error::invalidOperation, "Can't read the io on " << path_ << ".");
        return false;
    }
    // The end-of-file and fail bits stay set: they are what tells later reads that the file is
    // done, which then answer true with a count of 0.
    return true;
}

bool FileInputOutput::peekRead(char* buffer, unsigned int& size, AbstractLogger* logger)
{
    std::ifstream* input = input_.operator->();
    if (input == nullptr) {
        // The hook returned: nothing can be read.
        size = 0;
        return false;
    }
    if (!isReadable() && !input->eof()) {
        size = 0;
        ORV_LOG_ERROR(logger, error::invalidOperation,
            "Can't peek read the io on " << path_ << ", it is not currently readable.");
        return false;
    }
    if (input->eof()) {
        size = 0;
        return true;
    }
    const long long previousPosition = static_cast<long long>(input->tellg());
    ORV_CHECK(previousPosition >= 0, "previousPosition >= 0");
    if (previousPosition < 0) {
        // The hook returned: without a place to come back to, nothing is read.
        size = 0;
        return false;
    }
    input->read(buffer, static_cast<std::streamsize>(size));
    if (input->eof()) {
        size = static_cast<unsigned int>(input->gcount());
        // A fresh stream carries no end-of-file state, so the peek leaves no trace.
        input_.reset(newInputStream(path_));
        input = input_.get();
        if (input == nullptr) {
            size = 0;
            ORV_LOG_ERROR(logger, error::invalidOperation, "Can't read the io on " << path_ << ".");
            return false;
        }
    }
    input->seekg(static_cast<std::streamoff>(previousPosition));
    if (!input->eof() && input->fail()) {
        size = 0;
        ORV_LOG_ERROR(logger, error::invalidOperation, "Can't read the io on " << path_ << ".");
        return false;
    }
    return true;
}

} // namespace utils
} // namespace orv
