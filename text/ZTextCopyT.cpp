#include "text/ZTextCopyT.h"

#include "core/memory.h"
#include "text/search.h"
#include "text/transcode.h"
#include "toolkit/text.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <limits>

using namespace orv::detail;

namespace {

constexpr size_t lengthLimit = size_t(std::numeric_limits<int>::max()) - 1;

int answer(size_t length) { return int(std::min(length, lengthLimit + 1)); }

/// How much of a text fits in `room` units without splitting a character.
template <class C> size_t wholeCodes(Run<C> text, size_t room) {
    if (room >= text.size()) return text.size();
    if (sizeof(C) == 4 || !room) return room;
    // The character that the unit before the cut belongs to may go on behind it.
    const C *cut = text.begin + room, *before = cut;
    for (int back = 1; back < longestCode<C> && before > text.begin; ++back) {
        --before;
        if (sizeof(C) == 1 && (*before & 0xC0) == 0x80) continue;
        const C* end = before;
        decodeCode(end, text.end);
        return end > cut ? size_t(before - text.begin) : room;
    }
    return room;
}

/// Collects text in a caller's buffer and counts what all of it takes.
template <class C> class Writer {
public:
    Writer(C* out, int size) : out(out), room(out && size > 0 ? size_t(size) - 1 : 0), terminated(out && size > 0) {}
    void add(Run<C> text) {
        // What follows a part that didn't fit isn't written either.
        if (length == written) {
            size_t fits = wholeCodes(text, room - written);
            if (fits) std::memmove(out + written, text.begin, fits * sizeof(C));
            written += fits;
        }
        length += text.size();
    }
    int finish() {
        if (terminated) out[written] = 0;
        return answer(length);
    }

private:
    C* out;
    size_t room, written = 0, length = 0;
    bool terminated;
};

template <class C, class From> int convertInto(C* out, int size, Run<From> text) {
    size_t room = out && size > 0 ? size_t(size) - 1 : 0;
    size_t needed = transcode<C>(nullptr, 0, text.begin, text.size());
    if (!out || size < 1) return answer(needed);
    transcode(out, room, text.begin, text.size());
    if (needed <= room)
        out[needed] = 0;
    else {
        // Find where the last whole character ends.
        size_t written = 0;
        for (const From* at = text.begin; at < text.end;) {
            size_t units = size_t(codeUnits<C>(decodeCode(at, text.end)));
            if (written + units > room) break;
            written += units;
        }
        out[written] = 0;
    }
    return answer(needed);
}

template <class C> C* newText(size_t length) {
    if (length > lengthLimit) return nullptr;
    C* text = static_cast<C*>(__zalloc((length + 1) * sizeof(C)));
    if (text) text[length] = 0;
    return text;
}
template <class C> C* put(C* at, Run<C> text) {
    if (!text.empty()) std::memcpy(at, text.begin, text.size() * sizeof(C));
    return at + text.size();
}
template <class C> C* joined(Run<C> a, Run<C> b, Run<C> c) {
    C* text = newText<C>(a.size() + b.size() + c.size());
    if (text) put(put(put(text, a), b), c);
    return text;
}
template <class C, class From> C* converted(Run<From> text) {
    size_t length = transcode<C>(nullptr, 0, text.begin, text.size());
    C* made = newText<C>(length);
    if (made) transcode(made, length, text.begin, text.size());
    return made;
}

template <class C> bool isLineEnd(C unit) { return unit == C('\n') || unit == C('\r'); }
bool isMark(ichar code) {
    int category = toolkit::codeCategory(code);
    return category >= 6 && category <= 8;
}
/// Blanks that a line may break at: separators and tabs, but not the ones that join.
bool isBreak(ichar code) {
    if (code < 0x80) return code == ' ' || code == '\t';
    return code != 0xA0 && code != 0x2007 && code != 0x202F && toolkit::codeCategory(code) == 23;
}

/// Writes a word of `codes` code points in lines of `width`; `column` is where the line stands.
template <class C> void writeWord(Writer<C>& writer, Run<C> word, int width, int& column, Run<C> lineEnd) {
    const C *from = word.begin, *at = from;
    while (at < word.end) {
        const C* next = at;
        ichar code = decodeCode(next, word.end);
        if (column >= width && !isMark(code)) {
            writer.add({from, at});
            writer.add(lineEnd);
            from = at;
            column = 0;
        }
        ++column;
        at = next;
    }
    writer.add({from, at});
}

template <class C> int breakInto(C* out, int size, Run<C> text, int width, Run<C> lineEnd) {
    Writer<C> writer(out, size);
    if (width < 1) {
        writer.add(text);
        return writer.finish();
    }
    int column = 0;
    for (const C* at = text.begin; at < text.end;) {
        if (isLineEnd(*at)) {
            writer.add({at, at + 1});
            ++at;
            column = 0;
            continue;
        }
        // Blanks, then a word; either may be empty.
        const C *blanks = at, *next = at;
        int blankCodes = 0, wordCodes = 0;
        while (next < text.end && !isLineEnd(*next) && isBreak(decodeCode(next, text.end))) ++blankCodes, at = next;
        const C* word = next = at;
        while (next < text.end && !isLineEnd(*next) && !isBreak(decodeCode(next, text.end))) ++wordCodes, at = next;
        bool fits = large(column) + blankCodes + wordCodes <= width;
        if (fits || (column == 0 && blankCodes < width)) {
            writer.add({blanks, word});
            column += blankCodes;
        } else if (wordCodes && column > 0) {
            writer.add(lineEnd);
            column = 0;
        }
        writeWord(writer, Run<C>{word, at}, width, column, lineEnd);
    }
    return writer.finish();
}
template <class C> Run<C> lineEndOf(const C* given) {
    static constexpr C newLine[] = {C('\n')};
    return given ? runOf(given) : Run<C>{newLine, newLine + 1};
}

} // namespace

