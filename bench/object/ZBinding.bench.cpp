#include "object/ZBinding.h"

#include "bench/object/peers.h"
#include "core/ZCoreLib.h"
#include "core/construct.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/ZMethodBindings.h"
#include "object/glue.h"
#include "object/names.h"
#include "object/ztype.h"

#include <vector>

class BenchBell : public ZObject {
public:
    ORV_REFLECT(BenchBell);
    explicit BenchBell(const __ZPassMetaType* tag = nullptr, ZInternal* internal = nullptr)
        : ZObject(tag ? tag : orv::passType(ztype<BenchBell>()), internal) {}
    int rung = 0;
    void struck() {}
    void ring() { ++rung; }
};

namespace orv::glue {
template <> struct Table<BenchBell> : Declares<BenchBell> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_METHOD(void, struck, (), , "bind"),
        ORV_METHOD(void, ring, (), ),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};
} // namespace orv::glue
ORV_DECLARE(BenchBell);

namespace {

ZMetaType* bellType() {
    static ZCoreLib up("bench", false, false, true);
    static ZMetaType* type = [] {
        if (!ZPackage::root() && orv::openModule()) orv::openPackages();
        if (!ztype<int>()) orv::openNames(orv::moduleNames());
        ZPackage* package = ZPackage::findPackage("orv.core.base");
        ZMetaType* made = package ? orv::makeType(package, orv::glue::Row<BenchBell>::row) : nullptr;
        if (made) made->resetBase();
        return made;
    }();
    return type;
}

template <int count> void fire(benchmark::State& state) {
    ZMetaType* type = bellType();
    if (!type) return state.SkipWithError("no type");
    const ZSelector struck("void struck()"), ring("void ring()");
    const ZMethod* method = type->methodType(struck);
    BenchBell* source = zmake<BenchBell>();
    BenchBell* to[count + 1] = {};
    for (int i = 0; i < count; ++i) source->bind(to[i] = zmake<BenchBell>(), struck, ring);
    ZBinding::callV(source, method);
    for (int i = 0; i < count; ++i)
        if (to[i]->rung != 1) state.SkipWithError("not called");
    for (auto _ : state) {
        ZBinding::callV(source, method);
        benchmark::ClobberMemory();
    }
    source->release();
    for (int i = 0; i < count; ++i) to[i]->release();
}

void runBinds(benchmark::State& state, int others) {
    ZMetaType* type = bellType();
    if (!type) return state.SkipWithError("no type");
    const ZSelector struck("void struck()"), ring("void ring()");
    ZMethod *from = type->methodType(struck), *into = type->methodType(ring);
    std::vector<BenchBell*> held;
    for (int i = 0; i < others; ++i) {
        held.push_back(zmake<BenchBell>());
        if (ZBinding::bind(held.back(), held[held.size() / 2], nullptr, nullptr, from, into) < 0)
            state.SkipWithError("not bound");
    }
    BenchBell *source = zmake<BenchBell>(), *to = zmake<BenchBell>();
    const int index = source->bind(to, struck, ring);
    ZBinding::callV(source, from);
    if (index < 0 || !source->unbind(to, struck, ring) || to->rung != 1) state.SkipWithError("not bound");
    for (auto _ : state) {
        source->bind(to, struck, ring);
        benchmark::DoNotOptimize(source->unbind(to, struck, ring));
    }
    held.push_back(source);
    held.push_back(to);
    for (BenchBell* each : held) each->release();
    if (ZBinding::bindings()->used()) state.SkipWithError("bindings left");
}
void bind(benchmark::State& state) { runBinds(state, 0); }
void bindAmongMany(benchmark::State& state) { runBinds(state, 100000); }

BenchPair fire0Row("fire with none bound", "Qt signal", 0.4, fire<0>, peers::qt::fire0);
BenchPair fire1Row("fire with 1 bound", "Qt signal", 0.8, fire<1>, peers::qt::fire1);
BenchPair fire10Row("fire with 10 bound", "Qt signal", 1.0, fire<10>, peers::qt::fire10);
BenchPair bindRow("bind + unbind by names", "Qt string connect, disconnect", 0.8, bind, peers::qt::connect);
BenchPair manyRow("bind + unbind among 100,000 of that method", "our empty table", 1.5, bindAmongMany, bind);

} // namespace
