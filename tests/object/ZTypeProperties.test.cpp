#include "object/ZProperty.h"
#include "object/ZPropertyPtr.h"
#include "object/ZPropertyRef.h"
#include "tests/object/propertyTypes.h"
#include "tests/support/AllocProbe.h"
#include "value/ZTypedPtr.h"

#include <string>
#include <vector>

namespace {
using TypeProperties = PropertyTest;

std::string textOf(const ZSelector& name) { return name.isEmpty() ? "" : name.string(); }

struct Held {
    TestShape* shape = zmake<TestShape>();
    ~Held() { shape->release(); }
    TestShape* operator->() const { return shape; }
};
} // namespace

TEST_F(TypeProperties, DeclaredOnesAreReadByTheirGetters) {
    Held shape;
    shape->title = ZString("blue");
    shape->spot = {5, 6};
    EXPECT_EQ(shape->getProperty(name("width")).toInt(), 3);
    EXPECT_EQ(shape->getProperty(name("width")).type(), ztype<int>());
    EXPECT_EQ(shape->getProperty(name("ratio")).toReal(), 1.5);
    EXPECT_EQ(shape->getProperty(name("label")).toString(), ZString("blue"));
    EXPECT_EQ(shape->getProperty(name("both")).toString(), ZString("blue!"));
    ZVariant place = shape->getProperty(name("place"));
    ASSERT_EQ(place.type(), ztype<TestPoint>());
    EXPECT_EQ(static_cast<const TestPoint*>(place.getPtr())->y, 6);
    EXPECT_TRUE(shape->getProperty(name("partner")).isNull());
    EXPECT_TRUE(shape->getProperty(name("any")).isNull());
    EXPECT_EQ(shape->getProperty(name("given")).toInt(), 11);
    EXPECT_EQ(shape->getProperty(name("extra")).toInt(), 11);
    EXPECT_TRUE(shape->getProperty(name("nothing")).isNull());
    EXPECT_TRUE(shape->getProperty(ZSelector()).isNull());
}

TEST_F(TypeProperties, DeclaredOnesAreWrittenBySetters) {
    Held shape, other;
    EXPECT_TRUE(shape->setProperty(name("label"), ZVariant("red")));
    EXPECT_EQ(shape->title, ZString("red"));
    EXPECT_TRUE(shape->setProperty(name("label"), ZVariant(12)));
    EXPECT_EQ(shape->title, ZString("12"));
    TestPoint to{8, 9};
    EXPECT_TRUE(shape->setProperty(name("place"), ZVariant(ztype<TestPoint>(), &to)));
    EXPECT_EQ(shape->spot.y, 9);
    EXPECT_FALSE(shape->setProperty(name("place"), ZVariant("no point")));
    EXPECT_FALSE(shape->setProperty(name("ratio"), ZVariant(2.0)));
    EXPECT_FALSE(shape->setProperty(name("width"), ZVariant(-1)));
    EXPECT_FALSE(shape->setProperty(name("nothing"), ZVariant(1)));
    EXPECT_FALSE(shape->hasDynamicProperty(name("nothing")));
    EXPECT_TRUE(shape->setProperty(name("partner"), ZVariant(other.shape)));
    EXPECT_EQ(shape->next, other.shape);
    EXPECT_EQ(shape->getProperty(name("partner")).toType(), other.shape);
    EXPECT_EQ(other->refcount(), 2);
    EXPECT_FALSE(shape->setProperty(name("partner"), ZVariant(3)));
    EXPECT_TRUE(shape->setProperty(name("partner"), ZVariant()));
    EXPECT_EQ(other->refcount(), 1);
    EXPECT_TRUE(shape->setProperty(name("any"), ZVariant("text")));
    EXPECT_EQ(shape->getProperty(name("any")).toString(), ZString("text"));
}

TEST_F(TypeProperties, AnUpdateMethodMaySetItsOwnProperty) {
    Held shape;
    EXPECT_TRUE(shape->setProperty(name("width"), ZVariant(20)));
    EXPECT_EQ(shape->grown, 1);
    EXPECT_EQ(shape->w, 21);
    // The same for a property of the instance, whose record the method replaces.
    EXPECT_TRUE(shape->addProperty(name("note"), ZVariant(1), name("store .grow")));
    int before = shape->grown;
    EXPECT_TRUE(shape->setProperty(name("note"), ZVariant(5)));
    EXPECT_GT(shape->grown, before);
    EXPECT_LE(shape->grown, before + 2);
    EXPECT_EQ(shape->getProperty(name("note")).toInt(), shape->grown);
}

