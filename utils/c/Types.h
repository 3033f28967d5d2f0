/* Plain C records shared by the whole C interface. Compiles as C99. */
#ifndef ORV_UTILS_C_TYPES_H
#define ORV_UTILS_C_TYPES_H

#include <orv/utils/Export.h>

ORV_EXTERN_C_BEGIN

/* The failure value of every index interface: all 32 bits set. */
#define orv_invalidIndex 0xFFFFFFFFu

/* Booleans cross the C interface as a char: 0 is false, anything else true. */
typedef char orv_bool;

/* A 128-bit identifier in the field layout of a GUID, integers in the machine's byte order. */
typedef struct orv_Uuid {
    unsigned int data1;
    unsigned short data2;
    unsigned short data3;
    unsigned char data4[8];
} orv_Uuid;

#define ORV_ERROR_CAPTION_SIZE 128

/* A kind of error: only the id is compared; the caption is a zero-terminated text. */
typedef struct orv_ErrorType {
    orv_Uuid id;
    char caption[ORV_ERROR_CAPTION_SIZE];
} orv_ErrorType;

/* A logger seen from C. `context` is handed back as the first argument of every function. */
typedef struct orv_Logger {
    void* context;
    char (*isLoggingTrace)(void* context);
    void (*logTrace)(void* context, const char* file, unsigned int line, const char* message);
    char (*isLoggingInfo)(void* context);
    void (*logInfo)(void* context, const char* file, unsigned int line, const char* message);
    char (*isLoggingWarning)(void* context);
    void (*logWarning)(void* context, const char* file, unsigned int line, const char* message);
    void (*logError)(void* context, const orv_ErrorType* error, const char* file, unsigned int line,
                     const char* message);
} orv_Logger;

/* The hook called by every failed assertion. */
typedef void (*orv_AssertionFailedFunction)(const char* file, unsigned int line, const char* message);

ORV_EXTERN_C_END

#endif
