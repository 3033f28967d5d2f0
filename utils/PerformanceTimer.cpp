#include <orv/utils/PerformanceTimer.h>

#include <orv/utils/Assertion.h>

#include <time.h>

namespace orv {
namespace utils {
namespace details {

struct PerformanceCounter {
    unsigned long long start;
    unsigned long long frequency;
};

} // namespace details

namespace {

// The counter ticks every 100 ns, so that the 64-bit product of ticks and 1e9 holds for about
// half an hour of measurement, as it does on the hosts with a 10 MHz performance counter.
constexpr unsigned long long counterFrequency = 10000000ULL;

bool queryFrequency(unsigned long long& frequency)
{
    frequency = counterFrequency;
    return true;
}

bool queryCounter(unsigned long long& counter)
{
    timespec clock;
    if (clock_gettime(CLOCK_MONOTONIC, &clock) != 0) {
        return false;
    }
    counter = static_cast<unsigned long long>(clock.tv_sec) * counterFrequency +
              static_cast<unsigned long long>(clock.tv_nsec) / 100ULL;
    return true;
}

} // namespace

PerformanceTimer::PerformanceTimer()
    : counter_(ORV_NEW(details::PerformanceCounter)()),
      started_(false)
{
}

PerformanceTimer::~PerformanceTimer() = default;

unsigned long long PerformanceTimer::getFrequency()
{
    return counterFrequency;
}

Time PerformanceTimer::elapsed() const
{
    unsigned long long now = 0;
    ORV_CHECK(queryCounter(now), "Unable to retrieve the performance clock counter.");
    if (counter_->frequency == 0) {
        // Only reachable after a failed frequency query with a returning hook.
        return Time();
    }
    return Time((now - counter_->start) * 1000000000ULL / counter_->frequency);
}

Time PerformanceTimer::start()
{
    Time result;
    if (started_) {
        result = elapsed();
    }
    ORV_CHECK(queryFrequency(counter_->frequency), "Unable to retrieve the performance clock frequency.");
    ORV_CHECK(queryCounter(counter_->start), "Unable to retrieve the performance clock counter.");
    started_ = true;
    return result;
}

Time PerformanceTimer::stop()
{
    if (!started_) {
        return Time();
    }
    const Time result = elapsed();
    started_ = false;
    return result;
}

Time PerformanceTimer::getTime() const
{
    return started_ ? elapsed() : Time();
}

} // namespace utils
} // namespace orv
