#pragma once

#include "core/ZSelector.h"

/// A map from selector to selector, in the order in which keys were added. A copy shares the items until one side
/// writes; writing operations answer false, with the map as it was, when there is no memory. One thread at a time
/// writes to a map; several may read it.
class ORV_API ZSelectorMap {
public:
    using ZRelocatable = void;

    ZSelectorMap() = default;
    ZSelectorMap(const ZSelectorMap& other);
    ZSelectorMap(ZSelectorMap&& other) noexcept : items(std::exchange(other.items, nullptr)) {}
    ~ZSelectorMap();
    ZSelectorMap& operator=(const ZSelectorMap& other) {
        assign(other);
        return *this;
    }
    ZSelectorMap& operator=(ZSelectorMap&& other) noexcept {
        std::swap(items, other.items);
        return *this;
    }
    void assign(const ZSelectorMap& other);
    void clear();

    uint count() const;
    bool isEmpty() const { return count() == 0; }
    bool contains(const ZSelector& key) const;
    /// The value of a key; empty if there is none.
    ZSelector get(const ZSelector& key) const;
    /// The value, or the key, at a position; empty out of range.
    ZSelector get(int index) const;
    ZSelector key(int index) const;
    /// Sets the value of a key, which keeps its position. False for an empty key too.
    bool set(const ZSelector& key, const ZSelector& value);
    /// Sets all pairs of another map.
    bool append(const ZSelectorMap& other);

    /// By the pairs in the order of their keys; then the longer map is the greater.
    int compare(const ZSelectorMap& other) const;
    bool operator==(const ZSelectorMap& other) const { return compare(other) == 0; }
    /// The same for equal maps, whatever the order of their items.
    uint hashKey() const;

private:
    class Items;
    bool detach();

    Items* items = nullptr;
};
