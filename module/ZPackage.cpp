#include "module/ZPackage.h"

#include "core/construct.h"
#include "core/debug.h"
#include "core/memlock.h"
#include "module/packages.h"
#include "object/ZInlineMethod.h"
#include "object/ZMetaTypeData.h"
#include "object/ZTypeCategory.h"
#include "object/packageTypes.h"
#include "object/typeGeneration.h"
#include "object/ztype.h"

namespace {

/// All packages there are, for `findPackage`.
struct OpenPackages {
    ZSpinLock guard;
    ZPackage* first = nullptr;
};
constinit OpenPackages open;

} // namespace

constinit ZPackage* ZPackage::rootPackage = nullptr;

// Lifetime

ZPackage::ZPackage(const __ZPassMetaType* type, ZInternal* given)
    : ZObject(type ? type : orv::passType(ztype<ZPackage>()), given) {
    if (!makelock(this, true, true)) ZError::fail();
    setmemlocklabel(this, "ZPackage", 0);
    if (!rootPackage) rootPackage = this;
    ZScopedLock held(open.guard);
    nextOpen = open.first;
    open.first = this;
}

ZPackage::~ZPackage() {
    {
        ZScopedLock held(open.guard);
        ZPackage** link = &open.first;
        while (*link && *link != this) link = &(*link)->nextOpen;
        if (*link) *link = nextOpen;
    }
    releasePackage();
}

ZPackage* ZPackage::findPackage(const ZSelector& name) {
    if (name.isEmpty()) return nullptr;
    ZScopedLock held(open.guard);
    for (ZPackage* package = open.first; package; package = package->nextOpen)
        if (package->packageName == name) return package;
    return nullptr;
}
ZPackage* ZPackage::retainPackage(const ZSelector& name) {
    if (name.isEmpty()) return nullptr;
    ZScopedLock held(open.guard);
    for (ZPackage* package = open.first; package; package = package->nextOpen)
        if (package->packageName == name && ::retain(package)) return package;
    return nullptr;
}

void ZPackage::setSelector(const ZSelector& name) {
    ZObject::setSelector(name);
    ZScopedLock held(open.guard);
    packageName = name;
}

// Start and stop

bool ZPackage::setup() {
    if (setupFunc && !setupFunc(this, false)) zdebug("package %s: not all types could be made", packageName.string());
    if (isPublic()) publish(nullptr);
    resetBases();
    for (ZTypeCategory* category : getCategories())
        if (!category->setupCategory()) zdebug("category %s isn't set up", category->selector().string());
    setupImplicitMap();
    const bool done = !setupFunc || setupFunc(this, true);
    ZInlineType::resetInvalid();
    return done;
}

void ZPackage::resetBases() {
    // Types made before that of metatypes have none yet; so has this package.
    if (ZMetaType* own = ztype<ZPackage>(); own && !type()) setType(own);
    const Types all = getTypes();
    for (const auto& entry : all) {
        ZMetaType* found = entry.value();
        if (!found->type())
            if (ZMetaType* own = orv::typeOfType(*found)) found->setType(own);
        found->setRetainedMode();
        if (!found->resetBase()) {
            for (const ZSelector& base : found->getBaseNames())
                if (!findType(base)) zdebug("type %s: base %s isn't known", found->getName().string(), base.string());
        }
        found->resetCategories();
    }
}

void ZPackage::setupImplicitMap() {
    const Types all = getTypes();
    for (const auto& entry : all) entry.value()->setupImplicitMap();
}

void ZPackage::closePack() {
    if (TClosePackage close = std::exchange(closeFunc, nullptr)) close(this);
}

void ZPackage::release() {
    ZModule* told = refcount() == 1 ? std::exchange(module, nullptr) : nullptr;
    ZObject::release();
    if (told) told->packageClosed(nullptr);
}
void ZPackage::unload() {
    ZModule* told = std::exchange(module, nullptr);
    deleting();
    delete this;
    if (told) told->packageClosed(nullptr);
}

void ZPackage::dropValues() {
    const Types all = getTypes();
    for (const auto& entry : all) {
        orv::MetaTypeData& type = entry.value()->record();
        type.properties.clear();
        for (const auto& nested : std::as_const(type.nested)) nested.value()->record().properties.clear();
    }
}

void ZPackage::forgetMetaTypes() {
    const Types all = getTypes();
    for (const auto& entry : all) entry.value()->setType(static_cast<ZMetaType*>(nullptr));
    setType(static_cast<ZMetaType*>(nullptr));
}

