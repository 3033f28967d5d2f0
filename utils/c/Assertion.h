/* The process-wide failed assertion hook. Compiles as C99. */
#ifndef ORV_UTILS_C_ASSERTION_H
#define ORV_UTILS_C_ASSERTION_H

#include <orv/utils/c/Types.h>

ORV_EXTERN_C_BEGIN

/* Calls the current hook. Returns only if the hook returns. */
ORV_UTILS_API void orv_assertionFailed(const char* file, unsigned int line, const char* message);
/* Writes "file(line): [assertion failed] message" to the error stream, then aborts. The start hook. */
ORV_UTILS_API void orv_abortOnAssertionFailed(const char* file, unsigned int line, const char* message);
/* The current hook. */
ORV_UTILS_API orv_AssertionFailedFunction orv_getAssertionFailedFunction(void);
/* Stores a new hook (null is stored too). Call before other threads use the library. */
ORV_UTILS_API void orv_setAssertionFailedFunction(orv_AssertionFailedFunction function);

ORV_EXTERN_C_END

#endif
