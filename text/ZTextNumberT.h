#pragma once

#include "toolkit/types.h"

struct _IO_FILE; // what the C library calls FILE

/// Numbers as text of one width and back, and formatted output. Nothing depends on the locale.
///
/// What writes takes (out, size, …): it stores at most `size` units, the terminator included, and answers the length
/// that the whole text needs. With a null `out` it only measures. What makes a text answers counted memory that the
/// caller frees with `zfree`, null where there is none. Radixes go from 2 to 36, any other counts as 10.
template <class C> class ORV_API ZTextNumberT {
public:
    // Whole numbers. `width` fills the text up on the left: with blanks, or with zeros behind the sign. Digits above 9
    // are lower-case letters unless `upper`.

    static int inttostr(C* out, int size, int value, int radix = 10, int width = 0, bool zeros = false,
                        bool upper = false);
    static int uinttostr(C* out, int size, uint value, int radix = 10, int width = 0, bool zeros = false,
                         bool upper = false);
    static int largetostr(C* out, int size, large value, int radix = 10, int width = 0, bool zeros = false,
                          bool upper = false);
    static int ulargetostr(C* out, int size, ularge value, int radix = 10, int width = 0, bool zeros = false,
                           bool upper = false);
    static C* inttostr(int value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    static C* uinttostr(uint value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    static C* largetostr(large value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);
    static C* ulargetostr(ularge value, int radix = 10, int width = 0, bool zeros = false, bool upper = false);

    // Reals in plain notation with at most `precision` decimals, 6 for a negative one, zeros at the end cut

    static int realtostr(C* out, int size, double value, int width, int precision, ichar decimal = '.');
    static C* floattostr(double value, int width, int precision, ichar decimal = '.');

    // Numerals. What a kind can't write is empty: 0, and Roman numbers above 3999.

    /// `format` is a `ZString::NumFormat`.
    static int numeral(C* out, int size, uint value, int format);
    static int romanMumeral(C* out, int size, uint value, bool upper);
    /// A to Z, AA, AB, …
    static int alphaNumeral(C* out, int size, uint value, bool upper);
    /// A to Z, AA, BB, …
    static int letterNumeral(C* out, int size, uint value, bool upper);

    // Text to number: the whole text, blanks around it allowed. A text ends at its length or its terminator, whichever
    // comes first; a negative length means the terminator. False, with `value` as it was, for anything else in the text
    // and for what the type can't hold. "0x" and "0b" in front are understood where the radix allows them.

    static bool strtobyte(const C* text, int length, byte& value, int radix = 10);
    static bool strtoint8(const C* text, int length, int8& value, int radix = 10);
    static bool strtoint16(const C* text, int length, int16& value, int radix = 10);
    static bool strtoword(const C* text, int length, word& value, int radix = 10);
    static bool strtoint(const C* text, int length, int& value, int radix = 10);
    static bool strtouint(const C* text, int length, uint& value, int radix = 10);
    static bool strtolarge(const C* text, int length, large& value, int radix = 10);
    static bool strtoularge(const C* text, int length, ularge& value, int radix = 10);
    static bool strtofloat(const C* text, int length, float& value, int decimal = '.');
    static bool strtoreal(const C* text, int length, double& value, int decimal = '.');
    /// Reads what stands before the digits of a number: blanks, a sign where `sign` allows one, and a prefix. It sets
    /// `*radix`: "0x" where that is 10 or 16, "0b" where it is 10 or 2, if a digit follows. Answers the bytes read.
    static int strradix(const C* text, int length, int* radix, bool sign, bool* negative) requires(sizeof(C) == 1);

    // Formatted output, conversions as in text/format.h; -1 for a text that passes an int. A list can be used again.

    static int printf(C* out, int size, const C* format, ...);
    static int aprintf(C* out, int size, const C* format, var_arg* arguments);
    /// A new text.
    static C* dprintf(const C* format, ...);
    /// To a file of the C library, as UTF-8; the bytes written, or -1 if some couldn't be.
    static int fprintf(_IO_FILE* file, const C* format, ...);
};

extern template class ZTextNumberT<char>;
extern template class ZTextNumberT<wchar>;
extern template class ZTextNumberT<ichar>;
