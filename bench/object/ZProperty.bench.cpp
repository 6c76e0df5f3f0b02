#include "object/ZProperty.h"

#include "bench/object/boxFields.h"
#include "bench/object/peers.h"
#include "core/ZCoreLib.h"
#include "core/construct.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/ZObject.h"
#include "object/names.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "value/ZVariant.h"

#include <string>

/// What the peer's `PeerShape` is.
class BenchLayer : public ZObject, public BoxFields {
public:
    ORV_REFLECT(BenchLayer);
    explicit BenchLayer(const __ZPassMetaType* tag = nullptr)
        : ZObject(tag ? tag : orv::passType(ztype<BenchLayer>())) {}

    const ZString& title() const { return text; }
    bool visible() const { return shown; }
    bool setTitle(const ZString& value) { return text = value, true; }
    bool setVisible(const bool& value) { return shown = value, true; }

private:
    ZString text;
    bool shown = true;
};

#define BENCH_FIVE(F, r) F(r##0) F(r##1) F(r##2) F(r##3) F(r##4)
#define BENCH_FIFTY(F)                                                                                                 \
    BENCH_FIVE(F, a)                                                                                                   \
    BENCH_FIVE(F, b)                                                                                                   \
    BENCH_FIVE(F, c)                                                                                                   \
    BENCH_FIVE(F, d)                                                                                                   \
    BENCH_FIVE(F, e) BENCH_FIVE(F, f) BENCH_FIVE(F, g) BENCH_FIVE(F, h) BENCH_FIVE(F, i) BENCH_FIVE(F, j)
#define BENCH_GETTER(name)                                                                                             \
    int name() const { return number; }
#define BENCH_METHOD(name) ORV_METHOD(int, name, (), const),
#define BENCH_PROPERTY(name) ORV_PROPERTY(int, name, "readonly"),

/// Fifty properties of one getter each.
class BenchTable : public ZObject {
public:
    ORV_REFLECT(BenchTable);
    explicit BenchTable(const __ZPassMetaType* tag = nullptr)
        : ZObject(tag ? tag : orv::passType(ztype<BenchTable>())) {}
    BENCH_FIFTY(BENCH_GETTER)

    int number = 0;
};

namespace orv::glue {
template <> struct Table<BenchLayer> : Declares<BenchLayer> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {
        ORV_BOX_METHODS,
        ORV_ACCESSORS(ZString, title, Title),
        ORV_VALUE_ACCESSORS(bool, visible, Visible),
    };
    static constexpr PropertyRow properties[] = {
        ORV_BOX_PROPERTIES("store"),
        ORV_PROPERTY(ZString, title, "store"),
        ORV_PROPERTY(bool, visible, "store"),
    };
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};
template <> struct Table<BenchTable> : Declares<BenchTable> {
    using BaseTypes = Bases<ZObject>;
    static constexpr MethodRow methods[] = {BENCH_FIFTY(BENCH_METHOD)};
    static constexpr PropertyRow properties[] = {BENCH_FIFTY(BENCH_PROPERTY)};
    static constexpr ClassInfo info = {.kind = Kind::Object, .flags = typePublic | typePolymorphic};
};
} // namespace orv::glue
ORV_DECLARE(BenchLayer);
ORV_DECLARE(BenchTable);

