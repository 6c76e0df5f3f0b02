#include "core/ZPtrKey.h"
#include "object/ZDetachContext.h"
#include "object/ZMethodRef.h"
#include "text/ZBlendPos.h"
#include "value/ZVArray.h"
#include "value/itemType.h"

#include <algorithm>

using namespace orv;

// Comparison

int ZVArray::compareValue(const void* a, const void* b) const {
    if (a == b) return 0;
    if (!a || !b) return a ? -1 : 1;
    return item::compare(type, a, b, itemSize());
}

int ZVArray::compare(const ZVArray& other) const {
    if (int order = ZPtrKey(type).compare(ZPtrKey(other.type))) return order;
    if (!type)
        if (int order = typeName.compare(other.typeName)) return order;
    return data == other.data ? 0 : row().compare(other.row());
}

bool ZVArray::contains(const ZVHashSet& other) const {
    ZFailGuard guard;
    const ZVArray values(other);
    if (!guard.rose()) return contains(values);
    guard.forget();
    return false;
}

// Order

/// Moves the items of a block that nobody else holds to the order in which positions list them, each once.
bool ZVArray::reorder(const int* order) {
    const uint all = count();
    const size_t size = data->itemSize;
    auto moved = static_cast<byte*>(__zalloc(all * size));
    if (!moved) return false;
    for (uint i = 0; i < all; ++i) std::memcpy(moved + i * size, at(uint(order[i])), size);
    std::memcpy(data->items, moved, all * size);
    zfree(moved);
    data->sorted = false;
    return true;
}

template <class F> bool ZVArray::sortBy(F&& order) {
    if (!detach()) return false;
    auto positions = static_cast<int*>(__zalloc(count() * sizeof(int)));
    if (!positions) return false;
    // A comparison that comes back to this array to write it finds the block shared, and gets another one.
    ZVArray kept(*this);
    bool done = order(kept.row(), positions) && data == kept.data;
    kept.clear();
    done = done && detach() && reorder(positions);
    zfree(positions);
    return done;
}

bool ZVArray::sort() {
    if (!data) return true;
    if (!detach(true)) return false;
    bool done = true;
    if (count() > 1 && !sortInPlace(type, data->items, count(), done))
        done = sortBy([](const ItemRow& row, int* positions) { return row.order(positions, true); });
    if (done) data->sorted = true;
    return done;
}
bool ZVArray::sort(const ZMethodRef& method, bool ascending) {
    if (!type || !method.isValid()) return false;
    // Not the order that searches rely on.
    return count() < 2 ||
           sortBy([&](const ItemRow& row, int* positions) { return row.order(positions, method, ascending); });
}
bool ZVArray::getSortOrder(ZArrayT<int>& order, bool ascending) const {
    ZArrayT<int> made;
    const ZVArray kept(*this);
    if (!made.setCount(count()) || (count() && !kept.row().order(&made[0], ascending))) return false;
    order = std::move(made);
    return true;
}
int ZVArray::findPosition(const ZVariant& value, const ZMethodRef& method, bool ascending) const {
    const ZVArray kept(*this);
    return kept.row().findPosition(value, method, ascending);
}

// Excerpts

