#include "object/propertyWords.h"

#include "object/ZProperty.h"
#include "object/ZPropertyPtr.h"
#include "object/propertySignatures.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"

#include <gtest/gtest.h>
#include <string>

namespace {
std::string textOf(const ZSelector& name) { return name.isEmpty() ? "" : name.string(); }

// The compiler reads declarations with the same functions.
static_assert(orv::propertyWordSum("v3 sb2 store").flags == ZProperty::Store);
static_assert(orv::propertyWordSum("v3 sb2 store").version == 3 && orv::propertyWordSum("v3 sb2").sandBoxLevel == 2);
static_assert(orv::propertyWordSum("retain noxst .changed").options == 1);
} // namespace

TEST(PropertyWords, EachWordHasItsMeaning) {
    SelectorScope names;
    const struct {
        const char* words;
        uint flags;
        int version, level;
        const char *options, *updaters;
    } rows[] = {
        {"", 0, -1, -1, "", ""},
        {"store .changed", ZProperty::Store, -1, -1, "", "changed"},
        {"v3 sb2 store", ZProperty::Store, 3, 2, "", ""},
        {"optional", ZProperty::Dynamic | ZProperty::Optional, -1, -1, "", ""},
        {"wrap", ZProperty::DWrap | ZProperty::SWrap, -1, -1, "", ""},
        {"dwrap passptr", ZProperty::DWrap | ZProperty::PassPtr, -1, -1, "", ""},
        {"retain noblend", ZProperty::Retain | ZProperty::NoBlend, -1, -1, "", ""},
        {"internal lockable", 0, -1, -1, "internal lockable", ""},
        {"store noxst .changed propcall .resized nocppy", ZProperty::Store, -1, -1, "noxst propcall nocppy",
         "changed resized"},
        {"v0 sb0", 0, 0, 0, "", ""},
        // A number has to be all of the rest and fit.
        {"v v3x sb sbx v99999999999", 0, -1, -1, "v v3x sb sbx v99999999999", ""},
        {".", 0, -1, -1, ".", ""},
        {"v1 v2", 0, 2, -1, "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.words);
        ZSelector words(row.words);
        EXPECT_EQ(ZProperty::scanFlags(words), row.flags);
        EXPECT_EQ(ZProperty::scanVersion(words), row.version);
        EXPECT_EQ(ZProperty::scanSBLevel(words), row.level);
        EXPECT_EQ(textOf(ZProperty::extractOptions(words)), row.options);
        EXPECT_EQ(textOf(ZProperty::extractUpdate(words)), row.updaters);
    }
    EXPECT_EQ(ZProperty::scanVersion("a7 v3", 'a'), 7);
    EXPECT_EQ(ZProperty::extractUpdate(".a .b").type(), ZSelector::Names);
}

TEST(PropertyWords, EveryFlagHasOneWord) {
    uint seen = 0;
    for (const auto& word : orv::propertyWords) {
        SCOPED_TRACE(std::string(word.word));
        bool single = (word.flags & (word.flags - 1)) == 0;
        EXPECT_TRUE(single || word.word == "optional" || word.word == "wrap");
        if (!single) continue;
        EXPECT_FALSE(seen & word.flags);
        seen |= word.flags;
    }
    EXPECT_EQ(seen | ZProperty::Optional, 0x7FFFFFFFu);
    EXPECT_EQ(uint(ZProperty::External), 97u);
    EXPECT_EQ(uint(ZProperty::Default), 0x200000A0u);
}

TEST(PropertyWords, ASignatureThatDoesNotFitIsMeasured) {
    const std::string_view parts[] = {"Width", "int, ", "ZString"};
    char text[64];
    size_t length = orv::writeSignature(text, sizeof text, orv::signatures::setter, parts, 3);
    EXPECT_EQ(std::string(text, length), "bool setWidth(int, const ZString&)");
    char small[4] = {};
    EXPECT_EQ(orv::writeSignature(small, 3, orv::signatures::setter, parts, 3), length);
    EXPECT_EQ(std::string(small), "boo");
}
