#include "object/ZMethod.h"

#include "bench/object/peers.h"
#include "core/ZCoreLib.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/ZInlineMethod.h"
#include "object/glue.h"
#include "object/methodLookup.h"
#include "object/names.h"
#include "object/ztype.h"
#include "value/ZVariant.h"

struct BenchCalculator {
    ORV_REFLECT(BenchCalculator);
    int factor = 1;
    void reset() { factor = 1; }
    int scale(int a) const { return a * factor; }
    int add(int a, int b) const { return (a + b) * factor; }
    real add(real a, real b) const { return (a + b) * factor; }
    int sum(int a, int b, int c) const { return a + b + c; }
};

namespace orv::glue {
template <> struct Table<BenchCalculator> : Declares<BenchCalculator> {
    static constexpr MethodRow methods[] = {
        ORV_CONSTRUCTOR(()),
        ORV_METHOD(void, reset, (), ),
        ORV_METHOD(int, scale, (int), const),
        ORV_METHOD(real, add, (real, real), const),
        ORV_METHOD(int, add, (int, int), const),
        ORV_METHOD(int, sum, (int, int, int), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};
} // namespace orv::glue
ORV_DECLARE(BenchCalculator);

namespace {

/// The library is up, with the type declared.
ZMetaType* calculator() {
    static ZCoreLib up("bench", false, false, true);
    static ZMetaType* type = [] {
        if (!ZPackage::root() && orv::openModule()) orv::openPackages();
        if (!ztype<int>()) orv::openNames(orv::moduleNames());
        ZPackage* package = ZPackage::findPackage("orv.core.base");
        return package ? orv::makeType(package, orv::glue::Row<BenchCalculator>::row) : nullptr;
    }();
    return type;
}

void invoke(benchmark::State& state) {
    ZMetaType* type = calculator();
    if (!type) return state.SkipWithError("no type");
    const ZSelector add("add");
    const BenchCalculator target;
    auto call = [&](int a, int b) {
        const ZVariant args[] = {ZVariant(a), ZVariant(b)};
        return orv::invokeByType(&target, type, add, args, 2).toInt();
    };
    if (call(3, 4) != 7 || call(-9, 4) != -5) return state.SkipWithError("wrong result");
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(call(i++, 5));
}
void cachedInvoke(benchmark::State& state) {
    ZMetaType* type = calculator();
    if (!type) return state.SkipWithError("no type");
    const BenchCalculator target;
    ZInlineMethod add;
    add.init(type, "int add(int, int)");
    if (add.callAs<int>(&target, 3, 4) != 7 || add.callAs<int>(&target, -9, 4) != -5)
        return state.SkipWithError("wrong result");
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(add.callAs<int>(&target, i++, 5));
}
void lookUp(benchmark::State& state) {
    ZMetaType* type = calculator();
    if (!type) return state.SkipWithError("no type");
    const ZSelector scale("int scale(int)"), constant("const");
    if (!type->methodType(scale, constant)) return state.SkipWithError("not found");
    for (auto _ : state) benchmark::DoNotOptimize(type->methodType(scale, constant));
}

BenchPair byName("invoke by selector, two ints", "rttr", 1.5, invoke, peers::rttr::invoke);
BenchPair byNameQt("invoke by selector, two ints", "QMetaObject::invokeMethod", 0.4, invoke, peers::qt::invoke);
BenchPair cached("cached inline method call", "rttr cached invoke", 0.2, cachedInvoke, peers::rttr::cachedInvoke);
BenchPair signature("method by signature, cached", 20, lookUp);
BenchPair twoThreads("invoke by selector, 2 threads", "rttr", 0, invoke, peers::rttr::invoke, 2);
BenchPair eightThreads("invoke by selector, 8 threads", "rttr", 0, invoke, peers::rttr::invoke, 8);

} // namespace
