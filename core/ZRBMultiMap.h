#pragma once

#include "core/PackMap.h"
#include "core/forward.h"

/// A store of entries that are found by several keys: the same as `ZRedBlackMap` over a number of maps at once, which
/// all index the same entries. The map takes no lock by itself.
class ORV_API ZRBMultiMap final : public orv::detail::UserPackMap<ZRBMultiMap> {
public:
    /// The behaviour of the entries, as `ZRedBlackMap::MapUser`. `i` is a map's number, from 0.
    class ORV_API MapUser : public orv::detail::PackMapUser<ZRBMultiMap> {
    public:
        virtual int comp(const ZRBMultiMap* map, uint i, const void* a, const void* b);
        virtual uint hash(const ZRBMultiMap* map, uint i, const void* key, uint size);
    };
    /// Flags of one map.
    enum MapFlags : uint {
        UniqueKeys = uniqueKeys, ///< an entry whose key is there already can't be linked
    };

    ZRBMultiMap() = default;
    /// Raises a failure, and stays unset, when there is no memory.
    ZRBMultiMap(uint maps, uint entrySize, uint hash, uint growth);
    ZRBMultiMap(const ZRBMultiMap& other) = default;
    ~ZRBMultiMap() { leave(); }
    ZRBMultiMap& operator=(const ZRBMultiMap& other) {
        assign(other);
        return *this;
    }

    /// Sets up an empty store with `maps` maps (1 to 256) of `hash` buckets each. False, with the old store kept, when
    /// there is no memory.
    bool init(uint maps, uint entrySize, uint hash, uint growth);
    /// Sets buckets and flags of one map, or of all, before the first entry is linked; false after that.
    bool initmap(uint i, uint hash, uint flags);
    bool initmaps(uint hash, uint flags);
    uint maps() const { return pack ? pack->trees() : 0; }
    void setUser(MapUser* user) { selectUser(user); }
    MapUser* user() const { return static_cast<MapUser*>(behaviour); }

    /// The id of an entry that compares equal in map `mapIndex`; 0 if there is none.
    uint find(uint mapIndex, const void* key) const { return findIn(mapIndex, key); }
    uint depth(uint mapIndex, uint bucket) const { return pack ? pack->depth(mapIndex, bucket) : 0; }

private:
    toolkit::PackCompare comparator(const Order& order) const override;
    uint hashOf(uint tree, const void* key, uint size) const override;
};
