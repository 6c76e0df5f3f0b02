#include "value/ZTypedPtr.h"

#include "core/ZArrayT.h"
#include "tests/value/madeTypes.h"

#include <gtest/gtest.h>

namespace {
class TypedPtr : public ValueTest {};
} // namespace

TEST_F(TypedPtr, PointsIntoVariants) {
    ZVariant number = integer(5);
    ZTypedPtr place(number);
    EXPECT_EQ(place.type, number.type());
    EXPECT_EQ(place.instance, number.getPtr());
    *static_cast<int*>(place.instance) = 6;
    EXPECT_EQ(number.toInt(), 6);
    EXPECT_EQ(ZVariant(place).toInt(), 6);
    EXPECT_TRUE(ZTypedPtr(ZVariant()).isNull());
    EXPECT_TRUE(ZTypedPtr(static_cast<ZVariant*>(nullptr)).isNull());
    EXPECT_TRUE(ZTypedPtr(static_cast<ZTypedPtr*>(nullptr)).isNull());
    EXPECT_TRUE(ZTypedPtr(static_cast<ZType*>(nullptr)).isNull());
}

TEST_F(TypedPtr, ComparesByTypeThenByValue) {
    int one = 1, two = 2;
    double real = 1;
    ZMetaType *integers = (*types)[ZMetaType::Int], *reals = (*types)[ZMetaType::Real];
    EXPECT_EQ(ZTypedPtr(integers, &one).compare(ZTypedPtr(integers, &two)), -1);
    EXPECT_EQ(ZTypedPtr(integers, &two).compare(ZTypedPtr(integers, &one)), 1);
    int same = 1;
    EXPECT_EQ(ZTypedPtr(integers, &one).compare(ZTypedPtr(integers, &same)), 0);
    EXPECT_EQ(ZTypedPtr(integers, &one).compare(ZTypedPtr(reals, &real)), integers < reals ? -1 : 1);
    EXPECT_EQ(ZTypedPtr().compare(ZTypedPtr()), 0);
}

TEST_F(TypedPtr, WithoutATypeEverythingAnswersNothing) {
    const ZTypedPtr none;
    ZArrayT<ZSelector> names;
    ZTypedPtr found;
    EXPECT_EQ(none.method("foo", {}), nullptr);
    EXPECT_EQ(none.multimethod("foo", {}), nullptr);
    EXPECT_TRUE(none.invoke("foo", ZArrayT<ZVariant>()).isNull());
    EXPECT_FALSE(none.callV("foo"));
    EXPECT_TRUE(none.getProperty("foo").isNull());
    EXPECT_FALSE(none.setProperty("foo", integer(1)));
    EXPECT_FALSE(none.hasProperty(&found, "foo"));
    EXPECT_TRUE(found.isNull());
    EXPECT_FALSE(none.propertyNames(names));
    EXPECT_EQ(none.propertyCount(), 0u);
    EXPECT_EQ(none.getPropertyKeyIndex("foo", integer(1)), -1);
    EXPECT_EQ(none.getter(nullptr, ZSelector("foo"), false, true, false), nullptr);
    EXPECT_EQ(none.itemCount(), 0u);
    EXPECT_TRUE(none.itemByIndex(0).isNull());
    EXPECT_FALSE(none.isContainer());
    EXPECT_FALSE(none.clearItems());
    int number = 1;
    const ZTypedPtr plain((*types)[ZMetaType::Int], &number);
    EXPECT_EQ(plain.itemCount(), 0u);
    EXPECT_FALSE(plain.appendItem(integer(1)));
    EXPECT_EQ(plain.indexOfValue(integer(1)), -1);
}
