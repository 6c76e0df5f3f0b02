#include "core/ZStackT.h"

#include "core/ZPairT.h"
#include "core/ZVectorT.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/Tracked.h"

#include <gtest/gtest.h>

TEST(Stack, LastInFirstOutWithSharedItems) {
    ZStackT<Tracked> stack(2, -4);
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(stack.push(Tracked(i)));
    ZStackT<Tracked> copy(stack);
    Tracked out;
    for (int i = 5; i >= 0; --i) {
        EXPECT_EQ(std::as_const(stack).top()->value, i);
        ASSERT_TRUE(stack.pop(out));
        EXPECT_EQ(out.value, i);
    }
    EXPECT_FALSE(stack.pop());
    EXPECT_FALSE(stack.pop(out));
    EXPECT_EQ(stack.top(), nullptr);
    EXPECT_EQ(copy.count(), 6u);
    EXPECT_EQ(copy[0].value, 0);
    ASSERT_TRUE(copy.push(*copy.top()));
    EXPECT_EQ(copy.top()->value, 5);
}

TEST(Stack, EachAllocationFailing) {
    failEachAllocation([](AllocProbe& probe) {
        ZStackT<Tracked> stack;
        for (int i = 0; i < 3; ++i)
            if (!stack.push(Tracked(i))) return void(zrecover());
        ZStackT<Tracked> copy(stack);
        Tracked out(-1);
        if (!stack.pop(out)) {
            EXPECT_TRUE(probe.failed());
            EXPECT_EQ(stack.count(), 3u);
            EXPECT_EQ(out.value, -1);
        }
        EXPECT_EQ(copy.count(), 3u);
        zrecover();
    });
}

TEST(Vector, LengthIsFixed) {
    AllocProbe probe;
    {
        ZVectorT<Tracked> vector(3), copy(vector);
        ASSERT_TRUE(vector.set(1, Tracked(5)));
        EXPECT_EQ(copy[1].value, 0);
        EXPECT_GT(vector.compare(copy), 0);
        EXPECT_EQ(vector.indexOf(Tracked(5)), 1);
        EXPECT_EQ(vector.entry(3), nullptr);
        EXPECT_FALSE(vector.set(3, Tracked(5)));
        int sum = 0;
        for (ZVectorT<Tracked>::iterator at = vector.begin(); at != vector.end(); ++at) sum += at->value;
        EXPECT_EQ(sum, 5);
        zrecover();
        probe.failAt(2);
        ZVectorT<Tracked> failed(4);
        EXPECT_EQ(zrecover(), 1);
        EXPECT_EQ(failed.count(), 0u);
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(Pair, OrderAndHash) {
    using Pair = ZPairT<int, large>;
    EXPECT_LT(Pair(1, 9).compare(Pair(2, 0)), 0);
    EXPECT_GT(Pair(1, 9).compare(Pair(1, 8)), 0);
    EXPECT_EQ(Pair(1, 9), Pair(1, 9));
    EXPECT_NE(Pair(1, 2).hashKey(), Pair(2, 1).hashKey());
    EXPECT_TRUE((zrelocatable<ZPairT<int, Tracked>>));
    EXPECT_FALSE((zrelocatable<ZPairT<int, Anchored>>));
}
