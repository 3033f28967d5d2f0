#ifndef ORV_UTILS_OSTREAMLOGGER_H
#define ORV_UTILS_OSTREAMLOGGER_H

#include <orv/utils/AbstractLogger.h>
#include <orv/utils/Mutex.h>

#include <iosfwd>

namespace orv {
namespace utils {

/// Writes one line per message to a stream per level; a null stream turns its level off.
/// Safe to share between threads: lines never interleave.
class ORV_UTILS_API OstreamLogger : public AbstractLogger {
public:
    OstreamLogger(std::ostream* error, std::ostream* warning, std::ostream* info, std::ostream* trace);

    void resetErrors() override;

protected:
    void doLogTrace(const char* file, unsigned int line, const char* message) override;
    void doLogInfo(const char* file, unsigned int line, const char* message) override;
    void doLogWarning(const char* file, unsigned int line, const char* message) override;
    void doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message) override;

private:
    void writeLine(std::ostream* stream, const char* file, unsigned int line, const char* tag, const char* message);

    std::ostream* error_;
    std::ostream* warning_;
    std::ostream* info_;
    std::ostream* trace_;
    Mutex mutex_;
};

} // namespace utils
} // namespace orv

#endif
