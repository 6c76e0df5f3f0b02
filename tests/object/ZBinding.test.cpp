#include "object/ZBindingLink.h"
#include "object/ZMethodRef.h"
#include "object/ZPropertyRef.h"
#include "tests/object/bindingTypes.h"
#include "tests/support/CaptureDebug.h"
#include "text/ZRegExp.h"
#include "value/ZVSelectMap.h"

#include <functional>
#include <memory>
#include <pthread.h>
#include <vector>

namespace {

struct Release {
    void operator()(Bell* bell) const { bell->release(); }
};
using Held = std::unique_ptr<Bell, Release>;
Held bell(const char* name) { return Held(Bell::make(name)); }
const ZSelector struck() { return ZSelector("void struck()"); }
const ZSelector ring() { return ZSelector("void ring()"); }

int callWith(ZObject* object, ZMethod* method, ...) {
    var_arg arguments;
    va_start(arguments.list, method);
    const int result = ZBinding::callIA(object, method, &arguments);
    va_end(arguments.list);
    return result;
}

} // namespace

TEST_F(BindingTest, APairIsBoundOnceAndCounts) {
    Held a = bell("a"), b = bell("b");
    EXPECT_FALSE(a->hasBindings());
    const int index = a->bind(b.get(), struck(), ring());
    ASSERT_GE(index, 0);
    EXPECT_EQ(a->bind(b.get(), struck(), ring()), index);
    EXPECT_EQ(a->binding(method("void struck()")), index);
    EXPECT_EQ(a->binding(method("int asked()")), -1);
    EXPECT_EQ(a->findBinding(b.get(), "struck", "ring"), index);
    EXPECT_EQ(ZBinding::get(index)->getRefs(), 2);
    EXPECT_EQ(strike(a.get()), "b.ring ");
    EXPECT_TRUE(a->unbind(b.get(), struck(), ring()));
    EXPECT_EQ(strike(a.get()), "b.ring ");
    EXPECT_TRUE(a->unbind(b.get(), struck(), ring()));
    EXPECT_FALSE(a->unbind(b.get(), struck(), ring()));
    EXPECT_EQ(strike(a.get()), "");
    EXPECT_EQ(ZBinding::get(index), nullptr);

    const int again = a->bind(b.get(), struck(), ring());
    EXPECT_TRUE(ZBinding::countReference(again, false));
    EXPECT_EQ(a->bind(b.get(), struck(), ring()), again);
    EXPECT_TRUE(a->unbind(b.get(), struck(), ring()));
    EXPECT_FALSE(a->hasBindings());
    EXPECT_EQ(a->bind(b.get(), "void moved(int, const ZString&)", "void hear(const ZString&)"), -1);
    EXPECT_EQ(a->bind(nullptr, struck(), ring()), -1);
}

TEST_F(BindingTest, CallsInFallingPriorityAndAmongEqualsInOrder) {
    Held source = bell("s");
    std::vector<Held> to;
    std::vector<int> places;
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        to.push_back(bell(name));
        places.push_back(source->bind(to.back().get(), struck(), ring()));
        source->bind(to.back().get(), "int asked()", ring());
    }
    auto order = [&] {
        std::string all = strike(source.get()), names;
        for (size_t i = 0; i < all.size(); i += 7) names += all[i];
        return names;
    };
    EXPECT_EQ(order(), "abcde");
    struct {
        int place, priority;
        const char* order;
    } const rows[] = {
        {3, ZBinding::High, "dabce"}, {0, ZBinding::Low, "dbcea"}, {2, ZBinding::Low, "dbeac"}, {4, 20000, "edbac"},
        {1, 5001, "edbac"},           {3, 5001, "ebdac"},          {3, 5001, "ebdac"},          {1, -7, "edacb"}};
    for (const auto& row : rows) {
        EXPECT_TRUE(ZBinding::setPriority(places[size_t(row.place)], row.priority));
        EXPECT_EQ(order(), row.order) << row.place << " to " << row.priority;
        EXPECT_EQ(ZBinding::getPriority(places[size_t(row.place)]), row.priority);
    }
    ZBinding::enable(places[4], false);
    EXPECT_EQ(order(), "dacb");
    EXPECT_TRUE(source->unbind(to[3].get(), struck(), ring()));
    EXPECT_EQ(order(), "acb");
    to[0].reset();
    EXPECT_EQ(order(), "cb");
    EXPECT_FALSE(ZBinding::setPriority(places[0], 1));
    ZArrayT<int> all, one;
    EXPECT_TRUE(source->bindings(all) && source->bindings(method("int asked()"), one));
    EXPECT_EQ(all.count(), 7u);
    EXPECT_EQ(one.count(), 4u);
    EXPECT_TRUE(to[2]->unbinddst(ring()));
    EXPECT_TRUE(source->unbindsrc("asked"));
    EXPECT_EQ(order(), "b");
}

