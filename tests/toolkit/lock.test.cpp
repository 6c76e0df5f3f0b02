#include "toolkit/lock.h"

#include "tests/support/AllocProbe.h"
#include "toolkit/thread.h"

#include <chrono>
#include <functional>
#include <gtest/gtest.h>
#include <set>
#include <thread>
#include <vector>

using namespace toolkit;

namespace {
void nap(int millis) { std::this_thread::sleep_for(std::chrono::milliseconds(millis)); }
/// What the call answers on a thread of its own, which gives up what it took.
bool elsewhere(bool (*take)(TLockId), TLockId id) {
    bool taken = false;
    std::thread([&] {
        taken = take(id);
        if (taken) unlock(id);
    }).join();
    return taken;
}
struct Lock {
    TLockId id;
    explicit Lock(bool spinning = true, bool recursive = true) : id(createLock(spinning, recursive)) {}
    ~Lock() { destroyLock(id, true); }
    operator TLockId() const { return id; }
};
} // namespace

TEST(Lock, HeldAloneRecursesAndExcludesOthers) {
    Lock lock;
    ASSERT_NE(lock.id, 0u);
    EXPECT_FALSE(unlock(lock));
    for (int depth = 1; depth <= 3; ++depth) {
        EXPECT_TRUE(depth == 2 ? tryLockAlone(lock) : lockAlone(lock));
        EXPECT_EQ(lockHolds(lock), depth);
    }
    EXPECT_EQ(lockHolder(lock), threadNumber());
    EXPECT_FALSE(elsewhere(tryLockAlone, lock));
    EXPECT_FALSE(elsewhere(tryLockShared, lock));
    std::thread([&] { EXPECT_FALSE(unlock(lock)); }).join();
    for (int depth = 2; depth >= 0; --depth) {
        EXPECT_TRUE(unlock(lock));
        EXPECT_EQ(lockHolds(lock), depth);
    }
    EXPECT_FALSE(unlock(lock));
    EXPECT_TRUE(elsewhere(tryLockAlone, lock));
}

TEST(Lock, WithoutRecursionTheHolderIsRefused) {
    Lock lock(true, false);
    EXPECT_TRUE(lockAlone(lock));
    EXPECT_FALSE(tryLockAlone(lock));
    EXPECT_FALSE(lockFree(lock));
    EXPECT_TRUE(unlock(lock));
    EXPECT_TRUE(lockShared(lock));
    EXPECT_TRUE(lockShared(lock));
    EXPECT_TRUE(unlock(lock));
    EXPECT_TRUE(unlock(lock));
}

TEST(Lock, ReadersShareAndTheOnlyOneMayUpgrade) {
    Lock lock;
    EXPECT_TRUE(lockShared(lock));
    EXPECT_TRUE(elsewhere(tryLockShared, lock));
    EXPECT_FALSE(elsewhere(tryLockAlone, lock));
    EXPECT_TRUE(lockShared(lock));
    EXPECT_EQ(lockHolds(lock), 1);
    EXPECT_TRUE(lockAlone(lock));  // on top of two reads
    EXPECT_TRUE(lockShared(lock)); // and a read on top of that
    EXPECT_FALSE(elsewhere(tryLockShared, lock));
    EXPECT_TRUE(unlock(lock)); // the newest hold is the read
    EXPECT_FALSE(elsewhere(tryLockShared, lock));
    EXPECT_TRUE(unlock(lock)); // the exclusive one: back to reading
    EXPECT_TRUE(elsewhere(tryLockShared, lock));
    EXPECT_FALSE(elsewhere(tryLockAlone, lock));
    EXPECT_TRUE(unlock(lock));
    EXPECT_FALSE(elsewhere(tryLockAlone, lock));
    EXPECT_TRUE(unlock(lock));
    EXPECT_TRUE(elsewhere(tryLockAlone, lock));
    EXPECT_FALSE(unlock(lock));
}

TEST(Lock, AnUpgradeWaitsForTheOtherReaders) {
    Lock lock;
    int reading = 0, leave = 0;
    lockShared(lock);
    std::thread other([&] {
        lockShared(lock);
        storeRelease(reading, 1);
        while (!loadAcquire(leave)) nap(1);
        storeRelease(leave, 2);
        unlock(lock);
    });
    while (!loadAcquire(reading)) nap(1);
    EXPECT_FALSE(tryLockAlone(lock));
    std::thread watcher([&] {
        while (waiterCount(lock) == 0) nap(1);
        storeRelease(leave, 1);
    });
    EXPECT_TRUE(lockAlone(lock));
    EXPECT_EQ(loadAcquire(leave), 2);
    EXPECT_EQ(lockHolder(lock), threadNumber());
    unlock(lock);
    unlock(lock);
    other.join();
    watcher.join();
    EXPECT_EQ(lockHolds(lock), 0);
}

