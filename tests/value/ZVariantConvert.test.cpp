#include "object/ztype.h"
#include "tests/value/madeTypes.h"
#include "value/ZVariant.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {
class VariantConvert : public ValueTest {};
using V = ZVariant;
using M = ZMetaType;
constexpr double inf = std::numeric_limits<double>::infinity();
const double nan_ = std::nan("");
} // namespace

TEST_F(VariantConvert, EveryKindReadsAsEveryNumber) {
    // What is read as int, as 64 bits, as byte, as real, as bool.
    struct Row {
        V value;
        int asInt;
        large asLarge;
        byte asByte;
        double asReal;
        bool asBool;
    };
    constexpr large top = std::numeric_limits<large>::max();
    constexpr int topInt = std::numeric_limits<int>::max(), lowInt = std::numeric_limits<int>::min();
    const Row rows[] = {
        {value(M::Bool, byte(1)), 1, 1, 1, 1, true},
        {value(M::Bool, byte(0)), 0, 0, 0, 0, false},
        {value(M::Byte, byte(200)), 200, 200, 200, 200, true},
        {value(M::Char, int8(-56)), -56, -56, 200, -56, true},
        {value(M::Short, short(-300)), -300, -300, byte(-300), -300, true},
        {value(M::Word, word(65000)), 65000, 65000, byte(65000), 65000, true},
        {value(M::Int, -5), -5, -5, 251, -5, true},
        {value(M::UInt, 0xFFFFFFFEu), -2, 0xFFFFFFFEll, 254, 4294967294.0, true},
        {value(M::Enum, 3), 3, 3, 3, 3, true},
        {value(M::Large, 0x1234567890ll), 0x34567890, 0x1234567890ll, 0x90, 78187493520.0, true},
        {value(M::ULarge, ~0ull), -1, -1, 255, 18446744073709551615.0, true},
        {value(M::Float, -2.75f), -2, -2, 0, -2.75, true},
        {value(M::Double, 1e10), topInt, 10000000000ll, 255, 1e10, true},
        {value(M::Real, -1e10), lowInt, -10000000000ll, 0, -1e10, true},
        {value(M::Real, 0.5), 0, 0, 0, 0.5, true},
        {value(M::Real, -0.0), 0, 0, 0, 0, false},
        {value(M::Real, inf), topInt, top, 255, inf, true},
        {text("42"), 42, 42, 42, 42, false},
        {text(" -7 "), -7, -7, 0, -7, false},
        {text("2.5"), 0, 0, 0, 2.5, false},
        {text("300"), 300, 300, 0, 300, false},
        {text("12abc"), 0, 0, 0, 0, false},
        {text("yes"), 0, 0, 0, 0, true},
        {text("true"), 0, 0, 0, 0, true},
        {name("17"), 17, 17, 17, 17, false},
        {name("no"), 0, 0, 0, 0, false},
        {V(), 0, 0, 0, 0, false},
    };
    int index = 0;
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << "row " << index++);
        EXPECT_EQ(row.value.toInt(), row.asInt);
        EXPECT_EQ(row.value.toLarge(), row.asLarge);
        EXPECT_EQ(row.value.toLong(), row.asLarge);
        EXPECT_EQ(row.value.toByte(), row.asByte);
        EXPECT_EQ(row.value.toReal(), row.asReal);
        EXPECT_EQ(row.value.toFloat(), float(row.asReal));
        EXPECT_EQ(row.value.toBool(), row.asBool);
    }
    V notANumber = number(nan_);
    EXPECT_EQ(notANumber.toInt(), 0);
    EXPECT_EQ(notANumber.toULarge(), 0u);
    EXPECT_TRUE(std::isnan(notANumber.toReal()));
    EXPECT_EQ(number(-3).toUInt(), 0u);
    EXPECT_EQ(number(1e300).toULarge(), ~0ull);
    EXPECT_EQ(number(70000).toShort(), 32767);
    EXPECT_EQ(number(-200).toChar(), char(-128));
}

TEST_F(VariantConvert, FormsThatAnswerTellWhetherItConverts) {
    int out = 99;
    EXPECT_FALSE(text("12abc").toInt(&out));
    EXPECT_FALSE(V().toInt(&out));
    EXPECT_FALSE(text("2147483648").toInt(&out));
    EXPECT_EQ(out, 99);
    EXPECT_TRUE(text("-2147483648").toInt(&out));
    EXPECT_EQ(out, std::numeric_limits<int>::min());
    bool truth = true;
    EXPECT_FALSE(text("1").toBool(&truth));
    EXPECT_TRUE(truth);
    double real = 1;
    EXPECT_FALSE(text("").toReal(&real));
    EXPECT_FALSE(V(types->large).toReal(&real));
    EXPECT_EQ(real, 1);
    byte small = 7;
    EXPECT_FALSE(text("300").toByte(&small));
    EXPECT_EQ(small, 7);
}

