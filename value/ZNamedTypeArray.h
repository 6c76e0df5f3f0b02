#pragma once

#include "core/ZHashSetT.h"
#include "value/typeItems.h"

extern template class ORV_API orv::TypeItems<ZNamedTypeArray, orv::NamedTypeItem>;

/// An array of instances of `ZType` classes with a name each, in one pointer. A name is looked for item by item, or by
/// halving in an array sorted by its keys; of several items of one name the first one is found. See `orv::TypeItems`
/// for what it shares with the plain kind; an instance put in by position alone has no name.
class ORV_API ZNamedTypeArray : public orv::TypeItems<ZNamedTypeArray, orv::NamedTypeItem> {
public:
    using Item = orv::NamedTypeItem;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the array without items.

    ZNamedTypeArray() = default;
    explicit ZNamedTypeArray(uint capacity) : ZNamedTypeArray(capacity, 100) {}
    /// `expand` as for `setExpand`.
    ZNamedTypeArray(uint capacity, int16 expand);
    /// The items of a named array or map in a variant; of one that holds something else none, with a failure raised.
    explicit ZNamedTypeArray(const ZVariant& value);
    /// See `blendFrom`.
    ZNamedTypeArray(const ZNamedTypeArray* a, const ZNamedTypeArray* b, const ZBlendPos& pos);

    // By name

    using TypeItems::append;
    using TypeItems::entry;
    using TypeItems::get;
    using TypeItems::insert;
    using TypeItems::remove;
    using TypeItems::set;
    using TypeItems::variant;
    /// Borrowed; null if there is none.
    ZType* get(const ZSelector& name) const { return get(findKey(name)); }
    ZVariant variant(const ZSelector& name) const { return variant(findKey(name)); }
    ZVariant entry(const ZSelector& name) const { return variant(name); }
    /// Replaces the instance of a name, which keeps its place, or adds it at the end.
    bool set(const ZSelector& name, const ZType* instance);
    bool set(const ZSelector& name, const ZVariant& value);
    /// At the end, or before an index, whether or not the name is there already.
    bool append(const ZSelector& name, const ZType* instance) { return insert(int(count()), name, instance); }
    bool insert(int index, const ZSelector& name, const ZType* instance);
    bool remove(const ZSelector& name) { return removeIndex(findKey(name)); }
    /// Puts the instance of one name under another, in place of what is there.
    bool copy(const ZSelector& from, const ZSelector& to);
    bool haskey(const ZSelector& name) const { return findKey(name) >= 0; }
    bool hasKeys(const ZArrayT<ZSelector>& names) const;
    bool hasKeys(const ZNamedTypeArray& other) const;
    /// The position of a name, or -1.
    int findKey(const ZSelector& name) const { return findKey(name, isSorted()); }
    /// `sorted`: whether the items are in the order of their keys.
    int findKey(const ZSelector& name, bool sorted) const { return sorted ? binarySearch(name) : linearSearch(name); }
    int binarySearch(const ZSelector& name) const;
    int linearSearch(const ZSelector& name) const;

    // By position

    /// Empty out of range.
    ZSelector key(int index) const { return inRange(index) ? items.data()[index].key : ZSelector(); }
    const ZSelector* keyPtr(int index) const { return inRange(index) ? &items.data()[index].key : nullptr; }
    bool setKey(int index, const ZSelector& name);
    /// Name and instance; null out of range.
    const Item* item(int index) const { return inRange(index) ? items.data() + index : nullptr; }
    /// The first name of an instance; empty if it isn't there.
    ZSelector getKey(const ZType* instance) const { return key(findPointer(instance)); }
    /// In order. Empty, with a failure raised, without memory.
    ZArrayT<ZSelector> keys() const;
    ZHashSetT<ZSelector> keySet() const;

    // Order

    /// By the values of the keys, which is what `binarySearch` goes by; items of one name keep their order.
    bool sort();
    using TypeItems::sort;
    bool isSorted() const { return items.isSorted(); }

    // Comparison

    /// Item by item, the name first, then the instance; then by the count. -1, 0 or 1.
    int compare(const ZNamedTypeArray& other) const;
    using TypeItems::compare;
    /// Whether the names are the same and the instances match one by one, see `ZVariant::matchValue`.
    bool matchValue(const ZNamedTypeArray& other, real tolerance) const;
    /// Whether all names of the other are there, with equal instances.
    bool contains(const ZNamedTypeArray& other) const;
    using TypeItems::contains;
    uint hashKey() const;

    /// Each name's instance blends with that of the other array, or with nothing; of one array alone that one.
    bool blendFrom(const ZNamedTypeArray* a, const ZNamedTypeArray* b, const ZBlendPos& pos);

private:
    ZNamedTypeArray forSearch(uint asked) const;
};
static_assert(sizeof(ZNamedTypeArray) == sizeof(void*) && sizeof(orv::NamedTypeItem) == 16);
