#include "core/ZSelectorSpace.h"
#include "core/selectorBuild.h"

using orv::detail::partOf;
using orv::detail::SelectorBuilder;
using orv::detail::SelectorItems;
using orv::detail::SelectorPart;
using orv::detail::textOf;

namespace orv::detail {

const char* lastBlank(SelectorPart text) {
    const char* found = nullptr;
    for (BracketWalk walk{text.text, text.text, text.text + text.length}; walk.at < walk.end; walk.pass())
        if (walk.depth == 0 && *walk.at == ' ') found = walk.at;
    return found;
}

} // namespace orv::detail

using orv::detail::BracketWalk;
using orv::detail::lastBlank;

namespace {

const char* endOf(SelectorPart text) { return text.text + text.length; }

/// A derived name as a part of the text; the whole text stands for the selector itself, if it says so.
struct Found {
    SelectorPart part;
    bool itself = false;
};

Found rootOf(SelectorPart text, ZSelector::Type) {
    if (text.length < 2 || text.text[0] != ':' || text.text[1] != ':') return {};
    return {{text.text + 2, text.length - 2}};
}

Found mainTypeOf(SelectorPart text, ZSelector::Type) {
    while (text.length && std::strchr("&* ", text.text[text.length - 1])) --text.length;
    if (const char* blank = lastBlank(text)) return {partOf(blank + 1, endOf(text))};
    return {text};
}

Found unqualifiedOf(SelectorPart text, ZSelector::Type) {
    if (const char* blank = lastBlank(text)) return {partOf(blank + 1, endOf(text))};
    return {text, true};
}

Found qualifierOf(SelectorPart text, ZSelector::Type) {
    const char* blank = lastBlank(text);
    return {blank ? orv::detail::trimBlanks(text.text, size_t(blank - text.text)) : SelectorPart()};
}

Found packageOf(SelectorPart text, ZSelector::Type) {
    auto colon = static_cast<const char*>(std::memchr(text.text, ':', text.length));
    if (!colon || endOf(text) - colon < 2 || colon[1] != ':') return {};
    SelectorPart front = partOf(text.text, colon);
    return {std::memchr(front.text, '.', front.length) ? front : SelectorPart()};
}

Found typeNameOf(SelectorPart text, ZSelector::Type) {
    for (const char *at = text.text, *end = endOf(text); end - at > 1; ++at) {
        at = static_cast<const char*>(std::memchr(at, ':', size_t(end - at - 1)));
        if (!at) break;
        if (at[1] == ':') return {partOf(at + 2, end)};
    }
    return {};
}

/// The last "::" and what belongs to it.
struct Scope {
    SelectorPart name;              ///< where it was looked for: the name of a function, or the whole
    const char* colons = nullptr;   ///< null if there is none
    const char* start = nullptr;    ///< of the word that it stands in
    const char* dot = nullptr;      ///< the last "."; null if there is none
    const char* dotBlank = nullptr; ///< the last blank in front of it

