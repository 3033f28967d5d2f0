#include "support/TestSupport.h"

#include <orv/utils/Facilities.h>
#include <orv/utils/System.h>
#include <orv/utils/TypeManager.h>
#include <orv/utils/Uuid.h>
#include <orv/utils/c/System.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using orv::test::RecordingLogger;
using orv::test::Texts;
using namespace orv::utils;

namespace {

struct StartupType {
    const char* id;
    const char* name;
};

// The start-up list in registration order.
const StartupType startupTypes[] = {
    { "2de10931-583e-4114-9c9b-349ff9368296", "orv::utils::debugger::AbstractContext" },
    { "70cc68f4-f0b4-41ec-8eb8-a174cb0fd0dc", "orv::utils::debugger::AbstractEventFilter" },
    { "0476292e-8d52-4235-bf07-db5be5ec9bf4", "orv::utils::debugger::AbstractEventRequest" },
    { "8f1372e9-e974-4dd9-b8e2-a1c776ec07df", "orv::utils::debugger::MainContext" },
    { "7466a2e4-e4e5-4b18-9716-d8232f781e42", "orv::utils::debugger::EntitiesFilter" },
    { "6bd03c2e-d96f-4318-a68e-a359970c6ba3", "orv::utils::debugger::HitCountFilter" },
    { "060a160a-9175-42cf-8548-836663cb62bd", "orv::utils::debugger::LocationFilter" },
    { "ea13aabf-9aa8-484c-9a3c-2e77a496d9dc", "orv::utils::debugger::LocationPointRequest" },
    { "33744771-c389-4914-96e8-cdca5c59cf82", "orv::utils::debugger::BreakpointRequest" },
    { "7ff2390a-aa6f-4e1d-a28c-448238c5dcf6", "orv::utils::debugger::EntityRegistrationRequest" },
    { "5dbc9b70-fb5f-4c90-b5ea-16532faf4ecc", "orv::utils::debugger::EntityUnregistrationRequest" },
    { "99d9780e-eb2b-487c-937a-1840077c0816", "orv::utils::debugger::InitializationRequest" },
    { "dc773989-1044-44d6-8993-3351b64dfd35", "orv::utils::debugger::TargetDisconnectRequest" },
    { "43672c42-c091-4bfb-a4fe-d3a38ea9b883", "orv::utils::debugger::TargetSuspendRequest" },
    { "4f42d75e-1837-4822-9de2-610f70752899", "orv::utils::debugger::TerminationRequest" },
};

TypeManager& typeManager()
{
    return Facilities::instance().getTypeManager();
}

// Unregistering a type destroys its creator first, so creators that note their own destruction
// show the order in which types leave the registry.
std::vector<std::string> destroyedCreators;

class WitnessCreator : public TypeManager::StaticObjectCreator {
public:
    explicit WitnessCreator(std::string name, bool witness = false)
        : name_(name)
        , witness_(witness)
    {
    }
    ~WitnessCreator() override
    {
        if (witness_) {
            destroyedCreators.push_back(name_);
        }
    }
    StaticObjectCreator* clone() const { return ORV_NEW(WitnessCreator)(name_, true); }

private:
    std::string name_;
    bool witness_;
};

} // namespace

