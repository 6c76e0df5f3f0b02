#include "value/ZTypedPtr.h"

#include "bench/object/boxFields.h"
#include "bench/object/peers.h"
#include "core/ZCoreLib.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "value/ZVariant.h"

/// The peer's struct.
struct BenchBox : BoxFields {
    ORV_REFLECT(BenchBox);
};

namespace orv::glue {
template <> struct Table<BenchBox> : Declares<BenchBox> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_BOX_METHODS,
    };
    static constexpr PropertyRow properties[] = {ORV_BOX_PROPERTIES("")};
    static constexpr ClassInfo info = {.kind = Kind::Structure, .flags = typePublic};
};
} // namespace orv::glue
ORV_DECLARE(BenchBox);

namespace {

/// The library is up, with the type declared.
ZMetaType* boxType() {
    static ZCoreLib up("bench", false, false, true);
    static ZMetaType* type = [] {
        ZPackage* package = ZPackage::findPackage("orv.core.base");
        return package ? orv::makeType(package, orv::glue::Row<BenchBox>::row) : nullptr;
    }();
    return type;
}

void get(benchmark::State& state) {
    BenchBox box;
    box.widthValue = 640;
    const ZTypedPtr place(boxType(), &box);
    const ZSelector width("width");
    if (place.getProperty(width).toInt() != 640) return state.SkipWithError("wrong value");
    for (auto _ : state) benchmark::DoNotOptimize(place.getProperty(width).toInt());
}
void set(benchmark::State& state) {
    BenchBox box;
    const ZTypedPtr place(boxType(), &box);
    const ZSelector width("width");
    if (!place.setProperty(width, ZVariant(480)) || box.widthValue != 480 || box.xValue || box.heightValue)
        return state.SkipWithError("wrong value");
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(place.setProperty(width, ZVariant(i++)));
        benchmark::ClobberMemory();
    }
    if (box.widthValue != i - 1) state.SkipWithError("wrong value at the end");
}

BenchPair getRow("property of a plain struct, get", "rttr", 1.0, get, peers::rttr::structGet);
BenchPair setRow("property of a plain struct, set", "rttr", 1.0, set, peers::rttr::structSet);

} // namespace