TEST_F(VariantConvert, PointersReadAsTheirTarget) {
    auto target = static_cast<int*>(__zalloc(sizeof(int)));
    *target = 31;
    {
        V pointer;
        ASSERT_TRUE(pointer.setReference((*types)[M::Int], target));
        EXPECT_EQ(pointer.toInt(), 31);
        EXPECT_TRUE(pointer.numericType());
        EXPECT_EQ(pointer.toString(), "31");
        EXPECT_EQ(pointer.typeType(), M::Int);
    }
    zfree(target);
}

TEST_F(VariantConvert, TextOfValues) {
    struct Row {
        V value;
        const char* text;
    };
    const Row rows[] = {{value(M::Bool, byte(1)), "yes"},
                        {value(M::Bool, byte(0)), "no"},
                        {value(M::Char, int8(-5)), "-5"},
                        {value(M::ULarge, ~0ull), "18446744073709551615"},
                        {number(1.5), "1.5"},
                        {text("abc"), "abc"},
                        {name("a b"), "a b"},
                        {V(), ""}};
    for (const Row& row : rows) {
        EXPECT_EQ(row.value.toString(), row.text);
        EXPECT_EQ(row.value.toSelector(), ZSelector(row.text));
    }
}

TEST_F(VariantConvert, KindsOfNumbers) {
    EXPECT_FALSE(value(M::Bool, byte(1)).numericType());
    EXPECT_TRUE(value(M::Bool, byte(1)).numberType());
    EXPECT_FALSE(value(M::Enum, 1).numericType());
    EXPECT_FALSE(value(M::Enum, 1).numberType());
    EXPECT_TRUE(integer(1).numericType());
    EXPECT_TRUE(number(1).numericType());
    EXPECT_FALSE(text("1").numericType());
    EXPECT_TRUE(text("1e3").numberType());
    EXPECT_FALSE(text("e3").numberType());
    EXPECT_TRUE(name("12").numberType());
    EXPECT_FALSE(V().numberType());
}

TEST_F(VariantConvert, ConvertChangesTheTypeOrNothing) {
    struct Row {
        V from;
        int kind;
        bool works;
        const char* text;
    };
    const Row rows[] = {
        {integer(65), M::Real, true, "65"},
        {number(2.9), M::Int, true, "2"},
        {text("12"), M::Int, true, "12"},
        {text("12abc"), M::Int, false, "12abc"},
        {text("300"), M::Byte, false, "300"},
        {integer(300), M::Byte, true, "44"},
        {integer(7), M::String, true, "7"},
        {integer(7), M::Selector, true, "7"},
        {text("a  b"), M::Selector, true, "a b"},
        {text("yes"), M::Bool, true, "yes"},
        {text("1"), M::Bool, false, "1"},
        {integer(2), M::Bool, true, "yes"},
        {name("x"), M::String, true, "x"},
        {text("2"), M::Enum, true, "2"},
        {number(1e20), M::Large, true, "9223372036854775807"},
    };
    for (const Row& row : rows) {
        V converted(row.from);
        EXPECT_EQ(converted.convert((*types)[row.kind]), row.works) << row.text;
        EXPECT_EQ(converted.type(), row.works ? (*types)[row.kind] : row.from.type()) << row.text;
        if (row.kind != M::Enum) { EXPECT_EQ(converted.toString(), row.text); }
        // Made as a value of the type, it is one in any case.
        V typed((*types)[row.kind], row.from);
        EXPECT_EQ(typed.type(), (*types)[row.kind]);
        EXPECT_EQ(typed.compare(row.works ? converted : V((*types)[row.kind])), 0) << row.text;
    }
    V kept = integer(3);
    EXPECT_FALSE(kept.convert(nullptr));
    EXPECT_EQ(kept.toInt(), 3);
    EXPECT_TRUE(kept.setValue((*types)[M::Real], ZString("2.5")));
    EXPECT_EQ(kept.toReal(), 2.5);
    EXPECT_FALSE(kept.setValue((*types)[M::Int], ZString("x")));
    EXPECT_EQ(kept.toReal(), 2.5);
}

TEST_F(VariantConvert, ToATypeByItsName) {
    V value = text("12");
    EXPECT_FALSE(value.convertType(ZSelector("NoSuchType")) || value.convertType(ZSelector()));
    EXPECT_EQ(value.toString(), "12");
    EXPECT_TRUE(value.convertType(ZSelector("real")));
    EXPECT_EQ(value.type(), ztype<real>());
    EXPECT_EQ(value.toReal(), 12);
    EXPECT_FALSE(value.convertType(ZSelector("ZObject")));
    EXPECT_EQ(value.toReal(), 12);
}

TEST_F(VariantConvert, ConversionSurvivesLackOfMemory) {
    failEachAllocation([](AllocProbe&) {
        ZFailGuard guard;
        V value = number(12345.678901);
        bool done = value.convert((*types)[M::String]);
        EXPECT_EQ(value.type(), (*types)[done ? M::String : M::Real]);
        EXPECT_FALSE(guard.rose());
        V back(value);
        if (done && back.convert((*types)[M::Real])) { EXPECT_NEAR(back.toReal(), 12345.678901, 1e-3); }
    });
}
