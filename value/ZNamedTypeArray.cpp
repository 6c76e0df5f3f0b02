#include "value/ZNamedTypeArray.h"

#include "object/names.h"
#include "text/ZBlendPos.h"
#include "value/ZContentMap.h"
#include "value/ZVSelectMap.h"
#include "value/itemType.h"

#include <algorithm>

using namespace orv;

ZNamedTypeArray::ZNamedTypeArray(uint capacity, int16 expand) {
    if (!items.setExpand(expand) || !items.reserve(capacity)) {
        clear();
        ZError::fail();
    }
}
ZNamedTypeArray::ZNamedTypeArray(const ZVariant& value) {
    const void* held = value.getPtr();
    if (!held) return;
    const ZSelector name = value.typeName();
    if (name == zsel<"ZNamedTypeArray">() || name == zsel<"ZContentMap">()) {
        assign(*static_cast<const ZNamedTypeArray*>(held));
        return;
    }
    bool done = value.typeIndexLabel() == ZMetaType::SelectMap;
    if (done) {
        const ZVSelectMap map(*static_cast<const ZVSelectMap*>(held));
        for (uint i = 0; done && i < map.count(); ++i) {
            const ZType* instance;
            const ZVariant item = map.entry(int(i));
            done = instanceIn(item, instance) && append(*map.keyPtr(int(i)), instance);
        }
    }
    if (!done) {
        clear();
        ZError::fail();
    }
}
ZNamedTypeArray::ZNamedTypeArray(const ZNamedTypeArray* a, const ZNamedTypeArray* b, const ZBlendPos& pos) {
    if (!blendFrom(a, b, pos)) ZError::fail();
}

// By name

bool ZNamedTypeArray::insert(int index, const ZSelector& name, const ZType* instance) {
    return insertEntry(index, Item(name, instance), instance);
}
bool ZNamedTypeArray::set(const ZSelector& name, const ZType* instance) {
    const int at = findKey(name);
    if (at < 0) return append(name, instance);
    // The keys stay as they are.
    const bool sorted = isSorted();
    return storeEntry(at, Item(name, instance), instance) && items.setSorted(sorted);
}
bool ZNamedTypeArray::set(const ZSelector& name, const ZVariant& value) {
    const ZType* instance;
    return instanceIn(value, instance) && set(name, instance);
}
bool ZNamedTypeArray::copy(const ZSelector& from, const ZSelector& to) {
    const int at = findKey(from);
    return at >= 0 && set(to, get(at));
}
/// A copy to look many names up in: of more than a few in the order of the keys, if there is memory.
ZNamedTypeArray ZNamedTypeArray::forSearch(uint asked) const {
    constexpr uint few = 8;
    ZNamedTypeArray copy(*this);
    if (!isSorted() && count() > few && asked > few) copy.sort();
    return copy;
}
bool ZNamedTypeArray::hasKeys(const ZArrayT<ZSelector>& names) const {
    const ZNamedTypeArray in = forSearch(names.count());
    for (const ZSelector& name : names)
        if (!in.haskey(name)) return false;
    return true;
}
bool ZNamedTypeArray::hasKeys(const ZNamedTypeArray& other) const {
    const ZNamedTypeArray in = forSearch(other.count());
    for (const Item& item : other.items)
        if (!in.haskey(item.key)) return false;
    return true;
}
int ZNamedTypeArray::binarySearch(const ZSelector& name) const {
    const Item* first = items.data();
    uint low = 0, high = count();
    if (high == 1) return first->key == name ? 0 : -1;
    while (low < high) {
        const uint middle = low + (high - low) / 2;
        if (first[middle].key.compare(name) < 0)
            low = middle + 1;
        else
            high = middle;
    }
    return low < count() && first[low].key == name ? int(low) : -1;
}
int ZNamedTypeArray::linearSearch(const ZSelector& name) const {
    for (uint i = 0; i < count(); ++i)
        if (items.data()[i].key == name) return int(i);
    return -1;
}

// By position

