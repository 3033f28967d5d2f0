#include <orv/utils/Thread.h>

#include <orv/utils/Assertion.h>

#include <sched.h>

namespace orv {
namespace utils {

Thread::Thread(void* (*function)(void*), void* argument) : joined_(false)
{
    pthread_attr_init(&attributes_);
    ORV_CHECK(pthread_create(&thread_, &attributes_, function, argument) == 0, "Thread creation failed");
}

Thread::~Thread()
{
    // A joined thread's record is already released: detaching it would read freed memory, so only
    // a thread that was never joined is detached here. Any error of the detach is ignored.
    if (!joined_) {
        pthread_detach(thread_);
    }
    pthread_attr_destroy(&attributes_);
}

void Thread::detach()
{
    pthread_detach(thread_);
}

bool Thread::join(void** result)
{
    if (joined_) {
        // Joining again would hand POSIX a released record; the answer is the same failure.
        return false;
    }
    joined_ = pthread_join(thread_, result) == 0;
    return joined_;
}

bool Thread::cancel()
{
    return pthread_cancel(thread_) == 0;
}

void Thread::exit()
{
    pthread_exit(nullptr);
}

void Thread::yield()
{
    sched_yield();
}

} // namespace utils
} // namespace orv
