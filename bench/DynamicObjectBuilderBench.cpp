// Building a dynamic object from builder events, walking one with the iterator, and sending one to
// a builder that does nothing, on trees of about 1e3, 1e5 and 1e6 properties: groups of objects,
// each holding an array of small objects {v, w, s}. Rates are properties per second of processor
// time of this thread.

#include "ThreadClock.h"
#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/DynamicObjectBuilder.h>
#include <orv/utils/DynamicObjectIterator.h>

#include "NullBuilder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <string>

namespace {

using orv::bench::threadSeconds;

using orv::utils::AbstractObjectBuilder;
using orv::utils::DynamicObject;
using orv::utils::DynamicObjectBuilder;

/// The shape of a tree of about `count` properties, and the producer that sends it.
struct Shape {
    explicit Shape(std::size_t count)
        : groups(std::max<std::size_t>(1, count / 1000))
        , elements(std::max<std::size_t>(1, count / groups / 4))
    {
    }

    /// Each group and its array, each element and its three members.
    std::size_t properties() const { return groups * 2 + groups * elements * 4; }

    bool send(AbstractObjectBuilder& builder) const
    {
        char key[32];
        if (!builder.begin() || !builder.beginObject()) {
            return false;
        }
        for (std::size_t g = 0; g < groups; ++g) {
            const int length = std::snprintf(key, sizeof key, "group%zu", g);
            if (!builder.objectChild(key, static_cast<unsigned int>(length)) || !builder.beginObject()
                || !builder.objectChild("items", 5) || !builder.beginArray()) {
                return false;
            }
            for (std::size_t e = 0; e < elements; ++e) {
                const bool sent = builder.arrayChild() && builder.beginObject() && builder.objectChild("v", 1)
                    && builder.integer(static_cast<long long>(e)) && builder.objectChild("w", 1)
                    && builder.real(0.5 * static_cast<double>(e)) && builder.objectChild("s", 1)
                    && builder.string("label", 5) && builder.endObject();
                if (!sent) {
                    return false;
                }
            }
            if (!builder.endArray() || !builder.endObject()) {
                return false;
            }
        }
        return builder.endObject() && builder.end();
    }

    std::size_t groups;
    std::size_t elements;
};

using orv::bench::NullBuilder;

void DynamicObjectBuild(benchmark::State& state)
{
    const Shape shape(static_cast<std::size_t>(state.range(0)));
    DynamicObject object;
    double seconds = 0.0;
    for (auto _ : state) {
        object.clear();
        const double start = threadSeconds();
        DynamicObjectBuilder builder(object, 0);
        const bool built = shape.send(builder);
        seconds += threadSeconds() - start;
        if (!built) {
            state.SkipWithError("the builder refused an event");
            return;
        }
    }
    if (object.countChildren("group0.items") != shape.elements) {
        state.SkipWithError("the tree is incomplete");
        return;
    }
    const double properties = static_cast<double>(shape.properties()) * static_cast<double>(state.iterations());
    state.counters["properties"] = static_cast<double>(shape.properties());
    state.counters["Mproperties/s"] = properties / seconds / 1e6;
}

void DynamicObjectIteratorWalk(benchmark::State& state)
{
    const Shape shape(static_cast<std::size_t>(state.range(0)));
    DynamicObject object;
    DynamicObjectBuilder builder(object, 0);
    shape.send(builder);
    std::size_t visited = 0;
    const double start = threadSeconds();
    for (auto _ : state) {
        visited = 0;
        for (orv::utils::DynamicObjectIterator walk(object); !walk.next().end();) {
            benchmark::DoNotOptimize(walk.getProperty());
            ++visited;
        }
    }
    const double seconds = threadSeconds() - start;
    if (visited != shape.properties()) {
        state.SkipWithError("the walk missed properties");
        return;
    }
    state.counters["properties"] = static_cast<double>(visited);
    state.counters["Mproperties/s"]
        = static_cast<double>(visited) * static_cast<double>(state.iterations()) / seconds / 1e6;
}

void DynamicObjectVisitDiscarding(benchmark::State& state)
{
    const Shape shape(static_cast<std::size_t>(state.range(0)));
    DynamicObject object;
    DynamicObjectBuilder builder(object, 0);
    shape.send(builder);
    NullBuilder discarding;
    const double start = threadSeconds();
    for (auto _ : state) {
        if (!object.visit(discarding)) {
            state.SkipWithError("the walk stopped");
            return;
        }
    }
    const double seconds = threadSeconds() - start;
    state.counters["properties"] = static_cast<double>(shape.properties());
    state.counters["Mproperties/s"]
        = static_cast<double>(shape.properties()) * static_cast<double>(state.iterations()) / seconds / 1e6;
}

} // namespace

BENCHMARK(DynamicObjectBuild)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(DynamicObjectIteratorWalk)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
BENCHMARK(DynamicObjectVisitDiscarding)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
