#include "text/ZString.h"

#include "core/ZError.h"

#include <cstring>

using namespace orv;
using detail::TextView;
using detail::withText;

bool ZString::append(const View& text) {
    if (text.length < 1) return true;
    if (!record && !index) return set(text);
    ZString held; // keeps the source, where that is the string itself
    if (record && text.text >= record->text() &&
        text.text <= record->units<char>() + size_t(record->length) * size_t(detail::unitBytes(record->type)))
        held = *this;
    int width = record ? record->type : internalView().width;
    auto convert = [&](void* out, size_t room) -> size_t {
        return withText(text, [&](auto* from, int length) {
            if (width == Char) return detail::transcode(static_cast<char*>(out), room, from, size_t(length));
            if (width == WChar) return detail::transcode(static_cast<wchar*>(out), room, from, size_t(length));
            return detail::transcode(static_cast<ichar*>(out), room, from, size_t(length));
        });
    };
    size_t added = width == text.width ? size_t(text.length) : convert(nullptr, 0);
    int before = length();
    large need = large(before) + large(added);
    if (need > maxCapacity || !own(need < size() ? need : grownCapacity(need))) return false;
    size_t unit = size_t(detail::unitBytes(width));
    char* out = record->units<char>() + size_t(before) * unit;
    if (width == text.width)
        std::memcpy(out, text.text, added * unit);
    else
        convert(out, added);
    setEnd(record, int(need));
    return true;
}

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
    const char* from = static_cast<const char*>(text.text) + size_t(pos) * size_t(detail::unitBytes(text.width));
    return ZString(View(from, n < left ? n : left, text.width));
}
