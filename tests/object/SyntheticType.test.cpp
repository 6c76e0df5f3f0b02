#include "object/SyntheticType.h"

#include "object/ztype.h"
#include "tests/object/enumText.h"
#include "tests/support/CoreScope.h"
#include "tests/support/invoke.h"
#include "value/ZTypedPtr.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

namespace {

using SyntheticTest = CoreTest;

std::string namesOf(const ZVariant& value) {
    ZArrayT<ZSelector> names;
    EXPECT_TRUE(value.propertyNames(names));
    return join(names);
}

TEST_F(SyntheticTest, TheWordsOfASelectorAreProperties) {
    struct {
        const char *words, *name;
        bool on;
        const char* after; ///< null: refused
    } rows[] = {
        {"a b c", "b", false, "a c"}, {"a b", "b", false, "a"},    {"a", "a", false, "(empty)"},
        {"a b", "a", true, "a b"},    {"a b", "c", true, nullptr}, {"a.b", "a", false, nullptr},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words);
        ZVariant value{ZSelector(row.words)};
        EXPECT_EQ(value.setProperty(row.name, ZVariant(row.on)), row.after != nullptr);
        const ZSelector now = value.toSelector();
        EXPECT_EQ(now.isEmpty() ? "(empty)" : text(now), row.after ? row.after : row.words);
    }
    const ZVariant words{ZSelector("a b c")};
    EXPECT_EQ(namesOf(words), "a b c");
    EXPECT_TRUE(words.getProperty("b").toBool());
    EXPECT_TRUE(words.getProperty("d").isNull());
    EXPECT_EQ(words.getPropertyType("b"), ztype<bool>());
    // The type itself can add a word.
    ZSelector list("a");
    ZMetaType* constant = ztype<ZSelector>()->getQualified("const ZSelector");
    EXPECT_TRUE(
        ztype<ZSelector>()->setSyntheticProperty(ZTypedPtr(ztype<ZSelector>(), &list), "z", ZVariant(true), false));
    EXPECT_EQ(text(list), "a z");
    EXPECT_TRUE(constant->hasSyntheticProperty(ZTypedPtr(constant, &list), "z"));
}

TEST_F(SyntheticTest, TheKeysOfAMapAreProperties) {
    ZVSelectMap map(ztype<int>());
    ASSERT_TRUE(map.set("x", ZVariant(1)) && map.set("y", ZVariant(2)));
    ZVariant value(ztype<ZVSelectMap>(), &map);
    EXPECT_EQ(value.type()->type()->getName(), ZSelector("ZVSelectMapType"));
    EXPECT_EQ(namesOf(value), "x y");
    EXPECT_EQ(value.getProperty("y").toInt(), 2);
    EXPECT_TRUE(value.setProperty("y", ZVariant("12")));
    EXPECT_EQ(value.getProperty("y").toInt(), 12);
    EXPECT_FALSE(value.setProperty("y", ZVariant("twelve")));
    EXPECT_FALSE(value.setProperty("new", ZVariant(1))) << "properties aren't made by setting them";
    EXPECT_FALSE(value.setDynamicProperty("new", ZVariant(1), false));
    EXPECT_TRUE(value.setDynamicProperty("new", ZVariant("3"), true)) << "unless that is asked";
    EXPECT_EQ(namesOf(value), "x y new");
    EXPECT_EQ(value.getProperty("new").toInt(), 3);
    EXPECT_EQ(map.variant("y").toInt(), 2) << "the variant had a copy";
    EXPECT_EQ(value.getPropertyType("x"), ztype<int>());
    ZTypedPtr at(ztype<ZVSelectMap>(), &map);
    EXPECT_TRUE(at.setProperty("x", ZVariant(9)));
    EXPECT_EQ(map.variant("x").toInt(), 9);
    EXPECT_TRUE(at.clearProperty("x"));
    EXPECT_TRUE(map.haskey("x") && map.variant("x").toInt() == 0);
    // Counting and walking by name.
    EXPECT_EQ(invoke(value, "count").toInt(), 3);
    EXPECT_EQ(invoke(value, "entry", 1).toInt(), 12);
}

} // namespace