TEST_F(BindingTest, ArgumentsFindTheirPlaces) {
    Held a = bell("a"), b = bell("b");
    struct {
        const char* to;
        std::vector<ZVariant> fixed;
        int position;
        const char* log;
    } const rows[] = {
        {"void ring()", {}, 0, "b.ring "},
        {"void hear(int)", {}, 0, "b.hear 4 "},
        {"void both(int, const ZString&, int)", {}, 0, "b.both 4,5,0 "},
        {"void both(int, const ZString&, int)", {ZVariant(9)}, 2, "b.both 4,5,9 "},
        {"void both(int, const ZString&, int)", {ZVariant(8), ZVariant("xy")}, 0, "b.both 8,2,4 "},
        {"void both(int, const ZString&, int)", {ZVariant("xyz"), ZVariant(6)}, 1, "b.both 4,3,6 "},
        {"void hear(int)", {ZVariant(3)}, 0, "b.hear 3 "},
        {"void all(ZArrayT<ZVariant>&)", {}, 0, "b.all 2 "},
        {"void all(ZArrayT<ZVariant>&)", {ZVariant(1)}, 1, "b.all 3 "},
    };
    const ZSelector from("void moved(int, const ZString&)");
    const ZString text("fives");
    const ZVariant given[] = {ZVariant(4), ZVariant(text)};
    for (const auto& row : rows) {
        const int index = a->bind(b.get(), from, row.to);
        ASSERT_GE(index, 0) << row.to;
        ZArrayT<ZVariant> fixed;
        for (const ZVariant& value : row.fixed) fixed.append(value);
        EXPECT_TRUE(ZBinding::setParams(index, row.position, fixed));
        EXPECT_TRUE(ZBinding::callArgs(a.get(), method(from.string()), given, 2));
        EXPECT_EQ(Bell::takeLog(), row.log) << "as values";
        callWith(a.get(), method(from.string()), 4, &text);
        EXPECT_EQ(Bell::takeLog(), row.log) << "as a list of arguments";
        EXPECT_TRUE(ZBinding::remove(index, true));
    }
    ZArrayT<ZVariant> five;
    five.append(ZVariant(5));
    EXPECT_GE(a->bindArg(b.get(), struck(), "void hear(int)", five, 0), 0);
    EXPECT_EQ(strike(a.get()), "b.hear 5 ");
}

