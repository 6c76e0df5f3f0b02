#pragma once

#include "core/ZArrayT.h"
#include "core/ZCacheData.h"
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
    static constexpr uint defaultItems = orv::detail::cacheItems, defaultCost = orv::detail::cacheCost;
    static constexpr uint defaultCount = orv::detail::cacheCount, defaultLoad = orv::detail::cacheLoad;

    // Lifetime. A constructor raises a failure when there is no memory.

    ZCacheT() = default;
    /// These are as `init`.
    explicit ZCacheT(uint count) : ZCacheT(count, defaultLoad) {}
    ZCacheT(uint count, uint load) {
        if (!init(count, load)) ZError::fail();
    }
    explicit ZCacheT(const ZSelector& name) {
        if (!init(name)) ZError::fail();
    }
    ZCacheT(const ZSelector& section, const ZSelector& key) {
        if (!init(section, key)) ZError::fail();
    }
    explicit ZCacheT(const ZArrayT<I>& items) {
        bool whole = true;
        for (const I& item : items) whole = whole && append(item);
        if (whole) return;
        clear();
        ZError::fail();
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
    /// Drops everything and makes a table for `count` items at `load` percent; the limits stay.
    bool init(uint count, uint load) { return init(count, load, nullptr); }
    /// The same with the limits too, as the resource of that name has them; what isn't there has its default.
    bool init(const ZSelector& name) { return init(orv::detail::cacheOptions(name)); }
    /// The same from a section and key of the main configuration.
    bool init(const ZSelector& section, const ZSelector& key) { return init(orv::detail::cacheOptions(section, key)); }

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
    const I* oldestItem() const { return order.oldest ? &order.oldest->item : nullptr; }
    const I* newestItem() const { return order.newest ? &order.newest->item : nullptr; }
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
        uint cost = orv::detail::costOf(item);
        Dropped dropped;
        Guard held(*this);
        CacheData* data = edit(key, dropped);
        if (!data) return false;
        copy.swap(data->item);
        order.charge(*data, cost);
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
        if (data) order.makeNewest(data);
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
        order.makeNewest(data);
        order.charge(*data, cost);
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

    uint maxItems() const {
        Guard held(*this);
        return order.maxItems;
    }
    uint maxCost() const {
        Guard held(*this);
        return order.maxCost;
    }
    /// What the items cost together; counted only while there is a limit to it.
    uint totalCost() const {
        Guard held(*this);
        return order.total > 0xFFFFFFFFu ? 0xFFFFFFFFu : uint(order.total);
    }
    bool setMaxItems(uint limit) {
        Dropped dropped;
        Guard held(*this);
        if (!detach(dropped)) return false;
        order.maxItems = limit;
        trim(dropped);
        return true;
    }
    bool setMaxCost(uint limit) {
        Dropped dropped;
        Guard held(*this);
        if (!detach(dropped)) return false;
        order.setMaxCost(limit);
        trim(dropped);
        return true;
    }
    bool useLock() const { return locking; }
    /// Before the cache is shared among threads.
    void setUseLock(bool use) { locking = use; }

private:
    using CacheData = orv::detail::CacheDataT<K, I>;
    using Table = ZHashTreeT<K, CacheData>;
    using Dropped = orv::detail::CacheDropped<CacheData, Table>;
    using Copied = orv::detail::CopiedItem<I>;

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

    bool init(uint count, uint load, const orv::detail::CacheOptions* limits) {
        Table fresh;
        if (!fresh.init(count, load)) return false;
        Guard held(*this);
        replace(fresh);
        if (!limits) return true;
        order.maxItems = limits->maxItems;
        order.maxCost = limits->maxCost;
        return true;
    }
    bool init(const orv::detail::CacheOptions& options) { return init(options.count, options.load, &options); }
    void share(const ZCacheT& other) {
        table = other.table;
        order = other.order;
    }
    /// Empties the cache; what it held comes back in `other`.
    void replace(Table& other) {
        std::swap(table, other);
        order.reset();
    }
    /// The nodes of a copied table are put in the order of use of their originals.
    bool detach(Dropped& dropped) {
        if (ORV_LIKELY(table.isDetached())) return true;
        const CacheData* old = order.oldest;
        dropped.table = table;
        if (!table.detach()) return false;
        order.oldest = order.newest = nullptr;
        for (; old; old = old->newer) order.link(table.edit(old->key()));
        return true;
    }
    CacheData* edit(const K& key, Dropped& dropped) {
        auto found = const_cast<CacheData*>(table.find(key));
        if (!found || ORV_LIKELY(table.isDetached())) return found;
        return detach(dropped) ? table.edit(key) : nullptr;
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
        order.link(fresh);
        order.pay(fresh->cost);
        trim(dropped);
        return true;
    }
    void evict(CacheData* data, Dropped& dropped) {
        order.unlink(data);
        order.payBack(data->cost);
        dropped.add(table.extract(data));
    }
    void trim(Dropped& dropped) {
        for (CacheData* data = order.oldest; data && data != order.newest && order.isOver(table.count());) {
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
    orv::detail::CacheOrder<CacheData> order;
    mutable ZSpinLock spin;
    bool locking = false;
};
