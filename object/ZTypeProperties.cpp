#include "core/ZHashSetT.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/propertyAccess.h"
#include "object/propertyPlace.h"

using orv::PropertyPlace;

namespace {
/// Adds a name unless it is there.
bool addName(ZArrayT<ZSelector>& names, ZHashSetT<ZSelector>& known, const ZSelector& name) {
    if (known.contains(name)) return true;
    return known.add(name) && names.append(name);
}

/// Calls `visit` with each property of the instance and each declared one that it doesn't cover, as long as it answers
/// true. What `visit` changes meanwhile shows in the next walk.
template <class F> bool forEachProperty(const ZType* self, F visit) {
    const ZType::DynamicProperties own = self->getDynamicProperties();
    for (const ZPropertyPtr& entry : own)
        if (entry.property() && !visit(*entry.property())) return false;
    const ZMetaType* type = self->type();
    if (!type) return true;
    toolkit::EpochGuard guard;
    const orv::PropertyCatalogue* all = orv::propertyCatalogue(type);
    if (!all) return false;
    for (const orv::PropertyCatalogue::Entry& entry : all->entries)
        if (!own.contains(entry.property->name()) && !visit(*entry.property)) return false;
    return true;
}
} // namespace

// Catalogue

ZProperty* ZType::getMetaProperty(const ZSelector& name) const {
    return metaType ? metaType->findPropertyDef(nullptr, name) : nullptr;
}

ZSelector ZType::replacePropertyName(const ZSelector& name) const { return name; }

uint ZType::propertyCount() const {
    uint count = 0;
    forEachProperty(this, [&](const ZProperty&) { return ++count != 0; });
    if (metaType && metaType->isSynthetic()) count += metaType->syntheticPropertyCount(ZTypedPtr(this));
    return count;
}

bool ZType::dynamicPropertyNames(ZArrayT<ZSelector>& names) const {
    for (const ZPropertyPtr& entry : dynamicProperties)
        if (entry.property() && !names.append(entry.key())) return false;
    return true;
}

bool ZType::propertyNames(ZArrayT<ZSelector>& names) const {
    if (!forEachProperty(this, [&](const ZProperty& property) { return names.append(property.name()); })) return false;
    if (!metaType || !metaType->isSynthetic()) return true;
    return metaType->syntheticPropertyNames(ZTypedPtr(this), names);
}

bool ZType::storedPropertyNames(ZArrayT<ZSelector>& names) const {
    return forEachProperty(
        this, [&](const ZProperty& property) { return !property.storable() || names.append(property.name()); });
}

bool ZType::delegatePropertyNames(ZArrayT<ZSelector>& names) const {
    ZHashSetT<ZSelector> known;
    const DynamicProperties held = dynamicProperties;
    for (const ZPropertyPtr& entry : held) {
        if (!entry.property() || !entry->hasFlags(ZProperty::Delegate)) continue;
        const ZType* delegate = entry->value().toType();
        ZArrayT<ZSelector> own;
        if (!delegate || delegate == this || !delegate->propertyNames(own)) continue;
        for (const ZSelector& name : own)
            if (!addName(names, known, name)) return false;
    }
    return true;
}

bool ZType::collectPropertyNames(ZHashSetT<ZSelector>& names) const {
    return forEachProperty(this, [&](const ZProperty& property) { return names.add(property.name()); });
}

bool ZType::retainedObjectNames(ZArrayT<ZSelector>& names) const {
    return forEachProperty(
        this, [&](const ZProperty& property) { return !property.retainedObject() || names.append(property.name()); });
}

bool ZType::propertiesWithOptions(const ZSelector& words, ZArrayT<ZSelector>& names) const {
    return forEachProperty(
        this, [&](const ZProperty& property) { return !property.hasOption(words) || names.append(property.name()); });
}

bool ZType::enumerateProperties(orv::PropertyVisit visit, void* context) const {
    // A visitor may change the instance: the entries that are being walked stay.
    const DynamicProperties walked(dynamicProperties);
    for (const ZPropertyPtr& entry : walked) {
        if (!entry.property()) continue;
        ZVariant value = entry->value();
        if (entry->resolved()) value = resolveValue(value);
        if (!visit(*entry.property(), value, context)) return false;
    }
    const ZMetaType* type = metaType;
    if (!type) return true;
    toolkit::EpochGuard guard;
    const orv::PropertyCatalogue* all = orv::propertyCatalogue(type);
    if (!all) return false;
    for (const orv::PropertyCatalogue::Entry& entry : all->entries) {
        if (!walked.isEmpty() && walked.contains(entry.property->name())) continue;
        ZVariant value;
        orv::readEntry(type, entry, this, value);
        if (entry.property->resolved()) value = resolveValue(value);
        if (!visit(*entry.property, value, context)) return false;
    }
    return true;
}

