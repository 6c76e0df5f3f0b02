#include "text/ZTextSearchT.h"

#include "tests/support/AllocProbe.h"
#include "tests/text/widths.h"
#include "toolkit/text.h"

#include <chrono>
#include <random>

namespace {

template <class C> class TextSearch : public testing::Test {
public:
    using Text = ZTextSearchT<C>;
    using String = std::basic_string<C>;

    /// Where a hit lies in code points; -1 for none.
    static int place(const String& text, const C* hit) {
        return hit ? int(orv::detail::countCodes(text.data(), size_t(hit - text.data()))) : -1;
    }
};
TYPED_TEST_SUITE(TextSearch, Widths);

struct SearchRow {
    const char *text, *needle;
    int first, firstIgnored, last, lastIgnored; ///< code points from the start
};
const SearchRow searchRows[] = {
    {"abcabc", "bc", 1, 1, 4, 4},
    {"abcabc", "", 0, 0, 6, 6},
    {"", "a", -1, -1, -1, -1},
    {"short", "longer than it", -1, -1, -1, -1},
    {"one Two TWO two", "tWO", -1, 4, -1, 12},
    {"aaab aaab", "aab", 1, 1, 6, 6},
    {"xx\u212Aelvin KELVIN", "kelvin", -1, 2, -1, 9},
    {"it i\u017F\u017Fue", "ISSUE", -1, 3, -1, 3},
    {"a k and a kk", "\u212A", -1, 2, -1, 11},
    {"\u0416\u0436 \u0436\u0416", "\u0436\u0416", 3, 0, 3, 3},
    {"plain text, then \u0416 and \u0436", "\u0436", 23, 17, 23, 23},
    {"smile \U0001F600\U0001F601 \U0001F601", "\U0001F601", 7, 7, 9, 9},
    {"\U00010400x \U00010428x", "\U00010428X", -1, 0, -1, 3},
    {"\u03C3\u03C2\u03A3", "\u03A3", 2, 0, 2, 2},
    {"0123456789abcdefghijklmnopqrstuvwxyz0123456789NEEDLE?", "needle", -1, 46, -1, 46},
    {"sssssssssssssssssssssssssssssssssssssssssssssskip", "SKIP", -1, 45, -1, 45},
};

} // namespace

TYPED_TEST(TextSearch, Texts) {
    using Text = ZTextSearchT<TypeParam>;
    for (auto& row : searchRows) {
        auto text = in<TypeParam>(row.text), needle = in<TypeParam>(row.needle);
        const TypeParam *t = text.c_str(), *n = needle.c_str();
        std::string what = std::string(row.text) + " / " + row.needle;
        EXPECT_EQ(this->place(text, Text::strstr(t, n)), row.first) << what;
        EXPECT_EQ(this->place(text, Text::stristr(t, n)), row.firstIgnored) << what;
        EXPECT_EQ(this->place(text, Text::strrstr(t, n)), row.last) << what;
        EXPECT_EQ(this->place(text, Text::strirstr(t, n)), row.lastIgnored) << what;
        // Cut one unit short of the first match's end, it isn't found there.
        auto size = int(text.size());
        EXPECT_EQ(this->place(text, Text::strnstr(t, size + 5, n)), row.first) << what;
        EXPECT_EQ(this->place(text, Text::strnistr(t, size, n)), row.firstIgnored) << what;
        EXPECT_EQ(this->place(text, Text::strnrstr(t, -1, n)), row.last) << what;
        EXPECT_EQ(this->place(text, Text::strnirstr(t, size, n)), row.lastIgnored) << what;
        if (row.first >= 0 && *row.needle) {
            auto hit = Text::strstr(t, n);
            EXPECT_EQ(Text::strnstr(t, int(hit - t + ptrdiff_t(needle.size())) - 1, n), nullptr) << what;
            EXPECT_EQ(Text::strnrstr(t, int(hit - t + ptrdiff_t(needle.size())), n), hit) << what;
        }
    }
    EXPECT_EQ(Text::strstr(nullptr, in<TypeParam>("a").c_str()), nullptr);
}

