#include "core/debug.h"
#include "object/ZMetaTypeData.h"
#include "object/packageTypes.h"

#include <cstring>

// The base graph. Each type has its bases and aliases, and its descendants, under its own lock; no two of these locks
// are held at once. What descends from what is answered from a flat list that is worked out at the first demand.

namespace orv {

bool AncestorWalk::add(const ZMetaType* type, int offset, uint depth, bool isAlias) {
    for (uint i = 0; i < count; ++i)
        if (entries[i].type == type) {
            // A way through bases alone counts more than one through an alias.
            if (entries[i].isAlias && !isAlias) {
                entries[i].isAlias = false;
                entries[i].offset = offset;
            }
            return true;
        }
    if (count == room) {
        const uint wanted = room ? room * 2 : 16;
        auto grown = static_cast<Ancestor*>(__zrealloc(entries, wanted * sizeof(Ancestor)));
        if (!grown) return false;
        entries = grown;
        room = wanted;
    }
    entries[count++] = {type, offset, depth, byte(isAlias)};
    return true;
}

/// Breadth first, so that nearer ones stand in front.
bool AncestorWalk::collect(const ZMetaType* from) {
    if (!addLinks({from, 0, 0, false})) return false;
    for (uint at = 0; at < count; ++at) {
        const Ancestor entry = entries[at];
        if (!addLinks(entry)) return false;
    }
    return true;
}

bool AncestorWalk::same(const AncestorList& list) const {
    if (list.count != count) return false;
    for (uint i = 0; i < count; ++i) {
        const Ancestor &a = entries[i], &b = list.entries()[i];
        if (a.type != b.type || a.offset != b.offset || a.depth != b.depth || a.isAlias != b.isAlias) return false;
    }
    return true;
}

bool AncestorWalk::addLinks(const Ancestor& of) {
    ZArrayT<BaseLink> bases, aliases;
    of.type->copyLinks(bases, aliases);
    for (const BaseLink& link : std::as_const(bases))
        if (link.type && !add(link.type, of.offset + link.offset, of.depth + 1, of.isAlias)) return false;
    for (const BaseLink& link : std::as_const(aliases))
        if (link.type && !add(link.type, of.offset, of.depth + 1, true)) return false;
    return true;
}

static void reclaimAncestors(toolkit::EpochLink* link) { zfree(static_cast<AncestorList*>(link)); }

void retireAncestors(AncestorList* list) {
    if (list) toolkit::epochRetire(list, reclaimAncestors);
}

const AncestorList* ancestorsOf(const ZMetaType* type) {
    type = type->relationType();
    auto& cell = const_cast<MetaTypeData&>(type->record()).ancestors;
    const ularge now = typeGeneration();
    AncestorList* known = cell.load();
    if (ORV_LIKELY(known && toolkit::loadAcquire(known->generation) == now)) return known;
    AncestorWalk walk;
    if (!walk.collect(type)) return nullptr;
    // Most changes are those of other types.
    if (known && walk.same(*known)) {
        toolkit::storeRelease(known->generation, now);
        return known;
    }
    auto fresh = static_cast<AncestorList*>(__zalloc(sizeof(AncestorList) + walk.count * sizeof(Ancestor)));
    if (!fresh) return nullptr;
    ::new (fresh) AncestorList{{}, now, walk.count};
    if (walk.count) std::memcpy(fresh->entries(), walk.entries, walk.count * sizeof(Ancestor));
    // Another thread may have been quicker; what it found is as good.
    if (cell.publishOver(known, fresh)) {
        retireAncestors(known);
        return fresh;
    }
    zfree(fresh);
    return ancestorsOf(type);
}

} // namespace orv

namespace {

/// Whether `sought` is among what `from` descends from, without memory. Slow; for when there is none for a list.
bool searchAncestors(const ZMetaType* from, const ZMetaType* sought, bool aliases, int depth = 0) {
    if (depth > 64) return false;
    ZArrayT<orv::BaseLink> bases, others;
    from->copyLinks(bases, others);
    for (const orv::BaseLink& link : bases)
        if (link.type && (link.type == sought || searchAncestors(link.type, sought, aliases, depth + 1))) return true;
    if (aliases)
        for (const orv::BaseLink& link : others)
            if (link.type && (link.type == sought || searchAncestors(link.type, sought, true, depth + 1))) return true;
    return false;
}

/// Whether `type` descends from `sought`; with `aliases` also by way of aliases.
bool descends(const ZMetaType* type, const ZMetaType* sought, bool aliases) {
    type = type->relationType();
    sought = sought->rootType();
    if (type == sought) return false;
    toolkit::EpochGuard guard;
    const orv::AncestorList* list = orv::ancestorsOf(type);
    if (ORV_UNLIKELY(!list)) return searchAncestors(type, sought, aliases);
    for (const orv::Ancestor *at = list->entries(), *end = at + list->count; at < end; ++at)
        if (at->type == sought) return aliases || !at->isAlias;
    return false;
}

/// Pointers relate as what they point to does, if they have as many "*".
bool comparable(const ZMetaType* a, const ZMetaType* b) {
    return a && b && a->record().ptrCount == b->record().ptrCount;
}

} // namespace

