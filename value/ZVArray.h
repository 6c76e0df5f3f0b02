#pragma once

#include "core/ZSelector.h"
#include "object/forward.h"
#include "object/typeKinds.h"
#include "text/forward.h"
#include "value/ZVariant.h"
#include "value/containerLocks.h"
#include "value/forward.h"
#include "value/itemRow.h"

/// An array whose type of items is known at run time. Of a reference type it holds values, of a `ZType` class counted
/// pointers to instances; without a type, bytes of one size. One pointer to a counted block, null until it is needed:
/// a copy shares the block, and the first write to a shared one makes an own one. Items are moved by their bytes, and
/// of numbers whole blocks are copied. An array without a type or size takes the type of the first value that is put
/// in.
///
/// Several threads may read and copy an array; whoever writes it has it alone. Operations that answer a bool answer
/// false, with the array as it was, without memory, for an index out of range, and for a value that doesn't convert to
/// the type of the items. A raw item is the address of a value of that type (of a pointer, where items are pointers).
/// Values and items handed in may be the array's own.
class ORV_API ZVArray : public orv::ContainerLocks<ZVArray> {
public:
    using ZRelocatable = void;

    static constexpr uint itemLimit = 0x7FFFFFFF;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the array without items.

    constexpr ZVArray() = default;
    explicit ZVArray(ZMetaType* type);
    ZVArray(ZMetaType* type, uint capacity) : ZVArray(type, capacity, 100) {}
    /// `expand` as for `setExpand`.
    ZVArray(ZMetaType* type, uint capacity, int16 expand);
    /// Copies of `count` items that stand in a row.
    ZVArray(ZMetaType* type, const void* items, int count);
    /// Selectors: the words of a list, or any other text as one selector.
    explicit ZVArray(const ZString& text);
    explicit ZVArray(const char* text);
    /// The array in a variant; the values of a set or map, the instances in an array of these; the words of a text or
    /// selector; any other value as the only item.
    explicit ZVArray(const ZVariant& value);
    explicit ZVArray(const ZVHashSet& values);
    /// See `blendFrom`.
    ZVArray(const ZVArray* a, const ZVArray* b, const ZBlendPos& pos);
    ZVArray(const ZVArray& other);
    ZVArray(ZVArray&& other) noexcept
        : type(std::exchange(other.type, nullptr)), data(std::exchange(other.data, nullptr)),
          typeName(std::move(other.typeName)), kind(std::exchange(other.kind, 0)) {}
    ~ZVArray() { clearAll(); }
    ZVArray& operator=(const ZVArray& other);
    ZVArray& operator=(ZVArray&& other) noexcept;
    void assign(const ZVArray& other) { *this = other; }
    void swap(ZVArray& other) noexcept;

    // Type

    /// Of the items; null for bytes.
    ZMetaType* getValueType() const { return type; }
    /// The name of that type; of an array whose type isn't known, the name that it was given.
    ZSelector getTypeName() const;
    /// For an array without a type: the name of the type that it stands for.
    void setTypeName(const ZSelector& name);
    bool hasType() const { return type != nullptr; }
    bool isType(const ZMetaType* wanted) const;
    bool isType(const ZSelector& name) const;
    bool isSelectorType() const;
    /// Whether the items are pointers to instances of `ZType` classes.
    bool isZType() const;
    /// The type of one item: of an instance its own, which may be derived.
    ZMetaType* typeByIndex(int index) const;
    /// Another type for an array without items; false for one that has any.
    bool setType(ZMetaType* type);
    /// The size of an item of bytes, kept as a multiple of 4 when above 4; for an array without type and items.
    bool setItemSize(uint bytes);
    uint itemSize() const { return data ? data->itemSize : 0; }
    bool endian() const { return data && data->endian; }
    bool setEndian(bool endian);

    // Reading

    uint count() const { return data ? data->count : 0; }
    bool isEmpty() const { return count() == 0; }
    /// Room for so many items.
    uint maxcount() const { return data ? data->capacity : 0; }
    /// A raw item; null out of range.
    const void* get(int index) const { return inRange(index) ? at(uint(index)) : nullptr; }
    const void* constItemPtr(int index) const { return get(index); }
    /// The same to be written; null also without memory to make the block the array's own. Ends `isSorted`.
    void* get(int index);
    /// The address of the value: of what the item points to, where items are pointers.
    const void* valuePtr(int index) const;
    /// The items in a row; null without any.
    const void* values() const { return data ? data->items : nullptr; }
    /// The items as numbers of a C++ type; null without any, and if they aren't of that type.
    template <class T>
    requires std::is_arithmetic_v<T>
    const T* valuesT() const { return data && holds<T>() ? reinterpret_cast<const T*>(data->items) : nullptr; }
    /// The null variant out of range, and for bytes.
    ZVariant variant(int index) const;
    ZVariant entry(int index) const { return variant(index); }

    // Writing

