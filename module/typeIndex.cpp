#include "module/typeIndex.h"

#include "core/ZSelector.h"
#include "core/memory.h"
#include "toolkit/atomic.h"

namespace orv {

namespace {
/// Ids are dealt in order, so neighbours are spread.
uint spread(uint key) { return key * 0x9E3779B1u >> 7 ^ key; }
} // namespace

TypeIndex::~TypeIndex() {
    while (Table* last = table) {
        table = last->outgrown;
        zfree(last);
    }
}

TypeIndex::Table* TypeIndex::make(uint places) {
    auto made = static_cast<Table*>(__znalloc(sizeof(Table) + (places - 1) * sizeof(Place)));
    if (made) made->mask = places - 1;
    return made;
}

/// The place of a key, or the free one where it would stand; for writers.
TypeIndex::Place& TypeIndex::placeOf(Table& table, uint key) {
    uint i = spread(key) & table.mask;
    while (table.places[i].key != key && table.places[i].key) i = (i + 1) & table.mask;
    return table.places[i];
}

ZMetaType* TypeIndex::find(const ZSelector& name) const {
    Table* now = toolkit::loadAcquire(table);
    const uint key = name.key();
    if (!now || !key) return nullptr;
    for (uint i = spread(key) & now->mask;; i = (i + 1) & now->mask) {
        const Place& place = now->places[i];
        const uint there = toolkit::loadAcquire(place.key);
        if (!there) return nullptr;
        if (there != key) continue;
        ZMetaType* type = toolkit::loadAcquire(place.type);
        // A table that was cleared meanwhile may have another name there by now.
        return toolkit::load(place.key) == key ? type : nullptr;
    }
}

bool TypeIndex::reserve(uint more) {
    const uint wanted = used + more;
    if (wanted < used || wanted > 1u << 26) return false;
    if (table && table->filled + more <= (table->mask + 1) / 2) return true;
    uint places = table ? 2 * (table->mask + 1) : 32;
    while (places / 2 < wanted + wanted / 2) places *= 2;
    Table* fresh = make(places);
    if (!fresh) return false;
    for (uint i = 0; table && i <= table->mask; ++i)
        if (table->places[i].type) {
            placeOf(*fresh, table->places[i].key) = table->places[i];
            ++fresh->filled;
        }
    fresh->outgrown = table;
    toolkit::storeRelease(table, fresh);
    return true;
}

bool TypeIndex::put(const ZSelector& name, ZMetaType* type) {
    if (name.isEmpty() || !reserve(1)) return false;
    Place& place = placeOf(*table, name.key());
    if (!place.key) ++table->filled;
    used += !place.type;
    toolkit::storeRelease(place.type, type);
    toolkit::storeRelease(place.key, name.key());
    return true;
}

void TypeIndex::drop(const ZSelector& name, const ZMetaType* type) {
    if (!table || name.isEmpty()) return;
    Place& place = placeOf(*table, name.key());
    if (!place.key || place.type != type) return;
    toolkit::storeRelease(place.type, static_cast<ZMetaType*>(nullptr));
    --used;
}

void TypeIndex::clear() {
    if (!table) return;
    for (uint i = 0; i <= table->mask; ++i) {
        toolkit::storeRelease(table->places[i].type, static_cast<ZMetaType*>(nullptr));
        toolkit::storeRelease(table->places[i].key, 0u);
    }
    used = table->filled = 0;
}

} // namespace orv
