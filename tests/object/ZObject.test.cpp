#include "object/ZObject.h"
#include "core/ZInternal.h"
#include "core/ZUnique.h"
#include "object/ZEnumType.h"
#include "object/ZMetaType.h"
#include "object/ZMethodDispatch.h"
#include "object/ZMethodPtr.h"
#include "object/ZPropertyPtr.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "toolkit/epoch.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

#include <string>
#include <thread>

namespace {

class ZObjectLife : public CoreTest {};

std::string gone;
/// Tells of its end.
class Told : public ZObject {
public:
    Told(const char* name, ZObject* parent = nullptr) {
        setSelector(name);
        if (parent) setParent(parent);
    }
    ~Told() override { gone += selector().string(); }
    void deleting() override {
        gone += "!";
        // On its way out it can be asked, but not held.
        EXPECT_EQ(retain(), nullptr);
        release();
    }
};

TEST_F(ZObjectLife, EndsOnceAndInOrder) {
    gone.clear();
    Told* root = zmake<Told>("r");
    zmake<Told>("a", root)->release();
    zmake<Told>("b", root)->release();
    zmake<Told>("c", root->first())->release();
    Told* kept = zmake<Told>("k", root);
    root->release();
    // Parents go ahead of their children.
    EXPECT_EQ(gone, "!r!a!c!b");
    EXPECT_EQ(kept->getParent(), nullptr);
    kept->release();
    EXPECT_EQ(gone, "!r!a!c!b!k");
}

TEST_F(ZObjectLife, InstancesOfAType) {
    ZMetaType* type = zmake<ZMetaType>(nullptr, "TestObject", ZMetaType::Object);
    ZMetaType* other = zmake<ZMetaType>(nullptr, "OtherObject", ZMetaType::Object);
    ZObject* a = zmake<ZObject>(orv::passType(type));
    ZObject* b = zmake<ZObject>(orv::passType(type));
    EXPECT_TRUE(a->isTypeLinked());
    EXPECT_STREQ(a->getTypeName().string(), "TestObject");
    EXPECT_EQ(type->getTypeFirst(), a);
    EXPECT_EQ(a->getTypeNext(), b);
    EXPECT_EQ(b->getTypePrev(), a);
    a->setParent(b);
    EXPECT_EQ(b->getFirst(type), a);
    EXPECT_EQ(b->getFirst(other), nullptr);
    EXPECT_TRUE(a->replaceType(other));
    EXPECT_EQ(type->getTypeFirst(), b);
    EXPECT_EQ(other->getTypeLast(), a);
    a->typeUnlink();
    EXPECT_EQ(other->getTypeFirst(), nullptr);
    a->typeLink();
    b->release();
    EXPECT_EQ(type->getTypeFirst(), nullptr);
    other->release(); // its object has no type from now on
    EXPECT_EQ(a->type(), nullptr);
    EXPECT_FALSE(a->isTypeLinked());
    a->setTypeName("Orphan");
    EXPECT_STREQ(a->getTypeName().string(), "Orphan");
    for (ZObject* end : {a, static_cast<ZObject*>(type)}) end->release();
}

TEST_F(ZObjectLife, CopyTakesWhatBelongsToIt) {
    ZObject *object = zmake<ZObject>(), *part = zmake<ZObject>(), *delegate = zmake<ZObject>();
    object->setSelector("object");
    object->setDelegateType(ZObject::Priority);
    object->setParentDelegate(ZObject::Dispatch);
    object->setAutoBind(true);
    object->addDispatch("signal");
    object->addDelegate(delegate, false);
    object->publishNamed();
    part->setSelector("part");
    part->setParent(object);
    part->release();

    auto plain = static_cast<ZObject*>(object->copy());
    EXPECT_EQ(plain->selector(), object->selector());
    EXPECT_EQ(plain->delegateType(), ZObject::Priority);
    EXPECT_EQ(plain->parentDelegate(), ZObject::Dispatch);
    EXPECT_TRUE(plain->getAutoBind() && plain->hasDispatch("signal"));
    EXPECT_FALSE(plain->first() || plain->hasDelegate());
    EXPECT_EQ(ZObject::publishedObject("object"), object);
    object->setCopyMembers(true);
    auto whole = static_cast<ZObject*>(object->copy());
    ASSERT_EQ(whole->countObjects(), 1);
    EXPECT_NE(whole->first(), part);
    EXPECT_EQ(whole->first()->refcount(), 1);
    EXPECT_TRUE(whole->copyMembers());
    ZObject* deep = object->deepCopy(); // no second copies
    EXPECT_EQ(deep->countObjects(), 1);
    for (ZObject* end : {object, plain, whole, deep, delegate}) end->release();
}

TEST_F(ZObjectLife, DeepCopyRewires) {
    ZObject *object = zmake<ZObject>(), *part = zmake<ZObject>(), *outside = zmake<ZObject>();
    part->setSelector("part");
    part->setDelegateType(ZObject::Binder);
    part->setParent(object);
    object->addDelegate(part, false);
    outside->setSelector("outside");
    object->addDelegate(outside, false);
    EXPECT_TRUE(object->addProperty("holder", ZVariant(static_cast<const ZType*>(part))));
    EXPECT_TRUE(object->addProperty("also", ZVariant(static_cast<const ZType*>(part))));
    EXPECT_TRUE(object->addProperty("helper", ZVariant(static_cast<const ZType*>(outside))));

    ZObject* made = object->deepCopy();
    ASSERT_NE(made, nullptr);
    ZObject *madePart = made->getFirst(ZSelector("part")), *madeOutside = made->findDelegate("outside");
    ASSERT_TRUE(madePart && madeOutside);
    EXPECT_NE(madePart, part);
    EXPECT_TRUE(made->hasDelegate(madePart));
    EXPECT_EQ(made->getDelegates().count(), 2u);
    EXPECT_EQ(madePart->delegateType(), ZObject::Binder);
    for (const char* holder : {"holder", "also"}) EXPECT_EQ(made->getProperty(holder).toObject(), madePart);
    EXPECT_EQ(object->getProperty("holder").toObject(), part);
    EXPECT_EQ(made->getProperty("helper").toObject(), madeOutside) << "it is the one that the property holds";
    for (ZObject* end : {object, part, outside, made}) end->release();
}

TEST_F(ZObjectLife, FixedMethodsAndWords) {
    toolkit::EpochGuard guard;
    const ZMetaType* type = ztype<ZObject>();
    ASSERT_EQ(type->getFixedMethods().count(), 42u);
    for (int i = 0; i < ZObject::FixedMethodCount; ++i) {
        const ZMethod* method = type->getFixedMethod(i);
        ASSERT_NE(method, nullptr) << i;
        EXPECT_EQ(ztype<ZMetaType>()->getFixedMethod(i) != nullptr, true) << i;
        const bool signal = i >= ZObject::FirstSignal && i <= ZObject::PostSignal;
        EXPECT_EQ(signal, (method->getFlags() & ZMethod::Bindable) && method->paramCount() == 0) << i;
    }
    EXPECT_EQ(type->getFixedMethod(ZObject::FixedMethodCount), nullptr);
    ZObject* object = zmake<ZObject>();
    EXPECT_STREQ(object->fixedMethod(ZObject::ExitLoopSignal)->methodName().string(), "loopExited");
    // A class says its words once: each is one of the type's enum.
    ZEnumType* bits = object->findEnum("DelegateType");
    const ZSelectorMap words = type->selectorGroup("delegate");
    ASSERT_EQ(words.count(), 8u);
    for (const char* word : {"binder", "dispatch", "priority", "extension", "event", "property", "resource", "child"}) {
        int value = 0;
        EXPECT_TRUE(bits && bits->value(words.get(word), &value)) << word;
        EXPECT_EQ(value, int(ZObject::scanDelegate(word))) << word;
    }
    object->release();
}

/// A class with a private part has it behind that of its base, also where its type says nothing of a base's size.
TEST_F(ZObjectLife, PrivateParts) {
    class Parted : public ZObject {
    public:
        explicit Parted(ZMetaType* type) : ZObject(orv::passType(type)) {
            part = static_cast<char*>(ZInternal::getmem(internal, nullptr, 200));
        }
        char* part;
    };
    ZMetaType* type = zmake<ZMetaType>(nullptr, "PartedObject", ZMetaType::Object);
    ASSERT_TRUE(type->addBase(ztype<ZObject>()));
    const int plain = type->calcInternalSize(true);
    EXPECT_GE(plain, ZObject::internalSizeOfType(true));
    Parted* none = zmake<Parted>(type);
    EXPECT_EQ(none->part, nullptr);
    type->setInternalSize(200);
    EXPECT_EQ(type->calcInternalSize(true), plain + 208);
    Parted* object = zmake<Parted>(type);
    ASSERT_NE(object->part, nullptr);
    for (int i = 0; i < 200; ++i) EXPECT_EQ(object->part[i], 0);
    for (ZObject* end : {static_cast<ZObject*>(none), static_cast<ZObject*>(object), static_cast<ZObject*>(type)})
        end->release();
}

TEST_F(ZObjectLife, ListOfATypeWhileObjectsComeAndGo) {
    ZMetaType* type = zmake<ZMetaType>(nullptr, "ListedObject", ZMetaType::Object);
    ZObject* kept = zmake<ZObject>(orv::passType(type));
    bool stop = false;
    std::thread maker([&] {
        while (!toolkit::loadAcquire(stop)) zmake<ZObject>(orv::passType(type))->release();
    });
    for (int i = 0; i < 2000; ++i) {
        ZArrayT<ZRetainPtrT<ZObject>> objects;
        ASSERT_TRUE(type->getTypeObjects(objects));
        ASSERT_FALSE(objects.isEmpty());
        EXPECT_EQ(std::as_const(objects).data()[0].get(), kept);
    }
    toolkit::storeRelease(stop, true);
    maker.join();
    for (ZObject* end : {kept, static_cast<ZObject*>(type)}) end->release();
}

TEST_F(ZObjectLife, MadeByTheNameOfAType) {
    ZObject* root = zmake<ZObject>();
    EXPECT_EQ(root->createObject("NoSuchType", "a", {}), nullptr);
    EXPECT_EQ(root->createObject("ZString", "a", {}), nullptr);
    ZObject* child = root->createObject("ZObject", "a", {});
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(root->findObject("a", false), child);
    EXPECT_EQ(child->refcount(), 1);
    child->setDelegateType(ZObject::Binder);
    ZVArray source(ztype<ZVariant>());
    ASSERT_TRUE(source.append(ZVariant(static_cast<const ZType*>(child))));
    ZObject* copied = root->createObject("ZObject", "b", source);
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(copied->delegateType(), ZObject::Binder);
    EXPECT_EQ(copied->refcount(), 1);
    EXPECT_EQ(root->countObjects(), 2);

    EXPECT_TRUE(root->loadDelegate("x", {}));
    EXPECT_FALSE(root->hasDelegate() || root->loadDelegate("x", "NoSuchType"));
    EXPECT_TRUE(root->loadDelegate("x", "ZObject"));
    EXPECT_EQ(root->findDelegate("x")->refcount(), 1);
    root->release();
}

TEST_F(ZObjectLife, KeepsTheIdsOfNamedPosts) {
    const uint before = ZUnique::count();
    const ZUnique first, second;
    const ZSelector later("later"), other("other");
    failEachAllocation([&](AllocProbe& probe) {
        ZObject* object = zmake<ZObject>();
        if (!object) return;
        const bool noted = object->setNamedMethodPostId(later, first);
        probe.failAt(0);
        EXPECT_EQ(object->namedMethodPostId(later) == first, noted);
        EXPECT_FALSE(object->setNamedMethodPostId(ZSelector(), first));
        EXPECT_TRUE(object->setPostedMethodId(later, second) && object->postedMethodId(later) == second);
        EXPECT_TRUE(object->setNamedMethodPostId(other, second) && object->removeMethodPost(later));
        EXPECT_FALSE(object->removeMethodPost(later) || object->setNamedMethodPostId(later, ZUnique(0)));
        EXPECT_TRUE(object->namedMethodPostId(later).isEmpty());
        object->release();
        zrecover();
    });
    EXPECT_EQ(ZUnique::count(), before + 2);
}

/// Whatever allocation fails, a caller sees null or false, the old state, and nothing is left behind.
TEST_F(ZObjectLife, FailingAllocations) {
    auto fill = [](ZObject* object) {
        ZMethod* method = ZMethod::create("void run(ZArrayT<ZVariant>&)", {}, 0, ZMethod::emptyFunc,
                                          [](const void*, ZMethod*, void*) {});
        const bool set = method && object->setMethod(method, true);
        ZMethod::release(method);
        return set && object->addDispatch("signal", "void run(ZArrayT<ZVariant>&)", {});
    };
    auto scenario = [&](AllocProbe& probe) {
        ZObject *object = zmake<ZObject>(), *delegate = zmake<ZObject>();
        if (object && delegate) {
            object->setSelector("failing");
            delegate->setSelector("helper");
            delegate->setDelegateType(ZObject::Extension);
            object->setCopyMembers(true);
            delegate->setParent(object);
            const bool filled = fill(delegate);
            EXPECT_TRUE(filled || probe.failed());
            EXPECT_TRUE(!filled || delegate->methodCount() == 1);
            const bool added = object->addDelegate(delegate, false);
            EXPECT_EQ(object->hasDelegate(delegate), added);
            EXPECT_EQ(delegate->refcount(), added ? 3 : 2);
            EXPECT_TRUE(object->publishNamed() || probe.failed());
            EXPECT_TRUE(!(added && filled) || object->methodBySelector("run", {}) || probe.failed());
            EXPECT_TRUE(!filled || delegate->callDispatch("signal") || probe.failed());
            ZType* copied = object->copy();
            EXPECT_TRUE(copied || probe.failed());
            EXPECT_TRUE(!copied || static_cast<ZObject*>(copied)->countObjects() == 1);
            if (copied) copied->release();
            object->setCopyMembers(false);
            ZObject* deep = object->deepCopy();
            EXPECT_TRUE(deep || probe.failed());
            EXPECT_TRUE(!deep || deep->hasDelegate() == added);
            if (deep) deep->release();
            EXPECT_TRUE(object->setPropDelegate("a", ZVariant(ZSelector("b"))) || probe.failed());
        } else {
            EXPECT_TRUE(probe.failed());
        }
        for (ZObject* end : {object, delegate})
            if (end) end->release();
        ZObject::closeNamed();
        toolkit::epochDrain(); // records of methods go late
        zrecover();
    };
    AllocProbe warm;
    scenario(warm);
    failEachAllocation(scenario);
}

} // namespace
