#ifndef ORV_UTILS_CONDITION_H
#define ORV_UTILS_CONDITION_H

#include <orv/utils/Export.h>

#include <pthread.h>

namespace orv {
namespace utils {

class Mutex;

/// A POSIX condition variable. The operations answer with a bare bool.
class ORV_UTILS_API Condition {
public:
    Condition();
    ~Condition();

    /// The caller holds `mutex` and rechecks its predicate in a loop.
    bool wait(Mutex& mutex);
    bool signal();
    bool broadcast();

    Condition(const Condition&) = delete;
    Condition& operator=(const Condition&) = delete;

private:
    pthread_cond_t condition_;
};

} // namespace utils
} // namespace orv

#endif
