#ifndef ORV_UTILS_SERIALIZEDBUFFER_H
#define ORV_UTILS_SERIALIZEDBUFFER_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {

// The serializers (serializeDynamicObject, serializeRandom, serializeRandomManager) hand their text
// out in a block of the library allocator with its byte count in the word ahead of the returned
// pointer and no terminating zero. The block is the caller's until released here.

/// Releases a serialized buffer. Null is ignored.
ORV_UTILS_API void freeSerializedBuffer(char* buffer);

/// The byte count stored ahead of a serialized buffer (0 for null).
ORV_UTILS_API unsigned int getSerializedBufferSize(const char* buffer);

} // namespace utils
} // namespace orv

#endif