    SelectorPart space() const { return partOf(start, colons); }
};

Scope scopeOf(SelectorPart text, ZSelector::Type type) {
    Scope scope{text};
    if (type == ZSelector::Method) scope.name = SelectorItems(text.text, text.length, type).name;
    if (!scope.name.text) return scope;
    const char* word = scope.name.text;
    const char* blank = nullptr;
    for (BracketWalk walk{word, word, endOf(scope.name)}; walk.at < walk.end; walk.pass()) {
        if (walk.depth) continue;
        char c = *walk.at;
        if (c == ' ') {
            word = walk.at + 1;
            blank = walk.at;
        } else if (c == '.') {
            scope.dot = walk.at;
            scope.dotBlank = blank;
        } else if (c == ':' && walk.at + 1 < walk.end && walk.at[1] == ':') {
            scope.colons = walk.at;
            scope.start = word;
        }
    }
    return scope;
}

Found nameSpaceOf(SelectorPart text, ZSelector::Type type) {
    Scope scope = scopeOf(text, type);
    if (scope.colons) return {scope.space()};
    return {scope.dot ? partOf(scope.name.text, scope.dot) : SelectorPart()};
}

ZSelector detected(SelectorPart text) {
    ZSelector made;
    made.set(text.text, int(text.length), ZSelector::Detect);
    return made;
}

/// `text` without every "space::" in it.
void putWithout(SelectorBuilder& out, SelectorPart text, SelectorPart space) {
    const char *at = text.text, *end = endOf(text);
    while (at < end) {
        auto hit = static_cast<const char*>(memmem(at, size_t(end - at), space.text, space.length + 2));
        out.put(partOf(at, hit ? hit : end));
        at = hit ? hit + space.length + 2 : end;
    }
}

ZSelector baseNameOf(const ZSelector& sel, SelectorPart text, ZSelector::Type type) {
    Scope scope = scopeOf(text, type);
    SelectorBuilder base;
    if (scope.colons) {
        SelectorPart behind = partOf(scope.colons + 2, endOf(text));
        if (!behind.length) return sel;
        if (type != ZSelector::Method || !scope.space().length) return detected(behind);
        putWithout(base, behind, scope.space());
        return base.make(ZSelector::Detect);
    }
    if (!scope.dot || scope.dot + 1 == endOf(text)) return sel;
    base.put(partOf(text.text, scope.dotBlank ? scope.dotBlank + 1 : scope.name.text));
    base.put(partOf(scope.dot + 1, endOf(text)));
    return base.make(ZSelector::Detect);
}

/// A lazy selector of an entry: from its field, or worked out by `find` and stored there.
template <class F> ZSelector lazy(const ZSelector& sel, uint flag, ZSelector ZSelectorData::*field, F find) {
    ZSelectorSpace& space = orv::detail::selectorSpace;
    ZSelectorData* entry = space.get(sel);
    if (!entry) return ZSelector();
    if (!(toolkit::loadAcquire(entry->flags) & flag)) {
        ZSelector value;
        if (!find(*entry, value)) return ZSelector();
        space.publish(entry, flag, field, std::move(value));
    }
    return entry->*field;
}

ZSelector lazyPart(const ZSelector& sel, uint flag, ZSelector ZSelectorData::*field,
                   Found (*find)(SelectorPart, ZSelector::Type)) {
    return lazy(sel, flag, field, [&](ZSelectorData& entry, ZSelector& value) {
        Found found = find(entry.view(), entry.type);
        auto part = orv::detail::trimBlanks(found.part.text, found.part.length);
        value = found.itself ? sel : detected(part);
        return !part.length || !value.isEmpty();
    });
}

} // namespace

ZSelector ZSelector::rootName() const {
    return lazyPart(*this, ZSelectorData::RootName, &ZSelectorData::rootNameSel, rootOf);
}
ZSelector ZSelector::mainType() const {
    return lazyPart(*this, ZSelectorData::MainType, &ZSelectorData::mainTypeSel, mainTypeOf);
}
ZSelector ZSelector::unqualified() const {
    return lazyPart(*this, ZSelectorData::Unqualified, &ZSelectorData::unqualifiedSel, unqualifiedOf);
}
ZSelector ZSelector::qualifier() const {
    return lazyPart(*this, ZSelectorData::Qualifier, &ZSelectorData::qualifierSel, qualifierOf);
}
ZSelector ZSelector::package() const {
    return lazyPart(*this, ZSelectorData::Package, &ZSelectorData::packageSel, packageOf);
}
ZSelector ZSelector::typeName() const {
    return lazyPart(*this, ZSelectorData::TypeName, &ZSelectorData::typeNameSel, typeNameOf);
}
ZSelector ZSelector::nameSpace() const {
    return lazyPart(*this, ZSelectorData::NameSpace, &ZSelectorData::nameSpaceSel, nameSpaceOf);
}
ZSelector ZSelector::baseName() const {
    return lazy(*this, ZSelectorData::BaseName, &ZSelectorData::baseNameSel,
                [&](ZSelectorData& entry, ZSelector& value) {
                    value = baseNameOf(*this, entry.view(), entry.type);
                    return !value.isEmpty();
                });
}

