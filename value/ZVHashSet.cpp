#include "value/ZVHashSet.h"

#include "core/debug.h"
#include "object/ztype.h"
#include "value/ZVArray.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/valueMapData.h"

#include <algorithm>
#include <cstring>

using namespace orv;

// Lifetime

ZVHashSet::ZVHashSet(ZMetaType* type, uint capacity, int16 expand, uint hashBits) : ZVHashSet(type) {
    if (type && !init(capacity, expand, hashBits, 0, 0)) ZError::fail();
}
ZVHashSet::ZVHashSet(const ZVArray& values) : ZVHashSet(values.getValueType()) {
    if (!add(values)) ZError::fail();
}
bool ZVHashSet::init(uint capacity, int16 expand, uint hashBits, uint autoHash, uint valueSize) {
    return setData(create(capacity, expand, hashBits, autoHash, valueSize));
}
ZVHashSet::MapData* ZVHashSet::create(uint capacity, int16 expand, uint hashBits, uint autoHash, uint valueSize) const {
    return make(nullptr, 0, valueSize, capacity, expand, hashBits, autoHash);
}
bool ZVHashSet::initType(ZMetaType* type) { return changeType(type); }

// Adding

/// One more, or one less, of a value in a multiset.
bool ZVHashSet::countUse(int index, bool more) {
    if (!detach()) return false;
    uint& usage = data->usage(uint(index));
    if (more && usage < 0xFFFFFFFF) ++usage;
    if (!more) --usage;
    return true;
}
static void noType() { orv_assertw("zvhashset", "ZVHashSet no type", __FILE__, __LINE__); }

bool ZVHashSet::addItem(const void* item) {
    if (!canAdd()) noType();
    if (int at = findItem(item); at >= 0) return !multi || countUse(at, true);
    return putItem(item, item, false, true);
}
bool ZVHashSet::addNewItem(const void* item) {
    if (!canAdd()) noType();
    return findItem(item) < 0 && putItem(item, item, false, true);
}
/// False without a type.
bool ZVHashSet::addGiven(const ZVariant& value) {
    item::Given given(type, value);
    return given.address() && addItem(given.address());
}
bool ZVHashSet::add(const ZVariant& value) {
    if (!canAdd()) noType();
    return addGiven(value);
}
bool ZVHashSet::addNew(const ZVariant& value) {
    if (!canAdd()) noType();
    return !contains(value) && addGiven(value);
}
bool ZVHashSet::addSelector(const ZSelector& name) { return isSelectorType() ? addItem(&name) : add(ZVariant(name)); }

/// Moves the values of a set of the same type in. Nobody shares its data.
bool ZVHashSet::merge(ZVHashSet& made) {
    if (!multi || !made.multi)
        for (uint i = 0; i < made.count(); ++i) made.data->usage(i) = 1;
    return absorb(made, multi);
}
/// Adds all values, or none; `of` is their type.
template <class F> bool ZVHashSet::addAll(ZMetaType* of, uint values, F&& value) {
    if (!canAdd()) {
        ZVHashSet made(of);
        made.multi = multi;
        if (!made.type) return values == 0;
        if (!made.addAll(of, values, value)) return false;
        *this = std::move(made);
        return true;
    }
    ZVHashSet made(type);
    made.multi = multi;
    for (uint i = 0; i < values; ++i)
        if (!made.addGiven(value(int(i)))) return false;
    return merge(made);
}
bool ZVHashSet::add(const ZVHashSet& other) {
    if (!canAdd() || sameTypes(other)) {
        ZVHashSet made(other);
        if (!made.detach() || (!type && !data && !takeType(other.type))) return false;
        return merge(made);
    }
    ZVHashSet made(type);
    made.multi = true;
    for (uint i = 0; i < other.count(); ++i) {
        const ZVariant value = other.entry(int(i));
        const item::Given given(type, value);
        if (!given.address() || !made.addItem(given.address())) return false;
        made.data->usage(uint(made.findItem(given.address()))) += other.usageAt(int(i)) - 1;
    }
    made.multi = other.multi;
    return merge(made);
}
bool ZVHashSet::add(const ZVArray& values) {
    return addAll(values.getValueType(), values.count(), [&](int i) { return values.variant(i); });
}
bool ZVHashSet::add(const ZVSelectMap& map) {
    return addAll(map.getValueType(), map.count(), [&](int i) { return map.entry(i); });
}
bool ZVHashSet::add(const ZVKeyMap& map) {
    return addAll(map.getValueType(), map.count(), [&](int i) { return map.entry(i); });
}
bool ZVHashSet::replace(const ZVariant& value, const ZVariant& with) {
    const int at = findValue(value);
    if (at < 0) return false;
    item::Given given(type, with);
    const uint times = data->usage(uint(at));
    if (!given.address() || !renameItem(at, given.address())) return false;
    data->usage(uint(at)) = times;
    return true;
}

