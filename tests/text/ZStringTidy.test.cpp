#include "core/ZArrayT.h"
#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"
#include "text/ZStringArg.h"
#include "text/ZStringPair.h"

using StringTidy = StringTest;

namespace {
struct Row {
    const char* before;
    void (*tidy)(ZString&);
    const char* after;
};
} // namespace

TEST_F(StringTidy, InEveryForm) {
    const Row rows[] = {
        {"  a b ", [](ZString& s) { EXPECT_TRUE(s.trimEndings(' ')); }, "a b"},
        {"\xE3\x81\x82x\xE3\x81\x82\xE3\x81\x82", [](ZString& s) { EXPECT_TRUE(s.trimEndings(0x3042)); }, "x"},
        {"   ", [](ZString& s) { EXPECT_TRUE(s.trimEndings(' ')); }, ""},
        {"--  text", [](ZString& s) { s = s.removePrefix('-', ' '); }, "text"},
        {"  -text", [](ZString& s) { s = s.removePrefix('-', ' '); }, "-text"},
        {"-x- ", [](ZString& s) { s = s.removePrefix('-', ' '); }, "x- "},
        {"--  ", [](ZString& s) { s = s.removePrefix('-', ' '); }, ""},
        {"text  --", [](ZString& s) { s = s.removeSuffix('-', ' '); }, "text"},
        {"text-  ", [](ZString& s) { s = s.removeSuffix('-', ' '); }, "text-"},
        {"prefix", [](ZString& s) { s = s.removePrefix(ZString(u"pre")); }, "fix"},
        {"prefix", [](ZString& s) { s = s.removePrefix(ZString("fix")); }, "prefix"},
        {"prefix", [](ZString& s) { s = s.removePrefix(ZString()); }, "prefix"},
        {"- name -", [](ZString& s) { s = s.adjustListName(); }, "name"},
        {"\xE2\x80\xA2 name", [](ZString& s) { s = s.adjustListName(); }, "name"},
        {"- \xE2\x80\xA2  name", [](ZString& s) { s = s.adjustListName(); }, "name"},
        {"- - ", [](ZString& s) { s = s.adjustListName(); }, ""},
        {"1.500", [](ZString& s) { EXPECT_TRUE(s.removeTrailing('.', '0')); }, "1.5"},
        {"1.000", [](ZString& s) { EXPECT_TRUE(s.removeTrailing('.', '0')); }, "1"},
        {"1000", [](ZString& s) { EXPECT_TRUE(s.removeTrailing('.', '0')); }, "1000"},
        {"1,50", [](ZString& s) { EXPECT_TRUE(s.removeTrailing(',', '0')); }, "1,5"},
        {"1.0  ", [](ZString& s) { EXPECT_TRUE(s.removeTrailing('.', ' ')); }, "1"},
        {"12.0", [](ZString& s) { EXPECT_TRUE(s.removeTrailing(',', '0')); }, "12"},
        {"12,0", [](ZString& s) { EXPECT_TRUE(s.clipDecimal(',')); }, "12"},
        {".0", [](ZString& s) { EXPECT_TRUE(s.clipDecimal('.')); }, ".0"},
        {"1.00", [](ZString& s) { EXPECT_TRUE(s.clipDecimal('.')); }, "1.00"},
        {"\r\na\r\n\r\nb\rc\n", [](ZString& s) { s = s.cleanupLines(); }, "a\nb\nc\n"},
        {"\n\r\n", [](ZString& s) { s = s.cleanupLines(); }, ""},
    };
    for (auto& row : rows)
        inEveryForm(row.before, [&](ZString s, ZString::Type type) {
            ZString shared(s);
            row.tidy(s);
            EXPECT_EQ(utf8(s), row.after) << row.before << type;
            EXPECT_EQ(utf8(shared), row.before);
        });
    ZString wide(u" a ");
    EXPECT_TRUE(wide.trimEndings(' '));
    EXPECT_EQ(wide.type(), ZString::WChar);
}

TEST_F(StringTidy, Checks) {
    struct {
        const char* text;
        int min, max;
        bool hash, passes;
    } rows[] = {{"", 0, 9, false, true},      {"", 1, 9, true, false},      {"12aF", 4, 4, false, true},
                {"12aF", 5, 9, false, false}, {"12aF", 1, 3, false, false}, {"#12", 3, 3, true, true},
                {"#12", 1, 2, true, false},   {"#12", 1, 9, false, false},  {"1#2", 1, 9, true, false},
                {"12g", 1, 9, true, false},   {"#", 1, 1, true, true}};
    for (auto& row : rows)
        inEveryForm(row.text, [&](const ZString& s, ZString::Type) {
            EXPECT_EQ(s.checkHexadecimal(row.min, row.max, row.hash), row.passes) << row.text << row.min;
        });
    inEveryForm("abc\xC3\xA9", [](const ZString& s, ZString::Type) {
        EXPECT_TRUE(s.checkAlphabet("xa\xC3\xA9"
                                    "cb"));
        EXPECT_TRUE(s.checkAlphabet(U"\xE9"
                                    U"cba"));
        EXPECT_FALSE(s.checkAlphabet("abc") || s.checkAlphabet(ZString()));
        EXPECT_TRUE(ZString().checkAlphabet(s) && ZString().checkAlphabet(ZString()));
    });
}

