#include "core/ZUnique.h"

#include "bench/support/pair.h"

#ifdef ORV_PEER_TBB
#include <tbb/concurrent_queue.h>
#endif

namespace {

void oursUnique(benchmark::State& state) {
    ZUnique::open();
    {
        ZUnique a, b;
        if (a.isEmpty() || a == b) state.SkipWithError("not unique");
        for (auto _ : state) {
            ZUnique made;
            benchmark::DoNotOptimize(made);
        }
        if (ZUnique::count() != 2) state.SkipWithError("lost one");
    }
    ZUnique::close();
}

#ifdef ORV_PEER_TBB
void peerUnique(benchmark::State& state) {
    constexpr unsigned slots = 0x8000;
    tbb::concurrent_queue<unsigned> free;
    for (unsigned id = 1; id <= slots; ++id) free.push(id);
    for (auto _ : state) {
        unsigned id = 0;
        if (!free.try_pop(id)) state.SkipWithError("none left");
        benchmark::DoNotOptimize(id);
        free.push(id);
    }
    if (free.unsafe_size() != slots) state.SkipWithError("lost one");
}
#else
constexpr BenchPair::Run peerUnique = nullptr;
#endif
BenchPair unique("unique create + release", "tbb::concurrent_queue as free list", 1.0, oursUnique, peerUnique);

} // namespace
