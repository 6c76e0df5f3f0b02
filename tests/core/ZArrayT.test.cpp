#include "core/ZArrayT.h"

#include "tests/support/AllocProbe.h"
#include "tests/support/Tracked.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <random>

namespace {

template <class T> ZArrayT<T> make(std::initializer_list<int> values) {
    ZArrayT<T> array;
    for (int value : values) EXPECT_TRUE(array.append(T(value)));
    return array;
}
template <class T> std::vector<int> values(const ZArrayT<T>& array) {
    std::vector<int> out;
    for (const T& item : array) {
        if constexpr (requires { item.value; })
            out.push_back(item.value);
        else
            out.push_back(int(item));
        if constexpr (requires { item.sound(); }) { EXPECT_TRUE(item.sound()); }
    }
    return out;
}
using Values = std::vector<int>;

template <class T> class ArrayOf : public testing::Test {};
using ItemTypes = testing::Types<int, large, byte, Tracked, Anchored>;
TYPED_TEST_SUITE(ArrayOf, ItemTypes);

} // namespace

/// Every operation against the same on a std::vector, over random steps with copies alive.
TYPED_TEST(ArrayOf, AgreesWithVector) {
    std::mt19937 random(5);
    ZArrayT<TypeParam> array, copy;
    Values model, copyModel;
    for (int step = 0; step < 6000; ++step) {
        uint at = random() % (model.size() + 3), n = random() % 4;
        int value = int(random() % 100);
        uint place = std::min<uint>(at, uint(model.size()));
        switch (random() % 9) {
        case 0:
        case 1:
            ASSERT_TRUE(array.append(TypeParam(value)));
            model.push_back(value);
            break;
        case 2:
            ASSERT_TRUE(array.insert(at, TypeParam(value)));
            model.insert(model.begin() + place, value);
            break;
        case 3:
            if (!model.empty()) { // an item of its own
                uint own = random() % model.size();
                ASSERT_TRUE(array.insert(at, std::as_const(array)[own]));
                model.insert(model.begin() + place, Values(model)[own]);
            }
            break;
        case 4: { // a range of its own
            n = std::min<uint>(n, uint(model.size()));
            Values range(model.end() - n, model.end());
            ASSERT_TRUE(array.insert(at, array.data() + model.size() - n, n));
            model.insert(model.begin() + place, range.begin(), range.end());
            break;
        }
        case 5:
            ASSERT_TRUE(array.remove(at, n));
            model.erase(model.begin() + place, model.begin() + std::min<size_t>(place + n, model.size()));
            break;
        case 6:
            if (at % 2) array = std::move(copy), model = std::exchange(copyModel, {});
            copy = array;
            copyModel = model;
            EXPECT_EQ(copy.refcount(), copy.data() ? 2 : 0);
            break;
        case 7:
            if (at < model.size()) {
                array[at] = TypeParam(value);
                model[at] = value;
            }
            break;
        case 8:
            if (random() % 20 == 0) {
                ASSERT_TRUE(array.sort());
                std::stable_sort(model.begin(), model.end());
                EXPECT_TRUE(array.isSorted());
            }
            if (model.size() > 80) {
                ASSERT_TRUE(array.setCount(40));
                model.resize(40);
            }
        }
        ASSERT_EQ(values(array), model) << "step " << step;
        ASSERT_EQ(values(copy), copyModel) << "step " << step;
    }
}

