#include <orv/utils/ScopedMutex.h>

#include <orv/utils/Assertion.h>
#include <orv/utils/Mutex.h>

namespace orv {
namespace utils {

ScopedMutex::ScopedMutex(Mutex& mutex) : mutex_(mutex)
{
    // The logger is null, so "see log" finds nothing there; the sentence is kept as it is.
    ORV_CHECK(mutex_.lock(nullptr), "Failed to lock mutex, see log for details.");
}

ScopedMutex::~ScopedMutex()
{
    ORV_CHECK(mutex_.unlock(nullptr), "Failed to unlock mutex, see log for details.");
}

} // namespace utils
} // namespace orv
