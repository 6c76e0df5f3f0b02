#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"

#include <chrono>

namespace {
using Change = void (*)(ZString&);
struct Row {
    const char* before;
    Change change;
    const char* after;
};
const std::string kana = "\xE3\x81\x82", smile = "\xF0\x9F\x98\x80";

void PrintTo(const Row& row, std::ostream* out) { *out << row.before << " -> " << row.after; }
} // namespace

class StringEdit : public StringTest, public testing::WithParamInterface<Row> {};

// Positions count units: these texts are ASCII, so that they are the same in every form.
INSTANTIATE_TEST_SUITE_P(
    Changes, StringEdit,
    testing::Values(Row{"abc", [](ZString& s) { EXPECT_TRUE(s.insert(1, ZString("XY"))); }, "aXYbc"},
                    Row{"abc", [](ZString& s) { EXPECT_TRUE(s.insert(-5, ZString(u"X"))); }, "Xabc"},
                    Row{"abc", [](ZString& s) { EXPECT_TRUE(s.insert(99, ZString(U"X"))); }, "abcX"},
                    Row{"abc", [](ZString& s) { EXPECT_TRUE(s.insert(1, s)); }, "aabcbc"},
                    Row{"abc", [](ZString& s) { EXPECT_TRUE(s.insert(1, ZString())); }, "abc"},
                    Row{"abcdef", [](ZString& s) { EXPECT_TRUE(s.remove(1, 2)); }, "adef"},
                    Row{"abcdef", [](ZString& s) { EXPECT_TRUE(s.remove(-2, 4)); }, "cdef"},
                    Row{"abcdef", [](ZString& s) { EXPECT_TRUE(s.remove(4, 0x7FFFFFFF)); }, "abcd"},
                    Row{"abcdef", [](ZString& s) { EXPECT_FALSE(s.remove(-2, 2)); }, "abcdef"},
                    Row{"abcdef", [](ZString& s) { EXPECT_FALSE(s.remove(6, 1)); }, "abcdef"},
                    Row{"abcdef", [](ZString& s) { EXPECT_FALSE(s.remove(-0x7FFFFFFF - 1, -1)); }, "abcdef"},
                    Row{"abc", [](ZString& s) { EXPECT_TRUE(s.set(1, 'X')); }, "aXc"},
                    Row{"abc", [](ZString& s) { EXPECT_FALSE(s.set(3, u'X') || s.set(-1, U'X')); }, "abc"},
                    Row{"abcdef", [](ZString& s) { EXPECT_TRUE(s.set(2, ZString(u"XY"))); }, "abXYef"},
                    Row{"abcdef", [](ZString& s) { EXPECT_TRUE(s.set(4, ZString("XYZ"))); }, "abcdXY"},
                    Row{"abcdef", [](ZString& s) { EXPECT_TRUE(s.set(1, s, 3)); }, "aabcef"},
                    Row{"abcdef", [](ZString& s) { EXPECT_FALSE(s.set(6, ZString("X"))); }, "abcdef"},
                    Row{"abc", [](ZString& s) { EXPECT_TRUE(s.fill('-')); }, "---"},
                    Row{"aBc Z[`{@", [](ZString& s) { EXPECT_TRUE(s.upper()); }, "ABC Z[`{@"},
                    Row{"aBc Z[`{@", [](ZString& s) { EXPECT_TRUE(s.lower()); }, "abc z[`{@"},
                    Row{"ab", [](ZString& s) { EXPECT_TRUE(s.appendn(3, "cd", nullptr, "e")); }, "abcde"},
                    Row{"ab", [](ZString& s) { EXPECT_TRUE(s.appendn(0)); }, "ab"},
                    Row{"one two  three", [](ZString& s) { s = s.words(1); }, "one"},
                    Row{"one two  three", [](ZString& s) { s = s.words(3); }, "one two "},
                    Row{"one two  three", [](ZString& s) { s = s.words(4); }, "one two  three"},
                    Row{"one", [](ZString& s) { s = s.words(0); }, ""},
                    // Replacing: one code, all occurrences, and what the replacing itself makes
                    Row{"banana", [](ZString& s) { EXPECT_EQ(s.replace('a', 'o'), 3); }, "bonono"},
                    Row{"banana", [](ZString& s) { EXPECT_EQ(s.replace('a', 0), 3); }, "bnn"},
                    Row{"banana", [](ZString& s) { EXPECT_EQ(s.replace('x', 'y'), 0); }, "banana"},
                    Row{"aXbXc", [](ZString& s) { EXPECT_EQ(s.replace("X", "--"), 2); }, "a--b--c"},
                    Row{"aaaa", [](ZString& s) { EXPECT_EQ(s.replace("aa", "a"), 3); }, "a"},
                    Row{"((()))", [](ZString& s) { EXPECT_EQ(s.replace("()", ""), 3); }, ""},
                    Row{"xaabby", [](ZString& s) { EXPECT_EQ(s.replace("ab", "ba"), 4); }, "xbbaay"},
                    Row{"aa", [](ZString& s) { EXPECT_EQ(s.replace("a", "aa"), 2); }, "aaaa"},
                    Row{"abab", [](ZString& s) { EXPECT_EQ(s.replace("", "x"), 0); }, "abab"},
                    Row{"abab", [](ZString& s) { EXPECT_EQ(s.replace(s, "x"), 1); }, "x"},
                    Row{"abab", [](ZString& s) { EXPECT_EQ(s.replace("b", s), 2); }, "aababaabab"}));

