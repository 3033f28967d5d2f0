#ifndef ORV_UTILS_SYSTEM_H
#define ORV_UTILS_SYSTEM_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {

class AbstractLogger;

/// Brings the library up: creates the facilities and registers the start-up types. A second call
/// does nothing (there is no reference count). Failures go to `logger`, which may be null.
ORV_UTILS_API bool initialize(AbstractLogger* logger);
/// Takes the library down; does nothing when it is not fully up. Never fails.
ORV_UTILS_API bool terminate(AbstractLogger* logger);
/// True when the facilities exist and every start-up type is registered.
ORV_UTILS_API bool isInitialized();

} // namespace utils
} // namespace orv

#endif
