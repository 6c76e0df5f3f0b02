#include "core/ZRedBlackMap.h"

#include "core/ZRBMultiMap.h"
#include "tests/support/AllocProbe.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <thread>
#include <vector>

namespace {

/// An entry that owns a block, so that each copy and each destruction shows.
struct Entry {
    int key;
    int other;
    int* owned;
};

int destructed = 0;

struct User : ZRedBlackMap::MapUser {
    uint spread = 0; ///< 0: all keys in one bucket
    bool copy(const ZRedBlackMap*, void* to, const void* from) override {
        *static_cast<Entry*>(to) = *static_cast<const Entry*>(from);
        auto block = static_cast<int*>(__zalloc(sizeof(int)));
        if (!block) return false;
        *block = static_cast<const Entry*>(from)->key;
        static_cast<Entry*>(to)->owned = block;
        return true;
    }
    void destruct(const ZRedBlackMap*, void* entry) override {
        ++destructed;
        zfree(static_cast<Entry*>(entry)->owned);
    }
    int comp(const ZRedBlackMap*, const void* a, const void* b) override {
        int x = static_cast<const Entry*>(a)->key, y = static_cast<const Entry*>(b)->key;
        return (x > y) - (x < y);
    }
    uint hash(const ZRedBlackMap*, const void* key, uint size) override {
        return uint(static_cast<const Entry*>(key)->key) * spread % size;
    }
};

Entry entryOf(int key, int other = 0) { return {key, other, nullptr}; }
const Entry& at(const orv::detail::PackMap& map, uint id) { return *static_cast<const Entry*>(map.entry(id)); }
uint log2Above(uint n) { return n ? 32 - uint(__builtin_clz(n)) : 0; }

} // namespace

TEST(RedBlackMap, RandomOperationsAgreeWithAModel) {
    struct Row {
        uint hashSize, growth, spread;
        int keys;
    };
    for (Row row : {Row{1, 1, 0, 40}, Row{64, 100, 7, 500}, Row{1024, 32768, 1, 5000}, Row{64, 16, 0, 2000}}) {
        AllocProbe probe;
        User user;
        user.spread = row.spread;
        {
            ZRedBlackMap map(sizeof(Entry), row.hashSize, row.growth);
            map.setUser(&user);
            EXPECT_EQ(user.map(), &map);
            std::map<int, uint> model;
            std::mt19937 random(row.hashSize);
            for (int step = 0; step < 20000; ++step) {
                Entry entry = entryOf(int(random() % uint(row.keys)), step);
                auto known = model.find(entry.key);
                ASSERT_EQ(map.find(&entry), known == model.end() ? 0 : known->second);
                if (known == model.end()) {
                    uint id = map.add(&entry, true);
                    ASSERT_NE(id, 0u);
                    ASSERT_EQ(reinterpret_cast<uintptr_t>(map.entry(id)) % 8, 0u);
                    ASSERT_EQ(static_cast<const byte*>(map.entry(id))[-20], 0);
                    model[entry.key] = id;
                } else if (random() % 2) {
                    ASSERT_TRUE(map.remove(known->second));
                    ASSERT_FALSE(map.valid(known->second));
                    ASSERT_FALSE(map.remove(known->second));
                    model.erase(known);
                }
                ASSERT_EQ(map.count(), model.size());
            }
            for (auto [key, id] : model) ASSERT_EQ(*at(map, id).owned, key);
            // Twice the logarithm is the bound that the colours promise.
            uint inOneBucket = row.spread ? map.count() / std::min(row.hashSize, 64u) + 16 : map.count();
            EXPECT_LE(map.maxDepth(), 2 * log2Above(inOneBucket) + 1);
            EXPECT_GE(map.maxDepth(), log2Above(map.count() / row.hashSize));
        }
        EXPECT_EQ(user.map(), nullptr);
        EXPECT_EQ(probe.live(), 0) << probe.leaks();
    }
}

TEST(RedBlackMap, IdsStartAtOneAndTheNewestFreeOneComesNext) {
    ZRedBlackMap map(4, 8, 4);
    for (uint i = 1; i <= 9; ++i) EXPECT_EQ(map.create(), i);
    EXPECT_FALSE(map.valid(0));
    EXPECT_FALSE(map.valid(10));
    EXPECT_FALSE(map.valid(0xFFFFFFFF));
    map.remove(3);
    map.remove(7);
    EXPECT_EQ(map.entry(7), nullptr);
    EXPECT_EQ(map.create(), 7u);
    EXPECT_EQ(map.create(), 3u);
    EXPECT_EQ(map.create(), 10u);
    EXPECT_TRUE(map.clean());
    EXPECT_EQ(map.count(), 0u);
    EXPECT_EQ(map.create(), 1u);
    EXPECT_EQ(*static_cast<int*>(map.entry(1)), 0);
}

