#include "value/ZArgument.h"

#include "core/ZSelectString.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "text/ZRange.h"
#include "value/ZSampleTime.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVariant.h"

#include <gtest/gtest.h>

namespace {

class ZArgumentTest : public CoreTest {};

ZArrayT<ZVariant> listed(std::initializer_list<ZVariant> values) {
    ZArrayT<ZVariant> made;
    for (const ZVariant& value : values) EXPECT_TRUE(made.append(value));
    return made;
}

TEST_F(ZArgumentTest, LaysArgumentsOut) {
    const ZArgument list(listed({byte(200), 2.5, 7, ZString("text"), large(-1), 1.5f}), ZString::Char, true);
    ASSERT_EQ(list.count(), 6);
    EXPECT_EQ(list.size(), 48u);
    const int wanted[] = {0, 8, 16, 24, 32, 40};
    for (int i = 1; i <= 6; ++i) EXPECT_EQ(list.offset(i), wanted[i - 1]);
    EXPECT_EQ(list.offset(0), -1);
    EXPECT_EQ(list.offset(7), -1);
    EXPECT_EQ(list.getType(7), nullptr);
    ZArgumentList walk = list.getArgs();
    EXPECT_EQ(walk.integer(), 200);
    EXPECT_EQ(walk.real(), 2.5);
    EXPECT_EQ(walk.real(), 7.0);
    EXPECT_STREQ(static_cast<const char*>(walk.text().units), "text");
    EXPECT_EQ(walk.integer(), -1);
    EXPECT_EQ(walk.integer(), 1);
    EXPECT_EQ(walk.integer(), 0);
    EXPECT_EQ(walk.text().units, nullptr);
}

// Without owning, values of variants are the caller's; of other items there are none that last.
TEST_F(ZArgumentTest, TakesArrays) {
    const ZRange range(3, 4);
    const ZVariant value(ztype<ZRange>(), &range);
    ZVArray variants(ztype<ZVariant>(), &value, 1);
    const ZArgument borrowed(std::as_const(variants), ZString::Char, false);
    EXPECT_EQ(borrowed.getArgs().pointer(), static_cast<const ZVariant*>(std::as_const(variants).get(0))->getPtr());
    for (bool owned : {false, true}) {
        const ZArgument ranges(ZVArray(ztype<ZRange>(), &range, 1), ZString::Char, owned);
        ASSERT_EQ(ranges.count(), 1);
        EXPECT_EQ(static_cast<const ZRange*>(ranges.getArgs().pointer())->count(), 4);
        const ZArgument words(ZVArray("left right"), ZString::WChar, owned);
        ZArgumentList walk = words.getArgs(2);
        EXPECT_EQ(ZString(static_cast<const wchar*>(walk.text().units)), ZString("right"));
    }
    // What is made of a number or name is kept all the same.
    ZArgument texts(ZVArray("number real name long"), ZString::Char, false);
    EXPECT_TRUE(texts.set(1, large(1234567890123456789)) && texts.set(2, 0.123456789012345) &&
                texts.set(3, ZSelector("a name that is long enough")));
    ZArgumentList made = texts.getArgs();
    EXPECT_STREQ(static_cast<const char*>(made.text().units), "1234567890123456789");
    EXPECT_EQ(static_cast<const char*>(made.text().units)[0], '0');
    EXPECT_STREQ(static_cast<const char*>(made.text().units), "a name that is long enough");
    const byte small[] = {1, 2, 3};
    ZArgument list(ZVArray(ztype<byte>(), small, 3), ZString::Char, false);
    EXPECT_EQ(list.size(), 16u);
    EXPECT_TRUE(list.set(ZVArray("7 8 9 10")));
    EXPECT_EQ(list.getArgs(3).integer(), 9);
    EXPECT_FALSE(list.set(ZVArray("x")));
}

TEST_F(ZArgumentTest, ConvertsToItsTypes) {
    ZArgument list;
    for (const char* name : {"void", "byte", "double", "ZString", "ZSelector"})
        ASSERT_TRUE(list.addType(ZSelector(name))) << name;
    EXPECT_FALSE(list.addType(ZSelector("no such type")));
    EXPECT_FALSE(list.set(1, 5));
    ASSERT_TRUE(list.reset());
    EXPECT_TRUE(list.set(1, ZString("258")));
    EXPECT_TRUE(list.set(2, ZVariant("2.25")));
    EXPECT_TRUE(list.set(3, 17));
    EXPECT_TRUE(list.set(4, ZVariant(2.5)));
    EXPECT_FALSE(list.set(1, ZString("many")));
    EXPECT_FALSE(list.set(5, 1));
    EXPECT_FALSE(list.set(0, 1));
    ZArgumentList walk = list.getArgs();
    EXPECT_EQ(walk.integer(), 2);
    EXPECT_EQ(walk.real(), 2.25);
    EXPECT_STREQ(static_cast<const char*>(walk.text().units), "17");
    EXPECT_EQ(walk.real(), 2.5);
}

TEST_F(ZArgumentTest, FormatsValues) {
    struct Row {
        const char *format, *text;
        ZArrayT<ZVariant> values;
    };
    const Row rows[] = {{"%d %s", "5 five", listed({5, "five"})},
                        {"%s|%s|%s", "5|2.5|name", listed({5, 2.5, ZSelector("name")})},
                        {"%d %.1f", "12 3.0", listed({"12", 3})},
                        {"%5d|%-3s|%x", "    7|a  |ff", listed({byte(7), "a", 255})},
                        {"%*d", "   4", listed({4, 4})},
                        // Formats that ask for something else than what there is.
                        {"%s %s", "1 (null)", listed({1})},
                        {"%s%p%tb%ti", "(null)(nil)", listed({})},
                        {"%d %f", "0 0.000000", listed({"none", ZVariant()})},
                        {"%ls %S", "3s wide", listed({3, "wide"})},
                        {"100%%", "100%", listed({"x"})}};
    for (const Row& row : rows) {
        ZString text;
        ASSERT_TRUE(text.xprintf(row.format, row.values)) << row.format;
        EXPECT_EQ(text, ZString(row.text)) << row.format;
    }
    ZString wide;
    ASSERT_TRUE(wide.xprintf(u"%s-%d", listed({"grün", 3})));
    EXPECT_EQ(wide, ZString("grün-3"));
    ASSERT_TRUE(wide.printfArg("%s %s", ZVArray("left right")));
    EXPECT_EQ(wide, ZString("left right"));
    const int numbers[] = {3, 1, 2};
    ASSERT_TRUE(wide.xprintf(
        "%ti", listed({ZVariant(ztype<ZVArray>(), &static_cast<const ZVArray&>(ZVArray(ztype<int>(), numbers, 3)))})));
    EXPECT_EQ(wide, ZString("3, 1, 2"));
    ZSelector name;
    ASSERT_TRUE(name.xprintf("item%d", listed({4})));
    EXPECT_EQ(name, ZSelector("item4"));
    EXPECT_FALSE(name.xprintf("", listed({})));
    EXPECT_EQ(name, ZSelector("item4"));
}

TEST_F(ZArgumentTest, FailedAllocationLeavesTheText) {
    const ZArrayT<ZVariant> values = listed({"some text", 2.5, ZSelector("name")});
    const ZString old("old"), made("some text and 2.5 and name");
    failEachAllocation([&](AllocProbe&) {
        ZString text(old);
        const bool done = text.xprintf("%s and %s and %s", values);
        EXPECT_EQ(text, done ? made : old);
        zrecover();
    });
}

TEST_F(ZArgumentTest, NamesToTypesAndValues) {
    const ZSelector signature("ZString foo(int, const ZVariant&)");
    const auto types = signature.metaTypes(nullptr);
    ASSERT_EQ(types.count(), 3u);
    EXPECT_EQ(types[0], ztype<ZString>());
    EXPECT_EQ(types[1], ztype<int>());
    EXPECT_TRUE(ZSelector().metaTypes(nullptr).isEmpty());
    EXPECT_EQ(ZSelector("no_such_type").nameType(nullptr), nullptr);
    EXPECT_TRUE(signature.matchTypes(nullptr, nullptr, "int bar(int)", false, false));
    EXPECT_FALSE(signature.matchTypes(nullptr, nullptr, "int bar(int)", false, true));
    EXPECT_FALSE(signature.matchTypes(nullptr, nullptr, "int bar(ZObject*)", false, false));
    const ZMetaType* params[] = {ztype<int>()};
    EXPECT_EQ(ZSelector("foo", ztype<ZString>(), params, 1), ZSelector("ZString foo(int)"));
    const ZSelector words("b a b");
    EXPECT_EQ(words.separate().count(), 3u);
    EXPECT_EQ(words.separateSet().count(), 2u);
    EXPECT_EQ(ZSelector(words.separate()), words);
    ZVArray pairs(ztype<ZSelectString>());
    for (const char* text : {"a one", "b two", "a three"}) {
        const ZSelectString pair{ZString(text)};
        ASSERT_TRUE(pairs.appendItem(&pair));
    }
    const ZVKeyMap map = ZSelectString::valueMap(pairs);
    EXPECT_EQ(map.count(), 2u);
    EXPECT_EQ(map.variant(ZVariant(ZSelector("a"))), ZVariant("three"));
    EXPECT_TRUE(ZSelectString::valueMap(words.separate()).isEmpty());
    EXPECT_TRUE(zresetfail());
    EXPECT_EQ(ZVArray("word").count(), 1u);
    EXPECT_EQ(ZVArray(ZVariant("a b c")).count(), 3u);
    EXPECT_EQ(ZString("x;y;;z").separate(';', false).count(), 3u);
    EXPECT_EQ(ZString::combineNames(ZVArray("a b")), ZString("a\nb\n"));
    ZString text;
    text = ZVariant(2.5);
    EXPECT_EQ(text, ZString("2.5"));
}

TEST_F(ZArgumentTest, AveragesSamples) {
    ZSampleTime watch;
    EXPECT_EQ(watch.average(), 0);
    watch.setMinimumTime(0);
    for (int i = 0; i < 3; ++i) {
        watch.start();
        ASSERT_TRUE(watch.stop());
    }
    EXPECT_EQ(watch.samples().count(), 3u);
    EXPECT_GE(watch.average(), 0);
    EXPECT_LT(watch.average(), 1);
    watch.setMinimumTime(1e6);
    watch.start();
    ASSERT_TRUE(watch.stop());
    EXPECT_EQ(watch.samples().count(), 3u);
}

} // namespace