TEST_F(TypeProperties, AnUpdateMethodMayGiveUpTheInstance) {
    for (const char* property : {"width", "note"}) {
        auto shape = zmake<TestShape>();
        ASSERT_TRUE(shape->addProperty(name("note"), ZVariant(1), name(".grow")));
        int ended = 0;
        shape->ended = &ended;
        shape->leaves = true;
        EXPECT_TRUE(shape->setProperty(name(property), ZVariant(8)));
        EXPECT_EQ(ended, 1) << property;
    }
}

TEST_F(TypeProperties, WhatADeclarationSays) {
    Held shape;
    EXPECT_EQ(shape->propertyVersion(name("width")), 3);
    EXPECT_EQ(shape->propertyVersion(name("nothing")), -1);
    ZProperty found;
    ASSERT_TRUE(shape->property(name("width"), found));
    EXPECT_EQ(found.sandBoxLevel(), 2);
    EXPECT_EQ(found.value().toInt(), 3);
    EXPECT_TRUE(found.storable());
    EXPECT_EQ(textOf(found.getUpdaters()), "grow");
    EXPECT_TRUE(shape->hasPropertyOption(name("label"), name("noxst")));
    EXPECT_FALSE(shape->hasPropertyOption(name("label"), name("store")));
    EXPECT_TRUE(shape->hasPropertyOption(name("any"), name("variable")));
    EXPECT_EQ(shape->propertyDefinitionType(name("width")), ztype<TestShape>());
    EXPECT_EQ(shape->propertyType(name("label")), ztype<ZString>());
    ZArrayT<ZSelector> names;
    ASSERT_TRUE(shape->storedPropertyNames(names));
    std::string all;
    for (const ZSelector& each : names) all += textOf(each) + " ";
    EXPECT_EQ(all, "given width label place ");
    EXPECT_EQ(shape->propertyCount(), 11u);
}

TEST_F(TypeProperties, SignaturesOfAccessors) {
    const uint bare = 0;
    ZMetaType *point = ztype<TestPoint>(), *pointer = ztype<ZType>()->getPtrType();
    const ZProperty number(name("size"), ztype<int>(), bare), spot(name("spot"), point, bare),
        any(name("width"), ZVariant(), bare), owner(name("owner"), pointer, bare),
        list(name("items"), point, point, nullptr, ZProperty::Collection | ZProperty::Array),
        map(name("parts"), point, pointer, ztype<ZSelector>(), ZProperty::Collection);
    ZProperty shared(spot), resolved(spot), passed(list);
    shared.setFlags(ZProperty::Value);
    resolved.setFlags(ZProperty::Resolve);
    passed.setFlags(passed.flags() | ZProperty::PassPtr);
    const struct {
        ZSelector made;
        const char* expected;
    } rows[] = {
        {number.getter(false, true, false), "int size()"},
        {number.setter(false), "bool setSize(const int&)"},
        {any.getter(false, false, false), "ZVariant width()"},
        {any.setter(false), "bool setWidth(const ZVariant&)"},
        {spot.getter(true, true, false), "const TestPoint* spotPtr()"},
        {spot.getter(true, false, false), "TestPoint* spotPtr()"},
        {spot.getter(false, true, false), "const TestPoint& spot()"},
        {spot.getter(false, false, false), "TestPoint& spot()"},
        {shared.getter(false, true, false), "TestPoint spot()"},
        {resolved.setter(false), "bool setSpot(const ZVariant&)"},
        {owner.getter(true, false, false), "ZType* owner()"},
        {owner.setter(false), "bool setOwner(const ZType*)"},
        {list.getter(false, true, true), "TestPoint items(int)"},
        {list.setter(true), "bool setItems(int, const TestPoint&)"},
        {passed.setter(true), "bool setItems(int, const TestPoint*)"},
        {list.counter(), "int countItems()"},
        {list.byindex(), "TestPoint itemsByIndex(int)"},
        {list.hasProp(), "bool hasItems(const TestPoint&)"},
        {list.findIndex(), "int findItemsIndex(const TestPoint&)"},
        {list.cleaner(), "bool clearItems()"},
        {list.remover(), "bool removeItems(int)"},
        {list.removeByIndex(), "bool removeItemsByIndex(int)"},
        {list.inserter(), "bool insertItems(int, const TestPoint&)"},
        {list.adder(), "bool addItems(const TestPoint&)"},
        {list.propKey(), ""},
        {map.getter(false, true, true), "ZType* parts(const ZSelector&)"},
        {map.setter(true), "bool setParts(const ZSelector&, const ZType*)"},
        {map.hasProp(), "bool hasParts(const ZType*)"},
        {map.propKey(), "ZSelector partsKey(int)"},
        {map.propIndex(), "int partsIndex(const ZSelector&)"},
        {map.findKey(), "ZSelector findPartsKey(const ZType*)"},
        {map.findIndex(), "int findPartsIndex(const ZType*)"},
        {map.remover(), "bool removeParts(const ZSelector&)"},
        {map.inserter(), "bool insertParts(const ZSelector&, const ZType*)"},
        {map.adder(), ""},
        {spot.counter(), ""},
    };
    for (const auto& row : rows) EXPECT_EQ(textOf(row.made), row.expected);
    EXPECT_EQ(map.getkey(true, true), ZString(", const ZSelector&, "));
    EXPECT_EQ(list.getkey(true, false), ZString(", int"));
}

