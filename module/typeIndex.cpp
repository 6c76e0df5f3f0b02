#include "module/typeIndex.h"

#include "core/memory.h"

namespace orv {

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

bool TypeIndex::put(uint key, ZMetaType* type) {
    if (!key || !reserve(1)) return false;
    Place& place = placeOf(*table, key);
    if (!place.key) ++table->filled;
    used += !place.type;
    toolkit::storeRelease(place.type, type);
    toolkit::storeRelease(place.key, key);
    return true;
}

bool TypeIndex::putAll(const TypeIndex& other) {
    const Table* theirs = toolkit::loadAcquire(other.table);
    uint types = 0;
    other.each([&](const ZMetaType*) { ++types; });
    if (!reserve(types)) return false;
    for (uint i = 0; theirs && i <= theirs->mask; ++i) {
        const uint key = toolkit::loadAcquire(theirs->places[i].key);
        ZMetaType* type = toolkit::loadAcquire(theirs->places[i].type);
        if (key && type && !put(key, type)) return false;
    }
    return true;
}

bool TypeIndex::assign(const TypeIndex& other) {
    if (!putAll(other)) return false;
    for (uint i = 0; table && i <= table->mask; ++i) {
        Place& place = table->places[i];
        if (!place.type || (other.table && placeOf(*other.table, place.key).type)) continue;
        toolkit::storeRelease(place.type, static_cast<ZMetaType*>(nullptr));
        --used;
    }
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
    for (uint i = 0; table && i <= table->mask; ++i)
        toolkit::storeRelease(table->places[i].type, static_cast<ZMetaType*>(nullptr));
    used = 0;
}

} // namespace orv
