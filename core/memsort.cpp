#include "core/memsort.h"

#include "core/memory.h"

#include <cstring>

namespace {

struct ByCall {
    int (*compare)(const void*, const void*, void*);
    void* user;
    /// Whether `b` has to stand in front of `a`, which came first.
    bool operator()(const char* a, const char* b) const { return compare(a, b, user) > 0; }
};

template <class T> struct ByField {
    size_t offset;
    bool operator()(const char* a, const char* b) const {
        T first, second;
        std::memcpy(&first, a + offset, sizeof first);
        std::memcpy(&second, b + offset, sizeof second);
        // Only not-a-number differs from itself.
        return second < first || (first != first && second == second);
    }
};

template <class Swapped> class Sorter {
public:
    Sorter(size_t size, Swapped swapped, void* scratch)
        : size(size), swapped(swapped), scratch(static_cast<char*>(scratch)) {}

    void sort(char* items, size_t count) const {
        if (count <= shortRun) return insertionSort(items, count);
        size_t half = count / 2;
        char* middle = items + half * size;
        sort(items, half);
        sort(middle, count - half);
        if (swapped(middle - size, middle)) merge(items, half, count);
    }

private:
    static constexpr size_t shortRun = 12;

    void insertionSort(char* items, size_t count) const {
        for (size_t i = 1; i < count; ++i) {
            char* item = items + i * size;
            char* place = item;
            while (place > items && swapped(place - size, item)) place -= size;
            if (place == item) continue;
            std::memcpy(scratch, item, size);
            std::memmove(place + size, place, size_t(item - place));
            std::memcpy(place, scratch, size);
        }
    }

    void merge(char* items, size_t half, size_t count) const {
        const size_t leftBytes = half * size;
        std::memcpy(scratch, items, leftBytes);
        const char *left = scratch, *leftEnd = scratch + leftBytes;
        const char *right = items + leftBytes, *rightEnd = items + count * size;
        char* out = items;
        while (left < leftEnd && right < rightEnd) {
            const char*& taken = swapped(left, right) ? right : left;
            std::memcpy(out, taken, size);
            taken += size;
            out += size;
        }
        std::memcpy(out, left, size_t(leftEnd - left));
    }

    size_t size;
    Swapped swapped;
    char* scratch;
};

template <class T> bool sortByField(void* items, size_t count, size_t size, size_t offset) {
    if (size < sizeof(T) || offset > size - sizeof(T)) return false;
    if (count < 2) return true;
    size_t bytes;
    void* scratch = __builtin_mul_overflow(count, size, &bytes) ? nullptr : __zalloc(bytes);
    if (!scratch) return false;
    Sorter(size, ByField<T>{offset}, scratch).sort(static_cast<char*>(items), count);
    zfree(scratch);
    return true;
}

} // namespace

void mergesort(void* items, size_t count, size_t size, int (*compare)(const void*, const void*, void*), void* user,
               void* scratch) {
    Sorter(size, ByCall{compare, user}, scratch).sort(static_cast<char*>(items), count);
}

bool mergeSortByInt(void* items, size_t count, size_t size, size_t offset) {
    return sortByField<int>(items, count, size, offset);
}
bool mergeSortByUInt(void* items, size_t count, size_t size, size_t offset) {
    return sortByField<uint>(items, count, size, offset);
}
bool mergeSortByFloat(void* items, size_t count, size_t size, size_t offset) {
    return sortByField<float>(items, count, size, offset);
}
bool mergeSortByDouble(void* items, size_t count, size_t size, size_t offset) {
    return sortByField<double>(items, count, size, offset);
}
