#include "value/ZVSelectMap.h"

#include "core/ZHashSetT.h"
#include "text/ZBlendPos.h"
#include "value/ZVArray.h"
#include "value/valueMapData.h"

#include <algorithm>

using namespace orv;

// Lifetime

ZVSelectMap::ZVSelectMap(ZMetaType* type, uint capacity, int16 expand, uint hashBits) : ZVSelectMap(type) {
    if (type && !init(capacity, expand, hashBits, 0, 0)) ZError::fail();
}
ZVSelectMap::ZVSelectMap(const ZVSelectMap* a, const ZVSelectMap* b, const ZBlendPos& pos) : ZVSelectMap() {
    if (!blendFrom(a, b, pos)) ZError::fail();
}
bool ZVSelectMap::init(uint capacity, int16 expand, uint hashBits, uint autoHash, uint valueSize) {
    return setData(create(capacity, expand, hashBits, autoHash, valueSize));
}
ZVSelectMap::MapData* ZVSelectMap::create(uint capacity, int16 expand, uint hashBits, uint autoHash,
                                          uint valueSize) const {
    return make(nullptr, 0, valueSize, capacity, expand, hashBits, autoHash);
}
bool ZVSelectMap::setType(ZMetaType* type) { return changeType(type); }

// By key

int ZVSelectMap::findKey(const ZSelector& key) const { return data ? data->findName(key.key()) : -1; }
const void* ZVSelectMap::get(const ZSelector& key) const { return data ? data->valueOf(key.key()) : nullptr; }
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
bool ZVSelectMap::contains(const ZSelector& key, const ZVariant& value) const {
    item::Given given(type, value);
    const void* there = get(key);
    return there && given.address() && item::order(type, there, given.address(), data->valueSize()) == 0;
}
bool ZVSelectMap::rename(const ZSelector& from, const ZSelector& to) { return renameItem(findKey(from), &to); }

// By position

const ZSelector* ZVSelectMap::keyPtr(int index) const { return static_cast<const ZSelector*>(rawKey(index)); }
ZSelector ZVSelectMap::key(int index) const {
    const ZSelector* key = keyPtr(index);
    return key ? *key : ZSelector();
}
template <class Places> ZArrayT<ZSelector> ZVSelectMap::keysAt(uint many, Places&& place) const {
    ZArrayT<ZSelector> made;
    bool done = made.reserve(many);
    for (uint i = 0; done && i < many; ++i) done = made.append(*keyPtr(place(i)));
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}
ZArrayT<ZSelector> ZVSelectMap::keys() const {
    return keysAt(count(), [](uint i) { return int(i); });
}
ZArrayT<ZSelector> ZVSelectMap::collectNullKeys() const {
    ZArrayT<int> nulls;
    if (findNulls(nulls)) return keysAt(nulls.count(), [&](uint i) { return std::as_const(nulls)[i]; });
    ZError::fail();
    return {};
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
bool ZVSelectMap::sort(bool ascending) { return sortByKey(ascending); }
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
    // All values are made before the first one is set.
    ZVSelectMap made;
    if (sameTypes(other)) {
        made = other;
        if (!made.detach()) return false;
    } else {
        if (!type || !other.type || !made.takeType(type) || !made.expand(other.count())) return false;
        for (uint i = 0; i < other.count(); ++i)
            if (!made.set(*other.keyPtr(int(i)), other.entry(int(i)))) return false;
    }
    return absorb(made, false);
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
        if (room && !made.init(room, a->expand(), 0, 0, 0)) return false;
        if (!blendKeys(made, *a, *b, pos, false) || !blendKeys(made, *a, *b, pos, true)) return false;
    } else if (const ZVSelectMap* nearer = (pos.pos() < 0.5 && a) || !b ? a : b)
        made = *nearer;
    swap(made);
    return true;
}
