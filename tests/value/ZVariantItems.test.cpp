#include "object/ZMetaType.h"
#include "tests/support/CoreScope.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>

namespace {

class VariantItems : public CoreTest {
protected:
    template <class T> static ZVariant held(const T& container) { return ZVariant(ztype<T>(), &container); }
};

} // namespace

TEST_F(VariantItems, OfArrays) {
    ZVArray numbers(ztype<int>());
    ZVariant array = held(numbers), shared(array);
    ASSERT_TRUE(array.isContainer());
    for (int number : {10, 20, 30}) EXPECT_TRUE(array.appendItem(ZVariant(number)));
    EXPECT_EQ(array.itemCount(), 3u);
    EXPECT_EQ(shared.itemCount(), 0u);
    EXPECT_EQ(array.itemByIndex(1).toInt(), 20);
    EXPECT_TRUE(array.itemByIndex(3).isNull());
    EXPECT_TRUE(array.itemByIndex(-1).isNull());
    EXPECT_TRUE(array.setItem(0, ZVariant("11")));
    EXPECT_FALSE(array.setItem(3, ZVariant(1)));
    EXPECT_FALSE(array.setItem(0, ZVariant("no number")));
    EXPECT_TRUE(array.insertItem(ZVariant(1), ZVariant(15)));
    EXPECT_EQ(array.indexOfValue(ZVariant(30)), 3);
    EXPECT_EQ(array.keyOfValue(ZVariant(30)).toInt(), 3);
    EXPECT_TRUE(array.contains(ZVariant(15)));
    EXPECT_FALSE(array.contains(ZVariant(16)));
    EXPECT_TRUE(ZVariant(15).checkOperation("in", array));
    EXPECT_TRUE(array.hasKey(ZVariant(3)));
    EXPECT_FALSE(array.hasKey(ZVariant(4)));
    EXPECT_TRUE(array.removeItem(0));
    EXPECT_TRUE(array.removeValue(ZVariant(30)));
    EXPECT_FALSE(array.removeValue(ZVariant(30)));
    EXPECT_EQ(array.itemCount(), 2u);
    EXPECT_TRUE(array.clearItems());
    EXPECT_EQ(array.itemCount(), 0u);
}

TEST_F(VariantItems, DeepNestsAreComparedAndEnd) {
    auto nest = [](int levels) {
        ZVariant value(1);
        for (int i = 0; i < levels; ++i) {
            ZVArray array(ztype<ZVariant>());
            EXPECT_TRUE(array.append(value));
            value = held(array);
        }
        return value;
    };
    ZVariant deep = nest(60000), other = nest(60000);
    EXPECT_NE(deep.compare(other), 0);
    EXPECT_EQ(deep.compare(other), -other.compare(deep));
    EXPECT_FALSE(deep.matchValue(other, 1));
    EXPECT_EQ(deep.hashKey(), other.hashKey());
    EXPECT_EQ(nest(100).order(nest(100)), 0);
    EXPECT_TRUE(nest(100).matchValue(nest(100), 0));
}

TEST_F(VariantItems, OfMaps) {
    ZVariant map = held(ZVSelectMap(ztype<int>())), keyed = held(ZVKeyMap(ztype<int>(), ztype<ZString>()));
    EXPECT_TRUE(map.setItem(ZSelector("one"), ZVariant(1)));
    EXPECT_TRUE(map.setItem(ZSelector("two"), ZVariant(2)));
    EXPECT_FALSE(map.insertItem(ZVariant(ZSelector("two")), ZVariant(3)));
    EXPECT_FALSE(map.appendItem(ZVariant(3)));
    EXPECT_EQ(map.itemByKey(ZSelector("two")).toInt(), 2);
    EXPECT_EQ(map.itemByKey(ZVariant("two")).toInt(), 2);
    EXPECT_TRUE(map.itemByKey(ZSelector("three")).isNull());
    EXPECT_EQ(map.keyByIndex(1).toSelector(), ZSelector("two"));
    EXPECT_TRUE(map.keyByIndex(2).isNull());
    EXPECT_EQ(map.selectorOfValue(ZVariant(1)), ZSelector("one"));
    EXPECT_EQ(map.indexOfKey(ZSelector("two")), 1);
    EXPECT_TRUE(map.contains(ZVariant(ZSelector("one"))));
    EXPECT_TRUE(map.setItem(1, ZVariant(22)));
    EXPECT_EQ(map.itemByIndex(1).toInt(), 22);
    EXPECT_TRUE(map.removeItem(ZSelector("one")));
    EXPECT_EQ(map.itemCount(), 1u);

    EXPECT_TRUE(keyed.setItem(ZVariant(5), ZVariant("five")));
    EXPECT_TRUE(keyed.insertItem(ZVariant(6), ZVariant("six")));
    EXPECT_EQ(keyed.itemByKey(ZVariant(6)).toString(), "six");
    EXPECT_EQ(keyed.keyOfValue(ZVariant("five")).toInt(), 5);
    EXPECT_TRUE(keyed.removeItem(ZVariant(5)));
    EXPECT_FALSE(keyed.removeItem(ZVariant(5)));
    EXPECT_EQ(keyed.itemCount(), 1u);
}

TEST_F(VariantItems, OfSetsAndOfWhatIsNoContainer) {
    ZVariant set = held(ZVHashSet(ztype<int>()));
    EXPECT_TRUE(set.appendItem(ZVariant(4)));
    EXPECT_TRUE(set.appendItem(ZVariant(4)));
    EXPECT_EQ(set.itemCount(), 1u);
    EXPECT_FALSE(set.insertItem(ZVariant(), ZVariant(4)));
    EXPECT_TRUE(set.contains(ZVariant(4)));
    EXPECT_TRUE(set.setItem(0, ZVariant(5)));
    EXPECT_FALSE(set.contains(ZVariant(4)));
    EXPECT_TRUE(set.removeItem(ZVariant(5)));
    ZVariant number(3);
    EXPECT_FALSE(number.appendItem(ZVariant(1)));
    EXPECT_EQ(number.itemCount(), 0u);
    EXPECT_EQ(number.indexOfKey(ZVariant(1)), -1);
    EXPECT_TRUE(ZVariant("a text").contains(ZVariant("tex")));
    EXPECT_FALSE(ZVariant("a text").contains(ZVariant("x t")));
}
