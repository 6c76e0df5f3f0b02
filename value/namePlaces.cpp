#include "value/namePlaces.h"

#include "core/memory.h"

namespace orv {

/// At most half full with `count` names.
NamePlaces::Table* NamePlaces::makeTable(uint count) {
    constexpr uint least = 4;
    const uint bits = count < 4 ? least : 33 - uint(__builtin_clz(count));
    if (bits > 31) return nullptr;
    const uint slots = 1u << bits;
    auto made = static_cast<Table*>(toolkit::allocZeroedBlock(sizeof(Table) + (slots - 1) * sizeof(Slot)));
    if (!made) return nullptr;
    made->mask = slots - 1;
    made->size = slots;
    made->first = 1;
    return made;
}

void NamePlaces::drop() {
    if (Table* old = toolkit::exchange(table, static_cast<Table*>(nullptr))) toolkit::freeBlock(old);
}

void NamePlaces::Table::add(uint id, uint place) {
    uint at = home(id);
    while (slots[at].place) at = (at + 1) & mask;
    slots[at] = {id, place};
    ++used;
}

uint NamePlaces::Table::slotOf(uint id) const {
    uint at = home(id);
    while (slots[at].place && slots[at].id != id) at = (at + 1) & mask;
    return at;
}

/// Frees a slot, and moves those up that were pushed behind it.
void NamePlaces::Table::take(uint slot) {
    if (!slots[slot].place) return;
    --used;
    for (uint next = (slot + 1) & mask; slots[next].place; next = (next + 1) & mask) {
        // One that stands between its home and here stays.
        if (((next - home(slots[next].id)) & mask) < ((next - slot) & mask)) continue;
        slots[slot] = slots[next];
        slot = next;
    }
    slots[slot] = {};
}

void NamePlaces::added(uint id, uint index) {
    if (!table) return;
    if (table->used <= table->mask / 2) return table->add(id, index + table->first);
    const Table* old = table;
    Table* made = makeTable(old->used + 1);
    if (made) {
        made->first = old->first;
        for (uint i = 0; i <= old->mask; ++i)
            if (const Slot slot = old->slots[i]; slot.place) made->add(slot.id, slot.place);
        made->add(id, index + made->first);
    }
    drop();
    table = made;
}

void NamePlaces::removed(uint id, uint index, uint count) {
    if (!table) return;
    table->take(table->slotOf(id));
    if (index + 1 == count) return;
    if (index == 0 && table->first < 0x7FFFFFFF) {
        ++table->first;
        return;
    }
    const uint place = index + table->first;
    for (uint i = 0; i <= table->mask; ++i) table->slots[i].place -= table->slots[i].place > place;
}

void NamePlaces::renamed(uint id, uint to) {
    if (!table) return;
    const uint slot = table->slotOf(id), place = table->slots[slot].place;
    table->take(slot);
    if (place) table->add(to, place);
}

} // namespace orv
