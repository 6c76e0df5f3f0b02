#include "text/ZString.h"

#include "core/ZError.h"
#include "core/debugLayout.h"
#include "text/strtable.h"
#include "toolkit/hash.h"
#include "toolkit/text.h"

#include <cstddef>
#include <cstring>

using namespace orv;
using detail::TextIn;
using detail::TextView;
using detail::withText;

// Records

size_t ZString::recordBytes(int type, large capacity) {
    return size_t(capacity + 2) * size_t(detail::unitBytes(type)) + sizeof(Record);
}

ZString::Record* ZString::newRecord(int type, large capacity, int length) {
    if (capacity < length) capacity = length;
    if (type < Char || type > IChar || capacity < 1 || capacity > maxCapacity) return nullptr;
    auto made = static_cast<Record*>(__zalloc(recordBytes(type, capacity)));
    if (!made) return nullptr;
    *made = {type, defaultExpand, length, int(capacity)};
    setEnd(made, length);
    return made;
}

void ZString::setEnd(Record* record, int length) {
    record->length = length;
    withText(View(record->text(), length, record->type), [](auto* units, int end) {
        auto out = const_cast<std::remove_const_t<std::remove_pointer_t<decltype(units)>>*>(units);
        out[end] = out[end + 1] = 0;
    });
}

void ZString::take(Record* wanted) {
    drop();
    record = wanted;
    index = 0;
}

bool ZString::own(large capacity) {
    if (record && !shared()) return capacity <= record->capacity || setCapacity(capacity, false);
    TextView text = view();
    if (!text.width) return true;
    int present = record ? record->capacity : text.length;
    Record* made = newRecord(text.width, capacity > present ? capacity : present, text.length);
    if (!made) return false;
    std::memcpy(made->text(), text.text, size_t(text.length) * size_t(detail::unitBytes(text.width)));
    if (record) made->expand = record->expand;
    take(made);
    return true;
}

bool ZString::setCapacity(large capacity, bool exact) {
    if (capacity > maxCapacity) return false;
    size_t bytes = recordBytes(record->type, capacity), present = memsize(record);
    if (exact ? bytes != present : bytes > present) {
        // The block takes more than was asked for, so that a long chain of appends moves it seldom.
        size_t slack = exact || present < 256 ? bytes : present + present / 2;
        auto moved = static_cast<Record*>(__zrealloc(record, slack > bytes ? slack : bytes));
        if (!moved && slack > bytes) moved = static_cast<Record*>(__zrealloc(record, bytes));
        if (!moved && bytes > present) return false;
        if (moved) record = moved;
    }
    record->capacity = int(capacity);
    return true;
}

large ZString::grownCapacity(large need) const {
    if (record && need < record->capacity) return record->capacity;
    large step = getExpand(), least = need + 4;
    if (step <= 1) return least;
    large stepped = (need + 3 + step) / step * step;
    return stepped > least ? stepped : least;
}

// Lifetime

ZString::ZString(int wanted) : ZString() {
    if (wanted > 0 && strtable::retain(uint(wanted))) index = uint(wanted);
}
ZString::ZString(const char* text, int length) : ZString(View(text, detail::givenLength(text, length))) {}
ZString::ZString(const wchar* text, int length) : ZString(View(text, detail::givenLength(text, length))) {}
ZString::ZString(const ichar* text, int length) : ZString(View(text, detail::givenLength(text, length))) {}
ZString::ZString(const byte* text, int length) : ZString(reinterpret_cast<const char*>(text), length) {}
ZString::ZString(const View& text) : ZString() {
    if (!set(text)) ZError::fail();
}

template <class C> static bool joinTexts(ZString& out, const C* const* texts, int count) {
    large total = 0;
    for (int i = 0; i < count; ++i) total += detail::givenLength(texts[i], -1);
    if (total > 0x7FFFFFE0) return false;
    for (int i = 0; i < count; ++i) {
        if (!out.append(texts[i])) return false;
        if (out.size() < total && !out.resize(int(total))) return false;
    }
    return true;
}
ZString::ZString(const char* const* texts, int count) : ZString() {
    if (joinTexts(*this, texts, count)) return;
    clear();
    ZError::fail();
}
ZString::ZString(const wchar* const* texts, int count) : ZString() {
    if (joinTexts(*this, texts, count)) return;
    clear();
    ZError::fail();
}
ZString::ZString(const ichar* const* texts, int count) : ZString() {
    if (joinTexts(*this, texts, count)) return;
    clear();
    ZError::fail();
}

