#include <orv/utils/Random.h>

#include <orv/allocator/Allocator.h>
#include <orv/utils/Assertion.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/impl/ProtobufText.h>
#include <orv/utils/impl/RandomTextFormat.h>

#include "Random.pb.h"

#include <string>
#include <utility>

namespace orv {
namespace utils {

Random::Random(unsigned int seed) : generator_(ORV_NEW(details::SfmtGenerator)(seed)) {}

Random::Random(const Random& other) : generator_(ORV_NEW(details::SfmtGenerator)(*other.generator_)) {}

Random& Random::operator=(const Random& other)
{
    *generator_ = *other.generator_;
    return *this;
}

Random::~Random()
{
    ORV_DELETE(generator_);
}

unsigned int Random::operator()(unsigned int maximum)
{
    if (maximum == 0) {
        return 0;
    }
    // Words above `limit` would favour the low results: they are drawn again. Dividing keeps the
    // high bits of the word, which are the better ones.
    unsigned int n = maximum + 1;
    if (n == 0) {
        n = 1;
    }
    const unsigned int quotient = (0xFFFFFFFFu - maximum) / n;
    const unsigned int limit = quotient * n + maximum;
    unsigned int word = generator_->next();
    while (word > limit) {
        word = generator_->next();
    }
    return word / (quotient + 1);
}

unsigned int Random::operator()(unsigned int a, unsigned int b)
{
    if (a > b) {
        std::swap(a, b);
    }
    if (a == b) {
        return a;
    }
    return a + (*this)(b - a);
}

unsigned int Random::getSeed() const
{
    return generator_->getSeed();
}

long long Random::getCount() const
{
    return generator_->getCount();
}

void Random::advance(long long count)
{
    generator_->advance(count);
}

char* serializeRandom(unsigned int& size, const Random& random, AbstractLogger* logger)
{
    proto::Random message;
    impl::setRandomFormatVersion(*message.mutable_version());
    proto::RandomProperties& properties = *message.mutable_random();
    properties.set_seed(random.getSeed());
    properties.set_count(static_cast<unsigned long long>(random.getCount()));
    return impl::serializeRandomMessage(message, size, "random stream", logger);
}

bool deserializeRandom(const char* data, unsigned int size, Random& random, AbstractLogger* logger)
{
    ORV_CHECK(data != nullptr || size == 0, "unable to deserialize a random stream from a null buffer");
    // The hook returned: the buffer is read as empty, which fails below for want of a version.
    if (data == nullptr) {
        size = 0;
    }
    proto::Random message;
    if (!impl::parseProtobufText(data, size, message)) {
        ORV_LOG_ERROR(logger, error::invalidData, "Unable to deserialize a random stream: " << message.DebugString());
        return false;
    }
    if (!impl::checkRandomFormatVersion(message.version(), "random", logger)) {
        return false;
    }
    if (!message.has_random()) {
        ORV_LOG_ERROR(logger, error::invalidData, "Error while deserializing random: expected field random not found");
        return false;
    }
    const proto::RandomProperties& properties = message.random();
    if (!properties.has_seed()) {
        ORV_LOG_ERROR(logger, error::invalidData, "Error while deserializing random: expected field seed not found");
        return false;
    }
    if (!properties.has_count()) {
        ORV_LOG_ERROR(logger, error::invalidData, "Error while deserializing random: expected field count not found");
        return false;
    }
    Random restored(properties.seed());
    restored.advance(static_cast<long long>(properties.count()));
    random = restored;
    return true;
}

} // namespace utils
} // namespace orv
