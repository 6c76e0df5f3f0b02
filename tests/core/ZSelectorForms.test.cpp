#include "core/ZSelectorSpace.h"
#include "tests/support/SelectorScope.h"
#include "text/ZString.h"

#include <climits>
#include <gtest/gtest.h>
#include <string>

TEST(SelectorForms, OneText) {
    SelectorScope scope;
    struct Row {
        const char* text;
        ZSelector (*form)(const ZSelector&);
        const char* wanted;
    };
    const Row rows[] = {
        {"aBc.D", [](const ZSelector& s) { return s.lowerCase(); }, "abc.d"},
        {"aBc.\xC3\xA4", [](const ZSelector& s) { return s.upperCase(); }, "ABC.\xC3\x84"},
        {"\xC3\xA4pfel Baum", [](const ZSelector& s) { return s.capitalize(); }, "\xC3\x84pfel Baum"},
        {"@x", [](const ZSelector& s) { return s.capitalize(); }, "@x"},
        {"const A<b, c> name", [](const ZSelector& s) { return s.removeName(); }, "const A<b, c>"},
        {"A<b, c>", [](const ZSelector& s) { return s.removeName(); }, "A<b, c>"},
        {"a b c", [](const ZSelector& s) { return s.removeSpaces(); }, "abc"},
        {"image12_", [](const ZSelector& s) { return s.removeSuffix(); }, "image"},
        {"123", [](const ZSelector& s) { return s.removeSuffix(); }, ""},
        {"[a b]", [](const ZSelector& s) { return s.debracket(); }, "a b"},
        {"[]", [](const ZSelector& s) { return s.debracket(); }, ""},
        {"[a", [](const ZSelector& s) { return s.debracket(); }, "[a"},
        {"int*", [](const ZSelector& s) { return s.ptrName(2); }, "int***"},
        {"int", [](const ZSelector& s) { return s.ptrName(0); }, "int"},
        {"const int value", [](const ZSelector& s) { return s.varName(); }, "value"},
        {"const int&", [](const ZSelector& s) { return s.varName(); }, ""},
        {"value", [](const ZSelector& s) { return s.varName(); }, ""},
        {"name", [](const ZSelector& s) { return s.marked(); }, "@name"},
        {"@name", [](const ZSelector& s) { return s.marked(); }, "@name"},
        {"@name", [](const ZSelector& s) { return s.marked('#'); }, "#@name"},
        {"@name", [](const ZSelector& s) { return s.unmarked(); }, "name"},
        {"name", [](const ZSelector& s) { return s.unmarked(); }, "name"},
        {"", [](const ZSelector& s) { return s.marked(); }, ""},
        {"image", [](const ZSelector& s) { return s.prefixMask(); }, "image%d"},
        {"5%image12", [](const ZSelector& s) { return s.prefixMask(); }, "5%%image%d"},
    };
    for (const Row& row : rows) EXPECT_EQ(text(row.form(ZSelector(row.text))), row.wanted) << row.text;
    EXPECT_EQ(ZSelector("int* *").ptrCount(), 2);
    EXPECT_EQ(ZSelector("int*&").ptrCount(), 0);
}

