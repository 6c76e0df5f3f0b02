#include "value/ZVArray.h"

#include "bench/support/pair.h"
#include "core/ZCoreLib.h"
#include "text/ZString.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>
#ifdef ORV_PEER_QT
#include <QVector>
#endif

namespace {

constexpr int itemCount = 1000000;

/// An array of reals; the library is up.
ZVArray reals() {
    static ZCoreLib up("bench", false, false, true);
    return ZVArray(ztype<real>());
}

// Append and scan

template <class Array, class F> double fill(Array array, F&& items) {
    for (int i = 0; i < itemCount; ++i) array.append(double(i ^ 5));
    double sum = 0;
    const double* item = items(array);
    for (int i = 0; i < itemCount; ++i) sum += item[i];
    return sum;
}
template <class F> void measureFill(benchmark::State& state, F&& run) {
    if (run() != double(itemCount - 1) * itemCount / 2) return state.SkipWithError("wrong sum");
    for (auto _ : state) benchmark::DoNotOptimize(run());
}
void fillOurs(benchmark::State& state) {
    measureFill(state, [] { return fill(reals(), [](const ZVArray& array) { return array.valuesT<double>(); }); });
}
#ifdef ORV_PEER_QT
void fillTheirs(benchmark::State& state) {
    measureFill(state, [] { return fill(QVector<double>(), [](const auto& array) { return array.constData(); }); });
}
#else
constexpr BenchPair::Run fillTheirs = nullptr;
#endif

// Sort

std::vector<double> numbers() {
    std::mt19937_64 random(1);
    std::vector<double> made(itemCount);
    for (double& number : made) number = std::uniform_real_distribution(-1e6, 1e6)(random);
    return made;
}
/// As they stand in lists of packages or files: many begin alike.
std::vector<std::string> texts() {
    std::mt19937_64 random(2);
    static const char* starts[] = {"lib", "python3-", "golang-github-", "", "node-", "r-cran-"};
    std::vector<std::string> made(itemCount);
    for (std::string& text : made) {
        text = starts[random() % 6];
        for (int i = int(random() % 12) + 4; i > 0; --i) text += char('a' + random() % 26);
    }
    return made;
}

/// Sorts fresh copies, whose making and end isn't measured.
void ready(ZVArray& items) { items.get(0); }
template <class T> void ready(std::vector<T>&) {}
template <class T, class S, class C> void measureSort(benchmark::State& state, const T& given, S&& sort, C&& sorted) {
    {
        T items(given);
        sort(items);
        if (!sorted(items)) return state.SkipWithError("not sorted");
    }
    for (auto _ : state) {
        state.PauseTiming();
        {
            T items(given);
            ready(items);
            state.ResumeTiming();
            sort(items);
            state.PauseTiming();
        }
        state.ResumeTiming();
    }
}
template <class T> void sortPeer(benchmark::State& state, std::vector<T> given) {
    measureSort(
        state, given, [](auto& items) { std::stable_sort(items.begin(), items.end()); },
        [](const auto& items) { return std::is_sorted(items.begin(), items.end()); });
}
void sortOurs(benchmark::State& state, const ZVArray& given) {
    measureSort(
        state, given,
        [](ZVArray& items) {
            if (!items.sort()) items.clear();
        },
        [](const ZVArray& items) {
            for (int i = 1; i < itemCount; ++i)
                if (items.compareValue(items.get(i - 1), items.get(i)) > 0) return false;
            return items.count() == itemCount;
        });
}
void sortNumbers(benchmark::State& state) {
    ZVArray array = reals();
    for (double number : numbers()) array.append(number);
    sortOurs(state, array);
}
void sortNumbersPeer(benchmark::State& state) { sortPeer(state, numbers()); }
void sortTexts(benchmark::State& state) {
    reals();
    ZVArray array(ztype<ZString>());
    for (const std::string& text : texts()) {
        const ZString item(text.c_str());
        array.appendItem(&item);
    }
    sortOurs(state, array);
}
void sortTextsPeer(benchmark::State& state) { sortPeer(state, texts()); }

BenchPair fillRow("array of any type: append and scan 10^6 doubles", "QVector<double>", 1.3, fillOurs, fillTheirs);
BenchPair numberRow("array of any type: sort 10^6 doubles", "std::stable_sort", 1.2, sortNumbers, sortNumbersPeer);
BenchPair textRow("array of any type: sort 10^6 strings", "std::stable_sort", 1.5, sortTexts, sortTextsPeer);

} // namespace
