#include "core/ZCompactRBMapData.h"

#include <cstring>
#include <utility>

/// Takes items and index out, under the lock; the map keeps its settings.
ZCompactRBMap::Storage ZCompactRBMap::takeStorage() {
    ZScopedLock held(lock);
    dropTree();
    Storage taken{items, base, itemCount, itemBytes};
    items = nullptr;
    toolkit::store(itemCount, 0u);
    itemCapacity = room = base = 0;
    return taken;
}

/// Frees what was taken, last item first.
void ZCompactRBMap::freeStorage(Storage& taken) {
    while (taken.count > 0) freeItem(reinterpret_cast<ZCompactRBItem*>(taken.items + --taken.count * taken.size));
    zfree(taken.block());
}

void ZCompactRBMap::clear() {
    Storage taken = takeStorage();
    freeStorage(taken);
}

bool ZCompactRBMap::setItemSize(uint size) {
    if (size && size < sizeof(ZCompactRBItem)) return false;
    if (size == itemBytes) return true;
    if (itemCount) return false;
    clear();
    itemBytes = size;
    return true;
}

/// Moves the items to a new block with that many places.
bool ZCompactRBMap::relocate(uint newCapacity, uint newRoom) {
    auto block = static_cast<char*>(toolkit::allocZeroedBlock(size_t(newRoom) * itemBytes));
    if (!block) return false;
    char* old;
    {
        ZScopedLock held(lock);
        if (itemCount) std::memcpy(block, items, size_t(itemCount) * itemBytes);
        old = items ? items - size_t(base) * itemBytes : nullptr;
        items = block;
        itemCapacity = newCapacity;
        room = newRoom;
        if (uint by = std::exchange(base, 0)) shiftIndexes(0, -int(by));
    }
    zfree(old);
    return true;
}

/// Moves the items down to the start of their block.
void ZCompactRBMap::slideDown() {
    ZScopedLock held(lock);
    uint by = std::exchange(base, 0);
    char* start = items - size_t(by) * itemBytes;
    std::memmove(start, items, size_t(itemCount) * itemBytes);
    items = start;
    size_t gone = size_t(by < itemCount ? by : itemCount) * itemBytes;
    std::memset(start + (size_t(itemCount) + by) * itemBytes - gone, 0, gone);
    shiftIndexes(0, -int(by));
}

/// Makes room in the block for `needed` items in all, which the capacity allows, behind the free places in front.
void ZCompactRBMap::makeRoom(uint needed) {
    if (size_t(base) + needed <= room) return;
    // So that each item moves a bounded number of times, the block is slid only after as many items have gone from the
    // front as have to move; else it gets more places.
    uint wanted = itemCapacity < itemLimit / 2 ? itemCapacity + itemCapacity / 2 + 8 : itemLimit;
    if (base < itemCount / 2 && room < wanted && relocate(itemCapacity, wanted)) return;
    slideDown();
}

/// The capacity that follows on `from` when `more` are asked for and `needed` have to fit.
uint ZCompactRBMap::grown(uint from, uint more, ularge needed) const {
    ularge wanted;
    if (growth < 0) {
        uint step = uint(-int(growth));
        wanted = ularge(from) + more + step - 1;
        wanted -= wanted % step;
    } else
        wanted = from + (growth ? (ularge(from) * uint(growth) + 50) / 100 : from);
    if (wanted < needed) wanted = needed;
    return uint(wanted < itemLimit ? wanted : itemLimit);
}

bool ZCompactRBMap::expand(int count) {
    if (count <= 0) return true;
    const ularge needed = ularge(itemCount) + uint(count);
    if (needed > itemLimit || !itemBytes) return false;
    if (needed <= itemCapacity) {
        makeRoom(uint(needed));
        return true;
    }
    const uint wanted = grown(itemCapacity, uint(count), needed);
    return relocate(wanted, wanted);
}

bool ZCompactRBMap::trim() {
    if (!itemCount) {
        clear();
        return true;
    }
    return (itemCapacity == itemCount && room == itemCount) || relocate(itemCount, itemCount);
}

bool ZCompactRBMap::append(int count, bool init) { return insert(int(itemCount), count, init); }