TYPED_TEST(ArrayOf, EachAllocationFailing) {
    using Array = ZArrayT<TypeParam>;
    struct Row {
        const char* name;
        bool shared;
        bool (*run)(Array&);
    };
    const Row rows[] = {
        {"append", false, [](Array& a) { return a.append(TypeParam(9)); }},
        {"append to shared", true, [](Array& a) { return a.append(TypeParam(9)); }},
        {"append own item", false, [](Array& a) { return a.append(std::as_const(a)[0]); }},
        {"append itself", false, [](Array& a) { return a.append(a); }},
        {"insert", false, [](Array& a) { return a.insert(1, TypeParam(9)); }},
        {"insert own range", true, [](Array& a) { return a.insert(1, a.data() + 1, 2); }},
        {"remove from shared", true, [](Array& a) { return a.remove(0, 2); }},
        {"sort", false, [](Array& a) { return a.sort(); }},
        {"sort shared", true, [](Array& a) { return a.sort(); }},
        {"reserve", false, [](Array& a) { return a.reserve(100); }},
        {"trim", true, [](Array& a) { return a.trim(); }},
        {"setCount", false, [](Array& a) { return a.setCount(20); }},
        {"detach", true, [](Array& a) { return a.detach(); }},
        {"setExpand", true, [](Array& a) { return a.setExpand(-8); }},
        {"set", true, [](Array& a) { return a.set(2, TypeParam(9)); }},
        {"set to own item", true, [](Array& a) { return a.set(2, std::as_const(a)[0]); }},
    };
    for (const Row& row : rows)
        failEachAllocation([&](AllocProbe& probe) {
            zrecover();
            Array array;
            for (int value : {3, 1, 2, 1}) {
                if (!array.append(TypeParam(value))) return;
            }
            if (zrecover()) return; // a temporary of this test
            Array other;
            if (row.shared) other = array;
            bool done = row.run(array);
            if (!done) {
                EXPECT_TRUE(probe.failed()) << row.name;
                EXPECT_EQ(values(array), (Values{3, 1, 2, 1})) << row.name;
                EXPECT_EQ(array.isSorted(), false);
            }
            if (row.shared) { EXPECT_EQ(values(other), (Values{3, 1, 2, 1})) << row.name; }
            zrecover();
        });
}

TEST(Array, BlockLayout) {
    ZArrayT<int> narrow;
    ZArrayT<large> wide;
    ASSERT_TRUE(narrow.append(1) && wide.append(1));
    EXPECT_EQ(reinterpret_cast<uintptr_t>(narrow.data()) % 16, 12u);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(wide.data()) % 16, 0u);
    ASSERT_TRUE(narrow.append(2) && narrow.sort());
    auto block = reinterpret_cast<const byte*>(narrow.data()) - 12;
    const byte expected[12] = {2, 0, 0, 0, 2, 0, 0, 0, 100, 0, 1, 0};
    EXPECT_EQ(memcmp(block, expected, 12), 0);
}

TEST(Array, Growth) {
    struct Row {
        uint capacity;
        int16 expand;
        uint filled, more, expected;
    };
    const Row rows[] = {
        {0, -16, 0, 1, 16}, {0, -16, 0, 17, 32}, {20, -16, 20, 1, 32}, {4, 100, 4, 1, 8},
        {4, 50, 3, 2, 6},   {4, 10, 4, 3, 7},    {4, 0, 4, 1, 8},      {4, 0, 4, 9, 13},
        {8, 100, 4, 4, 8},  {5, 50, 5, 1, 8},    {10, 200, 9, 2, 28},
    };
    for (const Row& row : rows) {
        ZArrayT<int> array(row.capacity, row.expand);
        ASSERT_TRUE(array.setCount(row.filled) && array.expand(row.more));
        EXPECT_EQ(array.capacity(), row.expected) << row.capacity << ' ' << row.expand << ' ' << row.more;
        EXPECT_EQ(array.count(), row.filled);
        EXPECT_EQ(array.expandRule(), row.expand);
    }
    ZArrayT<int> steps(0, -16), other(steps);
    EXPECT_EQ(steps.capacity(), 0u);
    ASSERT_TRUE(other.append(1)); // takes the rule along
    EXPECT_EQ(other.capacity(), 16u);
    ZArrayT<int> fresh;
    ASSERT_TRUE(fresh.expand(5));
    EXPECT_EQ(fresh.capacity(), 5u);
}

