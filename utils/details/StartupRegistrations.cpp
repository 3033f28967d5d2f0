#include <orv/utils/details/StartupRegistrations.h>

#include <orv/utils/Facilities.h>

namespace orv {
namespace utils {
namespace details {

bool registerStartupTypes(AbstractLogger*)
{
    return true;
}

void unregisterStartupTypes() {}

bool areStartupTypesRegistered()
{
    return true;
}

void touchFacilities()
{
    Facilities::instance();
}

} // namespace details
} // namespace utils
} // namespace orv
