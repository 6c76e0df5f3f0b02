#pragma once

#include "core/ZSpinLock.h"

/// A striped spin lock: a few locks for very many small items. Two items that fall on one stripe exclude each other, so
/// a thread holds one stripe at a time. Copies share the stripes. Without a block everything does nothing.
class ORV_API ZSharedLock {
public:
    using ZRelocatable = void;
    static constexpr int maxBits = 20;

    ZSharedLock() = default;
    /// 2 to the `bits` stripes, `bits` taken modulo 32. Raises a failure when there is no memory, and above `maxBits`.
    explicit ZSharedLock(int bits);
    ZSharedLock(const ZSharedLock& other);
    ~ZSharedLock() { clear(); }
    ZSharedLock& operator=(const ZSharedLock& other) {
        assign(other);
        return *this;
    }

    /// Drops the old block and makes a new one; false when there is no memory, and above `maxBits`: there is none then.
    bool init(int bits);
    void assign(const ZSharedLock& other);
    void clear();
    uint getMask() const { return mask; }

    void lock(int key) const { lockCell(stripe(uint(key))); }
    /// True if the stripe was free and is now held; false without a block.
    bool tryLock(int key) const { return tryCell(stripe(uint(key))); }
    void unlock(int key) const { unlockCell(stripe(uint(key))); }

    // By address: addresses that differ only in their lowest bits share a stripe.

    void lock(const void* p) const { lockCell(lockPtr(p)); }
    bool tryLock(const void* p) const { return tryCell(lockPtr(p)); }
    void unlock(const void* p) const { unlockCell(lockPtr(p)); }
    /// The stripe of an address; null without a block.
    ZSpinLock* lockPtr(const void* p) const {
        auto address = reinterpret_cast<uintptr_t>(p);
        return stripe(uint(((address >> 21) ^ (address >> 5)) >> 1));
    }

private:
    ZSpinLock* stripe(uint key) const { return block ? block + (key & mask) : nullptr; }
    static void lockCell(ZSpinLock* cell) {
        if (cell) cell->lock();
    }
    static bool tryCell(ZSpinLock* cell) { return cell && cell->tryLock(); }
    static void unlockCell(ZSpinLock* cell) {
        if (cell) cell->unlock();
    }

    ZSpinLock* block = nullptr;
    uint mask = 0;
};
