#include "core/ZHashTreeT.h"

#include "core/ZCompactRBMap.h"
#include "tests/support/AllocProbe.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace {

/// A key whose hash is its value over `divisor`, so that buckets can be filled at will.
struct Key {
    int value;
    static inline int divisor = 1;
    Key(int value) : value(value) {}
    uint hashKey() const { return uint(value / divisor); }
    int compare(const Key& other) const { return (value > other.value) - (value < other.value); }
};

template <bool Multi> struct Entry : ZTreeItemT<Key, Entry<Multi>> {
    Key mine;
    int mark;
    void* own;
    static inline std::function<void()> onDeath;

    Entry(int key, int mark = 0) : mine(key), mark(mark), own(__zalloc(4)) {
        if (!own) ZError::fail();
    }
    Entry(const Entry& other) : ZTreeItemT<Key, Entry>(other), mine(other.mine), mark(other.mark), own(__zalloc(4)) {
        if (!own) ZError::fail();
    }
    ~Entry() {
        zfree(own);
        if (onDeath) onDeath();
    }
    const Key& key() const { return mine; }
    static void getHashInfo(uint& bits, uint& load) {
        bits = Multi ? 4 : 0;
        load = 100;
    }
    static uint calcHashBits(uint count, uint load) { return orv_calchashbits(count, load, Multi ? 4 : 0, 14); }
    static bool isMultiKey() { return Multi; }
};
using Single = Entry<false>;
using Multiple = Entry<true>;
using SingleTree = ZHashTreeT<Key, Single>;
using MultiTree = ZHashTreeT<Key, Multiple>;

template <class Tree> std::vector<std::pair<int, int>> listed(const Tree& tree) {
    std::vector<std::pair<int, int>> out;
    for (auto& item : tree) out.emplace_back(item.mine.value, item.mark);
    return out;
}

/// The black height of a sound red-black tree; -1 for any other.
int blackHeight(const orv::detail::TreeNode* node) {
    using namespace orv::detail;
    if (!node) return 0;
    for (auto child : {node->left, node->right})
        if (child && (child->parent != node || (node->color == treeRed && child->color == treeRed))) return -1;
    int left = blackHeight(node->left), right = blackHeight(node->right);
    if (left < 0 || left != right || (node->color != treeRed && node->color != treeBlack)) return -1;
    return left + (node->color == treeBlack);
}
const orv::detail::TreeNode* rootOf(const orv::detail::TreeNode* node) {
    while (node->parent) node = node->parent;
    return node;
}

} // namespace

/// Random steps against a vector in order of adding, with one bucket, with many, and with keys that all hash alike.
TEST(HashTree, AgreesWithModel) {
    struct Row {
        uint bits, load;
        int divisor;
    };
    for (auto [bits, load, divisor] : {Row{0, 0, 1}, Row{4, 0, 1}, Row{0, 100, 1}, Row{4, 100, 1000000}}) {
        Key::divisor = divisor;
        std::mt19937 random(bits + load);
        MultiTree tree, copy;
        ASSERT_TRUE(tree.initBits(bits, load));
        std::vector<std::pair<int, int>> model, copyModel;
        for (int step = 0; step < 4000; ++step) {
            int key = int(random() % 60);
            auto hit = std::find_if(model.begin(), model.end(), [&](auto& item) { return item.first == key; });
            if (random() % 5 < 3) {
                ASSERT_NE(tree.add(Multiple(key, step)), nullptr);
                model.emplace_back(key, step);
            } else {
                ASSERT_TRUE(tree.remove(Key(key)));
                if (hit != model.end()) model.erase(hit);
            }
            if (step % 50 == 0) {
                copy = tree;
                copyModel = model;
            }
            int wanted = int(random() % 60);
            const Multiple* found = tree.find(wanted);
            for (auto& [value, mark] : model) {
                if (value != wanted) continue;
                ASSERT_TRUE(found && found->mine.value == wanted);
                EXPECT_EQ(found->mark, mark); // equal ones in list order
                found = tree.findNext(found);
            }
            ASSERT_EQ(found, nullptr);
            if (!tree.isEmpty()) { ASSERT_GT(blackHeight(rootOf(tree.last())), 0); }
            if (step % 100 == 0) { ASSERT_EQ(listed(tree), model); }
            if (step % 97 == 0) { ASSERT_EQ(listed(copy), copyModel); }
        }
    }
    Key::divisor = 1;
}