TEST(Lock, AWaitingWriterHoldsOffNewReadersButNotOldOnes) {
    Lock lock;
    lockShared(lock);
    int written = 0;
    std::thread writer([&] {
        lockAlone(lock);
        storeRelease(written, 1);
        unlock(lock);
    });
    while (waiterCount(lock) == 0) nap(1);
    EXPECT_FALSE(elsewhere(tryLockShared, lock));
    EXPECT_FALSE(loadAcquire(written));
    EXPECT_TRUE(tryLockShared(lock));
    EXPECT_TRUE(lockShared(lock));
    int read = 0;
    std::thread reader([&] {
        lockShared(lock);
        EXPECT_EQ(loadAcquire(written), 1);
        storeRelease(read, 1);
        unlock(lock);
    });
    while (waiterCount(lock) < 2) nap(1);
    EXPECT_FALSE(loadAcquire(read));
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(unlock(lock));
    writer.join();
    reader.join();
    EXPECT_TRUE(read);
}

TEST(Lock, StaleForeignAndZeroHandlesDoNothing) {
    TLockId stale = createLock(true, true), signal = createSignal();
    EXPECT_TRUE(retainLock(stale));
    EXPECT_TRUE(destroyLock(stale, false));
    EXPECT_TRUE(validLock(stale));
    EXPECT_TRUE(destroyLock(stale, false));
    for (TLockId id : {TLockId(0), stale, signal, TLockId(0x01000000), TLockId(0x01FFFFFF), TLockId(0xFFFFFFFF)}) {
        EXPECT_FALSE(lockAlone(id) || tryLockAlone(id) || lockShared(id) || tryLockShared(id) || unlock(id)) << id;
        EXPECT_FALSE(retainLock(id) || destroyLock(id, false) || validLock(id) || lockFree(id)) << id;
        EXPECT_FALSE(setLockSpinning(id, true) || setLockLogging(id, true) || setLockLabel(id, "x", 1)) << id;
        EXPECT_FALSE(setLockSlot(id, LockSlotIndex, 1) || lockHeldHere(id)) << id;
        EXPECT_EQ(lockHolds(id), 0);
        EXPECT_EQ(lockHolder(id), 0u);
        EXPECT_EQ(lockSlot(id, LockSlotIndex), -1);
        EXPECT_EQ(lockNumber(id), 0u);
        EXPECT_EQ(lockKey(id), 0u);
        EXPECT_EQ(lockLabel(id, nullptr), nullptr);
    }
    EXPECT_TRUE(destroySignal(signal));
}

TEST(Lock, HandlesDontComeBackSoon) {
    std::set<TLockId> seen;
    for (int i = 0; i < 20000; ++i) {
        TLockId id = createLock(false, true);
        ASSERT_TRUE(seen.insert(id).second) << i;
        ASSERT_TRUE(destroyLock(id, false));
    }
}

TEST(Lock, ManyLocksLiveAtOnceAndTheirRoomCanBeRefused) {
    std::vector<TLockId> ids;
    {
        AllocProbe probe;
        probe.failAt(1);
        for (int i = 0; i < 2000000 && (ids.empty() || ids.back()); ++i) ids.push_back(createLock(true, true));
        EXPECT_EQ(ids.back(), 0u);
        ids.pop_back();
        probe.failAt(0);
        for (int i = 0; i < 1500; ++i) ids.push_back(createLock(true, true));
        EXPECT_EQ(probe.live(), 0);
    }
    EXPECT_EQ(std::set<TLockId>(ids.begin(), ids.end()).size(), ids.size());
    for (TLockId id : ids) ASSERT_TRUE(lockAlone(id));
    for (TLockId id : ids) ASSERT_TRUE(unlock(id) && destroyLock(id, false));
}

