#include "object/packageTypes.h"

#include "core/construct.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/typeGeneration.h"
#include "object/ztype.h"

#include <cstring>

// The types of packages by name.

namespace {
/// How deep the arguments of templates nest in a name, and how many "*" it may end in.
constexpr int deepestName = 32, mostPointers = 4;

/// What the type itself calls a variant: inside of its owner a type bears its last name alone.
ZSelector variantName(const ZSelector& name, const ZSelector& main, const ZSelector& own) {
    if (own == main) return name;
    const char* text = name.string();
    const char* at = std::strstr(text, main.string());
    if (!at) return name;
    return ZSelector(text, int(at - text)).combine(own).join(at + main.length());
}
} // namespace

bool ZPackage::setTypeCount(uint count) {
    ZScopedLock held(*static_cast<const ZPackage*>(this));
    return (count <= types.count() || types.expand(count - types.count())) && typeIndex.reserve(count);
}

/// Enters a type unless one of that name is there and isn't to be replaced; answers the one that is there then, null
/// without memory.
ZMetaType* ZPackage::enterType(ZMetaType* type, bool replace) {
    const ZSelector name = type->getName();
    ZRetainPtrT<ZMetaType> replaced;
    {
        ZScopedLock held(*static_cast<const ZPackage*>(this));
        if (const auto* known = std::as_const(types).get(name)) {
            if (!replace) return known->get();
            replaced = *known;
        }
        if (!typeIndex.reserve(1) || !types.set(ZRetainKeyT<ZSelector, ZMetaType>(name, type))) return nullptr;
        typeIndex.put(name, type);
    }
    tellUsers(name, nullptr);
    orv::typesChanged();
    return type;
}

/// Lets the users have what stands under the name by now; without one, `gone` isn't found there any more.
void ZPackage::tellUsers(const ZSelector& name, const ZMetaType* gone) {
    ZScopedLock held(orv::packageUses);
    ZMetaType* type = typeIndex.find(name);
    for (const ZPackageLink* link = usedByHead; link; link = link->usedByNext) {
        ZPackage* user = link->user;
        if (!type)
            user->usedIndex.drop(name, gone);
        else if (!user->usedTypesDirty && user->seesTypesOf(this) && !user->usedIndex.put(name, type))
            toolkit::store(user->usedTypesDirty, true);
    }
}

bool ZPackage::linkType(ZMetaType* type) { return type && enterType(type, true); }

void ZPackage::unlinkType(ZMetaType* type) {
    if (!type) return;
    const ZSelector name = type->getName();
    ZRetainPtrT<ZMetaType> gone;
    {
        ZScopedLock held(*static_cast<const ZPackage*>(this));
        typeIndex.drop(name, type);
        if (const auto* known = std::as_const(types).get(name); known && *known == type) {
            gone = *known;
            types.remove(name);
        }
    }
    tellUsers(name, type);
    orv::typesRemoved();
    ZInlineType::forget(type);
}

bool ZPackage::addTypes(const ZArrayT<ZMetaType*>& all) {
    for (ZMetaType* type : all) {
        if (!linkType(type)) return false;
        type->setPackage(this);
    }
    return true;
}

ZPackage::Types ZPackage::getTypes() const {
    ZScopedLock held(*this);
    return types;
}

ZArrayT<ZMetaType*> ZPackage::getUsedTypes() const {
    resetUsedTypes();
    ZScopedLock held(orv::packageUses);
    ZArrayT<ZMetaType*> found;
    bool whole = true;
    usedIndex.each([&](ZMetaType* type) { whole = found.append(type) && whole; });
    if (!whole) ZError::fail();
    return found;
}

ZMetaType* ZPackage::findPackageType(const ZSelector& name) const { return typeIndex.find(name); }

ZMetaType* ZPackage::findMetaType(const ZSelector& name) const {
    if (ZMetaType* known = indexed(name)) return known;
    const ZPackage* above = root();
    return above && above != this ? above->findMetaType(name) : nullptr;
}

ZMetaType* ZPackage::findType(const ZSelector& name) const {
    ZMetaType* known = indexed(name);
    return ORV_LIKELY(known != nullptr) ? known : find(name, true, 0);
}
ZMetaType* ZPackage::findExisting(const ZSelector& name) const {
    ZMetaType* known = indexed(name);
    return ORV_LIKELY(known != nullptr) ? known : find(name, false, 0);
}

// Here and not with the other lookups of a type: most end in the root's index, without a call.
ZMetaType* ZMetaType::find(const ZSelector& name) {
    const ZPackage* root = ZPackage::root();
    return root ? root->ZPackage::findType(name) : nullptr;
}
ZMetaType* ZMetaType::findExisting(const ZSelector& name) {
    const ZPackage* root = ZPackage::root();
    return root ? root->findExisting(name) : nullptr;
}

