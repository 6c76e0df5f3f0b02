#include "value/plainProperties.h"

#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZProperty.h"
#include "toolkit/epoch.h"

namespace orv::plain {
namespace {

void give(ZTypedPtr* typed, const ZTypedPtr& place) {
    if (typed) *typed = place;
}
bool isSynthetic(const ZTypedPtr& at, const ZSelector& name) {
    return at.type->isSynthetic() && at.type->hasSyntheticProperty(at, name);
}
/// The value of the first part of a path, and the parts behind it.
ZVariant firstOf(const ZTypedPtr& at, const ZSelector& path, ZSelector& rest) {
    rest = path.suffix();
    return getProperty(at, nullptr, path.param(0), true);
}

/// Writes a path into a map: to the key of that whole name if there is one, else into the value under its first part,
/// else as a new key.
bool setInMap(ZVariant& map, const ZSelector& path, const ZVariant& value) {
    if (!map.hasKey(path) && path.deepName()) {
        const ZSelector first = path.param(0);
        if (map.hasKey(first)) {
            ZVariant part = map.itemByKey(first);
            if (part.isZType()) return part.setProperty(path.suffix(), value);
            return part.detach() && part.setProperty(path.suffix(), value) && map.setItem(first, part);
        }
    }
    return map.setItem(path, value);
}

bool setDeep(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& path, const ZVariant& value, bool notify) {
    ZSelector rest;
    ZVariant part = firstOf(at, path, rest);
    if (part.isNull() || rest.isEmpty()) return false;
    // An instance is shared by who refers to it: it is written itself.
    if (part.isZType()) return part.setProperty(rest, value);
    if (!part.detach()) return false;
    const bool isMap = part.typeIndexLabel() == ZMetaType::SelectMap;
    if (!(isMap ? setInMap(part, rest, value) : part.setProperty(rest, value))) return false;
    return setProperty(at, typed, path.param(0), part, notify);
}

} // namespace

bool property(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) {
    if (name.isEmpty()) return false;
    if (isSynthetic(at, name)) {
        give(typed, at);
        return at.type->syntheticProperty(at, name, found, resolve);
    }
    ZTypedPtr place(at);
    if (at.type->propertyDef(&place, name, found)) {
        ZVariant value;
        ZTypedPtr reader(at);
        if (resolve && at.type->getPropertyDef(&reader, name, value)) found.setValue(value);
        give(typed, place);
        return true;
    }
    if (!name.deepName()) return false;
    ZSelector rest;
    ZVariant part = firstOf(at, name, rest);
    return !part.isNull() && ZTypedPtr(part).property(part.isZType() ? typed : nullptr, rest, found, resolve);
}

ZProperty* findProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    ZTypedPtr place(at);
    ZProperty* found = name.isEmpty() ? nullptr : at.type->findPropertyDef(&place, name);
    if (found) give(typed, place);
    return found;
}

ZProperty* findPropertyPath(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& path, ZSelector& rest) {
    if (ZProperty* whole = findProperty(at, typed, path)) {
        rest.clear();
        return whole;
    }
    if (!path.deepName()) return nullptr;
    ZProperty* first = findProperty(at, typed, path.param(0));
    if (first) rest = path.suffix();
    return first;
}

bool hasProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    if (name.isEmpty()) return false;
    ZTypedPtr place(at);
    if (isSynthetic(at, name) || at.type->hasPropertyDef(&place, name)) {
        give(typed, place);
        return true;
    }
    if (!name.deepName()) return false;
    ZSelector rest;
    ZVariant part = firstOf(at, name, rest);
    return !part.isNull() && ZTypedPtr(part).hasProperty(part.isZType() ? typed : nullptr, rest);
}

ZMetaType* getPropertyType(const ZTypedPtr& at, const ZSelector& name) { return propertyType(at, nullptr, name); }