// Lookup

ZProperty* ZType::dynamicProperty(const ZSelector& name) const {
    const ZPropertyPtr* entry = dynamicProperties.find(name);
    return entry ? entry->property() : nullptr;
}

bool ZType::dynamicProperty(const ZSelector& name, ZProperty& found) const {
    ZProperty* property = dynamicProperty(name);
    if (property) found = *property;
    return property != nullptr;
}

bool ZType::property(ZTypedPtr* typed, const ZSelector& name, ZProperty& found, bool resolve) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    switch (place.kind) {
    case PropertyPlace::Dynamic:
        found = *place.property;
        found.setFlags(found.flags() | ZProperty::Dynamic);
        if (resolve && found.resolved()) found.replaceValue(resolveValue(found.value()));
        if (typed) *typed = ZTypedPtr(this);
        return true;
    case PropertyPlace::Declared: {
        ZVariant value;
        found = *place.property;
        if (orv::readPlace(place, typed, resolve, value)) found.replaceValue(std::move(value));
        return true;
    }
    case PropertyPlace::Synthetic:
        if (typed) *typed = ZTypedPtr(this);
        return metaType->syntheticProperty(ZTypedPtr(this), today, found, resolve);
    case PropertyPlace::Elsewhere:
        return place.other.property(place.lend(typed), place.otherName, found, resolve);
    default:
        return false;
    }
}

bool ZType::property(const ZSelector& name, ZProperty& found, bool resolve) const {
    return property(nullptr, name, found, resolve);
}

bool ZType::property(const ZSelector& name, ZProperty& found) const { return property(nullptr, name, found, true); }

ZProperty* ZType::findProperty(ZTypedPtr* typed, const ZSelector& name, bool localOnly) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today, localOnly);
    if (place.kind == PropertyPlace::Elsewhere) {
        // Nor can a record be lent that goes with what was read on the way. Values have those of their types.
        const bool stays = place.holder.isNull() || !place.holder.isZType() || place.holder.referenceCount() > 1;
        return stays ? place.other.findProperty(place.lend(typed), place.otherName, localOnly) : nullptr;
    }
    if (place.property && typed) *typed = ZTypedPtr(this);
    return place.property;
}

ZProperty* ZType::findPropertyRoot(ZTypedPtr* typed, const ZSelector& name) const {
    return findProperty(typed, name.deepName() && name.parcount() > 1 ? name.param(0) : name, false);
}

ZProperty* ZType::findPropertyPath(ZTypedPtr* typed, const ZSelector& path, ZSelector& rest) const {
    const int parts = path.deepName() ? path.parcount() : 1;
    ZProperty* found = nullptr;
    ZTypedPtr at(this);
    ZVariant value;
    int part = 0;
    for (; part < parts; ++part) {
        ZSelector name = parts == 1 ? path : path.param(part);
        ZTypedPtr owner = at;
        ZProperty* next = at.findProperty(&owner, name, false);
        if (!next) break;
        found = next;
        if (typed) *typed = owner;
        value = at.getProperty(name);
        // The path ends at a value that nothing else keeps.
        if (!value.isZType() || value.referenceCount() < 2) {
            ++part;
            break;
        }
        at = ZTypedPtr(value);
    }
    rest = part < parts ? (part ? path.extract(part, parts) : path) : ZSelector();
    return found;
}

void ZType::delegatePropertyChanged(const ZSelector&) {}

int ZType::propertyVersion(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findProperty(nullptr, name, false);
    return property ? property->version() : -1;
}

uint ZType::propertyFlags(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findProperty(nullptr, name, false);
    return property ? property->flags() : 0;
}

ZSelector ZType::propertyOptions(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findProperty(nullptr, name, false);
    return property ? property->options() : ZSelector();
}

bool ZType::hasPropertyOption(const ZSelector& name, const ZSelector& word) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findProperty(nullptr, name, false);
    return property && property->hasOption(word);
}

bool ZType::containsVariableName(const ZSelector& name) const {
    if (!name.variableName()) return false;
    for (const ZPropertyPtr& entry : dynamicProperties)
        if (entry.property() && entry->value().isSelector() && entry->value().toSelector() == name) return true;
    return metaType && metaType->hasStoredVariableName(this, name);
}

