#pragma once

#include "toolkit/memory.h"

#include <atomic>
#include <map>
#include <string>

/// Watches the blocks allocated during its life: it can make the n-th allocation fail, and tells by type what was left
/// behind. Allocations of all threads count. Probes may be nested: the inner one decides what fails, and what is made
/// during its life counts for the outer one too. Made and destroyed while no other thread allocates.
class AllocProbe {
public:
    AllocProbe();
    ~AllocProbe();
    AllocProbe(const AllocProbe&) = delete;

    /// Makes the n-th allocation from now fail, counted from 1; 0 for none. Only that one fails, unless `onwards`.
    void failAt(long n, bool onwards = false);
    /// Whether a failure was handed out since `failAt`.
    bool failed() const;
    /// Allocations since the start, or since `failAt`, without those of inner probes.
    long allocations() const;
    /// Blocks made since the start and still there.
    long live() const;
    /// The same by type label: what was constructed, or the place that a debug label gave, or "block of SIZE".
    std::map<std::string, long> liveBlocks() const;
    /// A line for each of these: "3 x Name"; empty if there are none.
    std::string leaks() const;

private:
    AllocProbe* outer;
    long first; ///< number of the first block that counts
    std::atomic<long> failing{0}, seen{0};
    std::atomic<bool> onwards{false}, refused{false};
    friend struct AllocWatch;
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
