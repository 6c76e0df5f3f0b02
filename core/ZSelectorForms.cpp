#include "core/ZSelectorSpace.h"
#include "core/selectorBuild.h"
#include "text/ZString.h"
#include "text/format.h"
#include "text/transcode.h"
#include "toolkit/text.h"

using orv::detail::lastBlank;
using orv::detail::partOf;
using orv::detail::SelectorBuilder;
using orv::detail::SelectorPart;
using orv::detail::textOf;

namespace {

void putCode(SelectorBuilder& out, ichar code) {
    char units[orv::detail::longestCode<char>];
    out.put(units, size_t(orv::detail::encodeCode(units, code)));
}

/// The text with `map` applied to its first `codes` code points; malformed parts become U+FFFD where it is applied.
template <class F> ZSelector mapped(const ZSelector& sel, size_t codes, F map) {
    SelectorPart text = textOf(sel);
    SelectorBuilder out;
    const char *at = text.text, *end = at + text.length;
    for (; at < end && codes; --codes) putCode(out, map(orv::detail::decodeCode(at, end)));
    return out.put(partOf(at, end)).make();
}

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || byte(c) >= 0x80; }

bool allNameChars(SelectorPart text) {
    const byte* table = ZSelector::namechars();
    for (size_t i = 0; i < text.length; ++i)
        if (byte c = byte(text.text[i]); c >= 128 || !table[c]) return false;
    return text.length > 0;
}

ZSelector made(SelectorPart text) { return ZSelector(text.text, int(text.length)); }

} // namespace

ZSelector::ZSelector(const ZString& text) { set(text); }
bool ZSelector::set(const ZString& text) {
    orv::detail::TextIn<char> bytes(text.view());
    return set(bytes.text, bytes.length);
}
ZSelector ZSelector::find(const ZString& text) {
    orv::detail::TextIn<char> bytes(text.view());
    return find(bytes.text, bytes.length);
}

ZSelector ZSelector::marked(char mark) const {
    if (isEmpty() || !mark || hasSelectorMark(mark)) return *this;
    return SelectorBuilder().put(mark).put(textOf(*this)).make();
}
ZSelector ZSelector::unmarked(char mark) const {
    if (!hasSelectorMark(mark)) return *this;
    return ZSelector(string() + 1, length() - 1);
}

ZSelector ZSelector::lowerCase() const { return mapped(*this, SIZE_MAX, toolkit::codeLower); }
ZSelector ZSelector::upperCase() const { return mapped(*this, SIZE_MAX, toolkit::codeUpper); }
ZSelector ZSelector::capitalize() const { return mapped(*this, 1, toolkit::codeUpper); }

ZSelector ZSelector::removeName() const {
    SelectorPart text = textOf(*this);
    const char* blank = lastBlank(text);
    if (!blank) return *this;
    return made(orv::detail::trimBlanks(text.text, size_t(blank - text.text)));
}

ZSelector ZSelector::removeSpaces() const {
    SelectorPart text = textOf(*this);
    SelectorBuilder out;
    for (size_t i = 0; i < text.length; ++i)
        if (text.text[i] != ' ') out.put(text.text[i]);
    return out.make();
}

ZSelector ZSelector::removeSuffix() const {
    SelectorPart text = textOf(*this);
    while (text.length && !isLetter(text.text[text.length - 1])) --text.length;
    return made(text);
}

ZSelector ZSelector::debracket() const {
    if (type() != Bracket) return *this;
    SelectorPart text = textOf(*this);
    return text.length > 2 ? made({text.text + 1, text.length - 2}) : ZSelector();
}

int ZSelector::ptrCount() const {
    SelectorPart text = textOf(*this);
    int count = 0;
    for (size_t i = text.length; i > 0 && (text.text[i - 1] == '*' || text.text[i - 1] == ' '); --i)
        count += text.text[i - 1] == '*';
    return count;
}

ZSelector ZSelector::ptrName(int count) const {
    if (count < 1 || isEmpty()) return *this;
    SelectorBuilder out;
    out.put(textOf(*this));
    while (count-- > 0 && out.put('*')) {}
    return out.make();
}

ZSelector ZSelector::varName() const {
    SelectorPart text = textOf(*this);
    const char* blank = lastBlank(text);
    if (!blank) return ZSelector();
    SelectorPart word = partOf(blank + 1, text.text + text.length);
    return allNameChars(word) ? made(word) : ZSelector();
}

bool ZSelector::deepName() const { return type() == Names || type() == UID; }

bool ZSelector::variableName() const {
    const ZSelectorData* entry = orv::detail::selectorSpace.get(id);
    return !entry || entry->type == UID || (toolkit::loadAcquire(entry->flags) & ZSelectorData::VariableName);
}
void ZSelector::setVariableName(bool on) { orv::detail::selectorSpace.setVariableName(id, on); }

bool ZSelector::isReference() const { return at(length() - 1) == '&'; }

bool ZSelector::specialChars() const { return !isEmpty() && !allNameChars(textOf(*this)); }
bool ZSelector::isName(const char* text) { return text && allNameChars({text, std::strlen(text)}); }

bool ZSelector::check(const char* text) const { return !isEmpty() && find(text) == *this; }

bool ZSelector::hasstr(const char* text) const {
    SelectorPart own = textOf(*this);
    return text && own.text && memmem(own.text, own.length, text, std::strlen(text));
}

namespace {
int compareBytes(SelectorPart a, SelectorPart b) {
    size_t shorter = a.length < b.length ? a.length : b.length;
    int order = shorter ? std::memcmp(a.text, b.text, shorter) : 0;
    return order ? order : (a.length > b.length) - (a.length < b.length);
}
} // namespace

int ZSelector::cmpstr(const char* text) const {
    return compareBytes(textOf(*this), {text, text ? std::strlen(text) : 0});
}
int ZSelector::compareStr(const ZSelector& sel) const { return compareBytes(textOf(*this), textOf(sel)); }

bool ZSelector::aprintf(const char* format, var_arg* arguments) {
    if (!format) return false;
    SelectorBuilder out;
    auto sink = [](void* context, const char* piece, int length) {
        return bool(static_cast<SelectorBuilder*>(context)->put(piece, size_t(length)));
    };
    if (orv::formatTo<char>(sink, &out, format, arguments) < 1) return false;
    ZSelector result = out.make();
    if (result.isEmpty()) return false;
    *this = std::move(result);
    return true;
}

bool ZSelector::printf(const char* format, ...) {
    var_arg arguments;
    va_start(arguments.list, format);
    bool made = aprintf(format, &arguments);
    va_end(arguments.list);
    return made;
}