ZMetaType* ZPackage::find(const ZSelector& name, bool make, int depth) const {
    if (name.isEmpty() || depth > deepestName) return nullptr;
    if (ZMetaType* known = findMetaType(name)) return known;
    if (const ZSelector owner = name.package(); !owner.isEmpty()) {
        ZPackage* other = make ? orv::loadPackage(owner) : retainPackage(owner);
        if (!other) return nullptr;
        ZMetaType* found = other->find(name.typeName(), make, depth + 1);
        other->release();
        return found;
    }
    const ZSelector main = name.mainType();
    if (!(main == name)) {
        ZMetaType* type = name.ptrCount() <= mostPointers ? find(main, make, depth + 1) : nullptr;
        if (!type) return nullptr;
        const ZSelector variant = variantName(name, main, type->getName());
        return make ? type->getQualified(variant) : type->findQualified(variant);
    }
    if (name.type() == ZSelector::Types) return findNested(name, make, depth);
    return make && name.type() == ZSelector::Template ? const_cast<ZPackage*>(this)->findInstance(name, depth)
                                                      : nullptr;
}

ZEnumType* ZPackage::findEnum(const ZSelector& name) const {
    ZMetaType* found = findExisting(name);
    return found ? found->enumType() : nullptr;
}

ZMetaType* ZPackage::findNested(const ZSelector& name, bool make, int depth) const {
    ZMetaType* type = find(name.param(0), make, depth + 1);
    for (int i = 1, count = name.parcount(); type && i < count; ++i) {
        const ZMetaType::Types nested = type->getTypes();
        const auto* inner = nested.get(name.param(i));
        type = inner ? inner->get() : nullptr;
    }
    return type;
}

/// Makes an instance of a template whose name is a type and whose arguments are. Nothing is locked meanwhile: of
/// several threads that make the same one, all get that of the first.
ZMetaType* ZPackage::findInstance(const ZSelector& name, int depth) {
    if (!find(name.methodName(), true, depth + 1)) return nullptr;
    for (int i = 0, count = name.parcount(); i < count; ++i)
        if (!find(name.param(i), true, depth + 1)) return nullptr;
    auto owner = const_cast<ZPackage*>(findTemplateOwner(name));
    if (!owner) return nullptr;
    if (ZMetaType* known = owner->findMetaType(name)) return known;
    auto made = zmake<ZMetaType>(nullptr, name, ZMetaType::Class, orv::passType(ztype<ZMetaType>()));
    if (!made) return nullptr;
    made->setPackage(owner);
    made->initTemplateType(name);
    made->resetType(true);
    ZMetaType* entered = owner->enterType(made, false);
    // The package has its own reference.
    made->release();
    return entered;
}

const ZPackage* ZPackage::findTemplateOwner(const ZSelector& name) const {
    const int count = name.parcount();
    if (name.type() != ZSelector::Template || count < 1) return this;
    const auto packageOf = [this](const ZSelector& part) -> ZPackage* {
        const ZMetaType* type = findType(part);
        return type ? type->package() : nullptr;
    };
    ZPackage* base = packageOf(name.methodName());
    if (count == 1) {
        ZPackage* argument = packageOf(name.param(0));
        if (base && (!argument || base->uses(argument))) return base;
        return argument ? argument : this;
    }
    ZArrayT<ZPackage*> all;
    // Those that are left out for lack of memory might be the owner.
    const auto add = [&all](ZPackage* package) { return !package || all.contains(package) || all.append(package); };
    bool whole = true;
    for (int i = 0; i < count; ++i) whole = whole && add(packageOf(name.param(i)));
    if (!whole || !add(base) || !topologicalOrdering(all)) return nullptr;
    return all.isEmpty() ? this : std::as_const(all)[0];
}

ZMetaType* ZPackage::pluginType(const ZSelector& id) const {
    const Types all = getTypes();
    ZMetaType* first = nullptr;
    for (const auto& entry : all) {
        ZMetaType* type = entry.value();
        const ZSelector own = type->getPluginId();
        if (own.isEmpty()) continue;
        if (!id.isEmpty() && own == id) return type;
        if (!first && type->isZType()) first = type;
    }
    return first;
}

namespace orv {

ZSelector packageName(const ZPackage* package) { return package ? package->selector() : ZSelector(); }
bool isPublicPackage(const ZPackage* package) { return package && package->isPublic(); }
/// A type that failed to be constructed isn't entered: the package's reference would keep the wreck alive.
bool linkPackageType(ZPackage* package, ZMetaType* type) { return package && !zfailed() && package->linkType(type); }
void unlinkPackageType(ZPackage* package, ZMetaType* type) {
    if (package) package->unlinkType(type);
}
ZMetaType* findPackageType(const ZPackage* package, const ZSelector& name, bool make) {
    if (!package) package = ZPackage::root();
    if (!package) return nullptr;
    return make ? package->findType(name) : package->findExisting(name);
}

} // namespace orv
