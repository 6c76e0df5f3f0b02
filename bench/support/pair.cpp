#include "bench/support/pair.h"

#include <malloc.h>
#include <string>

BenchPair::BenchPair(const char* workload, const char* peer, double limit, Run ours, Run theirs, int threads,
                     int iterations) {
    std::string row = std::string(workload) + "|" + peer + "|" + std::to_string(limit) + "|";
    auto add = [&](const char* side, Run run) {
        auto* added = benchmark::RegisterBenchmark((row + side).c_str(), run)->Threads(threads)->UseRealTime();
        if (iterations) added->Iterations(iterations);
    };
    add("ours", ours);
    if (theirs) add("peer", theirs);
}

BenchPair::BenchPair(const char* workload, double nanos, Run ours, int iterations) {
    std::string row = std::string(workload) + "|absolute, ns|" + std::to_string(nanos) + "|";
    auto* added = benchmark::RegisterBenchmark((row + "ours").c_str(), ours)->UseRealTime();
    if (iterations) added->Iterations(iterations);
}

int main(int argc, char** argv) {
    // Pages that the heap has once stay there: otherwise what ran before decides how many fresh ones a row pays for.
    mallopt(M_MMAP_THRESHOLD, 1 << 30);
    mallopt(M_TRIM_THRESHOLD, 1 << 30);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
