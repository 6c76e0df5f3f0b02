#include "core/ZArrayT.h"
#include "tests/support/AllocProbe.h"
#include "tests/text/textsamples.h"

#include <algorithm>

namespace {
struct Find {
    const char *text, *needle;
    int first, last, firstI, lastI;
};
/// The parts, each in brackets.
std::string shown(const ZArrayT<ZString>& parts) {
    std::string out;
    for (auto& part : parts) out += "[" + utf8(part) + "]";
    return out;
}
} // namespace

using StringSearch = StringTest;

TEST_F(StringSearch, PositionsInEveryPairOfForms) {
    const Find rows[] = {
        {"abcabc", "bc", 1, 4, 1, 4}, {"abcABC", "BC", 4, 4, 1, 4}, {"abc", "abcd", -1, -1, -1, -1},
        {"abc", "x", -1, -1, -1, -1}, {"", "a", -1, -1, -1, -1},    {"aaa", "aa", 0, 1, 0, 1},
        {"abc", "", 0, 3, 0, 3},      {"", "", 0, 0, 0, 0},         {"straSSe", "ss", -1, -1, 4, 4},
    };
    for (auto& row : rows)
        inEveryForm(row.text, [&](const ZString& text, ZString::Type p) {
            inEveryForm(row.needle, [&](const ZString& needle, ZString::Type q) {
                std::string what = std::string(row.text) + "," + row.needle + char('0' + p) + char('0' + q);
                EXPECT_EQ(text.pos(needle), row.first) << what;
                EXPECT_EQ(text.rpos(needle), row.last) << what;
                EXPECT_EQ(text.posi(needle), row.firstI) << what;
                EXPECT_EQ(text.rposi(needle), row.lastI) << what;
            });
        });
}

TEST_F(StringSearch, FromAPositionAndForCodePoints) {
    inEveryForm("ab\xC3\xA9 ab\xC3\xA9", [](const ZString& s, ZString::Type type) {
        int second = type == ZString::Char || type == ZString::Internal ? 5 : 4;
        EXPECT_EQ(s.pos(1, "ab"), second);
        EXPECT_EQ(s.pos(-7, "ab"), 0);
        EXPECT_EQ(s.pos(99, "ab"), -1);
        EXPECT_EQ(s.posi(1, "AB"), second);
        EXPECT_EQ(s.pos('b'), 1);
        EXPECT_EQ(s.pos(2, u'b'), second + 1);
        EXPECT_EQ(s.pos(U'\xE9'), 2);
        EXPECT_EQ(s.rpos(u'\xE9'), second + 2);
        EXPECT_EQ(s.codePosI(0xC9), 2);
        EXPECT_EQ(s.codePosI(3, 0xC9), second + 2);
        EXPECT_EQ(s.codeRPosI('A'), second);
        EXPECT_EQ(s.codeRPos('A'), -1);
        EXPECT_EQ(s.codePos(0), -1);
    });
    EXPECT_EQ(ZString(u"\xFFFD").codePos(0xD800), -1);
    EXPECT_EQ(ZString(u"\xFFFD").replace(0x110000, 'x'), 0);
}

TEST_F(StringSearch, EndsAndPatterns) {
    inEveryForm("Stra\xC3\x9F"
                "e.TXT",
                [](const ZString& s, ZString::Type) {
                    EXPECT_TRUE(s.starts("Stra") && s.starts(u"Stra\xDF") && s.starts(""));
                    EXPECT_FALSE(s.starts("stra") || s.starts("Stra\xC3\x9F"
                                                              "e.TXT."));
                    EXPECT_TRUE(s.startsI(U"sTRA\x1E9E"
                                          "e") &&
                                s.startsI(""));
                    EXPECT_FALSE(s.startsI("strasse"));
                    EXPECT_TRUE(s.ends(".TXT") && s.endsI(u"E.txt") &&
                                s.endsI("\xC3\x9F"
                                        "e.txt") &&
                                s.ends(""));
                    EXPECT_FALSE(s.ends(".txt") || s.endsI("xStra\xC3\x9F"
                                                           "e.TXT"));
                    EXPECT_TRUE(s.match("S*.TXT") && s.match(u"Stra?e.*") && s.match("*"));
                    EXPECT_FALSE(s.match("*.txt") || s.match("Stra?.TXT") || s.match(""));
                    EXPECT_TRUE(s.matchi(U"*.t?t"));
                });
    EXPECT_TRUE(ZString().match("*") && ZString().starts(""));
}

TEST_F(StringSearch, Likeness) {
    struct {
        const char *a, *b;
        int distance, common;
    } rows[] = {{"kitten", "sitting", 3, 4},
                {"", "abc", 3, 0},
                {"\xE3\x81\x82"
                 "b",
                 "b\xE3\x81\x82", 2, 1},
                {"same", "same", 0, 4}};
    for (auto& row : rows)
        inEveryForm(row.a, [&](const ZString& a, ZString::Type) {
            inEveryForm(row.b, [&](const ZString& b, ZString::Type) {
                EXPECT_EQ(a.distance(b), row.distance) << row.a;
                EXPECT_EQ(a.longestSubsequence(b), row.common) << row.a;
                EXPECT_TRUE(a.shorterDistance(b, row.distance + 1));
                EXPECT_FALSE(a.shorterDistance(b, row.distance));
            });
        });
    std::string a, b;
    for (int i = 0; i < 300; ++i) a += char('a' + i % 7), b += char('a' + i % 5);
    int table[301][301] = {};
    for (int i = 1; i <= 300; ++i)
        for (int j = 1; j <= 300; ++j)
            table[i][j] = a[i - 1] == b[j - 1] ? table[i - 1][j - 1] + 1 : std::max(table[i - 1][j], table[i][j - 1]);
    EXPECT_EQ(ZString(a.c_str()).longestSubsequence(b.c_str()), table[300][300]);
}

