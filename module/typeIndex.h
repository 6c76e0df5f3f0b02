#pragma once

#include "core/ZSelector.h"
#include "object/forward.h"
#include "toolkit/atomic.h"

namespace orv {

/// Types by name for readers without a lock, or anything else that is written: open addressing over the ids of
/// selectors, published whole when it grows. Outgrown tables, half the size each, stay until the index ends. It holds
/// types and names without references. Writers have a lock of their own; no reader is there when it ends. A place keeps
/// its name once it has one, whatever becomes of the type, so a reader needs no second look.
class ORV_API TypeIndex {
public:
    TypeIndex() = default;
    ~TypeIndex();
    TypeIndex(const TypeIndex&) = delete;
    TypeIndex& operator=(const TypeIndex&) = delete;

    /// Null for a name that isn't there.
    ZMetaType* find(const ZSelector& name) const {
        const Table* now = toolkit::loadAcquire(table);
        const uint key = name.key();
        if (!now || !key) return nullptr;
        for (uint i = spread(key);; ++i) {
            const Place& place = now->places[i & now->mask];
            const uint there = toolkit::loadAcquire(place.key);
            if (there == key) return toolkit::loadAcquire(place.type);
            if (!there) return nullptr;
        }
    }
    /// Replaces the type of the name; false without memory.
    bool put(const ZSelector& name, ZMetaType* type) { return put(name.key(), type); }
    /// What stands in another index too, which may be written meanwhile: a type that comes there at the same time may
    /// be missing, one that goes may be there. False without memory.
    bool putAll(const TypeIndex& other);
    /// Has the same as another one, which nobody writes, from then on. What both have is found all the while. False,
    /// with perhaps too much in it, without memory.
    bool assign(const TypeIndex& other);
    /// Takes a name out if it stands for that type.
    void drop(const ZSelector& name, const ZMetaType* type);
    /// Room for so many more; false without memory.
    bool reserve(uint more);
    void clear();
    /// Calls `visit(type)` for each.
    template <class F> void each(F&& visit) const;

private:
    struct Place {
        uint key;        ///< 0 for a free place; stored last
        ZMetaType* type; ///< null for a name that was taken out
    };
    struct Table {
        Table* outgrown;
        uint mask;
        uint filled; ///< places in use, those taken out among them
        Place places[1];
    };
    /// Ids are dealt in order, so neighbours are spread.
    static uint spread(uint key) { return key * 0x9E3779B1u >> 7 ^ key; }
    static Table* make(uint places);
    static Place& placeOf(Table& table, uint key);
    bool put(uint key, ZMetaType* type);

    Table* table = nullptr; ///< atomic
    uint used = 0;
};

template <class F> void TypeIndex::each(F&& visit) const {
    const Table* now = toolkit::loadAcquire(table);
    for (uint i = 0; now && i <= now->mask; ++i)
        if (ZMetaType* type = toolkit::loadAcquire(now->places[i].type)) visit(type);
}

} // namespace orv