// Asking

int ZVHashSet::findItem(const void* item) const { return findRaw(item); }
int ZVHashSet::findValue(const ZVariant& value) const {
    if (isEmpty()) return -1;
    item::Given given(type, value);
    return findRaw(given.address());
}
bool ZVHashSet::contains(const ZVHashSet& other) const {
    return other.isEmpty() || (type == other.type && containsItems(other));
}
bool ZVHashSet::contains(const ZVArray& values) const {
    for (uint i = 0; i < values.count(); ++i)
        if (type == values.getValueType() ? findRaw(values.get(int(i))) < 0 : !contains(values.variant(int(i))))
            return false;
    return true;
}
template <class Map> static bool containsValues(const ZVHashSet& set, const Map& map) {
    for (uint i = 0; i < map.count(); ++i)
        if (!set.contains(map.entry(int(i)))) return false;
    return true;
}
bool ZVHashSet::contains(const ZVSelectMap& map) const { return containsValues(*this, map); }
bool ZVHashSet::contains(const ZVKeyMap& map) const { return containsValues(*this, map); }
bool ZVHashSet::contains(const ZArrayT<ZSelector>& names) const {
    for (const ZSelector& name : names)
        if (!hasSelector(name)) return false;
    return true;
}
bool ZVHashSet::hasSelector(const ZSelector& name) const {
    return isSelectorType() ? findRaw(&name) >= 0 : contains(ZVariant(name));
}
uint ZVHashSet::usageAt(int index) const { return inRange(index) ? data->usage(uint(index)) : 0; }
uint ZVHashSet::usage(const ZVariant& value) const { return usageAt(findValue(value)); }
bool ZVHashSet::matches(const ZVHashSet& other) const { return count() == other.count() && contains(other); }
/// Whether a format takes one integer and nothing else: others would read what isn't there.
static bool hasOneNumber(const char* format) {
    int numbers = 0;
    for (const char* at = format; at && *at; ++at) {
        if (*at != '%') continue;
        if (*++at == '%') continue;
        int width = 0;
        while (*at >= '0' && *at <= '9' && width++ < 3) ++at;
        if (!*at || !std::strchr("dioux", *at) || ++numbers > 1) return false;
    }
    return numbers == 1;
}
ZSelector ZVHashSet::createSelector(const ZString& format, bool add) {
    if (!type && !data && !initType(ztype<ZSelector>())) return {};
    ZSelector found;
    char* pattern = format.astr();
    if (isSelectorType() && hasOneNumber(pattern)) {
        // One of so many numbers is free.
        const uint all = count();
        for (uint i = 1; i <= all + 1 && found.isEmpty(); ++i) {
            ZString text;
            ZSelector name = text.printf(pattern, all + i) ? ZSelector(text) : ZSelector();
            if (name.isEmpty()) break;
            if (!hasSelector(name)) found = name;
        }
    }
    zfree(pattern);
    return found.isEmpty() || !add || addSelector(found) ? found : ZSelector();
}

// Removing

