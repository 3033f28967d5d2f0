#ifndef ORV_UTILS_RANDOMMANAGER_H
#define ORV_UTILS_RANDOMMANAGER_H

#include <orv/utils/SerializedBuffer.h>
#include <orv/utils/Random.h>

namespace orv {
namespace utils {

class AbstractLogger;
class RandomManager;

/// Text of the manager's master seed; null on failure. The text has no terminating zero: `size`
/// gives its length. The buffer comes from the library allocator with its size in one word ahead
/// of the returned pointer; the caller releases it with freeSerializedBuffer.
ORV_UTILS_API char* serializeRandomManager(unsigned int& size, const RandomManager& manager, AbstractLogger* logger);
/// Sets the master seed from the text; on failure the manager is left as it was.
ORV_UTILS_API bool deserializeRandomManager(const char* data, unsigned int size, RandomManager& manager,
                                            AbstractLogger* logger);

/// One master seed from which numbered streams are derived, so that a whole simulation replays
/// from that seed. Streams only read the seed when they are made: threads may make their own
/// from a shared manager.
class ORV_UTILS_API RandomManager {
public:
    /// Master seed 0x0FFFF000.
    RandomManager();

    /// Streams made earlier keep their seeds.
    void seed(unsigned int seed);
    unsigned int getSeed() const;

    /// A new stream seeded with the master seed XOR `streamId`.
    Random createRandomStream(unsigned int streamId) const;

private:
    unsigned int seed_;
};

} // namespace utils
} // namespace orv

#endif
