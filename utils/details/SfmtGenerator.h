#ifndef ORV_UTILS_DETAILS_SFMTGENERATOR_H
#define ORV_UTILS_DETAILS_SFMTGENERATOR_H

#include <orv/utils/Common.h>
#include <orv/utils/details/AbstractRandomGenerator.h>

namespace orv {
namespace utils {
namespace details {

/// SFMT19937 with its place in the sequence as a count of words, which it can move to in either
/// direction. The seed is taken lazily, at the first draw or move: many streams are made and
/// never drawn from.
class ORV_UTILS_API SfmtGenerator : public AbstractRandomGenerator {
public:
    static constexpr unsigned int wordCount = 624;
    static constexpr unsigned int unseeded = 0xFFFFFFFFu;

    explicit SfmtGenerator(unsigned int seed);
    SfmtGenerator(const SfmtGenerator& other);
    SfmtGenerator& operator=(const SfmtGenerator& other);
    ~SfmtGenerator() override;

    void reset() override;

    unsigned int next()
    {
        if (position_ > wordCount - 1) {
            refill();
        }
        const unsigned int word = state_[position_];
        position_ += stride_;
        return word;
    }

    unsigned int getSeed() const { return seed_; }
    /// Words handed out so far; 0 before the seed is taken.
    long long getCount() const;
    /// Moves to the absolute place `count`, forwards or backwards.
    void advance(long long count);

private:
    void seedState();
    void refill();
    void recurse(long long passes);

    Vector<unsigned int> key_;
    alignas(16) unsigned int state_[wordCount];
    unsigned int position_;
    long long generation_;
    unsigned int stride_;
    unsigned int seed_;
};

} // namespace details
} // namespace utils
} // namespace orv

#endif
