#pragma once

#include "value/ZVSelectMap.h"

/// A map from names to instances of `ZType` classes: a `ZVSelectMap` whose values are always such, found by hash.
class ORV_API ZTypeNameMap : public ZVSelectMap {
public:
    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the map empty.

    ZTypeNameMap();
    explicit ZTypeNameMap(uint capacity) : ZTypeNameMap(capacity, 100, 0) {}
    /// `hashBits` 0 lets the hash table follow the count.
    ZTypeNameMap(uint capacity, int16 expand, uint hashBits);
    /// The instances of another map or named array; of one that holds something else none, with a failure raised.
    explicit ZTypeNameMap(const ZVariant& value);
    /// See `ZVSelectMap::blendFrom`.
    ZTypeNameMap(const ZTypeNameMap* a, const ZTypeNameMap* b, const ZBlendPos& pos);

    /// Borrowed; null if there is none.
    ZType* get(const ZSelector& name) const { return item(findKey(name)); }
    /// The instance at a position; null out of range.
    ZType* item(int index) const;
    using ZVSelectMap::set;
    /// Replaces the instance of a name, which keeps its place, or adds it at the end. False also for an instance on its
    /// way out.
    bool set(const ZSelector& name, const ZType* instance);
    using ZVSelectMap::getKey;
    /// The first name of an instance; empty if it isn't there.
    ZSelector getKey(const ZType* instance) const { return key(findPointer(instance)); }
    int findPointer(const ZType* instance) const;
    void clearAll() { clear(); }
};
