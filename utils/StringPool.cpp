#include <orv/utils/StringPool.h>

#include <orv/utils/Assertion.h>

namespace orv {
namespace utils {

StringPool::StringPool(unsigned int initialCount, unsigned int maximumKeptLength)
    : maximumKeptLength_(maximumKeptLength)
{
    for (unsigned int i = 0; i < initialCount; ++i) {
        String* string = ORV_NEW(String)();
        if (string != nullptr) {
            freeList_.push_back(string);
        }
    }
}

StringPool::StringPool(const StringPool& other) : maximumKeptLength_(other.maximumKeptLength_)
{
    for (const String* string : other.freeList_) {
        String* copy = ORV_NEW(String)(*string);
        if (copy != nullptr) {
            freeList_.push_back(copy);
        }
    }
}

StringPool::~StringPool()
{
    for (String* string : freeList_) {
        ORV_DELETE(string);
    }
}

String* StringPool::obtain()
{
    if (freeList_.empty()) {
        return ORV_NEW(String)();
    }
    String* string = freeList_.back();
    freeList_.pop_back();
    return string;
}

void StringPool::recycle(String* string)
{
    ORV_CHECK(string != nullptr, "null pointer not allowed for parameter 'string'");
    if (string == nullptr) {
        return;
    }
    // The limit is on the current length, not the capacity: a string that shrank is kept.
    if (string->size() <= maximumKeptLength_) {
        string->clear();
        freeList_.push_back(string);
    } else {
        ORV_DELETE(string);
    }
}

} // namespace utils
} // namespace orv
