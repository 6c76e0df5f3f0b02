#include "core/ZPointerIndexMap.h"

#include "core/ItemPool.h"
#include "tests/support/AllocProbe.h"

#include <cstring>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

TEST(ZPtrKey, OrderAndHash) {
    auto at = [](uintptr_t address) { return ZPtrKey(reinterpret_cast<void*>(address)); };
    EXPECT_EQ(at(1).compare(at(2)), -1);
    EXPECT_EQ(at(~uintptr_t(0)).compare(at(1)), 1) << "as unsigned";
    EXPECT_EQ(at(5).compare(at(5)), 0);
    struct {
        uintptr_t address;
        uint hash;
    } rows[] = {{0, 0xFFFF}, {0x12345678, 0x1234BBB3}, {0xFFFFFFFF00000000u, 0xFFFFFFFFu}};
    for (auto& row : rows) EXPECT_EQ(at(row.address).hashKey(), row.hash) << row.address;
    EXPECT_EQ(at(0x0000000100000001u).hashKey(), at(0).hashKey());
}

TEST(ZPointerIndexMap, NumbersInOrderOfAdding) {
    ZPointerIndexMap map;
    int things[5000];
    EXPECT_EQ(map.pointerIndex(things), -1);
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(map.addPointerIndex(things + i), i);
    EXPECT_EQ(map.addPointerIndex(things + 7), 7) << "known already";
    EXPECT_EQ(map.count(), 5000u);
    for (int i = 0; i < 5000; ++i) ASSERT_EQ(map.pointerIndex(things + i), i);
    EXPECT_EQ(map.pointerIndex(things + 5000), -1);
    ZPointerIndexMap copy(map), other;
    EXPECT_EQ(copy.compare(map), 0);
    EXPECT_TRUE(copy.setPointerIndex(things + 3, 99));
    EXPECT_EQ(copy.pointerIndex(things + 3), 99);
    EXPECT_EQ(map.pointerIndex(things + 3), 3);
    EXPECT_EQ(copy.compare(map), 1);
    EXPECT_TRUE(other.setPointerIndex(nullptr, 40));
    EXPECT_EQ(other.pointerIndex(nullptr), 40);
    EXPECT_EQ(other.addPointerIndex(things), 1);
    other.assign(map);
    map.clear();
    EXPECT_EQ(map.count(), 0u);
    EXPECT_EQ(other.pointerIndex(things + 4999), 4999);
    other.clear();
    copy.clear();
    EXPECT_EQ(ZPointerIndex::count(), 0u);
}

TEST(ZPointerIndexMap, FailsWholeAndLeavesNothing) {
    int things[3000];
    failEachAllocation([&](AllocProbe& probe) {
        ZPointerIndexMap map, copy;
        bool added = true, changed = true;
        for (int i = 0; i < 3000; ++i) {
            uint before = map.count();
            int index = map.addPointerIndex(things + i);
            added &= index >= 0;
            EXPECT_EQ(map.count(), before + (index >= 0));
        }
        copy.assign(map);
        changed = copy.setPointerIndex(things + 1, 9);
        EXPECT_EQ(copy.pointerIndex(things + 1) == 9, changed);
        EXPECT_NE(map.pointerIndex(things + 1), 9);
        EXPECT_TRUE((added && changed) || probe.failed());
    });
}

TEST(ItemPool, KeepsItsChunksOnlyWhileOpen) {
    AllocProbe probe;
    static orv::detail::ItemPool pool(40, 8);
    pool.open();
    std::vector<void*> items;
    for (int i = 0; i < 20; ++i) {
        items.push_back(pool.take());
        EXPECT_EQ(reinterpret_cast<uintptr_t>(items.back()) % 16, 0u);
        std::memset(items.back(), i, 40);
    }
    EXPECT_EQ(probe.live(), 3);
    for (int i = 0; i < 20; ++i) EXPECT_EQ(static_cast<char*>(items[size_t(i)])[39], i);
    while (items.size() > 1) pool.give(items.back()), items.pop_back();
    EXPECT_EQ(probe.live(), 3);
    pool.close();
    EXPECT_EQ(probe.live(), 3) << "one item is still out";
    pool.give(items[0]);
    EXPECT_EQ(probe.live(), 0);
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 2000; ++i) {
                int* a = static_cast<int*>(pool.take());
                int* b = static_cast<int*>(pool.take());
                *a = i, *b = -i;
                EXPECT_EQ(*a + *b, 0);
                pool.give(a), pool.give(b);
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(pool.count(), 0u);
    EXPECT_EQ(probe.live(), 0);
}