TEST_F(BindingTest, AnswersAreThoseOfTheLast) {
    Held a = bell("a"), b = bell("b");
    ZMethod* asked = method("int asked()");
    auto bound = [&](const char* to, const char* from = "int asked()") {
        a->unbindsrc({});
        return a->bind(b.get(), from, to) >= 0;
    };
    EXPECT_EQ(ZBinding::callI(a.get(), asked), 0);
    EXPECT_TRUE(bound("int seven()"));
    EXPECT_EQ(ZBinding::callI(a.get(), asked), 7);
    EXPECT_TRUE(ZBinding::callB(a.get(), asked));
    EXPECT_EQ(ZBinding::callR(a.get(), asked), 7.0);
    EXPECT_EQ(ZBinding::callX(a.get(), asked), nullptr);
    a->bind(b.get(), "int asked()", ring());
    EXPECT_EQ(ZBinding::callI(a.get(), asked), 0); // the last one has none
    ZVariant kept("before");
    ZBinding::callCA(a.get(), asked, nullptr, kept);
    EXPECT_EQ(kept.toInt(), 7);
    EXPECT_TRUE(bound("real half()"));
    EXPECT_EQ(ZBinding::callR(a.get(), asked), 0.5);
    EXPECT_TRUE(bound("int answers()"));
    EXPECT_EQ(ZBinding::callI(a.get(), asked), 12);
    EXPECT_TRUE(bound("ZString title()", "ZString named()"));
    ZBinding::callCA(a.get(), method("ZString named()"), nullptr, kept);
    EXPECT_EQ(kept.toString().length(), 37);
    EXPECT_TRUE(bound("Bell* self()", "Bell* found()"));
    EXPECT_EQ(ZBinding::callX(a.get(), method("Bell* found()")), b.get());
    EXPECT_EQ(b->refcount(), 1);
    a->bind(b.get(), "Bell* found()", "Bell* fresh()");
    auto made = static_cast<Bell*>(ZBinding::callX(a.get(), method("Bell* found()")));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->refcount(), 1);
    made->release();
    const int before = Bell::ended;
    ZBinding::callV(a.get(), method("Bell* found()")); // nobody wants it
    EXPECT_EQ(Bell::ended, before + 1);
    EXPECT_EQ(a->caller(), nullptr);
    EXPECT_FALSE(a->callerReturn(ZVariant(1)));
}

TEST_F(BindingTest, PropertiesFollowEachOther) {
    Held a = bell("a"), b = bell("b"), c = bell("c");
    ASSERT_GE(a->bind(b.get(), "width", "width"), 0);
    ASSERT_GE(b->bind(c.get(), "width", "width"), 0);
    EXPECT_TRUE(c->xbind(a.get(), "width", "width")); // a ring
    EXPECT_TRUE(a->setProperty("width", ZVariant(5)));
    EXPECT_EQ(b->width(), 5);
    EXPECT_EQ(c->width(), 5);
    EXPECT_TRUE(c->setProperty("width", ZVariant(6)));
    EXPECT_EQ(a->width() + b->width(), 12);

    // A missing name becomes a property, whatever it is made of.
    ASSERT_GE(a->bind(b.get(), "width", "Installed-Size"), 0);
    EXPECT_EQ(b->getProperty("Installed-Size").toInt(), 6);
    a->setProperty("width", ZVariant(7));
    EXPECT_EQ(b->getProperty("Installed-Size").toInt(), 7);
    b->addProperty("note", ZVariant("text"));
    CaptureDebug lines;
    EXPECT_LT(b->bind(a.get(), "note", "width"), 0); // no number
    EXPECT_TRUE(lines.has("\"note\" of Bell"));
    ASSERT_GE(b->bind(c.get(), "note", "void hear(const ZString&)"), 0);
    ASSERT_GE(b->bind(c.get(), "note", "ring"), 0);
    b->setProperty("note", ZVariant("four"));
    EXPECT_EQ(Bell::takeLog(), "c.text 4 c.ring ");
    EXPECT_TRUE(b->unbind(c.get(), "note", "ring"));
    EXPECT_TRUE(b->invokePropertyBindings("note", ZVariant("five5")));
    EXPECT_EQ(Bell::takeLog(), "c.text 5 ");
    b->removeProperty("note");
    EXPECT_TRUE(b->unbind(c.get(), "note", "void hear(const ZString&)"));
    ASSERT_GE(a->bind(c.get(), struck(), "width"), 0);
    ZVariant eight(8);
    ZBinding::callArgs(a.get(), method("void struck()"), &eight, 1);
    EXPECT_EQ(c->width(), 8);
}

