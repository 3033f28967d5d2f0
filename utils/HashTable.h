#ifndef ORV_UTILS_HASHTABLE_H
#define ORV_UTILS_HASHTABLE_H

#include <orv/utils/Assertion.h>
#include <orv/utils/Common.h>

#include <utility>

namespace orv {
namespace utils {

/// A table from 64-bit keys, which the caller has already hashed, to values. Entries are packed
/// densely in one array and chained by index, so that a lookup is one modulo and a walk in that
/// array, with no allocation and no pointer per node. The bucket array only grows. Values are
/// held as given: the table never releases what it overwrites or erases.
template <typename T>
class HashTable {
public:
    struct Entry {
        unsigned long long key;
        /// Index of the next entry in this bucket; invalidIndex at the end of the chain.
        unsigned int next;
        T value;
    };

    /// Where a key is, or would be: its bucket (invalidIndex when there are no buckets), its
    /// entry (invalidIndex when absent), and the entry whose link leads to it (invalidIndex when
    /// the bucket itself leads to it, or when nothing was found).
    struct Position {
        unsigned int bucket;
        unsigned int index;
        unsigned int previous;

        bool found() const { return index != invalidIndex; }
    };

    using const_iterator = typename Vector<Entry>::const_iterator;

    HashTable() = default;

    explicit HashTable(unsigned int bucketCount) : buckets_(bucketCount, invalidIndex) {}

    Position find(unsigned long long key) const
    {
        Position position = walk(key);
        if (!position.found()) {
            position.previous = invalidIndex;
        }
        return position;
    }

    /// The value of the key, or null when absent.
    T* lookup(unsigned long long key) { return const_cast<T*>(static_cast<const HashTable&>(*this).lookup(key)); }

    const T* lookup(unsigned long long key) const
    {
        const Position position = walk(key);
        return position.found() ? &entries_[position.index].value : nullptr;
    }

    T& at(unsigned long long key) { return const_cast<T&>(static_cast<const HashTable&>(*this).at(key)); }

    const T& at(unsigned long long key) const
    {
        const T* value = lookup(key);
        ORV_CHECK(value != nullptr, "No value registered at " << key << ".");
        if (value == nullptr) {
            // The hook returned: there is no entry to give, so the caller gets a scratch value
            // rather than a read past the entries.
            static T scratch;
            scratch = T();
            return scratch;
        }
        return *value;
    }

    /// Inserts the key, or overwrites its value in place.
    void add(unsigned long long key, const T& value)
    {
        if (buckets_.empty()) {
            rehash(static_cast<unsigned int>(entries_.size() * 2 + 10));
        }
        store(key, value);
        // An overwrite tests the load as well; it cannot have risen, so it only grows a table
        // that was already at the limit.
        if (static_cast<float>(entries_.size()) / static_cast<float>(buckets_.size()) >= 0.7f) {
            rehash(static_cast<unsigned int>(entries_.size() * 2 + 10));
        }
    }

    /// Removes the key if present. The last entry moves into the hole, so iteration order changes.
    void erase(unsigned long long key)
    {
        const Position position = find(key);
        if (!position.found()) {
            return;
        }
        link(position.bucket, position.previous) = entries_[position.index].next;
        const unsigned int last = static_cast<unsigned int>(entries_.size() - 1);
        if (position.index != last) {
            entries_[position.index] = std::move(entries_[last]);
            // Nothing links to the hole any more, so the walk for the moved key ends at the last
            // slot, and its predecessor's link is the one to redirect.
            const Position moved = find(entries_[position.index].key);
            link(moved.bucket, moved.previous) = position.index;
        }
        entries_.pop_back();
    }

    /// Drops every entry and every bucket; the arrays keep their capacity.
    void clear()
    {
        entries_.clear();
        buckets_.clear();
    }

    const_iterator begin() const { return entries_.begin(); }
    const_iterator end() const { return entries_.end(); }
    unsigned int size() const { return static_cast<unsigned int>(entries_.size()); }
    unsigned int getBucketCount() const { return static_cast<unsigned int>(buckets_.size()); }

private:
    /// The link that leads to an entry: the bucket's head, or the predecessor's next.
    unsigned int& link(unsigned int bucket, unsigned int previous)
    {
        return previous == invalidIndex ? buckets_[bucket] : entries_[previous].next;
    }

    /// The search of find, except that a miss leaves in `previous` the last entry of the chain,
    /// where a new entry is linked.
    Position walk(unsigned long long key) const
    {
        Position position{invalidIndex, invalidIndex, invalidIndex};
        if (buckets_.empty()) {
            return position;
        }
        position.bucket = static_cast<unsigned int>(key % static_cast<unsigned long long>(buckets_.size()));
        for (unsigned int index = buckets_[position.bucket]; index != invalidIndex; index = entries_[index].next) {
            if (entries_[index].key == key) {
                position.index = index;
                return position;
            }
            position.previous = index;
        }
        return position;
    }

    /// Stores the value under the key; an absent key is appended at the end of its chain, so
    /// that chains keep the order of insertion. Needs buckets.
    template <typename Value>
    void store(unsigned long long key, Value&& value)
    {
        const Position position = walk(key);
        if (position.found()) {
            entries_[position.index].value = std::forward<Value>(value);
            return;
        }
        const unsigned int index = static_cast<unsigned int>(entries_.size());
        entries_.push_back(Entry{key, invalidIndex, std::forward<Value>(value)});
        link(position.bucket, position.previous) = index;
    }

    /// Rebuilds the chains over `bucketCount` buckets, keeping the entries in array order.
    void rehash(unsigned int bucketCount)
    {
        HashTable rebuilt(bucketCount);
        rebuilt.entries_.reserve(entries_.size());
        for (Entry& entry : entries_) {
            rebuilt.store(entry.key, std::move(entry.value));
        }
        entries_.swap(rebuilt.entries_);
        buckets_.swap(rebuilt.buckets_);
    }

    Vector<Entry> entries_;
    Vector<unsigned int> buckets_;
};

} // namespace utils
} // namespace orv

#endif
