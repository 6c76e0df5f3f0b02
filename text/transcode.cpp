#include "text/transcode.h"

#include "toolkit/utf8.h"

#include <algorithm>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace orv::detail {

namespace {

inline constexpr size_t stride = 16;

template <class C> inline bool isAscii(C unit) { return ichar(std::make_unsigned_t<C>(unit)) < 0x80; }

/// Tells whether 16 units are all ASCII.
template <class C> inline bool asciiBlock(const C* text) {
    constexpr uint64_t mask = sizeof(C) == 1   ? 0x8080808080808080
                              : sizeof(C) == 2 ? 0xFF80FF80FF80FF80
                                               : 0xFFFFFF80FFFFFF80;
    uint64_t bits = 0;
    for (size_t i = 0; i < stride * sizeof(C); i += 8) {
        uint64_t word;
        std::memcpy(&word, reinterpret_cast<const char*>(text) + i, 8);
        bits |= word;
    }
    return (bits & mask) == 0;
}

/// Copies ASCII at the start of `text`, at most `limit` units, and answers how many. It may write all `limit` units of
/// `out`: those behind the answer are undefined.
template <class To, class From> inline size_t copyAscii(To* out, const From* text, size_t limit) {
    size_t i = 0;
    for (; limit - i >= stride; i += stride) {
        if (!asciiBlock(text + i)) break;
        for (size_t k = 0; k < stride; ++k) out[i + k] = To(text[i + k]);
    }
    while (i < limit && ichar(std::make_unsigned_t<From>(text[i])) < 0x80) {
        out[i] = To(text[i]);
        ++i;
    }
    return i;
}

#ifdef __SSE2__
template <> inline size_t copyAscii(wchar* out, const char* text, size_t limit) {
    const __m128i zero = _mm_setzero_si128();
    size_t i = 0;
    for (; limit - i >= stride; i += stride) {
        __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i + 8), _mm_unpackhi_epi8(bytes, zero));
        if (int high = _mm_movemask_epi8(bytes)) return i + size_t(__builtin_ctz(unsigned(high)));
    }
    while (i < limit && !(text[i] & 0x80)) {
        out[i] = wchar(text[i]);
        ++i;
    }
    return i;
}

template <> inline size_t copyAscii(char* out, const wchar* text, size_t limit) {
    const __m128i high = _mm_set1_epi16(short(0xFF80));
    size_t i = 0;
    for (; limit - i >= stride; i += stride) {
        __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i));
        __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + i + 8));
        __m128i above = _mm_and_si128(_mm_or_si128(a, b), high);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(above, _mm_setzero_si128())) != 0xFFFF) break;
        _mm_storeu_si128(reinterpret_cast<__m128i*>(out + i), _mm_packus_epi16(a, b));
    }
    while (i < limit && text[i] < 0x80) {
        out[i] = char(text[i]);
        ++i;
    }
    return i;
}
#endif