TEST_F(TypeProperties, DynamicOnesBelongToTheInstance) {
    Held shape;
    EXPECT_FALSE(shape->setDynamicProperty(name("note"), ZVariant(1), false));
    EXPECT_TRUE(shape->setDynamicProperty(name("note"), ZVariant(1), true));
    EXPECT_TRUE(shape->setProperty(name("note"), ZVariant("two")));
    EXPECT_EQ(shape->getProperty(name("note")).toString(), ZString("two"));
    EXPECT_EQ(shape->getMetaProperty(name("note")), nullptr);
    EXPECT_TRUE(shape->isDynamicProperty(name("note")));
    // It covers a declared one of its name.
    EXPECT_TRUE(shape->addProperty(name("width"), ZVariant(50)));
    EXPECT_EQ(shape->getProperty(name("width")).toInt(), 50);
    EXPECT_TRUE(shape->removeProperty(name("width")));
    EXPECT_EQ(shape->getProperty(name("width")).toInt(), 3);
    EXPECT_FALSE(shape->removeProperty(name("width")));
    EXPECT_TRUE(shape->renameProperty(name("note"), name("remark")));
    EXPECT_FALSE(shape->hasProperty(name("note")));
    EXPECT_FALSE(shape->renameProperty(name("note"), name("other")));
    EXPECT_EQ(shape->getProperty(name("remark")).toString(), ZString("two"));
    // A declared optional one comes when it is set.
    EXPECT_FALSE(shape->hasDynamicProperty(name("extra")));
    EXPECT_TRUE(shape->setProperty(name("extra"), ZVariant(12)));
    EXPECT_TRUE(shape->hasDynamicProperty(name("extra")));
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(shape->pushProperty(name("extra")));
        EXPECT_TRUE(shape->setProperty(name("extra"), ZVariant(100 + i)));
    }
    for (int expected : {101, 100, 12}) {
        EXPECT_TRUE(shape->popProperty(name("extra")));
        EXPECT_EQ(shape->getProperty(name("extra")).toInt(), expected);
    }
    EXPECT_FALSE(shape->popProperty(name("extra")));
}

TEST_F(TypeProperties, SavedValuesComeBackWholeOrNotAtAll) {
    Held shape;
    ASSERT_TRUE(shape->addProperty(name("note"), ZVariant(1), name("store .grow")));
    const int before = shape->grown;
    EXPECT_TRUE(shape->pushProperty(name("note")));
    EXPECT_EQ(shape->grown, before) << "nothing has changed by that";
    EXPECT_TRUE(shape->popProperty(name("note")));
    EXPECT_GT(shape->grown, before);
    auto run = [&] {
        auto own = zmake<TestShape>();
        if (!own) return;
        int pushed = 0, popped = 0;
        if (own->addProperty(name("kept"), ZVariant(0)))
            while (pushed < 3 && own->pushProperty(name("kept")) && own->setProperty(name("kept"), ZVariant(++pushed)))
                ;
        const int top = own->getProperty(name("kept")).toInt();
        EXPECT_TRUE(top == pushed || top + 1 == pushed || !pushed);
        while (own->hasDynamicProperty(own->propertyStackName(name("kept")))) popped += own->popProperty(name("kept"));
        EXPECT_GE(popped, pushed);
        EXPECT_EQ(own->getProperty(name("kept")).toInt(), 0);
        own->release();
    };
    run(); // the names are known then
    failEachAllocation([&](AllocProbe&) { run(); });
}

