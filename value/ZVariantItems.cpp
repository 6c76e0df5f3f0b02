#include "object/ZMetaType.h"
#include "object/names.h"
#include "value/ZTypedPtr.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

static bool isValueList(const ZVariant& value) {
    const int label = value.typeIndexLabel();
    return label == ZMetaType::Array || label == ZMetaType::HashSet || value.typeName() == zsel<"ZTypeArray">();
}

uint ZVariant::itemCount() const { return ZTypedPtr(*this).itemCount(); }
ZVariant ZVariant::itemByIndex(int index) const { return ZTypedPtr(*this).itemByIndex(index); }
ZVariant ZVariant::itemByKey(const ZSelector& key) const { return ZTypedPtr(*this).itemByKey(key); }
ZVariant ZVariant::itemByKey(const ZVariant& key) const { return ZTypedPtr(*this).itemByKey(key); }
ZVariant ZVariant::keyByIndex(int index) const { return ZTypedPtr(*this).keyByIndex(index); }

bool ZVariant::setItem(int index, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setItem(index, value);
}
bool ZVariant::setItem(const ZSelector& key, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setItem(key, value);
}
bool ZVariant::setItem(const ZVariant& key, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).setItem(key, value);
}
bool ZVariant::appendItem(const ZVariant& value) { return ownValue() && ZTypedPtr(*this).appendItem(value); }
bool ZVariant::insertItem(const ZVariant& key, const ZVariant& value) {
    return ownValue() && ZTypedPtr(*this).insertItem(key, value);
}
bool ZVariant::removeItem(int index) { return ownValue() && ZTypedPtr(*this).removeItem(index); }
bool ZVariant::removeItem(const ZSelector& key) { return ownValue() && ZTypedPtr(*this).removeItem(key); }
bool ZVariant::removeItem(const ZVariant& key) { return ownValue() && ZTypedPtr(*this).removeItem(key); }
bool ZVariant::removeValue(const ZVariant& value) { return ownValue() && ZTypedPtr(*this).removeValue(value); }
bool ZVariant::clearItems() { return ownValue() && ZTypedPtr(*this).clearItems(); }

bool ZVariant::contains(const ZVariant& item) const {
    if (typeType() == ZMetaType::Selector) return toSelector().contains(item.toSelector());
    if (typeType() == ZMetaType::String) return toString().pos(item.toString()) >= 0;
    // The key of an array is a position, which isn't asked for.
    const bool array = typeIndexLabel() == ZMetaType::Array || typeName() == zsel<"ZTypeArray">();
    if (array ? containsValue(item) : hasKey(item)) return true;
    // An array or set of values is in another one when all of these are.
    if (!isValueList(*this) || !isValueList(item)) return false;
    ZFailGuard guard;
    const ZVArray values(item), own(*this);
    if (!guard.rose()) return own.contains(values);
    guard.forget();
    return false;
}
bool ZVariant::containsValue(const ZVariant& value) const { return ZTypedPtr(*this).containsValue(value); }
bool ZVariant::hasKey(const ZSelector& key) const { return ZTypedPtr(*this).hasKey(key); }
bool ZVariant::hasKey(const ZVariant& key) const { return ZTypedPtr(*this).hasKey(key); }
int ZVariant::indexOfKey(const ZSelector& key) const { return ZTypedPtr(*this).indexOfKey(key); }
int ZVariant::indexOfKey(const ZVariant& key) const { return ZTypedPtr(*this).indexOfKey(key); }
int ZVariant::indexOfValue(const ZVariant& value) const { return ZTypedPtr(*this).indexOfValue(value); }
ZVariant ZVariant::keyOfValue(const ZVariant& value) const { return ZTypedPtr(*this).keyOfValue(value); }
ZSelector ZVariant::selectorOfValue(const ZVariant& value) const { return ZTypedPtr(*this).selectorOfValue(value); }
