#include "object/ZProperty.h"

#include "object/ZMethod.h"
#include "object/ZObject.h"
#include "object/ZPropertyPtr.h"
#include "tests/object/propertyTypes.h"
#include "tests/support/AllocProbe.h"
#include "text/ZBlendPos.h"
#include "value/ZTypedPtr.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"

#include <string>

namespace {
using Property = PropertyTest;

template <class T> ZVariant holding(const T& container) { return ZVariant(ztype<T>(), &container); }
constexpr uint arrayFlags = ZProperty::Collection | ZProperty::Array;
} // namespace

TEST_F(Property, TypesFollowTheValue) {
    ZMetaType *number = ztype<int>(), *selector = ztype<ZSelector>(), *real_ = ztype<real>();
    const ZVariant array = holding(ZVArray(number)), set = holding(ZVHashSet(number)),
                   names = holding(ZVSelectMap(number)), keys = holding(ZVKeyMap(real_, number));
    const struct {
        const char* what;
        const ZVariant& value;
        uint flags;
        ZMetaType *item, *index;
        uint brings;
    } rows[] = {
        {"array", array, ZProperty::Dynamic, number, nullptr, arrayFlags},
        {"array in a field", array, ZProperty::Store, number, nullptr, 0},
        {"set", set, ZProperty::Alias, number, nullptr, arrayFlags},
        {"names", names, ZProperty::Dynamic, number, selector, ZProperty::Collection},
        {"names in a field", names, 0, number, selector, 0},
        {"keys", keys, ZProperty::Optional, number, real_, ZProperty::Collection},
        {"fixed", array, ZProperty::Dynamic | ZProperty::Fixed, nullptr, nullptr, 0},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        ZProperty property(name("list"), row.value, row.flags);
        EXPECT_EQ(property.getItemType(), row.item);
        EXPECT_EQ(property.getIndex(), row.index);
        EXPECT_EQ(property.flags(), row.flags | row.brings);
        EXPECT_EQ(property.collection(), row.index || row.brings);
        EXPECT_EQ(property.isArray(), row.brings == arrayFlags);
    }
    const ZProperty null(name("any"), ZVariant(), ZProperty::Variable), bare;
    EXPECT_EQ(null.value().type(), ztype<ZVariant>());
    EXPECT_TRUE(null.value().isNull());
    EXPECT_TRUE(null.hasOption(name("variable")));
    EXPECT_EQ(bare.flags(), uint(ZProperty::Default));
    EXPECT_EQ(bare.version(), -1);
    // A fixed one keeps what it was told.
    ZProperty fixed(name("list"), ztype<ZVArray>(), real_, ZProperty::Dynamic | ZProperty::Fixed);
    fixed.setValue(array);
    EXPECT_EQ(fixed.getItemType(), real_);
    EXPECT_FALSE(fixed.collection());
    // A variant in a variant is taken out.
    ZVariant inner(7);
    fixed = ZProperty(name("n"), ZVariant(ztype<ZVariant>(), &inner));
    EXPECT_EQ(fixed.value().type(), number);
}

TEST_F(Property, ContainersAreMadeOnDemand) {
    ZMetaType* number = ztype<int>();
    ZProperty list(name("list"), ztype<ZVArray>(), number, ZProperty::Dynamic);
    ASSERT_TRUE(list.setupContainer());
    ASSERT_NE(list.value().getPtr(), nullptr);
    EXPECT_EQ(static_cast<const ZVArray*>(list.value().getPtr())->getValueType(), number);
    ZProperty map(name("map"), ztype<ZVKeyMap>(), number, ztype<real>(), ZProperty::Dynamic);
    ASSERT_TRUE(map.setupContainer());
    EXPECT_EQ(static_cast<const ZVKeyMap*>(map.value().getPtr())->getKeyType(), ztype<real>());
    ZProperty fixed(name("list"), ztype<ZVArray>(), number, ZProperty::Fixed), plain(name("n"), ZVariant(4));
    EXPECT_TRUE(fixed.setupContainer());
    EXPECT_EQ(fixed.value().getPtr(), nullptr);
    EXPECT_TRUE(plain.setupContainer());
    EXPECT_EQ(plain.value().toInt(), 4);

    const uint shown = ZProperty::Dynamic | ZProperty::Alias | ZProperty::Delegate;
    ZProperty made;
    made.setupDynamic(holding(ZVArray(number)), name("content .changed"));
    EXPECT_EQ(made.flags(), shown | arrayFlags);
    EXPECT_EQ(made.getIndex(), number);
    EXPECT_STREQ(made.getUpdaters().string(), "changed");
    EXPECT_TRUE(made.hasOption(name("content")));
    made.setupDynamic(holding(ZVSelectMap(number)), ZSelector());
    EXPECT_EQ(made.flags(), shown | ZProperty::Collection);
    EXPECT_EQ(made.getIndex(), ztype<ZSelector>());
    ZObject* object = zmake<ZObject>();
    made.setupDynamic(ZVariant(object), ZSelector());
    EXPECT_EQ(made.flags(), shown | ZProperty::Retain);
    EXPECT_TRUE(made.retainedObject());
    EXPECT_TRUE(made.retained());
    object->release();
}

