#include "core/memfind.h"

#include <algorithm>
#include <cstring>

namespace {

large position(const void* range, const void* hit) {
    return hit ? static_cast<const char*>(hit) - static_cast<const char*>(range) : -1;
}

template <class T> large first(const T* range, T value, size_t count) {
    // Blocks without an early way out, so that the compiler can compare many at once.
    constexpr size_t block = 64 / sizeof(T);
    size_t i = 0;
    for (; i + block <= count; i += block) {
        T differing = 1;
        for (size_t k = 0; k < block; ++k) differing &= T(range[i + k] != value);
        if (!differing) break;
    }
    for (; i < count; ++i)
        if (range[i] == value) return large(i);
    return -1;
}

template <class T> large last(const T* range, T value, size_t count) {
    constexpr size_t block = 64 / sizeof(T);
    while (count >= block) {
        T differing = 1;
        for (size_t k = 1; k <= block; ++k) differing &= T(range[count - k] != value);
        if (!differing) break;
        count -= block;
    }
    while (count > 0)
        if (range[--count] == value) return large(count);
    return -1;
}

/// Writes the pattern once, then doubles what is there.
template <class T> void fill(void* range, const T* pattern, size_t length, size_t count) {
    auto out = static_cast<char*>(range);
    size_t bytes = count * sizeof(T), done = std::min(length * sizeof(T), bytes);
    if (!bytes) return;
    std::memcpy(out, pattern, done);
    // Copies stay in a part that the first-level cache holds.
    constexpr size_t most = 4096;
    for (size_t from = done; done < bytes;) {
        size_t step = std::min(from, bytes - done);
        std::memcpy(out + done, out, step);
        done += step;
        if (from < most) from = done;
    }
}
template <class T, class... P> void fillWith(void* range, size_t count, P... parts) {
    const T pattern[] = {parts...};
    fill(range, pattern, sizeof...(parts), count);
}
template <class T> void fillMatrix(T* matrix, T value, size_t columns, size_t rows, ptrdiff_t rowStride) {
    for (size_t row = 0; row < rows; ++row) std::fill_n(matrix + ptrdiff_t(row) * rowStride, columns, value);
}

template <class T> int binarySearch(const T* array, T value, int count, int start, int stride) {
    int low = 0, high = count;
    while (low < high) {
        int middle = low + (high - low) / 2;
        T field = array[start + ptrdiff_t(middle) * stride];
        if (field == value) return middle;
        if (field < value)
            low = middle + 1;
        else
            high = middle;
    }
    return -1;
}
template <class T> int linearSearch(const T* array, T value, int count, int start, int stride) {
    for (int i = 0; i < count; ++i)
        if (array[start + ptrdiff_t(i) * stride] == value) return i;
    return -1;
}

} // namespace

large memposc(const void* range, byte value, size_t count) {
    return count ? position(range, std::memchr(range, value, count)) : -1;
}
large memposw(const word* range, word value, size_t count) { return first(range, value, count); }
large memposi(const uint* range, uint value, size_t count) { return first(range, value, count); }
large memrposc(const void* range, byte value, size_t count) {
    return count ? position(range, memrchr(range, value, count)) : -1;
}
large memrposw(const word* range, word value, size_t count) { return last(range, value, count); }
large memrposi(const uint* range, uint value, size_t count) { return last(range, value, count); }

large memposc2(const void* range, byte first, byte second, size_t count) {
    const byte pair[2] = {first, second};
    return memfind(range, count, pair, 2);
}
large memrposc2(const void* range, byte first, byte second, size_t count) {
    const byte pair[2] = {first, second};
    return memrfind(range, count, pair, 2);
}

large memfind(const void* range, size_t count, const void* wanted, size_t length) {
    if (!length) return 0;
    return length <= count ? position(range, memmem(range, count, wanted, length)) : -1;
}

large memrfind(const void* range, size_t count, const void* wanted, size_t length) {
    if (length > count) return -1;
    if (!length) return large(count);
    auto from = static_cast<const byte*>(range), needle = static_cast<const byte*>(wanted);
    // A rolling sum of the window keeps this linear whatever the bytes are, but for windows of equal sums.
    constexpr uint64_t base = 0x9E3779B97F4A7C15u;
    uint64_t sought = 0, seen = 0, top = 1;
    size_t place = count - length;
    for (size_t i = length; i > 0; --i) {
        sought = sought * base + needle[i - 1];
        seen = seen * base + from[place + i - 1];
        if (i > 1) top *= base;
    }
    for (;; --place) {
        if (seen == sought && std::memcmp(from + place, needle, length) == 0) return large(place);
        if (!place) return -1;
        seen = (seen - from[place + length - 1] * top) * base + from[place - 1];
    }
}

void memsetc(void* range, byte a, size_t count) {
    if (count) std::memset(range, a, count);
}
void memsetc2(void* range, byte a, byte b, size_t count) { fillWith<byte>(range, count, a, b); }
void memsetc3(void* range, byte a, byte b, byte c, size_t count) { fillWith<byte>(range, count, a, b, c); }
void memsetw(word* range, word a, size_t count) { fillWith<word>(range, count, a); }
void memsetw2(word* range, word a, word b, size_t count) { fillWith<word>(range, count, a, b); }
void memsetw3(word* range, word a, word b, word c, size_t count) { fillWith<word>(range, count, a, b, c); }
void memseti(uint* range, uint a, size_t count) { fillWith<uint>(range, count, a); }
void memseti2(uint* range, uint a, uint b, size_t count) { fillWith<uint>(range, count, a, b); }
void memseti3(uint* range, uint a, uint b, uint c, size_t count) { fillWith<uint>(range, count, a, b, c); }
void memsetmc(void* matrix, byte value, size_t columns, size_t rows, ptrdiff_t rowStride) {
    fillMatrix(static_cast<byte*>(matrix), value, columns, rows, rowStride);
}
void memsetmw(word* matrix, word value, size_t columns, size_t rows, ptrdiff_t rowStride) {
    fillMatrix(matrix, value, columns, rows, rowStride);
}
void memsetmi(uint* matrix, uint value, size_t columns, size_t rows, ptrdiff_t rowStride) {
    fillMatrix(matrix, value, columns, rows, rowStride);
}

int binary_searchi(const int* array, int value, int count, int start, int stride) {
    return binarySearch(array, value, count, start, stride);
}
int binary_searchu(const uint* array, uint value, int count, int start, int stride) {
    return binarySearch(array, value, count, start, stride);
}
int binary_searchw(const word* array, word value, int count, int start, int stride) {
    return binarySearch(array, value, count, start, stride);
}
int linear_searchi(const int* array, int value, int count, int start, int stride) {
    return linearSearch(array, value, count, start, stride);
}
int linear_searchu(const uint* array, uint value, int count, int start, int stride) {
    return linearSearch(array, value, count, start, stride);
}
int linear_searchw(const word* array, word value, int count, int start, int stride) {
    return linearSearch(array, value, count, start, stride);
}
