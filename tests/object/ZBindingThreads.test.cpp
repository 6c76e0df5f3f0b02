#include "tests/object/bindingTypes.h"

#include <thread>
#include <vector>

// Firing goes on while other threads bind, unbind and end objects.

namespace {

using BindingThreads = BindingTest;

/// Runs each of `loops` on a thread of its own until `work`, on this one, has returned.
void race(int copies, const std::vector<std::function<void()>>& loops, const std::function<void()>& work) {
    std::atomic<bool> ended{false};
    std::atomic<int> running{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < copies; ++i)
        for (const auto& loop : loops)
            threads.emplace_back([&] {
                ++running;
                while (!ended) loop();
            });
    while (running < int(threads.size())) std::this_thread::yield();
    work();
    ended = true;
    for (std::thread& thread : threads) thread.join();
}
Bell* makeQuiet() {
    Bell* made = zmake<Bell>();
    made->quiet = true;
    return made;
}

} // namespace

TEST_F(BindingThreads, FiringWhileOthersBindUnbindAndDelete) {
    Bell *source = makeQuiet(), *stays = makeQuiet();
    ZMethod *from = method("void struck()"), *to = method("void ring()");
    ASSERT_GE(ZBinding::bind(source, stays, nullptr, nullptr, from, to), 0);
    // Each destination checks that it lives while it is called.
    static constexpr int mark = 4711;
    std::atomic<int> dead{0};
    auto churn = [&] {
        Bell* some[4];
        for (Bell*& each : some) {
            each = makeQuiet();
            each->setWidth(mark);
            each->onRing = [&](Bell& self) { dead += self.width() != mark; };
            const int index = ZBinding::bind(source, each, nullptr, nullptr, from, to);
            ZBinding::setPriority(index, index % 3 * 5000);
        }
        ZBinding::unbind(source, some[1], nullptr, nullptr, from, to);
        for (Bell* each : some) each->release();
    };
    auto fire = [&] { ZBinding::callV(source, from); };
    race(1, {fire, fire, fire, fire, fire, fire, fire, fire, churn, churn}, [&] {
        for (int i = 0; i < 1500; ++i) churn();
    });
    EXPECT_EQ(dead, 0);
    EXPECT_GT(stays->rung, 0);
    EXPECT_EQ(ZBinding::bindings()->used(), 1u);
    source->release();
    stays->release();
}

TEST_F(BindingThreads, AValueThatComesMeanwhileIsPassedOnToo) {
    Bell *source = makeQuiet(), *follower = makeQuiet();
    follower->quiet = false;
    ASSERT_GE(source->bind(follower, "width", "void hear(int)"), 0);
    ASSERT_GE(source->bind(follower, "void struck()", "void ring()"), 0);
    follower->onRing = [&](Bell& self) {
        if (self.rung > 1) return;
        std::thread([&] { source->setProperty("width", ZVariant(2)); }).join();
    };
    source->setProperty("width", ZVariant(1));
    EXPECT_EQ(Bell::takeLog(), ".hear 1 .hear 2 ");
    follower->onRing = [&](Bell&) { std::thread([&] { ZBinding::callV(source, method("void struck()")); }).join(); };
    EXPECT_EQ(strike(source), ".ring "); // no property: passed by
    source->release();
    follower->release();
}

TEST_F(BindingThreads, MethodsChangeWhileTheyAreFired) {
    Bell *source = makeQuiet(), *target = makeQuiet();
    ZMethod* own = ZMethod::create("void ring()", {}, ZMethod::Dynamic, nullptr, [](const void* bell, ZMethod*, void*) {
        ++static_cast<Bell*>(const_cast<void*>(bell))->rung;
    });
    const ZSelector struck("void struck()"), ring("void ring()");
    ASSERT_GE(source->bind(target, struck, ring), 0);
    ZMethod* from = method("void struck()");
    ZArrayT<ZVariant> fixed;
    fixed.append(ZVariant("a text that needs a block of its own"));
    ZArrayT<int> places;
    auto fire = [&] {
        ZBinding::callV(source, from);
        source->findBinding(target, struck, ring);
    };
    race(2, {fire}, [&] {
        for (int i = 0; i < 400; ++i) {
            target->setMethod(own, true);
            target->removeMethod(ring, {});
            source->bindings(places);
            for (int index : std::as_const(places)) ZBinding::setParams(index, 0, i % 2 ? fixed : ZArrayT<ZVariant>());
            places.clear();
        }
    });
    EXPECT_TRUE(source->hasBindings());
    source->release();
    target->release();
    ZMethod::release(own);
}
