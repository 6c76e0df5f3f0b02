#include "core/ZLock.h"

#include "core/ZAtomicInt.h"
#include "core/ZError.h"
#include "core/memlock.h"
#include "core/memory.h"
#include "core/state.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/CaptureDebug.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {
/// The library as if bound, with locking on or off.
struct Bound {
    orv::CoreState before = orv::coreState;
    explicit Bound(bool locking = true) {
        orv::coreState.bound = true;
        orv::coreState.allowLocking = locking;
    }
    ~Bound() { orv::coreState = before; }
};
bool heldElsewhere(const ZLock& lock) {
    bool taken = false;
    std::thread([&] {
        taken = lock.tryLock();
        lock.unlock();
    }).join();
    return !taken;
}
} // namespace

TEST(ZLock, WithoutAHandleTheAnswersDiffer) {
    Bound off(false);
    ZLock lock;
    EXPECT_FALSE(lock.isValid() || ZLock(true).isValid());
    lock.lock();
    lock.readLock();
    lock.unlock();
    EXPECT_FALSE(lock.tryLock());
    EXPECT_FALSE(lock.tryReadLock());
    EXPECT_TRUE(lock.lock(true));
    EXPECT_TRUE(lock.lock(false));
    EXPECT_EQ(lock.lockCount(), 0);
    EXPECT_EQ(lock.thread(), 0u);
    EXPECT_EQ(lock.getIndex(0), -1);
    EXPECT_EQ(lock.getLabel(nullptr), nullptr);
    ZLock::enterOpenGL();
    EXPECT_FALSE(ZLock::openGLRegion());
    ZLock::exitOpenGL();
    EXPECT_EQ(zfailcount(), 0);
}

TEST(ZLock, CopiesNameOneLockAndCountIt) {
    Bound on;
    ZLock lock;
    ASSERT_TRUE(lock.isValid());
    TLockId id = lock.getId();
    {
        ZLock copy(lock), byId(id), none(false);
        EXPECT_EQ(copy.compare(lock), 0);
        EXPECT_NE(none.compare(lock), 0);
        copy.lock();
        EXPECT_TRUE(heldElsewhere(lock));
        EXPECT_EQ(lock.lockCount(), 1);
        EXPECT_EQ(lock.thread(), toolkit::threadNumber());
        byId.unlock();
        EXPECT_FALSE(heldElsewhere(lock));
        none = lock;
        lock.remove(true);
        EXPECT_FALSE(lock.isValid());
        EXPECT_TRUE(toolkit::validLock(id));
        lock = none;
        none.assign(none);
        EXPECT_EQ(none.getId(), id);
    }
    EXPECT_TRUE(toolkit::validLock(id));
    EXPECT_TRUE(lock.reset(true, true));
    EXPECT_FALSE(toolkit::validLock(id));
    EXPECT_NE(lock.getId(), id);
    EXPECT_TRUE(lock.create(false, false));
    ZLock stale(id);
    EXPECT_FALSE(stale.isValid());
    stale.setSpinning(false);
    EXPECT_TRUE(stale.isValid());
}

TEST(ZLock, ReadersThroughScopes) {
    Bound on;
    ZLock lock;
    {
        ZScopedReadLock reading(lock);
        EXPECT_TRUE(lock.tryReadLock());
        lock.unlock();
        EXPECT_TRUE(heldElsewhere(lock));
        ZScopedLock alone(lock);
        EXPECT_EQ(lock.thread(), toolkit::threadNumber());
    }
    EXPECT_EQ(lock.lockCount(), 0);
    EXPECT_FALSE(heldElsewhere(lock));
}

TEST(ZLock, SharedLocksGoRoundAndCountWithoutAnArray) {
    Bound on;
    ZLock::close();
    EXPECT_FALSE(ZLock::shared().isValid());
    failEachAllocation([](AllocProbe& probe) {
        bool opened = ZLock::open(128);
        EXPECT_EQ(opened, !probe.failed());
        ZLock::close();
    });
    EXPECT_FALSE(ZLock::open(0));
    ASSERT_TRUE(ZLock::open(128));
    std::vector<TLockId> turn;
    for (int i = 0; i < 129; ++i) turn.push_back(ZLock::shared().getId());
    EXPECT_EQ(turn[128], turn[0]);
    EXPECT_EQ(std::set<TLockId>(turn.begin(), turn.end()).size(), 128u);
    TLockId next = ZLock::shared().getId();
    EXPECT_EQ(next, turn[1]);
    ZLock kept = ZLock::shared();
    ZLock::close();
    EXPECT_TRUE(kept.tryLock());
    kept.unlock();
    EXPECT_FALSE(toolkit::validLock(next));
}

