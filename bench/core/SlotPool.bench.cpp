#include "core/SlotPool.h"

#include "bench/support/pair.h"

#include <vector>

namespace {

/// Room comes zeroed, so a constructor sets what differs.
struct Record {
    Record() {}
    void* fields[16];
};
orv::SlotPool<Record> pool("bench", 2048);

void makeAndRelease(benchmark::State& state) {
    if (!pool.open()) return state.SkipWithError("no memory");
    // Some records are there, and some slots are free.
    std::vector<Record*> others;
    for (int i = 0; i < 1000; ++i) others.push_back(pool.make());
    for (int i = 0; i < 1000; i += 2) pool.release(others[i]);
    for (auto _ : state) {
        Record* record = pool.make();
        benchmark::DoNotOptimize(record->fields[3] = record);
        pool.release(record);
    }
    for (int i = 1; i < 1000; i += 2) pool.release(others[i]);
    if (pool.live()) state.SkipWithError("a record is left");
    pool.close();
}
BenchPair one("pool record made and released", 30, makeAndRelease);

void retainAndRelease(benchmark::State& state) {
    if (!pool.open()) return state.SkipWithError("no memory");
    Record* record = pool.make();
    for (auto _ : state) {
        benchmark::DoNotOptimize(pool.retain(record));
        pool.release(record);
    }
    if (pool.refcount(record) != 1) state.SkipWithError("wrong count");
    pool.release(record);
    pool.close();
}
BenchPair counted("pool record retained and released", 20, retainAndRelease);

} // namespace
