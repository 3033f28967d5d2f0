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

// Texts forged to chosen hashes. Each lane of a 16-byte text takes h = h * m ^ mix(word) for two
// words, and mix is a bijection, so the second word of a lane can absorb any choice of the first;
// the final mix is a bijection of both lanes, so the lanes can also be steered to hash 0.
constexpr std::uint32_t m = 0x5bd1e995u;

std::uint32_t inverse(std::uint32_t a)
{
    std::uint32_t x = a; // Newton steps double the correct low bits each time
    for (int i = 0; i < 5; ++i) {
        x *= 2 - a * x;
    }
    return x;
}

const std::uint32_t mInverse = inverse(m);

// Shifts of 16 bits or more make each xorshift its own inverse.
std::uint32_t mix(std::uint32_t k)
{
    k *= m;
    k ^= k >> 24;
    return k * m;
}

std::uint32_t unmix(std::uint32_t k)
{
    k *= mInverse;
    k ^= k >> 24;
    return k * mInverse;
}

std::uint32_t word(const std::string& text, int index)
{
    return orv::utils::details::readLittleEndian32(reinterpret_cast<const unsigned char*>(text.data()) + 4 * index);
}

std::string text(std::uint32_t word)
{
    return std::string{char(word), char(word >> 8), char(word >> 16), char(word >> 24)};
}

struct Lanes {
    std::uint32_t h1, h2;
};

Lanes lanesOf(const std::string& text16, std::uint32_t seed)
{
    return {((seed ^ 16u) * m ^ mix(word(text16, 0))) * m ^ mix(word(text16, 2)),
            mix(word(text16, 1)) * m ^ mix(word(text16, 3))};
}

Lanes lanesOfZeroHash()
{
    std::uint32_t h1 = 0, h2 = 0;
    h2 *= mInverse;
    h2 ^= h1 >> 19;
    h1 *= mInverse;
    h1 ^= h2 >> 17;
    h2 *= mInverse;
    h2 ^= h1 >> 22;
    h1 *= mInverse;
    h1 ^= h2 >> 18;
    return {h1, h2};
}

bool printable(std::uint32_t word)
{
    for (int shift = 0; shift < 32; shift += 8) {
        const unsigned char c = static_cast<unsigned char>(word >> shift);
        if (c < 0x21 || c > 0x7e) {
            return false;
        }
    }
    return true;
}

// The two printable words of one lane that lead from `start` to `target`, the first not `avoid`.
std::string forgeLane(std::uint32_t start, std::uint32_t target, std::uint32_t avoid)
{
    for (std::uint32_t n = 0;; ++n) {
        const std::uint32_t first = 0x61616161u + (n % 26) + (n / 26 % 26 << 8) + (n / 676 % 26 << 16);
        const std::uint32_t second = unmix(target ^ (start * m ^ mix(first)) * m);
        if (first != avoid && printable(second)) {
            return text(first) + text(second);
        }
    }
}

// A 16-byte text with the given lanes; `keep` (a 16-byte text) fixes the words of lane 1.
std::string forge(std::uint32_t seed, Lanes lanes, const std::string& keep = std::string())
{
    const std::string one = keep.empty() ? forgeLane(seed ^ 16u, lanes.h1, 0) : keep.substr(0, 4) + keep.substr(8, 4);
    const std::string two = forgeLane(0, lanes.h2, keep.empty() ? 0 : word(keep, 1));
    return one.substr(0, 4) + two.substr(0, 4) + one.substr(4, 4) + two.substr(4, 4);
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

TEST(StringTable, AddsATextOnceAndRetrievesIt)
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

    RecordingLogger logger;
    EXPECT_EQ(table.add("name", &logger), name);
    EXPECT_TRUE(table.check("name", name, &logger));
    EXPECT_EQ(table.hash("name", &logger), name);
    EXPECT_TRUE(logger.lines.empty());

    // Texts handed out stay in place while the table grows, long ones included.
    const char* stored = table.retrieve(name, nullptr);
    const std::string longText(300, 'L');
    for (int i = 0; i < 2000; ++i) {
        addOf(table, longText + std::to_string(i), nullptr);
    }
    EXPECT_EQ(table.retrieve(name, nullptr), stored);
    EXPECT_EQ(table.retrieve(hashOf(table, longText + "1999"), nullptr), longText + "1999");
}

TEST(StringTable, UnregisteredTextsFailEveryCheck)
{
    StringTable table(7687);
    RecordingLogger logger;
    EXPECT_NE(table.hash("ghost", nullptr), 0u);
    EXPECT_EQ(table.hash("ghost", &logger), 0u);
    EXPECT_FALSE(table.check("ghost", 1234, &logger));
    EXPECT_EQ(logger.lines, (Texts{"error|invalid configuration|\"ghost\" is not registered with the table.",
                                   "error|invalid configuration|\"ghost\" is not registered with the table."}));
}

