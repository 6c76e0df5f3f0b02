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

void letGo(ValueMapData* data) {
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
void ValueMap::clear() { letGo(std::exchange(data, nullptr)); }
bool ValueMap::drop() {
    const bool alone = isDetached();
    clear();
    return alone;
}
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

ValueMapData* ValueMap::make(ZMetaType* keyType, uint keyBytes, uint valueBytes, uint capacity, int16 expand,
                             uint hashBits, uint load) const {
    const ValueMapData::Types types{form, keyType, type, keyBytes, valueBytes};
    ValueMapData::Layout places{};
    if (capacity > itemLimit || !ValueMapData::layout(types, places)) return nullptr;
    return zmake<ValueMapData>(types, capacity, expand, hashBits, load);
}
bool ValueMap::setData(ValueMapData* made) {
    if (made) letGo(std::exchange(data, made));
    return made != nullptr;
}
bool ValueMap::makeData() {
    ZMetaType* keyType = form == MapForm::Keyed ? static_cast<ZVKeyMap*>(this)->getKeyType() : nullptr;
    return setData(make(keyType, 0, 0, 1, 100, 0, 0));
}
bool ValueMap::detach(bool grow) { return isDetached() || setData(zmake<ValueMapData>(*data, grow)); }
const void* ValueMap::block() const { return data; }

bool ValueMap::own() { return data ? detach() : makeData(); }

bool ValueMap::sameTypes(const ValueMap& other) const {
    if (data && other.data) return data->sameTypes(*other.data);
    return type && type == other.type;
}

bool ValueMap::putItem(const void* key, const void* item, bool search, bool link) {
    if (!key || !item) return false;
    if (search)
        if (int at = findRaw(key); at >= 0) return storeItem(at, item);
    if (!data && !makeData()) return false;
    if (!link) data->indexWhatWasFound();
    // Built aside: a failure, or a key or value that stands in the map itself, meets the map as it was.
    item::Scratch node(data->itemSize());
    if (!node.memory()) return false;
    if (form == MapForm::Named && item::plain(type)) {
        // Nothing foreign runs, so nobody comes back.
        if (!data->build(node.memory(), key, item)) return false;
        if (detach() && data->take(node.memory(), link)) return true;
        data->endNode(node.memory());
        return false;
    }
    const Held held(data);
    const ValueMapData* const from = data;
    if (!from->build(node.memory(), key, item)) return false;
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
    if (item::plain(type) && isDetached()) {
        std::memmove(data->value(uint(index)), item, type ? type->byteSize() : size);
        return true;
    }
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
    const Held held(data);
    const ValueMapData* const from = data;
    const void* value = form == MapForm::Set ? key : from->value(uint(index));
    item::Scratch node(from->itemSize());
    if (!node.memory() || !from->build(node.memory(), key, value)) return false;
    // Whoever came back and wrote this map has another one now.
    const bool alone = data == from && ::refcount(from) == 2;
    const bool done = data == from && (alone || detach());
    if (done) data->exchangeItem(uint(index), node.memory());
    from->endNode(node.memory());
    return done;
}

bool ValueMap::absorb(ValueMap& from, bool counts) {
    if (from.isEmpty()) return true;
    if (isEmpty() && !data) return setData(std::exchange(from.data, nullptr));
    if (!detach() || !data->expand(int(from.count()))) return false;
    ValueMapData &to = *data, &given = *from.data;
    // What stays behind, the values that were replaced, moves together in front, to end with the other map.
    uint left = 0;
    for (uint i = 0, all = given.count(); i < all; ++i) {
        const int at = to.find(given.key(i));
        if (at < 0 && to.take(given.bytes(i), true)) continue;
        if (at >= 0 && form == MapForm::Set && counts) {
            uint& usage = to.usage(uint(at));
            usage = given.usage(i) > 0xFFFFFFFF - usage ? 0xFFFFFFFF : usage + given.usage(i);
        }
        if (at >= 0 && form != MapForm::Set)
            std::swap_ranges(to.value(uint(at)), to.value(uint(at)) + to.valueSize(), given.value(i));
        if (left != i) std::memmove(given.bytes(left), given.bytes(i), given.itemSize());
        ++left;
    }
    given.forgetFrom(left);
    return true;
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
int ValueMap::findValueItem(const void* item, int start) const {
    if (!item) return -1;
    for (uint i = uint(std::max(start, 0)); i < count(); ++i)
        if (item::order(type, data->value(i), item, data->valueSize()) == 0) return int(i);
    return -1;
}
int ValueMap::findValue(const ZVariant& value, int start) const {
    if (isEmpty()) return -1;
    item::Given given(type, value);
    return findValueItem(given.address(), start);
}
bool ValueMap::removeIndex(int index) {
    if (!inRange(index) || !detach()) return false;
    const Held held(data);
    data->removeAt(uint(index));
    return true;
}
bool ValueMap::removeItems(const ZArrayT<int>& indexes) {
    if (indexes.isEmpty()) return true;
    ZArrayT<int> order(indexes);
    if (!order.sort()) return false;
    int* at = &order[0];
    const uint many = uint(std::unique(at, at + order.count()) - at);
    if (!inRange(at[0]) || !inRange(at[many - 1]) || !detach()) return false;
    const Held held(data);
    data->removeAll(at, many);
    return true;
}
bool ValueMap::removeItems(int index, int count) {
    if (count < 0) return false;
    const large first = std::max(index, 0), last = std::min(large(index) + count, large(this->count()));
    if (first >= last) return true;
    if (!detach()) return false;
    const Held held(data);
    data->dropIndexes();
    return data->remove(int(first), int(last - first));
}
bool ValueMap::removeValue(const ZVariant& value) { return removeIndex(findValue(value)); }
bool ValueMap::findNulls(ZArrayT<int>& nulls) const {
    for (uint i = 0; i < count(); ++i)
        if (entry(int(i)).isNull() && !nulls.append(int(i))) return false;
    return true;
}
bool ValueMap::removeNull() {
    ZArrayT<int> nulls;
    return findNulls(nulls) && !nulls.isEmpty() && removeItems(nulls);
}

// Order

bool ValueMap::changePlace(int from, int to) {
    if (!inRange(from) || !inRange(to) || !detach()) return false;
    data->dropIndexes();
    return data->moveToPlace(from, to);
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
    data->dropIndexes();
    return data->sort(ValueMapData::byKey, data, ascending);
}
bool ValueMap::sortByValue(bool ascending) {
    if (count() < 2) return true;
    if (!detach()) return false;
    const Held held(data);
    data->dropIndexes();
    return data->sort(ValueMapData::byValue, data, ascending);
}
/// Calls `run(compare, context)` with a comparison of two items by a method.
template <class F> bool ValueMap::bySort(const ZMethodRef& method, F&& run) const {
    if (!type || !method.isValid()) return false;
    if (isEmpty()) return true;
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
    // Whoever comes back to write this map finds the data shared, and leaves them alone.
    const Held held(data);
    return run(static_cast<ZCompactRBMap::Compare>(compare), &context);
}
bool ValueMap::sort(const ZMethodRef& method, bool ascending) {
    if (!detach()) return false;
    ValueMapData* const own = data;
    return bySort(method, [&](auto compare, auto context) {
        own->dropIndexes();
        return own->sort(compare, context, ascending) && data == own;
    });
}
bool ValueMap::getSortOrder(ZArrayT<int>& order, const ZMethodRef& method, bool ascending) const {
    ZArrayT<int> made;
    if (!made.setCount(count())) return false;
    const ValueMapData* const of = data;
    if (!bySort(method,
                [&](auto compare, auto context) { return of->sortOrder(&made[0], compare, context, ascending); }))
        return false;
    order = std::move(made);
    return true;
}
bool ValueMap::sortOrder(int* order, bool ascending) const {
    return isEmpty() || data->sortOrder(order, ValueMapData::byKey, data, ascending);
}
bool ValueMap::getSortOrder(ZArrayT<int>& order, bool ascending) const {
    ZArrayT<int> made;
    if (!isEmpty() && (!made.setCount(count()) || !sortOrder(&made[0], ascending))) return false;
    order = std::move(made);
    return true;
}

// Whole

bool ValueMap::deepDetach() {
    if (item::plain(type) && form != MapForm::Keyed) return detach();
    ZDetachContext* context = zmake<ZDetachContext>();
    const bool done = context && deepDetach(context);
    if (context) context->release();
    return done;
}
bool ValueMap::deepDetach(ZDetachContext* context) {
    if (!context) return deepDetach();
    if (!detach()) return false;
    if (!data) return true;
    // Values may run code that comes back here: who writes this map meanwhile gets data of its own.
    const Held held(data);
    ValueMapData* const own = data;
    bool done = true;
    const auto types = own->typesOf();
    for (uint i = 0; done && i < own->count(); ++i) {
        if (types.form == MapForm::Keyed) done = item::deepDetach(types.key, own->key(i), *context);
        done = done && item::deepDetach(types.value, own->value(i), *context);
    }
    if (types.form != MapForm::Named) own->rehash();
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
int ValueMap::compareValue(const void* a, const void* b) const {
    if (a == b) return 0;
    if (!a || !b) return a ? -1 : 1;
    return type || data ? item::compare(type, a, b, data ? data->valueSize() : 0) : 0;
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
    data->dropIndexes();
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
bool ValueMap::rebuildTree() {
    if (!data) return true;
    if (!detach()) return false;
    data->dropIndexes();
    return true;
}
bool ValueMap::trim() { return !data || (detach() && data->trim()); }
bool ValueMap::checkTree(const char* label) const { return !data || data->checkTree(label); }
void ValueMap::logTree(const char* label) const {
    if (data) data->logTree(label);
}
bool ValueMap::log_verify(const char* label) const { return !data || data->log_verify(label); }

} // namespace orv
