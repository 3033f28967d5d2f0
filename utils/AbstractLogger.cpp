#include <orv/utils/AbstractLogger.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/ErrorType.h>
#include <orv/utils/Errors.h>

namespace orv {
namespace utils {

// The functions of the C record. Each checks its context first; when the hook returns, the call
// goes on with it all the same.
struct LoggerWrapperFunctions {
    static AbstractLogger* logger(void* context)
    {
        ORV_CHECK(context != nullptr, "ctx");
        return static_cast<AbstractLogger*>(context);
    }
    static char isLoggingTrace(void* context) { return logger(context)->isLoggingTrace() ? 1 : 0; }
    static char isLoggingInfo(void* context) { return logger(context)->isLoggingInfo() ? 1 : 0; }
    static char isLoggingWarning(void* context) { return logger(context)->isLoggingWarning() ? 1 : 0; }
    static void logTrace(void* context, const char* file, unsigned int line, const char* message)
    {
        logger(context)->logTrace(file, line, message);
    }
    static void logInfo(void* context, const char* file, unsigned int line, const char* message)
    {
        logger(context)->logInfo(file, line, message);
    }
    static void logWarning(void* context, const char* file, unsigned int line, const char* message)
    {
        logger(context)->logWarning(file, line, message);
    }
    static void logError(void* context, const orv_ErrorType* error, const char* file, unsigned int line,
                         const char* message)
    {
        AbstractLogger* self = logger(context);
        if (error == nullptr) {
            self->logError(error::unknownError, file, line, message);
        } else {
            self->logError(ErrorType(*error), file, line, message);
        }
    }
};

AbstractLogger::AbstractLogger(bool warning, bool info, bool trace)
    : isLoggingWarning_(warning),
      isLoggingInfo_(info),
      isLoggingTrace_(trace),
      hasErrors_(false),
      wrapper_{this,
               &LoggerWrapperFunctions::isLoggingTrace,
               &LoggerWrapperFunctions::logTrace,
               &LoggerWrapperFunctions::isLoggingInfo,
               &LoggerWrapperFunctions::logInfo,
               &LoggerWrapperFunctions::isLoggingWarning,
               &LoggerWrapperFunctions::logWarning,
               &LoggerWrapperFunctions::logError}
{
}

AbstractLogger::~AbstractLogger() = default;

bool AbstractLogger::isLoggingTrace() const
{
    return isLoggingTrace_;
}

bool AbstractLogger::isLoggingInfo() const
{
    return isLoggingInfo_;
}

bool AbstractLogger::isLoggingWarning() const
{
    return isLoggingWarning_;
}

void AbstractLogger::resetErrors()
{
    hasErrors_ = false;
}

void AbstractLogger::logTrace(const char* file, unsigned int line, const char* message)
{
    if (isLoggingTrace()) {
        doLogTrace(file, line, message);
    }
}

void AbstractLogger::logInfo(const char* file, unsigned int line, const char* message)
{
    if (isLoggingInfo()) {
        doLogInfo(file, line, message);
    }
}

void AbstractLogger::logWarning(const char* file, unsigned int line, const char* message)
{
    if (isLoggingWarning()) {
        doLogWarning(file, line, message);
    }
}

void AbstractLogger::logError(const ErrorType& error, const char* file, unsigned int line, const char* message)
{
    hasErrors_ = true;
    doLogError(error, file, line, message);
}

void AbstractLogger::doLogTrace(const char*, unsigned int, const char*) {}
void AbstractLogger::doLogInfo(const char*, unsigned int, const char*) {}
void AbstractLogger::doLogWarning(const char*, unsigned int, const char*) {}

} // namespace utils
} // namespace orv