bool ZType::containsVariableProperty() const {
    return !forEachProperty(this, [](const ZProperty& property) { return !property.variable(); });
}

bool ZType::containsVariableProperty(const ZSelector& name) const { return propertyFlags(name) & ZProperty::Variable; }

bool ZType::isDynamicProperty(const ZSelector& name) const {
    return hasDynamicProperty(name) || (metaType && metaType->isDynamicPropertyDef(name));
}

bool ZType::isResolvedProperty(const ZSelector& name) const { return propertyFlags(name) & ZProperty::Resolve; }

bool ZType::isDynamicResolved(const ZSelector& name) const {
    ZProperty* property = dynamicProperty(name);
    return property && property->resolved();
}

bool ZType::isCollectionProperty(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findProperty(nullptr, name, false);
    return property && property->collection();
}

bool ZType::hasProperty(ZTypedPtr* typed, const ZSelector& name) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    // Who was found elsewhere has said so already.
    if (place.kind == PropertyPlace::Elsewhere)
        return !typed || place.other.hasProperty(place.lend(typed), place.otherName);
    if (place.kind == PropertyPlace::Nowhere) return false;
    if (typed) *typed = ZTypedPtr(this);
    return true;
}

bool ZType::hasProperty(const ZSelector& name) const { return hasProperty(nullptr, name); }

bool ZType::hasDynamicProperty(const ZSelector& name) const { return dynamicProperty(name) != nullptr; }

bool ZType::hasDefinedProperty(const ZSelector& name) const { return metaType && metaType->hasPropertyDef(name); }

ZMetaType* ZType::propertyDefinitionType(const ZSelector& name) const {
    ZTypedPtr typed(this);
    toolkit::EpochGuard guard;
    return metaType && metaType->findPropertyDef(&typed, name) ? typed.type : nullptr;
}

ZMetaType* ZType::getPropertyType(const ZSelector& name) const { return propertyType(nullptr, name); }

ZMetaType* ZType::propertyType(const ZSelector& name) const { return propertyType(nullptr, name); }

ZMetaType* ZType::propertyType(ZTypedPtr* typed, const ZSelector& name) const {
    ZSelector today = replacePropertyName(name);
    PropertyPlace place(this, today);
    if (place.kind == PropertyPlace::Elsewhere) return place.other.propertyType(place.lend(typed), place.otherName);
    if (place.kind == PropertyPlace::Nowhere) return nullptr;
    if (typed) *typed = ZTypedPtr(this);
    if (place.kind == PropertyPlace::Synthetic) return metaType->getSyntheticPropertyType(ZTypedPtr(this), today);
    ZMetaType* type = place.property->value().type();
    return type ? type : place.property->getItemType();
}

// Reading

ZVariant ZType::resolveValue(const ZVariant& value) const { return value; }

bool ZType::resolveProperty(const ZSelector& name, ZVariant& value) const {
    return isResolvedProperty(name) && orv::readProperty(this, nullptr, replacePropertyName(name), true, value);
}

ZVariant ZType::getDynamicProperty(const ZSelector& name) const {
    ZProperty* property = dynamicProperty(name);
    return property ? property->value().expand() : ZVariant();
}

ZVariant ZType::storedProperty(const ZSelector& name) const {
    return propertyFlags(name) & ZProperty::Store ? getProperty(name) : ZVariant();
}

ZVariant ZType::getProperty(ZTypedPtr* typed, const ZSelector& name, bool expand) const {
    ZVariant value;
    orv::readProperty(this, typed, replacePropertyName(name), expand, value);
    return expand && orv::holdsVariant(value) ? value.expand() : value;
}

ZVariant ZType::getProperty(const ZSelector& name, bool expand) const { return getProperty(nullptr, name, expand); }

ZVariant ZType::getProperty(const ZSelector& name) const { return getProperty(nullptr, name, true); }

bool ZType::matchingPropertyType(const ZSelector& name, const ZMetaType* type) const {
    ZMetaType* wanted = propertyType(name);
    if (!wanted || !type) return false;
    const ZMetaType *data = type->getDataType(), *target = wanted->getDataType();
    return target->isVariant() || data == target || data->isDescendant(target);
}

bool ZType::matchingPropertyType(const ZSelector& name, const ZVariant& value) const {
    return matchingPropertyType(name, value.mainType());
}
