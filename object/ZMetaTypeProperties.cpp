#include "core/ZHashSetT.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/ZPropertyRef.h"
#include "object/propertyAccess.h"
#include "object/propertyTables.h"
#include "object/tableBuild.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

#include <cstring>

namespace {

using orv::PropertyCatalogue;
using orv::PropertyTree;
using Entry = PropertyCatalogue::Entry;

/// Adds an entry with a record of its own.
bool putNew(PropertyTree& tree, const ZProperty& property) {
    ZProperty* record = property.copy();
    ZPropertyPtr* entry = record ? ZPropertyPtr::create(record) : nullptr;
    if (record) record->release();
    if (entry && tree.add(entry)) return true;
    if (entry) entry->release();
    return false;
}

/// Adds an entry that shares a record unless its name is there.
bool addShared(PropertyTree& tree, const ZPropertyPtr& entry) {
    return tree.contains(entry.key()) || tree.add(entry) != nullptr;
}

bool replace(PropertyTree& tree, const ZProperty& property) {
    return tree.remove(property.name()) && putNew(tree, property);
}

/// What a thread fills for `ZMetaType::createProperties`.
using PropertyBuilding = orv::TableBuild<PropertyTree>;

/// Changes a table: the one that this thread is building, or a copy of the published one, which then takes its place.
/// `change` is called again if somebody else was faster.
template <class F> bool changeTable(ZMetaType& type, bool user, F change) {
    orv::PropertyTables& tables = type.record().properties;
    if (PropertyTree* building = user ? nullptr : PropertyBuilding::find(&type)) return change(*building);
    orv::PropertyPublish done = orv::PropertyPublish::Outdated;
    while (done == orv::PropertyPublish::Outdated) {
        PropertyTree tree;
        uint seen;
        {
            toolkit::EpochGuard guard;
            if (!user && !type.createProperties()) return false;
            seen = toolkit::loadAcquire(tables.edits);
            orv::PublishedProperties* from = user ? tables.users.load() : tables.types.load();
            if (!user && !from) continue;
            if (from) tree = from->tree;
        }
        if (!change(tree)) return false;
        done = orv::publishProperties(tables, user ? tables.users : tables.types, tree, seen, true);
    }
    return done == orv::PropertyPublish::Done;
}

bool givenToInstances(const ZProperty& property) {
    return (property.flags() & (ZProperty::Dynamic | ZProperty::Optional)) == ZProperty::Dynamic;
}

/// The catalogue's entries one after the other, as long as `visit` answers true.
template <class F> bool forEach(const ZMetaType* type, F visit) {
    toolkit::EpochGuard guard;
    const PropertyCatalogue* all = orv::propertyCatalogue(type);
    if (!all) return false;
    for (const Entry& entry : all->entries)
        if (!visit(entry)) return false;
    return true;
}

void moveTo(ZTypedPtr* typed, ZMetaType* owner, int offset) {
    if (!typed) return;
    typed->type = owner;
    if (typed->instance) typed->instance = static_cast<char*>(typed->instance) + offset;
}

} // namespace

// Building

bool ZMetaType::createProperties() {
    orv::PropertyTables& tables = own->properties;
    auto build = reinterpret_cast<bool (*)(ZMetaType*)>(getCallback(CreateProperties));
    orv::PropertyPublish done;
    do {
        const uint seen = toolkit::loadAcquire(tables.edits);
        if (tables.types.load() || PropertyBuilding::find(this)) return true;
        PropertyBuilding building(this);
        orv::CategoryCopies categories;
        if ((build && !build(this)) || !orv::joinCategoryProperties(this, categories)) return false;
        ZScopedLock held(own->change);
        if (tables.types.load()) return true;
        done = orv::publishProperties(tables, tables.types, building.table, seen, false);
        if (done == orv::PropertyPublish::Done) categories.keep(*own, &orv::CategoryLink::properties);
    } while (done == orv::PropertyPublish::Outdated);
    return done == orv::PropertyPublish::Done;
}

