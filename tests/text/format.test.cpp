#include "text/format.h"

#include "tests/text/widths.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

template <class C> class Format : public testing::Test {
public:
    using Text = std::basic_string<C>;
    static Text wide(const std::string& text) { return in<C>(text); }
    /// Bytes stay as they are, well-formed or not.
    static std::string narrow(const Text& text) {
        if constexpr (sizeof(C) == 1)
            return text;
        else
            return out(text);
    }
    /// The text, after measuring it, writing it whole and cut, and giving it to a sink.
    template <class... A> static std::string text(const char* form, A... args) {
        Text format = wide(form);
        int length = orv::format(static_cast<C*>(nullptr), 0, format.c_str(), args...);
        EXPECT_GE(length, 0) << form;
        Text whole(size_t(length) + 2, C('#'));
        EXPECT_EQ(orv::format(whole.data(), length + 1, format.c_str(), args...), length);
        EXPECT_EQ(whole[size_t(length)], 0);
        EXPECT_EQ(whole[size_t(length) + 1], C('#'));
        whole.resize(size_t(length));
        for (int room : {1, length / 2, length}) {
            Text cut(size_t(length) + 2, C('#'));
            EXPECT_EQ(orv::format(cut.data(), room, format.c_str(), args...), length);
            if (room > 0) { EXPECT_EQ(cut.substr(0, size_t(room)), whole.substr(0, size_t(room) - 1) + C(0)) << form; }
            EXPECT_EQ(cut[size_t(room)], C('#'));
        }
        EXPECT_EQ(pieces(format.c_str(), args...), whole) << form;
        return narrow(whole);
    }
    static Text pieces(const C* format, ...) {
        var_arg args;
        va_start(args.list, format);
        Text all;
        auto sink = [](void* to, const C* piece, int length) {
            static_cast<Text*>(to)->append(piece, size_t(length));
            return true;
        };
        int length = orv::formatTo<C>(sink, &all, format, &args);
        va_end(args.list);
        EXPECT_EQ(length, int(all.size()));
        return all;
    }
    template <class... A> static void same(const std::string& form, A... args) {
        char expected[2048];
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
        snprintf(expected, sizeof expected, form.c_str(), args...);
#pragma GCC diagnostic pop
        EXPECT_EQ(text(form.c_str(), args...), expected) << form;
    }
};
TYPED_TEST_SUITE(Format, Widths);

/// Every set of flags with some widths and precisions.
std::vector<std::string> heads() {
    std::vector<std::string> all;
    for (int flags = 0; flags < 32; ++flags)
        for (const char* width : {"", "1", "7", "40"})
            for (const char* precision : {"", ".", ".1", ".9", ".30"}) {
                std::string head = "<%";
                for (int bit = 0; bit < 5; ++bit)
                    if (flags >> bit & 1) head += "-+ #0"[bit];
                all.push_back(head + width + precision);
            }
    return all;
}

} // namespace

TYPED_TEST(Format, IntegersAsInC) {
    for (const std::string& head : heads())
        for (int value : {0, 1, -1, 1234567, INT_MIN})
            for (const char* letter : {"d>", "u>", "x>", "X>", "o>", "hhd>", "hu>", "hho>"})
                this->same(head + letter, value);
    for (large value : {0LL, -1LL, LLONG_MIN, 123456789012LL})
        for (const char* letter : {"lld", "lu", "lx", "jd", "zX", "tx", "li", "llo"})
            this->same(std::string("%30") + letter, value);
    this->same("%*d|%-*d|%.*d", 5, 1, -5, 2, 3, 4);
    this->same("%*d|%.*d|%.*s", -5, 1, -3, 4, 2, "abc");
}

