// DynamicObject lookups and copies, each beside its anchors run on the same data in the same run:
// path lookups against a flat std::unordered_map keyed by the full path and against nlohmann::json
// navigation of the same tree; child lookups by handle likewise; object copies against memcpy of
// the same bytes. The x_... counters are the anchor's time over ours: above 1 means faster.

#include <orv/allocator/Allocator.h>
#include <orv/utils/DynamicObject.h>

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <ctime>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace {

using orv::utils::DynamicObject;

/// Processor time of this thread, so that other processes on a shared machine count for neither side.
struct Clock {
    using time_point = double;
    static double now()
    {
        timespec time;
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
    }
};

double secondsSince(Clock::time_point start)
{
    return Clock::now() - start;
}

/// nlohmann navigation driven by the same path text: name steps looked up as string views.
const nlohmann::json& navigate(const nlohmann::json& root, const std::string& path)
{
    const nlohmann::json* node = &root;
    std::size_t i = 0;
    while (i < path.size()) {
        if (path[i] == '.') {
            ++i;
        }
        if (path[i] == '[') {
            std::size_t index = 0;
            for (++i; path[i] != ']'; ++i) {
                index = index * 10 + static_cast<std::size_t>(path[i] - '0');
            }
            ++i;
            node = &node->at(index);
        } else {
            const std::size_t end = path.find_first_of(".[", i);
            const std::size_t stop = end == std::string::npos ? path.size() : end;
            node = &node->at(std::string_view(path.data() + i, stop - i));
            i = stop;
        }
    }
    return *node;
}

/// One leaf of the tree `g<i>.items[<j>].v`, with its steps for the navigating anchors.
struct Leaf {
    std::string path;
    std::string group;
    unsigned int element;
    long long value;
};

/// About `count` properties: groups of objects holding an array of small objects {v, w}.
struct Tree {
    explicit Tree(std::size_t count)
    {
        const std::size_t groups = std::max<std::size_t>(1, count / 1000);
        const std::size_t elements = std::max<std::size_t>(1, count / groups / 3);
        for (std::size_t g = 0; g < groups; ++g) {
            const std::string group = "g" + std::to_string(g);
            nlohmann::json& items = json[group]["items"];
            const unsigned int itemsHandle = object.addProperty((group + ".items").c_str());
            object.resize(itemsHandle, static_cast<unsigned int>(elements));
            for (std::size_t e = 0; e < elements; ++e) {
                const long long value = static_cast<long long>(g * elements + e);
                const unsigned int element = object.getChild(itemsHandle, static_cast<unsigned int>(e));
                object.setInt(object.addChild(element, "v", 1), value);
                object.setReal(object.addChild(element, "w", 1), 0.5);
                const std::string path = group + ".items[" + std::to_string(e) + "].v";
                flat.emplace(path, value);
                flat.emplace(group + ".items[" + std::to_string(e) + "].w", 0);
                items.push_back({{"v", value}, {"w", 0.5}});
                leaves.push_back(Leaf{path, group, static_cast<unsigned int>(e), value});
            }
        }
        std::shuffle(leaves.begin(), leaves.end(), std::mt19937(7));
        // Each group and its array, each element and its two members.
        properties = groups * 2 + groups * elements * 3;
    }

    std::size_t properties = 0;

    DynamicObject object;
    std::unordered_map<std::string, long long> flat;
    nlohmann::json json;
    std::vector<Leaf> leaves;
};

void DynamicObjectPathLookup(benchmark::State& state)
{
    // What the object holds in the library's allocator: its nodes, and everything kept beside them.
    const orv::allocator::Allocator& memory = orv::allocator::Allocator::instance();
    const std::size_t bytesBefore = memory.getLiveByteCount();
    const Tree tree(static_cast<std::size_t>(state.range(0)));
    const double objectBytes = static_cast<double>(memory.getLiveByteCount() - bytesBefore);
    const std::vector<Leaf>& leaves = tree.leaves;
    const DynamicObject& object = tree.object;

    std::size_t next = 0;
    long long sum = 0;
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        const Leaf& leaf = leaves[next];
        sum += object.getInt(object.getProperty(leaf.path.data(), static_cast<unsigned int>(leaf.path.size())), 0);
        next = next + 1 == leaves.size() ? 0 : next + 1;
    }
    const double seconds = secondsSince(start);

    const benchmark::IterationCount iterations = state.iterations();
    next = 0;
    long long flatSum = 0;
    const Clock::time_point flatStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < iterations; ++i) {
        flatSum += tree.flat.find(leaves[next].path)->second;
        next = next + 1 == leaves.size() ? 0 : next + 1;
    }
    const double flatSeconds = secondsSince(flatStart);

    next = 0;
    long long jsonSum = 0;
    const Clock::time_point jsonStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < iterations; ++i) {
        const Leaf& leaf = leaves[next];
        jsonSum += tree.json.at(leaf.group).at("items").at(leaf.element).at("v").get<long long>();
        next = next + 1 == leaves.size() ? 0 : next + 1;
    }
    const double jsonSeconds = secondsSince(jsonStart);

    next = 0;
    long long textSum = 0;
    const Clock::time_point textStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < iterations; ++i) {
        textSum += navigate(tree.json, leaves[next].path).get<long long>();
        next = next + 1 == leaves.size() ? 0 : next + 1;
    }
    const double textSeconds = secondsSince(textStart);
    if (sum != flatSum || sum != jsonSum || sum != textSum) {
        state.SkipWithError("the lookups disagree");
        return;
    }
    state.counters["properties"] = static_cast<double>(tree.properties);
    state.counters["object_MB"] = objectBytes / 1e6;
    state.counters["lookups/s"] = static_cast<double>(iterations) / seconds;
    state.counters["x_unordered_map"] = flatSeconds / seconds;
    // Navigation from steps split in advance, and from the path text as we get it.
    state.counters["x_nlohmann_steps"] = jsonSeconds / seconds;
    state.counters["x_nlohmann_text"] = textSeconds / seconds;
}

