#pragma once

#include "core/PackMap.h"
#include "core/forward.h"

/// A store of entries of one size, named by ids from 1 and found by key in a hash table of red-black trees. What the
/// entries mean is told by a user. A copy shares the store until one side writes. The map takes no lock by itself.
class ORV_API ZRedBlackMap final : public orv::detail::UserPackMap<ZRedBlackMap> {
public:
    /// The behaviour of the entries; keys come as entries do.
    class ORV_API MapUser : public orv::detail::PackMapUser<ZRedBlackMap> {
    public:
        /// Negative, 0 or positive. Compares the bytes.
        virtual int comp(const ZRedBlackMap* map, const void* a, const void* b);
        /// A number below `size`. Answers 0.
        virtual uint hash(const ZRedBlackMap* map, const void* key, uint size);
    };

    ZRedBlackMap() = default;
    /// Raises a failure, and stays unset, when there is no memory.
    ZRedBlackMap(uint entrySize, uint hashSize, uint growth);
    ZRedBlackMap(const ZRedBlackMap& other) = default;
    ~ZRedBlackMap() { leave(); }
    ZRedBlackMap& operator=(const ZRedBlackMap& other) {
        assign(other);
        return *this;
    }

    /// Sets up an empty store in place of the present one: `hashSize` buckets (one for 0), room taken in steps of
    /// `growth` entries, rounded up to a power of two. False, with the old store kept, when there is no memory.
    bool init(uint entrySize, uint hashSize, uint growth);
    /// Sets the user, null for the plain behaviour, and tells it of this map.
    void setUser(MapUser* user) { selectUser(user); }
    MapUser* user() const { return static_cast<MapUser*>(behaviour); }

    // By key

    /// The id of an entry that compares equal; 0 if there is none.
    uint find(const void* key) const { return findIn(0, key); }
    /// Levels of the tree in one bucket.
    uint depth(uint bucket) const { return pack ? pack->depth(0, bucket) : 0; }

private:
    toolkit::PackCompare comparator(const Order& order) const override;
    uint hashOf(uint tree, const void* key, uint size) const override;
};
