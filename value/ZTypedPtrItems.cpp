#include "core/ZSelectorMap.h"
#include "object/ZMetaType.h"
#include "object/names.h"
#include "value/ZContentMap.h"
#include "value/ZTypeArray.h"
#include "value/ZTypedPtr.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/ZVariant.h"

namespace {

using V = ZVariant;

/// Calls `use` with the container at a typed pointer; `none` for what is no container.
template <class R, class F> R withContainer(const ZTypedPtr& at, R none, F&& use) {
    if (!at.type || !at.instance) return none;
    switch (at.type->indexLabel()) {
    case ZMetaType::Array:
        return use(*static_cast<ZVArray*>(at.instance));
    case ZMetaType::HashSet:
        return use(*static_cast<ZVHashSet*>(at.instance));
    case ZMetaType::SelectMap:
        return use(*static_cast<ZVSelectMap*>(at.instance));
    case ZMetaType::KeyMap:
        return use(*static_cast<ZVKeyMap*>(at.instance));
    default:
        break;
    }
    const ZSelector name = at.type->mainOrSelf()->getName();
    if (name.isEmpty()) return none;
    if (name == zsel<"ZSelectorMap">()) return use(*static_cast<ZSelectorMap*>(at.instance));
    if (name == zsel<"ZTypeArray">()) return use(*static_cast<ZTypeArray*>(at.instance));
    const bool named = name == zsel<"ZNamedTypeArray">() || name == zsel<"ZContentMap">();
    return named ? use(*static_cast<ZNamedTypeArray*>(at.instance)) : none;
}

// What each container answers. A key of an array is a position, a key of a set its value.

namespace of {

int positionOf(const V& key) {
    int index;
    return key.toInt(&index) ? index : -1;
}

ZVariant valueAt(const ZVArray& items, int index) { return items.entry(index); }
ZVariant keyAt(const ZVArray& items, int index) {
    return index >= 0 && uint(index) < items.count() ? ZVariant(index) : ZVariant();
}
int findKey(const ZVArray& items, const V& key) {
    const int index = positionOf(key);
    return index >= 0 && uint(index) < items.count() ? index : -1;
}
int findValue(const ZVArray& items, const V& value) { return items.findValue(value); }
bool setAt(ZVArray& items, int index, const V& value) { return items.store(index, value); }
bool setKey(ZVArray& items, const V& key, const V& value) { return items.store(findKey(items, key), value); }
bool append(ZVArray& items, const V& value) { return items.append(value); }
bool insert(ZVArray& items, const V& key, const V& value) {
    const int index = positionOf(key);
    return index >= 0 && uint(index) <= items.count() && items.insert(index, value);
}
bool removeAt(ZVArray& items, int index) { return items.removeIndex(index); }
void clear(ZVArray& items) { items.clear(); }

// As an array of the general kind.

ZVariant valueAt(const ZTypeArray& items, int index) { return items.entry(index); }
ZVariant keyAt(const ZTypeArray& items, int index) { return items.row().has(index) ? ZVariant(index) : ZVariant(); }
int findKey(const ZTypeArray& items, const V& key) {
    const int index = positionOf(key);
    return items.row().has(index) ? index : -1;
}
int findValue(const ZTypeArray& items, const V& value) { return items.findValue(value); }
bool setAt(ZTypeArray& items, int index, const V& value) { return items.store(index, value); }
bool setKey(ZTypeArray& items, const V& key, const V& value) { return items.store(findKey(items, key), value); }
bool append(ZTypeArray& items, const V& value) { return items.append(value); }
bool insert(ZTypeArray& items, const V& key, const V& value) {
    const int index = positionOf(key);
    return index >= 0 && uint(index) <= items.count() && items.insert(index, value);
}
bool removeAt(ZTypeArray& items, int index) { return items.removeIndex(index); }
void clear(ZTypeArray& items) { items.clear(); }

// As a map from names.

ZVariant valueAt(const ZNamedTypeArray& items, int index) { return items.entry(index); }
ZVariant keyAt(const ZNamedTypeArray& items, int index) {
    return items.row().has(index) ? ZVariant(items.key(index)) : ZVariant();
}
int findKey(const ZNamedTypeArray& items, const V& key) { return items.findKey(key.toSelector()); }
int findValue(const ZNamedTypeArray& items, const V& value) { return items.findValue(value); }
bool setAt(ZNamedTypeArray& items, int index, const V& value) { return items.store(index, value); }
bool setKey(ZNamedTypeArray& items, const V& key, const V& value) { return items.set(key.toSelector(), value); }
bool append(ZNamedTypeArray&, const V&) { return false; }
bool insert(ZNamedTypeArray& items, const V& key, const V& value) {
    const ZSelector name = key.toSelector();
    return !items.haskey(name) && items.set(name, value);
}
bool removeAt(ZNamedTypeArray& items, int index) { return items.removeIndex(index); }
void clear(ZNamedTypeArray& items) { items.clear(); }

ZVariant valueAt(const ZVHashSet& items, int index) { return items.entry(index); }
ZVariant keyAt(const ZVHashSet& items, int index) { return items.entry(index); }
int findKey(const ZVHashSet& items, const V& key) { return items.findValue(key); }
int findValue(const ZVHashSet& items, const V& value) { return items.findValue(value); }
bool setAt(ZVHashSet& items, int index, const V& value) {
    V old = items.entry(index);
    return !old.isNull() && items.replace(old, value);
}
bool setKey(ZVHashSet& items, const V& key, const V& value) { return items.replace(key, value); }
/// A set without a type takes nothing; to try is an error that ends the process.
bool takes(const ZVHashSet& items) { return items.hasType() || items.block(); }
bool append(ZVHashSet& items, const V& value) { return takes(items) && items.add(value); }
bool insert(ZVHashSet& items, const V&, const V& value) { return takes(items) && items.addNew(value); }
bool removeAt(ZVHashSet& items, int index) { return items.removeIndex(index); }
void clear(ZVHashSet& items) { items.clear(); }

ZVariant valueAt(const ZVSelectMap& items, int index) { return items.entry(index); }
ZVariant keyAt(const ZVSelectMap& items, int index) {
    return index >= 0 && uint(index) < items.count() ? ZVariant(items.key(index)) : ZVariant();
}
int findKey(const ZVSelectMap& items, const V& key) { return items.findKey(key.toSelector()); }
int findValue(const ZVSelectMap& items, const V& value) { return items.findValue(value); }
bool setAt(ZVSelectMap& items, int index, const V& value) { return items.setValue(index, value); }
bool setKey(ZVSelectMap& items, const V& key, const V& value) { return items.set(key.toSelector(), value); }
bool append(ZVSelectMap&, const V&) { return false; }
bool insert(ZVSelectMap& items, const V& key, const V& value) {
    const ZSelector name = key.toSelector();
    return !items.haskey(name) && items.set(name, value);
}
bool removeAt(ZVSelectMap& items, int index) { return items.removeIndex(index); }
void clear(ZVSelectMap& items) { items.clear(); }

ZVariant valueAt(const ZVKeyMap& items, int index) { return items.entry(index); }
ZVariant keyAt(const ZVKeyMap& items, int index) { return items.key(index); }
int findKey(const ZVKeyMap& items, const V& key) { return items.findKey(key); }
int findValue(const ZVKeyMap& items, const V& value) { return items.findValue(value); }
bool setAt(ZVKeyMap& items, int index, const V& value) { return items.setValue(index, value); }
bool setKey(ZVKeyMap& items, const V& key, const V& value) { return items.set(key, value); }
bool append(ZVKeyMap&, const V&) { return false; }
bool insert(ZVKeyMap& items, const V& key, const V& value) { return !items.haskey(key) && items.set(key, value); }
bool removeAt(ZVKeyMap& items, int index) { return items.removeIndex(index); }
void clear(ZVKeyMap& items) { items.clear(); }

bool inRange(const ZSelectorMap& items, int index) { return index >= 0 && uint(index) < items.count(); }
ZVariant valueAt(const ZSelectorMap& items, int index) {
    return inRange(items, index) ? ZVariant(items.get(index)) : ZVariant();
}
ZVariant keyAt(const ZSelectorMap& items, int index) {
    return inRange(items, index) ? ZVariant(items.key(index)) : ZVariant();
}
int findKey(const ZSelectorMap& items, const V& key) {
    const ZSelector name = key.toSelector();
    for (int i = 0, count = items.contains(name) ? int(items.count()) : 0; i < count; ++i)
        if (items.key(i) == name) return i;
    return -1;
}
int findValue(const ZSelectorMap& items, const V& value) {
    const ZSelector name = value.toSelector();
    for (int i = 0, count = int(items.count()); i < count; ++i)
        if (items.get(i) == name) return i;
    return -1;
}
bool setAt(ZSelectorMap& items, int index, const V& value) {
    return inRange(items, index) && items.set(items.key(index), value.toSelector());
}
bool setKey(ZSelectorMap& items, const V& key, const V& value) {
    return items.set(key.toSelector(), value.toSelector());
}
bool append(ZSelectorMap&, const V&) { return false; }
bool insert(ZSelectorMap& items, const V& key, const V& value) {
    return !items.contains(key.toSelector()) && setKey(items, key, value);
}
/// The map has no removal of its own: the others move to a new one.
bool removeAt(ZSelectorMap& items, int index) {
    if (!inRange(items, index)) return false;
    ZSelectorMap rest;
    for (int i = 0, count = int(items.count()); i < count; ++i)
        if (i != index && !rest.set(items.key(i), items.get(i))) return false;
    items = std::move(rest);
    return true;
}
void clear(ZSelectorMap& items) { items.clear(); }

} // namespace of
} // namespace