namespace orv {

const PropertyTree* propertiesUnderConstruction(const ZMetaType* type) { return PropertyBuilding::find(type); }

} // namespace orv

// User properties

bool ZMetaType::addUserProperty(const ZProperty& property) {
    return !property.name().isEmpty() &&
           changeTable(*this, true, [&](PropertyTree& tree) { return replace(tree, property); });
}

bool ZMetaType::addUserProperties(const PropertyTable& properties) {
    return changeTable(*this, true, [&](PropertyTree& tree) {
        for (const ZPropertyPtr& entry : properties)
            if (!tree.remove(entry.key()) || !tree.add(entry)) return false;
        return true;
    });
}

bool ZMetaType::addUserProperties(const ZMetaType* source) {
    toolkit::EpochGuard guard;
    return source && addUserProperties(orv::userProperties(source));
}

bool ZMetaType::removeUserProperty(const ZSelector& name) {
    toolkit::EpochGuard guard;
    return orv::userProperties(this).contains(name) &&
           changeTable(*this, true, [&](PropertyTree& tree) { return tree.remove(name); });
}

bool ZMetaType::setUserProperties(const PropertyTable& properties) {
    return changeTable(*this, true, [&](PropertyTree& tree) {
        tree = properties;
        return true;
    });
}

const ZMetaType::PropertyTable& ZMetaType::getUserProperties() const { return orv::userProperties(this); }

bool ZMetaType::getUserProperties(ZArrayT<ZSelector>& names) const {
    toolkit::EpochGuard guard;
    for (const ZPropertyPtr& entry : orv::userProperties(this))
        if (!names.append(entry.key())) return false;
    return true;
}

// Declared properties

bool ZMetaType::setPropertyDef(const ZProperty& property) {
    if (property.name().isEmpty()) return false;
    if (givenToInstances(property)) setDynamicProperties(true);
    return changeTable(*this, false, [&](PropertyTree& tree) { return replace(tree, property); });
}

bool ZMetaType::addPropertyDef(const ZPropertyPtr& property) {
    if (!property.property() || property.key().isEmpty()) return false;
    if (givenToInstances(*property.property())) setDynamicProperties(true);
    bool added = false;
    return changeTable(*this, false, [&](PropertyTree& tree) {
        added = !tree.contains(property.key());
        return added && tree.add(property) != nullptr;
    });
}

bool ZMetaType::addPropertyDefs(const PropertyTable& properties) {
    for (const ZPropertyPtr& entry : properties)
        if (entry.property() && givenToInstances(*entry.property())) setDynamicProperties(true);
    return changeTable(*this, false, [&](PropertyTree& tree) {
        for (const ZPropertyPtr& entry : properties)
            if (!addShared(tree, entry)) return false;
        return true;
    });
}

bool ZMetaType::addPropertyDefs(const ZMetaType* source) {
    toolkit::EpochGuard guard;
    return source && addPropertyDefs(orv::declaredProperties(source));
}

bool ZMetaType::removePropertyDef(const ZSelector& name) {
    toolkit::EpochGuard guard;
    return orv::declaredProperties(this).contains(name) &&
           changeTable(*this, false, [&](PropertyTree& tree) { return tree.remove(name); });
}

bool ZMetaType::setPropertyTypes(const PropertyTable& properties) {
    for (const ZPropertyPtr& entry : properties)
        if (entry.property() && givenToInstances(*entry.property())) setDynamicProperties(true);
    return changeTable(*this, false, [&](PropertyTree& tree) {
        tree = properties;
        return true;
    });
}

const ZMetaType::PropertyTable& ZMetaType::getPropertyTypes() const { return orv::declaredProperties(this); }

bool ZMetaType::getPropertyTypes(ZArrayT<ZSelector>& names) const {
    toolkit::EpochGuard guard;
    for (const ZPropertyPtr& entry : orv::declaredProperties(this))
        if (!names.append(entry.key())) return false;
    return true;
}

