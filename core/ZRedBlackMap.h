#pragma once

#include "core/PackMap.h"
#include "core/forward.h"

/// A store of entries of one size, named by ids from 1 and found by key in a hash table of red-black trees. What the
/// entries mean is told by a user. A copy shares the store until one side writes. The map takes no lock by itself.
class ORV_API ZRedBlackMap final : public orv::detail::PackMap {
public:
    /// The behaviour of the entries. Entries and keys come as plain memory of the map's entry size. The map doesn't own
    /// its user, which has to outlive all maps that share the store.
    class ORV_API MapUser {
    public:
        virtual ~MapUser() = default;
        /// Tells which map this user serves; null when it serves none any more.
        virtual void assign(ZRedBlackMap* map) { served = map; }
        /// Builds a copy in zeroed memory; false when that can't be done, with nothing to be destroyed. Copies the
        /// bytes.
        virtual bool copy(const ZRedBlackMap* map, void* to, const void* from);
        /// Destroys the contents of an entry. Does nothing.
        virtual void destruct(const ZRedBlackMap* map, void* entry);
        /// Negative, 0 or positive. Compares the bytes.
        virtual int comp(const ZRedBlackMap* map, const void* a, const void* b);
        /// A number below `size`. Answers 0.
        virtual uint hash(const ZRedBlackMap* map, const void* key, uint size);
        ZRedBlackMap* map() const { return served; }

    private:
        ZRedBlackMap* served = nullptr;
    };

    ZRedBlackMap() = default;
    /// Raises a failure, and stays unset, when there is no memory.
    ZRedBlackMap(uint entrySize, uint hashSize, uint growth);
    ZRedBlackMap(const ZRedBlackMap& other);
    ~ZRedBlackMap();
    ZRedBlackMap& operator=(const ZRedBlackMap& other);

    /// Sets up an empty store in place of the present one: `hashSize` buckets (one for 0), room taken in steps of
    /// `growth` entries, rounded up to a power of two. False, with the old store kept, when there is no memory.
    bool init(uint entrySize, uint hashSize, uint growth);
    /// Shares the other's store and user.
    void assign(const ZRedBlackMap& other);
    /// Sets the user, null for the plain behaviour, and tells it of this map.
    void setUser(MapUser* user);
    MapUser* user() const { return behaviour; }

    // By key

    /// The id of an entry that compares equal; 0 if there is none.
    uint find(const void* key) const { return findIn(0, key); }
    /// Levels of the tree in one bucket.
    uint depth(uint bucket) const { return pack ? pack->depth(0, bucket) : 0; }

private:
    toolkit::PackCompare comparator(const Order& order) const override;
    uint hashOf(uint tree, const void* key, uint size) const override;
    bool copyEntry(void* to, const void* from) const override;
    void destructEntry(void* contents) const override;

    MapUser* behaviour = nullptr;
};
