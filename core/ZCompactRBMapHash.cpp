#include "core/ZCompactRBMap.h"

#include "core/hashsize.h"

namespace {
uint hashMemory[ZCompactRBMap::memoryCounters];
}

/// Sets the bits, with the lock held and no index there.
void ZCompactRBMap::setBits(uint hashBits) const {
    bits = hashBits < mostHashBits ? hashBits : mostHashBits;
    mask = (1u << bits) - 1;
    buckets = 0;
    scale = orv_calchashscale();
}

/// Bits for that many items. The product of the two, of 32 bits, must not wrap: a huge map would get a tiny table.
uint ZCompactRBMap::bitsFor(uint count, uint load) {
    const uint most = load ? (0xFFFFFFFF - 50) / load : count;
    return orv_calchashbits(count < most ? count : most, load);
}

/// Fits the bits to the count, with the lock held.
void ZCompactRBMap::fitHash(uint threshold) const {
    if (!autoLoad) return;
    uint wanted = bitsFor(itemCount, autoLoad);
    uint difference = wanted > bits ? wanted - bits : bits - wanted;
    if (!difference || (difference <= threshold && wanted >= 3)) return;
    dropTree();
    setBits(wanted);
}

void ZCompactRBMap::setHashBits(uint hashBits) {
    ZScopedLock held(lock);
    fixedBits = true;
    if (hashBits > mostHashBits) hashBits = mostHashBits;
    if (hashBits == bits) return;
    dropTree();
    setBits(hashBits);
}

void ZCompactRBMap::setHashable(bool hashable) {
    ZScopedLock held(lock);
    if (hashable == useTable) return;
    useTable = hashable;
    dropTree();
}

void ZCompactRBMap::setAutoHash(uint load) {
    ZScopedLock held(lock);
    autoLoad = load;
    fixedBits = false;
    uint wanted = load ? bitsFor(itemCount, load) : 0;
    if (wanted == bits) return;
    dropTree();
    setBits(wanted);
}

void ZCompactRBMap::resetHash(uint threshold) {
    ZScopedLock held(lock);
    fitHash(threshold);
}

void ZCompactRBMap::setHashIndex(uint index) {
    ZScopedLock held(lock);
    if (index >= memoryCounters) index = 0;
    remove_hash_memory(memoryIndex, table);
    memoryIndex = index;
    add_hash_memory(memoryIndex, table);
}

void ZCompactRBMap::add_hash_memory(uint index, const void* block) {
    if (block && index < memoryCounters) toolkit::addFetch(hashMemory[index], memsize(block));
}
void ZCompactRBMap::remove_hash_memory(uint index, const void* block) {
    if (block && index < memoryCounters && refcount(block) < 2)
        toolkit::addFetch(hashMemory[index], 0 - memsize(block));
}
uint ZCompactRBMap::hash_memory(uint index) { return index < memoryCounters ? toolkit::load(hashMemory[index]) : 0; }
