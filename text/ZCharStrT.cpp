#include "text/ZCharStrT.h"

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "text/ZChar.h"
#include "text/ZStringArg.h"
#include "text/format.h"
#include "text/number.h"
#include "text/search.h"
#include "toolkit/text.h"

#include <algorithm>
#include <cstring>
#include <limits>

using namespace orv::detail;

namespace {

constexpr large longestText = std::numeric_limits<int>::max() - 2;

template <class C> void copyUnits(C* to, const C* from, int n) {
    if (n > 0) std::memmove(to, from, size_t(n) * sizeof(C));
}

/// A new text of this width; null for an empty one and without memory.
template <class C, class From> C* duplicate(Run<From> text) {
    if (text.empty()) return nullptr;
    if constexpr (sizeof(C) == sizeof(From)) return ZTextCopyT<C>::strndup(text.begin, int(text.size()));
    size_t units = transcode<C>(nullptr, 0, text.begin, text.size());
    C* made = units > size_t(longestText) ? nullptr : ZTextCopyT<C>::allocstr(int(units));
    if (!made) return nullptr;
    transcode(made, units, text.begin, text.size());
    made[units] = 0;
    return made;
}

/// The units that part a text.
template <class C> class Separators {
public:
    explicit Separators(Run<C> units) : units(units) {
        for (const C* at = units.begin; at < units.end; ++at)
            if (auto value = ichar(std::make_unsigned_t<C>(*at)); value < 256)
                low[value >> 6] |= uint64_t(1) << (value & 63);
    }
    bool has(C unit) const {
        auto value = ichar(std::make_unsigned_t<C>(unit));
        if (value < 256) return low[value >> 6] >> (value & 63) & 1;
        return std::find(units.begin, units.end, unit) != units.end;
    }

private:
    Run<C> units;
    uint64_t low[4] = {};
};

/// Calls `add(part)` for each part of a text, until it answers false.
template <class C, class Separates, class Add>
void eachPart(Run<C> text, Separates&& separates, bool keepEmpty, Add&& add) {
    const C* from = text.begin;
    for (const C* at = from; at < text.end; ++at) {
        if (!separates(*at)) continue;
        if ((at > from || keepEmpty) && !add(Run<C>{from, at})) return;
        from = at + 1;
    }
    if (from < text.end) add(Run<C>{from, text.end});
}

template <class C, class Separates> ZArrayT<ZCharStrT<C>> partsOf(Run<C> text, Separates&& separates, bool keepEmpty) {
    ZArrayT<ZCharStrT<C>> parts;
    ZFailGuard guard;
    bool whole = true;
    eachPart(text, separates, keepEmpty, [&](Run<C> part) {
        ZCharStrT<C> made(part.begin, int(part.size()));
        return whole = !guard.rose() && parts.append(std::move(made));
    });
    if (whole) return parts;
    if (!guard.rose()) ZError::fail();
    return {};
}

template <class C> bool isText(Run<C> text, const char* ascii) {
    for (const C* at = text.begin; at < text.end; ++at, ++ascii)
        if (!*ascii || *at != C(*ascii)) return false;
    return !*ascii;
}

} // namespace

// Lifetime and memory

template <class C> ZCharStrT<C>::ZCharStrT(int n) {
    if (n > 0 && !own(n, true)) ZError::fail();
}
template <class C> ZCharStrT<C>::ZCharStrT(const C* text, int n) {
    if (!set(text, n)) ZError::fail();
}
template <class C> ZCharStrT<C>::ZCharStrT(const ZString& text) {
    if (!assign(text)) ZError::fail();
}
template <class C> ZCharStrT<C>::ZCharStrT(const ZSelector& name) {
    if (!setSelector(name)) ZError::fail();
}

template <class C> int ZCharStrT<C>::count() const {
    return sizeof(C) == 4 ? length() : int(countCodes(block, size_t(length())));
}

