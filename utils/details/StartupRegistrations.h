#ifndef ORV_UTILS_DETAILS_STARTUPREGISTRATIONS_H
#define ORV_UTILS_DETAILS_STARTUPREGISTRATIONS_H

namespace orv {
namespace utils {

class AbstractLogger;

namespace details {

/// Registers the base types, then the start-up list, stopping at the first failure. Nothing is
/// rolled back: what was registered stays registered.
bool registerStartupTypes(AbstractLogger* logger);
/// Unregisters the start-up list in its removal order, then the base types.
void unregisterStartupTypes();
/// True when every type of the start-up list is registered (the base types are not tested).
bool areStartupTypesRegistered();
/// Reads the facilities' services, for the path where the facilities could not be created.
void touchFacilities();

} // namespace details
} // namespace utils
} // namespace orv

#endif
