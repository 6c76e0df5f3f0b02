#pragma once

#include "value/ZVArray.h"

/// A small table of values of one type that is known at run time: an array, row by row. See `ZVArray` for its items.
/// Copies share the items until one side writes. Several threads may read and copy a matrix; whoever writes it has it
/// alone. Operations that answer a bool answer false, with the matrix as it was, without memory, for a place out of
/// range, a negative size, and a value that doesn't convert to the type.
class ORV_API ZVMatrix {
public:
    using ZRelocatable = void;

    // Lifetime. A constructor without memory raises `ZError::fail` and leaves the matrix without items.

    constexpr ZVMatrix() = default;
    explicit ZVMatrix(ZMetaType* type) : items(type) {}
    /// With items as their type makes them.
    ZVMatrix(ZMetaType* type, int columns, int rows);
    /// See `blendFrom`.
    ZVMatrix(const ZVMatrix* a, const ZVMatrix* b, const ZBlendPos& pos);
    void assign(const ZVMatrix& other) { *this = other; }
    void swap(ZVMatrix& other) noexcept;

    ZMetaType* getValueType() const { return items.getValueType(); }
    bool sameType(const ZVMatrix& other) const { return getValueType() == other.getValueType(); }

    // Size

    uint columns() const { return columnCount; }
    uint rows() const { return rowCount; }
    uint count() const { return items.count(); }
    bool isEmpty() const { return items.isEmpty(); }
    /// Another size with the old content spread over it: the item in a corner stays in that corner, those between come
    /// from the place that lies as far in. A matrix without items gets new ones.
    bool setSize(int columns, int rows);
    /// A row before that at an index, which is held within the rows.
    bool insertRow(int index, const ZVariant& value);
    /// One item for each column. A matrix without items gets as many columns as there are values.
    bool insertRow(int index, const ZVArray& values);
    bool insertColumn(int index, const ZVariant& value);
    bool insertColumn(int index, const ZVArray& values);
    bool removeRow(int index);
    bool removeColumn(int index);
    /// Drops the items, with the size; the type stays.
    void clear();

    // Items

    /// A raw item; null out of range.
    const void* get(int column, int row) const { return items.get(place(column, row)); }
    /// The same to be written; null also without memory to make the items the matrix's own.
    void* get(int column, int row) { return items.get(place(column, row)); }
    /// The null variant out of range.
    ZVariant variant(int column, int row) const { return items.variant(place(column, row)); }
    bool set(int column, int row, const ZVariant& value) { return items.store(place(column, row), value); }
    bool setItem(int column, int row, const void* item) { return items.storeItem(place(column, row), item); }
    /// Row by row.
    const ZVArray& values() const { return items; }
    /// Replaces all items; as many as there are, of the matrix's type.
    bool set(const ZVArray& values);
    /// Every item becomes the one that changes nothing in a blend.
    bool setIdentity();

    // Search: `row * columns + column` of an item, or -1. See `ZVArray` for what is equal.

    int findValue(const ZVariant& value) const { return items.findValue(value); }
    int findValue(const ZVariant& value, int start) const { return items.findValue(value, start); }
    int findPos(const ZVariant& value) const { return items.findPos(value); }
    bool contains(const ZVariant& value) const { return items.contains(value); }
    /// Whether all items of the other are in this one.
    bool contains(const ZVMatrix& other) const { return items.contains(other.items); }

    // Whole

    /// By the types' addresses, columns, rows, then item by item. -1, 0 or 1.
    int compare(const ZVMatrix& other) const;
    bool operator==(const ZVMatrix& other) const { return compare(other) == 0; }
    /// Whether types and sizes are the same and the items match one by one, see `ZVariant::matchValue`.
    bool matchValue(const ZVMatrix& other, real tolerance) const;
    uint hashKey() const { return items.hashKey() * 31 + columnCount; }
    /// What lies between two matrices of one type, of which one may be missing: both are brought to the size between
    /// theirs. Matrices of different types: the nearer one.
    bool blendFrom(const ZVMatrix* a, const ZVMatrix* b, const ZBlendPos& pos);
    int refcount() const { return items.refcount(); }
    bool isDetached() const { return items.isDetached(); }
    bool detach() { return items.detach(); }
    bool deepDetach() { return items.deepDetach(); }
    bool deepDetach(ZDetachContext* context) { return items.deepDetach(context); }

private:
    int place(int column, int row) const {
        return column >= 0 && uint(column) < columnCount && row >= 0 && uint(row) < rowCount
                   ? int(uint(row) * columnCount + uint(column))
                   : -1;
    }
    template <class F> bool rebuild(ularge columns, ularge rows, F&& source);
    template <class F> bool addLine(int index, bool row, F&& added);
    bool addLine(int index, bool row, const ZVariant& value);
    bool addLine(int index, bool row, const ZVArray& values);
    bool removeLine(int index, bool row);

    uint columnCount = 0, rowCount = 0;
    ZVArray items;
};
