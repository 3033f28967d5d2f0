#include "support/TestSupport.h"

#include <orv/utils/Facilities.h>
#include <orv/utils/Property.h>
#include <orv/utils/System.h>
#include <orv/utils/TypeManager.h>
#include <orv/utils/Uuid.h>
#include <orv/utils/c/TypeManager.h>
#include <orv/utils/details/ClassTypeId.h>
#include <orv/utils/details/TypeMetadata.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using orv::test::AssertionCapture;
using orv::test::RecordingLogger;
using orv::test::Texts;
using namespace orv::utils;
using details::TypeMetadata;

namespace {

const Uuid idA = Uuid::create("a0000000-0000-4000-8000-00000000000a");
const Uuid idB = Uuid::create("b0000000-0000-4000-8000-00000000000b");
const Uuid idC = Uuid::create("c0000000-0000-4000-8000-00000000000c");
const Uuid idD = Uuid::create("d0000000-0000-4000-8000-00000000000d");
const Uuid unknownId = Uuid::create("e0000000-0000-4000-8000-00000000000e");
const Uuid staticObjectId = Uuid::create("7027fee4-32de-4a3a-a634-65811d6429e2");
const Uuid scriptedParamsId = Uuid::create("f7052c64-3554-4627-8ed2-2f96c65232e2");

std::string text(const Uuid& id)
{
    std::ostringstream stream;
    stream << id;
    return stream.str();
}

// A creator that tells which logger it was called with and hands back a marker it never
// dereferences.
int creatorMarker;
int liveCreators = 0;
AbstractLogger* lastCreatorLogger = nullptr;

class MarkerCreator : public TypeManager::StaticObjectCreator {
public:
    MarkerCreator() { ++liveCreators; }
    MarkerCreator(const MarkerCreator&) : StaticObjectCreator() { ++liveCreators; }
    ~MarkerCreator() override { --liveCreators; }

    StaticObject* operator()(AbstractLogger* logger) const override
    {
        lastCreatorLogger = logger;
        return reinterpret_cast<StaticObject*>(&creatorMarker);
    }
    StaticObjectCreator* clone() const { return ORV_NEW(MarkerCreator)(*this); }
};

// The keys of a type's properties in index order, each with the name of the type that owns it.
std::vector<std::string> keysByIndex(const TypeManager& manager, const Uuid& id)
{
    std::vector<std::string> keys;
    for (unsigned int i = 0; i < manager.countProperties(id); ++i) {
        const Property& property = manager.getProperty(id, i);
        keys.push_back(std::string(manager.getTypeName(property.getOwnerTypeId())) + "." + property.getKey());
    }
    return keys;
}

} // namespace

TEST(TypeManager, RegistersATypeOnceUnderOneIdAndOneNameAndAssertsOnUnknownOnes)
{
    TypeManager manager;
    RecordingLogger logger;
    EXPECT_TRUE(manager.registerType(idA, "A", &logger));
    EXPECT_TRUE(manager.registerType(idA, "A", &logger));
    EXPECT_EQ(
        logger.lines, (Texts { "warning||Trying to register an already registered type: 'A' {" + text(idA) + "}" }));
    EXPECT_TRUE(manager.isTypeRegistered(idA) && manager.isTypeRegistered("A"));
    EXPECT_EQ(manager.getTypeId("A"), idA);
    EXPECT_STREQ(manager.getTypeName(idA), "A");

    logger.lines.clear();
    EXPECT_FALSE(manager.registerType(idA, "Other", &logger));
    EXPECT_FALSE(manager.registerType(idB, "A", &logger));
    EXPECT_EQ(logger.lines,
        (Texts { "error|invalid argument|While trying to register a type with name Other, another type named A,  "
                 "was found with the same id, "
                + text(idA) + ".",
            "error|invalid argument|While trying to register a type with id {" + text(idB) + "}, another type with id {"
                + text(idA) + "}, was found with the same name 'A'." }));
    EXPECT_STREQ(manager.getTypeName(idA), "A");
    EXPECT_FALSE(manager.isTypeRegistered("Other") || manager.isTypeRegistered(idB));

    // Names compare exactly, and a silent or absent logger changes no result.
    EXPECT_TRUE(manager.registerType(idB, "a", nullptr));
    RecordingLogger quiet(false, true, true);
    EXPECT_TRUE(manager.registerType(idA, "A", &quiet));
    EXPECT_FALSE(manager.registerType(idC, "a", nullptr));
    EXPECT_TRUE(quiet.lines.empty());
    EXPECT_FALSE(manager.isTypeRegistered(static_cast<const char*>(nullptr)));

    manager.unregisterType(idA);
    EXPECT_FALSE(manager.isTypeRegistered("A"));
    EXPECT_TRUE(manager.registerType(idC, "A", &logger));

    // Look-ups of unknown types are broken contracts.
    AssertionCapture capture;
    EXPECT_EQ(manager.getTypeId("missing"), Uuid());
    EXPECT_STREQ(manager.getTypeName(unknownId), "");
    EXPECT_EQ(manager.getType(unknownId), type::null);
    const std::string missing = "No type having the id " + text(unknownId) + " is registered.";
    EXPECT_EQ(capture.texts(), (Texts { "No type having the name missing is registered.", missing, missing }));

    capture.clear();
    TypeMetadata lone("Lone", idA);
    EXPECT_EQ(&lone.getBaseType(0), &lone);
    EXPECT_EQ(capture.texts(), (Texts { "Invalid base type index" }));
}

