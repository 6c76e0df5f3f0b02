#pragma once

#include "core/ZTreeT.h"
#include "core/memsort.h"

/// A hash of red-black trees of nodes, walked in order of adding: one pointer to a counted table, null until something
/// is put in. A copy shares table and nodes; the first write through one of them copies both, unless the table isn't
/// owned. A writing operation that answers false, for lack of memory, has changed nothing. `T` derives from
/// `ZTreeItemT<K, T>`.
///
/// Pointers to nodes hold while the node is in the table and the table isn't detached. Several threads may read and
/// copy a tree; whoever writes it has it alone.
template <class K, class T> class ZHashTreeT {
public:
    using ZRelocatable = void;

    ZHashTreeT() = default;
    /// With an empty table for `count` nodes at `load` percent, 0 for a fixed size. Raises a failure without memory.
    ZHashTreeT(uint count, uint load) {
        if (!init(count, load)) ZError::fail();
    }
    ZHashTreeT(const ZHashTreeT& other) : table(retain(other.table)) {}
    ZHashTreeT(ZHashTreeT&& other) noexcept : table(std::exchange(other.table, nullptr)) {}
    ~ZHashTreeT() { clear(); }
    ZHashTreeT& operator=(const ZHashTreeT& other) {
        giveUp(std::exchange(table, retain(other.table)));
        return *this;
    }
    ZHashTreeT& operator=(ZHashTreeT&& other) noexcept {
        Table* taken = std::exchange(other.table, nullptr);
        giveUp(std::exchange(table, taken));
        return *this;
    }

    /// Drops everything and makes a new table for `count` nodes at `load` percent.
    bool init(uint count, uint load) { return replaceTable(bitsFor(count, load), load); }
    /// The same with 1 << `bits` buckets.
    bool initBits(uint bits, uint load) { return replaceTable(bits, load); }

    // Reading

    uint count() const { return table ? table->count : 0; }
    bool isEmpty() const { return count() == 0; }
    /// The node with this key, the one added first if there are several; null if there is none.
    const T* find(const K& key) const {
        return table ? Tree::findIn(table->bucket(zhashkey(key)), key, table->multiKey) : nullptr;
    }
    bool contains(const K& key) const { return find(key) != nullptr; }
    /// The node added next with the same key; null if there is none.
    const T* findNext(const T* item) const {
        const T* other = table->multiKey ? Tree::previous(const_cast<T*>(item)) : nullptr;
        return other && zcompare<K>(other->key(), item->key()) == 0 ? other : nullptr;
    }
    /// In order of adding; null at the end.
    const T* first() const { return table ? Tree::cast(table->first) : nullptr; }
    const T* last() const { return table ? Tree::cast(table->last) : nullptr; }
    static const T* next(const T* item) { return Tree::cast(item->next); }
    static const T* previous(const T* item) { return Tree::cast(item->prev); }

    class iterator {
    public:
        explicit iterator(const T* at) : at(at) {}
        const T& operator*() const { return *at; }
        const T* operator->() const { return at; }
        iterator& operator++() {
            at = next(at);
            return *this;
        }
        bool operator==(const iterator& other) const = default;

    private:
        const T* at;
    };
    iterator begin() const { return iterator(first()); }
    iterator end() const { return iterator(nullptr); }

    /// Both in key order: by the first nodes that differ, then by the count. 0 without memory to put them in order.
    int compare(const ZHashTreeT& other) const {
        if (table == other.table) return 0;
        uint mine = count(), others = other.count(), shorter = mine < others ? mine : others;
        int order = 0;
        const T** sorted = keyOrder();
        const T** otherSorted = other.keyOrder();
        bool known = (sorted || !mine) && (otherSorted || !others);
        for (uint i = 0; known && !order && i < shorter; ++i) order = T::order(*sorted[i], *otherSorted[i]);
        zfree(sorted);
        zfree(otherSorted);
        return order || !known ? order : (mine > others) - (mine < others);
    }

    // Writing

    /// Takes a node over; whether its key is there already isn't asked. Without memory false, and the node stays the
    /// caller's. `resize`: the table may take another size to keep its load.
    bool add(T* item, bool resize = true) {
        if (!prepare()) return false;
        Tree::linkIn(table->bucket(zhashkey<K>(item->key())), item);
        orv::detail::treeAppend(table, item);
        table->dirty = 1;
        if (resize) fitSize();
        return true;
    }
    /// Takes a node over unless one with its key is there. Null without memory, else the node that stands under the key
    /// now; only if that is `item` has it been taken.
    T* addUnique(T* item, bool resize = true) {
        if (!prepare()) return nullptr;
        if (T* known = Tree::linkUnique(table->bucket(zhashkey<K>(item->key())), item)) return known;
        orv::detail::treeAppend(table, item);
        table->dirty = 1;
        if (resize) fitSize();
        return item;
    }
    /// Adds a copy; null without memory.
    T* add(const T& item) {
        T* node = item.copy();
        if (!node || add(node)) return node;
        node->release();
        return nullptr;
    }
    /// The node with this key, for writing anything but the key; null if there is none or no memory to detach.
    T* edit(const K& key) {
        const T* item = find(key);
        return item ? edit(item) : nullptr;
    }
    /// The same for a node known by its pointer, which may come from before the table was detached here.
    T* edit(const T* item) {
        if (isDetached() || !table->owned) return const_cast<T*>(item);
        uint position = 0;
        for (const T* at = item; (at = previous(at));) ++position;
        if (!detach()) return nullptr;
        orv::detail::TreeNode* node = table->first;
        while (position--) node = node->next;
        return Tree::cast(node);
    }
    /// Removes the node that `find` gives; true also if there is none.
    bool remove(const K& key) {
        const T* item = find(key);
        return !item || remove(item);
    }
    /// Removes a node of this table, which may be shared.
    bool remove(const T* item) {
        T* own = edit(item);
        if (own) drop(own);
        return own != nullptr;
    }
    /// Takes a node out of a detached table and hands it over.
    T* extract(T* item) {
        orv::detail::treeUnlink(table->bucket(zhashkey<K>(item->key())), item);
        orv::detail::treeDetach(table, item);
        table->dirty = 1;
        return item;
    }
    /// Gives the table up.
    void clear() { giveUp(std::exchange(table, nullptr)); }

    // The table

    uint hashBits() const { return table ? table->hashBits : 0; }
    uint hashSize() const { return table ? table->hashSize : 0; }
    uint load() const { return table ? table->load : 0; }
    /// 0 fixes the size; otherwise the size is checked at once.
    bool setLoad(uint percent) {
        if (!prepare()) return false;
        table->load = percent;
        fitSize();
        return true;
    }
    /// The depth of the deepest bucket.
    uint maxCollisions() const { return orv::detail::treeMaxDepth(table); }
    /// Set whenever a node comes or goes; for owners who keep something made from the nodes.
    bool isDirty() const { return table && table->dirty; }
    void setDirty(bool dirty) {
        if (table) table->dirty = dirty;
    }
    /// Whether a write to a shared table copies it. If not, all holders see the write.
    bool isOwned() const { return !table || table->owned; }
    bool setOwned(bool owned) {
        if (!table && !prepare()) return false;
        table->owned = owned;
        return true;
    }

    int refcount() const { return ::refcount(table); }
    bool isDetached() const { return !table || toolkit::loadAcquire(toolkit::blockHead(table)->count) == 1; }
    bool detach() { return isDetached() || !table->owned || copyTable(); }

private:
    using Tree = ZTreeT<K, T>;
    using Table = orv::detail::TreeTable;

    static uint bitsFor(uint count, uint load) {
        // Held below what overflows in the formula.
        return T::calcHashBits(load && count > 0xFFFFFF00u / load ? 0xFFFFFF00u / load : count, load);
    }
    bool prepare() {
        if (table) return detach();
        uint bits = 0, load = 0;
        T::getHashInfo(bits, load);
        return (table = orv::detail::treeTable(bits, load, T::isMultiKey())) != nullptr;
    }
    bool replaceTable(uint bits, uint load) {
        Table* fresh = orv::detail::treeTable(bits, load, T::isMultiKey());
        if (!fresh) return false;
        giveUp(std::exchange(table, fresh));
        return true;
    }
    /// The old size does as well, only slower: so no memory for another one is no failure.
    void fitSize() {
        uint wanted = table->load ? bitsFor(table->count, table->load) : table->hashBits;
        if (!orv::detail::treeMisfits(table, wanted) || !isDetached()) return;
        Table* fresh = orv::detail::treeTable(wanted, table->load, table->multiKey);
        if (!fresh) return;
        fresh->owned = table->owned;
        fresh->dirty = table->dirty;
        fresh->count = table->count;
        fresh->first = table->first;
        fresh->last = table->last;
        for (auto node = fresh->first; node; node = node->next)
            Tree::linkIn(fresh->bucket(zhashkey<K>(Tree::cast(node)->key())), Tree::cast(node));
        orv::detail::treeFreeTable(std::exchange(table, fresh));
    }
    bool copyTable() {
        Table* fresh = orv::detail::treeTable(table->hashBits, table->load, table->multiKey);
        if (!fresh) return false;
        for (const T& item : *this) {
            T* node = item.copy();
            if (!node) {
                giveUp(fresh);
                return false;
            }
            Tree::linkIn(fresh->bucket(zhashkey<K>(node->key())), node);
            orv::detail::treeAppend(fresh, node);
        }
        fresh->dirty = table->dirty;
        giveUp(std::exchange(table, fresh));
        return true;
    }
    void drop(T* item) { extract(item)->release(); }
    static void giveUp(Table* table) {
        if (!table || decmemref(table) > 0) return;
        for (auto node = table->first; node;) {
            T* item = Tree::cast(node);
            node = node->next;
            item->release();
        }
        orv::detail::treeFreeTable(table);
    }
    /// The nodes in order, in a block of their own; null for none and without memory.
    const T** keyOrder() const {
        size_t all = count();
        auto sorted = all ? static_cast<const T**>(__zalloc(all * 2 * sizeof(T*))) : nullptr;
        if (!sorted) return nullptr;
        size_t i = 0;
        for (const T& item : *this) sorted[i++] = &item;
        auto compare = [](const void* a, const void* b, void*) {
            return T::order(**static_cast<T* const*>(a), **static_cast<T* const*>(b));
        };
        mergesort(sorted, all, sizeof(T*), compare, nullptr, sorted + all);
        return sorted;
    }

    Table* table = nullptr;
};
