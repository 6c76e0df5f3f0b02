#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/propertyAccess.h"
#include "object/propertyPlace.h"

// Items of properties: through the item accessors of a declared one; of others, and where there is no such accessor,
// through the value, which is then written back.

using orv::AccessorWord;
using orv::PropertyPlace;

namespace {

/// An accessor method together with what it is called on.
struct Call {
    ZMethod* method = nullptr;
    ZTypedPtr at;

    explicit operator bool() const { return method != nullptr; }
    /// With the method's answer to its arguments, as far as it takes them.
    ZVariant get() const { return at.type->getVariant(method, at.instance); }
    ZVariant get(const ZVariant& key) const { return at.type->getVariant(method, at.instance, key); }
    bool set(const ZVariant& value) const { return at.type->setVariant(method, at.instance, value); }
    bool set(const ZVariant& key, const ZVariant& value) const {
        return at.type->setVariant(method, at.instance, key, value);
    }
    int find(const ZVariant& value) const { return at.type->findVariant(method, at.instance, value); }
    bool run() const {
        int done = 0;
        return orv::callForNumber(method, at.instance, nullptr, 0, done) && (done & 0xFF);
    }
    int count() const {
        int items = 0;
        return orv::callForNumber(method, at.instance, nullptr, 0, items) ? items : 0;
    }
};

using Accessor = ZMethod* (ZMetaType::*)(ZTypedPtr*, const ZProperty*) const;

Call accessor(const PropertyPlace& place, Accessor which) {
    Call call;
    if (place.kind != PropertyPlace::Declared) return call;
    call.at = ZTypedPtr(place.self);
    call.method = (place.type->*which)(&call.at, place.property);
    return call;
}
Call itemGetter(const PropertyPlace& place) {
    Call call;
    if (place.kind != PropertyPlace::Declared) return call;
    call.at = ZTypedPtr(place.self);
    call.method = place.type->getterMethod(&call.at, place.property, false, true, true);
    return call;
}
Call itemSetter(const PropertyPlace& place) {
    Call call;
    if (place.kind != PropertyPlace::Declared || place.property->readOnly()) return call;
    call.at = ZTypedPtr(place.self);
    call.method = place.type->setterMethod(&call.at, place.property, true);
    return call;
}

ZVariant valueAt(const PropertyPlace& place) {
    ZVariant value;
    orv::readPlace(place, nullptr, true, value);
    return orv::holdsVariant(value) ? value.expand() : value;
}

/// After an accessor has changed the value, or hasn't.
bool told(ZType* self, const PropertyPlace& place, bool notify, bool done) {
    if (done) orv::tellDeclared(self, place, notify);
    return done;
}

/// Changes a private copy of the value and writes it back.
template <class F> bool change(ZType* self, const PropertyPlace& place, bool notify, F edit) {
    if (place.property && place.property->readOnly()) return false;
    ZVariant value = valueAt(place);
    return value.detach() && edit(value) && self->setProperty(nullptr, *place.name, value, notify);
}

/// Where another one has the property: asks that one, and writes a value back that was read on the way.
template <class F> bool forward(ZType* self, PropertyPlace& place, bool notify, F edit) {
    if (place.writeBack && (!place.holder.detach() || !self)) return false;
    if (place.writeBack) place.other = ZTypedPtr(place.holder);
    if (!edit(place.other, place.otherName)) return false;
    return !place.writeBack || orv::writeBack(self, place, notify);
}

} // namespace

// Reading

ZVariant ZType::getPropertyItem(const ZSelector& name, int index) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->getSyntheticPropertyItem(ZTypedPtr(this), today, index);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.getPropertyItem(place.otherName, index);
    if (place.kind == PropertyPlace::Nowhere) return ZVariant();
    if (Call call = accessor(place, &ZMetaType::propByIndexMethod)) return call.get(ZVariant(index));
    if (place.property->isArray())
        if (Call call = itemGetter(place)) return call.get(ZVariant(index));
    return ZTypedPtr(valueAt(place)).itemByIndex(index);
}

ZVariant ZType::getPropertyItem(const ZSelector& name, const ZSelector& key) const {
    return getPropertyItem(name, ZVariant(key));
}

ZVariant ZType::getPropertyItem(const ZSelector& name, const void* key) const {
    if (!key) return ZVariant();
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic) return metaType->getSyntheticPropertyItem(ZTypedPtr(this), today, key);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.getPropertyItem(place.otherName, key);
    if (place.kind == PropertyPlace::Nowhere || !place.property->getIndex()) return ZVariant();
    ZMetaType* index = place.property->getIndex();
    return getPropertyItem(name, index->holdsZType() ? ZVariant(static_cast<const ZType*>(key)) : ZVariant(index, key));
}

ZVariant ZType::getPropertyItem(const ZSelector& name, const ZVariant& key) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic) return metaType->getSyntheticPropertyItem(ZTypedPtr(this), today, key);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.getPropertyItem(place.otherName, key);
    if (place.kind == PropertyPlace::Nowhere) return ZVariant();
    if (Call call = itemGetter(place)) return call.get(key);
    return ZTypedPtr(valueAt(place)).itemByKey(key);
}

