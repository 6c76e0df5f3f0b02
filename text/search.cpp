#include "text/search.h"

#include "text/transcode.h"
#include "toolkit/memory.h"
#include "toolkit/sanitized.h"
#include "toolkit/text.h"

#include <algorithm>
#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace orv::detail {

namespace {

template <class C> inline ichar unitValue(C unit) { return ichar(std::make_unsigned_t<C>(unit)); }

/// Values of malformed units start here.
constexpr ichar malformedBase = 0x110000;

/// The value of what `decodeCode` read as U+FFFD between `from` and `at`; a malformed part is taken unit by unit.
template <class C> inline ichar malformedValue(const C* from, const C*& at) {
    C units[longestCode<C>];
    int count = encodeCode(units, replacementCode);
    if (at - from == count && std::equal(units, units + count, from)) return replacementCode;
    at = from + 1;
    ichar unit = unitValue(*from);
    return unit > lastCode ? unit : malformedBase + unit;
}

template <Case which, class C> inline ichar read(const C*& at, const C* end) {
    ichar unit = unitValue(*at);
    if (ORV_LIKELY(unit < 0x80)) {
        ++at;
        return which == Case::Ignored ? toolkit::codeFold(unit) : unit;
    }
    const C* from = at;
    ichar code = decodeCode(at, end);
    if (ORV_UNLIKELY(code == replacementCode)) return malformedValue(from, at);
    return which == Case::Ignored ? toolkit::codeFold(code) : code;
}
template <Case which, class C> inline ichar readBefore(const C*& at, const C* begin) {
    const C *end = at, *next = at;
    ichar code = decodeBefore(at, begin);
    if (ORV_LIKELY(code != replacementCode)) return which == Case::Ignored ? toolkit::codeFold(code) : code;
    if ((code = malformedValue(at, next)) == replacementCode) return code;
    at = next = end - 1;
    return malformedValue(at, next);
}

/// Passes what searches compare: a unit, so that malformed texts are found as they are, or a folded code point.
template <class C> inline ichar step(const C*& at, const C* end, Case which) {
    return which == Case::Exact ? unitValue(*at++) : read<Case::Ignored>(at, end);
}
template <class C> inline ichar stepBack(const C*& at, const C* begin, Case which) {
    return which == Case::Exact ? unitValue(*--at) : readBefore<Case::Ignored>(at, begin);
}

/// Where a needle ends that begins at `at`, ignoring case; null if it isn't there. Adds the steps taken.
template <class C> const C* foldedMatch(const C* at, const C* end, Run<C> needle, size_t& steps) {
    for (const C* part = needle.begin; part < needle.end; ++steps) {
        if (at == end || read<Case::Ignored>(at, end) != read<Case::Ignored>(part, needle.end)) return nullptr;
    }
    return at;
}

/// What a unit must be at a place of the needle: one of three values.
template <class C> struct Anchor {
    C values[3];
    size_t distance; ///< units from the start of the match
    template <Case which> bool holds(const C* at) const {
        C unit = at[distance];
        return unit == values[0] || (which == Case::Ignored && (unit == values[1] || unit == values[2]));
    }
};

/// The anchor of an ASCII code ignoring case. The Kelvin sign folds to k and the long s to s: what they begin with in
/// this width is let in.
template <class C> Anchor<C> foldedAnchor(ichar code, size_t distance) {
    ichar upper = toolkit::codeUpper(code), odd = code == 'k' ? 0x212A : code == 's' ? 0x17F : upper;
    C units[longestCode<C>];
    encodeCode(units, odd);
    return {{C(code), C(upper), units[0]}, distance};
}

#ifdef __SSE2__
template <class C> inline __m128i spread(C unit) {
    if constexpr (sizeof(C) == 1) return _mm_set1_epi8(char(unit));
    if constexpr (sizeof(C) == 2) return _mm_set1_epi16(short(unit));
    return _mm_set1_epi32(int(unit));
}
template <class C> inline __m128i equalLanes(__m128i a, __m128i b) {
    if constexpr (sizeof(C) == 1) return _mm_cmpeq_epi8(a, b);
    if constexpr (sizeof(C) == 2) return _mm_cmpeq_epi16(a, b);
    return _mm_cmpeq_epi32(a, b);
}
template <class C, Case which> struct AnchorLanes {
    explicit AnchorLanes(const Anchor<C>& anchor) : distance(anchor.distance) {
        for (int i = 0; i < 3; ++i) values[i] = spread(anchor.values[i]);
    }
    __m128i holds(const C* at) const {
        __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at + distance));
        __m128i same = equalLanes<C>(units, values[0]);
        if (which == Case::Ignored) {
            same = _mm_or_si128(same, equalLanes<C>(units, values[1]));
            same = _mm_or_si128(same, equalLanes<C>(units, values[2]));
        }
        return same;
    }
    __m128i values[3];
    size_t distance;
};
#endif

