#include "bench/orv/packages.h"

#include "bench/support/pair.h"
#include "core/ZCoreLib.h"
#include "tools/orv/catalogue.h"
#include "value/ZVariant.h"

#include <memory>
#include <optional>

// The packages that this machine's lists tell of, as objects with properties, found by key, their sizes bound to the
// totals of their sections.

namespace {

using orv::tool::Catalogue;
using orv::tool::Damage;

std::string output(const char* command) {
    std::string text;
    if (FILE* from = popen(command, "r")) {
        char bytes[1 << 16];
        while (size_t got = fread(bytes, 1, sizeof bytes, from)) text.append(bytes, got);
        pclose(from);
    }
    return text;
}
/// The largest package list of apt; where there is none, the status file time and again under new names.
const std::string& stanzas() {
    static const std::string text = [] {
        std::string list = output("f=$(ls -S /var/lib/apt/lists/*_Packages* 2>/dev/null | head -n 1); "
                                  "[ -n \"$f\" ] && /usr/lib/apt/apt-helper cat-file \"$f\"");
        if (!list.empty()) return list;
        const std::string status = output("cat /var/lib/dpkg/status");
        for (int copy = 0; !status.empty() && list.size() < 50'000'000; ++copy) {
            const std::string named = "Package: copy" + std::to_string(copy) + "-";
            for (size_t at = 0; at < status.size();) {
                size_t end = status.find('\n', at);
                end = end == status.npos ? status.size() : end + 1;
                if (status.compare(at, 9, "Package: ") == 0)
                    list += named + status.substr(at + 9, end - at - 9);
                else
                    list.append(status, at, end - at);
                at = end;
            }
        }
        return list;
    }();
    return text;
}

std::optional<PackageFigures> load(Catalogue& catalogue) {
    size_t at = 0;
    if (!catalogue.isOpen() || !catalogue.load(sourceOf(stanzas(), at), [](const Damage&) {}) || !catalogue.bindTotals())
        return {};
    return PackageFigures{catalogue.count(), catalogue.all()->total()};
}

void ours(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        auto library = std::make_unique<ZCoreLib>("bench", false, false, true);
        auto catalogue = std::make_unique<Catalogue>();
        state.ResumeTiming();
        const auto figures = load(*catalogue);
        state.PauseTiming();
        if (!figures || !figures->packages) state.SkipWithError("the packages can't be loaded");
#ifdef ORV_PEER_QT
        else if (*figures != loadQtPackages(stanzas()))
            state.SkipWithError("the peer has other figures");
        dropQtPackages();
#endif
        if (figures && figures->packages) {
            ZObject* first = catalogue->package(0);
            const large before = first->getProperty("Installed-Size").toLarge();
            first->setProperty("Installed-Size", before + 1);
            if (catalogue->all()->total() != figures->total + 1) state.SkipWithError("the change doesn't reach the total");
        }
        catalogue.reset();
        library.reset();
        state.ResumeTiming();
    }
}
#ifdef ORV_PEER_QT
void theirs(benchmark::State& state) {
    for (auto _ : state) {
        benchmark::DoNotOptimize(loadQtPackages(stanzas()));
        state.PauseTiming();
        dropQtPackages();
        state.ResumeTiming();
    }
}
#else
constexpr BenchPair::Run theirs = nullptr;
#endif

const BenchPair rows[] = {
    {"packages of apt's list as bound objects", "Qt", 1.0, ours, theirs, 1, 1},
};

} // namespace
