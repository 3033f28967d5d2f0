#include <orv/utils/Condition.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/Mutex.h>

namespace orv {
namespace utils {

Condition::Condition()
{
    ORV_CHECK(pthread_cond_init(&condition_, nullptr) == 0, "Condition initialization failed");
}

Condition::~Condition()
{
    pthread_cond_destroy(&condition_);
}

bool Condition::wait(Mutex& mutex)
{
    return pthread_cond_wait(&condition_, &mutex.mutex_) == 0;
}

bool Condition::signal()
{
    return pthread_cond_signal(&condition_) == 0;
}

bool Condition::broadcast()
{
    return pthread_cond_broadcast(&condition_) == 0;
}

} // namespace utils
} // namespace orv
