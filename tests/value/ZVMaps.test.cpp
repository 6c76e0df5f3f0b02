#include "tests/value/madeTypes.h"

#include "object/ztype.h"
#include "text/ZBlendPos.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"

#include <gtest/gtest.h>
#include <limits>

// What each of the maps and the set does of its own.

namespace {

class ZVMaps : public ValueTest {
protected:
    static ZVSelectMap named(std::initializer_list<std::pair<const char*, int>> items) {
        ZVSelectMap map((*types)[ZMetaType::Int]);
        for (auto [key, number] : items) EXPECT_TRUE(map.set(key, integer(number)));
        return map;
    }
    static std::string told(const ZVSelectMap& map) {
        std::string text;
        for (uint i = 0; i < map.count(); ++i)
            text += std::string(map.key(int(i)).string()) + "=" + std::to_string(map.entry(int(i)).toInt()) + " ";
        return text;
    }
};

TEST_F(ZVMaps, NamedValuesKeepTheirPlaces) {
    ZVSelectMap map = named({{"b", 1}, {"a", 2}, {"c", 3}});
    ASSERT_TRUE(map.set("a", integer(5)));
    EXPECT_EQ(told(map), "b=1 a=5 c=3 ");
    ASSERT_TRUE(map.rename("a", "d"));
    EXPECT_FALSE(map.rename("b", "c"));
    EXPECT_FALSE(map.rename("x", "y"));
    EXPECT_EQ(told(map), "b=1 d=5 c=3 ");
    EXPECT_EQ(map.findKey("d"), 1);
    EXPECT_FALSE(map.haskey("a"));
    ASSERT_TRUE(map.copy("c", "a"));
    EXPECT_EQ(told(map), "b=1 d=5 c=3 a=3 ");
    ASSERT_TRUE(map.moveToIndex("a", 0));
    EXPECT_EQ(map.findKey("a"), 0);
    ASSERT_TRUE(map.moveBefore("c", "a"));
    ASSERT_TRUE(map.moveAfter("a", "d"));
    EXPECT_EQ(told(map), "c=3 b=1 d=5 a=3 ");
    EXPECT_FALSE(map.moveAfter("a", "x"));
    ASSERT_TRUE(map.sort());
    EXPECT_EQ(told(map), "a=3 b=1 c=3 d=5 ");
    ASSERT_TRUE(map.sortByValue(false));
    EXPECT_EQ(told(map), "d=5 a=3 c=3 b=1 ");
    const int order[] = {3, 9, 0};
    EXPECT_EQ(told(map.rearrange(ZArrayT<int>(order, 3))), "b=1 d=5 ");
    const ZSelector keys[] = {"c", "x", "a"};
    EXPECT_EQ(told(map.rearrange(ZArrayT<ZSelector>(keys, 3))), "c=3 a=3 ");
    EXPECT_EQ(map.getKey(integer(3)), ZSelector("a"));
    ASSERT_TRUE(map.removeKeys(ZArrayT<ZSelector>(keys, 3)));
    EXPECT_EQ(told(map), "d=5 b=1 ");
    EXPECT_FALSE(map.remove("c"));
    EXPECT_TRUE(map.set(ZSelector(), integer(8)));
    EXPECT_EQ(map.variant(ZSelector()), integer(8));
}

TEST_F(ZVMaps, ManyNamedValues) {
    ZVSelectMap map((*types)[ZMetaType::Int]);
    for (int i = 0; i < 3000; ++i) ASSERT_TRUE(map.set(ZSelector(("n" + std::to_string(i)).c_str()), integer(i)));
    for (int i = 0; i < 3000; i += 2) ASSERT_TRUE(map.remove(ZSelector(("n" + std::to_string(i)).c_str())));
    ASSERT_EQ(map.count(), 1500u);
    for (int i = 0; i < 3000; ++i)
        EXPECT_EQ(map.variant(ZSelector(("n" + std::to_string(i)).c_str())).isNull(), i % 2 == 0);
    EXPECT_TRUE(map.checkTree("named values"));
    // Values of the map itself, which moves.
    for (int i = 0; i < 200; ++i)
        ASSERT_TRUE(map.setItem(ZSelector(("m" + std::to_string(i)).c_str()), std::as_const(map).valuePtr(i)));
    EXPECT_EQ(map.variant("m199"), map.entry(199));
}

TEST_F(ZVMaps, NamedValuesCompareAndBlend) {
    const ZVSelectMap a = named({{"x", 0}, {"y", 10}}), b = named({{"y", 20}, {"z", 6}});
    EXPECT_EQ(named({{"x", 0}, {"y", 10}}), named({{"y", 10}, {"x", 0}}));
    EXPECT_TRUE(a.contains(named({{"y", 10}})));
    EXPECT_FALSE(a.contains(b));
    EXPECT_FALSE(named({{"x", 0}}).matchValue(named({{"y", 0}}), 1));
    ZVSelectMap made;
    ASSERT_TRUE(made.blendFrom(&a, &b, ZBlendPos(0.5)));
    EXPECT_EQ(told(made), "x=0 y=15 z=6 ");
    ASSERT_TRUE(made.blendFrom(nullptr, &b, ZBlendPos(0.1)));
    EXPECT_EQ(told(made), told(b));
    ZVSelectMap both(a);
    ASSERT_TRUE(both.append(b));
    EXPECT_EQ(told(both), "x=0 y=20 z=6 ");
    ASSERT_TRUE(both.append(both));
    EXPECT_EQ(told(both), "x=0 y=20 z=6 ");
}

TEST_F(ZVMaps, KeysAreFoundExactly) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    ZVKeyMap map((*types)[ZMetaType::Real], (*types)[ZMetaType::Int]);
    const double keys[] = {0.0, 1.0, 1.0 + 1e-12, nan, 1e300, -1e300};
    int number = 0;
    for (double key : keys) ASSERT_TRUE(map.set(ZVMaps::number(key), integer(number++)));
    ASSERT_TRUE(map.set(ZVMaps::number(-0.0), integer(70)));
    ASSERT_TRUE(map.set(ZVMaps::number(-nan), integer(73)));
    EXPECT_EQ(map.count(), 6u);
    const int wanted[] = {70, 1, 2, 73, 4, 5};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(map.variant(ZVMaps::number(keys[i])), integer(wanted[i])) << keys[i];
    EXPECT_EQ(map.variant(text("1")), integer(1));
    EXPECT_TRUE(map.variant(text("one")).isNull());
    ASSERT_TRUE(map.sort());
    EXPECT_EQ(map.key(0), ZVMaps::number(-1e300));
    ASSERT_TRUE(map.rename(ZVMaps::number(1e300), ZVMaps::number(8)));
    EXPECT_EQ(map.variant(ZVMaps::number(8)), integer(4));
    EXPECT_EQ(map.keys().count(), 6u);
    EXPECT_TRUE(map.hasKeys(map.keys()));
}

