#include "core/ZCompactRBMap.h"

/// The walk of `seekAt` that clears a link which points to its own item.
template <class F> int ZCompactRBMap::repairingSeek(uint link, F&& order) const {
    for (uint steps = itemCount; steps > 0; --steps) {
        uint at = link - 1 - base;
        if (at >= itemCount) break;
        ZCompactRBItem* item = itemStart(at);
        int result = order(item);
        if (result == 0) return int(at);
        uint& next = result < 0 ? item->right : item->left;
        if (next == link) next = 0;
        link = next;
    }
    return -1;
}

int ZCompactRBMap::findIndexAtRoot(uint treeRoot, const void* key) const {
    return repairingSeek(treeRoot, [&](const ZCompactRBItem* item) { return compareKey(item, key); });
}
int ZCompactRBMap::findValueIndexAtRoot(uint treeRoot, const void* value) const {
    return repairingSeek(treeRoot, [&](const ZCompactRBItem* item) { return compareValue(item, value); });
}

int ZCompactRBMap::findIndex(const void* key) const {
    if (!count()) return -1;
    const uint hash = hashKey(key);
    ZScopedLock held(lock);
    return ensureTree() ? findIndexAtRoot(rootFor(hash), key) : -1;
}

int ZCompactRBMap::findFirstIndex(const void* key) const {
    if (!count()) return -1;
    const uint hash = hashKey(key);
    ZScopedLock held(lock);
    int first = ensureTree() ? findIndexAtRoot(rootFor(hash), key) : -1;
    for (uint steps = itemCount; first >= 0 && steps > 0; --steps) {
        int before = neighbour(first, 0);
        if (before < 0 || compareKey(itemStart(uint(before)), key)) break;
        first = before;
    }
    return first;
}

int ZCompactRBMap::findValueIndex(const void* value) const {
    if (!count()) return -1;
    const uint hash = hashValue(value);
    ZScopedLock held(lock);
    return ensureTree() ? findValueIndexAtRoot(rootFor(hash), value) : -1;
}

ZCompactRBItem* ZCompactRBMap::findItem(const void* key) const {
    int index = findIndex(key);
    return index < 0 ? nullptr : itemStart(uint(index));
}

ZCompactRBItem* ZCompactRBMap::findItemByValue(const void* value) const {
    int index = findValueIndex(value);
    return index < 0 ? nullptr : itemStart(uint(index));
}

int ZCompactRBMap::valueIndex(const void* value) const {
    ZScopedLock held(lock);
    for (uint i = 0; i < itemCount; ++i)
        if (compareValue(itemStart(i), value) == 0) return int(i);
    return -1;
}

bool ZCompactRBMap::verifyKey(const void* key) {
    if (findIndex(key) >= 0) return false;
    rebuildTree();
    return true;
}
