#include "core/ZSelector.h"
#include "bench/support/pair.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#ifdef ORV_PEER_GLIB
#include <glib.h>
#endif
#ifdef ORV_PEER_QT
#include <QSet>
#include <QString>
#endif

namespace {

constexpr int linkedTexts = 11000, rounds = 8, nameCount = 1024, setSize = 16;

/// Static texts of the kind that generated declarations hold; a new set of them for each round.
char texts[rounds + 1][linkedTexts][32];
ZSelector linked[linkedTexts];

const char* const forms[] = {"const ZType%d&", "setProperty%d", "plg.core.kind%d", "void call%d(int)", "ZArrayT<Z%d>"};

void fillTexts() {
    static bool filled = false;
    if (filled) return;
    filled = true;
    for (int r = 0; r <= rounds; ++r)
        for (int i = 0; i < linkedTexts; ++i) std::snprintf(texts[r][i], 32, forms[i % 5], r * linkedTexts + i);
}

// Names that are there already. Both sides are given the same texts, none of them the interned one.

struct Names {
    char name[nameCount][32];
    Names() {
        for (int i = 0; i < nameCount; ++i) std::snprintf(name[i], 32, "propertyName%d", i * 37);
    }
};
const Names names;

void oursIntern(benchmark::State& state) {
    if (state.thread_index() == 0) {
        ZSelector::open();
        for (auto& name : names.name)
            if (std::strcmp(ZSelector(name).string(), name)) state.SkipWithError("wrong text");
    }
    unsigned next = unsigned(state.thread_index()) * 100;
    for (auto _ : state) benchmark::DoNotOptimize(ZSelector(names.name[next++ % nameCount]).key());
}

#ifdef ORV_PEER_GLIB
void peerIntern(benchmark::State& state) {
    if (state.thread_index() == 0)
        for (auto& name : names.name)
            if (std::strcmp(g_quark_to_string(g_quark_from_string(name)), name)) state.SkipWithError("wrong text");
    unsigned next = unsigned(state.thread_index()) * 100;
    for (auto _ : state) benchmark::DoNotOptimize(g_quark_from_string(names.name[next++ % nameCount]));
}
void peerLink(benchmark::State& state) {
    fillTexts();
    static int round = 0;
    for (auto _ : state) {
        for (auto& text : texts[round % (rounds + 1)]) benchmark::DoNotOptimize(g_quark_from_static_string(text));
        ++round;
    }
    if (g_quark_try_string(texts[0][linkedTexts - 1]) == 0) state.SkipWithError("not there");
}
#else
constexpr BenchPair::Run peerIntern = nullptr, peerLink = nullptr;
#endif

BenchPair hit("intern, hit, 1 thread", "g_quark_from_string", 0.5, oursIntern, peerIntern);
BenchPair hits("intern, hit, 8 threads", "g_quark_from_string", 0.15, oursIntern, peerIntern, 8);

void linkAll(const char (*from)[32]) {
    for (int i = 0; i < linkedTexts; ++i) linked[i].link(from[i], false);
}

/// A process links once; the rounds find an empty space again. The peer can't be emptied and gets other texts instead.
void oursLink(benchmark::State& state) {
    fillTexts();
    ZSelector::close();
    int round = 0;
    for (auto _ : state) {
        state.PauseTiming();
        ZSelector::close();
        ZSelector::open();
        state.ResumeTiming();
        linkAll(texts[round++ % (rounds + 1)]);
    }
    if (ZSelector::selectorCount() != linkedTexts) state.SkipWithError("lost texts");
    ZSelector::close();
}
BenchPair link("link 11,000 texts", "g_quark_from_static_string", 0.8, oursLink, peerLink, 1, rounds);

void startStop(benchmark::State& state) {
    fillTexts();
    ZSelector::close();
    for (auto _ : state) {
        ZSelector::open();
        linkAll(texts[0]);
        if (std::strcmp(linked[linkedTexts - 1].string(), texts[0][linkedTexts - 1])) state.SkipWithError("wrong text");
        ZSelector::close();
    }
}
BenchPair cycle("start + stop with 11,000 linked texts", 5e6, startStop);

// Sixteen words of a set and sixteen others, asked in turn.

std::vector<std::string> words() {
    std::vector<std::string> all;
    for (int i = 0; i < 2 * setSize; ++i) all.push_back("option" + std::to_string(i * 7));
    return all;
}

void oursContains(benchmark::State& state) {
    ZSelector::open();
    std::vector<ZSelector> asked;
    ZSelector set;
    for (auto& word : words()) {
        asked.push_back(ZSelector(word.c_str()));
        if (asked.size() % 2) set = set | asked.back();
    }
    for (size_t i = 0; i < asked.size(); ++i)
        if (set.contains(asked[i]) != (i % 2 == 0)) state.SkipWithError("wrong answer");
    size_t next = 0;
    for (auto _ : state) benchmark::DoNotOptimize(set.contains(asked[next++ % (2 * setSize)]));
}

#ifdef ORV_PEER_QT
void peerContains(benchmark::State& state) {
    std::vector<QString> asked;
    QSet<QString> set;
    for (auto& word : words()) {
        asked.push_back(QString::fromStdString(word));
        if (asked.size() % 2) set.insert(asked.back());
    }
    for (size_t i = 0; i < asked.size(); ++i)
        if (set.contains(asked[i]) != (i % 2 == 0)) state.SkipWithError("wrong answer");
    size_t next = 0;
    for (auto _ : state) benchmark::DoNotOptimize(set.contains(asked[next++ % (2 * setSize)]));
}
#else
constexpr BenchPair::Run peerContains = nullptr;
#endif
BenchPair contains("`contains` in a set of 16 words", "QSet<QString>", 0.5, oursContains, peerContains);

} // namespace
