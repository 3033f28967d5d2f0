/* Start and stop of the library, platform and version. Compiles as C99. */
#ifndef ORV_UTILS_C_SYSTEM_H
#define ORV_UTILS_C_SYSTEM_H

#include <orv/utils/c/Types.h>

ORV_EXTERN_C_BEGIN

#define ORV_UTILS_VERSION_STRING "0.4.0"

/* Brings the library up; failures go to `logger` (null: nothing is logged). Non-zero on success.
   The record stays the caller's. */
ORV_UTILS_API orv_bool orv_utils_initialize(orv_Logger* logger);
/* Takes the library down. Non-zero on success. */
ORV_UTILS_API orv_bool orv_utils_terminate(orv_Logger* logger);
/* The platform value of this build (an odd number). */
ORV_UTILS_API int orv_utils_getCurrentPlatform(void);
/* The platform's text, a static string; null for a value outside the table. */
ORV_UTILS_API const char* orv_utils_platform_toString(int platform);
/* "0.4.0", a static string. */
ORV_UTILS_API const char* orv_utils_getVersionStr(void);

ORV_EXTERN_C_END

#endif
