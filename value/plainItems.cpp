#include "value/plainProperties.h"

#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZProperty.h"
#include "toolkit/epoch.h"

namespace orv::plain {
namespace {

/// An accessor method found for a property, with the address to call it on.
struct Accessor {
    ZTypedPtr place;
    ZMethod* method = nullptr;

    /// `find(place)` looks it up.
    template <class F> Accessor(const ZTypedPtr& at, F&& find) : place(at), method(find(&place)) {
        if (!at.instance || (method && !method->hasStacked() && !method->hasFunc())) method = nullptr;
    }
    explicit operator bool() const { return method != nullptr; }
    template <class... A> ZVariant operator()(const A&... arguments) const {
        if constexpr (sizeof...(A) == 0)
            return method->invoke(place.instance, place.type, nullptr, 0);
        else {
            const ZVariant list[] = {arguments...};
            return method->invoke(place.instance, place.type, list, sizeof...(A));
        }
    }
};

ZVariant whole(const ZTypedPtr& at, const ZSelector& name) { return getProperty(at, nullptr, name, true); }

/// Changes a private copy of the property's value and writes it back.
template <class F> bool change(const ZTypedPtr& at, const ZSelector& name, F&& edit) {
    ZVariant value = whole(at, name);
    return !value.isNull() && value.detach() && edit(value) && setProperty(at, nullptr, name, value, true);
}

Accessor itemGetter(const ZTypedPtr& at, const ZSelector& name) {
    return {at, [&](ZTypedPtr* place) {
                ZMethod* getter = at.type->getterMethod(place, name, false, true, true);
                return getter ? getter : at.type->getterMethod(place, name, false, false, true);
            }};
}
Accessor itemSetter(const ZTypedPtr& at, const ZSelector& name) {
    return {at, [&](ZTypedPtr* place) { return at.type->setterMethod(place, name, true); }};
}

/// The number that a word names in the enum type of a property.
bool enumValue(const ZTypedPtr& at, const ZSelector& name, const ZSelector& item, ZVariant& value) {
    ZMetaType* type = getPropertyType(at, name);
    type = type ? type->getDataType() : nullptr;
    return type && type->kind() == ZMetaType::Enum && value.setValue(type, ZString(item));
}

} // namespace

ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, int index) {
    toolkit::EpochGuard guard;
    ZProperty* found = findProperty(at, nullptr, name);
    // Items of a map are counted by another accessor than its keys.
    if (found && found->getIndex()) {
        if (Accessor byIndex{at, [&](ZTypedPtr* place) { return at.type->propByIndexMethod(place, name); }})
            return byIndex(index).expand();
    } else if (Accessor getter = itemGetter(at, name))
        return getter(index).expand();
    return whole(at, name).itemByIndex(index);
}
ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, const ZSelector& key) {
    return getItem(at, name, ZVariant(key));
}
ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, const void* key) {
    toolkit::EpochGuard guard;
    ZProperty* found = findProperty(at, nullptr, name);
    ZMetaType* keyType = found ? found->getIndex() : nullptr;
    return keyType && key ? getItem(at, name, ZVariant(keyType, key)) : ZVariant();
}
ZVariant getItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key) {
    toolkit::EpochGuard guard;
    if (Accessor getter = itemGetter(at, name)) return getter(key).expand();
    return whole(at, name).itemByKey(key);
}

int itemCount(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    if (Accessor counter{at, [&](ZTypedPtr* place) { return at.type->counterMethod(place, name); }})
        return counter().toInt();
    return int(whole(at, name).itemCount());
}
bool hasValue(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value) {
    toolkit::EpochGuard guard;
    if (Accessor has{at, [&](ZTypedPtr* place) { return at.type->hasPropMethod(place, name); }})
        return has(value).toBool();
    return whole(at, name).containsValue(value);
}
ZVariant keyAt(const ZTypedPtr& at, const ZSelector& name, int index) {
    toolkit::EpochGuard guard;
    if (Accessor key{at, [&](ZTypedPtr* place) { return at.type->propKeyMethod(place, name); }}) return key(index);
    return whole(at, name).keyByIndex(index);
}
int indexOfKey(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key) {
    toolkit::EpochGuard guard;
    if (Accessor index{at, [&](ZTypedPtr* place) { return at.type->propIndexMethod(place, name); }}) {
        int found;
        return index(key).toInt(&found) ? found : -1;
    }
    return whole(at, name).indexOfKey(key);
}
ZVariant keyOfValue(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value) {
    toolkit::EpochGuard guard;
    if (Accessor find{at, [&](ZTypedPtr* place) { return at.type->findKeyMethod(place, name); }}) return find(value);
    return whole(at, name).keyOfValue(value);
}
int indexOfValue(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value) {
    toolkit::EpochGuard guard;
    if (Accessor find{at, [&](ZTypedPtr* place) { return at.type->findIndexMethod(place, name); }}) {
        int found;
        return find(value).toInt(&found) ? found : -1;
    }
    return whole(at, name).indexOfValue(value);
}

