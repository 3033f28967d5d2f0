#include <orv/allocator/Allocator.h>
#include <orv/utils/StringTable.h>
#include <orv/utils/details/MurmurHash.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <memory>
#include <string>

using orv::test::AssertionCapture;
using orv::test::RecordingLogger;
using orv::test::Texts;
using orv::utils::StringTable;

namespace {

// Texts forged to share a hash. Each lane of a 16-byte text takes h = h * m ^ mix(word) for two
// words, and mix is a bijection, so the second word of a lane can absorb any change to the first.
constexpr std::uint32_t m = 0x5bd1e995u;

// With the inverse of m, mix undoes itself: a right shift by 24 of 32 bits is its own inverse.
std::uint32_t mix(std::uint32_t k, std::uint32_t factor = m)
{
    k *= factor;
    k ^= k >> 24;
    return k * factor;
}

std::uint32_t inverseOfM()
{
    std::uint32_t x = m; // each Newton step doubles the correct low bits, from 3
    for (int i = 0; i < 4; ++i) {
        x *= 2 - m * x;
    }
    return x;
}

std::uint32_t word(const std::string& text, int index)
{
    return orv::utils::details::readLittleEndian32(reinterpret_cast<const unsigned char*>(text.data()) + 4 * index);
}

bool printable(std::uint32_t word)
{
    for (int shift = 0; shift < 32; shift += 8) {
        const unsigned int c = (word >> shift) & 0xFF;
        if (c < 0x21 || c > 0x7e) {
            return false;
        }
    }
    return true;
}

// Another 16-byte text with the hash of `model`: printable words replace those of lane 2 (words 1
// and 3), which starts from zero whatever the seed, so the first word and the zero in it stay.
std::string forgeTwin(const std::string& model)
{
    std::string twin = model;
    const std::uint32_t target = mix(word(model, 1)) * m ^ mix(word(model, 3));
    std::uint32_t first = word(model, 1), second = 0;
    do {
        ++first;
        second = mix(target ^ mix(first) * m, inverseOfM());
    } while (!printable(first) || !printable(second));
    for (int byte = 0; byte < 4; ++byte) {
        twin[4 + byte] = static_cast<char>(first >> 8 * byte);
        twin[12 + byte] = static_cast<char>(second >> 8 * byte);
    }
    return twin;
}

unsigned long long hashOf(const StringTable& table, const std::string& text)
{
    return table.hash(text.data(), static_cast<unsigned int>(text.size()), nullptr);
}

unsigned long long addOf(StringTable& table, const std::string& text, orv::utils::AbstractLogger* logger)
{
    return table.add(text.data(), static_cast<unsigned int>(text.size()), logger);
}

} // namespace

TEST(MurmurHash64B, MatchesEveryReferenceRowAtAnyAlignment)
{
    std::ifstream file(orv::test::testDataPath("murmurhash64b.tsv"));
    ASSERT_TRUE(file) << orv::test::testDataPath("murmurhash64b.tsv");
    std::string line;
    int rows = 0;
    while (std::getline(file, line)) {
        const std::size_t tab = line.find('\t'), secondTab = line.find('\t', tab + 1);
        ASSERT_NE(secondTab, std::string::npos) << line;
        const unsigned int seed = static_cast<unsigned int>(std::stoul(line.substr(0, tab)));
        const unsigned long long expected = std::stoull(line.substr(tab + 1, secondTab - tab - 1), nullptr, 16);
        const std::string input = line.substr(secondTab + 1);
        const unsigned int length = static_cast<unsigned int>(input.size());

        const std::string shifted = "xyz" + input; // words read from an odd address
        EXPECT_EQ(orv::utils::details::murmurHash64B(shifted.data() + 3, length, seed), expected) << line;
        StringTable table(seed);
        EXPECT_EQ(table.hash(input.c_str(), nullptr), expected) << line;
        EXPECT_EQ(orv_stringTable_hash(&table.getWrapper(), input.data(), length), expected) << line;
        ++rows;
    }
    EXPECT_GE(rows, 30);
}