    bool append(const ZVariant& value) { return insert(int(count()), value); }
    /// A number: where the items are of its type, at the cost of storing it.
    template <class T>
    requires std::is_arithmetic_v<T>
    bool append(T value) {
        if (!holds<T>()) return append(ZVariant(value));
        Block* const block = data;
        if (ORV_UNLIKELY(!block || block->count >= block->capacity || !isDetached())) return appendItems(&value, 1);
        const uint all = block->count;
        reinterpret_cast<T*>(block->items)[all] = value;
        block->count = all + 1;
        if (block->sorted) block->sorted = false;
        return true;
    }
    /// The items of another array.
    bool append(const ZVArray& other) { return insertArray(int(count()), other); }
    bool append(const ZVHashSet& values);
    bool append(const ZArrayT<ZVariant>& values) { return insert(int(count()), values); }
    bool append(const ZArrayT<ZSelector>& names);
    bool appendItem(const void* item) { return insertItems(int(count()), item, 1); }
    bool appendItems(const void* items, uint count) { return insertItems(int(this->count()), items, count); }
    /// New items, as their type makes them.
    bool append() { return appendNew(1); }
    bool appendNew(uint count) { return insertNew(int(this->count()), count); }
    bool push(const ZVariant& value) { return append(value); }
    /// Takes the last item; the null variant without any.
    ZVariant pop();
    /// Before the item at an index, which is held within the count.
    bool insert(int index, const ZVariant& value);
    bool insert(int index, const ZArrayT<ZVariant>& values);
    bool insertArray(int index, const ZVArray& other);
    bool insertItem(int index, const void* item) { return insertItems(index, item, 1); }
    bool insertItems(int index, const void* items, uint count);
    bool insertNew(int index, uint count);
    /// Replaces an item.
    bool store(int index, const ZVariant& value);
    bool storeItem(int index, const void* item);
    /// The same, and at the count appends.
    bool set(int index, const ZVariant& value);
    /// What lies of the range within the array. The order of the rest stays, and so does `isSorted`.
    bool remove(int index, int count);
    bool removeIndex(int index) { return inRange(index) && remove(index, 1); }
    /// The first item equal to the value; false if there is none.
    bool removeValue(const ZVariant& value);
    /// Ends the items; type and room stay.
    bool discardItems() { return remove(0, int(count())); }
    /// Drops the block; the type stays.
    void clear();
    /// Drops the type too.
    void clearAll();
    /// New items are made, or the last ones dropped.
    bool setCount(int count);
    /// Room for `count` items in all; items above it are dropped.
    bool setSpace(int count);
    /// How room grows: a percentage of the count; 0 doubles; negative, in steps of that many items.
    bool setExpand(int16 expand);
    int16 expand() const { return data ? data->expand : 100; }
    /// Room for `more` items beyond those in use.
    bool expand(uint more);
    bool trim();
    /// Moves one item; those between shift by one.
    bool changePlace(int from, int to) { return changePlace(from, 1, to); }
    /// Moves `count` items; the first of them stands at `to` then.
    bool changePlace(int from, int count, int to);
    /// Moves the items at these positions, each once, in the order listed.
    bool changePlace(const ZArrayT<int>& from, int to);

    // Search: the position of an item, or -1. Equal are values that an exact order finds equal: reals to the last bit,
    // but for -0 and 0.

    int findValue(const ZVariant& value) const { return findValue(value, 0); }
    /// From an index on.
    int findValue(const ZVariant& value, int start) const { return row().find(value, start); }
    /// Halves the way in a sorted array.
    int findPos(const ZVariant& value) const { return isSorted() ? row().findSorted(value) : row().find(value, 0); }
    int findItem(const void* item, int start = 0) const { return row().find(item, start); }
    /// The item that points to an instance or value.
    int findPointer(const void* pointer) const { return row().findPointer(pointer); }
    bool contains(const ZVariant& value) const { return findPos(value) >= 0; }
    bool containsItem(const void* item) const { return findItem(item) >= 0; }
    /// Whether all items of the other are in this one.
    bool contains(const ZVArray& other) const { return row().containsAll(other.row(), isSorted()); }
    bool contains(const ZVHashSet& other) const;
    /// Whether an item of the other is in this one.
    bool overlapping(const ZVArray& other) const { return row().containsAny(other.row(), isSorted()); }

    // Comparison

    /// By the types' addresses, or their names without types; item by item, as the type compares values (reals that
    /// differ by less than 1e-8 are equal); then by the count. -1, 0 or 1.
    int compare(const ZVArray& other) const;
    /// Item by item, by a method with two arguments that answers as `compare` does; then by the count.
    int compare(const ZVArray& other, const ZMethodRef& method) const { return row().compare(other.row(), method); }
    bool operator==(const ZVArray& other) const { return compare(other) == 0; }
    /// Two raw items.
    int compareValue(const void* a, const void* b) const;
    /// Whether the types are one and the items match one by one, see `ZVariant::matchValue`.
    bool matchValue(const ZVArray& other, real tolerance) const { return row().match(other.row(), tolerance); }
    /// Equal for arrays that compare equal, but for reals that differ by less than 1e-8.
    uint hashKey() const { return row().hash(); }

