#pragma once

#include "core/ZSelector.h"
#include "object/methodTables.h"

/// The flat caches in front of a type's method tables: open addressing, an entry is filled in once and then only read.
/// A cache holds for one `typeGeneration`; what changes makes all of them stale. It borrows the methods, which the
/// tables hold as long as the generation lasts and readers under guards beyond that.
namespace orv {

/// What is asked by signature, or by a name alone.
struct MethodKey {
    uint selector, qualifier;
    byte base; ///< what the type declares, whatever was added at run time

    bool operator==(const MethodKey&) const = default;
    uint hash() const { return (selector * 0x9E3779B1u ^ qualifier * 0x85EBCA6Bu ^ base * 0xC2B2AE35u) | 1; }
};

/// What is asked by name and argument types.
struct OverloadKey {
    static constexpr int typeRoom = 6;

    uint selector, qualifier;
    byte base, flags;
    int8 count;
    const ZMetaType* types[typeRoom]; ///< null behind the last

    bool operator==(const OverloadKey& other) const {
        if (selector != other.selector || qualifier != other.qualifier || base != other.base || flags != other.flags ||
            count != other.count)
            return false;
        for (int i = 0; i < count; ++i)
            if (types[i] != other.types[i]) return false;
        return true;
    }
    uint hash() const {
        ularge sum = selector * 0x9E3779B97F4A7C15ull ^ qualifier * 0xC2B2AE3D27D4EB4Full ^
                     (uint(base) << 16 | uint(flags) << 8 | uint(count));
        for (int i = 0; i < count; ++i)
            sum = (sum ^ reinterpret_cast<uintptr_t>(types[i]) >> 4) * 0x9E3779B97F4A7C15ull;
        return uint(sum >> 32) | 1;
    }
};

/// A method together with where it is called, as a lookup found it.
struct MethodHit {
    ZMethod* method = nullptr;
    int offset = 0;            ///< from the instance to the part that the method is called on
    int distance = -1;         ///< how well the arguments fit; 0 where they weren't asked for
    ZMetaType* type = nullptr; ///< in whose table it stands
};

template <class K> struct CacheEntry {
    uint hash = 0; ///< stored last; 0 while the entry is empty
    K key;
    MethodHit hit;
};

template <class K> struct FlatCache : toolkit::EpochLink {
    using Entry = CacheEntry<K>;

    ularge generation = 0;
    uint mask = 0;
    uint count = 0;

    CacheEntry<K>* entries() { return reinterpret_cast<CacheEntry<K>*>(this + 1); }
    const CacheEntry<K>* entries() const { return reinterpret_cast<const CacheEntry<K>*>(this + 1); }
    const MethodHit* find(const K& key) const {
        const uint hash = key.hash();
        for (uint at = hash;; ++at) {
            const CacheEntry<K>& entry = entries()[at & mask];
            const uint seen = toolkit::loadAcquire(entry.hash);
            if (seen == hash && ORV_LIKELY(entry.key == key)) return &entry.hit;
            if (!seen) return nullptr;
        }
    }
};
struct MethodCache : FlatCache<MethodKey> {};
struct OverloadCache : FlatCache<OverloadKey> {};

/// What a lookup found goes in, unless the types have changed since `generation`, another thread is just putting
/// something in, or there is no memory.
void cacheMethod(MethodTables& tables, const MethodKey& key, const MethodHit& hit, ularge generation);
void cacheMethod(MethodTables& tables, const OverloadKey& key, const MethodHit& hit, ularge generation);
/// Frees the caches of a type that ends.
void dropCaches(MethodTables& tables);

} // namespace orv
