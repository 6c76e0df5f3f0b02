#include "value/ZVKeyMap.h"

#include "core/ZPtrKey.h"
#include "text/ZBlendPos.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/valueMapData.h"

#include <algorithm>

using namespace orv;

// Lifetime

ZVKeyMap::ZVKeyMap(ZMetaType* key, ZMetaType* value) : ValueMap(MapForm::Keyed, value) {
    if (!takeKeyType(key)) ZError::fail();
}
ZVKeyMap::ZVKeyMap(ZMetaType* key, ZMetaType* value, uint capacity, int16 expand, uint hashBits)
    : ZVKeyMap(key, value) {
    if (keyType && type && !init(capacity, expand, hashBits, 0, 0, 0)) ZError::fail();
}
ZVKeyMap::ZVKeyMap(const ZVKeyMap* a, const ZVKeyMap* b, const ZBlendPos& pos) : ZVKeyMap() {
    if (!blendFrom(a, b, pos)) ZError::fail();
}
ZVKeyMap::ZVKeyMap(const ZVKeyMap& other) : ValueMap(other), keyType(other.keyType), keyTypeName(other.keyTypeName) {
    item::retainType(keyType);
}
ZVKeyMap& ZVKeyMap::operator=(const ZVKeyMap& other) {
    ZVKeyMap made(other);
    swap(made);
    return *this;
}
ZVKeyMap& ZVKeyMap::operator=(ZVKeyMap&& other) noexcept {
    ZVKeyMap made(std::move(other));
    swap(made);
    return *this;
}
void ZVKeyMap::swap(ZVKeyMap& other) noexcept {
    ValueMap::swap(other);
    std::swap(keyType, other.keyType);
    std::swap(keyTypeName, other.keyTypeName);
}
void ZVKeyMap::clearAll() {
    ZMetaType* old = std::exchange(keyType, nullptr);
    reset();
    item::releaseType(old);
    keyTypeName.clear();
}
bool ZVKeyMap::init(uint capacity, int16 expand, uint hashBits, uint autoHash, uint keySize, uint valueSize) {
    return setData(create(capacity, expand, hashBits, autoHash, keySize, valueSize));
}
ZVKeyMap::MapData* ZVKeyMap::create(uint capacity, int16 expand, uint hashBits, uint autoHash, uint keySize,
                                    uint valueSize) const {
    return make(keyType, keySize, valueSize, capacity, expand, hashBits, autoHash);
}

// Types

bool ZVKeyMap::takeKeyType(ZMetaType* wanted) {
    ZMetaType* normal = item::normalType(wanted);
    if (wanted && (!normal || !item::holdable(normal))) return false;
    item::retainType(normal);
    keyType = normal;
    return true;
}
bool ZVKeyMap::setTypes(ZMetaType* key, ZMetaType* value) {
    if (count()) return false;
    ZVKeyMap made;
    if (!made.takeType(value) || !made.takeKeyType(key)) return false;
    swap(made);
    return true;
}
ZSelector ZVKeyMap::getKeyTypeName() const { return keyType ? keyType->getName() : keyTypeName; }
void ZVKeyMap::setKeyTypeName(const ZSelector& name) {
    if (!keyType) keyTypeName = name;
}
bool ZVKeyMap::isKeyType(const ZMetaType* wanted) const { return item::isOf(keyType, wanted); }
bool ZVKeyMap::isKeyType(const ZSelector& name) const { return item::isOf(keyType, name); }

// By key