TEST(StringTable, AddsATextOnceRetrievesItAndRefusesUnregisteredTexts)
{
    StringTable table(7687);
    const unsigned long long name = table.add("name", nullptr);
    EXPECT_EQ(name, table.hash("name", nullptr));
    EXPECT_EQ(table.add("names", 4, nullptr), name); // the counted form stops at the length
    EXPECT_STREQ(table.retrieve(name, "?"), "name");

    const unsigned long long empty = table.add("", nullptr);
    EXPECT_NE(empty, 0u);
    EXPECT_STREQ(table.retrieve(empty, "?"), "");
    EXPECT_STREQ(table.retrieve(0, "default"), "default");
    EXPECT_STREQ(table.retrieve(table.hash("absent", nullptr), "default"), "default");

    // Lookups, checked ones included, allocate nothing.
    const unsigned long long serial = orv::allocator::Allocator::instance().getNextSerial();
    RecordingLogger logger;
    EXPECT_EQ(table.add("name", &logger), name);
    EXPECT_TRUE(table.check("name", name, &logger));
    EXPECT_EQ(table.hash("name", &logger), name);
    EXPECT_STREQ(table.retrieve(name, nullptr), "name");
    EXPECT_EQ(orv::allocator::Allocator::instance().getNextSerial(), serial);
    EXPECT_TRUE(logger.lines.empty());

    // An unregistered text fails every check; the plain hash is still given without a logger.
    EXPECT_NE(table.hash("ghost", nullptr), 0u);
    EXPECT_EQ(table.hash("ghost", &logger), 0u);
    EXPECT_FALSE(table.check("ghost", 1234, &logger));
    EXPECT_EQ(logger.lines, Texts(2, "error|invalid configuration|\"ghost\" is not registered with the table."));

    // Texts handed out stay in place while the table grows, long ones included.
    const char* stored = table.retrieve(name, nullptr);
    const std::string longText(300, 'L');
    for (int i = 0; i < 2000; ++i) {
        addOf(table, longText + std::to_string(i), nullptr);
    }
    EXPECT_EQ(table.retrieve(name, nullptr), stored);
    EXPECT_EQ(table.retrieve(hashOf(table, longText + "1999"), nullptr), longText + "1999");
}

TEST(StringTable, TheFirstTextKeepsACollidingHashAndTextsCompareOnlyUpToAnEmbeddedZero)
{
    StringTable table(7687);
    const std::string first = "position.x=12345";
    const std::string second = forgeTwin(first);
    const unsigned long long hash = hashOf(table, first);
    ASSERT_NE(first, second);
    ASSERT_EQ(hashOf(table, second), hash);

    EXPECT_EQ(addOf(table, first, nullptr), hash);
    EXPECT_EQ(addOf(table, second, nullptr), hash); // no logger, no check
    RecordingLogger logger;
    EXPECT_EQ(addOf(table, second, &logger), 0u);
    EXPECT_EQ(logger.lines, Texts{"error|string hash collision|\"" + second + "\" and \"" + first + "\" (seed=7687)."});
    EXPECT_EQ(table.hash(second.c_str(), &logger), 0u);
    EXPECT_FALSE(table.check(second.c_str(), hash, nullptr));
    EXPECT_EQ(table.retrieve(hash, nullptr), first);

    // A text equal up to the zero that happens to share the hash passes as the stored one; one
    // that differs before the zero doesn't.
    const std::string stored("ab\0cdefghijklmno", 16);
    const std::string twin = forgeTwin(stored);
    const unsigned long long storedHash = addOf(table, stored, nullptr);
    ASSERT_EQ(twin.compare(0, 3, stored, 0, 3), 0);
    ASSERT_NE(twin, stored);
    ASSERT_EQ(hashOf(table, twin), storedHash);
    logger.lines.clear();
    EXPECT_TRUE(table.check(twin.data(), 16, storedHash, &logger));
    EXPECT_EQ(addOf(table, twin, &logger), storedHash);
    EXPECT_TRUE(logger.lines.empty());
    std::string other = stored;
    other[1] = 'X';
    EXPECT_FALSE(table.check(other.data(), 16, storedHash, nullptr));

    // The counted retrieval gives the stored length, zero byte and all, or the default's.
    unsigned int length = 0;
    const char* text = table.retrieve(storedHash, "?", length);
    EXPECT_EQ(std::string(text, length), stored);
    EXPECT_STREQ(table.retrieve(0, "fallback", length), "fallback");
    EXPECT_EQ(length, 8u);
    EXPECT_EQ(table.retrieve(hashOf(table, "absent"), nullptr, length), nullptr);
    EXPECT_EQ(length, 0u);
}

