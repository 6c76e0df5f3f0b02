#include "value/ZVArray.h"

#include "tests/value/madeTypes.h"
#include "text/ZBlendPos.h"
#include "value/ZVHashSet.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

class ZVArrayTest : public ValueTest {
protected:
    static ZVArray integers(std::initializer_list<int> numbers) {
        return ZVArray((*types)[ZMetaType::Int], numbers.begin(), int(numbers.size()));
    }
    static std::vector<int> numbersOf(const ZVArray& array) {
        std::vector<int> numbers;
        for (uint i = 0; i < array.count(); ++i) numbers.push_back(array.variant(int(i)).toInt());
        return numbers;
    }
    using Numbers = std::vector<int>;
};

TEST_F(ZVArrayTest, BytesOfOneSize) {
    for (auto [given, kept] : {std::pair(1u, 1u), {3u, 3u}, {4u, 4u}, {5u, 8u}, {8u, 8u}}) {
        ZVArray array;
        ASSERT_TRUE(array.setItemSize(given));
        EXPECT_EQ(array.itemSize(), kept);
        const byte rows[3][8] = {{3, 1}, {2, 9}, {3}};
        for (const auto& row : rows) ASSERT_TRUE(array.appendItem(row));
        EXPECT_EQ(static_cast<const byte*>(std::as_const(array).get(1))[0], 2);
        EXPECT_TRUE(array.variant(0).isNull());
        EXPECT_FALSE(array.append(integer(1)));
        EXPECT_FALSE(array.setItemSize(7));
        ASSERT_TRUE(array.sort());
        EXPECT_EQ(static_cast<const byte*>(std::as_const(array).get(0))[0], 2);
    }
    EXPECT_FALSE(ZVArray().setItemSize(0));
    EXPECT_FALSE(ZVArray().setItemSize(0xFFFFFFFF));
}

TEST_F(ZVArrayTest, InsertsWithinTheCount) {
    ZVArray array = integers({1, 2, 3});
    ASSERT_TRUE(array.insert(99, integer(4)));
    ASSERT_TRUE(array.insert(-5, integer(0)));
    ASSERT_TRUE(array.insert(2, integer(7)));
    EXPECT_EQ(numbersOf(array), (Numbers{0, 1, 7, 2, 3, 4}));
    // Items of its own, which move while they are copied.
    ASSERT_TRUE(array.trim());
    ASSERT_TRUE(array.insertItems(1, std::as_const(array).get(3), 3));
    ASSERT_TRUE(array.insertArray(0, array));
    EXPECT_EQ(numbersOf(array), (Numbers{0, 2, 3, 4, 1, 7, 2, 3, 4, 0, 2, 3, 4, 1, 7, 2, 3, 4}));
    ASSERT_TRUE(array.remove(-2, 5));
    EXPECT_EQ(array.count(), 15u);
    ASSERT_TRUE(array.remove(3, 0x7FFFFFFF));
    EXPECT_EQ(numbersOf(array), (Numbers{4, 1, 7}));
    EXPECT_EQ(array.pop(), integer(7));
    ASSERT_TRUE(array.set(2, integer(9)));
    EXPECT_FALSE(array.set(4, integer(9)));
    EXPECT_FALSE(array.store(3, integer(9)));
    EXPECT_EQ(numbersOf(array), (Numbers{4, 1, 9}));
    ASSERT_TRUE(array.setCount(5));
    EXPECT_EQ(numbersOf(array), (Numbers{4, 1, 9, 0, 0}));
    EXPECT_FALSE(array.setCount(-1));
}

TEST_F(ZVArrayTest, WritingInPlaceKeepsTheCopies) {
    ZVArray first = integers({1, 2}), second(first);
    *static_cast<int*>(second.get(0)) = 5;
    EXPECT_EQ(numbersOf(first), (Numbers{1, 2}));
    EXPECT_EQ(numbersOf(second), (Numbers{5, 2}));
    EXPECT_EQ(second.get(2), nullptr);
    EXPECT_EQ(second.get(-1), nullptr);
}

TEST_F(ZVArrayTest, RoomFollowsTheRule) {
    struct Row {
        int16 expand;
        uint start, wanted;
    };
    for (const Row& row : {Row{100, 20, 40}, {50, 20, 30}, {0, 20, 40}, {-16, 20, 32}, {1, 20, 21}}) {
        ZVArray array((*types)[ZMetaType::Int], row.start, row.expand);
        ASSERT_TRUE(array.setCount(int(row.start)));
        EXPECT_EQ(array.maxcount(), row.start);
        ASSERT_TRUE(array.append(integer(1)));
        EXPECT_EQ(array.maxcount(), row.wanted) << row.expand;
    }
}

