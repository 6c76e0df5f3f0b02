#pragma once

#include "toolkit/atomic.h"
#include "toolkit/types.h"

/// Locks and signals on the kernel's wait queues.
namespace toolkit {

// Spin lock: a cell of 0 (free), 1 (held) or 2 (held, and somebody may be parked).

ORV_API void spinLockSlow(int& cell);
ORV_API void spinWake(int& cell);

inline bool spinTryLock(int& cell) {
    int free = 0;
    return __atomic_compare_exchange_n(&cell, &free, 1, false, __ATOMIC_ACQUIRE, __ATOMIC_RELAXED);
}
inline void spinLock(int& cell) {
    if (ORV_UNLIKELY(!spinTryLock(cell))) spinLockSlow(cell);
}
inline void spinUnlock(int& cell) {
    if (ORV_UNLIKELY(__atomic_exchange_n(&cell, 0, __ATOMIC_RELEASE) == 2)) spinWake(cell);
}

// Handles. A lock or signal is named by a number that carries a generation: once it has gone, its handle is stale, and
// every operation on a stale, foreign or zero handle does nothing and answers false, 0 or null. Handles are counted:
// what is created has one reference; each copy of a handle that outlives the original has to be retained.

// Locks. Held by one thread alone or by several that read. Threads that want a lock alone go first; only a thread that
// reads already may read again past them. A thread that is the only reader may take the lock alone on top, and waits
// until it is the only one; that two readers of one lock do so at once is a programming error. Whoever holds a lock
// alone may also read. `unlock` gives up the thread's newest hold.

/// A new lock with one reference; 0 when there is no memory. `spinning`: a thread that can't have it tries for a short
/// while before it parks. `recursive`: whoever holds it alone may take it again.
ORV_API TLockId createLock(bool spinning, bool recursive);
/// Adds a reference.
ORV_API bool retainLock(TLockId id);
/// Gives up a reference. With the last one the lock goes, as soon as nobody holds it or waits for it; until then its
/// holders go on as before, and others are refused. With `mayBeHeld` false, being held is a programming error.
ORV_API bool destroyLock(TLockId id, bool mayBeHeld);

ORV_API bool lockAlone(TLockId id);
ORV_API bool tryLockAlone(TLockId id);
ORV_API bool lockShared(TLockId id);
ORV_API bool tryLockShared(TLockId id);
/// False also if the running thread doesn't hold it.
ORV_API bool unlock(TLockId id);

ORV_API bool validLock(TLockId id);
/// How often it is held: all nested holds of the thread that has it alone, else the number of threads that read.
ORV_API int lockHolds(TLockId id);
/// Number of the thread that holds it alone; 0 if none does.
ORV_API uint lockHolder(TLockId id);
/// How many threads wait for a lock or a signal; for reports.
ORV_API int waiterCount(TLockId id);
/// Whether the running thread holds it, alone or reading.
ORV_API bool lockHeldHere(TLockId id);
/// Whether the running thread could take it alone now without waiting. Another thread may be quicker.
ORV_API bool lockFree(TLockId id);

ORV_API bool setLockSpinning(TLockId id, bool on);
/// While on, each take and release of this lock is told to the lock log.
ORV_API bool setLockLogging(TLockId id, bool on);
/// Where logged locks are told of; null for nowhere. `event` is "lock", "read" or "unlock". Must be safe to call from
/// any thread and take no logged lock.
using LockLog = void (*)(const char* event, TLockId id, const char* label, int index);
ORV_API void setLockLog(LockLog log);

// What whoever observes locks reads and sets.

/// A text that outlives the lock, and a number that tells locks of one text apart.
ORV_API const char* lockLabel(TLockId id, int* index);
ORV_API bool setLockLabel(TLockId id, const char* label, int index);

enum LockSlot {
    LockSlotIndex = 0,    ///< the observer's own number for this lock; -1 until it is set
    LockSlotExcluded = 1, ///< 1: not to be observed
    LockSlotCapture = 2,  ///< 1: call stacks are to be captured
};
/// -1 for a slot that isn't there.
ORV_API int lockSlot(TLockId id, int slot);
ORV_API bool setLockSlot(TLockId id, int slot, int value);
/// A running number, given when the lock is created.
ORV_API uint lockNumber(TLockId id);
/// A key that no other lock or signal of this process has or had.
ORV_API ularge lockKey(TLockId id);

/// Told of every lock taken and released, on the thread that does it, once it has it or has given it up.
struct LockObserver {
    void* context;
    void (*taken)(void* context, TLockId id);
    void (*released)(void* context, TLockId id);
};
/// Sets the observer, null for none; answers the old one. It has to outlive every call.
ORV_API const LockObserver* setLockObserver(const LockObserver* observer);

// The lock that a counted block carries.

/// Gives a block a lock of its own; true if it has one afterwards.
ORV_API bool makeBlockLock(void* payload, bool spinning, bool recursive);
/// The handle of a block's lock, not retained; 0 for none.
ORV_API TLockId blockLock(const void* payload);

// Signals.

/// A new signal with one reference, not set; 0 when there is no memory.
ORV_API TLockId createSignal();
ORV_API bool retainSignal(TLockId id);
/// Gives up a reference. With the last one, whoever still waits leaves with false.
ORV_API bool destroySignal(TLockId id);
/// Wakes the thread that has waited longest; if nobody waits, leaves the signal set for the next.
ORV_API bool sendSignal(TLockId id);
/// Wakes all who wait now. With `leaveSet`, the signal is also left set for one more.
ORV_API bool broadcastSignal(TLockId id, bool leaveSet);
/// Waits for at most that many milliseconds, below 0 for ever; 0 asks and clears. True if it was signalled. False at
/// once after `releaseSignal`.
ORV_API bool waitSignal(TLockId id, int millis);
/// Sends all who wait away with false, and all who come later, for good.
ORV_API bool releaseSignal(TLockId id);
ORV_API bool signalReleased(TLockId id);

} // namespace toolkit