#ifdef __SSE2__
/// The way from UTF-8 to UTF-16 as long as both sides are far from their ends: ASCII and characters of two bytes are
/// taken a register at a time, however many of them it begins with.
inline void widenBytes(const char*& at, const char* end, wchar*& to, const wchar* stop) {
    constexpr ptrdiff_t margin = 2 * stride;
    const __m128i zero = _mm_setzero_si128();
    while (end - at >= margin && stop - to >= margin) {
        // A lone blank between two words isn't worth a register.
        if (isAscii(at[0]) && !isAscii(at[1]))
            *to++ = wchar(*at++);
        else {
            __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_unpacklo_epi8(bytes, zero));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to + 8), _mm_unpackhi_epi8(bytes, zero));
            unsigned beyond = unsigned(_mm_movemask_epi8(bytes));
            if (!beyond) {
                at += stride;
                to += stride;
                continue;
            }
            int plain = __builtin_ctz(beyond);
            at += plain;
            to += plain;
        }
        auto lead = static_cast<unsigned char>(*at);
        if (lead < 0xE0) {
            if (isAscii(at[2]) && lead >= 0xC2 && (at[1] & 0xC0) == 0x80) {
                *to++ = wchar((lead & 31) << 6 | (at[1] & 63));
                at += 2;
                continue;
            }
            // Pairs in 16-bit lanes, the lead in the low byte.
            __m128i pairs = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
            __m128i shape =
                _mm_cmpeq_epi16(_mm_and_si128(pairs, _mm_set1_epi16(short(0xC0E0))), _mm_set1_epi16(short(0x80C0)));
            __m128i overlong = _mm_cmpeq_epi16(_mm_and_si128(pairs, _mm_set1_epi16(0x001E)), zero);
            int good = __builtin_ctz(~unsigned(_mm_movemask_epi8(_mm_andnot_si128(overlong, shape)))) / 2;
            __m128i high = _mm_slli_epi16(_mm_and_si128(pairs, _mm_set1_epi16(0x001F)), 6);
            __m128i low = _mm_and_si128(_mm_srli_epi16(pairs, 8), _mm_set1_epi16(0x003F));
            _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_or_si128(high, low));
            at += 2 * good;
            to += good;
            if (good) continue;
        }
        while (end - at >= 4 && stop - to >= 2) {
            auto p = reinterpret_cast<const unsigned char*>(at);
            if (p[0] >= 0xE1 && p[0] <= 0xEF && p[0] != 0xED && (p[1] & 0xC0) == 0x80 && (p[2] & 0xC0) == 0x80) {
                *to++ = wchar((p[0] & 15) << 12 | (p[1] & 63) << 6 | (p[2] & 63));
                at += 3;
                continue;
            }
            if (p[0] < 0x80) break;
            to += encodeCode(to, decodeBytes(at, end));
        }
    }
}
#endif

/// Reads one code point that is not ASCII, the common lengths of UTF-8 without a call.
template <class C> inline ichar decodeWide(const C*& at, const C* end) {
    if constexpr (sizeof(C) == 1) {
        auto p = reinterpret_cast<const unsigned char*>(at);
        if (end - at >= 3) {
            if (p[0] >= 0xE1 && p[0] <= 0xEF && p[0] != 0xED && (p[1] & 0xC0) == 0x80 && (p[2] & 0xC0) == 0x80) {
                at += 3;
                return ichar(p[0] & 15) << 12 | ichar(p[1] & 63) << 6 | (p[2] & 63);
            }
            if (p[0] >= 0xC2 && p[0] < 0xE0 && (p[1] & 0xC0) == 0x80) {
                at += 2;
                return ichar(p[0] & 31) << 6 | (p[1] & 63);
            }
        }
        return decodeBytes(at, end);
    } else
        return decodeCode(at, end);
}

template <class To, class From> size_t measure(const From* at, const From* end) {
    size_t needed = 0;
    while (at < end) {
        size_t plain = asciiPrefix(at, size_t(end - at));
        needed += plain;
        at += plain;
        while (at < end && !isAscii(*at)) needed += size_t(codeUnits<To>(decodeWide(at, end)));
    }
    return needed;
}

} // namespace

ichar decodeBytes(const char*& at, const char* end) {
    auto p = reinterpret_cast<const byte*>(at);
    int size = toolkit::utf8Sequence(p, size_t(end - at));
    at += size < 0 ? -size : size;
    switch (size) {
    case 1:
        return p[0];
    case 2:
        return (p[0] & 31u) << 6 | (p[1] & 63u);
    case 3:
        return (p[0] & 15u) << 12 | (p[1] & 63u) << 6 | (p[2] & 63u);
    case 4:
        return (p[0] & 7u) << 18 | (p[1] & 63u) << 12 | (p[2] & 63u) << 6 | (p[3] & 63u);
    default:
        return replacementCode;
    }
}

