/* Byte streams seen from a C host: a stream made of C callbacks over a growing memory block, and
   the C family used on it and on a stream of the library. DataInputOutputTest.cpp calls these
   functions. */
#include <orv/utils/c/DataInputOutput.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

typedef struct MemoryStream {
    char* bytes;
    unsigned int size;
    unsigned int position;
    orv_Logger* lastLogger;
} MemoryStream;

static orv_bool memoryIsOpen(void* userData) { return userData != NULL; }

static orv_bool memoryWrite(void* userData, const char* buffer, unsigned int size, orv_Logger* logger)
{
    MemoryStream* stream = (MemoryStream*)userData;
    char* grown = (char*)realloc(stream->bytes, stream->size + size + 1);
    stream->lastLogger = logger;
    if (grown == NULL) {
        return 0;
    }
    memcpy(grown + stream->size, buffer, size);
    stream->bytes = grown;
    stream->size += size;
    return 1;
}

static orv_bool memoryPeekRead(void* userData, char* buffer, unsigned int* size, orv_Logger* logger)
{
    MemoryStream* stream = (MemoryStream*)userData;
    stream->lastLogger = logger;
    if (*size > stream->size - stream->position) {
        *size = stream->size - stream->position;
    }
    if (*size != 0) {
        memcpy(buffer, stream->bytes + stream->position, *size);
    }
    return 1;
}

static orv_bool memoryRead(void* userData, char* buffer, unsigned int* size, orv_Logger* logger)
{
    memoryPeekRead(userData, buffer, size, logger);
    ((MemoryStream*)userData)->position += *size;
    return 1;
}

/* `*userData` receives the host's record, which orv_test_destroyMemoryStream releases. */
orv_DataInputOutput* orv_test_createMemoryStream(const char* description, void** userData)
{
    *userData = calloc(1, sizeof(MemoryStream));
    return orv_DataInputOutput_create(
        *userData, description, memoryIsOpen, memoryWrite, memoryIsOpen, memoryRead, memoryPeekRead);
}

void orv_test_destroyMemoryStream(orv_DataInputOutput* io, void* userData)
{
    orv_DataInputOutput_destroy(io);
    free(((MemoryStream*)userData)->bytes);
    free(userData);
}

static void recordError(
    void* context, const orv_ErrorType* error, const char* file, unsigned int line, const char* message)
{
    (void)file;
    (void)line;
    snprintf((char*)context, 256, "%s|%s", error->caption, message);
}

#define C_EXPECT(condition)                                                                                            \
    do {                                                                                                               \
        if (!(condition)) {                                                                                            \
            result = #condition;                                                                                       \
            goto done;                                                                                                 \
        }                                                                                                              \
    } while (0)

/* `closedFile` is a file stream on "no/such/file" that was never opened. */
const char* orv_test_streamsFromC(orv_DataInputOutput* closedFile)
{
    const char* result = NULL;
    MemoryStream stream = { NULL, 0, 0, NULL };
    char reported[256] = "";
    orv_Logger logger = { reported, NULL, NULL, NULL, NULL, NULL, NULL, recordError };
    orv_DataInputOutput* io = orv_DataInputOutput_create(
        &stream, "host memory", memoryIsOpen, memoryWrite, memoryIsOpen, memoryRead, memoryPeekRead);
    orv_DataInputOutput* bare = orv_DataInputOutput_create(&stream, "", NULL, NULL, NULL, NULL, NULL);
    char buffer[16];
    unsigned int size = 5;

    C_EXPECT(io != NULL && bare != NULL);
    C_EXPECT(strcmp(orv_DataInputOutput_getDescription(io), "host memory") == 0);
    C_EXPECT(orv_DataInputOutput_isWritable(io) && orv_DataInputOutput_isReadable(io));
    C_EXPECT(orv_DataInputOutput_write(io, "hello, world", 12, NULL));
    C_EXPECT(stream.lastLogger != NULL); /* a wrapper around no record, never null */
    C_EXPECT(orv_DataInputOutput_peekRead(io, buffer, &size, &logger) && size == 5 && memcmp(buffer, "hello", 5) == 0);

    /* Missing callbacks refuse without a word, and an empty description gets the default. */
    C_EXPECT(strcmp(orv_DataInputOutput_getDescription(bare), "no description") == 0);
    C_EXPECT(!orv_DataInputOutput_isWritable(bare) && !orv_DataInputOutput_isReadable(bare));
    C_EXPECT(!orv_DataInputOutput_write(bare, "x", 1, &logger));
    size = 4;
    C_EXPECT(!orv_DataInputOutput_read(bare, buffer, &size, &logger) && size == 4);
    C_EXPECT(!orv_DataInputOutput_peekRead(bare, buffer, &size, &logger) && size == 4 && reported[0] == '\0');

    /* A stream of the library reports to the C record through the wrapper made for the call. */
    C_EXPECT(!orv_DataInputOutput_write(closedFile, "x", 1, &logger));
    C_EXPECT(strcmp(reported,
                 "invalid operation|Can't write to the io on no/such/file, it is not currently "
                 "writable.")
        == 0);

done:
    orv_DataInputOutput_destroy(io);
    orv_DataInputOutput_destroy(bare);
    free(stream.bytes);
    return result;
}
