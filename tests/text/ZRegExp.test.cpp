#include "text/ZRegExp.h"

#include "core/ZSelector.h"
#include "tests/support/CoreScope.h"
#include "toolkit/clock.h"

#include <gtest/gtest.h>
#include <string>
#include <thread>

namespace {

class RegExpTest : public CoreTest {};

constexpr ZString::Type widths[] = {ZString::Char, ZString::WChar, ZString::IChar};
constexpr auto none = ZRegExp::None, groups = ZRegExp::DefGroup, unicode = ZRegExp::UCDGroup;
constexpr auto both = ZRegExp::Flags(groups | unicode);

std::string plain(const ZString& text) {
    char* units = text.astr();
    std::string made = units ? units : "";
    zfree(units);
    return made;
}
ZString inWidth(const char* text, ZString::Type width) {
    ZString made(text);
    EXPECT_TRUE(made.setType(width));
    return made;
}

// Texts are given in UTF-8; places are those of the text as UTF-32.
TEST_F(RegExpTest, MatchesInEveryWidth) {
    struct {
        const char *pattern, *text;
        ZRegExp::Flags flags;
        int first;
        bool match;
        int check, find, length;
    } rows[] = {
        {"ab+", "abbb", none, 0, true, 4, 0, 4},
        {"ab+", "xabbc", none, 0, false, -1, 1, 3},
        {"ab+", "abxab", none, 1, false, 2, 3, 2},
        {"a", "abc", none, 0, false, 1, 0, 1},
        {"a|abc", "abc", none, 0, true, 1, 0, 1},
        {"", "abc", none, 0, false, -1, -1, 0},
        {"x*", "abc", none, 2, false, 0, 2, 0},
        {"x*", "abc", none, 3, false, 0, 3, 0},
        {"x*", "abc", none, 4, false, 0, -1, 0},
        {"$", "", none, 0, true, 0, 0, 0},
        {"(?<=b)c", "abcc", none, 2, false, -1, 2, 1},
        {"^b", "ab", none, 1, false, -1, -1, 0},
        {"(a)\\1", "xaa", groups, 0, false, -1, 1, 2},
        {"\\Gb", "abb", none, 1, false, -1, 1, 1},
        {"gr.n", "ein grün", unicode, 0, false, -1, 4, 4},
        {"\\w+", "日本 語", unicode, 0, false, 2, 0, 2},
        {"(?i)STRASSE|ÄÖ", "xäö", unicode, 0, false, -1, 1, 2},
        {"😀", "日😀x", none, 0, false, -1, 1, 1},
        {".", "日😀x", unicode, 1, false, 1, 1, 1},
    };
    for (auto& row : rows)
        for (ZString::Type width : widths) {
            const ZRegExp expression(inWidth(row.pattern, width), row.flags);
            EXPECT_EQ(expression.isEmpty(), !*row.pattern);
            const ZString text = inWidth(row.text, ZString::IChar);
            int length = -1;
            SCOPED_TRACE(std::string(row.pattern) + " on " + row.text + " in width " + std::to_string(width));
            EXPECT_EQ(expression.match(text), row.match);
            EXPECT_EQ(expression.check(text), row.check);
            EXPECT_EQ(expression.find(text, false, row.first, length), row.find);
            EXPECT_EQ(length, row.length);
            EXPECT_FALSE(expression.gaveUp());
        }
    EXPECT_TRUE(ZRegExp("set[A-Z]\\w*").match(ZSelector("setWidth")));
    // Places inside a character of another width: of a text's bytes the pattern sees the character's units.
    const ZRegExp wide(ZString(u"\\x{DE00}"), none);
    EXPECT_EQ(wide.find(ZString("a😀b")), 1);
    EXPECT_EQ(ZRegExp("\xF0").find(ZString(U"a😀b")), 1);
    EXPECT_EQ(ZRegExp("x", unicode).find(ZString("\xE3\x81x\xFFx"), false, 3), 4);
}

TEST_F(RegExpTest, TakesPartsOfAMatch) {
    struct {
        const char *pattern, *text;
        bool match;
        int check, find;
    } rows[] = {{"dogs?body", "dog", true, 3, 0},     {"dogs?body", "a dogs", false, -1, 2},
                {"dogs?body", "dx", false, -1, -1},   {"\\d+-\\d+", "12-", true, 3, 0},
                {"\\d+-\\d+", "12-3 ", false, 4, 0},  {"a.*z|b", "xxabc", false, -1, 2},
                {"abc", "", false, -1, -1},           {"a|abc", "ab", true, 1, 0},
                {"(?x)a|abc # or", "ab", true, 1, 0}, {"(*ANYCRLF)a|abc\\Q", "ab", true, 1, 0},
                {"\\((?R)?\\)", "((", true, 2, 0}};
    for (auto& row : rows) {
        const ZRegExp expression(row.pattern);
        SCOPED_TRACE(std::string(row.pattern) + " on " + row.text);
        EXPECT_EQ(expression.match(ZString(row.text), true), row.match);
        EXPECT_EQ(expression.check(row.text, true), row.check);
        EXPECT_EQ(expression.find(row.text, true), row.find);
    }
}

TEST_F(RegExpTest, RefusesBadPatternsAndKeepsTheOld) {
    struct {
        const char* pattern;
        int position;
    } rows[] = {{"a(b", 3}, {"[z-a]", 3}, {"*", 0}, {"(a)(?<n>b)\\k<m>", 13}, {"(*UTF)a", 6}};
    ZRegExp expression("a+", groups);
    for (auto& row : rows) {
        EXPECT_FALSE(expression.setPattern(row.pattern)) << row.pattern;
        EXPECT_EQ(expression.errorPosition(), row.position) << row.pattern << ": " << plain(expression.errorText());
        EXPECT_FALSE(expression.errorText().isEmpty());
        EXPECT_EQ(expression.pattern(), ZString("a+"));
        EXPECT_EQ(expression.check("aab"), 2);
    }
    EXPECT_FALSE(expression.setPattern(std::string(3000, '(').append(3000, ')').c_str()));
    // Text changed as text is compiled by `reset`, or comes back.
    EXPECT_TRUE(expression.append("b"));
    EXPECT_FALSE(expression.match(ZString("aab")));
    EXPECT_TRUE(expression.reset());
    EXPECT_EQ(expression.errorPosition(), -1);
    EXPECT_TRUE(expression.match(ZString("aab")));
    EXPECT_TRUE(expression.append("("));
    EXPECT_FALSE(expression.reset());
    EXPECT_EQ(static_cast<const ZString&>(expression), ZString("a+b"));
    ASSERT_TRUE(expression.setCharType(ZString::WChar));
    EXPECT_EQ(expression.getCharType(), ZString::WChar);
    EXPECT_FALSE(expression.setCharType(ZString::Internal));
    const ZRegExp copy = expression;
    expression.clear();
    EXPECT_EQ(expression.check("aab"), -1);
    EXPECT_EQ(copy.check("aab"), 3);
    {
        ZFailGuard guard;
        const ZRegExp bad("(");
        EXPECT_TRUE(guard.rose());
        EXPECT_TRUE(bad.isEmpty());
        EXPECT_EQ(bad.errorPosition(), 1);
        guard.forget();
    }
}

/// The tree as text: each group its label, its name, and those inside it.
std::string tree(const ZRegExp& expression, int node) {
    std::string made = std::to_string(expression.label(node)) + plain(expression.name(node));
    const int inner = expression.child(node);
    if (inner >= 0) made += "(";
    for (int i = inner; i >= 0; i = expression.next(i)) {
        EXPECT_EQ(expression.parent(i), node);
        EXPECT_EQ(expression.depth(i), expression.depth(node) + 1);
        made += (i == inner ? "" : " ") + tree(expression, i);
    }
    return inner >= 0 ? made + ")" : made;
}

TEST_F(RegExpTest, ShowsItsGroupsAsATree) {
    struct {
        const char *pattern, *tree;
        ZRegExp::Flags flags;
    } rows[] = {
        {"abc", "0", groups},
        {"a(b(c)|d)(?:e(f))", "0(1(2) -1(3))", groups},
        {"a(b(?<x>c))", "0(-1(1x))", none},
        {"(?n)(a)(?-n)(b)", "0(-1 1)", groups},
        {"(?-n)(a)", "0(1)", none},
        {"(?:(?n)(a)|(b))(c)", "0(-1(-1 -1) 1)", groups},
        {"(?|(a)(b)|(c))(d)", "0(-1(1 2 1) 3)", groups},
        {"(?<a>x)(?'b'y)(?P<c>z)", "0(1a 2b 3c)", none},
        {"[(](a)[]()](b)[[:alpha:](](c)[\\](](d)[^]()](e)", "0(1 2 3 4 5)", groups},
        {"\\((a)\\Q(b)\\E(c)\\c((d)[\\Q](]\\E(](e)", "0(1 2 3 4)", groups},
        {"(?#(a)(b)(?x) (c) # (d)\n(e)", "0(1 2 3)", groups},
        {"(*ANYCRLF)(?x)#(\r(a)", "0(1)", groups},
        {"(?=(a))(?!b)(?<=(c))(?<!d)(?>e)(*pla:(f))", "0(-1(1) -1 -1(2) -1 -1 -1(3))", groups},
        {"(a)?(?(1)(b)|(c))(?(?=(d))e)(?(DEFINE)(?<n>f))", "0(1 -1(2 3) -1(-1(4)) -1(5n))", groups},
        {"(*MARK:(x)(a)(*:m)(?C\"(\"\")\")(b)(?1)(?P>z)(?<z>c)\\g<z>\\g{-1}\\k{z}", "0(1 2 3z)", groups},
        {"(?xx)[a (](b)(?^)[ #(](c)", "0(1 2)", groups},
        {"(?<日>a)", "0(1日)", both},
    };
    for (auto& row : rows)
        for (ZString::Type width : widths) {
            const ZRegExp expression(inWidth(row.pattern, width), row.flags);
            EXPECT_EQ(tree(expression, expression.root()), row.tree)
                << row.pattern << ": " << plain(expression.errorText());
        }
    const ZRegExp expression("(?:(a)(?<x>b))(?<y>c)", groups);
    const int inner = expression.child(0);
    EXPECT_EQ(expression.findLabel(0, 2), expression.findName(inner, "x"));
    EXPECT_EQ(expression.findLabel(inner, 3), -1);
    EXPECT_EQ(expression.findName(inner, "y"), -1);
    EXPECT_EQ(expression.findLabel(0, 0), 0);
    EXPECT_EQ(plain(expression.text(expression.findName(0, "y"))), "(?<y>c)");
    for (int node : {-1, 5, 1 << 30}) {
        EXPECT_EQ(expression.child(node), -1);
        EXPECT_EQ(expression.next(node), -1);
        EXPECT_EQ(expression.parent(node), -1);
        EXPECT_EQ(expression.depth(node), 0);
        EXPECT_EQ(expression.findLabel(node, 0), -1);
        EXPECT_TRUE(expression.extract(node).isEmpty());
        EXPECT_FALSE(expression.text(node).length());
    }
    EXPECT_EQ(ZRegExp().root(), -1);
}

TEST_F(RegExpTest, ExtractsSubtrees) {
    struct {
        const char* pattern;
        int node;
        const char *text, *matching; ///< no text where the part can't stand alone
    } rows[] = {
        {"x(a|b)+", 1, "(a|b)", "b"},
        {"x(a)", 0, "x(a)", "xa"},
        {"(a)((b|c)\\3)", 2, "((b|c)\\g{2})", "cc"},
        {"(a)((b)\\g{3}\\g{-1}(?3))", 2, "((b)\\g{2}\\g{-1}(?2))", "bbbb"},
        {"(a)((?<n>b)(?(3)c)\\k<n>)", 2, "((?<n>b)(?(2)c)\\k<n>)", "bcb"},
        {"(a)(b\\1)", 2, nullptr, ""},
        {"(a)(b(?R)?)", 2, nullptr, ""},
        {"(?<n>a)(b\\k<n>)", 2, nullptr, ""},
        {"(?J)(?<n>a)((?<n>b)\\k<n>)", 2, nullptr, ""},
        {"(a)(b(?-2))", 2, nullptr, ""},
        {"(?i)a(b(?-i)c)", 1, "(?i)(b(?-i)c)", "Bc"},
        {"(*ANYCRLF)(?ix-s)a (?^)(?x: b (c) )", 2, "(*ANYCRLF)(?x)(c)", "c"},
        {"(?xx)a (b [c d])", 1, "(?xx)(b [c d])", "bd"},
        {"(?n)(?<z>a)", 1, "(?n)(?<z>a)", "a"},
        {"(a)(?=(b))", 2, "(?=(b))", nullptr},
    };
    for (auto& row : rows) {
        const ZRegExp expression(row.pattern, groups);
        ASSERT_FALSE(expression.isEmpty()) << row.pattern;
        const ZRegExp part = expression.extract(row.node);
        EXPECT_EQ(part.isEmpty(), !row.text) << row.pattern;
        EXPECT_EQ(part.errorText().isEmpty(), !!row.text);
        EXPECT_EQ(plain(part.pattern()), row.text ? row.text : "") << row.pattern;
        EXPECT_EQ(part.getFlags(), groups);
        EXPECT_TRUE(!row.text || !row.matching || part.match(ZString(row.matching))) << row.pattern;
    }
    EXPECT_EQ(plain(ZRegExp("(?-n)(?:(a)\\1)", none).extract(1).pattern()), "(?-n)(?:(a)\\1)");
}

TEST_F(RegExpTest, SearchesLongTextsInStretches) {
    for (ZString::Type width : widths)
        for (const char* filling : {"a", "\xC3\xA4", "\r\n", "\xF0\x9F\x98\x80"}) {
            std::string bytes;
            while (bytes.size() < 600000) bytes += filling;
            // The match lies behind stretches of every size, and starts in the middle of none.
            const ZRegExp expression(inWidth("(?<=(.|\\n)(?#))(?=xyz)x[[:alpha:]]+?z|^\\Bx", width), unicode);
            ASSERT_FALSE(expression.isEmpty());
            const ZString text(inWidth((bytes + "xyz!").c_str(), width));
            EXPECT_EQ(expression.find(text), text.length() - 4);
            EXPECT_EQ(ZRegExp(inWidth("(?<![\\x{80}-\\x{10FFFF}a\\r\\n])(?!^)", width), unicode).find(text),
                      text.length() - 3);
        }
    // What one place decides about others holds over the whole text.
    const std::string many(100000, 'a');
    EXPECT_EQ(ZRegExp("a(*COMMIT)b|c").find((many + "c").c_str()), -1);
    EXPECT_EQ(ZRegExp("a*+(*SKIP)b|a").find((many + "c").c_str()), -1);
    EXPECT_EQ(ZRegExp("\\Gc").find((many + "c").c_str()), -1);
    // More nesting than the thread's stack has room for.
    EXPECT_EQ(ZRegExp("(?:(a)|b)*c", groups).find((many + "c").c_str()), 0);
}

TEST_F(RegExpTest, GivesUpInTime) {
    const std::string many(80000, 'a');
    struct {
        const char *pattern, *text;
        bool whole;
    } rows[] = {{"a(?=.*[xz])", many.c_str(), false},
                {"(a+)+$", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", false},
                {"(a+)+", "aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaab", true},
                {"(?s)a(?=[^x]*+x)", many.c_str(), false},
                {"\\Ga*a*a*a*[bc]", many.c_str(), false}};
    for (auto& row : rows)
        for (bool partial : {false, true}) {
            ZRegExp expression(row.pattern);
            expression.setTimeLimit(200);
            const large start = toolkit::processClock();
            const bool found =
                row.whole ? expression.match(ZString(row.text), partial) : expression.find(row.text, partial) >= 0;
            const large took = toolkit::processClock() - start;
            EXPECT_LT(took, 2000) << row.pattern;
            EXPECT_TRUE(found ? partial : expression.gaveUp()) << row.pattern;
            EXPECT_EQ(expression.errorText().isEmpty(), found) << row.pattern;
            EXPECT_TRUE(expression.reset(0));
            EXPECT_FALSE(expression.gaveUp());
        }
}

TEST_F(RegExpTest, ThreadsShareAnExpression) {
    const ZRegExp expression("(?:(a)|b)*c", groups);
    const std::string many(60000, 'a');
    std::thread threads[4];
    int found[4] = {};
    for (int i = 0; i < 4; ++i)
        threads[i] = std::thread([&, i, own = expression] {
            const ZString text((many + "c").c_str());
            for (int n = 0; n < 20; ++n) found[i] += own.find(text) == 0 && own.match(text);
        });
    for (std::thread& thread : threads) thread.join();
    for (int count : found) EXPECT_EQ(count, 20);
}

TEST_F(RegExpTest, FailedAllocationKeepsTheOld) {
    const ZString letters("DD"), name("n"), first("(?<a>x)|y"), second(u"(?i)([a-c](?<n>d+)\\2)e"),
        text("long text that has to be converted: "
             "0123456789012345678901234567890 ADDDde");
    failEachAllocation([&](AllocProbe& probe) {
        ZRegExp expression(first, both);
        if (expression.isEmpty()) return void(zrecover());
        const bool set = expression.setPattern(second);
        EXPECT_EQ(expression.pattern(), set ? second : first);
        const int at = expression.find(text);
        EXPECT_TRUE(!set || at == 68 || expression.gaveUp());
        const ZRegExp part = expression.extract(expression.findName(0, name));
        EXPECT_TRUE(part.isEmpty() || part.check(letters) == 2 || part.gaveUp());
        EXPECT_TRUE(probe.failed() || (set && at >= 0 && !part.isEmpty()));
        zrecover();
    });
}

} // namespace
