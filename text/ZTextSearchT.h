#pragma once

#include "toolkit/types.h"

/// Search, order and likeness of plain texts of one width. Texts end with a terminator; null is the empty text. Where a
/// length is given, the text ends there or at its terminator, whichever comes first; a negative length means the
/// latter. Positions are pointers into the text, null for what isn't there.
///
/// The names are composed: `n` limits the text to a length, `i` ignores case by simple folding, `r` searches from the
/// end; `chr` looks for a code point, `brk` for any code point of a set, `str` for a text, `pos` for a code unit.
/// Nothing here allocates unless a search turns out to need a table of its needle's size; without memory it goes
/// slower.
template <class C> class ORV_API ZTextSearchT {
public:
    // A code point. The terminator is never found.

    static const C* strchr(const C* text, ichar code);
    static const C* strichr(const C* text, ichar code);
    static const C* strrchr(const C* text, ichar code);
    static const C* strirchr(const C* text, ichar code);
    static const C* strnchr(const C* text, int n, ichar code);
    static const C* strnichr(const C* text, int n, ichar code);
    static const C* strnrchr(const C* text, int n, ichar code);
    static const C* strnirchr(const C* text, int n, ichar code);

    // Any code point of a set

    static const C* strbrk(const C* text, const C* set);
    static const C* stribrk(const C* text, const C* set);
    static const C* strrbrk(const C* text, const C* set);
    static const C* strirbrk(const C* text, const C* set);
    static const C* strnbrk(const C* text, int n, const C* set);
    static const C* strnibrk(const C* text, int n, const C* set);
    static const C* strnrbrk(const C* text, int n, const C* set);
    static const C* strnirbrk(const C* text, int n, const C* set);

    // A text. The empty needle is found at the start, from the end at the end.

    static const C* strstr(const C* text, const C* needle);
    static const C* stristr(const C* text, const C* needle);
    static const C* strrstr(const C* text, const C* needle);
    static const C* strirstr(const C* text, const C* needle);
    static const C* strnstr(const C* text, int n, const C* needle);
    static const C* strnistr(const C* text, int n, const C* needle);
    static const C* strnrstr(const C* text, int n, const C* needle);
    static const C* strnirstr(const C* text, int n, const C* needle);

    // A code unit. The terminator is never found.

    static const C* strpos(const C* text, C unit);
    static const C* strnpos(const C* text, int n, C unit);

    // Order by code points, the same in every width: negative, 0 or positive. With `n`, of at most that many units
    // each.

    static int strcomp(const C* a, const C* b);
    static int stricomp(const C* a, const C* b);
    static int strncomp(const C* a, const C* b, int n);
    static int strnicomp(const C* a, const C* b, int n);

    // Whether a pattern covers the whole text: `*` stands for any run of code points, `?` for one.

    static bool match(const C* text, const C* pattern);
    static bool imatch(const C* text, const C* pattern);
    static bool nmatch(const C* text, int n, const C* pattern, int patternLength);
    static bool nimatch(const C* text, int n, const C* pattern, int patternLength);

    // Likeness: the least cost of making one text from the other, where a code point added or removed costs `gap` and
    // one exchanged for another `change`; costs below 0 count as 0. Memory in proportion to the shorter text.

    /// At most 2^31 - 1; -1 without memory.
    static int editDistance(const C* a, int lengthA, const C* b, int lengthB, int gap, int change);
    /// Whether the distance is below `limit`; it answers as soon as that is known. False without memory.
    static bool shorterEditDistance(const C* a, int lengthA, const C* b, int lengthB, int gap, int change, int limit);
};

extern template class ZTextSearchT<char>;
extern template class ZTextSearchT<wchar>;
extern template class ZTextSearchT<ichar>;
