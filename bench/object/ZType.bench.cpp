#include "object/ZType.h"

#include "bench/object/peers.h"
#include "core/ZCoreLib.h"
#include "module/packages.h"
#include "object/ZMethod.h"
#include "object/glue.h"
#include "object/methodLookup.h"
#include "object/names.h"
#include "object/ztype.h"
#include "toolkit/epoch.h"
#include "value/ZVariant.h"

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

/// A class with twenty methods, whose declaration stands for that of each of the many types here.
struct BenchShape {
    ORV_REFLECT(BenchShape);
    int n = 0;
    ZString text;

    int number() const { return n; }
    bool isEmpty() const { return n == 0; }
    const ZString& label() const { return text; }
    bool setLabel(const ZString& to) {
        text = to;
        return true;
    }
    bool setNumber(const int& to) {
        n = to;
        return true;
    }
    ZString print(int) const { return text; }
    void move(real, real) { ++n; }
    int add(int a, int b) const { return a + b + n; }
    int find(const ZString&, int, bool) const { return n; }
    real scale(const ZSelector&, real by) const { return n * by; }
};

namespace orv::glue {
template <> struct Table<BenchShape> : Declares<BenchShape> {
    static constexpr MethodRow methods[] = {
        ORV_METHOD(int, number, (), const),
        ORV_METHOD(bool, isEmpty, (), const),
        ORV_METHOD(const ZString&, label, (), const),
        ORV_METHOD(bool, setLabel, (const ZString&), ),
        ORV_METHOD(bool, setNumber, (const int&), ),
        ORV_METHOD(ZString, print, (int), const),
        ORV_METHOD(void, move, (real, real), ),
        ORV_METHOD(int, add, (int, int), const),
        ORV_METHOD(int, find, (const ZString&, int, bool), const),
        ORV_METHOD(real, scale, (const ZSelector&, real), const),
    };
    static constexpr ClassInfo info = {.kind = Kind::Class, .flags = typePublic};
};
} // namespace orv::glue
ORV_DECLARE(BenchShape);

namespace {

using orv::glue::BaseRow;
using orv::glue::ClassRow;
using orv::glue::MethodRow;

constexpr int methodsEach = 20, longestText = 64;

struct MethodTexts {
    char of[peers::typeCount][methodsEach][longestText];
};
/// The texts of the methods of each class: those of `BenchShape`, twice, with the class and a letter behind the name.
constexpr MethodTexts makeTexts() {
    MethodTexts made{};
    for (int i = 0; i < peers::typeCount; ++i)
        for (int m = 0; m < methodsEach; ++m) {
            char* out = made.of[i][m];
            for (const char* text = orv::glue::Table<BenchShape>::methods[m % (methodsEach / 2)].text; *text; ++text) {
                if (*text == '(') {
                    for (char c : {'O', 'f', char('0' + i / 100), char('0' + i / 10 % 10), char('0' + i % 10)})
                        *out++ = c;
                    *out++ = char('A' + m);
                }
                *out++ = *text;
            }
        }
    return made;
}
constexpr MethodTexts methodTexts = makeTexts();

/// Declarations of `peers::typeCount` classes with methods of their own. The first stands alone, the others derive from
/// one of those before.
struct Declared {
    explicit Declared(const char* stem) {
        const ClassRow& model = orv::glue::Row<BenchShape>::row;
        for (int i = 0; i < peers::typeCount; ++i) names.push_back(stem + std::to_string(i));
        for (int i = 0; i < peers::typeCount; ++i) {
            bases.push_back({names[size_t(i / 8)].c_str(), [](const void* at) { return at; }});
            for (int m = 0; m < methodsEach; ++m) {
                methods.push_back(model.methods.rows[m % model.methods.count]);
                methods.back().text = methodTexts.of[i][m];
            }
        }
        for (size_t i = 0; i < names.size(); ++i) {
            ClassRow row = model;
            row.name = names[i].c_str();
            row.methods.rows = &methods[i * methodsEach];
            row.methods.count = methodsEach;
            row.bases.rows = &bases[i];
            row.bases.count = i > 0;
            rows.push_back(row);
        }
    }
    std::vector<std::string> names;
    std::vector<BaseRow> bases;
    std::vector<MethodRow> methods;
    std::vector<ClassRow> rows;
};

void library() { static ZCoreLib up("bench", false, false, true); }

const Declared* beingMade = nullptr;
bool makeTypes(ZPackage* package, bool finished) {
    if (finished) return true;
    bool done = package->setTypeCount(peers::typeCount);
    for (const ClassRow& row : beingMade->rows) done = done && orv::makeType(package, row);
    return done;
}
ZPackage* makePackage(const char* name, const Declared& declared) {
    ZPackage* package = zmake<ZPackage>();
    if (!package) return nullptr;
    package->setSelector(ZSelector(name));
    package->setFlags(ZPackage::Public);
    package->setSetupFunc(makeTypes);
    beingMade = &declared;
    return package;
}
void dropPackage(ZPackage* package) {
    package->releasePackage();
    package->release();
    toolkit::epochCollect();
}

// By name

/// The types that the peers know too.
bool named() {
    library();
    static Declared declared("DesignShape");
    static ZPackage* package = nullptr;
    if (!package && (package = makePackage("bench.shapes", declared)) && !package->setup()) return false;
    for (int i = 0; i < peers::typeCount; ++i) {
        const ZMetaType* type = ZMetaType::find(ZSelector(peers::typeName(i)));
        if (!type || !type->getName().check(peers::typeName(i))) return false;
    }
    return package && !ZMetaType::find(ZSelector("DesignShape500"));
}
void fromSelector(benchmark::State& state) {
    if (!named()) return state.SkipWithError("wrong type");
    ZSelector names[peers::typeCount];
    for (int i = 0; i < peers::typeCount; ++i) names[i] = ZSelector(peers::typeName(i));
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ZMetaType::find(names[next]));
        next = (next + peers::stride) % peers::typeCount;
    }
}
void fromText(benchmark::State& state) {
    if (!named()) return state.SkipWithError("wrong type");
    const char* names[peers::typeCount];
    for (int i = 0; i < peers::typeCount; ++i) names[i] = peers::typeName(i);
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ZMetaType::find(ZSelector(names[next])));
        next = (next + peers::stride) % peers::typeCount;
    }
}
void inlineType(benchmark::State& state) {
    library();
    if (ztype<ZVariant>() != ZMetaType::find(ZSelector("ZVariant"))) return state.SkipWithError("wrong type");
    for (auto _ : state) benchmark::DoNotOptimize(ztype<ZVariant>());
}

