#pragma once

#include "toolkit/types.h"

enum ZRebBlackColor : uint { NodeRed = 1, NodeBlack = 2 };

/// The head of every item of a `ZCompactRBMap`: its place in a tree, by index. An index is a number from 1; 0 is none.
/// Only the map writes these words, while an index is built.
struct ZCompactRBItem {
    uint color = NodeBlack;
    uint parent = 0, left = 0, right = 0;
};
static_assert(sizeof(ZCompactRBItem) == 16);
