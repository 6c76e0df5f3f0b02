#include "object/ZObject.h"

#include "bench/object/peers.h"
#include "core/ZCoreLib.h"
#include "core/construct.h"

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

BenchPair createRow("create + release an object", "QObject new, delete", 1.5, create, peers::qt::create);
BenchPair childRow("child by name among 1,000", "findChild", 0.2, childByName, peers::qt::childByName);

} // namespace
