#ifndef ORV_UTILS_DYNAMICOBJECTSERIALIZATION_H
#define ORV_UTILS_DYNAMICOBJECTSERIALIZATION_H

#include <orv/utils/SerializedBuffer.h>
#include <orv/utils/Export.h>

namespace orv {
namespace utils {

class AbstractDataInputOutput;
class AbstractLogger;
class DynamicObject;

// The stored text form of a dynamic object: a message of the format version and the root
// property. Null properties are stored as empty objects and come back as such. The whole
// message is held in memory while it is written; for large objects the blob form is the fast one.

/// Writes `object` to `output`; nothing is written when the walk fails midway.
ORV_UTILS_API bool serializeDynamicObjectToProtobuf(const DynamicObject& object, AbstractDataInputOutput& output,
                                                    AbstractLogger* logger);

/// The text of `object`, null on failure. The text has no terminating zero: `size` gives its
/// length, and is left alone on failure. The buffer comes from the library allocator with its size
/// in one word ahead of the returned pointer; the caller releases it with freeSerializedBuffer.
ORV_UTILS_API char* serializeDynamicObject(unsigned int& size, const DynamicObject& object, AbstractLogger* logger);

/// Reads the text into the root of `object`. Any file of the same major version is accepted; a
/// file without a root succeeds and leaves `object` alone. What was read before a failure stays.
ORV_UTILS_API bool deserializeDynamicObject(const char* data, unsigned int size, DynamicObject& object,
                                            AbstractLogger* logger);

} // namespace utils
} // namespace orv

#endif
