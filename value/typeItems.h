#pragma once

#include "core/ZArrayT.h"
#include "core/ZRetainPtrT.h"
#include "core/ZSelector.h"
#include "object/ZType.h"
#include "value/ZVariant.h"
#include "value/containerLocks.h"
#include "value/itemRow.h"

namespace orv {

/// An instance in an array, alone or under a name.
struct ORV_API TypeItem {
    using ZRelocatable = void;

    TypeItem() = default;
    explicit TypeItem(const ZType* instance) : type(instance) {}

    ZRetainPtrT<ZType> type;
};
struct ORV_API NamedTypeItem {
    using ZRelocatable = void;

    NamedTypeItem() = default;
    explicit NamedTypeItem(const ZType* instance) : type(instance) {}
    NamedTypeItem(const ZSelector& key, const ZType* instance) : key(key), type(instance) {}

    ZSelector key;
    ZRetainPtrT<ZType> type;
};

/// The type of pointers to instances, by which arrays of these compare and convert their items; null before the
/// library's packages are open.
ORV_API ZMetaType* instancePointerType();
/// The instance that a variant holds, null for the null variant; false for a variant that holds something else.
ORV_API bool instanceIn(const ZVariant& value, const ZType*& instance);

/// What the arrays of instances have in common: one pointer to a counted block, null until something is put in. Each
/// item is a counted pointer, which may be null. A copy shares the block; the first write to a shared one makes an own
/// one, with the same instances. Items are found and ordered as their class compares them.
///
/// Several threads may read and copy an array; whoever writes it has it alone. Operations that answer a bool answer
/// false, with the array as it was, without memory, for an index out of range, for an instance on its way out and for a
/// value that is no instance. Those that answer an array answer an empty one, with a failure raised, without memory.
template <class Self, class Entry> class ORV_API TypeItems : public ContainerLocks<Self> {
public:
    using ZRelocatable = void;

    static constexpr uint itemLimit = detail::arrayLimit;

    void assign(const Self& other) { items = other.items; }
    void swap(Self& other) noexcept { std::swap(items, other.items); }

    // Type of the items

    ZMetaType* getValueType() const { return instancePointerType(); }
    ZSelector getTypeName() const;
    bool hasType() const { return getValueType() != nullptr; }
    bool isType(const ZMetaType* wanted) const;
    bool isType(const ZSelector& name) const;
    bool isSelectorType() const { return false; }
    bool isZType() const { return true; }
    /// Of the instance at an index.
    ZMetaType* typeByIndex(int index) const { return row().typeAt(index); }

    // Reading

    uint count() const { return items.count(); }
    bool isEmpty() const { return items.isEmpty(); }
    uint maxcount() const { return items.capacity(); }
    /// Borrowed; null out of range too.
    ZType* get(int index) const { return inRange(index) ? items.data()[index].type.get() : nullptr; }
    const void* valuePtr(int index) const { return get(index); }
    /// The address of the pointer; null out of range.
    const void* constItemPtr(int index) const { return row().item(index); }
    /// The entries in a row.
    const void* values() const { return items.data(); }
    ZVariant variant(int index) const { return row().variant(index); }
    ZVariant entry(int index) const { return variant(index); }
    /// The instances as an array of the general kind.
    ZVArray array() const;

    // Writing

    bool append(const ZType* instance) { return insert(int(count()), instance); }
    bool append(const ZVariant& value) { return insert(int(count()), value); }
    bool append(const Self& other) { return insertArray(int(count()), other); }
    bool push(const ZVariant& value) { return append(value); }
    /// Takes the last item; the null variant without any.
    ZVariant pop();
    /// Before the item at an index, which is held within the count.
    bool insert(int index, const ZType* instance);
    bool insert(int index, const ZVariant& value);
    bool insertArray(int index, const Self& other);
    /// Replaces an instance.
    bool store(int index, const ZType* instance);
    bool store(int index, const ZVariant& value);
    /// The same, and at the count appends.
    bool set(int index, const ZVariant& value);
    /// What lies of the range within the array. The order of the rest stays, and so does `isSorted`.
    bool remove(int index, int count);
    bool removeIndex(int index) { return inRange(index) && remove(index, 1); }
    bool removeValue(const ZVariant& value) { return removeIndex(findValue(value)); }
    /// The items at these positions; those out of range count for nothing.
    bool removeItems(const ZArrayT<int>& indexes);
    /// Drops the items; the room stays.
    bool discardItems() { return items.remove(0, count()); }
    /// Drops the block.
    void clear() { items.clear(); }
    void clearAll() { clear(); }
    /// Null items are added, or the last ones dropped.
    bool setCount(int count) { return count >= 0 && items.setCount(uint(count)); }
    /// Room for `count` items in all; items above it are dropped.
    bool setSpace(int count);
    /// How room grows: a percentage of the count; 0 doubles; negative, in steps of that many items.
    bool setExpand(int16 expand) { return items.setExpand(expand); }
    int16 expand() const { return items.expandRule(); }
    /// Room for `count` items beyond those in use: no more than that with `exact`, else by the rule of growth.
    bool expand(uint count) { return expand(count, false); }
    bool expand(uint count, bool exact);
    bool trim() { return items.trim(); }
    /// Moves one item; those between shift by one.
    bool changePlace(int from, int to) { return changePlace(from, 1, to); }
    /// Moves `count` items; the first of them stands at `to` then.
    bool changePlace(int from, int count, int to);
    /// Moves the items at these positions, each once, in the order listed.
    bool changePlace(const ZArrayT<int>& from, int to);

    // Search: the position of an item, or -1

    int findValue(const ZVariant& value) const { return findValue(value, 0); }
    int findValue(const ZVariant& value, int start) const { return row().find(value, start); }
    /// The instance itself.
    int findPointer(const void* instance) const { return row().findPointer(instance); }
    int findPos(const ZVariant& value) const { return findValue(value); }
    /// The position at which a value stands in items sorted by a method.
    int findPosition(const ZVariant& value, const ZMethodRef& method, bool ascending) const;
    bool contains(const ZVariant& value) const { return findPos(value) >= 0; }
    /// Whether all items of the other are in this one.
    bool contains(const Self& other) const { return row().containsAll(other.row(), false); }
    /// Whether an item of the other is in this one.
    bool overlapping(const Self& other) const { return row().containsAny(other.row(), false); }

    // Comparison

    /// Item by item, as their class compares them, then by the count. -1, 0 or 1.
    int compare(const Self& other) const { return row().compare(other.row()); }
    /// By a method with two arguments that answers as `compare` does.
    int compare(const Self& other, const ZMethodRef& method) const { return row().compare(other.row(), method); }
    bool operator==(const Self& other) const { return static_cast<const Self*>(this)->compare(other) == 0; }
    bool matchValue(const Self& other, real tolerance) const { return row().match(other.row(), tolerance); }
    uint hashKey() const { return row().hash(); }

    // Order

    /// Ascending; equal items keep their order.
    bool sort() { return sortByValue(true); }
    bool sortByValue(bool ascending);
    bool sort(const ZMethodRef& method, bool ascending);
    bool getSortOrder(ZArrayT<int>& order, bool ascending) const;
    bool reverse();

    // Excerpts: new arrays with the items at the positions listed, in that order.

    /// With a null item for a position out of range.
    Self rearrange(const ZArrayT<int>& order) const;
    Self extract(const ZArrayT<int>& indexes) const;
    Self extract(int index, int count) const;
    /// The positions as an array of integers.
    Self extract(const ZVArray& indexes) const;
    /// The same, taken out of this array.
    Self extractRemove(const ZArrayT<int>& indexes);
    Self extractRemove(int index, int count);
    Self extractRemove(const ZVArray& indexes);
    /// Adds the positions of null items.
    bool collectNullIndex(ZArrayT<int>& indexes) const { return row().nulls(indexes); }
    /// Makes of a list of positions that of all others, ascending.
    bool invertIndex(ZArrayT<int>& indexes) const { return invertPositions(indexes, count()); }

    // Sharing

    int refcount() const { return items.refcount(); }
    bool isDetached() const { return items.isDetached(); }
    bool detach() { return items.detach(); }
    /// With `grow` the own block gets as much room as the shared one has.
    bool detach(bool grow) { return detach(false, grow); }
    /// With `deep`, copies replace the instances that others hold too, and of a shared block all.
    bool detach(bool deep, bool grow);
    /// Makes what the instances hold this array's own too: those that others hold are replaced by copies. On failure
    /// some of them may have been.
    bool deepDetach();
    bool deepDetach(ZDetachContext* context);
    /// Gives up the block; true if nobody else holds it.
    bool drop();
    /// Items that point to an instance point nowhere afterwards.
    bool cleanupPtr(const void* instance);

    // Text

    /// The items' texts, separated by blanks.
    ZString toString() const;
    /// Whether `toString` says all that the items hold, which it never does of instances.
    bool validString() const { return false; }

    /// The counted block, null without one.
    const void* block() const {
        return items.data() ? reinterpret_cast<const byte*>(items.data()) - detail::arrayType<Entry>.offset : nullptr;
    }
    /// The instances, lent until the array is written.
    ItemRow row() const {
        if (items.isEmpty()) return {getValueType()};
        return {getValueType(), reinterpret_cast<const byte*>(&items.data()->type), sizeof(Entry), sizeof(ZType*),
                items.count()};
    }

protected:
    bool inRange(int index) const { return index >= 0 && uint(index) < count(); }
    bool insertEntry(int index, const Entry& entry, const ZType* wanted);
    bool storeEntry(int index, const Entry& entry, const ZType* wanted);
    /// Takes the items in another order.
    bool reorder(const ZArrayT<int>& order);
    bool pick(const ZArrayT<int>& order, ZArrayT<Entry>& picked) const;
    bool inside(const ZArrayT<int>& indexes, ZArrayT<int>& kept) const;
    Self failed() const;

    ZArrayT<Entry> items;
};

} // namespace orv
