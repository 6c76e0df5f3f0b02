#include "object/ZMetaType.h"
#include "object/ZMethodDispatch.h"
#include "object/ZMethodPtr.h"
#include "object/ZMethodRef.h"
#include "object/ZObject.h"
#include "tests/support/CoreScope.h"
#include "toolkit/epoch.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <cstring>
#include <string>
#include <thread>
#include <vector>

namespace {

class ZObjectDelegates : public CoreTest {};

ZObject* make(const char* name, uint type = ZObject::None) {
    auto object = zmake<ZObject>();
    object->setSelector(name);
    object->setDelegateType(ZObject::DelegateType(type));
    return object;
}

std::string calls;
/// A method that writes a letter down, and what it was called on.
void note(const void*, ZMethod* method, void*) { calls += *static_cast<const char*>(method->getContext()); }
bool give(ZObject* object, const char* signature, const char* letter, const char* qualifier = "") {
    ZMethod* method = ZMethod::create(signature, qualifier, 0, ZMethod::emptyFunc, note);
    if (!method) return false;
    method->setContext(const_cast<char*>(letter));
    const bool done = object->setMethod(method, true);
    ZMethod::release(method);
    return done;
}
std::string found(const ZObject* object, const char* signature, const char* qualifier = "") {
    toolkit::EpochGuard guard;
    ZTypedPtr typed;
    ZMethod* method = object->method(&typed, signature, qualifier);
    return method ? static_cast<const char*>(method->getContext()) : "";
}

TEST_F(ZObjectDelegates, OwnMethods) {
    ZObject* object = make("object");
    EXPECT_FALSE(object->hasMethods());
    EXPECT_TRUE(give(object, "void run()", "a") && give(object, "void run(int)", "b") &&
                give(object, "void run()", "c", "const"));
    EXPECT_EQ(object->methodCount(), 3);
    EXPECT_EQ(found(object, "void run()"), "a");
    EXPECT_EQ(found(object, "void run(int)"), "b");
    EXPECT_EQ(found(object, "void run()", "const"), "c");
    EXPECT_EQ(found(object, "run"), "a");
    EXPECT_EQ(found(object, "void run(bool)"), "");
    EXPECT_TRUE(give(object, "void run()", "d"));
    EXPECT_EQ(object->methodCount(), 3);
    EXPECT_EQ(found(object, "void run()"), "d");
    {
        ZMethod* method = ZMethod::create("void run()", "", 0, ZMethod::emptyFunc, note);
        EXPECT_FALSE(object->setMethod(method, false));
        ZMethod::release(method);
    }
    auto copied = static_cast<ZObject*>(object->copy());
    EXPECT_TRUE(copied->removeMethod("void run(int)", {}));
    EXPECT_FALSE(copied->removeMethod("void run(int)", {}));
    EXPECT_EQ(copied->methodCount(), 2);
    EXPECT_EQ(found(object, "void run(int)"), "b");
    EXPECT_TRUE(object->removeMethods("run"));
    EXPECT_FALSE(object->hasMethods() || object->removeMethods());
    for (ZObject* end : {object, copied}) end->release();
}

TEST_F(ZObjectDelegates, MethodsGoFromObjectToObject) {
    ZMetaType* apart = zmake<ZMetaType>(nullptr, "ApartObject", ZMetaType::Object);
    ZObject *a = make("a"), *b = make("b"), *stranger = zmake<ZObject>(orv::passType(apart));
    give(a, "void run()", "a");
    ZMethodRef ref(a, "void run()");
    EXPECT_TRUE(ref.add(b, false));
    EXPECT_EQ(found(b, "void run()"), "a");
    EXPECT_TRUE(ref == ZMethodRef(a, "void run()")) << "it points where it did";
    give(b, "void run()", "b");
    EXPECT_FALSE(ref.add(b, false) || ref.move(b, false) || ref.add(nullptr, true)) << "there is one";
    EXPECT_FALSE(ref.add(stranger, true) || ref.move(stranger, true)) << "the types have nothing in common";
    EXPECT_EQ(found(b, "void run()"), "b");
    EXPECT_TRUE(ref == ZMethodRef(a, "void run()"));
    EXPECT_TRUE(ref.move(b, true));
    EXPECT_EQ(found(b, "void run()"), "a");
    EXPECT_TRUE(ref == ZMethodRef(b, "void run()"));
    EXPECT_TRUE(ref.remove());
    EXPECT_FALSE(ref.remove());
    EXPECT_EQ(found(a, "void run()") + found(b, "void run()"), "a");
    for (ZObject* end : {a, b, stranger, static_cast<ZObject*>(apart)}) end->release();
}

struct OrderRow {
    uint type;
    const char* expected; ///< what answers when the owner has the method too
};
TEST_F(ZObjectDelegates, WhoAnswersFirst) {
    const OrderRow rows[] = {{ZObject::Extension, "d"}, {ZObject::Priority, "d"}, {ZObject::Binder, "o"},
                             {ZObject::Dispatch, "o"},  {ZObject::Event, "o"},    {ZObject::None, "o"}};
    for (const OrderRow& row : rows) {
        ZObject *owner = make("owner"), *delegate = make("delegate", row.type);
        give(delegate, "void run()", "d");
        EXPECT_TRUE(owner->addDelegate(delegate, false));
        const bool looksThere =
            row.type & (ZObject::Extension | ZObject::Priority | ZObject::Binder | ZObject::Dispatch);
        EXPECT_EQ(found(owner, "void run()"), looksThere ? "d" : "") << row.type;
        give(owner, "void run()", "o");
        EXPECT_EQ(found(owner, "void run()"), row.expected) << row.type;
        for (ZObject* end : {owner, delegate}) end->release();
    }
}

TEST_F(ZObjectDelegates, MethodIsCalledOnWhoHasIt) {
    ZObject *owner = make("owner"), *delegate = make("delegate", ZObject::Binder);
    give(delegate, "void run()", "d");
    owner->addDelegate(delegate, false);
    toolkit::EpochGuard guard;
    ZTypedPtr typed(owner);
    EXPECT_NE(owner->method(&typed, "void run()", {}), nullptr);
    EXPECT_EQ(ZTypedPtr(delegate).compare(typed), 0);
    for (ZObject* end : {owner, delegate}) end->release();
}

TEST_F(ZObjectDelegates, ExtensionFollowsItsDelegates) {
    ZObject *owner = make("owner"), *delegate = make("delegate", ZObject::Extension);
    owner->addDelegate(delegate, false);
    toolkit::EpochGuard guard;
    EXPECT_EQ(owner->methodBySelector("void run()", {}), nullptr);
    give(delegate, "void run()", "d");
    EXPECT_NE(owner->methodBySelector("void run()", {}), nullptr);
    EXPECT_NE(owner->findMultimethod(nullptr, "run", {}, true, true, false, {}), nullptr);
    delegate->setDelegateType(ZObject::Binder);
    EXPECT_EQ(owner->methodBySelector("void run()", {}), nullptr);
    delegate->setDelegateType(ZObject::Extension);
    EXPECT_NE(owner->extMethodNode("run"), nullptr);
    EXPECT_TRUE(owner->removeDelegate(delegate));
    EXPECT_EQ(owner->methodBySelector("void run()", {}), nullptr);
    for (ZObject* end : {owner, delegate}) end->release();
}

TEST_F(ZObjectDelegates, AddingAndRemoving) {
    ZObject *owner = make("owner"), *a = make("a"), *same = make("a"), *unnamed = make(""), *other = make("");
    EXPECT_FALSE(owner->addDelegate(nullptr, false) || owner->addDelegate(owner, false));
    EXPECT_TRUE(owner->addDelegate(a, false) && owner->addDelegate(a, false));
    EXPECT_EQ(a->refcount(), 2);
    EXPECT_FALSE(owner->addDelegate(same, false));
    EXPECT_TRUE(owner->addDelegate(unnamed, false) && owner->addDelegate(other, false));
    EXPECT_EQ(owner->getDelegates().count(), 3u);
    EXPECT_EQ(owner->findDelegate("a"), a);
    EXPECT_EQ(owner->findDelegate(ZSelector()), nullptr);
    EXPECT_FALSE(a->addDelegate(owner, false));
    EXPECT_TRUE(a->addDelegate(same, false));
    EXPECT_FALSE(same->addDelegate(owner, false)) << "a cycle over two";
    EXPECT_TRUE(owner->removeDelegate(ZSelector("a")));
    EXPECT_TRUE(same->addDelegate(owner, false));
    EXPECT_FALSE(owner->removeDelegate(a));
    EXPECT_EQ(a->refcount(), 1);

    ZObject* member = make("member", ZObject::Child);
    EXPECT_TRUE(owner->addDelegate(member, false));
    EXPECT_EQ(member->getParent(), owner);
    EXPECT_EQ(member->refcount(), 3);
    EXPECT_TRUE(owner->removeDelegate(member));
    EXPECT_EQ(member->refcount(), 1);
    for (ZObject* end : {a, same, unnamed, other, member, owner}) end->release();
}

TEST_F(ZObjectDelegates, EndsInAnyOrder) {
    ZObject *owner = make("owner"), *second = make("second"), *delegate = make("delegate", ZObject::Binder);
    owner->addDelegate(delegate, false);
    second->addDelegate(delegate, false);
    delegate->release();
    EXPECT_EQ(delegate->refcount(), 2);
    owner->release();
    EXPECT_EQ(delegate->refcount(), 1);
    EXPECT_TRUE(second->hasDelegate(delegate));
    second->release();
}

TEST_F(ZObjectDelegates, Detach) {
    ZObject *owner = make("owner"), *shared = make("shared"), *own = make("own");
    owner->addDelegate(shared, false);
    owner->addDelegate(own, false);
    own->release();
    EXPECT_TRUE(owner->detachDelegates());
    EXPECT_FALSE(owner->hasDelegate(shared));
    EXPECT_TRUE(owner->hasDelegate(own));
    ZObject* copied = owner->findDelegate("shared");
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(copied->refcount(), 1);
    EXPECT_EQ(shared->refcount(), 1);
    for (ZObject* end : {owner, shared}) end->release();
}

TEST_F(ZObjectDelegates, PropertyBag) {
    ZObject* owner = make("owner");
    const ZSelector name("size");
    EXPECT_FALSE(owner->hasPropDelegate(name) || owner->removePropDelegate(name));
    const ZVariant value{ZSelector("big")};
    EXPECT_TRUE(owner->setPropDelegate(name, value) && owner->setPropDelegate("other", value));
    EXPECT_EQ(owner->getDelegates().count(), 1u);
    EXPECT_EQ(owner->getPropDelegate(name).compare(value), 0);
    EXPECT_TRUE(owner->removePropDelegate(name));
    EXPECT_FALSE(owner->hasPropDelegate(name));
    EXPECT_TRUE(owner->hasPropDelegate("other"));
    owner->release();
}

struct WordRow {
    const char* words;
    uint type;
};
TEST_F(ZObjectDelegates, Words) {
    const WordRow rows[] = {{"", ZObject::Extension},
                            {"binder", 1},
                            {"dispatch priority", 6},
                            {"extension event property resource child", 8 | 32 | 64 | 128 | 256},
                            {"priorevent", 0}};
    for (const WordRow& row : rows) EXPECT_EQ(uint(ZObject::scanDelegate(row.words)), row.type) << row.words;
}

// Dispatch

TEST_F(ZObjectDelegates, SignalsGoTheirWay) {
    ZObject *parent = make("parent"), *object = make("object"), *dispatch = make("dispatch", ZObject::Binder),
            *extension = make("extension", ZObject::Extension), *deaf = make("deaf", ZObject::Event);
    object->setParent(parent);
    for (ZObject* delegate : {extension, deaf, dispatch}) object->addDelegate(delegate, false);
    const char* letters[] = {"o", "d", "e", "n", "p"};
    ZObject* all[] = {object, dispatch, extension, deaf, parent};
    for (int i = 0; i < 5; ++i) {
        give(all[i], "void clicked(ZArrayT<ZVariant>&)", letters[i]);
        EXPECT_TRUE(all[i]->addDispatch("click", "void clicked(ZArrayT<ZVariant>&)", {}));
    }
    const auto call = [&](const char* name) {
        calls.clear();
        const bool answered = object->callDispatch(name);
        EXPECT_EQ(answered, !calls.empty());
        return calls;
    };
    EXPECT_EQ(call("none"), "");
    // An extension's method is also the owner's answer.
    EXPECT_EQ(call("click"), "ee");
    extension->setDelegateType(ZObject::None);
    EXPECT_EQ(call("click"), "o");
    dispatch->setDelegateType(ZObject::Dispatch); // counts from now on
    EXPECT_EQ(call("click"), "od");
    object->setParentDelegate(ZObject::Dispatch);
    EXPECT_EQ(call("click"), "odp");
    EXPECT_TRUE(object->removeDispatch("click"));
    EXPECT_FALSE(object->hasDispatch("click") || object->removeDispatch("click"));
    EXPECT_EQ(call("click"), "dp");
    for (ZObject* end : {object, dispatch, extension, deaf, parent}) end->release();
}

/// A delegate changes without its owner: what the owner's entries have found, or not found, doesn't stay.
TEST_F(ZObjectDelegates, EntriesFollowDelegates) {
    ZObject *owner = make("owner"), *middle = make("middle", ZObject::Binder), *below = make("below", ZObject::Binder);
    owner->addDelegate(middle, false);
    middle->addDelegate(below, false);
    owner->addDispatch("click", "void clicked(ZArrayT<ZVariant>&)", {});
    const auto heard = [&] {
        calls.clear();
        owner->callDispatch("click");
        return calls;
    };
    EXPECT_EQ(heard(), "");
    give(below, "void clicked(ZArrayT<ZVariant>&)", "b");
    EXPECT_EQ(heard(), "b");
    give(owner, "void clicked(ZArrayT<ZVariant>&)", "o");
    EXPECT_EQ(heard(), "o");
    below->setDelegateType(ZObject::Priority);
    EXPECT_EQ(heard(), "o") << "the way to it leads past the owner";
    middle->setDelegateType(ZObject::Priority);
    EXPECT_EQ(heard(), "b");
    for (ZObject* end : {owner, middle, below}) end->release();
}

/// The entries of a type are asked by all its objects, also by those with methods of their own.
TEST_F(ZObjectDelegates, EntriesOfTypesAndTypesThatExtend) {
    ZMetaType *type = zmake<ZMetaType>(nullptr, "HeardObject", ZMetaType::Object),
              *extending = zmake<ZMetaType>(nullptr, "ExtendingObject", ZMetaType::Object);
    ZMethod* method = ZMethod::create("void clicked(ZArrayT<ZVariant>&)", {}, 0, ZMethod::emptyFunc, note);
    method->setContext(const_cast<char*>("t"));
    EXPECT_TRUE(extending->setUserMethod(method, true));
    ZMethod::release(method);
    ZObject::DispatchTable entries;
    EXPECT_TRUE(entries.add(ZMethodDispatch::create(ZMethodDispatch("click", "void clicked(ZArrayT<ZVariant>&)"))));
    EXPECT_TRUE(type->addTypeDispatch(entries));
    ZObject* object = zmake<ZObject>(orv::passType(type));
    const auto heard = [&] {
        calls.clear();
        object->callDispatch("click");
        return calls;
    };
    EXPECT_EQ(heard(), "");
    EXPECT_TRUE(object->addExtendType(extending));
    EXPECT_EQ(heard(), "t");
    extending->release(); // the object holds it
    {
        toolkit::EpochGuard guard;
        EXPECT_NE(object->multimethod("clicked", ZArrayT<ZMetaType*>()), nullptr);
    }
    give(object, "void clicked(ZArrayT<ZVariant>&)", "o");
    EXPECT_EQ(heard(), "o");
    EXPECT_TRUE(object->removeMethods() && object->removeExtendType(extending));
    EXPECT_EQ(heard(), "");
    for (ZObject* end : {object, static_cast<ZObject*>(type)}) end->release();
}

/// Hears what passes, and answers itself or leaves the answer to its base.
class Listener : public ZObject {
public:
    bool callDispatch(const ZSelector& name, const ZArrayT<ZVariant>& arguments) override {
        calls += "L";
        return alone || ZObject::callDispatch(name, arguments);
    }
    using ZObject::callDispatch;
    ZMethod* method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const override {
        return alone ? nullptr : ZObject::method(typed, selector, qualifier);
    }
    using ZObject::method;
    bool alone = false;
};
TEST_F(ZObjectDelegates, OverriddenOperations) {
    ZObject *owner = make("owner"), *below = make("below", ZObject::Dispatch);
    Listener* listener = zmake<Listener>();
    listener->setDelegateType(ZObject::Dispatch);
    owner->addDelegate(listener, false);
    listener->addDelegate(below, false);
    give(below, "void clicked(ZArrayT<ZVariant>&)", "b");
    below->addDispatch("click", "void clicked(ZArrayT<ZVariant>&)", {});
    for (const bool alone : {false, true}) {
        listener->alone = alone;
        calls.clear();
        EXPECT_TRUE(owner->callDispatch("click"));
        EXPECT_EQ(calls, alone ? "L" : "Lb");
        EXPECT_EQ(found(owner, "void clicked(ZArrayT<ZVariant>&)"), alone ? "" : "b");
    }
    for (ZObject* end : {owner, static_cast<ZObject*>(listener), below}) end->release();
}

TEST_F(ZObjectDelegates, LongNames) {
    ZObject *one = make("one"), *two = make("two");
    EXPECT_TRUE(one->addProperty("a", ZVariant(static_cast<const ZType*>(two))) &&
                two->addProperty("a", ZVariant(static_cast<const ZType*>(one))));
    give(two, "void heard(ZArrayT<ZVariant>&)", "h");
    two->addDispatch("end", "void heard(ZArrayT<ZVariant>&)", {});
    give(two, "void run()", "r");
    for (const int parts : {1, 511, 513, 100001}) {
        std::string path;
        for (int i = 0; i < parts; ++i) path += "a.";
        calls.clear();
        EXPECT_TRUE(one->callDispatch((path + "end").c_str())) << parts;
        EXPECT_EQ(calls, "h") << parts;
        EXPECT_FALSE(one->callDispatch((path + "b.end").c_str())) << parts;
        EXPECT_EQ(found(one, (path + "run").c_str()), "r") << parts;
        one->invokeName((path + "run").c_str());
        EXPECT_EQ(calls, "hr") << parts;
    }
    one->removeProperty("a");
    for (ZObject* end : {one, two}) end->release();
}

TEST_F(ZObjectDelegates, EntriesInOrderAndAnew) {
    ZObject* object = make("object");
    give(object, "void one(ZArrayT<ZVariant>&)", "1");
    give(object, "void two(ZArrayT<ZVariant>&)", "2");
    give(object, "void three(int)", "3");
    for (const char* method : {"void two(ZArrayT<ZVariant>&)", "void one(ZArrayT<ZVariant>&)", "void three(int)"})
        object->addDispatch("go", method, {});
    calls.clear();
    EXPECT_TRUE(object->callDispatch("go"));
    EXPECT_EQ(calls, "21") << "a method with other parameters isn't called with an array";
    give(object, "void one(ZArrayT<ZVariant>&)", "x");
    calls.clear();
    object->callDispatch("go");
    EXPECT_EQ(calls, "2x") << "what was found before doesn't stay";
    auto copied = static_cast<ZObject*>(object->copy());
    object->release();
    calls.clear();
    EXPECT_TRUE(copied->callDispatch("go"));
    EXPECT_EQ(calls, "2x");
    copied->release();
}

ZObject* victim;
TEST_F(ZObjectDelegates, ReleasedInItsOwnHandler) {
    victim = make("victim");
    for (const char* signature : {"void first(ZArrayT<ZVariant>&)", "void second(ZArrayT<ZVariant>&)"}) {
        ZMethod* method = ZMethod::create(signature, {}, 0, ZMethod::emptyFunc, [](const void*, ZMethod*, void*) {
            calls += "h";
            if (victim) std::exchange(victim, nullptr)->release();
        });
        victim->setMethod(method, true);
        ZMethod::release(method);
        victim->addDispatch("end", signature, {});
    }
    calls.clear();
    EXPECT_TRUE(victim->callDispatch("end"));
    EXPECT_EQ(calls, "hh");
    EXPECT_EQ(victim, nullptr);
    victim = make("victim");
    ZMethod* method = ZMethod::create("int leave()", {}, 0, ZMethod::emptyFunc, [](const void*, ZMethod*, void* args) {
        std::exchange(victim, nullptr)->release();
        int* result;
        std::memcpy(&result, args, sizeof result);
        *result = 7;
    });
    victim->setMethod(method, true);
    ZMethod::release(method);
    EXPECT_EQ(victim->invokeName("leave").toInt(), 7);
}

struct ArgumentRow {
    const char* signature;
    std::vector<ZVariant> given;
    const char* seen; ///< "-" where nobody answers
};
TEST_F(ZObjectDelegates, SignalsWithArguments) {
    static std::string seen;
    const ZMethod::Stacked two = [](const void*, ZMethod* method, void* args) {
        int* result;
        int values[2] = {};
        std::memcpy(&result, args, sizeof result);
        std::memcpy(values, static_cast<char*>(args) + 8, sizeof(int) * size_t(method->paramCount()));
        for (int i = 0; i < method->paramCount(); ++i) seen += std::to_string(values[i]) + ";";
        *result = values[0] != 0;
    };
    const ArgumentRow rows[] = {
        {"int heard(int, int)", {ZVariant(4), ZVariant(5)}, "4;5;"},
        {"int heard(int, int)", {ZVariant(4.0), ZVariant(true)}, "4;1;"},
        {"int heard(int, int)", {ZVariant(4), ZVariant(5), ZVariant(6)}, "4;5;"},
        {"int heard(int, int)", {ZVariant(4)}, "4;0;"},
        {"int heard(int)", {ZVariant(0)}, "0;-"},
        {"int heard(ZObject*)", {ZVariant(3)}, "-"},
        {"int heard()", {}, "-"},
    };
    for (const ArgumentRow& row : rows)
        for (const bool delegated : {false, true}) {
            ZObject *owner = make("owner"), *delegate = make("delegate", ZObject::Binder | ZObject::Dispatch);
            owner->addDelegate(delegate, false);
            ZObject* has = delegated ? delegate : owner;
            ZMethod* method = ZMethod::create(row.signature, {}, 0, ZMethod::emptyFunc, two);
            has->setMethod(method, true);
            ZMethod::release(method);
            has->addDispatch("go", row.signature, {});
            seen.clear();
            const bool answered = owner->dispatchArgs("go", {row.given.data(), uint(row.given.size())});
            EXPECT_EQ(seen + (answered ? "" : "-"), row.seen) << row.signature << row.given.size() << delegated;
            for (ZObject* end : {owner, delegate}) end->release();
        }
}

TEST_F(ZObjectDelegates, ByName) {
    ZObject *object = make("object"), *part = make("part");
    part->setParent(object);
    give(part, "void run()", "r");
    give(part, "void heard(ZArrayT<ZVariant>&)", "s");
    part->addDispatch("signal", "void heard(ZArrayT<ZVariant>&)", {});
    EXPECT_TRUE(object->allowNameInvoke("part.run") && object->allowNameInvoke("part.signal") &&
                object->allowNameInvoke("void part.run()"));
    EXPECT_FALSE(object->allowNameInvoke("part.none") || object->allowNameInvoke("run"));
    calls.clear();
    for (const char* name : {"part.run", "part.signal", "void part.run()", "part.none"}) object->invokeName(name);
    EXPECT_EQ(calls, "rsr");
    for (ZObject* end : {part, object}) end->release();
}

// Size

TEST_F(ZObjectDelegates, HundredThousandInOneList) {
    constexpr int count = 100000;
    ZObject* owner = make("owner");
    std::vector<ZObject*> all;
    for (int i = 0; i < count; ++i) {
        ZObject* delegate = make(("d" + std::to_string(i)).c_str(), ZObject::Binder);
        ASSERT_TRUE(owner->addDelegate(delegate, false));
        delegate->release();
        all.push_back(delegate);
    }
    EXPECT_EQ(owner->findDelegate("d77777"), all[77777]);
    give(all.back(), "void run()", "z");
    EXPECT_EQ(found(owner, "void run()"), "z");
    owner->release();
}

/// A chain, and in each link two ways to the next: every object answers once.
TEST_F(ZObjectDelegates, HundredThousandInAChain) {
    constexpr int links = 100000;
    ZObject* owner = make("owner");
    ZObject* at = owner;
    for (int i = 0; i < links; ++i) {
        ZObject* next = make("", ZObject::Dispatch);
        ASSERT_TRUE(at->addDelegate(next, false));
        if (i % 1000 == 0) {
            ZObject* around = make("", ZObject::Dispatch);
            ASSERT_TRUE(at->addDelegate(around, false) && around->addDelegate(next, false));
            around->release();
        }
        next->release();
        at = next;
    }
    EXPECT_FALSE(at->addDelegate(owner, false));
    give(at, "void run()", "z");
    give(at, "void heard(ZArrayT<ZVariant>&)", "s");
    at->addDispatch("signal", "void heard(ZArrayT<ZVariant>&)", {});
    EXPECT_EQ(found(owner, "void run()"), "z");
    calls.clear();
    EXPECT_TRUE(owner->callDispatch("signal"));
    EXPECT_EQ(calls, "s");
    owner->release();
}

TEST_F(ZObjectDelegates, LookupsWhileListsChange) {
    ZObject *owner = make("owner"), *fixed = make("fixed", ZObject::Binder), *moving = make("moving", ZObject::Binder);
    give(fixed, "void run()", "f");
    owner->addDelegate(fixed, false);
    bool stop = false;
    int missed = 0;
    std::thread reader([&] {
        while (!toolkit::loadAcquire(stop)) missed += found(owner, "void run()") != "f";
    });
    for (int i = 0; i < 2000; ++i) {
        owner->addDelegate(moving, false);
        give(moving, "void other()", "m");
        moving->removeMethods();
        owner->removeDelegate(moving);
    }
    toolkit::storeRelease(stop, true);
    reader.join();
    EXPECT_EQ(missed, 0);
    for (ZObject* end : {owner, fixed, moving}) end->release();
}

} // namespace
