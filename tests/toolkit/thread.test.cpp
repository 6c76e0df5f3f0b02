#include "toolkit/thread.h"

#include "toolkit/atomic.h"
#include "toolkit/lock.h"

#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

namespace {
struct Calls {
    int begun = 0, ended = 0;
    toolkit::ThreadHooks hooks{this, [](void* p) { toolkit::increment(static_cast<Calls*>(p)->begun); },
                               [](void* p) { toolkit::increment(static_cast<Calls*>(p)->ended); }};
};
} // namespace

TEST(Thread, NumbersAreDistinctAmongLivingThreadsAndComeBackLate) {
    constexpr int count = 32;
    uint numbers[count];
    int ready = 0, go = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i)
        threads.emplace_back([&, i] {
            numbers[i] = toolkit::threadNumber();
            EXPECT_EQ(numbers[i], toolkit::threadNumber());
            toolkit::increment(ready);
            while (!toolkit::loadAcquire(go)) std::this_thread::yield();
        });
    while (toolkit::loadAcquire(ready) < count) std::this_thread::yield();
    toolkit::storeRelease(go, 1);
    for (auto& thread : threads) thread.join();
    std::set<uint> seen(numbers, numbers + count);
    EXPECT_EQ(seen.size(), size_t(count));
    EXPECT_FALSE(seen.count(0));
    uint later = 0;
    std::thread([&] { later = toolkit::threadNumber(); }).join();
    EXPECT_FALSE(seen.count(later));
}

TEST(Thread, HooksRunOnceForEachThreadThatUsesTheLibrary) {
    toolkit::threadNumber(); // this thread has begun before the hooks are set
    Calls calls;
    ASSERT_TRUE(toolkit::addThreadHooks(&calls.hooks));
    std::thread([] {}).join(); // never uses the library
    EXPECT_EQ(calls.begun, 0);
    for (int i = 0; i < 3; ++i)
        std::thread([] {
            TLockId lock = toolkit::createLock(true, true);
            toolkit::lockAlone(lock);
            toolkit::lockAlone(lock);
            toolkit::unlock(lock);
            toolkit::unlock(lock);
            toolkit::destroyLock(lock, false);
        }).join();
    EXPECT_EQ(calls.begun, 3);
    EXPECT_EQ(calls.ended, 3);
    ASSERT_TRUE(toolkit::removeThreadHooks(&calls.hooks));
    EXPECT_FALSE(toolkit::removeThreadHooks(&calls.hooks));
    std::thread([] { toolkit::threadNumber(); }).join();
    EXPECT_EQ(calls.begun, 3);
}

namespace {
struct LateUser {
    int touched = 0;
    ~LateUser() { EXPECT_NE(touched ? toolkit::threadNumber() : 1u, 0u); }
};
thread_local LateUser lateUser;
} // namespace

TEST(Thread, AnObjectOfTheThreadMayTakeLocksAsItGoes) {
    Calls calls;
    ASSERT_TRUE(toolkit::addThreadHooks(&calls.hooks));
    std::thread([] { lateUser.touched = 1; }).join();
    EXPECT_EQ(calls.begun, calls.ended);
    EXPECT_EQ(calls.begun, 1);
    toolkit::removeThreadHooks(&calls.hooks);
}

TEST(Thread, HookTableRefusesMoreThanItHolds) {
    std::vector<Calls> many(40);
    int added = 0;
    for (Calls& calls : many) added += toolkit::addThreadHooks(&calls.hooks);
    EXPECT_GE(added, 8);
    EXPECT_LT(added, 40);
    for (int i = 0; i < added; ++i) EXPECT_TRUE(toolkit::removeThreadHooks(&many[i].hooks));
}
