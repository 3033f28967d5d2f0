// The stored text of a random stream from anywhere. A refused text leaves the stream where it
// was; an accepted one gives a stream whose own text restores the same place.

#include "FuzzSupport.h"

#include <orv/utils/Random.h>

#include <string>

namespace {

std::string writeText(const orv::utils::Random& random, orv::fuzz::QuietLogger& logger)
{
    unsigned int size = 0;
    char* text = orv::utils::serializeRandom(size, random, &logger);
    return orv::fuzz::takeSerializedText(text, size);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    orv::fuzz::BlockBalance balance;
    orv::fuzz::QuietLogger logger;
    orv::utils::Random random(1234);
    random();
    const std::string before = writeText(random, logger);
    if (!orv::utils::deserializeRandom(reinterpret_cast<const char*>(data), static_cast<unsigned int>(size), random,
                                       &logger)) {
        ORV_FUZZ_REQUIRE(writeText(random, logger) == before);
        return 0;
    }
    const std::string text = writeText(random, logger);
    orv::utils::Random again(1);
    ORV_FUZZ_REQUIRE(orv::utils::deserializeRandom(text.data(), static_cast<unsigned int>(text.size()), again, &logger));
    ORV_FUZZ_REQUIRE(again() == random());
    return 0;
}
