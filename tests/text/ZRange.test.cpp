#include "text/ZRange.h"

#include "text/ZInteger.h"

#include <climits>
#include <gtest/gtest.h>

TEST(Range, JoinCoversBoth) {
    struct Row {
        ZRange a, b, joined;
    } rows[] = {
        {{0, 2}, {5, 1}, {0, 6}}, {{0, 10}, {3, 2}, {0, 10}},           {{4, 2}, {4, 2}, {4, 2}},
        {{3, 0}, {5, 1}, {5, 1}}, {{0, 1}, {INT_MAX, 1}, {0, INT_MAX}}, {{-1, 9}, {2, 2}, {2, 2}},
    };
    for (auto& row : rows) {
        EXPECT_EQ(row.a.join(row.b), row.joined) << row.a.start() << " " << row.b.start();
        EXPECT_EQ(row.b.join(row.a), row.joined) << row.b.start() << " " << row.a.start();
    }
    EXPECT_FALSE(ZRange(3, 0).valid());
    EXPECT_FALSE(ZRange(-1, 3).valid());
    EXPECT_EQ(ZRange(3, 0x50000).hashKey(), (~0x50003u >> 16 ^ 0x50003u));
    EXPECT_LT(ZRange(3, 9).compare({4, 1}), 0);
    EXPECT_GT(ZRange(3, 9).compare({3, 1}), 0);
}

TEST(Integer, DivisorsAndMultiples) {
    struct Row {
        int a, b, gcd, lcm;
    } rows[] = {{12, 18, 6, 36},
                {-12, 18, 6, 36},
                {0, 5, 5, 0},
                {0, 0, 0, 0},
                {7, 13, 1, 91},
                {INT_MIN, 0, INT_MAX, 0},
                {INT_MIN, INT_MIN, INT_MAX, INT_MAX},
                {INT_MAX, 2, 1, INT_MAX}};
    for (auto& row : rows) {
        EXPECT_EQ(ZInteger::gcd(row.a, row.b), row.gcd) << row.a << " " << row.b;
        EXPECT_EQ(ZInteger::lcm(row.a, row.b), row.lcm) << row.a << " " << row.b;
    }
}
