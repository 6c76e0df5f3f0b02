#include "value/valueMapData.h"

#include "core/ZPtrKey.h"

#include <algorithm>

namespace orv {
namespace {

/// Up to so many items are looked through rather than indexed.
constexpr uint scanned = 8;

uint roundedUp(uint bytes, uint to) { return (bytes + to - 1) / to * to; }

ZPtrKey pointerKey(const void* key) {
    const void* pointer;
    std::memcpy(&pointer, key, sizeof pointer);
    return pointer;
}

ValueMapData::Types sized(ValueMapData::Types types) {
    if (types.form == ValueMapData::Named) types.keyBytes = sizeof(ZSelector);
    if (types.form == ValueMapData::Keyed) types.keyBytes = item::sizeOf(types.key, types.keyBytes);
    types.valueBytes = item::sizeOf(types.value, types.valueBytes);
    return types;
}

ValueMapData::Layout placed(const ValueMapData::Types& types) {
    ValueMapData::Layout places{};
    ValueMapData::layout(types, places);
    return places;
}

} // namespace

bool ValueMapData::layout(const Types& given, Layout& places) {
    const Types types = sized(given);
    if (types.value && !item::holdable(types.value)) return false;
    if (types.key && !item::holdable(types.key)) return false;
    const uint valueAlignment = item::alignmentOf(types.value);
    uint alignment = std::max(4u, valueAlignment);
    ularge end = sizeof(Node);
    places.key = sizeof(Node);
    if (types.form == Keyed) {
        const uint keyAlignment = item::alignmentOf(types.key);
        alignment = std::max(alignment, keyAlignment);
        places.key = roundedUp(uint(end), keyAlignment);
        end = ularge(places.key) + types.keyBytes;
    } else
        end += 4;
    end = (end + valueAlignment - 1) / valueAlignment * valueAlignment;
    const ularge size = (end + types.valueBytes + alignment - 1) / alignment * alignment;
    if (!types.valueBytes || (types.form == Keyed && !types.keyBytes) || size > 0x7FFFFFFF) return false;
    places.value = uint(end);
    if (types.form == Set) places.key = places.value;
    places.size = uint(size);
    return true;
}

ValueMapData::ValueMapData(const Types& given, uint capacity, int16 expand, uint hashBits, uint load)
    : ZCompactRBMap(int(std::min(capacity, itemLimit)), placed(given).size, expand, hashBits, load),
      types(sized(given)), at(placed(given)) {
    if (load && load != autoHash()) setAutoHash(load);
}
ValueMapData::ValueMapData(const ValueMapData& other, bool withRoom)
    : ZCompactRBMap(), types(other.types), at(other.at), searched(toolkit::load(other.searched)) {
    if (!assign(other, withRoom)) ZError::fail();
}

// Keys

uint ValueMapData::hashOf(const Types& types, const void* key) {
    switch (types.form) {
    case Named:
        return static_cast<const ZSelector*>(key)->hashKey();
    case Keyed:
        return item::instances(types.key) ? pointerKey(key).hashKey() : item::hash(types.key, key, types.keyBytes);
    default:
        return item::hash(types.value, key, types.valueBytes);
    }
}
int ValueMapData::orderOf(const Types& types, const void* a, const void* b) {
    switch (types.form) {
    case Named:
        return static_cast<const ZSelector*>(a)->compare(*static_cast<const ZSelector*>(b));
    case Keyed:
        return item::instances(types.key) ? pointerKey(a).compare(pointerKey(b))
                                          : item::order(types.key, a, b, types.keyBytes);
    default:
        return item::order(types.value, a, b, types.valueBytes);
    }
}
uint ValueMapData::hashValue(const void* value) const { return item::hash(types.value, value, types.valueBytes); }

int ValueMapData::lookForName(uint id) const {
    const uint n = count();
    if (n > scanned) {
        lockMap();
        const bool built = names.built() || names.build(n, [this](uint i) { return nameAt(i); });
        unlockMap();
        if (built) return names.built()->find(id);
    }
    for (uint i = 0; i < n; ++i)
        if (nameAt(i) == id) return int(i);
    return -1;
}

const byte* ValueMapData::lookForValue(uint id) const {
    const int found = lookForName(id);
    return found < 0 ? nullptr : value(uint(found));
}

int ValueMapData::findKey(const void* key) const {
    const uint n = count();
    if (!n) return -1;
    const uint hash = keyHash(key);
    auto order = [&](const ZCompactRBItem* item) { return orderKeys(part(item, at.key), key); };
    int found = seek(hash, order);
    if (found != noTree) return found;
    if (n > scanned) {
        refreshTree();
        found = seek(hash, order);
        if (found != noTree) return found;
    }
    if (!toolkit::load(searched)) toolkit::store(searched, 1);
    for (uint i = 0; i < n; ++i)
        if (hashAt(i) == hash && order(itemStart(i)) == 0) return int(i);
    return -1;
}

// Nodes

bool ValueMapData::build(byte* place, const void* key, const void* value) const {
    std::memset(place, 0, at.size);
    auto node = ::new (place) Node;
    node->hash = keyHash(key);
    if (types.form == Named)
        ::new (place + at.key) ZSelector(*static_cast<const ZSelector*>(key));
    else if (types.form == Keyed && !item::copy(types.key, place + at.key, key, types.keyBytes))
        return false;
    else if (types.form == Set) {
        const uint once = 1;
        std::memcpy(place + sizeof(Node), &once, sizeof once);
    }
    if (value ? item::copy(types.value, place + at.value, value, types.valueBytes)
              : item::make(types.value, place + at.value, types.valueBytes))
        return true;
    if (types.form == Named) reinterpret_cast<ZSelector*>(place + at.key)->~ZSelector();
    if (types.form == Keyed) item::end(types.key, place + at.key);
    return false;
}

void ValueMapData::endNode(byte* place) const {
    item::end(types.value, place + at.value);
    if (types.form == Named) reinterpret_cast<ZSelector*>(place + at.key)->~ZSelector();
    if (types.form == Keyed) item::end(types.key, place + at.key);
}

bool ValueMapData::take(const byte* node, bool link) {
    const uint index = count();
    if (index >= itemLimit || !append(1, false)) return false;
    std::memcpy(bytes(index), node, at.size);
    if (link) addNode(int(index));
    if (types.form == Named) names.added(nameAt(index), index);
    return true;
}

void ValueMapData::exchangeItem(uint index, byte* node) {
    if (hasTree()) removeNode(int(index));
    if (types.form == Named) names.renamed(nameAt(index), reinterpret_cast<const ZSelector*>(node + at.key)->key());
    std::swap_ranges(node, node + at.size, bytes(index));
    if (hasTree()) addNode(int(index));
}

void ValueMapData::removeAt(uint index) {
    if (types.form == Named) names.removed(nameAt(index), index, count());
    remove(int(index), 1);
}

void ValueMapData::removeAll(const int* positions, uint many) {
    const uint all = count();
    item::Scratch gone(size_t(many) * at.size);
    if (many < 2 || !gone.memory()) {
        while (many > 0) removeAt(uint(positions[--many]));
        return;
    }
    dropIndexes();
    byte *to = bytes(uint(positions[0])), *aside = gone.memory();
    for (uint i = 0; i < many; ++i) {
        const byte* from = bytes(uint(positions[i]));
        std::memcpy(aside + size_t(i) * at.size, from, at.size);
        const size_t kept = size_t((i + 1 < many ? uint(positions[i + 1]) : all) - uint(positions[i]) - 1) * at.size;
        std::memmove(to, from + at.size, kept);
        to += kept;
    }
    forgetItems(int(all - many), int(many));
    // The map is whole when the items end.
    for (uint i = 0; i < many; ++i) endNode(aside + size_t(i) * at.size);
}

void ValueMapData::forgetFrom(uint index) {
    dropIndexes();
    forgetItems(int(index), int(count() - index));
}

void ValueMapData::dropIndexes() {
    names.drop();
    clearTree(true);
}

void ValueMapData::rehash() {
    dropIndexes();
    for (uint i = 0; i < count(); ++i) static_cast<Node*>(itemStart(i))->hash = keyHash(key(i));
}

// What the map asks of its items

bool ValueMapData::initItem(ZCompactRBItem*) { return false; }

bool ValueMapData::copyItem(ZCompactRBItem* to, const ZCompactRBItem* from) {
    if (!build(reinterpret_cast<byte*>(to), part(from, at.key), part(from, at.value))) return false;
    static_cast<Node*>(to)->hash = static_cast<const Node*>(from)->hash;
    if (types.form == Set)
        std::memcpy(reinterpret_cast<byte*>(to) + sizeof(Node), part(from, sizeof(Node)), sizeof(uint));
    return true;
}

int ValueMapData::orderItemValues(const ZCompactRBItem* a, const ZCompactRBItem* b) const {
    return item::order(types.value, part(a, at.value), part(b, at.value), types.valueBytes);
}
int ValueMapData::byKey(const void* data, const ZCompactRBItem* a, const ZCompactRBItem* b) {
    auto of = static_cast<const ValueMapData*>(data);
    const byte *first = of->keyIn(a), *second = of->keyIn(b);
    const int order =
        of->types.form == Named
            ? reinterpret_cast<const ZSelector*>(first)->compareStr(*reinterpret_cast<const ZSelector*>(second))
            : of->orderKeys(first, second);
    return order || of->types.form == Set ? order : of->orderItemValues(a, b);
}
int ValueMapData::byValue(const void* data, const ZCompactRBItem* a, const ZCompactRBItem* b) {
    return static_cast<const ValueMapData*>(data)->orderItemValues(a, b);
}
int ValueMapData::compareItem(const ZCompactRBItem* a, const ZCompactRBItem* b) const {
    if (types.form != Set) {
        const byte *first = part(a, at.key), *second = part(b, at.key);
        const int order = types.form == Keyed && !item::instances(types.key)
                              ? item::compare(types.key, first, second, types.keyBytes)
                              : orderKeys(first, second);
        if (order) return order;
    }
    return item::compare(types.value, part(a, at.value), part(b, at.value), types.valueBytes);
}
int ValueMapData::compareItemKey(const ZCompactRBItem* a, const ZCompactRBItem* b) const {
    return orderKeys(part(a, at.key), part(b, at.key));
}
int ValueMapData::compareItemValue(const ZCompactRBItem* a, const ZCompactRBItem* b) const {
    return orderItemValues(a, b);
}
int ValueMapData::compareKey(const ZCompactRBItem* item, const void* key) const {
    return orderKeys(part(item, at.key), key);
}
int ValueMapData::compareValue(const ZCompactRBItem* item, const void* value) const {
    return item::order(types.value, part(item, at.value), value, types.valueBytes);
}

} // namespace orv
