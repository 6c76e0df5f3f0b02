#pragma once

#include "toolkit/types.h"

// Formatted output in the three widths: `C`, of the format and of what it gives, is char, wchar or ichar. Nothing
// depends on the locale, nothing is allocated.
//
// A conversion is "%", flags, width, precision, size and letter, as in C:
//   flags      - left   + sign   blank for a plus   # other form   0 zeros for blanks
//              ^ and a radix (digits, or * for an int argument) for d, i, u, x, X: `%^*d` takes radix and value
//   width      digits or *, at most 1,048,576
//   precision  a point and digits or *; then, with f, ! cuts the zeros at the end of the decimals, and the point
//              if none are left: `%.*!f` is how reals are stored
//   size       hh h l ll z t j L, in front of the letters that C has them for; the system's own letters below win
//   d i u o x X c s p a A e E f F g G %   as in C, except for text, below; the decimal character is always a point
//   s   const char*, UTF-8, in all widths. S   const wchar*, UTF-16. A null pointer gives "(null)". Text in the
//       width of the output is copied as it is, a precision counting its units. Other text is converted, malformed
//       parts replaced, and a precision counts the units written, of which a character is never split. With a
//       precision, the text needs no terminator behind the characters that are written
//   c   an int: a byte of char text, a code point in the other widths. C   a code point in every width
//   l   a large, unless one of d i u x X o f follows, or ll and d i u x X o; so `%ls` is a number and an "s"
//   m   an int, milliseconds of a clock, as seconds with three decimals
//   H   an unsigned hash or handle, in at least 8 hexadecimal digits
//   tb tw ti td   a pointer and an int count: bytes, words, ints or doubles, with ", " between. Doubles take the
//       shortest text that reads back, or with a precision that of `%.*!f`. (t before u x X o is the size of C)
// Whatever else follows a "%" is copied, "%n" too: nothing is ever stored through an argument.

namespace orv {

/// Takes formatted text in pieces; false stops the formatting.
template <class C> using FormatSink = bool (*)(void* context, const C* piece, int length);

/// Arguments whose types are known, taken one by one: each answer is the next one as what the conversion asks for, 0 or
/// null when there is none. A format can then ask for whatever it likes.
class FormatArguments {
public:
    /// Zero-ended text; the width is that of `ZString::Type`, 1 to 3.
    struct Text {
        const void* units;
        int width;
    };
    virtual large integer() = 0;
    virtual double real() = 0;
    virtual const void* pointer() = 0;
    virtual Text text() = 0;
    /// The items of a row as `tb`, `tw`, `ti`, `td` take them, by their letter.
    virtual const void* items(char letter, int& count) = 0;

protected:
    FormatArguments() = default;
    FormatArguments(const FormatArguments&) = default;
    FormatArguments& operator=(const FormatArguments&) = default;
    ~FormatArguments() = default;
};

/// Writes at most `size` units, the terminator included, and answers the length that the whole text needs: -1 if that
/// passes an int. With a null `out` it only measures. The arguments can be used again afterwards.
template <class C> ORV_API int aformat(C* out, int size, const C* format, var_arg* args);
template <class C> ORV_API int format(C* out, int size, const C* format, ...);
/// Gives the text to `sink` piece by piece, without terminators; -1 also if the sink stopped it.
template <class C> ORV_API int formatTo(FormatSink<C> sink, void* context, const C* format, var_arg* args);
/// The same with arguments whose types are known; one run takes them.
template <class C> ORV_API int formatTo(FormatSink<C> sink, void* context, const C* format, FormatArguments& args);

} // namespace orv
