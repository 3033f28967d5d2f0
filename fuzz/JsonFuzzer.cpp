// JSON text from anywhere: read it into a dynamic object, and when it reads, the object's own
// text must read back to the same contents. The reader takes a scalar at the root, but the writer
// only writes objects and arrays there.

#include "FuzzSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/JsonDeserializer.h>
#include <orv/utils/JsonSerializer.h>

#include <string>

namespace {

std::string writeJson(const orv::utils::DynamicObject& object, orv::fuzz::QuietLogger& logger)
{
    orv::utils::DynamicBufferInputOutput output("json text");
    ORV_FUZZ_REQUIRE(orv::utils::serializeDynamicObjectToJson(object, output, &logger));
    return orv::fuzz::contents(output);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    orv::fuzz::BlockBalance balance;
    orv::fuzz::QuietLogger logger;
    orv::utils::DynamicObject object;
    orv::utils::BufferInput input(reinterpret_cast<const char*>(data), static_cast<unsigned int>(size));
    if (!orv::utils::deserializeDynamicObjectFromJson(object, input, &logger)) {
        return 0;
    }
    const orv::utils::type::Type rootType = object.getType(object.getRoot());
    if (rootType != orv::utils::type::object && rootType != orv::utils::type::array) {
        orv::utils::DynamicBufferInputOutput output("json text");
        ORV_FUZZ_REQUIRE(!orv::utils::serializeDynamicObjectToJson(object, output, &logger));
        return 0;
    }
    if (!orv::fuzz::isWalkSound(object)) {
        return 0;
    }
    const std::string text = writeJson(object, logger);
    orv::utils::DynamicObject again;
    orv::utils::BufferInput reread(text.data(), static_cast<unsigned int>(text.size()));
    ORV_FUZZ_REQUIRE(orv::utils::deserializeDynamicObjectFromJson(again, reread, &logger));
    ORV_FUZZ_REQUIRE(orv::fuzz::haveSameContents(object, again));
    return 0;
}
