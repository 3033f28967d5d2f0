#include "support/TestSupport.h"

#include <orv/utils/Errors.h>
#include <orv/utils/Random.h>
#include <orv/utils/RandomManager.h>
#include <orv/utils/details/ArrayAllocation.h>
#include <orv/utils/details/SfmtGenerator.h>
#include <orv/utils/details/SfmtRecursion.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <string>
#include <vector>

using orv::test::RecordingLogger;
using orv::test::Texts;
using namespace orv::utils;

namespace {

using Words = std::vector<unsigned int>;

// The first 2500 words of the generator seeded from the one-word key {1234}.
const Words& referenceWords()
{
    static const Words words = [] {
        Words result;
        std::ifstream file(orv::test::testDataPath("sfmt19937-key1234.txt"));
        unsigned long value = 0;
        while (file >> value) {
            result.push_back(static_cast<unsigned int>(value));
        }
        return result;
    }();
    return words;
}

Words draw(Random& random, unsigned int count)
{
    Words result;
    for (unsigned int i = 0; i < count; ++i) {
        result.push_back(random());
    }
    return result;
}

Words referenceSlice(std::size_t first, std::size_t count)
{
    const Words& words = referenceWords();
    return Words(words.begin() + static_cast<long>(first), words.begin() + static_cast<long>(first + count));
}

// Takes the serialized text, releases the library buffer and gives the text back.
std::string takeText(char* buffer, unsigned int size)
{
    std::string text(buffer, size);
    EXPECT_EQ(details::getArrayByteCount(buffer), size);
    details::releaseArray(buffer);
    return text;
}

std::string serialize(const Random& random)
{
    unsigned int size = 0;
    char* buffer = serializeRandom(size, random, nullptr);
    EXPECT_NE(buffer, nullptr);
    return buffer == nullptr ? std::string() : takeText(buffer, size);
}

std::string streamText(const char* count, const char* seed = "1234")
{
    return std::string("version {\n  major: 0\n  minor: 4\n  patch: 0\n}\nrandom {\n  seed: ") + seed +
           "\n  count: " + count + "\n}\n";
}

} // namespace

TEST(Random, GivesTheReferenceWordsOfTheKey1234)
{
    ASSERT_EQ(referenceWords().size(), 2500u);
    Random random(1234);
    EXPECT_EQ(draw(random, 2500), referenceWords());

    // A manager reaches the same key through the stream number that cancels its master seed.
    RandomManager manager;
    manager.seed(1234 ^ 77);
    Random derived = manager.createRandomStream(77);
    EXPECT_EQ(draw(derived, 1300), referenceSlice(0, 1300));
}

TEST(Random, CopiesGoOnIndependentlyFromTheSamePlace)
{
    // Copies of a stream that is not seeded yet, in the middle of a block and at its end.
    for (unsigned int drawn : {0u, 300u, 624u}) {
        Random original(1234);
        draw(original, drawn);
        Random copy(original);
        EXPECT_EQ(draw(copy, 900), referenceSlice(drawn, 900)) << drawn;
        EXPECT_EQ(draw(original, 900), referenceSlice(drawn, 900)) << drawn;
    }
    Random target(5);
    draw(target, 10);
    Random source(1234);
    draw(source, 623);
    target = source;
    EXPECT_EQ(draw(target, 3), referenceSlice(623, 3));
    EXPECT_EQ(draw(source, 3), referenceSlice(623, 3));
}

TEST(Random, BoundedDrawsUseTheHighBitsAndConsumeWhatTheyReject)
{
    const Words& words = referenceWords();

    // For powers of two nothing is rejected and the result is the top bits of one word.
    Random random(1234);
    std::size_t next = 0;
    for (unsigned int bits = 1; bits < 32; ++bits) {
        const unsigned int maximum = (1u << bits) - 1;
        EXPECT_EQ(random(maximum), words[next++] >> (32 - bits)) << bits;
    }
    EXPECT_EQ(random(0xFFFFFFFFu), words[next++]);

    // Nothing consumed for an empty range.
    EXPECT_EQ(random(0), 0u);
    EXPECT_EQ(random(5, 5), 5u);
    EXPECT_EQ(random(0xFFFFFFFFu, 0xFFFFFFFFu), 0xFFFFFFFFu);
    EXPECT_EQ(random(), words[next++]);

    // With 0x80000000 every word above it is drawn again, and the one kept is the result itself.
    for (int i = 0; i < 40; ++i) {
        while (words[next] > 0x80000000u) {
            ++next;
        }
        EXPECT_EQ(random(0x80000000u), words[next++]);
    }
    EXPECT_EQ(random(), words[next++]);

    // The bounds may come in either order; the lower one is added to a draw over the width.
    Random ascending(1234);
    Random descending(1234);
    for (std::size_t i = 0; i < 50; ++i) {
        const unsigned int low = ascending(3, 9);
        EXPECT_EQ(descending(9, 3), low);
        EXPECT_GE(low, 3u);
        EXPECT_LE(low, 9u);
    }
    EXPECT_EQ(ascending(), descending());
    Random offset(1234);
    EXPECT_EQ(offset(1000, 1003), 1000 + (words[0] >> 30));
    EXPECT_EQ(offset(0xFFFFFFFEu, 0xFFFFFFFFu), 0xFFFFFFFEu + (words[1] >> 31));
}

