#include "toolkit/lock.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace toolkit {

void spinLockSlow(int& cell) {
    for (int tries = 0; tries < 64; ++tries) {
        if (load(cell) == 0 && spinTryLock(cell)) return;
        cpuPause();
    }
    // From here on the cell is marked, so that whoever frees it wakes somebody.
    while (__atomic_exchange_n(&cell, 2, __ATOMIC_ACQUIRE) != 0)
        syscall(SYS_futex, &cell, FUTEX_WAIT_PRIVATE, 2, nullptr, nullptr, 0);
}

void spinWake(int& cell) { syscall(SYS_futex, &cell, FUTEX_WAKE_PRIVATE, 1, nullptr, nullptr, 0); }

} // namespace toolkit
