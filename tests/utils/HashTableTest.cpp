#include <orv/utils/HashTable.h>

#include "support/TestSupport.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <vector>

using orv::test::AssertionCapture;
using orv::test::Texts;
using orv::utils::HashTable;
using orv::utils::invalidIndex;

namespace {

std::vector<unsigned long long> keysInArrayOrder(const HashTable<int>& table)
{
    std::vector<unsigned long long> keys;
    for (const HashTable<int>::Entry& entry : table) {
        keys.push_back(entry.key);
    }
    return keys;
}

} // namespace

TEST(HashTable, GrowsAtSevenTenthsKeepsInsertionOrderAndEraseMovesTheLastEntryIntoTheHole)
{
    HashTable<int> table;
    EXPECT_EQ(table.getBucketCount(), 0u);
    EXPECT_EQ(table.find(5).bucket, invalidIndex);
    EXPECT_FALSE(table.find(5).found());
    table.erase(5); // absent: nothing happens

    for (int i = 0; i < 6; ++i) {
        table.add(100 + i, i);
        EXPECT_EQ(table.getBucketCount(), 10u);
    }
    table.add(106, 6); // 7 / 10 computed in single precision is exactly the limit
    EXPECT_EQ(table.getBucketCount(), 24u);
    table.add(103, 33); // an overwrite: no new entry, the old value is replaced in place
    EXPECT_EQ(table.at(103), 33);
    EXPECT_EQ(keysInArrayOrder(table), (std::vector<unsigned long long> { 100, 101, 102, 103, 104, 105, 106 }));

    // The array stays dense: the last entry fills the hole.
    table.erase(101);
    EXPECT_EQ(keysInArrayOrder(table), (std::vector<unsigned long long> { 100, 106, 102, 103, 104, 105 }));
    EXPECT_EQ(table.at(106), 6);
    table.erase(105);
    EXPECT_EQ(keysInArrayOrder(table), (std::vector<unsigned long long> { 100, 106, 102, 103, 104 }));
    EXPECT_FALSE(table.find(101).found());
    EXPECT_EQ(table.getBucketCount(), 24u);
}

TEST(HashTable, ChainsKeysOfOneBucketInInsertionOrderAndComparesAll64Bits)
{
    HashTable<int> table(16);
    const unsigned long long keys[] = { (1ull << 32) | 7, 7, 23 }; // all in bucket 7
    for (int i = 0; i < 3; ++i) {
        table.add(keys[i], i);
    }
    EXPECT_EQ(table.getBucketCount(), 16u);
    unsigned int previous = invalidIndex;
    for (int i = 0; i < 3; ++i) {
        const HashTable<int>::Position position = table.find(keys[i]);
        EXPECT_EQ(position.bucket, 7u);
        EXPECT_EQ(position.previous, previous);
        EXPECT_EQ(table.at(keys[i]), i);
        previous = position.index;
    }
    const HashTable<int>::Position missing = table.find(39);
    EXPECT_EQ(missing.bucket, 7u);
    EXPECT_EQ(missing.index, invalidIndex);
    EXPECT_EQ(missing.previous, invalidIndex);
}

// Erase relinks chains through the bucket or a predecessor and redirects the link of the moved
// entry; a model check over keys crowded into few buckets exercises every combination.
TEST(HashTable, AgreesWithAMapUnderRandomAddsAndErases)
{
    std::mt19937_64 random(1234);
    HashTable<int> table;
    std::map<unsigned long long, int> model;
    for (int step = 0; step < 20000; ++step) {
        // Keys share low words and buckets, so chains are long and high words matter.
        const unsigned long long key = (random() % 4) << 32 | (random() % 40) * 24;
        if (random() % 3 == 0) {
            table.erase(key);
            model.erase(key);
        } else {
            table.add(key, step);
            model[key] = step;
        }
        ASSERT_EQ(table.size(), model.size());
        if (step % 97 == 0) {
            for (const auto& [modelKey, value] : model) {
                const int* found = table.lookup(modelKey);
                ASSERT_NE(found, nullptr) << modelKey;
                ASSERT_EQ(*found, value);
            }
            for (const HashTable<int>::Entry& entry : table) {
                ASSERT_EQ(model.count(entry.key), 1u);
            }
        }
    }
    EXPECT_GT(table.getBucketCount(), 10u);
}

TEST(HashTable, AtOfAnAbsentKeyIsAFailedAssertion)
{
    HashTable<int> table;
    table.add(1, 10);
    AssertionCapture capture;
    table.at(42);
    static_cast<const HashTable<int>&>(table).at(18446744073709551615ull);
    EXPECT_EQ(capture.texts(), (Texts{"No value registered at 42.", "No value registered at 18446744073709551615."}));
}
