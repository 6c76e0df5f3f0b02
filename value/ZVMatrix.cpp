#include "value/ZVMatrix.h"

#include "core/ZPtrKey.h"
#include "object/ZMetaType.h"
#include "text/ZBlendPos.h"
#include "value/itemType.h"

#include <algorithm>

using namespace orv;

ZVMatrix::ZVMatrix(ZMetaType* type, int columns, int rows) : items(type) {
    if (!setSize(columns, rows)) ZError::fail();
}
ZVMatrix::ZVMatrix(const ZVMatrix* a, const ZVMatrix* b, const ZBlendPos& pos) {
    if (!blendFrom(a, b, pos)) ZError::fail();
}
void ZVMatrix::swap(ZVMatrix& other) noexcept {
    std::swap(columnCount, other.columnCount);
    std::swap(rowCount, other.rowCount);
    items.swap(other.items);
}
void ZVMatrix::clear() {
    items.clear();
    columnCount = rowCount = 0;
}

// Size

/// Another size: `source(column, row)` gives the raw item for a place, null for a new one.
template <class F> bool ZVMatrix::rebuild(ularge columns, ularge rows, F&& source) {
    constexpr ularge most = ZVArray::itemLimit;
    if (columns > most || rows > most || columns * rows > most) return false;
    const ularge all = columns * rows;
    ZVArray made(getValueType());
    if (all && !getValueType() && (!items.itemSize() || !made.setItemSize(items.itemSize()))) return false;
    if (all && !made.expand(uint(all))) return false;
    for (uint row = 0; row < rows && columns; ++row)
        for (uint column = 0; column < columns; ++column)
            if (const void* item = source(column, row); item ? !made.appendItem(item) : !made.appendNew(1))
                return false;
    items.swap(made);
    columnCount = uint(columns);
    rowCount = uint(rows);
    return true;
}

bool ZVMatrix::setSize(int columns, int rows) {
    if (columns < 0 || rows < 0) return false;
    auto from = [](uint old, uint at, int size) { return size > 1 ? int(ularge(old - 1) * at / uint(size - 1)) : 0; };
    return rebuild(ularge(columns), ularge(rows), [&](uint column, uint row) {
        return isEmpty() ? nullptr
                         : std::as_const(*this).get(from(columnCount, column, columns), from(rowCount, row, rows));
    });
}

/// A row, or a column, more: `added(i)` gives its raw items.
template <class F> bool ZVMatrix::addLine(int index, bool isRow, F&& added) {
    const uint at = uint(std::clamp<large>(index, 0, isRow ? rowCount : columnCount));
    return rebuild(ularge(columnCount) + !isRow, ularge(rowCount) + isRow, [&](uint column, uint row) {
        const uint along = isRow ? row : column;
        if (along == at) return static_cast<const void*>(added(isRow ? column : row));
        const int old = int(along - (along > at));
        return isRow ? std::as_const(*this).get(int(column), old) : std::as_const(*this).get(old, int(row));
    });
}
bool ZVMatrix::addLine(int index, bool isRow, const ZVariant& value) {
    item::Given given(getValueType(), value);
    return given.address() && addLine(index, isRow, [&](uint) { return given.address(); });
}
bool ZVMatrix::addLine(int index, bool isRow, const ZVArray& values) {
    ZVArray line(getValueType());
    if (!line.append(values)) return false;
    if (isEmpty()) {
        ZVMatrix made(getValueType());
        (isRow ? made.columnCount : made.rowCount) = line.count();
        if (!made.addLine(0, isRow, [&](uint i) { return std::as_const(line).get(int(i)); })) return false;
        swap(made);
        return true;
    }
    if (line.count() != (isRow ? columnCount : rowCount)) return false;
    return addLine(index, isRow, [&](uint i) { return std::as_const(line).get(int(i)); });
}
bool ZVMatrix::insertRow(int index, const ZVariant& value) { return addLine(index, true, value); }
bool ZVMatrix::insertRow(int index, const ZVArray& values) { return addLine(index, true, values); }
bool ZVMatrix::insertColumn(int index, const ZVariant& value) { return addLine(index, false, value); }
bool ZVMatrix::insertColumn(int index, const ZVArray& values) { return addLine(index, false, values); }

bool ZVMatrix::removeLine(int index, bool isRow) {
    if (index < 0 || uint(index) >= (isRow ? rowCount : columnCount)) return false;
    return rebuild(columnCount - !isRow, rowCount - isRow, [&](uint column, uint row) {
        uint& along = isRow ? row : column;
        along += along >= uint(index);
        return std::as_const(*this).get(int(column), int(row));
    });
}
bool ZVMatrix::removeRow(int index) { return removeLine(index, true); }
bool ZVMatrix::removeColumn(int index) { return removeLine(index, false); }

// Items

bool ZVMatrix::set(const ZVArray& values) {
    if (values.count() != count()) return false;
    ZVArray made(getValueType());
    if (!made.append(values)) return false;
    items.swap(made);
    return true;
}
bool ZVMatrix::setIdentity() {
    ZMetaType* type = getValueType();
    if (!type) return false;
    // Aside: where one item fails, this matrix is as it was.
    ZVArray made(items);
    for (uint i = 0; i < made.count(); ++i) {
        void* item = made.get(int(i));
        if (!item || !type->setIdentityInstance(item)) return false;
    }
    items.swap(made);
    return true;
}

// Whole

int ZVMatrix::compare(const ZVMatrix& other) const {
    if (int order = ZPtrKey(getValueType()).compare(ZPtrKey(other.getValueType()))) return order;
    if (columnCount != other.columnCount) return columnCount < other.columnCount ? -1 : 1;
    if (rowCount != other.rowCount) return rowCount < other.rowCount ? -1 : 1;
    return items.compare(other.items);
}
bool ZVMatrix::matchValue(const ZVMatrix& other, real tolerance) const {
    return columnCount == other.columnCount && rowCount == other.rowCount && items.matchValue(other.items, tolerance);
}

bool ZVMatrix::blendFrom(const ZVMatrix* a, const ZVMatrix* b, const ZBlendPos& pos) {
    ZVMatrix made;
    if (a && b && a->getValueType() && a->sameType(*b)) {
        auto between = [&](uint first, uint second) {
            const real size = __builtin_ceil(first * (1 - pos.pos()) + second * pos.pos());
            return int(std::clamp<real>(size, std::min(first, second), std::max(first, second)));
        };
        const int columns = between(a->columnCount, b->columnCount), rows = between(a->rowCount, b->rowCount);
        ZVMatrix first(*a), second(*b);
        if (!first.setSize(columns, rows) || !second.setSize(columns, rows)) return false;
        if (!made.items.blendFrom(&first.items, &second.items, pos)) return false;
        made.columnCount = first.columnCount;
        made.rowCount = first.rowCount;
    } else if (const ZVMatrix* nearer = (pos.pos() < 0.5 && a) || !b ? a : b)
        made = *nearer;
    swap(made);
    return true;
}
