#include "core/ZToken.h"

#include "core/ZSelector.h"
#include "text/ZString.h"
#include "text/transcode.h"
#include "toolkit/text.h"

#include <climits>
#include <cstring>

ZToken::ZToken(ZTokenSpace* space, const char* text) : owner(space), id(space ? space->create(text) : 0) {}
ZToken::ZToken(ZTokenSpace* space, const char* text, int length)
    : owner(space), id(space ? space->create(text, length) : 0) {}
ZToken::ZToken(ZTokenSpace* space, const ZString& text) : owner(space), id(space ? space->create(text) : 0) {}
ZToken::ZToken(ZTokenSpace* space, uint id) : owner(space), id(space ? space->retain(id) : 0) {}
ZToken::ZToken(const ZToken& other) : ZToken(other.owner, other.id) {}

ZToken& ZToken::operator=(const ZToken& other) {
    uint taken = other.owner ? other.owner->retain(other.id) : 0;
    remove();
    owner = other.owner;
    id = taken;
    return *this;
}

bool ZToken::take(uint made) {
    remove();
    id = made;
    return made != 0;
}

bool ZToken::set(const char* text) { return take(owner ? owner->create(text) : 0); }
bool ZToken::set(const char* text, int length) { return take(owner ? owner->create(text, length) : 0); }
bool ZToken::set(const ZString& text) { return take(owner ? owner->create(text) : 0); }

bool ZToken::setBool(bool value) { return set(value ? "yes" : "no"); }
bool ZToken::setInt(int value, int radix, int width, bool zeros, bool upper) {
    return setLarge(value, radix, width, zeros, upper);
}
bool ZToken::setLong(long value, int radix, int width, bool zeros, bool upper) {
    return setLarge(value, radix, width, zeros, upper);
}
bool ZToken::setLarge(large value, int radix, int width, bool zeros, bool upper) {
    ZString text;
    text.setLarge(value, radix, width, zeros, upper);
    return set(text);
}

bool ZToken::printf(const char* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    bool made = aprintf(format, &arguments);
    va_end(arguments.list);
    return made;
}

bool ZToken::aprintf(const char* format, var_arg* arguments) {
    ZString text;
    if (!owner || !text.aprintf(format, arguments)) return false;
    uint made = owner->create(text);
    return made && take(made);
}

void ZToken::remove() {
    if (id) owner->remove(id);
    id = 0;
}

namespace {
/// The text that a setter of strings makes of a number.
template <class T> ZString numberText(bool (ZString::*set)(T, int, int, bool, bool), T value) {
    ZString text;
    (text.*set)(value, 10, 0, false, false);
    return text;
}
} // namespace

ZToken ZToken::number(int value) const { return sibling(numberText<large>(&ZString::setLarge, value)); }
ZToken ZToken::number(uint value) const { return sibling(numberText<ularge>(&ZString::setULarge, value)); }
ZToken ZToken::number(large value) const { return sibling(numberText<large>(&ZString::setLarge, value)); }
ZToken ZToken::number(ularge value) const { return sibling(numberText<ularge>(&ZString::setULarge, value)); }
ZToken ZToken::number(real value) const {
    ZString text;
    text.setReal(value);
    return sibling(text);
}

namespace {
/// The text with `map` applied to its first `codes` code points, one for one, as selectors do.
ZString mapped(const ZToken& token, int codes, ichar (*map)(ichar)) {
    const char *at = token.string(), *end = at + token.length();
    ZString text;
    for (; at < end && codes; --codes) {
        char units[orv::detail::longestCode<char>];
        int count = orv::detail::encodeCode(units, map(orv::detail::decodeCode(at, end)));
        if (!text.append(units, count)) return ZString();
    }
    return at < end && !text.append(at, int(end - at)) ? ZString() : text;
}
} // namespace

ZToken ZToken::capitalize() const { return sibling(mapped(*this, 1, toolkit::codeUpper)); }
ZToken ZToken::lowerCase() const { return sibling(mapped(*this, INT_MAX, toolkit::codeLower)); }

ZToken ZToken::removeSpaces() const {
    ZString text(string(), length());
    text.replace(uint(' '), 0u);
    return sibling(text);
}

ZToken ZToken::marked(char mark) const {
    if (!id || !mark || hasMarker(mark)) return *this;
    ZString text(&mark, 1);
    text.append(string(), length());
    return sibling(text);
}

char ZToken::at(int index) const {
    const char* text = string();
    return text && index >= 0 && index < length() ? text[index] : 0;
}

bool ZToken::isName() const {
    const byte* table = ZSelector::namechars();
    for (int i = 0; i < length(); ++i)
        if (byte c = byte(at(i)); c >= 128 || !table[c]) return false;
    return id != 0;
}

bool ZToken::hasstr(const char* text) const {
    return id && text && memmem(string(), size_t(length()), text, std::strlen(text));
}

int ZToken::cmpstr(const char* text) const {
    size_t mine = size_t(length()), others = text ? std::strlen(text) : 0, shorter = mine < others ? mine : others;
    int order = shorter ? std::memcmp(string(), text, shorter) : 0;
    return order ? order : (mine > others) - (mine < others);
}
