#pragma once

#include "core/ZCompactRBMap.h"
#include "toolkit/rbtree.h"

/// The links of the items, as the tree operations see them: nodes are stored indexes.
struct ZCompactRBMap::Links {
    char* items;
    size_t size;
    uint first; ///< the stored index of position 0

    ZCompactRBItem& at(uint link) const {
        return *reinterpret_cast<ZCompactRBItem*>(items + size_t(link - first) * size);
    }
    uint& parent(uint link) const { return at(link).parent; }
    uint& child(uint link, int side) const { return side ? at(link).right : at(link).left; }
    bool red(uint link) const { return at(link).color == NodeRed; }
    void setRed(uint link, bool on) const { at(link).color = on ? NodeRed : NodeBlack; }
};

inline ZCompactRBMap::Links ZCompactRBMap::links() const { return {items, itemBytes, base + 1}; }

/// Items and index taken out of a map, which is empty then.
struct ZCompactRBMap::Storage {
    char* items;
    uint base, count;
    size_t size;

    char* block() const { return items ? items - base * size : nullptr; }
};
