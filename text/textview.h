#pragma once

#include "core/memory.h"
#include "text/transcode.h"

#include <utility>

namespace orv::detail {

/// The width of a code unit, by the numbers of `ZString::Type`.
enum TextWidth { noText = 0, charText = 1, wcharText = 2, icharText = 3 };

template <class C>
inline constexpr TextWidth widthOf = sizeof(C) == 1   ? charText
                                     : sizeof(C) == 2 ? wcharText
                                                      : icharText;
/// Bytes of a code unit.
inline constexpr int unitBytes(int width) {
    return width == charText ? 1 : width == wcharText ? 2 : width == icharText ? 4 : 0;
}

/// Text of some width that belongs to somebody else; no terminator is promised. Without text the width may be 0.
struct TextView {
    const void* text = nullptr;
    int length = 0; ///< code units
    int width = noText;

    TextView() = default;
    TextView(const void* text, int length, int width) : text(text), length(length), width(width) {}
    template <class C> TextView(const C* text, int length) : text(text), length(length), width(widthOf<C>) {}
};

/// The length of a text given as pointer and length: a negative length goes to the terminator, null has none.
/// What is longer than the largest text is cut.
template <class C> inline int givenLength(const C* text, int length) {
    if (!text) return 0;
    if (length >= 0) return length;
    size_t units = textLength(text);
    return units < 0x7FFFFFF0 ? int(units) : 0x7FFFFFF0;
}

/// Calls `f(text, length)` with the pointer in its own type; for a view without text, as an empty char text.
template <class F> inline decltype(auto) withText(const TextView& view, F&& f) {
    if (view.width == wcharText) return f(static_cast<const wchar*>(view.text), view.length);
    if (view.width == icharText) return f(static_cast<const ichar*>(view.text), view.length);
    return f(static_cast<const char*>(view.text), view.length);
}

/// The order by code points in every width, malformed parts as U+FFFD; texts that differ only in what is malformed are
/// ordered by their raw form, so that 0 means the same text. Negative, 0 or positive.
ORV_API int compareText(const TextView& a, const TextView& b);
/// The order that ignores case, by simple folding of each code point.
ORV_API int compareTextFolded(const TextView& a, const TextView& b);
/// A hash that is equal where `compareText` answers 0, whatever the widths. It never allocates.
ORV_API uint hashText(const TextView& view);
/// Code points of a text.
ORV_API int countText(const TextView& view);

/// The case of a text that is all ASCII, in place.
template <class C> inline void mapAsciiCase(C* text, int length, bool upper) {
    for (int i = 0; i < length; ++i)
        if (unsigned(text[i] - (upper ? 'a' : 'A')) < 26) text[i] = C(text[i] ^ 0x20);
}

/// A code point as text of a width; 0 has no units, and what is no code point is U+FFFD.
class CodeText {
public:
    CodeText(ichar code, int width) : width(width) {
        if (!code) return;
        if (width == wcharText)
            length = encodeCode(reinterpret_cast<wchar*>(room), code);
        else if (width == icharText)
            length = encodeCode(reinterpret_cast<ichar*>(room), code);
        else
            length = encodeCode(room, code);
    }
    operator TextView() const { return {room, length, width}; }

private:
    alignas(4) char room[8] = {};
    int length = 0, width;
};

/// A text in the width of `C`: the text itself where it has that width, else a converted copy that lives as long as
/// this. Small copies stand in the object. Where there is no memory, `failed` is set and the text is empty.
template <class C> class TextIn {
public:
    explicit TextIn(const TextView& view) {
        if (!view.length) return;
        if (view.width == widthOf<C>) {
            text = static_cast<const C*>(view.text);
            length = view.length;
        } else
            convert(view);
    }
    ~TextIn() { zfree(block); }
    TextIn(const TextIn&) = delete;
    TextIn& operator=(const TextIn&) = delete;

    operator TextView() const { return {text, length}; }

    const C* text = room;
    int length = 0;
    bool failed = false;

private:
    static constexpr size_t roomUnits = 64;

    void convert(const TextView& view) {
        size_t need = withText(view, [&](auto* from, int n) { return transcode(room, roomUnits, from, size_t(n)); });
        C* out = room;
        if (need > roomUnits) {
            block = need < 0x7FFFFFF0 ? __zalloc(need * sizeof(C)) : nullptr;
            if (!block) {
                failed = true;
                return;
            }
            out = static_cast<C*>(block);
            withText(view, [&](auto* from, int n) { return transcode(out, need, from, size_t(n)); });
        }
        text = out;
        length = int(need);
    }

    void* block = nullptr;
    C room[roomUnits];
};

} // namespace orv::detail