TEST(TypeManager, BaseTypesHaveTheirNamesIdsAndKinds)
{
    struct Row {
        const char* name;
        const char* id;
        type::Type kind;
    };
    const Row rows[] = {
        { "int", "1bc45061-9b2d-47a0-91e4-366d093a370b", type::integer },
        { "int64", "6f6dce75-d95d-4da8-944c-94fece5c8e4d", type::integer },
        { "double", "897618b0-7479-4a89-8ab7-23fa13f16316", type::real },
        { "float", "8e6fc8dd-2cee-4bc0-b1d8-87142e68d777", type::real },
        { "bool", "23aa4943-a9fb-4472-a4f0-35a0bf88f41e", type::boolean },
        { "orv::utils::String", "ad7b0b58-c164-4d3f-be4a-327ace48624c", type::string },
        { "std::String", "56b2b24a-26d9-46d9-8361-0d654d7ac842", type::string },
        { "cstring", "4f688f9a-fdbe-4da6-8b66-533c1a88e4c0", type::string },
        { "orv::utils::Vector3r", "f31f94dc-07a5-462f-b055-7be3506a7b36", type::object },
        { "orv::utils::Vector2r", "848ef37e-0b2f-4805-85b3-f0b3b14f0fd0", type::object },
        { "orv::utils::Quaternionr", "509e70d9-c3f4-48e6-8072-614b6805fa48", type::object },
        { "orv::utils::DynamicObject", "0775eb00-e4e6-4c6a-83fb-a970e0cbc092", type::object },
        { "StaticObject", "7027fee4-32de-4a3a-a634-65811d6429e2", type::object },
        { "ScriptedParams", "f7052c64-3554-4627-8ed2-2f96c65232e2", type::object },
    };
    TypeManager manager;
    RecordingLogger logger;
    ASSERT_TRUE(manager.registerBaseTypes(&logger));
    EXPECT_TRUE(logger.lines.empty());
    for (const Row& row : rows) {
        ASSERT_TRUE(manager.isTypeRegistered(row.name)) << row.name;
        EXPECT_EQ(manager.getTypeId(row.name), Uuid::create(row.id)) << row.name;
        EXPECT_EQ(manager.getType(Uuid::create(row.id)), row.kind) << row.name;
    }
    EXPECT_EQ(details::getClassTypeId<long long>(), manager.getTypeId("int64"));
    EXPECT_EQ(details::getObjectTypeId(String("s")), manager.getTypeId("orv::utils::String"));
    EXPECT_EQ(details::getObjectTypeId(std::string("s")), manager.getTypeId("std::String"));

    // Static objects are the types derived from StaticObject.
    manager.registerType(idA, "A", nullptr);
    EXPECT_FALSE(manager.isStaticObject(details::getClassTypeId<int>()));
    EXPECT_FALSE(manager.isStaticObject(idA) || manager.isStaticObject(unknownId));
    EXPECT_TRUE(manager.isStaticObject(staticObjectId));
    manager.addBaseType(idA, staticObjectId, nullptr);
    EXPECT_TRUE(manager.isStaticObject(idA));
    manager.unregisterType(idA);

    // A second run finds every type already there.
    EXPECT_TRUE(manager.registerBaseTypes(&logger));
    EXPECT_EQ(logger.lines.size(), 14u);

    manager.unregisterBaseTypes();
    for (const Row& row : rows) {
        EXPECT_EQ(manager.isTypeRegistered(row.name), row.name == std::string("orv::utils::DynamicObject")) << row.name;
    }
    manager.clearTypes();
    EXPECT_FALSE(manager.isTypeRegistered("orv::utils::DynamicObject"));

    // A clash stops the registration and takes back the base types registered before it, but
    // not the type that held the name.
    logger.lines.clear();
    manager.registerType(idA, "float", nullptr);
    EXPECT_FALSE(manager.registerBaseTypes(&logger));
    EXPECT_EQ(logger.messages(),
        (Texts { "While trying to register a type with id {" + std::string(rows[3].id) + "}, another type with id {"
            + text(idA) + "}, was found with the same name 'float'." }));
    EXPECT_FALSE(manager.isTypeRegistered("int"));
    EXPECT_FALSE(manager.isTypeRegistered("double"));
    EXPECT_TRUE(manager.isTypeRegistered(idA));
}

