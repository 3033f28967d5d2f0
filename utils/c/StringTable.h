/* String tables: strings named by 64-bit hashes, one text per hash. Compiles as C99. */
#ifndef ORV_UTILS_C_STRINGTABLE_H
#define ORV_UTILS_C_STRINGTABLE_H

#include <orv/utils/c/Types.h>

#ifdef __cplusplus
namespace orv {
namespace utils {
class StringTable;
}
}
typedef orv::utils::StringTable orv_StringTableImpl;
#else
typedef struct orv_StringTableImpl orv_StringTableImpl;
#endif

ORV_EXTERN_C_BEGIN

/* The handle of a table: the table behind it, nothing else. */
typedef struct orv_StringTable {
    orv_StringTableImpl* impl_;
} orv_StringTable;

/* A new table whose hashes start from `seed` (0 is a failed assertion). The caller owns the result
   and releases it with orv_destroyStringTable. Null when memory runs out. */
ORV_UTILS_API orv_StringTable* orv_createStringTable(unsigned int seed);
/* Destroys a handle of orv_createStringTable and its table; every text the table handed out dies
   with it. */
ORV_UTILS_API void orv_destroyStringTable(orv_StringTable* table);

/* The hash of `length` bytes of `string` in this table, registered or not; nothing is checked. */
ORV_UTILS_API unsigned long long orv_stringTable_hash(orv_StringTable* table, const char* string,
                                                      unsigned int length);
/* The hash, or 0 when the table does not hold this very text under it; the reason goes to
   `logger`, which stays the caller's. */
ORV_UTILS_API unsigned long long orv_stringTable_hashAndCheck(orv_StringTable* table, const char* string,
                                                              unsigned int length, orv_Logger* logger);
/* Registers a copy of the text and returns its hash. A hash already present is returned as it
   is, even when another text holds it. */
ORV_UTILS_API unsigned long long orv_stringTable_add(orv_StringTable* table, const char* string,
                                                     unsigned int length);
/* Registers like orv_stringTable_add, but returns 0 and reports to `logger` (the caller's) when
   another text already holds the hash; the table is then left as it was. */
ORV_UTILS_API unsigned long long orv_stringTable_addAndCheck(orv_StringTable* table, const char* string,
                                                             unsigned int length, orv_Logger* logger);
/* Non-zero when the table holds this text under `hash`; otherwise the reason goes to `logger`,
   which stays the caller's. */
ORV_UTILS_API orv_bool orv_stringTable_check(orv_StringTable* table, const char* string, unsigned int length,
                                             unsigned long long hash, orv_Logger* logger);
/* The text registered under `hash`, owned by the table and valid while it lives; `defaultValue`
   for hash 0 or an unknown hash. */
ORV_UTILS_API const char* orv_stringTable_retrieve(orv_StringTable* table, unsigned long long hash,
                                                   const char* defaultValue);

ORV_EXTERN_C_END

#endif