    // Order

    /// Ascending, by the exact order; equal items keep theirs.
    bool sort();
    /// By a method with two arguments that answers as `compare` does.
    bool sort(const ZMethodRef& method, bool ascending);
    bool isSorted() const { return data && data->sorted; }
    /// The positions of the items in sorted order.
    bool getSortOrder(ZArrayT<int>& order, bool ascending) const;
    /// The position at which a value stands in items sorted by a method, or -1.
    int findPosition(const ZVariant& value, const ZMethodRef& method, bool ascending) const;
    bool reverse();

    // Excerpts: new arrays with the items at the positions listed, in that order. Empty, with a failure raised, without
    // memory.

    /// With a new item for a position out of range.
    ZVArray rearrange(const ZArrayT<int>& order) const;
    /// Without what is out of range.
    ZVArray extract(const ZArrayT<int>& indexes) const;
    ZVArray extract(int index, int count) const;
    /// The positions as an array of integers.
    ZVArray extract(const ZVArray& indexes) const;
    /// The same, taken out of this array.
    ZVArray extractRemove(const ZArrayT<int>& indexes);
    ZVArray extractRemove(int index, int count);
    ZVArray extractRemove(const ZVArray& indexes);
    /// The items at these positions; those out of range count for nothing.
    bool removeItems(const ZArrayT<int>& indexes);
    /// Adds the positions of items that mean nothing: null pointers, empty texts, zeros.
    bool collectNullIndex(ZArrayT<int>& indexes) const { return row().nulls(indexes); }
    /// Makes of a list of positions that of all others, ascending.
    bool invertIndex(ZArrayT<int>& indexes) const { return orv::invertPositions(indexes, count()); }

    // Sharing

    /// Arrays that share the block; 0 without one.
    int refcount() const { return ::refcount(data); }
    bool isDetached() const { return !data || ::refcount(data) < 2; }
    bool detach() { return detach(false); }
    /// With `grow` the own block gets as much room as the shared one has.
    bool detach(bool grow);
    /// Makes what the items hold this array's own too: instances that others hold are replaced by copies. On failure
    /// some of them may have been.
    bool deepDetach();
    bool deepDetach(ZDetachContext* context);
    /// Gives up the block; true if nobody else holds it.
    bool drop();
    /// Items that point to an instance or value point nowhere afterwards.
    bool cleanupPtr(const void* pointer);

    // Blending, text

    /// What lies between two arrays of one type, of which one may be missing: as many items as lie between the two
    /// counts, each blended from the items at its part of both. Arrays of different types: the nearer one.
    bool blendFrom(const ZVArray* a, const ZVArray* b, const ZBlendPos& pos);
    /// The items' texts, separated by blanks.
    ZString toString() const { return row().text(); }
    /// Whether `toString` says all that the items hold: texts, selectors and numbers.
    bool validString() const;

    /// The counted block, null without one.
    const void* block() const { return data; }
    /// The items, lent until the array is written.
    orv::ItemRow row() const {
        if (!data) return {type};
        return {type, data->items, data->itemSize, data->itemSize, data->count};
    }

private:
    struct Block {
        uint count;
        uint capacity;
        uint itemSize;
        int16 expand;
        bool sorted;
        bool endian;
        byte* items;
    };
    static_assert(sizeof(Block) == 24);

    bool inRange(int index) const { return index >= 0 && uint(index) < count(); }
    byte* at(uint index) const { return data->items + size_t(index) * data->itemSize; }
    Block* makeBlock(ularge capacity) const;
    static void freeBlock(ZMetaType* type, Block* block);
    bool changeBlock(ularge capacity);
    bool takeType(ZMetaType* wanted);
    ZVArray likeThis() const;
    bool placeItems(uint index, uint count);
    bool reorder(const int* order);
    template <class F> bool sortBy(F&& order);

    template <class T> bool holds() const { return kindsOf<T>() >> kind & 1; }
    /// The kinds whose values are of a C++ type, as bits.
    template <class T> static constexpr uint kindsOf() {
        using enum orv::TypeKinds::Type;
        if constexpr (std::is_same_v<T, bool>)
            return 1u << Bool;
        else if constexpr (std::is_same_v<T, float>)
            return 1u << Float;
        else if constexpr (std::is_same_v<T, double>)
            return 1u << Double | 1u << Real;
        else if constexpr (std::is_integral_v<T>) {
            constexpr uint withSign = sizeof(T) == 1 ? Char : sizeof(T) == 2 ? Short : sizeof(T) == 4 ? Int : Large;
            return 1u << (withSign + !std::is_signed_v<T>);
        } else
            return 0;
    }

    ZMetaType* type = nullptr;
    Block* data = nullptr;
    ZSelector typeName;
    byte kind = 0; ///< of the type; 0 without one
};
static_assert(sizeof(ZVArray) == 24);
