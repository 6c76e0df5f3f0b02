#include "core/ZCompactRBMapData.h"

#include "core/hashsize.h"

#include <cstring>

using toolkit::storeRelease;

/// Drops the index, with the lock held.
void ZCompactRBMap::dropTree() const {
    if (uint* old = toolkit::exchange(table, static_cast<uint*>(nullptr))) {
        remove_hash_memory(memoryIndex, old);
        zfree(old);
    }
    buckets = 0;
    storeRelease(root, 0u);
}

/// Builds the index, with the lock held and none there. Readers see it when it is complete.
bool ZCompactRBMap::buildTree() const {
    if (!fixedBits && useTable) fitHash(0);
    const uint n = itemCount;
    fittedCount = n;
    if (!hashed()) {
        uint top = 0;
        for (uint i = 0; i < n; ++i)
            if (!linkTreeNode(top, int(i))) return false;
        storeRelease(root, top);
        return true;
    }
    const uint size = 1u << bits;
    auto built = static_cast<uint*>(toolkit::allocZeroedBlock(size * sizeof(uint)));
    if (!built) {
        mask = buckets = 0;
        return false;
    }
    mask = size - 1;
    scale = orv_calchashscale();
    for (uint i = 0; i < n; ++i)
        if (!linkTreeNode(built[limitHash(hashItem(itemStart(i)))], int(i))) {
            zfree(built);
            return false;
        }
    buckets = size;
    add_hash_memory(memoryIndex, built);
    storeRelease(table, built);
    return true;
}

/// Whether there is an index, which is built now if need be; with the lock held.
bool ZCompactRBMap::ensureTree() const { return hasTree() || (itemCount && buildTree()); }

void ZCompactRBMap::clearTree(bool takeLock) {
    if (takeLock) lock.lock();
    dropTree();
    if (takeLock) lock.unlock();
}

bool ZCompactRBMap::rebuildTree() {
    ZScopedLock held(lock);
    dropTree();
    return buildTree();
}

void ZCompactRBMap::refreshTree() const {
    if (hasTree() || !count()) return;
    ZScopedLock held(lock);
    ensureTree();
}

bool ZCompactRBMap::linkTreeNode(uint& treeRoot, int index) const {
    const ZCompactRBItem* own = itemStart(uint(index));
    const Links tree = links();
    uint up = 0, steps = itemCount;
    int side = 0;
    for (uint down = treeRoot; down; down = side ? tree.at(up).right : tree.at(up).left) {
        if (down - tree.first >= itemCount || steps-- == 0) return false;
        up = down;
        side = compareItemKey(own, &tree.at(up)) > 0;
    }
    toolkit::treeInsert(tree, treeRoot, linkOf(uint(index)), up, side);
    return true;
}

/// Whether an item is part of the index that is built.
bool ZCompactRBMap::isLinked(uint index) const {
    const ZCompactRBItem* own = itemStart(index);
    return own->parent || own->left || own->right || rootFor(hashItem(own)) == linkOf(index);
}

bool ZCompactRBMap::linkNode(int index) {
    if (!inRange(index) || isLinked(uint(index))) return true;
    if (linkTreeNode(rootFor(hashItem(itemStart(uint(index)))), index)) return true;
    dropTree();
    return false;
}

void ZCompactRBMap::unlinkNode(int index) {
    if (!inRange(index) || !hasTree()) return;
    // Either it was never linked, or it is the only item of a bucket that its hash doesn't lead to any more.
    if (!isLinked(uint(index))) return dropTree();
    const Links tree = links();
    uint link = linkOf(uint(index)), top = link;
    for (uint steps = itemCount; steps > 0 && tree.at(top).parent; --steps) {
        top = tree.at(top).parent;
        if (top - tree.first >= itemCount) return dropTree();
    }
    uint& treeRoot = rootFor(hashItem(itemStart(uint(index))));
    if (treeRoot != top) return dropTree();
    toolkit::treeRemove(tree, treeRoot, link);
    tree.at(link) = ZCompactRBItem();
}

void ZCompactRBMap::addNode(int index) {
    if (!inRange(index) || !hasTree()) return;
    ZScopedLock held(lock);
    if (!hasTree()) return;
    if (!fixedBits && useTable && itemCount / 2 >= fittedCount) {
        fittedCount = itemCount;
        fitHash(0);
        if (!hasTree()) return;
    }
    linkNode(index);
}

void ZCompactRBMap::removeNode(int index) {
    ZScopedLock held(lock);
    unlinkNode(index);
}

void ZCompactRBMap::shiftIndexes(uint from, int by) {
    if (!hasTree() || !by) return;
    auto shift = [from, by](uint& index) { index += index > from ? uint(by) : 0; };
    for (uint i = 0; i < buckets; ++i) shift(table[i]);
    shift(root);
    for (uint i = 0; i < itemCount; ++i) {
        ZCompactRBItem* item = itemStart(i);
        shift(item->parent);
        shift(item->left);
        shift(item->right);
    }
}

int ZCompactRBMap::successor(int index) const {
    ZScopedLock held(lock);
    return neighbour(index, 1);
}
int ZCompactRBMap::predecessor(int index) const {
    ZScopedLock held(lock);
    return neighbour(index, 0);
}

/// The next position on that side, with the lock held; -1 at the end, without an index, and where links are damaged.
int ZCompactRBMap::neighbour(int index, int side) const {
    if (!inRange(index) || !hasTree()) return -1;
    const Links tree = links();
    uint steps = itemCount;
    auto sound = [&](uint link) { return link - tree.first < itemCount && steps-- > 0; };
    uint link = linkOf(uint(index));
    uint next = tree.child(link, side);
    if (next) {
        while (sound(next) && tree.child(next, !side)) next = tree.child(next, !side);
    } else {
        next = tree.parent(link);
        while (sound(next) && tree.child(next, side) == link) {
            link = next;
            next = tree.parent(link);
        }
    }
    next -= tree.first;
    return next < itemCount ? int(next) : -1;
}

int ZCompactRBMap::nodeDepth(int index) const {
    ZScopedLock held(lock);
    return inRange(index) && hasTree() ? depthBelow(linkOf(uint(index))) : 0;
}

/// Levels from that node down, with the lock held.
int ZCompactRBMap::depthBelow(uint top) const {
    // A walk that remembers only where it came from; in a sound tree it passes each node three times at most.
    const Links tree = links();
    int deepest = 0, level = 0;
    uint link = top, from = top - tree.first < itemCount ? tree.at(top).parent : 0;
    for (ularge steps = 3 * ularge(itemCount); steps > 0 && link - tree.first < itemCount; --steps) {
        const ZCompactRBItem& node = tree.at(link);
        uint next;
        if (from == node.parent) {
            if (++level > deepest) deepest = level;
            next = node.left ? node.left : node.right ? node.right : node.parent;
        } else
            next = from == node.left && node.right ? node.right : node.parent;
        if (next == node.parent) {
            if (link == top) break;
            --level;
        }
        from = link;
        link = next;
    }
    return deepest;
}

int ZCompactRBMap::maxCollisions() const {
    ZScopedLock held(lock);
    ensureTree();
    int deepest = depthBelow(root);
    for (uint i = 0; i < buckets; ++i)
        if (int depth = depthBelow(table[i]); depth > deepest) deepest = depth;
    return deepest;
}
