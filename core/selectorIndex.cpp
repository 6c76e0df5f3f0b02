#include "core/selectorIndex.h"

#include "core/ZSelectorData.h"

#include <cstring>

namespace orv::detail {

using toolkit::load;
using toolkit::loadAcquire;
using toolkit::store;
using toolkit::storeRelease;

ZSelectorData* SelectorIndex::findIn(const Table& table, const char* text, size_t length, ularge hash, uint marks,
                                     int type) {
    ZSelectorData* entry = loadAcquire(table.chains[hash & table.mask]);
    for (int walk = 0; entry && walk < longestWalk; ++walk, entry = loadAcquire(entry->next)) {
        if (entry->textHash != hash || entry->length != length) continue;
        if (marks ? !(load(entry->marks) & marks) : entry->type != type) continue;
        if (std::memcmp(loadAcquire(entry->text), text, length) == 0) return entry;
    }
    return nullptr;
}

ZSelectorData* SelectorIndex::find(const char* text, size_t length, ularge hash, uint marks, int type) const {
    const Table* now = loadAcquire(table);
    if (ORV_UNLIKELY(!now)) return nullptr;
    ZSelectorData* entry = findIn(*now, text, length, hash, marks, type);
    if (entry) return entry;
    const Table* older = loadAcquire(now->older);
    return older ? findIn(*older, text, length, hash, marks, type) : nullptr;
}

void SelectorIndex::push(Table& table, ZSelectorData* entry) {
    ZSelectorData*& head = table.chains[entry->textHash & table.mask];
    storeRelease(entry->next, head);
    storeRelease(head, entry);
}

/// Entries are taken off the front, so that a reader who stands on one goes on into the new chain and comes to an end.
void SelectorIndex::moveChains(Table& table, size_t count) {
    Table* older = table.older;
    while (older && count--) {
        ZSelectorData*& head = older->chains[table.moved];
        while (ZSelectorData* entry = head) {
            storeRelease(head, entry->next);
            push(table, entry);
        }
        if (++table.moved > older->mask) {
            storeRelease(table.older, static_cast<Table*>(nullptr));
            return;
        }
    }
}

bool SelectorIndex::grow(size_t size) {
    auto made = static_cast<Table*>(toolkit::allocZeroedBlock(sizeof(Table) + size * sizeof(ZSelectorData*)));
    if (!made) return false;
    if (table) moveChains(*table, SIZE_MAX);
    made->older = made->freed = table;
    made->mask = size - 1;
    storeRelease(table, made);
    return true;
}

void SelectorIndex::add(ZSelectorData* entry) {
    if (!table ? !grow(firstSize) : count > table->mask && !grow(4 * (table->mask + 1)) && !table) return;
    constexpr size_t stepsAnAddition = 4;
    moveChains(*table, stepsAnAddition);
    push(*table, entry);
    ++count;
}

void SelectorIndex::clear() {
    Table* each = table;
    storeRelease(table, static_cast<Table*>(nullptr));
    count = 0;
    while (each) {
        Table* next = each->freed;
        toolkit::freeBlock(each);
        each = next;
    }
}

} // namespace orv::detail
