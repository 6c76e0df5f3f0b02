#include "text/ZString.h"

#include "core/ZArrayT.h"
#include "core/ZError.h"
#include "text/search.h"
#include "toolkit/hash.h"

#include <cstring>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

using namespace orv;
using detail::TextIn;
using detail::TextView;
using detail::withText;

namespace {

/// A set of code points: a bit for each that is ASCII, the others one after the other.
struct CodeSet {
    uint64_t ascii[2] = {};
    const ichar* others = nullptr;
    int otherCount = 0;

    bool hasAscii(ichar code) const { return ascii[code >> 6] >> (code & 63) & 1; }
    bool has(ichar code) const {
        if (code < 128) return hasAscii(code);
        for (int i = 0; i < otherCount; ++i)
            if (others[i] == code) return true;
        return false;
    }
};

/// Calls `part(from, to)` for each part that separators end, and for what is left behind the last one if it isn't
/// empty. `part` answers false to stop.
template <class C, class F> bool eachPart(const C* text, const C* end, const CodeSet& set, F& part) {
    const C* from = text;
    for (const C* at = text; at < end;) {
        const C* stop = at;
        ichar code = ichar(std::make_unsigned_t<C>(*at));
        if (code < 128 || !set.otherCount)
            ++at;
        else
            code = detail::decodeCode(at, end);
        if (code < 128 ? !set.hasAscii(code) : !set.has(code)) continue;
        if (!part(from, stop)) return false;
        from = at;
    }
    return from == end || part(from, end);
}

/// The same for one ASCII character.
template <class F> bool eachPart(const char* text, const char* end, char separator, F& part) {
    const char *from = text, *at = text;
#ifdef __SSE2__
    const __m128i wanted = _mm_set1_epi8(separator);
    for (; end - at >= 16; at += 16) {
        __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        for (int hits = _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, wanted)); hits; hits &= hits - 1) {
            const char* stop = at + __builtin_ctz(unsigned(hits));
            if (!part(from, stop)) return false;
            from = stop + 1;
        }
    }
#endif
    for (; at < end; ++at) {
        if (*at != separator) continue;
        if (!part(from, at)) return false;
        from = at + 1;
    }
    return from == end || part(from, end);
}

/// The bytes of a short text as numbers: equal if the texts are.
struct ShortText {
    static constexpr size_t longest = 16;

    ShortText() = default;
    ShortText(const void* text, size_t bytes) : bytes(bytes) {
        auto p = static_cast<const byte*>(text);
        using namespace toolkit::detail;
        if (bytes >= 8) {
            head = read8(p);
            tail = read8(p + bytes - 8);
        } else if (bytes >= 4)
            head = read4(p) | read4(p + bytes - 4) << 32;
        else
            head = p[0] | uint64_t(p[bytes / 2]) << 8 | uint64_t(p[bytes - 1]) << 16;
    }
    bool operator==(const ShortText& other) const {
        return head == other.head && tail == other.tail && bytes == other.bytes;
    }
    size_t hash() const {
        return toolkit::detail::fold(head ^ toolkit::detail::key1, tail ^ bytes ^ toolkit::detail::key2);
    }

    uint64_t head = 0, tail = 0;
    size_t bytes = 0;
};

/// Collects the parts of a text; without memory it raises a failure and leaves none. Words come again and again in most
/// texts: a short part that equals one of the last few thousand shares its record.
class Parts {
public:
    Parts(const TextView& text, bool keepEmpty) : text(text), keepEmpty(keepEmpty) {
        if (text.length < 256) return;
        int bits = 27 - __builtin_clz(uint(text.length));
        uint slots = 1u << (bits < recentBits ? bits : recentBits);
        recent = static_cast<Recent*>(toolkit::allocZeroedBlock(slots * sizeof(Recent)));
        recentMask = slots - 1;
    }
    ~Parts() { zfree(recent); }
    Parts(const Parts&) = delete;

    template <class C> bool operator()(const C* from, const C* to) {
        size_t bytes = size_t(to - from) * sizeof(C);
        if (ORV_UNLIKELY(list.count() == sample)) reserve(size_t(from - static_cast<const C*>(text.text)));
        if (!bytes) return !keepEmpty || list.append(ZString());
        if (!recent || bytes > ShortText::longest) return add(from, to);
        ShortText part(from, bytes);
        Recent& seen = recent[part.hash() & recentMask];
        if (ORV_LIKELY(seen.text == part)) return list.append(*reinterpret_cast<ZString*>(seen.part));
        if (!add(from, to)) return false;
        seen.text = part;
        std::memcpy(seen.part, std::as_const(list).end() - 1, sizeof(ZString));
        return true;
    }
    ZArrayT<ZString> result(bool whole) {
        if (!whole) {
            list.clear();
            ZError::fail();
        } else if (list.count() > sample && list.capacity() - list.count() > list.count() / 8)
            list.trim();
        return std::move(list);
    }

private:
    struct Recent {
        ShortText text;
        alignas(ZString) byte part[sizeof(ZString)]; ///< the string's bits without a reference: the list has one
    };
    static constexpr int recentBits = 12;
    static constexpr uint sample = 4096; ///< parts after which the rest is estimated

