#include "tests/value/madeTypes.h"

#include "object/ztype.h"
#include "tests/support/invoke.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"

#include <algorithm>
#include <atomic>
#include <gtest/gtest.h>
#include <numeric>
#include <random>
#include <thread>

// What the containers whose types are known at run time share, for items of every kind.

namespace {

/// Seventeen bytes, spaced by twenty.
struct Odd {
    byte bytes[17] = {};
    int number() const {
        int value;
        std::memcpy(&value, bytes, sizeof value);
        return value;
    }
    void setNumber(int value) { std::memcpy(bytes, &value, sizeof value); }
};
/// Aligned above what an item's head gives, and counting on it.
struct alignas(16) Wide {
    Wide() { check(); }
    Wide(const Wide& other) : value(other.value) { check(); }
    int number() const { return value; }
    void setNumber(int number) { value = number; }
    void check() { misplaced += reinterpret_cast<uintptr_t>(this) % 16 != 0; }

    int value = 0;
    byte rest[20] = {};
    static inline int misplaced = 0;
};

// A container of each kind behind one face: item number `i` stands at position `i` until something is removed.

struct OfArray {
    using Container = ZVArray;
    static ZVArray make(ZMetaType* type) { return ZVArray(type); }
    static bool add(ZVArray& to, int, const ZVariant& value) { return to.append(value); }
    static bool has(const ZVArray& in, int, const ZVariant& value) { return in.contains(value); }
    static int64_t stride(const ZVArray& of) { return of.itemSize(); }
};
struct OfNames {
    using Container = ZVSelectMap;
    static ZSelector key(int i) { return ZSelector(("key" + std::to_string(i)).c_str()); }
    static ZVSelectMap make(ZMetaType* type) { return ZVSelectMap(type); }
    static bool add(ZVSelectMap& to, int i, const ZVariant& value) { return to.set(key(i), value); }
    static bool has(const ZVSelectMap& in, int i, const ZVariant& value) { return in.variant(key(i)) == value; }
};
struct OfKeys {
    using Container = ZVKeyMap;
    static ZVKeyMap make(ZMetaType* type) { return ZVKeyMap(type, type); }
    static bool add(ZVKeyMap& to, int, const ZVariant& value) { return to.set(value, value); }
    static bool has(const ZVKeyMap& in, int, const ZVariant& value) { return in.variant(value) == value; }
};
struct OfSet {
    using Container = ZVHashSet;
    static ZVHashSet make(ZMetaType* type) { return ZVHashSet(type); }
    static bool add(ZVHashSet& to, int, const ZVariant& value) { return to.add(value); }
    static bool has(const ZVHashSet& in, int, const ZVariant& value) { return in.contains(value); }
};

template <class Form> class ZVContainers : public ValueTest {
protected:
    using Container = typename Form::Container;

    static void SetUpTestSuite() {
        ValueTest::SetUpTestSuite();
        odd = makeType<Odd>("TestOdd");
        wide = makeType<Wide>("TestWide");
    }
    static void TearDownTestSuite() {
        odd->release();
        wide->release();
        ValueTest::TearDownTestSuite();
    }

    template <class T> static ZVariant structure(ZMetaType* type, int number) {
        T made;
        made.setNumber(number);
        return ZVariant(type, &made);
    }
    struct Kind {
        const char* name;
        ZMetaType* type;
        ZVariant (*value)(int);
    };
    static std::vector<Kind> kinds() {
        auto& made = *ValueTest::types;
        return {{"byte", made[ZMetaType::Byte], [](int i) { return ValueTest::value(ZMetaType::Byte, byte(i)); }},
                {"int", made[ZMetaType::Int], [](int i) { return ValueTest::integer(i); }},
                {"real", made[ZMetaType::Real], [](int i) { return ValueTest::number(i * 0.5); }},
                {"selector", made[ZMetaType::Selector],
                 [](int i) { return ValueTest::name(("item" + std::to_string(i)).c_str()); }},
                {"string", made[ZMetaType::String],
                 [](int i) { return ValueTest::text(("text number " + std::to_string(i)).c_str()); }},
                {"small structure", made.small, [](int i) { return structure<Small>(ValueTest::types->small, i); }},
                {"large structure", made.large, [](int i) { return structure<Large24>(ValueTest::types->large, i); }},
                {"17 bytes", odd, [](int i) { return structure<Odd>(odd, i); }},
                {"aligned to 16", wide, [](int i) { return structure<Wide>(wide, i); }}};
    }
    static Container filled(const Kind& kind, int count) {
        Container made = Form::make(kind.type);
        for (int i = 0; i < count; ++i) EXPECT_TRUE(Form::add(made, i, kind.value(i))) << kind.name << i;
        return made;
    }

    static inline ZMetaType *odd = nullptr, *wide = nullptr;
};

using Forms = testing::Types<OfArray, OfNames, OfKeys, OfSet>;
TYPED_TEST_SUITE(ZVContainers, Forms);

TYPED_TEST(ZVContainers, HoldsItemsOfEveryKindInOrder) {
    for (const auto& kind : this->kinds()) {
        SCOPED_TRACE(kind.name);
        const auto items = this->filled(kind, 50);
        ASSERT_EQ(items.count(), 50u);
        for (int i = 0; i < 50; ++i) {
            EXPECT_EQ(items.entry(i), kind.value(i)) << i;
            EXPECT_TRUE(TypeParam::has(items, i, kind.value(i))) << i;
            EXPECT_EQ(items.findValue(kind.value(i)), i);
        }
        EXPECT_FALSE(TypeParam::has(items, 50, kind.value(50)));
        EXPECT_TRUE(items.entry(50).isNull());
        EXPECT_TRUE(items.entry(-1).isNull());
    }
    EXPECT_EQ(Wide::misplaced, 0);
}

TYPED_TEST(ZVContainers, CopiesShareUntilOneSideWrites) {
    for (const auto& kind : this->kinds()) {
        SCOPED_TRACE(kind.name);
        auto first = this->filled(kind, 12);
        auto second = first;
        EXPECT_EQ(first.refcount(), 2);
        EXPECT_EQ(first, second);
        EXPECT_EQ(first.hashKey(), second.hashKey());
        ASSERT_TRUE(TypeParam::add(second, 12, kind.value(12)));
        EXPECT_EQ(first.refcount(), 1);
        EXPECT_EQ(first.count(), 12u);
        EXPECT_EQ(second.count(), 13u);
        EXPECT_NE(first.compare(second), 0);
        EXPECT_EQ(first.compare(second), -second.compare(first));
        ASSERT_TRUE(second.removeIndex(12));
        EXPECT_EQ(first, second);
        EXPECT_EQ(first.hashKey(), second.hashKey());
        EXPECT_TRUE(first.matchValue(second, 0) || kind.type->kind() == ZMetaType::Structure);
    }
}

TYPED_TEST(ZVContainers, RemovedItemsLeaveTheOthersInOrder) {
    for (const auto& kind : this->kinds()) {
        SCOPED_TRACE(kind.name);
        auto items = this->filled(kind, 20);
        const auto kept = items;
        ASSERT_TRUE(items.removeIndex(0));
        ASSERT_TRUE(items.removeIndex(9));
        ASSERT_TRUE(items.removeValue(kind.value(19)));
        EXPECT_FALSE(items.removeIndex(17));
        EXPECT_FALSE(items.removeIndex(-1));
        EXPECT_FALSE(items.removeValue(kind.value(19)));
        ASSERT_EQ(items.count(), 17u);
        for (int i = 0; i < 17; ++i) EXPECT_EQ(items.entry(i), kind.value(i < 9 ? i + 1 : i + 2)) << i;
        EXPECT_FALSE(TypeParam::has(items, 10, kind.value(10)));
        EXPECT_TRUE(TypeParam::has(items, 18, kind.value(18)));
        ASSERT_TRUE(items.changePlace(16, 0));
        EXPECT_EQ(items.entry(0), kind.value(18));
        EXPECT_TRUE(TypeParam::has(items, 18, kind.value(18)));
        EXPECT_EQ(kept.count(), 20u);
        items.clear();
        EXPECT_TRUE(items.isEmpty());
        EXPECT_EQ(items.refcount(), 0);
    }
}

TYPED_TEST(ZVContainers, FailedAllocationLeavesTheOldState) {
    for (const auto& kind : this->kinds()) {
        SCOPED_TRACE(kind.name);
        std::vector<ZVariant> values;
        for (int i = 0; i < 12; ++i) values.push_back(kind.value(i));
        failEachAllocation([&](AllocProbe&) {
            auto items = TypeParam::make(kind.type);
            uint added = 0;
            for (int i = 0; i < 11; ++i) {
                if (TypeParam::add(items, i, values[i])) ++added;
                ASSERT_EQ(items.count(), added);
            }
            auto copy = items;
            const bool grew = TypeParam::add(copy, 11, values[11]);
            EXPECT_EQ(copy.count(), items.count() + grew);
            const uint before = copy.count();
            const bool removed = copy.removeIndex(0);
            EXPECT_EQ(copy.count(), before - removed);
            EXPECT_EQ(items.count(), added);
            zrecover();
        });
    }
}

TYPED_TEST(ZVContainers, ValuesAreConvertedToTheTypeOrRefused) {
    auto items = TypeParam::make((*this->types)[ZMetaType::Int]);
    EXPECT_TRUE(TypeParam::add(items, 0, this->text("12")));
    EXPECT_TRUE(TypeParam::add(items, 1, this->number(13.7)));
    EXPECT_EQ(items.entry(0), this->integer(12));
    EXPECT_EQ(items.entry(1), this->integer(13));
    EXPECT_FALSE(TypeParam::add(items, 2, this->text("twelve")));
    EXPECT_FALSE(TypeParam::add(items, 2, ZVariant()));
    EXPECT_EQ(items.count(), 2u);
}

TYPED_TEST(ZVContainers, WithoutATypeTakesThatOfTheFirstValue) {
    typename TypeParam::Container items;
    EXPECT_FALSE(items.hasType());
    if constexpr (std::is_same_v<TypeParam, OfSet>) {
        ZVariant held(ztype<ZVHashSet>(), &items);
        EXPECT_FALSE(invoke(held, "add", 1).toBool() || invoke(held, "addNew", 1).toBool());
        EXPECT_FALSE(invoke(held, "addSelector", ZSelector("a")).toBool() || held.appendItem(ZVariant(1)));
        EXPECT_DEATH(items.add(this->integer(1)), "");
        return;
    }
    EXPECT_FALSE(TypeParam::add(items, 0, ZVariant()));
    ASSERT_TRUE(TypeParam::add(items, 0, this->integer(1)));
    EXPECT_EQ(items.getValueType(), (*this->types)[ZMetaType::Int]);
    EXPECT_FALSE(TypeParam::add(items, 1, this->text("no number")));
    EXPECT_EQ(items.count(), 1u);
}

TYPED_TEST(ZVContainers, HostileCountsAreRefused) {
    auto items = TypeParam::make((*this->types)[ZMetaType::Int]);
    EXPECT_FALSE(items.expand(0xFFFFFFFFu));
    EXPECT_FALSE(items.expand(0x80000000u));
    EXPECT_FALSE(items.setSpace(-1));
    EXPECT_FALSE(items.removeIndex(0x7FFFFFFF));
    ASSERT_TRUE(TypeParam::add(items, 0, this->integer(1)));
    EXPECT_FALSE(items.changePlace(0, 1));
    ZMetaType* over = makeType<Odd>("TestOverAligned");
    over->setAlignment(64);
    auto none = TypeParam::make(over);
    EXPECT_TRUE(zresetfail());
    zrecover();
    EXPECT_FALSE(none.hasType());
    over->release();
}

// The maps and the set: found by key, in an order of their own.

template <class Form> class ZVMapForms : public ZVContainers<Form> {
protected:
    using Container = typename Form::Container;

    static bool add(Container& to, int number) { return Form::add(to, number, ValueTest::integer(number)); }
    static void expectItems(const Container& items, const std::vector<int>& numbers) {
        ASSERT_EQ(items.count(), numbers.size());
        for (int i = 0; i < int(numbers.size()); ++i) {
            ASSERT_EQ(items.entry(i).toInt(), numbers[size_t(i)]) << "at " << i;
            ASSERT_TRUE(Form::has(items, numbers[size_t(i)], ValueTest::integer(numbers[size_t(i)])))
                << numbers[size_t(i)];
        }
    }
    static ZArrayT<int> positions(const std::vector<int>& list) { return ZArrayT<int>(list.data(), uint(list.size())); }
    /// Numbers from 0 up, in a random order.
    static std::vector<int> shuffled(int count, std::mt19937& random) {
        std::vector<int> made(static_cast<size_t>(count));
        std::iota(made.begin(), made.end(), 0);
        std::shuffle(made.begin(), made.end(), random);
        return made;
    }
};
using MapFormTypes = testing::Types<OfNames, OfKeys, OfSet>;
TYPED_TEST_SUITE(ZVMapForms, MapFormTypes);

TYPED_TEST(ZVMapForms, OrderAndIndexSurviveAnyMixOfChanges) {
    std::mt19937 random(7);
    auto items = TypeParam::make((*this->types)[ZMetaType::Int]);
    std::vector<int> numbers;
    int next = 0;
    for (int round = 0; round < 400; ++round) {
        SCOPED_TRACE(round);
        const int count = int(numbers.size()), at = count ? int(random() % uint(count)) : 0;
        switch (count < 3 ? 0u : random() % 9) {
        case 0:
        case 1:
            for (uint i = random() % 12; i > 0; --i, ++next) {
                ASSERT_TRUE(this->add(items, next));
                numbers.push_back(next);
            }
            break;
        case 2:
        case 3: {
            const int place = random() % 3 ? at : random() % 2 ? 0 : count - 1;
            ASSERT_TRUE(items.removeIndex(place));
            numbers.erase(numbers.begin() + place);
            break;
        }
        case 4: {
            std::vector<int> gone = this->shuffled(count, random);
            gone.resize(random() % size_t(count / 3 + 1));
            std::vector<int> twice(gone);
            twice.insert(twice.end(), gone.begin(), gone.end());
            ASSERT_TRUE(items.removeItems(this->positions(twice)));
            std::sort(gone.rbegin(), gone.rend());
            for (int place : gone) numbers.erase(numbers.begin() + place);
            break;
        }
        case 5: {
            const int to = int(random() % uint(count));
            ASSERT_TRUE(items.changePlace(at, to));
            const int moved = numbers[size_t(at)];
            numbers.erase(numbers.begin() + at);
            numbers.insert(numbers.begin() + to, moved);
            break;
        }
        case 6:
            ASSERT_TRUE(items.sortByValue(round % 2));
            std::sort(numbers.begin(), numbers.end());
            if (!(round % 2)) std::reverse(numbers.begin(), numbers.end());
            break;
        case 7: {
            const auto shared = items;
            ASSERT_TRUE(items.removeItems(at - 1, 2));
            this->expectItems(shared, numbers);
            numbers.erase(numbers.begin() + std::max(at - 1, 0), numbers.begin() + std::min(at + 1, count));
            break;
        }
        default:
            EXPECT_GT(items.maxCollisions(), 0); // builds a tree, if there was none
            EXPECT_TRUE(items.checkTree("test"));
            break;
        }
        this->expectItems(items, numbers);
        EXPECT_FALSE(TypeParam::has(items, next, this->integer(next)));
    }
    EXPECT_FALSE(items.removeItems(0, -1));
}

TYPED_TEST(ZVMapForms, WholeOperationsHappenOrDoNot) {
    using Container = typename TypeParam::Container;
    const auto all = this->filled(this->kinds()[4], 14), more = [&] {
        auto made = TypeParam::make((*this->types)[ZMetaType::String]);
        for (int i = 10; i < 18; ++i) EXPECT_TRUE(TypeParam::add(made, i, this->kinds()[4].value(i)));
        return made;
    }();
    bool (*operations[])(Container&, const Container&) = {
        [](Container& items, const Container&) {
            static constexpr int places[] = {3, 9, 1};
            ZArrayT<int> list(places, 3);
            return list.count() == 3 && items.removeItems(list);
        },
        [](Container& items, const Container&) { return items.removeItems(2, 5); },
        [](Container& items, const Container&) { return items.sortByValue(false); },
        [](Container& items, const Container&) { return items.sort(false); },
        [](Container& items, const Container&) { return items.changePlace(0, 7); },
        [](Container& items, const Container&) { return items.deepDetach(); },
        [](Container& items, const Container&) { return items.setSpace(6); },
        [](Container& items, const Container& other) {
            if constexpr (std::is_same_v<TypeParam, OfSet>)
                return items.add(other);
            else
                return items.append(other);
        },
    };
    for (size_t which = 0; which < std::size(operations); ++which) {
        SCOPED_TRACE(which);
        Container wanted(all);
        ASSERT_TRUE(operations[which](wanted, more));
        // So that what is asked below makes nothing.
        TypeParam::has(wanted, 0, all.entry(0));
        TypeParam::has(all, 0, all.entry(0));
        failEachAllocation([&](AllocProbe& probe) {
            Container items(all);
            const bool done = operations[which](items, more);
            probe.failAt(0);
            EXPECT_EQ(items, done ? wanted : all);
            for (int i = 0; i < 14; ++i)
                EXPECT_EQ(TypeParam::has(items, i, all.entry(i)), TypeParam::has(done ? wanted : all, i, all.entry(i)));
        });
    }
    EXPECT_EQ(all.count(), 14u);
}

TYPED_TEST(ZVMapForms, ManyReadersOfASharedMap) {
    auto items = TypeParam::make((*this->types)[ZMetaType::Int]);
    for (int i = 0; i < 500; ++i) ASSERT_TRUE(this->add(items, i));
    const auto shared = items;
    std::atomic<int> wrong{0};
    std::vector<std::thread> readers;
    for (int reader = 0; reader < 4; ++reader)
        readers.emplace_back([&, reader] {
            auto own = shared;
            for (int i = 0; i < 500; ++i) {
                const int asked = (i * 7 + reader) % 500;
                wrong += !TypeParam::has(shared, asked, ValueTest::integer(asked));
                // A walk goes over what it began with, whoever writes a copy meanwhile.
                if (i % 100 == 0) wrong += !own.removeIndex(0) || shared.count() != 500;
            }
        });
    for (auto& reader : readers) reader.join();
    EXPECT_EQ(wrong, 0);
}

TYPED_TEST(ZVMapForms, RoomGrowthAndHashFollowTheNumbersGiven) {
    auto items = TypeParam::make((*this->types)[ZMetaType::Int]);
    if constexpr (std::is_same_v<TypeParam, OfKeys>) {
        ASSERT_TRUE(items.init(20, -8, 0, 50, 0, 0));
        EXPECT_FALSE(items.init(0x80000000u, 0, 0, 0, 0, 0) || items.init(-1));
    } else {
        ASSERT_TRUE(items.init(20, -8, 0, 50, 0));
        EXPECT_FALSE(items.init(0x80000000u, 0, 0, 0, 0));
    }
    EXPECT_EQ(items.maxcount(), 20u);
    EXPECT_EQ(items.autohash(), 50u);
    for (int i = 0; i < 21; ++i) ASSERT_TRUE(this->add(items, i));
    EXPECT_EQ(items.maxcount(), 24u);
    auto copy = items;
    ASSERT_TRUE(copy.detach(true));
    EXPECT_EQ(copy.maxcount(), 24u);
    EXPECT_EQ(copy.expand(), -8);
    ASSERT_TRUE(copy.setHashbits(6));
    EXPECT_GT(copy.maxCollisions(), 0);
    EXPECT_EQ(copy.hashbits(), 6u);
    EXPECT_EQ(copy.autohash(), 50u);
    // A lock goes with the data.
    ASSERT_TRUE(copy.makeLock(false, false));
    EXPECT_TRUE(copy.writeLock() && copy.unlock() && !items.lockable());
    EXPECT_TRUE(copy.drop() && !copy.lockable() && !copy.refcount());
}

} // namespace
