#pragma once

#include "value/valueMap.h"

/// A map from selectors to values of one type that is known at run time: the bag of named values for options,
/// properties, configuration. See `orv::ValueMap` for what it shares with the other maps.
class ORV_API ZVSelectMap : public orv::ValueMap {
public:
    using MapData = orv::ValueMapData;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the map empty.

    constexpr ZVSelectMap() : ValueMap(orv::MapForm::Named) {}
    explicit ZVSelectMap(ZMetaType* type) : ValueMap(orv::MapForm::Named, type) {}
    ZVSelectMap(ZMetaType* type, uint capacity) : ZVSelectMap(type, capacity, 100, 0) {}
    /// `hashBits` 0 lets the hash table follow the count.
    ZVSelectMap(ZMetaType* type, uint capacity, int16 expand, uint hashBits);
    /// See `blendFrom`.
    ZVSelectMap(const ZVSelectMap* a, const ZVSelectMap* b, const ZBlendPos& pos);
    ZVSelectMap(const ZVSelectMap& other) = default;
    ZVSelectMap(ZVSelectMap&& other) noexcept = default;
    ZVSelectMap& operator=(const ZVSelectMap& other) {
        take(other);
        return *this;
    }
    ZVSelectMap& operator=(ZVSelectMap&& other) noexcept {
        take(std::move(other));
        return *this;
    }
    void assign(const ZVSelectMap& other) { take(other); }
    /// Drops the items and sets the map up anew. With `autoHash` above 0 the hash bits follow the count at that
    /// percentage; `valueSize` counts for a map without a type, which then holds bytes.
    bool init(uint capacity, int16 expand, uint hashBits, uint autoHash, uint valueSize);
    /// New data for maps of this one's type, which the caller owns; null without memory.
    MapData* create(uint capacity, int16 expand, uint hashBits, uint autoHash, uint valueSize) const;
    /// Another type for a map without items; false for one that has any.
    bool setType(ZMetaType* type);

    // By key

    /// The raw value under a key; null if there is none.
    const void* get(const ZSelector& key) const;
    /// The same to be written; null also without memory to make the map's data its own.
    void* get(const ZSelector& key) { return valuePtr(findKey(key)); }
    /// The null variant if there is none.
    ZVariant variant(const ZSelector& key) const { return entry(findKey(key)); }
    using ValueMap::entry;
    ZVariant entry(const ZSelector& key) const { return variant(key); }
    bool haskey(const ZSelector& key) const { return findKey(key) >= 0; }
    bool hasKeys(const ZArrayT<ZSelector>& keys) const;
    bool hasKeys(const ZVSelectMap& other) const;
    /// The position of a key, or -1.
    int findKey(const ZSelector& key) const;
    /// The same: a key is there once.
    int findFirstKey(const ZSelector& key) const { return findKey(key); }
    /// Replaces the value of a key, which keeps its place, or adds it at the end.
    bool set(const ZSelector& key, const ZVariant& value);
    bool setItem(const ZSelector& key, const void* item);
    bool setValue(int index, const ZVariant& value);
    bool remove(const ZSelector& key) { return removeIndex(findKey(key)); }
    /// Those of the keys that are there, in one pass.
    bool removeKeys(const ZArrayT<ZSelector>& keys);
    bool removeKeys(const ZVSelectMap& other);
    /// Adds the value of one key under another, in place of what is there.
    bool copy(const ZSelector& from, const ZSelector& to);
    /// Another key for an item, which keeps its place. False if the new key is there already.
    bool rename(const ZSelector& from, const ZSelector& to);

    // By position

    /// Empty out of range.
    ZSelector key(int index) const;
    const ZSelector* keyPtr(int index) const;
    /// The key of the first item with that value; empty if there is none.
    ZSelector getKey(const ZVariant& value) const { return key(findValue(value)); }
    /// Of the first one from a position on.
    ZSelector getKey(const ZVariant& value, int start) const { return key(findValue(value, start)); }
    ZSelector getItemKey(const void* item) const { return key(findValueItem(item)); }
    /// In order. Empty, with a failure raised, without memory; so for the following.
    ZArrayT<ZSelector> keys() const;
    ZHashSetT<ZSelector> keySet() const;
    /// The keys whose value is null.
    ZArrayT<ZSelector> collectNullKeys() const;

    // Order

    bool moveBefore(const ZSelector& key, const ZSelector& before);
    bool moveAfter(const ZSelector& key, const ZSelector& after);
    bool moveToIndex(const ZSelector& key, int index) { return changePlace(findKey(key), index); }
    /// By the texts of the keys.
    bool sort(bool ascending = true);
    using ValueMap::sort;
    /// A new map with the items at the positions listed, in that order; positions out of range, and repeated ones, are
    /// left out. Empty, with a failure raised, without memory.
    ZVSelectMap rearrange(const ZArrayT<int>& order) const;
    ZVSelectMap rearrange(const ZArrayT<ZSelector>& keys) const;

    // Whole

    /// Drops the type too.
    void clearAll() { reset(); }
    /// Sets all items of another map, or none.
    bool append(const ZVSelectMap& other);
    /// By the types' addresses, then item by item in the order of the keys' values, key and value; then by the count.
    /// 0 without memory.
    int compare(const ZVSelectMap& other) const { return compareMaps(other); }
    bool operator==(const ZVSelectMap& other) const { return compare(other) == 0; }
    /// Whether all keys of the other are in this map, with equal values.
    bool contains(const ZVSelectMap& other) const;
    bool contains(const ZSelector& key) const { return haskey(key); }
    bool contains(const ZArrayT<ZSelector>& keys) const { return hasKeys(keys); }
    /// Whether that value is under the key.
    bool contains(const ZSelector& key, const ZVariant& value) const;
    /// Whether types and keys are the same and the values match one by one, see `ZVariant::matchValue`.
    bool matchValue(const ZVSelectMap& other, real tolerance) const;
    /// Equal for maps that hold equal items, whatever their order.
    uint hashKey() const;
    /// What lies between two maps of one type, of which one may be missing: each key's value blends with that of the
    /// other map, or with nothing. Maps of different types: the nearer one.
    bool blendFrom(const ZVSelectMap* a, const ZVSelectMap* b, const ZBlendPos& pos);

private:
    template <class Places> ZArrayT<ZSelector> keysAt(uint many, Places&& place) const;
};
