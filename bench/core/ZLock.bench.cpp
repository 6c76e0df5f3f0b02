#include "core/ZLock.h"

#include "bench/support/pair.h"

#include <mutex>
#include <shared_mutex>
#include <thread>

namespace {

/// A process with one thread lets a peer leave its atomics out.
void startThread() {
    std::thread([] {}).join();
}

void oursAlone(benchmark::State& state) {
    startThread();
    ZLock lock(false);
    lock.init(true);
    long count = 0;
    for (auto _ : state) {
        lock.lock();
        benchmark::DoNotOptimize(++count);
        lock.unlock();
    }
    if (lock.lockCount()) state.SkipWithError("still held");
}
void peerAlone(benchmark::State& state) {
    startThread();
    std::recursive_mutex lock;
    long count = 0;
    for (auto _ : state) {
        lock.lock();
        benchmark::DoNotOptimize(++count);
        lock.unlock();
    }
}
BenchPair alone("`ZLock` uncontended", "std::recursive_mutex", 1.1, oursAlone, peerAlone);

void oursRead(benchmark::State& state) {
    startThread();
    ZLock lock(false);
    lock.init(true);
    long count = 0;
    for (auto _ : state) {
        lock.readLock();
        benchmark::DoNotOptimize(++count);
        lock.unlock();
    }
    if (lock.lockCount()) state.SkipWithError("still held");
}
void peerRead(benchmark::State& state) {
    startThread();
    std::shared_timed_mutex lock;
    long count = 0;
    for (auto _ : state) {
        lock.lock_shared();
        benchmark::DoNotOptimize(++count);
        lock.unlock_shared();
    }
}
BenchPair reading("`ZLock` read lock", "std::shared_timed_mutex", 1.3, oursRead, peerRead);

} // namespace