template <class C> bool ZCharStrT<C>::own(large room, bool exact) {
    if (room > longestText) return false;
    bool shared = !isDetached();
    if (!exact && room < size()) room = size();
    if (!shared && room == size()) return true;
    int kept = int(std::min(large(length()), room));
    size_t bytes = (size_t(room) + 1) * sizeof(C);
    void* made = shared || !block ? __zalloc(bytes)
                 : exact          ? toolkit::reallocBlock(block, bytes)
                                  : toolkit::growBlock(block, bytes);
    if (!made) return false;
    if (shared) {
        copyUnits(static_cast<C*>(made), block, kept);
        zfree(block);
    }
    block = static_cast<C*>(made);
    setEnd(kept);
    return true;
}
template <class C> void ZCharStrT<C>::setEnd(int length) {
    block[length] = 0;
    setKnown(length);
}
template <class C> bool ZCharStrT<C>::takeNew(C* made) {
    if (!made) return false;
    zfree(std::exchange(block, made));
    setKnown(ZTextCopyT<C>::length(block));
    return true;
}
template <class C> bool ZCharStrT<C>::takeWhole(C* made, bool wanted) {
    if (!made) clear();
    return takeNew(made) || !wanted;
}

template <class C> bool ZCharStrT<C>::detach() { return isDetached() || own(size(), true); }
template <class C> C* ZCharStrT<C>::data() {
    if (!block || !detach()) return nullptr;
    // From here on the length is what the caller makes of it.
    toolkit::blockHead(block)->elements = 0;
    return block;
}
template <class C> ZChar ZCharStrT<C>::unicode(int position) const requires(sizeof(C) == 4) {
    return ZChar(at(position));
}

// Whole assignment

template <class C> bool ZCharStrT<C>::assign(const ZCharStrT& other) {
    zfree(std::exchange(block, retain(other.block)));
    return true;
}
template <class C> bool ZCharStrT<C>::assign(const ZString& text) {
    return withText(text.view(), [&](auto* units, int n) { return n ? set(units, n) : set(noText, 0); });
}
template <class C> bool ZCharStrT<C>::set(const char* text, int n) {
    auto run = runOf(text, n);
    return takeWhole(duplicate<C>(run), !run.empty());
}
template <class C> bool ZCharStrT<C>::set(const wchar* text, int n) {
    auto run = runOf(text, n);
    return takeWhole(duplicate<C>(run), !run.empty());
}
template <class C> bool ZCharStrT<C>::set(const ichar* text, int n) {
    auto run = runOf(text, n);
    return takeWhole(duplicate<C>(run), !run.empty());
}
template <class C> bool ZCharStrT<C>::setSelector(const ZSelector& name) { return set(name.string(), name.length()); }

// Change

template <class C> bool ZCharStrT<C>::set(int position, C unit) {
    int n = length();
    if (position < 0 || position >= n || !detach()) return false;
    block[position] = unit;
    if (!unit) n = position;
    setKnown(n);
    return true;
}
template <class C> bool ZCharStrT<C>::set(int position, const ZCharStrT& text) {
    // A text put into itself is shared by this copy, so that `detach` leaves it as it is.
    ZCharStrT kept(text);
    int n = length();
    if (position < 0 || position >= n || !detach()) return false;
    copyUnits(block + position, kept.block, std::min(kept.length(), n - position));
    setKnown(n);
    return true;
}

template <class C> bool ZCharStrT<C>::appendUnits(const C* units, int n) {
    if (n < 1) return true;
    int had = length();
    bool inside = block && units >= block && units <= block + had;
    ptrdiff_t offset = inside ? units - block : 0;
    if (!own(large(had) + n, false)) return false;
    copyUnits(block + had, inside ? block + offset : units, n);
    setEnd(had + n);
    return true;
}
template <class C> bool ZCharStrT<C>::append(const ZString& text) {
    if (text.isEmpty()) return true;
    TextIn<C> units(text.view());
    return !units.failed && appendUnits(units.text, int(textLength(units.text, size_t(units.length))));
}
template <class C> bool ZCharStrT<C>::append(const ZSelector& name) {
    TextIn<C> units(TextView(name.string(), name.length()));
    return !units.failed && appendUnits(units.text, units.length);
}
template <class C> bool ZCharStrT<C>::append(const C* text, int n) {
    size_t units = runOf(text, n).size();
    return units <= size_t(longestText) && appendUnits(text, int(units));
}
template <class C> bool ZCharStrT<C>::appendn(int n, ...) {
    if (n < 1) return true;
    const C *few[16], **texts = few;
    void* many = n >= 16 ? __zalloc((size_t(n) + 1) * sizeof(C*)) : nullptr;
    if (n >= 16) texts = static_cast<const C**>(many);
    if (!texts) return false;
    texts[0] = block;
    bool some = false;
    va_list list;
    va_start(list, n);
    for (int i = 1; i <= n; ++i) {
        texts[i] = va_arg(list, const C*);
        some |= texts[i] && *texts[i];
    }
    va_end(list);
    bool done = !some || takeNew(this->joinnstrtab(n + 1, texts));
    zfree(many);
    return done;
}
template <class C> bool ZCharStrT<C>::insertUnits(int position, const C* units, int n) {
    if (n < 1) return true;
    int had = length();
    position = std::clamp(position, 0, had);
    if (!own(large(had) + n, false)) return false;
    copyUnits(block + position + n, block + position, had - position);
    copyUnits(block + position, units, n);
    setEnd(had + n);
    return true;
}
template <class C> bool ZCharStrT<C>::insert(int position, const ZCharStrT& text) {
    ZCharStrT kept(text);
    return insertUnits(position, kept.block, kept.length());
}
template <class C> bool ZCharStrT<C>::insert(int position, C unit) {
    return insertUnits(position, &unit, unit ? 1 : 0);
}

