#pragma once

#include "core/ZArrayT.h"
#include "core/ZHashTreeT.h"
#include "core/ZSpinLock.h"

/// Items by key, dropped by age of use when they become too many or cost too much: a hash tree whose nodes also stand
/// in the order of their use. `I` has `K key() const` and perhaps `uint cost() const`, else an item costs 1.
///
/// A copy shares the items until one side writes. A writing operation that answers false, for lack of memory or because
/// there is no such item, has changed nothing. One thread at a time, unless `setUseLock` is on: then every operation
/// takes the cache's spin lock, and items are read by `get` with a place for the copy. Items die outside the lock.
template <class K, class I> class ZCacheT {
public:
    using ZRelocatable = void;
    static constexpr uint defaultItems = 100, defaultCost = 0x100000;
    static constexpr uint defaultCount = 128, defaultLoad = 80;

    ZCacheT() = default;
    /// With a table for `count` items. Raises a failure without memory.
    explicit ZCacheT(uint count) : ZCacheT(count, defaultLoad) {}
    ZCacheT(uint count, uint load) {
        if (!init(count, load)) ZError::fail();
    }
    explicit ZCacheT(const ZArrayT<I>& items) {
        bool whole = true;
        for (const I& item : items) whole = whole && append(item);
        if (!whole) ZError::fail();
    }
    ZCacheT(const ZCacheT& other) : locking(other.locking) {
        Guard held(other);
        share(other);
    }
    ZCacheT& operator=(const ZCacheT& other) {
        if (this == &other) return *this;
        ZCacheT copy(other);
        Table old;
        Guard held(*this);
        std::swap(old, table);
        share(copy);
        return *this;
    }
    /// Drops everything and makes a table for `count` items at `load` percent.
    bool init(uint count, uint load) {
        Table fresh;
        if (!fresh.init(count, load)) return false;
        Guard held(*this);
        replace(fresh);
        return true;
    }

    // Reading. It leaves the order of use as it is.

    uint count() const {
        Guard held(*this);
        return table.count();
    }
    bool isEmpty() const { return count() == 0; }
    bool contains(const K& key) const {
        Guard held(*this);
        return table.contains(key);
    }
    /// The item, until the next write; null if there is none. For a cache of one thread.
    const I* get(const K& key) const {
        const CacheData* data = table.find(key);
        return data ? &data->item : nullptr;
    }
    /// Copies the item; false if there is none, and without memory.
    bool get(const K& key, I& into) const {
        Copied copy;
        {
            Guard held(*this);
            if (const CacheData* data = table.find(key)) copy.take(data->item);
        }
        if (copy.item) into = std::move(*copy.item);
        return copy.item != nullptr;
    }
    /// All items in order of adding; empty also without memory.
    ZArrayT<I> values() const {
        const ZCacheT mine(*this);
        ZArrayT<I> all;
        bool whole = all.reserve(mine.table.count());
        for (const CacheData& data : mine.table) whole = whole && all.append(data.item);
        return whole ? all : ZArrayT<I>();
    }
    /// The item next in line to be dropped, and the one used last; null in an empty cache. For a cache of one thread.
    const I* oldestItem() const { return oldest ? &oldest->item : nullptr; }
    const I* newestItem() const { return newest ? &newest->item : nullptr; }
    /// Both in key order: by the first items that differ, then by the count.
    int compare(const ZCacheT& other) const {
        ZCacheT mine(*this), others(other);
        return mine.table.compare(others.table);
    }

    // Writing

    /// Adds an item as the newest and drops what is too much, never this one. An item that has the key already is
    /// replaced, and is the newest then.
    bool append(const I& item) {
        if (CacheData* fresh = zmake<CacheData>(item)) {
            Dropped dropped;
            Guard held(*this);
            if (enter(fresh, dropped)) return true;
            dropped.add(fresh);
        }
        return false;
    }
    /// Replaces the item under a key by another with that key, in place, with its cost; the order of use stays.
    bool set(const K& key, const I& item) {
        if (zcompare<K>(item.key(), key) != 0) return false;
        Copied copy;
        if (!copy.take(item)) return false;
        uint cost = costOf(item);
        Dropped dropped;
        Guard held(*this);
        CacheData* data = edit(key, dropped);
        if (!data) return false;
        copy.swap(data->item);
        charge(*data, cost);
        return true;
    }
    /// Removes an item, also a locked one; false if there is none.
    bool remove(const K& key) {
        Dropped dropped;
        Guard held(*this);
        CacheData* data = edit(key, dropped);
        if (data) evict(data, dropped);
        return data != nullptr;
    }
    void clear() {
        Table old;
        Guard held(*this);
        replace(old);
    }

    // Order of use and cost; false without such an item, or without memory to detach

    /// Makes an item the newest; drops nothing.
    bool use(const K& key) {
        Dropped dropped;
        Guard held(*this);
        CacheData* data = edit(key, dropped);
        if (data) makeNewest(data);
        return data != nullptr;
    }
    /// Pins an item: it isn't dropped until it has been unlocked as often.
    bool lock(const K& key) { return pin(key, 1); }
    bool unlock(const K& key) { return pin(key, -1); }
    bool isLocked(const K& key) const {
        Guard held(*this);
        const CacheData* data = table.find(key);
        return data && data->locked;
    }
    /// Makes the item the newest, with another cost, and drops what is too much.
    bool setCost(const K& key, uint cost) {
        Dropped dropped;
        Guard held(*this);
        CacheData* data = edit(key, dropped);
        if (!data) return false;
        makeNewest(data);
        charge(*data, cost);
        trim(dropped);
        return true;
    }
    /// 0 without such an item.
    uint cost(const K& key) const {
        Guard held(*this);
        const CacheData* data = table.find(key);
        return data ? data->cost : 0;
    }

    // Limits; 0 for none. A new one is enforced at once, on all but the newest item and the locked ones.

    uint maxItems() const { return itemLimit; }
    uint maxCost() const { return costLimit; }
    /// What the items cost together; counted only while there is a limit to it.
    uint totalCost() const {
        Guard held(*this);
        return total > 0xFFFFFFFFu ? 0xFFFFFFFFu : uint(total);
    }
    bool setMaxItems(uint limit) {
        Dropped dropped;
        Guard held(*this);
        if (!detach(dropped)) return false;
        itemLimit = limit;
        trim(dropped);
        return true;
    }
    bool setMaxCost(uint limit) {
        Dropped dropped;
        Guard held(*this);
        if (!detach(dropped)) return false;
        if (!limit != !costLimit) {
            total = 0;
            if (limit)
                for (const CacheData& data : table) total += data.cost;
        }
        costLimit = limit;
        trim(dropped);
        return true;
    }
    bool useLock() const { return locking; }
    /// Before the cache is shared among threads.
    void setUseLock(bool use) { locking = use; }

private:
    struct CacheData : ZTreeItemT<K, CacheData> {
        I item;
        uint locked = 0;
        uint cost;
        CacheData* older = nullptr;
        CacheData* newer = nullptr;

        explicit CacheData(const I& item) : item(item), cost(costOf(item)) {}
        CacheData(const CacheData& other)
            : ZTreeItemT<K, CacheData>(other), item(other.item), locked(other.locked), cost(other.cost) {}
        decltype(auto) key() const { return item.key(); }
        int compare(const CacheData& other) const {
            if constexpr (requires { item.compare(other.item); })
                return item.compare(other.item);
            else
                return zcompare<K>(key(), other.key());
        }
        static void getHashInfo(uint& bits, uint& load) {
            bits = orv_calchashbits(defaultCount, defaultLoad, 0, 14);
            load = defaultLoad;
        }
    };
    using Table = ZHashTreeT<K, CacheData>;

    class Guard {
    public:
        explicit Guard(const ZCacheT& cache) : held(cache.locking ? &cache.spin : nullptr) {
            if (held) held->lock();
        }
        ~Guard() {
            if (held) held->unlock();
        }
        Guard(const Guard&) = delete;

    private:
        ZSpinLock* held;
    };
    /// What was taken out; declared ahead of the guard, so that it dies after the lock was given up.
    class Dropped {
    public:
        Dropped() = default;
        Dropped(const Dropped&) = delete;
        ~Dropped() {
            while (first) {
                // The table was the only holder.
                CacheData* dying = std::exchange(first, first->newer);
                dying->~CacheData();
                toolkit::freeBlock(dying);
            }
        }
        void add(CacheData* data) {
            data->newer = first;
            first = data;
        }
        Table table; ///< shared with others until the cache was detached

    private:
        CacheData* first = nullptr;
    };
    /// A copy of an item, made under the lock and used outside.
    struct Copied {
        alignas(I) byte room[sizeof(I)];
        I* item = nullptr;

        Copied() {}
        Copied(const Copied&) = delete;
        ~Copied() {
            if (item) item->~I();
        }
        bool take(const I& from) {
            ZFailGuard guard;
            std::memset(room, 0, sizeof room);
            item = ::new (room) I(from);
            if (!guard.rose()) return true;
            std::exchange(item, nullptr)->~I();
            guard.forget();
            return false;
        }
        /// By their bytes where that will do, so that no destructor runs.
        void swap(I& other) {
            if constexpr (zrelocatable<I>) {
                byte aside[sizeof(I)];
                std::memcpy(aside, room, sizeof aside);
                std::memcpy(room, static_cast<void*>(&other), sizeof aside);
                std::memcpy(static_cast<void*>(&other), aside, sizeof aside);
            } else
                std::swap(*item, other);
        }
    };

    static uint costOf(const I& item) {
        if constexpr (requires { item.cost(); })
            return item.cost();
        else
            return 1;
    }

    void share(const ZCacheT& other) {
        table = other.table;
        oldest = other.oldest;
        newest = other.newest;
        total = other.total;
        itemLimit = other.itemLimit;
        costLimit = other.costLimit;
    }
    /// Empties the cache; what it held comes back in `other`.
    void replace(Table& other) {
        std::swap(table, other);
        oldest = newest = nullptr;
        total = 0;
    }
    /// The nodes of a copied table are put in the order of use of their originals.
    bool detach(Dropped& dropped) {
        if (ORV_LIKELY(table.isDetached())) return true;
        const CacheData* old = oldest;
        dropped.table = table;
        if (!table.detach()) return false;
        oldest = newest = nullptr;
        for (; old; old = old->newer) linkNewest(table.edit(old->key()));
        return true;
    }
    CacheData* edit(const K& key, Dropped& dropped) {
        auto found = const_cast<CacheData*>(table.find(key));
        if (!found || ORV_LIKELY(table.isDetached())) return found;
        return detach(dropped) ? table.edit(key) : nullptr;
    }

    void linkNewest(CacheData* data) {
        data->older = newest;
        data->newer = nullptr;
        (newest ? newest->newer : oldest) = data;
        newest = data;
    }
    void unlinkUse(CacheData* data) {
        (data->older ? data->older->newer : oldest) = data->newer;
        (data->newer ? data->newer->older : newest) = data->older;
    }
    void makeNewest(CacheData* data) {
        if (data == newest) return;
        unlinkUse(data);
        linkNewest(data);
    }
    void charge(CacheData& data, uint cost) {
        if (costLimit) total = (total > data.cost ? total - data.cost : 0) + cost;
        data.cost = cost;
    }
    bool enter(CacheData* fresh, Dropped& dropped) {
        if (!detach(dropped)) return false;
        // The table is fitted only once the items outgrow it, so that a size given beforehand stays.
        bool full = table.count() >= table.hashSize();
        CacheData* now = table.addUnique(fresh, full);
        if (!now) return false;
        if (now != fresh) {
            fresh->locked = now->locked;
            evict(now, dropped);
            table.addUnique(fresh, false); // there is a table: this can't fail
        }
        linkNewest(fresh);
        if (costLimit) total += fresh->cost;
        trim(dropped);
        return true;
    }
    void evict(CacheData* data, Dropped& dropped) {
        unlinkUse(data);
        if (costLimit) total = total > data->cost ? total - data->cost : 0;
        dropped.add(table.extract(data));
    }
    bool isOver() const { return (costLimit && total > costLimit) || (itemLimit && table.count() > itemLimit); }
    void trim(Dropped& dropped) {
        for (CacheData* data = oldest; data && data != newest && isOver();) {
            CacheData* next = data->newer;
            if (!data->locked) evict(data, dropped);
            data = next;
        }
    }
    bool pin(const K& key, int by) {
        Dropped dropped;
        Guard held(*this);
        const CacheData* found = table.find(key);
        if (!found || (by < 0 && !found->locked)) return false;
        CacheData* data = edit(key, dropped);
        if (data) data->locked += uint(by);
        return data != nullptr;
    }

    Table table;
    CacheData* oldest = nullptr;
    CacheData* newest = nullptr;
    ularge total = 0;
    uint itemLimit = defaultItems;
    uint costLimit = defaultCost;
    mutable ZSpinLock spin;
    bool locking = false;
};
