#include "value/ZVArray.h"

#include "core/ZArrayT.h"
#include "tests/value/madeTypes.h"
#include "text/ZBlendPos.h"
#include "value/ZVHashSet.h"
#include "value/valueOrder.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <thread>

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
    static ZArrayT<int> places(std::initializer_list<int> list) { return {list.begin(), uint(list.size())}; }
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
    // Count times size is more than there can be.
    ZVArray huge;
    ASSERT_TRUE(huge.setItemSize(0x7FFFFFFF));
    EXPECT_FALSE(huge.expand(0x7FFFFFFF) || huge.setSpace(0x7FFFFFFF) || huge.setCount(0x7FFFFFFF));
    EXPECT_EQ(huge.maxcount(), 0u);
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

/// What is known of items that can't be understood goes where they go.
TEST_F(ZVArrayTest, UnknownItemsKeepWhatIsKnownOfThem) {
    ZVArray array;
    ASSERT_TRUE(array.setItemSize(5) && array.setEndian(true));
    array.setTypeName("Missing");
    for (byte first : {2, 0, 1}) {
        const byte item[8] = {first, 9, 9, 9, 9};
        ASSERT_TRUE(array.appendItem(item));
    }
    ZVArray written(array), grown(array);
    ASSERT_TRUE(written.detach() && grown.append(array));
    for (const ZVArray& kept : {array.rearrange(places({2, 0})), array.extract(0, 2), ZVArray(array), written, grown}) {
        EXPECT_EQ(kept.itemSize(), 8u);
        EXPECT_TRUE(kept.endian());
        EXPECT_EQ(kept.getTypeName(), ZSelector("Missing"));
        EXPECT_FALSE(kept.hasType());
    }
    EXPECT_EQ(grown.count(), 6u);
    EXPECT_FALSE(grown.append(integers({1})));
    EXPECT_EQ(written.compare(array), 0);
}

TEST_F(ZVArrayTest, NumbersAreStoredAsTheyAre) {
    ZVArray reals((*types)[ZMetaType::Real]), bytes((*types)[ZMetaType::Byte]), texts((*types)[ZMetaType::String]);
    EXPECT_EQ(reals.valuesT<double>(), nullptr);
    ASSERT_TRUE(reals.append(0.5) && reals.append(3) && reals.append(true) && reals.append(0.25f));
    const double wanted[] = {0.5, 3, 1, 0.25};
    EXPECT_EQ(std::memcmp(reals.valuesT<double>(), wanted, sizeof wanted), 0);
    EXPECT_EQ(reals.valuesT<float>(), nullptr);
    ASSERT_TRUE(bytes.append(byte(200)) && bytes.append(7));
    EXPECT_EQ(bytes.valuesT<byte>()[0], 200);
    EXPECT_EQ(bytes.valuesT<bool>(), nullptr);
    ASSERT_TRUE(texts.append(12));
    EXPECT_EQ(texts.variant(0), text("12"));
    // A shared block and a sorted one are no place to write to at once.
    ASSERT_TRUE(reals.sort());
    const ZVArray before(reals);
    ASSERT_TRUE(reals.append(-1.0));
    EXPECT_EQ(before.count(), 4u);
    EXPECT_FALSE(reals.isSorted());
}