void ZPackage::releasePackage() {
    if (std::exchange(released, true)) return;
    toolkit::store(instances, 0x3FFFFFFF);
    {
        const Types all = getTypes();
        for (const auto& entry : all) entry.value()->setSingleton(nullptr);
        closePack();
        removeCategory();
        clearInlines();
        for (const auto& entry : all) entry.value()->setPluginId({});
    }
    releaseLinks();
    setType(static_cast<ZMetaType*>(nullptr));
    releaseTypes();
    if (module) module->packageClosed(this);
    if (root() == this) toolkit::storeRelease(rootPackage, static_cast<ZPackage*>(nullptr));
}

/// Who uses this package, and whom it uses, don't know it any more. A reference that a link holds goes with it; the
/// last one to this package isn't among them, since its holder is here.
void ZPackage::releaseLinks() {
    const auto take = [](ZPackageLink* const& first, auto&& whileLocked) {
        ZScopedLock held(orv::packageUses);
        ZPackageLink* link = first;
        if (!link) return link;
        whileLocked(*link->user);
        link->unlink();
        return link;
    };
    const auto forgetTypes = [this](ZPackage& user) {
        typeIndex.each([&](const ZMetaType* type) { user.usedIndex.drop(type->getName(), type); });
        toolkit::store(user.usedTypesDirty, true);
    };
    while (ZPackageLink* link = take(usedByHead, forgetTypes)) {
        const int count = link->count;
        zrelease(link);
        for (int i = 0; i < count; ++i) decmemref(this);
    }
    while (ZPackageLink* link = take(usesHead, [](ZPackage& user) { user.usedIndex.clear(); })) {
        ZPackage* used = link->used;
        const int count = link->count;
        zrelease(link);
        for (int i = 0; i < count; ++i) used->release();
    }
}

/// In passes: types refer to each other, so none goes before all have let go. One that somebody else still holds lives
/// on without a package.
void ZPackage::releaseTypes() {
    Types all;
    {
        ZScopedLock held(*static_cast<const ZPackage*>(this));
        typeIndex.clear();
        all.swap(types);
    }
    orv::typesRemoved();
    // Those that were resolved while the package was closing.
    inlineTypes.resetAll();
    const Types& own = all;
    for (const auto& entry : own) {
        entry.value()->clearLinkedTypes();
        entry.value()->setPackage(nullptr);
    }
    for (const auto& entry : own) {
        entry.value()->clearVariants();
        entry.value()->setType(static_cast<ZMetaType*>(nullptr));
    }
    for (const auto& entry : own) entry.value()->removeSubTypes();
    // From the last to the first; what is left without memory goes with the map.
    while (all.count() && all.removeIndex(all.count() - 1)) {}
}

// Inline records

void ZPackage::clearInlines() {
    inlineTypes.resetAll();
    if (toolkit::load(inlineMethodCount) > 0) ZInlineMethod::clearMultiMethods(this);
}
void ZPackage::changeInlines(bool added) { toolkit::addFetch(inlineMethodCount, added ? 1 : -1); }

// Selector groups

bool ZPackage::selectorGroupNames(ZArrayT<ZSelector>& names) const {
    ZScopedLock held(*this);
    for (const auto& group : selectorGroups)
        if (!names.append(group.key())) return false;
    return true;
}

ZSelectorMap ZPackage::selectorGroup(const ZSelector& name) const {
    ZScopedLock held(*this);
    const ZSelectorMap* group = selectorGroups.get(name);
    return group ? *group : ZSelectorMap();
}

bool ZPackage::setSelectorGroup(const ZSelector& name, const ZSelectorMap& group) {
    ZScopedLock held(*static_cast<const ZPackage*>(this));
    if (!selectorGroups.set(name, group)) return false;
    selectorIndexDirty = true;
    return true;
}

ZSelector ZPackage::localSelector(const ZSelector& name) const {
    ZScopedLock held(*this);
    if (selectorIndexDirty) {
        ZSelectorMap all;
        selectorIndexDirty = !collectSelectors(all);
        selectorIndex = all;
    }
    return selectorIndex.get(name);
}
bool ZPackage::collectSelectors(ZSelectorMap& selectors) const {
    ZScopedLock held(*this);
    bool whole = true;
    for (const auto& group : selectorGroups) whole &= selectors.append(group.value());
    return whole;
}

ZSelector ZPackage::getNamedSelector(const ZSelector& name, bool localOnly) const {
    if (localOnly) return localSelector(name);
    if (const ZSelector space = name.nameSpace(); !space.isEmpty()) {
        const ZMetaType* type = findExisting(space);
        return type ? type->getNamedSelector(name.baseName()) : ZSelector();
    }
    ZSelector found = localSelector(name);
    if (found.isEmpty())
        for (const auto& used : usedPackages())
            if (found = used->localSelector(name); !found.isEmpty()) break;
    if (found.isEmpty() && root() && root() != this) found = root()->getNamedSelector(name, false);
    return found;
}
