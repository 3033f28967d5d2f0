#include <orv/utils/LoggerCWrapper.h>

#include <orv/utils/ErrorType.h>

namespace orv {
namespace utils {

// A host's record may leave functions out: a missing function counts as a level that is off, or a
// message that is dropped.
LoggerCWrapper::LoggerCWrapper(orv_Logger* logger) : AbstractLogger(false, false, false), logger_(logger) {}

bool LoggerCWrapper::isLoggingTrace() const
{
    return logger_ != nullptr && logger_->isLoggingTrace != nullptr && logger_->isLoggingTrace(logger_->context) != 0;
}

bool LoggerCWrapper::isLoggingInfo() const
{
    return logger_ != nullptr && logger_->isLoggingInfo != nullptr && logger_->isLoggingInfo(logger_->context) != 0;
}

bool LoggerCWrapper::isLoggingWarning() const
{
    return logger_ != nullptr && logger_->isLoggingWarning != nullptr && logger_->isLoggingWarning(logger_->context) != 0;
}

void LoggerCWrapper::doLogTrace(const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr && logger_->logTrace != nullptr) {
        logger_->logTrace(logger_->context, file, line, message);
    }
}

void LoggerCWrapper::doLogInfo(const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr && logger_->logInfo != nullptr) {
        logger_->logInfo(logger_->context, file, line, message);
    }
}

void LoggerCWrapper::doLogWarning(const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr && logger_->logWarning != nullptr) {
        logger_->logWarning(logger_->context, file, line, message);
    }
}

void LoggerCWrapper::doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr && logger_->logError != nullptr) {
        logger_->logError(logger_->context, &error.getData(), file, line, message);
    }
}

} // namespace utils
} // namespace orv
