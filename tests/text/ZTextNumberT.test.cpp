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
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::uinttostr(o, n, ~0u, 16, 0, false, true); }), "FFFFFFFF");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::largetostr(o, n, -9000000000LL); }), "-9000000000");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::ulargetostr(o, n, ~0ull, 2); }), std::string(64, '1'));
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::realtostr(o, n, 2.5, 6, 3, ','); }), "   2,5");
    EXPECT_EQ(written<C>([](C* o, int n) { return Text::numeral(o, n, 14, 3); }), "xiv");
    EXPECT_EQ(taken(Text::inttostr(-42, 10, 6)) + taken(Text::uinttostr(~0u, 16)), "   -42ffffffff");
    EXPECT_EQ(taken(Text::largetostr(-1, 16)) + taken(Text::ulargetostr(~0ull, 2)), "-1" + std::string(64, '1'));
    EXPECT_EQ(taken(Text::inttostr(7, 10, 300)), std::string(299, ' ') + "7") << "longer than the stack buffer";
    EXPECT_EQ(taken(Text::floattostr(0.125, 0, 8)), "0.125");
    AllocProbe probe;
    probe.failAt(1);
    EXPECT_EQ(Text::inttostr(5), nullptr);
}

TYPED_TEST(TextNumber, NumbersInEndAtTheirLengthOrTerminator) {
    using C = TypeParam;
    using Text = ZTextNumberT<C>;
    const C digits[] = {'1', '2', 0, '4', 0};
    for (auto [length, value] : {std::pair(-1, 12), {1, 1}, {2, 12}, {4, 12}, {99, 12}}) {
        int whole = 0;
        double real = 0;
        EXPECT_TRUE(Text::strtoint(digits, length, whole) && Text::strtoreal(digits, length, real));
        EXPECT_TRUE(whole == value && real == value) << length;
    }
    ularge large = 0;
    float single = 0;
    EXPECT_TRUE(Text::strtoularge(in<C>("zz").c_str(), -1, large, 36) && large == 35 * 36 + 35);
    EXPECT_TRUE(Text::strtofloat(in<C>("1,25").c_str(), -1, single, ',') && single == 1.25f);
    EXPECT_FALSE(Text::strtofloat(nullptr, 9, single));
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
    struct Row {
        const char* text;
        int length, radix;
        bool sign;
        int passed, found;
        bool negative;
    };
    for (const Row& row : {Row{" -0x1f", 6, 10, true, 4, 16, true},
                           {"0b1", -1, 10, true, 2, 2, false},
                           {"-5", -1, 10, false, 0, 10, false},
                           {"0xg", -1, 10, true, 0, 10, false},
                           {"012", -1, 8, true, 0, 8, false},
                           {"+ff", -1, 16, false, 1, 16, false},
                           {" \0 ", 3, 10, true, 1, 10, false},
                           {nullptr, 9, 10, true, 0, 10, false}}) {
        int radix = row.radix;
        bool negative = true;
        EXPECT_EQ(ZTextNumberT<char>::strradix(row.text, row.length, &radix, row.sign, &negative), row.passed);
        EXPECT_EQ(radix, row.found) << row.text;
        EXPECT_EQ(negative, row.negative) << row.text;
    }
}
