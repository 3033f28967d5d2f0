#ifndef ORV_UTILS_DETAILS_TYPECOMPATIBILITY_H
#define ORV_UTILS_DETAILS_TYPECOMPATIBILITY_H

#include <orv/utils/Type.h>

namespace orv {
namespace utils {
namespace details {

/// Whether a value stored as `stored` may stand where `wanted` is expected: null stands for
/// anything, integers and reals for each other, every other kind only for itself.
inline bool isTypeCompatible(type::Type stored, type::Type wanted)
{
    switch (stored) {
    case type::null:
        return true;
    case type::integer:
    case type::real:
        return wanted == type::integer || wanted == type::real;
    case type::string:
    case type::boolean:
    case type::array:
    case type::object:
        return wanted == stored;
    default:
        return false;
    }
}

} // namespace details
} // namespace utils
} // namespace orv

#endif
