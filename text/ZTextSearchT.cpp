#include "text/ZTextSearchT.h"

#include "text/distance.h"
#include "text/search.h"
#include "text/transcode.h"

#include <cstring>

using namespace orv::detail;

namespace {

/// A code point as the needle of a search. The terminator makes an empty one, which finds nothing.
template <class C> struct Code {
    explicit Code(ichar code) : count(code ? encodeCode(units, code) : 0) {}
    Run<C> run() const { return {units, units + count}; }
    C units[longestCode<C>];
    int count;
};

template <class C> const C* findFirstCode(Run<C> text, ichar code, Case which) {
    Code<C> needle(code);
    return needle.count ? findFirst(text, needle.run(), which) : nullptr;
}
template <class C> const C* findLastCode(Run<C> text, ichar code, Case which) {
    Code<C> needle(code);
    return needle.count ? findLast(text, needle.run(), which) : nullptr;
}
template <class C> const C* findUnit(Run<C> text, C unit) {
    if (!unit || text.empty()) return nullptr;
    if constexpr (sizeof(C) == 1) return static_cast<const C*>(std::memchr(text.begin, byte(unit), text.size()));
    for (const C* at = text.begin; at < text.end; ++at)
        if (*at == unit) return at;
    return nullptr;
}

} // namespace

template <class C> const C* ZTextSearchT<C>::strchr(const C* text, ichar code) {
    return findFirstCode(runOf(text), code, Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strichr(const C* text, ichar code) {
    return findFirstCode(runOf(text), code, Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strrchr(const C* text, ichar code) {
    return findLastCode(runOf(text), code, Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strirchr(const C* text, ichar code) {
    return findLastCode(runOf(text), code, Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strnchr(const C* text, int n, ichar code) {
    return findFirstCode(runOf(text, n), code, Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strnichr(const C* text, int n, ichar code) {
    return findFirstCode(runOf(text, n), code, Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strnrchr(const C* text, int n, ichar code) {
    return findLastCode(runOf(text, n), code, Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strnirchr(const C* text, int n, ichar code) {
    return findLastCode(runOf(text, n), code, Case::Ignored);
}

template <class C> const C* ZTextSearchT<C>::strbrk(const C* text, const C* set) {
    return findFirstOf(runOf(text), runOf(set), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::stribrk(const C* text, const C* set) {
    return findFirstOf(runOf(text), runOf(set), Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strrbrk(const C* text, const C* set) {
    return findLastOf(runOf(text), runOf(set), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strirbrk(const C* text, const C* set) {
    return findLastOf(runOf(text), runOf(set), Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strnbrk(const C* text, int n, const C* set) {
    return findFirstOf(runOf(text, n), runOf(set), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strnibrk(const C* text, int n, const C* set) {
    return findFirstOf(runOf(text, n), runOf(set), Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strnrbrk(const C* text, int n, const C* set) {
    return findLastOf(runOf(text, n), runOf(set), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strnirbrk(const C* text, int n, const C* set) {
    return findLastOf(runOf(text, n), runOf(set), Case::Ignored);
}

template <class C> const C* ZTextSearchT<C>::strstr(const C* text, const C* needle) {
    return findFirst(runOf(text), runOf(needle), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::stristr(const C* text, const C* needle) {
    return findFirst(runOf(text), runOf(needle), Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strrstr(const C* text, const C* needle) {
    return findLast(runOf(text), runOf(needle), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strirstr(const C* text, const C* needle) {
    return findLast(runOf(text), runOf(needle), Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strnstr(const C* text, int n, const C* needle) {
    return findFirst(runOf(text, n), runOf(needle), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strnistr(const C* text, int n, const C* needle) {
    return findFirst(runOf(text, n), runOf(needle), Case::Ignored);
}
template <class C> const C* ZTextSearchT<C>::strnrstr(const C* text, int n, const C* needle) {
    return findLast(runOf(text, n), runOf(needle), Case::Exact);
}
template <class C> const C* ZTextSearchT<C>::strnirstr(const C* text, int n, const C* needle) {
    return findLast(runOf(text, n), runOf(needle), Case::Ignored);
}

template <class C> const C* ZTextSearchT<C>::strpos(const C* text, C unit) { return findUnit(runOf(text), unit); }
template <class C> const C* ZTextSearchT<C>::strnpos(const C* text, int n, C unit) {
    return findUnit(runOf(text, n), unit);
}

template <class C> int ZTextSearchT<C>::strcomp(const C* a, const C* b) {
    return orderTexts(runOf(a), runOf(b), Case::Exact);
}
template <class C> int ZTextSearchT<C>::strncomp(const C* a, const C* b, int n) {
    return orderTexts(runOf(a, n), runOf(b, n), Case::Exact);
}
template <class C> int ZTextSearchT<C>::stricomp(const C* a, const C* b) {
    return orderTexts(runOf(a), runOf(b), Case::Ignored);
}
template <class C> int ZTextSearchT<C>::strnicomp(const C* a, const C* b, int n) {
    return orderTexts(runOf(a, n), runOf(b, n), Case::Ignored);
}

template <class C> bool ZTextSearchT<C>::match(const C* text, const C* pattern) {
    return matchPattern(runOf(text), runOf(pattern), Case::Exact);
}
template <class C> bool ZTextSearchT<C>::nmatch(const C* text, int n, const C* pattern, int patternLength) {
    return matchPattern(runOf(text, n), runOf(pattern, patternLength), Case::Exact);
}
template <class C> bool ZTextSearchT<C>::imatch(const C* text, const C* pattern) {
    return matchPattern(runOf(text), runOf(pattern), Case::Ignored);
}
template <class C> bool ZTextSearchT<C>::nimatch(const C* text, int n, const C* pattern, int patternLength) {
    return matchPattern(runOf(text, n), runOf(pattern, patternLength), Case::Ignored);
}

template <class C>
int ZTextSearchT<C>::editDistance(const C* a, int lengthA, const C* b, int lengthB, int gap, int change) {
    return distanceOf(runOf(a, lengthA), runOf(b, lengthB), gap, change);
}
template <class C>
bool ZTextSearchT<C>::shorterEditDistance(const C* a, int lengthA, const C* b, int lengthB, int gap, int change,
                                          int limit) {
    return distanceBelow(runOf(a, lengthA), runOf(b, lengthB), gap, change, limit);
}

template class ZTextSearchT<char>;
template class ZTextSearchT<wchar>;
template class ZTextSearchT<ichar>;
