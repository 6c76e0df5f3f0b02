#pragma once

#include "core/PackMap.h"
#include "core/forward.h"

/// A store of entries that are found by several keys: the same as `ZRedBlackMap` over a number of maps at once, which
/// all index the same entries. The map takes no lock by itself.
class ORV_API ZRBMultiMap final : public orv::detail::PackMap {
public:
    /// The behaviour of the entries, not owned; see `ZRedBlackMap::MapUser`. `i` is a map's number, from 0.
    class ORV_API MapUser {
    public:
        virtual ~MapUser() = default;
        virtual void assign(ZRBMultiMap* map) { served = map; }
        virtual bool copy(const ZRBMultiMap* map, void* to, const void* from);
        virtual void destruct(const ZRBMultiMap* map, void* entry);
        virtual int comp(const ZRBMultiMap* map, uint i, const void* a, const void* b);
        virtual uint hash(const ZRBMultiMap* map, uint i, const void* key, uint size);
        ZRBMultiMap* map() const { return served; }

    private:
        ZRBMultiMap* served = nullptr;
    };
    /// Flags of one map.
    enum MapFlags : uint {
        UniqueKeys = uniqueKeys, ///< an entry whose key is there already can't be linked
    };

    ZRBMultiMap() = default;
    /// Raises a failure, and stays unset, when there is no memory.
    ZRBMultiMap(uint maps, uint entrySize, uint hash, uint growth);
    ZRBMultiMap(const ZRBMultiMap& other);
    ~ZRBMultiMap();
    ZRBMultiMap& operator=(const ZRBMultiMap& other);

    /// Sets up an empty store with `maps` maps (1 to 256) of `hash` buckets each. False, with the old store kept, when
    /// there is no memory.
    bool init(uint maps, uint entrySize, uint hash, uint growth);
    /// Sets buckets and flags of one map, or of all, before the first entry is linked; false after that.
    bool initmap(uint i, uint hash, uint flags);
    bool initmaps(uint hash, uint flags);
    uint maps() const { return pack ? pack->trees() : 0; }
    void assign(const ZRBMultiMap& other);
    void setUser(MapUser* user);
    MapUser* user() const { return behaviour; }

    /// The id of an entry that compares equal in map `mapIndex`; 0 if there is none.
    uint find(uint mapIndex, const void* key) const { return findIn(mapIndex, key); }
    uint depth(uint mapIndex, uint bucket) const { return pack ? pack->depth(mapIndex, bucket) : 0; }

private:
    toolkit::PackCompare comparator(const Order& order) const override;
    uint hashOf(uint tree, const void* key, uint size) const override;
    bool copyEntry(void* to, const void* from) const override;
    void destructEntry(void* contents) const override;

    MapUser* behaviour = nullptr;
};
