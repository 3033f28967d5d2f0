#ifndef ORV_UTILS_STRINGTABLE_H
#define ORV_UTILS_STRINGTABLE_H

#include <orv/utils/HashTable.h>
#include <orv/utils/ScopedPtr.h>
#include <orv/utils/StringPool.h>
#include <orv/utils/c/StringTable.h>

namespace orv {
namespace utils {

class AbstractLogger;

/// Strings named by 64-bit hashes. Each text is stored once and referred to by its hash, which is
/// meaningful only with the table that made it, since the seed enters the hash. Hash 0 stands for
/// no string. The table never removes a string and does not resolve collisions: the first text
/// stored under a hash keeps it, and a collision is only found when a logger asks for checks.
class ORV_UTILS_API StringTable {
public:
    /// An empty table; seed 0 is a failed assertion.
    explicit StringTable(unsigned int seed);
    /// A deep copy with the same hashes, its own strings and its own C handle.
    StringTable(const StringTable& other);
    /// Copies the strings, the chains and the seed of `other`; the C handle stays this table's.
    StringTable& operator=(const StringTable& other);
    ~StringTable();

    /// Registers the text and returns its hash. With a logger, a hash already held by another
    /// text is reported and gives 0, leaving the table as it was; with none it is returned as is.
    unsigned long long add(const char* string, unsigned int length, AbstractLogger* logger);
    unsigned long long add(const char* string, AbstractLogger* logger);

    /// The hash of the text, never registered. With a logger, 0 unless the table holds this very
    /// text under it.
    unsigned long long hash(const char* string, unsigned int length, AbstractLogger* logger) const;
    unsigned long long hash(const char* string, AbstractLogger* logger) const;

    /// Whether the table holds this text under `hash`; the reason it does not goes to the logger.
    bool check(const char* string, unsigned int length, const unsigned long long& hash, AbstractLogger* logger) const;
    bool check(const char* string, const unsigned long long& hash, AbstractLogger* logger) const;

    /// The text stored under `hash`, valid while the table lives; `defaultValue` for hash 0 or an
    /// unknown hash.
    const char* retrieve(const unsigned long long& hash, const char* defaultValue) const;
    /// The same with the text's length, which the table knows without measuring the text; for the
    /// default, the length of the default.
    const char* retrieve(const unsigned long long& hash, const char* defaultValue, unsigned int& length) const;

    orv_StringTable& getWrapper();
    static StringTable& getWrapee(orv_StringTable& wrapper);
    static const StringTable& getWrapee(const orv_StringTable& wrapper);

private:
    unsigned long long computeHash(const char* string, unsigned int length) const;
    /// The text stored under `hash`; null for hash 0 or an unknown hash.
    const String* stored(const unsigned long long& hash) const;
    void copyStrings(const StringTable& other);
    void clear();

    HashTable<String*> table_;
    StringPool pool_;
    unsigned int seed_;
    /// The string that add registered last, and its hash; null when none.
    const String* last_ = nullptr;
    unsigned long long lastHash_ = 0;
    ScopedPtr<orv_StringTable> wrapper_;
};

} // namespace utils
} // namespace orv

#endif