TEST(HashTree, DepthStaysLogarithmic) {
    Key::divisor = 1 << 30;
    SingleTree tree;
    for (int i = 0; i < 4096; ++i) ASSERT_NE(tree.add(Single(i)), nullptr);
    EXPECT_LE(tree.maxCollisions(), 24u); // 2 log2(n + 1)
    EXPECT_GE(tree.maxCollisions(), 12u);
    for (int i = 0; i < 4096; i += 2) ASSERT_TRUE(tree.remove(Key(i)));
    EXPECT_GT(blackHeight(rootOf(tree.first())), 0);
    EXPECT_EQ(tree.find(Key(2)), nullptr);
    EXPECT_EQ(tree.find(Key(3))->mine.value, 3);
    Key::divisor = 1;
}

TEST(HashTree, SizeChangesBeyondTwoBitsOnly) {
    MultiTree tree; // 4 bits at first, 4 above those of the count wanted
    for (int i = 0; i < 3; ++i) ASSERT_NE(tree.add(Multiple(i)), nullptr);
    EXPECT_EQ(tree.hashBits(), 4u); // 6 are wanted
    ASSERT_NE(tree.add(Multiple(3)), nullptr);
    EXPECT_EQ(tree.hashBits(), 7u);
    for (int i = 4; i < 31; ++i) ASSERT_NE(tree.add(Multiple(i)), nullptr);
    EXPECT_EQ(tree.hashBits(), 7u);
    ASSERT_NE(tree.add(Multiple(31)), nullptr);
    EXPECT_EQ(tree.hashSize(), 1024u);
    for (int i = 0; i < 32; ++i) EXPECT_TRUE(tree.contains(i));
    EXPECT_EQ(listed(tree).front().first, 0);

    SingleTree small; // any difference counts below 3 bits
    ASSERT_NE(small.add(Single(1)), nullptr);
    EXPECT_EQ(small.hashBits(), 1u);
    ASSERT_NE(small.add(Single(2)), nullptr);
    EXPECT_EQ(small.hashBits(), 2u);
    auto late = zmake<Single>(3);
    for (int i = 4; i < 40; ++i) ASSERT_TRUE(small.add(zmake<Single>(i), false));
    EXPECT_EQ(small.hashBits(), 2u);
    ASSERT_TRUE(small.add(late));
    EXPECT_EQ(small.hashBits(), 6u);

    SingleTree fixed(1000, 0);
    EXPECT_EQ(fixed.hashBits(), orv_calchashbits(1000, 0, 0, 14));
    SingleTree sized(1000, 50);
    EXPECT_EQ(sized.hashBits(), 9u);
    SingleTree top(0xFFFFFFFF, 200);
    EXPECT_EQ(top.hashBits(), 14u);
}

TEST(HashTree, SharedTables) {
    SingleTree tree;
    for (int i = 0; i < 5; ++i) ASSERT_NE(tree.add(Single(i, i * 10)), nullptr);
    SingleTree copy(tree);
    EXPECT_EQ(tree.refcount(), 2);
    EXPECT_EQ(copy.compare(tree), 0);
    const Single* third = copy.find(3);
    Single* own = copy.edit(third); // known from before the copy was made
    ASSERT_NE(own, third);
    own->mark = 99;
    EXPECT_EQ(tree.find(3)->mark, 30);
    EXPECT_EQ(copy.find(3)->mark, 99);
    EXPECT_EQ(tree.refcount(), 1);
    EXPECT_EQ(copy.compare(tree), 0); // by key
    ASSERT_TRUE(copy.remove(Key(0)));
    EXPECT_GT(copy.compare(tree), 0);

    SingleTree unowned;
    ASSERT_TRUE(unowned.setOwned(false));
    SingleTree view(unowned);
    for (int i = 0; i < 100; ++i) ASSERT_NE(view.add(Single(i)), nullptr);
    EXPECT_EQ(unowned.count(), 100u);
    EXPECT_EQ(unowned.refcount(), 2);
}

