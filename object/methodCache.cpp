#include "object/methodCache.h"

#include <new>

namespace orv {
namespace {

constexpr uint firstRoom = 16;
constexpr uint mostRoom = 1024; ///< a full cache of this size starts anew: names may come from outside

template <class C> void destroyCache(C* cache) {
    if (!cache) return;
    for (uint i = 0; i <= cache->mask; ++i) {
        auto& entry = cache->entries()[i];
        if (!entry.hash) continue;
        ZSelector::adopt(entry.key.selector);
        ZSelector::adopt(entry.key.qualifier);
    }
    zfree(cache);
}
template <class C> void reclaim(toolkit::EpochLink* link) { destroyCache(static_cast<C*>(link)); }

/// The key holds its names from now on.
template <class K> bool holdNames(K& key) {
    ZSelector selector, qualifier;
    if (!selector.setValue(key.selector)) return false;
    if (key.qualifier && !qualifier.setValue(key.qualifier)) return false;
    selector.forget();
    qualifier.forget();
    return true;
}
template <class C, class K> void put(C* cache, const K& key, const MethodHit& hit) {
    const uint hash = key.hash();
    uint at = hash;
    while (cache->entries()[at & cache->mask].hash) ++at;
    auto& entry = cache->entries()[at & cache->mask];
    entry.key = key;
    entry.hit = hit;
    ++cache->count;
    toolkit::storeRelease(entry.hash, hash);
}
template <class C> C* makeCache(uint room, ularge generation) {
    using Entry = typename C::Entry;
    void* memory = __zalloc(sizeof(C) + room * sizeof(Entry));
    if (!memory) return nullptr;
    C* cache = ::new (memory) C();
    cache->generation = generation;
    cache->mask = room - 1;
    for (uint i = 0; i < room; ++i) ::new (cache->entries() + i) Entry();
    return cache;
}
/// The next larger cache with the same entries, or an empty one.
template <class C> C* grow(const C* old, ularge generation) {
    const bool fresh = !old || old->generation != generation || old->mask + 1 >= mostRoom;
    C* cache = makeCache<C>(fresh ? firstRoom : (old->mask + 1) * 2, generation);
    for (uint i = 0; cache && !fresh && i <= old->mask; ++i) {
        const auto& entry = old->entries()[i];
        auto key = entry.key;
        if (entry.hash && holdNames(key)) put(cache, key, entry.hit);
    }
    return cache;
}
template <class C, class K>
void insert(MethodTables& tables, toolkit::EpochPtr<C>& place, K key, const MethodHit& hit, ularge generation) {
    // Who comes second leaves it: the next lookup will try again.
    if (!tables.cacheGuard.tryLock()) return;
    C *cache = place.load(), *old = nullptr;
    if (generation == typeGeneration()) {
        if (!cache || cache->generation != generation || cache->count * 4 >= (cache->mask + 1) * 3) {
            if (C* larger = grow(cache, generation)) {
                old = place.publish(larger);
                cache = larger;
            } else {
                cache = nullptr;
            }
        }
        if (cache && !cache->find(key) && holdNames(key)) put(cache, key, hit);
    }
    tables.cacheGuard.unlock();
    if (old) toolkit::epochRetire(old, reclaim<C>);
}

} // namespace

void cacheMethod(MethodTables& tables, const MethodKey& key, const MethodHit& hit, ularge generation) {
    insert(tables, tables.cache, key, hit, generation);
}
void cacheMethod(MethodTables& tables, const OverloadKey& key, const MethodHit& hit, ularge generation) {
    insert(tables, tables.overloads, key, hit, generation);
}
void dropCaches(MethodTables& tables) {
    destroyCache(tables.cache.publish(nullptr));
    destroyCache(tables.overloads.publish(nullptr));
}

} // namespace orv
