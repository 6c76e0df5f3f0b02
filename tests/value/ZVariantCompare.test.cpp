#include "tests/value/madeTypes.h"
#include "value/ZVariant.h"
#include "value/valueOrder.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {
class VariantCompare : public ValueTest {};
using V = ZVariant;
using M = ZMetaType;
constexpr double inf = std::numeric_limits<double>::infinity();
} // namespace

TEST_F(VariantCompare, OrderWithinAType) {
    struct Row {
        V less, greater;
    };
    const Row rows[] = {
        {integer(-1), integer(1)},
        {value(M::UInt, 1u), value(M::UInt, 0xFFFFFFFFu)},
        {value(M::Char, int8(-1)), value(M::Char, int8(1))},
        {value(M::Byte, byte(1)), value(M::Byte, byte(255))},
        {value(M::Large, -1ll), value(M::Large, 1ll << 40)},
        {value(M::ULarge, 1ull), value(M::ULarge, ~0ull)},
        {number(1), number(1.1)},
        {number(-inf), number(inf)},
        {text("a"), text("b")},
        {text(""), text("a")},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(row.less.compare(row.greater), -1);
        EXPECT_EQ(row.greater.compare(row.less), 1);
        EXPECT_EQ(row.less.order(row.greater), -1);
        EXPECT_EQ(row.greater.order(row.less), 1);
        EXPECT_EQ(row.less.compare(row.less), 0);
        EXPECT_EQ(row.less.hashKey(), V(row.less).hashKey());
    }
}

TEST_F(VariantCompare, DifferentTypesAreNeverEqual) {
    const V values[] = {integer(1), value(M::Byte, byte(1)), number(1), text("1"), name("1"), V()};
    for (const V& a : values)
        for (const V& b : values) {
            if (&a == &b) continue;
            EXPECT_NE(a.compare(b), 0);
            EXPECT_EQ(a.compare(b), -b.compare(a));
            EXPECT_EQ(a.compare(b), a.type() < b.type() ? -1 : 1);
        }
}

TEST_F(VariantCompare, RealsThatUsersFindEqualAndKeysThatAre) {
    EXPECT_EQ(number(1).compare(number(1 + 1e-9)), 0);
    EXPECT_EQ(number(1).order(number(1 + 1e-9)), -1);
    EXPECT_EQ(number(1e20).compare(number(1e20)), 0);
    EXPECT_EQ(number(inf).compare(number(inf)), 0);
    EXPECT_EQ(number(0.0).order(number(-0.0)), 0);
    EXPECT_EQ(number(0.0).hashKey(), number(-0.0).hashKey());
    const V one = number(std::nan("1")), two = number(-std::nan("2"));
    EXPECT_EQ(one.order(two), 0);
    EXPECT_EQ(one.hashKey(), two.hashKey());
    EXPECT_EQ(one.order(number(inf)), 1);
    EXPECT_EQ(number(-inf).order(one), -1);
    EXPECT_EQ(value(M::Float, 0.0f).hashKey(), value(M::Float, -0.0f).hashKey());
}

TEST_F(VariantCompare, EqualTextsHashAlikeInAnyForm) {
    ZString narrow("gr\xC3\xBCn"), wide(u"gr\u00FCn"), inner(narrow);
    inner.internalize();
    ZMetaType* type = (*types)[M::String];
    V a(type, &narrow), b(type, &wide), c(type, &inner);
    EXPECT_EQ(a.compare(b), 0);
    EXPECT_EQ(a.compare(c), 0);
    EXPECT_EQ(a.hashKey(), b.hashKey());
    EXPECT_EQ(a.hashKey(), c.hashKey());
    EXPECT_NE(a.hashKey(), text("rot").hashKey());
    EXPECT_EQ(name("word").hashKey(), ZSelector("word").key());
}

