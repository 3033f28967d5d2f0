#ifndef ORV_UTILS_DETAILS_ABSTRACTRANDOMGENERATOR_H
#define ORV_UTILS_DETAILS_ABSTRACTRANDOMGENERATOR_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {
namespace details {

/// A generator behind a random stream.
class ORV_UTILS_API AbstractRandomGenerator {
public:
    virtual ~AbstractRandomGenerator();
    /// Back to the state before the first draw; the seed is taken again at the next one.
    virtual void reset() = 0;

protected:
    AbstractRandomGenerator() = default;
    AbstractRandomGenerator(const AbstractRandomGenerator&) = default;
    AbstractRandomGenerator& operator=(const AbstractRandomGenerator&) = default;
};

} // namespace details
} // namespace utils
} // namespace orv

#endif
