#include "core/selectorIndex.h"

#include "core/ZSelectorData.h"

namespace orv::detail {

using toolkit::storeRelease;

ZSelectorData* SelectorIndex::walk(ZSelectorData* entry, const Wanted& wanted) {
    for (int steps = 0; entry && steps < longestWalk; ++steps, entry = toolkit::loadAcquire(entry->next))
        if (is(*entry, wanted)) return entry;
    return nullptr;
}

/// Goes on behind the first entry of a chain, and in the table from which chains are still to be moved.
ZSelectorData* SelectorIndex::findFurther(const Table* now, ZSelectorData* entry, const Wanted& wanted) const {
    if (entry) entry = walk(toolkit::loadAcquire(entry->next), wanted);
    const Table* older = entry ? nullptr : toolkit::loadAcquire(now->older);
    return older ? walk(toolkit::loadAcquire(older->chains[wanted.hash & older->mask]), wanted) : entry;
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

bool SelectorIndex::add(ZSelectorData* entry) {
    if (!table) {
        if (!grow(firstSize)) return false;
    } else if (count > table->mask)
        grow(4 * (table->mask + 1)); // without memory the chains get longer
    constexpr size_t stepsAnAddition = 4;
    if (table->older) moveChains(*table, stepsAnAddition);
    push(*table, entry);
    ++count;
    return true;
}

bool SelectorIndex::lacks(const char* text, size_t length, ularge hash, int type) const {
    if (!table) return true;
    if (table->older) return false;
    Wanted wanted{text, length, hash, 0, type};
    int steps = 0;
    for (ZSelectorData* entry = table->chains[hash & table->mask]; entry; entry = entry->next)
        if (++steps > longestWalk || is(*entry, wanted)) return false;
    return true;
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
