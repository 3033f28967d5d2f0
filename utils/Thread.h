#ifndef ORV_UTILS_THREAD_H
#define ORV_UTILS_THREAD_H

#include <orv/utils/Export.h>

#include <pthread.h>

namespace orv {
namespace utils {

/// A POSIX thread that runs from construction on. Destroying the object only detaches the
/// thread: join first to wait for it.
class ORV_UTILS_API Thread {
public:
    Thread(void* (*function)(void*), void* argument);
    ~Thread();

    void detach();
    bool join(void** result);
    bool cancel();

    static void exit();
    static void yield();

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

private:
    pthread_t thread_;
    pthread_attr_t attributes_;
    bool joined_;
};

} // namespace utils
} // namespace orv

#endif
