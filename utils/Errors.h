#ifndef ORV_UTILS_ERRORS_H
#define ORV_UTILS_ERRORS_H

#include <orv/utils/ErrorType.h>

namespace orv {
namespace utils {
namespace error {

ORV_UTILS_API extern const ErrorType badAllocation;
ORV_UTILS_API extern const ErrorType invalidArgument;
ORV_UTILS_API extern const ErrorType invalidData;
ORV_UTILS_API extern const ErrorType invalidOperation;
ORV_UTILS_API extern const ErrorType invalidName;
ORV_UTILS_API extern const ErrorType invalidConfiguration;
ORV_UTILS_API extern const ErrorType contractViolation;
ORV_UTILS_API extern const ErrorType fileNotFound;
ORV_UTILS_API extern const ErrorType fileFormatCorrupted;
ORV_UTILS_API extern const ErrorType ioProblem;
ORV_UTILS_API extern const ErrorType threadError;
ORV_UTILS_API extern const ErrorType userCodeException;
ORV_UTILS_API extern const ErrorType stringHashCollision;
ORV_UTILS_API extern const ErrorType unknownError;
ORV_UTILS_API extern const ErrorType previous;
ORV_UTILS_API extern const ErrorType encryption;

} // namespace error
} // namespace utils
} // namespace orv

#endif
