#include "bench/object/peers.h"

#include <rttr/registration>

namespace {

struct Calculator {
    int add(int a, int b) { return a + b; }
    int subtract(int a, int b) { return a - b; }
    double scale(double factor) { return factor * 2; }
    void clear() {}
    int sum() const { return 0; }
};

struct Box {
    int x = 0, y = 0, width = 0, height = 0;
    double opacity = 1, angle = 0;
};

} // namespace

RTTR_REGISTRATION {
    rttr::registration::class_<Calculator>("Calculator")
        .method("subtract", &Calculator::subtract)
        .method("scale", &Calculator::scale)
        .method("add", &Calculator::add)
        .method("clear", &Calculator::clear)
        .method("sum", &Calculator::sum);
    rttr::registration::class_<Box>("Box")
        .property("x", &Box::x)
        .property("y", &Box::y)
        .property("width", &Box::width)
        .property("height", &Box::height)
        .property("opacity", &Box::opacity)
        .property("angle", &Box::angle);
}

namespace {

template <class F> void runCalls(benchmark::State& state, F call) {
    Calculator target;
    if (call(target, 3, 4) != 7 || call(target, -9, 4) != -5) state.SkipWithError("wrong result");
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(call(target, i, 5));
        ++i;
    }
}

void invoke(benchmark::State& state) {
    const rttr::type type = rttr::type::get<Calculator>();
    runCalls(state, [&](Calculator& target, int a, int b) {
        return type.get_method("add").invoke(target, a, b).get_value<int>();
    });
}

void cachedInvoke(benchmark::State& state) {
    const rttr::method add = rttr::type::get<Calculator>().get_method("add");
    runCalls(state, [&](Calculator& target, int a, int b) { return add.invoke(target, a, b).get_value<int>(); });
}

void structGet(benchmark::State& state) {
    const rttr::type type = rttr::type::get<Box>();
    Box box;
    box.width = 640;
    auto width = [&] { return type.get_property("width").get_value(box).get_value<int>(); };
    if (width() != 640) state.SkipWithError("wrong value");
    for (auto _ : state) benchmark::DoNotOptimize(width());
}

void structSet(benchmark::State& state) {
    const rttr::type type = rttr::type::get<Box>();
    Box box;
    auto setWidth = [&](int value) { return type.get_property("width").set_value(box, value); };
    if (!setWidth(480) || box.width != 480 || box.x || box.height) state.SkipWithError("wrong value");
    int i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(setWidth(i++));
        benchmark::ClobberMemory();
    }
    if (box.width != i - 1) state.SkipWithError("wrong value at the end");
}

} // namespace

namespace peers::rttr {
const BenchPair::Run invoke = ::invoke, cachedInvoke = ::cachedInvoke, structGet = ::structGet, structSet = ::structSet;
} // namespace peers::rttr
