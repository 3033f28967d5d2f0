#include "support/TestSupport.h"

#include <orv/utils/Random.h>
#include <orv/utils/RandomManager.h>
#include <orv/utils/SerializedBuffer.h>
#include <orv/utils/details/SfmtGenerator.h>
#include <orv/utils/details/SfmtRecursion.h>

#include <gtest/gtest.h>

#include <algorithm>
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
        for (unsigned long value = 0; file >> value;) {
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

Words drawFresh(unsigned int seed, unsigned int count)
{
    Random random(seed);
    return draw(random, count);
}

Words referenceSlice(std::size_t first, std::size_t count)
{
    return Words(referenceWords().begin() + static_cast<long>(first),
        referenceWords().begin() + static_cast<long>(first + count));
}

// The text a stream or manager saves; the library buffer carries its size ahead and is released here.
template <typename T> std::string serialize(const T& value, char* (*save)(unsigned int&, const T&, AbstractLogger*))
{
    unsigned int size = 0;
    char* buffer = save(size, value, nullptr);
    EXPECT_NE(buffer, nullptr);
    if (buffer == nullptr) {
        return std::string();
    }
    EXPECT_EQ(getSerializedBufferSize(buffer), size);
    std::string text(buffer, size);
    freeSerializedBuffer(buffer);
    return text;
}

template <typename T>
bool deserialize(const std::string& text, T& value, AbstractLogger* logger,
    bool (*load)(const char*, unsigned int, T&, AbstractLogger*))
{
    return load(text.data(), static_cast<unsigned int>(text.size()), value, logger);
}

const std::string versionText = "version {\n  major: 0\n  minor: 4\n  patch: 0\n}\n";

std::string streamText(unsigned int count, unsigned int seed = 1234)
{
    return versionText + "random {\n  seed: " + std::to_string(seed) + "\n  count: " + std::to_string(count) + "\n}\n";
}

std::string managerText(const char* seed)
{
    return versionText + "randomManager {\n  seed: " + seed + "\n}\n";
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
    // Copies of a stream that is not seeded yet, in the middle of a block, at its last word and at its end.
    for (unsigned int drawn : { 0u, 300u, 623u, 624u }) {
        Random original(1234);
        draw(original, drawn);
        Random copy(original);
        Random assigned(5);
        draw(assigned, 10);
        assigned = original;
        EXPECT_EQ(draw(copy, 900), referenceSlice(drawn, 900)) << drawn;
        EXPECT_EQ(draw(original, 900), referenceSlice(drawn, 900)) << drawn;
        EXPECT_EQ(draw(assigned, 700), referenceSlice(drawn, 700)) << drawn;
    }
}

TEST(Random, BoundedDrawsUseTheHighBitsAndConsumeWhatTheyReject)
{
    const Words& words = referenceWords();

    // For powers of two nothing is rejected and the result is the top bits of one word.
    Random random(1234);
    std::size_t next = 0;
    for (unsigned int bits = 1; bits < 32; ++bits) {
        EXPECT_EQ(random((1u << bits) - 1), words[next++] >> (32 - bits)) << bits;
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
        EXPECT_TRUE(low >= 3u && low <= 9u) << low;
    }
    EXPECT_EQ(ascending(), descending());
    Random offset(1234);
    EXPECT_EQ(offset(1000, 1003), 1000 + (words[0] >> 30));
    EXPECT_EQ(offset(0xFFFFFFFEu, 0xFFFFFFFFu), 0xFFFFFFFEu + (words[1] >> 31));
}

TEST(Random, RestoresAtEveryPlaceFromItsText)
{
    for (unsigned int count : { 0u, 1u, 2u, 623u, 624u, 625u, 1247u, 1248u, 1249u, 2000u }) {
        Random original(1234);
        draw(original, count);
        const std::string text = serialize(original, serializeRandom);
        EXPECT_EQ(text, streamText(count)) << count;

        Random restored(7);
        draw(restored, 1000);
        RecordingLogger logger;
        ASSERT_TRUE(deserialize(text, restored, &logger, deserializeRandom));
        EXPECT_TRUE(logger.lines.empty());
        EXPECT_EQ(draw(restored, 400), referenceSlice(count, 400)) << count;
        EXPECT_EQ(serialize(restored, serializeRandom), streamText(count + 400));
    }

    // The stored seed of a derived stream is its own, so no manager is needed to restore it.
    Random derived = RandomManager().createRandomStream(3);
    draw(derived, 5);
    const std::string text = serialize(derived, serializeRandom);
    EXPECT_EQ(text, streamText(5, 0x0FFFF000u ^ 3u));
    Random restored(0);
    ASSERT_TRUE(deserialize(text, restored, nullptr, deserializeRandom));
    const Words expected = drawFresh(0x0FFFF000u ^ 3u, 705);
    EXPECT_EQ(draw(restored, 700), Words(expected.begin() + 5, expected.end()));
}

TEST(Random, StreamsAndManagersRefuseBadTextsAndKeepTheirState)
{
    const std::string unable = "Unable to deserialize a random stream: ";
    const std::string error = "Error while deserializing random: ";
    const std::string incompatible = ", that is not compatible with the current version, v0.4.0.";
    const std::pair<std::string, std::string> cases[] = {
        { "", unable },
        { streamText(10).substr(0, 67), unable + versionText + "random {\n  seed: 1234\n}\n" },
        { "random { seed: 1 count: 2 }", unable + "random {\n  seed: 1\n  count: 2\n}\n" },
        { "version { major: 0 minor: 4 } random { seed: 1 count: 2 }",
            unable + "version {\n  major: 0\n  minor: 4\n}\nrandom {\n  seed: 1\n  count: 2\n}\n" },
        { "version { major: 0 minor: 4 patch: 0 } random { seed: -1 count: 2 }",
            unable + versionText + "random {\n}\n" },
        { "garbage { version { major: 0 minor: 4 patch: 0 } }", unable },
        { "version { major: 0 minor: 4 patch: 1 } random { seed: 1 count: 2 }",
            error + "The file originates from a version, v0.4.1" + incompatible },
        { "version { major: 1 minor: 2 patch: 3 }",
            error + "The file originates from a version, v1.2.3" + incompatible },
        { "version { major: 0 minor: 4 patch: 0 }", error + "expected field random not found" },
        { "version { major: 0 minor: 4 patch: 0 } random { count: 2 }", error + "expected field seed not found" },
        { "version { major: 0 minor: 4 patch: 0 } random { seed: 1234 }", error + "expected field count not found" },
        // A text of a manager is not a stream.
        { managerText("268431360"), unable + versionText },
    };
    for (const auto& [text, message] : cases) {
        Random target(1234);
        draw(target, 600);
        RecordingLogger logger;
        EXPECT_FALSE(deserialize(text, target, &logger, deserializeRandom)) << text;
        EXPECT_EQ(logger.lines, Texts { "error|invalid data|" + message }) << text;
        EXPECT_EQ(draw(target, 50), referenceSlice(600, 50)) << text;

        Random silent(1234);
        EXPECT_FALSE(deserialize(text, silent, nullptr, deserializeRandom));
        EXPECT_EQ(silent(), referenceWords()[0]);
    }

    const std::string good = managerText("77");
    const std::pair<std::string, std::string> managerCases[] = {
        { "", "Unable to deserialize a random manager: " },
        { good.substr(0, good.size() - 3), "Unable to deserialize a random manager: " + good },
        { streamText(2, 1), "Unable to deserialize a random manager: " + versionText },
        { "version { major: 0 minor: 4 patch: 1 } randomManager { seed: 1 }",
            "Error while deserializing random manager: The file originates from a version, v0.4.1" + incompatible },
        { versionText, "Error while deserializing random manager: expected field randomManager not found" },
        { versionText + "randomManager { }",
            "Error while deserializing random manager: expected field seed not found" },
    };
    for (const auto& [text, message] : managerCases) {
        RandomManager manager;
        manager.seed(12345);
        RecordingLogger logger;
        EXPECT_FALSE(deserialize(text, manager, &logger, deserializeRandomManager)) << text;
        EXPECT_EQ(logger.lines, Texts { "error|invalid data|" + message }) << text;
        EXPECT_FALSE(deserialize(text, manager, nullptr, deserializeRandomManager));
        EXPECT_EQ(manager.getSeed(), 12345u) << text;
    }
}

TEST(SfmtGenerator, MovesToAnyPlaceForwardsAndBackwards)
{
    const Words& words = referenceWords();
    details::SfmtGenerator generator(1234);
    EXPECT_EQ(generator.getSeed(), 1234u);

    // Each place, reached from wherever the previous one left the generator, continues with the
    // words a fresh stream gives there.
    const long long places[]
        = { 0, 624, 1248, 1, 623, 625, 2000, 5, 1247, 1249, 0, 624, 623, 1, 2496, 0, 1873, 1872, 1871, 4, 2400 };
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

    // Moving a stream that is not seeded yet seeds it first; a reset starts the sequence again.
    details::SfmtGenerator moved(1234);
    moved.advance(1800);
    EXPECT_EQ(moved.next(), words[1800]);
    moved.reset();
    EXPECT_EQ(moved.getCount(), 0);
    EXPECT_EQ(moved.next(), words[0]);
}

TEST(SfmtGenerator, JumpsFarAheadToTheWordsThePassesGive)
{
    const auto nextWords = [](details::SfmtGenerator& generator) {
        Words words;
        for (int i = 0; i < 700; ++i) {
            words.push_back(generator.next());
        }
        return words;
    };
    // The jumped stream against one moved in steps short enough to run plain passes, on both sides
    // of the threshold, from a fresh stream, from one already drawn from and from one moved before
    // its first word, to the start and to the middle of a block of words.
    for (long long passes : { 4096LL, 4097LL, 4098LL, 4252LL, 7001LL }) {
        for (long long start : { 0LL, 1000LL, -5000LL }) {
            for (long long offset : { 0LL, 17LL }) {
                const long long target = start + passes * 624 + offset;
                details::SfmtGenerator jumped(1234);
                details::SfmtGenerator stepped(1234);
                jumped.advance(start);
                stepped.advance(start);
                for (long long place = start; place < target;) {
                    place = std::min(target, place + 1000 * 624);
                    stepped.advance(place);
                }
                jumped.advance(target);
                EXPECT_EQ(jumped.getCount(), target);
                EXPECT_EQ(nextWords(jumped), nextWords(stepped)) << passes << " from " << start << " + " << offset;
            }
        }
    }

    // The recurrence holds for every stream, not only for the state it was found from.
    for (unsigned int seed : { 0u, 1u, 42u, 0xFFFFFFFFu, 0x0FFFF000u ^ 3u }) {
        details::SfmtGenerator jumped(seed);
        details::SfmtGenerator stepped(seed);
        jumped.advance(4100 * 624 + 3);
        stepped.advance(2050 * 624);
        stepped.advance(4100 * 624 + 3);
        EXPECT_EQ(nextWords(jumped), nextWords(stepped)) << seed;
    }

    // A stored count near 2^62 is restored at once, and the place agrees with two jumps of half the
    // distance each, and with a backward move from further on.
    const long long far = 1LL << 62;
    Random restored(7);
    ASSERT_TRUE(deserialize(versionText + "random { seed: 1234 count: " + std::to_string(far) + " }", restored, nullptr,
        deserializeRandom));
    EXPECT_EQ(serialize(restored, serializeRandom),
        versionText + "random {\n  seed: 1234\n  count: " + std::to_string(far) + "\n}\n");
    details::SfmtGenerator halves(1234);
    halves.advance(far / 2);
    halves.advance(far);
    details::SfmtGenerator back(1234);
    back.advance(far + 3 * 624 + 5);
    back.advance(far);
    const Words expected = nextWords(halves);
    EXPECT_EQ(draw(restored, 700), expected);
    EXPECT_EQ(nextWords(back), expected);
    EXPECT_NE(Words(expected.begin(), expected.begin() + 4), referenceSlice(0, 4));

    // Far backward moves jump too: against plain backward passes, and there and back again. A
    // stored count past 2^63 is such a move, to a place before the start.
    for (long long passes : { 4097LL, 5003LL }) {
        details::SfmtGenerator jumped(99);
        details::SfmtGenerator stepped(99);
        jumped.advance(700);
        stepped.advance(700);
        const long long target = 700 - passes * 624 - 11;
        jumped.advance(target);
        for (long long place = 700; place > target;) {
            place = std::max(target, place - 1000 * 624);
            stepped.advance(place);
        }
        EXPECT_EQ(jumped.getCount(), target);
        EXPECT_EQ(nextWords(jumped), nextWords(stepped)) << passes;
    }
    Random beforeStart(7);
    ASSERT_TRUE(deserialize(versionText + "random { seed: 1234 count: 18446744073709551615 }", beforeStart, nullptr,
        deserializeRandom));
    details::SfmtGenerator aroundZero(1234);
    aroundZero.advance(-far);
    aroundZero.advance(-1);
    EXPECT_EQ(draw(beforeStart, 700), nextWords(aroundZero));
    details::SfmtGenerator roundTrip(1234);
    roundTrip.advance(-far);
    roundTrip.advance(0);
    EXPECT_EQ(nextWords(roundTrip), referenceSlice(0, 700));
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
    // Three passes forward, then three back.
    for (int pass = 0; pass < 6; ++pass) {
        (pass < 3 ? details::sfmt::portable::forwardPass : details::sfmt::portable::backwardPass)(portable);
        (pass < 3 ? details::sfmt::forwardPass : details::sfmt::backwardPass)(native);
        ASSERT_TRUE(std::equal(std::begin(portable), std::end(portable), native)) << pass;
        ASSERT_EQ(std::equal(std::begin(start), std::end(start), native), pass == 5) << pass;
    }
}

TEST(RandomManager, DerivesStreamsFromTheMasterSeedAtTheirMakingAndStoresItAsText)
{
    RandomManager manager;
    EXPECT_EQ(manager.getSeed(), 0x0FFFF000u);
    EXPECT_EQ(serialize(manager, serializeRandomManager), managerText("268431360"));
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

    manager.seed(0xFFFFFFFFu);
    const std::string text = serialize(manager, serializeRandomManager);
    EXPECT_EQ(text, managerText("4294967295"));

    RandomManager restored;
    RecordingLogger logger;
    ASSERT_TRUE(deserialize(text, restored, &logger, deserializeRandomManager));
    EXPECT_TRUE(logger.lines.empty());
    Random stream = restored.createRandomStream(9);
    EXPECT_EQ(draw(stream, 5), drawFresh(0xFFFFFFFFu ^ 9u, 5));

    // Fields may come in any order and spacing, as the text format allows.
    ASSERT_TRUE(deserialize(std::string("randomManager { seed: 17 } version { patch: 0 minor: 4 major: 0 }"), restored,
        nullptr, deserializeRandomManager));
    EXPECT_EQ(restored.getSeed(), 17u);
}
