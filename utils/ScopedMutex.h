#ifndef ORV_UTILS_SCOPEDMUTEX_H
#define ORV_UTILS_SCOPEDMUTEX_H

#include <orv/utils/Export.h>

namespace orv {
namespace utils {

class Mutex;

/// Holds a Mutex for its lifetime; failures to lock or unlock are failed assertions.
class ORV_UTILS_API ScopedMutex {
public:
    explicit ScopedMutex(Mutex& mutex);
    ~ScopedMutex();

    ScopedMutex(const ScopedMutex&) = delete;
    ScopedMutex& operator=(const ScopedMutex&) = delete;

private:
    Mutex& mutex_;
};

} // namespace utils
} // namespace orv

#endif
