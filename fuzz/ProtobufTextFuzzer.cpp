// The stored text form from anywhere. A text that reads gives an object whose own text reads back
// to the same contents.

#include "FuzzSupport.h"

#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectSerialization.h>

#include <string>

namespace {

std::string writeText(const orv::utils::DynamicObject& object, orv::fuzz::QuietLogger& logger)
{
    unsigned int size = 0;
    char* text = orv::utils::serializeDynamicObject(size, object, &logger);
    return orv::fuzz::takeSerializedText(text, size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    orv::fuzz::BlockBalance balance;
    orv::fuzz::QuietLogger logger;
    orv::utils::DynamicObject object;
    if (!orv::utils::deserializeDynamicObject(reinterpret_cast<const char*>(data), static_cast<unsigned int>(size),
                                              object, &logger)) {
        return 0;
    }
    if (!orv::fuzz::isWalkSound(object)) {
        return 0;
    }
    const std::string text = writeText(object, logger);
    orv::utils::DynamicObject again;
    ORV_FUZZ_REQUIRE(orv::utils::deserializeDynamicObject(text.data(), static_cast<unsigned int>(text.size()), again,
                                                          &logger));
    ORV_FUZZ_REQUIRE(orv::fuzz::haveSameContents(object, again));
    return 0;
}
