#include "value/ZVSelectMap.h"

#include "core/ZHashSetT.h"
#include "text/ZBlendPos.h"
#include "value/ZVArray.h"
#include "value/valueMapData.h"

#include <algorithm>

using namespace orv;

// Lifetime

ZVSelectMap::ZVSelectMap(ZMetaType* type, uint capacity, int16 expand, uint hashBits) : ZVSelectMap(type) {
    if (type && !create(0, 0, capacity, expand, hashBits, 0)) ZError::fail();
}
ZVSelectMap::ZVSelectMap(const ZVSelectMap* a, const ZVSelectMap* b, const ZBlendPos& pos) : ZVSelectMap() {
    if (!blendFrom(a, b, pos)) ZError::fail();
}
bool ZVSelectMap::init(uint capacity, int16 expand, uint hashBits, uint load, uint valueSize) {
    return create(0, valueSize, capacity, expand, hashBits, load);
}
bool ZVSelectMap::setType(ZMetaType* type) { return changeType(type); }

// By key

int ZVSelectMap::findKey(const ZSelector& key) const { return findRaw(&key); }
bool ZVSelectMap::hasKeys(const ZArrayT<ZSelector>& keys) const {
    for (const ZSelector& key : keys)
        if (!haskey(key)) return false;
    return true;
}
bool ZVSelectMap::hasKeys(const ZVSelectMap& other) const {
    for (uint i = 0; i < other.count(); ++i)
        if (!haskey(*other.keyPtr(int(i)))) return false;
    return true;
}
bool ZVSelectMap::setItem(const ZSelector& key, const void* item) { return putItem(&key, item, true, true); }
bool ZVSelectMap::set(const ZSelector& key, const ZVariant& value) {
    if (!type && !data) {
        ZVSelectMap made(value.type());
        if (!made.type || !made.set(key, value)) return false;
        swap(made);
        return true;
    }
    item::Given given(type, value);
    return setItem(key, given.address());
}
bool ZVSelectMap::setValue(int index, const ZVariant& value) { return storeValue(index, value); }
bool ZVSelectMap::removeKeys(const ZArrayT<ZSelector>& keys) {
    ZArrayT<int> places;
    for (const ZSelector& key : keys)
        if (int at = findKey(key); at >= 0 && !places.append(at)) return false;
    return removeItems(places);
}
bool ZVSelectMap::removeKeys(const ZVSelectMap& other) {
    ZArrayT<int> places;
    for (uint i = 0; i < other.count(); ++i)
        if (int at = findKey(*other.keyPtr(int(i))); at >= 0 && !places.append(at)) return false;
    return removeItems(places);
}
bool ZVSelectMap::copy(const ZSelector& from, const ZSelector& to) {
    const void* value = std::as_const(*this).get(from);
    return value && setItem(to, value);
}
bool ZVSelectMap::rename(const ZSelector& from, const ZSelector& to) { return renameItem(findKey(from), &to); }

// By position

const ZSelector* ZVSelectMap::keyPtr(int index) const { return static_cast<const ZSelector*>(rawKey(index)); }
ZSelector ZVSelectMap::key(int index) const {
    const ZSelector* key = keyPtr(index);
    return key ? *key : ZSelector();
}
ZArrayT<ZSelector> ZVSelectMap::keys() const {
    ZArrayT<ZSelector> made;
    bool done = made.reserve(count());
    for (uint i = 0; done && i < count(); ++i) done = made.append(*keyPtr(int(i)));
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}
ZHashSetT<ZSelector> ZVSelectMap::keySet() const {
    ZHashSetT<ZSelector> made;
    for (uint i = 0; i < count(); ++i)
        if (!made.add(*keyPtr(int(i)))) {
            made.clear();
            ZError::fail();
            break;
        }
    return made;
}

// Order

