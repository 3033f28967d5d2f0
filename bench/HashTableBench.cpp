// HashTable lookups of present keys in random order, beside std::unordered_map holding the same
// keys and probed in the same order within the same run.

#include <orv/utils/HashTable.h>

#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <random>
#include <unordered_map>
#include <vector>

namespace {

// Subject and anchor are timed in thread CPU time: on a shared machine, time spent preempted
// would otherwise land on whichever of the two ran then.
double cpuSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

void HashTableLookup(benchmark::State& state)
{
    const std::size_t count = static_cast<std::size_t>(state.range(0));
    std::mt19937_64 random(42);
    std::vector<unsigned long long> keys(count);
    orv::utils::HashTable<unsigned long long> table;
    std::unordered_map<unsigned long long, unsigned long long> map;
    for (std::size_t i = 0; i < count; ++i) {
        keys[i] = random(); // keys are hashes: spread over all 64 bits
        table.add(keys[i], i);
        map.emplace(keys[i], i);
    }
    std::shuffle(keys.begin(), keys.end(), random);

    std::size_t next = 0;
    unsigned long long sum = 0;
    const double start = cpuSeconds();
    for (auto _ : state) {
        sum += table.at(keys[next]);
        next = next + 1 == count ? 0 : next + 1;
    }
    const double seconds = cpuSeconds() - start;
    benchmark::DoNotOptimize(sum);

    next = 0;
    unsigned long long mapSum = 0;
    const double mapStart = cpuSeconds();
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        mapSum += map.find(keys[next])->second;
        next = next + 1 == count ? 0 : next + 1;
    }
    const double mapSeconds = cpuSeconds() - mapStart;
    benchmark::DoNotOptimize(mapSum);
    if (sum != mapSum) {
        state.SkipWithError("the two tables disagree");
        return;
    }

    const double lookups = static_cast<double>(state.iterations());
    state.counters["lookups/s"] = lookups / seconds;
    state.counters["unordered_map_lookups/s"] = lookups / mapSeconds;
    state.counters["x_unordered_map"] = mapSeconds / seconds;
    state.counters["buckets"] = table.getBucketCount();
}

} // namespace

BENCHMARK(HashTableLookup)->Arg(1000)->Arg(100000)->Arg(1000000);
