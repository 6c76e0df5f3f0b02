#include "object/ZInlineType.h"
#include "object/ZMetaTypeData.h"
#include "object/packageTypes.h"
#include "object/tableBuild.h"

#include <cstring>

// Types by name, and the types nested in one.

ZMetaType* ZMetaType::findType(const ZSelector& name) const {
    if (name.isEmpty()) return nullptr;
    const ZMetaType* type = described();
    if (name == type->own->name) return const_cast<ZMetaType*>(type);
    // A plain name may be that of a nested type of this one or of those around it.
    for (const ZMetaType* at = type; at; at = at->getOwnerType())
        if (ZMetaType* found = at->findNested(name)) return found;
    if (type->own->package)
        if (ZMetaType* found = orv::findPackageType(type->own->package, name, true)) return found;
    return find(name);
}

ZMetaType* ZMetaType::findNested(const ZSelector& name) const {
    Types types = getTypes();
    return types.isEmpty() ? nullptr : findInTypeNameMap(types, name);
}

ZMetaType* ZMetaType::findInTypeNameMap(const Types& types, const ZSelector& name) {
    if (const auto* exact = types.get(name)) return exact->get();
    const ZSelector main = name.mainType();
    if (main == name || main.isEmpty()) return nullptr;
    const auto* found = types.get(main);
    return found ? (*found)->getQualified(name) : nullptr;
}

ZMetaType* ZMetaType::findInTypeMap(const Types& types, const ZSelector& name) {
    if (ZMetaType* found = findInTypeNameMap(types, name)) return found;
    const ZSelector main = name.mainType();
    if (main.type() != ZSelector::Types) return nullptr;
    const auto* outer = types.get(main.param(0));
    ZMetaType* type = outer ? outer->get() : nullptr;
    for (int i = 1; type && i < main.parcount(); ++i) {
        const Types nested = type->getTypes();
        const auto* inner = nested.get(main.param(i));
        type = inner ? inner->get() : nullptr;
    }
    if (!type || main == name) return type;
    // Inside of its owner the type bears its last name alone.
    const char* text = name.string();
    const char* inName = std::strstr(text, main.string());
    ZSelector inner(text, int(inName - text));
    return type->getQualified(inner.combine(type->own->name).join(inName + main.length()));
}

bool ZMetaType::hasPackage(const ZArrayT<ZMetaType*>& types, const ZPackage* package) {
    for (const ZMetaType* type : types)
        if (type && type->package() == package) return true;
    return false;
}
void ZMetaType::useTypes(const ZArrayT<ZMetaType*>& types) {
    for (ZMetaType* type : types)
        if (type) type->retain();
}
void ZMetaType::unuseTypes(const ZArrayT<ZMetaType*>& types) {
    for (ZMetaType* type : types)
        if (type) type->release();
}

ZPackage* ZMetaType::package() const { return toolkit::loadAcquire(own->package); }
void ZMetaType::setPackage(ZPackage* package) {
    toolkit::storeRelease(own->package, package);
    ZScopedReadLock held(own->variants);
    for (const auto& entry : std::as_const(own->qualified)) toolkit::storeRelease(entry.value()->own->package, package);
}
bool ZMetaType::isPluginType(const ZSelector& id) const { return !id.isEmpty() && getPluginId() == id; }

// Nested types

/// What a thread fills for `ZMetaType::createTypes`.
using TypesBuilding = orv::TableBuild<ZMetaType::Types>;

ZMetaType::Types ZMetaType::getTypes() const {
    if (const Types* building = TypesBuilding::find(described())) return *building;
    const_cast<ZMetaType*>(described())->createTypes();
    ZScopedReadLock held(described()->own->change);
    return described()->own->nested;
}
bool ZMetaType::getTypes(ZArrayT<ZMetaType*>& types) const {
    for (const auto& entry : getTypes())
        if (!types.append(entry.value().get())) return false;
    return true;
}
bool ZMetaType::setTypes(const Types& types) {
    clearSubTypes();
    for (const auto& entry : types)
        if (!addType(entry.value())) return false;
    return true;
}

bool ZMetaType::addType(ZMetaType* type) {
    if (!type || type == this || type->mainType) return false;
    const ZSelector name = type->own->name.type() == ZSelector::Types ? type->own->name.baseName() : type->own->name;
    const ZRetainKeyT<ZSelector, ZMetaType> entry(name, type);
    if (Types* building = TypesBuilding::find(this)) {
        if (!building->set(entry)) return false;
    } else {
        ZScopedLock held(own->change);
        if (!own->nested.set(entry)) return false;
    }
    toolkit::storeRelease(type->own->ownerType, this);
    return true;
}
bool ZMetaType::removeType(const ZSelector& name) {
    ZRetainPtrT<ZMetaType> gone;
    {
        ZScopedLock held(own->change);
        if (const auto* known = std::as_const(own->nested).get(name)) gone = *known;
        if (!gone || !own->nested.remove(name)) return false;
    }
    leaveOwner(gone);
    return true;
}
bool ZMetaType::removeType(const ZMetaType* type) {
    ZSelector name;
    for (const auto& entry : getTypes())
        if (entry.value() == type) name = entry.key();
    return !name.isEmpty() && removeType(name);
}

/// A type that isn't found in its owner any more; code that refers to it by name looks it up anew.
void ZMetaType::leaveOwner(ZMetaType* type) {
    toolkit::storeRelease(type->own->ownerType, nullptr);
    orv::typesRemoved();
    ZInlineType::forget(type);
}

void ZMetaType::clearSubTypes() {
    Types gone;
    {
        ZScopedLock held(own->change);
        gone.swap(own->nested);
        toolkit::addFetch(own->typesResets, 1u);
        toolkit::store(own->typesState, orv::tableUnbuilt);
    }
    for (const auto& entry : std::as_const(gone)) leaveOwner(entry.value());
}
void ZMetaType::removeSubTypes() {
    for (const auto& entry : getTypes()) {
        entry.value()->setPackage(nullptr);
        entry.value()->clearLinkedTypes();
    }
    clearSubTypes();
}
void ZMetaType::resetSubTypes() {
    clearSubTypes();
    orv::typesChanged();
}

bool ZMetaType::createTypes() {
    for (;;) {
        if (ORV_LIKELY(toolkit::loadAcquire(own->typesState) == orv::tableBuilt)) return true;
        // Asked by its own builder, who gets what it has so far.
        if (TypesBuilding::find(this)) return true;
        TypesBuilding building(this);
        const uint resets = toolkit::loadAcquire(own->typesResets);
        auto build = reinterpret_cast<bool (*)(ZMetaType*)>(getCallback(CreateTypes));
        if (build && !build(this)) return false;
        ZScopedLock held(own->change);
        if (own->typesState == orv::tableBuilt || own->typesResets != resets) continue;
        Types all = own->nested;
        for (const auto& entry : std::as_const(building.table))
            if (!all.set(entry)) return false;
        own->nested.swap(all);
        toolkit::storeRelease(own->typesState, byte(orv::tableBuilt));
        return true;
    }
}
