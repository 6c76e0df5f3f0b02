#include "core/ZArrayT.h"

#include "bench/support/pair.h"

#include <utility>
#ifdef ORV_PEER_QT
#include <QVector>
#endif

namespace {

constexpr int itemCount = 20000; // blocks that malloc keeps in its heap: fresh pages would be all that is measured

/// Appends, walks, and copies with one write on each side, so that the items are copied too.
template <class Array> long run() {
    Array array;
    for (int i = 0; i < itemCount; ++i) array.append(i ^ 5);
    long sum = 0;
    for (int item : std::as_const(array)) sum += item;
    Array copy(array);
    benchmark::DoNotOptimize(copy);
    copy[7] = 1;
    array[7] = 2;
    return sum + copy[7] - array[7];
}

template <class Array> void measure(benchmark::State& state) {
    long expected = -1;
    for (int i = 0; i < itemCount; ++i) expected += i ^ 5;
    if (run<Array>() != expected) return state.SkipWithError("wrong sum");
    for (auto _ : state) benchmark::DoNotOptimize(run<Array>());
}

#ifdef ORV_PEER_QT
BenchPair arrays("ZArrayT append, iterate, copy", "QVector", 1.1, measure<ZArrayT<int>>, measure<QVector<int>>);
#else
BenchPair arrays("ZArrayT append, iterate, copy", "QVector", 1.1, measure<ZArrayT<int>>, nullptr);
#endif

} // namespace