// Functions

namespace {
/// Where the ")" of a function stands; null for what has none.
const char* closing(SelectorPart text) {
    SelectorItems items(text.text, text.length, ZSelector::Method);
    SelectorPart item;
    while (items.next(item)) {}
    return items.close() < endOf(text) ? items.close() : nullptr;
}
/// The text of a function split at the blank behind its ")".
void splitMethod(SelectorPart text, SelectorPart& method, SelectorPart& words) {
    const char* close = closing(text);
    if (!close || close + 1 >= endOf(text) || close[1] != ' ') {
        method = text;
        return;
    }
    method = partOf(text.text, close + 1);
    words = partOf(close + 2, endOf(text));
}
} // namespace

ZSelector ZSelector::method() const {
    if (type() != Method) return ZSelector();
    SelectorPart method, words;
    splitMethod(textOf(*this), method, words);
    return words.text ? detected(method) : *this;
}
ZSelector ZSelector::methodQualifier() const {
    if (type() != Method) return ZSelector();
    SelectorPart method, words;
    splitMethod(textOf(*this), method, words);
    return words.text ? detected(words) : ZSelector();
}

namespace {
/// Calls `f` with the normal form of a text that is that of a function.
template <class F> ZSelector withMethod(const char* text, F f) {
    if (!text || !*text) return ZSelector();
    orv::detail::NormalText normal(text, std::strlen(text));
    if (!normal || normal.type != ZSelector::Method) return ZSelector();
    SelectorPart method, words;
    splitMethod({normal.text, normal.length}, method, words);
    return f(method, words);
}
} // namespace

ZSelector ZSelector::method(const char* text) {
    return withMethod(text, [](SelectorPart method, SelectorPart) { return detected(method); });
}
ZSelector ZSelector::qualifier(const char* text) {
    return withMethod(text,
                      [](SelectorPart, SelectorPart words) { return words.text ? detected(words) : ZSelector(); });
}

ZSelector ZSelector::methodName() const {
    ZSelectorData* entry = orv::detail::selectorSpace.resolveName(id);
    return entry && !entry->nameSel.isEmpty() ? entry->nameSel : *this;
}
ZSelector ZSelector::result() const {
    ZSelectorData* entry = orv::detail::resolved(*this);
    return entry ? entry->resultSel : ZSelector();
}

bool ZSelector::setMethodName(const ZSelector& name) {
    Type kind = type();
    if (name.isEmpty() || (kind != Method && kind != Template)) return false;
    SelectorPart text = textOf(*this), old = SelectorItems(text.text, text.length, kind).name;
    if (!old.text) return false;
    ZSelector made = SelectorBuilder()
                         .put(partOf(text.text, old.text))
                         .put(textOf(name))
                         .put(partOf(endOf(old), endOf(text)))
                         .make(kind);
    if (made.isEmpty()) return false;
    *this = std::move(made);
    return true;
}

bool ZSelector::isConstructor(const ZSelector& typeName) const {
    if (type() != Method || !result().isEmpty()) return false;
    ZSelector name = functionName();
    if (typeName.isEmpty()) return name.at(0) >= 'A' && name.at(0) <= 'Z';
    return name == typeName.baseName();
}
bool ZSelector::isDestructor(const ZSelector& typeName) const {
    if (type() != Method || !result().isEmpty()) return false;
    ZSelector name = functionName();
    return name.at(0) == '~' && (typeName.isEmpty() || name.cmpstr(typeName.baseName().marked('~').string()) == 0);
}
