// JSON text to builder events, and to a dynamic object, beside its anchors parsing the same bytes in the same run: the
// parser's own raw parse with callbacks that do nothing (fed in the reader's 256-byte chunks, and
// in one piece), a DOM parse and a second DOM library. Each iteration runs every contender once,
// in turn, and each is timed in the thread's processor time, so that time lost to other
// processes on a shared machine counts for none of them.
//
// The parser is reached through the loader because the library links it privately: the symbols
// are already in the process, but not on the benchmark's link line.

#include "ThreadClock.h"
#include <orv/utils/AbstractObjectBuilder.h>
#include <orv/utils/BufferInput.h>
#include <orv/utils/DynamicObject.h>
#include <orv/utils/JsonDeserializer.h>

#include "JsonDocuments.h"

#include "NullBuilder.h"

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>
#include <rapidjson/document.h>
#include <yajl/yajl_parse.h>

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <string>

namespace {

using orv::bench::threadSeconds;

using orv::bench::NullBuilder;

struct RawParser {
    decltype(&yajl_alloc) alloc;
    decltype(&yajl_parse) parse;
    decltype(&yajl_complete_parse) complete;
    decltype(&yajl_free) free;
};

const RawParser& rawParser()
{
    static const RawParser parser = [] {
        void* library = dlopen("libyajl.so.2", RTLD_NOW);
        if (library == nullptr) {
            std::fprintf(stderr, "The JSON parser library is not loadable: %s\n", dlerror());
            std::abort();
        }
        return RawParser { reinterpret_cast<decltype(&yajl_alloc)>(dlsym(library, "yajl_alloc")),
                           reinterpret_cast<decltype(&yajl_parse)>(dlsym(library, "yajl_parse")),
                           reinterpret_cast<decltype(&yajl_complete_parse)>(dlsym(library, "yajl_complete_parse")),
                           reinterpret_cast<decltype(&yajl_free)>(dlsym(library, "yajl_free")) };
    }();
    return parser;
}

int ignore(void*)
{
    return 1;
}
int ignoreBoolean(void*, int)
{
    return 1;
}
int ignoreInteger(void*, long long)
{
    return 1;
}
int ignoreDouble(void*, double)
{
    return 1;
}
int ignoreText(void*, const unsigned char*, std::size_t)
{
    return 1;
}

// Integers and reals converted by the parser itself, as a plain user of it gets them.
const yajl_callbacks ignoringCallbacks = {
    &ignore, &ignoreBoolean, &ignoreInteger, &ignoreDouble, nullptr, &ignoreText,
    &ignore, &ignoreText, &ignore, &ignore, &ignore,
};

bool rawParse(const std::string& text, std::size_t chunkSize)
{
    const RawParser& raw = rawParser();
    yajl_handle parser = raw.alloc(&ignoringCallbacks, nullptr, nullptr);
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text.data());
    bool ok = true;
    for (std::size_t offset = 0; ok && offset < text.size(); offset += chunkSize) {
        const std::size_t size = text.size() - offset < chunkSize ? text.size() - offset : chunkSize;
        ok = raw.parse(parser, bytes + offset, size) == yajl_status_ok;
    }
    ok = ok && raw.complete(parser) == yajl_status_ok;
    raw.free(parser);
    return ok;
}

void JsonRead(benchmark::State& state)
{
    const std::string& text = orv_bench::jsonDocument(static_cast<int>(state.range(0)));
    double seconds[6] = {};
    bool ok = true;
    for (auto _ : state) {
        double start = threadSeconds();
        orv::utils::BufferInput input(text.data(), static_cast<unsigned int>(text.size()));
        NullBuilder builder;
        ok = orv::utils::deserializeJson(builder, input, false) && ok;
        seconds[0] += threadSeconds() - start;
        state.SetIterationTime(threadSeconds() - start);

        start = threadSeconds();
        ok = rawParse(text, 256) && ok;
        seconds[1] += threadSeconds() - start;

        start = threadSeconds();
        ok = rawParse(text, text.size()) && ok;
        seconds[2] += threadSeconds() - start;

        start = threadSeconds();
        rapidjson::Document dom;
        dom.Parse(text.data(), text.size());
        ok = !dom.HasParseError() && ok;
        seconds[3] += threadSeconds() - start;

        start = threadSeconds();
        const nlohmann::json json = nlohmann::json::parse(text);
        ok = !json.empty() && ok;
        seconds[4] += threadSeconds() - start;

        start = threadSeconds();
        {
            orv::utils::BufferInput objectInput(text.data(), static_cast<unsigned int>(text.size()));
            orv::utils::DynamicObject object;
            ok = orv::utils::deserializeDynamicObjectFromJson(object, objectInput, nullptr) && ok;
        }
        seconds[5] += threadSeconds() - start;
    }
    if (!ok) {
        state.SkipWithError("a parser refused the document");
        return;
    }
    const double megabytes = static_cast<double>(text.size()) * static_cast<double>(state.iterations()) / 1e6;
    state.SetBytesProcessed(static_cast<std::int64_t>(text.size()) * state.iterations());
    state.counters["orv_MB/s"] = megabytes / seconds[0];
    state.counters["yajl256_MB/s"] = megabytes / seconds[1];
    state.counters["yajlWhole_MB/s"] = megabytes / seconds[2];
    state.counters["rapidjson_MB/s"] = megabytes / seconds[3];
    state.counters["nlohmann_MB/s"] = megabytes / seconds[4];
    state.counters["object_MB/s"] = megabytes / seconds[5];
    state.counters["x_yajl256"] = seconds[1] / seconds[0];
    state.counters["object_x_yajl256"] = seconds[1] / seconds[5];
    state.counters["x_yajlWhole"] = seconds[2] / seconds[0];
}

} // namespace

// 0: numbers in nested arrays, 1: many short keys, 2: long UTF-8 strings.
BENCHMARK(JsonRead)->Arg(0)->Arg(1)->Arg(2)->UseManualTime()->Unit(benchmark::kMillisecond);
