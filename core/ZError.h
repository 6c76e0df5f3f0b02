#pragma once

#include "toolkit/thread.h"

/// The failures of the running thread. A construction that can't finish calls `fail` and returns; whoever started it
/// asks `resetFail` afterwards, releases what was built and calls `recover`. No locks, no allocation: two words of the
/// thread's own record.
class ZError {
public:
    /// Raises the failure count and answers it.
    static int fail() { return ++toolkit::threadState.failCount; }
    /// Failures since the last recovery.
    static int failCount() { return toolkit::threadState.failCount; }
    /// Whether a failure is pending, that is, not acknowledged by `resetFail`.
    static bool failed() { return toolkit::threadState.failMark < toolkit::threadState.failCount; }
    /// Acknowledges all failures; true if one was pending.
    static bool resetFail() {
        auto& state = toolkit::threadState;
        bool pending = state.failMark < state.failCount;
        state.failMark = state.failCount;
        return pending;
    }
    /// Forgets all failures of the thread, also those of an enclosing construction; answers how many there were.
    static int recover() {
        auto& state = toolkit::threadState;
        int count = state.failCount;
        state.failCount = state.failMark = 0;
        ++state.recoveries;
        return count;
    }
};

inline int zfailcount() { return ZError::failCount(); }
inline bool zfailed() { return ZError::failed(); }
inline bool zresetfail() { return ZError::resetFail(); }
inline int zrecover() { return ZError::recover(); }
