#include "core/ZPtrKey.h"
#include "core/memsort.h"
#include "object/ZDetachContext.h"
#include "object/ZMethodRef.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"
#include "toolkit/hash.h"
#include "value/ZVArray.h"
#include "value/itemType.h"

#include <algorithm>

using namespace orv;

namespace {

/// What a method that is given two values makes of them.
int askOrder(const ZMethodRef& method, const ZVariant& a, const ZVariant& b) {
    const ZVariant arguments[] = {a, b};
    return method.invoke(arguments, 2).toInt();
}

} // namespace

// Search

int ZVArray::findItem(const void* item) const {
    if (!item) return -1;
    for (uint i = 0, all = count(); i < all; ++i)
        if (item::order(type, at(i), item, data->itemSize) == 0) return int(i);
    return -1;
}
int ZVArray::findValue(const ZVariant& value, int start) const {
    item::Given given(type, value);
    if (!given.address()) return -1;
    for (uint i = uint(std::max(start, 0)), all = count(); i < all; ++i)
        if (item::order(type, at(i), given.address(), data->itemSize) == 0) return int(i);
    return -1;
}
int ZVArray::findPos(const ZVariant& value) const {
    if (!isSorted()) return findValue(value);
    item::Given given(type, value);
    if (!given.address()) return -1;
    uint low = 0, high = count();
    while (low < high) {
        const uint middle = low + (high - low) / 2;
        const int order = item::order(type, at(middle), given.address(), data->itemSize);
        if (order == 0) return int(middle);
        (order < 0 ? low : high) = order < 0 ? middle + 1 : middle;
    }
    return -1;
}
int ZVArray::findPosition(const ZVariant& value, const ZMethodRef& method, bool ascending) const {
    const ZVArray kept(*this);
    uint low = 0, high = kept.count();
    while (low < high) {
        const uint middle = low + (high - low) / 2;
        const int answer = askOrder(method, kept.variant(int(middle)), value);
        if (answer == 0) return int(middle);
        const bool before = (answer < 0) == ascending;
        (before ? low : high) = before ? middle + 1 : middle;
    }
    return -1;
}
int ZVArray::findPointer(const void* pointer) const {
    if (!type || type->kind() != ZMetaType::Pointer) return -1;
    for (uint i = 0, all = count(); i < all; ++i)
        if (valuePtr(int(i)) == pointer) return int(i);
    return -1;
}
bool ZVArray::contains(const ZVArray& other) const {
    for (uint i = 0; i < other.count(); ++i)
        if (type == other.type ? findItem(other.at(i)) < 0 : findValue(other.variant(int(i))) < 0) return false;
    return true;
}
bool ZVArray::overlapping(const ZVArray& other) const {
    for (uint i = 0; i < other.count(); ++i)
        if (type == other.type ? findItem(other.at(i)) >= 0 : findValue(other.variant(int(i))) >= 0) return true;
    return false;
}

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
    const uint mine = count(), others = other.count(), shorter = std::min(mine, others);
    if (data != other.data && shorter) {
        const uint size = data->itemSize;
        if (size != other.data->itemSize) return size < other.data->itemSize ? -1 : 1;
        for (uint i = 0; i < shorter; ++i)
            if (int order = item::compare(type, at(i), other.at(i), size)) return order;
    }
    return (mine > others) - (mine < others);
}

bool ZVArray::matchValue(const ZVArray& other, real tolerance) const {
    if (count() != other.count() || !type || type != other.type) return false;
    for (uint i = 0; i < count(); ++i)
        if (!variant(int(i)).matchValue(other.variant(int(i)), tolerance)) return false;
    return true;
}

uint ZVArray::hashKey() const {
    uint hash = count();
    for (uint i = 0; i < count(); ++i) hash = hash * 31 + item::hash(type, at(i), data->itemSize);
    return hash;
}

// Order

/// The positions of the items by a comparison of two raw items.
template <class F> bool ZVArray::orderBy(int* order, F&& compare) const {
    const uint all = count();
    for (uint i = 0; i < all; ++i) order[i] = int(i);
    if (all < 2) return true;
    auto scratch = static_cast<int*>(__zalloc(all * sizeof(int)));
    if (!scratch) return false;
    struct Context {
        const ZVArray& array;
        F& compare;
    } context{*this, compare};
    auto call = [](const void* a, const void* b, void* user) {
        auto with = static_cast<Context*>(user);
        return int(with->compare(with->array.at(uint(*static_cast<const int*>(a))),
                                 with->array.at(uint(*static_cast<const int*>(b)))));
    };
    mergesort(order, all, sizeof(int), call, &context, scratch);
    zfree(scratch);
    return true;
}

