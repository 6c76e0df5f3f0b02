#pragma once

#include "core/ZCompactRBItem.h"
#include "core/ZSpinLock.h"
#include "core/forward.h"
#include "core/memory.h"

/// An array of items of one size, in which a hash table of red-black trees is threaded by index: the items keep the
/// order in which they were added and can be walked, sorted and moved like an array, and yet be found by key. A derived
/// class tells by its virtual operations what an item is: an item begins with a `ZCompactRBItem`, then stands what the
/// class adds. Items are moved by copying their bytes. An instance is a counted object, made by `zmake`.
///
/// The index is built by the first lookup and dropped by whatever can't keep it right. Lookups and structural changes
/// take the map's spin lock, under which items are compared and hashed, so these operations mustn't come back to the
/// map; items are built, copied and freed without it. Writers are kept apart by the owner. Positions count from 0.
class ORV_API ZCompactRBMap {
public:
    /// Orders two items: negative, 0 or positive.
    using Compare = int (*)(const void* context, const ZCompactRBItem* a, const ZCompactRBItem* b);

    static constexpr uint itemLimit = 0x7FFFFFFF; ///< the most items of a map
    static constexpr uint mostHashBits = 28;

    // Lifetime

    ZCompactRBMap() = default;
    /// A copy is made by the derived class, which calls `assign`: here nothing is known about its items yet.
    ZCompactRBMap(const ZCompactRBMap&) = delete;
    ZCompactRBMap& operator=(const ZCompactRBMap&) = delete;
    /// Empty, with room for `capacity` items. Raises a failure, and has no room, when there is no memory.
    ZCompactRBMap(int capacity, uint itemSize, int16 expand, uint hashBits, uint load);
    /// Frees the storage; a derived class calls `clear` in its own destructor, while its items can still be freed.
    virtual ~ZCompactRBMap();
    /// Adds a reference; false if the last one is already gone.
    virtual bool retain() const;
    /// Gives up a reference; the last one destroys the map.
    virtual void release() const;
    static void* operator new(size_t) = delete;
    static void operator delete(void* map) { toolkit::freeBlock(map); }

    /// Drops everything and sets the map up anew: growth 100, automatic hash size at 100 percent. With `load` above 0,
    /// `hashBits` follows from `capacity`. False, with an empty map without room, when there is no memory.
    bool initialize(int capacity, uint itemSize, uint hashBits, uint load);

protected:
    // What the derived class knows. The defaults do nothing, succeed, or answer 0.

    /// Builds a value in zeroed memory; false if that fails, with nothing to be freed.
    virtual bool initItem(ZCompactRBItem* item);
    virtual void freeItem(ZCompactRBItem* item);
    /// Builds a copy behind the head of `to`, in zeroed memory; false if that fails, with nothing to be freed.
    virtual bool copyItem(ZCompactRBItem* to, const ZCompactRBItem* from);
    virtual int compareItem(const ZCompactRBItem* a, const ZCompactRBItem* b) const;
    virtual int compareItemKey(const ZCompactRBItem* a, const ZCompactRBItem* b) const;
    virtual int compareItemValue(const ZCompactRBItem* a, const ZCompactRBItem* b) const;
    virtual int compareKey(const ZCompactRBItem* item, const void* key) const;
    virtual int compareValue(const ZCompactRBItem* item, const void* value) const;
    virtual uint hashKey(const void* key) const;
    virtual uint hashValue(const void* value) const;
    virtual uint hashItem(const ZCompactRBItem* item) const;

public:
    // Fields

    uint count() const { return toolkit::load(itemCount); }
    uint capacity() const { return itemCapacity; }
    uint itemSize() const { return itemBytes; }
    int16 expand() const { return growth; }
    bool endian() const { return bigEndian; }
    uint hashBits() const { return bits; }
    uint hashMask() const { return mask; }
    /// Buckets of the table; 0 until it is built.
    uint hashSize() const { return buckets; }
    uint hashScale() const { return scale; }
    uint autoHash() const { return autoLoad; }
    uint hashIndex() const { return memoryIndex; }
    bool hashable() const { return useTable; }
    /// Whether an index is built.
    bool hasTree() const { return toolkit::loadAcquire(table) || toolkit::loadAcquire(root); }

    // Storage. What asks for memory answers false, with the map unchanged, when there is none, or when it would hold
    // more than `itemLimit` items.