template <class C> int ZTextCopyT<C>::length(const C* text) { return answer(textLength(text)); }
template <class C> int ZTextCopyT<C>::strnlen(const C* text, int n) { return answer(runOf(text, n).size()); }
template <class C> int ZTextCopyT<C>::strcount(const C* text) { return answer(countCodes(text, textLength(text))); }
template <class C> int ZTextCopyT<C>::strncount(const C* text, int n) {
    return answer(countCodes(text, runOf(text, n).size()));
}
template <class C> int ZTextCopyT<C>::codeLen(ichar code) requires(sizeof(C) == 1) { return codeUnits<C>(code); }

template <class C> int ZTextCopyT<C>::addchar(C* out, ichar code, int size) requires(sizeof(C) == 1) {
    return out && validCode(code) && codeUnits<C>(code) <= size ? encodeCode(out, code) : 0;
}
template <class C> ichar ZTextCopyT<C>::strchar(const C* text, int* position) requires(sizeof(C) == 1) {
    if (!text || !text[*position]) return 0;
    const C* at = text + *position;
    ichar code = decodeCode(at, at + textLength(at, size_t(longestCode<C>)));
    *position = int(at - text);
    return code;
}

template <class C> int ZTextCopyT<C>::strcopy(C* out, int size, const C* text, int n) {
    return strmove(out, size, text, n);
}
template <class C> int ZTextCopyT<C>::strmove(C* out, int size, const C* text, int n) {
    Writer<C> writer(out, size);
    writer.add(runOf(text, n));
    return writer.finish();
}
template <class C> int ZTextCopyT<C>::strcat(C* out, int size, const C* text, int n) {
    size_t had = out && size > 0 ? textLength(out, size_t(size)) : 0;
    bool full = out && size > 0 && had == size_t(size);
    int added = full ? strmove(nullptr, 0, text, n) : strmove(out ? out + had : out, size - int(had), text, n);
    return answer(had + size_t(added));
}
template <class C> int ZTextCopyT<C>::strnset(C* out, int size, ichar code, int count) {
    C units[longestCode<C>];
    int each = encodeCode(units, code);
    Writer<C> writer(out, size);
    // What doesn't fit needn't be walked.
    int written = out && size > 0 ? std::min(count, size / each + 1) : 0;
    for (int i = 0; i < written; ++i) writer.add({units, units + each});
    writer.finish();
    return answer(size_t(std::max(count, 0)) * size_t(each));
}
template <class C> int ZTextCopyT<C>::stricopy(C* out, int size, const ichar* text, int n) {
    return convertInto(out, size, runOf(text, n));
}
template <class C> int ZTextCopyT<C>::strwcopy(C* out, int size, const wchar* text, int n) requires(sizeof(C) != 2) {
    return convertInto(out, size, runOf(text, n));
}
template <class C> int ZTextCopyT<C>::stracopy(C* out, int size, const char* text, int n) requires(sizeof(C) != 1) {
    return convertInto(out, size, runOf(text, n));
}

