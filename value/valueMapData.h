#pragma once

#include "core/ZCompactRBMap.h"
#include "value/itemType.h"
#include "value/namePlaces.h"
#include "value/valueMap.h"

namespace orv {

/// The data of a map whose types are known at run time. An item is the head of all items, the hash of its key, then a
/// selector as key, or a key of any type, or how often a set's value was added; and the value, which in a set is the
/// key. Types are kept alive by the handle. Names are found by an index of their own; the tree of a map of names is
/// built only for those who ask for it. Items come and go by the operations of this class.
class ValueMapData final : public ZCompactRBMap {
public:
    using enum MapForm;
    struct Node : ZCompactRBItem {
        uint hash;
    };
    /// Where the parts of an item stand.
    struct Layout {
        uint key, value, size;
    };
    struct Types {
        MapForm form;
        ZMetaType *key, *value;    ///< null for bytes
        uint keyBytes, valueBytes; ///< count where there is no type
    };

    ValueMapData(const Types& types, uint capacity, int16 expand, uint hashBits, uint load);
    /// A copy, with `withRoom` for as many items; raises a failure without memory.
    ValueMapData(const ValueMapData& other, bool withRoom);
    ~ValueMapData() override { clear(); }
    /// False for types that can't be held.
    static bool layout(const Types& types, Layout& places);

    MapForm form() const { return types.form; }
    uint keySize() const { return types.keyBytes; }
    uint valueSize() const { return types.valueBytes; }
    const Types& typesOf() const { return types; }
    byte* bytes(uint index) const { return reinterpret_cast<byte*>(itemStart(index)); }
    byte* key(uint index) const { return bytes(index) + at.key; }
    byte* value(uint index) const { return bytes(index) + at.value; }
    /// How often the value of a set was added.
    uint& usage(uint index) const { return *reinterpret_cast<uint*>(bytes(index) + sizeof(Node)); }
    uint hashAt(uint index) const { return static_cast<Node*>(itemStart(index))->hash; }

    const byte* valueIn(const ZCompactRBItem* item) const { return part(item, at.value); }
    bool sameTypes(const ValueMapData& other) const {
        return types.form == other.types.form && types.key == other.types.key && types.value == other.types.value &&
               at.size == other.at.size;
    }

    const byte* keyIn(const ZCompactRBItem* item) const { return part(item, at.key); }
    static uint hashOf(const Types& types, const void* key);
    static int orderOf(const Types& types, const void* a, const void* b);
    uint keyHash(const void* key) const { return hashOf(types, key); }
    int orderKeys(const void* a, const void* b) const { return orderOf(types, a, b); }
    /// The position of a key, or -1. No lock, see `seek`.
    int find(const void* key) const {
        return types.form == Named ? findName(static_cast<const ZSelector*>(key)->key()) : findKey(key);
    }
    int findName(uint id) const {
        const auto table = names.built();
        return ORV_LIKELY(table) ? table->find(id) : lookForName(id);
    }
    /// The value under a name; null if there is none.
    const byte* valueOf(uint id) const {
        const auto table = names.built();
        if (ORV_UNLIKELY(!table)) return lookForValue(id);
        const int found = table->find(id);
        return found < 0 ? nullptr : value(uint(found));
    }
    /// Builds a node in `place`, which has room for one; false, with nothing built, if that fails.
    bool build(byte* place, const void* key, const void* value) const;
    /// Gives up what a node holds.
    void endNode(byte* place) const;
    /// Takes a node over by its bytes, at the end. False when there is no memory: the node is still the caller's.
    bool take(const byte* node, bool link);
    /// Swaps a node with the item at a position, which it replaces under its own key.
    void exchangeItem(uint index, byte* node);
    void removeAt(uint index);
    /// Removes the items at positions in ascending order, each named once.
    void removeAll(const int* positions, uint many);
    /// Moves the items from `index` on out; their nodes belong to somebody else now.
    void forgetFrom(uint index);
    /// Drops what finds items by their keys: it is built again by the next lookup.
    void dropIndexes();
    /// Works the hashes out anew, after keys have changed.
    void rehash();
    /// Before an item is added that isn't to be found: those that were looked for before have an index then.
    void indexWhatWasFound() const {
        if (toolkit::load(searched)) refreshTree();
    }
    /// Total orders of items: by key, of names by their texts, then by value; by value.
    static int byKey(const void* data, const ZCompactRBItem* a, const ZCompactRBItem* b);
    static int byValue(const void* data, const ZCompactRBItem* a, const ZCompactRBItem* b);

protected:
    bool initItem(ZCompactRBItem* item) override;
    void freeItem(ZCompactRBItem* item) override { endNode(reinterpret_cast<byte*>(item)); }
    bool copyItem(ZCompactRBItem* to, const ZCompactRBItem* from) override;
    int compareItem(const ZCompactRBItem* a, const ZCompactRBItem* b) const override;
    int compareItemKey(const ZCompactRBItem* a, const ZCompactRBItem* b) const override;
    int compareItemValue(const ZCompactRBItem* a, const ZCompactRBItem* b) const override;
    int compareKey(const ZCompactRBItem* item, const void* key) const override;
    int compareValue(const ZCompactRBItem* item, const void* value) const override;
    uint hashKey(const void* key) const override { return keyHash(key); }
    uint hashValue(const void* value) const override;
    uint hashItem(const ZCompactRBItem* item) const override { return static_cast<const Node*>(item)->hash; }

private:
    static const byte* part(const ZCompactRBItem* item, uint offset) {
        return reinterpret_cast<const byte*>(item) + offset;
    }
    int lookForName(uint id) const;
    const byte* lookForValue(uint id) const;
    int findKey(const void* key) const;
    uint nameAt(uint index) const { return reinterpret_cast<const ZSelector*>(key(index))->key(); }
    int orderItemValues(const ZCompactRBItem* a, const ZCompactRBItem* b) const;

    Types types;
    Layout at;
    mutable NamePlaces names;
    mutable byte searched = 0; ///< whether a key was looked for without a tree
};

} // namespace orv
