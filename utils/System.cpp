#include <orv/utils/System.h>

#include <orv/utils/Facilities.h>
#include <orv/utils/LoggerCWrapper.h>
#include <orv/utils/c/System.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/details/StartupRegistrations.h>

namespace orv {
namespace utils {

bool initialize(AbstractLogger* logger)
{
    if (isInitialized()) {
        return true;
    }
    Facilities::create();
    if (!Facilities::isSet()) {
        ORV_LOG_ERROR(logger, error::invalidOperation, "Unable to create the facilities singleton.");
        // Reached only with a returning hook: the access below raises the singleton's own assertion.
        details::touchFacilities();
        return false;
    }
    ORV_LOG_INFO(logger, "Initializing the runtime utils systems.");
    return details::registerStartupTypes(logger);
}

bool terminate(AbstractLogger* logger)
{
    if (!isInitialized()) {
        return true;
    }
    ORV_LOG_INFO(logger, "Terminating the runtime utils systems.");
    details::unregisterStartupTypes();
    if (Facilities::isSet()) {
        Facilities::destroy();
    }
    return true;
}

bool isInitialized()
{
    return Facilities::isSet() && details::areStartupTypesRegistered();
}

} // namespace utils
} // namespace orv

extern "C" {

orv_bool orv_utils_initialize(orv_Logger* logger)
{
    orv::utils::LoggerCWrapper wrapper(logger);
    return orv::utils::initialize(&wrapper) ? 1 : 0;
}

orv_bool orv_utils_terminate(orv_Logger* logger)
{
    orv::utils::LoggerCWrapper wrapper(logger);
    return orv::utils::terminate(&wrapper) ? 1 : 0;
}
}
