// MurmurHash64B throughput beside two anchors run in the same process on the same bytes: memcpy,
// the floor of touching the data once, and the standard library's string hash.

#include <orv/utils/details/MurmurHash.h>

#include <benchmark/benchmark.h>

#include <time.h>

#include <cstring>
#include <functional>
#include <string_view>
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

// Runs an anchor as many times as the subject ran, right after it.
template <typename Work>
double secondsFor(benchmark::IterationCount iterations, Work work)
{
    const double start = cpuSeconds();
    for (benchmark::IterationCount i = 0; i < iterations; ++i) {
        work();
    }
    return cpuSeconds() - start;
}

void MurmurHash64B(benchmark::State& state)
{
    const unsigned int size = static_cast<unsigned int>(state.range(0));
    std::vector<char> input(size), copy(size);
    for (unsigned int i = 0; i < size; ++i) {
        input[i] = static_cast<char>('a' + (i * 7 + i / 13) % 26);
    }

    // Each call sees the pointer as new and its bytes as changed, so nothing is hoisted.
    const auto hash = [&] {
        const char* data = input.data();
        benchmark::DoNotOptimize(data);
        benchmark::DoNotOptimize(orv::utils::details::murmurHash64B(data, size, 7687));
    };
    const auto copyBytes = [&] {
        std::memcpy(copy.data(), input.data(), size);
        benchmark::ClobberMemory();
    };
    const auto standardHash = [&] {
        std::string_view view(input.data(), size);
        benchmark::DoNotOptimize(view);
        benchmark::DoNotOptimize(std::hash<std::string_view>{}(view));
    };

    const double start = cpuSeconds();
    for (auto _ : state) {
        hash();
    }
    const double seconds = cpuSeconds() - start;
    const double memcpySeconds = secondsFor(state.iterations(), copyBytes);
    const double standardHashSeconds = secondsFor(state.iterations(), standardHash);

    const double bytes = static_cast<double>(state.iterations()) * size;
    state.SetBytesProcessed(static_cast<int64_t>(bytes));
    state.counters["GB/s"] = bytes / seconds / 1e9;
    state.counters["memcpy_GB/s"] = bytes / memcpySeconds / 1e9;
    state.counters["std_hash_GB/s"] = bytes / standardHashSeconds / 1e9;
    state.counters["x_memcpy"] = memcpySeconds / seconds;
    state.counters["x_std_hash"] = standardHashSeconds / seconds;
}

} // namespace

BENCHMARK(MurmurHash64B)->Arg(16)->Arg(64)->Arg(1 << 20);
