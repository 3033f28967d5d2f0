#include <orv/utils/AssertingLogger.h>

#include <orv/utils/Assertion.h>

namespace orv {
namespace utils {

AssertingLogger::AssertingLogger() : AbstractLogger(false, false, false) {}

void AssertingLogger::doLogError(const ErrorType&, const char* file, unsigned int line, const char* message)
{
    assertionFailed(file, line, message);
}

} // namespace utils
} // namespace orv