TEST(Random, RestoresAtEveryPlaceFromItsText)
{
    Random fresh(1234);
    EXPECT_EQ(serialize(fresh), streamText("0"));

    for (unsigned int count : {0u, 1u, 2u, 623u, 624u, 625u, 1247u, 1248u, 1249u, 2000u}) {
        Random original(1234);
        draw(original, count);
        const std::string text = serialize(original);
        EXPECT_EQ(text, streamText(std::to_string(count).c_str())) << count;

        Random restored(7);
        draw(restored, 1000);
        RecordingLogger logger;
        ASSERT_TRUE(deserializeRandom(text.data(), static_cast<unsigned int>(text.size()), restored, &logger));
        EXPECT_TRUE(logger.lines.empty());
        EXPECT_EQ(draw(restored, 400), referenceSlice(count, 400)) << count;
        EXPECT_EQ(serialize(restored), streamText(std::to_string(count + 400).c_str()));
    }

    // The stored seed of a derived stream is its own, so no manager is needed to restore it.
    RandomManager manager;
    Random derived = manager.createRandomStream(3);
    draw(derived, 5);
    const std::string text = serialize(derived);
    EXPECT_EQ(text, streamText("5", std::to_string(0x0FFFF000u ^ 3u).c_str()));
    Random restored(0);
    ASSERT_TRUE(deserializeRandom(text.data(), static_cast<unsigned int>(text.size()), restored, nullptr));
    Random expected(0x0FFFF000u ^ 3u);
    draw(expected, 5);
    EXPECT_EQ(draw(restored, 700), draw(expected, 700));
}

TEST(Random, RefusesBadTextsAndKeepsTheStream)
{
    const std::string good = streamText("10");
    const std::string invalid = error::invalidData.getCaption();
    const std::string versionMessage =
        ", that is not compatible with the current version, v0.4.0.";
    struct Case {
        std::string text;
        std::string message;
    };
    const Case cases[] = {
        {"", "Unable to deserialize a random stream: "},
        {good.substr(0, 67), "Unable to deserialize a random stream: version {\n  major: 0\n  minor: 4\n  patch: 0\n}\n"
                             "random {\n  seed: 1234\n}\n"},
        {"random { seed: 1 count: 2 }", "Unable to deserialize a random stream: random {\n  seed: 1\n  count: 2\n}\n"},
        {"version { major: 0 minor: 4 } random { seed: 1 count: 2 }",
         "Unable to deserialize a random stream: version {\n  major: 0\n  minor: 4\n}\nrandom {\n  seed: 1\n  count: 2\n}\n"},
        {"version { major: 0 minor: 4 patch: 0 } random { seed: -1 count: 2 }",
         "Unable to deserialize a random stream: version {\n  major: 0\n  minor: 4\n  patch: 0\n}\nrandom {\n}\n"},
        {"garbage { version { major: 0 minor: 4 patch: 0 } }", "Unable to deserialize a random stream: "},
        {"version { major: 0 minor: 4 patch: 1 } random { seed: 1 count: 2 }",
         "Error while deserializing random: The file originates from a version, v0.4.1" + versionMessage},
        {"version { major: 1 minor: 2 patch: 3 }",
         "Error while deserializing random: The file originates from a version, v1.2.3" + versionMessage},
        {"version { major: 0 minor: 4 patch: 0 }", "Error while deserializing random: expected field random not found"},
        {"version { major: 0 minor: 4 patch: 0 } random { count: 2 }",
         "Error while deserializing random: expected field seed not found"},
        {"version { major: 0 minor: 4 patch: 0 } random { seed: 1234 }",
         "Error while deserializing random: expected field count not found"},
    };
    for (const Case& c : cases) {
        Random target(1234);
        draw(target, 600);
        RecordingLogger logger;
        EXPECT_FALSE(deserializeRandom(c.text.data(), static_cast<unsigned int>(c.text.size()), target, &logger))
            << c.text;
        EXPECT_EQ(logger.lines, Texts{"error|" + invalid + "|" + c.message}) << c.text;
        EXPECT_EQ(draw(target, 50), referenceSlice(600, 50)) << c.text;

        Random silent(1234);
        EXPECT_FALSE(deserializeRandom(c.text.data(), static_cast<unsigned int>(c.text.size()), silent, nullptr));
        EXPECT_EQ(silent(), referenceWords()[0]);
    }

    // A text of a manager is not a stream.
    RandomManager manager;
    unsigned int size = 0;
    char* buffer = serializeRandomManager(size, manager, nullptr);
    ASSERT_NE(buffer, nullptr);
    const std::string managerText = takeText(buffer, size);
    Random target(1234);
    RecordingLogger logger;
    EXPECT_FALSE(deserializeRandom(managerText.data(), size, target, &logger));
    EXPECT_EQ(logger.messages().size(), 1u);
    EXPECT_EQ(target(), referenceWords()[0]);
}

