#include "text/ZCharRef.h"

#include "core/ZSelector.h"
#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"

using StringChars = StringTest;

TEST_F(StringChars, NarrowestFormOfACharacter) {
    struct {
        ichar code;
        ZString::Type asked, type;
        int length, size;
        const char* text;
    } rows[] = {
        {'A', ZString::Internal, ZString::Char, 1, 4, "A"},
        {0xE9, ZString::Internal, ZString::Char, 2, 4, "\xC3\xA9"},
        {0x3042, ZString::Internal, ZString::WChar, 1, 4, "\xE3\x81\x82"},
        {0x1F600, ZString::Internal, ZString::IChar, 1, 1, "\xF0\x9F\x98\x80"},
        {0x1F600, ZString::Char, ZString::Char, 4, 4, "\xF0\x9F\x98\x80"},
        {0x1F600, ZString::WChar, ZString::WChar, 2, 4, "\xF0\x9F\x98\x80"},
    };
    for (auto& row : rows) {
        ZString s(ZChar(row.code), row.asked);
        EXPECT_EQ(s.type(), row.type);
        EXPECT_EQ(s.length(), row.length);
        EXPECT_EQ(s.size(), row.size);
        EXPECT_EQ(utf8(s), row.text);
    }
    EXPECT_TRUE(ZString(ZChar()).isEmpty());
    EXPECT_EQ(zfailcount(), 0);
    EXPECT_TRUE(ZString(ZChar('A'), ZString::Type(4)).isEmpty());
    EXPECT_TRUE(ZString(ZChar('A'), ZString::Type(-1)).isEmpty());
    EXPECT_EQ(zrecover(), 2);
    orv::strtable::close();
    failEachAllocation([](AllocProbe& probe) {
        ZString s(ZChar(0x3042));
        EXPECT_EQ(s.isEmpty(), probe.failed());
        EXPECT_EQ(zrecover() > 0, probe.failed());
    });
    ASSERT_TRUE(orv::strtable::open());
}

TEST_F(StringChars, CharactersAreEncodedForTheWidth) {
    for (ZString::Type type : widths) {
        ZString s = inForm("ab", type);
        EXPECT_TRUE(s.insert(1, ZChar(0x1F600)) && s.append('\xE9') && s.append(ZChar()));
        EXPECT_EQ(utf8(s), "a\xF0\x9F\x98\x80"
                           "b\xC3\xA9");
        EXPECT_TRUE(s.set("1234567") && s.setType(type) && s.fill(ZChar(0x3042)));
        EXPECT_EQ(s.length(), 7);
        EXPECT_EQ(utf8(s),
                  type == ZString::Char
                      ? "\xE3\x81\x82\xE3\x81\x82 "
                      : "\xE3\x81\x82\xE3\x81\x82\xE3\x81\x82\xE3\x81\x82\xE3\x81\x82\xE3\x81\x82\xE3\x81\x82");
    }
    ZString empty;
    EXPECT_TRUE(empty.append(ZChar(0x3042)));
    EXPECT_EQ(empty.type(), ZString::WChar);
}

TEST_F(StringChars, ReadingAndAssigningPlaces) {
    for (ZString::Type type : widths) {
        ZString s = inForm("abc", type), shared(s);
        EXPECT_EQ(s.constAt(1), ZChar('b'));
        EXPECT_EQ(std::as_const(s)[2], ZChar('c'));
        EXPECT_TRUE(s.constAt(3).isNull() && s.constAt(-1).isNull() && s.at(3).isNull());
        shared = s;
        EXPECT_TRUE(s.isDetached());
        EXPECT_EQ(s.constAt(0), ZChar('a'));
        EXPECT_TRUE(s.isDetached());
        EXPECT_EQ(s.at(0), ZChar('a'));
        EXPECT_FALSE(s.isDetached());
        s[1] = 'x';
        s[4] = s[0];
        EXPECT_EQ(utf8(s), "axc a");
        EXPECT_EQ(utf8(shared), "abc");
        EXPECT_TRUE(s[0] == s[4] && s[0] == ZChar('a') && s[9].isNull() && s[0].isLetter());
        EXPECT_EQ(s[0].toUpper(), ZChar('A'));
        EXPECT_EQ(ZChar(s[1]).value(), U'x');
        s[-1] = 'x';
        EXPECT_EQ(s.length(), 5);
    }
    ZString out;
    out[2] = ZChar(0x3042);
    EXPECT_EQ(out.type(), ZString::WChar);
    EXPECT_EQ(utf8(out), "  \xE3\x81\x82");
    ZCharRef nowhere;
    nowhere = 'x';
    EXPECT_TRUE(nowhere.isNull() && nowhere.detach() && nowhere.isDetached());
    EXPECT_EQ(ZString("\xC3\xA9").constAt(1), ZChar(0xA9));
}

TEST_F(StringChars, Selectors) {
    ASSERT_TRUE(ZSelector::open());
    {
        ZSelector name("some.name");
        ZString s(name), t(u"of ");
        EXPECT_EQ(utf8(s), name.string());
        EXPECT_TRUE(t.append(name));
        EXPECT_EQ(utf8(t), "of " + utf8(s));
        EXPECT_EQ(t.type(), ZString::WChar);
        EXPECT_EQ(s.toSelector().key(), name.key());
        EXPECT_TRUE(s.setSelector(ZSelector()) && s.isEmpty());
        EXPECT_TRUE(s.toSelector().isEmpty());
        // An ideograph, a half-width letter, a yen sign's place, an odd byte and a cut pair.
        ZString japanese("\x93\xFA\xB1\\\xFF\x81"), read = japanese.convert("unicode", "shiftjis");
        EXPECT_EQ(read.type(), ZString::WChar);
        EXPECT_TRUE(read == ZString(u"\u65E5\uFF71\\\uFFFD\uFFFD"));
        EXPECT_TRUE(japanese.convert("shiftjis", "unicode").isEmpty() &&
                    ZString().convert("unicode", "shiftjis").isEmpty());
        EXPECT_EQ(zfailcount(), 0);
    }
    ZSelector::close();
}
