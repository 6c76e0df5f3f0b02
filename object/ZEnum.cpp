#include "object/ZEnum.h"

#include "core/construct.h"
#include "object/ZEnumType.h"
#include "object/ztype.h"
#include "text/ZString.h"
#include "text/number.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

#include <cstring>

namespace {

ZSelector hexName(int value, bool upper) {
    char text[16] = "0x";
    int length = orv::uinttostr(text + 2, int(sizeof text) - 2, ularge(uint(value)), 16, 0, false, upper);
    return ZSelector(text, length + 2);
}

bool singleBit(int value) { return value && !(uint(value) & (uint(value) - 1)); }

template <class T> ZArrayT<T> arrayOf(const ZEnum& data, bool (ZEnum::*append)(ZArrayT<T>&) const) {
    ZArrayT<T> all;
    if (!(data.*append)(all)) ZError::fail();
    return all;
}

} // namespace

int ZEnumItem::compare(const ZEnumItem& other) const {
    int order = zcompare(value, other.value);
    return order ? order : name.compare(other.name);
}

/// The number that a text is, as `name` writes it or in base 10; false for any other text. Hexadecimal digits stand for
/// all 32 bits.
bool ZEnum::readNumber(const char* text, int length, int& value) {
    if (orv::strtonumber(text, length, value, 10)) return true;
    uint bits;
    int radix = 10;
    bool negative;
    orv::strradix(text, length, &radix, false, &negative);
    if (radix != 16 || !orv::strtonumber(text, length, bits, 10)) return false;
    value = int(bits);
    return true;
}

// Changing

ZEnum::ZEnum(const ZSelector& name, uint capacity) : selector(name) {
    if (byName.expand(capacity) && byValue.expand(capacity) && byLowerName.expand(capacity)) return;
    byName.clear();
    byValue.clear();
    byLowerName.clear();
    ZError::fail();
}

bool ZEnum::add(const ZEnum& other) {
    const ZEnum source(other);
    for (uint i = 0; i < source.byName.count(); ++i)
        if (!add(source.byName.key(i), source.byName.value(i))) return false;
    // Where names share a value, the one that it is called by comes last.
    if (source.byName.count() > source.byValue.count())
        for (uint i = 0; i < source.byValue.count(); ++i)
            if (!add(source.byValue.value(i).name, source.byValue.value(i).value)) return false;
    upcoming = source.upcoming;
    return true;
}

bool ZEnum::add(const ZArrayT<ZEnumItem>& items) {
    const ZArrayT<ZEnumItem> source(items);
    for (const ZEnumItem& item : source)
        if (!add(item.name, item.value)) return false;
    return true;
}

bool ZEnum::add(const ZVArray& items) {
    const ZVArray source(items);
    for (uint i = 0; i < source.count(); ++i) {
        const ZVariant value = source.variant(int(i));
        if (value.type() && value.type() == ztype<ZEnumItem>()) {
            auto item = static_cast<const ZEnumItem*>(value.getPtr());
            if (!add(item->name, item->value)) return false;
        } else if (!(value.isSelector() || value.typeType() == ZMetaType::String) || !add(value.toSelector()))
            return false;
    }
    return true;
}

bool ZEnum::add(const ZSelector& name) { return add(name, upcoming); }

bool ZEnum::add(const ZSelector& name, int value) {
    if (name.isEmpty()) return false;
    const ZEnumItem item(name.lowerCase(), name, value);
    if (item.lowerName.isEmpty()) return false;
    // With room in all three, nothing fails any more.
    if (!byName.expand(1) || !byValue.expand(1) || !byLowerName.expand(1)) return false;
    const int* had = std::as_const(byName).get(item.name);
    const bool moves = had && *had != value;
    const int old = had ? *had : 0;
    const uint values = byValue.count();
    byName.set(item.name, value);
    byValue.set(value, item);
    byLowerName.set(item.lowerName, value);
    upcoming = int(uint(value) + 1);
    if (moves) {
        (void)callByOther(old);
        resetBitFlags();
    } else if (byValue.count() > values)
        joinBits(uint(value));
    return true;
}

bool ZEnum::remove(const ZSelector& name) {
    const int at = byName.find(name);
    if (at < 0) return false;
    const ZSelector gone(byName.key(uint(at))), lower = gone.lowerCase();
    const int value = byName.value(uint(at));
    if (lower.isEmpty()) return false;
    int heir = -1;
    for (uint i = 0; i < byName.count(); ++i) {
        if (int(i) == at) continue;
        const ZSelector other = byName.key(i).lowerCase();
        if (other.isEmpty()) return false;
        if (other == lower) heir = int(i);
    }
    if (!byName.detach() || !byValue.detach() || !byLowerName.detach()) return false;
    if (heir >= 0)
        byLowerName.set(lower, byName.value(uint(heir)));
    else
        byLowerName.remove(lower);
    byName.removeIndex(uint(at));
    if (callByOther(value)) resetBitFlags();
    return true;
}

