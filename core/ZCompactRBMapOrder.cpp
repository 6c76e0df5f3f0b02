#include "core/ZCompactRBMap.h"

#include "core/memsort.h"

#include <cstring>

namespace {

/// What the sort of positions needs to compare two of them.
struct Order {
    const ZCompactRBMap& map;
    ZCompactRBMap::Compare compare;
    const void* context;
    bool ascending;

    static int call(const void* a, const void* b, void* order) {
        auto self = static_cast<const Order*>(order);
        uint first = *static_cast<const uint*>(a), second = *static_cast<const uint*>(b);
        int result = self->compare(self->context, self->map.itemStart(first), self->map.itemStart(second));
        return self->ascending ? result : -(result > 0) + (result < 0);
    }
};

/// Exchanges the bytes of two items.
void swapBytes(char* a, char* b, size_t size) {
    char aside[256];
    while (size > 0) {
        size_t part = size < sizeof aside ? size : sizeof aside;
        std::memcpy(aside, a, part);
        std::memcpy(a, b, part);
        std::memcpy(b, aside, part);
        a += part;
        b += part;
        size -= part;
    }
}

} // namespace

int ZCompactRBMap::byItem(const void* map, const ZCompactRBItem* a, const ZCompactRBItem* b) {
    return static_cast<const ZCompactRBMap*>(map)->compareItem(a, b);
}
int ZCompactRBMap::byKey(const void* context, const ZCompactRBItem* a, const ZCompactRBItem* b) {
    auto map = static_cast<const ZCompactRBMap*>(context);
    int result = map->compareItemKey(a, b);
    return result ? result : map->compareItem(a, b);
}

bool ZCompactRBMap::sortOrder(int* order, Compare compare, const void* context, bool ascending) const {
    const uint n = itemCount;
    for (uint i = 0; i < n; ++i) order[i] = int(i);
    if (n < 2) return true;
    auto spare = static_cast<int*>(__zalloc(n * sizeof(int)));
    if (!spare) return false;
    Order by{*this, compare, context, ascending};
    mergesort(order, n, sizeof(int), Order::call, &by, spare);
    zfree(spare);
    return true;
}
bool ZCompactRBMap::sortOrder(int* order, bool ascending) const { return sortOrder(order, byItem, this, ascending); }
bool ZCompactRBMap::keyOrder(int* order) const { return sortOrder(order, byKey, this, true); }

int* ZCompactRBMap::getSortOrder(Compare compare, const void* context, bool ascending) const {
    if (!itemCount) return nullptr;
    auto order = static_cast<int*>(__zalloc(itemCount * sizeof(int)));
    if (!order || sortOrder(order, compare, context, ascending)) return order;
    zfree(order);
    return nullptr;
}
int* ZCompactRBMap::getSortOrder(bool ascending) const { return getSortOrder(byItem, this, ascending); }

bool ZCompactRBMap::sort(bool ascending) { return sort(byItem, this, ascending); }
bool ZCompactRBMap::sort(Compare compare, const void* context, bool ascending) {
    if (itemCount < 2) return true;
    int* order = getSortOrder(compare, context, ascending);
    if (!order) return false;
    {
        ZScopedLock held(lock);
        dropTree();
        // Each swap brings one item to its place; places that are done hold their own number.
        for (uint i = 0; i < itemCount; ++i) {
            uint at = i;
            while (uint(order[at]) != i) {
                uint next = uint(order[at]);
                swapBytes(reinterpret_cast<char*>(itemStart(at)), reinterpret_cast<char*>(itemStart(next)), itemBytes);
                order[at] = int(at);
                at = next;
            }
            order[at] = int(at);
        }
    }
    zfree(order);
    return true;
}

bool ZCompactRBMap::moveToPlace(int from, int to) {
    if (!inRange(from) || !inRange(to)) return false;
    if (from == to) return true;
    ZScopedLock held(lock);
    dropTree();
    const size_t size = itemBytes;
    char aside[256];
    if (size <= sizeof aside) {
        char *source = items + size_t(from) * size, *target = items + size_t(to) * size;
        std::memcpy(aside, source, size);
        if (from < to)
            std::memmove(source, source + size, size_t(to - from) * size);
        else
            std::memmove(target + size, target, size_t(from - to) * size);
        std::memcpy(target, aside, size);
        return true;
    }
    for (int step = from < to ? 1 : -1; from != to; from += step)
        swapBytes(items + size_t(from) * size, items + size_t(from + step) * size, size);
    return true;
}

bool ZCompactRBMap::swapPlace(int a, int b) {
    if (!inRange(a) || !inRange(b)) return false;
    if (a == b) return true;
    ZScopedLock held(lock);
    const bool tree = hasTree();
    const bool linkA = tree && isLinked(uint(a)), linkB = tree && isLinked(uint(b));
    unlinkNode(a);
    unlinkNode(b);
    swapBytes(items + size_t(a) * itemBytes, items + size_t(b) * itemBytes, itemBytes);
    if (linkB && hasTree()) linkNode(a);
    if (linkA && hasTree()) linkNode(b);
    return true;
}