namespace {

/// The library is up, with the types declared.
bool library() {
    static ZCoreLib up("bench", false, false, true);
    static const bool declared = [] {
        if (!ZPackage::root() && orv::openModule()) orv::openPackages();
        if (!ztype<int>()) orv::openNames(orv::moduleNames());
        ZPackage* package = ZPackage::findPackage("orv.core.base");
        if (!package) return false;
        for (const orv::glue::ClassRow* row : {&orv::glue::Row<BenchLayer>::row, &orv::glue::Row<BenchTable>::row}) {
            ZMetaType* type = orv::makeType(package, *row);
            if (!type) return false;
            type->resetBase();
        }
        return true;
    }();
    return declared;
}

/// An object for the length of a row.
template <class T> struct Made {
    T* object = library() ? zmake<T>() : nullptr;
    ~Made() {
        if (object) object->release();
    }
    T* operator->() const { return object; }
};

void propertyGet(benchmark::State& state) {
    Made<BenchLayer> shape;
    const ZSelector width("width"), x("x");
    if (!shape.object) return state.SkipWithError("no type");
    shape->setX(3);
    shape->setWidth(640);
    if (shape->getProperty(width).toInt() != 640 || shape->getProperty(x).toInt() != 3)
        return state.SkipWithError("wrong value");
    for (auto _ : state) benchmark::DoNotOptimize(shape->getProperty(width).toInt());
}

void propertySet(benchmark::State& state) {
    Made<BenchLayer> shape;
    const ZSelector width("width");
    if (!shape.object) return state.SkipWithError("no type");
    if (!shape->setProperty(width, ZVariant(480)) || shape->width() != 480 || shape->x())
        return state.SkipWithError("wrong value");
    int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(shape->setProperty(width, ZVariant(i++)));
    if (shape->width() != i - 1) state.SkipWithError("wrong value at the end");
}

/// Gives an object eight properties of its own; false if they don't read back.
bool addNotes(ZObject* object) {
    for (int i = 0; object && i < 8; ++i)
        object->setDynamicProperty(ZSelector((std::string("note") + char('0' + i)).c_str()), ZVariant(i * 11), true);
    ZArrayT<ZSelector> names;
    return object && object->dynamicPropertyNames(names) && names.count() == 8 &&
           object->getProperty(ZSelector("note5")).toInt() == 55;
}

void dynamicGet(benchmark::State& state) {
    Made<BenchLayer> shape;
    const ZSelector note("note5");
    if (!addNotes(shape.object)) return state.SkipWithError("wrong value");
    for (auto _ : state) benchmark::DoNotOptimize(shape->getProperty(note).toInt());
}

void dynamicSet(benchmark::State& state) {
    Made<BenchLayer> shape;
    const ZSelector note("note5");
    if (!addNotes(shape.object)) return state.SkipWithError("wrong value");
    int i = 100;
    for (auto _ : state) benchmark::DoNotOptimize(shape->setProperty(note, ZVariant(i++)));
    if (shape->getProperty(note).toInt() != i - 1 || shape->getProperty(ZSelector("note4")).toInt() != 44)
        state.SkipWithError("wrong value at the end");
}

void readAll(benchmark::State& state) {
    Made<BenchTable> table;
    if (!table.object) return state.SkipWithError("no type");
    table->number = 3;
    struct Sum {
        int sum = 0, count = 0;
    };
    auto once = [&] {
        Sum all;
        table->enumerateProperties(
            [](const ZProperty& property, ZVariant& value, void* context) {
                auto all = static_cast<Sum*>(context);
                if (property.getItemType() == ztype<int>() && property.readOnly()) {
                    all->sum += value.toInt();
                    ++all->count;
                }
                return true;
            },
            &all);
        return all;
    };
    if (once().count < peers::propertyCount || once().sum < 3 * peers::propertyCount)
        return state.SkipWithError("wrong sum");
    for (auto _ : state) benchmark::DoNotOptimize(once().sum);
}

BenchPair getRow("property get, by selector", "QObject::property", 0.7, propertyGet, peers::qt::propertyGet);
BenchPair setRow("property set, by selector", "QObject::setProperty", 1.2, propertySet, peers::qt::propertySet);
BenchPair dynamicGetRow("dynamic property get", "QObject", 0.5, dynamicGet, peers::qt::dynamicGet);
BenchPair dynamicSetRow("dynamic property set", "QObject", 1.0, dynamicSet, peers::qt::dynamicSet);
BenchPair allRow("enumerate and read 50 properties", "QMetaProperty loop", 0.7, readAll, peers::qt::readAll);
BenchPair twoThreads("property get, 2 threads", "QObject::property", 0, propertyGet, peers::qt::propertyGet, 2);
BenchPair eightThreads("property get, 8 threads", "QObject::property", 0, propertyGet, peers::qt::propertyGet, 8);

} // namespace
