#include <orv/utils/OstreamLogger.h>

#include <orv/utils/ErrorType.h>
#include <orv/utils/ScopedMutex.h>

#include <ostream>

namespace orv {
namespace utils {

OstreamLogger::OstreamLogger(std::ostream* error, std::ostream* warning, std::ostream* info, std::ostream* trace)
    : AbstractLogger(warning != nullptr, info != nullptr, trace != nullptr),
      error_(error),
      warning_(warning),
      info_(info),
      trace_(trace)
{
}

void OstreamLogger::resetErrors()
{
    ScopedMutex lock(mutex_);
    AbstractLogger::resetErrors();
}

void OstreamLogger::writeLine(std::ostream* stream, const char* file, unsigned int line, const char* tag,
                              const char* message)
{
    ScopedMutex lock(mutex_);
    if (stream != nullptr) {
        *stream << file << "(" << line << "): [" << tag << "] " << message << std::endl;
    }
}

void OstreamLogger::doLogTrace(const char* file, unsigned int line, const char* message)
{
    writeLine(trace_, file, line, "trace", message);
}

void OstreamLogger::doLogInfo(const char* file, unsigned int line, const char* message)
{
    writeLine(info_, file, line, "info", message);
}

void OstreamLogger::doLogWarning(const char* file, unsigned int line, const char* message)
{
    writeLine(warning_, file, line, "warning", message);
}

void OstreamLogger::doLogError(const ErrorType& error, const char* file, unsigned int line, const char* message)
{
    writeLine(error_, file, line, error.getCaption(), message);
}

} // namespace utils
} // namespace orv