TEST_F(TypeProperties, NewInstancesGetTheDynamicOnesOfTheirTypeAndItsBases) {
    ZMetaType* type = ztype<TestTagged>();
    ASSERT_TRUE(type->hasDynamicProperties());
    auto given = [](ZMetaType* of) {
        auto made = static_cast<ZType*>(of->createInstance());
        EXPECT_TRUE(made);
        if (!made) return std::string();
        std::string names;
        for (const ZPropertyPtr& entry : std::as_const(*made).getDynamicProperties())
            names += textOf(entry.key()) + " ";
        EXPECT_EQ(made->getDynamicProperty(name("given")).toInt(), 11);
        EXPECT_TRUE(made->setProperty(name("given"), ZVariant(5)));
        EXPECT_EQ(made->getDynamicProperty(name("given")).toInt(), 5) << "its own, not the declaration's";
        // A class that says nothing of copies isn't copied as its base.
        ZType* copy = made->copy();
        EXPECT_EQ(copy != nullptr, of == ztype<TestShape>());
        if (copy) {
            EXPECT_EQ(copy->getDynamicProperties().count(), made->getDynamicProperties().count());
            EXPECT_EQ(copy->getProperty(name("given")).toInt(), 5);
            copy->release();
        }
        made->release();
        return names;
    };
    EXPECT_EQ(given(ztype<TestShape>()), "given ") << "optional ones aren't";
    EXPECT_EQ(given(type), "given ");
    failEachAllocation([&](AllocProbe&) {
        if (auto made = static_cast<ZType*>(type->createInstance())) {
            EXPECT_TRUE(made->hasDynamicProperty(name("given")));
            made->release();
        }
        zrecover();
    });
}

/// A class that has renamed a property.
struct RenamedShape : TestShape {
    ZSelector replacePropertyName(const ZSelector& old) const override {
        return old == ZSelector("breadth") ? ZSelector("width") : old == ZSelector("hint") ? ZSelector("note") : old;
    }
};

TEST_F(TypeProperties, RenamedOnesAreKnownByTheirOldNames) {
    auto shape = zmake<RenamedShape>();
    EXPECT_TRUE(shape->hasProperty(name("breadth")));
    EXPECT_TRUE(shape->setProperty(name("breadth"), ZVariant(20)));
    EXPECT_EQ(shape->w, 21) << "with its update method";
    EXPECT_EQ(shape->getProperty(name("breadth")).toInt(), 21);
    EXPECT_EQ(shape->getPropertyType(name("breadth")), ztype<int>());
    EXPECT_TRUE(shape->addProperty(name("note"), ZVariant(3)));
    EXPECT_TRUE(shape->setProperty(name("hint"), ZVariant(4)) && shape->setPropertyOptions(name("hint"), name("loud")));
    EXPECT_EQ(shape->getDynamicProperty(name("note")).toInt(), 4);
    EXPECT_TRUE(shape->hasPropertyOption(name("note"), name("loud")));
    // What edits the instance's list takes names as they stand there.
    EXPECT_FALSE(shape->removeProperty(name("hint")));
    EXPECT_TRUE(shape->removeProperty(name("note")));
    shape->release();
}

TEST_F(TypeProperties, ACopySharesDynamicOnesUntilAWrite) {
    Held shape;
    ASSERT_TRUE(shape->addProperty(name("note"), ZVariant(1)));
    auto copy = zmake<TestShape>(shape.shape);
    EXPECT_EQ(copy->dynamicProperty(name("note")), shape->dynamicProperty(name("note")));
    EXPECT_FALSE(shape->isDetached());
    EXPECT_TRUE(copy->setProperty(name("note"), ZVariant(2)));
    EXPECT_EQ(shape->getProperty(name("note")).toInt(), 1);
    EXPECT_EQ(copy->getProperty(name("note")).toInt(), 2);
    EXPECT_TRUE(shape->isDetached());
    copy->release();
}