    template <class C> bool add(const C* from, const C* to) {
        ZString part;
        return part.set(TextView(from, int(to - from))) && list.append(std::move(part));
    }
    /// Makes room for all parts of the text, going by those in its first `units`.
    void reserve(size_t units) {
        ularge all = ularge(text.length) * sample / (units ? units : 1);
        list.reserve(uint(all + all / 64));
    }

    TextView text;
    bool keepEmpty;
    uint recentMask = 0;
    Recent* recent = nullptr;
    ZArrayT<ZString> list;
};

ZArrayT<ZString> splitBySet(const TextView& text, const CodeSet& set, bool keepEmpty) {
    Parts parts(text, keepEmpty);
    return parts.result(
        withText(text, [&](auto* units, int length) { return eachPart(units, units + length, set, parts); }));
}

} // namespace

ZArrayT<ZString> ZString::split() const {
    Parts parts(view(), false);
    return parts.result(withText(view(), [&](auto* units, int length) {
        using C = std::remove_cv_t<std::remove_pointer_t<decltype(units)>>;
        auto blank = [](C unit) { return ichar(std::make_unsigned_t<C>(unit)) <= 32; };
        for (const C *at = units, *end = units + length; at < end;) {
            while (at < end && blank(*at)) ++at;
            const C* from = at;
            while (at < end && !blank(*at)) ++at;
            if (!parts(from, at)) return false;
        }
        return true;
    }));
}

ZArrayT<ZString> ZString::split(uint code, bool keepEmpty) const {
    View text = view();
    if (code < 128 && text.width == Char) {
        Parts parts(text, keepEmpty);
        auto units = static_cast<const char*>(text.text);
        return parts.result(eachPart(units, units + text.length, char(code), parts));
    }
    CodeSet set;
    ichar other = code;
    if (code < 128)
        set.ascii[code >> 6] = uint64_t(1) << (code & 63);
    else {
        set.others = &other;
        set.otherCount = 1;
    }
    return splitBySet(text, set, keepEmpty);
}

ZArrayT<ZString> ZString::split(const ZString& separators, bool keepEmpty) const {
    TextIn<ichar> codes(separators.view());
    if (codes.failed) {
        ZError::fail();
        return {};
    }
    CodeSet set;
    for (int i = 0; i < codes.length; ++i)
        if (codes.text[i] < 128)
            set.ascii[codes.text[i] >> 6] |= uint64_t(1) << (codes.text[i] & 63);
        else
            set.otherCount = codes.length;
    set.others = codes.text;
    return splitBySet(view(), set, keepEmpty);
}

ZArrayT<ZString> ZString::splitString(const ZString& delimiter, bool keepEmpty) const {
    Parts parts(view(), keepEmpty);
    return parts.result(withText(view(), [&](auto* units, int length) {
        using C = std::remove_cv_t<std::remove_pointer_t<decltype(units)>>;
        TextIn<C> needle(delimiter.view());
        if (needle.failed) return false;
        const C *from = units, *end = units + length;
        while (needle.length && from < end) {
            const C* hit =
                detail::findFirst<C>({from, end}, {needle.text, needle.text + needle.length}, detail::Case::Exact);
            if (!hit) break;
            if (!parts(from, hit)) return false;
            from = hit + needle.length;
        }
        return from == end || parts(from, end);
    }));
}

ZArrayT<ZString> ZString::extractNames(uint code) const {
    ZArrayT<ZString> parts = split(code, false);
    for (uint i = 0; i < parts.count(); ++i) {
        const ZString& part = std::as_const(parts)[i];
        bool control = withText(part.view(), [](auto* units, int length) {
            for (int k = 0; k < length; ++k)
                if (ichar(std::make_unsigned_t<std::remove_cvref_t<decltype(*units)>>(units[k])) < 32) return true;
            return false;
        });
        if (!control) continue;
        ZString* clean = parts.entry(i);
        for (int k = 0; clean && k < clean->length(); ++k)
            if (clean->constAt(k).value() < 32 && !clean->setUnit(k, ' ')) clean = nullptr;
        if (clean) continue;
        parts.clear();
        ZError::fail();
    }
    return parts;
}

ZString ZString::join(const ZArrayT<ZString>& parts, const ZString& separator) {
    ZString joined;
    for (uint i = 0; i < parts.count(); ++i)
        if ((i && !joined.append(separator)) || !joined.append(parts[i])) {
            joined.clear();
            ZError::fail();
            break;
        }
    return joined;
}
