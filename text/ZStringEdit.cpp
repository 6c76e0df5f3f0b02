#include "text/ZString.h"

#include "core/ZSelector.h"
#include "core/construct.h"
#include "text/search.h"
#include "toolkit/text.h"

#include <cstring>

using namespace orv;
using detail::CodeText;
using detail::TextIn;
using detail::TextView;
using detail::withText;

namespace {

size_t viewBytes(const TextView& text) { return size_t(text.length) * size_t(detail::unitBytes(text.width)); }

/// Writes a text in a width, and answers its units there; with a null `out` it only measures.
size_t convertTo(int width, void* out, size_t room, const TextView& text) {
    return withText(text, [&](auto* from, int length) -> size_t {
        if (width == text.width) {
            if (out) std::memcpy(out, from, viewBytes(text));
            return size_t(length);
        }
        if (width == detail::charText) return detail::transcode(static_cast<char*>(out), room, from, size_t(length));
        if (width == detail::wcharText) return detail::transcode(static_cast<wchar*>(out), room, from, size_t(length));
        return detail::transcode(static_cast<ichar*>(out), room, from, size_t(length));
    });
}

/// The narrowest width that has a code in one unit, a byte counting as one.
int narrowest(ichar code) {
    return code < 256 ? detail::charText : code < 0x10000 ? detail::wcharText : detail::icharText;
}

} // namespace

bool ZString::splice(int pos, int removed, const View& text) {
    if (!record && !index) return set(text);
    ZString held; // keeps the source, where that is the string itself
    View present = view();
    auto from = static_cast<const char*>(present.text);
    if (index || (text.text >= from && text.text <= from + viewBytes(present))) held = *this;
    int width = present.width, before = present.length;
    size_t added = convertTo(width, nullptr, 0, text);
    large need = large(before) - removed + large(added);
    if (need > maxCapacity || !own(added == 0 || need < size() ? 0 : grownCapacity(need))) return false;
    size_t unit = size_t(detail::unitBytes(width));
    char* at = record->units<char>() + size_t(pos) * unit;
    if (int tail = before - pos - removed; tail > 0 && added != size_t(removed))
        std::memmove(at + added * unit, at + size_t(removed) * unit, size_t(tail) * unit);
    convertTo(width, at, added, text);
    setEnd(record, int(need));
    return true;
}

/// Copies short texts without a call.
static inline void copyUnits(char* to, const char* from, size_t bytes) {
    if (bytes > 16) {
        std::memcpy(to, from, bytes);
    } else if (bytes >= 8) {
        uint64_t head, tail;
        std::memcpy(&head, from, 8);
        std::memcpy(&tail, from + bytes - 8, 8);
        std::memcpy(to, &head, 8);
        std::memcpy(to + bytes - 8, &tail, 8);
    } else
        for (size_t i = 0; i < bytes; ++i) to[i] = from[i];
}

bool ZString::append(const View& text) {
    if (text.length < 1) return true;
    if (!record || record->type != text.width || shared()) return splice(length(), 0, text);
    large need = large(record->length) + text.length;
    if (need >= record->capacity) {
        auto own = record->units<char>();
        auto from = static_cast<const char*>(text.text);
        if (from >= own && from <= own + viewBytes(view())) return splice(record->length, 0, text);
        if (!setCapacity(grownCapacity(need), false)) return false;
    }
    size_t unit = size_t(detail::unitBytes(text.width));
    copyUnits(record->units<char>() + size_t(record->length) * unit, static_cast<const char*>(text.text),
              size_t(text.length) * unit);
    setEnd(record, int(need));
    return true;
}

bool ZString::appendn(int n, ...) {
    constexpr int room = 32;
    const char* few[room];
    if (n < 1) return true;
    auto many = n > room ? static_cast<const char**>(__zalloc(size_t(n) * sizeof(char*))) : few;
    if (!many) return false;
    va_list list;
    va_start(list, n);
    for (int i = 0; i < n; ++i) many[i] = va_arg(list, const char*);
    va_end(list);
    ZFailGuard guard;
    ZString joined(many, n);
    if (many != few) zfree(many);
    if (!guard.rose()) return append(joined);
    guard.forget();
    return false;
}