int ZType::getPropertyCount(const ZSelector& name) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic) return metaType->getSyntheticPropertyCount(ZTypedPtr(this), today);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.getPropertyCount(place.otherName);
    if (place.kind == PropertyPlace::Nowhere) return 0;
    if (Call call = accessor(place, &ZMetaType::counterMethod)) return call.count();
    return int(ZTypedPtr(valueAt(place)).itemCount());
}

bool ZType::hasPropertyValue(const ZSelector& name, const ZVariant& value) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->hasSyntheticPropertyValue(ZTypedPtr(this), today, value);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.hasPropertyValue(place.otherName, value);
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (Call call = accessor(place, &ZMetaType::hasPropMethod)) return call.set(value);
    ZVariant held = valueAt(place);
    return held.isContainer() ? ZTypedPtr(held).containsValue(value) : held.compare(value) == 0;
}

ZVariant ZType::getPropertyKey(const ZSelector& name, int index) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic) return metaType->getSyntheticPropertyKey(ZTypedPtr(this), today, index);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.getPropertyKey(place.otherName, index);
    if (place.kind == PropertyPlace::Nowhere) return ZVariant();
    if (Call call = accessor(place, &ZMetaType::propKeyMethod)) return call.get(ZVariant(index));
    return ZTypedPtr(valueAt(place)).keyByIndex(index);
}

int ZType::getPropertyKeyIndex(const ZSelector& name, const ZVariant& key) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->getSyntheticPropertyKeyIndex(ZTypedPtr(this), today, key);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.getPropertyKeyIndex(place.otherName, key);
    if (place.kind == PropertyPlace::Nowhere) return -1;
    if (Call call = accessor(place, &ZMetaType::propIndexMethod)) return call.find(key);
    return ZTypedPtr(valueAt(place)).indexOfKey(key);
}

ZVariant ZType::findPropertyKey(const ZSelector& name, const ZVariant& value) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->findSyntheticPropertyKey(ZTypedPtr(this), today, value);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.findPropertyKey(place.otherName, value);
    if (place.kind == PropertyPlace::Nowhere) return ZVariant();
    if (Call call = accessor(place, &ZMetaType::findKeyMethod)) return call.get(value);
    return ZTypedPtr(valueAt(place)).keyOfValue(value);
}

int ZType::findPropertyIndex(const ZSelector& name, const ZVariant& value) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->findSyntheticPropertyIndex(ZTypedPtr(this), today, value);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.findPropertyIndex(place.otherName, value);
    if (place.kind == PropertyPlace::Nowhere) return -1;
    if (Call call = accessor(place, &ZMetaType::findIndexMethod)) return call.find(value);
    return ZTypedPtr(valueAt(place)).indexOfValue(value);
}

ZVariant ZType::mappedProperty(const ZSelector& name, const ZSelector& key) const { return getPropertyItem(name, key); }

bool ZType::setMappedProperty(const ZSelector& name, const ZSelector& key, const ZVariant& value) {
    return setPropertyItem(name, key, value, true);
}

bool ZType::removeMappedProperty(const ZSelector& name, const ZSelector& key) {
    return removePropertyItem(name, ZVariant(key));
}

// Writing

bool ZType::removePropertyItem(const ZSelector& name, const ZVariant& key) {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->removeSyntheticPropertyItem(ZTypedPtr(this), today, key);
    if (place.kind == PropertyPlace::Elsewhere)
        return forward(this, place, true,
                       [&](ZTypedPtr& to, const ZSelector& as) { return to.removePropertyItem(as, key); });
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (Call call = accessor(place, &ZMetaType::removerMethod)) return told(this, place, true, call.set(key));
    return change(this, place, true, [&](ZVariant& value) { return value.removeItem(key); });
}

bool ZType::removePropertyItem(const ZSelector& name, int index) {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->removeSyntheticPropertyItem(ZTypedPtr(this), today, index);
    if (place.kind == PropertyPlace::Elsewhere)
        return forward(this, place, true,
                       [&](ZTypedPtr& to, const ZSelector& as) { return to.removePropertyItem(as, index); });
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (Call call = accessor(place, &ZMetaType::removeByIndexMethod))
        return told(this, place, true, call.set(ZVariant(index)));
    if (place.property->isArray())
        if (Call call = accessor(place, &ZMetaType::removerMethod))
            return told(this, place, true, call.set(ZVariant(index)));
    return change(this, place, true, [&](ZVariant& value) { return value.removeItem(index); });
}

bool ZType::insertPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify) {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->insertSyntheticPropertyItem(ZTypedPtr(this), today, key, value, notify);
    if (place.kind == PropertyPlace::Elsewhere)
        return forward(this, place, notify, [&](ZTypedPtr& to, const ZSelector& as) {
            return to.insertPropertyItem(as, key, value, notify);
        });
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (Call call = accessor(place, &ZMetaType::inserterMethod)) return told(this, place, notify, call.set(key, value));
    return change(this, place, notify, [&](ZVariant& held) { return held.insertItem(key, value); });
}

