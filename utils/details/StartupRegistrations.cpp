#include <orv/utils/details/StartupRegistrations.h>

#include <orv/utils/Facilities.h>
#include <orv/utils/TypeManager.h>
#include <orv/utils/Uuid.h>

namespace orv {
namespace utils {
namespace details {
namespace {

// Registers what a debugger class shows beyond its id and name. A failing step unregisters that
// one type and stops the start-up.
using MetadataStep = bool (*)(TypeManager&, AbstractLogger*);

struct StartupType {
    // The case of the ids is mixed as it always was; the id parser ignores it.
    const char* id;
    const char* name;
    // MainContext's own metadata step and the internalSetMetadata of the filters and requests
    // fill these once the debugger classes are part of the library; the abstract bases have none.
    MetadataStep setMetadata;
};

const StartupType abstractContext { "2de10931-583e-4114-9c9b-349ff9368296", "orv::utils::debugger::AbstractContext",
    nullptr };
const StartupType abstractEventFilter { "70CC68F4-F0B4-41EC-8EB8-A174CB0FD0DC",
    "orv::utils::debugger::AbstractEventFilter", nullptr };
const StartupType abstractEventRequest { "0476292e-8d52-4235-bf07-db5be5ec9bf4",
    "orv::utils::debugger::AbstractEventRequest", nullptr };
const StartupType mainContext { "8f1372e9-e974-4dd9-b8e2-a1c776ec07df", "orv::utils::debugger::MainContext", nullptr };
const StartupType entitiesFilter { "7466a2e4-e4e5-4b18-9716-d8232f781e42", "orv::utils::debugger::EntitiesFilter",
    nullptr };
const StartupType hitCountFilter { "6bd03c2e-d96f-4318-a68e-a359970c6ba3", "orv::utils::debugger::HitCountFilter",
    nullptr };
const StartupType locationFilter { "060a160a-9175-42cf-8548-836663cb62bd", "orv::utils::debugger::LocationFilter",
    nullptr };
const StartupType locationPointRequest { "ea13aabf-9aa8-484c-9a3c-2e77a496d9dc",
    "orv::utils::debugger::LocationPointRequest", nullptr };
const StartupType breakpointRequest { "33744771-c389-4914-96e8-cdca5c59cf82", "orv::utils::debugger::BreakpointRequest",
    nullptr };
const StartupType entityRegistrationRequest { "7FF2390A-AA6F-4E1D-A28C-448238C5DCF6",
    "orv::utils::debugger::EntityRegistrationRequest", nullptr };
const StartupType entityUnregistrationRequest { "5DBC9B70-FB5F-4C90-B5EA-16532FAF4ECC",
    "orv::utils::debugger::EntityUnregistrationRequest", nullptr };
const StartupType initializationRequest { "99d9780e-eb2b-487c-937a-1840077c0816",
    "orv::utils::debugger::InitializationRequest", nullptr };
const StartupType targetDisconnectRequest { "DC773989-1044-44D6-8993-3351B64DFD35",
    "orv::utils::debugger::TargetDisconnectRequest", nullptr };
const StartupType targetSuspendRequest { "43672C42-C091-4BFB-A4FE-D3A38EA9B883",
    "orv::utils::debugger::TargetSuspendRequest", nullptr };
const StartupType terminationRequest { "4f42d75e-1837-4822-9de2-610f70752899",
    "orv::utils::debugger::TerminationRequest", nullptr };

const StartupType* const registrationOrder[] = {
    &abstractContext,
    &abstractEventFilter,
    &abstractEventRequest,
    &mainContext,
    &entitiesFilter,
    &hitCountFilter,
    &locationFilter,
    &locationPointRequest,
    &breakpointRequest,
    &entityRegistrationRequest,
    &entityUnregistrationRequest,
    &initializationRequest,
    &targetDisconnectRequest,
    &targetSuspendRequest,
    &terminationRequest,
};

// Derived requests go before their bases; this is not the reverse of the registration order.
const StartupType* const removalOrder[] = {
    &entityRegistrationRequest,
    &entityUnregistrationRequest,
    &breakpointRequest,
    &locationPointRequest,
    &targetSuspendRequest,
    &targetDisconnectRequest,
    &initializationRequest,
    &terminationRequest,
    &locationFilter,
    &hitCountFilter,
    &entitiesFilter,
    &mainContext,
    &abstractEventRequest,
    &abstractEventFilter,
    &abstractContext,
};

} // namespace

bool registerStartupTypes(AbstractLogger* logger)
{
    TypeManager& typeManager = Facilities::instance().getTypeManager();
    if (!typeManager.registerBaseTypes(logger)) {
        return false;
    }
    for (const StartupType* type : registrationOrder) {
        const Uuid id = Uuid::create(type->id);
        if (!typeManager.registerType(id, type->name, logger)) {
            return false;
        }
        if (type->setMetadata != nullptr && !type->setMetadata(typeManager, logger)) {
            typeManager.unregisterType(id);
            return false;
        }
    }
    return true;
}

void unregisterStartupTypes()
{
    TypeManager& typeManager = Facilities::instance().getTypeManager();
    for (const StartupType* type : removalOrder) {
        typeManager.unregisterType(Uuid::create(type->id));
    }
    typeManager.unregisterBaseTypes();
}

bool areStartupTypesRegistered()
{
    const TypeManager& typeManager = Facilities::instance().getTypeManager();
    for (const StartupType* type : registrationOrder) {
        if (!typeManager.isTypeRegistered(Uuid::create(type->id))) {
            return false;
        }
    }
    return true;
}

void touchFacilities()
{
    Facilities::instance().getTypeManager();
}

} // namespace details
} // namespace utils
} // namespace orv
