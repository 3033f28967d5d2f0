// Draws of a Random stream through its public call operators, one word per call as callers draw
// them, beside std::mt19937 drawing the same number of words in the same run. Both are timed in
// the thread's processor time, so that time lost to other processes on a shared machine counts
// for neither.

#include "ThreadClock.h"
#include <orv/utils/Random.h>

#include <benchmark/benchmark.h>

#include <ctime>
#include <random>

namespace {

using orv::bench::threadSeconds;

double secondsSince(double start)
{
    return threadSeconds() - start;
}

void report(benchmark::State& state, double seconds, double anchorSeconds)
{
    const double draws = static_cast<double>(state.iterations());
    state.SetItemsProcessed(state.iterations());
    state.counters["draws/s"] = draws / seconds;
    state.counters["mt19937_draws/s"] = draws / anchorSeconds;
    state.counters["x_mt19937"] = anchorSeconds / seconds;
}

void RandomDraw(benchmark::State& state)
{
    orv::utils::Random random(1234);
    unsigned int sum = 0;
    const double start = threadSeconds();
    for (auto _ : state) {
        sum += random();
    }
    const double seconds = secondsSince(start);
    benchmark::DoNotOptimize(sum);

    std::mt19937 anchor(1234);
    unsigned int anchorSum = 0;
    const double anchorStart = threadSeconds();
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        anchorSum += static_cast<unsigned int>(anchor());
    }
    const double anchorSeconds = secondsSince(anchorStart);
    benchmark::DoNotOptimize(anchorSum);
    report(state, seconds, anchorSeconds);
}

// Bounded draws by rejection beside the standard uniform distribution over mt19937.
void RandomBoundedDraw(benchmark::State& state)
{
    const unsigned int maximum = static_cast<unsigned int>(state.range(0));
    orv::utils::Random random(1234);
    unsigned int sum = 0;
    const double start = threadSeconds();
    for (auto _ : state) {
        sum += random(maximum);
    }
    const double seconds = secondsSince(start);
    benchmark::DoNotOptimize(sum);

    std::mt19937 anchor(1234);
    std::uniform_int_distribution<unsigned int> distribution(0, maximum);
    unsigned int anchorSum = 0;
    const double anchorStart = threadSeconds();
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        anchorSum += distribution(anchor);
    }
    const double anchorSeconds = secondsSince(anchorStart);
    benchmark::DoNotOptimize(anchorSum);
    report(state, seconds, anchorSeconds);
}

} // namespace

BENCHMARK(RandomDraw);
BENCHMARK(RandomBoundedDraw)->Arg(99)->Arg(0x80000000);