TEST(System, InitializeBringsTheLibraryUpOnceAndOneTerminateTakesItDown)
{
    ASSERT_FALSE(isInitialized());
    RecordingLogger logger;
    ASSERT_TRUE(initialize(&logger));
    EXPECT_TRUE(isInitialized());
    EXPECT_TRUE(Facilities::isSet());
    EXPECT_TRUE(initialize(&logger));
    for (const StartupType& type : startupTypes) {
        EXPECT_STREQ(typeManager().getTypeName(Uuid::create(type.id)), type.name);
    }
    EXPECT_TRUE(typeManager().isTypeRegistered("ScriptedParams"));
    EXPECT_TRUE(terminate(&logger));
    EXPECT_FALSE(isInitialized());
    EXPECT_FALSE(Facilities::isSet());
    EXPECT_TRUE(terminate(&logger));
    EXPECT_EQ(logger.lines,
        (Texts { "info||Initializing the runtime utils systems.", "info||Terminating the runtime utils systems." }));

    // The C forms do the same; without info the logger hears nothing, and without one nothing is written.
    logger.lines.clear();
    EXPECT_EQ(orv_utils_initialize(&logger.getWrapper()), 1);
    EXPECT_TRUE(isInitialized());
    EXPECT_EQ(orv_utils_terminate(&logger.getWrapper()), 1);
    EXPECT_FALSE(Facilities::isSet());
    EXPECT_EQ(logger.messages(),
        (Texts { "Initializing the runtime utils systems.", "Terminating the runtime utils systems." }));
    RecordingLogger quiet(true, false, true);
    EXPECT_TRUE(initialize(&quiet) && terminate(&quiet));
    EXPECT_TRUE(quiet.lines.empty());
    EXPECT_EQ(orv_utils_initialize(nullptr) + orv_utils_terminate(nullptr), 2);
    EXPECT_FALSE(isInitialized());
}

TEST(System, AMissingStartupTypeLeavesTheLibraryHalfUp)
{
    // Each type of the list counts: without any one of them the library is not up, and terminate
    // then leaves everything as it is.
    for (const StartupType& type : startupTypes) {
        ASSERT_TRUE(initialize(nullptr));
        const Uuid id = Uuid::create(type.id);
        typeManager().unregisterType(id);
        EXPECT_FALSE(isInitialized()) << type.name;

        RecordingLogger logger;
        EXPECT_TRUE(terminate(&logger));
        EXPECT_TRUE(logger.lines.empty());
        ASSERT_TRUE(Facilities::isSet());
        EXPECT_TRUE(typeManager().isTypeRegistered("int"));
        for (const StartupType& other : startupTypes) {
            EXPECT_EQ(typeManager().isTypeRegistered(other.name), &other != &type) << other.name;
        }

        ASSERT_TRUE(typeManager().registerType(id, type.name, nullptr));
        EXPECT_TRUE(isInitialized()) << type.name;
        EXPECT_TRUE(terminate(nullptr));
        EXPECT_FALSE(Facilities::isSet());
    }
}

TEST(System, TerminateRemovesDerivedRequestsBeforeTheirBasesThenTheBaseTypes)
{
    ASSERT_TRUE(initialize(nullptr));
    destroyedCreators.clear();
    // In registration order; DynamicObject stays registered until the type manager itself goes.
    const std::vector<std::string> baseTypes = { "int", "int64", "double", "float", "bool", "orv::utils::String",
        "std::String", "cstring", "orv::utils::Vector3r", "orv::utils::Vector2r", "orv::utils::Quaternionr",
        "StaticObject", "ScriptedParams", "orv::utils::DynamicObject" };
    for (const StartupType& type : startupTypes) {
        typeManager().getCreatorFactory().registerCreator(Uuid::create(type.id), WitnessCreator(type.name));
    }
    for (const std::string& name : baseTypes) {
        typeManager().getCreatorFactory().registerCreator(typeManager().getTypeId(name.c_str()), WitnessCreator(name));
    }
    EXPECT_TRUE(destroyedCreators.empty());

    EXPECT_TRUE(terminate(nullptr));
    std::vector<std::string> expected;
    for (const char* name : { "EntityRegistrationRequest", "EntityUnregistrationRequest", "BreakpointRequest",
             "LocationPointRequest", "TargetSuspendRequest", "TargetDisconnectRequest", "InitializationRequest",
             "TerminationRequest", "LocationFilter", "HitCountFilter", "EntitiesFilter", "MainContext",
             "AbstractEventRequest", "AbstractEventFilter", "AbstractContext" }) {
        expected.push_back(std::string("orv::utils::debugger::") + name);
    }
    expected.insert(expected.end(), baseTypes.begin(), baseTypes.end());
    EXPECT_EQ(destroyedCreators, expected);
}
