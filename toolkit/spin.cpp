#include "toolkit/lockrecord.h"

#include <cerrno>
#include <ctime>
#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace toolkit {

void spinLockSlow(int& cell) {
    // Longer and longer pauses: a look takes the cell's line away from whoever holds the lock.
    for (int pauses = 4; pauses <= 64; pauses *= 2) {
        for (int i = 0; i < pauses; ++i) cpuPause();
        if (load(cell) == 0 && spinTryLock(cell)) return;
    }
    // From here on the cell is marked, so that whoever frees it wakes somebody.
    while (__atomic_exchange_n(&cell, 2, __ATOMIC_ACQUIRE) != 0) futexWait(cell, 2, -1);
}

void spinWake(int& cell) { futexWake(cell, 1); }

bool futexWait(int& cell, int expected, large deadline) {
    timespec until{time_t(deadline / 1'000'000'000), long(deadline % 1'000'000'000)};
    long result = syscall(SYS_futex, &cell, FUTEX_WAIT_BITSET_PRIVATE, expected, deadline < 0 ? nullptr : &until,
                          nullptr, FUTEX_BITSET_MATCH_ANY);
    return result == 0 || errno != ETIMEDOUT;
}

void futexWake(int& cell, int count) { syscall(SYS_futex, &cell, FUTEX_WAKE_PRIVATE, count, nullptr, nullptr, 0); }

large futexClock() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return large(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

} // namespace toolkit
