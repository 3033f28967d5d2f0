#include <orv/utils/StringTable.h>

#include <orv/utils/LoggerCWrapper.h>
#include <orv/utils/details/Logging.h>
#include <orv/utils/details/MurmurHash.h>

#include <cstring>
#include <string_view>

namespace orv {
namespace utils {

namespace {

// Strings longer than this are freed when recycled rather than kept for reuse.
constexpr unsigned int pooledStringMaximumLength = 128;

} // namespace

StringTable::StringTable(unsigned int seed)
    : pool_(0, pooledStringMaximumLength), seed_(seed), wrapper_(ORV_NEW(orv_StringTable)())
{
    ORV_CHECK(seed != 0, "StringTable seed should not be 0.");
    // The hook returned: the table works with seed 0 like with any other.
    if (wrapper_.get() != nullptr) {
        wrapper_->impl_ = this;
    }
}

StringTable::StringTable(const StringTable& other)
    : table_(other.table_), pool_(0, pooledStringMaximumLength), seed_(other.seed_),
      wrapper_(ORV_NEW(orv_StringTable)())
{
    if (wrapper_.get() != nullptr) {
        wrapper_->impl_ = this;
    }
    copyStrings(other);
}

StringTable& StringTable::operator=(const StringTable& other)
{
    if (this != &other) {
        clear();
        table_ = other.table_;
        seed_ = other.seed_;
        copyStrings(other);
    }
    return *this;
}

StringTable::~StringTable()
{
    clear();
}

void StringTable::copyStrings(const StringTable& other)
{
    // table_ holds other's chains with other's strings: give each entry a string of its own.
    for (const HashTable<String*>::Entry& entry : other.table_) {
        String* string = pool_.obtain();
        if (string == nullptr) {
            // Memory ran out: the entry goes rather than share the source's string.
            table_.erase(entry.key);
            continue;
        }
        *string = *entry.value;
        table_.at(entry.key) = string;
    }
}

void StringTable::clear()
{
    last_ = nullptr;
    lastHash_ = 0;
    for (const HashTable<String*>::Entry& entry : table_) {
        pool_.recycle(entry.value);
    }
    table_.clear();
}

unsigned long long StringTable::computeHash(const char* string, unsigned int length) const
{
    return details::murmurHash64B(string, length, seed_);
}

unsigned long long StringTable::add(const char* string, unsigned int length, AbstractLogger* logger)
{
    // Documents repeat values (flags, names of kinds): the text added last is known by its bytes
    // without hashing it again. Strings leave the table only when all of them do.
    if (last_ != nullptr && last_->size() == length && std::memcmp(last_->data(), string, length) == 0) {
        return lastHash_;
    }
    const unsigned long long hash = computeHash(string, length);
    if (!table_.find(hash).found()) {
        String* stored = pool_.obtain();
        if (stored == nullptr) {
            // Memory ran out: nothing is registered, and 0 says so.
            return 0;
        }
        stored->assign(string, length);
        table_.add(hash, stored);
        last_ = stored;
        lastHash_ = hash;
        return hash;
    }
    if (logger == nullptr) {
        return hash;
    }
    return check(string, length, hash, logger) ? hash : 0;
}

unsigned long long StringTable::add(const char* string, AbstractLogger* logger)
{
    ORV_CHECK(string != nullptr, "Bad string.");
    if (string == nullptr) {
        // The hook returned: there is no text to register.
        return 0;
    }
    return add(string, static_cast<unsigned int>(std::strlen(string)), logger);
}

unsigned long long StringTable::hash(const char* string, unsigned int length, AbstractLogger* logger) const
{
    const unsigned long long hash = computeHash(string, length);
    if (logger == nullptr) {
        return hash;
    }
    return check(string, length, hash, logger) ? hash : 0;
}

unsigned long long StringTable::hash(const char* string, AbstractLogger* logger) const
{
    ORV_CHECK(string != nullptr, "Bad string.");
    if (string == nullptr) {
        // The hook returned: there is no text to hash.
        return 0;
    }
    return hash(string, static_cast<unsigned int>(std::strlen(string)), logger);
}

bool StringTable::check(const char* string, unsigned int length, const unsigned long long& hash,
                        AbstractLogger* logger) const
{
    ORV_CHECK(string != nullptr, "Bad string.");
    if (string == nullptr) {
        // The hook returned: no text can match.
        return false;
    }
    String* const* entry = table_.lookup(hash);
    if (entry == nullptr) {
        ORV_LOG_ERROR(logger, error::invalidConfiguration,
                      "\"" << std::string_view(string, length) << "\" is not registered with the table.");
        return false;
    }
    const String& stored = **entry;
    // strncmp and not a byte comparison: texts that agree up to an embedded zero count as equal.
    if (stored.size() == length && std::strncmp(stored.c_str(), string, length) == 0) {
        return true;
    }
    ORV_LOG_ERROR(logger, error::stringHashCollision,
                  "\"" << std::string_view(string, length) << "\" and \"" << stored << "\" (seed=" << seed_ << ").");
    return false;
}

bool StringTable::check(const char* string, const unsigned long long& hash, AbstractLogger* logger) const
{
    // A null string goes through, so that the counted form raises its assertion once.
    return check(string, string != nullptr ? static_cast<unsigned int>(std::strlen(string)) : 0, hash, logger);
}

const String* StringTable::stored(const unsigned long long& hash) const
{
    String* const* entry = hash != 0 ? table_.lookup(hash) : nullptr;
    return entry != nullptr ? *entry : nullptr;
}

const char* StringTable::retrieve(const unsigned long long& hash, const char* defaultValue) const
{
    const String* text = stored(hash);
    return text != nullptr ? text->c_str() : defaultValue;
}

const char* StringTable::retrieve(const unsigned long long& hash, const char* defaultValue, unsigned int& length) const
{
    const String* text = stored(hash);
    if (text == nullptr) {
        length = defaultValue != nullptr ? static_cast<unsigned int>(std::strlen(defaultValue)) : 0;
        return defaultValue;
    }
    length = static_cast<unsigned int>(text->size());
    return text->c_str();
}

orv_StringTable& StringTable::getWrapper()
{
    return *wrapper_;
}

StringTable& StringTable::getWrapee(orv_StringTable& wrapper)
{
    return *wrapper.impl_;
}

const StringTable& StringTable::getWrapee(const orv_StringTable& wrapper)
{
    return *wrapper.impl_;
}

} // namespace utils
} // namespace orv

