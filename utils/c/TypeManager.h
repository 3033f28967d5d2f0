/* Registration of types from a C host. Compiles as C99. */
#ifndef ORV_UTILS_C_TYPEMANAGER_H
#define ORV_UTILS_C_TYPEMANAGER_H

#include <orv/utils/c/Types.h>

ORV_EXTERN_C_BEGIN

/* Registers the type `name` under the id text `id` (36 characters) in the library's type manager
   and makes it derive from ScriptedParams. The library must be initialized. Non-zero on success;
   failures go to `logger` (null: nothing is logged). The texts and the record stay the caller's. */
ORV_UTILS_API orv_bool orv_utils_register_type(const char* id, const char* name, orv_Logger* logger);

ORV_EXTERN_C_END

#endif