bool ZVHashSet::removeItem(const void* item, bool all) {
    const int at = findItem(item);
    if (at < 0) return false;
    return multi && !all && data->usage(uint(at)) > 1 ? countUse(at, false) : removeIndex(at);
}
bool ZVHashSet::remove(const ZVariant& value, bool all) {
    if (isEmpty()) return false;
    item::Given given(type, value);
    return removeItem(given.address(), all);
}
bool ZVHashSet::removeSelector(const ZSelector& name) {
    return isSelectorType() ? removeItem(&name, true) : remove(ZVariant(name), true);
}
/// Removes values in one pass: `place(i, times)` answers where the i-th one stands here, -1 if it doesn't, and how
/// often it goes.
template <class F> bool ZVHashSet::removeAll(uint values, bool all, F&& place) {
    ZArrayT<int> gone;
    if (!multi || all) {
        for (uint i = 0; i < values; ++i) {
            uint times;
            if (int at = place(int(i), times); at >= 0 && !gone.append(at)) return false;
        }
        return removeItems(gone);
    }
    if (isEmpty()) return true;
    ZArrayT<uint> left;
    if (!left.setCount(count()) || !gone.reserve(count())) return false;
    for (uint i = 0; i < count(); ++i) left[i] = data->usage(i);
    for (uint i = 0; i < values; ++i) {
        uint times = 1;
        const int at = place(int(i), times);
        if (at < 0 || !left[uint(at)]) continue;
        left[uint(at)] -= std::min(times, left[uint(at)]);
        if (!left[uint(at)] && !gone.append(at)) return false;
    }
    if (!detach()) return false;
    for (uint i = 0; i < count(); ++i)
        if (left[i]) data->usage(i) = left[i];
    return removeItems(gone);
}
bool ZVHashSet::remove(const ZVHashSet& other, bool all) {
    const ZVHashSet kept(other);
    return removeAll(kept.count(), all, [&](int i, uint& times) {
        times = kept.multi ? kept.usageAt(i) : 1;
        return type == kept.type ? findRaw(std::as_const(kept).valuePtr(i)) : findValue(kept.entry(i));
    });
}
bool ZVHashSet::remove(const ZVArray& values, bool all) {
    return removeAll(values.count(), all, [&](int i, uint& times) {
        times = 1;
        return type == values.getValueType() ? findRaw(values.get(i)) : findValue(values.variant(i));
    });
}
bool ZVHashSet::changed() {
    ZArrayT<int> order, gone;
    if (isEmpty()) return true;
    if (!detach() || !getSortOrder(order, true) || !gone.reserve(count())) return false;
    data->rehash();
    // Equal ones stand side by side now, the first one in front.
    for (uint i = 1, first = 0; i < order.count(); ++i) {
        const uint kept = uint(order[first]), at = uint(order[i]);
        if (data->orderKeys(data->key(kept), data->key(at)) != 0)
            first = i;
        else if (gone.append(int(at)))
            data->usage(kept) += data->usage(at);
    }
    return removeItems(gone);
}
bool ZVHashSet::intersection(const ZVHashSet& other) {
    ZArrayT<int> places;
    for (uint i = 0; i < count(); ++i)
        if ((type != other.type || other.findRaw(std::as_const(*this).valuePtr(int(i))) < 0) && !places.append(int(i)))
            return false;
    return removeItems(places);
}
ZVariant ZVHashSet::pop() {
    const int last = int(count()) - 1;
    ZVariant value = entry(last);
    return removeIndex(last) ? value : ZVariant();
}

// By position

ZVArray ZVHashSet::array() const { return values(); }
ZVHashSet ZVHashSet::extract(const ZArrayT<int>& indexes) const {
    ZVHashSet made(type);
    made.multi = multi;
    ZArrayT<int> order(indexes);
    bool done = order.isEmpty() || order.sort();
    if (!type && data) done = done && made.init(0, 100, 0, 0, data->valueSize());
    for (uint i = 0; done && i < order.count(); ++i)
        if (const int at = std::as_const(order)[i]; inRange(at) && made.findItem(valuePtr(at)) < 0)
            done = made.addNewItem(valuePtr(at));
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}
uint ZVHashSet::hashValue(const void* item) const {
    return item ? item::hash(type, item, data ? data->valueSize() : 0) : 0;
}

// Whole

bool ZVHashSet::matchValue(const ZVHashSet& other, real tolerance) const { return matchItems(other, tolerance); }
uint ZVHashSet::hashKey() const { return hashItems(); }
