#ifndef ORV_UTILS_IMPL_PROTOBUFDYNAMICOBJECTREADER_H
#define ORV_UTILS_IMPL_PROTOBUFDYNAMICOBJECTREADER_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {

class AbstractObjectBuilder;

namespace impl {

// The version that the writer puts in every stored dynamic object. A reader accepts any file of
// the same major version.
constexpr unsigned int protobufFormatMajor = 0;
constexpr unsigned int protobufFormatMinor = 4;
constexpr unsigned int protobufFormatPatch = 0;

/// Parses `size` bytes of the text form of a stored dynamic object and sends its root to
/// `builder` as one document. A file without a root sends nothing and succeeds. Reports go to the
/// builder's logger; what the builder got before a failure stays with it. Exported for the test
/// suite, which records the events.
ORV_UTILS_API bool readProtobufDynamicObject(const char* data, unsigned int size, AbstractObjectBuilder& builder);

} // namespace impl
} // namespace utils
} // namespace orv

#endif
