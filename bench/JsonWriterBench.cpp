// A dynamic object written as JSON text, beside its anchors writing the same document in the same
// run: the generator the library writes through, driven by hand from a plain in-memory tree into
// its own growing buffer (integers through its integer call, reals through its double call, as a
// plain user of it writes them), and a second library's writer over its own DOM. Each iteration
// runs every contender once, in turn, and each is timed in the thread's processor time, so that
// time lost to other processes on a shared machine counts for none of them. Every contender's
// output buffer starts empty in each iteration and is released inside its timing.
//
// MB/s counts each contender's own output text. The x_... counters are the anchor's time over
// ours for the same document (above 1 means ours is faster); ours and the generator write texts
// of the same length, the DOM writer's reals are shorter.
//
// The generator is reached through the loader because the library links it privately: the
// symbols are already in the process, but not on the benchmark's link line.

#include "ThreadClock.h"
#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicBufferInputOutput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/JsonDeserializer.h>
#include <orv/utils/JsonSerializer.h>

#include "JsonDocuments.h"

#include <benchmark/benchmark.h>
#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
#include <yajl/yajl_gen.h>

#include <dlfcn.h>

#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>
#include <vector>

namespace {

using orv::bench::threadSeconds;

struct RawGenerator {
    decltype(&yajl_gen_alloc) alloc;
    decltype(&yajl_gen_free) free;
    decltype(&yajl_gen_get_buf) getBuffer;
    decltype(&yajl_gen_null) null;
    decltype(&yajl_gen_bool) boolean;
    decltype(&yajl_gen_integer) integer;
    decltype(&yajl_gen_double) real;
    decltype(&yajl_gen_string) string;
    decltype(&yajl_gen_map_open) mapOpen;
    decltype(&yajl_gen_map_close) mapClose;
    decltype(&yajl_gen_array_open) arrayOpen;
    decltype(&yajl_gen_array_close) arrayClose;
};

template <typename Function>
Function symbol(void* library, const char* name)
{
    void* address = dlsym(library, name);
    if (address == nullptr) {
        std::fprintf(stderr, "The JSON generator lacks %s\n", name);
        std::abort();
    }
    return reinterpret_cast<Function>(address);
}

const RawGenerator& rawGenerator()
{
    static const RawGenerator generator = [] {
        void* library = dlopen("libyajl.so.2", RTLD_NOW);
        if (library == nullptr) {
            std::fprintf(stderr, "The JSON generator library is not loadable: %s\n", dlerror());
            std::abort();
        }
        return RawGenerator {
            symbol<decltype(&yajl_gen_alloc)>(library, "yajl_gen_alloc"),
            symbol<decltype(&yajl_gen_free)>(library, "yajl_gen_free"),
            symbol<decltype(&yajl_gen_get_buf)>(library, "yajl_gen_get_buf"),
            symbol<decltype(&yajl_gen_null)>(library, "yajl_gen_null"),
            symbol<decltype(&yajl_gen_bool)>(library, "yajl_gen_bool"),
            symbol<decltype(&yajl_gen_integer)>(library, "yajl_gen_integer"),
            symbol<decltype(&yajl_gen_double)>(library, "yajl_gen_double"),
            symbol<decltype(&yajl_gen_string)>(library, "yajl_gen_string"),
            symbol<decltype(&yajl_gen_map_open)>(library, "yajl_gen_map_open"),
            symbol<decltype(&yajl_gen_map_close)>(library, "yajl_gen_map_close"),
            symbol<decltype(&yajl_gen_array_open)>(library, "yajl_gen_array_open"),
            symbol<decltype(&yajl_gen_array_close)>(library, "yajl_gen_array_close"),
        };
    }();
    return generator;
}

/// A plain tree of one document; an object's keys and values stand at the same index.
struct Node {
    enum class Kind { null, boolean, integer, real, string, object, array };
    Kind kind = Kind::null;
    bool boolean = false;
    long long integer = 0;
    double real = 0.0;
    std::string text;
    std::vector<std::string> keys;
    std::vector<Node> values;
};

Node treeOf(const rapidjson::Value& value)
{
    Node node;
    if (value.IsNull()) {
        node.kind = Node::Kind::null;
    } else if (value.IsBool()) {
        node.kind = Node::Kind::boolean;
        node.boolean = value.GetBool();
    } else if (value.IsInt64()) {
        node.kind = Node::Kind::integer;
        node.integer = value.GetInt64();
    } else if (value.IsNumber()) {
        node.kind = Node::Kind::real;
        node.real = value.GetDouble();
    } else if (value.IsString()) {
        node.kind = Node::Kind::string;
        node.text.assign(value.GetString(), value.GetStringLength());
    } else if (value.IsObject()) {
        node.kind = Node::Kind::object;
        node.keys.reserve(value.MemberCount());
        node.values.reserve(value.MemberCount());
        for (const auto& member : value.GetObject()) {
            node.keys.emplace_back(member.name.GetString(), member.name.GetStringLength());
            node.values.push_back(treeOf(member.value));
        }
    } else {
        node.kind = Node::Kind::array;
        node.values.reserve(value.Size());
        for (const auto& item : value.GetArray()) {
            node.values.push_back(treeOf(item));
        }
    }
    return node;
}

bool generate(const RawGenerator& raw, yajl_gen generator, const Node& node)
{
    switch (node.kind) {
    case Node::Kind::null:
        return raw.null(generator) == yajl_gen_status_ok;
    case Node::Kind::boolean:
        return raw.boolean(generator, node.boolean ? 1 : 0) == yajl_gen_status_ok;
    case Node::Kind::integer:
        return raw.integer(generator, node.integer) == yajl_gen_status_ok;
    case Node::Kind::real:
        return raw.real(generator, node.real) == yajl_gen_status_ok;
    case Node::Kind::string:
        return raw.string(generator, reinterpret_cast<const unsigned char*>(node.text.data()), node.text.size())
            == yajl_gen_status_ok;
    case Node::Kind::object:
        if (raw.mapOpen(generator) != yajl_gen_status_ok) {
            return false;
        }
        for (std::size_t i = 0; i < node.keys.size(); ++i) {
            const std::string& key = node.keys[i];
            if (raw.string(generator, reinterpret_cast<const unsigned char*>(key.data()), key.size())
                    != yajl_gen_status_ok
                || !generate(raw, generator, node.values[i])) {
                return false;
            }
        }
        return raw.mapClose(generator) == yajl_gen_status_ok;
    case Node::Kind::array:
        if (raw.arrayOpen(generator) != yajl_gen_status_ok) {
            return false;
        }
        for (const Node& value : node.values) {
            if (!generate(raw, generator, value)) {
                return false;
            }
        }
        return raw.arrayClose(generator) == yajl_gen_status_ok;
    }
    return false;
}

/// Writes the tree into the generator's own growing buffer; the length written, 0 on failure.
std::size_t generateText(const Node& root)
{
    const RawGenerator& raw = rawGenerator();
    yajl_gen generator = raw.alloc(nullptr);
    std::size_t length = 0;
    if (generator != nullptr && generate(raw, generator, root)) {
        const unsigned char* text = nullptr;
        if (raw.getBuffer(generator, &text, &length) != yajl_gen_status_ok) {
            length = 0;
        }
    }
    if (generator != nullptr) {
        raw.free(generator);
    }
    return length;
}

void JsonWrite(benchmark::State& state)
{
    const std::string& text = orv_bench::jsonDocument(static_cast<int>(state.range(0)));
    // Full precision, so that every real holds the value the dynamic object read.
    rapidjson::Document dom;
    dom.Parse<rapidjson::kParseFullPrecisionFlag>(text.data(), text.size());
    if (dom.HasParseError()) {
        state.SkipWithError("the DOM library refused the document");
        return;
    }
    const Node tree = treeOf(dom);
    orv::utils::DynamicObject object;
    {
        orv::utils::BufferInput input(text.data(), static_cast<unsigned int>(text.size()));
        if (!orv::utils::deserializeDynamicObjectFromJson(object, input, nullptr)) {
            state.SkipWithError("the dynamic object refused the document");
            return;
        }
    }

    double seconds[3] = {};
    std::size_t bytes[3] = {};
    bool ok = true;
    for (auto _ : state) {
        double start = threadSeconds();
        {
            orv::utils::DynamicBufferInputOutput output("JSON output");
            ok = orv::utils::serializeDynamicObjectToJson(object, output, nullptr) && ok;
            bytes[0] = output.size();
        }
        seconds[0] += threadSeconds() - start;
        state.SetIterationTime(threadSeconds() - start);

        start = threadSeconds();
        bytes[1] = generateText(tree);
        seconds[1] += threadSeconds() - start;

        start = threadSeconds();
        {
            rapidjson::StringBuffer buffer;
            rapidjson::Writer<rapidjson::StringBuffer> writer(buffer);
            ok = dom.Accept(writer) && ok;
            bytes[2] = buffer.GetSize();
        }
        seconds[2] += threadSeconds() - start;
    }
    if (!ok || bytes[0] == 0 || bytes[1] == 0 || bytes[2] == 0) {
        state.SkipWithError("a writer failed");
        return;
    }
    if (bytes[0] != bytes[1]) {
        state.SkipWithError("ours and the generator wrote texts of different lengths");
        return;
    }
    const double iterations = static_cast<double>(state.iterations());
    state.SetBytesProcessed(static_cast<std::int64_t>(bytes[0]) * state.iterations());
    state.counters["output_MB"] = static_cast<double>(bytes[0]) / 1e6;
    state.counters["orv_MB/s"] = static_cast<double>(bytes[0]) * iterations / 1e6 / seconds[0];
    state.counters["yajl_gen_MB/s"] = static_cast<double>(bytes[1]) * iterations / 1e6 / seconds[1];
    state.counters["rapidjson_MB/s"] = static_cast<double>(bytes[2]) * iterations / 1e6 / seconds[2];
    state.counters["x_yajl_gen"] = seconds[1] / seconds[0];
    state.counters["x_rapidjson"] = seconds[2] / seconds[0];
}

} // namespace

// 0: numbers in nested arrays, 1: many short keys, 2: long UTF-8 strings.
BENCHMARK(JsonWrite)->Arg(0)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond);
