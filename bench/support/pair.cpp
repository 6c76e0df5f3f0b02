#include "bench/support/pair.h"

#include <string>

BenchPair::BenchPair(const char* workload, const char* peer, double limit, Run ours, Run theirs, int threads) {
    std::string row = std::string(workload) + "|" + peer + "|" + std::to_string(limit) + "|";
    benchmark::RegisterBenchmark((row + "ours").c_str(), ours)->Threads(threads)->UseRealTime();
    if (theirs) benchmark::RegisterBenchmark((row + "peer").c_str(), theirs)->Threads(threads)->UseRealTime();
}

BenchPair::BenchPair(const char* workload, double nanos, Run ours) {
    std::string row = std::string(workload) + "|absolute, ns|" + std::to_string(nanos) + "|";
    benchmark::RegisterBenchmark((row + "ours").c_str(), ours)->UseRealTime();
}

BENCHMARK_MAIN();
