#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "object/forward.h"
#include "text/forward.h"
#include "value/ZVariant.h"
#include "value/containerLocks.h"
#include "value/forward.h"

namespace orv {

class ValueMapData;
/// What the items of a map are found by: names, keys of any type, or, in a set, their values.
enum class MapForm : byte { Named, Keyed, Set };

/// What the maps and the set whose types are known at run time have in common: one pointer to a counted ordered map,
/// null until something is put in. A copy shares it; the first write to a shared one makes an own one. Items stand in
/// the order in which they were added, and are found by their keys; a few of them are found without an index. Of a
/// reference type a map holds values, of a `ZType` class counted pointers to instances; a map without a type takes that
/// of the first value that is put in.
///
/// Several threads may read and copy a map; whoever writes it has it alone. Operations that answer a bool answer false,
/// with the map as it was, without memory, for an index out of range or a key that isn't there, and for a value that
/// doesn't convert to the type of the map. A raw item is the address of a value of that type (of a pointer, where items
/// are pointers). Values and items handed in may be the map's own.
class ORV_API ValueMap : public ContainerLocks<ValueMap> {
public:
    using ZRelocatable = void;

    static constexpr uint itemLimit = 0x7FFFFFFF;

    // Type of the values

    ZMetaType* getValueType() const { return type; }
    /// The name of that type; where it isn't known, the name that the map was given.
    ZSelector getTypeName() const;
    void setTypeName(const ZSelector& name);
    bool hasType() const { return type != nullptr; }
    bool isType(const ZMetaType* wanted) const;
    bool isType(const ZSelector& name) const;
    bool isSelectorType() const;
    /// Whether the values are pointers to instances of `ZType` classes.
    bool isZType() const;

    // By position

    uint count() const;
    bool isEmpty() const { return count() == 0; }
    /// Room for so many items.
    uint maxcount() const;
    /// A raw value; null out of range.
    const void* valuePtr(int index) const;
    /// The same to be written, null also without memory to make the map's data its own.
    void* valuePtr(int index);
    /// The null variant out of range, and for bytes.
    ZVariant entry(int index) const;
    /// All values, in order. Empty, with a failure raised, without memory.
    ZVArray values() const;
    /// The position of the first item with that value, or -1.
    int findValue(const ZVariant& value) const { return findValue(value, 0); }
    int findValue(const ZVariant& value, int start) const;
    bool containsValue(const ZVariant& value) const { return findValue(value) >= 0; }
    bool removeIndex(int index);
    /// From a raw value's bytes: the position of the first item with it, or -1.
    int findValueItem(const void* item, int start = 0) const;
    /// The items at these positions, in one pass.
    bool removeItems(const ZArrayT<int>& indexes);
    /// What lies of the range within the map; false for a negative count.
    bool removeItems(int index, int count);
    /// The first item of that value.
    bool removeValue(const ZVariant& value);
    /// Removes the items whose value is null; answers whether there were any.
    bool removeNull();

    // Order

    /// Moves one item; those between shift by one.
    bool changePlace(int from, int to);
    /// By value; equal ones keep their order.
    bool sortByValue(bool ascending);
    /// By a method with two values as arguments that answers as `compare` does.
    bool sort(const ZMethodRef& method, bool ascending);
    /// The positions of the items sorted by key, of names by their texts, then by value; or by a method, as by `sort`.
    bool getSortOrder(ZArrayT<int>& order, bool ascending) const;
    bool getSortOrder(ZArrayT<int>& order, const ZMethodRef& method, bool ascending) const;
    /// The first form, into `order`, which has room for all items.
    bool sortOrder(int* order, bool ascending) const;

    // Whole

    /// Drops the items; the type stays.
    void clear();
    int refcount() const { return ::refcount(block()); }
    bool isDetached() const { return refcount() < 2; }
    bool detach() { return detach(false); }
    /// With `grow` the own data get as much room as the shared ones have.
    bool detach(bool grow);
    /// Gives up the data; true if nobody else holds them.
    bool drop();
    /// Two raw values, as their type compares them; null comes last.
    int compareValue(const void* a, const void* b) const;
    /// Makes what the values hold this map's own too.
    bool deepDetach();
    bool deepDetach(ZDetachContext* context);

    // Room and hash, see `ZCompactRBMap`

    int16 expand() const;
    bool setExpand(int16 expand);
    /// Room for `more` items.
    bool expand(uint more);
    /// Room for `count` items in all; items above it are dropped.
    bool setSpace(int count);
    bool trim();
    bool endian() const;
    bool setEndian(bool endian);
    uint hashbits() const;
    bool setHashbits(uint bits);
    uint autohash() const;
    bool setAutohash(uint load);
    int maxCollisions() const;
    /// Lets items be found that were added without a link.
    bool rebuildTree();
    /// The neighbour of an item in the order of its tree, or -1.
    int predecessor(int index) const;
    bool checkTree(const char* label) const;
    void logTree(const char* label) const;
    bool log_verify(const char* label) const;

    /// The counted block, null without one.
    const void* block() const;

protected:
    explicit constexpr ValueMap(MapForm form) : form(form) {}
    ValueMap(const ValueMap& other);
    ValueMap(ValueMap&& other) noexcept
        : type(std::exchange(other.type, nullptr)), data(std::exchange(other.data, nullptr)),
          typeName(std::move(other.typeName)), form(other.form) {}
    ValueMap(MapForm form, ZMetaType* type);
    ~ValueMap() { reset(); }
    void take(const ValueMap& other);
    void take(ValueMap&& other) noexcept;
    void swap(ValueMap& other) noexcept;
    /// Drops items and type.
    void reset();
    bool inRange(int index) const { return index >= 0 && uint(index) < count(); }
    /// The type for a map that has none, and no items; null is fine.
    bool takeType(ZMetaType* wanted);
    bool changeType(ZMetaType* wanted);
    /// New data, which the caller owns; null without memory or for types that can't be held.
    ValueMapData* make(ZMetaType* keyType, uint keyBytes, uint valueBytes, uint capacity, int16 expand, uint hashBits,
                       uint load) const;
    /// Takes new data instead of the old; false for null.
    bool setData(ValueMapData* made);
    /// Data for the first item.
    bool makeData();
    /// Makes the data this map's own, or makes it.
    bool own();
    /// Sets the value of a key, which `search` looks for.
    bool putItem(const void* key, const void* item, bool search, bool link);
    bool storeItem(int index, const void* item);
    bool storeValue(int index, const ZVariant& value);
    /// Another key for the item at a position; false if it is there already.
    bool renameItem(int index, const void* key);
    /// Moves the items of another map of the same types, whose data nobody shares, to the end of this one. Of a key
    /// that is there the value goes over, or, with `counts`, its usage is added. False, with both as they were, without
    /// memory.
    bool absorb(ValueMap& from, bool counts);
    bool sameTypes(const ValueMap& other) const;
    bool findNulls(ZArrayT<int>& nulls) const;
    template <class F> bool bySort(const ZMethodRef& method, F&& run) const;
    int findRaw(const void* key) const;
    const void* rawKey(int index) const;
    bool containsItems(const ValueMap& other) const;
    bool matchItems(const ValueMap& other, real tolerance) const;
    int compareMaps(const ValueMap& other) const;
    uint hashItems() const;
    bool sortByKey(bool ascending);
    int moveTarget(int from, int to, bool behind) const;

    ZMetaType* type = nullptr;
    ValueMapData* data = nullptr;
    ZSelector typeName;
    MapForm form;
};

} // namespace orv
