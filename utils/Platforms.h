#ifndef ORV_UTILS_PLATFORMS_H
#define ORV_UTILS_PLATFORMS_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {
namespace platform {

/// Build platforms; the values are odd.
enum Type {
    win_vc100_x86 = 1,
    win_vc100_x64 = 3,
    lin_gcc47_x64 = 5,
    mac_clang51_x64 = 7,
    lin_gcc12_x64 = 9,
    lin_clang14_x64 = 11
};

/// The platform's text; a value outside the table is a broken contract and gives null.
ORV_UTILS_API const char* toString(Type platform);

} // namespace platform

/// The platform this library was built for.
ORV_UTILS_API platform::Type getCurrentPlatform();

} // namespace utils
} // namespace orv

#endif
