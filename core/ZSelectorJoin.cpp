#include "core/selectorBuild.h"
#include "text/number.h"

using orv::detail::endsWith;
using orv::detail::partOf;
using orv::detail::SelectorBuilder;
using orv::detail::SelectorPart;
using orv::detail::startsWith;
using orv::detail::textOf;

namespace {

bool isJoint(char c) { return c == ' ' || c == '.' || c == '/' || c == ':'; }

/// What stands in front of `end` in a longer text that ends so, with `between` next to it if given; null text if not.
SelectorPart beforeEnd(SelectorPart text, SelectorPart end, char between) {
    size_t cut = end.length + (between ? 1 : 0);
    if (text.length <= cut || !endsWith(text, end)) return {};
    if (between && text.text[text.length - cut] != between) return {};
    return {text.text, text.length - cut};
}
SelectorPart behindStart(SelectorPart text, SelectorPart start, char between) {
    size_t cut = start.length + (between ? 1 : 0);
    if (text.length <= cut || !startsWith(text, start)) return {};
    if (between && text.text[cut - 1] != between) return {};
    return {text.text + cut, text.length - cut};
}

ZSelector made(SelectorPart text) { return ZSelector(text.text, int(text.length)); }

} // namespace

ZSelector ZSelector::join(const ZSelector& sel) const {
    if (isEmpty()) return sel;
    if (sel.isEmpty()) return *this;
    return SelectorBuilder().put(textOf(*this)).put(textOf(sel)).make();
}
ZSelector ZSelector::join(const char* text) const {
    if (!text || !*text) return *this;
    return SelectorBuilder().put(textOf(*this)).put(text).make();
}
ZSelector ZSelector::join(const char* prefix, const ZSelector& sel, const char* suffix) const {
    return SelectorBuilder().put(textOf(*this)).put(prefix).put(textOf(sel)).put(suffix).make();
}

ZSelector ZSelector::combine(const ZSelector& sel) const { return combine(*this, sel, " "); }
ZSelector ZSelector::combine(const ZSelector& a, const ZSelector& b, const char* separator) {
    if (a.isEmpty()) return b;
    if (b.isEmpty()) return a;
    return SelectorBuilder().put(textOf(a)).put(separator).put(textOf(b)).make();
}

ZSelector ZSelector::prefix() const { return extract(0, parcount() - 1); }
ZSelector ZSelector::suffix() const { return extract(1, parcount()); }

ZSelector ZSelector::prefix(const ZSelector& sel) const {
    SelectorPart front = beforeEnd(textOf(*this), textOf(sel), 0);
    while (front.length && isJoint(front.text[front.length - 1])) --front.length;
    return made(front);
}
ZSelector ZSelector::prefix(const ZSelector& sel, char between) const {
    return made(beforeEnd(textOf(*this), textOf(sel), between));
}
ZSelector ZSelector::suffix(const ZSelector& sel) const {
    SelectorPart back = behindStart(textOf(*this), textOf(sel), 0);
    while (back.length && isJoint(*back.text)) ++back.text, --back.length;
    return made(back);
}
ZSelector ZSelector::suffix(const ZSelector& sel, char between) const {
    return made(behindStart(textOf(*this), textOf(sel), between));
}

bool ZSelector::isPrefix(const ZSelector& sel) const { return startsWith(textOf(*this), textOf(sel)); }
bool ZSelector::isPrefix(const ZSelector& sel, char between) const {
    return isPrefix(sel) && at(sel.length()) == between && between;
}
bool ZSelector::isSuffix(const ZSelector& sel) const { return endsWith(textOf(*this), textOf(sel)); }
bool ZSelector::isSuffix(const ZSelector& sel, char between) const {
    return isSuffix(sel) && at(length() - sel.length() - 1) == between && between;
}

bool ZSelector::prefixedInt(const ZSelector& prefix, int& value, int radix) const {
    SelectorPart number = behindStart(textOf(*this), textOf(prefix), 0);
    return number.length && orv::strtonumber(number.text, int(number.length), value, radix);
}

ZSelector ZSelector::prefixMask() const {
    SelectorPart text = textOf(*this);
    if (!text.length) return ZSelector();
    while (text.length && text.text[text.length - 1] >= '0' && text.text[text.length - 1] <= '9') --text.length;
    SelectorBuilder mask;
    for (const char *from = text.text, *end = from + text.length; from < end;) {
        auto percent = static_cast<const char*>(std::memchr(from, '%', size_t(end - from)));
        const char* next = percent ? percent + 1 : end;
        mask.put(partOf(from, next));
        if (percent) mask.put('%');
        from = next;
    }
    return mask.put("%d").make();
}
