// saveBlob and loadBlob through a DynamicBufferInputOutput against memcpy of the same bytes, on
// trees of about 1e3, 1e5 and 1e6 properties. Times are processor time of this thread; the
// x_memcpy counters are memcpy's time over ours, so 0.5 means half memcpy's speed.

#include "ThreadClock.h"
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>
#include <string>
#include <vector>

namespace {

using orv::bench::threadSeconds;

using orv::utils::DynamicBufferInputOutput;
using orv::utils::DynamicObject;

/// About `count` properties: groups holding arrays of objects {v, w}.
void fill(DynamicObject& object, std::size_t count)
{
    const std::size_t groups = std::max<std::size_t>(1, count / 1000);
    const unsigned int elements = static_cast<unsigned int>(std::max<std::size_t>(1, count / groups / 3));
    for (std::size_t g = 0; g < groups; ++g) {
        const unsigned int group = object.addChild(object.getRoot(), ("g" + std::to_string(g)).c_str());
        const unsigned int items = object.addChild(group, "items");
        object.resize(items, elements);
        for (unsigned int e = 0; e < elements; ++e) {
            const unsigned int element = object.getChild(items, e);
            object.setInt(object.addChild(element, "v", 1), e);
            object.setReal(object.addChild(element, "w", 1), 0.5);
        }
    }
}

/// memcpy of `bytes` bytes, `iterations` times, in seconds.
double memcpySeconds(std::size_t bytes, benchmark::IterationCount iterations)
{
    std::vector<char> source(bytes, 1);
    std::vector<char> destination(bytes);
    const double start = threadSeconds();
    for (benchmark::IterationCount i = 0; i < iterations; ++i) {
        std::memcpy(destination.data(), source.data(), bytes);
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    return threadSeconds() - start;
}

void report(benchmark::State& state, std::size_t bytes, double seconds)
{
    const double copySeconds = memcpySeconds(bytes, state.iterations());
    const double total = static_cast<double>(bytes) * static_cast<double>(state.iterations());
    state.counters["bytes"] = static_cast<double>(bytes);
    state.counters["MB/s"] = total / seconds / 1e6;
    state.counters["memcpy_MB/s"] = total / copySeconds / 1e6;
    state.counters["x_memcpy"] = copySeconds / seconds;
}

void DynamicObjectSaveBlob(benchmark::State& state)
{
    DynamicObject object;
    fill(object, static_cast<std::size_t>(state.range(0)));
    DynamicBufferInputOutput buffer("blob");
    const double start = threadSeconds();
    for (auto _ : state) {
        // The buffer keeps its memory, as a caller saving again and again would.
        buffer.clear();
        if (!object.saveBlob(buffer, nullptr)) {
            state.SkipWithError("the save failed");
            return;
        }
    }
    report(state, buffer.size(), threadSeconds() - start);
}

void DynamicObjectLoadBlob(benchmark::State& state)
{
    DynamicObject source;
    fill(source, static_cast<std::size_t>(state.range(0)));
    DynamicBufferInputOutput blobBuffer("blob");
    source.saveBlob(blobBuffer, nullptr);
    const std::size_t blobSize = blobBuffer.size();
    // Loads are timed in batches over streams filled beforehand: refilling a stream is not the
    // load's work, and a small load is no longer than the reading of the clock around it. The
    // streams are saved again rather than copied from a kept image, which would hold the cache
    // with one more copy of the bytes than the load needs.
    const std::size_t batch = std::max<std::size_t>(1, (std::size_t(4) << 20) / blobSize);
    std::vector<std::unique_ptr<DynamicBufferInputOutput>> streams;
    for (std::size_t i = 0; i < batch; ++i) {
        streams.emplace_back(new DynamicBufferInputOutput("blob"));
    }
    const auto refill = [&]() {
        for (const auto& stream : streams) {
            stream->clear();
            source.saveBlob(*stream, nullptr);
        }
    };
    // memcpy of the same bytes from the same freshly saved streams, into a destination of its own
    // that it last wrote an iteration ago, as the load finds its blocks: both start from the cache
    // state the refill leaves.
    std::vector<char> destination(blobSize);
    DynamicObject target;
    double seconds = 0.0;
    double copySeconds = 0.0;
    for (auto _ : state) {
        refill();
        bool loaded = true;
        double start = threadSeconds();
        for (const auto& stream : streams) {
            loaded = target.loadBlob(*stream, nullptr) && loaded;
        }
        seconds += threadSeconds() - start;
        if (!loaded) {
            state.SkipWithError("the load failed");
            return;
        }
        refill();
        start = threadSeconds();
        for (const auto& stream : streams) {
            std::memcpy(destination.data(), stream->data(), blobSize);
            benchmark::DoNotOptimize(destination.data());
            benchmark::ClobberMemory();
        }
        copySeconds += threadSeconds() - start;
    }
    if (target.getInt("g0.items[0].v", -1) != 0) {
        state.SkipWithError("the loaded object differs");
        return;
    }
    const double total = static_cast<double>(blobSize * batch) * static_cast<double>(state.iterations());
    state.counters["bytes"] = static_cast<double>(blobSize);
    state.counters["MB/s"] = total / seconds / 1e6;
    state.counters["memcpy_MB/s"] = total / copySeconds / 1e6;
    state.counters["x_memcpy"] = copySeconds / seconds;
}

} // namespace

BENCHMARK(DynamicObjectSaveBlob)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
BENCHMARK(DynamicObjectLoadBlob)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