TEST(StringTable, TheFirstTextKeepsACollidingHash)
{
    StringTable table(7687);
    const std::string first = "position.x=12345";
    const std::string second = forge(7687, lanesOf(first, 7687));
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
}

TEST(StringTable, ComparesTextsOnlyUpToAnEmbeddedZero)
{
    StringTable table(100);
    const std::string stored("ab\0cdefghijklmno", 16);
    std::string other = stored;
    other[3] = 'X';
    ASSERT_NE(hashOf(table, stored), hashOf(table, other));
    addOf(table, stored, nullptr);
    EXPECT_FALSE(table.check(other.data(), 16, hashOf(table, other), nullptr));

    // A text equal up to the zero that happens to share the hash passes as the stored one.
    const std::string twin = forge(100, lanesOf(stored, 100), stored);
    ASSERT_EQ(twin.compare(0, 3, stored, 0, 3), 0);
    ASSERT_NE(twin, stored);
    const unsigned long long hash = hashOf(table, stored);
    ASSERT_EQ(hashOf(table, twin), hash);
    RecordingLogger logger;
    EXPECT_TRUE(table.check(twin.data(), 16, hash, &logger));
    EXPECT_EQ(addOf(table, twin, &logger), hash);
    EXPECT_TRUE(logger.lines.empty());
}

TEST(StringTable, ATextHashingToZeroIsRegisteredButLooksLikeAFailure)
{
    StringTable table(7687);
    const std::string zero = forge(7687, lanesOfZeroHash());
    ASSERT_EQ(hashOf(table, zero), 0u);
    RecordingLogger logger;
    EXPECT_EQ(addOf(table, zero, &logger), 0u);
    EXPECT_TRUE(logger.lines.empty());
    EXPECT_TRUE(table.check(zero.c_str(), 0, &logger));
    EXPECT_STREQ(table.retrieve(0, "none"), "none");
}

TEST(StringTable, CopiesOwnTheirStringsAndOutliveTheirSource)
{
    auto source = std::make_unique<StringTable>(100);
    const unsigned long long a = source->add("alpha", nullptr);
    StringTable copy(*source);
    StringTable assigned(7687);
    const unsigned long long gone = assigned.add("gamma", nullptr);
    assigned = *source;
    assigned = assigned;
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

TEST(StringTable, LookupsDoNotAllocate)
{
    StringTable table(7687);
    const unsigned long long hash = table.add("engines", nullptr);
    const orv::allocator::Allocator& allocator = orv::allocator::Allocator::instance();
    const unsigned long long serial = allocator.getNextSerial();
    RecordingLogger logger;
    EXPECT_EQ(table.hash("engines", &logger), hash);
    EXPECT_TRUE(table.check("engines", hash, &logger));
    EXPECT_STREQ(table.retrieve(hash, nullptr), "engines");
    EXPECT_EQ(table.add("engines", nullptr), hash);
    EXPECT_EQ(allocator.getNextSerial(), serial);
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

TEST(StringTableC, WorksFromAC99Host)
{
    EXPECT_EQ(orv_test_stringTableFromC(), nullptr) << orv_test_stringTableFromC();
}

TEST(StringTableC, OwnsItsTableBesideTheTablesOwnHandle)
{
    AssertionCapture capture;
    orv_StringTable* handle = orv_createStringTable(0);
    ASSERT_NE(handle, nullptr);
    EXPECT_EQ(capture.texts(), Texts{"StringTable seed should not be 0."});
    StringTable& table = StringTable::getWrapee(*handle);
    EXPECT_NE(&table.getWrapper(), handle);
    EXPECT_EQ(&StringTable::getWrapee(table.getWrapper()), &table);

    const std::string first = "orv:simulation00";
    const std::string second = forge(0, lanesOf(first, 0));
    const unsigned long long hash = orv_stringTable_add(handle, first.data(), 16);
    EXPECT_EQ(orv_stringTable_add(handle, second.data(), 16), hash);
    RecordingLogger logger;
    EXPECT_EQ(orv_stringTable_addAndCheck(handle, second.data(), 16, &logger.getWrapper()), 0u);
    EXPECT_EQ(logger.messages(), Texts{"\"" + second + "\" and \"" + first + "\" (seed=0)."});
    orv_destroyStringTable(handle);
}

TEST(StringTableC, MissingHandlesAndLoggersAreFailedAssertions)
{
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
