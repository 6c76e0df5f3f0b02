#include "object/kindValues.h"

#include "core/ZSelector.h"
#include "object/ZMetaType.h"
#include "tests/support/AllocProbe.h"
#include "tests/support/SelectorScope.h"

#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>

using Kind = ZMetaType::Type;

namespace {
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

template <class T> int compare(int kind, T a, T b) { return orv::compareKind(kind, &a, &b, sizeof(T)); }
template <class T> int order(int kind, T a, T b) { return orv::orderKind(kind, &a, &b, sizeof(T)); }
template <class T, class U> T convert(int kind, int fromKind, U from) {
    T out{};
    EXPECT_TRUE(orv::convertKind(kind, &out, fromKind, &from)) << kind << " " << fromKind;
    return out;
}
} // namespace

TEST(KindValues, TheSignOfAKindDecidesItsOrder) {
    struct Row {
        int kind;
        ularge small, great; ///< as the low bytes of the value
    };
    const Row rows[] = {
        {Kind::Bool, 0, 1},      {Kind::Byte, 1, 0xFF},      {Kind::Char, 0xFF, 1},       {Kind::Short, 0xFFFF, 1},
        {Kind::Word, 1, 0xFFFF}, {Kind::Int, 0xFFFFFFFF, 1}, {Kind::UInt, 1, 0xFFFFFFFF}, {Kind::Enum, 1, 0xFFFFFFFF},
        {Kind::Large, ~0ull, 1}, {Kind::ULarge, 1, ~0ull},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(orv::compareKind(row.kind, &row.small, &row.great, 0), -1) << row.kind;
        EXPECT_EQ(orv::compareKind(row.kind, &row.great, &row.small, 0), 1) << row.kind;
        EXPECT_EQ(orv::orderKind(row.kind, &row.great, &row.great, 0), 0) << row.kind;
    }
    EXPECT_EQ(orv::compareKind(Kind::Void, "abx", "aby", 2), 0);
    EXPECT_EQ(orv::compareKind(Kind::Unknown, "abx", "aby", 3), -1);
}

TEST(KindValues, RealsAreEqualWithinATolerance) {
    for (int kind : {Kind::Double, Kind::Real}) {
        EXPECT_EQ(compare(kind, 1.0, 1.0 + 5e-9), 0);
        EXPECT_EQ(compare(kind, 1.0, 1.0 + 2e-8), -1);
        EXPECT_EQ(compare(kind, 1.0 + 2e-8, 1.0), 1);
        // At these sizes the tolerance is lost in rounding.
        EXPECT_EQ(compare(kind, 1e300, 1e300), 0);
        EXPECT_EQ(compare(kind, inf, inf), 0);
        EXPECT_EQ(compare(kind, -inf, inf), -1);
        EXPECT_EQ(compare(kind, 1e17, 1e17 + 16), -1);
    }
    EXPECT_EQ(compare(Kind::Float, 1.0f, 1.0f), 0);
    EXPECT_EQ(compare(Kind::Float, 1.0f, 1.5f), -1);
}

TEST(KindValues, TheOrderForKeysIsTotalAndAgreesWithTheHash) {
    const double ascending[] = {-inf, -1e300, -1, -1 + 1e-12, 0, 5e-324, 1e-9, 1, inf, notANumber};
    for (const double& a : ascending)
        for (const double& b : ascending) {
            EXPECT_EQ(order(Kind::Real, a, b), (&a > &b) - (&a < &b)) << a << " " << b;
            EXPECT_EQ(order(Kind::Float, float(a), float(b)), -order(Kind::Float, float(b), float(a)));
        }
    double zero = 0, minusZero = -0.0, otherNan = -notANumber;
    EXPECT_EQ(order(Kind::Real, zero, minusZero), 0);
    EXPECT_EQ(orv::hashKind(Kind::Real, &zero, 8), orv::hashKind(Kind::Real, &minusZero, 8));
    EXPECT_EQ(order(Kind::Real, notANumber, otherNan), 0);
    EXPECT_EQ(orv::hashKind(Kind::Real, &notANumber, 8), orv::hashKind(Kind::Real, &otherNan, 8));
    EXPECT_TRUE(orv::isNullKind(Kind::Real, &minusZero, 8));
    EXPECT_FALSE(orv::isNullKind(Kind::Real, &notANumber, 8));
}

