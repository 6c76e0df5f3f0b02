#include "object/ZMetaTypeData.h"
#include "object/ZProperty.h"
#include "object/tableBuild.h"
#include "value/ZVariant.h"

// The stored properties of a type: those declared with the word "store", bases first, each in the place of its first
// declaration. The list is worked out at the first demand and again when tables have changed.

namespace orv {

bool StoredWalk::add(ZProperty* property, int offset) {
    for (uint i = 0; i < count; ++i)
        if (entries[i].property->name() == property->name()) {
            entries[i] = {property, offset};
            return true;
        }
    if (count == room) {
        const uint wanted = room ? room * 2 : 16;
        auto grown = static_cast<StoredProperty*>(__zrealloc(entries, wanted * sizeof(StoredProperty)));
        if (!grown) return false;
        entries = grown;
        room = wanted;
    }
    entries[count++] = {property, offset};
    return true;
}

bool StoredWalk::collect(const ZMetaType* type, int offset, int depth) {
    if (depth > 64) return true;
    ZArrayT<BaseLink> bases, aliases;
    type->relationType()->copyLinks(bases, aliases);
    for (const BaseLink& link : std::as_const(bases))
        if (link.type && !collect(link.type, offset + link.offset, depth + 1)) return false;
    for (const ZPropertyPtr& entry : declaredProperties(type->relationType()))
        if (ZProperty* property = entry.property())
            if (property->storable() && !add(property, property->offset() < 0 ? -1 : offset + property->offset()))
                return false;
    return true;
}

static void reclaimStored(toolkit::EpochLink* link) { zfree(static_cast<StoredList*>(link)); }
void retireStored(StoredList* list) {
    if (list) toolkit::epochRetire(list, reclaimStored);
}

const StoredList* storedOf(const ZMetaType* type) {
    type = type->relationType();
    auto& cell = const_cast<MetaTypeData&>(type->record()).stored;
    for (;;) {
        const ularge now = typeGeneration();
        StoredList* known = cell.load();
        if (ORV_LIKELY(known && known->generation == now)) return known;
        StoredWalk walk;
        if (!walk.collect(type, 0, 0)) return nullptr;
        const size_t bytes = walk.count * sizeof(StoredProperty);
        auto fresh = static_cast<StoredList*>(__zalloc(sizeof(StoredList) + bytes));
        if (!fresh) return nullptr;
        ::new (fresh) StoredList{{}, buildsTables() ? 0 : now, walk.count};
        if (bytes) __builtin_memcpy(fresh->entries(), walk.entries, bytes);
        // Building a table at the first demand is no change, but one that came meanwhile makes this list an old one.
        if (cell.publishOver(known, fresh)) {
            retireStored(known);
            return fresh;
        }
        zfree(fresh);
    }
}

} // namespace orv

namespace {

/// Calls `use` with a stored property, or answers `otherwise`.
template <class R, class F> R withStored(const ZMetaType* type, int index, R otherwise, F use) {
    toolkit::EpochGuard guard;
    const orv::StoredList* list = orv::storedOf(type);
    return list && index >= 0 && uint(index) < list->count ? use(list->entries()[index]) : otherwise;
}
const orv::StoredProperty* findStored(const orv::StoredList* list, const ZSelector& name) {
    for (uint i = 0; list && i < list->count; ++i)
        if (list->entries()[i].property->name() == name) return list->entries() + i;
    return nullptr;
}
char* fieldAt(const void* instance, int offset) {
    return instance && offset >= 0 ? static_cast<char*>(const_cast<void*>(instance)) + offset : nullptr;
}

} // namespace

int ZMetaType::storedPropertyCount() const {
    toolkit::EpochGuard guard;
    const orv::StoredList* list = orv::storedOf(this);
    return list ? int(list->count) : 0;
}
ZProperty* ZMetaType::storedPropertyDef(int index) const {
    return withStored<ZProperty*>(this, index, nullptr, [](const orv::StoredProperty& at) { return at.property; });
}
ZProperty* ZMetaType::storedPropertyDef(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const orv::StoredProperty* found = findStored(orv::storedOf(this), name);
    return found ? found->property : nullptr;
}
int ZMetaType::storedPropertyOffset(int index) const {
    return withStored(this, index, -1, [](const orv::StoredProperty& at) { return at.offset; });
}
ZSelector ZMetaType::storedPropertyName(int index) const {
    return withStored(this, index, ZSelector(), [](const orv::StoredProperty& at) { return at.property->name(); });
}
ZMetaType* ZMetaType::storedPropertyType(int index) const {
    return withStored<ZMetaType*>(this, index, nullptr,
                                  [](const orv::StoredProperty& at) { return at.property->value().type(); });
}
const void* ZMetaType::storedPropertyInstance(const void* instance, int index) const {
    return fieldAt(instance, storedPropertyOffset(index));
}
void* ZMetaType::storedPropertyInstance(void* instance, int index) const {
    return fieldAt(instance, storedPropertyOffset(index));
}
const void* ZMetaType::localPropertyInstance(const void* instance, const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const orv::StoredProperty* found = findStored(orv::storedOf(this), name);
    return found ? fieldAt(instance, found->offset) : nullptr;
}
void* ZMetaType::localPropertyInstance(void* instance, const ZSelector& name) const {
    return const_cast<void*>(localPropertyInstance(static_cast<const void*>(instance), name));
}