namespace {

using orv::utils::StringTable;

// The table behind a C handle; null, after the failed assertion, when there is none.
StringTable* tableOf(orv_StringTable* table)
{
    ORV_CHECK(table != nullptr, "table");
    if (table == nullptr) {
        return nullptr;
    }
    ORV_CHECK(table->impl_ != nullptr, "table.impl_");
    return table->impl_;
}

} // namespace

extern "C" {

orv_StringTable* orv_createStringTable(unsigned int seed)
{
    orv_StringTable* table = ORV_NEW(orv_StringTable)();
    if (table == nullptr) {
        return nullptr;
    }
    table->impl_ = ORV_NEW(StringTable)(seed);
    if (table->impl_ == nullptr) {
        ORV_DELETE(table);
        return nullptr;
    }
    return table;
}

void orv_destroyStringTable(orv_StringTable* table)
{
    ORV_CHECK(table != nullptr, "table");
    if (table == nullptr) {
        return;
    }
    ORV_CHECK(table->impl_ != nullptr, "table->impl_");
    // The hook returned for a bare handle: there is no table to destroy, but the handle goes.
    ORV_DELETE(table->impl_);
    ORV_DELETE(table);
}

unsigned long long orv_stringTable_hash(orv_StringTable* table, const char* string, unsigned int length)
{
    const StringTable* impl = tableOf(table);
    // After a failed assertion on the handle there is no table, hence no hash.
    return impl != nullptr ? impl->hash(string, length, nullptr) : 0;
}

unsigned long long orv_stringTable_hashAndCheck(orv_StringTable* table, const char* string, unsigned int length,
                                                orv_Logger* logger)
{
    const StringTable* impl = tableOf(table);
    if (impl == nullptr) {
        return 0;
    }
    ORV_CHECK(logger != nullptr, "logger");
    // The hook returned for a null logger: the check still runs and fails in silence.
    orv::utils::LoggerCWrapper wrapper(logger);
    return impl->hash(string, length, &wrapper);
}

unsigned long long orv_stringTable_add(orv_StringTable* table, const char* string, unsigned int length)
{
    StringTable* impl = tableOf(table);
    return impl != nullptr ? impl->add(string, length, nullptr) : 0;
}

unsigned long long orv_stringTable_addAndCheck(orv_StringTable* table, const char* string, unsigned int length,
                                               orv_Logger* logger)
{
    StringTable* impl = tableOf(table);
    if (impl == nullptr) {
        return 0;
    }
    ORV_CHECK(logger != nullptr, "logger");
    // The hook returned for a null logger: a collision still gives 0, reported to no one.
    orv::utils::LoggerCWrapper wrapper(logger);
    return impl->add(string, length, &wrapper);
}

orv_bool orv_stringTable_check(orv_StringTable* table, const char* string, unsigned int length,
                               unsigned long long hash, orv_Logger* logger)
{
    const StringTable* impl = tableOf(table);
    if (impl == nullptr) {
        return 0;
    }
    ORV_CHECK(logger != nullptr, "logger");
    // The hook returned for a null logger: the answer stands, reported to no one.
    orv::utils::LoggerCWrapper wrapper(logger);
    return impl->check(string, length, hash, &wrapper) ? 1 : 0;
}

const char* orv_stringTable_retrieve(orv_StringTable* table, unsigned long long hash, const char* defaultValue)
{
    const StringTable* impl = tableOf(table);
    return impl != nullptr ? impl->retrieve(hash, defaultValue) : defaultValue;
}
}