ZString& ZString::operator=(ZString&& other) noexcept {
    if (this == &other) return *this;
    drop();
    record = other.record;
    index = other.index;
    other.forget();
    return *this;
}

void ZString::swap(ZString& other) noexcept {
    std::swap(record, other.record);
    std::swap(index, other.index);
}

void ZString::shareIndex() {
    if (!strtable::retain(index)) index = 0;
}
void ZString::dropIndex() { strtable::release(index); }
TextView ZString::internalView() const { return index ? strtable::fetch(index) : View(); }

// Form and width

bool ZString::setType(Type wanted) {
    if (wanted == Internal) return internalize() != 0 || isEmpty();
    if (wanted < Char || wanted > IChar) return false;
    if (record ? record->type == wanted : !index) return true;
    TextView text = view();
    if (text.width == wanted) return own(0);
    int unit = detail::unitBytes(text.width), wantedUnit = unitSize(wanted);
    large capacity = record ? record->capacity : text.length;
    if (unit > wantedUnit) capacity = capacity * unit / wantedUnit;
    auto convert = [&](void* out, size_t room) -> size_t {
        return withText(text, [&](auto* from, int length) {
            if (wanted == Char) return detail::transcode(static_cast<char*>(out), room, from, size_t(length));
            if (wanted == WChar) return detail::transcode(static_cast<wchar*>(out), room, from, size_t(length));
            return detail::transcode(static_cast<ichar*>(out), room, from, size_t(length));
        });
    };
    size_t need = convert(nullptr, 0);
    if (need > size_t(maxCapacity)) return false;
    Record* made = newRecord(wanted, capacity < maxCapacity ? capacity : maxCapacity, int(need));
    if (!made) return false;
    convert(made->text(), need);
    if (record) made->expand = record->expand;
    take(made);
    return true;
}

uint ZString::internalize() {
    if (!record) return index;
    uint made = strtable::intern(view());
    if (!made) return 0;
    zfree(record);
    record = nullptr;
    index = made;
    return made;
}

uint ZString::internalized() const {
    if (record) return strtable::intern(view());
    return index && strtable::retain(index) ? index : 0;
}

ZString ZString::getInternal() const {
    ZString made(*this);
    made.internalize();
    return made;
}

bool ZString::detachString() { return own(0); }

bool ZString::isDetached() const { return record ? shared() : index && strtable::refcount(index) > 0; }

void* ZString::data(Type& type) {
    bool detached = detachString();
    type = this->type();
    return detached && record ? record->text() : nullptr;
}
const void* ZString::data(Type& type) const {
    TextView text = view();
    type = Type(text.width);
    return text.text;
}

template <class C> static C* copyText(const TextView& text) {
    if (!text.length) return nullptr;
    return withText(text, [](auto* from, int length) -> C* {
        size_t need = size_t(length);
        if constexpr (sizeof(*from) != sizeof(C)) need = detail::transcode(static_cast<C*>(nullptr), 0, from, need);
        auto out = static_cast<C*>(__zalloc((need + 1) * sizeof(C)));
        if (!out) return nullptr;
        if constexpr (sizeof(*from) == sizeof(C))
            std::memcpy(out, from, need * sizeof(C));
        else
            detail::transcode(out, need, from, size_t(length));
        out[need] = 0;
        return out;
    });
}
char* ZString::astr() const { return copyText<char>(view()); }
wchar* ZString::wstr() const { return copyText<wchar>(view()); }
ichar* ZString::istr() const { return copyText<ichar>(view()); }
void* ZString::str(Type type) const {
    switch (type) {
    case Char:
        return astr();
    case WChar:
        return wstr();
    case IChar:
        return istr();
    default:
        return nullptr;
    }
}

// Size

int ZString::count() const {
    if (record) return detail::countText(view());
    return index ? strtable::count(index) : 0;
}

bool ZString::expand(int n) {
    if (!own(0)) return false;
    return !record || setCapacity(grownCapacity(large(record->length) + n), false);
}

bool ZString::resize(int n) {
    if (n < 0 || (!record && !index)) return true;
    if (n == 0) {
        clear();
        return true;
    }
    if (!record || shared()) {
        // The copy has the wanted size at once.
        TextView text = view();
        int length = text.length < n ? text.length : n;
        Record* made = newRecord(text.width, n, length);
        if (!made) return false;
        std::memcpy(made->text(), text.text, size_t(length) * size_t(detail::unitBytes(text.width)));
        if (record) made->expand = record->expand;
        take(made);
        return true;
    }
    if (record->length > n) setEnd(record, n);
    return setCapacity(n, true);
}

