#include "value/ZVSelectMap.h"

#include "bench/support/pair.h"
#include "core/ZCoreLib.h"
#include "object/ztype.h"
#include "value/ZVariant.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>
#ifdef ORV_PEER_ABSL
#include <absl/container/flat_hash_map.h>
#endif
#ifdef ORV_PEER_QT
#include <QHash>
#endif

namespace {

void library() { static ZCoreLib up("bench", false, false, true); }

/// Names, and the order in which they are looked up.
struct Names {
    std::vector<ZSelector> inserted, asked;
    explicit Names(size_t count) {
        library();
        for (size_t i = 0; i < count; ++i) inserted.emplace_back(("bench" + std::to_string(i)).c_str());
        std::mt19937 random(1);
        std::shuffle(inserted.begin(), inserted.end(), random);
        asked = inserted;
        std::shuffle(asked.begin(), asked.end(), random);
    }
};
const Names& names(size_t count) {
    // Never destroyed: at the end of the process the library isn't up.
    static std::vector<const Names*> all;
    for (const Names* made : all)
        if (made->inserted.size() == count) return *made;
    all.push_back(new Names(count));
    return *all.back();
}

struct Ours {
    ZVSelectMap map{ztype<double>()};
    void set(const ZSelector& key, double value) { map.setItem(key, &value); }
    const double* get(const ZSelector& key) const { return static_cast<const double*>(map.get(key)); }
};
/// The peers' keys are the numbers of the names.
#ifdef ORV_PEER_ABSL
struct Absl {
    absl::flat_hash_map<uint, double> map;
    void set(const ZSelector& key, double value) { map[key.hashKey()] = value; }
    const double* get(const ZSelector& key) const {
        auto at = map.find(key.hashKey());
        return at == map.end() ? nullptr : &at->second;
    }
};
constexpr bool hasAbsl = true;
#else
using Absl = Ours;
constexpr bool hasAbsl = false;
#endif
#ifdef ORV_PEER_QT
struct Qt {
    QHash<uint, double> map;
    void set(const ZSelector& key, double value) { map.insert(key.hashKey(), value); }
    const double* get(const ZSelector& key) const {
        auto at = map.constFind(key.hashKey());
        return at == map.constEnd() ? nullptr : &at.value();
    }
};
constexpr bool hasQt = true;
#else
using Qt = Ours;
constexpr bool hasQt = false;
#endif

template <class M> void fill(M& map, const Names& of) {
    double value = 0;
    for (const ZSelector& name : of.inserted) map.set(name, value++);
}
template <class M> bool holds(const M& map, const Names& of) {
    for (size_t i = 0; i < of.inserted.size(); ++i)
        if (const double* found = map.get(of.inserted[i]); !found || *found != double(i)) return false;
    return true;
}

template <class M, size_t N> void find(benchmark::State& state) {
    const Names& all = names(N);
    M map;
    fill(map, all);
    if (!holds(map, all)) return state.SkipWithError("a wrong value");
    size_t at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.get(all.asked[at]));
        if (++at == N) at = 0;
    }
}
template <class M> void fillNew(benchmark::State& state) {
    const Names& all = names(1000);
    M checked;
    fill(checked, all);
    if (!holds(checked, all)) return state.SkipWithError("a wrong value");
    for (auto _ : state) {
        M map;
        fill(map, all);
        benchmark::DoNotOptimize(map);
    }
}

template <class M> BenchPair::Run peer(bool there, BenchPair::Run run) { return there ? run : nullptr; }

BenchPair find64("select map find, 64 keys", "absl::flat_hash_map", 1.2, find<Ours, 64>,
                 peer<Absl>(hasAbsl, find<Absl, 64>));
BenchPair find1000("select map find, 1,000 keys", "absl::flat_hash_map", 1.5, find<Ours, 1000>,
                   peer<Absl>(hasAbsl, find<Absl, 1000>));
BenchPair find4096("select map find, 4,096 keys", "absl::flat_hash_map", 2.5, find<Ours, 4096>,
                   peer<Absl>(hasAbsl, find<Absl, 4096>));
BenchPair find100000("select map find, 100,000 keys", "QHash", 2.0, find<Ours, 100000>,
                     peer<Qt>(hasQt, find<Qt, 100000>));
BenchPair fill1000("select map filled with 1,000 keys", "QHash", 1.5, fillNew<Ours>, peer<Qt>(hasQt, fillNew<Qt>));

} // namespace