bool ZString::insert(int pos, const ZString& text) {
    if (text.isEmpty()) return true;
    int present = length();
    return splice(pos < 0 ? 0 : pos < present ? pos : present, 0, text.view());
}

bool ZString::insertCode(int pos, ichar code) {
    if (!code) return true;
    int width = view().width, present = length();
    return splice(pos < 0 ? 0 : pos < present ? pos : present, 0, CodeText(code, width ? width : narrowest(code)));
}

bool ZString::remove(int pos, int n) {
    int present = length();
    large count = n;
    if (pos < 0) {
        count += pos;
        pos = 0;
    }
    if (count > present - pos) count = present - pos;
    return count > 0 && splice(pos, int(count), View());
}

bool ZString::setUnit(int pos, ichar unit) {
    if (pos < 0 || pos >= length() || !own(0)) return false;
    if (record->type == Char)
        record->units<char>()[pos] = char(unit);
    else if (record->type == WChar)
        record->units<wchar>()[pos] = wchar(unit);
    else
        record->units<ichar>()[pos] = unit;
    return true;
}

bool ZString::set(int pos, const ZString& text, int n) {
    if (&text == this) {
        ZString copy(text);
        return set(pos, copy, n);
    }
    int present = length();
    if (pos < 0 || pos >= present) return false;
    int count = n < 0 || n > present - pos ? present - pos : n;
    if (!own(0)) return false;
    return withText(view(), [&](auto* units, int) {
        using C = std::remove_cv_t<std::remove_pointer_t<decltype(units)>>;
        TextIn<C> from(text.view());
        if (from.failed) return false;
        size_t taken = size_t(from.length < count ? from.length : count);
        std::memcpy(record->units<C>() + pos, from.text, taken * sizeof(C));
        return true;
    });
}

bool ZString::fill(const ZChar& character) {
    if (isEmpty()) return true;
    if (!own(0)) return false;
    CodeText room(character.isNull() ? U' ' : character.value(), record->type);
    View text = room;
    size_t unit = viewBytes({nullptr, 1, record->type}), step = viewBytes(text), all = viewBytes(view()), at = 0;
    for (char* out = record->units<char>(); at + step <= all; at += step) std::memcpy(out + at, text.text, step);
    for (int i = int(at / unit); i < record->length; ++i) setUnit(i, ' ');
    return true;
}

// Case

static bool asciiOnly(const TextView& text) {
    return withText(
        text, [](auto* units, int length) { return detail::asciiPrefix(units, size_t(length)) == size_t(length); });
}

bool ZString::mapCase(bool upper) {
    if (isEmpty()) return true;
    if (asciiOnly(view())) {
        if (!own(0)) return false;
        return withText(view(), [&](auto* units, int length) {
            using C = std::remove_cv_t<std::remove_pointer_t<decltype(units)>>;
            detail::mapAsciiCase(record->units<C>(), length, upper);
            return true;
        });
    }
    auto kind = upper ? toolkit::TextCase::Upper : toolkit::TextCase::Lower;
    TextIn<wchar> from(view());
    if (from.failed) return false;
    size_t need = toolkit::mapCase(kind, nullptr, 0, from.text, size_t(from.length));
    if (!need || need > size_t(maxCapacity)) return false;
    ZString made;
    made.record = newRecord(WChar, large(need), int(need));
    if (!made.record || !toolkit::mapCase(kind, made.record->units<wchar>(), need, from.text, size_t(from.length)))
        return false;
    made.record->expand = uint(getExpand());
    if (!made.setType(Type(view().width))) return false;
    swap(made);
    return true;
}

bool ZString::lower() { return mapCase(false); }
bool ZString::upper() { return mapCase(true); }

// Replacing