TEST(HashTree, UniqueKeysAndBookedMemory) {
    uint before = ZCompactRBMap::hash_memory(1);
    {
        SingleTree tree(1000, 100);
        EXPECT_EQ(ZCompactRBMap::hash_memory(1) - before, 48 + 1024 * sizeof(void*));
        Single* first = zmake<Single>(4);
        Single* second = zmake<Single>(4, 1);
        EXPECT_EQ(tree.addUnique(first, false), first);
        EXPECT_EQ(tree.addUnique(second, false), first);
        EXPECT_EQ(tree.count(), 1u);
        EXPECT_EQ(tree.hashBits(), 10u); // nobody asked for another size
        zrelease(second);
        SingleTree copy(tree);
        ASSERT_TRUE(copy.detach());
    }
    EXPECT_EQ(ZCompactRBMap::hash_memory(1), before);
}

TEST(HashTree, EachAllocationFailing) {
    struct Row {
        const char* name;
        bool (*run)(SingleTree&);
    };
    const Row rows[] = {
        {"add", [](SingleTree& tree) { return tree.add(Single(100)) != nullptr; }},
        {"remove", [](SingleTree& tree) { return tree.remove(Key(3)); }},
        {"remove by pointer", [](SingleTree& tree) { return tree.remove(tree.last()); }},
        {"edit", [](SingleTree& tree) { return tree.edit(Key(2)) != nullptr; }},
        {"detach", [](SingleTree& tree) { return tree.detach(); }},
        {"setLoad", [](SingleTree& tree) { return tree.setLoad(2000); }},
        {"init", [](SingleTree& tree) { return tree.init(500, 100); }},
    };
    for (const Row& row : rows)
        for (bool shared : {false, true})
            failEachAllocation([&](AllocProbe& probe) {
                SingleTree tree, other;
                for (int i = 0; i < 6; ++i)
                    if (!tree.add(Single(i))) return;
                if (shared) other = tree;
                auto before = listed(tree);
                if (!row.run(tree)) {
                    EXPECT_TRUE(probe.failed()) << row.name;
                    EXPECT_EQ(listed(tree), before) << row.name;
                    for (int i = 0; i < 6; ++i) EXPECT_TRUE(tree.contains(i)) << row.name;
                }
                if (shared) { EXPECT_EQ(listed(other), before) << row.name; }
                zrecover();
            });
}

TEST(HashTree, DestructorsThatComeBack) {
    AllocProbe probe;
    {
        SingleTree tree;
        for (int i = 0; i < 8; ++i) ASSERT_NE(tree.add(Single(i)), nullptr);
        int calls = 0;
        Single::onDeath = [&] {
            if (calls++ < 3) {
                int number = 100 + calls;
                EXPECT_TRUE(tree.remove(Key(5)));
                EXPECT_TRUE(tree.add(zmake<Single>(number)));
            }
        };
        ASSERT_TRUE(tree.remove(Key(2)));
        EXPECT_FALSE(tree.contains(5));
        EXPECT_TRUE(tree.contains(101));
        calls = 0;
        tree.clear();
        EXPECT_EQ(tree.count(), 3u);
        Single::onDeath = nullptr;
    }
    EXPECT_EQ(probe.live(), 0) << probe.leaks();
}

TEST(Tree, KeepsNodesOfOthersInOrder) {
    ZTreeT<Key, Multiple> tree;
    std::vector<Multiple> nodes;
    for (int i = 0; i < 50; ++i) nodes.emplace_back(i * 7 % 25, i);
    for (auto& node : nodes) tree.add(&node);
    std::vector<std::pair<int, int>> seen;
    for (auto node = tree.first(); node; node = tree.next(node)) seen.emplace_back(node->mine.value, -node->mark);
    EXPECT_EQ(seen.size(), 50u);
    EXPECT_TRUE(std::is_sorted(seen.begin(), seen.end())); // the newer of two equal ones first
    EXPECT_EQ(tree.find(4)->mark, 22);
    for (auto& node : nodes) tree.remove(&node);
    EXPECT_TRUE(tree.isEmpty());
    EXPECT_EQ(nodes[0].color, 0u);
}
