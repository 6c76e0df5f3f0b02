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

bool ZPackage::linkType(ZMetaType* type) {
    if (!type) return false;
    const ZSelector name = type->getName();
    {
        ZScopedLock held(*static_cast<const ZPackage*>(this));
        if (!typeIndex.reserve(1) || !types.set(ZRetainKeyT<ZSelector, ZMetaType>(name, type))) return false;
        typeIndex.put(name, type);
    }
    for (ZPackageLink* link = usedByHead; link; link = link->usedByNext) {
        ZPackage* user = link->user;
        ZScopedLock held(*static_cast<const ZPackage*>(user));
        if (!user->usedTypesDirty && user->seesTypesOf(this) && !user->usedIndex.put(name, type))
            toolkit::store(user->usedTypesDirty, true);
    }
    orv::typesChanged();
    return true;
}

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
    for (ZPackageLink* link = usedByHead; link; link = link->usedByNext) {
        ZScopedLock held(*static_cast<const ZPackage*>(link->user));
        link->user->usedIndex.drop(name, type);
    }
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
    ZScopedLock held(*this);
    ZArrayT<ZMetaType*> found;
    bool whole = true;
    usedIndex.each([&](ZMetaType* type) { whole = found.append(type) && whole; });
    if (!whole) ZError::fail();
    return found;
}

ZMetaType* ZPackage::findPackageType(const ZSelector& name) const { return typeIndex.find(name); }

ZMetaType* ZPackage::findMetaType(const ZSelector& name) const {
    if (ZMetaType* own = typeIndex.find(name)) return own;
    if (ORV_UNLIKELY(toolkit::load(usedTypesDirty))) resetUsedTypes();
    if (ZMetaType* used = usedIndex.find(name)) return used;
    const ZPackage* above = root();
    return above && above != this ? above->findMetaType(name) : nullptr;
}

ZMetaType* ZPackage::findType(const ZSelector& name) const { return find(name, true, 0); }
ZMetaType* ZPackage::findExisting(const ZSelector& name) const { return find(name, false, 0); }

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

/// Makes an instance of a template whose name is a type and whose arguments are.
ZMetaType* ZPackage::findInstance(const ZSelector& name, int depth) {
    if (!find(name.methodName(), true, depth + 1)) return nullptr;
    for (int i = 0, count = name.parcount(); i < count; ++i)
        if (!find(name.param(i), true, depth + 1)) return nullptr;
    auto owner = const_cast<ZPackage*>(findTemplateOwner(name));
    ZMetaType* made;
    {
        ZScopedLock held(*static_cast<const ZPackage*>(owner));
        if (ZMetaType* known = owner->findMetaType(name)) return known;
        made = zmake<ZMetaType>(owner, name, ZMetaType::Class, orv::passType(ztype<ZMetaType>()));
    }
    if (!made) return nullptr;
    made->resetType(true);
    // The package has its own reference.
    made->release();
    return made;
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
    const auto add = [&all](ZPackage* package) {
        if (!package) return;
        for (ZPackage* known : std::as_const(all))
            if (known == package) return;
        all.append(package);
    };
    for (int i = 0; i < count; ++i) add(packageOf(name.param(i)));
    add(base);
    topologicalOrdering(all);
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
