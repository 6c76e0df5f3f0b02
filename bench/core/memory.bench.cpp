#include "bench/support/pair.h"
#include "core/construct.h"

#include <cstdlib>
#include <memory>
#include <thread>

namespace {

void oursZeroed(benchmark::State& state) {
    for (auto _ : state) {
        void* p = toolkit::allocZeroedBlock(64);
        benchmark::DoNotOptimize(p);
        zfree(p);
    }
}
void peerZeroed(benchmark::State& state) {
    for (auto _ : state) {
        void* p = std::calloc(1, 64);
        benchmark::DoNotOptimize(p);
        std::free(p);
    }
}
BenchPair zeroed("zeroed 64-byte block, allocate and free", "calloc/free", 0.7, oursZeroed, peerZeroed);

/// A shared count is only atomic once the process has started a thread.
void startThread() {
    std::thread([] {}).join();
}

void oursRetain(benchmark::State& state) {
    startThread();
    void* p = __zalloc(8);
    for (auto _ : state) {
        benchmark::DoNotOptimize(retain(p));
        zfree(p);
    }
    zfree(p);
}
void peerRetain(benchmark::State& state) {
    startThread();
    auto p = std::make_shared<long>(1);
    for (auto _ : state) {
        auto copy = p;
        benchmark::DoNotOptimize(copy.get());
    }
}
BenchPair counted("retain + release, with a second thread", "std::shared_ptr copy", 0.7, oursRetain, peerRetain);

void goodPath(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(zresetfail());
}
BenchPair check("good-path failure check", 2.0, goodPath);

} // namespace
