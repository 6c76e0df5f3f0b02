#pragma once

#include "core/forward.h"
#include "toolkit/lock.h"

/// A lock of one 32-bit word, 0 when free, for sections of a few instructions. It doesn't recurse. A thread that can't
/// get it parks after a short while. A copy is a new, free lock. Nothing that may call foreign code runs under it.
class ZSpinLock {
public:
    constexpr ZSpinLock() = default;
    constexpr ZSpinLock(const ZSpinLock&) {}
    explicit ZSpinLock(bool locked) : cell(locked ? 1 : 0) {}
    ZSpinLock& operator=(const ZSpinLock&) { return *this; }

    void init() { toolkit::storeRelease(cell, 0); }
    void lock() { toolkit::spinLock(cell); }
    /// True if it was free and is now held.
    bool tryLock() { return toolkit::spinTryLock(cell); }
    void unlock() { toolkit::spinUnlock(cell); }

private:
    int cell = 0;
};

/// Holds a lock that has `lock` and `unlock` for a scope.
template <class L> class [[nodiscard]] ZScopedLock {
public:
    explicit ZScopedLock(L& held) : lock(held) { lock.lock(); }
    ~ZScopedLock() { lock.unlock(); }
    ZScopedLock(const ZScopedLock&) = delete;

private:
    L& lock;
};