void DynamicObjectChildLookup(benchmark::State& state)
{
    const Tree tree(static_cast<std::size_t>(state.range(0)));
    const std::vector<Leaf>& leaves = tree.leaves;
    const DynamicObject& object = tree.object;
    // Handles of each leaf's array, and the nlohmann nodes of the same arrays: both sides start
    // from the parent and take two steps, an index and a key.
    std::vector<unsigned int> parents;
    std::vector<const nlohmann::json*> jsonParents;
    for (const Leaf& leaf : leaves) {
        parents.push_back(object.getProperty((leaf.group + ".items").c_str()));
        jsonParents.push_back(&tree.json.at(leaf.group).at("items"));
    }

    std::size_t next = 0;
    long long sum = 0;
    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        const unsigned int element = object.getChild(parents[next], leaves[next].element);
        sum += object.getInt(object.getChild(element, "v", 1), 0);
        next = next + 1 == leaves.size() ? 0 : next + 1;
    }
    const double seconds = secondsSince(start);

    const benchmark::IterationCount iterations = state.iterations();
    next = 0;
    long long flatSum = 0;
    const Clock::time_point flatStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < iterations; ++i) {
        flatSum += tree.flat.find(leaves[next].path)->second;
        next = next + 1 == leaves.size() ? 0 : next + 1;
    }
    const double flatSeconds = secondsSince(flatStart);

    next = 0;
    long long jsonSum = 0;
    const Clock::time_point jsonStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < iterations; ++i) {
        jsonSum += jsonParents[next]->at(leaves[next].element).at("v").get<long long>();
        next = next + 1 == leaves.size() ? 0 : next + 1;
    }
    const double jsonSeconds = secondsSince(jsonStart);
    if (sum != flatSum || sum != jsonSum) {
        state.SkipWithError("the lookups disagree");
        return;
    }
    state.counters["lookups/s"] = static_cast<double>(iterations) / seconds;
    state.counters["x_unordered_map"] = flatSeconds / seconds;
    state.counters["x_nlohmann"] = jsonSeconds / seconds;
}

void DynamicObjectCopy(benchmark::State& state)
{
    // Numbers only, so that the string table is empty and the copy is the copy of the blocks.
    const orv::allocator::Allocator& memory = orv::allocator::Allocator::instance();
    const std::size_t bytesBefore = memory.getLiveByteCount();
    const Tree tree(static_cast<std::size_t>(state.range(0)));
    const std::size_t blockBytes = DynamicObject::defaultBlockSize * sizeof(DynamicObject::Node);
    DynamicObject target;
    target = tree.object;
    const std::size_t bytesAfter = memory.getLiveByteCount();
    // The blocks of the source and of the target, less everything else the tree holds.
    const std::size_t blocks = (bytesAfter - bytesBefore) / blockBytes / 2;
    const unsigned int probe = tree.object.getProperty(tree.leaves[0].path.c_str());

    const Clock::time_point start = Clock::now();
    for (auto _ : state) {
        target = tree.object;
        benchmark::DoNotOptimize(target.getInt(probe, 0));
    }
    const double seconds = secondsSince(start);
    if (target.getInt(probe, 0) != tree.leaves[0].value) {
        state.SkipWithError("the copy differs");
        return;
    }

    std::vector<char> source(blocks * blockBytes, 1);
    std::vector<char> destination(blocks * blockBytes);
    const Clock::time_point copyStart = Clock::now();
    for (benchmark::IterationCount i = 0; i < state.iterations(); ++i) {
        std::memcpy(destination.data(), source.data(), source.size());
        benchmark::DoNotOptimize(destination.data());
        benchmark::ClobberMemory();
    }
    const double copySeconds = secondsSince(copyStart);
    const double bytes = static_cast<double>(state.iterations()) * static_cast<double>(source.size());
    state.counters["blocks"] = static_cast<double>(blocks);
    state.counters["GB/s"] = bytes / seconds / 1e9;
    state.counters["memcpy_GB/s"] = bytes / copySeconds / 1e9;
    state.counters["x_memcpy"] = copySeconds / seconds;
}

} // namespace

BENCHMARK(DynamicObjectPathLookup)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kNanosecond);
BENCHMARK(DynamicObjectChildLookup)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kNanosecond);
BENCHMARK(DynamicObjectCopy)->Arg(1000)->Arg(100000)->Arg(1000000)->Unit(benchmark::kMicrosecond);
