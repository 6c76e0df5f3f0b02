#pragma once

#include "core/ZArrayData.h"
#include "core/ZHashTreeT.h"

/// The parts of `ZCacheT`: its nodes, their order of use, and what is taken out of it.
namespace orv::detail {

/// What a cache is told about its size where it is opened by name.
struct CacheOptions {
    uint count, load; ///< of the table
    uint maxItems, maxCost;
};
/// As the configuration has them under a section and a key, or the resource of that name; what isn't there has its
/// default.
ORV_API CacheOptions cacheOptions(const ZSelector& section, const ZSelector& key);
ORV_API CacheOptions cacheOptions(const ZSelector& name);

inline constexpr uint cacheCount = 128, cacheLoad = 80, cacheItems = 100, cacheCost = 0x100000;

template <class I> uint costOf(const I& item) {
    if constexpr (requires { item.cost(); })
        return item.cost();
    else
        return 1;
}

/// The node of an item.
template <class K, class I> struct CacheDataT : ZTreeItemT<K, CacheDataT<K, I>> {
    I item;
    uint locked = 0;
    uint cost;
    CacheDataT* older = nullptr;
    CacheDataT* newer = nullptr;

    explicit CacheDataT(const I& item) : item(item), cost(costOf(item)) {}
    /// A copy is in no order.
    CacheDataT(const CacheDataT& other)
        : ZTreeItemT<K, CacheDataT>(other), item(other.item), locked(other.locked), cost(other.cost) {}

    decltype(auto) key() const { return item.key(); }
    int compare(const CacheDataT& other) const {
        if constexpr (requires { item.compare(other.item); })
            return item.compare(other.item);
        else
            return zcompare<K>(key(), other.key());
    }
    static void getHashInfo(uint& bits, uint& load) {
        bits = orv_calchashbits(cacheCount, cacheLoad, 0, 14);
        load = cacheLoad;
    }
};

/// Nodes in the order of their use, and what they cost together. The nodes are a table's.
template <class Data> struct CacheOrder {
    Data* oldest = nullptr;
    Data* newest = nullptr;
    ularge total = 0; ///< counted only while there is a limit to it
    uint maxItems = cacheItems;
    uint maxCost = cacheCost;

    /// Forgets the nodes; the limits stay.
    void reset() {
        oldest = newest = nullptr;
        total = 0;
    }
    void link(Data* data) {
        data->older = newest;
        data->newer = nullptr;
        (newest ? newest->newer : oldest) = data;
        newest = data;
    }
    void unlink(Data* data) {
        (data->older ? data->older->newer : oldest) = data->newer;
        (data->newer ? data->newer->older : newest) = data->older;
    }
    void makeNewest(Data* data) {
        if (data == newest) return;
        unlink(data);
        link(data);
    }
    void pay(uint cost) {
        if (maxCost) total += cost;
    }
    void payBack(uint cost) { total = total > cost ? total - cost : 0; }
    void charge(Data& data, uint cost) {
        payBack(data.cost);
        pay(cost);
        data.cost = cost;
    }
    void setMaxCost(uint limit) {
        const bool counted = maxCost && limit;
        maxCost = limit;
        if (counted) return;
        total = 0;
        for (Data* data = oldest; limit && data; data = data->newer) pay(data->cost);
    }
    bool isOver(uint count) const { return (maxCost && total > maxCost) || (maxItems && count > maxItems); }
};

/// What was taken out of a cache; it dies with this, which is declared ahead of the guard of the lock.
template <class Data, class Table> class CacheDropped {
public:
    CacheDropped() = default;
    CacheDropped(const CacheDropped&) = delete;
    ~CacheDropped() {
        while (first) {
            // The table was the only holder.
            Data* dying = std::exchange(first, first->newer);
            dying->~Data();
            toolkit::freeBlock(dying);
        }
    }
    void add(Data* data) {
        data->newer = first;
        first = data;
    }
    Table table; ///< shared with others until the cache was detached

private:
    Data* first = nullptr;
};

/// A copy of an item, made under the lock and used outside.
template <class I> struct CopiedItem {
    alignas(I) byte room[sizeof(I)];
    I* item = nullptr;

    CopiedItem() {}
    CopiedItem(const CopiedItem&) = delete;
    ~CopiedItem() {
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

} // namespace orv::detail
