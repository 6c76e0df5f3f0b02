#include "value/ZVHashSet.h"

#include "core/debug.h"
#include "object/ztype.h"
#include "value/ZVArray.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"
#include "value/valueMapData.h"

#include <algorithm>

using namespace orv;

// Lifetime

ZVHashSet::ZVHashSet(ZMetaType* type, uint capacity, int16 expand, uint hashBits) : ZVHashSet(type) {
    if (type && !create(0, 0, capacity, expand, hashBits, 0)) ZError::fail();
}
ZVHashSet::ZVHashSet(const ZVArray& values) : ZVHashSet(values.getValueType()) {
    if (!add(values)) ZError::fail();
}
bool ZVHashSet::init(uint capacity, int16 expand, uint hashBits, uint load, uint valueSize) {
    return create(0, valueSize, capacity, expand, hashBits, load);
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
bool ZVHashSet::addItem(const void* item) {
    if (!type && !data) orv_assertw("zvhashset", "ZVHashSet no type", __FILE__, __LINE__);
    if (int at = findItem(item); at >= 0) return !multi || countUse(at, true);
    return addNewItem(item);
}
bool ZVHashSet::addNewItem(const void* item) { return findItem(item) < 0 && putItem(item, item, false, true); }
bool ZVHashSet::add(const ZVariant& value) {
    if (!type && !data) {
        ZVHashSet made(value.type());
        made.multi = multi;
        if (!made.type || !made.add(value)) return false;
        *this = std::move(made);
        return true;
    }
    item::Given given(type, value);
    return given.address() && addItem(given.address());
}
bool ZVHashSet::addNew(const ZVariant& value) { return !contains(value) && add(value); }
bool ZVHashSet::addSelector(const ZSelector& name) { return isSelectorType() ? addItem(&name) : add(ZVariant(name)); }

/// Adds all values, or none.
template <class F> bool ZVHashSet::addAll(uint values, F&& value) {
    ZVHashSet made(*this);
    for (uint i = 0; i < values; ++i)
        if (!made.add(value(int(i)))) return false;
    *this = std::move(made);
    return true;
}
bool ZVHashSet::add(const ZVHashSet& other) {
    if (!type && !data) {
        const bool multiple = multi;
        *this = other;
        multi = multiple;
        return true;
    }
    const ZVHashSet from(other);
    return addAll(from.count(), [&](int i) { return from.entry(i); });
}
bool ZVHashSet::add(const ZVArray& values) {
    const ZVArray from(values);
    return addAll(from.count(), [&](int i) { return from.variant(i); });
}
bool ZVHashSet::add(const ZVSelectMap& map) {
    return addAll(map.count(), [&](int i) { return map.entry(i); });
}
bool ZVHashSet::add(const ZVKeyMap& map) {
    return addAll(map.count(), [&](int i) { return map.entry(i); });
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
bool ZVHashSet::hasSelector(const ZSelector& name) const {
    return isSelectorType() ? findRaw(&name) >= 0 : contains(ZVariant(name));
}
uint ZVHashSet::usageAt(int index) const { return inRange(index) ? data->usage(uint(index)) : 0; }
uint ZVHashSet::usage(const ZVariant& value) const { return usageAt(findValue(value)); }
bool ZVHashSet::matches(const ZVHashSet& other) const { return count() == other.count() && contains(other); }
/// Whether a format takes one number and nothing else: others would read what isn't there.
static bool hasOneNumber(const char* format) {
    int numbers = 0;
    for (const char* at = format; at && *at; ++at) {
        if (*at != '%') continue;
        if (*++at == '%') continue;
        int width = 0;
        while (*at >= '0' && *at <= '9' && width++ < 3) ++at;
        if ((*at != 'd' && *at != 'u' && *at != 'x') || ++numbers > 1) return false;
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
bool ZVHashSet::removeSet(const ZVHashSet& other) {
    if (type != other.type) return true;
    ZArrayT<int> places;
    for (uint i = 0; i < other.count(); ++i)
        if (int at = findRaw(other.valuePtr(int(i))); at >= 0 && !places.append(at)) return false;
    return removeItems(places);
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
