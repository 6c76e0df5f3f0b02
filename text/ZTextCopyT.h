#pragma once

#include "toolkit/types.h"

/// Lengths, copies and new texts of one width. Texts end with a terminator; null is the empty text. A length `n` ends a
/// text early, below 0 it doesn't.
///
/// What writes takes (out, size, …): it stores at most `size` units, the terminator included, whole characters only,
/// and answers the length that the whole text needs. With a null `out` it only measures.
///
/// What makes a text answers counted memory that the caller frees with `zfree`; null only where there is no memory, or
/// where the text would pass 2^31 - 2 units.
template <class C> class ORV_API ZTextCopyT {
public:
    // Length, in code units, and count of code points

    static int length(const C* text);
    static int strnlen(const C* text, int n);
    static int strcount(const C* text);
    static int strncount(const C* text, int n);
    /// Bytes of a code point in UTF-8.
    static int codeLen(ichar code) requires(sizeof(C) == 1);

    // One code point

    /// Writes a code point without a terminator and answers its bytes; 0 if they don't fit, or if it is none.
    static int addchar(C* out, ichar code, int size) requires(sizeof(C) == 1);
    /// The code point at `*position`, which moves behind it. At the terminator 0, and it stays.
    static ichar strchar(const C* text, int* position) requires(sizeof(C) == 1);

    // Copies, of text that is no part of `out`; `strmove` allows that.

    static int strcopy(C* out, int size, const C* text, int n = -1);
    static int strmove(C* out, int size, const C* text, int n = -1);
    /// Adds behind the text that is in `out`; the answer counts that too.
    static int strcat(C* out, int size, const C* text, int n = -1);
    /// A code point `count` times.
    static int strnset(C* out, int size, ichar code, int count);
    static int stricopy(C* out, int size, const ichar* text, int n = -1);
    static int strwcopy(C* out, int size, const wchar* text, int n = -1) requires(sizeof(C) != 2);
    static int stracopy(C* out, int size, const char* text, int n = -1) requires(sizeof(C) != 1);

    // New texts

    /// Room for `n` units and the terminator, empty so far.
    static C* allocstr(int n);
    /// Null for null too.
    static C* strdup(const C* text);
    static C* strndup(const C* text, int n);
    static C* wstrdup(const wchar* text, int n = -1) requires(sizeof(C) == 1);
    static C* istrdup(const ichar* text, int n = -1) requires(sizeof(C) == 1);
    static C* joinstr(const C* a, const C* b);
    /// `n` texts, each a `const C*`.
    static C* joinnstr(int n, ...);
    static C* joinnstrtab(int n, const C* const* texts);
    /// `added` put in at a position; one outside the text means its end or its start.
    static C* insertstr(const C* text, int position, const C* added);
    /// Without the `n` units from a position on; a negative position shortens `n`.
    static C* deletestr(const C* text, int position, int n);

    // Line breaks: the text in lines of at most `width` code points. Lines break at blanks and tabs, which then go;
    // a longer word is cut, never before a mark. Breaks that are there stay. A width below 1 breaks nothing.

    /// `lineEnd` is what breaks lines; null means "\n".
    static int breaklines(C* out, int size, const C* text, int width, const C* lineEnd = nullptr);
    static C* breakstr(const C* text, int width, const C* lineEnd = nullptr);
};

extern template class ZTextCopyT<char>;
extern template class ZTextCopyT<wchar>;
extern template class ZTextCopyT<ichar>;
