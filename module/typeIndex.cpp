#include "module/typeIndex.h"

#include "core/ZSelector.h"
#include "core/memory.h"

namespace orv {

namespace {
/// Ids are dealt in order, so neighbours are spread.
uint spread(uint key) { return key * 0x9E3779B1u >> 7 ^ key; }
} // namespace

TypeIndex::~TypeIndex() { zfree(published.publish(nullptr)); }

TypeIndex::Table* TypeIndex::make(uint places) {
    auto table = static_cast<Table*>(__zalloc(sizeof(Table) + (places - 1) * sizeof(Place)));
    if (!table) return nullptr;
    *table = Table{};
    table->mask = places - 1;
    for (uint i = 0; i < places; ++i) table->places[i] = {};
    return table;
}

void TypeIndex::retire(Table* table) {
    if (table)
        toolkit::epochDefer(&table->link, [](toolkit::EpochLink* link) { zfree(reinterpret_cast<Table*>(link)); });
}

/// The place of a key, or the free one where it would stand.
TypeIndex::Place* TypeIndex::placeOf(Table& table, uint key) const {
    for (uint i = spread(key) & table.mask;; i = (i + 1) & table.mask) {
        uint there = toolkit::loadAcquire(table.places[i].key);
        if (there == key || there == 0) return &table.places[i];
    }
}

ZMetaType* TypeIndex::find(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    Table* table = published.load();
    if (!table || name.isEmpty()) return nullptr;
    Place* place = placeOf(*table, name.key());
    return toolkit::load(place->key) ? toolkit::loadAcquire(place->type) : nullptr;
}

bool TypeIndex::reserve(uint more) {
    Table* old = published.load();
    uint wanted = used + more;
    if (wanted < used || wanted > 1u << 26) return false;
    if (old && old->filled + more <= (old->mask + 1) / 2) return true;
    uint places = 32;
    while (places / 2 < wanted + wanted / 2) places *= 2;
    Table* fresh = make(places);
    if (!fresh) return false;
    if (old)
        for (uint i = 0; i <= old->mask; ++i)
            if (old->places[i].type) {
                *placeOf(*fresh, old->places[i].key) = old->places[i];
                ++fresh->filled;
            }
    retire(published.publish(fresh));
    return true;
}

bool TypeIndex::put(const ZSelector& name, ZMetaType* type) {
    if (name.isEmpty() || !reserve(1)) return false;
    Table& table = *published.load();
    Place* place = placeOf(table, name.key());
    if (!place->key) ++table.filled;
    used += !place->type;
    toolkit::storeRelease(place->type, type);
    toolkit::storeRelease(place->key, name.key());
    return true;
}

void TypeIndex::drop(const ZSelector& name, const ZMetaType* type) {
    Table* table = published.load();
    if (!table || name.isEmpty()) return;
    Place* place = placeOf(*table, name.key());
    if (!place->key || place->type != type) return;
    toolkit::storeRelease(place->type, static_cast<ZMetaType*>(nullptr));
    --used;
}

void TypeIndex::clear() {
    used = 0;
    retire(published.publish(nullptr));
}

} // namespace orv