TEST(KindValues, RealsClampIntegersAreCut) {
    struct Row {
        double from;
        int8 asChar;
        byte asByte;
        int asInt;
        uint asUInt;
        large asLarge;
        ularge asULarge;
    };
    constexpr auto top = std::numeric_limits<large>::max();
    const Row rows[] = {
        {notANumber, 0, 0, 0, 0, 0, 0},
        {inf, 127, 255, 0x7FFFFFFF, ~0u, top, ~0ull},
        {-inf, -128, 0, -0x7FFFFFFF - 1, 0, -top - 1, 0},
        {1.9, 1, 1, 1, 1, 1, 1},
        {-1.9, -1, 0, -1, 0, -1, 0},
        {9223372036854775808.0, 127, 255, 0x7FFFFFFF, ~0u, top, 1ull << 63},
        {2147483647.5, 127, 255, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF},
        {-0.5, 0, 0, 0, 0, 0, 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(convert<int8>(Kind::Char, Kind::Real, row.from), row.asChar) << row.from;
        EXPECT_EQ(convert<byte>(Kind::Byte, Kind::Double, row.from), row.asByte) << row.from;
        EXPECT_EQ(convert<int>(Kind::Int, Kind::Real, row.from), row.asInt) << row.from;
        EXPECT_EQ(convert<uint>(Kind::UInt, Kind::Real, row.from), row.asUInt) << row.from;
        EXPECT_EQ(convert<large>(Kind::Large, Kind::Real, row.from), row.asLarge) << row.from;
        EXPECT_EQ(convert<ularge>(Kind::ULarge, Kind::Real, row.from), row.asULarge) << row.from;
    }
    EXPECT_EQ(convert<int>(Kind::Int, Kind::Large, (1ll << 40) + 7), 7);
    EXPECT_EQ(convert<int>(Kind::Int, Kind::Enum, -3), -3);
    EXPECT_EQ(convert<large>(Kind::Large, Kind::Enum, -3), -3);
    EXPECT_EQ(convert<double>(Kind::Real, Kind::ULarge, ~0ull), 18446744073709551616.0);
    EXPECT_EQ(convert<float>(Kind::Float, Kind::Real, 0.1), 0.1f);
    EXPECT_EQ(convert<byte>(Kind::Bool, Kind::Int, 256), 1);
    EXPECT_EQ(convert<byte>(Kind::Bool, Kind::Real, 0.25), 1);
    EXPECT_EQ(convert<byte>(Kind::Bool, Kind::Real, -0.0), 0);
    int kept = 5;
    EXPECT_FALSE(orv::convertKind(Kind::Int, &kept, Kind::String, "x"));
    EXPECT_FALSE(orv::convertKind(Kind::String, &kept, Kind::Int, &kept));
    EXPECT_EQ(kept, 5);
}

TEST(KindValues, TextsThere) {
    SelectorScope selectors;
    struct Row {
        int kind;
        const char* text;
        const char* refused;
    };
    const Row rows[] = {
        {Kind::Bool, "yes", "1"},
        {Kind::Char, "-128", "128"},
        {Kind::Byte, "255", "-1"},
        {Kind::Short, "-32768", "32768"},
        {Kind::Word, "65535", "65536"},
        {Kind::Int, "-2147483648", "2147483648"},
        {Kind::UInt, "4294967295", "4294967296"},
        {Kind::Enum, "-7", "1x"},
        {Kind::Large, "-9223372036854775808", "9223372036854775808"},
        {Kind::ULarge, "18446744073709551615", "18446744073709551616"},
        {Kind::Float, "0.5", "0.5.5"},
        {Kind::Double, "-1.25", ""},
        {Kind::Real, "1048576", "one"},
        {Kind::Selector, "name", nullptr},
        {Kind::String, "any text", nullptr},
    };
    for (const Row& row : rows) {
        alignas(16) byte value[16], copy[16];
        ASSERT_LE(orv::kindSize(row.kind), sizeof value);
        orv::constructKind(row.kind, value, 0);
        orv::constructKind(row.kind, copy, 0);
        EXPECT_TRUE(orv::isNullKind(row.kind, value, 0)) << row.text;
        EXPECT_TRUE(orv::kindFromString(row.kind, value, ZString(row.text))) << row.text;
        EXPECT_FALSE(orv::isNullKind(row.kind, value, 0)) << row.text;
        EXPECT_EQ(orv::kindToString(row.kind, value), row.text);
        if (row.refused) { EXPECT_FALSE(orv::kindFromString(row.kind, value, ZString(row.refused))) << row.refused; }
        EXPECT_NE(orv::compareKind(row.kind, value, copy, 0), 0) << row.text;
        orv::copyKind(row.kind, copy, value, 0);
        EXPECT_EQ(orv::compareKind(row.kind, value, copy, 0), 0) << row.text;
        EXPECT_EQ(orv::hashKind(row.kind, value, 0), orv::hashKind(row.kind, copy, 0)) << row.text;
        orv::destructKind(row.kind, value);
        EXPECT_EQ(orv::kindToString(row.kind, copy), row.text);
        orv::destructKind(row.kind, copy);
    }
}

TEST(KindValues, WithoutMemoryTheValueStays) {
    SelectorScope selectors;
    ZSelector known("known name");
    ZString text("some text that needs a record");
    failEachAllocation([&](AllocProbe& probe) {
        zrecover();
        int number = 12;
        ZString printed = orv::kindToString(Kind::Int, &number);
        EXPECT_EQ(printed.isEmpty(), probe.failed());
        EXPECT_EQ(zrecover() > 0, probe.failed());
    });
}
