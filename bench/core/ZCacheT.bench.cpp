#include "core/ZCacheT.h"

#include "bench/support/pair.h"
#include "core/ZCacheValueT.h"

#ifdef ORV_PEER_QT
#include <QCache>
#endif

namespace {

constexpr int keyCount = 2000, itemLimit = 1000, steps = 20000;

/// A cache of half the keys that are asked for: what is there is used, what isn't is made. Small keys come more often.
template <class Lookup> long run(Lookup lookup) {
    uint state = 1;
    long sum = 0;
    for (int i = 0; i < steps; ++i) {
        state = state * 1664525 + 1013904223;
        int key = int((state >> 8) % keyCount);
        if (state >> 31) key /= 4;
        sum += lookup(key);
    }
    return sum;
}

using Value = ZCacheValueT<int, int>;

long runOurs() {
    ZCacheT<int, Value> cache(keyCount);
    cache.setMaxItems(itemLimit);
    cache.setMaxCost(0);
    return run([&](int key) {
        if (cache.use(key)) return cache.newestItem()->value;
        cache.append(Value(key, key * 2));
        return key;
    });
}
#ifdef ORV_PEER_QT
long runPeers() {
    QCache<int, int> cache(itemLimit);
    return run([&](int key) {
        if (int* value = cache.object(key)) return *value;
        cache.insert(key, new int(key * 2));
        return key;
    });
}
#endif

template <long (*ours)()> void measure(benchmark::State& state) {
#ifdef ORV_PEER_QT
    if (runOurs() != runPeers()) return state.SkipWithError("hits differ");
#endif
    for (auto _ : state) benchmark::DoNotOptimize(ours());
}

#ifdef ORV_PEER_QT
BenchPair caches("ZCacheT", "QCache", 1.3, measure<runOurs>, measure<runPeers>);
#else
BenchPair caches("ZCacheT", "QCache", 1.3, measure<runOurs>, nullptr);
#endif

} // namespace
