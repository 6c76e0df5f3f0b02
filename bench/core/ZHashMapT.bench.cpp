#include "core/ZHashMapT.h"

#include "bench/support/pair.h"

#include <algorithm>
#include <map>
#include <random>
#include <unordered_map>
#include <vector>

namespace {

/// Random keys, each once, and the order in which they are looked up.
struct Keys {
    std::vector<int> inserted, asked;
    explicit Keys(size_t count) {
        std::mt19937 random(1);
        while (inserted.size() < count) {
            for (size_t missing = count - inserted.size(); missing > 0; --missing) inserted.push_back(int(random()));
            std::sort(inserted.begin(), inserted.end());
            inserted.erase(std::unique(inserted.begin(), inserted.end()), inserted.end());
        }
        std::shuffle(inserted.begin(), inserted.end(), random);
        asked = inserted;
        std::shuffle(asked.begin(), asked.end(), random);
    }
};
template <size_t N> const Keys& keys() {
    static const Keys made(N);
    return made;
}

struct Ours {
    ZKeyMapT<ZValueKeyT<int>, int> map;
    void set(int key, int value) { map.set(key, value); }
    const int* get(int key) const { return map.get(key); }
};
template <class M> struct Peer {
    M map;
    void set(int key, int value) { map[key] = value; }
    const int* get(int key) const {
        auto at = map.find(key);
        return at == map.end() ? nullptr : &at->second;
    }
};

template <class M, size_t N> void find(benchmark::State& state) {
    static const M map = [] {
        M made;
        int value = 0;
        for (int key : keys<N>().inserted) made.set(key, value++);
        return made;
    }();
    const std::vector<int>& asked = keys<N>().asked;
    for (size_t i = 0; i < N; ++i)
        if (const int* found = map.get(asked[i]); !found || keys<N>().inserted[size_t(*found)] != asked[i])
            return state.SkipWithError("a wrong value");
    size_t at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.get(asked[at]));
        if (++at == N) at = 0;
    }
}

using Hashed = Peer<std::unordered_map<int, int>>;
using Tree = Peer<std::map<int, int>>;

BenchPair small("map find, 1,000 random int keys", "std::unordered_map", 2.5, find<Ours, 1000>, find<Hashed, 1000>);
BenchPair tenThousand("map find, 10,000 random int keys", "std::unordered_map", 2.5, find<Ours, 10000>,
                      find<Hashed, 10000>);
BenchPair hundredThousand("map find, 100,000 random int keys", "std::unordered_map", 4, find<Ours, 100000>,
                          find<Hashed, 100000>);
BenchPair million("map find, 1,000,000 random int keys", "std::unordered_map", 10, find<Ours, 1000000>,
                  find<Hashed, 1000000>);
BenchPair tenThousandTree("map find, 10,000 random int keys, ordered peer", "std::map", 0.25, find<Ours, 10000>,
                          find<Tree, 10000>);
BenchPair hundredThousandTree("map find, 100,000 random int keys, ordered peer", "std::map", 0.25, find<Ours, 100000>,
                              find<Tree, 100000>);
BenchPair millionTree("map find, 1,000,000 random int keys, ordered peer", "std::map", 0.6, find<Ours, 1000000>,
                      find<Tree, 1000000>);

} // namespace