TEST_F(ZVArrayTest, SortsExactly) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    ZVArray array((*types)[ZMetaType::Real]);
    for (double real : {nan, 1e300, 1.0, -0.0, 1e-9, -5.0}) ASSERT_TRUE(array.append(number(real)));
    ZArrayT<int> order;
    ASSERT_TRUE(array.getSortOrder(order, false));
    EXPECT_EQ(order[0], 0);
    ASSERT_TRUE(array.sort());
    EXPECT_TRUE(array.isSorted());
    EXPECT_EQ(array.variant(0).toReal(), -5.0);
    EXPECT_EQ(array.variant(2).toReal(), 1e-9);
    EXPECT_EQ(array.findPos(number(0.0)), 1);
    EXPECT_EQ(array.findPos(number(1e300)), 4);
    EXPECT_EQ(array.findPos(number(nan)), 5);
    EXPECT_EQ(array.findPos(number(7)), -1);
    ASSERT_TRUE(array.append(number(-9)));
    EXPECT_FALSE(array.isSorted());
    EXPECT_EQ(array.findPos(number(-9)), 6);
}

TEST_F(ZVArrayTest, RearrangesWhatIsListed) {
    const ZVArray array = integers({10, 11, 12});
    const int places[] = {2, 0, 7, 2, -1};
    EXPECT_EQ(numbersOf(array.rearrange(ZArrayT<int>(places, 5))), (Numbers{12, 10, 0, 12, 0}));
    EXPECT_EQ(numbersOf(array.extract(ZArrayT<int>(places, 5))), (Numbers{12, 10, 12}));
    EXPECT_EQ(numbersOf(array.extract(1, 0x7FFFFFFF)), (Numbers{11, 12}));
    EXPECT_EQ(numbersOf(array.extract(-1, 2)), (Numbers{10}));
    ZVArray reversed(array);
    ASSERT_TRUE(reversed.reverse());
    EXPECT_EQ(numbersOf(reversed), (Numbers{12, 11, 10}));
}

TEST_F(ZVArrayTest, Compares) {
    const ZVArray array = integers({1, 2}), longer = integers({1, 2, 0}), greater = integers({1, 3});
    EXPECT_EQ(array.compare(integers({1, 2})), 0);
    EXPECT_EQ(array.compare(longer), -1);
    EXPECT_EQ(greater.compare(longer), 1);
    EXPECT_NE(array.compare(ZVArray((*types)[ZMetaType::UInt])), 0);
    EXPECT_EQ(ZVArray().compare(ZVArray()), 0);
    ZVArray named;
    named.setTypeName("Missing");
    EXPECT_NE(named.compare(ZVArray()), 0);
    EXPECT_TRUE(array.contains(integers({2, 1, 1})));
    EXPECT_FALSE(array.contains(greater));
    EXPECT_TRUE(array.overlapping(greater));
}

TEST_F(ZVArrayTest, BlendsByResampling) {
    const ZVArray a = integers({0, 100}), b = integers({10, 20, 30, 40, 200});
    ZVArray made;
    ASSERT_TRUE(made.blendFrom(&a, &b, ZBlendPos(0.5)));
    ASSERT_EQ(made.count(), 4u);
    EXPECT_EQ(made.variant(0).toInt(), 5);
    EXPECT_EQ(made.variant(3).toInt(), 150);
    ASSERT_TRUE(made.blendFrom(&a, nullptr, ZBlendPos(0.9)));
    EXPECT_EQ(made, a);
    const ZVArray other((*types)[ZMetaType::Real]);
    ASSERT_TRUE(made.blendFrom(&a, &other, ZBlendPos(0.5)));
    EXPECT_EQ(made, other);
    ASSERT_TRUE(made.blendFrom(&a, &other, ZBlendPos(0.4)));
    EXPECT_EQ(made, a);
}

TEST_F(ZVArrayTest, MatchesWithATolerance) {
    ZVArray a((*types)[ZMetaType::Real]), b((*types)[ZMetaType::Real]);
    EXPECT_TRUE(a.matchValue(b, 0));
    ASSERT_TRUE(a.append(number(1)) && b.append(number(1.01)));
    EXPECT_TRUE(a.matchValue(b, 0.02));
    EXPECT_FALSE(a.matchValue(b, 0.001));
    ASSERT_TRUE(b.append(number(2)));
    EXPECT_FALSE(a.matchValue(b, 1));
    EXPECT_FALSE(ZVArray().matchValue(ZVArray(), 1));
}

} // namespace
