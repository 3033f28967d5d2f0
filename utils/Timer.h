#ifndef ORV_UTILS_TIMER_H
#define ORV_UTILS_TIMER_H

#include <orv/utils/Time.h>

namespace orv {
namespace utils {

/// Measures wall time at millisecond grain. A clock set backwards gives zero, not a wrapped value.
class ORV_UTILS_API Timer {
public:
    Timer();

    /// Starts a measurement, or a new lap: returns the elapsed time of a running one, else zero.
    Time start();
    /// Returns the elapsed time of a running measurement (else zero) and stops it.
    Time stop();
    Time getTime() const;
    bool isStarted() const { return started_; }

private:
    struct WallClock {
        long long seconds;
        unsigned short milliseconds;
    };

    static WallClock now();
    Time elapsed() const;

    bool started_;
    WallClock startTime_;
};

} // namespace utils
} // namespace orv

#endif
