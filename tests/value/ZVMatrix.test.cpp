#include "value/ZVMatrix.h"

#include "object/ZMetaType.h"
#include "object/ztype.h"
#include "tests/support/CoreScope.h"
#include "tests/support/invoke.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"

#include <gtest/gtest.h>

namespace {

using MatrixTest = CoreTest;

/// Rows between "|".
std::string told(const ZVMatrix& matrix) {
    std::string text;
    for (int row = 0; row < int(matrix.rows()); ++row) {
        if (row) text += "|";
        for (int column = 0; column < int(matrix.columns()); ++column)
            text += (column ? " " : "") + std::to_string(matrix.variant(column, row).toInt());
    }
    return text;
}
ZVArray numbers(std::initializer_list<int> list) { return ZVArray(ztype<int>(), list.begin(), int(list.size())); }
ZVMatrix made(int columns, int rows, std::initializer_list<int> list) {
    ZVMatrix matrix(ztype<int>(), columns, rows);
    EXPECT_TRUE(matrix.set(numbers(list)));
    return matrix;
}

TEST_F(MatrixTest, AnotherSizeSpreadsTheContent) {
    struct {
        int columns, rows;
        const char* wanted;
    } cases[] = {
        {3, 3, "1 1 2|1 1 2|3 3 4"}, {2, 2, "1 2|3 4"}, {1, 1, "1"}, {1, 2, "1|3"},
        {4, 1, "1 1 1 2"},           {0, 2, "|"},       {0, 0, ""},
    };
    for (const auto& row : cases) {
        ZVMatrix matrix = made(2, 2, {1, 2, 3, 4});
        ASSERT_TRUE(matrix.setSize(row.columns, row.rows));
        EXPECT_EQ(told(matrix), row.wanted);
    }
    ZVMatrix matrix = made(2, 2, {1, 2, 3, 4});
    EXPECT_FALSE(matrix.setSize(-1, 2) || matrix.setSize(2, -1) || matrix.setSize(0x10000, 0x10000));
    EXPECT_EQ(told(matrix), "1 2|3 4");
    // New items are what their type makes them, and in place.
    ZVMatrix texts(ztype<ZString>(), 2, 2);
    EXPECT_EQ(texts.count(), 4u);
    EXPECT_EQ(texts.variant(1, 1), ZVariant(ZString()));
    EXPECT_TRUE(texts.set(0, 1, ZVariant("a")) && texts.setSize(1, 3));
    EXPECT_EQ(texts.values().toString(), ZString("  a"));
    ZFailGuard guard;
    EXPECT_EQ(ZVMatrix(ztype<int>(), -1, 1).count() + ZVMatrix(ztype<double>(), 50000, 50000).count(), 0u);
    EXPECT_TRUE(guard.rose());
    guard.forget();
}

TEST_F(MatrixTest, LinesComeAndGo) {
    ZVMatrix matrix = made(2, 2, {1, 2, 3, 4});
    const ZVMatrix kept(matrix);
    EXPECT_TRUE(matrix.insertRow(1, ZVariant("7")));
    EXPECT_EQ(told(matrix), "1 2|7 7|3 4");
    EXPECT_TRUE(matrix.insertRow(99, numbers({8, 9})) && matrix.insertColumn(-5, numbers({10, 11, 12, 13})));
    EXPECT_EQ(told(matrix), "10 1 2|11 7 7|12 3 4|13 8 9");
    EXPECT_TRUE(matrix.insertColumn(2, ZVariant(0)) && matrix.removeRow(0) && matrix.removeColumn(3));
    EXPECT_EQ(told(matrix), "11 7 0|12 3 0|13 8 0");
    EXPECT_FALSE(matrix.insertRow(0, numbers({1})) || matrix.insertRow(0, ZVariant("x")));
    EXPECT_FALSE(matrix.removeRow(3) || matrix.removeRow(-1) || matrix.set(3, 0, ZVariant(1)) || matrix.get(0, 3));
    EXPECT_EQ(matrix.findValue(ZVariant(3)), 4);
    EXPECT_TRUE(matrix.contains(made(1, 2, {8, 12})) && !matrix.contains(kept));
    ZVMatrix fresh((ztype<int>()));
    EXPECT_TRUE(fresh.insertRow(0, numbers({1, 2})) && fresh.insertRow(1, ZVariant(3)));
    EXPECT_EQ(told(fresh), "1 2|3 3");
    EXPECT_TRUE(fresh.removeRow(0) && fresh.removeRow(0) && fresh.insertColumn(0, numbers({5, 6})));
    EXPECT_EQ(told(fresh), "5|6");
    EXPECT_EQ(told(kept), "1 2|3 4");
    failEachAllocation([&](AllocProbe& probe) {
        ZVMatrix copy(kept);
        const bool done = copy.insertColumn(1, ZVariant(6)) && copy.setSize(2, 3);
        probe.failAt(0);
        EXPECT_TRUE(done ? told(copy) == "1 2|1 2|3 4" : told(copy) == "1 6 2|3 6 4" || told(copy) == "1 2|3 4");
    });
}

TEST_F(MatrixTest, ComparesMatchesAndBlends) {
    const ZVMatrix a = made(2, 2, {0, 0, 4, 4}), b = made(2, 2, {8, 8, 8, 8}), wide = made(4, 1, {0, 0, 4, 4});
    EXPECT_EQ(a.compare(b), -1);
    EXPECT_EQ(b.compare(a), 1);
    EXPECT_NE(a, wide);
    EXPECT_EQ(a, made(2, 2, {0, 0, 4, 4}));
    EXPECT_FALSE(a.matchValue(wide, 100));
    ZVMatrix between;
    ASSERT_TRUE(between.blendFrom(&a, &b, ZBlendPos(0.5)));
    EXPECT_EQ(told(between), "4 4|6 6");
    ASSERT_TRUE(between.blendFrom(&a, &wide, ZBlendPos(0.5)));
    EXPECT_EQ(told(between), "0 0 2|2 2 4") << "3 columns, 2 rows";
    ASSERT_TRUE(between.blendFrom(nullptr, &b, ZBlendPos(0.1)));
    EXPECT_EQ(between, b);
    // By name.
    ZVariant held(ztype<ZVMatrix>(), &a);
    EXPECT_TRUE(held.matchValue(ZVariant(ztype<ZVMatrix>(), &a), 0));
    EXPECT_EQ(invoke(held, "variant", 1, 1).toInt(), 4);
    EXPECT_EQ(held.compare(ZVariant(ztype<ZVMatrix>(), &b)), -1);
    EXPECT_TRUE(invoke(held, "setIdentity").toBool());
    EXPECT_EQ(told(a), "0 0|4 4") << "the variant had a copy";
}

} // namespace