TEST_F(Property, BlendsAndCompares) {
    ZProperty a(name("size"), ZVariant(10.0)), b(name("size"), ZVariant(20.0));
    a.setVersion(4);
    b.setVersion(3);
    a.setSandBoxLevel(1);
    b.setSandBoxLevel(2);
    const ZBlendPos middle(0.5);
    const ZProperty both(&a, &b, middle), first(&a, nullptr, middle);
    EXPECT_EQ(both.value().toReal(), 15.0);
    EXPECT_EQ(both.version(), 3);
    EXPECT_EQ(both.sandBoxLevel(), 2);
    EXPECT_EQ(both.getItemType(), a.getItemType());
    EXPECT_EQ(first.version(), 4);
    ZProperty alone(name("n"), ZVariant(3));
    alone.setItemType(nullptr);
    alone.blendFrom(nullptr, nullptr, middle);
    EXPECT_EQ(alone.getItemType(), ztype<int>());
    EXPECT_EQ(alone.value().toInt(), 3);

    // The first difference decides, in this order.
    ZProperty least(name("size"), ZVariant(1), ZProperty::Store);
    const auto changed = [&](auto change) {
        ZProperty other(least);
        change(other);
        EXPECT_EQ(other.compare(least), 1);
        return least.compare(other);
    };
    EXPECT_EQ(least.compare(ZProperty(least)), 0);
    EXPECT_EQ(changed([](ZProperty& p) { p.replaceValue(ZVariant(2)); }), -1);
    EXPECT_EQ(changed([](ZProperty& p) {
                  p.replaceValue(ZVariant(2));
                  p.setFlags(0);
              }),
              -1);
    EXPECT_EQ(changed([](ZProperty& p) { p.setFlags(ZProperty::Store | ZProperty::Lock); }), -1);
    EXPECT_EQ(changed([](ZProperty& p) { p.setOptions(ZSelector("noxst")); }), -1);
    EXPECT_EQ(changed([](ZProperty& p) { p.setVersion(0); }), -1);
    EXPECT_EQ(changed([](ZProperty& p) { p.setSandBoxLevel(0); }), -1);
    EXPECT_EQ(changed([](ZProperty& p) { p.setIndex(ztype<int>()); }), -1);
}

TEST_F(Property, RecordsAreCountedAndEntriesShareThem) {
    ZProperty* record = ZProperty::create(name("note"), ZVariant(1));
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(ZProperty(*record).retain(), nullptr) << "not of the pool";
    {
        ZPropertyPtr one(record), two(one);
        EXPECT_EQ(record->refcount(), 3);
        EXPECT_EQ(one.compare(two), 0);
        ASSERT_TRUE(two.detach());
        EXPECT_NE(two.property(), record);
        two->setValue(ZVariant(2));
        EXPECT_EQ(record->value().toInt(), 1);
        EXPECT_LT(one.compare(two), 0);
        EXPECT_TRUE(one.beginUpdate());
        EXPECT_FALSE(one.beginUpdate());
        one.endUpdate();
        one->setFlags(ZProperty::Linked);
        EXPECT_FALSE(one.beginUpdate());
    }
    EXPECT_EQ(record->refcount(), 1);
    record->release();
}

TEST_F(Property, VariantsHoldRecordsByTheirOwnCount) {
    ZProperty *record = ZProperty::create(name("note"), ZVariant(1)), unpooled;
    ZMetaType *type = ztype<ZProperty>(), *pointer = type->getPtrType();
    {
        const ZVariant held(pointer, &record);
        ZVariant shared(held);
        EXPECT_EQ(record->refcount(), 3);
        EXPECT_TRUE(shared.detach());
        EXPECT_NE(shared.getPtr(), record);
        EXPECT_EQ(shared.compare(held), 0);
        const ZVariant value(type, record), copy(value);
        EXPECT_NE(value.getPtr(), record);
        EXPECT_EQ(record->refcount(), 2);
        // What stands elsewhere can't be held.
        ZProperty* at = &unpooled;
        EXPECT_TRUE(ZVariant(pointer, &at).isNull());
    }
    EXPECT_EQ(record->refcount(), 1);
    record->release();

    auto shape = zmake<TestShape>();
    ASSERT_TRUE(shape->addProperty(name("note"), ZVariant(12)));
    ZArrayT<ZVariant> arguments;
    arguments.append(ZVariant(name("note")));
    const ZVariant found = shape->invoke(name("dynamicProperty"), arguments);
    EXPECT_EQ(found.getPtr(), shape->dynamicProperty(name("note")));
    shape->release();
    EXPECT_EQ(ZTypedPtr(found).invoke(name("value"), ZArrayT<ZVariant>()).toInt(), 12);
}

