#include "core/ZCompactRBMapData.h"
#include "core/debug.h"

/// A walk over one tree that counts its nodes and stops at the first thing that is wrong.
struct ZCompactRBMap::Check {
    const ZCompactRBMap& map;
    bool log;
    uint nodes = 0;

    bool fail(uint link) const {
        if (log && link - map.base - 1 < map.itemCount) {
            const ZCompactRBItem& node = map.links().at(link);
            zdebug("node: %d, %d, %d, %d\n", int(link), int(node.parent), int(node.left), int(node.right));
        }
        return false;
    }

    /// `blacks` gets the number of black nodes on each way down. A sound tree of 2^31 items has at most 62 levels.
    bool walk(uint link, uint parent, int level, int& blacks) {
        constexpr int mostLevels = 64;
        blacks = 0;
        if (!link) return true;
        const Links tree = map.links();
        if (link - tree.first >= map.itemCount || level > mostLevels || ++nodes > map.itemCount) {
            if (log) zdebug("invalid tree: %d, %d\n", int(parent), int(link));
            return fail(parent);
        }
        const ZCompactRBItem& node = tree.at(link);
        bool twoReds = node.color == NodeRed && (!parent || tree.red(parent));
        if (node.parent != parent || (node.color != NodeRed && node.color != NodeBlack) || twoReds) {
            if (log) zdebug("invalid tree: %d, %d\n", int(parent), int(link));
            return fail(link);
        }
        int left, right;
        if (!walk(node.left, link, level + 1, left) || !walk(node.right, link, level + 1, right)) return false;
        bool ordered = (!node.left || map.compareItemKey(&tree.at(node.left), &node) <= 0) &&
                       (!node.right || map.compareItemKey(&tree.at(node.right), &node) >= 0);
        if (left != right || !ordered) {
            if (log) zdebug("invalid tree: %d, %d, %d\n", int(link), int(node.left), int(node.right));
            return fail(link);
        }
        blacks = left + (node.color == NodeBlack);
        return true;
    }
};

int ZCompactRBMap::checkNodes(uint treeRoot, bool log) const {
    Check check{*this, log};
    int blacks;
    return check.walk(treeRoot, 0, 1, blacks) ? int(check.nodes) : -1;
}
int ZCompactRBMap::checkTreeNode(uint treeRoot) const { return checkNodes(treeRoot, true); }

bool ZCompactRBMap::checkAll(const char* label, bool log) const {
    ZScopedLock held(lock);
    if (!hasTree()) return true;
    int errors = 0;
    large nodes = 0;
    auto check = [&](uint treeRoot, uint bucket) {
        int found = checkNodes(treeRoot, log);
        if (found >= 0) {
            nodes += found;
            return;
        }
        ++errors;
        if (log && table) zdebug("%s: hash: %d\n", label, int(bucket));
    };
    if (table)
        for (uint i = 0; i < buckets; ++i) check(table[i], i);
    else
        check(root, 0);
    if (!errors && nodes <= itemCount) return true;
    if (log) {
        zdebug("invalid tree\n");
        zdebug("rbtree error: %d\n", errors);
    }
    return false;
}

bool ZCompactRBMap::checkTree(const char* label) const { return checkAll(label ? label : "", true); }
bool ZCompactRBMap::validTree() const { return checkAll("", false); }

void ZCompactRBMap::logTreeNode(const char* label, int index) const {
    if (!inRange(index)) return;
    const ZCompactRBItem* item = itemStart(uint(index));
    zdebug("%s: node: %d, %d, %d, %d, %d, %d\n", label ? label : "", index, int(item->color), int(item->parent),
           int(item->left), int(item->right), int(hashItem(item)));
}

void ZCompactRBMap::logTree(const char* label) const {
    ZScopedLock held(lock);
    if (table)
        for (uint i = 0; i < buckets; ++i)
            if (table[i]) zdebug("%s: hash: %d\n", label ? label : "", int(i));
    for (uint i = 0; i < itemCount; ++i) logTreeNode(label, int(i));
}

bool ZCompactRBMap::log_verify(const char* label) const {
    if (checkTree(label)) return true;
    logTree(label);
    return false;
}
