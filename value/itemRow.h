#pragma once

#include "core/forward.h"
#include "object/forward.h"
#include "text/forward.h"
#include "value/forward.h"

namespace orv {

/// Values of one type at equal distances, as any container holds its items: lent for as long as their block is held and
/// not written. What containers make of their items in a row stands here once. A value is looked for as the exact order
/// finds it equal: reals to the last bit, but for -0 and 0. Positions are -1 where nothing is found.
struct ORV_API ItemRow {
    ZMetaType* type = nullptr; ///< null: bytes
    const byte* first = nullptr;
    uint stride = 0;
    uint size = 0;
    uint count = 0;

    const byte* at(uint index) const { return first + size_t(index) * stride; }
    bool has(int index) const { return index >= 0 && uint(index) < count; }
    /// Null out of range.
    const void* item(int index) const { return has(index) ? at(uint(index)) : nullptr; }
    /// What the item points to, where items are pointers.
    const void* target(int index) const;
    /// The null variant out of range, and for bytes.
    ZVariant variant(int index) const;
    /// Of an instance its own type, which may be derived.
    ZMetaType* typeAt(int index) const;

    // Search

    int find(const void* item, int start) const;
    int find(const ZVariant& value, int start) const;
    /// Halves the way in a row that is in the exact order.
    int findSorted(const ZVariant& value) const;
    /// The same in one ordered by a method with two arguments that answers as `compare` does.
    int findPosition(const ZVariant& value, const ZMethodRef& method, bool ascending) const;
    int findPointer(const void* pointer) const;
    /// `sorted`: whether this row is in the exact order.
    bool containsAll(const ItemRow& other, bool sorted) const;
    bool containsAny(const ItemRow& other, bool sorted) const;
    /// Adds the positions of items that mean nothing: null pointers, empty texts, zeros. False without memory.
    bool nulls(ZArrayT<int>& indexes) const;

    // Comparison

    /// As the type compares values, item by item, then by the count. Both rows are of one type.
    int compare(const ItemRow& other) const;
    int compare(const ItemRow& other, const ZMethodRef& method) const;
    /// See `ZVariant::matchValue`; false for rows of bytes.
    bool match(const ItemRow& other, real tolerance) const;
    uint hash() const;

    // Order: the positions of the items, equal ones in the order of the row. False without memory.

    bool order(int* positions, bool ascending) const;
    bool order(int* positions, const ZMethodRef& method, bool ascending) const;

    /// What lies between two rows, of which one may be empty: `put` gets each item, and ends the walk by false.
    static bool blend(const ItemRow& a, const ItemRow& b, const ZBlendPos& pos,
                      bool (*put)(void* user, const ZVariant& item), void* user);
    static uint blendCount(const ItemRow& a, const ItemRow& b, const ZBlendPos& pos);
    /// Separated by blanks.
    ZString text() const;
};

/// Sorts items that stand side by side, by the exact order, if that takes no call to anybody: numbers and names.
/// `done` tells whether there was memory.
ORV_API bool sortInPlace(const ZMetaType* type, void* items, uint count, bool& done);
/// Makes of positions those among `count` that aren't listed, ascending; what is out of range counts for nothing.
/// False without memory.
ORV_API bool invertPositions(ZArrayT<int>& indexes, uint count);
/// The positions that an array of integers lists; false for what is none, and without memory.
ORV_API bool readPositions(const ZVArray& numbers, ZArrayT<int>& indexes);

} // namespace orv
