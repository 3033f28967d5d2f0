#include "support/TestSupport.h"

#include <orv/utils/Errors.h>
#include <orv/utils/RandomManager.h>
#include <orv/utils/details/ArrayAllocation.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using orv::test::RecordingLogger;
using orv::test::Texts;
using namespace orv::utils;

namespace {

std::vector<unsigned int> draw(Random& random, unsigned int count)
{
    std::vector<unsigned int> result;
    for (unsigned int i = 0; i < count; ++i) {
        result.push_back(random());
    }
    return result;
}

std::vector<unsigned int> drawFresh(unsigned int seed, unsigned int count)
{
    Random random(seed);
    return draw(random, count);
}

std::string serialize(const RandomManager& manager)
{
    unsigned int size = 0;
    char* buffer = serializeRandomManager(size, manager, nullptr);
    EXPECT_NE(buffer, nullptr);
    if (buffer == nullptr) {
        return std::string();
    }
    EXPECT_EQ(details::getArrayByteCount(buffer), size);
    std::string text(buffer, size);
    details::releaseArray(buffer);
    return text;
}

std::string managerText(const char* seed)
{
    return std::string("version {\n  major: 0\n  minor: 4\n  patch: 0\n}\nrandomManager {\n  seed: ") + seed + "\n}\n";
}

} // namespace

TEST(RandomManager, DerivesStreamsFromTheMasterSeedAtTheirMaking)
{
    RandomManager manager;
    EXPECT_EQ(manager.getSeed(), 0x0FFFF000u);

    Random master = manager.createRandomStream(0);
    Random numbered = manager.createRandomStream(0x00F0000Fu);
    EXPECT_EQ(draw(master, 700), drawFresh(0x0FFFF000u, 700));
    EXPECT_EQ(draw(numbered, 700), drawFresh(0x0F0FF00Fu, 700));

    // Streams made before a new master seed keep theirs.
    Random before = manager.createRandomStream(5);
    manager.seed(0xCAFEBABEu);
    EXPECT_EQ(manager.getSeed(), 0xCAFEBABEu);
    Random after = manager.createRandomStream(5);
    EXPECT_EQ(draw(before, 10), drawFresh(0x0FFFF000u ^ 5u, 10));
    EXPECT_EQ(draw(after, 10), drawFresh(0xCAFEBABEu ^ 5u, 10));

    // Different numbers give different streams; the same number the same stream.
    Random one = manager.createRandomStream(1);
    Random two = manager.createRandomStream(2);
    Random again = manager.createRandomStream(1);
    const std::vector<unsigned int> first = draw(one, 20);
    EXPECT_NE(first, draw(two, 20));
    EXPECT_EQ(first, draw(again, 20));
}

TEST(RandomManager, StoresItsMasterSeedAsText)
{
    RandomManager manager;
    EXPECT_EQ(serialize(manager), managerText("268431360"));
    manager.seed(0xFFFFFFFFu);
    const std::string text = serialize(manager);
    EXPECT_EQ(text, managerText("4294967295"));

    RandomManager restored;
    RecordingLogger logger;
    ASSERT_TRUE(deserializeRandomManager(text.data(), static_cast<unsigned int>(text.size()), restored, &logger));
    EXPECT_TRUE(logger.lines.empty());
    EXPECT_EQ(restored.getSeed(), 0xFFFFFFFFu);
    Random stream = restored.createRandomStream(9);
    EXPECT_EQ(draw(stream, 5), drawFresh(0xFFFFFFFFu ^ 9u, 5));

    // Fields may come in any order and spacing, as the text format allows.
    const std::string compact = "randomManager { seed: 17 } version { patch: 0 minor: 4 major: 0 }";
    ASSERT_TRUE(deserializeRandomManager(compact.data(), static_cast<unsigned int>(compact.size()), restored, nullptr));
    EXPECT_EQ(restored.getSeed(), 17u);
}

TEST(RandomManager, RefusesBadTextsAndKeepsItsSeed)
{
    const std::string invalid = error::invalidData.getCaption();
    const std::string versionMessage = ", that is not compatible with the current version, v0.4.0.";
    const std::string good = managerText("77");
    struct Case {
        std::string text;
        std::string message;
    };
    const Case cases[] = {
        {"", "Unable to deserialize a random manager: "},
        {good.substr(0, good.size() - 3), "Unable to deserialize a random manager: version {\n  major: 0\n  minor: 4\n"
                                          "  patch: 0\n}\nrandomManager {\n  seed: 77\n}\n"},
        {"version { major: 0 minor: 4 patch: 0 } random { seed: 1 count: 2 }",
         "Unable to deserialize a random manager: version {\n  major: 0\n  minor: 4\n  patch: 0\n}\n"},
        {"version { major: 0 minor: 4 patch: 1 } randomManager { seed: 1 }",
         "Error while deserializing random manager: The file originates from a version, v0.4.1" + versionMessage},
        {"version { major: 0 minor: 4 patch: 0 }",
         "Error while deserializing random manager: expected field randomManager not found"},
        {"version { major: 0 minor: 4 patch: 0 } randomManager { }",
         "Error while deserializing random manager: expected field seed not found"},
    };
    for (const Case& c : cases) {
        RandomManager manager;
        manager.seed(12345);
        RecordingLogger logger;
        EXPECT_FALSE(deserializeRandomManager(c.text.data(), static_cast<unsigned int>(c.text.size()), manager, &logger))
            << c.text;
        EXPECT_EQ(logger.lines, Texts{"error|" + invalid + "|" + c.message}) << c.text;
        EXPECT_EQ(manager.getSeed(), 12345u) << c.text;
        EXPECT_FALSE(deserializeRandomManager(c.text.data(), static_cast<unsigned int>(c.text.size()), manager, nullptr));
        EXPECT_EQ(manager.getSeed(), 12345u) << c.text;
    }
}
