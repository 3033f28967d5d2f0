#ifndef ORV_UTILS_MUTEX_H
#define ORV_UTILS_MUTEX_H

#include <orv/utils/Export.h>

#include <pthread.h>

namespace orv {
namespace utils {

class AbstractLogger;

/// A POSIX mutex. Construction and destruction failures are failed assertions; the lock
/// operations log with error::threadError and return false.
class ORV_UTILS_API Mutex {
public:
    enum Type { Normal = 0, Recursive = 1 };

    explicit Mutex(Type type = Normal);
    ~Mutex();

    bool lock(AbstractLogger* logger);
    bool trylock(AbstractLogger* logger);
    bool unlock(AbstractLogger* logger);

    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

private:
    friend class Condition;

    // Condition::wait hands this object's address to POSIX as the mutex: it must come first.
    pthread_mutex_t mutex_;
    pthread_mutexattr_t attributes_;
};

} // namespace utils
} // namespace orv

#endif
