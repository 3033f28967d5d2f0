/* Export and linkage macros shared by the C and C++ interfaces. Compiles as C99. */
#ifndef ORV_UTILS_EXPORT_H
#define ORV_UTILS_EXPORT_H

#if defined(ORV_UTILS_BUILDING)
#define ORV_UTILS_API __attribute__((visibility("default")))
#else
#define ORV_UTILS_API
#endif

#ifdef __cplusplus
#define ORV_EXTERN_C_BEGIN extern "C" {
#define ORV_EXTERN_C_END }
#else
#define ORV_EXTERN_C_BEGIN
#define ORV_EXTERN_C_END
#endif

#endif
