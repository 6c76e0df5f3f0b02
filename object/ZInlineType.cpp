#include "object/ZInlineType.h"

#include "module/ZPackage.h"
#include "object/ZMetaType.h"
#include "object/typeGeneration.h"

namespace {
/// Records of types without a package.
constinit InlineTypeList unowned;
} // namespace

ZMetaType* ZInlineType::find(const ZSelector& selector) const {
    if (ownerType) return ownerType->findType(selector);
    if (ownerPackage) return ownerPackage->findType(selector);
    if (package.get().isEmpty()) return ZMetaType::find(selector);
    const ZPackage* owner = ZPackage::findPackage(package.get());
    return owner ? owner->findType(selector) : nullptr;
}

/// The lookup runs without the record's lock: it may make types, which look up others. A name from a text isn't kept:
/// the record may outlive the space of names.
ZMetaType* ZInlineType::resolve(const char* text) const {
    const ularge now = orv::typeGeneration();
    if (toolkit::load(missed) == now) return nullptr;
    for (;;) {
        const ularge removals = orv::typeRemovals();
        ZMetaType* found = nullptr;
        if (!name.get().isEmpty())
            found = find(name.get());
        else if (text)
            found = find(ZSelector(text));
        if (!found) {
            toolkit::store(missed, now);
            return nullptr;
        }
        ZPackage* owner = found->package();
        ZScopedLock held(guard);
        if (metaType) return metaType;
        list = owner ? &owner->inlines() : &unowned;
        list->link(*this);
        // Whoever removes types from now on finds the record in its list, and waits for it.
        if (orv::typeRemovals() == removals) {
            toolkit::storeRelease(metaType, found);
            return found;
        }
        list->unlink(*this);
        list = nullptr;
    }
}

void ZInlineType::reset() const {
    ZScopedLock held(guard);
    if (list) list->unlink(*this);
    list = nullptr;
    toolkit::store(missed, 0);
    toolkit::storeRelease(metaType, static_cast<ZMetaType*>(nullptr));
}

void ZInlineType::setSelector(const ZSelector& selector) {
    const ZSelector owner = selector.package();
    setPackage(owner, owner.isEmpty() ? selector : selector.typeName());
}
void ZInlineType::setPackage(const ZSelector& owner, const ZSelector& selector) {
    clear();
    package.get() = owner;
    name.get() = selector;
}
void ZInlineType::setType(const ZPackage* owner, const ZSelector& selector) {
    clear();
    ownerPackage = owner;
    extend(selector);
}
void ZInlineType::setType(const ZMetaType* owner, const ZSelector& selector) {
    clear();
    ownerType = owner;
    extend(selector);
}
void ZInlineType::extend(const ZSelector& selector) {
    reset();
    name.get() = selector;
    resolve(nullptr);
}
void ZInlineType::assign(const ZInlineType& other) {
    if (this == &other) return;
    setPackage(other.getPackage(), other.getSelector());
    ownerType = other.ownerType;
    ownerPackage = other.ownerPackage;
}
void ZInlineType::clear() {
    reset();
    name.get().clear();
    package.get().clear();
    ownerType = nullptr;
    ownerPackage = nullptr;
}

void ZInlineType::resetInvalid() { unowned.resetAll(); }

void ZInlineType::forget(const ZMetaType* type) {
    if (const ZPackage* owner = type->package()) owner->inlines().reset(type);
    unowned.reset(type);
}

void InlineTypeList::link(const ZInlineType& record) {
    ZScopedLock held(guard);
    record.prev = nullptr;
    record.next = const_cast<ZInlineType*>(first);
    if (first) first->prev = const_cast<ZInlineType*>(&record);
    first = &record;
}

void InlineTypeList::unlink(const ZInlineType& record) {
    ZScopedLock held(guard);
    if (record.prev)
        record.prev->next = record.next;
    else
        first = record.next;
    if (record.next) record.next->prev = record.prev;
    record.next = record.prev = nullptr;
}

/// A record takes its own lock before that of the list, so each is reset with the list free.
void InlineTypeList::resetAll() {
    for (;;) {
        guard.lock();
        const ZInlineType* record = first;
        guard.unlock();
        if (!record) return;
        record->reset();
    }
}

/// A record that has no type yet may be about to have this one.
void InlineTypeList::reset(const ZMetaType* type) {
    for (;;) {
        guard.lock();
        const ZInlineType* record = first;
        while (record) {
            const ZMetaType* known = toolkit::load(record->metaType);
            if (!known || known == type) break;
            record = record->next;
        }
        guard.unlock();
        if (!record) return;
        record->reset();
    }
}