TEST_F(ZVMaps, KeysMayBeThereTwice) {
    ZVKeyMap map((*types)[ZMetaType::Int], (*types)[ZMetaType::Int]);
    for (int i = 0; i < 40; ++i) ASSERT_TRUE(map.add(integer(i), integer(i)));
    EXPECT_TRUE(map.haskey(integer(7)));
    ASSERT_TRUE(map.add(integer(7), integer(77)));
    ASSERT_TRUE(map.add(integer(99), integer(1), false));
    EXPECT_EQ(map.count(), 42u);
    EXPECT_EQ(map.entry(map.findFirstKey(integer(7))), integer(77));
    EXPECT_FALSE(map.haskey(integer(99)));
    ASSERT_TRUE(map.moveToIndex(integer(0), 3));
    EXPECT_TRUE(map.haskey(integer(99)));
    ASSERT_TRUE(map.remove(integer(7)) && map.remove(integer(7)));
    EXPECT_FALSE(map.remove(integer(7)));
}

TEST_F(ZVMaps, ItemsWithoutALinkAreFoundAfterTheNextIndex) {
    for (int before : {0, 1, 5, 30})
        for (bool asked : {false, true}) {
            ZVKeyMap map((*types)[ZMetaType::Int], (*types)[ZMetaType::Int]);
            for (int i = 0; i < before; ++i) ASSERT_TRUE(map.add(integer(i), integer(i)));
            if (asked) { EXPECT_EQ(map.findKey(integer(0)), before ? 0 : -1); }
            ASSERT_TRUE(map.add(integer(99), integer(1), false));
            // An index that isn't there yet is built with it.
            EXPECT_EQ(map.haskey(integer(99)), !asked || !before) << before;
            ASSERT_TRUE(map.rebuildTree());
            EXPECT_EQ(map.findKey(integer(99)), before);
        }
}