TEST(StringTable, CopiesOwnTheirStringsAndOutliveTheirSource)
{
    auto source = std::make_unique<StringTable>(100);
    const unsigned long long a = source->add("alpha", nullptr);
    StringTable copy(*source);
    StringTable assigned(7687);
    const unsigned long long gone = assigned.add("gamma", nullptr);
    assigned = *source;
    StringTable& alias = assigned;
    assigned = alias;
    EXPECT_NE(copy.retrieve(a, nullptr), source->retrieve(a, nullptr));
    source.reset();

    for (StringTable* table : {&copy, &assigned}) {
        EXPECT_STREQ(table->retrieve(a, nullptr), "alpha");
        EXPECT_EQ(table->hash("beta", nullptr), StringTable(100).hash("beta", nullptr)); // the seed came along
        EXPECT_EQ(&StringTable::getWrapee(table->getWrapper()), table);
        table->add("beta", nullptr);
        EXPECT_STREQ(table->retrieve(table->hash("beta", nullptr), nullptr), "beta");
    }
    EXPECT_STREQ(assigned.retrieve(gone, "cleared"), "cleared");
}

TEST(StringTable, SeedZeroAndNullStringsAreFailedAssertions)
{
    AssertionCapture capture;
    StringTable table(0);
    EXPECT_EQ(capture.texts(), Texts{"StringTable seed should not be 0."});
    EXPECT_STREQ(table.retrieve(table.add("still works", nullptr), nullptr), "still works");

    capture.clear();
    RecordingLogger logger;
    EXPECT_EQ(table.add(nullptr, &logger), 0u);
    EXPECT_EQ(table.hash(nullptr, nullptr), 0u);
    EXPECT_FALSE(table.check(nullptr, 1, &logger));
    EXPECT_FALSE(table.check(nullptr, 3, 1, &logger));
    EXPECT_EQ(capture.texts(), (Texts{"Bad string.", "Bad string.", "Bad string.", "Bad string."}));
    EXPECT_TRUE(logger.lines.empty());
}

extern "C" const char* orv_test_stringTableFromC(void);

TEST(StringTableC, WorksFromAC99HostThroughAHandleOfItsOwnAndAssertsOnMissingHandlesAndLoggers)
{
    EXPECT_EQ(orv_test_stringTableFromC(), nullptr) << orv_test_stringTableFromC();

    AssertionCapture capture;
    EXPECT_EQ(orv_stringTable_hash(nullptr, "a", 1), 0u);
    EXPECT_EQ(orv_stringTable_add(nullptr, "a", 1), 0u);
    EXPECT_STREQ(orv_stringTable_retrieve(nullptr, 1, "default"), "default");
    orv_destroyStringTable(nullptr);
    EXPECT_EQ(capture.texts(), (Texts{"table", "table", "table", "table"}));

    capture.clear();
    orv_StringTable bare{nullptr};
    EXPECT_EQ(orv_stringTable_hashAndCheck(&bare, "a", 1, nullptr), 0u);
    EXPECT_EQ(orv_stringTable_addAndCheck(&bare, "a", 1, nullptr), 0u);
    EXPECT_EQ(orv_stringTable_check(&bare, "a", 1, 1, nullptr), 0);
    EXPECT_EQ(capture.texts(), (Texts{"table.impl_", "table.impl_", "table.impl_"}));

    capture.clear();
    orv_StringTable* handle = orv_createStringTable(1);
    EXPECT_NE(&StringTable::getWrapee(*handle).getWrapper(), handle);
    const unsigned long long hash = orv_stringTable_add(handle, "a", 1);
    EXPECT_EQ(orv_stringTable_addAndCheck(handle, "a", 1, nullptr), hash);
    EXPECT_EQ(orv_stringTable_hashAndCheck(handle, "b", 1, nullptr), 0u); // still checked, reported to no one
    EXPECT_EQ(orv_stringTable_check(handle, "a", 1, hash, nullptr), 1);
    EXPECT_EQ(capture.texts(), (Texts{"logger", "logger", "logger"}));

    capture.clear();
    ORV_DELETE(handle->impl_);
    handle->impl_ = nullptr;
    orv_destroyStringTable(handle); // the handle is still freed, or the leak check fails
    EXPECT_EQ(capture.texts(), Texts{"table->impl_"});
}