int ZVKeyMap::findItemKey(const void* key) const { return findRaw(key); }
int ZVKeyMap::findKey(const ZVariant& key) const {
    if (isEmpty()) return -1;
    item::Given given(keyType, key);
    return findRaw(given.address());
}
int ZVKeyMap::findFirstKey(const ZVariant& key) const {
    if (isEmpty()) return -1;
    item::Given given(keyType, key);
    return given.address() ? data->findFirstIndex(given.address()) : -1;
}
bool ZVKeyMap::hasKeys(const ZVArray& keys) const {
    for (uint i = 0; i < keys.count(); ++i)
        if (!haskey(keys.variant(int(i)))) return false;
    return true;
}
bool ZVKeyMap::hasKeys(const ZVKeyMap& other) const {
    for (uint i = 0; i < other.count(); ++i)
        if (keyType != other.keyType || findRaw(other.keyPtr(int(i))) < 0) return false;
    return true;
}
bool ZVKeyMap::setItem(const void* key, const void* item) { return putItem(key, item, true, true); }
bool ZVKeyMap::addItem(const void* key, const void* item, bool link) { return putItem(key, item, false, link); }
bool ZVKeyMap::putValue(const ZVariant& key, const ZVariant& value, bool search, bool link) {
    if (!data && (!keyType || !type)) {
        ZVKeyMap made(keyType ? keyType : key.type(), type ? type : value.type());
        if (!made.keyType || !made.type || !made.putValue(key, value, search, link)) return false;
        swap(made);
        return true;
    }
    item::Given givenKey(keyType, key), given(type, value);
    return putItem(givenKey.address(), given.address(), search, link);
}
bool ZVKeyMap::set(const ZVariant& key, const ZVariant& value) { return putValue(key, value, true, true); }
bool ZVKeyMap::add(const ZVariant& key, const ZVariant& value, bool link) { return putValue(key, value, false, link); }
bool ZVKeyMap::setValue(int index, const ZVariant& value) { return storeValue(index, value); }
bool ZVKeyMap::removeKeys(const ZVArray& keys) {
    ZArrayT<int> places;
    for (uint i = 0; i < keys.count(); ++i)
        if (int at = findKey(keys.variant(int(i))); at >= 0 && !places.append(at)) return false;
    return removeItems(places);
}
bool ZVKeyMap::removeKeys(const ZVKeyMap& other) {
    if (keyType != other.keyType) return true;
    ZArrayT<int> places;
    for (uint i = 0; i < other.count(); ++i)
        if (int at = findRaw(other.keyPtr(int(i))); at >= 0 && !places.append(at)) return false;
    return removeItems(places);
}
bool ZVKeyMap::copy(const ZVariant& from, const ZVariant& to) {
    const void* value = std::as_const(*this).get(from);
    item::Given given(keyType, to);
    return value && setItem(given.address(), value);
}
bool ZVKeyMap::contains(const ZVariant& key, const ZVariant& value) const {
    const void* there = get(key);
    item::Given given(type, value);
    return there && given.address() && item::order(type, there, given.address(), data->valueSize()) == 0;
}
bool ZVKeyMap::rename(const ZVariant& from, const ZVariant& to) {
    item::Given given(keyType, to);
    return renameItem(findKey(from), given.address());
}

// By position

const void* ZVKeyMap::keyPtr(int index) const { return rawKey(index); }
ZVariant ZVKeyMap::key(int index) const {
    const void* raw = rawKey(index);
    return raw && keyType ? ZVariant(keyType, raw) : ZVariant();
}
/// The keys at `many` positions; those out of range are left out.
template <class Places> ZVArray ZVKeyMap::keysAt(uint many, Places&& place) const {
    ZVArray made(keyType);
    bool done = isEmpty() || keyType || made.setItemSize(data->keySize());
    for (uint i = 0; done && i < many; ++i)
        if (const void* key = rawKey(place(i))) done = made.appendItem(key);
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}
ZVArray ZVKeyMap::keys() const {
    return keysAt(count(), [](uint i) { return int(i); });
}
ZVArray ZVKeyMap::extractKeys(const ZArrayT<int>& indexes) const {
    return keysAt(indexes.count(), [&](uint i) { return indexes[i]; });
}
ZVArray ZVKeyMap::collectNullKeys() const {
    ZArrayT<int> nulls;
    if (findNulls(nulls)) return extractKeys(nulls);
    ZError::fail();
    return ZVArray(keyType);
}
ZVHashSet ZVKeyMap::keySet() const {
    ZVHashSet made(keyType);
    bool done = isEmpty() || keyType || made.init(0, 100, 0, 0, data->keySize());
    for (uint i = 0; done && i < count(); ++i) done = made.addItem(rawKey(int(i)));
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}

// Keys of their own

static ValueMapData::Types keyTypes(ZMetaType* keyType) { return {MapForm::Keyed, keyType, nullptr, 0, 4}; }
uint ZVKeyMap::hashKey(const void* key) const {
    if (!key) return 0;
    return data ? data->keyHash(key) : keyType ? ValueMapData::hashOf(keyTypes(keyType), key) : 0;
}
int ZVKeyMap::compareKey(const void* a, const void* b) const {
    if (a == b) return 0;
    if (!a || !b) return a ? -1 : 1;
    return data ? data->orderKeys(a, b) : keyType ? ValueMapData::orderOf(keyTypes(keyType), a, b) : 0;
}

// Order