TEST_F(StringTidy, Pairs) {
    ZStringPair pair(ZString(u"one  two "));
    EXPECT_EQ(utf8(pair.first) + "|" + utf8(pair.second), "one|two");
    EXPECT_TRUE(ZStringPair(ZString("one")).isEmpty() && ZStringPair(ZString("a b c")).isEmpty());
    ZStringPair narrow(ZString("one two"));
    EXPECT_TRUE(narrow == pair);
    EXPECT_EQ(narrow.hashKey(), pair.hashKey());
    EXPECT_LT(ZStringPair("one", "a").compare(pair), 0);
}

// Resource strings

TEST_F(StringTidy, PlaceholdersTakeTheArguments) {
    struct {
        const char *text, *result, *coded;
    } rows[] = {
        {"%1 of %2: %3", "7 of x\xE3\x81\x82: 0.5", "7 of x\xE3\x81\x82: 0.5"},
        {"%3%3 %1", "0.50.5 7", "0.50.5 7"},
        {"100%% %4 %9", "100%  %9", "100%  %9"},
        {"code %0", "code %0", "code 5"},
        {"\\%1 \\\\ \\n %", "%1 \\ \\n %", "%1 \\ \\n %"},
        {"%d%", "%d%", "%d%"},
        {"\xE3\x81\x82%2", "\xE3\x81\x82x\xE3\x81\x82", "\xE3\x81\x82x\xE3\x81\x82"},
        {"\\", "\\", "\\"},
    };
    const ZStringArg values[] = {7, "x\xE3\x81\x82", 0.5, ZStringArg()};
    for (auto& row : rows)
        inEveryForm(row.text, [&](const ZString& s, ZString::Type) {
            ZString a(s), w(s), i(s);
            EXPECT_TRUE(a.execResA("isr ", 7, "x\xE3\x81\x82", 0.5, nullptr));
            EXPECT_TRUE(w.execResW("isr ", 7, u"x\x3042", 0.5, nullptr));
            EXPECT_TRUE(i.execResI("isr ", 7, U"x\x3042", 0.5, nullptr));
            EXPECT_EQ(utf8(a), row.result);
            EXPECT_EQ(utf8(w), row.result);
            EXPECT_EQ(utf8(i), row.result);
            EXPECT_EQ(w.type(), ZString::WChar);
            EXPECT_EQ(i.type(), ZString::IChar);
            a = w = i = s;
            EXPECT_TRUE(a.execResAArg(5, values, 4) && w.execResWArg(5, values, 4) && i.execResIArg(5, values, 4));
            EXPECT_EQ(utf8(a), row.coded);
            EXPECT_EQ(utf8(w), row.coded);
            EXPECT_EQ(utf8(i), row.coded);
        });
    ZString coded("%0/%1");
    EXPECT_TRUE(coded.execResW(3, "i", -2));
    EXPECT_EQ(utf8(coded), "3/-2");
    EXPECT_TRUE(coded.set("%1"));
    EXPECT_TRUE(coded.execResA("s", ""));
    EXPECT_TRUE(coded.isEmpty() && coded.isInternal());
    EXPECT_TRUE(coded.execResAArg(values, 4));
}

static ZString runIndex(uint index, const char* types, ...) {
    var_arg list;
    va_start(list.list, types);
    ZString made(index, types, &list);
    va_end(list.list);
    return made;
}

TEST_F(StringTidy, RunningAnIndexAndFailing) {
    ZString text(u"%1 and %2");
    uint index = text.internalize();
    EXPECT_EQ(utf8(runIndex(index, "is", 4, "five")), "4 and five");
    EXPECT_TRUE(text.isInternal());
    text.clear();
    EXPECT_TRUE(runIndex(index, "is", 4, "five").isEmpty());
    std::string big(3 << 20, 'x');
    ZString large("%1%1%1%1");
    EXPECT_TRUE(large.execResA("s", big.c_str()));
    EXPECT_EQ(large.length(), 12 << 20);
    orv::strtable::close();
    failEachAllocation([&](AllocProbe& probe) {
        ZString s(u"%1 and a text that is too long for the room of a converted text, so a block is made: %2");
        ZString kept(s);
        if (zrecover() || s.execResI("is", 4, U"five")) return;
        EXPECT_TRUE(probe.failed());
        EXPECT_EQ(s.compare(kept), 0);
    });
    ASSERT_TRUE(orv::strtable::open());
}