/// By the order of values, whatever way a kind is sorted in: many of few values, of the numbers' ends, of texts of all
/// widths that begin alike.
TEST_F(ZVArrayTest, SortsEveryKindStably) {
    std::mt19937 random(3);
    auto fill = [&](ZVArray& array, int count, auto&& item) {
        for (int i = 0; i < count; ++i) ASSERT_TRUE(array.append(item(random() % 20)));
    };
    const double ends[] = {-0.0,  0.0,     1.5,  -1.5,  std::numeric_limits<double>::quiet_NaN(),
                           1e-40, -1e-300, 1e38, -1e38, std::numeric_limits<double>::infinity()};
    const char* starts[] = {"", "a", "common start", "common star", "gr\xC3\xBC", "broken \xFF", "\xF0\x9F\x98\x80"};
    auto textOf = [&](uint i) {
        ZString made(starts[i % 7]);
        if (i % 3 == 1) made.setType(ZString::WChar);
        if (i % 3 == 2) made.append("and a tail longer than what is compared at once");
        return ZVariant((*types)[ZMetaType::String], &made);
    };
    for (int count : {2, 13, 100, 1000}) {
        std::vector<ZVArray> arrays;
        for (int kind = ZMetaType::Bool; kind <= ZMetaType::Real; ++kind) {
            ZVArray& array = arrays.emplace_back((*types)[kind]);
            const bool reals = kind >= ZMetaType::Float;
            fill(array, count, [&](uint i) { return reals ? number(ends[i % 10]) : integer(int(i - 10) * 29); });
        }
        fill(arrays.emplace_back((*types)[ZMetaType::String]), count, textOf);
        fill(arrays.emplace_back((*types)[ZMetaType::Selector]), count,
             [](uint i) { return name(("s" + std::to_string(i)).c_str()); });
        fill(arrays.emplace_back(types->small), count, [](uint i) {
            Small made;
            made.setNumber(int(i));
            return ZVariant(types->small, &made);
        });
        ZVArray& deep = arrays.emplace_back((*types)[ZMetaType::String]);
        for (int i = 0; i < count; ++i)
            ASSERT_TRUE(deep.append(text(std::string(size_t(i * 37 % 90 * 9), 'x').c_str())));
        for (ZVArray& array : arrays) {
            SCOPED_TRACE(std::string(array.getTypeName().string()) + std::to_string(count));
            ASSERT_EQ(array.count(), uint(count));
            const ZVArray& given = array;
            for (bool ascending : {true, false}) {
                std::vector<int> wanted(static_cast<size_t>(count));
                for (int i = 0; i < count; ++i) wanted[size_t(i)] = i;
                std::stable_sort(wanted.begin(), wanted.end(), [&](int a, int b) {
                    const int order = orv::orderValues(given.getValueType(), given.get(a), given.get(b));
                    return ascending ? order < 0 : order > 0;
                });
                ZArrayT<int> order;
                ASSERT_TRUE(given.getSortOrder(order, ascending));
                EXPECT_TRUE(std::equal(wanted.begin(), wanted.end(), order.begin(), order.end())) << ascending;
            }
            ZArrayT<int> order;
            ASSERT_TRUE(given.getSortOrder(order, true));
            const ZVArray wanted = given.rearrange(order);
            ASSERT_TRUE(array.sort() && array.isSorted());
            EXPECT_EQ(orv::ItemRow(array.row()).compare(wanted.row()), 0);
            for (int i = 0; i < count; i += 7) {
                const int at = array.findPos(wanted.variant(i));
                ASSERT_GE(at, 0);
                EXPECT_EQ(at, wanted.findValue(wanted.variant(i)));
            }
        }
    }
}

TEST_F(ZVArrayTest, WritingEndsTheSortedState) {
    const ZVArray sorted = [] {
        ZVArray made = integers({3, 1, 2});
        EXPECT_TRUE(made.sort());
        return made;
    }();
    ASSERT_TRUE(sorted.isSorted());
    using Write = void (*)(ZVArray&);
    for (Write write :
         {Write([](ZVArray& a) { a.get(0); }), Write([](ZVArray& a) { a.store(0, integer(9)); }),
          Write([](ZVArray& a) { a.insert(0, integer(9)); }), Write([](ZVArray& a) { a.append(9); }),
          Write([](ZVArray& a) { a.reverse(); }), Write([](ZVArray& a) { a.changePlace(0, 1); }),
          Write([](ZVArray& a) { a.changePlace(places({2}), 0); }), Write([](ZVArray& a) { a.setCount(4); })}) {
        ZVArray array(sorted);
        write(array);
        EXPECT_FALSE(array.isSorted());
    }
    ZVArray copy(sorted);
    ASSERT_TRUE(copy.detach() && copy.removeIndex(0));
    EXPECT_TRUE(copy.isSorted());
    EXPECT_EQ(copy.findPos(integer(3)), 1);
}

TEST_F(ZVArrayTest, TakesOutAndMovesWhatIsListed) {
    ZVArray array = integers({0, 1, 2, 3, 4, 5, 6});
    EXPECT_EQ(numbersOf(array.extractRemove(places({5, 1, 9, 1}))), (Numbers{5, 1, 1}));
    EXPECT_EQ(numbersOf(array), (Numbers{0, 2, 3, 4, 6}));
    EXPECT_EQ(numbersOf(array.extractRemove(3, 9)), (Numbers{4, 6}));
    EXPECT_EQ(numbersOf(array.extract(integers({2, 0}))), (Numbers{3, 0}));
    EXPECT_EQ(numbersOf(array.extractRemove(integers({0}))), (Numbers{0}));
    const ZVArray named("no numbers");
    EXPECT_TRUE(array.extractRemove(named).isEmpty());
    EXPECT_TRUE(zresetfail());
    EXPECT_EQ(numbersOf(array), (Numbers{2, 3}));
    array = integers({0, 1, 2, 3, 4});
    ASSERT_TRUE(array.changePlace(1, 2, 3));
    EXPECT_EQ(numbersOf(array), (Numbers{0, 3, 4, 1, 2}));
    ASSERT_TRUE(array.changePlace(3, 2, 1));
    EXPECT_EQ(numbersOf(array), (Numbers{0, 1, 2, 3, 4}));
    ASSERT_TRUE(array.changePlace(places({4, 0}), 2));
    EXPECT_EQ(numbersOf(array), (Numbers{1, 2, 4, 0, 3}));
    for (auto [from, count, to] : {std::tuple(4, 2, 0), {0, 2, 4}, {-1, 1, 0}, {0, -1, 0}, {0, 0x7FFFFFFF, 1}})
        EXPECT_FALSE(array.changePlace(from, count, to)) << from << count << to;
    EXPECT_FALSE(array.changePlace(places({5}), 0));
    EXPECT_FALSE(array.changePlace(places({0}), 5));
    ZArrayT<int> nulls = places({1});
    ASSERT_TRUE(array.collectNullIndex(nulls));
    EXPECT_EQ(nulls, places({1, 3}));
    ASSERT_TRUE(array.invertIndex(nulls));
    EXPECT_EQ(nulls, places({0, 2, 4}));
    ASSERT_TRUE(array.discardItems());
    EXPECT_EQ(array.maxcount(), 5u);
    ZVArray shared = integers({1, 2, 3}), other(shared);
    ASSERT_TRUE(other.setSpace(8) && shared.setSpace(1));
    EXPECT_EQ(other.maxcount(), 8u);
    EXPECT_EQ(numbersOf(shared), (Numbers{1}));
    EXPECT_TRUE(shared.drop());
}