TEST_F(Property, PathsLeadToTheKeysOfMaps) {
    ZObject* object = zmake<ZObject>();
    ASSERT_TRUE(object->addProperty(name("map"), holding(ZVSelectMap(ztype<int>()))));
    const ZVariant before = object->getProperty(name("map"));
    EXPECT_TRUE(object->setProperty("map.a", ZVariant("7")));
    EXPECT_TRUE(object->setProperty("map.a.b", ZVariant(8))) << "the rest as a whole is the key";
    EXPECT_FALSE(object->setProperty("map.c", ZVariant("no number")));
    EXPECT_EQ(object->getProperty("map.a").toInt(), 7);
    EXPECT_EQ(object->getPropertyItem(name("map"), name("a.b")).toInt(), 8);
    EXPECT_EQ(object->getProperty(name("map")).itemCount(), 2u);
    EXPECT_EQ(before.itemCount(), 0u) << "written back as a copy";
    object->release();
}

TEST_F(Property, DynamicOnesGetSetters) {
    ZObject* object = zmake<ZObject>();
    ASSERT_TRUE(object->addProperty(name("note"), ZVariant(1)));
    ASSERT_TRUE(object->addProperty(name("any"), ZVariant()));
    ASSERT_TRUE(object->addProperty(name("list"), holding(ZVArray(ztype<int>()))));
    ASSERT_TRUE(object->addProperty(name("map"), holding(ZVSelectMap(ztype<int>()))));
    ASSERT_TRUE(object->addProperty(name("keys"), holding(ZVKeyMap(ztype<real>(), ztype<int>()))));
    ASSERT_TRUE(object->addProperty(name("still"), ZVariant(5), ZProperty::Dynamic | ZProperty::ReadOnly));
    ASSERT_TRUE(object->addPropertyItem(name("list"), ZVariant(3), true));
    for (const char* each : {"note", "any", "list", "map", "keys", "still"})
        EXPECT_TRUE(object->dynamicProperty(name(each))->setupMethods(object, false)) << each;
    EXPECT_EQ(object->methodCount(), 8u);

    ZMethod* method = object->methodBySelector(name("bool setNote(const int&)"), ZSelector());
    ASSERT_NE(method, nullptr);
    EXPECT_EQ(method->getFlags(), 8450u);
    EXPECT_EQ(method->property(), name("note"));
    const auto call = [&](const char* method, const ZVariant& a, const ZVariant& b) {
        ZArrayT<ZVariant> arguments;
        arguments.append(a);
        if (!b.isNull()) arguments.append(b);
        return object->invoke(name(method), arguments).toBool();
    };
    EXPECT_TRUE(call("setNote", ZVariant(12), ZVariant()));
    EXPECT_EQ(object->getProperty(name("note")).toInt(), 12);
    EXPECT_TRUE(call("setAny", ZVariant("text"), ZVariant()));
    EXPECT_EQ(object->getProperty(name("any")).toString(), ZString("text"));
    EXPECT_TRUE(call("setList", ZVariant(0), ZVariant(30)));
    EXPECT_EQ(object->getPropertyItem(name("list"), 0).toInt(), 30);
    EXPECT_FALSE(call("setList", ZVariant(9), ZVariant(30)));
    EXPECT_TRUE(call("setMap", ZVariant(name("a")), ZVariant(40)));
    EXPECT_EQ(object->getPropertyItem(name("map"), name("a")).toInt(), 40);
    EXPECT_TRUE(call("setKeys", ZVariant(2.5), ZVariant(50)));
    EXPECT_EQ(object->getPropertyItem(name("keys"), ZVariant(2.5)).toInt(), 50);

    // Once only, unless asked.
    ASSERT_TRUE(object->removeMethods(name("setNote")));
    EXPECT_TRUE(object->dynamicProperty(name("note"))->setupMethods(object, false));
    EXPECT_EQ(object->methodBySelector(name("bool setNote(const int&)"), ZSelector()), nullptr);
    EXPECT_TRUE(object->dynamicProperty(name("note"))->setupMethods(object, true));
    EXPECT_NE(object->methodBySelector(name("bool setNote(const int&)"), ZSelector()), nullptr);
    EXPECT_FALSE(object->dynamicProperty(name("note"))->setupMethods(nullptr, true));
    object->release();

    failEachAllocation([&](AllocProbe& probe) {
        ZObject* made = zmake<ZObject>();
        if (!made) return;
        const bool added = made->addProperty(name("note"), ZVariant(1));
        const bool done = added && made->dynamicProperty(name("note"))->setupMethods(made, false);
        if (!probe.failed()) { EXPECT_TRUE(done); }
        EXPECT_EQ(made->methodCount() != 0, done);
        made->release();
    });
}

TEST_F(Property, ItemsAreCountedByTheDeclaredCounter) {
    auto shape = zmake<TestShape>();
    toolkit::EpochGuard guard;
    ZProperty* side = ztype<TestShape>()->findPropertyDef(nullptr, name("side"));
    ASSERT_NE(side, nullptr);
    EXPECT_EQ(side->countItems(ztype<TestShape>(), shape), 4);
    EXPECT_EQ(side->countItems(ztype<TestPoint>(), shape), 0);
    EXPECT_EQ(side->countItems(ztype<TestShape>(), nullptr), 0);
    EXPECT_EQ(ztype<TestShape>()->findPropertyDef(nullptr, name("width"))->countItems(ztype<TestShape>(), shape), 0);
    shape->release();
}
