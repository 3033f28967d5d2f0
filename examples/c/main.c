/* A C host: brings the library up with its own logger record, then takes it down. */
#include <orv/utils/c/Assertion.h>
#include <orv/utils/c/System.h>

#include <stdio.h>

static char yes(void* context)
{
    (void)context;
    return 1;
}

static void printLine(void* context, const char* file, unsigned int line, const char* message)
{
    (void)context;
    printf("[host] %s(%u): %s\n", file, line, message);
}

static void printError(void* context, const orv_ErrorType* error, const char* file, unsigned int line,
                       const char* message)
{
    (void)context;
    fprintf(stderr, "[host] %s(%u): [%s] %s\n", file, line, error ? error->caption : "?", message);
}

int main(void)
{
    orv_Logger logger = {NULL, yes, printLine, yes, printLine, yes, printLine, printError};
    if (!orv_utils_initialize(&logger)) {
        return 1;
    }
    printf("orv_utils %s on %s\n", orv_utils_getVersionStr(),
           orv_utils_platform_toString(orv_utils_getCurrentPlatform()));
    return orv_utils_terminate(&logger) ? 0 : 1;
}
