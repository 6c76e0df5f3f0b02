#include "value/itemRow.h"

#include "core/ZArrayT.h"
#include "object/ZMethodRef.h"
#include "object/kindValues.h"
#include "text/ZBlendPos.h"
#include "text/ZString.h"
#include "value/ZVArray.h"
#include "value/itemType.h"
#include "value/numberKinds.h"

#include <algorithm>

namespace orv {
namespace {

template <class T> T load(const void* place) {
    T value;
    std::memcpy(&value, place, sizeof value);
    return value;
}
/// As the exact order has it: not-a-number equals itself.
template <class T> bool same(T a, T b) { return a == b || (a != a && b != b); }

/// The first position for which `before` doesn't hold.
template <class F> uint firstNot(uint count, F&& before) {
    uint low = 0, high = count;
    while (low < high) {
        const uint middle = low + (high - low) / 2;
        (before(middle) ? low : high) = before(middle) ? middle + 1 : middle;
    }
    return low;
}

/// Looks many values up in a row: of more than a few in their exact order, which is made for the purpose.
class Lookup {
public:
    Lookup(const ItemRow& row, uint asked, bool sorted) : row(row), sorted(sorted) {
        constexpr uint few = 16;
        if (sorted || row.count <= few || asked <= few) return;
        if (!places.setCount(row.count) || !row.order(&places[0], true)) places.clear();
    }
    /// Whether the item of another row is in this one.
    bool has(const ItemRow& other, uint index) const {
        if (row.type == other.type) return hasItem(other.at(index));
        const ZVariant value = other.variant(int(index));
        item::Given given(row.type, value);
        return given.address() && hasItem(given.address());
    }

private:
    bool hasItem(const void* item) const {
        if (!sorted && places.isEmpty()) return row.find(item, 0) >= 0;
        auto at = [&](uint i) { return row.at(sorted ? i : uint(places.data()[i])); };
        const uint place =
            firstNot(row.count, [&](uint i) { return item::order(row.type, at(i), item, row.size) < 0; });
        return place < row.count && item::order(row.type, at(place), item, row.size) == 0;
    }