ZMetaType* propertyType(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name) {
    if (name.isEmpty()) return nullptr;
    if (isSynthetic(at, name)) {
        give(typed, at);
        return at.type->getSyntheticPropertyType(at, name);
    }
    ZTypedPtr place(at);
    if (ZMetaType* type = at.type->propertyDefType(&place, name)) {
        give(typed, place);
        return type;
    }
    if (!name.deepName()) return nullptr;
    ZSelector rest;
    ZVariant part = firstOf(at, name, rest);
    return part.isNull() ? nullptr : ZTypedPtr(part).propertyType(part.isZType() ? typed : nullptr, rest);
}

ZSelector propertyOptions(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    ZProperty* found = findProperty(at, nullptr, name);
    return found ? found->options() : ZSelector();
}

bool matchingPropertyType(const ZTypedPtr& at, const ZSelector& name, const ZMetaType* wanted) {
    ZMetaType* type = getPropertyType(at, name);
    if (!type || !wanted) return false;
    return type->isVariant() || wanted == type || wanted->typeOf(type->getDataType());
}

ZVariant getProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, bool expand) {
    if (name.isEmpty()) return {};
    if (isSynthetic(at, name)) {
        give(typed, at);
        return at.type->getSyntheticProperty(at, name, expand);
    }
    ZVariant value;
    ZTypedPtr place(at);
    if (at.type->getPropertyDef(&place, name, value)) {
        give(typed, place);
        return expand ? value.expand() : value;
    }
    if (!name.deepName()) return {};
    ZSelector rest;
    ZVariant part = firstOf(at, name, rest);
    if (part.isNull() || rest.isEmpty()) return {};
    return ZTypedPtr(part).getProperty(part.isZType() ? typed : nullptr, rest, expand);
}

bool resolveProperty(const ZTypedPtr& at, const ZSelector& name, ZVariant& value) {
    if (!hasProperty(at, nullptr, name)) return false;
    value = getProperty(at, nullptr, name, true);
    return true;
}

ZVariant storedProperty(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    return at.type->storedPropertyDef(name) ? getProperty(at, nullptr, name, true) : ZVariant();
}

bool setProperty(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& name, const ZVariant& value, bool notify) {
    if (name.isEmpty()) return false;
    toolkit::EpochGuard guard;
    ZTypedPtr place(at);
    if (ZProperty* found = at.type->findPropertyDef(&place, name)) {
        if (found->readOnly()) return false;
        place = at;
        ZMethod* setter = at.type->setterMethod(&place, name, false);
        if (!setter || !place.type->setVariant(setter, place.instance, value)) return false;
        give(typed, place);
        return true;
    }
    if (isSynthetic(at, name)) {
        give(typed, at);
        return at.type->setSyntheticProperty(at, name, value, notify);
    }
    return name.type() == ZSelector::UID && setDeep(at, typed, name, value, notify);
}

bool containsVariableProperty(const ZTypedPtr& at) {
    ZArrayT<ZSelector> names;
    if (!propertyNames(at, names)) return false;
    for (const ZSelector& name : names)
        if (containsVariableProperty(at, name)) return true;
    return false;
}

bool containsVariableProperty(const ZTypedPtr& at, const ZSelector& name) {
    toolkit::EpochGuard guard;
    ZProperty* found = findProperty(at, nullptr, name);
    return found && (found->variable() || getProperty(at, nullptr, name, true).isVariableType());
}

bool updateProperties(const ZTypedPtr& at, ZTypedPtr* typed, PropertyVisit filter, PropertyVisit update, void* context,
                      bool recursive, bool detached) {
    ZTypedPtr place(typed ? *typed : at);
    return at.type->updatePropertyDefs(&place, filter, update, context, recursive, detached);
}

uint propertyCount(const ZTypedPtr& at) {
    return at.type->propertyDefCount() + (at.type->isSynthetic() ? at.type->syntheticPropertyCount(at) : 0);
}

bool propertyNames(const ZTypedPtr& at, ZArrayT<ZSelector>& names) {
    return at.type->propertyDefNames(names) && (!at.type->isSynthetic() || at.type->syntheticPropertyNames(at, names));
}

bool storedPropertyNames(const ZTypedPtr& at, ZArrayT<ZSelector>& names) {
    for (int i = 0, count = at.type->storedPropertyCount(); i < count; ++i)
        if (!names.append(at.type->storedPropertyName(i))) return false;
    return true;
}

} // namespace orv::plain