bool ZEnum::remove(int value) {
    if (byValue.find(value) < 0) return false;
    ZEnum rest(*this);
    for (uint i = rest.byName.count(); i-- > 0;)
        if (rest.byName.value(i) == value && !rest.remove(ZSelector(rest.byName.key(i)))) return false;
    *this = std::move(rest);
    return true;
}

/// After a name of `value` has gone: its last other name is what it is called by, and without one it goes too; answers
/// whether it went. All maps are this table's own.
bool ZEnum::callByOther(int value) {
    const int at = byValue.find(value);
    if (at < 0) return false;
    const int* stays = std::as_const(byName).get(byValue.value(uint(at)).name);
    if (stays && *stays == value) return false;
    for (uint i = byName.count(); i-- > 0;) {
        if (byName.value(i) != value) continue;
        const ZSelector& name = byName.key(i);
        byValue.set(value, ZEnumItem(name.lowerCase(), name, value));
        return false;
    }
    return byValue.removeIndex(uint(at));
}

void ZEnum::clear() {
    byName.clear();
    byValue.clear();
    byLowerName.clear();
    upcoming = 0;
    resetBitFlags();
}

bool ZEnum::detach() { return byName.detach() && byValue.detach() && byLowerName.detach(); }
bool ZEnum::isDetached() const { return byName.isDetached() && byValue.isDetached() && byLowerName.isDetached(); }

// Lookups

bool ZEnum::value(const ZSelector& name, int* value) const {
    const int* found = byName.get(name);
    if (found && value) *value = *found;
    return found != nullptr;
}
int ZEnum::value(const ZSelector& name) const {
    const int* found = byName.get(name);
    int number = 0;
    return found ? *found : readNumber(name.string(), name.length(), number) ? number : 0;
}
bool ZEnum::valueLC(const ZSelector& lowerName, int* value) const {
    const int* found = byLowerName.get(lowerName);
    if (found && value) *value = *found;
    return found != nullptr;
}
int ZEnum::valueLC(const ZSelector& lowerName) const {
    const int* found = byLowerName.get(lowerName);
    int number = 0;
    return found ? *found : readNumber(lowerName.string(), lowerName.length(), number) ? number : 0;
}

ZSelector ZEnum::name(int value) const {
    const ZEnumItem* item = byValue.get(value);
    return item ? item->name : hexName(value, true);
}
ZSelector ZEnum::nameLC(int value) const {
    const ZEnumItem* item = byValue.get(value);
    return item ? item->lowerName : hexName(value, false);
}
int ZEnum::valueIndex(int value) const { return byValue.find(value); }

int ZEnum::step(int value, int by) const {
    const int n = int(count());
    if (!n) return value;
    const int at = byValue.find(value);
    if (at < 0) return valueAtIndex(by > 0 ? 0 : n - 1);
    return valueAtIndex((at + by + n) % n);
}
ZSelector ZEnum::stepName(const ZSelector& name, int by) const {
    const int n = int(count());
    if (!n) return {};
    int known;
    if (!value(name, &known)) return nameAtIndex(by > 0 ? 0 : n - 1);
    return nameAtIndex(byValue.find(step(known, by)));
}

ZSelector ZEnum::nameAtIndex(int index) const {
    return uint(index) < count() ? byValue.value(uint(index)).name : ZSelector();
}
int ZEnum::valueAtIndex(int index) const { return uint(index) < count() ? byValue.value(uint(index)).value : 0; }

// All of it

ZArrayT<ZSelector> ZEnum::names() const { return arrayOf(*this, &ZEnum::enumNames); }
ZArrayT<int> ZEnum::values() const { return arrayOf(*this, &ZEnum::enumValues); }
ZArrayT<ZEnumItem> ZEnum::items() const { return arrayOf(*this, &ZEnum::enumItems); }

bool ZEnum::enumNames(ZArrayT<ZSelector>& names) const {
    if (!names.expand(count())) return false;
    for (const auto& entry : byValue) names.append(entry.value().name);
    return true;
}
bool ZEnum::enumValues(ZArrayT<int>& values) const {
    if (!values.expand(count())) return false;
    for (const auto& entry : byValue) values.append(entry.value().value);
    return true;
}
bool ZEnum::enumItems(ZArrayT<ZEnumItem>& items) const {
    if (!items.expand(count())) return false;
    for (const auto& entry : byValue) items.append(entry.value());
    return true;
}

// Sets of flags

void ZEnum::joinBits(uint bits) {
    const uint shared = bits & seenBits;
    if (exclusive || (shared && shared != bits)) bitFlags = 0;
    seenBits |= bits;
}
void ZEnum::resetBitFlags() {
    bitFlags = 1;
    seenBits = 0;
    for (uint i = 0; i < byValue.count() && bitFlags; ++i) joinBits(uint(byValue.value(i).value));
}

void ZEnum::setExclusive(bool on) {
    exclusive = on;
    resetBitFlags();
}

bool ZEnum::holds(int value) const {
    if (byValue.isEmpty() || valueIndex(value) >= 0) return true;
    if (!bitFlags) return false;
    uint bits = seenBits;
    if (int(bits) < 0) {
        // The bits of a negative value are no flags, apart from the highest alone.
        bits = 0;
        for (uint i = 0; i < byValue.count(); ++i)
            if (const uint known = uint(byValue.value(i).value); int(known) >= 0 || known == 1u << 31) bits |= known;
    }
    return !(uint(value) & ~bits);
}