    /// The item at a position, which has to be below the capacity.
    ZCompactRBItem* itemStart(uint index) const {
        return reinterpret_cast<ZCompactRBItem*>(items + size_t(index) * itemBytes);
    }
    /// Adds zeroed items at the end, built by `initItem` if `init`. The caller fills them in, then calls `addNode`.
    bool append(int count, bool init);
    /// The same at a position, clamped to the count. True, without effect, for a count below 1.
    bool insert(int index, int count, bool init);
    /// Frees the items from `index` on; the range is clamped. The items are out of the map before the first is freed.
    bool remove(int index, int count);
    /// Drops all items and makes `count` zeroed ones.
    bool setCount(int count);
    /// Below the count, frees the items at the end and drops the index; above it, makes room for `count` items in all.
    bool setSpace(int count);
    /// Makes room for `count` more items.
    bool expand(int count);
    /// How room grows: a percentage of the capacity; 0 doubles; a negative number grows in blocks of that many items.
    void setExpand(int16 expand) { growth = expand; }
    /// Gives unused room back.
    bool trim();
    /// Frees all items, last to first, and the storage. They are out of the map before the first is freed.
    void clear();
    /// Sets the size of an item, at least that of its head, or 0; only while there are no items.
    bool setItemSize(uint size);

    // Order of the items. Positions out of range are refused.

    /// Moves one item; those between shift by one. Drops the index.
    bool moveToPlace(int from, int to);
    bool swapPlace(int a, int b);
    /// Sorts the items by `compareItem`, equal ones in their old order. Drops the index. False when there is no memory.
    bool sort(bool ascending);
    bool sort(Compare compare, const void* context, bool ascending);
    /// The positions of the items in sorted order, in a block that the caller frees by `zfree`; null for an empty map
    /// or when there is no memory.
    int* getSortOrder(bool ascending) const;
    int* getSortOrder(Compare compare, const void* context, bool ascending) const;
    /// The same into `order`, which has room for all items. False when there is no memory.
    bool sortOrder(int* order, bool ascending) const;
    bool sortOrder(int* order, Compare compare, const void* context, bool ascending) const;
    /// The positions in the order of the keys; items with equal keys as `compareItem` says.
    bool keyOrder(int* order) const;

    // Tree. Operations marked (locked) are called with the map's lock held.

    /// Makes an item found, if an index is built. It may be found already.
    void addNode(int index);
    /// Makes an item no longer found until the index is built anew. It stays where it is.
    void removeNode(int index);
    /// (locked) Puts an item into its bucket. False if the links are damaged: the index is dropped then.
    bool linkNode(int index);
    /// (locked) Takes an item out of its bucket; the index is dropped if the item's hash has changed.
    void unlinkNode(int index);
    /// (locked) Puts an item into the tree at `treeRoot`, to the left of items with an equal key.
    bool linkTreeNode(uint& treeRoot, int index) const;
    /// Drops the index; takes the lock if told.
    void clearTree(bool takeLock);
    /// Builds the index anew. False when there is no memory for the table: lookups answer -1 then.
    bool rebuildTree();
    /// Builds the index if there are items and none is built; safe to call from readers.
    void refreshTree() const;
    /// (locked) Raises each index above `from` in the table, the root and the items by `by`.
    void shiftIndexes(uint from, int by);
    /// The neighbours of an item in the order of its tree; -1 at the end.
    int successor(int index) const;
    int predecessor(int index) const;
    /// Levels of the tree under an item.
    int nodeDepth(int index) const;
    /// Levels of the deepest bucket. Builds the index.
    int maxCollisions() const;

    // Hash

    /// Sets the size of the table, 0 for one tree; it no longer follows the count. Drops the index on a change.
    void setHashBits(uint hashBits);
    /// With false, one tree serves all lookups. Drops the index on a change.
    void setHashable(bool hashable);
    /// Lets the table's size follow the count at `load` percent; 0 makes it one tree. Drops the index on a change.
    void setAutoHash(uint load);
    /// Fits the table's size to the present count, if the bits would change by more than `threshold`, or at all when
    /// they come out below 3. Does nothing when the automatic size is off. Drops the index on a change.
    void resetHash(uint threshold);
    /// The bucket for a hash.
    uint limitHash(uint hash) const {
        uint a = scale * hash, c = scale * a;
        return (uint(ularge(c) >> (2 * bits)) ^ (a >> bits) ^ hash) & mask;
    }
    /// Which memory counter the table is booked to, below `memoryCounters`.
    void setHashIndex(uint index);

    static constexpr uint memoryCounters = 16;
    /// Books a table to a counter of memory held by hash tables; one that is shared isn't taken off.
    static void add_hash_memory(uint index, const void* block);
    static void remove_hash_memory(uint index, const void* block);
    static uint hash_memory(uint index);

    // Lookup. A position, or -1.

    /// An item with that key.
    int findIndex(const void* key) const;
    /// The first of them in the order of the tree, which is the one added last.
    int findFirstIndex(const void* key) const;
    /// (locked) The same as `findIndex` in one tree.
    int findIndexAtRoot(uint treeRoot, const void* key) const;
    ZCompactRBItem* findItem(const void* key) const;
    bool haskey(const void* key) const { return findIndex(key) >= 0; }
    /// By value, for maps that are hashed and ordered by it.
    ZCompactRBItem* findItemByValue(const void* value) const;
    int findValueIndex(const void* value) const;
    int findValueIndexAtRoot(uint treeRoot, const void* value) const;
    /// The first item in the array with that value, without an index.
    int valueIndex(const void* value) const;
    /// For a key that has to be there: if it isn't found, builds the index anew and answers true.
    bool verifyKey(const void* key);