TYPED_TEST(Format, RealsAsInC) {
    static const double values[] = {0.0,      -0.0, 1,    0.1,        -9.5,   0.5,      1.5,      123456.789,
                                    654321.5, 1e22, 1e-5, 0.00012345, 5e-324, -1.7e308, INFINITY, -NAN};
    for (const std::string& head : heads())
        for (double value : values)
            for (const char* letter : {"f>", "e>", "g>", "G>"}) this->same(head + letter, value);
    for (double value : values)
        for (const char* form :
             {"%a", "%A", "%.0a", "%#.0a", "%.3a", "%30.20a", "%030a", "%lf", "%F", "%E", "%.800f", "%.1000g"})
            this->same(form, value);
    for (long double value : {0.1L, 1e4000L, -3.0L})
        for (const char* form : {"%Lf", "%.20Lg", "%Le", "%#.3Lg"}) {
            char expected[8192];
            snprintf(expected, sizeof expected, form, value);
            EXPECT_EQ(this->text(form, value), expected);
        }
}

TYPED_TEST(Format, TextAndCharacters) {
    static constexpr const char *kana = "a\u3042\U0001F600z", *broken = "a\xF0\x9F\x98z\xFF";
    static constexpr const wchar *kanaW = u"a\u3042\U0001F600z", brokenW[] = {'a', 0xD83D, 'z', 0};
    constexpr bool same8 = sizeof(TypeParam) == 1;
    this->same("[%s|%8s|%-8s|%.2s|%8.2s]%%", "abc", "abc", "abc", "abc", "abc");
    this->same("%c|%3c|%-3c|", 'x', 'y', 'z');
    EXPECT_EQ(this->text("%s %S", kana, kanaW), std::string(kana) + " " + kana);
    EXPECT_EQ(this->text("%s%s", static_cast<const char*>(nullptr), ""), "(null)");
    EXPECT_EQ(this->text("%.4S", static_cast<const wchar*>(nullptr)), "(nul");
    EXPECT_EQ(this->text("%C%C", 0x3042, 0xD800), "\u3042\uFFFD");
    EXPECT_EQ(this->text("%s", broken), same8 ? std::string(broken) : "a\uFFFDz\uFFFD");
    if (sizeof(TypeParam) != 2) { EXPECT_EQ(this->text("%S", brokenW), "a\uFFFDz"); }
    // Widths and precisions count units of the output, and conversion never splits a character.
    switch (sizeof(TypeParam)) {
    case 1:
        EXPECT_EQ(this->text("[%.4S|%.3S|%12S]", kanaW, kanaW, kanaW), "[a\u3042|a|   a\u3042\U0001F600z]");
        EXPECT_EQ(this->text("%c", 200), "\xC8");
        break;
    case 2:
        EXPECT_EQ(this->text("[%.2s|%.3s|%.4s|%-6s]", kana, kana, kana, kana),
                  "[a\u3042|a\u3042|a\u3042\U0001F600|a\u3042\U0001F600z ]");
        break;
    default:
        EXPECT_EQ(this->text("[%.2s|%.3s|%5s|%5S]", kana, kana, kana, kanaW),
                  "[a\u3042|a\u3042\U0001F600| a\u3042\U0001F600z| a\u3042\U0001F600z]");
        EXPECT_EQ(this->text("%c", 0x3042), "\u3042");
    }
    std::vector<char> bare{'a', 'b', 'c'};
    EXPECT_EQ(this->text("%.3s", bare.data()), "abc") << "no terminator, which a sanitizer would see being looked for";
    std::string longText(100000, 'q');
    EXPECT_EQ(this->text("%s%s", longText.c_str(), "!").size(), 100001u);
}

