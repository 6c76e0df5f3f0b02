#include "core/ZCompactRBMap.h"

#include "core/construct.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/CaptureDebug.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Item : ZCompactRBItem {
    uint hash;
    int key, value;
    int* owned; ///< a block of its own, so that each copy and each destruction shows
};

class TestMap : public ZCompactRBMap {
public:
    TestMap() : TestMap(0, 100, 0, 0) {}
    TestMap(int capacity, int16 expand, uint hashBits, uint load)
        : ZCompactRBMap(capacity, sizeof(Item), expand, hashBits, load) {}
    ~TestMap() override { clear(); }

    Item& at(uint index) const { return *static_cast<Item*>(itemStart(index)); }
    bool fill(int index, int key, int value) {
        auto block = static_cast<int*>(__zalloc(sizeof(int)));
        if (!block) return false;
        *block = key;
        Item& item = at(uint(index));
        item.key = key;
        item.value = value;
        item.hash = uint(key) * spread;
        item.owned = block;
        return true;
    }
    bool put(int index, int key, int value = 0, bool link = true) {
        if (!insert(index, 1, false)) return false;
        if (!fill(index, key, value)) {
            remove(index, 1);
            return false;
        }
        if (link) addNode(index);
        return true;
    }
    bool put(int key) { return put(int(count()), key); }
    int find(int key) const { return findIndex(&key); }
    int findFirst(int key) const { return findFirstIndex(&key); }
    std::vector<int> keys() const {
        std::vector<int> all;
        for (uint i = 0; i < count(); ++i) all.push_back(at(i).key);
        return all;
    }

    uint spread = 1; ///< 0 floods one bucket
    std::vector<int> freed;
    TestMap* meddled = nullptr; ///< what the destruction of an item comes back to

    bool initItem(ZCompactRBItem* item) override {
        auto own = static_cast<Item*>(item);
        own->owned = static_cast<int*>(__zalloc(4));
        own->key = own->value = 77;
        own->hash = 77 * spread;
        return own->owned != nullptr;
    }
    void freeItem(ZCompactRBItem* item) override {
        auto own = static_cast<Item*>(item);
        freed.push_back(own->key);
        zfree(own->owned);
        if (meddled && freed.size() < 50) {
            TestMap* target = meddled;
            target->put(0, 1000 + int(freed.size()));
            target->find(3);
            target->remove(int(target->count()) - 1, 1);
        }
    }
    bool copyItem(ZCompactRBItem* to, const ZCompactRBItem* from) override {
        auto target = static_cast<Item*>(to);
        auto source = static_cast<const Item*>(from);
        int* block = static_cast<int*>(__zalloc(4));
        if (!block) return false;
        target->hash = source->hash;
        target->key = source->key;
        target->value = source->value;
        target->owned = block;
        return true;
    }
    static int order(int a, int b) { return (a > b) - (a < b); }
    int compareItemKey(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        return order(static_cast<const Item*>(a)->key, static_cast<const Item*>(b)->key);
    }
    int compareItemValue(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        return order(static_cast<const Item*>(a)->value, static_cast<const Item*>(b)->value);
    }
    int compareItem(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        int result = compareItemKey(a, b);
        return result ? result : compareItemValue(a, b);
    }
    int compareKey(const ZCompactRBItem* item, const void* key) const override {
        return order(static_cast<const Item*>(item)->key, *static_cast<const int*>(key));
    }
    int compareValue(const ZCompactRBItem* item, const void* value) const override {
        return order(static_cast<const Item*>(item)->value, *static_cast<const int*>(value));
    }
    uint hashKey(const void* key) const override { return uint(*static_cast<const int*>(key)) * spread; }
    uint hashValue(const void* value) const override { return uint(*static_cast<const int*>(value)) * spread; }
    uint hashItem(const ZCompactRBItem* item) const override { return static_cast<const Item*>(item)->hash; }
};

} // namespace

/// How a map is set up: each row has to behave alike.
struct MapKind {
    const char* name;
    uint hashBits, load, spread;
    bool hashable;
    int keys;
};
class CompactMaps : public testing::TestWithParam<MapKind> {};

