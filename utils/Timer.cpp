#include <orv/utils/Timer.h>

#include <time.h>

namespace orv {
namespace utils {
namespace {

Time toTime(long long seconds, unsigned short milliseconds)
{
    Time result;
    result.setMilliseconds(static_cast<unsigned long long>(seconds) * 1000ULL + milliseconds);
    return result;
}

} // namespace

Timer::Timer() : started_(false), startTime_{0, 0} {}

Timer::WallClock Timer::now()
{
    timespec clock;
    clock_gettime(CLOCK_REALTIME, &clock);
    return WallClock{static_cast<long long>(clock.tv_sec), static_cast<unsigned short>(clock.tv_nsec / 1000000L)};
}

Time Timer::elapsed() const
{
    const WallClock current = now();
    Time result = toTime(current.seconds, current.milliseconds);
    result.sub(toTime(startTime_.seconds, startTime_.milliseconds));
    return result;
}

Time Timer::start()
{
    Time result;
    if (started_) {
        result = elapsed();
    }
    startTime_ = now();
    started_ = true;
    return result;
}

Time Timer::stop()
{
    if (!started_) {
        return Time();
    }
    const Time result = elapsed();
    started_ = false;
    return result;
}

Time Timer::getTime() const
{
    return started_ ? elapsed() : Time();
}

} // namespace utils
} // namespace orv
