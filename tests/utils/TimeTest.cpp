#include "support/TestSupport.h"

#include <orv/utils/PerformanceTimer.h>
#include <orv/utils/Time.h>
#include <orv/utils/Timer.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

using orv::test::AssertionCapture;
using orv::test::Texts;
using orv::utils::Time;

TEST(Time, ConversionsCheckOverflowTheWayTheyAlwaysHave)
{
    AssertionCapture capture;
    Time time;
    time.setMilliseconds(1500);
    EXPECT_EQ(time.getNanoseconds(), 1500000000ULL);
    time.setMicroseconds(7);
    EXPECT_EQ(time.getNanoseconds(), 7000ULL);
    time.setTime(3, 2);
    EXPECT_EQ(time.getNanoseconds(), 1500000000ULL);
    EXPECT_TRUE(Time(-0.0).isZero());
    EXPECT_TRUE(capture.texts().empty());

    // Zero fails the "product above the argument" test and is stored all the same.
    time.setMilliseconds(0);
    time.setMicroseconds(0);
    EXPECT_TRUE(time.isZero());
    // A real overflow whose wrapped product is small is caught, and the product stored.
    const unsigned long long big = 18446744073709551ULL * 1000ULL;
    time.setMilliseconds(big);
    EXPECT_EQ(time.getNanoseconds(), big * 1000000ULL);
    // An overflow whose wrapped product lands above the argument passes unnoticed.
    time.setMilliseconds(20000000000000ULL);
    EXPECT_EQ(capture.texts(),
        (Texts { "Overflow happened when converting 0 milliseconds to nanosecond resolution.",
            "Overflow happened when converting 0 microseconds to nanosecond resolution.",
            "Overflow happened when converting " + std::to_string(big) + " milliseconds to nanosecond resolution." }));

    // Seconds refuse negative values, NaN and infinity.
    capture.clear();
    Time(-1.0);
    time.setTime(0, 0);
    time.setTime(1, 0);
    EXPECT_EQ(capture.texts(),
        (Texts { "Can't set a negative time.", "Can't set a negative time.", "Can't set a NaN value.",
            "Overflow happened when setting infseconds, the resulting value inf is too high in nanosecond "
            "resolution." }));
}

TEST(Time, AddWrapsSubSaturatesAndCoarserUnitsGoThroughFloatingPoint)
{
    Time a(10ULL), b(3ULL), result;
    result.setSub(a, b);
    EXPECT_EQ(result.getNanoseconds(), 7ULL);
    result.setSub(b, a);
    EXPECT_TRUE(result.isZero());
    result.setAdd(a, b);
    EXPECT_EQ(result, Time(13ULL));
    Time top(std::numeric_limits<unsigned long long>::max());
    top.add(Time(2ULL));
    EXPECT_EQ(top.getNanoseconds(), 1ULL);
    top.sub(a);
    EXPECT_TRUE(top.isZero());

    Time time(1999999ULL);
    EXPECT_EQ(time.getMilliseconds(), 1ULL);
    EXPECT_EQ(time.getMicroseconds(), 1999ULL);
    EXPECT_DOUBLE_EQ(time.getSeconds(), 0.001999999);
    // Above 2^53 the division loses the low digits.
    const unsigned long long large = (1ULL << 60) + 123456789ULL;
    EXPECT_EQ(Time(large).getMilliseconds(), static_cast<unsigned long long>(static_cast<double>(large) / 1000000.0));
    std::ostringstream text;
    text << Time(1.5);
    EXPECT_EQ(text.str(), "1.5s");
}

TEST(Timer, StateMachineOfStartStopAndLaps)
{
    orv::utils::Timer timer;
    EXPECT_FALSE(timer.isStarted());
    EXPECT_TRUE(timer.getTime().isZero());
    EXPECT_TRUE(timer.stop().isZero());
    EXPECT_TRUE(timer.start().isZero());
    EXPECT_TRUE(timer.isStarted());
    orv::utils::sleep(Time(0.002));
    const Time lap = timer.start();
    EXPECT_GE(lap.getMilliseconds(), 1ULL);
    EXPECT_TRUE(timer.isStarted());
    timer.stop();
    EXPECT_FALSE(timer.isStarted());
    EXPECT_TRUE(timer.getTime().isZero());

    orv::utils::PerformanceTimer precise;
    EXPECT_TRUE(precise.stop().isZero());
    EXPECT_TRUE(precise.start().isZero());
    orv::utils::sleep(Time(0.002));
    const Time elapsed = precise.getTime();
    EXPECT_GE(elapsed.getNanoseconds(), 1000000ULL);
    EXPECT_LT(elapsed.getNanoseconds(), 10000000000ULL);
    EXPECT_GE(precise.stop().getNanoseconds(), elapsed.getNanoseconds());
    EXPECT_FALSE(precise.isStarted());
}