// Lookup

uint ZMetaType::fixedPropertyCount() const {
    toolkit::EpochGuard guard;
    return orv::declaredProperties(this).count();
}

uint ZMetaType::propertyDefCount() const {
    toolkit::EpochGuard guard;
    const PropertyCatalogue* all = orv::propertyCatalogue(this);
    return all ? all->entries.count() : 0;
}

ZProperty* ZMetaType::findPropertyDef(ZTypedPtr* typed, const ZSelector& name) const {
    if (name.isEmpty()) return nullptr;
    toolkit::EpochGuard guard;
    orv::PropertyLookup* row = orv::lookUpProperty(this, name);
    if (!row) return nullptr;
    moveTo(typed, row->owner, row->offset);
    return row->property;
}

ZProperty* ZMetaType::findPropertyDef(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    for (const PropertyTree* tree : {&orv::userProperties(this), &orv::declaredProperties(this)})
        if (const ZPropertyPtr* entry = tree->find(name)) return entry->property();
    return nullptr;
}

bool ZMetaType::propertyDef(ZTypedPtr* typed, const ZSelector& name, ZProperty& found) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(typed, name);
    if (property) found = *property;
    return property != nullptr;
}

bool ZMetaType::propertyDef(const ZSelector& name, ZProperty& found) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(name);
    if (property) found = *property;
    return property != nullptr;
}

ZProperty* ZMetaType::findPropertyOfType(const ZMetaType* type) const {
    ZProperty* found = nullptr;
    forEach(this, [&](const Entry& entry) {
        ZMetaType* held = entry.property->value().mainType();
        if (type && held && (held == type || held->isDescendant(type))) found = entry.property;
        return !found;
    });
    return found;
}

bool ZMetaType::hasPropertyDef(ZTypedPtr* typed, const ZSelector& name) const {
    toolkit::EpochGuard guard;
    return findPropertyDef(typed, name) != nullptr;
}

bool ZMetaType::hasPropertyDef(const ZSelector& name) const { return hasPropertyDef(nullptr, name); }

// Catalogue

bool ZMetaType::propertyDefNames(ZArrayT<ZSelector>& names) const {
    return forEach(this, [&](const Entry& entry) { return names.append(entry.property->name()); });
}

bool ZMetaType::collectPropertyDefNames(ZHashSetT<ZSelector>& names) const {
    return forEach(this, [&](const Entry& entry) { return names.add(entry.property->name()); });
}

bool ZMetaType::collectProperties(PropertyTable& properties) const {
    return forEach(this, [&](const Entry& entry) { return addShared(properties, ZPropertyPtr(entry.property)); });
}

bool ZMetaType::propertyDefsWithOptions(const ZSelector& words, ZArrayT<ZSelector>& names) const {
    return forEach(this, [&](const Entry& entry) {
        return !entry.property->hasOption(words) || names.append(entry.property->name());
    });
}

bool ZMetaType::propertyDefsWithOptions(const ZSelector& words, PropertyTable& properties) const {
    return forEach(this, [&](const Entry& entry) {
        return !entry.property->hasOption(words) || addShared(properties, ZPropertyPtr(entry.property));
    });
}

bool ZMetaType::collectRetainedObjectNames(ZArrayT<ZSelector>& names) const {
    return forEach(this, [&](const Entry& entry) {
        return !entry.property->retainedObject() || names.append(entry.property->name());
    });
}

// Queries

int ZMetaType::propertyDefVersion(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(nullptr, name);
    return property ? property->version() : -1;
}

uint ZMetaType::propertyDefFlags(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(nullptr, name);
    return property ? property->flags() : 0;
}

bool ZMetaType::isDynamicPropertyDef(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(nullptr, name);
    return property && property->dynamic();
}

bool ZMetaType::isResolvedPropertyDef(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(nullptr, name);
    return property && property->resolved();
}