TEST_P(CompactMaps, RandomOperationsAgreeWithAModel) {
    const MapKind kind = GetParam();
    AllocProbe probe;
    {
        TestMap map(0, 100, kind.hashBits, kind.load);
        map.spread = kind.spread;
        map.setHashable(kind.hashable);
        std::vector<int> model; // unique keys, by position
        std::mt19937 random(uint(kind.keys));
        auto check = [&] {
            ASSERT_EQ(map.keys(), model);
            ASSERT_TRUE(map.checkTree("test"));
            for (int key = 0; key < kind.keys; ++key) {
                int wanted = int(std::find(model.begin(), model.end(), key) - model.begin());
                ASSERT_EQ(map.find(key), wanted == int(model.size()) ? -1 : wanted) << key;
            }
        };
        for (int step = 0; step < 4000; ++step) {
            int size = int(model.size()), at = size ? int(random() % uint(size)) : 0,
                other = size ? int(random() % uint(size)) : 0;
            int key = int(random() % uint(kind.keys));
            switch (random() % 12) {
            case 0 ... 4: {
                int known = map.find(key);
                ASSERT_EQ(known >= 0, std::count(model.begin(), model.end(), key) == 1);
                if (known >= 0) break;
                int place = random() % 3 ? size : at;
                ASSERT_TRUE(map.put(place, key));
                model.insert(model.begin() + place, key);
                break;
            }
            case 5: {
                int n = int(random() % 4);
                map.remove(at, n);
                model.erase(model.begin() + at, model.begin() + std::min(at + n, size));
                break;
            }
            case 6:
                map.remove(0, 1); // from the front
                if (size) model.erase(model.begin());
                break;
            case 7:
                if (!size) break;
                ASSERT_TRUE(map.swapPlace(at, other));
                std::swap(model[uint(at)], model[uint(other)]);
                break;
            case 8:
                if (!size) break;
                ASSERT_TRUE(map.moveToPlace(at, other));
                model.erase(model.begin() + at);
                model.insert(model.begin() + other, map.at(uint(other)).key);
                break;
            case 9:
                if (random() % 20) break;
                ASSERT_TRUE(map.sort(step % 2));
                std::sort(model.begin(), model.end());
                if (step % 2 == 0) std::reverse(model.begin(), model.end());
                break;
            case 10:
                if (random() % 10) break;
                ASSERT_TRUE(map.trim());
                ASSERT_EQ(map.capacity(), map.count());
                break;
            case 11:
                if (random() % 100 == 0) {
                    map.clear();
                    model.clear();
                }
                break;
            }
            if (step % 400 == 0) check();
        }
        check();
        TestMap copy;
        copy.spread = kind.spread;
        ASSERT_TRUE(copy.assign(map, true));
        EXPECT_EQ(copy.compare(map), 0);
        EXPECT_TRUE(copy.validTree());
        EXPECT_EQ(copy.keys(), model);
        for (int key : model) ASSERT_EQ(copy.find(key), map.find(key));
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}
INSTANTIATE_TEST_SUITE_P(Kinds, CompactMaps,
                         testing::Values(MapKind{"one tree", 0, 0, 1, false, 300},
                                         MapKind{"automatic", 0, 0, 1, true, 600},
                                         MapKind{"by load", 0, 80, 7, true, 300}, MapKind{"fixed", 3, 0, 1, true, 300},
                                         MapKind{"flooded", 0, 0, 0, true, 400}),
                         [](const auto& info) {
                             std::string name = info.param.name;
                             std::replace(name.begin(), name.end(), ' ', '_');
                             return name;
                         });

TEST(CompactMap, TheIndexIsBuiltByTheFirstLookupOnly) {
    TestMap map;
    EXPECT_EQ(map.find(1), -1);
    EXPECT_FALSE(map.hasTree());
    for (int key = 0; key < 10; ++key) map.put(key);
    EXPECT_FALSE(map.hasTree());
    EXPECT_EQ(map.find(4), 4);
    EXPECT_TRUE(map.hasTree());
    map.put(10);
    EXPECT_EQ(map.find(10), 10);
    map.removeNode(4);
    EXPECT_EQ(map.find(4), -1);
    map.addNode(4);
    map.addNode(4);
    EXPECT_EQ(map.find(4), 4);
    map.put(11, 11, 0, false);
    EXPECT_EQ(map.find(11), -1) << "not linked";
    EXPECT_TRUE(map.rebuildTree());
    EXPECT_EQ(map.find(11), 11);
    map.clearTree(true);
    EXPECT_FALSE(map.hasTree());
}

TEST(CompactMap, TheTableFollowsTheCountUnlessItsSizeIsSet) {
    uint before = ZCompactRBMap::hash_memory(5);
    struct Row {
        const char* set;
        uint bits;
    };
    for (Row row : {Row{"", 12}, Row{"bits", 6}, Row{"tree", 0}, Row{"off", 0}, Row{"load", 11}}) {
        TestMap map;
        map.setHashIndex(5);
        std::string set = row.set;
        if (set == "bits") map.setHashBits(6);
        if (set == "tree") map.setHashBits(0);
        if (set == "off") map.setAutoHash(0);
        if (set == "load") map.setAutoHash(1);
        for (int key = 0; key < 9000; ++key) {
            map.put(key * 3);
            ASSERT_EQ(map.find(key * 3), key);
        }
        EXPECT_EQ(map.hashBits(), row.bits) << set;
        EXPECT_EQ(map.hashSize(), row.bits ? 1u << row.bits : 0) << set;
        EXPECT_EQ(ZCompactRBMap::hash_memory(5) - before, 4 * map.hashSize());
        EXPECT_LE(map.maxCollisions(), row.bits >= 11 ? 12 : row.bits ? 18 : 28) << set;
        EXPECT_GE(map.maxCollisions(), row.bits ? 2 : 13) << set;
    }
    EXPECT_EQ(ZCompactRBMap::hash_memory(5), before);
    EXPECT_EQ(ZCompactRBMap::hash_memory(99), 0u);
}

TEST(CompactMap, HashSettingsDropTheIndexOnlyWhenTheyChangeSomething) {
    TestMap map;
    for (int key = 0; key < 100; ++key) map.put(key);
    auto dropped = [&](auto&& change) {
        map.refreshTree();
        change();
        return !map.hasTree();
    };
    EXPECT_TRUE(dropped([&] { map.setHashBits(7); }));
    EXPECT_FALSE(dropped([&] { map.setHashBits(7); }));
    EXPECT_TRUE(dropped([&] { map.setHashable(false); }));
    EXPECT_FALSE(dropped([&] { map.setHashable(false); }));
    EXPECT_EQ(map.hashSize(), 0u);
    EXPECT_TRUE(dropped([&] { map.setHashable(true); }));
    EXPECT_TRUE(dropped([&] { map.resetHash(2); })) << "7 bits against 11";
    EXPECT_EQ(map.hashBits(), 11u);
    EXPECT_FALSE(dropped([&] { map.resetHash(0); }));
    map.setHashBits(9);
    EXPECT_FALSE(dropped([&] { map.resetHash(2); })) << "no more than the threshold";
    EXPECT_TRUE(dropped([&] { map.resetHash(1); }));
    EXPECT_TRUE(dropped([&] { map.setAutoHash(0); }));
    EXPECT_EQ(map.hashBits(), 0u);
    EXPECT_FALSE(dropped([&] { map.resetHash(0); })) << "switched off";
    EXPECT_EQ(map.limitHash(12345), 0u);
    map.setHashBits(99);
    EXPECT_EQ(map.hashBits(), ZCompactRBMap::mostHashBits);
}

TEST(CompactMap, EqualKeysStandTogetherTheNewestFirst) {
    TestMap map;
    for (int i = 0; i < 60; ++i) map.put(i, i % 3, i);
    EXPECT_EQ(map.at(uint(map.find(1))).key, 1);
    map.put(60, 1, 60);
    int first = map.findFirst(1);
    EXPECT_EQ(map.at(uint(first)).value, 60);
    EXPECT_TRUE(map.predecessor(first) < 0 || map.at(uint(map.predecessor(first))).key == 0);
    int seen = 0;
    for (int at = first; at >= 0 && map.at(uint(at)).key == 1; at = map.successor(at)) ++seen;
    EXPECT_EQ(seen, 21);
    EXPECT_EQ(map.findFirst(7), -1);
    int value = 59;
    EXPECT_EQ(map.valueIndex(&value), 59);
    value = 999;
    EXPECT_EQ(map.valueIndex(&value), -1);
}

TEST(CompactMap, MapsCanBeOrderedByValue) {
    struct ByValue : TestMap {
        int compareItemKey(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
            return compareItemValue(a, b);
        }
        uint hashItem(const ZCompactRBItem* item) const override {
            return uint(static_cast<const Item*>(item)->value) * spread;
        }
    } map;
    for (int i = 0; i < 300; ++i) map.put(i, 0, i * 5);
    int value = 500, missing = 501;
    EXPECT_EQ(map.findValueIndex(&value), 100);
    EXPECT_EQ(map.findItemByValue(&value), map.itemStart(100));
    EXPECT_EQ(map.findItemByValue(&missing), nullptr);
}

TEST(CompactMap, RangesAreClamped) {
    TestMap map;
    for (int key = 0; key < 10; ++key) map.put(key);
    map.find(0);
    EXPECT_TRUE(map.remove(-2, 5)); // the first three
    EXPECT_EQ(map.keys(), (std::vector<int>{3, 4, 5, 6, 7, 8, 9}));
    EXPECT_TRUE(map.remove(5, 100));
    EXPECT_TRUE(map.remove(9, 1));
    EXPECT_TRUE(map.remove(-5, 2));
    EXPECT_TRUE(map.insert(2, 0, true));
    EXPECT_TRUE(map.insert(2, -7, true));
    EXPECT_EQ(map.keys(), (std::vector<int>{3, 4, 5, 6, 7}));
    EXPECT_TRUE(map.insert(99, 1, true));
    EXPECT_EQ(map.at(5).key, 77);
    EXPECT_TRUE(map.insert(-3, 1, true));
    EXPECT_EQ(map.at(0).key, 77);
    for (auto [from, to] : {std::pair{-1, 0}, {0, -1}, {0, 7}, {7, 0}}) {
        EXPECT_FALSE(map.moveToPlace(from, to));
        EXPECT_FALSE(map.swapPlace(from, to));
    }
    EXPECT_FALSE(map.setItemSize(64));
    map.clear();
    EXPECT_FALSE(map.setItemSize(8));
    EXPECT_TRUE(map.setItemSize(64));
}

TEST(CompactMap, GrowthRules) {
    struct Row {
        int16 expand;
        int capacity, more;
        uint grown;
    };
    for (Row row : {Row{-16, 20, 1, 32}, Row{-16, 20, 30, 64}, Row{100, 20, 1, 40}, Row{50, 21, 1, 32},
                    Row{0, 20, 1, 40}, Row{0, 20, 50, 70}, Row{10, 3, 1, 4}, Row{100, 0, 5, 5}}) {
        TestMap map(row.capacity, row.expand, 0, 0);
        EXPECT_TRUE(map.setSpace(row.capacity));
        for (int i = 0; i < row.capacity; ++i) map.put(i);
        EXPECT_EQ(map.capacity(), uint(row.capacity));
        EXPECT_TRUE(map.expand(row.more));
        EXPECT_EQ(map.capacity(), row.grown) << row.expand << " " << row.capacity;
        EXPECT_EQ(map.count(), uint(row.capacity));
        EXPECT_TRUE(map.trim());
        EXPECT_EQ(map.capacity(), uint(row.capacity));
    }
    TestMap map(0, -16, 0, 0);
    EXPECT_TRUE(map.setCount(5));
    EXPECT_EQ(map.count(), 5u);
    EXPECT_EQ(map.capacity(), 16u);
    EXPECT_EQ(map.at(4).owned, nullptr);
    EXPECT_TRUE(map.setSpace(2));
    EXPECT_EQ(map.count(), 2u);
    EXPECT_TRUE(map.setSpace(17));
    EXPECT_EQ(map.count(), 2u);
    EXPECT_EQ(map.capacity(), 32u) << "15 more were asked for";
}

TEST(CompactMap, SizesOutOfRangeAreRefused) {
    TestMap map;
    map.put(1);
    AllocProbe probe; // refuses everything, so that nothing huge is really taken
    probe.failAt(1, true);
    for (int count : {0x7FFFFFFF, 0x7FFFFFFE}) {
        EXPECT_FALSE(map.append(count, false));
        EXPECT_FALSE(map.insert(0, count, true));
        EXPECT_FALSE(map.expand(count));
        EXPECT_FALSE(map.setSpace(count));
        EXPECT_FALSE(map.setCount(count));
    }
    probe.failAt(0);
    EXPECT_EQ(map.keys(), std::vector<int>{1});
    EXPECT_EQ(map.find(1), 0);
    ZCompactRBMap unset;
    EXPECT_FALSE(unset.append(1, false)) << "no item size";
}

TEST(CompactMap, EveryAllocationMayFail) {
    failEachAllocation([](AllocProbe& probe) {
        TestMap map(2, 100, 0, 0);
        zrecover();
        std::vector<int> kept;
        for (int key = 0; key < 30; ++key) {
            if (map.put(key))
                kept.push_back(key);
            else
                ASSERT_TRUE(probe.failed());
            ASSERT_EQ(map.keys(), kept);
            int found = map.find(key);
            ASSERT_TRUE(found >= 0 || probe.failed());
        }
        ASSERT_TRUE(map.append(3, true) || (probe.failed() && map.keys() == kept));
        TestMap copy;
        copy.put(99);
        if (copy.assign(map, false)) {
            ASSERT_EQ(copy.keys(), map.keys());
            ASSERT_EQ(copy.find(kept.back()), map.find(kept.back()));
        } else
            ASSERT_TRUE(copy.keys() == std::vector<int>{99} || copy.keys().empty());
        std::vector<int> before = map.keys();
        if (!map.sort(false)) {
            ASSERT_TRUE(probe.failed());
            ASSERT_EQ(map.keys(), before);
        }
        map.remove(1, 25);
        ASSERT_EQ(map.count(), before.size() - 25);
        ASSERT_TRUE(map.rebuildTree() || probe.failed());
        ASSERT_GE(map.find(map.at(0).key), 0);
    });
}

TEST(CompactMap, ItemsGoLastToFirstAndTheirDestructionMayComeBack) {
    AllocProbe probe;
    {
        TestMap map;
        for (int key = 0; key < 5; ++key) map.put(key);
        map.clear();
        EXPECT_EQ(map.freed, (std::vector<int>{4, 3, 2, 1, 0}));
        for (int count : {1, 4, 60}) {
            map.freed.clear();
            for (int key = 0; key < 200; ++key) map.put(key);
            map.find(3);
            map.meddled = &map;
            map.remove(2, count);
            EXPECT_TRUE(map.checkTree("test"));
            map.clear();
            map.meddled = nullptr;
            for (int key : map.keys()) EXPECT_EQ(map.at(uint(map.find(key))).key, key);
            map.clear();
        }
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(CompactMap, TakingFromTheFrontMovesNothing) {
    // A queue of constant length: its storage neither grows nor moves down with each step.
    TestMap map(100, 100, 0, 0);
    int last = 0;
    for (; last < 100; ++last) map.put(last);
    map.find(0);
    uint moves = 0;
    for (int step = 0; step < 20000; ++step) {
        const ZCompactRBItem* second = map.itemStart(1);
        map.remove(0, 1);
        ASSERT_EQ(map.itemStart(0), second);
        ASSERT_TRUE(map.put(last++));
        moves += map.itemStart(0) != second;
        if (step % 1000 == 0) {
            ASSERT_TRUE(map.checkTree("queue"));
            for (auto [key, at] : {std::pair{last - 1, 99}, {last - 100, 0}, {last - 101, -1}})
                ASSERT_EQ(map.find(key), at);
        }
    }
    EXPECT_EQ(map.capacity(), 100u);
    EXPECT_LT(moves, 500u);
}

TEST(CompactMap, CompareGoesByKeyThenValueThenLength) {
    TestMap a, b;
    EXPECT_EQ(a.compare(b), 0);
    for (int key = 0; key < 50; ++key) {
        a.put(key);
        b.put(0, key);
    }
    EXPECT_EQ(a.compare(b), 0) << "the order of adding doesn't count";
    b.put(50);
    EXPECT_LT(a.compare(b), 0);
    EXPECT_GT(b.compare(a), 0);
    a.at(3).value = 1;
    EXPECT_GT(a.compare(b), 0);
    AllocProbe probe;
    probe.failAt(1);
    EXPECT_EQ(a.compare(b), 0) << "no memory for the order";
}

TEST(CompactMap, OrdersWithoutMoving) {
    TestMap map;
    EXPECT_EQ(map.getSortOrder(true), nullptr);
    map.put(5);
    int* single = map.getSortOrder(true);
    EXPECT_EQ(single[0], 0);
    zfree(single);
    for (int key : {9, 1, 5, 3}) map.put(int(map.count()), key, key == 5);
    int order[5];
    EXPECT_TRUE(map.sortOrder(order, false));
    EXPECT_EQ(std::vector<int>(order, order + 5), (std::vector<int>{1, 3, 0, 4, 2}));
    EXPECT_TRUE(map.keyOrder(order));
    EXPECT_EQ(std::vector<int>(order, order + 5), (std::vector<int>{2, 4, 0, 3, 1}));
    auto byDistance = [](const void* from, const ZCompactRBItem* a, const ZCompactRBItem* b) {
        int middle = *static_cast<const int*>(from);
        return std::abs(static_cast<const Item*>(a)->key - middle) -
               std::abs(static_cast<const Item*>(b)->key - middle);
    };
    int from = 4;
    int* near = map.getSortOrder(byDistance, &from, true);
    EXPECT_EQ(std::vector<int>(near, near + 5), (std::vector<int>{0, 3, 4, 2, 1})) << "equal ones in their old order";
    zfree(near);
    EXPECT_EQ(map.keys(), (std::vector<int>{5, 9, 1, 5, 3}));
    EXPECT_TRUE(map.sort(byDistance, &from, false));
    EXPECT_EQ(map.keys(), (std::vector<int>{9, 1, 5, 5, 3}));
}

TEST(CompactMap, DamagedLinksEndTheWalkAndAreRepaired) {
    TestMap map;
    map.setHashable(false);
    for (int key = 0; key < 100; ++key) map.put(key);
    ASSERT_EQ(map.find(50), 50);
    ASSERT_TRUE(map.log_verify("sound"));
    // The first item is the leftmost: one walk ends there.
    map.at(0).left = 1;
    int below = -1;
    EXPECT_FALSE(map.validTree());
    EXPECT_EQ(map.find(below), -1);
    EXPECT_EQ(map.at(0).left, 0u) << "the link is cleared";
    // A link across the tree, and one out of it.
    map.at(0).left = 60;
    EXPECT_EQ(map.find(below), -1);
    map.at(0).left = 5000;
    EXPECT_EQ(map.find(below), -1);
    {
        CaptureDebug capture;
        EXPECT_FALSE(map.log_verify("damaged"));
        EXPECT_TRUE(capture.has("invalid tree: 1, 5000"));
        EXPECT_TRUE(capture.has("rbtree error: 1"));
        EXPECT_TRUE(capture.has("damaged: node: 99, "));
    }
    int known = 50;
    EXPECT_FALSE(map.verifyKey(&known)) << "it is found";
    EXPECT_TRUE(map.verifyKey(&below));
    EXPECT_TRUE(map.validTree());
    // A hash that changes behind the map's back.
    map.setHashable(true);
    for (uint i = 0; i < 100; ++i) map.find(int(i));
    for (uint i = 0; i < 100; ++i) map.at(i).hash += 12345;
    map.remove(20, 3);
    EXPECT_EQ(map.count(), 97u);
    EXPECT_TRUE(map.validTree());
}

TEST(CompactMap, LookupsAreRightWhileTheIndexIsDroppedAndBuilt) {
    TestMap map;
    for (int key = 0; key < 500; ++key) map.put(key);
    int done = 0;
    std::vector<std::thread> readers;
    for (int t = 0; t < 4; ++t)
        readers.emplace_back([&map, &done, t] {
            for (int round = 0; round < 40; ++round) {
                TestMap copy;
                ASSERT_TRUE(t != 3 || copy.assign(map, false));
                const TestMap& read = t == 3 ? copy : map;
                for (int key = round % 7; key < 500; key += 7) {
                    ASSERT_EQ(read.find(key), key);
                    ASSERT_EQ(read.findFirst(key), key);
                }
            }
            toolkit::increment(done);
        });
    while (toolkit::loadAcquire(done) < 4 && !HasFatalFailure()) {
        map.clearTree(true);
        std::this_thread::yield();
    }
    for (auto& reader : readers) reader.join();
}
