#ifndef ORV_UTILS_RANDOM_H
#define ORV_UTILS_RANDOM_H

#include <orv/utils/SerializedBuffer.h>
#include <orv/utils/details/SfmtGenerator.h>

namespace orv {
namespace utils {

class AbstractLogger;
class Random;

/// Text of the stream's seed and place; null on failure. The text has no terminating zero:
/// `size` gives its length. The buffer comes from the library allocator with its size in one
/// word ahead of the returned pointer; the caller releases it with freeSerializedBuffer.
ORV_UTILS_API char* serializeRandom(unsigned int& size, const Random& random, AbstractLogger* logger);
/// Replaces `random` by the stream in the text; on failure `random` is left as it was.
ORV_UTILS_API bool deserializeRandom(const char* data, unsigned int size, Random& random, AbstractLogger* logger);

/// A reproducible stream of 32-bit words (SFMT19937 seeded from one word) whose place can be
/// stored as its seed and a count of words, and restored exactly. One thread at a time.
class ORV_UTILS_API Random {
public:
    /// The seed is taken at the first draw.
    explicit Random(unsigned int seed);
    /// The copy continues from the same place, independently.
    Random(const Random& other);
    Random& operator=(const Random& other);
    ~Random();

    /// The next word. Inline, so that the common draw is a test, a load and an add in the
    /// caller's own code, with no call.
    unsigned int operator()() { return generator_->next(); }
    /// Uniform in [0, maximum]. 0 consumes nothing; a draw may consume several words.
    unsigned int operator()(unsigned int maximum);
    /// Uniform between `a` and `b`, both included, in either order. Equal bounds consume nothing.
    unsigned int operator()(unsigned int a, unsigned int b);

private:
    friend char* serializeRandom(unsigned int& size, const Random& random, AbstractLogger* logger);
    friend bool deserializeRandom(const char* data, unsigned int size, Random& random, AbstractLogger* logger);

    unsigned int getSeed() const;
    long long getCount() const;
    void advance(long long count);

    details::SfmtGenerator* generator_;
};

} // namespace utils
} // namespace orv

#endif