TYPED_TEST(Format, OwnConversions) {
    static const byte bytes[] = {0, 255};
    static const word words[] = {65535, 1, 2};
    static const int ints[] = {-1, INT_MAX};
    static const double reals[] = {0.1, -2, 1e300, INFINITY};
    EXPECT_EQ(this->text("%.*!f %.*!f %.*!f", 3, 1.5, 3, 2.0, 0, 12.0), "1.5 2 12");
    EXPECT_EQ(this->text("%.*!f|%6.2!f|%.2!f", 20, 0.1, 1.25, -0.001), "0.10000000000000000555|  1.25|0");
    EXPECT_EQ(this->text("%.*!f %!f %.!f", 8, 1e22, 0.5, -0.3), "10000000000000000000000 0.5 0");
    EXPECT_EQ(this->text("%^*d %^*x %^16X %^2d", 36, 35, 2, 5, 255, -5), "z 101 FF -101");
    EXPECT_EQ(this->text("%^*d%^*d", 1, 10, 99, -10), "10-10");
    EXPECT_EQ(this->text("%08^2d|%^3*d", 5, 7), "%08^2d|   21");
    EXPECT_EQ(this->text("[%tb] [%tw] [%ti]", bytes, 2, words, 3, ints, 2), "[0, 255] [65535, 1, 2] [-1, 2147483647]");
    EXPECT_EQ(this->text("[%td] [%.1td] [%tb]", reals, 4, reals, 2, nullptr, 3), "[0.1, -2, 1e+300, inf] [0.1, -2] []");
    EXPECT_EQ(this->text("%m %m %10m", 1234, -5, 60000), "1.234 -0.005     60.000");
    EXPECT_EQ(this->text("%H %zH", 0xABCDu, size_t(1) << 40), "0000ABCD 10000000000");
    EXPECT_EQ(this->text("%l bytes, %ls, %5l|%ld %lle", 1LL << 40, -3LL, 7LL, 8L, 9LL),
              "1099511627776 bytes, -3s,     7|8 9le");
    EXPECT_EQ(this->text("%p %20p", static_cast<void*>(nullptr), reinterpret_cast<void*>(0xABC)),
              "(nil)                0xabc");
}

TYPED_TEST(Format, HostileFormats) {
    EXPECT_EQ(this->text("100%,%n %y %-05.3q %"), "100%,%n %y %-05.3q %");
    EXPECT_EQ(this->text("% %|%5%"), "%|%");
    EXPECT_EQ(this->text(""), "");
    EXPECT_EQ(this->text("%%%"), "%%");
    EXPECT_EQ(this->text("%ll", 5LL), "5l");
    EXPECT_EQ(this->text("%^"), "%^");
    EXPECT_EQ(this->text("%999999999999d", 5).size(), size_t(1 << 20));
    EXPECT_EQ(this->text("%*d", INT_MIN, 5).size(), size_t(1 << 20));
    EXPECT_EQ(this->text("%.*d", INT_MAX, 5).size(), size_t(1 << 20));
    EXPECT_EQ(this->text("%.*f", INT_MAX, 5.0).size(), size_t(1 << 20) + 2);
    // Far more than an int can tell.
    auto tell = []<size_t... I>(std::index_sequence<I...>) {
        std::string stretched;
        for (size_t i = 0; i < sizeof...(I); ++i) stretched += "%1048576d";
        return orv::format(static_cast<TypeParam*>(nullptr), 0, TestFixture::wide(stretched).c_str(), int(I)...);
    };
    EXPECT_EQ(tell(std::make_index_sequence<2047>()), 2047 << 20);
    EXPECT_EQ(tell(std::make_index_sequence<2048>()), -1);
}

TYPED_TEST(Format, ASinkStopsTheFormatting) {
    struct Refuser {
        int calls = 0;
        static bool take(void* self, const TypeParam*, int) { return ++static_cast<Refuser*>(self)->calls < 2; }
        int run(const TypeParam* format, ...) {
            var_arg args;
            va_start(args.list, format);
            int length = orv::formatTo<TypeParam>(take, this, format, &args);
            va_end(args.list);
            return length;
        }
    } refuser;
    auto format = this->wide("%9999d%9999d%9999d");
    EXPECT_EQ(refuser.run(format.c_str(), 1, 2, 3), -1);
    EXPECT_EQ(refuser.calls, 2);
}
