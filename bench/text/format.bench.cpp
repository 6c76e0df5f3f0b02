#include "text/format.h"

#include "bench/support/pair.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

constexpr int rows = 64;

struct Row {
    int number, count;
    unsigned mask;
    const char* name;
    double x, y, z;
};
const Row* table() {
    static Row all[rows];
    static const char* names[] = {"width", "a somewhat longer name", "x", "stroke.colour", ""};
    unsigned state = 12345;
    auto next = [&] { return state = state * 1664525 + 1013904223; };
    for (Row& row : all) {
        row = {int(next()) >> (next() >> 27), int(next() >> 20), next(), names[next() >> 16 & 3], 0, 0, 0};
        row.x = int(next()) / 65536.0;
        row.y = next() / 4294967296.0;
        row.z = double(next()) * 1e-3;
    }
    return all;
}

template <class F> void words(benchmark::State& state, F print) {
    const Row* all = table();
    char text[256];
    for (auto _ : state)
        for (int i = 0; i < rows; ++i) {
            const Row& row = all[i];
            benchmark::DoNotOptimize(print(text, sizeof text, "%s[%d]: %5d of %u (%08x) in \"%s\"", row.name, i,
                                           row.number, row.count, row.mask, row.name));
        }
}
template <class F> void reals(benchmark::State& state, F print) {
    const Row* all = table();
    char text[256];
    for (auto _ : state)
        for (int i = 0; i < rows; ++i)
            benchmark::DoNotOptimize(
                print(text, sizeof text, "%f, %.3f, %g, %10.2f", all[i].x, all[i].y, all[i].z, all[i].x));
}

int (*const ours)(char*, int, const char*, ...) = orv::format<char>;
int peer(char* out, size_t size, const char* format, ...) {
    va_list args;
    va_start(args, format);
    int length = vsnprintf(out, size, format, args);
    va_end(args);
    return length;
}

/// Both have to print the same before either is timed.
void check() {
    const Row* all = table();
    for (int i = 0; i < rows; ++i) {
        const Row& row = all[i];
        char a[256], b[256];
        for (bool numbers : {false, true}) {
            if (numbers) {
                ours(a, 256, "%f, %.3f, %g, %10.2f", row.x, row.y, row.z, row.x);
                peer(b, 256, "%f, %.3f, %g, %10.2f", row.x, row.y, row.z, row.x);
            } else {
                ours(a, 256, "%s[%d]: %5d of %u (%08x)", row.name, i, row.number, row.count, row.mask);
                peer(b, 256, "%s[%d]: %5d of %u (%08x)", row.name, i, row.number, row.count, row.mask);
            }
            if (std::strcmp(a, b)) std::abort();
        }
    }
}

void ourWords(benchmark::State& state) {
    check();
    words(state, ours);
}
void peerWords(benchmark::State& state) { words(state, peer); }
void ourReals(benchmark::State& state) {
    check();
    reals(state, ours);
}
void peerReals(benchmark::State& state) { reals(state, peer); }

BenchPair printWords("printf of ints and text", "snprintf", 1.3, ourWords, peerWords);
BenchPair printReals("printf of reals", "snprintf", 0.6, ourReals, peerReals);

} // namespace
