#ifndef ORV_UTILS_LOGGERCWRAPPER_H
#define ORV_UTILS_LOGGERCWRAPPER_H

#include <orv/utils/AbstractLogger.h>

namespace orv {
namespace utils {

/// A logger that forwards to a C record. Around a null record it logs nothing.
class ORV_UTILS_API LoggerCWrapper : public AbstractLogger {
public:
    explicit LoggerCWrapper(orv_Logger* logger);

    bool isLoggingTrace() const override;
    bool isLoggingInfo() const override;
    bool isLoggingWarning() const override;

protected:
    void doLogTrace(const char* file, unsigned int line, const char* message) override;
    void doLogInfo(const char* file, unsigned int line, const char* message) override;
    void doLogWarning(const char* file, unsigned int line, const char* message) override;
    void doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message) override;

private:
    orv_Logger* logger_;
};

} // namespace utils
} // namespace orv

#endif
