#include "core/ZCacheT.h"

#include "core/ZCacheValueT.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"
#include "tests/support/Tracked.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <list>
#include <random>
#include <thread>

namespace {

/// An item with a cost of its own; it owns memory, so that its copy can fail.
struct Item {
    using ZRelocatable = void;
    Tracked data;
    uint price;
    Item(int key = 0, int mark = 0, uint price = 1) : data(key, mark), price(price) {}
    int key() const { return data.value; }
    uint cost() const { return price; }
};
using Cache = ZCacheT<int, Item>;

/// From the oldest to the newest, by taking the cache apart.
std::vector<int> useOrder(Cache cache) {
    std::vector<int> out;
    while (const Item* item = cache.oldestItem()) {
        int key = item->key();
        out.push_back(key);
        if (!cache.remove(key)) break;
    }
    return out;
}
using Keys = std::vector<int>;

bool fill(Cache& cache, std::initializer_list<int> keys, uint price = 1) {
    bool whole = true;
    for (int key : keys) whole = cache.append(Item(key, key * 10, price)) && whole;
    return whole;
}

} // namespace

TEST(Cache, AgreesWithModel) {
    std::mt19937 random(4);
    Cache cache, copy;
    ASSERT_TRUE(cache.setMaxItems(12) && cache.setMaxCost(40));
    struct Entry {
        int key, mark;
        uint cost, locked;
    };
    std::list<Entry> model; // from the oldest
    Keys copyKeys;
    auto total = [&] {
        uint sum = 0;
        for (auto& entry : model) sum += entry.cost;
        return sum;
    };
    auto trim = [&] {
        for (auto at = model.begin(); at != std::prev(model.end()) && (model.size() > 12 || total() > 40);)
            at = at->locked ? std::next(at) : model.erase(at);
    };
    for (int step = 0; step < 6000; ++step) {
        int key = int(random() % 30);
        uint price = random() % 8;
        auto hit = std::find_if(model.begin(), model.end(), [&](auto& entry) { return entry.key == key; });
        bool known = hit != model.end();
        switch (random() % 8) {
        case 0:
        case 1: {
            ASSERT_TRUE(cache.append(Item(key, step, price)));
            Entry fresh{key, step, price, known ? hit->locked : 0};
            if (known) model.erase(hit);
            model.push_back(fresh);
            trim();
            break;
        }
        case 2:
            ASSERT_EQ(cache.use(key), known);
            if (known) model.splice(model.end(), model, hit);
            break;
        case 3:
            ASSERT_EQ(cache.set(key, Item(key, step, price)), known);
            if (known) *hit = {key, step, price, hit->locked};
            break;
        case 4:
            ASSERT_EQ(cache.setCost(key, price), known);
            if (known) {
                hit->cost = price;
                model.splice(model.end(), model, hit);
                trim();
            }
            break;
        case 5:
            if (step % 3) {
                ASSERT_EQ(cache.unlock(key), known && hit->locked);
                if (known && hit->locked) --hit->locked;
            } else {
                ASSERT_EQ(cache.lock(key), known);
                if (known) ++hit->locked;
            }
            break;
        case 6:
            if (random() % 4 == 0) {
                ASSERT_EQ(cache.remove(key), known);
                if (known) model.erase(hit);
            }
            break;
        case 7:
            if (step % 20 == 0) {
                copy = cache;
                copyKeys = useOrder(cache);
            }
        }
        Keys expected;
        for (auto& entry : model) expected.push_back(entry.key);
        ASSERT_EQ(useOrder(cache), expected) << "step " << step;
        ASSERT_EQ(cache.totalCost(), total());
        ASSERT_EQ(useOrder(copy), copyKeys);
        for (auto& entry : model) {
            ASSERT_EQ(cache.get(entry.key)->data.mark, entry.mark); // which leaves the order
            ASSERT_EQ(cache.isLocked(entry.key), entry.locked > 0);
        }
    }
}

TEST(Cache, Limits) {
    Cache cache;
    EXPECT_EQ(cache.maxItems(), 100u);
    EXPECT_EQ(cache.maxCost(), 0x100000u);
    ASSERT_TRUE(cache.setMaxItems(0) && cache.setMaxCost(0));
    for (int i = 0; i < 300; ++i) ASSERT_TRUE(cache.append(Item(i, 0, 0xFFFFFFFF)));
    EXPECT_EQ(cache.count(), 300u);
    EXPECT_EQ(cache.totalCost(), 0u); // not counted without a limit
    for (int i = 0; i < 300; ++i) ASSERT_TRUE(cache.lock(i));
    ASSERT_TRUE(cache.setMaxCost(10));
    EXPECT_EQ(cache.count(), 300u);
    EXPECT_EQ(cache.totalCost(), 0xFFFFFFFFu);
    ASSERT_TRUE(cache.append(Item(300, 0, 50))); // never dropped by its own addition
    EXPECT_EQ(cache.count(), 301u);
    for (int i = 0; i < 300; ++i) ASSERT_TRUE(cache.unlock(i));
    EXPECT_FALSE(cache.unlock(0));
    ASSERT_TRUE(cache.append(Item(301, 0, 4)));
    EXPECT_EQ(useOrder(cache), (Keys{301}));
    EXPECT_EQ(cache.totalCost(), 4u);
    ASSERT_TRUE(cache.init(16, 50));
    EXPECT_EQ(cache.count(), 0u);
    EXPECT_EQ(cache.totalCost(), 0u);
    EXPECT_FALSE(cache.set(1, Item(1)));
    ASSERT_TRUE(fill(cache, {1}));
    EXPECT_FALSE(cache.set(1, Item(2)));
    EXPECT_EQ(cache.maxCost(), 10u);
    SelectorScope scope;
    ASSERT_TRUE(cache.init("section", "key"));
    EXPECT_EQ(cache.count(), 0u);
    EXPECT_EQ(cache.maxItems(), Cache::defaultItems);
    EXPECT_EQ(cache.maxCost(), Cache::defaultCost);
    EXPECT_TRUE(Cache("name").isEmpty());
}

