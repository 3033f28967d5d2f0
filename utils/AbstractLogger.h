#ifndef ORV_UTILS_ABSTRACTLOGGER_H
#define ORV_UTILS_ABSTRACTLOGGER_H

#include <orv/utils/c/Types.h>

namespace orv {
namespace utils {

class ErrorType;

/// Where every fallible operation reports. Error cannot be switched off; each lower level
/// (warning, info, trace) has a switch of its own, with no ordering between them.
class ORV_UTILS_API AbstractLogger {
public:
    AbstractLogger(bool warning, bool info, bool trace);
    virtual ~AbstractLogger();

    virtual bool isLoggingTrace() const;
    virtual bool isLoggingInfo() const;
    virtual bool isLoggingWarning() const;
    virtual void resetErrors();

    void logTrace(const char* file, unsigned int line, const char* message);
    void logInfo(const char* file, unsigned int line, const char* message);
    void logWarning(const char* file, unsigned int line, const char* message);
    /// Marks the logger as having seen an error, then reports it whatever the switches say.
    void logError(const ErrorType& error, const char* file, unsigned int line, const char* message);

    bool hasErrors() const { return hasErrors_; }

    /// The C record that stands for this logger; its context is this object.
    orv_Logger& getWrapper() { return wrapper_; }

protected:
    virtual void doLogTrace(const char* file, unsigned int line, const char* message);
    virtual void doLogInfo(const char* file, unsigned int line, const char* message);
    virtual void doLogWarning(const char* file, unsigned int line, const char* message);
    virtual void doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message) = 0;

    bool isLoggingWarning_;
    bool isLoggingInfo_;
    bool isLoggingTrace_;
    bool hasErrors_;
    orv_Logger wrapper_;

private:
    friend struct LoggerWrapperFunctions;
};

} // namespace utils
} // namespace orv

#endif