TEST_F(BindingTest, NamesStandForOverloadsAndForWhatIsMissing) {
    Held a = bell("a"), b = bell("b");
    ASSERT_GE(a->bind(b.get(), "moved", "hear"), 0); // only the one for a number
    ZArrayT<int> places;
    a->bindings(b.get(), places);
    EXPECT_EQ(places.count(), 1u);
    ASSERT_GE(a->bind(b.get(), "struck", "hear"), 0); // both
    EXPECT_EQ(strike(a.get()), "b.hear 0 b.text 0 ");
    EXPECT_TRUE(a->unbind(b.get(), "struck", "hear"));
    EXPECT_EQ(strike(a.get()), "");
    {
        CaptureDebug lines;
        ASSERT_GE(a->bind(b.get(), "void later(int)", "void hear(int)"), 0);
        EXPECT_TRUE(lines.has("\"void later(int)\" is bound"));
    }
    const ZVariant three(3);
    EXPECT_TRUE(ZBinding::callArgs(a.get(), a->method(nullptr, "void later(int)", {}), &three, 1));
    EXPECT_EQ(Bell::takeLog(), "b.hear 3 ");
    // Patterns match whole names of methods, whatever else the object has.
    const ZRegExp strucks("struc."), hears("he.r"), part("hea");
    EXPECT_LT(ZBinding::bind(a.get(), b.get(), strucks, part), 0);
    EXPECT_GE(ZBinding::bind(a.get(), b.get(), strucks, hears), 0);
    EXPECT_EQ(strike(a.get()), "b.hear 0 b.text 0 ");
    EXPECT_TRUE(ZBinding::unbind(a.get(), b.get(), strucks, hears));
    EXPECT_FALSE(ZBinding::unbind(a.get(), b.get(), strucks, hears));
    EXPECT_EQ(strike(a.get()), "");
    // Text forms, paths, labels, names.
    b->setParent(a.get());
    EXPECT_GE(ZBinding::bind(a.get(), a.get(), "void struck()", "b.ring"), 0);
    EXPECT_EQ(strike(a.get()), "b.ring ");
    EXPECT_TRUE(ZBinding::unbind(a.get(), b.get(), "void struck()", "void ring()"));
    b->setParent(nullptr);
    EXPECT_GE(a->lbind("mine", b.get(), struck(), ring()), 0);
    EXPECT_TRUE(a->lxbind("mine", b.get(), struck(), struck()));
    EXPECT_FALSE(a->unbindLabeled("yours"));
    EXPECT_TRUE(a->unbindLabeled(b.get(), "mine") && b->unbindLabeled("mine"));
    EXPECT_LT(a->sbind("nobody", struck(), ring()), 0);
    b->publishNamed();
    EXPECT_GE(a->sbind("b", struck(), ring()), 0);
    EXPECT_GE(a->bindService("b", struck(), ring()), 0);
    EXPECT_EQ(strike(b.get()), "a.ring ");
    EXPECT_EQ(strike(a.get()), "b.ring ");
    b->unbindsrc({});
    EXPECT_TRUE(a->unbindService("b", struck(), ring()));
    EXPECT_TRUE(a->autobind(b.get(), true));
    b->bind(a.get(), struck(), ring());
    EXPECT_EQ(strike(b.get()), "a.ring ");
}