const ZMetaType* ZMetaType::relationType() const {
    const ZMetaType* type = this;
    while (type->mainType && !type->own->localType) type = type->mainType;
    return type;
}

void ZMetaType::copyLinks(ZArrayT<orv::BaseLink>& bases, ZArrayT<orv::BaseLink>& aliases) const {
    ZScopedReadLock held(own->basetype);
    bases = own->bases;
    aliases = own->aliases;
}

/// What a name stands for from here, if there is such a type already: names are asked by scripts and tools too.
const ZMetaType* ZMetaType::existing(const ZSelector& name) const {
    if (name.isEmpty()) return nullptr;
    for (const ZMetaType* at = described(); at; at = at->getOwnerType()) {
        const Types nested = at->getTypes();
        if (const auto* found = nested.get(name)) return found->get();
    }
    return orv::findPackageType(own->package, name, false);
}

bool ZMetaType::isBase(const ZMetaType* other) const { return comparable(this, other) && descends(this, other, false); }
bool ZMetaType::isDescendant(const ZMetaType* other) const { return other && other->isBase(this); }
bool ZMetaType::isBase(const ZSelector& name) const {
    bool found = false;
    orv::eachAncestor(relationType(), [&](const orv::Ancestor& at) {
        found = !at.isAlias && at.type->record().name == name;
        return !found;
    });
    return found || isBase(existing(name));
}
bool ZMetaType::isDescendant(const ZSelector& name) const { return isDescendant(existing(name)); }

bool ZMetaType::isAliasOf(const ZMetaType* other) const {
    if (!other) return false;
    ZScopedReadLock held(relationType()->own->basetype);
    for (const orv::BaseLink& link : relationType()->own->aliases)
        if (link.type == other->rootType()) return true;
    return false;
}
bool ZMetaType::isAliasOf(const ZSelector& name) const {
    {
        ZScopedReadLock held(relationType()->own->basetype);
        for (const orv::BaseLink& link : relationType()->own->aliases)
            if (link.name == name) return true;
    }
    return isAliasOf(existing(name));
}

bool ZMetaType::typeOf(const ZMetaType* other) const {
    if (other == this) return true;
    return comparable(this, other) &&
           (relationType() == other->relationType() || rootType() == other->rootType() || descends(this, other, true));
}
bool ZMetaType::typeOf(const ZSelector& name) const {
    const ZMetaType* type = relationType();
    if (own->name == name || type->own->name == name) return true;
    bool found = false;
    orv::eachAncestor(type, [&](const orv::Ancestor& at) {
        found = at.type->record().name == name;
        return !found;
    });
    return found || isAliasOf(name) || hasCategory(name) || typeOf(existing(name));
}

bool ZMetaType::upcastOffset(const ZMetaType* base, int& offset) const {
    if (!base) return false;
    const ZMetaType* sought = base->rootType();
    if (sought == relationType() || sought == rootType()) {
        offset = 0;
        return true;
    }
    bool found = false;
    orv::eachAncestor(relationType(), [&](const orv::Ancestor& at) {
        if (at.type != sought) return true;
        offset = at.offset;
        found = !at.isAlias;
        return false;
    });
    return found;
}

// Bases as declared

ZArrayT<ZMetaType*> ZMetaType::getBaseTypes() const {
    ZArrayT<ZMetaType*> types;
    ZScopedReadLock held(relationType()->own->basetype);
    for (const orv::BaseLink& link : relationType()->own->bases)
        if (link.type && !types.append(link.type)) ZError::fail();
    return types;
}
bool ZMetaType::getBaseTypes(ZArrayT<ZMetaType*>& all) const {
    bool done = true;
    orv::eachAncestor(relationType(), [&](const orv::Ancestor& at) {
        return at.isAlias || (done = all.append(const_cast<ZMetaType*>(at.type)));
    });
    return done;
}
ZArrayT<ZSelector> ZMetaType::getBaseNames() const {
    ZArrayT<ZSelector> names;
    ZScopedReadLock held(relationType()->own->basetype);
    for (const orv::BaseLink& link : relationType()->own->bases)
        if (!names.append(link.name)) ZError::fail();
    return names;
}

