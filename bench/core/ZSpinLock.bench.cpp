#include "core/ZSpinLock.h"

#include "bench/support/pair.h"

#include <mutex>
#include <thread>
#include <vector>

namespace {

constexpr int threadCount = 8, rounds = 20000;

/// Eight threads that raise one counter under the lock; one iteration is all of their rounds.
template <class L> void contend(benchmark::State& state) {
    for (auto _ : state) {
        L lock;
        long count = 0;
        std::vector<std::thread> threads;
        for (int t = 0; t < threadCount; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < rounds; ++i) {
                    lock.lock();
                    benchmark::DoNotOptimize(++count);
                    lock.unlock();
                }
            });
        for (auto& thread : threads) thread.join();
        if (count != long(threadCount) * rounds) state.SkipWithError("lost a step");
    }
}
BenchPair spin("spin lock, 8 threads on 2 cores", "std::mutex", 1.2, contend<ZSpinLock>, contend<std::mutex>);

} // namespace