TEST_F(ZVMaps, KeysInContainersOfTheirOwn) {
    ZVKeyMap map((*types)[ZMetaType::String], types->plain[ZMetaType::Int]);
    for (int i = 0; i < 6; ++i) ASSERT_TRUE(map.set(text(("k" + std::to_string(i)).c_str()), integer(i % 4)));
    EXPECT_EQ(map.keys().toString(), ZString("k0 k1 k2 k3 k4 k5"));
    EXPECT_TRUE(map.keySet().matches(ZVHashSet(map.keys())));
    const int places[] = {5, 9, 1, -1};
    EXPECT_EQ(map.extractKeys(ZArrayT<int>(places, 4)).toString(), ZString("k5 k1"));
    EXPECT_EQ(map.rearrange(map.extractKeys(ZArrayT<int>(places, 4))).keys().toString(), ZString("k5 k1"));
    EXPECT_EQ(map.getKey(integer(1)), text("k1"));
    EXPECT_EQ(map.getKey(integer(1), 2), text("k5"));
    EXPECT_TRUE(map.contains(text("k5"), integer(1)));
    EXPECT_FALSE(map.contains(text("k5"), integer(5)) || map.contains(text("k6"), integer(1)));
    ZVKeyMap half((*types)[ZMetaType::String], nullptr);
    ASSERT_TRUE(half.append(map));
    EXPECT_EQ(half, map);

    ZVSelectMap named((ztype<ZVariant>()));
    for (const char* key : {"a", "b", "c"}) ASSERT_TRUE(named.set(key, *key == 'b' ? ZVariant(1) : ZVariant()));
    EXPECT_EQ(named.collectNullKeys().count(), 2u);
    EXPECT_TRUE(named.contains("b", ZVariant(1)) && !named.contains("b", ZVariant(2)));
    ASSERT_TRUE(named.removeNull());
    EXPECT_FALSE(named.removeNull());
    EXPECT_EQ(named.keys().count(), 1u);
}

TEST_F(ZVMaps, KeyedValuesBlend) {
    ZVKeyMap a((*types)[ZMetaType::String], (*types)[ZMetaType::Int]), b(a), between;
    ASSERT_TRUE(a.set(text("x"), integer(2)) && a.set(text("y"), integer(4)));
    ASSERT_TRUE(b.set(text("y"), integer(8)) && b.set(text("z"), integer(6)));
    ASSERT_TRUE(between.blendFrom(&a, &b, ZBlendPos(0.5)));
    EXPECT_EQ(between.keys().toString(), ZString("x y z"));
    EXPECT_EQ(between.values().toString(), ZString("2 6 6"));
    ZVKeyMap other((*types)[ZMetaType::Int], (*types)[ZMetaType::Int]);
    for (double pos : {0.4, 0.5}) {
        ASSERT_TRUE(between.blendFrom(&a, &other, ZBlendPos(pos)));
        EXPECT_EQ(between, pos < 0.5 ? a : other);
    }
}

TEST_F(ZVMaps, MultisetsCount) {
    ZVHashSet set((*types)[ZMetaType::Int]);
    ASSERT_TRUE(set.add(integer(1)) && set.add(integer(1)));
    EXPECT_EQ(set.usage(integer(1)), 1u);
    EXPECT_FALSE(set.addNew(integer(1)));
    set.setMultiSet(true);
    ASSERT_TRUE(set.add(integer(1)) && set.add(integer(1)) && set.add(integer(2)));
    EXPECT_EQ(set.usage(integer(1)), 3u);
    ZVHashSet copy(set);
    ASSERT_TRUE(copy.remove(integer(1), false));
    EXPECT_EQ(copy.usage(integer(1)), 2u);
    EXPECT_EQ(set.usage(integer(1)), 3u);
    ASSERT_TRUE(copy.replace(integer(1), integer(5)));
    EXPECT_EQ(copy.usage(integer(5)), 2u);
    EXPECT_FALSE(copy.replace(integer(5), integer(2)));
    EXPECT_EQ(copy.findValue(integer(5)), 0);
    ASSERT_TRUE(copy.remove(integer(5), true));
    EXPECT_FALSE(copy.remove(integer(5), true));
    EXPECT_EQ(copy.count(), 1u);
}

