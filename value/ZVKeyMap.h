#pragma once

#include "value/valueMap.h"

/// A map whose types of keys and values are known at run time. Keys are found by an exact order (-0 equals 0,
/// not-a-number itself); those of `ZType` classes by their addresses. A key can be there more than once if `add` made
/// it so. See `orv::ValueMap` for what it shares with the other maps.
class ORV_API ZVKeyMap : public orv::ValueMap {
public:
    using MapData = orv::ValueMapData;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the map empty.

    constexpr ZVKeyMap() : ValueMap(orv::MapForm::Keyed) {}
    ZVKeyMap(ZMetaType* keyType, ZMetaType* valueType);
    ZVKeyMap(ZMetaType* keyType, ZMetaType* valueType, uint capacity)
        : ZVKeyMap(keyType, valueType, capacity, 100, 0) {}
    /// `hashBits` 0 lets the hash table follow the count.
    ZVKeyMap(ZMetaType* keyType, ZMetaType* valueType, uint capacity, int16 expand, uint hashBits);
    /// See `blendFrom`.
    ZVKeyMap(const ZVKeyMap* a, const ZVKeyMap* b, const ZBlendPos& pos);
    ZVKeyMap(const ZVKeyMap& other);
    ZVKeyMap(ZVKeyMap&& other) noexcept
        : ValueMap(std::move(other)), keyType(std::exchange(other.keyType, nullptr)),
          keyTypeName(std::move(other.keyTypeName)) {}
    ~ZVKeyMap() { clearAll(); }
    ZVKeyMap& operator=(const ZVKeyMap& other);
    ZVKeyMap& operator=(ZVKeyMap&& other) noexcept;
    void assign(const ZVKeyMap& other) { *this = other; }
    void swap(ZVKeyMap& other) noexcept;
    /// Drops the items and sets the map up anew. With `autoHash` above 0 the hash bits follow the count at that
    /// percentage; the sizes count for what has no type and is held as bytes.
    bool init(uint capacity, int16 expand, uint hashBits, uint autoHash, uint keySize, uint valueSize);
    bool init(int capacity) { return capacity >= 0 && init(uint(capacity), 100, 0, 0, 0, 0); }
    /// New data for maps of this one's types, which the caller owns; null without memory.
    MapData* create(uint capacity, int16 expand, uint hashBits, uint autoHash, uint keySize, uint valueSize) const;
    /// Other types for a map without items; false for one that has any.
    bool setTypes(ZMetaType* keyType, ZMetaType* valueType);
    ZMetaType* getKeyType() const { return keyType; }
    ZSelector getKeyTypeName() const;
    void setKeyTypeName(const ZSelector& name);
    bool isKeyType(const ZMetaType* wanted) const;
    bool isKeyType(const ZSelector& name) const;

    // By key

    /// The raw value under a key; null if there is none.
    const void* get(const ZVariant& key) const { return valuePtr(findKey(key)); }
    /// The same to be written; null also without memory to make the map's data its own.
    void* get(const ZVariant& key) { return valuePtr(findKey(key)); }
    const void* getItem(const void* key) const { return valuePtr(findItemKey(key)); }
    void* getItem(const void* key) { return valuePtr(findItemKey(key)); }
    /// The null variant if there is none.
    ZVariant variant(const ZVariant& key) const { return entry(findKey(key)); }
    /// The same; with an integer by position.
    ZVariant entry(const ZVariant& key) const { return variant(key); }
    using ValueMap::entry;
    bool haskey(const ZVariant& key) const { return findKey(key) >= 0; }
    bool hasKeys(const ZVArray& keys) const;
    bool hasKeys(const ZVKeyMap& other) const;
    /// The position of a key, or -1.
    int findKey(const ZVariant& key) const;
    int findItemKey(const void* key) const;
    /// Of equal keys the one that was added last.
    int findFirstKey(const ZVariant& key) const;
    /// Replaces the value of a key, which keeps its place, or adds it at the end.
    bool set(const ZVariant& key, const ZVariant& value);
    bool setItem(const void* key, const void* item);
    /// Adds an item, whether the key is there or not. Without `link`, for filling at once, it isn't indexed: a map in
    /// which keys were looked for before finds it only after `rebuildTree`, or what else drops the index.
    bool add(const ZVariant& key, const ZVariant& value, bool link = true);
    bool addItem(const void* key, const void* item, bool link = true);
    bool setValue(int index, const ZVariant& value);
    bool remove(const ZVariant& key) { return removeIndex(findKey(key)); }
    /// Those of the keys that are there, in one pass.
    bool removeKeys(const ZVArray& keys);
    bool removeKeys(const ZVKeyMap& other);
    /// Adds the value of one key under another, in place of what is there.
    bool copy(const ZVariant& from, const ZVariant& to);
    /// Another key for an item, which keeps its place. False if the new key is there already.
    bool rename(const ZVariant& from, const ZVariant& to);