template <class C> C* ZTextCopyT<C>::allocstr(int n) {
    C* text = newText<C>(size_t(std::max(n, 0)));
    if (text) *text = 0;
    return text;
}
template <class C> C* ZTextCopyT<C>::strdup(const C* text) { return strndup(text, -1); }
template <class C> C* ZTextCopyT<C>::strndup(const C* text, int n) {
    return text ? joined(runOf(text, n), Run<C>{}, Run<C>{}) : nullptr;
}
template <class C> C* ZTextCopyT<C>::wstrdup(const wchar* text, int n) requires(sizeof(C) == 1) {
    return text ? converted<C>(runOf(text, n)) : nullptr;
}
template <class C> C* ZTextCopyT<C>::istrdup(const ichar* text, int n) requires(sizeof(C) == 1) {
    return text ? converted<C>(runOf(text, n)) : nullptr;
}
template <class C> C* ZTextCopyT<C>::joinstr(const C* a, const C* b) { return joined(runOf(a), runOf(b), Run<C>{}); }
template <class C> C* ZTextCopyT<C>::joinnstr(int n, ...) {
    va_list list;
    size_t length = 0;
    va_start(list, n);
    for (int i = 0; i < n; ++i) length += textLength(va_arg(list, const C*));
    va_end(list);
    C* made = newText<C>(length);
    if (!made) return nullptr;
    va_start(list, n);
    C* at = made;
    for (int i = 0; i < n; ++i) at = put(at, runOf(va_arg(list, const C*)));
    va_end(list);
    return made;
}
template <class C> C* ZTextCopyT<C>::joinnstrtab(int n, const C* const* texts) {
    size_t length = 0;
    for (int i = 0; i < n; ++i) length += textLength(texts[i]);
    C *made = newText<C>(length), *at = made;
    if (made)
        for (int i = 0; i < n; ++i) at = put(at, runOf(texts[i]));
    return made;
}
template <class C> C* ZTextCopyT<C>::insertstr(const C* text, int position, const C* added) {
    Run<C> all = runOf(text);
    const C* at = all.begin + std::min(size_t(std::max(position, 0)), all.size());
    return joined(Run<C>{all.begin, at}, runOf(added), Run<C>{at, all.end});
}
template <class C> C* ZTextCopyT<C>::deletestr(const C* text, int position, int n) {
    Run<C> all = runOf(text);
    large from = position, to = from + std::max(n, 0);
    size_t first = std::min(size_t(std::max(from, large(0))), all.size());
    size_t last = std::min(size_t(std::max(to, large(first))), all.size());
    return joined(Run<C>{all.begin, all.begin + first}, Run<C>{all.begin + last, all.end}, Run<C>{});
}

template <class C> int ZTextCopyT<C>::breaklines(C* out, int size, const C* text, int width, const C* lineEnd) {
    return breakInto(out, size, runOf(text), width, lineEndOf(lineEnd));
}
template <class C> C* ZTextCopyT<C>::breakstr(const C* text, int width, const C* lineEnd) {
    int length = breaklines(nullptr, 0, text, width, lineEnd);
    C* made = newText<C>(size_t(length));
    if (made) breaklines(made, length + 1, text, width, lineEnd);
    return made;
}

template class ZTextCopyT<char>;
template class ZTextCopyT<wchar>;
template class ZTextCopyT<ichar>;
