#include "text/ZString.h"

#include "core/ZArrayT.h"
#include "core/ZError.h"
#include "text/search.h"

#include <cstring>

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
    const char* from = text;
    while (from < end) {
        auto stop = static_cast<const char*>(std::memchr(from, separator, size_t(end - from)));
        if (!part(from, stop ? stop : end)) return false;
        if (!stop) break;
        from = stop + 1;
    }
    return true;
}

/// Collects parts; without memory it raises a failure and leaves none.
class Parts {
public:
    explicit Parts(bool keepEmpty) : keepEmpty(keepEmpty) {}
    template <class C> bool operator()(const C* from, const C* to) {
        if (from == to) return !keepEmpty || list.append(ZString());
        ZString part;
        return part.set(TextView(from, int(to - from))) && list.append(std::move(part));
    }
    ZArrayT<ZString> result(bool whole) {
        if (!whole) {
            list.clear();
            ZError::fail();
        }
        return std::move(list);
    }

private:
    ZArrayT<ZString> list;
    bool keepEmpty;
};

ZArrayT<ZString> splitBySet(const TextView& text, const CodeSet& set, bool keepEmpty) {
    Parts parts(keepEmpty);
    return parts.result(
        withText(text, [&](auto* units, int length) { return eachPart(units, units + length, set, parts); }));
}

} // namespace

ZArrayT<ZString> ZString::split() const {
    Parts parts(false);
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
        Parts parts(keepEmpty);
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
    ZString others;
    for (int i = 0; i < codes.length; ++i)
        if (codes.text[i] < 128)
            set.ascii[codes.text[i] >> 6] |= uint64_t(1) << (codes.text[i] & 63);
        else
            set.otherCount = codes.length;
    set.others = codes.text;
    return splitBySet(view(), set, keepEmpty);
}

ZArrayT<ZString> ZString::splitString(const ZString& delimiter, bool keepEmpty) const {
    Parts parts(keepEmpty);
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
