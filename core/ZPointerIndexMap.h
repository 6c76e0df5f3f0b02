#pragma once

#include "core/ZHashTreeT.h"
#include "core/ZPointerIndex.h"

/// Numbers for pointers, in order of adding: for storing graphs. The pointers aren't followed. A copy shares the
/// numbers until one side is changed. Several threads may read a map; whoever writes it has it alone.
class ZPointerIndexMap {
public:
    using ZRelocatable = void;

    /// Gives a pointer the present count as its number and answers that; a pointer that is known keeps its own. -1 when
    /// there is no memory.
    int addPointerIndex(const void* pointer) {
        if (int known = pointerIndex(pointer); known >= 0) return known;
        int index = int(map.count());
        return insert(pointer, index) ? index : -1;
    }
    /// The number of a pointer; -1 for one that isn't known.
    int pointerIndex(const void* pointer) const {
        const ZPointerIndex* item = map.find(pointer);
        return item ? item->index : -1;
    }
    /// Changes the number of a pointer, which is added if it isn't known. False when there is no memory.
    bool setPointerIndex(const void* pointer, int index) {
        if (!map.contains(pointer)) return insert(pointer, index);
        ZPointerIndex* item = map.edit(pointer);
        if (item) item->index = index;
        return item != nullptr;
    }
    uint count() const { return map.count(); }
    void clear() { map.clear(); }
    void assign(const ZPointerIndexMap& other) { map = other.map; }
    /// In order of addresses: by the first that differ, in address or number, then by the count.
    int compare(const ZPointerIndexMap& other) const { return map.compare(other.map); }

private:
    bool insert(const void* pointer, int index) {
        ZPointerIndex* item = ZPointerIndex::make(pointer, index);
        if (!item || map.add(item)) return item != nullptr;
        item->release();
        return false;
    }

    ZHashTreeT<ZPtrKey, ZPointerIndex> map;
};