    const ItemRow& row;
    ZArrayT<int> places;
    bool sorted;
};

} // namespace

const void* ItemRow::target(int index) const {
    const void* raw = item(index);
    return raw && type && type->kind() == ZMetaType::Pointer ? load<const void*>(raw) : raw;
}
ZVariant ItemRow::variant(int index) const { return has(index) && type ? ZVariant(type, at(uint(index))) : ZVariant(); }
ZMetaType* ItemRow::typeAt(int index) const {
    if (!type || !has(index)) return nullptr;
    if (type->isVariant()) return reinterpret_cast<const ZVariant*>(at(uint(index)))->type();
    return item::instances(type) ? variant(index).mainType() : type;
}

// Search

int ItemRow::find(const void* item, int start) const {
    if (!item) return -1;
    const uint from = uint(std::max(start, 0));
    int found = -1;
    if (withNumber(type, [&]<class T>(NumberOf<T>) {
            const T value = load<T>(item);
            for (uint i = from; found < 0 && i < count; ++i)
                if (same(load<T>(at(i)), value)) found = int(i);
        }))
        return found;
    for (uint i = from; i < count; ++i)
        if (item::order(type, at(i), item, size) == 0) return int(i);
    return -1;
}
int ItemRow::find(const ZVariant& value, int start) const {
    item::Given given(type, value);
    return find(given.address(), start);
}
int ItemRow::findSorted(const ZVariant& value) const {
    item::Given given(type, value);
    const void* wanted = given.address();
    if (!wanted) return -1;
    const uint place = firstNot(count, [&](uint i) { return item::order(type, at(i), wanted, size) < 0; });
    return place < count && item::order(type, at(place), wanted, size) == 0 ? int(place) : -1;
}
int ItemRow::findPosition(const ZVariant& value, const ZMethodRef& method, bool ascending) const {
    uint low = 0, high = count;
    while (low < high) {
        const uint middle = low + (high - low) / 2;
        const int answer = item::askOrder(method, variant(int(middle)), value);
        if (answer == 0) return int(middle);
        const bool before = (answer < 0) == ascending;
        (before ? low : high) = before ? middle + 1 : middle;
    }
    return -1;
}
int ItemRow::findPointer(const void* pointer) const {
    if (!type || type->kind() != ZMetaType::Pointer) return -1;
    for (uint i = 0; i < count; ++i)
        if (load<const void*>(at(i)) == pointer) return int(i);
    return -1;
}
bool ItemRow::containsAll(const ItemRow& other, bool sorted) const {
    const Lookup lookup(*this, other.count, sorted);
    for (uint i = 0; i < other.count; ++i)
        if (!lookup.has(other, i)) return false;
    return true;
}
bool ItemRow::containsAny(const ItemRow& other, bool sorted) const {
    const Lookup lookup(*this, other.count, sorted);
    for (uint i = 0; i < other.count; ++i)
        if (lookup.has(other, i)) return true;
    return false;
}
bool ItemRow::nulls(ZArrayT<int>& indexes) const {
    for (uint i = 0; i < count; ++i) {
        const bool null = type ? type->isNullData(at(i)) : isNullKind(ZMetaType::Void, at(i), size);
        if (null && !indexes.append(int(i))) return false;
    }
    return true;
}

// Comparison

int ItemRow::compare(const ItemRow& other) const {
    const uint shorter = std::min(count, other.count);
    if (first != other.first && shorter) {
        if (size != other.size) return size < other.size ? -1 : 1;
        int order = 0;
        const bool known = withNumber(type, [&]<class T>(NumberOf<T>) {
            for (uint i = 0; !order && i < shorter; ++i) {
                const T a = load<T>(at(i)), b = load<T>(other.at(i));
                if (a == b) continue;
                // Types find reals equal that differ by little.
                order = std::is_floating_point_v<T> ? compareKind(type->kind(), &a, &b, sizeof a) : a < b ? -1 : 1;
            }
        });
        for (uint i = 0; !known && !order && i < shorter; ++i) order = item::compare(type, at(i), other.at(i), size);
        if (order) return order;
    }
    return (count > other.count) - (count < other.count);
}
int ItemRow::compare(const ItemRow& other, const ZMethodRef& method) const {
    for (uint i = 0, shorter = std::min(count, other.count); i < shorter; ++i)
        if (int order = item::askOrder(method, variant(int(i)), other.variant(int(i)))) return order < 0 ? -1 : 1;
    return (count > other.count) - (count < other.count);
}
bool ItemRow::match(const ItemRow& other, real tolerance) const {
    if (count != other.count || !type || type != other.type) return false;
    for (uint i = 0; i < count; ++i)
        if (!variant(int(i)).matchValue(other.variant(int(i)), tolerance)) return false;
    return true;
}
uint ItemRow::hash() const {
    uint hash = count;
    for (uint i = 0; i < count; ++i) hash = hash * 31 + item::hash(type, at(i), size);
    return hash;
}

// Blending, text

uint ItemRow::blendCount(const ItemRow& a, const ItemRow& b, const ZBlendPos& pos) {
    if (a.count == b.count) return a.count;
    const real wanted = __builtin_ceil(a.count * (1 - pos.pos()) + b.count * pos.pos());
    return wanted >= 1 ? uint(std::min(wanted, real(std::max(a.count, b.count)))) : 0;
}
bool ItemRow::blend(const ItemRow& a, const ItemRow& b, const ZBlendPos& pos, bool (*put)(void*, const ZVariant&),
                    void* user) {
    const uint n = blendCount(a, b, pos);
    // A row without items has nothing to blend with.
    auto resampled = [n](const ItemRow& row, uint i) {
        return row.variant(n > 1 ? int(ularge(row.count - 1) * i / (n - 1)) : 0);
    };
    for (uint i = 0; i < n; ++i) {
        const ZVariant first = a.count ? resampled(a, i) : ZVariant(), second = b.count ? resampled(b, i) : ZVariant();
        ZVariant made;
        if (!made.blendFrom(a.count ? &first : nullptr, b.count ? &second : nullptr, pos) || !put(user, made))
            return false;
    }
    return true;
}
ZString ItemRow::text() const {
    ZString text;
    for (uint i = 0; i < count; ++i) {
        if (i) text.append(" ");
        text.append(variant(int(i)).toString());
    }
    return text;
}

// Positions

bool invertPositions(ZArrayT<int>& indexes, uint count) {
    ZArrayT<int> listed(indexes), rest;
    if (!listed.sort() || !rest.reserve(count)) return false;
    uint next = 0;
    for (int i = 0; uint(i) < count; ++i) {
        while (next < listed.count() && listed.data()[next] < i) ++next;
        if (next < listed.count() && listed.data()[next] == i) continue;
        if (!rest.append(i)) return false;
    }
    indexes = std::move(rest);
    return true;
}
bool readPositions(const ZVArray& numbers, ZArrayT<int>& indexes) {
    ZArrayT<int> read;
    for (uint i = 0; i < numbers.count(); ++i) {
        int index;
        if (!numbers.variant(int(i)).toInt(&index) || !read.append(index)) return false;
    }
    indexes = std::move(read);
    return true;
}

int item::askOrder(const ZMethodRef& method, const ZVariant& a, const ZVariant& b) {
    const ZVariant arguments[] = {a, b};
    return method.invoke(arguments, 2).toInt();
}

} // namespace orv