template <class F> bool ZVArray::sortBy(F&& compare) {
    if (count() < 2) return true;
    if (!detach()) return false;
    const uint all = count();
    const size_t size = data->itemSize;
    auto order = static_cast<int*>(__zalloc(all * sizeof(int)));
    auto sorted = order ? static_cast<byte*>(__zalloc(all * size)) : nullptr;
    bool done = false;
    if (sorted) {
        // A comparison that comes back to this array to write it finds the block shared, and leaves it alone.
        const ZVArray kept(*this);
        done = kept.orderBy(order, compare) && data == kept.data;
        for (uint i = 0; done && i < all; ++i) std::memcpy(sorted + i * size, at(uint(order[i])), size);
        if (done) std::memcpy(data->items, sorted, all * size);
    }
    zfree(sorted);
    zfree(order);
    return done;
}

bool ZVArray::sort() {
    const uint size = itemSize();
    if (!sortBy([&](const byte* a, const byte* b) { return item::order(type, a, b, size); })) return false;
    if (data) data->sorted = true;
    return true;
}
bool ZVArray::sort(const ZMethodRef& method, bool ascending) {
    if (!type || !method.isValid()) return false;
    if (!sortBy([&](const byte* a, const byte* b) {
            const int answer = askOrder(method, ZVariant(type, a), ZVariant(type, b));
            return ascending ? answer : (answer < 0) - (answer > 0);
        }))
        return false;
    // Not the order that searches rely on.
    if (data) data->sorted = false;
    return true;
}
bool ZVArray::getSortOrder(ZArrayT<int>& order, bool ascending) const {
    ZArrayT<int> made;
    if (isEmpty()) {
        order = made;
        return true;
    }
    if (!made.setCount(count())) return false;
    const ZVArray kept(*this);
    const uint size = itemSize();
    if (!kept.orderBy(&made[0], [&](const byte* a, const byte* b) {
            const int result = item::order(type, a, b, size);
            return ascending ? result : -result;
        }))
        return false;
    order = std::move(made);
    return true;
}

ZVArray ZVArray::rearrange(const ZArrayT<int>& order) const {
    ZVArray made(type);
    bool done = type ? made.type != nullptr : isEmpty() || made.setItemSize(itemSize());
    done = done && (order.isEmpty() || (!type && isEmpty()) || made.expand(order.count()));
    for (uint i = 0; done && i < order.count() && made.data; ++i)
        done = inRange(order[i]) ? made.appendItem(at(uint(order[i]))) : made.appendNew(1);
    if (!done) {
        made.clear();
        ZError::fail();
    } else if (!type)
        made.typeName = typeName;
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
    ZVArray made(type);
    if (!type && !isEmpty() && !made.setItemSize(itemSize())) ZError::fail();
    if (first < last && !made.appendItems(at(uint(first)), uint(last - first))) ZError::fail();
    return made;
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

bool ZVArray::blend(const ZVArray& a, const ZVArray& b, const ZBlendPos& pos) {
    const uint na = a.count(), nb = b.count();
    const real wanted = __builtin_ceil(na * (1 - pos.pos()) + nb * pos.pos());
    const uint n = na == nb ? na : wanted <= 0 ? 0 : uint(std::min(wanted, real(std::max(na, nb))));
    if (!n) return true;
    // One of them has no items: there is nothing to blend those of the other with.
    if (!na || !nb) {
        const ZVArray& from = na ? a : b;
        return insertItems(0, from.values(), std::min(n, from.count()));
    }
    if (!expand(n)) return false;
    data->expand = a.expand();
    for (uint i = 0; i < n; ++i) {
        const ZVariant first = a.variant(n > 1 ? int(ularge(na - 1) * i / (n - 1)) : 0);
        const ZVariant second = b.variant(n > 1 ? int(ularge(nb - 1) * i / (n - 1)) : 0);
        ZVariant made;
        if (!made.blendFrom(&first, &second, pos) || !append(made)) return false;
    }
    return true;
}

bool ZVArray::blendFrom(const ZVArray* a, const ZVArray* b, const ZBlendPos& pos) {
    ZVArray made;
    if (a && b && a->type && a->type == b->type) {
        if (!made.takeType(a->type) || !made.blend(*a, *b, pos)) return false;
    } else if (const ZVArray* nearer = (pos.pos() < 0.5 && a) || !b ? a : b)
        made = *nearer;
    swap(made);
    return true;
}

// Text

ZString ZVArray::toString() const {
    ZString text;
    for (uint i = 0; i < count(); ++i) {
        if (i) text.append(" ");
        text.append(variant(int(i)).toString());
    }
    return text;
}
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
    // Built aside: where one item fails, this array is as it was.
    ZVArray made(*this);
    if (!made.detach()) return false;
    for (uint i = 0; i < made.count(); ++i)
        if (!item::deepDetach(type, made.at(i), *context)) return false;
    swap(made);
    return true;
}
