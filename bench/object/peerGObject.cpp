#include "bench/object/peers.h"

#include <cstring>
#include <glib-object.h>

namespace {

void typeFromName(benchmark::State& state) {
    static bool registered = false;
    for (int i = 0; !registered && i < peers::typeCount; ++i) {
        GTypeInfo info = {};
        info.class_size = sizeof(GObjectClass);
        info.instance_size = sizeof(GObject);
        g_type_register_static(G_TYPE_OBJECT, peers::typeName(i), &info, GTypeFlags(0));
    }
    registered = true;
    for (int i = 0; i < peers::typeCount; ++i) {
        GType type = g_type_from_name(peers::typeName(i));
        if (!type || std::strcmp(g_type_name(type), peers::typeName(i))) state.SkipWithError("wrong type");
    }
    if (g_type_from_name("DesignShape500")) state.SkipWithError("a type that isn't there");
    const char* names[peers::typeCount];
    for (int i = 0; i < peers::typeCount; ++i) names[i] = peers::typeName(i);
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(g_type_from_name(names[next]));
        next = (next + peers::stride) % peers::typeCount;
    }
}

} // namespace

const BenchPair::Run peers::gobject::typeFromName = ::typeFromName;
