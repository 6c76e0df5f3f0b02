#pragma once

#include "core/ZArrayT.h"
#include "core/ZMapData.h"

/// A map of items `I` that are found by their keys `K`: one pointer to a counted map, null until something is put in. A
/// copy shares the map; the first write to a shared one makes an own one. The items keep the order in which they were
/// added. Each key is there once. Every writing operation answers false when there is no memory, and has then changed
/// nothing; keys and items handed in may be the map's own.
///
/// Several threads may read and copy a map; whoever writes it has it alone. Items move by their bytes, so
/// `zrelocatable` has to hold for them; keys need `compare` or `<`, and a hash as `zhashkey` takes it.
template <class K, class I> class ZHashMapT {
public:
    using ZRelocatable = void;
    using MapData = orv::detail::MapDataT<K, I>;
    using Key = K;
    using Item = I;

private:
    template <class T> static decltype(auto) valueOf(T& item) {
        if constexpr (requires { item.value(); })
            return item.value();
        else
            return (item);
    }

public:
    /// What is looked up: the item's `value()`, else the item.
    using Value = std::remove_reference_t<decltype(valueOf(std::declval<I&>()))>;

    // Lifetime. A constructor without memory raises a failure and leaves the map empty.

    ZHashMapT() = default;
    explicit ZHashMapT(uint capacity) : ZHashMapT(capacity, 100, 0) {}
    /// Room for `capacity` items; `expand` as for `setExpand`; `hashBits` 0 lets the table's size follow the count.
    ZHashMapT(uint capacity, int16 expand, uint hashBits) : data(zmake<MapData>(capacity, expand, hashBits)) {
        if (!data) ZError::fail();
    }
    /// Of items with equal keys the last one stays, in the place of the first.
    explicit ZHashMapT(const ZArrayT<I>& items) {
        if (!append(items)) ZError::fail();
    }
    ZHashMapT(const ZHashMapT& other) : data(keep(other.data)) {}
    ZHashMapT(ZHashMapT&& other) noexcept : data(std::exchange(other.data, nullptr)) {}
    ~ZHashMapT() { clear(); }
    ZHashMapT& operator=(const ZHashMapT& other) {
        drop(std::exchange(data, keep(other.data)));
        return *this;
    }
    ZHashMapT& operator=(ZHashMapT&& other) noexcept {
        MapData* taken = std::exchange(other.data, nullptr);
        drop(std::exchange(data, taken));
        return *this;
    }

    // By key

    bool haskey(const K& key) const { return find(key) >= 0; }
    /// The position of a key; -1 if it isn't there.
    int find(const K& key) const { return data ? data->find(key) : -1; }
    /// The value under a key; null if there is none. It holds until the map is written.
    const Value* get(const K& key) const {
        int at = find(key);
        return at < 0 ? nullptr : &valueOf(std::as_const(data->node(uint(at)).item));
    }
    /// The same, to be written; null also without memory to detach.
    Value* get(const K& key) {
        int at = find(key);
        return at < 0 || !detach() ? nullptr : &valueOf(data->node(uint(at)).item);
    }
    /// Adds an item at the end, or replaces the one with its key, which keeps its position.
    bool set(const I& item) {
        orv::detail::NewNode<MapData> made(item);
        return put(made, true);
    }
    template <class V>
    requires std::is_constructible_v<I, const K&, const V&>
    bool set(const K& key, const V& value) {
        orv::detail::NewNode<MapData> made(key, value);
        return put(made, true);
    }
    /// Adds an item unless its key is there; true if it is there afterwards.
    bool add(const I& item) {
        if (haskey(MapData::keyOf(item))) return true;
        orv::detail::NewNode<MapData> made(item);
        return put(made, false);
    }
    /// The same with an item made from its key alone.
    bool add(const K& key) requires std::is_constructible_v<I, const K&> {
        if (haskey(key)) return true;
        orv::detail::NewNode<MapData> made(key);
        return put(made, false);
    }
    /// False if the key isn't there.
    bool remove(const K& key) {
        int at = find(key);
        return at >= 0 && removeIndex(uint(at));
    }
    /// Sets all of them, or none.
    bool append(const ZArrayT<I>& items) {
        if (items.isEmpty()) return true;
        ZHashMapT fresh;
        if (!data && !fresh.expand(items.count())) return false;
        for (const I& item : items)
            if (!fresh.set(item)) return false;
        if (!data) return swap(fresh);
        if (!expand(fresh.count())) return false;
        // There is room for all of them: nothing can fail any more. Items that are replaced gather in front of `fresh`,
        // so that none is destroyed before the map is done.
        fresh.data->clearTree(true);
        uint replaced = 0;
        for (uint i = 0; i < fresh.count(); ++i) {
            auto& node = fresh.data->node(i);
            int at = find(MapData::keyOf(node.item));
            if (at < 0) {
                data->take(node);
                continue;
            }
            orv::detail::swapItems<MapData>(node, data->node(uint(at)));
            fresh.data->swapPlace(int(i), int(replaced++));
        }
        fresh.data->forgetItems(int(replaced), int(fresh.count() - replaced));
        return true;
    }

    // By position, in the order of adding. An index out of range ends the process.

    uint count() const { return data ? data->count() : 0; }
    bool isEmpty() const { return count() == 0; }
    decltype(auto) key(uint index) const { return MapData::keyOf(item(index)); }
    const I& item(uint index) const {
        if (ORV_UNLIKELY(index >= count())) orv::detail::mapIndexFailed(__FILE__, __LINE__);
        return data->node(index).item;
    }
    const Value& value(uint index) const { return valueOf(item(index)); }
    /// False also for an index out of range.
    bool removeIndex(uint index) {
        if (index >= count() || !detach()) return false;
        orv::detail::TakenNode<MapData> gone(*data, index);
        return true;
    }
    /// Walks the items by position; valid until the map is written.
    class iterator {
    public:
        iterator(const ZHashMapT& map, uint index) : map(&map), at(index) {}
        uint index() const { return at; }
        decltype(auto) key() const { return map->key(at); }
        const Value& value() const { return map->value(at); }
        const I& operator*() const { return map->item(at); }
        const I* operator->() const { return &map->item(at); }
        iterator& operator++() {
            ++at;
            return *this;
        }
        bool operator==(const iterator& other) const { return at == other.at; }

    private:
        const ZHashMapT* map;
        uint at;
    };
    iterator begin() const { return {*this, 0}; }
    iterator end() const { return {*this, count()}; }

    // Whole map

    void clear() { drop(std::exchange(data, nullptr)); }
    /// Item by item in the order of the keys, by key and value; then the longer map is the greater. 0 when there is no
    /// memory for the order.
    int compare(const ZHashMapT& other) const {
        if (!data || !other.data) return int(count() > 0) - int(other.count() > 0);
        return data->compare(*other.data);
    }
    /// Moves the items into the order of their keys.
    bool sort(bool ascending = true) { return !data || (detach() && data->sort(ascending)); }
    bool moveToIndex(uint from, uint to) {
        return from < count() && to < count() && detach() && data->moveToPlace(int(from), int(to));
    }

    // Room

    uint capacity() const { return data ? data->capacity() : 0; }
    bool expand(uint more) { return more <= MapData::itemLimit && ownData() && data->expand(int(more)); }
    bool trim() { return !data || (detach() && data->trim()); }
    /// How the room grows: a percentage of the capacity; 0 doubles; negative, in blocks of that many items.
    bool setExpand(int16 rule) {
        if (!ownData()) return false;
        data->setExpand(rule);
        return true;
    }
    /// The size of the hash table, 0 for one tree; it no longer follows the count.
    bool setHashBits(uint bits) {
        if (!ownData()) return false;
        data->setHashBits(bits);
        return true;
    }

    // Sharing

    /// Exchanges two maps; always true.
    bool swap(ZHashMapT& other) {
        std::swap(data, other.data);
        return true;
    }
    int refcount() const { return ::refcount(data); }
    bool isDetached() const { return !data || ::refcount(data) < 2; }
    /// Makes the map this handle's own.
    bool detach() { return isDetached() || detachData(false); }
    /// The map behind the handle, null for none; for reading.
    const MapData* mapData() const { return data; }

private:
    static MapData* keep(MapData* shared) { return shared && shared->retain() ? shared : nullptr; }
    static void drop(MapData* old) {
        if (old) old->release();
    }
    bool ownData() {
        if (data) return isDetached() || detachData(true);
        return (data = zmake<MapData>()) != nullptr;
    }
    bool detachData(bool grows) {
        MapData* own = zmake<MapData>(*data, grows);
        if (!own) return false;
        drop(std::exchange(data, own));
        return true;
    }
    /// `mayBeThere`: there may be an item with that key, which is replaced then.
    bool put(orv::detail::NewNode<MapData>& made, bool mayBeThere) {
        if (!made.whole()) return false;
        int at = mayBeThere ? find(MapData::keyOf(made.get().item)) : -1;
        if (at >= 0) {
            if (!detach()) return false;
            orv::detail::swapItems<MapData>(made.get(), data->node(uint(at)));
            return true;
        }
        if (!ownData() || !data->take(made.get())) return false;
        made.taken();
        return true;
    }

    MapData* data = nullptr;
};

/// A map from keys to values.
template <class K, class V> class ZKeyMapT : public ZHashMapT<K, ZKeyValueT<K, V>> {
public:
    using ZHashMapT<K, ZKeyValueT<K, V>>::ZHashMapT;
    int compare(const ZKeyMapT& other) const { return ZHashMapT<K, ZKeyValueT<K, V>>::compare(other); }
};

/// A map from selectors to values.
template <class V> class ZSelectMapT : public ZHashMapT<ZSelector, ZSelectValueT<V>> {
public:
    using ZHashMapT<ZSelector, ZSelectValueT<V>>::ZHashMapT;
    int compare(const ZSelectMapT& other) const { return ZHashMapT<ZSelector, ZSelectValueT<V>>::compare(other); }
};
