#ifndef ORV_UTILS_ASSERTINGLOGGER_H
#define ORV_UTILS_ASSERTINGLOGGER_H

#include <orv/utils/AbstractLogger.h>

namespace orv {
namespace utils {

/// Turns every reported error into a failed assertion; the lower levels are discarded.
class ORV_UTILS_API AssertingLogger : public AbstractLogger {
public:
    AssertingLogger();

protected:
    void doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message) override;
};

} // namespace utils
} // namespace orv

#endif
