#include "text/ZTextNumberT.h"

#include "core/memory.h"
#include "tests/support/AllocProbe.h"
#include "tests/text/widths.h"

#include <cstdio>

// The conversions themselves are tested with text/number.h and text/format.h: here, that each name reaches the right
// one.
namespace {

template <class C> class TextNumber : public testing::Test {};
TYPED_TEST_SUITE(TextNumber, Widths);

template <class C> std::string taken(C* made) {
    std::string text = out(static_cast<const C*>(made));
    zfree(made);
    return text;
}
template <class C, class F> std::string written(F&& write) {
    C room[80] = {};
    int length = write(room, 80);
    EXPECT_EQ(length, int(std::basic_string<C>(room).size()));
    return out<C>(room);
}

} // namespace

TYPED_TEST(TextNumber, NumbersOut) {
    using C = TypeParam;
    using Text = ZTextNumberT<C>;
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::inttostr(o, n, -42, 10, 6, true); }), "-00042");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::uinttostr(o, n, 0xFFFFFFFFu, 16, 0, false, true); }),
              "FFFFFFFF");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::largetostr(o, n, -9000000000LL); }), "-9000000000");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::ulargetostr(o, n, ~0ull, 2); }), std::string(64, '1'));
    EXPECT_EQ(taken(Text::inttostr(-42, 10, 6)), "   -42");
    EXPECT_EQ(taken(Text::uinttostr(255, 2)) + taken(Text::largetostr(-1, 16)) + taken(Text::ulargetostr(9)),
              "11111111-19");
    EXPECT_EQ(taken(Text::inttostr(7, 10, 300)), std::string(299, ' ') + "7") << "longer than the stack buffer";
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::realtostr(o, n, 2.5, 6, 3, ','); }), "   2,5");
    EXPECT_EQ(taken(Text::floattostr(0.125, 0, 8)), "0.125");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::numeral(o, n, 14, 3); }), "xiv");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::romanMumeral(o, n, 1990, true); }), "MCMXC");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::alphaNumeral(o, n, 28, true); }), "AB");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::letterNumeral(o, n, 28, false); }), "bb");
    AllocProbe probe;
    probe.failAt(1);
    EXPECT_EQ(Text::inttostr(5), nullptr);
}

TYPED_TEST(TextNumber, NumbersIn) {
    using C = TypeParam;
    using Text = ZTextNumberT<C>;
    auto text = [](const char* bytes) { return in<C>(bytes); };
    byte b = 9;
    int8 i8 = 9;
    int16 i16 = 9;
    word w = 9;
    int i = 9;
    uint u = 9;
    large l = 9;
    ularge ul = 9;
    float f = 9;
    double d = 9;
    EXPECT_TRUE(Text::strtobyte(text("255").c_str(), -1, b) && b == 255);
    EXPECT_FALSE(Text::strtobyte(text("256").c_str(), -1, b));
    EXPECT_TRUE(Text::strtoint8(text("-80").c_str(), -1, i8, 16) == true && i8 == -128);
    EXPECT_FALSE(Text::strtoint8(text("128").c_str(), -1, i8));
    EXPECT_TRUE(Text::strtoint16(text("-32768").c_str(), -1, i16) && i16 == -32768);
    EXPECT_TRUE(Text::strtoword(text("0xFFFF").c_str(), -1, w) && w == 65535);
    EXPECT_TRUE(Text::strtoint(text("1234").c_str(), 2, i) && i == 12);
    EXPECT_FALSE(Text::strtoint(text("12x").c_str(), -1, i));
    const C terminated[] = {'3', 0, '4', 0};
    EXPECT_TRUE(Text::strtoint(terminated, 3, i) && i == 3);
    EXPECT_FALSE(Text::strtouint(text("-1").c_str(), -1, u));
    EXPECT_TRUE(Text::strtolarge(text("-9223372036854775808").c_str(), -1, l) && l == INT64_MIN);
    EXPECT_TRUE(Text::strtoularge(text("zz").c_str(), -1, ul, 36) && ul == 35 * 36 + 35);
    EXPECT_TRUE(Text::strtofloat(text("0.5").c_str(), -1, f) && f == 0.5f);
    EXPECT_TRUE(Text::strtoreal(text("1,25").c_str(), -1, d, ',') && d == 1.25);
    EXPECT_FALSE(Text::strtoreal(nullptr, -1, d));
}

TYPED_TEST(TextNumber, FormattedOutput) {
    using C = TypeParam;
    using Text = ZTextNumberT<C>;
    auto format = in<C>("%d \u3042\U0001F600 %s");
    EXPECT_EQ(written<C>([&](C* o, int n) { return Text::printf(o, n, format.c_str(), 5, "x"); }),
              "5 \u3042\U0001F600 x");
    for (size_t length : {0, 1, 127, 128, 129, 1000}) {
        std::string bytes(length, 'y');
        EXPECT_EQ(taken(Text::dprintf(in<C>("%s").c_str(), bytes.c_str())), bytes);
    }
    char* written = nullptr;
    size_t size = 0;
    FILE* file = open_memstream(&written, &size);
    std::string many;
    for (int i = 0; i < 100; ++i) many += "\U0001F600.";
    int count = Text::fprintf(file, format.c_str(), 7, many.c_str());
    fclose(file);
    EXPECT_EQ(std::string(written, size), "7 \u3042\U0001F600 " + many);
    EXPECT_EQ(count, int(size));
    free(written);
}

TEST(TextNumberBytes, RadixPrefix) {
    int radix = 10;
    bool negative = false;
    EXPECT_EQ(ZTextNumberT<char>::strradix(" -0x1f", 6, &radix, true, &negative), 4);
    EXPECT_TRUE(negative && radix == 16);
    EXPECT_EQ(ZTextNumberT<char>::strradix(" \0 ", 3, &radix, true, &negative), 1);
    EXPECT_EQ(ZTextNumberT<char>::strradix(nullptr, 9, &radix, true, &negative), 0);
}