TEST_F(BindingTest, TypesReachAllInstances) {
    Held a = bell("a"), watch = bell("w");
    Held small(zmake<SmallBell>());
    ASSERT_GE(watch->bindType(ztype<Bell>(), struck(), ring()), 0);
    EXPECT_EQ(strike(a.get()), "w.ring ");
    EXPECT_EQ(strike(small.get()), "w.ring ");                                 // declared above
    ZBinding::callV(small.get(), method("void struck()", ztype<SmallBell>())); // its own form
    EXPECT_EQ(Bell::takeLog(), "w.ring ");
    ASSERT_GE(watch->bindType(ztype<SmallBell>(), "int asked()", ring()), 0);
    ZBinding::callV(a.get(), method("int asked()"));
    EXPECT_EQ(Bell::takeLog(), "");
    ZBinding::callV(small.get(), method("int asked()"));
    EXPECT_EQ(Bell::takeLog(), "w.ring ");
    EXPECT_TRUE(watch->unbindType(ztype<Bell>(), struck(), ring()));
    // To all instances, and to a method without one.
    ASSERT_GE(ZBinding::bindtype(watch.get(), nullptr, nullptr, ztype<Bell>(), struck(), ring()), 0);
    ASSERT_GE(ZBinding::bindtype(watch.get(), nullptr, nullptr, ztype<Bell>(), struck(), "void shared()"), 0);
    strike(watch.get());
    EXPECT_EQ(a->rung + watch->rung + small->rung, 3 + 4);
    EXPECT_TRUE(ZBinding::unbindtype(watch.get(), nullptr, nullptr, ztype<Bell>(), struck(), ring()));
    EXPECT_EQ(strike(watch.get()), "shared ");
    // Properties: any width sets that of one.
    ASSERT_GE(watch->bindType(ztype<Bell>(), "width", "width"), 0);
    a->setProperty("width", ZVariant(31));
    EXPECT_EQ(watch->width(), 31);
    // A signature takes references.
    const ZMethodRef ringing(a.get(), ring());
    EXPECT_TRUE(struck() += ringing);
    EXPECT_EQ(strike(small.get()), "a.ring ");
    EXPECT_TRUE(struck() -= ringing);
    EXPECT_FALSE(struck() -= ringing);
    EXPECT_FALSE(ZSelector("plain") += ringing);
    EXPECT_FALSE(ZSelector("void nowhere()") += ringing);
}

TEST_F(BindingTest, ReferencesBindByOperators) {
    Held a = bell("a"), b = bell("b");
    ZMethodRef signal(a.get(), struck());
    ZPropertyRef width(a.get(), "width");
    signal += ZMethodRef(b.get(), ring());
    signal += ZPropertyRef(b.get(), "width");
    signal += ring();
    width += ZPropertyRef(b.get(), "width");
    width += ZMethodRef(b.get(), "void hear(int)");
    width += b.get();
    ZArrayT<int> places;
    a->bindings(places);
    EXPECT_EQ(places.count(), 5u);
    EXPECT_EQ(strike(a.get()), "b.ring a.ring ");
    width = ZVariant(4);
    EXPECT_EQ(Bell::takeLog(), "b.hear 4 ");
    EXPECT_EQ(b->width(), 4);
    signal -= ZMethodRef(b.get(), ring());
    signal -= ring();
    signal -= ZPropertyRef(b.get(), "width");
    width -= b.get();
    width -= ZPropertyRef(b.get(), "width");
    width -= ZMethodRef(b.get(), "void hear(int)");
    EXPECT_FALSE(a->hasBindings());
}

TEST_F(BindingTest, LinksBindByPathsAndCopyFirst) {
    Held root = bell("root"), a = bell("a"), b = bell("b");
    for (Bell* child : {a.get(), b.get()}) child->setParent(root.get());
    ZVSelectMap objects;
    objects.set("top", ZVariant(static_cast<ZObject*>(root.get())));
    struct {
        ZBindingLink::Direction direction;
        int a, b;   // once bound, 5 and 6 before
        int fa, fb; // after 7 in a, then 8 in b
    } const rows[] = {
        {ZBindingLink::Forward, 5, 5, 7, 8}, {ZBindingLink::Backward, 6, 6, 8, 8}, {ZBindingLink::Cross, 5, 5, 8, 8}};
    for (const auto& row : rows)
        for (bool byMap : {false, true}) {
            const ZBindingLink link(byMap ? "top.a.width" : "a.width", byMap ? "top.b.width" : "b.width",
                                    row.direction);
            auto bind = [&](bool on) { return byMap ? link.bind(objects, "top", on) : link.bind(root.get(), on); };
            a->setProperty("width", ZVariant(5));
            b->setProperty("width", ZVariant(6));
            EXPECT_TRUE(bind(true));
            EXPECT_EQ(a->width(), row.a);
            EXPECT_EQ(b->width(), row.b);
            a->setProperty("width", ZVariant(7));
            b->setProperty("width", ZVariant(8));
            EXPECT_EQ(a->width(), row.fa);
            EXPECT_EQ(b->width(), row.fb);
            EXPECT_TRUE(bind(false));
            EXPECT_FALSE(a->hasBindings() || b->hasBindings());
        }
    EXPECT_FALSE(ZBindingLink("a.width", "nowhere.width").bind(root.get(), true));
    ZSelector path, name, qualifier;
    ZBindingLink::normalize("void a.b.ring(int) const", path, name, qualifier);
    EXPECT_EQ(path, ZSelector("a.b"));
    EXPECT_EQ(name, ZSelector("void ring(int)"));
    EXPECT_EQ(qualifier, ZSelector("const"));
    ZBindingLink turned("x", "y", ZBindingLink::Forward);
    turned.swapDirection(true);
    EXPECT_EQ(turned, ZBindingLink("y", "x", ZBindingLink::Backward));
    EXPECT_NE(turned, ZBindingLink("y", "x", ZBindingLink::Forward));
}