/// Calls `verify` for each place from `at` where both anchors hold, until it answers true. `second` doesn't lie before
/// `first`. Answers the place, or null.
template <class C, Case which, class F>
const C* scanAnchors(const C* at, const C* end, const Anchor<C>& first, const Anchor<C>& second, F&& verify) {
    size_t reach = second.distance + 1;
    if (size_t(end - at) < reach) return nullptr;
    const C* stop = end - reach + 1;
#ifdef __SSE2__
    constexpr int lanes = 16 / sizeof(C);
    constexpr unsigned oneBitEach = sizeof(C) == 1 ? 0xFFFF : sizeof(C) == 2 ? 0x5555 : 0x1111;
    AnchorLanes<C, which> low(first), high(second);
    for (; stop - at >= lanes; at += lanes) {
        unsigned places = unsigned(_mm_movemask_epi8(_mm_and_si128(low.holds(at), high.holds(at)))) & oneBitEach;
        for (; places; places &= places - 1) {
            const C* place = at + unsigned(__builtin_ctz(places)) / sizeof(C);
            if (verify(place)) return place;
        }
    }
#endif
    for (; at < stop; ++at)
        if (first.template holds<which>(at) && second.template holds<which>(at) && verify(at)) return at;
    return nullptr;
}

/// The units or codes of a needle in the order of reading, and for each the length of the longest border of what stands
/// before it.
class NeedleTable {
public:
    ~NeedleTable() { toolkit::freeBlock(block); }
    template <class C> bool build(Run<C> needle, Case which, bool backwards) {
        if (needle.size() > localRoom) {
            block = static_cast<uint32_t*>(toolkit::allocBlock(needle.size() * 2 * sizeof(uint32_t)));
            if (!block) return false;
        }
        codes = block ? block : local;
        borders = codes + (block ? needle.size() : localRoom);
        const C* at = backwards ? needle.end : needle.begin;
        while (at != (backwards ? needle.begin : needle.end))
            codes[count++] = backwards ? stepBack(at, needle.begin, which) : step(at, needle.end, which);
        borders[0] = 0;
        for (size_t i = 1, border = 0; i < count; ++i) {
            while (border && codes[i] != codes[border]) border = borders[border - 1];
            if (codes[i] == codes[border]) ++border;
            borders[i] = uint32_t(border);
        }
        return true;
    }
    /// Takes the next code of the text; true when the needle has been read whole.
    bool take(ichar code) {
        if (matched == count) matched = borders[matched - 1];
        while (matched && codes[matched] != code) matched = borders[matched - 1];
        if (codes[matched] == code) ++matched;
        return matched == count;
    }
    size_t size() const { return count; }

private:
    static constexpr size_t localRoom = 128;
    uint32_t local[2 * localRoom];
    uint32_t* block = nullptr;
    uint32_t *codes = nullptr, *borders = nullptr;
    size_t count = 0, matched = 0;
};

/// Work that search at single places may waste before the table is made.
inline bool wasteful(size_t steps, size_t scanned) { return steps > 4096 + 8 * scanned; }

template <class C> const C* findByTable(const C* at, Run<C> text, NeedleTable& table, Case which, const C** matchEnd) {
    while (at < text.end) {
        if (!table.take(step(at, text.end, which))) continue;
        *matchEnd = at;
        for (size_t i = table.size(); i > 0; --i) stepBack(at, text.begin, which);
        return at;
    }
    return nullptr;
}

template <class C> const C* findExact(Run<C> text, Run<C> needle, const C** matchEnd) {
    size_t size = needle.size();
    if (size > text.size()) return nullptr;
    // A sanitizer checks all of the text at each call, which makes many searches of one text quadratic.
    if constexpr (sizeof(C) == 1 && !toolkit::sanitized) {
        auto place = static_cast<const C*>(memmem(text.begin, text.size(), needle.begin, size));
        if (place) *matchEnd = place + size;
        return place;
    }
    Anchor<C> first{{needle.begin[0]}, 0}, last{{needle.end[-1]}, size - 1};
    size_t steps = 0;
    bool linear = false, tableFails = false;
    auto verify = [&](const C* place) {
        size_t same = 0;
        while (same < size && place[same] == needle.begin[same]) ++same;
        if (same == size) return true;
        steps += same;
        linear = !tableFails && wasteful(steps, size_t(place - text.begin));
        return linear;
    };
    const C* place = scanAnchors<C, Case::Exact>(text.begin, text.end, first, last, verify);
    if (linear) {
        NeedleTable table;
        if (table.build(needle, Case::Exact, false)) return findByTable(place, text, table, Case::Exact, matchEnd);
        tableFails = true;
        linear = false;
        place = scanAnchors<C, Case::Exact>(place, text.end, first, last, verify);
    }
    if (place) *matchEnd = place + size;
    return place;
}

