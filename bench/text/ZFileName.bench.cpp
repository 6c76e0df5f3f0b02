#include "text/ZFileName.h"

#include "bench/support/pair.h"

#include <filesystem>
#include <string>
#include <vector>

#ifdef ORV_PEER_QT
#include <QDirIterator>
#endif

namespace {

/// A tree that every machine with a compiler has.
constexpr const char* root = "/usr/include";

size_t oursScan() {
    ZFileName::Names found;
    ZFileName::scanFiles(found, root, true);
    return found.count();
}
size_t standardScan() {
    std::vector<std::string> found;
    for (auto& entry : std::filesystem::recursive_directory_iterator(root))
        if (entry.is_regular_file()) found.push_back(entry.path().string());
    return found.size();
}

void ours(benchmark::State& state) {
    if (oursScan() < standardScan()) state.SkipWithError("files are missing");
    for (auto _ : state) benchmark::DoNotOptimize(oursScan());
}
void standard(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(standardScan());
}

#ifdef ORV_PEER_QT
size_t qtScan() {
    QStringList found;
    QDirIterator folder(root, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (folder.hasNext()) found.append(folder.next());
    return size_t(found.size());
}
void qt(benchmark::State& state) {
    if (qtScan() != standardScan()) state.SkipWithError("the peers differ");
    for (auto _ : state) benchmark::DoNotOptimize(qtScan());
}
#else
constexpr BenchPair::Run qt = nullptr;
#endif

BenchPair scan("recursive folder scan", "QDirIterator", 0.6, ours, qt);
BenchPair scanStandard("recursive folder scan, second peer", "std::filesystem", 0.9, ours, standard);

} // namespace
