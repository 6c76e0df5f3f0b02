#include "core/memlock.h"

#include "core/ZLock.h"
#include "core/memory.h"

#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {
template <class F> bool elsewhere(F&& call) {
    bool answer = false;
    std::thread([&] { answer = call(); }).join();
    return answer;
}
} // namespace

TEST(MemLock, ABlockWithoutALockRefuses) {
    void* p = __zalloc(8);
    for (void* block : {static_cast<void*>(nullptr), p}) {
        EXPECT_FALSE(lockable(block) || canlockmem(block) || lockmem(block) || readlockmem(block) ||
                     trylockmem(block) || tryreadlockmem(block) || trywritelockmem(block) || unlockmem(block) ||
                     setspinlock(block, true));
        EXPECT_EQ(memlocklabel(block, nullptr), nullptr);
        EXPECT_EQ(memlockindex(block, 0), -1);
        EXPECT_EQ(getmemlocknumber(block), 0u);
        EXPECT_FALSE(ZLock::object(block).isValid());
    }
    EXPECT_FALSE(makelock(nullptr, true, true));
    zfree(p);
}

TEST(MemLock, ABlockCarriesItsLockAndGivesItBack) {
    void* p = __zalloc(8);
    ASSERT_TRUE(makelock(p, true, true));
    uint number = getmemlocknumber(p);
    EXPECT_TRUE(makelock(p, false, false));
    EXPECT_EQ(getmemlocknumber(p), number);
    EXPECT_EQ(memsize(p), 8u);
    EXPECT_TRUE(lockmem(p) && trywritelockmem(p));
    EXPECT_TRUE(canlockmem(p));
    EXPECT_FALSE(elsewhere([=] { return canlockmem(p); }));
    EXPECT_FALSE(elsewhere([=] { return tryreadlockmem(p); }));
    EXPECT_TRUE(unlockmem(p) && unlockmem(p));
    EXPECT_TRUE(readlockmem(p));
    EXPECT_TRUE(elsewhere([=] { return tryreadlockmem(p) && unlockmem(p); }));
    EXPECT_FALSE(elsewhere([=] { return trylockmem(p); }));
    EXPECT_TRUE(unlockmem(p));
    EXPECT_TRUE(setmemlocklabel(p, "block", 2) && setmemlockindex(p, 0, 9));
    int index;
    EXPECT_STREQ(memlocklabel(p, &index), "block");
    EXPECT_EQ(index, 2);
    EXPECT_EQ(memlockindex(p, 0), 9);
    // The lock moves with a block that grows.
    p = __zrealloc(p, 100000);
    EXPECT_EQ(getmemlocknumber(p), number);
    ZLock lock = ZLock::object(p);
    EXPECT_EQ(lock.getNumber(), number);
    lockmem(p);
    EXPECT_FALSE(elsewhere([&] { return lock.tryLock(); }));
    zfree(p); // held: the name keeps it, and it can be given up
    EXPECT_EQ(lock.lockCount(), 1);
    lock.unlock();
    EXPECT_TRUE(elsewhere([&] {
        bool taken = lock.tryLock();
        lock.unlock();
        return taken;
    }));
    TLockId id = lock.getId();
    lock.remove(false);
    EXPECT_FALSE(toolkit::validLock(id));
}

TEST(MemLock, OneLockHoweverManyMakeIt) {
    for (int round = 0; round < 50; ++round) {
        auto p = static_cast<long*>(__znalloc(sizeof(long)));
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([=] {
                EXPECT_TRUE(makelock(p, true, true));
                EXPECT_TRUE(lockmem(p));
                ++*p;
                EXPECT_TRUE(unlockmem(p));
            });
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(*p, 4);
        zfree(p);
    }
}
