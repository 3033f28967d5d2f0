#ifndef ORV_UTILS_TIME_H
#define ORV_UTILS_TIME_H

#include <orv/utils/Export.h>

#include <iosfwd>

namespace orv {
namespace utils {

/// A duration: an unsigned count of nanoseconds (up to about 584 years), never negative.
class ORV_UTILS_API Time {
public:
    Time() : nanoseconds_(0) {}
    explicit Time(unsigned long long nanoseconds) : nanoseconds_(nanoseconds) {}
    explicit Time(double seconds);

    void setToZero() { nanoseconds_ = 0; }
    bool isZero() const { return nanoseconds_ == 0; }

    void setNanoseconds(unsigned long long nanoseconds) { nanoseconds_ = nanoseconds; }
    unsigned long long getNanoseconds() const { return nanoseconds_; }
    /// Overflow-checked; note that 0 counts as an overflow (the product is not above the argument).
    void setMicroseconds(unsigned long long microseconds);
    void setMilliseconds(unsigned long long milliseconds);
    void setSeconds(double seconds);
    /// `count / frequency` seconds, computed in double.
    void setTime(unsigned long long count, unsigned long long frequency);

    double getSeconds() const;
    unsigned long long getMilliseconds() const;
    unsigned long long getMicroseconds() const;

    /// Wraps silently.
    void add(const Time& other);
    void setAdd(const Time& a, const Time& b);
    /// Saturates at zero.
    void sub(const Time& other);
    void setSub(const Time& a, const Time& b);

    bool operator==(const Time& other) const { return nanoseconds_ == other.nanoseconds_; }
    bool operator!=(const Time& other) const { return nanoseconds_ != other.nanoseconds_; }

private:
    unsigned long long nanoseconds_;
};

/// Seconds as the stream prints a double, then "s".
ORV_UTILS_API std::ostream& operator<<(std::ostream& stream, const Time& time);

/// Suspends the calling thread for the time, in whole milliseconds (less than one sleeps 0 ms).
ORV_UTILS_API void sleep(const Time& time);

} // namespace utils
} // namespace orv

#endif
