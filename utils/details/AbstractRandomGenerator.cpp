#include <orv/utils/details/AbstractRandomGenerator.h>

namespace orv {
namespace utils {
namespace details {

AbstractRandomGenerator::~AbstractRandomGenerator() = default;

} // namespace details
} // namespace utils
} // namespace orv
