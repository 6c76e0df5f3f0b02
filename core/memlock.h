#pragma once

#include "toolkit/lock.h"

// The lock that a counted block can carry, of the kind that `ZLock` describes. It goes with the block, once nobody
// holds it. On null, and on a block without a lock, these do nothing and answer false, null or 0.

/// Gives a block a lock unless it has one; true if it has one afterwards. `spinning`: waiting threads try for a short
/// while before they sleep. `recursive`: whoever holds it alone may take it again.
inline bool makelock(void* p, bool spinning, bool recursive) { return toolkit::makeBlockLock(p, spinning, recursive); }
/// Whether the block has a lock.
inline bool lockable(const void* p) { return toolkit::blockLock(p) != 0; }
/// Whether this thread could take it alone now without waiting; another thread may be quicker.
inline bool canlockmem(const void* p) { return toolkit::lockFree(toolkit::blockLock(p)); }
inline bool setspinlock(const void* p, bool on) { return toolkit::setLockSpinning(toolkit::blockLock(p), on); }

/// Takes it alone; waits for it.
inline bool lockmem(const void* p) { return toolkit::lockAlone(toolkit::blockLock(p)); }
inline bool readlockmem(const void* p) { return toolkit::lockShared(toolkit::blockLock(p)); }
/// The same as `trywritelockmem`.
inline bool trylockmem(const void* p) { return toolkit::tryLockAlone(toolkit::blockLock(p)); }
inline bool tryreadlockmem(const void* p) { return toolkit::tryLockShared(toolkit::blockLock(p)); }
inline bool trywritelockmem(const void* p) { return toolkit::tryLockAlone(toolkit::blockLock(p)); }
/// Gives up the newest hold of this thread; false if it has none.
inline bool unlockmem(const void* p) { return toolkit::unlock(toolkit::blockLock(p)); }

/// The label, null for none; `index`, which may be null, gets its index.
inline const char* memlocklabel(const void* p, int* index) { return toolkit::lockLabel(toolkit::blockLock(p), index); }
/// The text isn't copied: it has to outlive the lock.
inline bool setmemlocklabel(const void* p, const char* label, int index) {
    return toolkit::setLockLabel(toolkit::blockLock(p), label, index);
}
/// The slots are those of `ZLock::getIndex`.
inline int memlockindex(const void* p, int slot) { return toolkit::lockSlot(toolkit::blockLock(p), slot); }
inline bool setmemlockindex(const void* p, int slot, int value) {
    return toolkit::setLockSlot(toolkit::blockLock(p), slot, value);
}
inline uint getmemlocknumber(const void* p) { return toolkit::lockNumber(toolkit::blockLock(p)); }
