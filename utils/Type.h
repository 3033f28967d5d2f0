#ifndef ORV_UTILS_TYPE_H
#define ORV_UTILS_TYPE_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {
namespace type {

/// The kinds of values, for the whole library. The numbers are stored in value nodes and blobs
/// and must not change.
enum Type { null = 0, integer = 1, real = 2, string = 3, boolean = 4, array = 5, object = 6 };

} // namespace type

/// The kind's name ("null", "integer", ...), a static string; null for a value outside the enumeration.
ORV_UTILS_API const char* toString(type::Type type);

} // namespace utils
} // namespace orv

#endif