TEST(Lock, ADestroyedLockStaysUntilItsHoldersAndWaitersAreThrough) {
    TLockId id = createLock(true, true);
    lockAlone(id);
    int through = 0;
    std::thread waiter([&] {
        EXPECT_TRUE(lockAlone(id));
        storeRelease(through, 1);
        unlock(id);
    });
    while (waiterCount(id) == 0) nap(1);
    EXPECT_TRUE(destroyLock(id, true));
    EXPECT_FALSE(validLock(id));
    EXPECT_FALSE(retainLock(id));
    EXPECT_FALSE(elsewhere(lockShared, id)) << "refused, not waiting";
    EXPECT_TRUE(lockAlone(id));
    EXPECT_TRUE(unlock(id));
    EXPECT_FALSE(loadAcquire(through));
    EXPECT_TRUE(unlock(id));
    waiter.join();
    EXPECT_TRUE(through);
    EXPECT_FALSE(lockAlone(id));
    // The same for readers.
    id = createLock(true, true);
    lockShared(id);
    destroyLock(id, true);
    EXPECT_FALSE(elsewhere(tryLockShared, id));
    EXPECT_TRUE(lockShared(id));
    EXPECT_TRUE(unlock(id));
    EXPECT_TRUE(unlock(id));
    EXPECT_FALSE(lockShared(id));
}

TEST(Lock, MoreReadsThanTheThreadsOwnRoom) {
    AllocProbe probe;
    for (long failFrom : {0, 1, 2}) {
        std::vector<Lock> locks(40);
        probe.failAt(failFrom, true);
        for (Lock& lock : locks) EXPECT_TRUE(lockShared(lock) && lockShared(lock));
        EXPECT_EQ(probe.failed(), failFrom != 0);
        probe.failAt(0);
        // One that couldn't be noted is held alone instead.
        bool anyAlone = false;
        for (Lock& lock : locks) {
            EXPECT_FALSE(elsewhere(tryLockAlone, lock));
            anyAlone |= lockHolder(lock) != 0;
        }
        EXPECT_EQ(anyAlone, failFrom != 0);
        for (Lock& lock : locks) EXPECT_TRUE(unlock(lock) && lockHeldHere(lock));
        for (size_t i = locks.size(); i > 0; --i) EXPECT_TRUE(unlock(locks[(i * 7) % locks.size()]));
        for (Lock& lock : locks) EXPECT_FALSE(unlock(lock) || lockHeldHere(lock));
        EXPECT_EQ(probe.live(), 0);
    }
}

TEST(Lock, WhatObserversRead) {
    Lock a, b;
    int index = 7;
    EXPECT_EQ(lockLabel(a, &index), nullptr);
    EXPECT_EQ(index, 0);
    EXPECT_TRUE(setLockLabel(a, "store", 3));
    EXPECT_STREQ(lockLabel(a, &index), "store");
    EXPECT_EQ(index, 3);
    EXPECT_EQ(lockSlot(a, LockSlotIndex), -1);
    EXPECT_EQ(lockSlot(a, LockSlotExcluded), 0);
    EXPECT_EQ(lockSlot(a, LockSlotCapture), 0);
    EXPECT_TRUE(setLockSlot(a, LockSlotIndex, 12) && setLockSlot(a, LockSlotExcluded, 1));
    EXPECT_FALSE(setLockSlot(a, 3, 1));
    EXPECT_EQ(lockSlot(a, LockSlotIndex), 12);
    EXPECT_EQ(lockSlot(a, LockSlotExcluded), 1);
    EXPECT_EQ(lockSlot(a, LockSlotCapture), 0);
    EXPECT_EQ(lockSlot(a, 3), -1);
    EXPECT_NE(lockNumber(a), lockNumber(b));
    EXPECT_NE(lockKey(a), lockKey(b));
    EXPECT_EQ(threadState.observer, -1);

    static int balance, calls;
    balance = calls = 0;
    const LockObserver observer{&balance,
                                [](void* p, TLockId) {
                                    ++*static_cast<int*>(p);
                                    ++calls;
                                },
                                [](void* p, TLockId) {
                                    --*static_cast<int*>(p);
                                    ++calls;
                                }};
    EXPECT_EQ(setLockObserver(&observer), nullptr);
    lockAlone(a), lockAlone(a), lockShared(a), lockShared(b), lockShared(b), tryLockAlone(b);
    EXPECT_EQ(balance, 6);
    for (int i = 0; i < 3; ++i) unlock(a), unlock(b);
    unlock(b);
    EXPECT_EQ(balance, 0);
    EXPECT_EQ(calls, 12);
    EXPECT_EQ(setLockObserver(nullptr), &observer);

    static std::string log;
    log.clear();
    setLockLog(
        [](const char* event, TLockId, const char* label, int) { log += std::string(event) + " " + label + ";"; });
    EXPECT_TRUE(setLockLogging(a, true));
    lockAlone(a), lockShared(a), unlock(a), unlock(a), lockShared(a), unlock(a);
    EXPECT_EQ(log, "lock store;read store;unlock store;unlock store;read store;unlock store;");
    EXPECT_TRUE(setLockLogging(a, false));
    lockAlone(a), unlock(a);
    EXPECT_EQ(log.size(), 72u) << log;
    setLockLog(nullptr);
}

