#include "object/ZEnum.h"

#include "bench/object/peers.h"
#include "core/ZCoreLib.h"

#include <cstring>

namespace {

/// The text as it comes from outside, to its value and back to the text; the words stand apart by blanks here.
void enums(benchmark::State& state) {
    static ZCoreLib library("bench", false, false, true);
    static constexpr char words[] = "Bold Italic Overline";
    ZEnum styles(ZSelector("Style"));
    int bit = 1;
    for (const char* name :
         {"Bold", "Italic", "Underline", "Overline", "StrikeOut", "SmallCaps", "Superscript", "Subscript"}) {
        styles.add(ZSelector(name), bit);
        bit <<= 1;
    }
    auto once = [&] { return styles.output(styles.scan(ZSelector(words), false), false); };
    if (!once().string() || std::strcmp(once().string(), words) != 0 || styles.count() != 8)
        state.SkipWithError("wrong value");
    for (auto _ : state) benchmark::DoNotOptimize(once().string());
}

const BenchPair row("enum: scan and print flags", "QMetaEnum", 0.5, enums, peers::qt::enums);

} // namespace
