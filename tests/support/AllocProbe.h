#pragma once

#include "toolkit/memory.h"

#include <map>
#include <string>

/// Watches the blocks allocated during its life: it can make the n-th allocation fail, and tells by type what was left
/// behind. One at a time; allocations of all threads count.
class AllocProbe {
public:
    AllocProbe();
    ~AllocProbe();
    AllocProbe(const AllocProbe&) = delete;

    /// Makes the n-th allocation from now fail, counted from 1; 0 for none. Only that one fails, unless `onwards`.
    void failAt(long n, bool onwards = false);
    /// Whether a failure was handed out since `failAt`.
    bool failed() const;
    /// Allocations since the start, or since `failAt`.
    long allocations() const;
    /// Blocks made since the start and still there.
    long live() const;
    /// A line for each type with blocks still there: "3 x Name"; empty if there are none.
    std::string leaks() const;
};

/// Runs `operation` with its first, second, third … allocation failing until none fails, and checks after each run that
/// nothing was left behind. `operation(probe)` has to work on objects of its own. At most `limit` runs.
template <class F> void failEachAllocation(F&& operation, long limit = 2000);

#include <gtest/gtest.h>

template <class F> void failEachAllocation(F&& operation, long limit) {
    AllocProbe probe;
    for (long n = 1; n <= limit; ++n) {
        probe.failAt(n);
        operation(probe);
        bool failed = probe.failed();
        probe.failAt(0);
        ASSERT_EQ(probe.live(), 0) << "left after allocation " << n << " failed: " << probe.leaks();
        if (!failed) return;
    }
    FAIL() << "still failing after " << limit << " allocations";
}
