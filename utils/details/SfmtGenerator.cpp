#include <orv/utils/details/SfmtGenerator.h>

#include <orv/utils/details/SfmtJump.h>
#include <orv/utils/details/SfmtRecursion.h>

#include <algorithm>
#include <cstring>

namespace orv {
namespace utils {
namespace details {
namespace {

constexpr unsigned int lag = 11;
// Past this many passes a jump is used: a stored count may be anything up to 2^63, which passes one
// by one would take years to reach, while a jump takes about a tenth of a second at any distance.
// Shorter moves keep the plain passes.
constexpr long long jumpPasses = 4096;
constexpr unsigned int mid = (SfmtGenerator::wordCount - lag) / 2;

unsigned int firstMix(unsigned int x)
{
    return (x ^ (x >> 27)) * 1664525u;
}

unsigned int secondMix(unsigned int x)
{
    return (x ^ (x >> 27)) * 1566083941u;
}

// The published seeding from an array of words.
void seedByArray(unsigned int* state, const unsigned int* key, unsigned int keyLength)
{
    constexpr unsigned int n = SfmtGenerator::wordCount;
    std::memset(state, 0x8B, n * sizeof(unsigned int));
    const unsigned int rounds = std::max(keyLength + 1, n);
    unsigned int i = 0;
    for (unsigned int k = 0; k < rounds; ++k) {
        unsigned int r = firstMix(state[i] ^ state[(i + mid) % n] ^ state[(i + n - 1) % n]);
        state[(i + mid) % n] += r;
        if (k == 0) {
            r += keyLength;
        } else if (k <= keyLength) {
            r += key[k - 1] + i;
        } else {
            r += i;
        }
        state[(i + mid + lag) % n] += r;
        state[i] = r;
        i = (i + 1) % n;
    }
    for (unsigned int k = 0; k < n; ++k) {
        unsigned int r = secondMix(state[i] + state[(i + mid) % n] + state[(i + n - 1) % n]);
        state[(i + mid) % n] ^= r;
        r -= i;
        state[(i + mid + lag) % n] ^= r;
        state[i] = r;
        i = (i + 1) % n;
    }
}

// Makes sure the state is not on one of the short cycles: if the parity of the certified bits is
// even, the lowest bit of the first word is flipped.
void certifyPeriod(unsigned int* state)
{
    unsigned int inner = (state[0] & 1u) ^ (state[3] & 0x13C9E684u);
    for (unsigned int shift = 16; shift > 0; shift >>= 1) {
        inner ^= inner >> shift;
    }
    if ((inner & 1u) == 0) {
        state[0] ^= 1u;
    }
}

} // namespace

SfmtGenerator::SfmtGenerator(unsigned int seed) : position_(unseeded), generation_(-1), stride_(1), seed_(seed)
{
    key_.push_back(seed);
    // The seed fills the words at the first draw, but a copy made before then copies them too.
    std::memset(state_, 0, sizeof(state_));
    reset();
}

SfmtGenerator::SfmtGenerator(const SfmtGenerator& other) = default;

SfmtGenerator& SfmtGenerator::operator=(const SfmtGenerator& other) = default;

SfmtGenerator::~SfmtGenerator() = default;

void SfmtGenerator::reset()
{
    position_ = unseeded;
    stride_ = 1;
}

long long SfmtGenerator::getCount() const
{
    if (position_ == unseeded) {
        return 0;
    }
    return generation_ * wordCount + position_;
}

void SfmtGenerator::advance(long long count)
{
    const long long delta = count - getCount();
    if (position_ == unseeded) {
        seedState();
    }
    const long long target = getCount() + delta;
    long long generation = target / wordCount;
    long long position = target % wordCount;
    if (position < 0) {
        position += wordCount;
        generation -= 1;
    } else if (position == 0 && generation > generation_) {
        // Standing at the end of the previous block: the next draw regenerates, as it would have
        // on the way there.
        position = wordCount;
        generation -= 1;
    }
    if (generation != generation_) {
        recurse(generation - generation_);
    }
    generation_ = generation;
    position_ = static_cast<unsigned int>(position);
}

void SfmtGenerator::seedState()
{
    seedByArray(state_, key_.data(), static_cast<unsigned int>(key_.size()));
    certifyPeriod(state_);
    generation_ = -1;
    position_ = wordCount;
}

void SfmtGenerator::refill()
{
    if (position_ == unseeded) {
        seedState();
    }
    const unsigned int passes = position_ / wordCount;
    generation_ += passes;
    recurse(passes);
    position_ %= wordCount;
}

void SfmtGenerator::recurse(long long passes)
{
    if (passes > jumpPasses) {
        sfmt::jumpForward(state_, static_cast<unsigned long long>(passes));
        return;
    }
    if (passes < -jumpPasses) {
        // A stored count past 2^63 reads as a place far before the start.
        sfmt::jumpBackward(state_, 0 - static_cast<unsigned long long>(passes));
        return;
    }
    for (; passes > 0; --passes) {
        sfmt::forwardPass(state_);
    }
    for (; passes < 0; ++passes) {
        sfmt::backwardPass(state_);
    }
}

} // namespace details
} // namespace utils
} // namespace orv