bool ZVSelectMap::moveBefore(const ZSelector& key, const ZSelector& before) {
    const int from = findKey(key);
    return changePlace(from, moveTarget(from, findKey(before), false));
}
bool ZVSelectMap::moveAfter(const ZSelector& key, const ZSelector& after) {
    const int from = findKey(key);
    return changePlace(from, moveTarget(from, findKey(after), true));
}
bool ZVSelectMap::sort(bool ascending) {
    if (count() < 2) return true;
    if (!detach()) return false;
    auto compare = [](const void* map, const ZCompactRBItem* a, const ZCompactRBItem* b) {
        auto with = static_cast<const ValueMapData*>(map);
        auto first = reinterpret_cast<const ZSelector*>(with->keyIn(a));
        return first->compareStr(*reinterpret_cast<const ZSelector*>(with->keyIn(b)));
    };
    return data->sort(compare, data, ascending);
}
ZVSelectMap ZVSelectMap::rearrange(const ZArrayT<int>& order) const {
    ZVSelectMap made(type);
    bool done = true;
    if (!type && data) done = made.init(0, 100, 0, 0, data->valueSize());
    for (uint i = 0; done && i < order.count(); ++i)
        if (inRange(order[i])) done = made.setItem(*keyPtr(order[i]), valuePtr(order[i]));
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}
ZVSelectMap ZVSelectMap::rearrange(const ZArrayT<ZSelector>& keys) const {
    ZArrayT<int> order;
    for (const ZSelector& key : keys)
        if (!order.append(findKey(key))) {
            ZError::fail();
            return ZVSelectMap(type);
        }
    return rearrange(order);
}

// Whole

bool ZVSelectMap::append(const ZVSelectMap& other) {
    if (other.isEmpty()) return true;
    if (!type && !data) {
        assign(other);
        return true;
    }
    ZVSelectMap made(*this);
    const ZVSelectMap from(other);
    const bool same = type == from.type && (type || (data && data->valueSize() == from.data->valueSize()));
    if (!same && (!type || !from.type)) return false;
    for (uint i = 0; i < from.count(); ++i) {
        const ZSelector& key = *from.keyPtr(int(i));
        if (!(same ? made.setItem(key, from.valuePtr(int(i))) : made.set(key, from.entry(int(i))))) return false;
    }
    swap(made);
    return true;
}
bool ZVSelectMap::contains(const ZVSelectMap& other) const { return containsItems(other); }
bool ZVSelectMap::matchValue(const ZVSelectMap& other, real tolerance) const {
    for (uint i = 0; i < std::min(count(), other.count()); ++i)
        if (!(*keyPtr(int(i)) == *other.keyPtr(int(i)))) return false;
    return matchItems(other, tolerance);
}
uint ZVSelectMap::hashKey() const { return hashItems(); }

/// Blends the values under the keys of `a`, in order; with `second` those of `b` that `a` doesn't have.
static bool blendKeys(ZVSelectMap& made, const ZVSelectMap& a, const ZVSelectMap& b, const ZBlendPos& pos,
                      bool second) {
    const ZVSelectMap &from = second ? b : a, &other = second ? a : b;
    for (uint i = 0; i < from.count(); ++i) {
        const ZSelector& key = *from.keyPtr(int(i));
        const int at = other.findKey(key);
        if (second && at >= 0) continue;
        const ZVariant own = from.entry(int(i)), met = other.entry(at);
        const ZVariant *first = second ? nullptr : &own, *last = second ? &own : at >= 0 ? &met : nullptr;
        ZVariant value;
        if (!value.blendFrom(first, last, pos.fieldBlend(key)) || !made.set(key, value)) return false;
    }
    return true;
}

bool ZVSelectMap::blendFrom(const ZVSelectMap* a, const ZVSelectMap* b, const ZBlendPos& pos) {
    ZVSelectMap made;
    if (a && b && a->type && a->type == b->type) {
        made = ZVSelectMap(a->type);
        const uint room = std::max(a->count(), b->count());
        if (room && !made.create(0, 0, room, a->expand(), 0, 0)) return false;
        if (!blendKeys(made, *a, *b, pos, false) || !blendKeys(made, *a, *b, pos, true)) return false;
    } else if (const ZVSelectMap* nearer = (pos.pos() < 0.5 && a) || !b ? a : b)
        made = *nearer;
    swap(made);
    return true;
}
