#pragma once

#include "value/valueMap.h"

/// A set of values of one type that is known at run time; as a multiset it counts how many times each was added. Values
/// are found by an exact order (-0 equals 0, not-a-number itself). See `orv::ValueMap` for what it shares with the
/// maps.
class ORV_API ZVHashSet : public orv::ValueMap {
public:
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
    /// Drops the items and sets the set up anew. With `load` above 0 the hash bits follow from the capacity;
    /// `valueSize` counts for a set without a type, which then holds bytes.
    bool init(uint capacity, int16 expand, uint hashBits, uint load, uint valueSize);
    /// Another type for a set without items; false for one that has any.
    bool initType(ZMetaType* type);
    /// Whether the items count how many times they were added.
    bool multiSet() const { return multi; }
    void setMultiSet(bool on) { multi = on; }

    // Adding: true if the value is there afterwards. In a multiset its usage rises if it was there.

    bool add(const ZVariant& value);
    bool add(const ZVHashSet& other);
    bool add(const ZVArray& values);
    /// The values of a map.
    bool add(const ZVSelectMap& map);
    bool add(const ZVKeyMap& map);
    /// The set has to have a type.
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
    bool containsItem(const void* item) const { return findItem(item) >= 0; }
    bool hasSelector(const ZSelector& name) const;
    /// The position of a value, or -1.
    int findValue(const ZVariant& value) const;
    int findItem(const void* item) const;
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
    bool removeSet(const ZVHashSet& other);
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
    template <class F> bool addAll(uint values, F&& value);

    bool multi = false;
};
