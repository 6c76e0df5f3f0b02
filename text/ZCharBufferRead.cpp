#include "text/ZCharBuffer.h"

#include "text/number.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace {

bool isLetter(uint c) { return (c | 0x20) - 'a' < 26; }
bool isWordByte(uint c) { return isLetter(c) || c - '0' < 10 || c == '_'; }

/// The end of a run of such bytes, or of the single character that begins otherwise.
template <class F> const char* wordEnd(const char* at, const char* end, F belongs) {
    const char* from = at;
    while (at < end && belongs(byte(*at))) ++at;
    if (at == from && at < end) orv::detail::decodeCode(at, end);
    return at;
}

} // namespace

void ZCharBuffer::skipBlanks() {
    while (!ended() && here() <= 32) ++pos;
}

void ZCharBuffer::skipSpaces() {
    if (!buffer) return;
    int used = length(), kept = used;
    while (kept > 0 && byte(buffer[kept - 1]) <= 32) --kept;
    buffer[kept] = 0;
    // Text that fills the buffer is there to be read, and its end moves along.
    if (used == size) size = kept;
    pos = buffer;
    while (dpos() < kept && here() <= 32) ++pos;
}

void ZCharBuffer::skipSeparator() {
    while (!ended() && (here() <= 32 || *pos == ',')) ++pos;
}

bool ZCharBuffer::skipTo(uint code) {
    while (!ended()) {
        uint c = byte(*pos++);
        if (c > 32 && c == code) return true;
    }
    return false;
}

ZSelector ZCharBuffer::token(int code, bool blanks) {
    skipBlanks();
    const char* from = pos;
    while (!ended() && here() != uint(code) && (blanks || here() > 32)) ++pos;
    ZSelector word(from, int(pos - from));
    if (!ended() && here() == uint(code)) ++pos;
    return word;
}

ZSelector ZCharBuffer::token() {
    skipBlanks();
    const char* from = pos;
    pos += wordEnd(from, end(), isWordByte) - from;
    return ZSelector(from, int(pos - from));
}

ZSelector ZCharBuffer::pureName() {
    skipBlanks();
    const char* from = pos;
    pos += wordEnd(from, end(), isLetter) - from;
    return ZSelector(from, int(pos - from));
}

const char* ZCharBuffer::field(uint code, int& length) {
    skipBlanks();
    uint closer = code;
    bool quoted = false;
    if (!ended() && (here() == '"' || here() == '\'' || here() == code)) {
        closer = byte(*pos++);
        quoted = closer != code;
    }
    const char* from = pos;
    while (!ended() && here() != closer) ++pos;
    length = int(pos - from);
    if (!ended()) ++pos;
    if (quoted) {
        char* behind = pos;
        skipBlanks();
        if (!ended() && here() == code)
            ++pos;
        else
            pos = behind;
    }
    return from;
}

ZString ZCharBuffer::separateString(uint code) {
    int length;
    const char* from = field(code, length);
    return ZString(from, length);
}
ZSelector ZCharBuffer::separateSelector(uint code) {
    int length;
    const char* from = field(code, length);
    return ZSelector(from, length);
}

ZString ZCharBuffer::stringTo(uint a, uint b, bool& second) {
    const char* from = pos;
    while (!ended() && here() != a && here() != b) ++pos;
    ZString text(from, int(pos - from));
    second = !ended() && here() != a;
    if (!ended()) ++pos;
    return text;
}

const char* ZCharBuffer::balanced(uint open, uint close, int& length) {
    if (!ended() && here() == open) ++pos;
    const char* from = pos;
    bool quoted = false;
    for (large depth = 1; !ended(); ++pos) {
        uint c = here();
        if ((c == '"' || c == '\'') && c != close) quoted = !quoted;
        if (quoted) continue;
        if (c == close || c == '}' || c == ')' || c == ']') {
            if (--depth == 0) break;
        } else if (c == open || c == '{' || c == '(' || c == '[')
            ++depth;
    }
    length = int(pos - from);
    if (!ended()) ++pos;
    return from;
}

ZString ZCharBuffer::extract(uint open, uint close) {
    int length;
    const char* from = balanced(open, close, length);
    return ZString(from, length);
}

ZSelector ZCharBuffer::extract(ZString& text, uint open, uint close, const ZString& tokens) {
    orv::detail::TextIn<char> singles(tokens.view());
    auto single = [&](char c) { return singles.length && std::memchr(singles.text, c, size_t(singles.length)); };
    text.clear();
    if (singles.failed) {
        ZError::fail();
        return ZSelector();
    }
    skipBlanks();
    const char* from = pos;
    if (!ended() && single(*pos)) {
        ++pos;
        return ZSelector(from, 1);
    }
    while (!ended() && here() > 32 && here() != open && here() != close && !single(*pos)) ++pos;
    ZSelector word(from, int(pos - from));
    char* behind = pos;
    skipBlanks();
    if (!ended() && here() == open)
        text = extract(open, close);
    else if (behind == from && !ended()) // a closing one: passed, so that every call moves on
        ++pos;
    else
        pos = behind;
    return word;
}