namespace {

/// A text under replacement: what is done stands at the start of the room, what is to be searched at its end.
template <class C> class ReplaceRoom {
public:
    ReplaceRoom(size_t head) : head(head) {}
    ~ReplaceRoom() { zfree(block); }

    bool start(const C* text, size_t length) {
        if (!grow(length + length / 4 + 64)) return false;
        right = room - length;
        std::memcpy(units() + right, text, length * sizeof(C));
        return true;
    }
    detail::Run<C> rest() { return {units() + right, units() + room}; }
    size_t length() const { return left + (room - right); }
    /// Moves `n` units from the rest to what is done; a negative `n` goes the other way.
    void advance(ptrdiff_t n) {
        if (n < 0) {
            left -= size_t(-n);
            right -= size_t(-n);
            std::memmove(units() + right, units() + left, size_t(-n) * sizeof(C));
        } else {
            std::memmove(units() + left, units() + right, size_t(n) * sizeof(C));
            left += size_t(n);
            right += size_t(n);
        }
    }
    size_t done() const { return left; }
    /// Takes the first `n` units of the rest away, and puts others there.
    bool exchange(size_t n, const C* text, size_t length) {
        right += n;
        if (right - left < length && !grow(room + room / 2 + length)) return false;
        right -= length;
        std::memcpy(units() + right, text, length * sizeof(C));
        return true;
    }
    /// Joins both parts, and gives the block away.
    void* finish() {
        advance(ptrdiff_t(room - right));
        return std::exchange(block, nullptr);
    }

private:
    C* units() { return reinterpret_cast<C*>(static_cast<char*>(block) + head); }
    bool grow(size_t wanted) {
        void* moved = __zrealloc(block, head + (wanted + 2) * sizeof(C));
        if (!moved) return false;
        block = moved;
        std::memmove(units() + right + (wanted - room), units() + right, (room - right) * sizeof(C));
        right += wanted - room;
        room = wanted;
        return true;
    }

    size_t head; ///< bytes in front of the text
    void* block = nullptr;
    size_t room = 0, left = 0, right = 0;
};

/// Replaces until no needle is left, or once where the replacement holds one. -1 without memory, and where replacing
/// makes ever new needles: when the text passes `limit` units, or after 2^26 replacements beyond its length.
template <class C>
int replaceAll(ReplaceRoom<C>& room, size_t length, detail::Run<C> needle, detail::Run<C> other, size_t limit) {
    bool once = detail::findFirst(other, needle, detail::Case::Exact) != nullptr;
    size_t count = 0, steps = length + (size_t(1) << 26);
    for (;;) {
        auto rest = room.rest();
        const C* hit = detail::findFirst(rest, needle, detail::Case::Exact);
        if (!hit) return count < 0x7FFFFFFF ? int(count) : 0x7FFFFFFF;
        room.advance(hit - rest.begin);
        if (++count > steps || room.length() + other.size() > limit + needle.size()) return -1;
        if (!room.exchange(needle.size(), other.begin, other.size())) return -1;
        size_t back = needle.size() - 1;
        room.advance(once ? ptrdiff_t(other.size()) : -ptrdiff_t(back < room.done() ? back : room.done()));
    }
}

} // namespace

int ZString::replace(const View& needle, const View& other) {
    View text = view();
    if (needle.length < 1 || text.length < 1) return 0;
    return withText(text, [&](auto* units, int length) {
        using C = std::remove_cv_t<std::remove_pointer_t<decltype(units)>>;
        TextIn<C> from(needle), to(other);
        if (from.failed || to.failed) return -1;
        detail::Run<C> fromRun{from.text, from.text + from.length}, toRun{to.text, to.text + to.length};
        if (!detail::findFirst<C>({units, units + length}, fromRun, detail::Case::Exact)) return 0;
        size_t limit = (size_t(length) + (size_t(length) / fromRun.size() + 1) * toRun.size()) * 2 + 65536;
        ReplaceRoom<C> room(sizeof(Record));
        if (!room.start(units, size_t(length))) return -1;
        int count =
            replaceAll(room, size_t(length), fromRun, toRun, limit < size_t(maxCapacity) ? limit : size_t(maxCapacity));
        if (count < 0) return -1;
        int result = int(room.length());
        if (!result) {
            clear();
            return count;
        }
        auto made = static_cast<Record*>(room.finish());
        *made = {text.width, uint(getExpand()), result, result};
        setEnd(made, result);
        take(made);
        return count;
    });
}

