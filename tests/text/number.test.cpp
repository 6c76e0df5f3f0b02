#include "text/number.h"

#include "tests/text/widths.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

template <class C> class Number : public testing::Test {
public:
    using Text = std::basic_string<C>;

    /// Runs one of the writers and checks its contract: measuring, cutting and the terminator.
    template <class F> static std::string written(F&& write) {
        int length = write(nullptr, 0);
        Text whole(size_t(length) + 3, C('#'));
        EXPECT_EQ(write(whole.data(), length + 1), length);
        EXPECT_EQ(whole[size_t(length)], 0);
        EXPECT_EQ(whole[size_t(length) + 1], C('#'));
        Text cut(size_t(length) + 3, C('#'));
        EXPECT_EQ(write(cut.data(), length), length);
        if (length > 0) {
            EXPECT_EQ(cut[size_t(length) - 1], 0);
            EXPECT_EQ(cut.substr(0, size_t(length) - 1), whole.substr(0, size_t(length) - 1));
        }
        EXPECT_EQ(cut[size_t(length)], C('#'));
        return out(whole.substr(0, size_t(length)));
    }
    template <class T> static std::string read(const std::string& text, int radix) {
        T value = 77;
        Text wide = in<C>(text);
        if (!orv::strtonumber(wide.data(), int(wide.size()), value, radix)) {
            EXPECT_EQ(value, T(77)) << text;
            return "refused";
        }
        T again = 0;
        EXPECT_TRUE(orv::strtonumber(wide.c_str(), -1, again, radix));
        EXPECT_EQ(value, again);
        return std::to_string(value);
    }
};
TYPED_TEST_SUITE(Number, Widths);

} // namespace