TEST(ZLock, TheCounterOfSharedLocksRisesWithoutASet) {
    Bound on;
    ZLock::close();
    // Two sets of two: which place comes first tells whether the count stood still in between.
    ASSERT_TRUE(ZLock::open(2));
    uint even = ZLock(ZLock::shared()).getNumber(), odd = ZLock(ZLock::shared()).getNumber();
    bool lowFirst = even < odd;
    ZLock::close();
    EXPECT_FALSE(ZLock::shared().isValid());
    ASSERT_TRUE(ZLock::open(2));
    even = ZLock(ZLock::shared()).getNumber(), odd = ZLock(ZLock::shared()).getNumber();
    EXPECT_NE(even < odd, lowFirst);
    ZLock::close();
}

TEST(ZLock, NamedLocksExcludeAndRegionsNest) {
    Bound on;
    struct Pair {
        void (*lock)();
        void (*unlock)();
    };
    for (Pair pair : {Pair{ZLock::lockGPU, ZLock::unlockGPU}, Pair{ZLock::lockOpenGL, ZLock::unlockOpenGL},
                      Pair{ZLock::lockPrinter, ZLock::unlockPrinter}, Pair{ZLock::enterOpenGL, ZLock::exitOpenGL}}) {
        int inside = 0, total = 0;
        auto work = [&] {
            for (int i = 0; i < 500; ++i) {
                pair.lock();
                EXPECT_EQ(++inside, 1);
                ++total;
                --inside;
                pair.unlock();
            }
        };
        std::thread other(work);
        work();
        other.join();
        EXPECT_EQ(total, 1000);
    }
    ZLock::exitOpenGL();
    ZLock::enterOpenGL();
    ZLock::enterOpenGL();
    ZLock::exitOpenGL();
    EXPECT_TRUE(ZLock::openGLRegion());
    std::thread([] { EXPECT_FALSE(ZLock::openGLRegion()); }).join();
    ZLock::exitOpenGL();
    EXPECT_FALSE(ZLock::openGLRegion());
    ZLock::lockOpenGL();
    EXPECT_FALSE(ZLock::openGLRegion());
    ZLock::unlockOpenGL();
}

TEST(ZLock, LoggingWritesToTheDebugLog) {
    Bound on;
    CaptureDebug capture;
    ZLock lock;
    lock.setLabel("cache", 4);
    lock.setLogging(true);
    lock.lock();
    lock.unlock();
    lock.setLogging(false);
    lock.lock();
    lock.unlock();
    std::string id = std::to_string(lock.getId());
    EXPECT_EQ(capture.lines, (std::vector<std::string>{"lock " + id + ": cache, 4", "unlock " + id + ": cache, 4"}));
}

TEST(ZAtomicInt, CountsAndComparesAndLeavesZeroAlone) {
    ZAtomicInt a, b(5);
    EXPECT_EQ(a.add(3), 3);
    EXPECT_EQ(a.compare(b), -1);
    EXPECT_EQ(b.compare(a), 1);
    a = b;
    EXPECT_EQ(a.compare(b), 0);
    EXPECT_EQ(a.add(-7), -2);
    struct {
        int (*call)(volatile int&);
        int before, answer;
    } rows[] = {{ZAtomicInt::inc, 0, 1},          {ZAtomicInt::dec, 0, -1},        {ZAtomicInt::incNonZero, 0, 0},
                {ZAtomicInt::decNonZero, 0, 0},   {ZAtomicInt::incNonZero, 1, 2},  {ZAtomicInt::decNonZero, 1, 0},
                {ZAtomicInt::incNonZero, -3, -3}, {ZAtomicInt::decNonZero, -3, -3}};
    for (auto& row : rows) {
        volatile int cell = row.before;
        EXPECT_EQ(row.call(cell), row.answer) << row.before;
        EXPECT_EQ(cell, row.answer) << row.before;
    }
}
