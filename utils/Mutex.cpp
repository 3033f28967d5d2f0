#include <orv/utils/Mutex.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/details/Logging.h>

#include <cerrno>
#include <cstddef>

namespace orv {
namespace utils {

Mutex::Mutex(Type type)
{
    static_assert(offsetof(Mutex, mutex_) == 0, "the POSIX mutex comes first");
    int result = pthread_mutexattr_init(&attributes_);
    if (result != 0) {
        switch (result) {
        case ENOMEM:
            ORV_FAIL("[ENOMEM] Insufficient memory exists to initialize the mutex attributes object.");
            break;
        default:
            ORV_FAIL("Unknown error (" << result << ") during the initialization of the mutex attributes object.");
            break;
        }
    }
    pthread_mutexattr_settype(&attributes_, type == Recursive ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_NORMAL);
    result = pthread_mutex_init(&mutex_, &attributes_);
    if (result != 0) {
        switch (result) {
        case EAGAIN:
            ORV_FAIL("[EAGAIN] The system lacked the necessary resources (other than memory) to initialise another "
                     "mutex.");
            break;
        case ENOMEM:
            ORV_FAIL("[ENOMEM] Insufficient memory exists to initialize the mutex.");
            break;
        case EPERM:
            ORV_FAIL("[EPERM] The caller does not have the privilege to perform the operation.");
            break;
        case EBUSY:
            ORV_FAIL("[EBUSY] The implementation has detected an attempt to re-initialize the object referenced by "
                     "mutex, a previously initialized, but not yet destroyed, mutex.");
            break;
        case EINVAL:
            ORV_FAIL("[EINVAL] The value specified by attr is invalid.");
            break;
        default:
            ORV_FAIL("Unknown error (" << result << ") during the initialization of the mutex.");
            break;
        }
    }
}

Mutex::~Mutex()
{
    int result = pthread_mutex_destroy(&mutex_);
    if (result != 0) {
        switch (result) {
        case EBUSY:
            ORV_FAIL("[EBUSY] The implementation has detected an attempt to destroy the object referenced by mutex "
                     "while it is locked or referenced by another thread.");
            break;
        case EINVAL:
            ORV_FAIL("[EINVAL] The value specified by mutex is invalid.");
            break;
        default:
            ORV_FAIL("Unknown error (" << result << ") during the mutex destruction.");
            break;
        }
    }
    result = pthread_mutexattr_destroy(&attributes_);
    if (result != 0) {
        switch (result) {
        case EINVAL:
            ORV_FAIL("[EINVAL] The value specified by attr is invalid.");
            break;
        default:
            ORV_FAIL("Unknown error (" << result << ") during the mutex attributes destruction.");
            break;
        }
    }
}

namespace {

const char* const invalidLockText =
    "[EINVAL] Either The mutex wasn't properly initialized (during its construction) or the mutex was created "
    "with the protocol attribute having the value PTHREAD_PRIO_PROTECT and the calling thread's priority is "
    "higher than the mutex's current priority ceiling.";
const char* const recursionLimitText = "[EAGAIN] The maximum number of recursive locks for mutex has been exceeded.";

} // namespace

bool Mutex::lock(AbstractLogger* logger)
{
    const int result = pthread_mutex_lock(&mutex_);
    switch (result) {
    case 0:
        return true;
    case EINVAL:
        ORV_LOG_ERROR(logger, error::threadError, invalidLockText);
        break;
    case EAGAIN:
        ORV_LOG_ERROR(logger, error::threadError, recursionLimitText);
        break;
    case EDEADLK:
        ORV_LOG_ERROR(logger, error::threadError, "[EDEADLK] The current thread already owns the mutex.");
        break;
    default:
        ORV_LOG_ERROR(logger, error::threadError, "Unknown error (" << result << ") during the mutex lock.");
        break;
    }
    return false;
}

bool Mutex::trylock(AbstractLogger* logger)
{
    const int result = pthread_mutex_trylock(&mutex_);
    switch (result) {
    case 0:
        return true;
    case EINVAL:
        ORV_LOG_ERROR(logger, error::threadError, invalidLockText);
        break;
    case EBUSY:
        ORV_LOG_ERROR(logger, error::threadError, "[EBUSY] The mutex it already locked.");
        break;
    case EAGAIN:
        ORV_LOG_ERROR(logger, error::threadError, recursionLimitText);
        break;
    default:
        ORV_LOG_ERROR(logger, error::threadError, "Unknown error (" << result << ") during the mutex try lock.");
        break;
    }
    return false;
}

bool Mutex::unlock(AbstractLogger* logger)
{
    const int result = pthread_mutex_unlock(&mutex_);
    switch (result) {
    case 0:
        return true;
    case EINVAL:
        ORV_LOG_ERROR(logger, error::threadError,
                      "[EINVAL] The mutex wasn't properly initialized (during its construction).");
        break;
    case EAGAIN:
        ORV_LOG_ERROR(logger, error::threadError, recursionLimitText);
        break;
    case EPERM:
        ORV_LOG_ERROR(logger, error::threadError, "[EPERM] The current thread does not own the mutex.");
        break;
    default:
        ORV_LOG_ERROR(logger, error::threadError, "Unknown error (" << result << ") during the mutex unlock.");
        break;
    }
    return false;
}

} // namespace utils
} // namespace orv