template <class C> const C* findFolded(Run<C> text, Run<C> needle, const C** matchEnd) {
    const C* part = needle.begin;
    ichar code = read<Case::Ignored>(part, needle.end);
    size_t steps = 0;
    bool linear = false, tableFails = false;
    auto verify = [&](const C* place) {
        *matchEnd = foldedMatch(place, text.end, needle, steps);
        if (*matchEnd) return true;
        linear = !tableFails && wasteful(steps, size_t(place - text.begin));
        return linear;
    };
    auto scan = [&](const C* at) -> const C* {
        if (code < 0x80) {
            // The second anchor is as far as places are fixed: where no code before it can have another length.
            Anchor<C> first = foldedAnchor<C>(code, 0), second = first;
            size_t distance = 0;
            const C* next = part;
            for (ichar before = code; next < needle.end && distance < 255; ++distance) {
                if (sizeof(C) == 1 && (before == 'k' || before == 's')) break;
                before = read<Case::Ignored>(next, needle.end);
                if (before >= 0x80) break;
                second = foldedAnchor<C>(before, distance + 1);
            }
            return scanAnchors<C, Case::Ignored>(at, text.end, first, second, verify);
        }
        while (at < text.end) {
            at += asciiPrefix(at, size_t(text.end - at));
            while (at < text.end && unitValue(*at) >= 0x80) {
                const C* place = at;
                if (read<Case::Ignored>(at, text.end) == code && verify(place)) return place;
            }
        }
        return nullptr;
    };
    const C* place = scan(text.begin);
    if (linear) {
        NeedleTable table;
        if (table.build(needle, Case::Ignored, false)) return findByTable(place, text, table, Case::Ignored, matchEnd);
        tableFails = true;
        linear = false;
        place = scan(place);
    }
    return place;
}

/// The last place without a table, for want of memory.
template <class C> const C* findLastSlowly(Run<C> text, Run<C> needle, Case which, const C** matchEnd) {
    for (const C* end = text.end; end > text.begin; stepBack(end, text.begin, which)) {
        const C *at = end, *part = needle.end;
        bool same = true;
        while (same && part > needle.begin)
            same = at > text.begin && stepBack(at, text.begin, which) == stepBack(part, needle.begin, which);
        if (!same) continue;
        *matchEnd = end;
        return at;
    }
    return nullptr;
}

/// Membership of code points in a set that is given as text.
template <class C, Case which> class CodeSet {
public:
    explicit CodeSet(Run<C> set) : set(set) {
        for (const C* at = set.begin; at < set.end;) {
            ichar code = read<which>(at, set.end);
            if (code < 0x80)
                plain[code >> 6] |= uint64_t(1) << (code & 63);
            else
                wide = true;
        }
    }
    bool has(ichar code) const {
        if (code < 0x80) return plain[code >> 6] >> (code & 63) & 1;
        if (!wide) return false;
        for (const C* at = set.begin; at < set.end;)
            if (read<which>(at, set.end) == code) return true;
        return false;
    }

private:
    Run<C> set;
    uint64_t plain[2] = {0, 0};
    bool wide = false;
};

template <class C, Case which> const C* findFirstIn(Run<C> text, Run<C> codes) {
    CodeSet<C, which> set(codes);
    for (const C* at = text.begin; at < text.end;) {
        const C* place = at;
        if (set.has(read<which>(at, text.end))) return place;
    }
    return nullptr;
}
template <class C, Case which> const C* findLastIn(Run<C> text, Run<C> codes) {
    CodeSet<C, which> set(codes);
    for (const C* at = text.end; at > text.begin;)
        if (set.has(readBefore<which>(at, text.begin))) return at;
    return nullptr;
}

template <class C, Case which> int orderCodes(Run<C> a, Run<C> b) {
    const C *left = a.begin, *right = b.begin;
    while (left < a.end && right < b.end) {
        ichar x = read<which>(left, a.end), y = read<which>(right, b.end);
        if (x != y) return x < y ? -1 : 1;
    }
    return (left < a.end) - (right < b.end);
}