bool ZMetaType::isCollectionPropertyDef(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(nullptr, name);
    return property && property->collection();
}

ZMetaType* ZMetaType::propertyDefType(const ZSelector& name) const { return propertyDefType(nullptr, name); }

ZMetaType* ZMetaType::propertyDefType(ZTypedPtr* typed, const ZSelector& name) const {
    toolkit::EpochGuard guard;
    ZProperty* property = findPropertyDef(typed, name);
    if (!property) return nullptr;
    ZMetaType* type = property->value().type();
    return type ? type : property->getItemType();
}

// Values of instances

bool ZMetaType::getPropertyDef(ZTypedPtr* typed, const ZSelector& name, ZVariant& value) const {
    if (!typed || !typed->instance || name.isEmpty()) return false;
    toolkit::EpochGuard guard;
    orv::PropertyLookup* row = orv::lookUpProperty(this, name);
    const orv::CachedMethod* getter = row ? orv::readAccessor(this, row) : nullptr;
    const void* at = typed->instance;
    if (!getter ||
        !orv::callGetter(getter->method, static_cast<const char*>(at) + getter->offset, row->readPlan, value))
        return false;
    moveTo(typed, row->owner, row->offset);
    return true;
}

bool ZMetaType::getPropertyDef(const ZProperty* property, const void* instance, ZVariant& value) const {
    if (!property) return false;
    ZTypedPtr typed(const_cast<ZMetaType*>(this), instance);
    return getPropertyDef(&typed, property->name(), value);
}

bool ZMetaType::enumeratePropertyDefs(const void* instance, orv::PropertyVisit visit, void* context) const {
    return forEach(this, [&](const Entry& entry) {
        ZVariant value;
        orv::readEntry(this, entry, instance, value);
        return visit(*entry.property, value, context);
    });
}

bool ZMetaType::hasStoredVariableName(const void* instance, const ZSelector& name) const {
    bool found = false;
    forEach(this, [&](const Entry& entry) {
        ZVariant value;
        if (entry.property->storable() && getPropertyDef(entry.property, instance, value) && value.isSelector())
            found = value.toSelector() == name && name.variableName();
        return !found;
    });
    return found;
}

bool ZMetaType::setupProperties(ZType* instance) {
    if (!instance) return false;
    toolkit::EpochGuard guard;
    const PropertyCatalogue* all = orv::propertyCatalogue(this);
    if (!all) return false;
    if (!all->dynamic) return true;
    for (const Entry& entry : all->entries) {
        if (!givenToInstances(*entry.property) || instance->dynamicProperties.contains(entry.property->name()))
            continue;
        if (!putNew(instance->dynamicProperties, *entry.property)) return false;
    }
    return true;
}

// Delegates: what declared properties with the flag `Delegate` hold

bool ZMetaType::delegateProperties(const ZType* instance, int index, ZTypedPtr& typed) const {
    toolkit::EpochGuard guard;
    const PropertyCatalogue* all = orv::propertyCatalogue(this);
    if (!all || !all->delegates || !instance || index < 0) return false;
    for (const Entry& entry : all->entries) {
        if (!entry.property->hasFlags(ZProperty::Delegate)) continue;
        ZVariant value;
        if (!getPropertyDef(entry.property, instance, value)) continue;
        // The instance keeps its delegates; a value that goes with this variant can't be one.
        ZType* held = value.toType();
        if (!held || held == instance || value.referenceCount() < 2) continue;
        if (index-- > 0) continue;
        typed = ZTypedPtr(held);
        return true;
    }
    return false;
}

bool ZMetaType::delegatePropertyRef(const ZType* instance, const ZSelector& name, ZPropertyRef& ref) const {
    ZTypedPtr delegate;
    for (int i = 0; delegateProperties(instance, i, delegate); ++i) {
        auto held = static_cast<ZType*>(delegate.instance);
        ZPropertyRef found(held, name);
        if (found.isNull()) continue;
        ref = std::move(found);
        return true;
    }
    return false;
}
