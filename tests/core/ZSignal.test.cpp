#include "core/ZSignal.h"

#include "core/state.h"
#include "toolkit/atomic.h"
#include "toolkit/lock.h"

#include <chrono>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

namespace {
void nap(int millis) { std::this_thread::sleep_for(std::chrono::milliseconds(millis)); }
/// Threads that wait without a limit, once each.
struct Waiters {
    std::vector<std::thread> threads;
    int let = 0, sentAway = 0;
    Waiters(const ZSignal& signal, int count) {
        for (int i = 0; i < count; ++i)
            threads.emplace_back([this, signal] { toolkit::increment(signal.wait(-1) ? let : sentAway); });
        while (toolkit::waiterCount(signal.getId()) < count) nap(1);
    }
    int through() { return toolkit::loadAcquire(let) + toolkit::loadAcquire(sentAway); }
    void join() {
        for (auto& thread : threads) thread.join();
        threads.clear();
    }
};
} // namespace

TEST(ZSignal, APollClearsAndSendsDontAddUp) {
    ZSignal signal(true);
    EXPECT_FALSE(signal.wait(0));
    signal.send();
    signal.send();
    EXPECT_TRUE(signal.wait(0));
    EXPECT_FALSE(signal.wait(0));
    signal.broadcast(false);
    EXPECT_FALSE(signal.wait(0));
    signal.broadcast(true);
    EXPECT_TRUE(signal.wait(5));
    EXPECT_FALSE(signal.wait(0));
    auto begun = std::chrono::steady_clock::now();
    EXPECT_FALSE(signal.wait(30));
    EXPECT_GE(std::chrono::steady_clock::now() - begun, std::chrono::milliseconds(29));
}

TEST(ZSignal, SendWakesOneBroadcastAll) {
    ZSignal signal(true);
    Waiters waiters(signal, 4);
    signal.send();
    while (waiters.through() < 1) nap(1);
    EXPECT_EQ(toolkit::waiterCount(signal.getId()), 3);
    signal.broadcast(true);
    waiters.join();
    EXPECT_EQ(waiters.let, 4);
    EXPECT_TRUE(signal.wait(0)) << "left set";
}

TEST(ZSignal, ReleaseIsForGood) {
    ZSignal signal(true);
    Waiters waiters(signal, 3);
    EXPECT_FALSE(signal.isReleased());
    signal.release();
    waiters.join();
    EXPECT_EQ(waiters.sentAway, 3);
    EXPECT_TRUE(signal.isReleased());
    signal.send();
    EXPECT_FALSE(signal.wait(0));
    EXPECT_FALSE(signal.wait(-1));
}

TEST(ZSignal, HandlesAreCountedAndTheLastSendsWaitersAway) {
    orv::CoreState before = orv::coreState;
    orv::coreState.bound = false;
    EXPECT_FALSE(ZSignal().isValid());
    orv::coreState.bound = true;
    EXPECT_TRUE(ZSignal().isValid());
    orv::coreState = before;
    ZSignal none(false);
    none.send();
    none.broadcast(true);
    none.release();
    EXPECT_FALSE(none.wait(-1) || none.isReleased());
    ZSignal signal(true), copy(signal), byId(signal.getId());
    EXPECT_EQ(copy.compare(byId), 0);
    copy.send();
    EXPECT_TRUE(byId.wait(0));
    TLockId lock = toolkit::createLock(true, true), id = signal.getId();
    EXPECT_FALSE(ZSignal(lock).isValid()) << "the handle of a lock";
    toolkit::destroyLock(lock, false);
    int sentAway = 0;
    std::thread waiter([&] { sentAway = !toolkit::waitSignal(id, -1); }); // holds no name of it
    while (toolkit::waiterCount(id) == 0) nap(1);
    signal = copy = byId = none;
    waiter.join();
    EXPECT_EQ(sentAway, 1);
    EXPECT_FALSE(ZSignal(id).isValid());
}

/// A time-out and a send that meet: each send lets exactly one through, or stays set.
TEST(ZSignal, TimeOutAgainstSend) {
    ZSignal signal(true);
    int got = 0;
    constexpr int rounds = 300;
    std::vector<std::thread> threads;
    int stop = 0;
    for (int t = 0; t < 3; ++t)
        threads.emplace_back([&] {
            while (!toolkit::loadAcquire(stop)) toolkit::addFetch(got, signal.wait(1) ? 1 : 0);
        });
    for (int i = 0; i < rounds; ++i) {
        int before = toolkit::loadAcquire(got);
        signal.send();
        while (toolkit::loadAcquire(got) == before) std::this_thread::yield();
        if (i % 4 == 0) nap(1);
    }
    toolkit::storeRelease(stop, 1);
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(got, rounds);
}