TEST_F(TypeProperties, BasesStandAtTheirOffsets) {
    auto both = zmake<TestTagged>();
    EXPECT_EQ(both->getProperty(name("tag")).toInt(), 7);
    EXPECT_TRUE(both->setProperty(name("tag"), ZVariant(8)));
    EXPECT_EQ(both->number, 8);
    EXPECT_EQ(both->getProperty(name("width")).toInt(), 3);
    EXPECT_EQ(both->getProperty(name("given")).toInt(), 11);
    EXPECT_TRUE(both->hasDynamicProperty(name("given")));
    // The getter of the derived class is asked for a property of the base.
    EXPECT_EQ(both->getProperty(name("ratio")).toReal(), 100);
    ZTypedPtr owner(both);
    toolkit::EpochGuard guard;
    EXPECT_NE(ztype<TestTagged>()->findPropertyDef(&owner, name("tag")), nullptr);
    EXPECT_EQ(owner.instance, static_cast<TestTag*>(both));
    EXPECT_EQ(ztype<TestTagged>()->propertyDefCount(), 12u);
    both->release();
}

TEST_F(TypeProperties, PathsAndDelegates) {
    Held shape, partner, last;
    ASSERT_TRUE(shape->setProperty(name("partner"), ZVariant(partner.shape)));
    ASSERT_TRUE(partner->setProperty(name("partner"), ZVariant(last.shape)));
    last->w = 44;
    EXPECT_EQ(shape->getProperty(name("partner.partner.width")).toInt(), 44);
    EXPECT_EQ(shape->getProperty(name("partner partner width")).toInt(), 44);
    ZTypedPtr owner;
    EXPECT_EQ(shape->getProperty(&owner, name("partner.partner.width"), true).toInt(), 44);
    EXPECT_EQ(owner.instance, last.shape);
    EXPECT_TRUE(shape->setProperty(name("partner.partner.label"), ZVariant("deep")));
    EXPECT_EQ(last->title, ZString("deep"));
    // A value is taken out, changed and written back.
    EXPECT_TRUE(shape->setProperty(name("partner.place.left"), ZVariant(71)));
    EXPECT_EQ(partner->spot.x, 71);
    EXPECT_FALSE(shape->setProperty(name("partner.nothing"), ZVariant(1)));
    // A list of names is a path too, but for reading.
    EXPECT_FALSE(shape->setProperty(name("partner width"), ZVariant(1)));
    // What stands in a value behind an object is put back there.
    EXPECT_TRUE(shape->clearProperty(name("partner.place.left")));
    EXPECT_EQ(partner->spot.x, 0);
    EXPECT_EQ(shape->getProperty(name("partner")).toType(), partner.shape);
    EXPECT_FALSE(shape->setProperty(name("nothing.width"), ZVariant(1)));

    // Of a value that is read on the way nothing is left that could be the owner.
    ZTypedPtr owned(shape.shape);
    EXPECT_EQ(shape->getProperty(&owned, name("place.left"), true).toInt(), shape->spot.x);
    EXPECT_EQ(owned.instance, nullptr);

    // What a delegate has answers for its owner, behind what is its own.
    Held outer;
    ASSERT_TRUE(outer->addProperty(name("helper"), ZVariant(last.shape), ZProperty::Dynamic | ZProperty::Delegate));
    ASSERT_TRUE(last->addProperty(name("note"), ZVariant(9)));
    EXPECT_EQ(outer->getProperty(&owner, name("note"), true).toInt(), 9);
    EXPECT_EQ(owner.instance, last.shape);
    EXPECT_EQ(outer->getProperty(name("width")).toInt(), 3);
    EXPECT_TRUE(outer->setProperty(name("note"), ZVariant(10)));
    EXPECT_EQ(last->getProperty(name("note")).toInt(), 10);
    // One that is a value is changed for its owner alone.
    TestPoint held{1, 2};
    ASSERT_TRUE(outer->addProperty(name("corner"), ZVariant(ztype<TestPoint>(), &held),
                                   ZProperty::Dynamic | ZProperty::Delegate));
    const ZVariant before = outer->getProperty(name("corner"));
    EXPECT_TRUE(outer->setProperty(name("left"), ZVariant(6)));
    EXPECT_EQ(outer->getProperty(name("left")).toInt(), 6);
    EXPECT_EQ(static_cast<const TestPoint*>(before.getPtr())->x, 1);
    ZPropertyRef ref(outer.shape, name("note"));
    EXPECT_EQ(ref.owner(), last.shape);
    ref = ZVariant(11);
    EXPECT_EQ(ZVariant(ref).toInt(), 11);
    EXPECT_TRUE(ZPropertyRef(outer.shape, name("nothing")).isNull());
    shape->setPartner(nullptr);
    partner->setPartner(nullptr);
}

