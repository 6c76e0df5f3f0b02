#pragma once

#include "toolkit/types.h"

/// What is well-formed UTF-8 (Unicode, table 3-7): no overlong forms, no surrogates, nothing above U+10FFFF.
namespace toolkit {

/// Looks at the sequence at `at`, of which `left` bytes are there, at least one. Its length, 1 to 4, if it is
/// well-formed; else minus the length, 1 to 3, of the longest part that could begin a character.
inline int utf8Sequence(const byte* at, size_t left) {
    unsigned lead = at[0];
    if (lead < 0x80) return 1;
    if (lead < 0xC2 || lead > 0xF4) return -1;
    // The second byte alone decides about overlong forms, surrogates and what lies beyond the last code point.
    unsigned low = lead == 0xE0 ? 0xA0 : lead == 0xF0 ? 0x90 : 0x80;
    unsigned high = lead == 0xED ? 0x9F : lead == 0xF4 ? 0x8F : 0xBF;
    if (left < 2 || at[1] < low || at[1] > high) return -1;
    if (lead < 0xE0) return 2;
    if (left < 3 || (at[2] & 0xC0) != 0x80) return -2;
    if (lead < 0xF0) return 3;
    return left >= 4 && (at[3] & 0xC0) == 0x80 ? 4 : -3;
}

/// Whether a text holds no malformed sequence.
ORV_API bool utf8Valid(const char* text, size_t length);

} // namespace toolkit
