/* Byte streams seen from C: any stream of the library, or one a host supplies as callbacks.
   Compiles as C99. */
#ifndef ORV_UTILS_C_DATAINPUTOUTPUT_H
#define ORV_UTILS_C_DATAINPUTOUTPUT_H

#include <orv/utils/c/Types.h>

#ifdef __cplusplus
namespace orv {
namespace utils {
class AbstractDataInputOutput;
}
} // namespace orv
/* In C++ the handle is the stream object itself; only the pointer's type differs. */
typedef orv::utils::AbstractDataInputOutput orv_DataInputOutput;
#else
typedef struct orv_DataInputOutput orv_DataInputOutput;
#endif

ORV_EXTERN_C_BEGIN

/* Callbacks of a host stream. `userData` is the pointer given to orv_DataInputOutput_create. The
   logger may be null and stays the library's: report through it during the call only. Reads take
   the wanted size in `*size` and leave the size actually delivered there; a short count is the
   end of the data. */
typedef orv_bool (*orv_DataInputOutput_isWritableFunction)(void* userData);
typedef orv_bool (*orv_DataInputOutput_writeFunction)(
    void* userData, const char* buffer, unsigned int size, orv_Logger* logger);
typedef orv_bool (*orv_DataInputOutput_isReadableFunction)(void* userData);
typedef orv_bool (*orv_DataInputOutput_readFunction)(
    void* userData, char* buffer, unsigned int* size, orv_Logger* logger);
typedef orv_bool (*orv_DataInputOutput_peekReadFunction)(
    void* userData, char* buffer, unsigned int* size, orv_Logger* logger);

/* A stream that calls the given functions; a null function makes its operation answer false
   without a report. `description` (copied; an empty text becomes "no description") and
   `userData` (not owned) stay the caller's. The caller owns the result and releases it with
   orv_DataInputOutput_destroy. */
ORV_UTILS_API orv_DataInputOutput* orv_DataInputOutput_create(void* userData, const char* description,
    orv_DataInputOutput_isWritableFunction isWritable, orv_DataInputOutput_writeFunction write,
    orv_DataInputOutput_isReadableFunction isReadable, orv_DataInputOutput_readFunction read,
    orv_DataInputOutput_peekReadFunction peekRead);
/* Destroys and releases any stream made by the library's allocator, this family's or another
   (null is ignored). */
ORV_UTILS_API void orv_DataInputOutput_destroy(orv_DataInputOutput* io);

/* The stream's text, owned by the stream and valid while it lives. */
ORV_UTILS_API const char* orv_DataInputOutput_getDescription(orv_DataInputOutput* io);
/* Non-zero when the stream takes bytes now. */
ORV_UTILS_API orv_bool orv_DataInputOutput_isWritable(orv_DataInputOutput* io);
/* Writes `size` bytes of `buffer` (the caller's). Failures go to `logger`, which stays the caller's. */
ORV_UTILS_API orv_bool orv_DataInputOutput_write(
    orv_DataInputOutput* io, const char* buffer, unsigned int size, orv_Logger* logger);
/* Non-zero when the stream has bytes to give now. */
ORV_UTILS_API orv_bool orv_DataInputOutput_isReadable(orv_DataInputOutput* io);
/* Reads up to `*size` bytes into `buffer` (the caller's) and leaves the count read in `*size`; a
   short count is the end of the data. Failures go to `logger`, which stays the caller's. */
ORV_UTILS_API orv_bool orv_DataInputOutput_read(
    orv_DataInputOutput* io, char* buffer, unsigned int* size, orv_Logger* logger);
/* As orv_DataInputOutput_read, but the bytes stay in the stream for the next read. */
ORV_UTILS_API orv_bool orv_DataInputOutput_peekRead(
    orv_DataInputOutput* io, char* buffer, unsigned int* size, orv_Logger* logger);

ORV_EXTERN_C_END

#endif
