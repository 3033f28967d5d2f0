#ifndef ORV_UTILS_STRINGPOOL_H
#define ORV_UTILS_STRINGPOOL_H

#include <orv/utils/Common.h>

namespace orv {
namespace utils {

/// A free list of strings that keeps their capacity for reuse. Strings handed out belong to the
/// holder until recycled.
class ORV_UTILS_API StringPool {
public:
    StringPool(unsigned int initialCount, unsigned int maximumKeptLength);
    StringPool(const StringPool& other);
    ~StringPool();

    /// An empty string, the last one recycled if any; null when memory runs out.
    String* obtain();
    /// Gives a string back: kept (emptied) when its length is at most the limit, freed otherwise.
    void recycle(String* string);

    StringPool& operator=(const StringPool&) = delete;

private:
    unsigned int maximumKeptLength_;
    Deque<String*> freeList_;
};

} // namespace utils
} // namespace orv

#endif
