#include "value/valueMap.h"

#include "core/ZArrayT.h"
#include "core/ZPtrKey.h"
#include "object/ZDetachContext.h"
#include "object/ZMethodRef.h"
#include "value/ZVArray.h"
#include "value/ZVKeyMap.h"
#include "value/valueMapData.h"

#include <algorithm>

namespace orv {
namespace {

/// Keeps data alive while items of it end or are compared: who comes back to the map to write it gets a copy.
class Held {
public:
    explicit Held(const ValueMapData* data) : data(data) { data->retain(); }
    ~Held() { data->release(); }
    Held(const Held&) = delete;

private:
    const ValueMapData* data;
};

void drop(ValueMapData* data) {
    if (data) data->release();
}

ZVArray noValues(ZMetaType* type) {
    ZError::fail();
    return ZVArray(type);
}

} // namespace

// Lifetime

ValueMap::ValueMap(MapForm form, ZMetaType* given) : form(form) {
    if (!takeType(given)) ZError::fail();
}
ValueMap::ValueMap(const ValueMap& other) : type(other.type), typeName(other.typeName), form(other.form) {
    item::retainType(type);
    if (other.data && other.data->retain()) data = other.data;
}
void ValueMap::swap(ValueMap& other) noexcept {
    std::swap(type, other.type);
    std::swap(data, other.data);
    std::swap(typeName, other.typeName);
}
void ValueMap::take(const ValueMap& other) {
    ValueMap made(other);
    swap(made);
}
void ValueMap::take(ValueMap&& other) noexcept {
    ValueMap made(std::move(other));
    swap(made);
}
void ValueMap::clear() { drop(std::exchange(data, nullptr)); }
void ValueMap::reset() {
    ZMetaType* old = std::exchange(type, nullptr);
    clear();
    item::releaseType(old);
    typeName.clear();
}

// Type

bool ValueMap::takeType(ZMetaType* wanted) {
    ZMetaType* normal = item::normalType(wanted);
    if (wanted && (!normal || !item::holdable(normal))) return false;
    item::retainType(normal);
    type = normal;
    return true;
}
bool ValueMap::changeType(ZMetaType* wanted) {
    if (count()) return false;
    ValueMap made(form);
    if (!made.takeType(wanted)) return false;
    swap(made);
    return true;
}
ZSelector ValueMap::getTypeName() const { return type ? type->getName() : typeName; }
void ValueMap::setTypeName(const ZSelector& name) {
    if (!type) typeName = name;
}
bool ValueMap::isType(const ZMetaType* wanted) const { return item::isOf(type, wanted); }
bool ValueMap::isType(const ZSelector& name) const { return item::isOf(type, name); }
bool ValueMap::isSelectorType() const { return type && type->kind() == ZMetaType::Selector; }
bool ValueMap::isZType() const { return item::instances(type); }

// Data

bool ValueMap::create(uint keyBytes, uint valueBytes, uint capacity, int16 expand, uint hashBits, uint load) {
    ZMetaType* keyType = form == MapForm::Keyed ? static_cast<ZVKeyMap*>(this)->getKeyType() : nullptr;
    const ValueMapData::Types types{form, keyType, type, keyBytes, valueBytes};
    ValueMapData::Layout places{};
    if (capacity > itemLimit || !ValueMapData::layout(types, places)) return false;
    auto made = zmake<ValueMapData>(types, capacity, expand, hashBits, load);
    if (!made) return false;
    drop(std::exchange(data, made));
    return true;
}
bool ValueMap::detach() {
    if (isDetached()) return true;
    auto made = zmake<ValueMapData>(*data);
    if (!made) return false;
    drop(std::exchange(data, made));
    return true;
}
const void* ValueMap::block() const { return data; }

bool ValueMap::own() { return data ? detach() : create(0, 0, 1, 100, 0, 0); }

bool ValueMap::putItem(const void* key, const void* item, bool search, bool link) {
    if (!key || !item) return false;
    if (search)
        if (int at = findRaw(key); at >= 0) return storeItem(at, item);
    if (!data && !create(0, 0, 1, 100, 0, 0)) return false;
    // Built aside: a failure, or a key or value that stands in the map itself, meets the map as it was.
    const Held held(data);
    const ValueMapData* const from = data;
    item::Scratch node(from->itemSize());
    if (!node.memory() || !from->build(node.memory(), key, item)) return false;
    const bool alone = data == from && ::refcount(from) == 2;
    if ((alone || (data && data->sameTypes(*from) && detach())) && data->take(node.memory(), link)) return true;
    from->endNode(node.memory());
    return false;
}

int ValueMap::findRaw(const void* key) const { return data && key ? data->find(key) : -1; }
const void* ValueMap::rawKey(int index) const { return inRange(index) ? data->key(uint(index)) : nullptr; }

bool ValueMap::storeItem(int index, const void* item) {
    if (!inRange(index) || !item) return false;
    const uint size = data->valueSize();
    item::Scratch made(size);
    if (!made.memory() || !item::copy(type, made.memory(), item, size)) return false;
    const bool done = inRange(index) && detach();
    if (done) std::swap_ranges(made.memory(), made.memory() + size, data->value(uint(index)));
    item::end(type, made.memory());
    return done;
}
bool ValueMap::storeValue(int index, const ZVariant& value) {
    if (!inRange(index)) return false;
    item::Given given(type, value);
    return given.address() && storeItem(index, given.address());
}
bool ValueMap::renameItem(int index, const void* key) {
    if (!inRange(index) || !key || data->find(key) >= 0) return false;
    const void* value = form == MapForm::Set ? key : data->value(uint(index));
    item::Scratch node(data->itemSize());
    if (!node.memory() || !data->build(node.memory(), key, value)) return false;
    const bool done = detach();
    if (done) {
        data->clearTree(true);
        // The head too: the item is in no tree now.
        std::swap_ranges(node.memory(), node.memory() + data->itemSize(), data->bytes(uint(index)));
    }
    ValueMapData* const of = data;
    of->endNode(node.memory());
    return done;
}

// By position

uint ValueMap::count() const { return data ? data->count() : 0; }
uint ValueMap::maxcount() const { return data ? data->capacity() : 0; }
const void* ValueMap::valuePtr(int index) const { return inRange(index) ? data->value(uint(index)) : nullptr; }
void* ValueMap::valuePtr(int index) { return inRange(index) && detach() ? data->value(uint(index)) : nullptr; }
ZVariant ValueMap::entry(int index) const {
    return type && inRange(index) ? ZVariant(type, data->value(uint(index))) : ZVariant();
}
ZVArray ValueMap::values() const {
    ZVArray made(type);
    if (isEmpty()) return made;
    if (!type && !made.setItemSize(data->valueSize())) return noValues(nullptr);
    if (!made.expand(count())) return noValues(type);
    for (uint i = 0; i < count(); ++i)
        if (!made.appendItem(data->value(i))) return noValues(type);
    return made;
}
int ValueMap::findValue(const ZVariant& value, int start) const {
    if (isEmpty()) return -1;
    item::Given given(type, value);
    if (!given.address()) return -1;
    for (uint i = uint(std::max(start, 0)); i < count(); ++i)
        if (item::order(type, data->value(i), given.address(), data->valueSize()) == 0) return int(i);
    return -1;
}
bool ValueMap::removeIndex(int index) {
    if (!inRange(index) || !detach()) return false;
    const Held held(data);
    return data->remove(index, 1);
}
bool ValueMap::removeItems(const ZArrayT<int>& indexes) {
    if (indexes.isEmpty()) return true;
    ZArrayT<int> order(indexes);
    if (!order.sort() || !inRange(order[0]) || !inRange(order[order.count() - 1]) || !detach()) return false;
    const Held held(data);
    ValueMapData* const from = data;
    for (uint i = order.count(); i > 0; --i)
        if (i == order.count() || std::as_const(order)[i - 1] != std::as_const(order)[i])
            from->remove(std::as_const(order)[i - 1], 1);
    return true;
}
bool ValueMap::removeValue(const ZVariant& value) { return removeIndex(findValue(value)); }
bool ValueMap::removeNull() {
    ZArrayT<int> nulls;
    for (uint i = 0; i < count(); ++i)
        if (entry(int(i)).isNull() && !nulls.append(int(i))) return false;
    return !nulls.isEmpty() && removeItems(nulls);
}

// Order

bool ValueMap::changePlace(int from, int to) {
    return inRange(from) && inRange(to) && detach() && data->moveToPlace(from, to);
}
/// Where an item goes that moves next to another.
int ValueMap::moveTarget(int from, int to, bool behind) const {
    if (!inRange(from) || !inRange(to) || from == to) return from == to ? from : -1;
    return behind ? to + (from > to) : to - (from < to);
}
bool ValueMap::sortByKey(bool ascending) {
    if (count() < 2) return true;
    if (!detach()) return false;
    const Held held(data);
    return data->sort(ascending);
}
bool ValueMap::sortByValue(bool ascending) {
    if (count() < 2) return true;
    if (!detach()) return false;
    const Held held(data);
    auto compare = [](const void* map, const ZCompactRBItem* a, const ZCompactRBItem* b) {
        return static_cast<const ValueMapData*>(map)->orderItemValues(a, b);
    };
    return data->sort(compare, data, ascending);
}
bool ValueMap::sort(const ZMethodRef& method, bool ascending) {
    if (!type || !method.isValid()) return false;
    if (count() < 2) return true;
    if (!detach()) return false;
    struct Context {
        const ValueMapData* data;
        ZMetaType* type;
        const ZMethodRef& method;
    } const context{data, type, method};
    auto compare = [](const void* user, const ZCompactRBItem* a, const ZCompactRBItem* b) {
        auto with = static_cast<const Context*>(user);
        const ZVariant arguments[] = {ZVariant(with->type, with->data->valueIn(a)),
                                      ZVariant(with->type, with->data->valueIn(b))};
        return with->method.invoke(arguments, 2).toInt();
    };
    const Held held(data);
    return data->sort(compare, &context, ascending);
}
bool ValueMap::getSortOrder(ZArrayT<int>& order, bool ascending) const {
    ZArrayT<int> made;
    if (!isEmpty() && (!made.setCount(count()) || !data->sortOrder(&made[0], ascending))) return false;
    order = std::move(made);
    return true;
}

// Whole

bool ValueMap::deepDetach() {
    if (item::plain(type)) return detach();
    ZDetachContext* context = zmake<ZDetachContext>();
    const bool done = context && deepDetach(context);
    if (context) context->release();
    return done;
}
bool ValueMap::deepDetach(ZDetachContext* context) {
    if (!context) return deepDetach();
    if (!detach()) return false;
    if (!data) return true;
    bool done = true;
    const auto types = data->typesOf();
    for (uint i = 0; done && i < count(); ++i) {
        if (types.form == MapForm::Keyed) done = item::deepDetach(types.key, data->key(i), *context);
        done = done && item::deepDetach(type, data->value(i), *context);
    }
    if (types.form != MapForm::Named) data->rehash();
    return done;
}

bool ValueMap::containsItems(const ValueMap& other) const {
    if (other.isEmpty()) return true;
    if (isEmpty() || type != other.type) return false;
    for (uint i = 0; i < other.count(); ++i) {
        const int at = data->find(other.data->key(i));
        if (at < 0) return false;
        if (item::order(type, data->value(uint(at)), other.data->value(i), data->valueSize()) != 0) return false;
    }
    return true;
}
bool ValueMap::matchItems(const ValueMap& other, real tolerance) const {
    if (count() != other.count() || !type || type != other.type) return false;
    for (uint i = 0; i < count(); ++i)
        if (!entry(int(i)).matchValue(other.entry(int(i)), tolerance)) return false;
    return true;
}
int ValueMap::compareMaps(const ValueMap& other) const {
    if (int order = ZPtrKey(type).compare(ZPtrKey(other.type))) return order;
    if (!type)
        if (int order = typeName.compare(other.typeName)) return order;
    if (data == other.data) return 0;
    if (isEmpty() || other.isEmpty()) return int(!isEmpty()) - int(!other.isEmpty());
    if (data->itemSize() != other.data->itemSize()) return data->itemSize() < other.data->itemSize() ? -1 : 1;
    const int order = data->compare(*other.data);
    return (order > 0) - (order < 0);
}
uint ValueMap::hashItems() const {
    uint hash = count();
    for (uint i = 0; i < count(); ++i) {
        uint mixed = data->hashAt(i) * 0x9E3779B1u;
        if (data->form() != MapForm::Set) mixed ^= item::hash(type, data->value(i), data->valueSize());
        hash += mixed * 0x85EBCA6Bu;
    }
    return hash;
}

// Room and hash

int16 ValueMap::expand() const { return data ? data->expand() : 100; }
bool ValueMap::endian() const { return data && data->endian(); }
uint ValueMap::hashbits() const { return data ? data->hashBits() : 0; }
uint ValueMap::autohash() const { return data ? data->autoHash() : 100; }
int ValueMap::maxCollisions() const { return data ? data->maxCollisions() : 0; }
int ValueMap::predecessor(int index) const {
    if (!inRange(index)) return -1;
    data->refreshTree();
    return data->predecessor(index);
}
bool ValueMap::setSpace(int space) {
    if (space < 0) return false;
    if (!data) return space == 0;
    if (!detach()) return false;
    const Held held(data);
    return data->setSpace(space);
}
bool ValueMap::expand(uint more) { return more <= itemLimit && own() && data->expand(int(more)); }
bool ValueMap::setExpand(int16 expand) {
    if (!own()) return false;
    data->setExpand(expand);
    return true;
}
bool ValueMap::setEndian(bool endian) {
    if (!own()) return false;
    data->setEndian(endian);
    return true;
}
bool ValueMap::setHashbits(uint bits) {
    if (!own()) return false;
    data->setHashBits(bits);
    return true;
}
bool ValueMap::setAutohash(uint load) {
    if (!own()) return false;
    data->setAutoHash(load);
    return true;
}
bool ValueMap::trim() { return !data || (detach() && data->trim()); }
bool ValueMap::checkTree(const char* label) const { return !data || data->checkTree(label); }
void ValueMap::logTree(const char* label) const {
    if (data) data->logTree(label);
}
bool ValueMap::log_verify(const char* label) const { return !data || data->log_verify(label); }

} // namespace orv