bool ZTypedPtr::isContainer() const { return type && type->isContainer(); }

uint ZTypedPtr::itemCount() const {
    return withContainer(*this, 0u, [](auto& items) { return items.count(); });
}
ZVariant ZTypedPtr::itemByIndex(int index) const {
    return withContainer(*this, V(), [&](auto& items) { return of::valueAt(items, index).expand(); });
}
ZVariant ZTypedPtr::itemByKey(const ZSelector& key) const { return itemByKey(V(key)); }
ZVariant ZTypedPtr::itemByKey(const ZVariant& key) const {
    return withContainer(*this, V(), [&](auto& items) { return of::valueAt(items, of::findKey(items, key)).expand(); });
}
ZVariant ZTypedPtr::keyByIndex(int index) const {
    return withContainer(*this, V(), [&](auto& items) { return of::keyAt(items, index); });
}

bool ZTypedPtr::setItem(int index, const ZVariant& value) const {
    return withContainer(*this, false, [&](auto& items) { return of::setAt(items, index, value); });
}
bool ZTypedPtr::setItem(const ZSelector& key, const ZVariant& value) const { return setItem(V(key), value); }
bool ZTypedPtr::setItem(const ZVariant& key, const ZVariant& value) const {
    return withContainer(*this, false, [&](auto& items) { return of::setKey(items, key, value); });
}
bool ZTypedPtr::appendItem(const ZVariant& value) const {
    return withContainer(*this, false, [&](auto& items) { return of::append(items, value); });
}
bool ZTypedPtr::insertItem(const ZVariant& key, const ZVariant& value) const {
    return withContainer(*this, false, [&](auto& items) { return of::insert(items, key, value); });
}
bool ZTypedPtr::removeItem(int index) const {
    return withContainer(*this, false, [&](auto& items) { return of::removeAt(items, index); });
}
bool ZTypedPtr::removeItem(const ZSelector& key) const { return removeItem(V(key)); }
bool ZTypedPtr::removeItem(const ZVariant& key) const {
    return withContainer(*this, false, [&](auto& items) { return of::removeAt(items, of::findKey(items, key)); });
}
bool ZTypedPtr::removeValue(const ZVariant& value) const {
    return withContainer(*this, false, [&](auto& items) { return of::removeAt(items, of::findValue(items, value)); });
}
bool ZTypedPtr::clearItems() const {
    return withContainer(*this, false, [](auto& items) {
        of::clear(items);
        return true;
    });
}

bool ZTypedPtr::hasKey(const ZSelector& key) const { return indexOfKey(V(key)) >= 0; }
bool ZTypedPtr::hasKey(const ZVariant& key) const { return indexOfKey(key) >= 0; }
int ZTypedPtr::indexOfKey(const ZVariant& key) const {
    return withContainer(*this, -1, [&](auto& items) { return of::findKey(items, key); });
}
int ZTypedPtr::indexOfValue(const ZVariant& value) const {
    return withContainer(*this, -1, [&](auto& items) { return of::findValue(items, value); });
}
bool ZTypedPtr::containsValue(const ZVariant& value) const { return indexOfValue(value) >= 0; }
ZVariant ZTypedPtr::keyOfValue(const ZVariant& value) const {
    return withContainer(*this, V(), [&](auto& items) { return of::keyAt(items, of::findValue(items, value)); });
}
ZSelector ZTypedPtr::selectorOfValue(const ZVariant& value) const { return keyOfValue(value).toSelector(); }