BenchPair selectorRow("type from a selector", "g_type_from_name", 0.33, fromSelector, peers::gobject::typeFromName);
BenchPair selectorQtRow("type from a selector, second peer", "QMetaType::type", 0.05, fromSelector,
                        peers::qt::typeFromName);
BenchPair textRow("type from a text", "g_type_from_name", 1.0, fromText, peers::gobject::typeFromName);
BenchPair inlineRow("resolved inline type access", 1, inlineType);

// Many types. Each round has other names of classes.

std::string roundStem(const char* stem) {
    static int round = 0;
    return stem + std::to_string(round++) + "N";
}
void manyTypes(benchmark::State& state) {
    library();
    for (auto _ : state) {
        state.PauseTiming();
        const Declared declared(roundStem("Made").c_str());
        ZPackage* package = makePackage("bench.made", declared);
        state.ResumeTiming();
        const bool done = package && package->setup();
        state.PauseTiming();
        const ZMetaType* last = done ? package->findPackageType(ZSelector(declared.names.back().c_str())) : nullptr;
        if (!last || !last->baseType(0) || !last->typesAreReset()) state.SkipWithError("not made");
        dropPackage(package);
        state.ResumeTiming();
    }
}
void manyTables(benchmark::State& state) {
    library();
    for (auto _ : state) {
        state.PauseTiming();
        const Declared declared(roundStem("Built").c_str());
        ZPackage* package = makePackage("bench.built", declared);
        ZArrayT<ZMetaType*> types;
        if (!package || !package->setup()) state.SkipWithError("not made");
        for (const auto& entry : package->getTypes()) types.append(entry.value());
        state.ResumeTiming();
        bool done = true;
        for (ZMetaType* type : std::as_const(types)) done &= type->createMethods();
        state.PauseTiming();
        for (const ZMetaType* type : std::as_const(types)) done &= type->methodTypeCount() == methodsEach;
        if (!done || types.count() != peers::typeCount) state.SkipWithError("not built");
        dropPackage(package);
        state.ResumeTiming();
    }
}

BenchPair typesRow("500 types: creators run, bases resolved, tables unbuilt", 5e6, manyTypes);
// The methods have names that nobody has heard of before in the first round.
BenchPair tablesRow("500 types: all tables of 20 methods built", 10e6, manyTables, 1);

// Many threads: the same number of lookups and calls in all, however many do them.

constexpr int sharedWork = 240'000;

bool work(int count) {
    static const ZSelector signature("int addOf077H(int, int)"), name("addOf077H"), word("const"),
        typeName("DesignShape77");
    const ZVariant args[] = {ZVariant(20), ZVariant(22)};
    const BenchShape shape;
    bool right = true;
    for (int i = 0; i < count; ++i) {
        ZMetaType* type = ZMetaType::find(typeName);
        right = right && type && type->hasMethodType(signature, word);
        right = right && orv::invokeByType(&shape, type, name, args, 2).toInt() == 42;
    }
    return right;
}
void onThreads(benchmark::State& state, int threads) {
    if (!named() || !work(1)) return state.SkipWithError("wrong result");
    bool right[8] = {};
    for (auto _ : state) {
        std::vector<std::thread> all;
        for (int i = 0; i < threads; ++i)
            all.emplace_back([&right, i, threads] { right[i] = work(sharedWork / threads); });
        for (auto& thread : all) thread.join();
    }
    for (int i = 0; i < threads; ++i)
        if (!right[i]) state.SkipWithError("wrong result");
}
void onOne(benchmark::State& state) { onThreads(state, 1); }
void onTwo(benchmark::State& state) { onThreads(state, 2); }
void onEight(benchmark::State& state) { onThreads(state, 8); }

BenchPair twoRow("lookups and invokes on 2 threads", "the same on 1", 1 / 1.8, onTwo, onOne);
BenchPair eightRow("lookups and invokes on 8 threads", "the same on 2", 1 / 0.9, onEight, onTwo);

} // namespace
