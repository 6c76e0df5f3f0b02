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

} // namespace toolkit
