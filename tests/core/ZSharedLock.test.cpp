#include "core/ZSharedLock.h"

#include "core/construct.h"
#include "tests/support/AllocProbe.h"

#include <gtest/gtest.h>

TEST(ZSharedLock, KeysAndAddressesFallOnStripes) {
    ZSharedLock lock(3);
    EXPECT_EQ(lock.getMask(), 7u);
    lock.lock(9);
    EXPECT_FALSE(lock.tryLock(1));
    EXPECT_TRUE(lock.tryLock(2));
    lock.unlock(1);
    EXPECT_TRUE(lock.tryLock(-7)); // the same stripe
    auto at = [](uintptr_t address) { return reinterpret_cast<const void*>(address); };
    const ZSpinLock* base = lock.lockPtr(at(0));
    struct {
        uintptr_t address;
        int stripe;
    } rows[] = {{0x1F, 0}, {0x3F, 0}, {0x40, 1}, {0x1C0, 7}, {0x200, 0}, {1u << 22, 1}, {(1u << 22) | 0x40, 0}};
    for (auto& row : rows) EXPECT_EQ(lock.lockPtr(at(row.address)) - base, row.stripe) << row.address;
    EXPECT_FALSE(lock.tryLock(at(0x40)));
    lock.unlock(at(0x40));
    EXPECT_TRUE(lock.tryLock(at(0x7F)));
}

TEST(ZSharedLock, CopiesShareTheStripesAndNothingDoesNothing) {
    ZSharedLock none;
    none.lock(1);
    none.unlock(1);
    EXPECT_FALSE(none.tryLock(1));
    EXPECT_FALSE(none.tryLock(&none));
    EXPECT_EQ(none.lockPtr(&none), nullptr);
    ZSharedLock copy;
    {
        ZSharedLock lock(0);
        copy = lock;
        copy = copy;
        lock.lock(5);
        EXPECT_FALSE(copy.tryLock(77));
    }
    copy.unlock(0);
    EXPECT_TRUE(copy.tryLock(0));
    ZSharedLock second(copy);
    EXPECT_FALSE(second.tryLock(0));
    EXPECT_TRUE(copy.init(1)); // a block of its own
    EXPECT_TRUE(copy.tryLock(0));
    copy.clear();
    EXPECT_EQ(copy.getMask(), 0u);
}

TEST(ZSharedLock, SizesAreTakenModulo32AndBounded) {
    ZSharedLock lock;
    EXPECT_TRUE(lock.init(34));
    EXPECT_EQ(lock.getMask(), 3u);
    EXPECT_TRUE(lock.init(20));
    for (int bits : {21, 31, -1}) {
        EXPECT_FALSE(lock.init(bits)) << bits;
        EXPECT_EQ(lock.lockPtr(&lock), nullptr);
    }
    EXPECT_EQ(zmake<ZSharedLock>(21), nullptr);
    failEachAllocation([](AllocProbe& probe) {
        ZSharedLock* made = zmake<ZSharedLock>(4);
        EXPECT_EQ(made == nullptr, probe.failed());
        zrelease(made);
    });
}