bool ZCharBuffer::copyTillCode(ZCharBuffer& out, int code) {
    char* from = pos;
    while (!ended() && here() != uint(code)) ++pos;
    if (!out.add(from, int(pos - from))) {
        pos = from;
        return false;
    }
    return get() >= 0;
}

namespace {

/// The reference behind a "&", without its ";"; its length, 0 if there is none.
int referenceLength(const char* at, const char* end) {
    for (int i = 0; i < 9 && at + i < end; ++i) {
        if (at[i] == ';') return i;
        if (!isWordByte(byte(at[i])) && at[i] != '#') return 0;
    }
    return 0;
}

/// What a reference stands for; -1 for what is unknown.
int referenceByte(const char* name, int length) {
    static constexpr struct {
        const char* name;
        char code;
    } known[] = {{"lt", '<'}, {"gt", '>'}, {"amp", '&'}, {"apos", '\''}, {"quot", '"'}};
    if (*name == '#') {
        int code = 0;
        for (int i = 1; i < length; ++i) {
            if (name[i] < '0' || name[i] > '9') return -1;
            code = code * 10 + (name[i] - '0');
        }
        return code >= 1 && code <= 255 ? code : -1;
    }
    for (auto& row : known)
        if (int(std::strlen(row.name)) == length && std::memcmp(row.name, name, size_t(length)) == 0) return row.code;
    return -1;
}

} // namespace

ZString ZCharBuffer::parseXMLCharacters() {
    ZCharBuffer out(size - dpos());
    if (!out.buffer) return ZString();
    while (!ended()) {
        char c = *pos++;
        int length = c == '&' ? referenceLength(pos, end()) : 0;
        int code = length ? referenceByte(pos, length) : byte(c);
        if (length) pos += length + 1;
        // Nothing grows longer by this, so there is room.
        if (code >= 0) *out.pos++ = char(code);
    }
    return ZString(out.buffer, out.dpos());
}

template <class T> bool ZCharBuffer::scan(T* out, int parameter) {
    if (!buffer) return false;
    buffer[size] = 0;
    const char *last = end(), *at = pos;
    while (at < last && (byte(*at) <= 32 || *at == ',')) ++at;
    bool fits;
    if constexpr (std::is_floating_point_v<T>) {
        at = orv::scanReal<char>(at, last, *out, ichar(parameter), fits);
    } else {
        constexpr bool isSigned = std::is_signed_v<T>;
        constexpr ularge top = std::numeric_limits<T>::max();
        ularge magnitude;
        bool negative;
        at = orv::scanInteger<char>(at, last, parameter, isSigned, magnitude, negative, fits);
        if (at) {
            ularge most = top + (negative ? 1 : 0);
            magnitude = fits ? std::min(magnitude, most) : most;
            *out = T(negative ? 0 - magnitude : magnitude);
        }
    }
    if (!at) return false;
    pos = buffer + (at - buffer);
    return true;
}

template <class T> ZArrayT<T> ZCharBuffer::scanAll(int parameter) {
    char* from = pos;
    ZArrayT<T> all;
    T value;
    while (scan(&value, parameter))
        if (!all.append(value)) {
            pos = from;
            ZError::fail();
            return ZArrayT<T>();
        }
    return all;
}

bool ZCharBuffer::scanInt(int* out, int radix) { return scan(out, radix); }
bool ZCharBuffer::scanUnsigned(uint* out, int most, int radix) {
    int count = 0;
    while (count < most && scan(out + count, radix)) ++count;
    return count > 0;
}
bool ZCharBuffer::scanFloat(float* out, int decimal) { return scan(out, decimal); }
bool ZCharBuffer::scanReal(double* out, int decimal) { return scan(out, decimal); }
ZArrayT<int> ZCharBuffer::scanInt(int radix) { return scanAll<int>(radix); }
ZArrayT<float> ZCharBuffer::scanFloat(int decimal) { return scanAll<float>(decimal); }
ZArrayT<real> ZCharBuffer::scanReal(int decimal) { return scanAll<real>(decimal); }

int ZCharBuffer::scanBlock() {
    if (!buffer) return 0;
    char* to = buffer;
    int high = -1;
    for (; !ended(); ++pos) {
        uint c = here(), letter = (c | 0x20) - 'a';
        int digit = c - '0' < 10 ? int(c - '0') : letter < 6 ? int(letter + 10) : -1;
        if (digit < 0) continue;
        if (high >= 0) *to++ = char(high << 4 | digit);
        high = high < 0 ? digit : -1;
    }
    *to = 0;
    pos = to;
    return dpos();
}

ZString ZCharBuffer::stringFromPos() const {
    return ZString(pos, int(orv::detail::textLength(pos, size_t(size - dpos()))));
}
ZSelector ZCharBuffer::selector() const { return ZSelector(buffer, length()); }
char* ZCharBuffer::copyAStr() const {
    int n = length();
    auto text = n ? static_cast<char*>(__zalloc(size_t(n) + 1)) : nullptr;
    if (text) {
        std::memcpy(text, buffer, size_t(n));
        text[n] = 0;
    }
    return text;
}
