#pragma once

#include "toolkit/types.h"

/// Hashing of byte ranges: stable within a process, never stored in files.
namespace toolkit {

namespace detail {
inline uint64_t read8(const byte* p) {
    uint64_t v;
    __builtin_memcpy(&v, p, 8);
    return v;
}
inline uint64_t read4(const byte* p) {
    uint32_t v;
    __builtin_memcpy(&v, p, 4);
    return v;
}
/// Both halves of a 128-bit product, folded.
inline uint64_t fold(uint64_t a, uint64_t b) {
    __extension__ using wide = unsigned __int128;
    wide product = wide(a) * b;
    return uint64_t(product) ^ uint64_t(product >> 64);
}
inline constexpr uint64_t key0 = 0x9E3779B97F4A7C15u, key1 = 0xD6E8FEB86659FD93u, key2 = 0xA0761D6478BD642Fu;
} // namespace detail

/// 64 well mixed bits of a byte range. Multiply-and-fold over 16 bytes a step; the last 16 bytes are read overlapping.
inline uint64_t hash64(const void* data, size_t length, uint64_t seed = 0) {
    using namespace detail;
    auto p = static_cast<const byte*>(data);
    uint64_t h = seed ^ key0, a, b;
    size_t left = length;
    if (left > 16) {
        do {
            h = fold(read8(p) ^ key1, read8(p + 8) ^ h);
            p += 16;
            left -= 16;
        } while (left > 16);
        a = read8(p + left - 16);
        b = read8(p + left - 8);
    } else if (left >= 8) {
        a = read8(p);
        b = read8(p + left - 8);
    } else if (left >= 4) {
        a = read4(p);
        b = read4(p + left - 4);
    } else if (left > 0) {
        a = uint64_t(p[0]) << 16 | uint64_t(p[left >> 1]) << 8 | p[left - 1];
        b = 0;
    } else
        a = b = 0;
    return fold(key2 ^ length, fold(a ^ key1, b ^ h));
}

/// 64 hash bits folded and held below `limit`; 0xFFFFFFFF means no limit.
inline unsigned limitHash(uint64_t h, unsigned limit) {
    unsigned folded = unsigned(h ^ h >> 32);
    return limit == 0xFFFFFFFFu ? folded : limit ? folded % limit : 0;
}

/// The hash of a byte range, held below `limit`; 0xFFFFFFFF means no limit. `method` picks the family: 0 is the
/// default, any other number gives another, equally good one.
inline unsigned hashData(unsigned method, const void* data, size_t length, unsigned limit) {
    return limitHash(hash64(data, length, method), limit);
}

/// 32 well mixed bits of a byte range, of a word and of an address: for tables in memory. None of them is seeded.
inline unsigned hashBytes(const void* data, size_t length) { return limitHash(hash64(data, length), 0xFFFFFFFFu); }
inline unsigned hashWord(uint64_t word) {
    return limitHash(detail::fold(word ^ detail::key0, detail::key1), 0xFFFFFFFFu);
}
inline unsigned hashPointer(const void* address) { return hashWord(reinterpret_cast<uintptr_t>(address)); }

} // namespace toolkit