template <class C> bool ZCharStrT<C>::remove(int position, int n) {
    int had = length();
    large stop = std::min(large(had), large(position) + n);
    position = std::max(position, 0);
    if (stop <= position || !detach()) return false;
    copyUnits(block + position, block + stop, had - int(stop));
    setEnd(had - int(stop - position));
    return true;
}
template <class C> int ZCharStrT<C>::replace(C unit, C other) {
    int n = length(), count = int(std::count(block, block + n, unit));
    if (!unit || !count || unit == other) return unit ? count : 0;
    if (!detach()) return -1;
    std::replace(block, block + n, unit, other);
    setKnown(other ? n : ZTextCopyT<C>::length(block));
    return count;
}

// Room

template <class C> bool ZCharStrT<C>::expand(int n) {
    return n < 1 || large(length()) + n <= size() || own(large(length()) + n, false);
}
template <class C> bool ZCharStrT<C>::resize(int n) {
    if (n < 0) return false;
    if (n == size()) return true;
    if (n) return own(n, true);
    clear();
    return true;
}
template <class C> bool ZCharStrT<C>::setLength(int n) {
    int had = length();
    n = std::max(n, 0);
    if (n == had) return true;
    if (!own(n, false)) return false;
    std::fill(block + std::min(had, n), block + n, C(' '));
    setEnd(n);
    return true;
}
template <class C> bool ZCharStrT<C>::truncate(int n) { return n >= length() || resize(std::max(n, 0)); }
template <class C> bool ZCharStrT<C>::trim() { return resize(length()); }

template <class C> ZCharStrT<C> ZCharStrT<C>::extract(int position, int n) const {
    large stop = std::min(large(length()), large(position) + n);
    position = std::max(position, 0);
    return stop > position ? ZCharStrT(block + position, int(stop - position)) : ZCharStrT();
}

// Search and parts

template <class C> int ZCharStrT<C>::rpos(C unit) const {
    if (!unit) return -1;
    int position = length() - 1;
    while (position >= 0 && block[position] != unit) --position;
    return position;
}
template <class C> uint ZCharStrT<C>::hashKey() const { return hashText(TextView(block, length())); }

template <class C> ZArrayT<ZCharStrT<C>> ZCharStrT<C>::split() const {
    return partsOf(
        Run<C>{block, block + length()}, [](C unit) { return ichar(std::make_unsigned_t<C>(unit)) <= 32; }, false);
}
template <class C> ZArrayT<ZCharStrT<C>> ZCharStrT<C>::split(const ZCharStrT& separators, bool keepEmpty) const {
    Separators<C> set({separators.block, separators.block + separators.length()});
    return partsOf(
        Run<C>{block, block + length()}, [&](C unit) { return set.has(unit); }, keepEmpty);
}
template <class C>
int ZCharStrT<C>::split(const C** parts, int* lengths, int maximum, const C* text, int length, C separator,
                        bool keepEmpty) {
    int count = 0;
    eachPart(
        runOf(text, length), [&](C unit) { return unit == separator; }, keepEmpty,
        [&](Run<C> part) {
            if (count < maximum) {
                parts[count] = part.begin;
                lengths[count] = int(part.size());
            }
            ++count;
            return true;
        });
    return count;
}

// Values as text and back