TEST(RedBlackMap, UnlinkedEntriesStayReadableAndCanComeBack) {
    ZRedBlackMap map(4, 8, 4); // without a user: by bytes, in one bucket
    int one = 1, two = 2;
    uint first = map.add(&one, false), second = map.add(&two, false);
    void* place = map.entry(first);
    EXPECT_TRUE(map.unlink(first));
    EXPECT_TRUE(map.unlink(first));
    EXPECT_EQ(map.find(&one), 0u);
    EXPECT_EQ(map.find(&two), second);
    EXPECT_EQ(map.entry(first), place);
    EXPECT_TRUE(map.link(first));
    EXPECT_EQ(map.find(&one), first);
    EXPECT_FALSE(map.link(77));
    EXPECT_FALSE(map.unlink(77));
    EXPECT_EQ(map.depth(0), 2u);
    EXPECT_EQ(map.depth(1), 0u);
}

TEST(RedBlackMap, CopiesShareUntilOneSideWrites) {
    AllocProbe probe;
    User user;
    user.spread = 1;
    {
        ZRedBlackMap map(sizeof(Entry), 16, 8);
        map.setUser(&user);
        for (int key = 0; key < 100; ++key) {
            Entry entry = entryOf(key);
            map.add(&entry, true);
        }
        map.remove(50);
        ZRedBlackMap copy = map;
        EXPECT_EQ(copy.entry(1), map.entry(1));
        destructed = 0;
        Entry gone = entryOf(20);
        EXPECT_TRUE(copy.remove(copy.find(&gone)));
        EXPECT_NE(copy.entry(1), map.entry(1));
        EXPECT_EQ(copy.count(), 98u);
        EXPECT_EQ(map.count(), 99u);
        EXPECT_NE(map.find(&gone), 0u);
        EXPECT_EQ(destructed, 1);
        for (int key = 0; key < 100; ++key) {
            Entry entry = entryOf(key);
            EXPECT_EQ(copy.find(&entry), key == 20 || key == 49 ? 0u : map.find(&entry)) << key;
        }
        ZRedBlackMap third;
        third = map;
        EXPECT_TRUE(third.clean());
        EXPECT_EQ(third.count(), 0u);
        EXPECT_EQ(map.count(), 99u);
        EXPECT_EQ(third.create(), 1u);
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(RedBlackMap, EveryAllocationMayFail) {
    failEachAllocation([](AllocProbe& probe) {
        User user;
        user.spread = 1;
        ZRedBlackMap map(sizeof(Entry), 8, 4);
        if (zrecover()) {
            EXPECT_FALSE(map.isSet());
            EXPECT_EQ(map.create(), 0u);
            return;
        }
        map.setUser(&user);
        uint added = 0;
        for (int key = 0; key < 40; ++key) {
            Entry entry = entryOf(key);
            uint id = map.add(&entry, true);
            added += id != 0;
            ASSERT_EQ(map.count(), added);
            ASSERT_EQ(map.find(&entry), id);
            ASSERT_TRUE(id || probe.failed());
        }
        ZRedBlackMap copy = map;
        Entry more = entryOf(99);
        if (!copy.add(&more, true)) {
            EXPECT_TRUE(probe.failed());
            EXPECT_EQ(copy.count(), added);
        }
        EXPECT_EQ(map.count(), added);
        EXPECT_EQ(map.find(&more), 0u);
        EXPECT_TRUE(map.expand(100) || probe.failed());
    });
}

TEST(RedBlackMap, SizesOutOfRangeAreRefused) {
    ZRedBlackMap map(4, 8, 4);
    uint id = map.create();
    EXPECT_FALSE(map.init(0xFFFFFFFF, 8, 4));
    EXPECT_FALSE(map.init(4, 0xFFFFFFFF, 4));
    EXPECT_FALSE(map.expand(0xFFFFFFFF));
    EXPECT_FALSE(map.expand(0x80000000));
    EXPECT_TRUE(map.valid(id));
    EXPECT_TRUE(map.init(4, 0, 0));
    int key = 5;
    EXPECT_EQ(map.add(&key, false), 1u);
    EXPECT_EQ(map.find(&key), 1u);
}

TEST(RedBlackMap, DestructorsMayComeBackToTheMap) {
    struct Meddler : ZRedBlackMap::MapUser {
        ZRedBlackMap* target = nullptr;
        int made = 0;
        void destruct(const ZRedBlackMap*, void*) override {
            if (made++ < 20) target->create();
        }
    } user;
    AllocProbe probe;
    {
        ZRedBlackMap map(8, 4, 4);
        map.setUser(&user);
        user.target = &map;
        for (int i = 0; i < 10; ++i) map.create();
        EXPECT_TRUE(map.remove(4));
        EXPECT_EQ(map.count(), 10u);
        EXPECT_FALSE(map.valid(4));
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(RedBlackMap, TheLockIsTheStores) {
    ZRedBlackMap map(4, 8, 4), unset;
    EXPECT_FALSE(map.lock());
    EXPECT_FALSE(unset.setLockable(true));
    EXPECT_TRUE(map.setLockable(true));
    EXPECT_FALSE(map.setLockable(false));
    ZRedBlackMap copy = map;
    ASSERT_TRUE(map.lock());
    EXPECT_TRUE(map.lock()) << "it recurses";
    EXPECT_TRUE(map.unlock());
    bool taken = false;
    std::thread([&] { EXPECT_FALSE(copy.unlock()) << "not held by this thread"; }).join();
    EXPECT_TRUE(copy.unlock()) << "the same lock";
    EXPECT_FALSE(map.unlock());
    EXPECT_EQ(copy.create(), 1u);
    EXPECT_TRUE(copy.lockable()) << "an own one, after the copy was detached";
    ASSERT_TRUE(copy.lock());
    std::thread([&] { taken = map.lock() && map.unlock(); }).join();
    EXPECT_TRUE(taken);
    EXPECT_TRUE(copy.unlock());
}

TEST(RedBlackMap, EntriesAreReadWithoutALockWhileOthersAreAdded) {
    ZRedBlackMap map(sizeof(uint), 4, 2); // small steps: the directory grows many times
    std::atomic<uint> published{0};
    constexpr uint last = 20000;
    std::thread reader([&] {
        uint seen = 0;
        while (seen < last) {
            seen = published.load(std::memory_order_acquire);
            for (uint id = seen; id > 0 && id + 50 > seen; --id) ASSERT_EQ(*static_cast<uint*>(map.entry(id)), id * 3);
            ASSERT_EQ(map.entry(last + 1), nullptr);
        }
    });
    for (uint i = 1; i <= last; ++i) {
        uint id = map.create();
        *static_cast<uint*>(map.entry(id)) = id * 3;
        published.store(id, std::memory_order_release);
    }
    reader.join();
}

TEST(MultiMap, OneEntryIsFoundByEachKey) {
    struct Both : ZRBMultiMap::MapUser {
        static int keyOf(uint i, const void* entry) {
            auto e = static_cast<const Entry*>(entry);
            return i ? e->other : e->key;
        }
        int comp(const ZRBMultiMap*, uint i, const void* a, const void* b) override {
            return (keyOf(i, a) > keyOf(i, b)) - (keyOf(i, a) < keyOf(i, b));
        }
        uint hash(const ZRBMultiMap*, uint i, const void* key, uint size) override {
            return uint(keyOf(i, key)) % size;
        }
    } user;
    ZRBMultiMap map(2, sizeof(Entry), 16, 8);
    map.setUser(&user);
    EXPECT_TRUE(map.initmap(1, 4, ZRBMultiMap::UniqueKeys));
    EXPECT_FALSE(map.initmap(2, 4, 0));
    for (int i = 0; i < 200; ++i) {
        Entry entry = entryOf(i, 1000 - i);
        ASSERT_EQ(map.add(&entry, false), uint(i) + 1);
    }
    EXPECT_FALSE(map.initmap(0, 4, 0)) << "entries are linked";
    Entry taken = entryOf(500, 900);
    EXPECT_EQ(map.add(&taken, false), 0u);
    EXPECT_EQ(map.find(0, &taken), 0u) << "in none of the maps";
    EXPECT_EQ(map.count(), 200u);
    ZRBMultiMap copy = map;
    EXPECT_TRUE(copy.remove(101));
    for (int i = 0; i < 200; ++i) {
        Entry entry = entryOf(i, 1000 - i);
        ASSERT_EQ(map.find(0, &entry), uint(i) + 1);
        ASSERT_EQ(map.find(1, &entry), uint(i) + 1);
        ASSERT_EQ(copy.find(1, &entry), i == 100 ? 0 : uint(i) + 1);
    }
    EXPECT_EQ(map.find(2, &taken), 0u);
}