int ZMetaType::baseCount() const {
    ZScopedReadLock held(relationType()->own->basetype);
    int count = 0;
    for (const orv::BaseLink& link : relationType()->own->bases) count += link.type != nullptr;
    return count;
}

template <class F> static void withBase(const orv::MetaTypeData& data, int index, F&& use) {
    ZScopedReadLock held(data.basetype);
    for (const orv::BaseLink& link : data.bases)
        if (link.type && index-- == 0) return use(link);
}
ZMetaType* ZMetaType::baseType(int index) const {
    ZMetaType* type = nullptr;
    withBase(*relationType()->own, index, [&](const orv::BaseLink& link) { type = link.type; });
    return type;
}
int ZMetaType::baseOffset(int index) const {
    int offset = 0;
    withBase(*relationType()->own, index, [&](const orv::BaseLink& link) { offset = link.offset; });
    return offset;
}
void ZMetaType::setBaseOffset(int index, int bytes) {
    {
        ZScopedLock held(own->basetype);
        orv::BaseLink* link = index < 0 ? nullptr : own->bases.entry(uint(index));
        if (!link) return;
        link->offset = bytes;
    }
    orv::typesChanged();
}

ZMetaType* ZMetaType::primaryBase() const { return toolkit::loadAcquire(relationType()->own->primaryBase); }
/// The line of bases has no fork anywhere.
bool ZMetaType::isSingleBase() const {
    const ZMetaType* type = relationType();
    int count = type->baseCount();
    if (count == 0) return false;
    while (count == 1) {
        type = type->primaryBase();
        count = type ? type->baseCount() : 0;
    }
    return count == 0;
}

void ZMetaType::basesWereSet() {
    ZMetaType* first = nullptr;
    {
        ZScopedReadLock held(own->basetype);
        for (const orv::BaseLink& link : own->bases)
            if (!first) first = link.type;
    }
    toolkit::storeRelease(own->primaryBase, first);
    orv::typesChanged();
    if (!hasWrapper()) return;
    orv::eachBase(this, [](ZMetaType* base) {
        base->resetWrapper();
        return true;
    });
}

bool ZMetaType::acceptsBase(const ZMetaType* base) const {
    if (!base || base == this || base->rootType() == rootType() || descends(base, this, true)) {
        if (base)
            zdebug("type %s can't be a base of %s: it descends from it\n", base->own->name.string(),
                   own->name.string());
        return false;
    }
    return true;
}

bool ZMetaType::addBase(ZMetaType* type) {
    if (!type) return false;
    type = type->rootType();
    if (!acceptsBase(type)) return false;
    {
        ZScopedLock held(own->basetype);
        for (const orv::BaseLink& link : own->bases)
            if (link.type == type) return true;
        orv::BaseLink link;
        link.name = type->own->name;
        link.type = type;
        if (!own->bases.append(link)) return false;
    }
    type->retain();
    // Without memory the base doesn't know of it, and won't tell it when something changes: so it is no base then.
    if (!type->addDescendant(this)) {
        dropBase(type);
        return false;
    }
    basesWereSet();
    return true;
}

bool ZMetaType::addBase(const ZSelector& name) {
    if (name.isEmpty()) return false;
    if (ZMetaType* type = findType(name)) return addBase(type);
    zdebug("base %s of type %s isn't known yet\n", name.string(), own->name.string());
    ZScopedLock held(own->basetype);
    for (const orv::BaseLink& link : own->bases)
        if (link.name == name) return true;
    orv::BaseLink link;
    link.name = name;
    return own->bases.append(link);
}

void ZMetaType::dropBase(ZMetaType* type) {
    bool found = false;
    {
        ZScopedLock held(own->basetype);
        for (uint i = 0; i < own->bases.count() && !found; ++i)
            if (std::as_const(own->bases)[i].type == type) found = own->bases.remove(i);
    }
    if (found) type->release();
}

bool ZMetaType::setBaseTypes(const ZArrayT<ZMetaType*>& types) {
    releaseBases();
    bool done = true;
    for (ZMetaType* type : types) done = addBase(type) && done;
    return done;
}
bool ZMetaType::setBaseNames(const ZArrayT<ZSelector>& names) {
    releaseBases();
    for (const ZSelector& name : names) {
        ZMetaType* type = findType(name);
        // What would close a circle is left out, and said in the debug log.
        if (name.isEmpty() || (type && !acceptsBase(type))) continue;
        if (!(type ? addBase(type) : addBase(name))) return false;
    }
    return true;
}