template <class C, Case which> bool matchCodes(Run<C> text, Run<C> pattern) {
    const C *at = text.begin, *part = pattern.begin;
    // Where to go on after a mismatch: behind the newest star, one more code point of the text under it.
    const C *star = nullptr, *under = nullptr;
    while (at < text.end) {
        if (part < pattern.end && *part == C('*')) {
            star = ++part;
            under = at;
            continue;
        }
        if (part < pattern.end) {
            const C *nextPart = part, *next = at;
            bool any = *part == C('?');
            ichar wanted = read<which>(nextPart, pattern.end), code = read<which>(next, text.end);
            if (any || wanted == code) {
                part = nextPart;
                at = next;
                continue;
            }
        }
        if (!star) return false;
        read<which>(under, text.end);
        at = under;
        part = star;
    }
    while (part < pattern.end && *part == C('*')) ++part;
    return part == pattern.end;
}

} // namespace

template <class C> Run<C> runOf(const C* text, int length) {
    return {text, text + (length < 0 ? textLength(text) : textLength(text, size_t(length)))};
}

template <class C> ichar readCode(const C*& at, const C* end, Case which) {
    return which == Case::Exact ? read<Case::Exact>(at, end) : read<Case::Ignored>(at, end);
}
template <class C> ichar readCodeBefore(const C*& at, const C* begin, Case which) {
    return which == Case::Exact ? readBefore<Case::Exact>(at, begin) : readBefore<Case::Ignored>(at, begin);
}

template <class C> const C* findFirst(Run<C> text, Run<C> needle, Case which, const C** matchEnd) {
    const C* ignored;
    if (!matchEnd) matchEnd = &ignored;
    if (needle.empty()) return *matchEnd = text.begin;
    return which == Case::Exact ? findExact(text, needle, matchEnd) : findFolded(text, needle, matchEnd);
}

template <class C> const C* findLast(Run<C> text, Run<C> needle, Case which, const C** matchEnd) {
    const C* ignored;
    if (!matchEnd) matchEnd = &ignored;
    if (needle.empty()) return *matchEnd = text.end;
    NeedleTable table;
    if (!table.build(needle, which, true)) return findLastSlowly(text, needle, which, matchEnd);
    for (const C* at = text.end; at > text.begin;) {
        if (!table.take(stepBack(at, text.begin, which))) continue;
        *matchEnd = at;
        for (size_t i = table.size(); i > 0; --i) step(*matchEnd, text.end, which);
        return at;
    }
    return nullptr;
}

template <class C> const C* findFirstOf(Run<C> text, Run<C> set, Case which) {
    return which == Case::Exact ? findFirstIn<C, Case::Exact>(text, set) : findFirstIn<C, Case::Ignored>(text, set);
}
template <class C> const C* findLastOf(Run<C> text, Run<C> set, Case which) {
    return which == Case::Exact ? findLastIn<C, Case::Exact>(text, set) : findLastIn<C, Case::Ignored>(text, set);
}

template <class C> int orderTexts(Run<C> a, Run<C> b, Case which) {
    if (which == Case::Ignored) return orderCodes<C, Case::Ignored>(a, b);
    size_t common = std::min(a.size(), b.size());
    if constexpr (sizeof(C) == 1) {
        if (int order = common ? std::memcmp(a.begin, b.begin, common) : 0) return order;
    } else {
        for (size_t i = 0; i < common; ++i) {
            ichar x = a.begin[i], y = b.begin[i];
            if (x == y) continue;
            // Surrogates stand for the code points above all other units.
            if (sizeof(C) == 2) {
                if (x >= 0xD800) x = x > 0xDFFF ? x - 0x800 : x + 0x2000;
                if (y >= 0xD800) y = y > 0xDFFF ? y - 0x800 : y + 0x2000;
            }
            return x < y ? -1 : 1;
        }
    }
    return (a.size() > b.size()) - (a.size() < b.size());
}

template <class C> bool matchPattern(Run<C> text, Run<C> pattern, Case which) {
    return which == Case::Exact ? matchCodes<C, Case::Exact>(text, pattern)
                                : matchCodes<C, Case::Ignored>(text, pattern);
}

#define ORV_SEARCH(C)                                                                                                  \
    template Run<C> runOf(const C*, int);                                                                              \
    template const C* findFirst(Run<C>, Run<C>, Case, const C**);                                                      \
    template const C* findLast(Run<C>, Run<C>, Case, const C**);                                                       \
    template const C* findFirstOf(Run<C>, Run<C>, Case);                                                               \
    template const C* findLastOf(Run<C>, Run<C>, Case);                                                                \
    template int orderTexts(Run<C>, Run<C>, Case);                                                                     \
    template bool matchPattern(Run<C>, Run<C>, Case);                                                                  \
    template ichar readCode(const C*&, const C*, Case);                                                                \
    template ichar readCodeBefore(const C*&, const C*, Case);
ORV_SEARCH(char)
ORV_SEARCH(wchar)
ORV_SEARCH(ichar)

} // namespace orv::detail
