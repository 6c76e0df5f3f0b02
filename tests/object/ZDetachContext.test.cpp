#include "object/ZDetachContext.h"

#include "object/ZMetaType.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "value/ZVArray.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>

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

} // namespace
