#include "core/memsort.h"

#include "tests/support/AllocProbe.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace {

/// A record with an unaligned number in it.
template <class T> struct __attribute__((packed)) Record {
    char before;
    T number;
    int mark;
};

template <class T> void checkField(bool (*sort)(void*, size_t, size_t, size_t), std::vector<T> numbers) {
    using R = Record<T>;
    std::mt19937 random(1);
    for (size_t count : {0, 1, 2, 11, 12, 13, 500}) {
        std::vector<R> records(count), model;
        for (size_t i = 0; i < count; ++i) records[i] = {'x', numbers[random() % numbers.size()], int(i)};
        model = records;
        std::stable_sort(model.begin(), model.end(), [](const R& a, const R& b) {
            T first = a.number, second = b.number;
            return first < second || (first == first && second != second);
        });
        ASSERT_TRUE(sort(records.data(), count, sizeof(R), 1));
        for (size_t i = 0; i < count; ++i) ASSERT_EQ(int(records[i].mark), int(model[i].mark)) << count;
    }
    R record{};
    EXPECT_FALSE(sort(&record, 1, sizeof(R), sizeof(R) - sizeof(T) + 1));
    EXPECT_FALSE(sort(&record, 1, sizeof(T) - 1, 0));
}

int compareInts(const void* a, const void* b, void* calls) {
    ++*static_cast<int*>(calls);
    int first = *static_cast<const int*>(a), second = *static_cast<const int*>(b);
    return first / 10 - second / 10;
}

} // namespace

TEST(MemSort, ByNumericField) {
    checkField<int>(mergeSortByInt, {-5, 3, 0, std::numeric_limits<int>::min(), std::numeric_limits<int>::max(), 3});
    checkField<uint>(mergeSortByUInt, {5, 3, 0, 0xFFFFFFFF, 0x80000000});
    checkField<float>(mergeSortByFloat, {1.5f, -0.0f, 0.0f, -INFINITY, INFINITY, NAN, -2});
    checkField<double>(mergeSortByDouble, {1.5, -0.0, 0.0, -INFINITY, INFINITY, NAN, 1e300, -1e-300});
}

TEST(MemSort, KeepsTheOrderOfEqualRecords) {
    std::mt19937 random(6);
    std::vector<int> items(2000), scratch(2000);
    for (int& item : items) item = int(random() % 1000);
    auto model = items;
    std::stable_sort(model.begin(), model.end(), [](int a, int b) { return a / 10 < b / 10; });
    int calls = 0;
    mergesort(items.data(), items.size(), sizeof(int), compareInts, &calls, scratch.data());
    EXPECT_EQ(items, model);
    EXPECT_LT(calls, 2000 * 16);
    calls = 0;
    mergesort(items.data(), items.size(), sizeof(int), compareInts, &calls, scratch.data());
    EXPECT_LT(calls, 2000 * 2); // sorted already
}

TEST(MemSort, WithoutMemoryNothingChanges) {
    AllocProbe probe;
    int items[] = {3, 1, 2};
    probe.failAt(1);
    EXPECT_FALSE(mergeSortByInt(items, 3, sizeof(int), 0));
    EXPECT_EQ(items[0], 3);
    EXPECT_FALSE(mergeSortByInt(items, size_t(-1) / 2, sizeof(int), 0)); // more than there can be
}
