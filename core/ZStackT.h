#pragma once

#include "core/ZArrayT.h"

/// An array used last in, first out. Sharing, failures and threads are as for `ZArrayT`.
template <class T> class ZStackT {
public:
    using ZRelocatable = void;

    ZStackT() = default;
    ZStackT(uint capacity, int16 expand) : items(capacity, expand) {}
    /// The last of the items is the top.
    template <class U>
    requires std::is_same_v<U, T> ZStackT(const U* values, uint count) : items(values, count) {}

    uint count() const { return items.count(); }
    bool isEmpty() const { return items.isEmpty(); }
    /// Null in an empty stack.
    const T* top() const { return items.isEmpty() ? nullptr : items.end() - 1; }
    /// For writing; null also without memory to detach.
    T* top() { return items.isEmpty() ? nullptr : items.entry(items.count() - 1); }
    /// From the bottom.
    const T& operator[](uint index) const { return items[index]; }
    const T* begin() const { return items.begin(); }
    const T* end() const { return items.end(); }
    const ZArrayT<T>& array() const { return items; }
    bool contains(const T& value) const { return items.contains(value); }
    int compare(const ZStackT& other) const { return items.compare(other.items); }

    bool push(const T& value) { return items.append(value); }
    /// False for an empty stack, and without memory to detach.
    bool pop() { return !items.isEmpty() && items.remove(items.count() - 1); }
    /// The same, moving the item to `into`.
    bool pop(T& into) {
        T* last = top();
        if (!last) return false;
        T taken(std::move(*last));
        bool done = pop();
        into = std::move(taken);
        return done;
    }
    void clear() { items.clear(); }

    int refcount() const { return items.refcount(); }
    bool isDetached() const { return items.isDetached(); }
    bool detach() { return items.detach(); }

private:
    ZArrayT<T> items;
};