int ZString::replace(const ZString& needle, const ZString& other) {
    ZString keptNeedle(needle), keptOther(other);
    return replace(keptNeedle.view(), keptOther.view());
}

int ZString::replace(uint code, uint other) {
    int width = view().width;
    return code == other || !detail::validCode(code)
               ? 0
               : replace(View(CodeText(code, width)), View(CodeText(other, width)));
}

// Parts

ZString ZString::operator+(const ZString& other) const {
    if (isEmpty()) return other;
    ZString joined(*this);
    if (joined.append(other)) return joined;
    ZError::fail();
    return ZString();
}

ZString ZString::start(int n) const { return extract(0, n); }

ZString ZString::end(int n) const { return extract(n < 0 ? 0 : n, 0x7FFFFFFF); }

ZString ZString::extract(int pos, int n) const {
    View text = view();
    if (pos < 0) pos = 0;
    if (pos >= text.length || n < 1) return ZString();
    int left = text.length - pos;
    if (record && pos == 0 && n >= left) return *this;
    const char* from = static_cast<const char*>(text.text) + size_t(pos) * size_t(detail::unitBytes(text.width));
    return ZString(View(from, n < left ? n : left, text.width));
}

ZString ZString::words(int n) const {
    if (n < 1) return ZString();
    return withText(view(), [&](auto* units, int length) {
        int at = 0;
        while (at < length && (units[at] != ' ' || --n > 0)) ++at;
        return extract(0, at);
    });
}

ZChar ZString::constAt(int pos) const {
    return withText(view(), [&](auto* units, int length) -> ZChar {
        using C = std::remove_cv_t<std::remove_pointer_t<decltype(units)>>;
        return pos < 0 || pos >= length ? 0 : ichar(std::make_unsigned_t<C>(units[pos]));
    });
}

// Characters and selectors

ZString::ZString(const ZChar& character, Type type) : ZString() {
    int width = type == Internal ? narrowest(character.value()) : type;
    CodeText code(character.value(), width);
    View text = code;
    if (width >= Char && width <= IChar) {
        if (!text.length) return;
        record = newRecord(width, width == IChar ? 1 : 4, text.length);
    }
    if (record)
        convertTo(width, record->text(), size_t(record->capacity), text);
    else
        ZError::fail();
}

static TextView selectorText(const ZSelector& selector) { return {selector.string(), selector.length()}; }

ZString::ZString(const ZSelector& selector) : ZString(selectorText(selector)) {}
bool ZString::setSelector(const ZSelector& selector) { return set(selectorText(selector)); }
bool ZString::append(const ZSelector& selector) { return append(selectorText(selector)); }
ZSelector ZString::toSelector() const {
    TextIn<char> text(view());
    return text.length ? ZSelector(text.text, text.length) : ZSelector();
}

static bool isNamed(const ZSelector& selector, const char* name) {
    TextView text = selectorText(selector);
    return detail::compareText(text, TextView(name, int(std::strlen(name)))) == 0;
}

ZString ZString::convert(const ZSelector& to, const ZSelector& from) const {
    if (isEmpty() || !isNamed(to, "unicode") || !isNamed(from, "shiftjis")) return ZString();
    TextIn<char> bytes(view());
    size_t need = toolkit::fromShiftJis(nullptr, 0, bytes.text, size_t(bytes.length));
    ZString made;
    if (need) made.record = newRecord(WChar, large(need), int(need));
    if (!made.record || !toolkit::fromShiftJis(made.record->units<wchar>(), need, bytes.text, size_t(bytes.length))) {
        ZError::fail();
        return ZString();
    }
    return made;
}