TEST_F(BindingTest, ItemsCallTheChangeMethodOfTheTarget) {
    Held root = bell("root"), a = bell("a"), b = bell("b");
    for (Bell* child : {a.get(), b.get()}) child->setParent(root.get());
    ZBindingItem sets, tells, plain;
    EXPECT_TRUE(sets.isEmpty());
    sets.setChange("change");
    sets.setSource("a.width");
    EXPECT_TRUE(sets.bindingLink());
    sets.setTarget("b.width");
    EXPECT_FALSE(sets.bindingLink());
    tells.setChange("any");
    tells.setSource("a.width");
    tells.setTarget("b.note");
    plain.setSource("void a.struck()");
    plain.setTarget("void b.hear(int)");
    plain.setParam(ZVArray(ZVariant(3)));
    EXPECT_FALSE(plain.setParamPos(-1));
    ZBindingSet set;
    for (const ZBindingItem* item : {&sets, &tells, &plain}) EXPECT_TRUE(set.addItem(*item));
    EXPECT_TRUE(set.bind(root.get(), true));
    Bell::takeLog();
    a->setProperty("width", ZVariant(9));
    EXPECT_EQ(Bell::takeLog(), "b.any 9,note ");
    EXPECT_EQ(b->width(), 9);
    EXPECT_EQ(strike(a.get()), "b.hear 3 ");
    EXPECT_TRUE(set.bind(root.get(), false));
    EXPECT_FALSE(a->hasBindings());
    EXPECT_FALSE(sets.bind(a.get(), nullptr, true));
    EXPECT_EQ(set.compare(ZBindingSet(set)), 0);
    const ZVariant held(ztype<ZBindingItem>(), &tells);
    EXPECT_EQ(held.getProperty("change").toSelector(), ZSelector("any"));
}

TEST_F(BindingTest, WhatADestinationMayDo) {
    Held a = bell("a"), b = bell("b"), c = bell("c"), d = bell("d");
    auto bindAll = [&] {
        for (Bell* to : {b.get(), c.get(), d.get()})
            if (to) a->bind(to, struck(), ring());
    };
    bindAll();
    b->onRing = [&](Bell& self) { a->unbind(&self, struck(), ring()); };
    EXPECT_EQ(strike(a.get()), "b.ring c.ring d.ring ");
    EXPECT_EQ(strike(a.get()), "c.ring d.ring ");
    c->onRing = [&](Bell& self) { // itself and the next one
        a->unbind(&self, struck(), ring());
        a->unbind(d.get(), struck(), ring());
        a->bind(b.get(), struck(), ring());
    };
    EXPECT_EQ(strike(a.get()), "c.ring "); // new ones wait for the next
    b->onRing = [&](Bell& self) {          // round and round
        a->unbind(&self, struck(), ring());
        a->bind(&self, struck(), ring());
        a->bind(c.get(), struck(), ring());
    };
    EXPECT_EQ(strike(a.get()), "b.ring ");
    c->onRing = [&](Bell& self) { EXPECT_EQ(self.caller(), a.get()); };
    b->onRing = [&](Bell&) { ZBinding::callV(a.get(), method("void struck()")); }; // a cycle
    EXPECT_EQ(strike(a.get()), "b.ring c.ring c.ring ");
    a->unbindsrc({});
    bindAll();
    Bell* gone = c.release();
    b->onRing = nullptr;
    gone->onRing = [&](Bell& self) {
        self.release(); // lives until this call has ended
        EXPECT_EQ(Bell::ended, 0);
        EXPECT_EQ(self.width(), 0);
    };
    EXPECT_EQ(strike(a.get()), "b.ring c.ring d.ring ");
    EXPECT_EQ(Bell::ended, 1);
    b->onRing = [&](Bell&) { a.reset(); }; // the source
    EXPECT_EQ(strike(a.get()), "b.ring ");
    EXPECT_EQ(Bell::ended, 2);
    EXPECT_EQ(ZBinding::stack(), nullptr);
}