bool ZNamedTypeArray::setKey(int index, const ZSelector& name) {
    return inRange(index) && storeEntry(index, Item(name, get(index)), get(index));
}
ZArrayT<ZSelector> ZNamedTypeArray::keys() const {
    ZArrayT<ZSelector> made;
    bool done = made.reserve(count());
    for (uint i = 0; done && i < count(); ++i) done = made.append(items.data()[i].key);
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}
ZHashSetT<ZSelector> ZNamedTypeArray::keySet() const {
    ZHashSetT<ZSelector> made;
    for (const Item& item : items)
        if (!made.add(item.key)) {
            made.clear();
            ZError::fail();
            break;
        }
    return made;
}
bool ZNamedTypeArray::sort() {
    return items.sort([](const Item& a, const Item& b) { return a.key.compare(b.key); });
}

// Comparison

int ZNamedTypeArray::compare(const ZNamedTypeArray& other) const {
    const ItemRow mine = row(), others = other.row();
    const uint shorter = std::min(mine.count, others.count);
    if (items.data() != other.items.data())
        for (uint i = 0; i < shorter; ++i) {
            if (int order = items.data()[i].key.compare(other.items.data()[i].key)) return order;
            if (int order = item::compare(mine.type, mine.at(i), others.at(i), mine.size)) return order;
        }
    return (mine.count > others.count) - (mine.count < others.count);
}
bool ZNamedTypeArray::matchValue(const ZNamedTypeArray& other, real tolerance) const {
    for (uint i = 0; i < std::min(count(), other.count()); ++i)
        if (!(items.data()[i].key == other.items.data()[i].key)) return false;
    return TypeItems::matchValue(other, tolerance);
}
bool ZNamedTypeArray::contains(const ZNamedTypeArray& other) const {
    const ZNamedTypeArray in = forSearch(other.count());
    const ItemRow mine = in.row(), others = other.row();
    for (uint i = 0; i < others.count; ++i) {
        const int at = in.findKey(other.items.data()[i].key);
        if (at < 0 || item::order(mine.type, mine.at(uint(at)), others.at(i), mine.size) != 0) return false;
    }
    return true;
}
uint ZNamedTypeArray::hashKey() const {
    uint hash = TypeItems::hashKey();
    for (const Item& item : items) hash = hash * 31 + item.key.hashKey();
    return hash;
}

// Blending

/// Blends the instances of `from`, in order; with `second` those of names that the other array doesn't have.
static bool blendNames(ZNamedTypeArray& made, const ZNamedTypeArray& from, const ZNamedTypeArray& other,
                       const ZBlendPos& pos, bool second) {
    for (uint i = 0; i < from.count(); ++i) {
        const ZSelector& name = *from.keyPtr(int(i));
        const int at = other.findKey(name);
        if (second && at >= 0) continue;
        const ZVariant own = from.entry(int(i)), met = other.entry(at);
        ZVariant value;
        if (!value.blendFrom(second ? nullptr : &own, second ? &own : at >= 0 ? &met : nullptr, pos.fieldBlend(name)))
            return false;
        const ZType* instance;
        if (!instanceIn(value, instance) || !made.append(name, instance)) return false;
    }
    return true;
}
bool ZNamedTypeArray::blendFrom(const ZNamedTypeArray* a, const ZNamedTypeArray* b, const ZBlendPos& pos) {
    ZNamedTypeArray made;
    if (a && b) {
        const ZNamedTypeArray first(*a), second(*b);
        const ZNamedTypeArray inFirst = first.forSearch(b->count()), inSecond = second.forSearch(a->count());
        if (!blendNames(made, first, inSecond, pos, false) || !blendNames(made, second, inFirst, pos, true))
            return false;
        if (!made.isEmpty() && !made.setExpand(a->expand())) return false;
    } else if (const ZNamedTypeArray* given = a ? a : b)
        made = *given;
    swap(made);
    return true;
}

int ZContentMap::compare(const ZContentMap& other, const ZSelector& name) const {
    const ZType *mine = get(name), *others = other.get(name);
    return item::compare(getValueType(), &mine, &others, sizeof mine);
}