TEST(SelectorForms, Questions) {
    SelectorScope scope;
    EXPECT_TRUE(ZSelector("a b").deepName());
    EXPECT_FALSE(ZSelector("a:b").deepName());
    EXPECT_TRUE(ZSelector().variableName());
    EXPECT_TRUE(ZSelector("a.b").variableName());
    ZSelector name("name"), path("a.b");
    EXPECT_FALSE(name.variableName());
    name.setVariableName(true);
    EXPECT_TRUE(ZSelector("name").variableName());
    name.setVariableName(false);
    path.setVariableName(false);
    EXPECT_FALSE(name.variableName());
    EXPECT_TRUE(path.variableName());
    EXPECT_TRUE(ZSelector("const A&").isReference());
    EXPECT_FALSE(ZSelector("const A").isReference());
    EXPECT_TRUE(ZSelector("A<b>").isTemplate());
    EXPECT_TRUE(ZSelector("a-b").specialChars());
    EXPECT_FALSE(ZSelector("a:b_1").specialChars());
    EXPECT_FALSE(ZSelector().specialChars());
    EXPECT_TRUE(ZSelector::isName("a_1"));
    EXPECT_FALSE(ZSelector::isName("a b"));
    EXPECT_FALSE(ZSelector::isName(""));
    EXPECT_FALSE(ZSelector::isName(nullptr));
    uint before = ZSelector::selectorCount();
    EXPECT_TRUE(path.check(" a.b"));
    EXPECT_FALSE(path.check("nobody made this"));
    EXPECT_FALSE(ZSelector().check(nullptr));
    EXPECT_EQ(ZSelector::selectorCount(), before);
    EXPECT_TRUE(ZSelector("alpha").hasstr("ph"));
    EXPECT_FALSE(ZSelector("alpha").hasstr("phi"));
    EXPECT_FALSE(ZSelector("alpha").hasstr(nullptr));
    EXPECT_LT(ZSelector("a").cmpstr("b"), 0);
    EXPECT_GT(ZSelector("ab").cmpstr("a"), 0);
    EXPECT_EQ(ZSelector("ab").cmpstr("ab"), 0);
    EXPECT_EQ(ZSelector().cmpstr(nullptr), 0);
    EXPECT_LT(ZSelector("a").compareStr(ZSelector("\xC3\xA4")), 0);
    EXPECT_TRUE(ZSelector("@a").hasSelectorMark());
    EXPECT_FALSE(ZSelector("@a").hasSelectorMark('#'));
    EXPECT_FALSE(ZSelector().hasSelectorMark('\0'));
}

TEST(SelectorForms, Joining) {
    SelectorScope scope;
    ZSelector a("a"), b("b"), none, path("plg.core.stream");
    EXPECT_EQ(a + b, ZSelector("ab"));
    EXPECT_EQ(a + none, a);
    EXPECT_EQ(none + b, b);
    EXPECT_EQ(a | b, ZSelector("a b"));
    EXPECT_EQ(a | none, a);
    EXPECT_EQ(ZSelector("const") | ZSelector("A::B"), ZSelector("const A::B"));
    EXPECT_EQ(a.join(".x"), ZSelector("a.x"));
    EXPECT_EQ(a.join("<", b, ">"), ZSelector("a<b>"));
    EXPECT_EQ(ZSelector::combine(a, b, "::"), ZSelector("a::b"));
    EXPECT_EQ(ZSelector::combine(none, b, "::"), b);
    EXPECT_EQ(path.prefix(ZSelector("stream")), ZSelector("plg.core"));
    EXPECT_EQ(path.prefix(ZSelector("stream"), '.'), ZSelector("plg.core"));
    EXPECT_TRUE(path.prefix(ZSelector("tream"), '.').isEmpty());
    EXPECT_TRUE(path.prefix(path).isEmpty());
    EXPECT_TRUE(path.prefix(ZSelector("core")).isEmpty());
    EXPECT_EQ(path.suffix(ZSelector("plg")), ZSelector("core.stream"));
    EXPECT_EQ(path.suffix(ZSelector("plg"), '.'), ZSelector("core.stream"));
    EXPECT_TRUE(path.suffix(ZSelector("pl"), '.').isEmpty());
    EXPECT_TRUE(path.isPrefix(ZSelector("plg"), '.'));
    EXPECT_FALSE(path.isPrefix(ZSelector("pl"), '.'));
    EXPECT_TRUE(path.isPrefix(ZSelector("pl")));
    EXPECT_FALSE(a.isPrefix(path));
    EXPECT_TRUE(path.isSuffix(ZSelector("stream"), '.'));
    EXPECT_FALSE(path.isSuffix(path, '.'));
    EXPECT_TRUE(path.isSuffix(path));
    int value = 7;
    EXPECT_TRUE(ZSelector("image-12").prefixedInt(ZSelector("image"), value));
    EXPECT_EQ(value, -12);
    EXPECT_FALSE(ZSelector("image").prefixedInt(ZSelector("image"), value));
    EXPECT_FALSE(ZSelector("imagex").prefixedInt(ZSelector("image"), value));
    EXPECT_TRUE(ZSelector("imageff").prefixedInt(ZSelector("image"), value, 16));
    EXPECT_EQ(value, 255);
}

