#include "text/ZString.h"

#include "text/distance.h"
#include "text/search.h"
#include "text/subsequence.h"

#include <cstring>

using namespace orv;
using detail::Case;
using detail::CodeText;
using detail::Run;
using detail::TextIn;
using detail::withText;

static inline Case caseOf(bool ignored) { return ignored ? Case::Ignored : Case::Exact; }

/// Calls `f` with both texts as runs of the first one's width; `failed` where there is no memory for that.
template <class R, class F>
static R withBoth(const detail::TextView& text, const detail::TextView& other, R failed, F f) {
    return withText(text, [&](auto* units, int length) -> R {
        using C = std::remove_cv_t<std::remove_pointer_t<decltype(units)>>;
        TextIn<C> converted(other);
        if (converted.failed) return failed;
        return f(Run<C>{units, units + length}, Run<C>{converted.text, converted.text + converted.length});
    });
}

int ZString::find(const View& text, int from, bool last, bool ignoreCase) const {
    return withBoth(view(), text, -1, [&](auto mine, auto needle) {
        if (from > 0 && size_t(from) > mine.size()) return -1;
        auto start = mine.begin;
        if (from > 0) mine.begin += from;
        auto hit = last ? findLast(mine, needle, caseOf(ignoreCase)) : findFirst(mine, needle, caseOf(ignoreCase));
        return hit || needle.empty() ? int(hit - start) : -1;
    });
}

int ZString::findCode(ichar code, int from, bool last, bool ignoreCase) const {
    return code && detail::validCode(code) ? find(CodeText(code, view().width), from, last, ignoreCase) : -1;
}

bool ZString::startsWith(const View& text, bool ignoreCase) const {
    return withBoth(view(), text, false, [&](auto mine, auto head) {
        if (!ignoreCase)
            return head.size() <= mine.size() &&
                   (head.empty() || !std::memcmp(mine.begin, head.begin, head.size() * sizeof *head.begin));
        while (head.begin < head.end)
            if (mine.empty() ||
                readCode(mine.begin, mine.end, Case::Ignored) != readCode(head.begin, head.end, Case::Ignored))
                return false;
        return true;
    });
}

bool ZString::endsWith(const View& text, bool ignoreCase) const {
    return withBoth(view(), text, false, [&](auto mine, auto tail) {
        if (!ignoreCase)
            return tail.size() <= mine.size() &&
                   (tail.empty() || !std::memcmp(mine.end - tail.size(), tail.begin, tail.size() * sizeof *tail.begin));
        while (tail.begin < tail.end)
            if (mine.empty() || readCodeBefore(mine.end, mine.begin, Case::Ignored) !=
                                    readCodeBefore(tail.end, tail.begin, Case::Ignored))
                return false;
        return true;
    });
}

bool ZString::matches(const View& pattern, bool ignoreCase) const {
    return withBoth(view(), pattern, false,
                    [&](auto mine, auto run) { return matchPattern(mine, run, caseOf(ignoreCase)); });
}

int ZString::distance(const ZString& other, int gap, int change) const {
    return withBoth(view(), other.view(), -1, [&](auto a, auto b) { return distanceOf(a, b, gap, change); });
}

bool ZString::shorterDistance(const ZString& other, int limit, int gap, int change) const {
    return withBoth(view(), other.view(), false,
                    [&](auto a, auto b) { return distanceBelow(a, b, gap, change, limit); });
}

int ZString::longestSubsequence(const ZString& other) const {
    TextIn<ichar> a(view()), b(other.view());
    if (a.failed || b.failed) return -1;
    auto codes = [](const TextIn<ichar>& text) { return reinterpret_cast<const int*>(text.text); };
    return int(detail::longestSubsequence(codes(a), a.length, codes(b), b.length));
}