    // By position

    /// The null variant out of range.
    ZVariant key(int index) const;
    const void* keyPtr(int index) const;
    /// The key of the first item with that value; the null variant if there is none.
    ZVariant getKey(const ZVariant& value) const { return key(findValue(value)); }
    /// Of the first one from a position on.
    ZVariant getKey(const ZVariant& value, int start) const { return key(findValue(value, start)); }
    const void* getItemKey(const void* item) const { return keyPtr(findValueItem(item)); }
    /// In order. Empty, with a failure raised, without memory; so for the following.
    ZVArray keys() const;
    ZVHashSet keySet() const;
    /// The keys at the positions listed, in that order; positions out of range are left out.
    ZVArray extractKeys(const ZArrayT<int>& indexes) const;
    /// The keys whose value is null.
    ZVArray collectNullKeys() const;

    // Keys of their own

    uint hashKey(const void* key) const;
    int compareKey(const void* a, const void* b) const;

    // Order

    bool moveBefore(const ZVariant& key, const ZVariant& before);
    bool moveAfter(const ZVariant& key, const ZVariant& after);
    bool moveToIndex(const ZVariant& key, int index) { return changePlace(findKey(key), index); }
    /// By key.
    bool sort(bool ascending = true);
    using ValueMap::sort;
    /// A new map with the items at the positions listed, in that order, or with those of the keys; positions out of
    /// range, and keys that aren't there, are left out. Empty, with a failure raised, without memory.
    ZVKeyMap rearrange(const ZArrayT<int>& order) const;
    ZVKeyMap rearrange(const ZVArray& keys) const;

    // Whole

    /// Drops the types too.
    void clearAll();
    /// Sets all items of another map, or none.
    bool append(const ZVKeyMap& other);
    /// By the types' addresses, then item by item in key order, key and value; then by the count. 0 without memory.
    int compare(const ZVKeyMap& other) const;
    bool operator==(const ZVKeyMap& other) const { return compare(other) == 0; }
    /// Whether all keys of the other are in this map, with equal values.
    bool contains(const ZVKeyMap& other) const;
    bool contains(const ZVariant& key) const { return haskey(key); }
    bool contains(const ZVArray& keys) const { return hasKeys(keys); }
    /// Whether that value is under the key.
    bool contains(const ZVariant& key, const ZVariant& value) const;
    /// Whether types are the same and keys and values match one by one, see `ZVariant::matchValue`.
    bool matchValue(const ZVKeyMap& other, real tolerance) const;
    /// Equal for maps that hold equal items, whatever their order.
    uint hashKey() const;
    /// What lies between two maps of the same types, of which one may be missing: each key's value blends with that of
    /// the other map, or with nothing. Maps of different types: the nearer one.
    bool blendFrom(const ZVKeyMap* a, const ZVKeyMap* b, const ZBlendPos& pos);

private:
    bool putValue(const ZVariant& key, const ZVariant& value, bool search, bool link);
    bool takeKeyType(ZMetaType* wanted);
    template <class Places> ZVArray keysAt(uint many, Places&& place) const;

    ZMetaType* keyType = nullptr;
    ZSelector keyTypeName;
};
