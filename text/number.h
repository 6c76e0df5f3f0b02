#pragma once

#include "toolkit/types.h"

#include <type_traits>

// Numbers to text and back, in the three widths: `C` is char, wchar or ichar. Nothing here depends on the locale,
// allocates or fails for lack of memory.
//
// What writes text takes (out, size, …): it stores at most `size` units, the terminator included, and answers the
// length that the whole text needs. With a null `out` it only measures. Text that doesn't fit is cut.

namespace orv {

/// Widths and fills of numbers never pass this many units.
inline constexpr int numberWidthLimit = 1 << 20;

/// An integer in a radix from 2 to 36; any other radix counts as 10. A width above the text's own fills it up on the
/// left: with blanks, or, with `zeros`, with zeros behind the sign. Digits above 9 are lower-case letters unless
/// `upper`.
template <class C> ORV_API int inttostr(C* out, int size, large value, int radix, int width, bool zeros, bool upper);
template <class C> ORV_API int uinttostr(C* out, int size, ularge value, int radix, int width, bool zeros, bool upper);

/// A real in plain notation, correctly rounded to `precision` decimals (a negative one counts as 6), with the zeros at
/// the end of the decimals cut, and the decimal character with them if none are left. A value that rounds to 0 has no
/// sign. `width` fills with blanks on the left. What isn't finite is "inf", "-inf" or "nan".
template <class C> ORV_API int realtostr(C* out, int size, double value, int width, int precision, ichar decimal);
/// The decimals that a value is written with: 6 if `asked` is 0, else `asked`; at least 8 for magnitudes below 10.
ORV_API int realPrecision(double value, int asked);

/// The kinds of numerals, by the numbers that text classes use.
enum NumeralKind {
    numeralDecimal = 1,
    numeralRomanU, ///< I to MMMCMXCIX
    numeralRomanL,
    numeralAlphaU, ///< A to Z, AA, AB, …
    numeralAlphaL,
    numeralLetterU, ///< A to Z, AA, BB, …
    numeralLetterL
};
/// A value that a kind can't write gives the empty text: 0 in all but `numeralDecimal`, Roman above 3999, letter rows
/// longer than `numberWidthLimit`.
template <class C> ORV_API int numeral(C* out, int size, uint value, int kind);
template <class C> ORV_API int romanNumeral(C* out, int size, uint value, bool upper);
template <class C> ORV_API int alphaNumeral(C* out, int size, uint value, bool upper);
template <class C> ORV_API int letterNumeral(C* out, int size, uint value, bool upper);

/// What stands in front of an integer's digits: blanks, a sign if `sign` allows one (`negative` says whether it was a
/// minus), and a prefix: "0x" with radix 10 or 16, "0b" with radix 10 or 2, if a digit of that radix follows. The radix
/// is set by the prefix and else left. A 0 at the start has no meaning of its own. Answers the units passed.
ORV_API int strradix(const char* text, int length, int* radix, bool sign, bool* negative);

/// An integer at the start of [text, end), as `strradix` has it, as magnitude and sign. Answers its end, or null if
/// there is no digit. `fits` is false where the digits pass 64 bits.
template <class C>
ORV_API const C* scanInteger(const C* text, const C* end, int radix, bool sign, ularge& magnitude, bool& negative,
                             bool& fits);
/// A real at the start of [text, end), behind blanks: digits with an optional decimal character and exponent, "inf" or
/// "nan", in any case. Answers its end, or null if there is none. What is too large for the type gives infinity, and
/// `fits` is false; what is too small gives 0.
template <class C> ORV_API const C* scanReal(const C* text, const C* end, double& out, ichar decimal, bool& fits);
template <class C> ORV_API const C* scanReal(const C* text, const C* end, float& out, ichar decimal, bool& fits);

/// A code unit as a number: bytes above 127 aren't negative.
inline uint unitvalue(char c) { return byte(c); }
inline uint unitvalue(wchar c) { return c; }
inline uint unitvalue(ichar c) { return c; }
/// The end of a text given as pointer and length; a negative length goes to the terminator.
template <class C> inline const C* textend(const C* text, int length) {
    if (length >= 0) return text + length;
    while (*text) ++text;
    return text;
}
/// Whether nothing but blanks (units at or below 32) is left.
template <class C> inline bool onlyBlanks(const C* text, const C* end) {
    while (text < end && unitvalue(*text) <= 32) ++text;
    return text == end;
}

/// The whole of a text as a number: a prefix as with `strradix`, blanks around it. False, with `out` as it was, for a
/// null text, for anything else in it, and for a value that the type can't hold; unsigned types take no minus sign.
template <class C, class T>
inline std::enable_if_t<std::is_integral_v<T>, bool> strtonumber(const C* text, int length, T& out, int radix) {
    if (!text) return false;
    constexpr bool isSigned = std::is_signed_v<T>;
    constexpr ularge top = isSigned ? ~ularge(0) >> (65 - 8 * sizeof(T)) : ~ularge(0) >> (64 - 8 * sizeof(T));
    ularge magnitude;
    bool negative, fits;
    const C* end = textend(text, length);
    const C* stop = scanInteger(text, end, radix, isSigned, magnitude, negative, fits);
    if (!stop || !fits || magnitude > top + (negative ? 1 : 0) || !onlyBlanks(stop, end)) return false;
    out = T(negative ? 0 - magnitude : magnitude);
    return true;
}
template <class C, class T>
inline std::enable_if_t<std::is_floating_point_v<T>, bool> strtonumber(const C* text, int length, T& out, int decimal) {
    if (!text) return false;
    T value;
    bool fits;
    const C* end = textend(text, length);
    const C* stop = scanReal(text, end, value, ichar(decimal), fits);
    if (!stop || !fits || !onlyBlanks(stop, end)) return false;
    out = value;
    return true;
}

} // namespace orv
