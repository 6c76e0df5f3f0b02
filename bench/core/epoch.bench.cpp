#include "toolkit/epoch.h"

#include "bench/support/pair.h"
#include "core/ZLock.h"

#include <thread>
#include <vector>

namespace {

struct Table : toolkit::EpochLink {
    long value = 1;
};
Table table;
toolkit::EpochPtr<Table> published(&table);

/// One reader without and with a lock.
void guarded(benchmark::State& state) {
    long sum = 0, count = 0;
    for (auto _ : state) {
        toolkit::EpochGuard guard;
        benchmark::DoNotOptimize(sum += published.load()->value);
        ++count;
    }
    if (sum != count) state.SkipWithError("wrong value");
}
void locked(benchmark::State& state) {
    std::thread([] {}).join();
    ZLock lock(false);
    lock.init(true);
    long sum = 0, count = 0;
    for (auto _ : state) {
        lock.readLock();
        benchmark::DoNotOptimize(sum += published.load()->value);
        lock.unlock();
        ++count;
    }
    if (sum != count) state.SkipWithError("wrong value");
}
BenchPair one("epoch guard around a read", "`ZLock` read lock", 1.0, guarded, locked);

void nested(benchmark::State& state) {
    toolkit::EpochGuard outer;
    guarded(state);
}
BenchPair inner("nested epoch guard around a read", 3, nested);

/// Several readers of one table; one iteration is all of their rounds.
constexpr int rounds = 200'000;
template <int threadCount, class Read> void readers(benchmark::State& state, const Read& read) {
    for (auto _ : state) {
        long sums[threadCount] = {};
        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t)
            threads.emplace_back([&, t] {
                long sum = 0;
                for (int i = 0; i < rounds; ++i) read(sum);
                sums[t] = sum;
            });
        for (auto& thread : threads) thread.join();
        for (long sum : sums)
            if (sum != rounds) state.SkipWithError("wrong value");
    }
    state.SetItemsProcessed(state.iterations() * threadCount * rounds);
}
template <int threadCount> void guardedReaders(benchmark::State& state) {
    readers<threadCount>(state, [](long& sum) {
        toolkit::EpochGuard guard;
        benchmark::DoNotOptimize(sum += published.load()->value);
    });
}
template <int threadCount> void lockedReaders(benchmark::State& state) {
    ZLock lock(false);
    lock.init(true);
    readers<threadCount>(state, [&](long& sum) {
        lock.readLock();
        benchmark::DoNotOptimize(sum += published.load()->value);
        lock.unlock();
    });
}
BenchPair alone("200,000 guarded reads on 1 thread", "`ZLock` read lock", 1.0, guardedReaders<1>, lockedReaders<1>);
BenchPair two("200,000 guarded reads on each of 2 threads", "`ZLock` read lock", 0.5, guardedReaders<2>,
              lockedReaders<2>);
BenchPair eight("200,000 guarded reads on each of 8 threads", "`ZLock` read lock", 0.5, guardedReaders<8>,
                lockedReaders<8>);

} // namespace