    // Whole map

    /// Takes over the settings, a copy of the index and copies of the items of `other`, a map of the same class; with
    /// `allocateCapacity`, room for as many as `other` has. False, with the map unchanged, when a copy fails.
    bool assign(const ZCompactRBMap& other, bool allocateCapacity);
    /// Compares the items one by one in key order; if they are equal, the longer map is the greater. 0 when there is no
    /// memory for the order.
    int compare(const ZCompactRBMap& other) const;
    void setEndian(bool endian) { bigEndian = endian; }
    /// The map's lock, for a walk.
    void lockMap() const { lock.lock(); }
    void unlockMap() const { lock.unlock(); }

    // Diagnostics, to the debug log

    /// Checks all links, colours and the order; logs what is wrong. True if nothing is.
    bool checkTree(const char* label) const;
    /// (locked) The same for one tree. Answers the number of its nodes; -1 if something is wrong, which it logs.
    int checkTreeNode(uint treeRoot) const;
    /// Whether `checkTree` would find nothing, without a log.
    bool validTree() const;
    void logTree(const char* label) const;
    void logTreeNode(const char* label, int index) const;
    /// Checks the index and logs it whole if it is damaged. True if it isn't.
    bool log_verify(const char* label) const;

protected:
    /// A lookup for derived classes that compare inline: `order(item)` compares an item with the key. It takes no lock,
    /// and so is for maps that nobody changes while others read; an index can be seen only when it is complete.
    /// `noTree` if there is none.
    template <class F> int seek(uint hash, F&& order) const {
        if (const uint* buckets = toolkit::loadAcquire(table)) return seekAt(buckets[limitHash(hash)], order);
        uint top = toolkit::loadAcquire(root);
        return top ? seekAt(top, order) : noTree;
    }
    static constexpr int noTree = -2;

    /// Takes items out without freeing them: somebody else has them now.
    void forgetItems(int index, int count) { removeItems(index, count, false); }

    /// Walks down one tree. A link that leads out of the items, which 0 does too, ends the walk.
    template <class F> int seekAt(uint link, F&& order) const {
        for (uint steps = itemCount; steps > 0; --steps) {
            uint at = link - 1 - base;
            if (at >= itemCount) break;
            ZCompactRBItem* item = itemStart(at);
            int result = order(item);
            if (result == 0) return int(at);
            // Without a branch: which way it goes can't be predicted.
            link = item->left ^ ((item->left ^ item->right) & (0u - uint(result < 0)));
        }
        return -1;
    }

private:
    friend struct orv::detail::DebugLayout;
    struct Links;
    struct Storage;
    struct Check;

    Links links() const;
    /// The stored index of a position.
    uint linkOf(uint index) const { return index + base + 1; }
    bool inRange(int index) const { return index >= 0 && uint(index) < itemCount; }
    bool hashed() const { return useTable && bits > 0; }
    /// The root of the tree in which an item with that hash stands, once an index is built.
    uint& rootFor(uint hash) const { return table ? table[limitHash(hash)] : root; }
    void setBits(uint hashBits) const;
    void fitHash(uint threshold) const;
    static uint bitsFor(uint count, uint load);
    bool buildTree() const;
    bool ensureTree() const;
    void dropTree() const;
    bool isLinked(uint index) const;
    template <class F> int repairingSeek(uint link, F&& order) const;
    Storage takeStorage();
    void freeStorage(Storage& taken);
    uint grown(uint from, uint more, ularge needed) const;
    bool relocate(uint newCapacity, uint newRoom);
    void slideDown();
    void makeRoom(uint needed);
    void takeOut(uint index, uint count, char* into);
    void removeItems(int index, int count, bool built);
    int neighbour(int index, int side) const;
    int depthBelow(uint link) const;
    static int byItem(const void* map, const ZCompactRBItem* a, const ZCompactRBItem* b);
    static int byKey(const void* map, const ZCompactRBItem* a, const ZCompactRBItem* b);
    int checkNodes(uint treeRoot, bool log) const;
    bool checkAll(const char* label, bool log) const;

    uint itemCount = 0;
    uint itemCapacity = 0;
    mutable uint bits = 0;
    mutable uint mask = 0;
    mutable uint buckets = 0;
    mutable uint scale = 0;
    uint autoLoad = 100;
    uint itemBytes = 0;
    mutable ZSpinLock lock;
    uint memoryIndex = 0;
    int16 growth = 100;
    bool bigEndian = false;
    bool useTable = true;
    mutable uint root = 0;
    mutable uint* table = nullptr;
    /// The first item. In front of it stand `base` free places, so that taking the first item moves nothing: stored
    /// indexes count from the start of the block. The block has `room` places, at least the capacity.
    char* items = nullptr;
    uint base = 0;
    uint room = 0;
    /// The count to which the table's size was last fitted; and whether it was set by hand instead.
    mutable uint fittedCount = 0;
    bool fixedBits = false;
};