bool ZMetaType::copyBases(const orv::MetaTypeData& source) {
    ZArrayT<orv::BaseLink> bases, aliases;
    {
        ZScopedReadLock held(source.basetype);
        bases = source.bases;
        aliases = source.aliases;
    }
    for (const orv::BaseLink& link : bases) {
        if (!(link.type ? addBase(link.type) : addBase(link.name))) return false;
        if (link.offset) setBaseOffset(int(own->bases.count()) - 1, link.offset);
    }
    for (const orv::BaseLink& link : aliases)
        if (!(link.type ? addAlias(link.type) : addAlias(link.name))) return false;
    return true;
}

bool ZMetaType::resetBase() {
    ZArrayT<orv::BaseLink> bases, aliases;
    copyLinks(bases, aliases);
    bool resolved = true, changed = false;
    for (uint i = 0; i < bases.count(); ++i) {
        const orv::BaseLink& link = std::as_const(bases)[i];
        if (link.type) continue;
        ZMetaType* type = findType(link.name);
        if (type) type = type->rootType();
        if (!type || !acceptsBase(type) || !type->addDescendant(this)) {
            resolved = false;
            continue;
        }
        bool taken = false;
        {
            ZScopedLock held(own->basetype);
            orv::BaseLink* place = own->bases.entry(i);
            if (place && !place->type && place->name == link.name) {
                place->type = type;
                type->retain();
                taken = true;
            }
        }
        // Somebody else was quicker, or has other bases in mind.
        if (!taken) type->removeDescendant(this);
        changed |= taken;
    }
    for (uint i = 0; i < aliases.count(); ++i) {
        const orv::BaseLink& link = std::as_const(aliases)[i];
        ZMetaType* type = link.type ? nullptr : findType(link.name);
        if (!type) continue;
        ZScopedLock held(own->basetype);
        orv::BaseLink* place = own->aliases.entry(i);
        if (!place || place->type || !(place->name == link.name)) continue;
        place->type = type->rootType();
        place->type->retain();
        changed = true;
    }
    if (changed) basesWereSet();
    return resolved;
}

void ZMetaType::releaseBases() {
    ZArrayT<orv::BaseLink> bases;
    {
        ZScopedLock held(own->basetype);
        bases = std::exchange(own->bases, {});
    }
    if (bases.isEmpty()) return;
    basesWereSet();
    for (const orv::BaseLink& link : std::as_const(bases)) {
        if (!link.type) continue;
        link.type->removeDescendant(this);
        if (hasWrapper()) link.type->resetWrapper();
        link.type->release();
    }
}
void ZMetaType::releaseAliases() {
    ZArrayT<orv::BaseLink> aliases;
    {
        ZScopedLock held(own->basetype);
        aliases = std::exchange(own->aliases, {});
    }
    if (aliases.isEmpty()) return;
    orv::typesChanged();
    for (const orv::BaseLink& link : std::as_const(aliases))
        if (link.type) link.type->release();
}

// Aliases

bool ZMetaType::addAlias(ZMetaType* type) {
    if (!type || type->rootType() == rootType()) return false;
    type = type->rootType();
    {
        ZScopedLock held(own->basetype);
        for (const orv::BaseLink& link : own->aliases)
            if (link.type == type) return true;
        orv::BaseLink link;
        link.name = type->own->name;
        link.type = type;
        if (!own->aliases.append(link)) return false;
    }
    type->retain();
    orv::typesChanged();
    return true;
}
bool ZMetaType::addAlias(const ZSelector& name) {
    if (name.isEmpty()) return false;
    if (ZMetaType* type = findType(name)) return addAlias(type);
    ZScopedLock held(own->basetype);
    orv::BaseLink link;
    link.name = name;
    return own->aliases.append(link);
}

// Descendants

bool ZMetaType::addDescendant(ZMetaType* type) {
    {
        ZScopedLock held(own->basetype);
        if (!own->descendants.append(type)) return false;
    }
    if (own->hasDynamicProperties) type->setDynamicProperties(true);
    return true;
}
void ZMetaType::removeDescendant(ZMetaType* type) {
    ZScopedLock held(own->basetype);
    own->descendants.remove(type);
}
ZArrayT<ZMetaType*> ZMetaType::getDescendants() const {
    ZArrayT<ZMetaType*> types;
    ZScopedReadLock held(own->basetype);
    for (ZMetaType* type : own->descendants)
        if (!types.append(type)) ZError::fail();
    return types;
}
bool ZMetaType::getDescendants(ZArrayT<ZMetaType*>& all) const {
    for (ZMetaType* type : getDescendants())
        if (!all.contains(type) && !(all.append(type) && type->getDescendants(all))) return false;
    return true;
}
