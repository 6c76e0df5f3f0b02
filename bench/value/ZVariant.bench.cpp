#include "value/ZVariant.h"

#include "bench/object/peers.h"
#include "core/ZCoreLib.h"

namespace {

/// Values have types as long as the library is up.
void library() { static ZCoreLib up("bench", false, false, true); }

void runCopies(benchmark::State& state, const ZVariant& value) {
    if (ZVariant(value).compare(value) != 0 || value.isNull()) return state.SkipWithError("wrong copy");
    for (auto _ : state) {
        ZVariant copy(value);
        benchmark::DoNotOptimize(copy);
    }
}
void copyInt(benchmark::State& state) {
    library();
    runCopies(state, ZVariant(123456));
}
void copyText(benchmark::State& state) {
    library();
    runCopies(state, ZVariant(peers::copiedText));
}

void textToInt(benchmark::State& state) {
    library();
    const ZVariant text("123456");
    int number = 0;
    if (!text.toInt(&number) || number != 123456) return state.SkipWithError("wrong number");
    for (auto _ : state) {
        bool known = text.toInt(&number);
        benchmark::DoNotOptimize(number);
        benchmark::DoNotOptimize(known);
    }
}

BenchPair intRow("variant copy, int", "QVariant", 0.5, copyInt, peers::qt::copyInt);
BenchPair textRow("variant copy, string", "QVariant", 1.0, copyText, peers::qt::copyText);
BenchPair readRow("variant text to int", "QVariant", 0.4, textToInt, peers::qt::textToInt);

} // namespace
