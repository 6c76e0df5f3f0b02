#include "text/ZLongestCommonSubsequence.h"

#include "tests/support/CoreScope.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <vector>

namespace {

class SubsequenceTest : public CoreTest {};

/// The tables themselves.
large tableLongest(const std::vector<int>& a, const std::vector<int>& b) {
    std::vector<std::vector<large>> cell(a.size() + 1, std::vector<large>(b.size() + 1));
    for (size_t i = 1; i <= a.size(); ++i)
        for (size_t j = 1; j <= b.size(); ++j)
            cell[i][j] = a[i - 1] == b[j - 1] ? cell[i - 1][j - 1] + 1 : std::max(cell[i - 1][j], cell[i][j - 1]);
    return cell[a.size()][b.size()];
}
large tableDistance(std::vector<int> a, std::vector<int> b, large change, large gap) {
    const size_t n = std::max(a.size(), b.size());
    a.resize(n, ' ');
    b.resize(n, ' ');
    std::vector<std::vector<large>> cell(n + 1, std::vector<large>(n + 1));
    for (size_t i = 1; i <= n; ++i)
        for (size_t j = 1; j <= n; ++j)
            cell[i][j] = std::min(
                {cell[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : change), cell[i][j - 1] + gap, cell[i - 1][j] + gap});
    return cell[n][n];
}

TEST_F(SubsequenceTest, AnswersAsTheTables) {
    ZLongestCommonSubsequence measure;
    uint seed = 7;
    auto next = [&](uint below) { return int((seed = seed * 1664525 + 1013904223) >> 8) % int(below); };
    for (int round = 0; round < 60; ++round) {
        const uint letters = round % 3 ? 4 : 300;
        std::vector<int> a(size_t(next(700))), b(size_t(next(round % 2 ? 700 : 40)));
        for (int& element : a) element = next(letters) - 2;
        for (int& element : b) element = next(letters) - 2;
        measure.setSubstitutionCost(round % 5);
        measure.setIndelCost(round % 7 ? 2 : 2'000'000'000);
        const large lengthA = large(a.size()), lengthB = large(b.size());
        ASSERT_EQ(measure.longest(a.data(), b.data(), lengthA, lengthB), tableLongest(a, b)) << round;
        ASSERT_EQ(measure.distance(a.data(), b.data(), lengthA, lengthB),
                  tableDistance(a, b, measure.substitutionCost(), measure.indelCost()))
            << round;
    }
}

TEST_F(SubsequenceTest, ComparesTexts) {
    struct {
        const ichar *a, *b;
        int lengthA, lengthB;
        large longest, distance;
    } rows[] = {{U"", U"", -1, -1, 0, 0},
                {U"ab", U"ba", -1, -1, 1, 2},
                {U"kitten", U"sitting", -1, -1, 4, 3},
                {U"kitten", U"sitting", 1, 1, 0, 1},
                {U"grün", U"grün", 99, -1, 4, 0},
                {U"a", U"", -1, -1, 0, 1},
                {U"a  ", U"a", -1, -1, 1, 0},
                {U"a", U"a", 0, 0, 0, 0}};
    const ZLongestCommonSubsequence measure;
    for (auto& row : rows) {
        const ZICharStr a(row.a), b(row.b);
        EXPECT_EQ(measure.longest(a, b, row.lengthA, row.lengthB), row.longest);
        EXPECT_EQ(measure.distance(a, b, row.lengthA, row.lengthB), row.distance);
    }
    const int one = 1;
    EXPECT_EQ(measure.longest(&one, nullptr, 5, 5), 0);
    EXPECT_EQ(measure.distance(&one, nullptr, -5, 5), 0);
}

// A table of these would have 10^10 cells.
TEST_F(SubsequenceTest, TakesLongSequences) {
    constexpr int length = 100'000;
    std::vector<int> up(length), down(length), even(length);
    for (int i = 0; i < length; ++i) up[size_t(i)] = i, down[size_t(i)] = length - i, even[size_t(i)] = 2 * i;
    const ZLongestCommonSubsequence measure;
    EXPECT_EQ(measure.longest(up.data(), down.data(), length, length), 1);
    EXPECT_EQ(measure.longest(even.data(), up.data(), length, length), length / 2);
}

TEST_F(SubsequenceTest, WithoutMemoryTheAnswerIsZero) {
    const int a[] = {1, 2, 3}, b[] = {9, 2, 7};
    failEachAllocation([&](AllocProbe& probe) {
        const ZLongestCommonSubsequence measure;
        const large longest = measure.longest(a, b, 3, 3), distance = measure.distance(a, b, 3, 3);
        EXPECT_TRUE(probe.failed() ? longest == 0 || distance == 0 : longest == 1 && distance == 2);
    });
}

} // namespace
