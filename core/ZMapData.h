#pragma once

#include "core/ZCompactRBMap.h"
#include "core/ZMapItems.h"

namespace orv::detail {

/// The head of the items of all template maps: the tree's links and the key's hash.
struct MapNode : ZCompactRBItem {
    uint hash = 0;
};

/// What the maps of all item types have in common. It is held by a handle of one pointer and copied on write, so that
/// whoever changes it has it alone.
class ORV_API MapBase : public ZCompactRBMap {
public:
    using ZCompactRBMap::ZCompactRBMap;

    /// Takes a node over by its bytes, at the end. False when there is no memory: the node is still the caller's.
    bool take(const MapNode& node);
    using ZCompactRBMap::forgetItems;

protected:
    uint hashItem(const ZCompactRBItem* item) const override { return static_cast<const MapNode*>(item)->hash; }
    /// Up to so many items are looked through rather than indexed.
    static constexpr uint scanned = 8;
};
/// Ends the process: a position out of range.
[[noreturn]] ORV_API void mapIndexFailed(const char* file, int line);

/// A map of items `I` with keys `K`.
template <class K, class I> class MapDataT final : public MapBase {
    static_assert(zrelocatable<I>, "map items move by their bytes");

public:
    struct Node : MapNode {
        template <class... A> explicit Node(const A&... parts) : item(parts...) {}
        I item;
    };
    static_assert(alignof(Node) <= 16);

    MapDataT() : MapDataT(0, 100, 0) {}
    MapDataT(uint capacity, int16 expand, uint hashBits)
        : MapBase(capacity < itemLimit ? int(capacity) : int(itemLimit), sizeof(Node), expand, hashBits, 0) {}
    /// A copy; raises a failure, and is empty, when there is no memory. With `allocateCapacity`, it has the other's
    /// room.
    MapDataT(const MapDataT& other, bool allocateCapacity) {
        if (!assign(other, allocateCapacity)) ZError::fail();
    }
    ~MapDataT() override { clear(); }

    static decltype(auto) keyOf(const I& item) {
        if constexpr (requires { item.key(); })
            return item.key();
        else
            return (item);
    }
    Node& node(uint index) const { return *static_cast<Node*>(itemStart(index)); }

    /// The position of the item with that key; -1 if there is none. No virtual call, and no lock: see `seek`.
    int find(const K& key) const {
        const uint hash = zhashkey(key);
        int at = seek(hash, [&](const ZCompactRBItem* item) { return order(item, key); });
        return ORV_LIKELY(at != noTree) ? at : findUnindexed(key, hash);
    }

protected:
    void freeItem(ZCompactRBItem* item) override { static_cast<Node*>(item)->item.~I(); }
    bool copyItem(ZCompactRBItem* to, const ZCompactRBItem* from) override {
        auto target = static_cast<Node*>(to);
        auto source = static_cast<const Node*>(from);
        ZFailGuard guard;
        target->hash = source->hash;
        ::new (&target->item) I(source->item);
        if (!guard.rose()) return true;
        target->item.~I();
        guard.forget();
        return false;
    }
    int compareItem(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        const I &first = static_cast<const Node*>(a)->item, &second = static_cast<const Node*>(b)->item;
        int result = zcompare<K>(keyOf(first), keyOf(second));
        if constexpr (zcomparable<I>)
            if (result == 0) return zcompare(first, second);
        return result;
    }
    int compareItemKey(const ZCompactRBItem* a, const ZCompactRBItem* b) const override {
        return order(a, keyOf(static_cast<const Node*>(b)->item));
    }
    int compareKey(const ZCompactRBItem* item, const void* key) const override {
        return order(item, *static_cast<const K*>(key));
    }
    uint hashKey(const void* key) const override { return zhashkey(*static_cast<const K*>(key)); }

private:
    static int order(const ZCompactRBItem* item, const K& key) {
        return zcompare<K>(keyOf(static_cast<const Node*>(item)->item), key);
    }
    /// A small map is looked through; a larger one gets its index first, if there is memory for it.
    [[gnu::noinline]] int findUnindexed(const K& key, uint hash) const {
        const uint n = count();
        if (n > scanned) {
            refreshTree();
            int at = seek(hash, [&](const ZCompactRBItem* item) { return order(item, key); });
            if (at != noTree) return at;
        }
        for (uint i = 0; i < n; ++i)
            if (node(i).hash == hash && order(itemStart(i), key) == 0) return int(i);
        return -1;
    }
};

/// Exchanges the items of two nodes, by their bytes.
template <class Data> inline void swapItems(typename Data::Node& a, typename Data::Node& b) {
    byte aside[sizeof(a.item)];
    __builtin_memcpy(aside, static_cast<void*>(&a.item), sizeof aside);
    __builtin_memcpy(static_cast<void*>(&a.item), static_cast<void*>(&b.item), sizeof aside);
    __builtin_memcpy(static_cast<void*>(&b.item), aside, sizeof aside);
}

/// A node taken out of a map; it is destroyed when the map is whole again, and may even be gone.
template <class Data> class TakenNode {
public:
    using Node = typename Data::Node;
    TakenNode(Data& map, uint index) {
        __builtin_memcpy(place, static_cast<void*>(&map.node(index)), sizeof place);
        map.forgetItems(int(index), 1);
    }
    ~TakenNode() { std::launder(reinterpret_cast<Node*>(place))->~Node(); }
    TakenNode(const TakenNode&) = delete;

private:
    alignas(Node) byte place[sizeof(Node)];
};

/// A node on the stack, that a map may take over. Items are built here, so that a failure, or an item handed in that
/// stands in the map itself, meets the map as it was.
template <class Data> class NewNode {
public:
    using Node = typename Data::Node;
    template <class... A> explicit NewNode(const A&... parts) {
        ZFailGuard guard;
        node = ::new (place) Node(parts...);
        node->hash = zhashkey(Data::keyOf(node->item));
        if (!guard.rose()) return;
        guard.forget();
        drop();
    }
    ~NewNode() { drop(); }
    NewNode(const NewNode&) = delete;

    bool whole() const { return node != nullptr; }
    Node& get() const { return *node; }
    /// The map has it now.
    void taken() { node = nullptr; }

private:
    void drop() {
        if (node) node->~Node();
        node = nullptr;
    }

    alignas(Node) byte place[sizeof(Node)] = {};
    Node* node = nullptr;
};

} // namespace orv::detail