TEST_F(TypeProperties, LongPathsNeitherOverflowNorHang) {
    Held shape;
    ASSERT_TRUE(shape->setProperty(name("partner"), ZVariant(shape.shape)));
    std::string path;
    for (int i = 0; i < 100000; ++i) path += "partner.";
    ZSelector width((path + "width").c_str()), nothing((path + "nothing").c_str());
    EXPECT_EQ(shape->getProperty(width).toInt(), 3);
    EXPECT_TRUE(shape->setProperty(width, ZVariant(9)));
    EXPECT_EQ(shape->w, 10); // its update method adds one
    EXPECT_TRUE(shape->getProperty(nothing).isNull());
    EXPECT_FALSE(shape->setProperty(nothing, ZVariant(1)));
    shape->setPartner(nullptr);
}

TEST_F(TypeProperties, ItemsGoThroughAccessors) {
    Held shape;
    EXPECT_EQ(shape->getPropertyCount(name("side")), 4);
    EXPECT_EQ(shape->getPropertyItem(name("side"), 2).toInt(), 3);
    EXPECT_FALSE(shape->setPropertyItem(name("side"), 2, ZVariant(30), true)); // read-only
    EXPECT_EQ(shape->getPropertyCount(name("nothing")), 0);
    // Setting an item calls the update method too; the getter of items isn't const.
    EXPECT_TRUE(shape->setPropertyItem(name("edge"), 1, ZVariant(20), true));
    EXPECT_GT(shape->grown, 0);
    EXPECT_EQ(shape->getPropertyItem(name("edge"), 1).toInt(), 20);
    toolkit::EpochGuard guard;
    ZMetaType* type = ztype<TestShape>();
    EXPECT_NE(type->getterMethod(nullptr, name("edge"), false, true, true), nullptr);
    EXPECT_EQ(type->getterMethod(nullptr, name("edge"), false, true, true),
              type->getterMethod(nullptr, name("edge"), false, false, true));
    EXPECT_EQ(type->getterMethod(nullptr, name("edge"), true, false, true), nullptr);
}

TEST_F(TypeProperties, PlainStructuresHavePropertiesToo) {
    TestPoint point{4, 5};
    ZTypedPtr typed(ztype<TestPoint>(), &point);
    EXPECT_EQ(typed.getProperty(name("left")).toInt(), 4);
    EXPECT_TRUE(typed.setProperty(name("left"), ZVariant(40)));
    EXPECT_EQ(point.x, 40);
    EXPECT_FALSE(typed.setProperty(name("nothing"), ZVariant(40)));
}

TEST_F(TypeProperties, TablesMayChangeWhileTheyAreRead) {
    ZMetaType* type = ztype<TestTag>();
    Held shape;
    EXPECT_FALSE(type->hasPropertyDef(name("later")));
    EXPECT_TRUE(type->addUserProperty(ZProperty(name("later"), ZVariant(5))));
    EXPECT_TRUE(type->hasPropertyDef(name("later")));
    // What derives from the type sees it too, and sees it go.
    EXPECT_TRUE(ztype<TestTagged>()->hasPropertyDef(name("later")));
    EXPECT_TRUE(type->removeUserProperty(name("later")));
    EXPECT_FALSE(ztype<TestTagged>()->hasPropertyDef(name("later")));
    EXPECT_FALSE(type->removeUserProperty(name("later")));
    EXPECT_FALSE(type->addPropertyDef(ZPropertyPtr(name("tag"), ZVariant(1))));
}