TEST_F(BindingTest, MethodsChangeUnderBindings) {
    Held a = bell("a"), b = bell("b");
    ZMethod* own = ZMethod::create("void ring()", {}, ZMethod::Dynamic, nullptr,
                                   [](const void*, ZMethod*, void*) { Bell::log += "own "; });
    const int index = a->bind(b.get(), struck(), ring());
    ZBinding::setPriority(index, ZBinding::High);
    EXPECT_TRUE(b->setMethod(own, true));
    EXPECT_EQ(strike(a.get()), "own ");
    EXPECT_EQ(ZBinding::getPriority(index), ZBinding::High);
    EXPECT_TRUE(b->removeMethod(ring(), {}));
    EXPECT_EQ(strike(a.get()), "b.ring ");
    // The source has a form of its own: it is that which is bound then.
    ZMethod* signal = ZMethod::create("void struck()", {}, ZMethod::Dynamic, nullptr, nullptr);
    EXPECT_TRUE(a->setMethod(signal, true));
    EXPECT_EQ(strike(a.get()), "");
    ZBinding::callV(a.get(), signal);
    EXPECT_EQ(Bell::takeLog(), "b.ring ");
    a->removeMethods();
    EXPECT_EQ(strike(a.get()), "b.ring ");
    a->bind(b.get(), "void passing()", ring());
    EXPECT_NE(a->findBinding(b.get(), "void passing()", ring()), -1);
    a->removeMethods(); // nothing is found any more
    EXPECT_EQ(a->findBinding(b.get(), "void passing()", ring()), -1);
    // A local copy of a method is fired as the method itself.
    ZMethodRef local(a.get(), struck());
    EXPECT_TRUE(local.localize());
    ZBinding::callV(a.get(), local.getMethod());
    EXPECT_EQ(Bell::takeLog(), "b.ring ");
    // While it runs, the method that runs may be replaced.
    b->onRing = [&](Bell&) { b->setMethod(own, true); };
    EXPECT_EQ(strike(a.get()), "b.ring ");
    EXPECT_EQ(strike(a.get()), "own ");
    b->removeMethods();
    ztype<Bell>()->resetType(true); // new records for all that is declared
    b->onRing = nullptr;
    EXPECT_EQ(strike(a.get()), "b.ring ");
    ZBinding::removeMethod(method("void ring()"));
    EXPECT_FALSE(a->hasBindings());
    ZMethod::release(own);
    ZMethod::release(signal);
}

TEST_F(BindingTest, ManyOfOneSourceTakeNoLongerEach) {
    constexpr int count = 100000;
    Held source = bell("s");
    std::vector<ZObject*> to;
    ZMethod *from = method("void struck()"), *into = ztype<ZObject>()->methodType(ZSelector("void loaded()"));
    for (int i = 0; i < count; ++i) {
        to.push_back(zmake<ZObject>());
        const int index = ZBinding::bind(source.get(), to.back(), nullptr, nullptr, from, into);
        ASSERT_GE(index, 0);
        if (i % 3 == 0) ZBinding::setPriority(index, ZBinding::High);
    }
    EXPECT_EQ(ZBinding::bindings()->used(), uint(count));
    ZBinding::callV(source.get(), from);
    for (int i = 0; i < count; i += 2)
        EXPECT_TRUE(ZBinding::unbind(source.get(), to[size_t(i)], nullptr, nullptr, from, into));
    for (ZObject* object : to) object->release();
    EXPECT_FALSE(source->hasBindings());
}

