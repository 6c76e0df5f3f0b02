#pragma once

#include "toolkit/types.h"

// Search and order in runs of code units, the ground of all search and compare functions. Ignoring case means comparing
// simple foldings code by code, so that a match can have another length than what was looked for. Search takes linear
// time for whatever is looked for, as long as there is memory for a table of the needle's size.
namespace orv::detail {

/// A run of code units.
template <class C> struct Run {
    const C* begin;
    const C* end;
    size_t size() const { return size_t(end - begin); }
    bool empty() const { return begin == end; }
};
/// A terminated text as a run; a length cuts it, below 0 it doesn't. Null is an empty run.
template <class C> Run<C> runOf(const C* text, int length = -1);

enum class Case { Exact, Ignored };

/// The first or last place of a needle, null if there is none. An empty needle is found at the start, or at the end.
/// `matchEnd`, if not null, receives the end of the match.
template <class C> const C* findFirst(Run<C> text, Run<C> needle, Case which, const C** matchEnd = nullptr);
template <class C> const C* findLast(Run<C> text, Run<C> needle, Case which, const C** matchEnd = nullptr);

/// The first or last code point that a set has; null if there is none. The set is a text.
template <class C> const C* findFirstOf(Run<C> text, Run<C> set, Case which);
template <class C> const C* findLastOf(Run<C> text, Run<C> set, Case which);

/// The order by code points: negative, 0 or positive. Malformed parts keep the text apart from others: they come behind
/// all characters if case is ignored, else in the order of their units.
template <class C> int orderTexts(Run<C> a, Run<C> b, Case which);

/// Whether a pattern covers the whole text: `*` stands for any run, `?` for one code point.
template <class C> bool matchPattern(Run<C> text, Run<C> pattern, Case which);

/// Reads one code point for a comparison and moves `at`. A malformed unit has a value of its own, above all code
/// points.
template <class C> ichar readCode(const C*& at, const C* end, Case which);
/// The same for the code point before `at`.
template <class C> ichar readCodeBefore(const C*& at, const C* begin, Case which);

#define ORV_SEARCH(C)                                                                                                  \
    extern template ORV_API Run<C> runOf(const C*, int);                                                               \
    extern template ORV_API const C* findFirst(Run<C>, Run<C>, Case, const C**);                                       \
    extern template ORV_API const C* findLast(Run<C>, Run<C>, Case, const C**);                                        \
    extern template ORV_API const C* findFirstOf(Run<C>, Run<C>, Case);                                                \
    extern template ORV_API const C* findLastOf(Run<C>, Run<C>, Case);                                                 \
    extern template ORV_API int orderTexts(Run<C>, Run<C>, Case);                                                      \
    extern template ORV_API bool matchPattern(Run<C>, Run<C>, Case);                                                   \
    extern template ORV_API ichar readCode(const C*&, const C*, Case);                                                 \
    extern template ORV_API ichar readCodeBefore(const C*&, const C*, Case);
ORV_SEARCH(char)
ORV_SEARCH(wchar)
ORV_SEARCH(ichar)
#undef ORV_SEARCH

} // namespace orv::detail