bool ZVKeyMap::moveBefore(const ZVariant& key, const ZVariant& before) {
    const int from = findKey(key);
    return changePlace(from, moveTarget(from, findKey(before), false));
}
bool ZVKeyMap::moveAfter(const ZVariant& key, const ZVariant& after) {
    const int from = findKey(key);
    return changePlace(from, moveTarget(from, findKey(after), true));
}
bool ZVKeyMap::sort(bool ascending) { return sortByKey(ascending); }
ZVKeyMap ZVKeyMap::rearrange(const ZArrayT<int>& order) const {
    ZVKeyMap made(keyType, type);
    bool done = true;
    if (data) done = made.init(0, 100, 0, 0, data->keySize(), data->valueSize());
    for (uint i = 0; done && i < order.count(); ++i)
        if (inRange(order[i])) done = made.addItem(rawKey(order[i]), valuePtr(order[i]));
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}

ZVKeyMap ZVKeyMap::rearrange(const ZVArray& keys) const {
    ZArrayT<int> order;
    for (uint i = 0; i < keys.count(); ++i)
        if (!order.append(findKey(keys.variant(int(i))))) {
            ZError::fail();
            return ZVKeyMap(keyType, type);
        }
    return rearrange(order);
}

// Whole

bool ZVKeyMap::append(const ZVKeyMap& other) {
    if (other.isEmpty()) return true;
    if (!data && !keyType && !type) {
        assign(other);
        return true;
    }
    if (!data && (!keyType || !type) && other.keyType && other.type) {
        ZVKeyMap whole(keyType ? keyType : other.keyType, type ? type : other.type);
        if (!whole.append(other)) return false;
        swap(whole);
        return true;
    }
    // All items are made before the first one is set.
    ZVKeyMap made;
    if (keyType == other.keyType && sameTypes(other)) {
        made = other;
        if (!made.detach()) return false;
    } else {
        if (!made.takeType(type) || !made.takeKeyType(keyType)) return false;
        for (uint i = 0; i < other.count(); ++i)
            if (!made.set(other.key(int(i)), other.entry(int(i)))) return false;
        if (made.type != type || made.keyType != keyType) return false;
    }
    return absorb(made, false);
}
int ZVKeyMap::compare(const ZVKeyMap& other) const {
    const int order = ZPtrKey(keyType).compare(ZPtrKey(other.keyType));
    return order ? order : compareMaps(other);
}
bool ZVKeyMap::contains(const ZVKeyMap& other) const {
    return other.isEmpty() || (keyType == other.keyType && containsItems(other));
}
bool ZVKeyMap::matchValue(const ZVKeyMap& other, real tolerance) const {
    if (count() != other.count() || !keyType || keyType != other.keyType) return false;
    for (uint i = 0; i < count(); ++i)
        if (!key(int(i)).matchValue(other.key(int(i)), tolerance)) return false;
    return matchItems(other, tolerance);
}
uint ZVKeyMap::hashKey() const { return hashItems(); }

/// The position for the value under a key: parts of a position have names, and so have some keys.
static ZBlendPos partOf(const ZBlendPos& pos, const ZVariant& key) {
    if (!pos.count()) return pos;
    const ZSelector name = key.isSelector()                      ? key.toSelector()
                           : key.typeType() == ZMetaType::String ? ZSelector::find(key.toString())
                                                                 : ZSelector();
    return name.isEmpty() ? pos : pos.fieldBlend(name);
}
static bool blendKeys(ZVKeyMap& made, const ZVKeyMap& a, const ZVKeyMap& b, const ZBlendPos& pos, bool second) {
    const ZVKeyMap &from = second ? b : a, &other = second ? a : b;
    for (uint i = 0; i < from.count(); ++i) {
        const int at = other.findItemKey(from.keyPtr(int(i)));
        if (second && at >= 0) continue;
        const ZVariant own = from.entry(int(i)), met = other.entry(at), key = from.key(int(i));
        const ZVariant *first = second ? nullptr : &own, *last = second ? &own : at >= 0 ? &met : nullptr;
        ZVariant value;
        if (!value.blendFrom(first, last, partOf(pos, key)) || !made.set(key, value)) return false;
    }
    return true;
}

bool ZVKeyMap::blendFrom(const ZVKeyMap* a, const ZVKeyMap* b, const ZBlendPos& pos) {
    ZVKeyMap made;
    if (a && b && a->type && a->keyType && a->type == b->type && a->keyType == b->keyType) {
        made = ZVKeyMap(a->keyType, a->type);
        const uint room = std::max(a->count(), b->count());
        if (room && !made.init(room, a->expand(), 0, 0, 0, 0)) return false;
        if (!blendKeys(made, *a, *b, pos, false) || !blendKeys(made, *a, *b, pos, true)) return false;
    } else if (const ZVKeyMap* nearer = (pos.pos() < 0.5 && a) || !b ? a : b)
        made = *nearer;
    swap(made);
    return true;
}
