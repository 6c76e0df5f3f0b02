#include "text/number.h"

#include "bench/support/pair.h"

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

constexpr int count = 1000000;

/// A million reals as a file has them: few and many digits, some with exponents, a blank behind each.
const std::string& text() {
    static const std::string all = [] {
        std::string text;
        unsigned state = 99;
        auto next = [&] { return state = state * 1664525 + 1013904223; };
        for (int i = 0; i < count; ++i) {
            static const char* forms[] = {"%.2f ", "%.6f ", "%.17g ", "%g "};
            char number[64];
            double value = (int(next()) / 1024.0) * (next() / 4294967296.0);
            std::snprintf(number, sizeof number, forms[next() >> 30], value);
            text += number;
        }
        return text;
    }();
    return all;
}

double ourSum() {
    const char *at = text().data(), *end = at + text().size();
    double sum = 0;
    for (int i = 0; i < count; ++i) {
        double value = 0;
        bool fits;
        at = orv::scanReal(at, end, value, '.', fits);
        sum += value;
    }
    return sum;
}
double peerSum() {
    char* at = const_cast<char*>(text().c_str());
    double sum = 0;
    for (int i = 0; i < count; ++i) sum += std::strtod(at, &at);
    return sum;
}

void ours(benchmark::State& state) {
    if (ourSum() != peerSum()) std::abort();
    for (auto _ : state) benchmark::DoNotOptimize(ourSum());
}
void peer(benchmark::State& state) {
    text();
    for (auto _ : state) benchmark::DoNotOptimize(peerSum());
}
BenchPair parse("a million reals parsed", "strtod", 0.5, ours, peer);

} // namespace