template <class C> ichar decodeBefore(const C*& at, const C* begin) {
    if constexpr (sizeof(C) == 1) {
        // A sequence that begins up to three bytes earlier and ends exactly here, else a byte of its own. Reading
        // forwards stops at the same places: a lead byte never lies inside a sequence.
        const C* last = at - 1;
        for (int back = 0; back < 4 && last - back >= begin; ++back) {
            const C* start = last - back;
            if ((*start & 0xC0) == 0x80) continue;
            const C* next = start;
            ichar code = decodeCode(next, at);
            if (next != at) break;
            at = start;
            return code;
        }
        at = last;
        return replacementCode;
    } else if constexpr (sizeof(C) == 2) {
        ichar unit = *--at;
        if (ORV_LIKELY((unit & 0xF800) != 0xD800)) return unit;
        if (unit >= 0xDC00 && at > begin && leadSurrogate(at[-1])) return (ichar(*--at) << 10) + unit - 0x35FDC00;
        return replacementCode;
    } else {
        ichar unit = *--at;
        return validCode(unit) ? unit : replacementCode;
    }
}

template <class To, class From> size_t transcode(To* out, size_t room, const From* text, size_t length) {
    const From *at = text, *end = text + length;
    if (!out) return measure<To>(at, end);
    To *to = out, *stop = out + room;
#ifdef __SSE2__
    if constexpr (sizeof(To) == 2 && sizeof(From) == 1) widenBytes(at, end, to, stop);
#endif
    while (at < end) {
        size_t plain = copyAscii(to, at, std::min(size_t(end - at), size_t(stop - to)));
        at += plain;
        to += plain;
        if (at == end) break;
        if (isAscii(*at)) return size_t(to - out) + measure<To>(at, end);
        do {
            const From* before = at;
            ichar code = decodeWide(at, end);
            if (ORV_UNLIKELY(stop - to < longestCode<To>) && stop - to < codeUnits<To>(code))
                return size_t(to - out) + measure<To>(before, end);
            to += encodeCode(to, code);
            // A lone blank between words of another script isn't worth the way through the wide copy.
            if (end - at > 1 && to < stop && isAscii(*at) && !isAscii(at[1])) *to++ = To(*at++);
        } while (at < end && !isAscii(*at));
    }
    return size_t(to - out);
}

template <class C> size_t textLength(const C* text) {
    if (!text) return 0;
    if constexpr (sizeof(C) == 1) return std::strlen(text);
    const C* end = text;
    while (*end) ++end;
    return size_t(end - text);
}

template <class C> size_t textLength(const C* text, size_t limit) {
    if (!text) return 0;
    if constexpr (sizeof(C) == 1) return strnlen(text, limit);
    size_t length = 0;
    while (length < limit && text[length]) ++length;
    return length;
}

template <class C> size_t countCodes(const C* text, size_t length) {
    if constexpr (sizeof(C) == 4) return length;
    return measure<ichar>(text, text + length);
}

template <class C> size_t asciiPrefix(const C* text, size_t length) {
    size_t i = 0;
    while (length - i >= stride && asciiBlock(text + i)) i += stride;
    while (i < length && isAscii(text[i])) ++i;
    return i;
}

#define ORV_TRANSCODE_FROM(From)                                                                                       \
    template ichar decodeBefore(const From*&, const From*);                                                            \
    template size_t transcode(char*, size_t, const From*, size_t);                                                     \
    template size_t transcode(wchar*, size_t, const From*, size_t);                                                    \
    template size_t transcode(ichar*, size_t, const From*, size_t);                                                    \
    template size_t textLength(const From*);                                                                           \
    template size_t textLength(const From*, size_t);                                                                   \
    template size_t countCodes(const From*, size_t);                                                                   \
    template size_t asciiPrefix(const From*, size_t);
ORV_TRANSCODE_FROM(char)
ORV_TRANSCODE_FROM(wchar)
ORV_TRANSCODE_FROM(ichar)

} // namespace orv::detail
