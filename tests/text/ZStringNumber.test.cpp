#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"

#include <climits>

using StringNumber = StringTest;

TEST_F(StringNumber, OutInTheStringsWidth) {
    struct {
        bool (*set)(ZString&);
        const char* text;
    } rows[] = {
        {[](ZString& s) { return s.setInt(INT_MIN); }, "-2147483648"},
        {[](ZString& s) { return s.setUInt(0xBEEF, 16, 8, true, true); }, "0000BEEF"},
        {[](ZString& s) { return s.setLarge(-5, 2, 8); }, "    -101"},
        {[](ZString& s) { return s.setULarge(~0ull); }, "18446744073709551615"},
        {[](ZString& s) { return s.setInt(7, 10, 300); }, nullptr},
        {[](ZString& s) { return s.setReal(5.25); }, "5.25"},
        {[](ZString& s) { return s.setReal(1.0 / 3); }, "0.33333333"},
        {[](ZString& s) { return s.setReal(100.0 / 3); }, "33.333333"},
        {[](ZString& s) { return s.setRealNumber(1.5, 6, 3, ','); }, "   1,5"},
        {[](ZString& s) { return s.setNumber(1994, ZString::RomanU); }, "MCMXCIV"},
        {[](ZString& s) { return s.setNumber(28, ZString::AlphaL); }, "ab"},
        {[](ZString& s) { return s.setNumber(28, ZString::LetterU); }, "BB"},
        {[](ZString& s) { return s.setBool(true); }, "yes"},
    };
    for (auto& row : rows)
        for (ZString::Type type : {ZString::Internal, ZString::Char, ZString::WChar, ZString::IChar}) {
            ZString s = inForm("x", type);
            ASSERT_TRUE(row.set(s));
            std::string expected = row.text ? row.text : std::string(299, ' ') + "7";
            EXPECT_EQ(utf8(s), expected);
            EXPECT_EQ(s.type(), type && expected != "yes" ? type : ZString::Char) << expected;
        }
    ZString kept("kept");
    EXPECT_FALSE(kept.setNumber(0, ZString::RomanU));
    EXPECT_EQ(utf8(kept), "kept");
    EXPECT_EQ(utf8(ZString::number(-3)) + utf8(ZString::number(4u)) + utf8(ZString::number(0.5)), "-340.5");
}

TEST_F(StringNumber, PrecisionOfReals) {
    EXPECT_EQ(ZString::precision(5.0, 0), 8);
    EXPECT_EQ(ZString::precision(-5.0, 0), 8);
    EXPECT_EQ(ZString::precision(50.0, 0), 6);
    EXPECT_EQ(ZString::precision(5.0, 10), 10);
    EXPECT_EQ(ZString::precision(50.0, 3), 3);
    EXPECT_EQ(ZString::decimal(), U'.');
}

TEST_F(StringNumber, InFromEveryForm) {
    struct {
        const char* text;
        int radix;
        bool isInt, isByte;
        int value;
    } rows[] = {{" 42 ", 10, true, true, 42},        {"-1", 10, true, false, -1},       {"ff", 16, true, true, 255},
                {"256", 10, true, false, 256},       {"12abc", 10, false, false, 0},    {"", 10, false, false, 0},
                {"2147483648", 10, false, false, 0}, {"\xD9\xA1", 10, false, false, 0}, {"1.5", 10, false, false, 0}};
    for (auto& row : rows)
        inEveryForm(row.text, [&](const ZString& s, ZString::Type) {
            int i = 7;
            byte b = 7;
            EXPECT_EQ(s.toInt(i, row.radix), row.isInt) << row.text;
            EXPECT_EQ(i, row.isInt ? row.value : 7) << row.text;
            EXPECT_EQ(s.toByte(b, row.radix), row.isByte) << row.text;
            EXPECT_EQ(b, row.isByte ? row.value : 7) << row.text;
        });
    inEveryForm("-1,25e2", [](const ZString& s, ZString::Type) {
        double real = 0;
        float single = 0;
        EXPECT_TRUE(s.toReal(real, ',') && s.toFloat(single, ','));
        EXPECT_EQ(real, -125);
        EXPECT_FALSE(s.toDouble(real));
    });
}

