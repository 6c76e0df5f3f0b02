#include "core/ZSlotT.h"

#include "tests/support/AllocProbe.h"
#include "tests/support/Tracked.h"

#include <gtest/gtest.h>
#include <map>
#include <random>

namespace {
using Slots = ZSlotT<Anchored>;

std::map<int, int> values(const Slots& slots) {
    std::map<int, int> out;
    for (auto at = slots.begin(); at != slots.end(); ++at) {
        EXPECT_TRUE(at->sound());
        out[at.index()] = at->value;
    }
    EXPECT_EQ(out.size(), slots.count());
    return out;
}
} // namespace

TEST(Slots, NumbersStay) {
    std::mt19937 random(2);
    Slots slots(2, 3), copy;
    std::map<int, int> model, copyModel;
    for (int step = 0; step < 3000; ++step) {
        int number = int(random() % 40);
        if (random() % 2) {
            int index = slots.add(Anchored(step));
            ASSERT_GE(index, 0);
            ASSERT_EQ(model.count(index), 0u);
            model[index] = step;
        } else {
            ASSERT_TRUE(slots.remove(number));
            model.erase(number);
        }
        if (step % 100 == 0) {
            copy = slots;
            copyModel = model;
        }
        ASSERT_EQ(slots.get(number) != nullptr, model.count(number) == 1);
        ASSERT_EQ(values(slots), model);
        ASSERT_EQ(values(copy), copyModel);
    }
    EXPECT_EQ(slots.capacity() % 3, 2u);
}

TEST(Slots, NewestFreeNumberFirst) {
    Slots slots(4, 4);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(slots.add(Anchored(i)), i);
    EXPECT_EQ(slots.capacity(), 8u);
    for (int i : {1, 3}) ASSERT_TRUE(slots.remove(i));
    for (int i : {3, 1, 5}) EXPECT_EQ(slots.add(*slots.get(0)), i);
    for (int i : {-1, 6, 8, 0x7FFFFFFF}) EXPECT_EQ(slots.get(i), nullptr);
    zrecover();
    Slots tooMany(0x80000000u, 1);
    EXPECT_EQ(zrecover(), 1);
}

TEST(Slots, EachAllocationFailing) {
    for (bool shared : {false, true})
        failEachAllocation([&](AllocProbe& probe) {
            zrecover();
            Slots slots(2, 2), copy;
            for (int i = 0; i < 2; ++i)
                if (slots.add(Anchored(i)) < 0) return void(zrecover());
            if (zrecover()) return;
            if (shared) copy = slots;
            auto before = values(slots);
            if (slots.add(*slots.get(1)) < 0) {
                EXPECT_TRUE(probe.failed());
                EXPECT_EQ(values(slots), before);
            }
            if (shared) { EXPECT_EQ(values(copy), before); }
            auto now = values(slots);
            if (!slots.remove(0)) { EXPECT_EQ(values(slots), now); }
            zrecover();
        });
}

TEST(Slots, DestructorsThatComeBack) {
    AllocProbe probe;
    {
        ZSlotT<Tracked> slots(2, 2);
        ASSERT_EQ(slots.add(Tracked(1)), 0);
        ASSERT_EQ(slots.add(Tracked(2)), 1);
        Tracked::onDeath = [&](Tracked& item) {
            if (item.value == 1 && item.mark == 0) {
                EXPECT_EQ(slots.get(0), nullptr);
                EXPECT_EQ(slots.add(Tracked(7, 1)), 0);
                Tracked::onDeath = nullptr;
            }
        };
        ASSERT_TRUE(slots.remove(0));
        Tracked::onDeath = nullptr;
        ASSERT_NE(slots.get(0), nullptr);
        EXPECT_EQ(slots.get(0)->value, 7);
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}