TEST(Array, FixedSizeRefusesWhenFull) {
    ZArrayT<int> array(3, 100);
    ASSERT_TRUE(array.append(1) && array.append(2) && array.setFixedSize(true));
    ZArrayT<int> copy(array);
    ASSERT_TRUE(copy.append(3)); // the copy has the same room
    EXPECT_TRUE(copy.fixedSize());
    EXPECT_FALSE(copy.append(4));
    EXPECT_FALSE(copy.insert(0, 4));
    EXPECT_FALSE(copy.append(copy));
    EXPECT_EQ(values(copy), (Values{1, 2, 3}));
    EXPECT_EQ(values(array), (Values{1, 2}));
    ZArrayT<int> none;
    ASSERT_TRUE(none.setFixedSize(true));
    EXPECT_FALSE(none.append(1));
}

TEST(Array, SharingAndSorted) {
    auto array = make<int>({2, 1});
    ASSERT_TRUE(array.sort());
    ZArrayT<int> copy(array);
    EXPECT_EQ(array.refcount(), 2);
    EXPECT_FALSE(copy.isDetached());
    ASSERT_TRUE(copy.detach());
    EXPECT_TRUE(copy.isSorted());
    EXPECT_EQ(array.refcount(), 1);
    ASSERT_TRUE(copy.append(0));
    EXPECT_FALSE(copy.isSorted());
    EXPECT_TRUE(array.isSorted());
    EXPECT_EQ(values(array), (Values{1, 2}));
    EXPECT_EQ(array.refcount(), 1);
    EXPECT_EQ(copy.refcount(), 1);
    ASSERT_TRUE(array.remove(0));
    EXPECT_TRUE(array.isSorted());
    array = array;
    array = std::move(array);
    EXPECT_EQ(values(array), (Values{2}));
    array.clear();
    EXPECT_EQ(array.refcount(), 0);
    EXPECT_EQ(sizeof array, sizeof(void*));
}

TEST(Array, SearchAmongEqualItems) {
    auto array = make<int>({1, 3, 3, 3, 5, 9, 9});
    struct Row {
        int value, first, last;
    };
    for (auto [value, first, last] :
         {Row{3, 1, 3}, Row{9, 5, 6}, Row{1, 0, 0}, Row{0, -1, -1}, Row{4, -1, -1}, Row{10, -1, -1}, Row{5, 4, 4}}) {
        EXPECT_EQ(array.findFirst(value), first);
        EXPECT_EQ(array.findLast(value), last);
        EXPECT_EQ(array.indexOf(value), first);
        EXPECT_EQ(array.contains(value), first >= 0);
    }
    EXPECT_EQ(array.indexOf(3, 2), 2);
    EXPECT_EQ(ZArrayT<int>().findFirst(1), -1);
    EXPECT_LT(make<int>({1, 2}).compare(make<int>({1, 3})), 0);
    EXPECT_GT(make<int>({1, 2, 0}).compare(make<int>({1, 2})), 0);
    EXPECT_EQ(make<Tracked>({1, 2}), make<Tracked>({1, 2}));
}

TEST(Array, NotANumberHasItsPlace) {
    const real none = std::nan("");
    ZArrayT<real> numbers;
    for (real value : {2.0, none, -1.0, -none, 0.5}) ASSERT_TRUE(numbers.append(value));
    ASSERT_TRUE(numbers.sort());
    const real* at = numbers.data();
    EXPECT_TRUE(at[0] == -1.0 && at[1] == 0.5 && at[2] == 2.0 && at[3] != at[3] && at[4] != at[4]);
    EXPECT_EQ(numbers.findFirst(none), 3);
    EXPECT_EQ(zhashkey(none), zhashkey(-none));
}

TEST(Array, SortIsStable) {
    std::mt19937 random(1);
    for (uint count : {2u, 12u, 13u, 1000u}) {
        ZArrayT<Tracked> tracked;
        ZArrayT<Anchored> anchored;
        for (uint i = 0; i < count; ++i) {
            int value = int(random() % 17);
            ASSERT_TRUE(tracked.append(Tracked(value, int(i))) && anchored.append(Anchored(value, int(i))));
        }
        ASSERT_TRUE(tracked.sort() && anchored.sort());
        for (uint i = 1; i < count; ++i) {
            auto before = std::pair(tracked[i - 1].value, tracked[i - 1].mark);
            ASSERT_LT(before, std::pair(tracked[i].value, tracked[i].mark));
            ASSERT_EQ(tracked[i].mark, anchored[i].mark);
        }
        ASSERT_TRUE(tracked.sort([](const Tracked& a, const Tracked& b) { return b.compare(a); }));
        for (uint i = 1; i < count; ++i) ASSERT_GE(tracked[i - 1].value, tracked[i].value);
    }
}

