#include "core/ZSelectorMap.h"

#include "core/ZSelectString.h"
#include "core/ZSelectorPair.h"
#include "core/ZSelectorSpace.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"

#include <gtest/gtest.h>
#include <string>

TEST(SelectorMap, KeysKeepTheirPositions) {
    SelectorScope scope;
    ZSelectorMap map;
    ZSelector a("a"), b("b"), c("c"), none;
    EXPECT_TRUE(map.isEmpty());
    EXPECT_TRUE(map.get(a).isEmpty());
    EXPECT_TRUE(map.set(a, b));
    EXPECT_TRUE(map.set(b, c));
    EXPECT_TRUE(map.set(a, c));
    EXPECT_FALSE(map.set(none, c));
    EXPECT_EQ(map.count(), 2u);
    EXPECT_EQ(map.key(0), a);
    EXPECT_EQ(map.get(0), c);
    EXPECT_EQ(map.get(b), c);
    EXPECT_TRUE(map.contains(a));
    EXPECT_FALSE(map.contains(c));
    EXPECT_TRUE(map.key(2).isEmpty());
    EXPECT_TRUE(map.get(-1).isEmpty());
    ZSelectorMap copy(map), other;
    EXPECT_TRUE(copy.set(c, a));
    EXPECT_EQ(map.count(), 2u);
    EXPECT_NE(map.compare(copy), 0);
    EXPECT_EQ(map.compare(copy), -copy.compare(map));
    EXPECT_TRUE(other.set(c, a));
    EXPECT_TRUE(other.append(map));
    EXPECT_EQ(other.key(0), c);
    EXPECT_EQ(other, copy); // whatever the order
    EXPECT_EQ(other.hashKey(), copy.hashKey());
    EXPECT_NE(other.hashKey(), map.hashKey());
    EXPECT_LT(ZSelectorMap().compare(map), 0);
    map.clear();
    EXPECT_EQ(map, ZSelectorMap());
}

TEST(SelectorMap, ManyCountedKeys) {
    SelectorScope scope;
    ZSelectorSpace::space().setPermanentLimit(0);
    {
        ZSelectorMap map;
        for (int i = 0; i < 5000; ++i)
            ASSERT_TRUE(map.set(ZSelector(("k" + std::to_string(i)).c_str()), ZSelector::number(i)));
        ZSelectorMap copy(map);
        ASSERT_TRUE(copy.set(ZSelector("k17"), ZSelector("new")));
        for (int i = 0; i < 5000; ++i) {
            int value = -1;
            ASSERT_TRUE(map.get(ZSelector(("k" + std::to_string(i)).c_str())).toInt(value));
            ASSERT_EQ(value, i);
        }
        EXPECT_EQ(map.key(17).used(), 3); // both maps, and the answer
    }
    EXPECT_EQ(ZSelector::selectorCount(), 0u);
}

TEST(SelectorMap, EachAllocationMayFail) {
    SelectorScope scope;
    ZSelector keys[6], value("value");
    for (int i = 0; i < 6; ++i) keys[i] = ZSelector::number(i);
    failEachAllocation([&](AllocProbe&) {
        ZSelectorMap map;
        uint set = 0;
        for (auto& key : keys) set += map.set(key, value);
        EXPECT_EQ(map.count(), set);
        ZSelectorMap copy(map);
        EXPECT_TRUE(copy.set(keys[0], keys[1]) || copy.compare(map) == 0);
        EXPECT_EQ(map.count(), set);
    });
}

TEST(SelectorPairs, FromTwoWords) {
    SelectorScope scope;
    ZSelectorPair pair{ZString("first second")};
    EXPECT_EQ(pair.name, ZSelector("first"));
    EXPECT_EQ(pair.selector, ZSelector("second"));
    EXPECT_EQ(pair.hashKey(), pair.name.key() ^ pair.selector.key());
    for (const char* text : {"", "one", "one two three"}) {
        EXPECT_TRUE(ZSelectorPair(ZString(text)).isEmpty()) << text;
        EXPECT_TRUE(ZSelectString(ZString(text)).isEmpty()) << text;
    }
    ZSelectString narrow{ZString("key  text")}, wide(ZSelector("key"), ZString(u"text"));
    EXPECT_EQ(narrow, wide);
    EXPECT_EQ(narrow.hashKey(), wide.hashKey());
    EXPECT_TRUE(wide.toString() == "key text");
    EXPECT_NE(narrow.compare(ZSelectString(ZSelector("key"), ZString("texts"))), 0);
    ZSelectorPair other(pair.selector, pair.name);
    EXPECT_EQ(pair.compare(other), -other.compare(pair));
}