TEST_F(StringNumber, WordsOfTruthAreExact) {
    struct {
        const char* text;
        int value; ///< 2: no word
    } rows[] = {{"yes", 1}, {"true", 1}, {"no", 0}, {"false", 0}, {"Yes", 2}, {"", 2}, {"yes ", 2}, {"1", 2}};
    for (auto& row : rows)
        inEveryForm(row.text, [&](const ZString& s, ZString::Type) {
            for (bool before : {false, true}) {
                bool value = before;
                EXPECT_EQ(s.toBool(value), row.value < 2) << row.text;
                EXPECT_EQ(value, row.value < 2 ? row.value == 1 : before) << row.text;
            }
        });
}

TEST_F(StringNumber, NumbersInsideText) {
    inEveryForm("key2F", [](const ZString& s, ZString::Type) {
        int value = 0;
        EXPECT_TRUE(s.prefixedInt("key", value, 16));
        EXPECT_EQ(value, 0x2F);
        EXPECT_FALSE(s.prefixedInt("key2F", value) || s.prefixedInt("kex", value) || s.prefixedInt("key", value));
    });
    inEveryForm("ab-12cd34", [](ZString s, ZString::Type) {
        ZString after("x");
        int number = 0;
        EXPECT_TRUE(s.splitAtNumber(s, after, number));
        EXPECT_EQ(utf8(s) + "|" + utf8(after), "ab-|cd34");
        EXPECT_EQ(number, 12);
        EXPECT_FALSE(s.splitAtNumber(s, after, number));
        EXPECT_FALSE(ZString("a99999999999b").splitAtNumber(s, after, number));
        EXPECT_EQ(utf8(s) + utf8(after), "ab-cd34");
    });
}

TEST_F(StringNumber, FormattedTextTakesTheFormatsWidth) {
    ZString s(U"old");
    EXPECT_TRUE(s.printf("%d %s", 5, "text"));
    EXPECT_EQ(s.type(), ZString::Char);
    EXPECT_EQ(utf8(s), "5 text");
    EXPECT_EQ(s.size(), 6);
    EXPECT_TRUE(s.printf(u"%.*!f|%s", 3, 1.25, "\xE3\x81\x82"));
    EXPECT_EQ(s.type(), ZString::WChar);
    EXPECT_EQ(utf8(s), "1.25|\xE3\x81\x82");
    EXPECT_TRUE(s.printf(U"%^*d", 2, 5));
    EXPECT_EQ(s.type(), ZString::IChar);
    EXPECT_EQ(utf8(s), "101");
    EXPECT_FALSE(s.printf("%s", ""));
    EXPECT_FALSE(s.printf(u""));
    EXPECT_EQ(utf8(s), "101");
    EXPECT_TRUE(s.printf("%1000d", 1));
    EXPECT_EQ(s.length(), 1000);
}

TEST_F(StringNumber, FormattingTheOwnText) {
    for (int size : {3, 500}) {
        ZString s(std::string(size_t(size), 'x').c_str());
        ASSERT_TRUE(
            s.printf("<%s%s>", static_cast<const char*>(s.view().text), static_cast<const char*>(s.view().text)));
        EXPECT_EQ(utf8(s), "<" + std::string(2 * size_t(size), 'x') + ">");
    }
}

TEST_F(StringNumber, FormattingWithoutMemoryKeepsTheText) {
    orv::strtable::close();
    for (const char* format : {"%s and %d", "%900s and %d"})
        failEachAllocation([&](AllocProbe& probe) {
            ZString s(u"old");
            if (zrecover()) return;
            if (s.printf(format, "this", 5)) return;
            EXPECT_TRUE(probe.failed());
            EXPECT_TRUE(s == "old");
        });
    ASSERT_TRUE(orv::strtable::open());
}
