#include "core/ZTreeData.h"

#include "core/ZCompactRBMap.h"

#include <cstring>

namespace orv::detail {

/// The memory counter that the tables of all hash trees are booked to.
static constexpr uint memoryIndex = 1;

static bool isRed(const TreeNode* node) { return node && node->color == treeRed; }

/// Puts `with` where `node` hangs; `with` may be null.
static void replace(TreeNode*& root, TreeNode* node, TreeNode* with) {
    TreeNode* parent = node->parent;
    if (!parent)
        root = with;
    else
        (parent->left == node ? parent->left : parent->right) = with;
    if (with) with->parent = parent;
}

static void rotateLeft(TreeNode*& root, TreeNode* node) {
    TreeNode* up = node->right;
    replace(root, node, up);
    node->right = up->left;
    if (node->right) node->right->parent = node;
    up->left = node;
    node->parent = up;
}

static void rotateRight(TreeNode*& root, TreeNode* node) {
    TreeNode* up = node->left;
    replace(root, node, up);
    node->left = up->right;
    if (node->left) node->left->parent = node;
    up->right = node;
    node->parent = up;
}

void treeLink(TreeNode*& root, TreeNode* parent, bool left, TreeNode* node) {
    node->parent = parent;
    node->left = node->right = nullptr;
    node->color = parent ? treeRed : treeBlack;
    if (!parent) {
        root = node;
        return;
    }
    (left ? parent->left : parent->right) = node;
    while (isRed(node->parent)) {
        parent = node->parent;
        TreeNode* top = parent->parent;
        bool onLeft = parent == top->left;
        TreeNode* uncle = onLeft ? top->right : top->left;
        if (isRed(uncle)) {
            parent->color = uncle->color = treeBlack;
            top->color = treeRed;
            node = top;
            continue;
        }
        if (node == (onLeft ? parent->right : parent->left)) {
            onLeft ? rotateLeft(root, parent) : rotateRight(root, parent);
            parent = node;
        }
        parent->color = treeBlack;
        top->color = treeRed;
        onLeft ? rotateRight(root, top) : rotateLeft(root, top);
        break;
    }
    root->color = treeBlack;
}

/// Restores the black height below `parent`, where the side of `node` (perhaps null) lacks one black.
static void fillBlack(TreeNode*& root, TreeNode* node, TreeNode* parent) {
    while (node != root && !isRed(node)) {
        bool onLeft = node == parent->left;
        TreeNode* sibling = onLeft ? parent->right : parent->left;
        if (isRed(sibling)) {
            sibling->color = treeBlack;
            parent->color = treeRed;
            onLeft ? rotateLeft(root, parent) : rotateRight(root, parent);
            sibling = onLeft ? parent->right : parent->left;
        }
        if (!isRed(sibling->left) && !isRed(sibling->right)) {
            sibling->color = treeRed;
            node = parent;
            parent = node->parent;
            continue;
        }
        if (!isRed(onLeft ? sibling->right : sibling->left)) {
            (onLeft ? sibling->left : sibling->right)->color = treeBlack;
            sibling->color = treeRed;
            onLeft ? rotateRight(root, sibling) : rotateLeft(root, sibling);
            sibling = onLeft ? parent->right : parent->left;
        }
        sibling->color = parent->color;
        parent->color = treeBlack;
        (onLeft ? sibling->right : sibling->left)->color = treeBlack;
        onLeft ? rotateLeft(root, parent) : rotateRight(root, parent);
        return;
    }
    if (node) node->color = treeBlack;
}

void treeUnlink(TreeNode*& root, TreeNode* node) {
    TreeNode *child, *parent;
    uint lost = node->color;
    if (node->left && node->right) {
        TreeNode* heir = treeFirst(node->right);
        lost = heir->color;
        child = heir->right;
        parent = heir->parent == node ? heir : heir->parent;
        if (heir->parent != node) {
            replace(root, heir, child);
            heir->right = node->right;
            heir->right->parent = heir;
        }
        replace(root, node, heir);
        heir->left = node->left;
        heir->left->parent = heir;
        heir->color = node->color;
    } else {
        child = node->left ? node->left : node->right;
        parent = node->parent;
        replace(root, node, child);
    }
    if (lost == treeBlack && root) fillBlack(root, child, parent);
    node->color = 0;
    node->parent = node->left = node->right = nullptr;
}

TreeNode* treeFirst(TreeNode* root) {
    if (root)
        while (root->left) root = root->left;
    return root;
}

TreeNode* treeNext(TreeNode* node) {
    if (node->right) return treeFirst(node->right);
    while (node->parent && node == node->parent->right) node = node->parent;
    return node->parent;
}

TreeNode* treePrevious(TreeNode* node) {
    if (node->left) {
        for (node = node->left; node->right;) node = node->right;
        return node;
    }
    while (node->parent && node == node->parent->left) node = node->parent;
    return node->parent;
}

uint treeDepth(const TreeNode* root) {
    // In order, counting the way down and up: no recursion, no memory.
    uint deepest = 0, depth = root ? 1 : 0;
    const TreeNode* node = root;
    const TreeNode* from = nullptr;
    while (node) {
        if (depth > deepest) deepest = depth;
        const TreeNode* next = nullptr;
        if (!from && node->left) next = node->left;
        if (!next && (!from || from == node->left) && node->right) next = node->right;
        if (next) {
            from = nullptr;
            node = next;
            ++depth;
        } else {
            from = node;
            node = node == root ? nullptr : node->parent;
            --depth;
        }
    }
    return deepest;
}

TreeTable* treeTable(uint bits, uint load, bool multiKey) {
    if (bits > treeMaxBits) bits = treeMaxBits;
    size_t bytes = sizeof(TreeTable) + (sizeof(TreeNode*) << bits);
    auto table = static_cast<TreeTable*>(toolkit::allocZeroedBlock(bytes));
    if (!table) return nullptr;
    table->hashBits = bits;
    table->hashSize = 1u << bits;
    table->hashMask = table->hashSize - 1;
    table->hashScale = orv_calchashscale();
    table->load = load;
    table->multiKey = multiKey;
    table->owned = 1;
    ZCompactRBMap::add_hash_memory(memoryIndex, table);
    return table;
}

void treeFreeTable(TreeTable* table) {
    ZCompactRBMap::remove_hash_memory(memoryIndex, table);
    toolkit::freeBlock(table);
}

void treeAppend(TreeTable* table, TreeNode* node) {
    node->prev = table->last;
    node->next = nullptr;
    (table->last ? table->last->next : table->first) = node;
    table->last = node;
    ++table->count;
}

void treeDetach(TreeTable* table, TreeNode* node) {
    (node->prev ? node->prev->next : table->first) = node->next;
    (node->next ? node->next->prev : table->last) = node->prev;
    node->prev = node->next = nullptr;
    --table->count;
}

uint treeMaxDepth(TreeTable* table) {
    uint deepest = 0;
    for (uint i = 0; table && i < table->hashSize; ++i) {
        uint depth = treeDepth(table->buckets()[i]);
        if (depth > deepest) deepest = depth;
    }
    return deepest;
}

} // namespace orv::detail
