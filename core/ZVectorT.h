#pragma once

#include "core/ZArrayT.h"

/// A sequence whose length is fixed when it is made; the items can be written, not added or removed. Sharing, failures
/// and threads are as for `ZArrayT`.
template <class T> class ZVectorT {
public:
    using ZRelocatable = void;
    using iterator = const T*;

    ZVectorT() = default;
    /// `count` items made as `T()`. Raises a failure without memory, and is then empty.
    explicit ZVectorT(uint count) {
        if (!items.setCount(count)) ZError::fail();
    }
    template <class U>
    requires std::is_same_v<U, T> ZVectorT(const U* values, uint count) : items(values, count) {}

    uint count() const { return items.count(); }
    bool isEmpty() const { return items.isEmpty(); }
    iterator begin() const { return items.begin(); }
    iterator end() const { return items.end(); }
    /// As for `ZArrayT`.
    const T& operator[](uint index) const { return items[index]; }
    T& operator[](uint index) { return items[index]; }
    const T* entry(uint index) const { return items.entry(index); }
    T* entry(uint index) { return items.entry(index); }
    bool set(uint index, const T& value) { return items.set(index, value); }
    int indexOf(const T& value) const { return items.indexOf(value); }
    bool contains(const T& value) const { return items.contains(value); }
    int compare(const ZVectorT& other) const { return items.compare(other.items); }

    int refcount() const { return items.refcount(); }
    bool isDetached() const { return items.isDetached(); }
    bool detach() { return items.detach(); }

private:
    ZArrayT<T> items;
};