/// Threads that read, write and upgrade in a random order: what they guard stays consistent, and all come through.
TEST(Lock, MixedLoadKeepsItsPromise) {
    for (bool spinning : {true, false}) {
        Lock lock(spinning);
        long a = 0, b = 0, total = 0;
        std::vector<std::thread> threads;
        for (int t = 0; t < 8; ++t)
            threads.emplace_back([&, t] {
                unsigned seed = 12345u + unsigned(t);
                for (int i = 0; i < 1500; ++i) {
                    seed = seed * 1664525u + 1013904223u;
                    switch (seed >> 24 & 7) {
                    case 0:
                        if (tryLockAlone(lock)) {
                            ++a, ++b, addFetch(total, 1);
                            unlock(lock);
                        }
                        break;
                    case 1:
                    case 2:
                        lockAlone(lock);
                        ++a;
                        lockShared(lock);
                        if (i % 64 == 0) std::this_thread::yield();
                        unlock(lock);
                        ++b, addFetch(total, 1);
                        unlock(lock);
                        break;
                    case 3:
                        if (tryLockShared(lock)) {
                            EXPECT_EQ(a, b);
                            if (tryLockAlone(lock)) {
                                ++a, ++b, addFetch(total, 1);
                                unlock(lock);
                            }
                            EXPECT_EQ(a, b);
                            unlock(lock);
                        }
                        break;
                    default:
                        lockShared(lock);
                        EXPECT_EQ(a, b);
                        if (i % 32 == 0) std::this_thread::yield();
                        lockShared(lock);
                        EXPECT_EQ(a, b);
                        unlock(lock);
                        unlock(lock);
                    }
                }
            });
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(a, total);
        EXPECT_EQ(b, total);
        EXPECT_EQ(lockHolds(lock), 0);
        EXPECT_TRUE(lockFree(lock));
    }
}

TEST(Lock, HandlesCreatedAndDestroyedWhileOthersUseThem) {
    TLockId shared[16] = {};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&, t] {
            for (int i = 0; i < 4000; ++i) {
                TLockId& place = shared[(i * 7 + t) % 16];
                TLockId seen = loadAcquire(place);
                if (i % 3 == 0) {
                    TLockId made = createLock(true, true);
                    if (compareExchange(place, seen, made))
                        destroyLock(seen, true); // whoever uses it is just being refused, or finishes first
                    else
                        destroyLock(made, true);
                } else if (i % 3 == 1 && lockAlone(seen)) {
                    EXPECT_EQ(lockHolder(seen), threadNumber());
                    EXPECT_TRUE(unlock(seen));
                } else if (lockShared(seen)) {
                    EXPECT_TRUE(unlock(seen));
                }
            }
        });
    for (auto& thread : threads) thread.join();
    for (TLockId id : shared) destroyLock(id, false);
}

TEST(SpinLock, ExcludesUnderLoad) {
    int cell = 0;
    long count = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                spinLock(cell);
                ++count;
                spinUnlock(cell);
            }
        });
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(count, 40000);
    EXPECT_EQ(cell, 0);
}

#ifndef NDEBUG
TEST(LockDeathTest, MisuseEndsADevelopmentBuild) {
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    EXPECT_DEATH(
        {
            TLockId id = createLock(true, false);
            lockAlone(id);
            lockAlone(id);
        },
        "taken again by its holder");
    EXPECT_DEATH(
        {
            TLockId id = createLock(true, true);
            lockAlone(id);
            destroyLock(id, false);
        },
        "destroyed while it is held");
    EXPECT_DEATH(
        {
            TLockId id = createLock(true, true);
            lockShared(id);
            std::thread other([=] {
                lockShared(id);
                lockAlone(id);
            });
            while (waiterCount(id) == 0) nap(1);
            lockAlone(id);
            other.join();
        },
        "two readers");
}
#endif
