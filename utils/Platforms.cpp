#include <orv/utils/Platforms.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/c/System.h>

namespace orv {
namespace utils {

const char* platform::toString(Type platform)
{
    switch (platform) {
    case win_vc100_x86:
        return "win_vc100_x86";
    case win_vc100_x64:
        return "win_vc100_x64";
    case lin_gcc47_x64:
        return "lin_gcc47_x64";
    case mac_clang51_x64:
        return "mac_clang51_x64";
    case lin_gcc12_x64:
        return "lin_gcc12_x64";
    case lin_clang14_x64:
        return "lin_clang14_x64";
    }
    ORV_FAIL("Unknown platform");
    return nullptr;
}

platform::Type getCurrentPlatform()
{
#if defined(__clang__)
    return platform::lin_clang14_x64;
#else
    return platform::lin_gcc12_x64;
#endif
}

} // namespace utils
} // namespace orv

extern "C" {

int orv_utils_getCurrentPlatform(void)
{
    return static_cast<int>(orv::utils::getCurrentPlatform());
}

const char* orv_utils_platform_toString(int platform)
{
    return orv::utils::platform::toString(static_cast<orv::utils::platform::Type>(platform));
}

const char* orv_utils_getVersionStr(void)
{
    return ORV_UTILS_VERSION_STRING;
}
}