template <class C> bool ZCharStrT<C>::setReal(double value, int width, int precision, int decimal) {
    return setRealNumber(value, width, orv::realPrecision(value, precision), decimal);
}
template <class C> bool ZCharStrT<C>::setBool(bool value) { return set(value ? "yes" : "no", -1); }
template <class C> bool ZCharStrT<C>::setNumber(uint value, int format) {
    int n = this->numeral(nullptr, 0, value, format);
    if (n < 1) return false;
    C* made = this->allocstr(n);
    if (made) this->numeral(made, n + 1, value, format);
    return takeNew(made);
}
template <class C> bool ZCharStrT<C>::toBool(bool& out) const {
    Run<C> text = runOf(block);
    bool yes = isText(text, "yes") || isText(text, "true");
    if (!yes && !isText(text, "no") && !isText(text, "false")) return false;
    out = yes;
    return true;
}
template <class C> bool ZCharStrT<C>::toLong(long& out, int radix) const {
    return orv::strtonumber(static_cast<const C*>(block), -1, out, radix);
}
template <class C> bool ZCharStrT<C>::toULong(unsigned long& out, int radix) const {
    return orv::strtonumber(static_cast<const C*>(block), -1, out, radix);
}

template <class C> bool ZCharStrT<C>::printf(const C* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    bool done = aprintf(format, &arguments);
    va_end(arguments.list);
    return done;
}
template <class C> bool ZCharStrT<C>::aprintf(const C* format, var_arg* arguments) {
    int n = orv::aformat<C>(nullptr, 0, format, arguments);
    if (n < 1) return false;
    // The arguments may be this text, so it stays until the new one is whole.
    C* made = this->allocstr(n);
    if (made) orv::aformat(made, n + 1, format, arguments);
    return takeNew(made);
}
template <class C> bool ZCharStrT<C>::execRes(const char* types, ...) {
    constexpr int most = 9; // a placeholder has one digit
    ZStringArg values[most];
    ZFailGuard guard;
    int count = 0;
    va_list list;
    va_start(list, types);
    for (; types && types[count] && count < most; ++count) {
        switch (types[count]) {
        case 'i':
            values[count] = va_arg(list, int);
            break;
        case 'r':
            values[count] = va_arg(list, double);
            break;
        case 's':
            values[count] = ZString(va_arg(list, const C*));
            break;
        default:
            (void)va_arg(list, const void*);
        }
    }
    va_end(list);
    if (!guard.rose()) return execRes(values, count);
    guard.forget();
    return false;
}
template <class C> bool ZCharStrT<C>::execRes(const ZStringArg* values, int count) {
    ZFailGuard guard;
    ZString run = string();
    bool done = !guard.rose();
    if (!done)
        guard.forget();
    else if constexpr (sizeof(C) == 1)
        done = run.execResAArg(values, count);
    else if constexpr (sizeof(C) == 2)
        done = run.execResWArg(values, count);
    else
        done = run.execResIArg(values, count);
    if (!done) return false;
    if (!run.isEmpty())
        return takeNew(duplicate<C>(
            Run<C>{static_cast<const C*>(run.view().text), static_cast<const C*>(run.view().text) + run.length()}));
    clear();
    return true;
}

// Case and other types

template <class C> bool ZCharStrT<C>::mapCase(bool toUpper) {
    int n = length();
    if (asciiPrefix(block, size_t(n)) == size_t(n)) {
        if (!n) return true;
        if (!detach()) return false;
        mapAsciiCase(block, n, toUpper);
        setKnown(n);
        return true;
    }
    auto kind = toUpper ? toolkit::TextCase::Upper : toolkit::TextCase::Lower;
    TextIn<wchar> units(TextView(block, n));
    if (units.failed) return false;
    size_t needed = toolkit::mapCase(kind, nullptr, 0, units.text, size_t(units.length));
    auto mapped = needed ? static_cast<wchar*>(__zalloc(needed * sizeof(wchar))) : nullptr;
    if (!mapped) return false;
    bool done = toolkit::mapCase(kind, mapped, needed, units.text, size_t(units.length)) == needed &&
                takeNew(duplicate<C>(Run<wchar>{mapped, mapped + needed}));
    zfree(mapped);
    return done;
}
template <class C> bool ZCharStrT<C>::lower() { return mapCase(false); }
template <class C> bool ZCharStrT<C>::upper() { return mapCase(true); }

template <class C> ZString ZCharStrT<C>::string() const { return ZString(text(), length()); }
template <class C> ZSelector ZCharStrT<C>::toSelector() const {
    TextIn<char> bytes(TextView(block, length()));
    return bytes.failed ? ZSelector() : ZSelector(bytes.text, bytes.length);
}

template class ZCharStrT<char>;
template class ZCharStrT<wchar>;
template class ZCharStrT<ichar>;