TYPED_TEST(TextSearch, CodesAndUnitsAndSets) {
    using Text = ZTextSearchT<TypeParam>;
    auto text = in<TypeParam>("aK\u00E9k\u212A\U0001F600-\u00C9K.");
    const TypeParam* t = text.c_str();
    int size = int(text.size());
    struct {
        ichar code;
        int first, firstIgnored, last, lastIgnored;
    } rows[] = {{'k', 3, 1, 3, 8},     {'K', 1, 1, 8, 8},     {0x212A, 4, 1, 4, 8}, {0xE9, 2, 2, 2, 7},
                {0x1F600, 5, 5, 5, 5}, {'z', -1, -1, -1, -1}, {0, -1, -1, -1, -1}};
    for (auto& row : rows) {
        EXPECT_EQ(this->place(text, Text::strchr(t, row.code)), row.first) << uint(row.code);
        EXPECT_EQ(this->place(text, Text::strichr(t, row.code)), row.firstIgnored) << uint(row.code);
        EXPECT_EQ(this->place(text, Text::strrchr(t, row.code)), row.last) << uint(row.code);
        EXPECT_EQ(this->place(text, Text::strirchr(t, row.code)), row.lastIgnored) << uint(row.code);
        EXPECT_EQ(Text::strnchr(t, size, row.code), Text::strchr(t, row.code));
        EXPECT_EQ(Text::strnichr(t, size, row.code), Text::strichr(t, row.code));
        EXPECT_EQ(Text::strnrchr(t, size, row.code), Text::strrchr(t, row.code));
        EXPECT_EQ(Text::strnirchr(t, size, row.code), Text::strirchr(t, row.code));
    }
    EXPECT_EQ(Text::strnchr(t, 1, 'K'), nullptr);
    EXPECT_EQ(Text::strpos(t, TypeParam('-')), Text::strchr(t, '-'));
    EXPECT_EQ(Text::strnpos(t, size - 1, TypeParam('.')), nullptr);
    EXPECT_EQ(Text::strpos(t, TypeParam(0)), nullptr);

    struct {
        const char* set;
        int first, firstIgnored, last, lastIgnored;
    } sets[] = {{"-.", 6, 6, 9, 9},   {"k\u00E9", 2, 1, 3, 8}, {"\U0001F600", 5, 5, 5, 5},
                {"", -1, -1, -1, -1}, {"\u00C9", 7, 2, 7, 7},  {"xyz", -1, -1, -1, -1}};
    for (auto& row : sets) {
        auto set = in<TypeParam>(row.set);
        EXPECT_EQ(this->place(text, Text::strbrk(t, set.c_str())), row.first) << row.set;
        EXPECT_EQ(this->place(text, Text::stribrk(t, set.c_str())), row.firstIgnored) << row.set;
        EXPECT_EQ(this->place(text, Text::strrbrk(t, set.c_str())), row.last) << row.set;
        EXPECT_EQ(this->place(text, Text::strirbrk(t, set.c_str())), row.lastIgnored) << row.set;
        EXPECT_EQ(Text::strnbrk(t, size, set.c_str()), Text::strbrk(t, set.c_str()));
        EXPECT_EQ(Text::strnibrk(t, size, set.c_str()), Text::stribrk(t, set.c_str()));
        EXPECT_EQ(Text::strnrbrk(t, size, set.c_str()), Text::strrbrk(t, set.c_str()));
        EXPECT_EQ(Text::strnirbrk(t, size, set.c_str()), Text::strirbrk(t, set.c_str()));
    }
}

TYPED_TEST(TextSearch, AgreesWithThePlainWayOnRandomTexts) {
    using Text = ZTextSearchT<TypeParam>;
    std::mt19937 random(7);
    const ichar letters[] = {'k', 'K', 's', 0x17F, 0x212A, 'x', 0x416, 0x436, 0x10400, 0x10428};
    for (int round = 0; round < 4000; ++round) {
        std::u32string text, needle;
        int few = 2 + int(random() % 9);
        for (int i = int(random() % 90); i > 0; --i) text += letters[random() % few];
        for (int i = 1 + int(random() % 4); i > 0; --i) needle += letters[random() % few];
        auto folded = [](std::u32string s) {
            for (auto& c : s) c = toolkit::codeFold(c);
            return s;
        };
        auto inWidth = [](const std::u32string& s) { return in<TypeParam>(out(s)); };
        auto t = inWidth(text), n = inWidth(needle);
        auto number = [](size_t at) { return at == std::u32string::npos ? -1 : int(at); };
        ASSERT_EQ(this->place(t, Text::strstr(t.c_str(), n.c_str())), number(text.find(needle)))
            << out(t) << " / " << out(n);
        ASSERT_EQ(this->place(t, Text::strrstr(t.c_str(), n.c_str())), number(text.rfind(needle)))
            << out(t) << " / " << out(n);
        ASSERT_EQ(this->place(t, Text::stristr(t.c_str(), n.c_str())), number(folded(text).find(folded(needle))))
            << out(t) << " / " << out(n);
        ASSERT_EQ(this->place(t, Text::strirstr(t.c_str(), n.c_str())), number(folded(text).rfind(folded(needle))))
            << out(t) << " / " << out(n);
    }
}

