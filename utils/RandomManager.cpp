#include <orv/utils/RandomManager.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/ProtobufText.h>
#include <orv/utils/impl/RandomTextFormat.h>

#include "Random.pb.h"

#include <string>

namespace orv {
namespace utils {

RandomManager::RandomManager() : seed_(0x0FFFF000u) {}

void RandomManager::seed(unsigned int seed)
{
    seed_ = seed;
}

unsigned int RandomManager::getSeed() const
{
    return seed_;
}

Random RandomManager::createRandomStream(unsigned int streamId) const
{
    return Random(seed_ ^ streamId);
}

char* serializeRandomManager(unsigned int& size, const RandomManager& manager, AbstractLogger* logger)
{
    proto::RandomManager message;
    impl::setRandomFormatVersion(*message.mutable_version());
    message.mutable_randommanager()->set_seed(manager.getSeed());
    return impl::serializeRandomMessage(message, size, "random manager", logger);
}

bool deserializeRandomManager(const char* data, unsigned int size, RandomManager& manager, AbstractLogger* logger)
{
    ORV_CHECK(data != nullptr || size == 0, "unable to deserialize a random manager from a null buffer");
    // The hook returned: the buffer is read as empty, which fails below for want of a version.
    if (data == nullptr) {
        size = 0;
    }
    proto::RandomManager message;
    if (!impl::parseProtobufText(data, size, message)) {
        ORV_LOG_ERROR(logger, error::invalidData, "Unable to deserialize a random manager: " << message.DebugString());
        return false;
    }
    if (!impl::checkRandomFormatVersion(message.version(), "random manager", logger)) {
        return false;
    }
    if (!message.has_randommanager()) {
        ORV_LOG_ERROR(logger, error::invalidData,
                      "Error while deserializing random manager: expected field randomManager not found");
        return false;
    }
    if (!message.randommanager().has_seed()) {
        ORV_LOG_ERROR(logger, error::invalidData,
                      "Error while deserializing random manager: expected field seed not found");
        return false;
    }
    manager.seed(message.randommanager().seed());
    return true;
}

} // namespace utils
} // namespace orv
