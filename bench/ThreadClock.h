#ifndef ORV_BENCH_THREADCLOCK_H
#define ORV_BENCH_THREADCLOCK_H

#include <ctime>

namespace orv {
namespace bench {

/// CPU time of the calling thread in seconds: the ratios against anchors are taken from it, so
/// that other work on a shared machine counts for neither side.
inline double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

} // namespace bench
} // namespace orv

#endif
