#include "core/construct.h"
#include "module/ZPackage.h"
#include "module/packages.h"
#include "object/typeGeneration.h"

// Which packages use which, and in what order they depend on each other. Links are read and changed under the lock of
// uses.

namespace orv {
constinit ZSpinLock packageUses;
}

bool ZPackageLink::activeLink() const { return user && used && user->visited && used->visited; }

void ZPackageLink::link() {
    if (linked) return;
    usedByPrev = used->usedByTail;
    (usedByPrev ? usedByPrev->usedByNext : used->usedByHead) = this;
    used->usedByTail = this;
    usesPrev = user->usesTail;
    (usesPrev ? usesPrev->usesNext : user->usesHead) = this;
    user->usesTail = this;
    linked = 1;
}

void ZPackageLink::unlink() {
    if (!linked) return;
    (usedByPrev ? usedByPrev->usedByNext : used->usedByHead) = usedByNext;
    (usedByNext ? usedByNext->usedByPrev : used->usedByTail) = usedByPrev;
    (usesPrev ? usesPrev->usesNext : user->usesHead) = usesNext;
    (usesNext ? usesNext->usesPrev : user->usesTail) = usesPrev;
    usedByPrev = usedByNext = usesPrev = usesNext = nullptr;
    linked = 0;
}

void ZPackageLink::clear() {
    unlink();
    count = 0;
}

void ZPackageLink::assign(const ZPackageLink& other) {
    unlink();
    user = other.user;
    used = other.used;
}

ZPackageLink* ZPackage::findLink(const ZPackage* other) const {
    for (ZPackageLink* link = usesHead; link; link = link->usesNext)
        if (link->used == other) return link;
    return nullptr;
}

bool ZPackage::use(ZPackage* other) {
    if (!other || released) return false;
    other->retain();
    bool done;
    {
        ZScopedLock held(orv::packageUses);
        ZPackageLink* link = findLink(other);
        if (!link && (link = zmake<ZPackageLink>())) {
            link->user = this;
            link->used = other;
            link->link();
        }
        if (link) ++link->count;
        done = link != nullptr;
    }
    addUsedPackageTypes(other);
    orv::typesChanged();
    if (!done) other->release();
    return done;
}

bool ZPackage::use(const ZSelector& name) {
    ZPackage* package = orv::loadPackage(name);
    if (!package) return false;
    const bool done = use(package);
    package->release();
    return done;
}

bool ZPackage::unuse(ZPackage* other) {
    {
        ZScopedLock held(orv::packageUses);
        ZPackageLink* link = findLink(other);
        if (!link) return false;
        if (--link->count < 1) {
            link->unlink();
            zrelease(link);
            toolkit::store(usedTypesDirty, true);
        }
    }
    orv::typesChanged();
    other->release();
    return true;
}
bool ZPackage::unuse(const ZSelector& name) { return unuse(findPackage(name)); }

bool ZPackage::uses(const ZPackage* other) const {
    if (!other) return false;
    ZScopedLock held(orv::packageUses);
    return findLink(other) != nullptr;
}

ZPackage::Packages ZPackage::usedPackages() const {
    Packages all;
    ZScopedLock held(orv::packageUses);
    for (const ZPackageLink* link = usesHead; link; link = link->usesNext)
        if (!all.append(ZRetainPtrT<ZPackage>(link->used))) return {};
    return all;
}

bool ZPackage::publish(ZPackage* target) {
    if (!target) target = root();
    return target && target != this && target->use(this);
}

// The types of used packages in one table

/// Types of public packages are found through the root.
bool ZPackage::seesTypesOf(const ZPackage* other) const {
    return other != this && (this == root() || !other->isPublic());
}

bool ZPackage::addUsedPackageTypes(ZPackage* other) {
    if (!other) return false;
    ZScopedLock held(orv::packageUses);
    if (usedTypesDirty || !seesTypesOf(other)) return true;
    const bool done = usedIndex.putAll(other->typeIndex);
    // What isn't in the table is looked for again when there is memory.
    toolkit::storeRelease(usedTypesDirty, !done);
    return done;
}

void ZPackage::resetUsedTypes() const {
    ZScopedLock held(orv::packageUses);
    if (!usedTypesDirty) return;
    orv::TypeIndex all;
    bool done = true;
    for (const ZPackageLink* link = usesHead; link && done; link = link->usesNext)
        if (seesTypesOf(link->used)) done = all.putAll(link->used->typeIndex);
    toolkit::storeRelease(usedTypesDirty, !(done && usedIndex.assign(all)));
}

// Order

ZPackage* ZPackage::findLeastUsed(const ZArrayT<ZPackage*>& packages) {
    ZPackage* least = nullptr;
    int bound = 65535;
    for (ZPackage* package : packages)
        if (package->visited && package->degree < bound) {
            bound = package->degree;
            least = package;
        }
    return least;
}

bool ZPackage::topologicalOrdering(ZArrayT<ZPackage*>& packages) {
    const ZArrayT<ZPackage*> all = packages;
    ZArrayT<ZPackage*> ordered(all.count(), 0), work(8, 8);
    // Both lists are filled without a further allocation: `work` holds each package once at most.
    if (all.isEmpty()) return true;
    if (!ordered.reserve(all.count()) || !work.reserve(all.count() * 2)) return false;
    ZScopedLock held(orv::packageUses);
    for (ZPackage* package : all) {
        package->visited = 1;
        package->degree = 0;
    }
    for (ZPackage* package : all) {
        package->scanLink = nullptr;
        for (ZPackageLink* link = package->usedByHead; link; link = link->usedByNext) {
            link->active = link->activeLink();
            if (!link->active) continue;
            if (!package->scanLink) package->scanLink = link;
            ++package->degree;
        }
        for (ZPackageLink* link = package->usesHead; link; link = link->usesNext) link->active = link->activeLink();
    }
    for (ZPackage* package : all)
        if (package->degree < 1) work.append(package);
    for (;;) {
        if (work.isEmpty()) {
            ZPackage* least = findLeastUsed(all);
            if (!least || !work.append(least)) break;
        }
        ZPackage* package = std::as_const(work)[work.count() - 1];
        work.remove(work.count() - 1);
        for (ZPackageLink* link = package->usesHead; link; link = link->usesNext) {
            if (!link->active) continue;
            link->active = 0;
            ZPackage* used = link->used;
            --used->degree;
            ZPackageLink* next = used->scanLink;
            while (next && !next->active) next = next->usedByNext;
            used->scanLink = next;
            if (!next) used->degree = 0;
            if (used->degree <= 0 && used->visited) work.append(used);
        }
        if (!package->visited) continue;
        package->visited = 0;
        ordered.append(package);
    }
    for (ZPackage* package : all) {
        package->degree = 0;
        package->visited = 0;
        package->scanLink = nullptr;
    }
    if (ordered.count() != all.count()) return false;
    packages = ordered;
    return true;
}