TEST(TypeManager, BasesFormNoCycleAndLeaveWithTheirType)
{
    TypeManager manager;
    RecordingLogger logger;
    manager.registerType(idA, "A", nullptr);
    manager.registerType(idB, "B", nullptr);
    manager.registerType(idC, "C", nullptr);
    EXPECT_TRUE(manager.addBaseType(idB, idA, &logger));
    EXPECT_TRUE(manager.addBaseType(idC, idB, &logger));
    EXPECT_TRUE(manager.isDerivedFrom(idC, idA) && manager.isDerivedFrom(idA, idA));
    EXPECT_FALSE(manager.isDerivedFrom(idA, idC));
    EXPECT_FALSE(manager.isDerivedFrom(unknownId, unknownId) || manager.isDerivedFrom(idA, unknownId));
    EXPECT_TRUE(logger.lines.empty());

    EXPECT_FALSE(manager.addBaseType(idA, idC, &logger));
    EXPECT_TRUE(manager.addBaseType(idC, idA, &logger));
    EXPECT_FALSE(manager.addBaseType(unknownId, idA, &logger));
    EXPECT_FALSE(manager.addBaseType(idA, unknownId, &logger));
    const std::string unknown = "error|invalid argument|No type having the id " + text(unknownId) + " is registered.";
    EXPECT_EQ(logger.lines,
        (Texts { "error|invalid argument|The given type,A, derives from the current type, C.", unknown, unknown }));

    // C reached A only through B: without B it derives from nothing.
    manager.unregisterType(idB);
    EXPECT_TRUE(manager.isTypeRegistered(idC));
    EXPECT_FALSE(manager.isDerivedFrom(idC, idA));
    EXPECT_TRUE(manager.addBaseType(idA, idC, &logger));
    manager.unregisterType(unknownId);
    EXPECT_TRUE(manager.isDerivedFrom(idA, idC));
}

TEST(TypeMetadata, KeepsDirectBasesInOrderWithoutRedundantOnes)
{
    TypeMetadata a("A", idA);
    TypeMetadata b("B", idB);
    TypeMetadata c("C", idC);
    TypeMetadata d("D", idD);
    ASSERT_TRUE(b.addBaseType(a, nullptr));
    EXPECT_TRUE(d.addBaseType(b, nullptr));
    EXPECT_TRUE(d.addBaseType(a, nullptr));
    EXPECT_TRUE(d.addBaseType(c, nullptr));
    EXPECT_TRUE(d.addBaseType(c, nullptr));
    ASSERT_EQ(d.countBaseTypes(), 2u);
    EXPECT_EQ(&d.getBaseType(0), &b);
    EXPECT_EQ(&d.getBaseType(1), &c);
    EXPECT_TRUE(d.isDerivedFrom(a));

    TypeMetadata e("E", unknownId);
    d.addBaseType(e, nullptr);
    d.removeBaseType(c);
    ASSERT_EQ(d.countBaseTypes(), 2u);
    EXPECT_EQ(&d.getBaseType(0), &b);
    EXPECT_EQ(&d.getBaseType(1), &e);
    EXPECT_FALSE(d.isDerivedFrom(c));
    d.removeBaseType(a);
    EXPECT_EQ(d.countBaseTypes(), 2u);

    EXPECT_EQ(d.getType(), type::object);
}