TEST(Array, DestructorsThatComeBack) {
    AllocProbe probe;
    {
        auto array = make<Tracked>({1, 2, 3, 4, 5});
        Tracked::died.clear();
        Tracked::onDeath = [&](Tracked& item) {
            if (item.value > 1 && item.value < 5) { EXPECT_TRUE(array.append(Tracked(item.value + 100))); }
        };
        ASSERT_TRUE(array.remove(1, 3));
        EXPECT_EQ(values(array), (Values{1, 5, 104, 103, 102}));
        Tracked::onDeath = [&](Tracked& item) {
            if (item.value > 100) { EXPECT_TRUE(array.append(Tracked(item.value - 100))); }
        };
        array.clear();
        EXPECT_EQ(values(array), (Values{2, 3, 4}));
        Tracked::onDeath = [&](Tracked&) { array.clear(); };
        ASSERT_TRUE(array.remove(0));
        EXPECT_EQ(array.count(), 0u);
        Tracked::onDeath = nullptr;
        array = make<Tracked>({1, 2, 3});
        Tracked::died.clear();
        array.clear();
        EXPECT_EQ(Tracked::died, (Values{3, 2, 1}));
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(Array, WritingWithoutMemoryGivesASpareCopy) {
    AllocProbe probe;
    {
        auto array = make<int>({1, 2});
        ZArrayT<int> copy(array);
        probe.failAt(1, true);
        ZFailGuard guard;
        array[1] = 7;
        EXPECT_TRUE(guard.rose());
        EXPECT_EQ(array.entry(1), nullptr);
        probe.failAt(0);
        EXPECT_EQ(values(array), (Values{1, 2}));
        EXPECT_EQ(values(copy), (Values{1, 2}));
        zrecover();
    }
    EXPECT_EQ(probe.live(), 0);
}

TEST(Array, FailureOfAnEnclosingConstructionStays) {
    AllocProbe probe;
    zrecover();
    ZError::fail();
    auto array = make<Tracked>({1});
    probe.failAt(1, true);
    EXPECT_FALSE(array.append(std::as_const(array)[0]));
    probe.failAt(0);
    EXPECT_EQ(zfailcount(), 1);
    EXPECT_EQ(zrecover(), 1);
}

TEST(Array, SizesNearTheTop) {
    zrecover();
    ZArrayT<large> tooMany(0x80000000u, 100);
    EXPECT_EQ(zrecover(), 1);
    EXPECT_EQ(tooMany.capacity(), 0u);
    auto array = make<byte>({1, 2, 3});
    EXPECT_FALSE(array.expand(0xFFFFFFFFu));
    EXPECT_FALSE(array.expand(0x7FFFFFFDu));
    EXPECT_FALSE(array.reserve(0x80000000u));
    EXPECT_FALSE(array.setCount(0xFFFFFFFFu));
    EXPECT_EQ(array.entry(0xFFFFFFFFu), nullptr);
    EXPECT_EQ(values(array), (Values{1, 2, 3}));
    EXPECT_TRUE(array.remove(1, 0xFFFFFFFFu));
    EXPECT_EQ(values(array), (Values{1}));
    // Pages that nobody touches cost nothing.
    ZArrayT<byte> top(0x7FFFFFFFu, 100);
    if (zrecover() == 0) {
        EXPECT_TRUE(top.append(1));
        EXPECT_EQ(top.capacity(), 0x7FFFFFFFu);
    }
}

#ifdef GTEST_HAS_DEATH_TEST
TEST(ArrayDeathTest, IndexOutOfRange) {
    auto array = make<int>({1});
    EXPECT_DEATH((void)array[1], "");
    EXPECT_DEATH((void)std::as_const(array)[0xFFFFFFFFu], "");
}
#endif
