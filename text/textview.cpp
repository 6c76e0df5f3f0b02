#include "text/textview.h"

#include "text/search.h"
#include "toolkit/hash.h"

#include <cstring>

namespace orv::detail {

namespace {

template <class C> inline ichar unitCode(C unit) {
    if constexpr (sizeof(C) == 1)
        return static_cast<unsigned char>(unit);
    else
        return ichar(unit);
}

/// The bytes that stand for a text in its raw form: of char text the text itself, of wider text its UTF-8, with
/// surrogates and values that are no code points spelled out. Equal for equal texts of any width.
template <class C> class RawBytes {
public:
    RawBytes(const C* text, int length) : at(text), end(text + length) {}
    /// Fills `out`, which has room for `room` bytes, and answers how many; 0 at the end.
    int read(byte* out, int room) {
        if constexpr (sizeof(C) == 1) {
            int n = end - at < room ? int(end - at) : room;
            if (n) std::memcpy(out, at, size_t(n));
            at += n;
            return n;
        } else {
            int n = 0;
            for (;;) {
                while (used < have && n < room) out[n++] = byte(code[used++]);
                if (used < have || at == end) return n;
                used = 0;
                have = next();
            }
        }
    }

private:
    int next() {
        const C* from = at;
        ichar value = decodeCode(at, end);
        if (value == replacementCode) value = unitCode(*from);
        if (validCode(value)) return encodeCode(code, value);
        if (value <= lastCode) { // a surrogate on its own
            code[0] = char(0xE0 | value >> 12);
            code[1] = char(0x80 | (value >> 6 & 0x3F));
            code[2] = char(0x80 | (value & 0x3F));
            return 3;
        }
        code[0] = char(0xFF);
        for (int i = 1; i < 5; ++i) code[i] = char(value >> (8 * (i - 1)));
        return 5;
    }

    const C *at, *end;
    char code[8];
    int have = 0, used = 0;
};

template <class A, class B> int compareRaw(const A* a, int aLength, const B* b, int bLength) {
    RawBytes<A> left(a, aLength);
    RawBytes<B> right(b, bLength);
    byte l[256], r[256];
    for (;;) {
        int n = left.read(l, 256), m = right.read(r, 256);
        if (int order = std::memcmp(l, r, size_t(n < m ? n : m))) return order;
        if (n != m) return n - m;
        if (!n) return 0;
    }
}

template <class A, class B> int compareCodes(const A* a, const A* aEnd, const B* b, const B* bEnd, bool& malformed) {
    while (a < aEnd && b < bEnd) {
        ichar left = decodeCode(a, aEnd), right = decodeCode(b, bEnd);
        if (left != right) return left < right ? -1 : 1;
        malformed |= left == replacementCode;
    }
    return (a < aEnd) - (b < bEnd);
}

/// The first unit in which two texts differ, or the shorter length.
template <class C> inline int firstDifference(const C* a, const C* b, int length) {
    int i = 0;
    constexpr int step = 8 / sizeof(C);
    for (; i + step <= length; i += step) {
        uint64_t left, right;
        std::memcpy(&left, a + i, 8);
        std::memcpy(&right, b + i, 8);
        if (left != right) return i + __builtin_ctzll(left ^ right) / int(8 * sizeof(C));
    }
    while (i < length && a[i] == b[i]) ++i;
    return i;
}

/// Where the code point that unit `i` belongs to can start at the earliest.
template <class C> inline int codeStart(const C* text, int i) {
    if constexpr (sizeof(C) == 1) {
        int from = i;
        while (from > 0 && i - from < 3 && (text[from - 1] & 0xC0) == 0x80) --from;
        return from > 0 && (text[from - 1] & 0xC0) == 0xC0 ? from - 1 : i;
    } else if constexpr (sizeof(C) == 2)
        return i > 0 && leadSurrogate(text[i - 1]) ? i - 1 : i;
    else
        return i;
}

template <class C> int compareSame(const C* a, int aLength, const C* b, int bLength) {
    int shorter = aLength < bLength ? aLength : bLength;
    int i = firstDifference(a, b, shorter);
    if (i == aLength && i == bLength) return 0;
    if (i < shorter) {
        ichar left = unitCode(a[i]), right = unitCode(b[i]);
        if (left < 0x80 && right < 0x80) return left < right ? -1 : 1;
    }
    int from = codeStart(a, i);
    bool malformed = false;
    if (int order = compareCodes(a + from, a + aLength, b + from, b + bLength, malformed)) return order;
    return compareRaw(a + from, aLength - from, b + from, bLength - from);
}

} // namespace

int compareText(const TextView& a, const TextView& b) {
    return withText(a, [&](auto* left, int leftLength) {
        return withText(b, [&](auto* right, int rightLength) {
            if constexpr (sizeof(*left) == sizeof(*right))
                return compareSame(left, leftLength, right, rightLength);
            else {
                bool malformed = false;
                int order = compareCodes(left, left + leftLength, right, right + rightLength, malformed);
                return order || !malformed ? order : compareRaw(left, leftLength, right, rightLength);
            }
        });
    });
}

int compareTextFolded(const TextView& a, const TextView& b) {
    return withText(a, [&](auto* left, int leftLength) {
        return withText(b, [&](auto* right, int rightLength) {
            auto leftEnd = left + leftLength;
            auto rightEnd = right + rightLength;
            while (left < leftEnd && right < rightEnd) {
                ichar l = readCode(left, leftEnd, Case::Ignored), r = readCode(right, rightEnd, Case::Ignored);
                if (l != r) return l < r ? -1 : 1;
            }
            return (left < leftEnd) - (right < rightEnd);
        });
    });
}

uint hashText(const TextView& view) {
    constexpr int piece = 256;
    uint64_t h = 0;
    withText(view, [&](auto* text, int length) {
        if constexpr (sizeof(*text) == 1) {
            do {
                int n = length < piece ? length : piece;
                h = toolkit::hash64(text, size_t(n), h);
                text += n;
                length -= n;
            } while (length > 0);
        } else {
            RawBytes<std::remove_cv_t<std::remove_pointer_t<decltype(text)>>> bytes(text, length);
            byte out[piece];
            int n = bytes.read(out, piece);
            do {
                h = toolkit::hash64(out, size_t(n), h);
                n = n == piece ? bytes.read(out, piece) : 0;
            } while (n > 0);
        }
    });
    return uint(h ^ h >> 32);
}

int countText(const TextView& view) {
    return withText(view, [](auto* text, int length) { return int(countCodes(text, size_t(length))); });
}

} // namespace orv::detail
