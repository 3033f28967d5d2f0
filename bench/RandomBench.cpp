// Draws of a Random stream through its public call operators, one word per call as callers draw
// them, beside std::mt19937 drawing the same number of words in the same run.

#include <orv/utils/Random.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <random>

namespace {

using Clock = std::chrono::steady_clock;

double secondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
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
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        sum += random();
    }
    const double seconds = secondsSince(start);
    benchmark::DoNotOptimize(sum);

    std::mt19937 anchor(1234);
    unsigned int anchorSum = 0;
    const Clock::time_point anchorStart = Clock::now();
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
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        sum += random(maximum);
    }
    const double seconds = secondsSince(start);
    benchmark::DoNotOptimize(sum);

    std::mt19937 anchor(1234);
    std::uniform_int_distribution<unsigned int> distribution(0, maximum);
    unsigned int anchorSum = 0;
    const Clock::time_point anchorStart = Clock::now();
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
