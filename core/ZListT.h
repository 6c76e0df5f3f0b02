#pragma once

#include "core/compare.h"
#include "core/construct.h"
#include "core/forward.h"

/// A doubly linked list of heap nodes, owned by the list: a copy copies the nodes. Items stay where they are until they
/// are removed. A writing operation that answers false, for lack of memory, has changed nothing. One thread at a time.
template <class T> class ZListT {
    struct Node {
        Node* next = nullptr;
        Node* prev = nullptr;
        T value;
        explicit Node(const T& value) : value(value) {}
    };

public:
    using ZRelocatable = void;

    /// Walks the items; holds until its item is removed.
    class iterator {
    public:
        iterator() = default;
        const T& operator*() const { return node->value; }
        const T* operator->() const { return &node->value; }
        iterator& operator++() {
            node = node->next;
            return *this;
        }
        iterator& operator--() {
            node = node->prev;
            return *this;
        }
        bool operator==(const iterator& other) const = default;

    private:
        friend ZListT;
        explicit iterator(Node* node) : node(node) {}
        Node* node = nullptr;
    };

    ZListT() = default;
    /// Raises a failure without memory, and is then empty.
    ZListT(const ZListT& other) {
        if (!append(other)) ZError::fail();
    }
    ZListT(const T* items, uint count) {
        if (!append(items, count)) ZError::fail();
    }
    ZListT(ZListT&& other) noexcept : ends(std::exchange(other.ends, {})) {}
    ~ZListT() { clear(); }
    /// Raises a failure without memory, and stays as it was.
    ZListT& operator=(const ZListT& other) {
        if (!assign(other)) ZError::fail();
        return *this;
    }
    ZListT& operator=(ZListT&& other) noexcept {
        ZListT taken(std::move(other));
        std::swap(ends, taken.ends);
        return *this;
    }
    bool assign(const ZListT& other) {
        if (this == &other) return true;
        ZListT copy;
        if (!copy.append(other)) return false;
        std::swap(ends, copy.ends);
        return true;
    }

    // Reading

    bool isEmpty() const { return !ends.first; }
    /// Walks the list.
    uint count() const {
        uint all = 0;
        for (Node* node = ends.first; node; node = node->next) ++all;
        return all;
    }
    /// Null in an empty list.
    const T* first() const { return ends.first ? &ends.first->value : nullptr; }
    const T* last() const { return ends.last ? &ends.last->value : nullptr; }
    iterator begin() const { return iterator(ends.first); }
    iterator end() const { return iterator(); }
    /// The first item that compares equal; `end` if there is none.
    iterator find(const T& value) const {
        Node* node = ends.first;
        while (node && zcompare(node->value, value) != 0) node = node->next;
        return iterator(node);
    }
    bool contains(const T& value) const { return find(value) != end(); }
    /// By the first items that differ, then by the count.
    int compare(const ZListT& other) const {
        Node *mine = ends.first, *others = other.ends.first;
        for (; mine && others; mine = mine->next, others = others->next)
            if (int order = zcompare(mine->value, others->value)) return order;
        return (mine != nullptr) - (others != nullptr);
    }

    // Writing

    /// The item at a place, for writing.
    T& item(iterator place) { return place.node->value; }
    bool append(const T& value) { return link(zmake<Node>(value), nullptr); }
    bool prepend(const T& value) { return link(zmake<Node>(value), ends.first); }
    /// In front of the item at `place`; at `end` it appends.
    bool insert(iterator place, const T& value) { return link(zmake<Node>(value), place.node); }
    bool append(const T* items, uint count) {
        ZListT added;
        for (uint i = 0; i < count; ++i)
            if (!added.append(items[i])) return false;
        join(added);
        return true;
    }
    bool append(const ZListT& other) {
        ZListT added;
        for (Node* node = other.ends.first; node; node = node->next)
            if (!added.append(node->value)) return false;
        join(added);
        return true;
    }
    /// Removes the first item that compares equal; false if there is none.
    bool remove(const T& value) {
        Node* node = find(value).node;
        if (node) drop(node);
        return node != nullptr;
    }
    /// Removes an item of this list; answers the place of the one behind it.
    iterator remove(iterator place) {
        iterator next(place.node->next);
        drop(place.node);
        return next;
    }
    /// Removes the first item; false in an empty list.
    bool pop() {
        if (!ends.first) return false;
        drop(ends.first);
        return true;
    }
    /// The same, moving the item to `into`.
    bool pop(T& into) {
        Node* node = ends.first;
        if (!node) return false;
        unlink(node);
        into = std::move(node->value);
        zrelease(node);
        return true;
    }
    void clear() {
        for (Node* node = std::exchange(ends, {}).first; node;) zrelease(std::exchange(node, node->next));
    }

private:
    struct Ends {
        Node* first = nullptr;
        Node* last = nullptr;
    };

    bool link(Node* node, Node* before) {
        if (!node) return false;
        node->next = before;
        node->prev = before ? before->prev : ends.last;
        (node->prev ? node->prev->next : ends.first) = node;
        (before ? before->prev : ends.last) = node;
        return true;
    }
    void unlink(Node* node) {
        (node->prev ? node->prev->next : ends.first) = node->next;
        (node->next ? node->next->prev : ends.last) = node->prev;
    }
    void drop(Node* node) {
        unlink(node);
        zrelease(node);
    }
    void join(ZListT& added) {
        if (!added.ends.first) return;
        added.ends.first->prev = ends.last;
        (ends.last ? ends.last->next : ends.first) = added.ends.first;
        ends.last = added.ends.last;
        added.ends = {};
    }

    Ends ends;
};
