#pragma once

#include <benchmark/benchmark.h>

/// One row of the table that `make bench` prints: the same work done by us and by a peer, measured in one run.
struct BenchPair {
    using Run = void (*)(benchmark::State&);
    /// `limit`: the largest ratio ours / peer's that we accept; 0 for none. `theirs` may be null where the peer isn't
    /// installed. Both functions have to check their result before they time it. With `threads`, both run on as many.
    /// `iterations` fixes their number, for work that changes what the next one finds.
    BenchPair(const char* workload, const char* peer, double limit, Run ours, Run theirs, int threads = 1,
              int iterations = 0);
    /// A workload without a peer: at most `nanos` nanoseconds an iteration.
    BenchPair(const char* workload, double nanos, Run ours, int iterations = 0);
};