bool ZCompactRBMap::insert(int index, int count, bool init) {
    if (count < 1) return true;
    if (ularge(itemCount) + uint(count) > itemLimit) return false;
    const uint at = index < 0 ? 0 : uint(index) > itemCount ? itemCount : uint(index), n = uint(count);
    if (at == 0 && itemCount && base >= n && itemCount + n <= itemCapacity) {
        ZScopedLock held(lock);
        base -= n;
        items -= size_t(n) * itemBytes;
        toolkit::store(itemCount, itemCount + n);
    } else {
        if (!expand(count)) return false;
        ZScopedLock held(lock);
        const size_t gap = size_t(n) * itemBytes;
        if (at < itemCount) {
            char* place = items + size_t(at) * itemBytes;
            std::memmove(place + gap, place, size_t(itemCount - at) * itemBytes);
            std::memset(place, 0, gap);
            toolkit::store(itemCount, itemCount + n);
            shiftIndexes(at + base, count);
        } else
            toolkit::store(itemCount, itemCount + n);
    }
    for (uint i = 0; init && i < n; ++i) {
        if (initItem(itemStart(at + i))) continue;
        removeItems(int(at + i), int(n - i), false);
        removeItems(int(at), int(i), true);
        return false;
    }
    return true;
}

/// Moves the bytes of items to `into` and closes the gap; they are in no tree any more. With the lock held.
void ZCompactRBMap::takeOut(uint index, uint count, char* into) {
    if (hasTree())
        for (uint i = 0; i < count; ++i) unlinkNode(int(index + i));
    const size_t bytes = size_t(count) * itemBytes;
    char* place = items + size_t(index) * itemBytes;
    const uint left = itemCount - count;
    if (into) std::memcpy(into, place, bytes);
    if (index == 0 && left) {
        std::memset(place, 0, bytes);
        items += bytes;
        base += count;
    } else {
        std::memmove(place, place + bytes, size_t(left - index) * itemBytes);
        std::memset(items + size_t(left) * itemBytes, 0, bytes);
    }
    toolkit::store(itemCount, left);
    if (index && index < left) shiftIndexes(index + count + base, -int(count));
    if (!left) {
        items -= size_t(base) * itemBytes;
        base = 0;
    }
}

bool ZCompactRBMap::remove(int index, int count) {
    removeItems(index, count, true);
    return true;
}

/// Takes items out, in pieces if there is no memory to put them aside, and frees them unless they weren't built.
void ZCompactRBMap::removeItems(int index, int count, bool built) {
    const large from = index < 0 ? 0 : index;
    large end = large(index) + count;
    // The bytes go aside, so that the map is whole when the items are freed.
    char small[1024];
    while (end = end > itemCount ? itemCount : end, from < end) {
        uint n = uint(end - from);
        char* aside = small;
        if (size_t(n) * itemBytes > sizeof small) {
            aside = built ? static_cast<char*>(__zalloc(size_t(n) * itemBytes)) : nullptr;
            if (built && !aside) {
                n = itemBytes > sizeof small ? 1 : uint(sizeof small / itemBytes);
                aside = itemBytes > sizeof small ? nullptr : small;
            }
        }
        if (built && !aside) freeItem(itemStart(uint(from)));
        {
            ZScopedLock held(lock);
            // To unlink a good part of the items costs more than to link the rest anew.
            if (n > 64 && n > itemCount / 4) dropTree();
            takeOut(uint(from), n, aside);
        }
        for (uint i = 0; built && aside && i < n; ++i)
            freeItem(reinterpret_cast<ZCompactRBItem*>(aside + size_t(i) * itemBytes));
        if (aside != small) zfree(aside);
        end -= n;
    }
}

bool ZCompactRBMap::setSpace(int count) {
    if (count < 0) count = 0;
    if (uint(count) >= itemCount) return expand(count - int(itemCount));
    clearTree(true);
    removeItems(count, int(itemCount) - count, true);
    return true;
}

bool ZCompactRBMap::setCount(int count) {
    if (count < 1) {
        clear();
        return true;
    }
    if (!itemBytes || uint(count) > itemLimit) return false;
    const uint wanted = grown(0, uint(count), uint(count));
    auto block = static_cast<char*>(toolkit::allocZeroedBlock(size_t(wanted) * itemBytes));
    if (!block) return false;
    clear();
    ZScopedLock held(lock);
    items = block;
    itemCapacity = room = wanted;
    toolkit::store(itemCount, uint(count));
    return true;
}
