#include "object/ZDetachContext.h"

#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "toolkit/epoch.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>
#include <vector>

namespace {

class ZDetachContextTest : public CoreTest {};

TEST_F(ZDetachContextTest, OneCopyOfOneObject) {
    ZObject* object = zmake<ZObject>();
    ASSERT_NE(object, nullptr);
    ZVArray objects(ztype<ZObject>());
    EXPECT_TRUE(objects.isZType());
    ASSERT_TRUE(objects.append(ZVariant(object)) && objects.append(ZVariant(object)) && objects.append(ZVariant()));
    EXPECT_EQ(object->refcount(), 3);
    ZVArray copy(objects);
    ASSERT_TRUE(ZDetachContext::detachValue(copy));
    EXPECT_EQ(object->refcount(), 3);
    EXPECT_NE(copy.valuePtr(0), object);
    EXPECT_EQ(copy.valuePtr(0), copy.valuePtr(1));
    EXPECT_EQ(copy.valuePtr(2), nullptr);
    EXPECT_EQ(static_cast<const ZObject*>(copy.valuePtr(0))->refcount(), 2);
    EXPECT_EQ(objects.valuePtr(0), object);

    // The same in values of different containers, by one context.
    ZVSelectMap map(ztype<ZVariant>());
    ASSERT_TRUE(map.set("a", ZVariant(object)));
    ZDetachContext* context = zmake<ZDetachContext>();
    context->startDetach();
    ZVariant value(object);
    ASSERT_TRUE(context->detachVariant(value) && context->detachSelectMap(map));
    EXPECT_NE(value.toType(), object);
    EXPECT_EQ(map.variant("a").toType(), value.toType());
    EXPECT_EQ(context->detached(object), value.toType());
    // A type hands the context on to what its values hold.
    ZVArray held(objects);
    ASSERT_TRUE(ztype<ZVArray>()->deepDetachInstance(&held, context));
    EXPECT_EQ(held.valuePtr(0), value.toType());
    held.clear();
    context->endDetach();
    EXPECT_EQ(context->detached(object), nullptr);
    ZVariant later(object);
    ASSERT_TRUE(context->detachVariant(later));
    EXPECT_NE(later.toType(), value.toType());
    EXPECT_EQ(context->detached(object), nullptr);
    context->setDocumentState(object);
    EXPECT_EQ(context->documentState(), object);
    context->release();
    later.clear();
    objects.clear();
    EXPECT_EQ(object->refcount(), 1);

    // Nobody else holds it: it stays.
    ZType* alone = object;
    ASSERT_TRUE(ZDetachContext::detachValue(alone));
    EXPECT_EQ(alone, object);
    EXPECT_EQ(object->refcount(), 1);
    object->release();
}

TEST_F(ZDetachContextTest, KeysOfMapsAndValuesOfSetsAreDetachedToo) {
    ZObject* object = zmake<ZObject>();
    const ZVariant held(object);
    ZVKeyMap map(ztype<ZObject>(), ztype<ZVariant>()), copy;
    ZVHashSet set(ztype<ZVariant>());
    ASSERT_TRUE(map.set(held, held) && set.add(held));
    copy = map;
    ZDetachContext* context = zmake<ZDetachContext>();
    context->startDetach();
    ASSERT_TRUE(context->detachKeyMap(copy) && context->detachHashSet(set));
    const ZVariant made = copy.key(0);
    EXPECT_NE(made.toType(), object);
    EXPECT_EQ(copy.variant(made).toType(), made.toType());
    EXPECT_EQ(set.entry(0).toType(), made.toType());
    EXPECT_TRUE(copy.haskey(made) && !copy.haskey(held) && map.haskey(held) && set.contains(made));
    context->release();
    object->release();
}

/// An object that holds another under "next".
ZObject* holding(ZObject* next) {
    ZObject* made = zmake<ZObject>();
    if (next) { EXPECT_TRUE(made->setDynamicProperty("next", ZVariant(next), true)); }
    return made;
}
ZObject* nextOf(ZObject* object) { return object->getProperty("next").toObject(); }

TEST_F(ZDetachContextTest, ObjectsThatHoldEachOtherStayACircle) {
    ZObject *first = holding(nullptr), *second = holding(first);
    ASSERT_TRUE(first->setDynamicProperty("next", ZVariant(second), true));
    ZVariant value(first);
    ASSERT_TRUE(ZDetachContext::detachValue(value));
    ZObject* copy = value.toObject();
    ASSERT_TRUE(copy && nextOf(copy));
    EXPECT_NE(copy, first);
    EXPECT_NE(nextOf(copy), second);
    EXPECT_EQ(nextOf(nextOf(copy)), copy);
    EXPECT_EQ(nextOf(nextOf(first)), first);
    // Nor are those with a flag that says so.
    ASSERT_TRUE(first->addProperty(ZProperty("next", ZVariant(second), ZProperty::NoDetach)));
    ZVariant other(first);
    ASSERT_TRUE(ZDetachContext::detachValue(other));
    EXPECT_EQ(nextOf(other.toObject()), second);
    other.clear();
    // Circles don't end by themselves.
    for (ZObject* object : {copy, first}) EXPECT_TRUE(object->setDynamicProperty("next", ZVariant(), true));
    value.clear();
    second->release();
    first->release();
}

TEST_F(ZDetachContextTest, WhatIsTooDeepIsRefused) {
    for (int depth : {ZDetachContext::deepest / 4, ZDetachContext::deepest * 2}) {
        ZObject* head = nullptr;
        std::vector<ZObject*> all;
        for (int i = 0; i < depth; ++i) all.push_back(head = holding(head));
        ZVariant value(head);
        const bool done = ZDetachContext::detachValue(value);
        EXPECT_EQ(done, depth < ZDetachContext::deepest);
        EXPECT_EQ(value.toObject() == head, !done);
        value.clear();
        while (!all.empty()) {
            all.back()->release();
            all.pop_back();
        }
    }
}

TEST_F(ZDetachContextTest, EachFailingAllocationLeavesWhatWasHeld) {
    ZObject *inner = holding(nullptr), *outer = holding(inner);
    const ZVariant shared(outer);
    auto detach = [&] {
        ZVariant value(shared);
        const bool done = ZDetachContext::detachValue(value);
        ZObject* held = value.toObject();
        EXPECT_TRUE(held && (held == outer) == !done);
        if (held) { EXPECT_EQ(nextOf(held) == inner, !done); }
        value.clear();
        toolkit::epochDrain();
        return done;
    };
    EXPECT_TRUE(detach()) << "fills what is filled once";
    failEachAllocation([&](AllocProbe& probe) {
        const bool done = detach();
        EXPECT_TRUE(done || probe.failed());
        zrecover();
    });
    EXPECT_EQ(nextOf(outer), inner);
    inner->release();
    outer->release();
}

} // namespace