TYPED_TEST(TextSearch, OrderIsByCodePoint) {
    using Text = ZTextSearchT<TypeParam>;
    const char* ascending[] = {"", "A", "Aa", "a", "\u00E9", "\u3042", "\uFF21", "\U0001F600"};
    for (size_t i = 0; i < std::size(ascending); ++i)
        for (size_t k = 0; k < std::size(ascending); ++k) {
            auto a = in<TypeParam>(ascending[i]), b = in<TypeParam>(ascending[k]);
            int expected = (i > k) - (i < k), order = Text::strcomp(a.c_str(), b.c_str());
            EXPECT_EQ((order > 0) - (order < 0), expected) << ascending[i] << " / " << ascending[k];
        }
    auto comp = [](auto function, const char* a, const char* b, auto... more) {
        int order = function(in<TypeParam>(a).c_str(), in<TypeParam>(b).c_str(), more...);
        return (order > 0) - (order < 0);
    };
    EXPECT_EQ(comp(Text::stricomp, "\u212Aelvin", "KELVIN"), 0);
    EXPECT_EQ(comp(Text::stricomp, "abc", "ABD"), -1);
    EXPECT_EQ(comp(Text::stricomp, "B", "a"), 1);
    EXPECT_EQ(comp(Text::strncomp, "abcx", "abcy", 3), 0);
    EXPECT_EQ(comp(Text::strncomp, "abcx", "abcy", 4), -1);
    EXPECT_EQ(comp(Text::strncomp, "ab", "abc", 9), -1);
    EXPECT_EQ(comp(Text::strnicomp, "ABcx", "abCy", 3), 0);
    EXPECT_EQ(comp(Text::strnicomp, "abc", "ABCD", 5), -1);
    EXPECT_EQ(Text::strcomp(nullptr, in<TypeParam>("").c_str()), 0);
}

TYPED_TEST(TextSearch, Patterns) {
    using Text = ZTextSearchT<TypeParam>;
    struct {
        const char *text, *pattern;
        bool matches, ignored;
    } rows[] = {{"", "", true, true},
                {"", "*", true, true},
                {"", "?", false, false},
                {"a", "", false, false},
                {"name.txt", "*.txt", true, true},
                {"name.TXT", "n*.t?t", false, true},
                {"\U0001F600", "?", true, true},
                {"\u3042b", "?b", true, true},
                {"abcabd", "*abd", true, true},
                {"aXbXc", "a*x*c", false, true},
                {"ab", "a?b", false, false},
                {"a*b", "a*b", true, true},
                {"\u212A", "k", false, true},
                {"xay", "*a*?", true, true},
                {"xa", "*a?*", false, false}};
    for (auto& row : rows) {
        auto text = in<TypeParam>(row.text), pattern = in<TypeParam>(row.pattern);
        EXPECT_EQ(Text::match(text.c_str(), pattern.c_str()), row.matches) << row.text << " / " << row.pattern;
        EXPECT_EQ(Text::imatch(text.c_str(), pattern.c_str()), row.ignored) << row.text << " / " << row.pattern;
        text += in<TypeParam>("zz"), pattern += in<TypeParam>("zz");
        int n = int(text.size()) - 2, m = int(pattern.size()) - 2;
        EXPECT_EQ(Text::nmatch(text.c_str(), n, pattern.c_str(), m), row.matches) << row.text << " / " << row.pattern;
        EXPECT_EQ(Text::nimatch(text.c_str(), n, pattern.c_str(), m), row.ignored) << row.text << " / " << row.pattern;
    }
}

TYPED_TEST(TextSearch, HostilePatternsAndNeedlesTakeLinearTime) {
    using Text = ZTextSearchT<TypeParam>;
    std::basic_string<TypeParam> text(1000000, TypeParam('a')), needle(20000, TypeParam('a'));
    auto pattern = in<TypeParam>("a*a*a*a*a*a*a*a*b");
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(Text::match(text.c_str(), pattern.c_str()));
    needle[0] = TypeParam('b');
    EXPECT_EQ(Text::strrstr(text.c_str(), needle.c_str()), nullptr);
    needle[0] = TypeParam('a'), needle[10000] = TypeParam('b');
    EXPECT_EQ(Text::strstr(text.c_str(), needle.c_str()), nullptr);
    EXPECT_EQ(Text::stristr(text.c_str(), needle.c_str()), nullptr);
    text.replace(900000, needle.size(), needle);
    EXPECT_EQ(Text::strstr(text.c_str(), needle.c_str()), text.c_str() + 900000);
    EXPECT_EQ(Text::stristr(text.c_str(), needle.c_str()), text.c_str() + 900000);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << "a quadratic way takes minutes";
}

