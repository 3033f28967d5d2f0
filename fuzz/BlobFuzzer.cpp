// Blob bytes from anywhere. A blob that loads must save to bytes that load again to the same
// bytes. Node contents are not checked on load, so a walk or a look-up in a loaded tree may meet
// broken links: it reports them through the assertion hook, which here returns, and must neither
// stray outside the nodes nor run forever.

#include "FuzzSupport.h"

#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/JsonSerializer.h>
#include <orv/utils/c/Assertion.h>

#include <string>

namespace {

void ignoreAssertion(const char*, unsigned int, const char*)
{
}

std::string saveBlob(const orv::utils::DynamicObject& object, orv::fuzz::QuietLogger& logger)
{
    orv::utils::DynamicBufferInputOutput output("blob");
    ORV_FUZZ_REQUIRE(object.saveBlob(output, &logger));
    return orv::fuzz::contents(output);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    orv::fuzz::BlockBalance balance;
    orv::fuzz::QuietLogger logger;
    orv::utils::DynamicObject object;
    object.setInt("kept.until.the.header.is.read", 1);
    orv::utils::BufferInput input(reinterpret_cast<const char*>(data), static_cast<unsigned int>(size));
    if (!object.loadBlob(input, &logger)) {
        return 0;
    }
    const orv_AssertionFailedFunction previous = orv_getAssertionFailedFunction();
    orv_setAssertionFailedFunction(&ignoreAssertion);
    orv::utils::DynamicBufferInputOutput json("json text");
    orv::utils::serializeDynamicObjectToJson(object, json, &logger);
    for (const char* path : { "a", "a.x", "a.b[1].c", "list[3]", "kept" }) {
        object.getInt(path, 0);
    }
    orv_setAssertionFailedFunction(previous);

    const std::string saved = saveBlob(object, logger);
    orv::utils::DynamicObject again;
    orv::utils::BufferInput reread(saved.data(), static_cast<unsigned int>(saved.size()));
    ORV_FUZZ_REQUIRE(again.loadBlob(reread, &logger));
    ORV_FUZZ_REQUIRE(saveBlob(again, logger) == saved);
    return 0;
}
