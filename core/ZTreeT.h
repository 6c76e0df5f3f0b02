#pragma once

#include "core/ZTreeItemT.h"

/// One red-black tree of nodes that somebody else owns: a root pointer. Equal keys may stand in it, the older ones to
/// the right of the newer. `T` derives from `ZTreeItemT<K, T>`.
template <class K, class T> class ZTreeT {
public:
    ZTreeT() = default;
    ZTreeT(const ZTreeT&) = delete;
    ZTreeT& operator=(const ZTreeT&) = delete;

    bool isEmpty() const { return !root; }
    /// The node that was added first among those with this key; null if there is none.
    T* find(const K& key) const { return findIn(root, key, true); }
    /// In order, from the smallest; null at the end.
    T* first() const { return cast(orv::detail::treeFirst(root)); }
    static T* next(T* item) { return cast(orv::detail::treeNext(item)); }
    static T* previous(T* item) { return cast(orv::detail::treePrevious(item)); }
    /// Nodes on the longest way down.
    uint depth() const { return orv::detail::treeDepth(root); }

    /// Adds a node that is in no tree.
    void add(T* item) { linkIn(root, item); }
    /// Takes a node of this tree out; it stays its owner's.
    void remove(T* item) { orv::detail::treeUnlink(root, item); }

    // The same on a bare root, for tables of trees.

    using Node = orv::detail::TreeNode;
    static T* cast(Node* node) { return static_cast<T*>(node); }
    static T* findIn(Node* node, const K& key, bool multiKey) {
        Node* hit = nullptr;
        while (node) {
            int order = zcompare<K>(cast(node)->key(), key);
            if (order == 0) {
                if (!multiKey) return cast(node);
                hit = node;
            }
            node = order > 0 ? node->left : node->right;
        }
        return cast(hit);
    }
    /// Unless a node with its key is there: that one is the answer, else null.
    static T* linkUnique(Node*& root, T* item) {
        Node* parent = nullptr;
        int order = 0;
        for (Node* node = root; node; node = order < 0 ? node->left : node->right) {
            parent = node;
            order = zcompare<K>(item->key(), cast(node)->key());
            if (order == 0) return cast(node);
        }
        orv::detail::treeLink(root, parent, order < 0, item);
        return nullptr;
    }
    static void linkIn(Node*& root, T* item) {
        Node* parent = nullptr;
        bool left = false;
        for (Node* node = root; node; node = left ? node->left : node->right) {
            parent = node;
            left = T::order(*item, *cast(node)) <= 0;
        }
        orv::detail::treeLink(root, parent, left, item);
    }

private:
    Node* root = nullptr;
};
