#include "text/ZRegExp.h"

#include "bench/support/pair.h"
#include "text/ZLongestCommonSubsequence.h"

#include <algorithm>
#include <string>
#include <vector>
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>
#ifdef ORV_PEER_QT
#include <QRegularExpression>
#include <QString>
#endif

namespace {

/// A hundred megabytes of words and lines with what is looked for at the end. Letters beyond ASCII are rare.
const std::string& prose() {
    static const std::string text = [] {
        uint32_t seed = 1;
        auto next = [&] { return (seed = seed * 1664525 + 1013904223) >> 8; };
        std::string made;
        made.reserve((100u << 20) + 64);
        while (made.size() < 100u << 20) {
            for (uint32_t length = 2 + next() % 9; length; --length) made += char('a' + next() % 26);
            if (next() % 1000 == 0) made += "ü";
            made += next() % 12 ? ' ' : '\n';
        }
        return made + "Needle 31415-";
    }();
    return text;
}
constexpr const char *literal = "Needle", *digits = "[0-9]{3,}-";

template <const char* const& Pattern> void oursFind(benchmark::State& state) {
    const ZRegExp expression(Pattern, ZRegExp::UCDGroup);
    const ZString text(prose().data(), int(prose().size()));
    for (auto _ : state)
        if (expression.find(text) < 100 << 20) return state.SkipWithError("not found");
}
/// With the flags of ours. Without the one for limits of offsets the engine's own search for a class is up to a third
/// faster than either.
template <const char* const& Pattern> void rawFind(benchmark::State& state) {
    int error;
    size_t at;
    pcre2_code* code =
        pcre2_compile(reinterpret_cast<PCRE2_SPTR>(Pattern), PCRE2_ZERO_TERMINATED,
                      PCRE2_NO_AUTO_CAPTURE | PCRE2_UTF | PCRE2_UCP | PCRE2_MATCH_INVALID_UTF | PCRE2_USE_OFFSET_LIMIT,
                      &error, &at, nullptr);
    pcre2_jit_compile(code, PCRE2_JIT_COMPLETE);
    pcre2_match_data* data = pcre2_match_data_create(1, nullptr);
    auto text = reinterpret_cast<PCRE2_SPTR>(prose().data());
    for (auto _ : state)
        if (pcre2_match(code, text, prose().size(), 0, 0, data, nullptr) < 0) return state.SkipWithError("not found");
    pcre2_match_data_free(data);
    pcre2_code_free(code);
}

/// Two sequences of 10,000 of 200 different elements.
struct Sequences {
    std::vector<int> a, b;
    Sequences() {
        uint32_t seed = 1;
        for (int i = 0; i < 20000; ++i) (i < 10000 ? a : b).push_back((seed = seed * 1664525 + 1013904223) >> 8 & 199);
    }
};
large tableLongest(const Sequences& given, std::vector<int>& table) {
    const size_t width = given.b.size() + 1;
    for (size_t i = 1; i <= given.a.size(); ++i)
        for (size_t j = 1; j < width; ++j) {
            int* cell = &table[i * width + j];
            *cell = given.a[i - 1] == given.b[j - 1] ? cell[-1 - large(width)] + 1
                                                     : std::max(cell[-1], cell[-large(width)]);
        }
    return table.back();
}
void oursLongest(benchmark::State& state) {
    const Sequences given;
    std::vector<int> table(10001 * 10001);
    const large expected = tableLongest(given, table);
    const ZLongestCommonSubsequence measure;
    for (auto _ : state)
        if (measure.longest(given.a.data(), given.b.data(), 10000, 10000) != expected)
            return state.SkipWithError("wrong length");
}
void peerLongest(benchmark::State& state) {
    const Sequences given;
    std::vector<int> table(10001 * 10001);
    for (auto _ : state)
        if (tableLongest(given, table) < 1000) return state.SkipWithError("wrong length");
}

#ifdef ORV_PEER_QT
template <const char* const& Pattern> void qtFind(benchmark::State& state) {
    QRegularExpression expression(Pattern, QRegularExpression::DontCaptureOption |
                                               QRegularExpression::UseUnicodePropertiesOption);
    expression.optimize();
    const QString text = QString::fromUtf8(prose().data(), int(prose().size()));
    for (auto _ : state)
        if (expression.match(text).capturedStart() < 99 << 20) return state.SkipWithError("not found");
}
#define ORV_QT(run) run
#else
#define ORV_QT(run) nullptr
#endif

BenchPair rawLiteral("a literal in 100 MB", "PCRE2 with JIT, same flags", 1.3, oursFind<literal>, rawFind<literal>);
BenchPair rawDigits("a class in 100 MB", "PCRE2 with JIT, same flags", 1.3, oursFind<digits>, rawFind<digits>);
BenchPair qtLiteral("a literal in 100 MB, as QString", "QRegularExpression", 0.8, oursFind<literal>,
                    ORV_QT(qtFind<literal>));
BenchPair qtDigits("a class in 100 MB, as QString", "QRegularExpression", 0.8, oursFind<digits>,
                   ORV_QT(qtFind<digits>));
BenchPair longest("common subsequence, 10,000 x 10,000", "the plain table", 0.03, oursLongest, peerLongest);

} // namespace
