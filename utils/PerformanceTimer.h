#ifndef ORV_UTILS_PERFORMANCETIMER_H
#define ORV_UTILS_PERFORMANCETIMER_H

#include <orv/utils/ScopedPtr.h>
#include <orv/utils/Time.h>

namespace orv {
namespace utils {

namespace details {
struct PerformanceCounter;
}

/// Measures with the high-resolution counter. Intervals above about 1.8e10 ticks wrap, because
/// ticks are multiplied by 1e9 in 64 bits before the division by the frequency.
class ORV_UTILS_API PerformanceTimer {
public:
    PerformanceTimer();
    ~PerformanceTimer();

    Time start();
    Time stop();
    Time getTime() const;
    bool isStarted() const { return started_; }

    /// The counter's frequency in ticks per second.
    static unsigned long long getFrequency();

    PerformanceTimer(const PerformanceTimer&) = delete;
    PerformanceTimer& operator=(const PerformanceTimer&) = delete;

private:
    Time elapsed() const;

    ScopedPtr<details::PerformanceCounter> counter_;
    bool started_;
};

} // namespace utils
} // namespace orv

#endif
