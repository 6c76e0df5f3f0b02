#include "text/ZChar.h"

#include "text/ZString.h"

#include <gtest/gtest.h>

TEST(ZChar, Construction) {
    EXPECT_TRUE(ZChar().isNull());
    EXPECT_EQ(ZChar("\xE3\x81\x82x", 4).value(), 0x3042u);
    EXPECT_EQ(ZChar("\xE3\x81\x82", 2).value(), 0xFFFDu) << "cut within the character";
    EXPECT_EQ(ZChar(nullptr, 3).value(), 0u);
    EXPECT_EQ(ZChar("a", 0).value(), 0u);
    EXPECT_EQ(ZChar("a", -1).value(), 0u);
    EXPECT_EQ(ZChar(ZString(u"\U0001F600.")).value(), 0x1F600u);
    EXPECT_EQ(ZChar(ZString()).value(), 0u);
}

TEST(ZChar, EachCategoryIsInOneGroup) {
    struct {
        ichar code;
        ZChar::Category category;
        char group;
        bool separates;
    } rows[] = {{'A', ZChar::Uppercase, 'L', false},       {0x1C5, ZChar::Titlecase, 'L', false},
                {0x3042, ZChar::Other, 'L', false},        {0x301, ZChar::NonSpacing, 'M', true},
                {0x20DD, ZChar::Enclosing, 'M', true},     {'5', ZChar::Digit, 'N', false},
                {0xBD, ZChar::NumOther, 'N', false},       {'_', ZChar::Connector, 'P', true},
                {'!', ZChar::OtherPunct, 'P', true},       {'+', ZChar::MathSym, 'S', false},
                {0xA9, ZChar::OtherSym, 'S', false},       {' ', ZChar::Space, 'Z', true},
                {0x2029, ZChar::Paragraph, 'Z', true},     {'\n', ZChar::Control, 'C', true},
                {0xAD, ZChar::Format, 'C', true},          {0xD800, ZChar::Surrogate, 'C', false},
                {0xE000, ZChar::Private, 'C', false},      {0x378, ZChar::NonAssigned, 'C', false},
                {0x110000, ZChar::Category(0), '-', false}};
    for (auto& row : rows) {
        ZChar c(row.code);
        EXPECT_EQ(c.category(), row.category) << uint(row.code);
        EXPECT_EQ(c.isLetter(), row.group == 'L') << uint(row.code);
        EXPECT_EQ(c.isMark(), row.group == 'M') << uint(row.code);
        EXPECT_EQ(c.isNumber(), row.group == 'N') << uint(row.code);
        EXPECT_EQ(c.isPunct(), row.group == 'P') << uint(row.code);
        EXPECT_EQ(c.isSymbol(), row.group == 'S') << uint(row.code);
        EXPECT_EQ(c.isSeparator(), row.group == 'Z') << uint(row.code);
        EXPECT_EQ(c.isOther(), row.group == 'C') << uint(row.code);
        EXPECT_EQ(ZChar::wordSeparator(c.category()), row.separates) << uint(row.code);
    }
    EXPECT_FALSE(ZChar::wordSeparator(-1));
    EXPECT_FALSE(ZChar::wordSeparator(40));
}

TEST(ZChar, DirectionDecompositionAndClass) {
    EXPECT_EQ(ZChar(0x5D0).direction(), ZChar::DirR);
    EXPECT_EQ(ZChar(0xFB01).decompose(), int(ZChar::Compat));
    EXPECT_EQ(ZChar('a').decompose(), 255);
    EXPECT_EQ(ZChar(0x345).combiningClass(), int(ZChar::IotaSubscript));
}

TEST(ZChar, MappingBlocksAndNames) {
    EXPECT_EQ(ZChar(0x1C6).toTitle(), ZChar(0x1C5));
    EXPECT_EQ(ZChar('(').mirror(), ZChar(')'));
    EXPECT_TRUE(ZChar('(').hasMirrored());
    EXPECT_FALSE(ZChar('a').hasMirrored());
    struct {
        ichar code;
        int bytes;
    } lengths[] = {{0, 1}, {0x7F, 1}, {0x80, 2}, {0x7FF, 2}, {0x800, 3}, {0xFFFF, 3}, {0x10000, 4}, {0x10FFFF, 4}};
    for (auto& row : lengths) EXPECT_EQ(ZChar(row.code).length(), row.bytes) << uint(row.code);
    EXPECT_EQ(ZChar::blockIndex(ZString()), -1);
    EXPECT_EQ(ZChar::blockIndex(ZString(u"hiragana")), ZChar(0x3042).block());
    EXPECT_TRUE(ZChar::blockName(ZChar(0x3042).block()) == "Hiragana");
    EXPECT_TRUE(ZChar::blockName(-5).isEmpty());
    EXPECT_TRUE(ZChar('\t').name() == "<control-0009>");
    EXPECT_TRUE(ZChar::name(0x3042) == "HIRAGANA LETTER A");
    EXPECT_TRUE(ZChar::name(0x110000).isEmpty());
}
