#include "text/ZString.h"

#include "core/ZError.h"

#include <cstring>

using namespace orv;
using detail::TextIn;
using detail::withText;

namespace {

/// Passes a run of one code point from the start of a text.
template <class C> const C* skipRun(const C* at, const C* end, ichar code) {
    for (const C* next = at; at < end; at = next)
        if (detail::decodeCode(next, end) != code) break;
    return at;
}
/// Passes a run of one code point from the end of a text.
template <class C> const C* skipRunBack(const C* begin, const C* at, ichar code) {
    for (const C* next = at; at > begin; at = next)
        if (detail::decodeBefore(next, begin) != code) break;
    return at;
}
template <class C> bool hasCode(const C* at, const C* end, ichar code) {
    while (at < end)
        if (detail::decodeCode(at, end) == code) return true;
    return false;
}
/// Where a "0" behind a decimal character starts at the end of a text of more than two characters; else the end.
template <class C> const C* zeroDecimal(const C* begin, const C* end, ichar decimal) {
    if (end - begin <= 2 || end[-1] != '0') return end;
    const C* at = end - 1;
    ichar point = detail::decodeBefore(at, begin);
    return at > begin && (point == '.' || point == decimal) ? at : end;
}

} // namespace

bool ZString::keep(int from, int to) {
    int present = length();
    if (from == 0 && to == present) return true;
    if (from >= to) {
        clear();
        return true;
    }
    if (!own(0)) return false;
    size_t unit = size_t(detail::unitBytes(record->type));
    std::memmove(record->text(), record->units<char>() + size_t(from) * unit, size_t(to - from) * unit);
    setEnd(record, to - from);
    return true;
}

bool ZString::trimEndings(uint code) {
    int from = 0, to = 0;
    withText(view(), [&](auto* units, int length) {
        auto end = skipRunBack(units, units + length, code);
        from = int(skipRun(units, end, code) - units);
        to = int(end - units);
    });
    return keep(from, to);
}

ZString ZString::removePrefix(uint a, uint b) const {
    return withText(view(), [&](auto* units, int length) {
        auto end = units + length;
        return this->end(int(skipRun(skipRun(units, end, a), end, b) - units));
    });
}

ZString ZString::removeSuffix(uint a, uint b) const {
    return withText(view(), [&](auto* units, int length) {
        return start(int(skipRunBack(units, skipRunBack(units, units + length, a), b) - units));
    });
}

ZString ZString::removePrefix(const ZString& prefix) const {
    return withText(view(), [&](auto* units, int length) {
        TextIn<std::remove_cv_t<std::remove_pointer_t<decltype(units)>>> head(prefix.view());
        if (head.failed) {
            ZError::fail();
            return ZString();
        }
        bool there = head.length && head.length <= length &&
                     !std::memcmp(units, head.text, size_t(head.length) * sizeof(*units));
        return there ? end(head.length) : *this;
    });
}

ZString ZString::adjustListName() const {
    bool bare = withText(view(), [](auto* units, int length) {
        while (length > 0 && (units[length - 1] == '-' || units[length - 1] == ' ')) --length;
        return length == 0;
    });
    return bare ? ZString() : removePrefix('-', ' ').removeSuffix('-', ' ').removePrefix(0x2022, ' ');
}

bool ZString::clipDecimal(uint decimal) {
    int to = withText(
        view(), [&](auto* units, int length) { return int(zeroDecimal(units, units + length, decimal) - units); });
    return keep(0, to);
}

bool ZString::removeTrailing(uint decimal, uint fill) {
    int to = withText(view(), [&](auto* units, int length) {
        auto end = units + length;
        if (hasCode(units, end, decimal)) {
            for (auto next = end; end > units; end = next) {
                ichar code = detail::decodeBefore(next, units);
                if (code != decimal && code == fill) continue;
                if (code == decimal) end = next;
                break;
            }
        }
        return int(zeroDecimal(units, end, decimal) - units);
    });
    return keep(0, to);
}

ZString ZString::cleanupLines() const {
    TextIn<char> text(view());
    ZString clean;
    if (text.failed || (text.length && !(clean.record = newRecord(Char, text.length, 0)))) {
        ZError::fail();
        return ZString();
    }
    int length = 0;
    for (int i = 0; i < text.length; ++i) {
        bool line = text.text[i] == '\n' || text.text[i] == '\r';
        if (line && (!length || clean.record->units<char>()[length - 1] == '\n')) continue;
        clean.record->units<char>()[length++] = line ? '\n' : text.text[i];
    }
    if (!length) return ZString();
    setEnd(clean.record, length);
    clean.trim();
    return clean;
}

bool ZString::checkAlphabet(const ZString& alphabet) const {
    TextIn<char> text(view()), letters(alphabet.view());
    if (text.failed || letters.failed) return false;
    bool known[256] = {};
    for (int i = 0; i < letters.length; ++i) known[byte(letters.text[i])] = true;
    for (int i = 0; i < text.length; ++i)
        if (!known[byte(text.text[i])]) return false;
    return true;
}

bool ZString::checkHexadecimal(int min, int max, bool hash) const {
    return withText(view(), [&](auto* units, int length) {
        if (!length) return min == 0;
        if (length < min || length > max) return false;
        for (int i = 0; i < length; ++i) {
            auto unit = units[i];
            bool digit = (unit >= '0' && unit <= '9') || (unit >= 'A' && unit <= 'F') || (unit >= 'a' && unit <= 'f');
            if (!digit && !(hash && i == 0 && unit == '#')) return false;
        }
        return true;
    });
}
