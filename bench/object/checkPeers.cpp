// Runs every peer of the object rows that is installed, prints its time, and fails if one gives a wrong result.

#include "bench/object/peers.h"

namespace {

struct Peer {
    const char* name;
    BenchPair::Run run;
};

class Failures : public benchmark::ConsoleReporter {
public:
    Failures() : ConsoleReporter(OO_None) {}
    void ReportRuns(const std::vector<Run>& runs) override {
        for (auto& run : runs) count += run.error_occurred;
        ConsoleReporter::ReportRuns(runs);
    }
    int count = 0;
};

} // namespace

int main(int argc, char** argv) {
    using namespace peers;
    const Peer all[] = {
        {"QObject property get", qt::propertyGet},
        {"QObject property set", qt::propertySet},
        {"QObject dynamic property get", qt::dynamicGet},
        {"QObject dynamic property set", qt::dynamicSet},
        {"QMetaObject::invokeMethod", qt::invoke},
        {"QMetaType::type", qt::typeFromName},
        {"QObject new, delete", qt::create},
        {"findChild", qt::childByName},
        {"QMetaProperty loop", qt::readAll},
        {"QMetaEnum", qt::enums},
        {"QVariant copy, int", qt::copyInt},
        {"QVariant copy, text", qt::copyText},
        {"QVariant text to int", qt::textToInt},
        {"signal of 0", qt::fire0},
        {"signal of 1", qt::fire1},
        {"signal of 10", qt::fire10},
        {"connect, disconnect", qt::connect},
        {"rttr invoke", rttr::invoke},
        {"rttr cached invoke", rttr::cachedInvoke},
        {"rttr property get", rttr::structGet},
        {"rttr property set", rttr::structSet},
        {"g_type_from_name", gobject::typeFromName},
    };
    for (auto& peer : all)
        if (peer.run) benchmark::RegisterBenchmark(peer.name, peer.run);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 2;
    Failures reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.count ? 1 : 0;
}
