#include <orv/utils/Time.h>

#include <orv/utils/Assertion.h>

#include <cerrno>
#include <limits>
#include <ostream>
#include <time.h>

namespace orv {
namespace utils {

Time::Time(double seconds) : nanoseconds_(0)
{
    setSeconds(seconds);
}

void Time::setMicroseconds(unsigned long long microseconds)
{
    const unsigned long long product = microseconds * 1000ULL;
    // Kept as it has always been: 0 fails this test, and a wrapped product above the argument passes.
    ORV_CHECK(product > microseconds,
              "Overflow happened when converting " << microseconds << " microseconds to nanosecond resolution.");
    nanoseconds_ = product;
}

void Time::setMilliseconds(unsigned long long milliseconds)
{
    const unsigned long long product = milliseconds * 1000000ULL;
    ORV_CHECK(product > milliseconds,
              "Overflow happened when converting " << milliseconds << " milliseconds to nanosecond resolution.");
    nanoseconds_ = product;
}

void Time::setSeconds(double seconds)
{
    // An unordered comparison answers no, so NaN takes this assertion before its own.
    ORV_CHECK(0.0 <= seconds, "Can't set a negative time.");
    ORV_CHECK(seconds == seconds, "Can't set a NaN value.");
    const double product = seconds * 1000000000.0;
    ORV_CHECK(!(static_cast<double>(std::numeric_limits<unsigned long long>::max()) < product),
              "Overflow happened when setting " << seconds << "seconds, the resulting value " << product
                                                << " is too high in nanosecond resolution.");
    // A returning hook leaves a value outside the range; the conversion must not be undefined.
    if (product >= 0.0 && product < 18446744073709551616.0) {
        nanoseconds_ = static_cast<unsigned long long>(product);
    } else if (product >= 18446744073709551616.0) {
        nanoseconds_ = std::numeric_limits<unsigned long long>::max();
    } else {
        nanoseconds_ = 0;
    }
}

void Time::setTime(unsigned long long count, unsigned long long frequency)
{
    setSeconds(static_cast<double>(count) / static_cast<double>(frequency));
}

double Time::getSeconds() const
{
    return static_cast<double>(nanoseconds_) / 1000000000.0;
}

unsigned long long Time::getMilliseconds() const
{
    return static_cast<unsigned long long>(static_cast<double>(nanoseconds_) / 1000000.0);
}

unsigned long long Time::getMicroseconds() const
{
    const double microseconds = static_cast<double>(nanoseconds_) / 1000.0;
    // Near the top of the range the division rounds to 2^64, which does not convert.
    if (microseconds >= 18446744073709551616.0) {
        return std::numeric_limits<unsigned long long>::max();
    }
    return static_cast<unsigned long long>(microseconds);
}

void Time::add(const Time& other)
{
    nanoseconds_ += other.nanoseconds_;
}

void Time::setAdd(const Time& a, const Time& b)
{
    nanoseconds_ = a.nanoseconds_ + b.nanoseconds_;
}

void Time::sub(const Time& other)
{
    nanoseconds_ = other.nanoseconds_ >= nanoseconds_ ? 0 : nanoseconds_ - other.nanoseconds_;
}

void Time::setSub(const Time& a, const Time& b)
{
    nanoseconds_ = b.nanoseconds_ >= a.nanoseconds_ ? 0 : a.nanoseconds_ - b.nanoseconds_;
}

std::ostream& operator<<(std::ostream& stream, const Time& time)
{
    return stream << time.getSeconds() << "s";
}

void sleep(const Time& time)
{
    const unsigned long long milliseconds = time.getMilliseconds();
    timespec request;
    request.tv_sec = static_cast<time_t>(milliseconds / 1000ULL);
    request.tv_nsec = static_cast<long>((milliseconds % 1000ULL) * 1000000ULL);
    while (nanosleep(&request, &request) != 0 && errno == EINTR) {
    }
}

} // namespace utils
} // namespace orv
