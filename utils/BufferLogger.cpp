#include <orv/utils/BufferLogger.h>

#include <orv/utils/Uuid.h>

namespace orv {
namespace utils {
namespace {

ErrorType noError()
{
    return ErrorType(Uuid(), "no error");
}

} // namespace

BufferLogger::BufferLogger(bool warning, bool info, bool trace) : AbstractLogger(warning, info, trace) {}

BufferLogger::BufferLogger(const BufferLogger& other)
    : AbstractLogger(other.isLoggingWarning_, other.isLoggingInfo_, other.isLoggingTrace_), messages_(other.messages_)
{
    hasErrors_ = other.hasErrors_;
    wrapper_ = other.wrapper_;
}

BufferLogger& BufferLogger::operator=(const BufferLogger& other)
{
    if (this != &other) {
        isLoggingWarning_ = other.isLoggingWarning_;
        isLoggingInfo_ = other.isLoggingInfo_;
        isLoggingTrace_ = other.isLoggingTrace_;
        hasErrors_ = other.hasErrors_;
        wrapper_ = other.wrapper_;
        messages_ = other.messages_;
    }
    return *this;
}

void BufferLogger::clear()
{
    resetErrors();
    messages_.clear();
}

void BufferLogger::flush(AbstractLogger& target)
{
    for (const Message& message : messages_) {
        switch (message.kind) {
        case 't':
            if (target.isLoggingTrace()) {
                target.logTrace(message.file.c_str(), message.line, message.message.c_str());
            }
            break;
        case 'i':
            if (target.isLoggingInfo()) {
                target.logInfo(message.file.c_str(), message.line, message.message.c_str());
            }
            break;
        case 'w':
            if (target.isLoggingWarning()) {
                target.logWarning(message.file.c_str(), message.line, message.message.c_str());
            }
            break;
        default:
            target.logError(message.error, message.file.c_str(), message.line, message.message.c_str());
            break;
        }
    }
    clear();
}

void BufferLogger::append(char kind, const ErrorType& error, const char* file, unsigned int line,
                          const char* message)
{
    messages_.push_back(Message{kind, String(file), line, String(message), error});
}

void BufferLogger::doLogTrace(const char* file, unsigned int line, const char* message)
{
    append('t', noError(), file, line, message);
}

void BufferLogger::doLogInfo(const char* file, unsigned int line, const char* message)
{
    append('i', noError(), file, line, message);
}

void BufferLogger::doLogWarning(const char* file, unsigned int line, const char* message)
{
    append('w', noError(), file, line, message);
}

void BufferLogger::doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message)
{
    append('e', error, file, line, message);
}

} // namespace utils
} // namespace orv