TEST_F(VariantCompare, StructuresByTheirOwnOrder) {
    Small a, b, c;
    a.setNumber(1);
    b.setNumber(1);
    c.setNumber(2);
    V first(types->small, &a), same(types->small, &b), other(types->small, &c);
    EXPECT_EQ(first.compare(same), 0);
    EXPECT_EQ(first.compare(other), -1);
    EXPECT_EQ(first.order(same), 0);
    // The bytes differ by an address, which must not count.
    EXPECT_EQ(first.hashKey(), same.hashKey());
    EXPECT_EQ(orv::orderValues(types->small, &a, nullptr), -1);
    EXPECT_EQ(orv::orderValues(types->small, nullptr, &a), 1);
}

TEST_F(VariantCompare, StructuresWithoutAnOrderAreKeysByTheirBytes) {
    ZMetaType* type = zmake<ZMetaType>(nullptr, ZSelector("TestBytes"), ZMetaType::Structure);
    type->setSize(12);
    {
        byte a[12] = {1}, b[12] = {2};
        V first(type, a), second(type, b);
        EXPECT_EQ(first.order(second), -1);
        EXPECT_EQ(first.order(V(type, a)), 0);
        EXPECT_EQ(first.hashKey(), V(type, a).hashKey());
        EXPECT_NE(first.hashKey(), second.hashKey());
    }
    type->release();
}

TEST_F(VariantCompare, MatchingWithATolerance) {
    struct Row {
        V a, b;
        double tolerance;
        bool match;
    };
    const Row rows[] = {
        {number(1), number(1.05), 0.1, true},
        {number(1), number(1.2), 0.1, false},
        {number(inf), number(inf), 0, true},
        {number(inf), number(1), 1e300, false},
        {value(M::Float, 1.f), value(M::Float, 1.5f), 0.5, true},
        {integer(1), integer(1), 0, true},
        {integer(1), integer(2), 10, false},
        {integer(1), number(1), 10, false},
        {text("a"), text("a"), 0, true},
        {text("a"), text("b"), 10, false},
        {name("a"), name("a"), 0, true},
        {V(), V(), 0, true},
        {V(), integer(1), 0, false},
        {number(std::nan("")), number(std::nan("")), 1, false},
    };
    int index = 0;
    for (const Row& row : rows) {
        EXPECT_EQ(row.a.matchValue(row.b, row.tolerance), row.match) << index;
        EXPECT_EQ(row.b.matchValue(row.a, row.tolerance), row.match) << index++;
    }
}

TEST_F(VariantCompare, OperationsByName) {
    const V one = integer(1), two = integer(2), list = name("red green blue"), red = name("red"), grey = name("grey");
    struct Row {
        const char* operation;
        bool less, equal, greater; ///< what 1 ? 2, 1 ? 1 and 2 ? 1 give
    };
    const Row rows[] = {
        {"is", false, true, false},      {"equals", false, true, false},
        {"==", false, true, false},      {"not", true, false, true},
        {"notequal", true, false, true}, {"!=", true, false, true},
        {"<>", true, false, true},       {"less", true, false, false},
        {"<", true, false, false},       {"lessorequal", true, true, false},
        {"<=", true, true, false},       {"greater", false, false, true},
        {">", false, false, true},       {"greaterorequal", false, true, true},
        {">=", false, true, true},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(one.checkOperation(row.operation, two), row.less) << row.operation;
        EXPECT_EQ(one.checkOperation(row.operation, one), row.equal) << row.operation;
        EXPECT_EQ(two.checkOperation(row.operation, one), row.greater) << row.operation;
    }
    for (const char* operation : {"contains", "has"}) {
        EXPECT_TRUE(list.checkOperation(operation, red));
        EXPECT_FALSE(list.checkOperation(operation, grey));
    }
    for (const char* operation : {"nothas", "misses"}) {
        EXPECT_FALSE(list.checkOperation(operation, red));
        EXPECT_TRUE(list.checkOperation(operation, grey));
    }
    EXPECT_TRUE(red.checkOperation("in", list));
    EXPECT_FALSE(grey.checkOperation("in", list));
    EXPECT_FALSE(one.checkOperation("noSuchMethod", two));
    EXPECT_TRUE(one.checkOperation("not.noSuchMethod", two));
    EXPECT_FALSE(one.checkOperation("", one));
}