TEST_F(ZVMaps, MultisetsAddAndTakeWhatOthersCount) {
    auto make = [](std::initializer_list<int> numbers) {
        ZVHashSet set((*types)[ZMetaType::Int]);
        set.setMultiSet(true);
        for (int number : numbers) EXPECT_TRUE(set.add(integer(number)));
        return set;
    };
    auto told = [](const ZVHashSet& set) {
        std::string text;
        for (uint i = 0; i < set.count(); ++i)
            text += std::to_string(set.entry(int(i)).toInt()) + "x" + std::to_string(set.usageAt(int(i))) + " ";
        return text;
    };
    ZVHashSet set = make({1, 2, 2, 3, 3, 3});
    ASSERT_TRUE(set.add(make({2, 4, 4})));
    EXPECT_EQ(told(set), "1x1 2x3 3x3 4x2 ");
    ASSERT_TRUE(set.add(set));
    EXPECT_EQ(told(set), "1x2 2x6 3x6 4x4 ");
    ASSERT_TRUE(set.remove(make({1, 1, 1, 3, 3, 7}), false));
    EXPECT_EQ(told(set), "2x6 3x4 4x4 ");
    ZVArray list((*types)[ZMetaType::String]);
    for (const char* number : {"4", "3", "4", "4", "4", "4"}) ASSERT_TRUE(list.append(text(number)));
    ASSERT_TRUE(set.remove(list, false));
    EXPECT_EQ(told(set), "2x6 3x3 ");
    ASSERT_TRUE(set.add(list) && set.contains(list));
    EXPECT_EQ(told(set), "2x6 3x4 4x5 ");
    ASSERT_TRUE(list.append(text("none")));
    EXPECT_FALSE(set.add(list) || set.contains(list));
    ASSERT_TRUE(set.remove(list, true));
    EXPECT_EQ(told(set), "2x6 ");
    // A plain set forgets how often.
    ZVHashSet plain((*types)[ZMetaType::Int]);
    ASSERT_TRUE(plain.add(make({5, 5})) && plain.add(named({{"a", 5}, {"b", 6}})));
    EXPECT_EQ(told(plain), "5x1 6x1 ");
    EXPECT_TRUE(plain.contains(named({{"a", 6}})));

    // Values that were changed where they stand.
    ZVHashSet several = make({7, 8, 8, 9, 10});
    for (int i : {0, 2}) *static_cast<int*>(several.valuePtr(i)) = 10;
    ASSERT_TRUE(several.changed());
    EXPECT_EQ(told(several), "10x3 8x2 ");
    EXPECT_FALSE(several.contains(integer(7)));
}

TEST_F(ZVMaps, SetsMeet) {
    auto make = [](std::initializer_list<int> numbers) {
        ZVHashSet set((*types)[ZMetaType::Int]);
        for (int number : numbers) EXPECT_TRUE(set.add(integer(number)));
        return set;
    };
    ZVHashSet a = make({1, 2, 3, 4}), b = make({4, 2, 9});
    EXPECT_TRUE(make({3, 1}).matches(make({1, 3})));
    EXPECT_EQ(make({3, 1}), make({1, 3}));
    EXPECT_TRUE(a.contains(make({4, 1})));
    EXPECT_FALSE(a.contains(b));
    ASSERT_TRUE(a.intersection(b));
    EXPECT_TRUE(a.matches(make({2, 4})));
    ASSERT_TRUE(a.add(b.array()));
    EXPECT_EQ(a.count(), 3u);
    ASSERT_TRUE(a.removeSet(make({2, 7})));
    EXPECT_TRUE(a.matches(make({4, 9})));
    EXPECT_EQ(a.pop(), integer(9));
    const int places[] = {2, 0, 5, 2};
    EXPECT_TRUE(b.extract(ZArrayT<int>(places, 4)).matches(make({4, 9})));
}

TEST_F(ZVMaps, NewNamesForASet) {
    ZVHashSet set((*types)[ZMetaType::Selector]);
    ASSERT_TRUE(set.addItem(&static_cast<const ZSelector&>(ZSelector("item1"))));
    ASSERT_TRUE(set.addItem(&static_cast<const ZSelector&>(ZSelector("item3"))));
    EXPECT_EQ(set.createSelector("item%d", false), ZSelector("item4"));
    EXPECT_EQ(set.createSelector("item%d", true), ZSelector("item4"));
    EXPECT_EQ(set.createSelector("x%03d%%", true), ZSelector("x004%"));
    EXPECT_EQ(set.createSelector("%i", false), ZSelector("5"));
    ZVHashSet fresh;
    EXPECT_EQ(fresh.createSelector("part%d", true), ZSelector("part1"));
    EXPECT_TRUE(fresh.isSelectorType() && fresh.hasSelector("part1"));
    // Formats that ask for more than the number.
    for (const char* format : {"item", "%s", "%d%d", "%n", "%*d", "%", "%ld", "%99999d", ""})
        EXPECT_TRUE(set.createSelector(format, true).isEmpty()) << format;
    EXPECT_EQ(set.count(), 4u);
}

} // namespace
