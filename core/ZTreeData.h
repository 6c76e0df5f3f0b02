#pragma once

#include "core/construct.h"
#include "core/hashsize.h"

/// The untyped part of `ZTreeT` and `ZHashTreeT`: links, balance, and the table of buckets.
namespace orv::detail {

/// The links of a node in its red-black tree, and in the list of its table in order of adding.
struct TreeNode {
    uint color = 0; ///< 0 while it is in no tree
    TreeNode* parent = nullptr;
    TreeNode* left = nullptr;
    TreeNode* right = nullptr;
    TreeNode* prev = nullptr;
    TreeNode* next = nullptr;

    TreeNode() = default;
    /// A copy is in no tree.
    TreeNode(const TreeNode&) {}
    TreeNode& operator=(const TreeNode&) { return *this; }
};
static_assert(sizeof(TreeNode) == 48);

inline constexpr uint treeRed = 1, treeBlack = 2;

/// Puts a node in as the left or right child of `parent`, null for the root of an empty tree.
ORV_API void treeLink(TreeNode*& root, TreeNode* parent, bool left, TreeNode* node);
ORV_API void treeUnlink(TreeNode*& root, TreeNode* node);
ORV_API TreeNode* treeFirst(TreeNode* root);
ORV_API TreeNode* treeNext(TreeNode* node);
ORV_API TreeNode* treePrevious(TreeNode* node);
ORV_API uint treeDepth(const TreeNode* root);

/// A counted block: this head, then the root of each bucket.
struct TreeTable {
    uint count;
    uint hashBits;
    uint hashMask;
    uint hashSize; ///< 1 << `hashBits`
    uint hashScale;
    uint load;       ///< percent; 0 fixes the size
    byte dirty;      ///< nodes came or went
    byte multiKey;   ///< equal keys are allowed
    byte owned;      ///< a write to a shared table makes a copy
    TreeNode* first; ///< in order of adding
    TreeNode* last;

    TreeNode** buckets() { return reinterpret_cast<TreeNode**>(this + 1); }
    TreeNode*& bucket(uint hash) {
        uint a = hashScale * hash, c = hashScale * a;
        return buckets()[(uint(ularge(c) >> 2 * hashBits) ^ a >> hashBits ^ hash) & hashMask];
    }
};
static_assert(sizeof(TreeTable) == 48);

inline constexpr uint treeMaxBits = 24;

/// An empty table; bits above `treeMaxBits` are lowered to that. Null when there is no memory.
ORV_API TreeTable* treeTable(uint bits, uint load, bool multiKey);
ORV_API void treeFreeTable(TreeTable* table);
/// The end of the list.
ORV_API void treeAppend(TreeTable* table, TreeNode* node);
ORV_API void treeDetach(TreeTable* table, TreeNode* node);
/// Whether a table that could have `wanted` bits is to change its size.
inline bool treeMisfits(const TreeTable* table, uint wanted) {
    uint bits = table->hashBits, difference = wanted > bits ? wanted - bits : bits - wanted;
    return difference > 2 || (difference > 0 && wanted < 3);
}
ORV_API uint treeMaxDepth(TreeTable* table);

} // namespace orv::detail