TYPED_TEST(TextSearch, WithoutMemoryItIsSlowerOnly) {
    using Text = ZTextSearchT<TypeParam>;
    std::basic_string<TypeParam> text(20000, TypeParam('a')), needle(300, TypeParam('a'));
    needle[150] = TypeParam('b');
    text.replace(15000, needle.size(), needle);
    AllocProbe probe;
    probe.failAt(1, true);
    EXPECT_EQ(Text::strstr(text.c_str(), needle.c_str()), text.c_str() + 15000);
    EXPECT_EQ(Text::stristr(text.c_str(), needle.c_str()), text.c_str() + 15000);
    EXPECT_EQ(Text::strrstr(text.c_str(), needle.c_str()), text.c_str() + 15000);
    EXPECT_EQ(Text::editDistance(text.c_str(), 10, needle.c_str(), 10, 1, 1), -1);
    EXPECT_FALSE(Text::shorterEditDistance(text.c_str(), 10, needle.c_str(), 10, 1, 1, 100));
    EXPECT_TRUE(probe.failed());
}

TYPED_TEST(TextSearch, EditDistance) {
    using Text = ZTextSearchT<TypeParam>;
    struct {
        const char *a, *b;
        int gap, change, distance;
    } rows[] = {{"kitten", "sitting", 1, 1, 3}, {"kitten", "sitting", 1, 2, 5}, {"", "abc", 1, 1, 3},
                {"abc", "abc", 1, 1, 0},        {"\u3042b", "b", 1, 1, 1},      {"\U0001F600", "\u3042", 1, 1, 1},
                {"ab", "ba", 1, 5, 2},          {"ab", "ba", 3, 1, 2},          {"abc", "xyz", 0, 1, 0},
                {"abcdefgh", "h", 2, 1, 14},    {"abc", "", 5, -1, 15},         {"flaw", "lawn", 1, 1, 2}};
    for (auto& row : rows) {
        auto a = in<TypeParam>(row.a), b = in<TypeParam>(row.b);
        std::string what = std::string(row.a) + " / " + row.b;
        EXPECT_EQ(Text::editDistance(a.c_str(), int(a.size()), b.c_str(), -1, row.gap, row.change), row.distance)
            << what;
        EXPECT_EQ(Text::editDistance(b.c_str(), -1, a.c_str(), -1, row.gap, row.change), row.distance) << what;
        for (int limit = -1; limit < row.distance + 4; ++limit)
            EXPECT_EQ(Text::shorterEditDistance(a.c_str(), -1, b.c_str(), -1, row.gap, row.change, limit),
                      row.distance < limit)
                << what << " " << limit;
    }
    std::basic_string<TypeParam> longText(200000, TypeParam('a')), other(200000, TypeParam('b'));
    EXPECT_FALSE(Text::shorterEditDistance(longText.c_str(), -1, other.c_str(), -1, 1, 1, 50))
        << "a band, not the square";
}

TEST(TextSearchBytes, MalformedBytesDiffer) {
    using Text = ZTextSearchT<char>;
    EXPECT_NE(Text::stricomp("a\xE9", "a\xE8"), 0);
    EXPECT_LT(Text::stricomp("a\xE8", "a\xE9"), 0);
    EXPECT_EQ(Text::stricomp("A\xE9", "a\xE9"), 0);
    EXPECT_NE(Text::stricomp("\xEF\xBF\xBD", "\xE9"), 0);
    EXPECT_TRUE(Text::match("a\xE3\x81"
                            "b",
                            "a??b"));
    const char* text = "x\xE3\x81y\xE3";
    const char* kana = "\xE3\x81\x82";
    EXPECT_EQ(Text::strstr(kana, "\x81"), kana + 1);
    EXPECT_EQ(Text::strrstr(kana, "\x81"), kana + 1);
    EXPECT_EQ(Text::strirstr(text, "\xE3"), text + 4);
    EXPECT_EQ(Text::stristr(text, "\x81Y"), text + 2);
}

TEST(TextSearchBytes, OnlyTheKelvinSignAndTheLongSFoldIntoAscii) {
    for (ichar code = 0x80; code <= 0x10FFFF; ++code)
        EXPECT_EQ(toolkit::codeFold(code) < 0x80, code == 0x212A || code == 0x17F) << uint(code);
}
