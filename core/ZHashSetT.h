#pragma once

#include "core/ZHashMapT.h"

/// A set of `K`: one pointer, copied on write, like `ZHashMapT`, with the same rules. The values keep the order in
/// which they were added.
template <class K> class ZHashSetT {
public:
    using ZRelocatable = void;
    using SetItem = ZValueWrapT<K>;
    using SetData = orv::detail::MapDataT<K, SetItem>;
    using Value = K;

    // Lifetime. A constructor without memory raises a failure and leaves the set empty.

    ZHashSetT() = default;
    explicit ZHashSetT(uint capacity) : values(capacity) {}
    ZHashSetT(uint capacity, int16 expand, uint hashBits) : values(capacity, expand, hashBits) {}
    explicit ZHashSetT(const ZArrayT<K>& array) {
        if (!add(array)) ZError::fail();
    }

    bool contains(const K& value) const { return values.haskey(value); }
    /// True if the value is there afterwards.
    bool add(const K& value) { return values.add(value); }
    /// All of them, or none.
    bool add(const ZArrayT<K>& array) {
        const uint before = count();
        for (const K& value : array)
            if (!add(value)) {
                while (count() > before) removeIndex(count() - 1);
                return false;
            }
        return true;
    }
    /// False if the value isn't there.
    bool remove(const K& value) { return values.remove(value); }
    bool removeIndex(uint index) { return values.removeIndex(index); }
    /// The position of a value; -1 if it isn't there.
    int find(const K& value) const { return values.find(value); }

    uint count() const { return values.count(); }
    bool isEmpty() const { return values.isEmpty(); }
    /// An index out of range ends the process.
    const K& key(uint index) const { return values.key(index); }
    const K& operator[](uint index) const { return values.key(index); }
    /// Walks the values by position; valid until the set is written.
    class iterator {
    public:
        iterator(const ZHashSetT& set, uint index) : set(&set), at(index) {}
        uint index() const { return at; }
        const K& operator*() const { return set->key(at); }
        const K* operator->() const { return &set->key(at); }
        iterator& operator++() {
            ++at;
            return *this;
        }
        bool operator==(const iterator& other) const { return at == other.at; }

    private:
        const ZHashSetT* set;
        uint at;
    };
    iterator begin() const { return {*this, 0}; }
    iterator end() const { return {*this, count()}; }

    void clear() { values.clear(); }
    /// Value by value in ascending order; then the larger set is the greater.
    int compare(const ZHashSetT& other) const { return values.compare(other.values); }
    bool sort(bool ascending = true) { return values.sort(ascending); }
    uint capacity() const { return values.capacity(); }
    bool expand(uint more) { return values.expand(more); }
    bool trim() { return values.trim(); }

    int refcount() const { return values.refcount(); }
    bool isDetached() const { return values.isDetached(); }
    bool detach() { return values.detach(); }

private:
    ZHashMapT<K, SetItem> values;
};