bool ZString::setLength(int n) {
    if (n < 0) n = 0;
    if (!record && !index) {
        if (!n) return true;
        record = newRecord(WChar, n, n);
        if (!record) return false;
        for (int i = 0; i < n; ++i) record->units<wchar>()[i] = u' ';
        return true;
    }
    if (!own(0)) return false;
    int before = record->length;
    if (n > record->capacity && !resize(n)) return false;
    if (n > before) {
        withText(view(), [&](auto* text, int) {
            using C = std::remove_cv_t<std::remove_pointer_t<decltype(text)>>;
            for (int i = before; i < n; ++i) record->units<C>()[i] = C(' ');
        });
    } else {
        size_t unit = size_t(detail::unitBytes(record->type));
        std::memset(record->units<char>() + size_t(n) * unit, 0, size_t(before - n) * unit);
    }
    setEnd(record, n);
    return true;
}

bool ZString::setExpand(int n) {
    if (!record && !index)
        record = newRecord(WChar, 1, 0);
    else if (!own(0))
        return false;
    if (!record) return false;
    record->expand = uint(n < 1 ? 1 : n > 0xFFFF ? 0xFFFF : n);
    return true;
}

bool ZString::truncate(int n) {
    int present = length();
    return resize(n < 0 ? 0 : n < present ? n : present);
}

bool ZString::trim() { return !record || resize(record->length); }

void ZString::clear() { take(nullptr); }

// Whole assignment

bool ZString::assign(const ZString& other) {
    if (this == &other) return true;
    ZString held(other);
    swap(held);
    return true;
}

bool ZString::set(const View& text) {
    if (text.length < 1) {
        clear();
        return true;
    }
    size_t bytes = size_t(text.length) * size_t(detail::unitBytes(text.width));
    bool fits = record && record->type == text.width && record->capacity >= text.length;
    if (fits && !shared()) {
        std::memmove(record->text(), text.text, bytes);
        setEnd(record, text.length);
        return true;
    }
    int capacity = text.length;
    if (fits)
        capacity = record->capacity;
    else if (index)
        if (View present = internalView(); present.width == text.width && present.length > capacity)
            capacity = present.length;
    Record* made = newRecord(text.width, capacity, text.length);
    if (!made) return false;
    std::memcpy(made->text(), text.text, bytes);
    if (record) made->expand = fits ? record->expand : uint(defaultExpand);
    take(made);
    return true;
}

// Comparison

int ZString::compare(const ZString& other) const {
    if (record ? record == other.record : index && index == other.index) return 0;
    return detail::compareText(view(), other.view());
}
int ZString::compstr(const char* text, int length) const {
    return detail::compareText(view(), View(text, detail::givenLength(text, length)));
}
int ZString::compstr(const wchar* text, int length) const {
    return detail::compareText(view(), View(text, detail::givenLength(text, length)));
}
int ZString::compstr(const ichar* text, int length) const {
    return detail::compareText(view(), View(text, detail::givenLength(text, length)));
}

int ZString::compareString(const ZString& other) const {
    View a = view(), b = other.view();
    if (a.width != b.width && a.length && b.length) {
        TextIn<wchar> left(a), right(b);
        if (left.failed || right.failed) return detail::compareText(a, b);
        return toolkit::collate(left.text, size_t(left.length), right.text, size_t(right.length));
    }
    if (!a.width) a.width = b.width;
    return withText(a, [&](auto* left, int length) {
        return toolkit::collate(left, size_t(length), static_cast<decltype(left)>(b.text), size_t(b.length));
    });
}

uint ZString::hashKey() const {
    if (!record) return index;
    TextIn<char> text(view());
    return toolkit::hashData(0, text.text, size_t(text.length), 0xFFFFFFFFu);
}
uint ZString::stringHash() const {
    if (!record) return index;
    size_t bytes = size_t(record->length) * size_t(detail::unitBytes(record->type));
    return toolkit::hashData(0, record->text(), bytes, 0xFFFFFFFFu);
}

namespace {
struct Layout : ZString {
    using ZString::Record;
};
} // namespace

const orv::detail::DebugRow orv_debug_text[] = {
    {"string.type", nullptr, offsetof(Layout::Record, type)},
    {"string.length", nullptr, offsetof(Layout::Record, length)},
    {"string.capacity", nullptr, offsetof(Layout::Record, capacity)},
    {"string.text", nullptr, sizeof(Layout::Record)},
    {},
};