ZVArray ZVArray::rearrange(const ZArrayT<int>& order) const {
    ZFailGuard guard;
    ZVArray made = likeThis();
    bool done = !guard.rose();
    // Bytes without a size can't be made.
    if (type || data) done = done && (order.isEmpty() || made.expand(order.count()));
    for (uint i = 0; done && i < order.count() && made.data; ++i)
        done = inRange(order[i]) ? made.appendItem(at(uint(order[i]))) : made.appendNew(1);
    if (done) return made;
    made.clear();
    if (!guard.rose()) ZError::fail();
    return made;
}
ZVArray ZVArray::extract(const ZArrayT<int>& indexes) const {
    ZArrayT<int> inside;
    for (int index : indexes)
        if (inRange(index) && !inside.append(index)) {
            ZError::fail();
            return ZVArray(type);
        }
    return rearrange(inside);
}
ZVArray ZVArray::extract(int index, int count) const {
    const large all = large(this->count());
    const large first = std::clamp<large>(index, 0, all), last = std::clamp<large>(large(index) + count, first, all);
    ZFailGuard guard;
    ZVArray made = likeThis();
    if (!guard.rose() && first < last && !made.appendItems(at(uint(first)), uint(last - first))) ZError::fail();
    return made;
}
ZVArray ZVArray::extract(const ZVArray& indexes) const {
    ZArrayT<int> read;
    if (readPositions(indexes, read)) return extract(read);
    ZError::fail();
    return ZVArray(type);
}
ZVArray ZVArray::extractRemove(const ZArrayT<int>& indexes) {
    ZFailGuard guard;
    ZVArray made = extract(indexes);
    if (guard.rose() || removeItems(indexes)) return made;
    made.clear();
    ZError::fail();
    return made;
}
ZVArray ZVArray::extractRemove(int index, int count) {
    ZFailGuard guard;
    ZVArray made = extract(index, count);
    if (guard.rose() || remove(index, count)) return made;
    made.clear();
    ZError::fail();
    return made;
}
ZVArray ZVArray::extractRemove(const ZVArray& indexes) {
    ZArrayT<int> read;
    if (readPositions(indexes, read)) return extractRemove(read);
    ZError::fail();
    return ZVArray(type);
}
bool ZVArray::reverse() {
    const uint all = count();
    if (all < 2) return true;
    if (!detach()) return false;
    const size_t size = data->itemSize;
    for (uint low = 0, high = all - 1; low < high; ++low, --high) std::swap_ranges(at(low), at(low) + size, at(high));
    data->sorted = false;
    return true;
}

// Blending

bool ZVArray::blendFrom(const ZVArray* a, const ZVArray* b, const ZBlendPos& pos) {
    ZVArray made;
    if (a && b && a->type && a->type == b->type) {
        const ZVArray keptA(*a), keptB(*b);
        const ItemRow first = keptA.row(), second = keptB.row();
        const uint all = ItemRow::blendCount(first, second, pos);
        if (!made.takeType(a->type) || (all && !made.changeBlock(all))) return false;
        if (made.data) made.data->expand = a->expand();
        auto put = [](void* array, const ZVariant& item) { return static_cast<ZVArray*>(array)->append(item); };
        if (!ItemRow::blend(first, second, pos, put, &made)) return false;
    } else if (const ZVArray* nearer = (pos.pos() < 0.5 && a) || !b ? a : b)
        made = *nearer;
    swap(made);
    return true;
}

// Text

bool ZVArray::validString() const {
    return type && (type->kind() == ZMetaType::Selector || type->kind() == ZMetaType::String ||
                    (type->kind() >= ZMetaType::Bool && type->kind() <= ZMetaType::Real));
}

// Sharing

bool ZVArray::deepDetach() {
    ZDetachContext* context = zmake<ZDetachContext>();
    const bool done = context && deepDetach(context);
    zrelease(context);
    return done;
}
bool ZVArray::deepDetach(ZDetachContext* context) {
    if (!context) return deepDetach();
    if (item::plain(type)) return detach();
    if (!detach(true)) return false;
    if (!data) return true;
    // In place, so that this array's references don't count as somebody else's; who comes back to write it meanwhile
    // gets another block.
    Block* const held = retain(data);
    bool done = true;
    for (uint i = 0; done && i < held->count; ++i)
        done = item::deepDetach(type, held->items + size_t(i) * held->itemSize, *context);
    done = done && data == held;
    freeBlock(type, held);
    return done;
}
bool ZVArray::drop() {
    const bool last = isDetached();
    clear();
    return last;
}
bool ZVArray::cleanupPtr(const void* pointer) {
    if (!pointer || findPointer(pointer) < 0) return true;
    if (!detach()) return false;
    ZVArray ended(type);
    // Ended together at the end, when this array is whole again.
    if (!ended.expand(count())) return false;
    for (uint i = 0; i < count(); ++i)
        if (row().target(int(i)) == pointer) {
            std::memcpy(ended.at(ended.data->count++), at(i), sizeof pointer);
            std::memset(at(i), 0, sizeof pointer);
        }
    data->sorted = false;
    return true;
}
