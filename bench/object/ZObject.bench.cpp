#include "object/ZObject.h"

#include "bench/object/peers.h"
#include "core/ZCoreLib.h"
#include "core/construct.h"
#include "value/ZVariant.h"

#include <string>

namespace {

/// Objects have types as long as the library is up.
void library() { static ZCoreLib up("bench", false, false, true); }

class Ending : public ZObject {
public:
    explicit Ending(int& count) : count(count) {}
    ~Ending() override { ++count; }

private:
    int& count;
};
void create(benchmark::State& state) {
    library();
    int ended = 0;
    zmake<Ending>(ended)->release();
    if (ended != 1) return state.SkipWithError("didn't end");
    for (auto _ : state) {
        ZObject* object = zmake<ZObject>();
        benchmark::DoNotOptimize(object);
        object->release();
    }
}

void childByName(benchmark::State& state) {
    library();
    ZObject* parent = zmake<ZObject>();
    ZSelector names[peers::childCount];
    ZObject* children[peers::childCount];
    for (int i = 0; i < peers::childCount; ++i) {
        names[i] = ZSelector(peers::childName(i));
        children[i] = zmake<ZObject>();
        children[i]->setSelector(names[i]);
        children[i]->setParent(parent);
        children[i]->release();
    }
    for (int i = 0; i < peers::childCount; ++i)
        if (parent->getFirst(names[i]) != children[i]) state.SkipWithError("wrong child");
    if (parent->getFirst(ZSelector("layer1000"))) state.SkipWithError("a child that isn't there");
    int next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(parent->getFirst(names[next]));
        next = (next + peers::stride) % peers::childCount;
    }
    parent->release();
}

/// An object with eight notes that aren't declared.
ZObject* withNotes(benchmark::State& state) {
    library();
    ZObject* object = zmake<ZObject>();
    for (int i = 0; i < 8; ++i)
        if (!object->addProperty(("note" + std::to_string(i)).c_str(), ZVariant(i * 11)))
            state.SkipWithError("no property");
    if (object->getProperty("note5").toInt() != 55) state.SkipWithError("wrong value");
    return object;
}
void dynamicGet(benchmark::State& state) {
    ZObject* object = withNotes(state);
    const ZSelector name("note5");
    for (auto _ : state) benchmark::DoNotOptimize(object->getProperty(name).toInt());
    object->release();
}
void dynamicSet(benchmark::State& state) {
    ZObject* object = withNotes(state);
    const ZSelector name("note5");
    int i = 100;
    for (auto _ : state) benchmark::DoNotOptimize(object->setProperty(name, ZVariant(i++)));
    if (object->getProperty(name).toInt() != i - 1 || object->getProperty("note4").toInt() != 44)
        state.SkipWithError("wrong value at the end");
    object->release();
}

BenchPair createRow("create + release an object", "QObject new, delete", 1.5, create, peers::qt::create);
BenchPair dynamicGetRow("dynamic property get", "QObject", 0.5, dynamicGet, peers::qt::dynamicGet);
BenchPair dynamicSetRow("dynamic property set", "QObject", 1.0, dynamicSet, peers::qt::dynamicSet);
BenchPair childRow("child by name among 1,000", "findChild", 0.2, childByName, peers::qt::childByName);

} // namespace