TEST_F(StringSearch, Splitting) {
    struct {
        const char* text;
        ZArrayT<ZString> (*split)(const ZString&);
        const char* parts;
    } rows[] = {
        {"  one\ttwo \n", [](const ZString& s) { return s.split(); }, "[one][two]"},
        {" \t", [](const ZString& s) { return s.split(); }, ""},
        {",a,,b,", [](const ZString& s) { return s.split(',', false); }, "[a][b]"},
        {",a,,b,", [](const ZString& s) { return s.split(',', true); }, "[][a][][b]"},
        {"ab", [](const ZString& s) { return s.split(',', true); }, "[ab]"},
        {"", [](const ZString& s) { return s.split(',', true); }, ""},
        {"a\xE3\x81\x82\xE3\x81\x82"
         "b",
         [](const ZString& s) { return s.split(0x3042, true); }, "[a][][b]"},
        {"a\xE3\x81\x82;b\xE3\x81\x81,c", [](const ZString& s) { return s.split(ZString(u"\x3042;,"), true); },
         "[a][][b\xE3\x81\x81][c]"},
        {"a;b,c", [](const ZString& s) { return s.split(ZString(",;"), false); }, "[a][b][c]"},
        {"abc", [](const ZString& s) { return s.split(ZString(), false); }, "[abc]"},
        {"a::b:::c::", [](const ZString& s) { return s.splitString(u"::"); }, "[a][b][:c]"},
        {"::::", [](const ZString& s) { return s.splitString("::"); }, "[][]"},
        {"::::", [](const ZString& s) { return s.splitString("::", false); }, ""},
        {"a::b", [](const ZString& s) { return s.splitString(""); }, "[a::b]"},
        {"a\tb,,c", [](const ZString& s) { return s.extractNames(','); }, "[a b][c]"},
    };
    for (auto& row : rows)
        inEveryForm(row.text, [&](const ZString& s, ZString::Type type) {
            auto parts = row.split(s);
            EXPECT_EQ(shown(parts), row.parts) << row.text << type;
            for (auto& part : parts) { EXPECT_TRUE(part.isEmpty() || !type || part.type() == type); }
        });
    EXPECT_EQ(utf8(ZString::join(ZString("a,b,c").split(',', true), ZString(u"\x3042"))), "a\xE3\x81\x82"
                                                                                          "b\xE3\x81\x82"
                                                                                          "c");
}

TEST_F(StringSearch, SplittingLongTexts) {
    // Words that come again and words that don't, of one unit to twenty, by separators inside and outside ASCII.
    std::string text;
    std::vector<std::string> words;
    uint32_t seed = 7;
    while (words.size() < 20000) {
        seed = seed * 1664525 + 1013904223;
        std::string word((seed >> 28) % 5 * 4 + 1, char('a' + (seed >> 20) % 26));
        if (seed >> 31) word += std::to_string(words.size() % 5000);
        words.push_back(word);
        text += word + (seed & 0x10000 ? "," : "\xE3\x81\x82");
    }
    for (ZString::Type type : widths) {
        ZString s = inForm(text, type);
        const ZArrayT<ZString> parts = s.split(ZString(u",\x3042"), false);
        ASSERT_EQ(parts.count(), words.size());
        for (uint i = 0; i < parts.count(); ++i) ASSERT_TRUE(parts[i] == words[i].c_str()) << i;
        const ZArrayT<ZString> byCode = s.split(',', true);
        uint commas = uint(std::count(text.begin(), text.end(), ','));
        EXPECT_EQ(byCode.count(), commas + (text.back() != ','));
        EXPECT_LE(byCode.capacity(), byCode.count() + byCode.count() / 8);
        EXPECT_TRUE(ZString::join(byCode, ",") ==
                    (text.back() == ',' ? text.substr(0, text.size() - 1) : text).c_str());
        ZString changed = parts[0];
        EXPECT_TRUE(changed.append("x") && parts[0] == words[0].c_str());
    }
}

TEST_F(StringSearch, SplittingWithoutMemoryGivesNothing) {
    orv::strtable::close();
    using Split = ZArrayT<ZString> (*)(const ZString&);
    for (Split split :
         {Split([](const ZString& s) { return s.split(',', true); }), Split([](const ZString& s) { return s.split(); }),
          Split([](const ZString& s) { return s.splitString(u"e,"); }),
          Split([](const ZString& s) { return s.split(ZString(U"\x3042,"), false); }),
          Split([](const ZString& s) { return s.extractNames(','); })})
        failEachAllocation([&](AllocProbe& probe) {
            ZString text("one,two,\x01three,four,five");
            auto parts = split(text);
            EXPECT_EQ(zrecover() > 0, probe.failed());
            EXPECT_TRUE(probe.failed() ? parts.count() <= 1 : parts.count() > 1);
        });
    ASSERT_TRUE(orv::strtable::open());
}
