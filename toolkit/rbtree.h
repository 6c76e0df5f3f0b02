#pragma once

#include "toolkit/types.h"

/// Red-black trees over nodes that somebody else stores, after Cormen, Leiserson, Rivest and Stein. A node is named by
/// a number or a pointer `N`, whose zero value means none. `T` tells where the links of a node stand:
///   N& parent(N), N& child(N, int side) with side 0 for left, bool red(N), void setRed(N, bool).
/// Nothing is compared here: whoever inserts has found the place.
namespace toolkit {

template <class T, class N> inline bool treeRed(T& tree, N node) { return node && tree.red(node); }

/// Lets `other` take the place of `node` below its parent; the children of both stay as they are.
template <class T, class N> inline void treeReplace(T& tree, N& root, N node, N other) {
    N up = tree.parent(node);
    if (!up)
        root = other;
    else
        tree.child(up, tree.child(up, 1) == node) = other;
    if (other) tree.parent(other) = up;
}

/// Turns the tree at `node` towards `side`: its child on the other side comes above it.
template <class T, class N> inline void treeRotate(T& tree, N& root, N node, int side) {
    N rising = tree.child(node, !side), inner = tree.child(rising, side);
    treeReplace(tree, root, node, rising);
    tree.child(node, !side) = inner;
    if (inner) tree.parent(inner) = node;
    tree.child(rising, side) = node;
    tree.parent(node) = rising;
}

/// Hangs `node` on that side of `up`, where there is room, or makes it the root when `up` is none.
template <class T, class N> void treeInsert(T& tree, N& root, N node, N up, int side) {
    tree.child(node, 0) = tree.child(node, 1) = N();
    tree.parent(node) = up;
    tree.setRed(node, up != N());
    if (!up) {
        root = node;
        return;
    }
    tree.child(up, side) = node;
    while (treeRed(tree, up = tree.parent(node))) {
        N grand = tree.parent(up);
        if (!grand) break;
        int upSide = tree.child(grand, 1) == up;
        N uncle = tree.child(grand, !upSide);
        if (treeRed(tree, uncle)) {
            tree.setRed(up, false);
            tree.setRed(uncle, false);
            tree.setRed(grand, true);
            node = grand;
            continue;
        }
        if (tree.child(up, !upSide) == node) {
            treeRotate(tree, root, up, upSide);
            up = node;
        }
        tree.setRed(up, false);
        tree.setRed(grand, true);
        treeRotate(tree, root, grand, !upSide);
        break;
    }
    tree.setRed(root, false);
}

/// Makes up for a black node that went missing on that side of `up`, where `node` (or none) stands now.
template <class T, class N> void treeRepair(T& tree, N& root, N node, N up, int side) {
    while (up && !treeRed(tree, node)) {
        N sibling = tree.child(up, !side);
        if (treeRed(tree, sibling)) {
            tree.setRed(sibling, false);
            tree.setRed(up, true);
            treeRotate(tree, root, up, side);
            sibling = tree.child(up, !side);
        }
        if (!sibling) break;
        N near = tree.child(sibling, side), far = tree.child(sibling, !side);
        if (!treeRed(tree, near) && !treeRed(tree, far)) {
            tree.setRed(sibling, true);
            node = up;
            up = tree.parent(node);
            side = up && tree.child(up, 1) == node;
            continue;
        }
        if (!treeRed(tree, far)) {
            tree.setRed(near, false);
            tree.setRed(sibling, true);
            treeRotate(tree, root, sibling, !side);
            far = sibling;
            sibling = near;
        }
        tree.setRed(sibling, tree.red(up));
        tree.setRed(up, false);
        tree.setRed(far, false);
        treeRotate(tree, root, up, side);
        return;
    }
    if (node) tree.setRed(node, false);
}

/// Takes `node` out. No other node changes its place in storage; the links of `node` are left as they are.
template <class T, class N> void treeRemove(T& tree, N& root, N node) {
    N rising, up;
    int side;
    bool lostBlack;
    if (tree.child(node, 0) && tree.child(node, 1)) {
        N next = tree.child(node, 1);
        while (tree.child(next, 0)) next = tree.child(next, 0);
        rising = tree.child(next, 1);
        up = tree.parent(next);
        lostBlack = !tree.red(next);
        side = up == node;
        if (side)
            up = next;
        else {
            treeReplace(tree, root, next, rising);
            N right = tree.child(node, 1);
            tree.child(next, 1) = right;
            tree.parent(right) = next;
        }
        treeReplace(tree, root, node, next);
        N left = tree.child(node, 0);
        tree.child(next, 0) = left;
        tree.parent(left) = next;
        tree.setRed(next, tree.red(node));
    } else {
        rising = tree.child(node, 0) ? tree.child(node, 0) : tree.child(node, 1);
        up = tree.parent(node);
        side = up && tree.child(up, 1) == node;
        lostBlack = !tree.red(node);
        treeReplace(tree, root, node, rising);
    }
    if (lostBlack) treeRepair(tree, root, rising, up, side);
}

/// The neighbour of `node` in the order: the next one for side 1, the one before for side 0; none at the end.
template <class T, class N> N treeNeighbour(T& tree, N node, int side) {
    if (N down = tree.child(node, side)) {
        while (N further = tree.child(down, !side)) down = further;
        return down;
    }
    N up = tree.parent(node);
    while (up && tree.child(up, side) == node) {
        node = up;
        up = tree.parent(node);
    }
    return up;
}

} // namespace toolkit
