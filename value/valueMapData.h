#pragma once

#include "core/ZCompactRBMap.h"
#include "value/itemType.h"
#include "value/valueMap.h"

namespace orv {

/// The data of a map whose types are known at run time. An item is the head of all items, the hash of its key, then a
/// selector as key, or a key of any type, or how often a set's value was added; and the value, which in a set is the
/// key. Types are kept alive by the handle.
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
    /// A copy; raises a failure without memory.
    explicit ValueMapData(const ValueMapData& other);
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
    int orderItemValues(const ZCompactRBItem* a, const ZCompactRBItem* b) const;
    /// The position of a key, or -1. No lock, see `seek`.
    int find(const void* key) const;
    /// Builds a node in `place`, which has room for one; false, with nothing built, if that fails.
    bool build(byte* place, const void* key, const void* value) const;
    /// Gives up what a node holds.
    void endNode(byte* place) const;
    /// Takes a node over by its bytes, at the end. False when there is no memory: the node is still the caller's.
    bool take(const byte* node, bool link);
    /// Works the hashes out anew, after keys have changed.
    void rehash();
    using ZCompactRBMap::forgetItems;

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

    Types types;
    Layout at;
};

} // namespace orv