TEST(TypeManager, CreatesObjectsThroughTheCreatorOfTheirType)
{
    RecordingLogger logger;
    {
        TypeManager manager;
        manager.registerType(idA, "A", nullptr);
        EXPECT_EQ(manager.createStaticObject(unknownId, &logger), nullptr);
        EXPECT_EQ(manager.createStaticObject(idA, &logger), nullptr);
        EXPECT_EQ(manager.getCreator(idA)(&logger), nullptr);
        EXPECT_EQ(logger.messages(),
            (Texts { "Unable to create an instance of type '" + text(unknownId) + "', no such type is registered.",
                "Unable to create an instance of type 'A', no registered creator for this type(ie neither "
                "'registerWithStaticObjectFactory' nor ORV_DEFINE_STATIC_OBJECT were used on this type)." }));

        // The factory keeps a clone: the creator handed over may go at once.
        {
            MarkerCreator creator;
            manager.getCreatorFactory().registerCreator(idA, creator);
            manager.getCreatorFactory().registerCreator(idA, creator);
        }
        EXPECT_EQ(liveCreators, 1);
        logger.lines.clear();
        lastCreatorLogger = nullptr;
        EXPECT_EQ(manager.createStaticObject(idA, &logger), reinterpret_cast<StaticObject*>(&creatorMarker));
        EXPECT_EQ(lastCreatorLogger, &logger);
        EXPECT_TRUE(logger.lines.empty());

        EXPECT_FALSE(manager.getCreatorFactory().unregisterCreator(idB, &logger));
        EXPECT_EQ(
            logger.lines, (Texts { "error|invalid argument|No creator already registered for " + text(idB) + "." }));

        // Unregistering the type takes its creator along.
        manager.unregisterType(idA);
        EXPECT_EQ(liveCreators, 0);
        manager.registerType(idA, "A", nullptr);
        EXPECT_EQ(manager.createStaticObject(idA, nullptr), nullptr);

        // A creator without a registered type still can't be reached, and the manager destroys it.
        MarkerCreator creator;
        manager.getCreatorFactory().registerCreator(idB, creator);
        EXPECT_EQ(manager.createStaticObject(idB, nullptr), nullptr);
        EXPECT_EQ(liveCreators, 2);
    }
    EXPECT_EQ(liveCreators, 0);
}

TEST(TypeManager, PropertiesResolveInheritedFirstByIndexAndOwnFirstByName)
{
    TypeManager manager;
    ASSERT_TRUE(manager.registerBaseTypes(nullptr));
    for (const auto& type : { std::make_pair(idA, "A"), { idB, "B" }, { idC, "C" }, { idD, "D" } }) {
        ASSERT_TRUE(manager.registerType(type.first, type.second, nullptr));
    }
    const Uuid& integer = details::getClassTypeId<int>();
    const Uuid& real = details::getClassTypeId<double>();
    auto add = [&](const Uuid& owner, const char* key, const Uuid& value) {
        return manager.registerProperty(owner, Property(key, owner, value, manager), nullptr);
    };
    ASSERT_TRUE(manager.addBaseType(idB, idA, nullptr));
    ASSERT_TRUE(add(idA, "p", integer) && add(idA, "q", real) && add(idB, "r", integer));
    EXPECT_EQ(keysByIndex(manager, idB), (std::vector<std::string> { "A.p", "A.q", "B.r" }));

    // An own property hides a base's by key, but both stay in the numbering.
    ASSERT_TRUE(add(idB, "p", real));
    EXPECT_EQ(keysByIndex(manager, idB), (std::vector<std::string> { "A.p", "A.q", "B.r", "B.p" }));
    EXPECT_EQ(manager.getProperty(idB, "p").getOwnerTypeId(), idB);
    EXPECT_EQ(manager.getProperty(idB, "p").getType(), type::real);
    EXPECT_EQ(manager.getProperty(idB, "q").getOwnerTypeId(), idA);

    // Only as many characters as the name has are compared.
    ASSERT_TRUE(add(idC, "name", integer) && add(idC, "position", real));
    EXPECT_STREQ(manager.getProperty(idC, "pos").getKey(), "position");
    EXPECT_TRUE(manager.isPropertyRegistered(idC, "nameless", 4));
    EXPECT_FALSE(manager.isPropertyRegistered(idC, "position2"));

    // A base reached along two ways counts twice; by key the first way wins.
    ASSERT_TRUE(manager.addBaseType(idC, idA, nullptr));
    ASSERT_TRUE(manager.addBaseType(idD, idB, nullptr) && manager.addBaseType(idD, idC, nullptr));
    EXPECT_EQ(keysByIndex(manager, idD),
        (std::vector<std::string> { "A.p", "A.q", "B.r", "B.p", "A.p", "A.q", "C.name", "C.position" }));
    EXPECT_EQ(manager.getProperty(idD, "p").getOwnerTypeId(), idB);

    // The components of the vector types are real properties; removing a base takes its
    // properties away from the types that derived from it.
    EXPECT_EQ(keysByIndex(manager, details::getClassTypeId<Quaternion<double>>()),
        (std::vector<std::string> {
            "orv::utils::Quaternionr.x", "orv::utils::Quaternionr.y", "orv::utils::Quaternionr.z",
            "orv::utils::Quaternionr.w" }));
    EXPECT_TRUE(manager.getProperty(details::getClassTypeId<Vector2<double>>(), "y").isReal());
    manager.unregisterType(idA);
    EXPECT_EQ(keysByIndex(manager, idD), (std::vector<std::string> { "B.r", "B.p", "C.name", "C.position" }));

    RecordingLogger logger;
    EXPECT_FALSE(manager.registerProperty(unknownId, Property("k", unknownId, integer, manager), &logger));
    EXPECT_FALSE(manager.registerProperty(idB, Property(), &logger));
    EXPECT_EQ(logger.lines,
        (Texts { "error|invalid argument|No type having the id " + text(unknownId) + " is registered.",
            "error|invalid argument|the property  B. has not been initialized." }));
}