bool ZType::addPropertyItem(const ZSelector& name, const ZVariant& value, bool notify) {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->addSyntheticPropertyItem(ZTypedPtr(this), today, value, notify);
    if (place.kind == PropertyPlace::Elsewhere)
        return forward(this, place, notify,
                       [&](ZTypedPtr& to, const ZSelector& as) { return to.addPropertyItem(as, value, notify); });
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (Call call = accessor(place, &ZMetaType::adderMethod)) return told(this, place, notify, call.set(value));
    return change(this, place, notify, [&](ZVariant& held) { return held.appendItem(value); });
}

bool ZType::setPropertyItem(const ZSelector& name, int index, const ZVariant& value, bool notify) {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->setSyntheticPropertyItem(ZTypedPtr(this), today, index, value, notify);
    if (place.kind == PropertyPlace::Elsewhere)
        return forward(this, place, notify, [&](ZTypedPtr& to, const ZSelector& as) {
            return to.setPropertyItem(as, index, value, notify);
        });
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (place.property->isArray())
        if (Call call = itemSetter(place)) return told(this, place, notify, call.set(ZVariant(index), value));
    return change(this, place, notify, [&](ZVariant& held) { return held.setItem(index, value); });
}

bool ZType::setPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value, bool notify) {
    return setPropertyItem(name, ZVariant(key), value, notify);
}

bool ZType::setPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value, bool notify) {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Synthetic)
        return metaType->setSyntheticPropertyItem(ZTypedPtr(this), today, key, value, notify);
    if (place.kind == PropertyPlace::Elsewhere)
        return forward(this, place, notify,
                       [&](ZTypedPtr& to, const ZSelector& as) { return to.setPropertyItem(as, key, value, notify); });
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (Call call = itemSetter(place)) return told(this, place, notify, call.set(key, value));
    return change(this, place, notify, [&](ZVariant& held) { return held.setItem(key, value); });
}

bool ZType::setDynamicPropertyItem(const ZSelector& name, int index, const ZVariant& value) {
    return hasDynamicProperty(replacePropertyName(name)) && setPropertyItem(name, index, value, true);
}

bool ZType::setDynamicPropertyItem(const ZSelector& name, const ZSelector& key, const ZVariant& value) {
    return setDynamicPropertyItem(name, ZVariant(key), value);
}

bool ZType::setDynamicPropertyItem(const ZSelector& name, const ZVariant& key, const ZVariant& value) {
    return hasDynamicProperty(replacePropertyName(name)) && setPropertyItem(name, key, value, true);
}

// Enums: the value's type names the items

namespace {
/// The value that words stand for in the enum of a property, or of its items.
bool enumItem(const ZType* self, const ZSelector& name, bool item, const ZSelector& words, ZVariant& value) {
    toolkit::EpochGuard guard;
    ZProperty* property = self->findProperty(nullptr, name, false);
    ZMetaType* type = !property ? nullptr : item ? property->getItemType() : self->propertyType(name);
    if (!type || type->getDataType()->kind() != ZMetaType::Enum) return false;
    int number = self->scanEnum(type->getDataType()->getName(), words);
    return value.setValue(type->getDataType(), &number, true, false);
}
} // namespace

bool ZType::setEnumProperty(const ZSelector& name, const ZSelector& item, bool notify) {
    ZVariant value;
    return enumItem(this, name, false, item, value) && setProperty(nullptr, name, value, notify);
}

bool ZType::addEnumPropertyItem(const ZSelector& name, const ZSelector& item, bool notify) {
    ZVariant value;
    return enumItem(this, name, true, item, value) && addPropertyItem(name, value, notify);
}

bool ZType::setEnumPropertyItem(const ZSelector& name, int index, const ZSelector& item, bool notify) {
    ZVariant value;
    return enumItem(this, name, true, item, value) && setPropertyItem(name, index, value, notify);
}

bool ZType::setEnumPropertyItem(const ZSelector& name, const ZSelector& key, const ZSelector& item, bool notify) {
    return setEnumPropertyItem(name, ZVariant(key), item, notify);
}

bool ZType::setEnumPropertyItem(const ZSelector& name, const ZVariant& key, const ZSelector& item, bool notify) {
    ZVariant value;
    return enumItem(this, name, true, item, value) && setPropertyItem(name, key, value, notify);
}

int ZType::getEnumFlags(const ZSelector& name) const { return getProperty(name).toInt(); }

bool ZType::setEnumFlags(const ZSelector& name, const ZSelector& words) {
    ZVariant value;
    if (!enumItem(this, name, false, words, value)) return false;
    int flags = getEnumFlags(name) | value.toInt();
    return value.setValue(value.type(), &flags, true, false) && setProperty(name, value);
}

bool ZType::removeEnumFlags(const ZSelector& name, const ZSelector& words) {
    ZVariant value;
    if (!enumItem(this, name, false, words, value)) return false;
    int flags = getEnumFlags(name) & ~value.toInt();
    return value.setValue(value.type(), &flags, true, false) && setProperty(name, value);
}
