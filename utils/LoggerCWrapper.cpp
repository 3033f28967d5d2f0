#include <orv/utils/LoggerCWrapper.h>

#include <orv/utils/ErrorType.h>

namespace orv {
namespace utils {

LoggerCWrapper::LoggerCWrapper(orv_Logger* logger) : AbstractLogger(false, false, false), logger_(logger) {}

bool LoggerCWrapper::isLoggingTrace() const
{
    return logger_ != nullptr && logger_->isLoggingTrace(logger_->context) != 0;
}

bool LoggerCWrapper::isLoggingInfo() const
{
    return logger_ != nullptr && logger_->isLoggingInfo(logger_->context) != 0;
}

bool LoggerCWrapper::isLoggingWarning() const
{
    return logger_ != nullptr && logger_->isLoggingWarning(logger_->context) != 0;
}

void LoggerCWrapper::doLogTrace(const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr) {
        logger_->logTrace(logger_->context, file, line, message);
    }
}

void LoggerCWrapper::doLogInfo(const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr) {
        logger_->logInfo(logger_->context, file, line, message);
    }
}

void LoggerCWrapper::doLogWarning(const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr) {
        logger_->logWarning(logger_->context, file, line, message);
    }
}

void LoggerCWrapper::doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message)
{
    if (logger_ != nullptr) {
        logger_->logError(logger_->context, &error.getData(), file, line, message);
    }
}

} // namespace utils
} // namespace orv
