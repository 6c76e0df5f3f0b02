#pragma once

#include "toolkit/atomic.h"
#include "toolkit/memory.h"

/// The pack store: entries of one size, named by ids from 1, indexed by hash tables of red-black trees.
namespace toolkit {

/// Where an entry stands in one tree.
struct PackLinks {
    static constexpr uint32_t linkedBit = 0x80000000, redBit = 0x40000000, bucketMask = 0x3FFFFFFF;

    uint32_t parent, left, right; ///< ids; 0 for none
    uint32_t place;               ///< bucket and the two bits; 0 while not linked
};

/// The head in front of each entry.
struct PackEntry {
    byte free; ///< 1 while the entry is free; atomic
    byte unused[3];
    PackLinks links; ///< in tree 0; in a free entry `parent` is the next free id
};
static_assert(sizeof(PackEntry) == 20);

/// Orders two entries, or an entry and a key, by their contents: negative, 0 or positive.
struct PackCompare {
    int (*call)(const void* context, const void* a, const void* b);
    const void* context;
};

/// A counted store, made by `make` and given up by `release`. Entries never move. Who writes holds a lock of its own;
/// `entry`, `valid` and `count` need none, also while another thread creates entries.
class ORV_API DataPack {
public:
    static constexpr uint32_t entryLimit = 0x7FFFFFFF; ///< the highest id
    static constexpr uint32_t bucketLimit = PackLinks::bucketMask;

    /// A store for entries of `entrySize` bytes, indexed by `trees` keys, one bucket each. Memory is taken in steps of
    /// `growth` entries, rounded up to a power of two. Null when there is no memory or a size is out of range.
    static DataPack* make(uint32_t trees, size_t entrySize, uint32_t growth);
    /// Gives up one reference; the last one calls `destruct` for each entry in use, then frees the store.
    static void release(DataPack* pack, void (*destruct)(const void* context, void* entry), const void* context);

    size_t entrySize() const { return size; }
    uint32_t trees() const { return treeCount; }
    uint32_t count() const { return load(live); }
    /// The highest id ever given out.
    uint32_t lastId() const { return loadAcquire(used); }

    /// The entry's contents, aligned to 8; null if there is none.
    void* entry(uint32_t id) const {
        PackEntry* head = find(id);
        return head && !loadAcquire(head->free) ? head + 1 : nullptr;
    }
    bool valid(uint32_t id) const { return entry(id) != nullptr; }

    /// A new zeroed entry, in no tree; 0 when there is no memory.
    uint32_t create();
    /// Takes an entry out of all trees and out of sight, so that its contents can be destroyed; answers them, or null
    /// if there is no such entry. `recycle` then makes the id the next one given out.
    void* retire(uint32_t id);
    void recycle(uint32_t id);
    /// Makes room for `more` entries.
    bool reserve(uint32_t more);

    /// Sets the number of buckets of one tree table, which has to be empty, and a word for the client's own use.
    bool setTree(uint32_t tree, uint32_t buckets, uint32_t flags);
    uint32_t buckets(uint32_t tree) const { return table(tree).buckets; }
    uint32_t flags(uint32_t tree) const { return table(tree).flags; }

    /// Puts an entry into a bucket; to the left of equal ones. False when there is no memory for the table.
    bool link(uint32_t tree, uint32_t id, uint32_t bucket, PackCompare compare);
    void unlink(uint32_t tree, uint32_t id);
    bool linked(uint32_t tree, uint32_t id) const;
    /// An entry that compares equal with `key`; 0 if there is none.
    uint32_t find(uint32_t tree, uint32_t bucket, const void* key, PackCompare compare) const;
    /// Levels of the tree in a bucket.
    uint32_t depth(uint32_t tree, uint32_t bucket) const;

    /// A store with the same ids, links and room, count 1. `copy` fills each entry in use from the other's; after it
    /// answers false, `destruct` is called for those that were filled, and the result is null.
    DataPack* clone(bool (*copy)(const void* context, void* to, const void* from),
                    void (*destruct)(const void* context, void* entry), const void* context) const;
    /// A store of the same shape, without entries.
    DataPack* cloneEmpty() const;

private:
    struct Table {
        uint32_t* roots; ///< null until the first link
        uint32_t buckets, flags;
    };
    struct Links;

    PackEntry* find(uint32_t id) const {
        if (id - 1 >= loadAcquire(used)) return nullptr; // also for 0
        return at(id);
    }
    PackEntry* at(uint32_t id) const {
        byte* chunk = loadAcquire(directory)[1 + ((id - 1) >> shift)];
        return reinterpret_cast<PackEntry*>(chunk + stride * ((id - 1) & ((1u << shift) - 1)));
    }
    Table& table(uint32_t tree) const { return reinterpret_cast<Table*>(const_cast<DataPack*>(this) + 1)[tree]; }
    PackLinks& links(uint32_t tree, uint32_t id) const {
        PackEntry* head = at(id);
        if (tree == 0) return head->links;
        return reinterpret_cast<PackLinks*>(reinterpret_cast<byte*>(head) + linksAt)[tree - 1];
    }
    bool addChunk();
    bool growDirectory();
    void destructAll(void (*destruct)(const void*, void*), const void* context);
    void freeAll();

    /// Pointers to the chunks, behind a pointer to the directory that this one replaced: a reader may still be in it,
    /// so all of them stay until the end.
    byte** directory;
    uint32_t chunks, directoryRoom;
    uint32_t shift; ///< a chunk holds 1 << shift entries
    uint32_t used;  ///< ids given out so far, free ones included; stored when the entry can be read
    uint32_t live;
    uint32_t firstFree; ///< newest first
    uint32_t treeCount;
    size_t size, stride;
    size_t linksAt; ///< from the head to the links in the trees from 1 on
};

} // namespace toolkit