TEST_F(ZVArrayTest, ManyAreFoundInMany) {
    ZVArray many((*types)[ZMetaType::Int]), odd((*types)[ZMetaType::String]);
    for (int i = 0; i < 100000; ++i) ASSERT_TRUE(many.append((i * 7919) % 100000));
    for (int i = 1; i < 2000; i += 2) ASSERT_TRUE(odd.append(i));
    EXPECT_TRUE(many.contains(many));
    EXPECT_TRUE(many.contains(odd));
    EXPECT_TRUE(many.contains(ZVHashSet(odd)));
    ASSERT_TRUE(many.removeValue(integer(1999)));
    EXPECT_FALSE(many.contains(odd));
    EXPECT_TRUE(many.overlapping(odd));
    EXPECT_FALSE(many.overlapping(integers({-1, 100000})));
    ASSERT_TRUE(many.sort());
    EXPECT_TRUE(many.contains(integers({5, 99999})));
    EXPECT_FALSE(many.contains(integers({5, 1999})));
}

TEST_F(ZVArrayTest, ComparesAsTheTypeDoes) {
    ZVArray a((*types)[ZMetaType::Real]), b((*types)[ZMetaType::Real]);
    ASSERT_TRUE(a.append(1.0) && b.append(1.0 + 1e-9));
    EXPECT_EQ(a.compare(b), 0);
    EXPECT_EQ(b.findValue(number(1.0)), -1);
    ASSERT_TRUE(b.store(0, number(1.1)));
    EXPECT_EQ(a.compare(b), -1);
}

TEST_F(ZVArrayTest, AnEmptyArrayBlendsAsNothing) {
    const ZVArray none((*types)[ZMetaType::Int]), five = integers({10, 20, 30, 40, 50});
    ZVArray made;
    for (auto [pos, wanted] : {std::pair(1.0, Numbers{10, 20, 30, 40, 50}), {0.5, {10, 30, 50}}, {0.0, {}}}) {
        ASSERT_TRUE(made.blendFrom(&none, &five, ZBlendPos(pos)));
        EXPECT_EQ(numbersOf(made), wanted);
        EXPECT_EQ(made.getValueType(), five.getValueType());
    }
}

TEST_F(ZVArrayTest, AWalkIsNotDisturbedByAWriter) {
    ZVArray array = integers({0, 1, 2, 3, 4, 5, 6, 7});
    const ZVArray walked(array);
    std::thread writer([&] {
        for (int i = 0; i < 2000; ++i) {
            ZVArray own(walked);
            ASSERT_TRUE(own.append(i) && own.sort() && own.removeIndex(0));
        }
    });
    for (int i = 0; i < 2000; ++i) {
        ASSERT_TRUE(array.append(i) && array.reverse());
        ASSERT_EQ(numbersOf(walked), (Numbers{0, 1, 2, 3, 4, 5, 6, 7}));
        array = walked;
    }
    writer.join();
}

TEST_F(ZVArrayTest, FailedAllocationMovesNothing) {
    std::vector<ZVariant> values;
    for (const char* word : {"pear", "apple", "", "fig", "date", "plum"}) values.push_back(text(word));
    const ZArrayT<int> listed = places({4, 1});
    failEachAllocation([&](AllocProbe&) {
        ZVArray array((*types)[ZMetaType::String]);
        for (const ZVariant& value : values)
            if (!array.append(value)) {
                zrecover();
                return;
            }
        const ZVArray before(array);
        auto unchanged = [&] {
            for (uint i = 0; i < 6; ++i)
                if (array.variant(int(i)) != values[i]) return false;
            return array.count() == 6;
        };
        EXPECT_TRUE(array.sort() || unchanged());
        array = before;
        EXPECT_TRUE(array.changePlace(listed, 0) || unchanged());
        array = before;
        EXPECT_TRUE(array.extractRemove(listed).count() == 2 || unchanged());
        array = before;
        EXPECT_TRUE(array.setSpace(2) || unchanged());
        array = before;
        EXPECT_TRUE(array.insertArray(3, before) || unchanged());
        zrecover();
    });
}

} // namespace