TEST(SelectorForms, Numbers) {
    SelectorScope scope;
    ZSelector sel;
    EXPECT_TRUE(sel.setInt(-42));
    EXPECT_EQ(text(sel), "-42");
    EXPECT_TRUE(sel.setULong(255, 16, 4, true, true));
    EXPECT_EQ(text(sel), "00FF");
    EXPECT_TRUE(sel.setInt(5, 2, 300, true));
    EXPECT_EQ(sel.length(), 300);
    EXPECT_TRUE(sel.setReal(0.1));
    EXPECT_EQ(text(sel), "0.1");
    EXPECT_TRUE(sel.setRealNumber(2.5, 0, 1, ','));
    EXPECT_EQ(text(sel), "2,5");
    double real = 0;
    EXPECT_FALSE(sel.toReal(real));
    EXPECT_TRUE(sel.toReal(real, ','));
    EXPECT_EQ(real, 2.5);
    EXPECT_EQ(text(ZSelector::number(LLONG_MIN)), "-9223372036854775808");
    EXPECT_EQ(text(ZSelector::number(1.5)), "1.5");
    large wide = 0;
    EXPECT_TRUE(ZSelector::number(LLONG_MIN).toLarge(wide));
    EXPECT_EQ(wide, LLONG_MIN);
    int value = 1;
    EXPECT_FALSE(ZSelector::number(ularge(1) << 32).toInt(value));
    EXPECT_FALSE(ZSelector("12x").toInt(value));
    EXPECT_FALSE(ZSelector().toInt(value));
    EXPECT_EQ(value, 1);
    byte small = 0;
    EXPECT_FALSE(ZSelector("256").toByte(small));
    EXPECT_TRUE(ZSelector("255").toByte(small));
    EXPECT_EQ(small, 255);
    bool flag = false;
    EXPECT_TRUE(sel.setBool(true));
    EXPECT_TRUE(sel.toBool(flag));
    EXPECT_TRUE(flag);
    EXPECT_TRUE(ZSelector("false").toBool(flag));
    EXPECT_FALSE(flag);
    EXPECT_FALSE(ZSelector("Yes").toBool(flag));
    EXPECT_TRUE(ZSelector("7").integerKey(value));
    EXPECT_EQ(value, 7);
    EXPECT_FALSE(ZSelector("17").integerKey(value));
    EXPECT_FALSE(ZSelector("x").integerKey(value));
    EXPECT_TRUE(ZSelector("key3").integerKey(ZSelector("key"), value));
    EXPECT_EQ(value, 3);
    EXPECT_FALSE(ZSelector("key31").integerKey(ZSelector("key"), value));
}

TEST(SelectorForms, FormattedTextAndStrings) {
    SelectorScope scope;
    ZSelector sel("old");
    EXPECT_TRUE(sel.printf("%s<%d>", "A", 12));
    EXPECT_EQ(sel, ZSelector("A<12>"));
    EXPECT_TRUE(sel.printf("%s.x", sel.string())); // its own text
    EXPECT_EQ(text(sel), "A<12>.x");
    EXPECT_FALSE(sel.printf("%s", ""));
    EXPECT_EQ(text(sel), "A<12>.x");
    EXPECT_TRUE(sel.printf("%0500d", 1));
    EXPECT_EQ(sel.length(), 500);
    EXPECT_EQ(ZSelector(ZString("a  b")), ZSelector("a b"));
    EXPECT_EQ(ZSelector(ZString(u"\u00E4.b")), ZSelector("\xC3\xA4.b"));
    EXPECT_TRUE(ZSelector(ZString()).isEmpty());
    EXPECT_EQ(ZSelector::find(ZString(U"a b")), ZSelector("a b"));
    EXPECT_TRUE(ZSelector::find(ZString(U"not there")).isEmpty());
}