TEST(Cache, OrdersAndListsItems) {
    using Value = ZCacheValueT<int, int>;
    const Value items[] = {{2, 20}, {1, 10}, {3, 30}};
    ZCacheT<int, Value> cache(ZArrayT<Value>(items, 3)), other;
    for (const Value& value : {items[1], items[2], items[0]}) ASSERT_TRUE(other.append(value));
    EXPECT_EQ(cache.compare(other), 0);
    EXPECT_EQ(cache.totalCost(), 3 * sizeof(Value));
    ASSERT_TRUE(other.set(3, Value(3, 31)));
    EXPECT_LT(cache.compare(other), 0);
    ASSERT_TRUE(other.remove(3));
    EXPECT_GT(cache.compare(other), 0);
    auto values = cache.values();
    ASSERT_EQ(values.count(), 3u);
    EXPECT_EQ(values[0].value, 20);
}

TEST(Cache, EachAllocationFailing) {
    struct Row {
        const char* name;
        bool (*run)(Cache&, const Item&);
    };
    const Row rows[] = {
        {"append", [](Cache& cache, const Item& item) { return cache.append(item); }},
        {"append a known key", [](Cache& cache, const Item&) { return cache.append(*cache.get(2)); }},
        {"set", [](Cache& cache, const Item&) { return cache.set(2, *cache.get(2)); }},
        {"remove", [](Cache& cache, const Item&) { return cache.remove(2); }},
        {"use", [](Cache& cache, const Item&) { return cache.use(2); }},
        {"lock", [](Cache& cache, const Item&) { return cache.lock(2); }},
        {"setCost", [](Cache& cache, const Item&) { return cache.setCost(2, 3); }},
        {"setMaxItems", [](Cache& cache, const Item&) { return cache.setMaxItems(1); }},
        {"setMaxCost", [](Cache& cache, const Item&) { return cache.setMaxCost(1); }},
        {"init", [](Cache& cache, const Item&) { return cache.init(100, 80); }},
    };
    for (const Row& row : rows)
        for (bool shared : {false, true})
            failEachAllocation([&](AllocProbe& probe) {
                zrecover();
                const Item item(9);
                Cache cache, copy;
                if (!fill(cache, {1, 2, 3}) || zrecover()) return;
                if (shared) copy = cache;
                if (!row.run(cache, item)) {
                    EXPECT_TRUE(probe.failed()) << row.name;
                    probe.failAt(0);
                    EXPECT_EQ(useOrder(cache), (Keys{1, 2, 3})) << row.name;
                    EXPECT_EQ(cache.totalCost(), 3u) << row.name;
                }
                if (shared) {
                    probe.failAt(0);
                    EXPECT_EQ(useOrder(copy), (Keys{1, 2, 3})) << row.name;
                    EXPECT_EQ(copy.totalCost(), 3u) << row.name;
                }
                zrecover();
            });
}

TEST(Cache, ItemsDieOutsideTheLock) {
    AllocProbe probe;
    {
        Cache cache;
        cache.setUseLock(true);
        ASSERT_TRUE(cache.setMaxItems(3) && fill(cache, {1, 2, 3}));
        uint seen = 0;
        Tracked::onDeath = [&](Tracked&) { seen += cache.count(); }; // would wait for ever
        ASSERT_TRUE(fill(cache, {4, 4}));
        ASSERT_TRUE(cache.set(4, Item(4)));
        ASSERT_TRUE(cache.remove(3));
        Item out;
        EXPECT_TRUE(cache.get(4, out));
        cache.clear();
        Tracked::onDeath = nullptr;
        EXPECT_GT(seen, 0u);
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(Cache, ManyThreads) {
    ZCacheT<int, ZCacheValueT<int, int>> cache;
    cache.setUseLock(true);
    ASSERT_TRUE(cache.setMaxItems(20));
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&cache, number] {
            std::mt19937 random(number);
            for (int i = 0; i < 3000; ++i) {
                int key = int(random() % 40);
                ZCacheValueT<int, int> out;
                if (!cache.get(key, out))
                    EXPECT_TRUE(cache.append({key, key * 3}));
                else
                    EXPECT_EQ(out.value, key * 3);
                if (random() % 8 == 0) cache.use(key);
                if (random() % 50 == 0) {
                    auto copy = cache;
                    EXPECT_LE(copy.count(), 20u);
                }
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(cache.count(), 20u);
}
