// The three JSON documents the JSON benchmarks read and write, each about 4 MB and generated the
// same way on every run: numbers in nested arrays, many short keys, long UTF-8 strings.

#ifndef ORV_BENCH_JSONDOCUMENTS_H
#define ORV_BENCH_JSONDOCUMENTS_H

#include <cstdio>
#include <random>
#include <string>

namespace orv_bench {

inline std::string numbersDocument()
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> reals(-1e6, 1e6);
    std::uniform_int_distribution<long long> integers(-1000000000LL, 1000000000LL);
    std::string text = "[";
    char number[40];
    while (text.size() < 4000000) {
        text += text.size() == 1 ? "[" : ",[";
        for (int row = 0; row < 8; ++row) {
            text += row == 0 ? "[" : ",[";
            for (int column = 0; column < 8; ++column) {
                const int length = column % 2 == 0
                    ? std::snprintf(number, sizeof number, "%lld", integers(random))
                    : std::snprintf(number, sizeof number, "%.17g", reals(random));
                text += column == 0 ? "" : ",";
                text.append(number, static_cast<std::size_t>(length));
            }
            text += "]";
        }
        text += "]";
    }
    return text + "]";
}

inline std::string shortKeysDocument()
{
    std::string text = "[";
    for (int record = 0; text.size() < 4000000; ++record) {
        text += record == 0 ? "{" : ",{";
        for (int key = 0; key < 24; ++key) {
            text += key == 0 ? "\"k" : ",\"k";
            text += std::to_string((record + key) % 97);
            text += key % 3 == 0 ? "\":true" : key % 3 == 1 ? "\":7" : "\":\"v\"";
        }
        text += "}";
    }
    return text + "]";
}

inline std::string longStringsDocument()
{
    const std::string pieces[] = { "plain ascii text ", "caf\xc3\xa9 ", "\xe4\xb8\xad\xe6\x96\x87 ",
                                   "\xf0\x9f\x99\x82 ", "line\\nbreak ", "quote\\\" " };
    std::string text = "[";
    for (int item = 0; text.size() < 4000000; ++item) {
        text += item == 0 ? "\"" : ",\"";
        for (int piece = 0; piece < 200; ++piece) {
            text += pieces[(item + piece * 7) % 6];
        }
        text += "\"";
    }
    return text + "]";
}

/// 0: numbers in nested arrays, 1: many short keys, 2: long UTF-8 strings; made once per process.
inline const std::string& jsonDocument(int kind)
{
    static const std::string documents[] = { numbersDocument(), shortKeysDocument(), longStringsDocument() };
    return documents[kind];
}

} // namespace orv_bench

#endif