TEST_F(TypeProperties, FailingAllocationsLeaveEverythingAsItWas) {
    Held warm;
    warm->addProperty(name("note"), ZVariant(1));
    warm->setProperty(name("note"), ZVariant(2));
    warm->renameProperty(name("note"), name("remark"));
    failEachAllocation([&](AllocProbe& probe) {
        auto shape = zmake<TestShape>();
        if (!shape) return;
        bool added = shape->addProperty(name("note"), ZVariant(1));
        if (!probe.failed()) { EXPECT_TRUE(added); }
        EXPECT_EQ(shape->hasDynamicProperty(name("note")), added);
        if (added) {
            auto copy = zmake<TestShape>(shape);
            bool set = copy && copy->setProperty(name("note"), ZVariant(2));
            EXPECT_EQ(shape->getProperty(name("note")).toInt(), 1);
            if (copy) {
                EXPECT_EQ(copy->getProperty(name("note")).toInt(), set ? 2 : 1);
                bool renamed = copy->renameProperty(name("note"), name("remark"));
                EXPECT_EQ(copy->hasProperty(name("remark")), renamed);
                copy->release();
            }
        }
        shape->release();
    });
}

TEST_F(TypeProperties, WhatFailedForWantOfMemoryIsLookedUpAgain) {
    Held shape;
    ZMetaType* type = ztype<TestShape>();
    AllocProbe probe;
    bool failed = true;
    for (long n = 1; failed && n < 2000; ++n) {
        type->resetType(false);
        probe.failAt(n);
        shape->getProperty(name("width"));
        shape->setProperty(name("label"), ZVariant(1));
        shape->getPropertyCount(name("side"));
        shape->propertyCount();
        failed = probe.failed();
        probe.failAt(0);
        EXPECT_EQ(shape->getProperty(name("width")).toInt(), 3) << n;
        EXPECT_TRUE(shape->setProperty(name("label"), ZVariant("text"))) << n;
        EXPECT_EQ(shape->getPropertyCount(name("side")), 4) << n;
        EXPECT_EQ(shape->propertyCount(), 11u) << n;
    }
    EXPECT_FALSE(failed);
}

namespace {
struct Seen {
    int values = 0;
    bool change = false;
};
bool count(const ZProperty&, ZVariant& value, void* context) {
    auto seen = static_cast<Seen*>(context);
    ++seen->values;
    if (seen->change && value.type() == ztype<int>()) value.setInt(value.toInt() + 1);
    return seen->change;
}
} // namespace

TEST_F(TypeProperties, AVisitorMayChangeWhatIsWalked) {
    Held shape;
    for (const char* each : {"one", "two", "three"}) ASSERT_TRUE(shape->addProperty(name(each), ZVariant(each)));
    int seen = 0;
    struct Context {
        TestShape* shape;
        int* seen;
    } context{shape.shape, &seen};
    EXPECT_TRUE(shape->enumerateProperties(
        [](const ZProperty& property, ZVariant&, void* with) {
            auto at = static_cast<Context*>(with);
            at->shape->removeProperty(property.name());
            at->shape->addProperty(ZSelector("more").join(property.name()), ZVariant(1));
            return ++*at->seen < 100;
        },
        &context));
    EXPECT_LT(seen, 20);
    EXPECT_FALSE(shape->hasProperty(name("two")));
    EXPECT_TRUE(shape->hasProperty(name("moretwo")));
}

TEST_F(TypeProperties, WalksDoNotRunInCircles) {
    Held first, second;
    ASSERT_TRUE(first->addProperty(name("peer"), ZVariant(second.shape), uint(ZProperty::Dynamic)));
    ASSERT_TRUE(second->addProperty(name("peer"), ZVariant(first.shape), uint(ZProperty::Dynamic)));
    ASSERT_TRUE(first->setProperty(name("partner"), ZVariant(second.shape)));
    ASSERT_TRUE(second->setProperty(name("partner"), ZVariant(first.shape)));
    Seen seen;
    EXPECT_FALSE(first->updateProperties(nullptr, nullptr, count, &seen, true, false));
    EXPECT_GT(seen.values, 10);
    EXPECT_LT(seen.values, 200);
    seen = {0, true};
    EXPECT_TRUE(second->updateProperties(nullptr, nullptr, count, &seen, false, true));
    EXPECT_EQ(second->getProperty(name("given")).toInt(), 12);
    ZProperty* entry = first->dynamicProperty(name("peer"));
    ASSERT_NE(entry, nullptr);
    EXPECT_TRUE(entry->beginUpdate());
    EXPECT_FALSE(entry->beginUpdate());
    entry->endUpdate();
    first->removeProperty(name("peer"));
    second->removeProperty(name("peer"));
    first->setPartner(nullptr);
    second->setPartner(nullptr);
}