TEST_P(StringEdit, InEveryForm) {
    const Row& row = GetParam();
    inEveryForm(row.before, [&](ZString s, ZString::Type type) {
        ZString shared(s);
        row.change(s);
        EXPECT_EQ(utf8(s), row.after) << type;
        EXPECT_EQ(utf8(shared), row.before) << type;
        ZString alone = inForm(row.before, type);
        row.change(alone);
        EXPECT_EQ(utf8(alone), row.after) << type;
    });
}

class StringWide : public StringTest {};

TEST_F(StringWide, AddedTextTakesTheWidth) {
    for (ZString::Type type : widths) {
        ZString s = inForm("ab", type);
        EXPECT_TRUE(s.insert(1, ZString(U"\x3042\x1F600")));
        EXPECT_EQ(s.type(), type);
        EXPECT_EQ(utf8(s), "a" + kana + smile + "b");
        EXPECT_EQ(s.replace(ZString(u"\x3042"), ZString("--")), 1);
        EXPECT_EQ(s.replace(0x1F600, 0xE9), 1);
        EXPECT_EQ(utf8(s), "a--\xC3\xA9"
                           "b");
        EXPECT_EQ(s.type(), type);
    }
}

TEST_F(StringWide, CaseMayChangeTheLength) {
    for (ZString::Type type : widths) {
        ZString s = inForm("stra\xC3\x9F"
                           "e \xC7\x86 \xEF\xAC\x81",
                           type);
        EXPECT_TRUE(s.upper());
        EXPECT_EQ(utf8(s), "STRASSE \xC7\x84 FI");
        EXPECT_EQ(s.type(), type);
        EXPECT_TRUE(s.lower());
        EXPECT_EQ(utf8(s), "strasse \xC7\x86 fi");
    }
}

TEST_F(StringWide, UnitsAreCutToTheWidth) {
    ZString narrow("abc"), wide(u"abc"), full(U"abc");
    EXPECT_TRUE(narrow.set(1, U'\x3142') && wide.set(1, U'\x13142') && full.set(1, U'\x13142'));
    EXPECT_EQ(utf8(narrow), "aBc");
    EXPECT_EQ(utf8(wide), "a\xE3\x85\x82"
                          "c");
    EXPECT_EQ(static_cast<const ichar*>(full.view().text)[1], U'\x13142');
}

TEST_F(StringWide, ReplacingThatNeverEndsIsGivenUp) {
    std::string text(40, 'a');
    ZString s((text + "b").c_str());
    EXPECT_EQ(s.replace("ab", "bbaa"), -1);
    EXPECT_EQ(utf8(s), text + "b");
}

TEST_F(StringWide, ReplacingInLongTextsIsLinear) {
    auto begin = std::chrono::steady_clock::now();
    // Not longer: a sanitizer looks at all of the text in every search.
    std::string text(1 << 17, '(');
    text += std::string(1 << 17, ')');
    ZString s(text.c_str(), int(text.size()));
    EXPECT_EQ(s.replace("()", ""), 1 << 17);
    EXPECT_TRUE(s.isEmpty());
    ZString words(std::string(1 << 17, 'x').c_str());
    EXPECT_EQ(words.replace('x', 0x3042), 1 << 17);
    EXPECT_EQ(words.length(), 3 << 17);
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(20));
}

TEST_F(StringWide, AFailedAllocationLeavesTheOldText) {
    using Try = bool (*)(ZString&);
    const Try tries[] = {
        [](ZString& s) { return s.insert(2, ZString(U"\x3042 a longer text, so that the record has to grow for it")); },
        [](ZString& s) { return s.insert(2, s); },
        [](ZString& s) { return s.remove(0, 3); },
        [](ZString& s) { return s.set(2, 'x'); },
        [](ZString& s) { return s.set(2, s); },
        [](ZString& s) { return s.fill('x'); },
        [](ZString& s) { return s.upper(); },
        [](ZString& s) { return s.replace("e", "a text") >= 0; },
        [](ZString& s) { return s.replace('e', 0x1F600) >= 0; },
        [](ZString& s) { return s.appendn(2, "01234567890123456789", "01234567890123456789"); },
    };
    orv::strtable::close();
    const std::string text = "before " + kana;
    for (auto& attempt : tries)
        for (ZString::Type type : {ZString::Internal, ZString::Char, ZString::IChar})
            failEachAllocation([&](AllocProbe& probe) {
                orv::strtable::open();
                {
                    ZString s = inForm(text, type), shared(s);
                    if (s == text.c_str() && zrecover() == 0 && !attempt(s)) {
                        EXPECT_TRUE(probe.failed());
                        EXPECT_TRUE(s == text.c_str());
                    }
                    EXPECT_TRUE(shared.isEmpty() || shared == text.c_str());
                    zrecover();
                }
                orv::strtable::close();
            });
    ASSERT_TRUE(orv::strtable::open());
}