TEST(SfmtGenerator, MovesToAnyPlaceForwardsAndBackwards)
{
    const Words& words = referenceWords();
    details::SfmtGenerator generator(1234);
    EXPECT_EQ(generator.getCount(), 0);
    EXPECT_EQ(generator.getSeed(), 1234u);

    // Each place, reached from wherever the previous one left the generator, continues with the
    // words a fresh stream gives there.
    const long long places[] = {0,   624, 1248, 1,    623, 625, 2000, 5,    1247, 1249, 0,
                                624, 623, 1,    2496, 0,   1873, 1872, 1871, 4,    2400};
    for (long long place : places) {
        generator.advance(place);
        EXPECT_EQ(generator.getCount(), place);
        for (long long i = place; i < place + 4 && i < 2500; ++i) {
            ASSERT_EQ(generator.next(), words[static_cast<std::size_t>(i)]) << "from " << place << " at " << i;
        }
        EXPECT_EQ(generator.getCount(), place + 4);
    }

    // Before the first word: the backward passes run past the seeded state and come back.
    generator.advance(-1);
    generator.next();
    EXPECT_EQ(generator.getCount(), 0);
    EXPECT_EQ(generator.next(), words[0]);
    generator.advance(-5000);
    EXPECT_EQ(generator.getCount(), -5000);
    generator.advance(1500);
    EXPECT_EQ(generator.next(), words[1500]);

    // Moving a stream that is not seeded yet seeds it first.
    details::SfmtGenerator moved(1234);
    moved.advance(1800);
    EXPECT_EQ(moved.next(), words[1800]);

    // A reset forgets the place; the next word starts the sequence again.
    moved.reset();
    EXPECT_EQ(moved.getCount(), 0);
    EXPECT_EQ(moved.next(), words[0]);
    EXPECT_EQ(moved.getCount(), 1);
}

TEST(SfmtGenerator, BackwardPassUndoesTheForwardPassInBothForms)
{
    Random source(42);
    alignas(16) std::uint32_t start[details::sfmt::wordCount];
    for (std::uint32_t& word : start) {
        word = source();
    }
    alignas(16) std::uint32_t portable[details::sfmt::wordCount];
    alignas(16) std::uint32_t native[details::sfmt::wordCount];
    std::copy(std::begin(start), std::end(start), portable);
    std::copy(std::begin(start), std::end(start), native);
    for (int pass = 0; pass < 3; ++pass) {
        details::sfmt::portable::forwardPass(portable);
        details::sfmt::forwardPass(native);
        ASSERT_TRUE(std::equal(std::begin(portable), std::end(portable), native)) << pass;
    }
    ASSERT_FALSE(std::equal(std::begin(start), std::end(start), native));
    for (int pass = 0; pass < 3; ++pass) {
        details::sfmt::portable::backwardPass(portable);
        details::sfmt::backwardPass(native);
        ASSERT_TRUE(std::equal(std::begin(portable), std::end(portable), native)) << pass;
    }
    EXPECT_TRUE(std::equal(std::begin(start), std::end(start), native));
}
