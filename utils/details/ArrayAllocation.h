#ifndef ORV_UTILS_DETAILS_ARRAYALLOCATION_H
#define ORV_UTILS_DETAILS_ARRAYALLOCATION_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {
namespace details {

/// Allocates `byteCount` bytes behind a 32-bit word that holds `byteCount`, and returns the
/// address after that word, which is therefore aligned to 4 bytes only. Null when memory runs out.
ORV_UTILS_API void* allocateArray(unsigned int byteCount, const char* file, unsigned int line);

/// Releases a buffer of allocateArray. Null is ignored.
ORV_UTILS_API void releaseArray(void* buffer);

/// The byte count stored ahead of a buffer of allocateArray.
ORV_UTILS_API unsigned int getArrayByteCount(const void* buffer);

} // namespace details
} // namespace utils
} // namespace orv

#endif