bool setItem(const ZTypedPtr& at, const ZSelector& name, int index, const ZVariant& value) {
    toolkit::EpochGuard guard;
    ZProperty* found = findProperty(at, nullptr, name);
    if (found && !found->getIndex())
        if (Accessor setter = itemSetter(at, name)) return setter(index, value).toBool();
    return change(at, name, [&](ZVariant& items) { return items.setItem(index, value); });
}
bool setItem(const ZTypedPtr& at, const ZSelector& name, const ZSelector& key, const ZVariant& value) {
    return setItem(at, name, ZVariant(key), value);
}
bool setItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key, const ZVariant& value) {
    toolkit::EpochGuard guard;
    if (Accessor setter = itemSetter(at, name)) return setter(key, value).toBool();
    return change(at, name, [&](ZVariant& items) { return items.setItem(key, value); });
}
bool insertItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key, const ZVariant& value) {
    toolkit::EpochGuard guard;
    if (Accessor inserter{at, [&](ZTypedPtr* place) { return at.type->inserterMethod(place, name); }})
        return inserter(key, value).toBool();
    return change(at, name, [&](ZVariant& items) { return items.insertItem(key, value); });
}
bool addItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& value) {
    toolkit::EpochGuard guard;
    if (Accessor adder{at, [&](ZTypedPtr* place) { return at.type->adderMethod(place, name); }})
        return adder(value).toBool();
    return change(at, name, [&](ZVariant& items) { return items.appendItem(value); });
}
bool removeItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key) {
    toolkit::EpochGuard guard;
    if (Accessor remover{at, [&](ZTypedPtr* place) { return at.type->removerMethod(place, name); }})
        return remover(key).toBool();
    return change(at, name, [&](ZVariant& items) { return items.removeItem(key); });
}
bool removeItemAt(const ZTypedPtr& at, const ZSelector& name, int index) {
    toolkit::EpochGuard guard;
    if (Accessor remover{at, [&](ZTypedPtr* place) { return at.type->removeByIndexMethod(place, name); }})
        return remover(index).toBool();
    return change(at, name, [&](ZVariant& items) { return items.removeItem(index); });
}
bool clearProperty(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    if (Accessor cleaner{at, [&](ZTypedPtr* place) { return at.type->cleanerMethod(place, name); }})
        return cleaner().toBool();
    if (at.type->isSynthetic() && at.type->hasSyntheticProperty(at, name))
        return at.type->clearSyntheticProperty(at, name);
    return change(at, name,
                  [](ZVariant& value) { return value.isContainer() ? value.clearItems() : value.resetValue(); });
}

bool setEnum(const ZTypedPtr& at, const ZSelector& name, const ZSelector& item, bool notify) {
    ZVariant value;
    return enumValue(at, name, item, value) && setProperty(at, nullptr, name, value, notify);
}
bool addEnumItem(const ZTypedPtr& at, const ZSelector& name, const ZSelector& item) {
    ZVariant value;
    return enumValue(at, name, item, value) && addItem(at, name, value);
}
bool setEnumItem(const ZTypedPtr& at, const ZSelector& name, int index, const ZSelector& item) {
    ZVariant value;
    return enumValue(at, name, item, value) && setItem(at, name, index, value);
}
bool setEnumItem(const ZTypedPtr& at, const ZSelector& name, const ZVariant& key, const ZSelector& item) {
    ZVariant value;
    return enumValue(at, name, item, value) && setItem(at, name, key, value);
}
bool setEnumFlags(const ZTypedPtr& at, const ZSelector& name, const ZSelector& words, bool on) {
    ZVariant bits;
    if (!enumValue(at, name, words, bits)) return false;
    const uint had = whole(at, name).toUInt(), given = bits.toUInt();
    const uint now = on ? had | given : had & ~given;
    return bits.setValue(&now) && setProperty(at, nullptr, name, bits, true);
}

} // namespace orv::plain
