#pragma once

#include "value/valueMap.h"

/// A set of values of one type that is known at run time; as a multiset it counts how many times each was added. Values
/// are found by an exact order (-0 equals 0, not-a-number itself). See `orv::ValueMap` for what it shares with the
/// maps.
class ORV_API ZVHashSet : public orv::ValueMap {
public:
    using MapData = orv::ValueMapData;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the set empty.

    constexpr ZVHashSet() : ValueMap(orv::MapForm::Set) {}
    explicit ZVHashSet(ZMetaType* type) : ValueMap(orv::MapForm::Set, type) {}
    ZVHashSet(ZMetaType* type, uint capacity) : ZVHashSet(type, capacity, 100, 0) {}
    /// `hashBits` 0 lets the hash table follow the count.
    ZVHashSet(ZMetaType* type, uint capacity, int16 expand, uint hashBits);
    explicit ZVHashSet(const ZVArray& values);
    ZVHashSet(const ZVHashSet& other) = default;
    ZVHashSet(ZVHashSet&& other) noexcept : ValueMap(std::move(other)), multi(std::exchange(other.multi, false)) {}
    ZVHashSet& operator=(const ZVHashSet& other) {
        take(other);
        multi = other.multi;
        return *this;
    }
    ZVHashSet& operator=(ZVHashSet&& other) noexcept {
        take(std::move(other));
        multi = other.multi;
        return *this;
    }
    void assign(const ZVHashSet& other) { *this = other; }
    /// Drops the items and sets the set up anew. With `autoHash` above 0 the hash bits follow the count at that
    /// percentage; `valueSize` counts for a set without a type, which then holds bytes.
    bool init(uint capacity, int16 expand, uint hashBits, uint autoHash, uint valueSize);
    /// New data for sets of this one's type, which the caller owns; null without memory.
    MapData* create(uint capacity, int16 expand, uint hashBits, uint autoHash, uint valueSize) const;
    /// Another type for a set without items; false for one that has any.
    bool initType(ZMetaType* type);
    /// Whether the items count how many times they were added.
    bool multiSet() const { return multi; }
    void setMultiSet(bool on) { multi = on; }

    // Adding: true if the value is there afterwards. In a multiset its usage rises if it was there. A set has to have a
    // type, or be set up for bytes: to add to one that hasn't is a programming error, which the forms that are called
    // by name refuse.

    bool add(const ZVariant& value);
    /// All values of the other, or none. Of a multiset each as often as it is there. A set without a type takes that of
    /// the other container; so for the following.
    bool add(const ZVHashSet& other);
    bool add(const ZVArray& values);
    /// The values of a map.
    bool add(const ZVSelectMap& map);
    bool add(const ZVKeyMap& map);
    bool addItem(const void* item);
    bool addSelector(const ZSelector& name);
    /// Only a value that isn't there yet: false for one that is.
    bool addNew(const ZVariant& value);
    bool addNewItem(const void* item);
    /// Puts a value in the place of another; false if the old one isn't there, or the new one is.
    bool replace(const ZVariant& value, const ZVariant& with);

    // Asking

    bool contains(const ZVariant& value) const { return findValue(value) >= 0; }
    /// Whether all values of the other are there.
    bool contains(const ZVHashSet& other) const;
    bool contains(const ZVArray& values) const;
    /// The values of a map.
    bool contains(const ZVSelectMap& map) const;
    bool contains(const ZVKeyMap& map) const;
    bool contains(const ZArrayT<ZSelector>& names) const;
    bool containsItem(const void* item) const { return findItem(item) >= 0; }
    bool hasSelector(const ZSelector& name) const;
    /// The position of a value, or -1.
    int findValue(const ZVariant& value) const;
    using ValueMap::findValue;
    int findItem(const void* item) const;
    /// The same: a value is there once.
    int findFirstValue(const ZVariant& value) const { return findValue(value); }
    /// How many times a value was added to a multiset; 1 for one of another set, 0 for one that isn't there.
    uint usage(const ZVariant& value) const;
    uint usageAt(int index) const;
    /// Whether both hold the same values, whatever their order and usage.
    bool matches(const ZVHashSet& other) const;
    /// A selector that isn't in the set: `format`, which has one number in it ("item%d"), with the lowest number above
    /// the count that gives one. A set without a type takes that of selectors. With `add` the selector is added. Empty
    /// if there is none, or no memory.
    ZSelector createSelector(const ZString& format, bool add);

    // Removing

    /// In a multiset, without `all`, the usage falls, and the value goes when it runs out.
    bool remove(const ZVariant& value, bool all);
    bool remove(const ZVariant& value) { return remove(value, true); }
    bool removeItem(const void* item, bool all);
    bool removeSelector(const ZSelector& name);
    /// The values that are there, in one pass; in a multiset, without `all`, each as often as the other has it.
    bool remove(const ZVHashSet& other, bool all);
    bool remove(const ZVArray& values, bool all);
    bool removeSet(const ZVHashSet& other) { return remove(other, true); }
    /// Takes the last value; the null variant without any.
    ZVariant pop();
    /// Removes what the other doesn't hold.
    bool intersection(const ZVHashSet& other);

    // By position

    /// In order. Empty, with a failure raised, without memory.
    ZVArray array() const;
    /// The values at the positions, in the order of the set.
    ZVHashSet extract(const ZArrayT<int>& indexes) const;
    /// Of a raw value, as the set hashes it.
    uint hashValue(const void* item) const;
    /// After values were changed in place: they are found by what they are now. Of equal ones the first stays, with the
    /// usage of all.
    bool changed();
    bool sort(bool ascending = true) { return sortByValue(ascending); }
    using ValueMap::sort;

    // Whole

    /// Drops the type too.
    void clearAll() { reset(); }
    /// By the types' addresses, then value by value in their order; then by the count. 0 without memory.
    int compare(const ZVHashSet& other) const { return compareMaps(other); }
    bool operator==(const ZVHashSet& other) const { return compare(other) == 0; }
    /// Whether the types are the same and the values match one by one, see `ZVariant::matchValue`.
    bool matchValue(const ZVHashSet& other, real tolerance) const;
    /// Equal for sets that hold equal values, whatever their order.
    uint hashKey() const;

private:
    bool countUse(int index, bool more);
    bool canAdd() const { return type || data; }
    bool addGiven(const ZVariant& value);
    bool merge(ZVHashSet& made);
    template <class F> bool addAll(ZMetaType* of, uint values, F&& value);
    template <class F> bool removeAll(uint values, bool all, F&& place);

    bool multi = false;
};
