#include "core/ZCompactRBMapData.h"

#include <cstring>
#include <utility>

ZCompactRBMap::ZCompactRBMap(int capacity, uint itemSize, int16 expand, uint hashBits, uint load) {
    if (!initialize(capacity, itemSize, hashBits, load)) ZError::fail();
    growth = expand;
}

ZCompactRBMap::~ZCompactRBMap() { ZCompactRBMap::clear(); }

bool ZCompactRBMap::retain() const { return incmemref(this, false) > 0; }
void ZCompactRBMap::release() const {
    if (decmemref(this) <= 0) delete this;
}

bool ZCompactRBMap::initialize(int capacity, uint itemSize, uint hashBits, uint load) {
    clear();
    {
        ZScopedLock held(lock);
        autoLoad = 100;
        growth = 100;
        useTable = true;
        bigEndian = false;
        itemBytes = itemSize >= sizeof(ZCompactRBItem) ? itemSize : 0;
        fixedBits = hashBits > 0 && !load;
        setBits(load ? bitsFor(capacity > 0 ? uint(capacity) : 0, load) : hashBits);
    }
    return capacity <= 0 || !itemBytes || relocate(uint(capacity), uint(capacity));
}

// The item's behaviour: nothing, in a map that knows nothing of its items.

bool ZCompactRBMap::initItem(ZCompactRBItem*) { return true; }
void ZCompactRBMap::freeItem(ZCompactRBItem*) {}
bool ZCompactRBMap::copyItem(ZCompactRBItem*, const ZCompactRBItem*) { return true; }
int ZCompactRBMap::compareItem(const ZCompactRBItem*, const ZCompactRBItem*) const { return 0; }
int ZCompactRBMap::compareItemKey(const ZCompactRBItem*, const ZCompactRBItem*) const { return 0; }
int ZCompactRBMap::compareItemValue(const ZCompactRBItem*, const ZCompactRBItem*) const { return 0; }
int ZCompactRBMap::compareKey(const ZCompactRBItem*, const void*) const { return 0; }
int ZCompactRBMap::compareValue(const ZCompactRBItem*, const void*) const { return 0; }
uint ZCompactRBMap::hashKey(const void*) const { return 0; }
uint ZCompactRBMap::hashValue(const void*) const { return 0; }
uint ZCompactRBMap::hashItem(const ZCompactRBItem*) const { return 0; }

bool ZCompactRBMap::assign(const ZCompactRBMap& other, bool allocateCapacity) {
    if (&other == this) return true;
    const uint newCount = other.itemCount, newRoom = allocateCapacity ? other.itemCapacity : newCount;
    const size_t size = other.itemBytes;
    Storage made{nullptr, 0, 0, size};
    if (newRoom && size) {
        made.items = static_cast<char*>(toolkit::allocZeroedBlock(newRoom * size));
        if (!made.items) return false;
    }
    for (; made.count < newCount; ++made.count) {
        auto to = reinterpret_cast<ZCompactRBItem*>(made.items + made.count * size);
        if (copyItem(to, other.itemStart(made.count))) continue;
        freeStorage(made);
        return false;
    }
    // Readers of the other map may be building its index right now.
    ZCompactRBMap settings;
    {
        ZScopedLock held(other.lock);
        for (uint i = 0; i < newCount; ++i)
            *reinterpret_cast<ZCompactRBItem*>(made.items + i * size) = *other.itemStart(i);
        settings.bits = other.bits;
        settings.mask = other.mask;
        settings.buckets = other.buckets;
        settings.scale = other.scale;
        settings.root = other.root;
        settings.fittedCount = other.fittedCount;
        settings.table = static_cast<uint*>(__zmemdup(other.table));
        settings.base = other.base;
    }
    // A table that can't be copied is built again later.
    if (!settings.table) settings.buckets = 0;

    Storage old = takeStorage();
    {
        ZScopedLock held(lock);
        memoryIndex = other.memoryIndex;
        bits = settings.bits;
        mask = settings.mask;
        buckets = settings.buckets;
        scale = settings.scale;
        autoLoad = other.autoLoad;
        itemBytes = other.itemBytes;
        growth = other.growth;
        bigEndian = other.bigEndian;
        useTable = other.useTable;
        fittedCount = settings.fittedCount;
        fixedBits = other.fixedBits;
        items = made.items;
        itemCapacity = room = newRoom;
        toolkit::store(itemCount, newCount);
        base = 0;
        table = std::exchange(settings.table, nullptr);
        root = settings.root;
        add_hash_memory(memoryIndex, table);
        if (settings.base) shiftIndexes(0, -int(settings.base));
    }
    freeStorage(old);
    return true;
}

int ZCompactRBMap::compare(const ZCompactRBMap& other) const {
    if (&other == this) return 0;
    const uint own = itemCount, others = other.itemCount, shorter = own < others ? own : others;
    if (shorter) {
        auto order = static_cast<int*>(__zalloc((size_t(own) + others) * sizeof(int)));
        if (!order) return 0;
        int* otherOrder = order + own;
        int result = 0;
        bool ordered = keyOrder(order) && other.keyOrder(otherOrder);
        for (uint i = 0; ordered && i < shorter && !result; ++i)
            result = compareItem(itemStart(uint(order[i])), other.itemStart(uint(otherOrder[i])));
        zfree(order);
        if (!ordered || result) return result;
    }
    return (own > others) - (own < others);
}