TYPED_TEST(Number, IntegersToText) {
    struct Row {
        large value;
        int radix, width;
        bool zeros, upper;
        const char* text;
    };
    static const Row rows[] = {
        {0, 10, 0, false, false, "0"},
        {-7, 10, 4, false, false, "  -7"},
        {-7, 10, 4, true, false, "-007"},
        {255, 16, 0, false, true, "FF"},
        {-5, 2, 0, false, false, "-101"},
        {12, 1, INT32_MIN, true, false, "12"},
        {INT64_MIN, 2, 66, true, false, "-01000000000000000000000000000000000000000000000000000000000000000"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(this->written([&](TypeParam* out, int size) {
            return orv::inttostr(out, size, row.value, row.radix, row.width, row.zeros, row.upper);
        }),
                  row.text);
    EXPECT_EQ(orv::inttostr(static_cast<TypeParam*>(nullptr), 0, 1, 10, INT32_MAX, true, false), orv::numberWidthLimit);
}

TYPED_TEST(Number, RealsToText) {
    struct Row {
        double value;
        int width, precision;
        char decimal;
        const char* text;
    };
    static const double inf = std::numeric_limits<double>::infinity();
    static const Row rows[] = {
        {0.5, 0, 8, '.', "0.5"},
        {-1.25, 8, 6, ',', "   -1,25"},
        {100, 0, 0, '.', "100"},
        {-0.0001, 0, 2, '.', "0"},
        {0.1, 0, 20, '.', "0.10000000000000000555"},
        {inf, 5, 2, ',', "  inf"},
        {-inf, 0, 2, '.', "-inf"},
        {std::nan(""), 0, 2, '.', "nan"},
        {0.999999, 0, 3, '.', "1"},
    };
    for (const Row& row : rows)
        EXPECT_EQ(this->written([&](TypeParam* out, int size) {
            return orv::realtostr(out, size, row.value, row.width, row.precision, ichar(row.decimal));
        }),
                  row.text);
    // A decimal character of several units counts in full: U+066B takes two bytes.
    TypeParam text[16];
    int units = sizeof(TypeParam) == 1 ? 2 : 1;
    EXPECT_EQ(orv::realtostr(text, 16, 1.5, 8, 1, 0x66B), 8);
    EXPECT_EQ(text[8 - units - 2], TypeParam('1'));
    double back = 0;
    EXPECT_TRUE(orv::strtonumber(text, 8, back, 0x66B) && back == 1.5);
    EXPECT_FALSE(orv::strtonumber(text, 8, back, 0x66C));
}

TYPED_TEST(Number, TextToIntegers) {
    struct Row {
        const char* text;
        int radix;
        const char *asByte, *asInt8, *asInt, *asUInt, *asLarge;
    };
    static const Row rows[] = {
        {" \t12 \n", 10, "12", "12", "12", "12", "12"},
        {"+200", 10, "200", "refused", "200", "200", "200"},
        {"-128", 10, "refused", "-128", "-128", "refused", "-128"},
        {"2147483648", 10, "refused", "refused", "refused", "2147483648", "2147483648"},
        {"-9223372036854775808", 10, "refused", "refused", "refused", "refused", "-9223372036854775808"},
        {"9223372036854775808", 10, "refused", "refused", "refused", "refused", "refused"},
        {"0x1F", 10, "31", "31", "31", "31", "31"},
        {"-0X1f", 16, "refused", "-31", "-31", "refused", "-31"},
        {"0b1", 16, "177", "refused", "177", "177", "177"},
        {"0x1", 36, "refused", "refused", "1189", "1189", "1189"},
        {"0b2", 10, "refused", "refused", "refused", "refused", "refused"},
        {"", 10, "refused", "refused", "refused", "refused", "refused"},
        {"1 2", 10, "refused", "refused", "refused", "refused", "refused"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(this->template read<byte>(row.text, row.radix), row.asByte);
        EXPECT_EQ(this->template read<int8>(row.text, row.radix), row.asInt8);
        EXPECT_EQ(this->template read<int>(row.text, row.radix), row.asInt);
        EXPECT_EQ(this->template read<uint>(row.text, row.radix), row.asUInt);
        EXPECT_EQ(this->template read<large>(row.text, row.radix), row.asLarge);
    }
    EXPECT_EQ(this->template read<ularge>("18446744073709551616", 10), "refused");
    int unset = 5;
    EXPECT_FALSE(orv::strtonumber(static_cast<const TypeParam*>(nullptr), 3, unset, 10));
    if (sizeof(TypeParam) > 1) {
        TypeParam lookalike[] = {TypeParam('1'), TypeParam(0x130), 0}; // ends like '0' in its low byte
        EXPECT_FALSE(orv::strtonumber(lookalike, -1, unset, 10));
    }
}

TYPED_TEST(Number, TextToReals) {
    struct Row {
        const char* text;
        char decimal;
        bool good;
        double value;
    };
    static const double inf = std::numeric_limits<double>::infinity();
    static const Row rows[] = {
        {"1.5", '.', true, 1.5},
        {" -1,25e2 ", ',', true, -125},
        {"+.5", '.', true, 0.5},
        {"-INF", '.', true, -inf},
        {"1e400", '.', false, 0},
        {"1e-400", '.', true, 0},
        {"1e99999999999999999999", '.', false, 0},
        {"9007199254740993", '.', true, 9007199254740992.0},
        {"1.5", ',', false, 0},
        {".", '.', false, 0},
        {"+-1", '.', false, 0},
        {"0x10", '.', false, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        double value = 77;
        auto text = in<TypeParam>(row.text);
        EXPECT_EQ(orv::strtonumber(text.data(), int(text.size()), value, row.decimal), row.good);
        EXPECT_EQ(value, row.good ? row.value : 77);
    }
    // Long texts are decided by their last digit: just above half-way rounds up.
    for (bool above : {false, true}) {
        double value = 0;
        auto shifted = in<TypeParam>("0." + std::string(2000, '0') + "9007199254740993" + std::string(3000, '0') +
                                     (above ? "1" : "0") + "e2016");
        EXPECT_TRUE(orv::strtonumber(shifted.data(), int(shifted.size()), value, '.'));
        EXPECT_EQ(value, above ? 9007199254740994.0 : 9007199254740992.0);
    }
    auto zeros = in<TypeParam>("1" + std::string(500, '0') + "e-500");
    float single = 0;
    EXPECT_TRUE(orv::strtonumber(zeros.data(), int(zeros.size()), single, '.'));
    EXPECT_EQ(single, 1.0f);
    auto big = in<TypeParam>("3.5e38");
    EXPECT_FALSE(orv::strtonumber(big.data(), -1, single, '.'));
    EXPECT_EQ(single, 1.0f);
}

TYPED_TEST(Number, Numerals) {
    struct Row {
        uint value;
        const char *roman, *alpha;
        int letters;
        char letter;
    };
    static const Row rows[] = {
        {0, "", "", 0, 'A'},
        {28, "XXVIII", "AB", 2, 'B'},
        {444, "CDXLIV", "QB", 18, 'B'},
        {702, "DCCII", "ZZ", 27, 'Z'},
        {3999, "MMMCMXCIX", "EWU", 154, 'U'},
        {4000, "", "EWV", 154, 'V'},
        {UINT32_MAX, "", "MWLQKWU", 0, 'A'},
    };
    for (const Row& row : rows) {
        auto text = [&](int kind) {
            return TestFixture::written(
                [&](TypeParam* out, int size) { return orv::numeral(out, size, row.value, kind); });
        };
        EXPECT_EQ(text(orv::numeralDecimal), std::to_string(row.value));
        EXPECT_EQ(text(orv::numeralRomanU), row.roman);
        EXPECT_EQ(text(orv::numeralAlphaU), row.alpha);
        EXPECT_EQ(text(orv::numeralLetterU), std::string(size_t(row.letters), row.letter));
        std::string lower = text(orv::numeralRomanL) + text(orv::numeralAlphaL) + text(orv::numeralLetterL);
        std::string upper = text(orv::numeralRomanU) + text(orv::numeralAlphaU) + text(orv::numeralLetterU);
        for (char& c : lower) c = char(std::toupper(c));
        EXPECT_EQ(lower, upper);
        EXPECT_EQ(text(0), "");
    }
}

TYPED_TEST(Number, RoundTripOfRandomNumbers) {
    std::mt19937_64 random(7);
    for (int i = 0; i < 20000; ++i) {
        large value = large(random()) >> (random() % 64);
        int radix = int(2 + random() % 35);
        TypeParam text[80];
        orv::inttostr(text, 80, value, radix, int(random() % 70), random() % 2, random() % 2);
        large back = 0;
        ASSERT_TRUE(orv::strtonumber(text, -1, back, radix));
        ASSERT_EQ(back, value);
        double real = std::ldexp(double(value), -int(random() % 40));
        TypeParam digits[1500];
        orv::realtostr(digits, 1500, real, 0, 1074, ',');
        double realBack = 0;
        ASSERT_TRUE(orv::strtonumber(digits, -1, realBack, ','));
        ASSERT_EQ(realBack, real);
    }
}
