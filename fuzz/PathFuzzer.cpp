// Property paths from anywhere. A path is either refused, with handle 0, or names one property
// that every later look-up by the same path finds, holding what was written through it.

#include "FuzzSupport.h"

#include <orv/utils/AbstractPropertyParser.h>
#include <orv/utils/DynamicObject.h>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    orv::fuzz::BlockBalance balance;
    orv::fuzz::QuietLogger logger;
    const char* path = reinterpret_cast<const char*>(data);
    const auto length = static_cast<unsigned int>(size);
    orv::utils::DynamicObject object;
    object.setInt("a.b[1].c", 7);
    const unsigned int property = object.addProperty(path, length);
    if (property == 0) {
        return 0;
    }
    ORV_FUZZ_REQUIRE(orv::utils::checkPropertyPath(path, length, &logger));
    ORV_FUZZ_REQUIRE(object.getProperty(path, length) == property);
    object.setInt(path, length, 42);
    ORV_FUZZ_REQUIRE(object.getInt(path, length, 0) == 42);
    ORV_FUZZ_REQUIRE(object.getProperty(path, length) == property);
    return 0;
}