int ZEnum::scan(const ZSelector& words, bool lower) const {
    uint flags = 0;
    auto join = [&](const ZSelector& word) { flags |= uint(lower ? valueLC(word) : value(word)); };
    const ZSelector::Type kind = words.type();
    if (kind == ZSelector::Names) {
        const ZSelector* all = words.params();
        for (int i = 0, n = all ? words.parcount() : 0; i < n; ++i) join(all[i]);
    } else if (kind == ZSelector::Name || (words.string() && !std::strchr(words.string(), ' '))) {
        join(words);
    } else {
        for (const ZSelector& word : words.extract(ZSelector::Names)) join(word);
    }
    return int(flags);
}

ZSelector ZEnum::output(int flags, bool lower) const {
    ZSelector found[32];
    int n = 0;
    for (uint i = 0; i < byValue.count(); ++i) {
        const ZEnumItem& item = byValue.value(i);
        if (singleBit(item.value) && (item.value & flags)) found[n++] = lower ? item.lowerName : item.name;
    }
    return ZSelector(found, n, ZSelector::Names);
}

// Expressions

namespace {

/// Walks an expression; `look(text, length, value)` gives the value of a name.
template <class Look> int evaluate(const char* text, int length, Look&& look) {
    uint result = 0;
    char pending = 0;
    bool inverted = false;
    const char *at = text, *const end = text + length;
    auto isOperator = [](char c) { return c == '|' || c == '&' || c == '+' || c == '-' || c == '~'; };
    while (at < end) {
        if (byte(*at) <= ' ') {
            ++at;
        } else if (*at == '~') {
            inverted = !inverted;
            ++at;
        } else if (isOperator(*at)) {
            pending = *at++;
        } else {
            const char* start = at;
            while (at < end && byte(*at) > ' ' && !isOperator(*at)) ++at;
            int found = 0;
            look(start, int(at - start), found);
            const uint value = inverted ? ~uint(found) : uint(found);
            result = !pending         ? value
                     : pending == '|' ? result | value
                     : pending == '&' ? result - value
                                      : result + value;
            pending = 0;
            inverted = false;
        }
    }
    return int(result);
}

/// Where the base name begins: behind the last "::", else behind the last ".".
int baseStart(const char* text, int length) {
    for (int i = length; i-- > 1;)
        if (text[i] == ':' && text[i - 1] == ':') return i + 1;
    for (int i = length; i-- > 0;)
        if (text[i] == '.') return i + 1;
    return 0;
}

/// A name in the text, looked up and not made; empty for one that nobody has.
ZSelector knownName(const char* text, int length) { return length > 0 ? ZSelector::find(text, length) : ZSelector(); }

bool findEnumValue(const char* path, int length, int& value) {
    const int start = baseStart(path, length);
    const int space = start > 1 && path[start - 1] == ':' ? start - 2 : start - 1;
    const ZSelector typeName = knownName(path, space), name = knownName(path + start, length - start);
    ZMetaType* type = typeName.isEmpty() || name.isEmpty() ? nullptr : ZMetaType::findExisting(typeName);
    const ZEnumType* items = type ? type->enumType() : nullptr;
    return items && items->value(name, &value);
}

} // namespace

int ZEnum::resolveText(const char* text, int length) const {
    int whole;
    if (value(knownName(text, length), &whole)) return whole;
    return evaluate(text, length, [this](const char* name, int n, int& found) {
        if (value(knownName(name, n), &found)) return;
        const int start = baseStart(name, n);
        if (start && value(knownName(name + start, n - start), &found)) return;
        readNumber(name + start, n - start, found);
    });
}
int ZEnum::resolve(const ZString& expression) const {
    const orv::detail::TextIn<char> text(expression.view());
    return resolveText(text.text, text.length);
}
int ZEnum::resolve(const ZSelector& expression) const {
    int whole;
    return value(expression, &whole) ? whole : resolveText(expression.string(), expression.length());
}
int ZEnum::resolveFull(const char* text, int length) {
    int whole = 0;
    if (findEnumValue(text, length, whole)) return whole;
    return evaluate(text, length, [](const char* path, int n, int& value) {
        if (!findEnumValue(path, n, value)) readNumber(path, n, value);
    });
}
int ZEnum::resolveEnum(const ZString& expression) {
    const orv::detail::TextIn<char> text(expression.view());
    return resolveFull(text.text, text.length);
}
int ZEnum::resolveEnum(const ZSelector& expression) { return resolveFull(expression.string(), expression.length()); }

bool ZEnum::enumValue(const ZSelector& path, int* value) {
    int found;
    if (!findEnumValue(path.string(), path.length(), found)) return false;
    if (value) *value = found;
    return true;
}

// The enumeration

int ZEnum::compare(const ZEnum& other) const {
    if (int order = selector.compare(other.selector)) return order;
    if (int order = byName.compare(other.byName)) return order;
    return byValue.compare(other.byValue);
}