TEST_F(BindingTest, MutualBindingsOfAThousandEnd) {
    std::vector<Held> all;
    for (int i = 0; i < 1000; ++i) all.push_back(bell("m"));
    for (size_t i = 0; i < all.size(); ++i)
        ASSERT_TRUE(all[i]->xbind(all[(i + 1) % all.size()].get(), "width", "width"));
    all[0]->setProperty("width", ZVariant(17));
    for (const Held& each : all) ASSERT_EQ(each->width(), 17);
}

/// Runs on a thread with so much stack.
void runWithStack(size_t bytes, const std::function<void()>& work) {
    pthread_attr_t attributes;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, bytes), 0);
    pthread_t thread;
    auto entry = [](void* work) -> void* {
        (*static_cast<const std::function<void()>*>(work))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, entry, const_cast<std::function<void()>*>(&work)), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

TEST_F(BindingTest, ChainsEndWithALine) {
    constexpr size_t count = ZBinding::depthLimit + 10;
    std::vector<Held> all;
    for (size_t i = 0; i < count; ++i) all.push_back(bell("n"));
    for (size_t i = 0; i + 1 < count; ++i) ASSERT_GE(all[i]->bind(all[i + 1].get(), "width", "width"), 0);
    auto reached = [&](int value) {
        CaptureDebug lines;
        all[0]->setProperty("width", ZVariant(value));
        EXPECT_TRUE(lines.has("bindings of \"bool setWidth(const int&)\" aren't called"));
        size_t last = 0;
        while (last + 1 < count && all[last + 1]->width() == value) ++last;
        return last;
    };
    runWithStack(64 << 20, [&] { EXPECT_EQ(reached(3), size_t(ZBinding::depthLimit)); });
    runWithStack(4 << 20, [&] {
        const size_t last = reached(4);
        EXPECT_TRUE(last > 16 && last < size_t(ZBinding::depthLimit)) << last;
    });
}

TEST_F(BindingTest, EachFailingAllocationLeavesItBoundOrNot) {
    Held a = bell("a"), b = bell("b");
    auto once = [&](AllocProbe* probe) {
        const uint before = ZBinding::bindings()->used();
        int made = a->bind(b.get(), struck(), ring());
        const bool told = made >= 0 ? ZBinding::get(made) != nullptr : ZBinding::bindings()->used() == before;
        if (probe) probe->failAt(0);
        EXPECT_TRUE(told);
        EXPECT_EQ(strike(a.get()), made >= 0 ? "b.ring " : "");
        a->unbindsrc({});
    };
    once(nullptr);
    failEachAllocation([&](AllocProbe& probe) { once(&probe); });
    // A table that can't grow refuses; what is bound stays.
    ZBinding::close();
    ASSERT_TRUE(ZBinding::open());
    std::vector<ZObject*> to;
    ZMethod *from = method("void struck()"), *into = ztype<ZObject>()->methodType(ZSelector("void loaded()"));
    for (uint i = 0; i < ZMethodBindings::growBy * 4; ++i) to.push_back(zmake<ZObject>());
    AllocProbe probe;
    probe.failAt(1, true);
    int refused = 0;
    for (ZObject* object : to) refused += ZBinding::bind(a.get(), object, nullptr, nullptr, from, into) < 0;
    probe.failAt(0);
    EXPECT_GT(refused, 0);
    ZArrayT<int> places;
    EXPECT_TRUE(a->bindings(places));
    EXPECT_EQ(places.count(), to.size() - size_t(refused));
    for (ZObject* object : to) object->release();
}