TEST(Property, BrokenContractsLeaveAnInvalidPropertyThatAnswersEmpty)
{
    TypeManager manager;
    ASSERT_TRUE(manager.registerBaseTypes(nullptr));
    ASSERT_TRUE(manager.registerType(idA, "A", nullptr));
    const Uuid& integer = details::getClassTypeId<int>();
    AssertionCapture capture;
    EXPECT_FALSE(Property("", idA, integer, manager).isValid());
    EXPECT_FALSE(Property(nullptr, idA, integer, manager).isValid());
    EXPECT_FALSE(Property("k", Uuid(), integer, manager).isValid());
    EXPECT_FALSE(Property("k", idA, Uuid(), manager).isValid());
    Property property("k", idA, integer, manager);
    EXPECT_TRUE(property.isValid() && property.isInt() && property.isTypeCompatible(type::real));
    property.clear();
    EXPECT_STREQ(property.getKey(), "");
    EXPECT_EQ(property.getType(), type::null);
    EXPECT_FALSE(property.isVector3() || property.isStaticObject());
    EXPECT_EQ(manager.getProperty(idA, 0u).isValid(), false);
    EXPECT_FALSE(manager.getProperty(idA, "missing").isValid());
    EXPECT_FALSE(manager.isPropertyRegistered(idA, nullptr));
    EXPECT_EQ(capture.texts(),
        (Texts { "Invalid property name.", "Invalid property name.", "Invalid owner type.", "Invalid value type.",
            "Invalid property.", "Invalid property.", "Invalid property index", "The type " + text(idA)
                + " have no registered property named missing.",
            "Invalid key" }));
}

TEST(TypeManager, TypesFromCHostsAreScriptedParameterClasses)
{
    ASSERT_TRUE(initialize(nullptr));
    TypeManager& manager = Facilities::instance().getTypeManager();
    EXPECT_EQ(orv_utils_register_type("a0000000-0000-4000-8000-00000000000A", "Scripted", nullptr), 1);
    EXPECT_STREQ(manager.getTypeName(idA), "Scripted");
    EXPECT_TRUE(manager.isDerivedFrom(idA, scriptedParamsId));

    RecordingLogger logger;
    EXPECT_EQ(orv_utils_register_type("b0000000-0000-4000-8000-00000000000b", "Scripted", &logger.getWrapper()), 0);
    EXPECT_FALSE(manager.isTypeRegistered(idB));
    EXPECT_EQ(orv_utils_register_type("a0000000-0000-4000-8000-00000000000a", "Scripted", &logger.getWrapper()), 1);
    EXPECT_EQ(logger.lines,
        (Texts { "error|invalid argument|While trying to register a type with id {" + text(idB)
                + "}, another type with id {" + text(idA) + "}, was found with the same name 'Scripted'.",
            "warning||Trying to register an already registered type: 'Scripted' {" + text(idA) + "}" }));
    EXPECT_TRUE(terminate(nullptr));
}
