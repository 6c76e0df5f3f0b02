#include "object/ZEnum.h"

#include "object/ztype.h"
#include "tests/object/enumText.h"
#include "tests/support/CoreScope.h"
#include "text/ZString.h"
#include "value/ZVArray.h"

#include <vector>

namespace {

using EnumTest = CoreTest;

struct Item {
    const char* name;
    int value;
};
ZEnum enumOf(const char* name, const std::vector<Item>& items) {
    ZEnum made{ZSelector(name)};
    for (const Item& item : items) EXPECT_TRUE(made.add(ZSelector(item.name), item.value));
    return made;
}
TEST_F(EnumTest, ValuesCountOnBehindTheLastAdded) {
    ZEnum data("Mode", 4);
    EXPECT_TRUE(data.add("a") && data.add("b", 10) && data.add("c"));
    EXPECT_EQ(print(data), "a=0 b=10 c=11");
    ZArrayT<ZEnumItem> more;
    more.append(ZEnumItem("d", -5));
    EXPECT_TRUE(data.add(more) && data.add("e"));
    EXPECT_EQ(print(data), "a=0 b=10 c=11 d=-5 e=-4");
    EXPECT_TRUE(data.add("top", 0x7FFFFFFF) && data.add("behind"));
    EXPECT_EQ(data.value("behind"), -0x7FFFFFFF - 1);
    EXPECT_FALSE(data.add(ZSelector()));
    const ZEnumItem item("one", 40);
    ZVArray rows(ztype<ZVariant>());
    rows.append(ZVariant(ztype<ZEnumItem>(), &item));
    rows.append(ZVariant(ZSelector("two")));
    data.clear();
    EXPECT_TRUE(data.add(rows) && data.add(ZVArray(ZString("x y"))) && data.add("z"));
    EXPECT_EQ(print(data), "one=40 two=41 x=42 y=43 z=44");
    rows.append(ZVariant(3));
    EXPECT_FALSE(data.add(rows)) << "a number is no name";
    data.clear();
    EXPECT_TRUE(data.add("first"));
    EXPECT_EQ(print(data), "first=0");
    EXPECT_EQ(text(data.getSelector()), "Mode");
}

TEST_F(EnumTest, NamesThatShareAValueAndNamesThatMove) {
    ZEnum data = enumOf("Mode", {{"Low", 1}, {"High", 2}, {"Top", 2}, {"LOW", 3}});
    EXPECT_EQ(print(data), "Low=1 Top=2 LOW=3");
    EXPECT_EQ(data.value("High"), 2);
    EXPECT_EQ(data.valueLC("low"), 3) << "the last of those that are the same in lower case";

    ZEnum copy(data);
    EXPECT_TRUE(copy == data);
    EXPECT_TRUE(copy.remove("Top"));
    EXPECT_EQ(print(copy), "Low=1 High=2 LOW=3");
    EXPECT_TRUE(copy.remove("LOW"));
    EXPECT_EQ(copy.valueLC("low"), 1) << "the name that is left has its lower-case form back";
    EXPECT_FALSE(copy.remove("LOW"));
    EXPECT_TRUE(copy.add("High", 7)) << "moves";
    EXPECT_EQ(print(copy), "Low=1 High=7");
    EXPECT_TRUE(copy.add(data));
    EXPECT_EQ(print(copy), "Low=1 Top=2 LOW=3") << "what a value is called comes along";
    EXPECT_TRUE(copy.remove(2));
    EXPECT_FALSE(copy.value("High", nullptr) || copy.value("Top", nullptr));
    EXPECT_FALSE(copy.remove(2));

    EXPECT_EQ(print(data), "Low=1 Top=2 LOW=3") << "the copies wrote their own tables";
    EXPECT_TRUE(data.add(data));
    EXPECT_EQ(print(data), "Low=1 Top=2 LOW=3");
}

TEST_F(EnumTest, WhatHasNoNameIsANumber) {
    const ZEnum data = enumOf("Mode", {{"Off", 0}, {"On", 1}});
    struct {
        int value;
        const char *name, *lower;
    } rows[] = {{1, "On", "on"}, {99, "0x63", "0x63"}, {255, "0xFF", "0xff"}, {-2, "0xFFFFFFFE", "0xfffffffe"}};
    for (const auto& row : rows) {
        EXPECT_EQ(text(data.name(row.value)), row.name);
        EXPECT_EQ(text(data.nameLC(row.value)), row.lower);
        EXPECT_EQ(data.value(data.name(row.value)), row.value);
        EXPECT_EQ(data.valueLC(data.nameLC(row.value)), row.value);
    }
    struct {
        const char* name;
        int value;
    } texts[] = {{"12", 12}, {"-3", -3}, {"nothing", 0}, {"0x100000000", 0}, {"4294967295", 0}, {"12x", 0}};
    for (const auto& row : texts) EXPECT_EQ(data.value(row.name), row.value) << row.name;
    int out = 42;
    EXPECT_FALSE(data.value("12", &out) || data.value(ZSelector(), &out) || data.valueLC("On", &out));
    EXPECT_EQ(out, 42);
    EXPECT_TRUE(data.valueLC("on", &out));
    EXPECT_EQ(out, 1);
}

TEST_F(EnumTest, StepsGoRound) {
    const ZEnum data = enumOf("Mode", {{"a", 5}, {"b", 1}, {"c", 9}});
    EXPECT_EQ(data.nextValue(5), 1);
    EXPECT_EQ(data.nextValue(9), 5);
    EXPECT_EQ(data.prevValue(5), 9);
    EXPECT_EQ(data.nextValue(77), 5);
    EXPECT_EQ(data.prevValue(77), 9);
    EXPECT_EQ(text(data.nextName("c")), "a");
    EXPECT_EQ(text(data.prevName("a")), "c");
    EXPECT_EQ(text(data.nextName("none")), "a");
    EXPECT_EQ(ZEnum().nextValue(7), 7);
    EXPECT_TRUE(ZEnum().prevName("a").isEmpty());
    EXPECT_TRUE(data.nameAtIndex(3).isEmpty() && data.nameAtIndex(-1).isEmpty());
    EXPECT_EQ(join(data.names()), "a b c");
    EXPECT_EQ(data.values()[2], 9);
    EXPECT_EQ(text(data.items()[1].lowerName), "b");
}

TEST_F(EnumTest, FlagsAreFoundByPartialOverlap) {
    struct {
        std::vector<Item> items;
        bool flags;
    } rows[] = {
        {{}, true},
        {{{"a", 1}, {"b", 2}, {"c", 4}}, true},
        {{{"a", 1}, {"b", 3}}, false},
        {{{"b", 3}, {"a", 1}}, true},
        {{{"none", 0}, {"a", 1}, {"b", 2}, {"both", 3}}, true},
        {{{"top", -0x7FFFFFFF - 1}, {"a", 1}, {"all", -1}}, false},
        {{{"all", -1}, {"a", 8}}, true},
    };
    for (auto& row : rows) {
        ZEnum data = enumOf("Flags", row.items);
        EXPECT_EQ(data.isBitFlags(), row.flags) << print(data);
        data.resetBitFlags();
        EXPECT_EQ(data.isBitFlags(), row.flags) << print(data);
    }
    ZEnum data = enumOf("Flags", {{"a", 1}, {"b", 3}});
    EXPECT_TRUE(data.remove("b"));
    EXPECT_TRUE(data.isBitFlags());
    EXPECT_TRUE(data.add("a", 6) && data.add("c", 1));
    EXPECT_TRUE(data.isBitFlags()) << "the bit that a had counts no more";
    // Where a name moves away from a value that keeps another one.
    data = enumOf("Flags", {{"a", 1}, {"also", 1}});
    EXPECT_TRUE(data.add("a", 3));
    EXPECT_FALSE(data.isBitFlags());
    EXPECT_TRUE(data.add("a", 2));
    EXPECT_TRUE(data.isBitFlags());
    EXPECT_TRUE(data.add("also", 3));
    EXPECT_EQ(print(data), "a=2 also=3");
    EXPECT_FALSE(data.isBitFlags());
}

TEST_F(EnumTest, ScansAndPrintsFlags) {
    const ZEnum data = enumOf("Style", {{"None", 0}, {"Bold", 1}, {"Italic", 2}, {"Overline", 4}, {"All", 7}});
    EXPECT_EQ(text(data.output(5, false)), "Bold Overline");
    EXPECT_EQ(data.output(5, false).type(), ZSelector::Names);
    EXPECT_EQ(text(data.output(2, true)), "italic");
    EXPECT_TRUE(data.output(0, false).isEmpty() && data.output(8, false).isEmpty());
    EXPECT_EQ(data.scan("Overline Bold", false), 5);
    EXPECT_EQ(data.scan("overline bold", true), 5);
    EXPECT_EQ(data.scan("overline bold", false), 0);
    EXPECT_EQ(data.scan("Bold gone 0x10", false), 17);
    EXPECT_EQ(data.scan("All", false), 7);
    EXPECT_EQ(data.scan(ZSelector(), false), 0);
    for (int flags = 0; flags < 8; ++flags)
        for (bool lower : {false, true}) EXPECT_EQ(data.scan(data.output(flags, lower), lower), flags);
    ZEnum all{ZSelector("All")};
    for (int bit = 0; bit < 32; ++bit)
        EXPECT_TRUE(all.add(ZSelector("bit").join(ZSelector::number(bit)), int(1u << bit)));
    EXPECT_EQ(all.scan(all.output(-1, false), false), -1);
}

TEST_F(EnumTest, ExpressionsGoFromLeftToRight) {
    const ZEnum data = enumOf("Style", {{"a", 1}, {"b", 2}, {"c", 4}, {"d-e", 64}, {"two words", 128}, {"x.y", 256}});
    struct {
        const char* expression;
        int value;
    } rows[] = {
        {"a", 1},       {"a|b", 3},         {" a | b|c ", 7},
        {"~a", -2},     {"~~a", 1},         {"c + a", 5},
        {"c - a", 5},   {"c & a", 3},       {"c | a & b + a", 4},
        {"a b", 2},     {"a | | c", 5},     {"|a", 1},
        {"a|", 1},      {"~a | b", -2},     {"Style::b | ns.c", 6},
        {"d-e", 64},    {"two words", 128}, {"x.y", 256},
        {"a|0x10", 17}, {"a|gone", 1},      {"gone", 0},
        {"", 0},        {"~", 0},           {"::", 0},
        {"-5", 5},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(data.resolve(ZString(row.expression)), row.value) << row.expression;
        if (!*row.expression) continue;
        EXPECT_EQ(data.resolve(ZSelector(row.expression)), row.value) << row.expression;
    }
    EXPECT_EQ(data.resolve(ZString(u"a | c")), 5);
    const uint before = ZSelector::selectorCount();
    EXPECT_EQ(data.resolve(ZString("neverSeen|some::thing")), 0);
    EXPECT_EQ(ZSelector::selectorCount(), before) << "texts from outside leave no names behind";
}

TEST_F(EnumTest, EachFailingAllocationLeavesAWholeTable) {
    const ZEnum shared = enumOf("Mode", {{"Low", 1}, {"High", 2}, {"Top", 2}});
    const ZSelector added("Added"), high("High");
    added.lowerCase();
    failEachAllocation([&](AllocProbe& probe) {
        ZEnum data(shared);
        const bool done = data.add(added, 9);
        EXPECT_NE(done, probe.failed());
        EXPECT_EQ(print(data), done ? "Low=1 Top=2 Added=9" : "Low=1 Top=2");
        EXPECT_EQ(data.value(added, nullptr), done);
        EXPECT_EQ(data.valueLC("added", nullptr), done);
    });
    failEachAllocation([&](AllocProbe& probe) {
        ZEnum data(shared);
        const bool done = data.remove(2);
        EXPECT_NE(done, probe.failed());
        EXPECT_EQ(print(data), done ? "Low=1" : "Low=1 Top=2");
        EXPECT_EQ(data.value(high, nullptr), !done);
    });
    EXPECT_EQ(print(shared), "Low=1 Top=2");
}

} // namespace
