#pragma once

#include "toolkit/types.h"

// Conversion between the three widths of text: char (UTF-8), wchar (UTF-16), ichar (UTF-32). Malformed input becomes
// U+FFFD, one for each maximal part that could begin a character; surrogates and overlong forms are malformed.
// Everything is told by lengths in code units; a zero is a character like any other.
namespace orv::detail {

inline constexpr ichar replacementCode = 0xFFFD;
inline constexpr ichar lastCode = 0x10FFFF;

/// Most code units that one code point takes.
template <class C> inline constexpr int longestCode = sizeof(C) == 1 ? 4 : sizeof(C) == 2 ? 2 : 1;

inline constexpr bool validCode(ichar code) { return code < 0xD800 || (code > 0xDFFF && code <= lastCode); }
inline constexpr bool leadSurrogate(ichar unit) { return (unit & 0xFFFFFC00) == 0xD800; }
inline constexpr bool trailSurrogate(ichar unit) { return (unit & 0xFFFFFC00) == 0xDC00; }

/// Units of a code point; for what is none, those of U+FFFD.
template <class C> inline constexpr int codeUnits(ichar code) {
    if constexpr (sizeof(C) == 1)
        return code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 || code > lastCode ? 3 : 4;
    else if constexpr (sizeof(C) == 2)
        return code < 0x10000 || code > lastCode ? 1 : 2;
    else
        return 1;
}

/// Writes one code point, U+FFFD for what is none, and answers its units. There has to be room for `longestCode`, or
/// for what `codeUnits` tells.
template <class C> inline int encodeCode(C* out, ichar code) {
    if (!validCode(code)) code = replacementCode;
    if constexpr (sizeof(C) == 1) {
        if (code < 0x80) {
            out[0] = C(code);
            return 1;
        }
        if (code < 0x800) {
            out[0] = C(0xC0 | code >> 6);
            out[1] = C(0x80 | (code & 0x3F));
            return 2;
        }
        if (code < 0x10000) {
            out[0] = C(0xE0 | code >> 12);
            out[1] = C(0x80 | (code >> 6 & 0x3F));
            out[2] = C(0x80 | (code & 0x3F));
            return 3;
        }
        out[0] = C(0xF0 | code >> 18);
        out[1] = C(0x80 | (code >> 12 & 0x3F));
        out[2] = C(0x80 | (code >> 6 & 0x3F));
        out[3] = C(0x80 | (code & 0x3F));
        return 4;
    } else if constexpr (sizeof(C) == 2) {
        if (code < 0x10000) {
            out[0] = C(code);
            return 1;
        }
        out[0] = C(0xD7C0 + (code >> 10));
        out[1] = C(0xDC00 | (code & 0x3FF));
        return 2;
    } else {
        out[0] = C(code);
        return 1;
    }
}

/// A UTF-8 sequence whose first byte is not ASCII.
ORV_API ichar decodeBytes(const char*& at, const char* end);

/// Reads the code point at `at`, which must be below `end`, and moves `at` behind it.
template <class C> inline ichar decodeCode(const C*& at, const C* end) {
    if constexpr (sizeof(C) == 1) {
        if (ORV_LIKELY(static_cast<unsigned char>(*at) < 0x80)) return static_cast<unsigned char>(*at++);
        return decodeBytes(at, end);
    } else if constexpr (sizeof(C) == 2) {
        ichar unit = *at++;
        if (ORV_LIKELY((unit & 0xF800) != 0xD800)) return unit;
        if (unit < 0xDC00 && at < end && trailSurrogate(*at)) return (unit << 10) + *at++ - 0x35FDC00;
        return replacementCode;
    } else {
        ichar unit = *at++;
        return validCode(unit) ? unit : replacementCode;
    }
}

/// Moves `at`, which must be above `begin`, back to the start of the code point before it, and answers that. Gives the
/// same code points as reading forwards does.
template <class C> ichar decodeBefore(const C*& at, const C* begin);

/// Converts `length` units. Writes whole code points while they fit in `room` units, no terminator, and answers the
/// units that all of it takes. With a null `out` it only measures. Between equal widths the text is repaired.
template <class To, class From> size_t transcode(To* out, size_t room, const From* text, size_t length);

/// Units before the terminator; 0 for null.
template <class C> size_t textLength(const C* text);
/// Units before the terminator, looking at no more than `limit` of them.
template <class C> size_t textLength(const C* text, size_t limit);
/// Code points in `length` units.
template <class C> size_t countCodes(const C* text, size_t length);
/// How many units at the start are ASCII.
template <class C> size_t asciiPrefix(const C* text, size_t length);

#define ORV_TRANSCODE_FROM(From)                                                                                       \
    extern template ORV_API ichar decodeBefore(const From*&, const From*);                                             \
    extern template ORV_API size_t transcode(char*, size_t, const From*, size_t);                                      \
    extern template ORV_API size_t transcode(wchar*, size_t, const From*, size_t);                                     \
    extern template ORV_API size_t transcode(ichar*, size_t, const From*, size_t);                                     \
    extern template ORV_API size_t textLength(const From*);                                                            \
    extern template ORV_API size_t textLength(const From*, size_t);                                                    \
    extern template ORV_API size_t countCodes(const From*, size_t);                                                    \
    extern template ORV_API size_t asciiPrefix(const From*, size_t);
ORV_TRANSCODE_FROM(char)
ORV_TRANSCODE_FROM(wchar)
ORV_TRANSCODE_FROM(ichar)
#undef ORV_TRANSCODE_FROM

} // namespace orv::detail
