#include "value/typeItems.h"

#include "object/ZDetachContext.h"
#include "object/ZMethodRef.h"
#include "text/ZString.h"
#include "value/ZNamedTypeArray.h"
#include "value/ZTypeArray.h"
#include "value/ZVArray.h"
#include "value/itemType.h"

#include <algorithm>

namespace orv {

ZMetaType* instancePointerType() {
    const ZMetaType* type = ztype<ZType>();
    return type ? type->getPtrType() : nullptr;
}
bool instanceIn(const ZVariant& value, const ZType*& instance) {
    instance = value.toType();
    return instance || !value.type() || (value.isZType() && !value.getPtr());
}

#define ORV_TYPE_ITEMS(Result) template <class Self, class Entry> Result TypeItems<Self, Entry>

// Type

ORV_TYPE_ITEMS(ZSelector)::getTypeName() const {
    const ZMetaType* type = getValueType();
    return type ? type->getName() : ZSelector();
}
ORV_TYPE_ITEMS(bool)::isType(const ZMetaType* wanted) const { return item::isOf(getValueType(), wanted); }
ORV_TYPE_ITEMS(bool)::isType(const ZSelector& name) const { return item::isOf(getValueType(), name); }
ORV_TYPE_ITEMS(ZVArray)::array() const {
    ZVArray made(getValueType());
    bool done = made.setSpace(int(count()));
    for (uint i = 0; done && i < count(); ++i) done = made.appendItem(row().at(i));
    if (!done) {
        made.clear();
        ZError::fail();
    }
    return made;
}

// Writing

/// `wanted` is the instance that the entry was made for, which refuses to be held on its way out.
ORV_TYPE_ITEMS(bool)::insertEntry(int index, const Entry& entry, const ZType* wanted) {
    return entry.type.get() == wanted && items.insert(index < 0 ? 0 : uint(index), entry);
}
ORV_TYPE_ITEMS(bool)::storeEntry(int index, const Entry& entry, const ZType* wanted) {
    return inRange(index) && entry.type.get() == wanted && items.set(uint(index), entry) && items.setSorted(false);
}
ORV_TYPE_ITEMS(bool)::insert(int index, const ZType* instance) { return insertEntry(index, Entry(instance), instance); }
ORV_TYPE_ITEMS(bool)::insert(int index, const ZVariant& value) {
    const ZType* instance;
    return instanceIn(value, instance) && insert(index, instance);
}
ORV_TYPE_ITEMS(bool)::insertArray(int index, const Self& other) {
    const ZArrayT<Entry> kept(other.items);
    return kept.isEmpty() || items.insert(index < 0 ? 0 : uint(index), kept.data(), kept.count());
}
ORV_TYPE_ITEMS(bool)::store(int index, const ZType* instance) {
    if (!inRange(index)) return false;
    Entry entry(items.data()[index]);
    entry.type = ZRetainPtrT<ZType>(instance);
    return storeEntry(index, entry, instance);
}
ORV_TYPE_ITEMS(bool)::store(int index, const ZVariant& value) {
    const ZType* instance;
    return instanceIn(value, instance) && store(index, instance);
}
ORV_TYPE_ITEMS(bool)::set(int index, const ZVariant& value) {
    return index >= 0 && uint(index) == count() ? append(value) : store(index, value);
}
ORV_TYPE_ITEMS(ZVariant)::pop() {
    const int last = int(count()) - 1;
    ZVariant value = variant(last);
    return removeIndex(last) ? value : ZVariant();
}
ORV_TYPE_ITEMS(bool)::remove(int index, int count) {
    const large first = std::max(index, 0), last = std::min(large(index) + count, large(this->count()));
    return first >= last || items.remove(uint(first), uint(last - first));
}
ORV_TYPE_ITEMS(bool)::removeItems(const ZArrayT<int>& indexes) {
    ZArrayT<int> rest(indexes);
    const bool sorted = items.isSorted();
    return invertIndex(rest) && (rest.count() == count() || (reorder(rest) && items.setSorted(sorted)));
}
ORV_TYPE_ITEMS(bool)::setSpace(int count) {
    if (count < 0) return false;
    if (count == 0 && items.isEmpty() && !items.capacity()) return true;
    ZArrayT<Entry> made;
    if (!made.setExpand(expand()) || !made.reserve(uint(count))) return false;
    const uint kept = std::min(uint(count), this->count());
    if (!made.append(items.data(), kept) || !made.setSorted(items.isSorted())) return false;
    std::swap(items, made);
    return true;
}
ORV_TYPE_ITEMS(bool)::expand(uint count, bool exact) {
    if (count > itemLimit - this->count()) return false;
    if (!exact) return items.expand(count);
    return items.detach() && items.reserve(this->count() + count);
}
ORV_TYPE_ITEMS(bool)::changePlace(int from, int count, int to) {
    const large all = this->count();
    if (from < 0 || to < 0 || count < 0 || large(from) + count > all || large(to) + count > all) return false;
    if (from == to || count == 0) return true;
    Entry* first = items.entry(0);
    if (!first) return false;
    if (from < to)
        std::rotate(first + from, first + from + count, first + to + count);
    else
        std::rotate(first + to, first + from, first + from + count);
    return items.setSorted(false);
}
ORV_TYPE_ITEMS(bool)::changePlace(const ZArrayT<int>& from, int to) {
    ZArrayT<int> order(from);
    if (!invertIndex(order)) return false;
    // A position that isn't there, or is listed twice, leaves too few others.
    if (order.count() + from.count() != count() || to < 0 || uint(to) > order.count()) return false;
    return from.isEmpty() || (order.insert(uint(to), from.data(), from.count()) && reorder(order));
}

// Search, order

ORV_TYPE_ITEMS(int)::findPosition(const ZVariant& value, const ZMethodRef& method, bool ascending) const {
    const ZArrayT<Entry> kept(items);
    return row().findPosition(value, method, ascending);
}
ORV_TYPE_ITEMS(bool)::getSortOrder(ZArrayT<int>& order, bool ascending) const {
    ZArrayT<int> made;
    const ZArrayT<Entry> kept(items);
    if (!made.setCount(count()) || (count() && !row().order(&made[0], ascending))) return false;
    order = std::move(made);
    return true;
}
ORV_TYPE_ITEMS(bool)::sortByValue(bool ascending) {
    ZArrayT<int> order;
    const ZArrayT<Entry> kept(items);
    return getSortOrder(order, ascending) && kept.data() == items.data() && reorder(order);
}
ORV_TYPE_ITEMS(bool)::sort(const ZMethodRef& method, bool ascending) {
    if (!method.isValid()) return false;
    ZArrayT<int> order;
    const ZArrayT<Entry> kept(items);
    if (!order.setCount(count()) || (count() && !row().order(&order[0], method, ascending))) return false;
    return kept.data() == items.data() && reorder(order);
}
ORV_TYPE_ITEMS(bool)::reverse() {
    if (count() < 2) return true;
    Entry* first = items.entry(0);
    if (!first) return false;
    std::reverse(first, first + count());
    return items.setSorted(false);
}

// Excerpts

ORV_TYPE_ITEMS(bool)::pick(const ZArrayT<int>& order, ZArrayT<Entry>& picked) const {
    ZArrayT<Entry> made;
    if (!made.setExpand(expand()) || !made.reserve(order.count())) return false;
    for (int index : order)
        if (!made.append(inRange(index) ? items.data()[index] : Entry())) return false;
    picked = std::move(made);
    return true;
}
ORV_TYPE_ITEMS(bool)::reorder(const ZArrayT<int>& order) {
    return order.isEmpty() ? discardItems() : pick(order, items);
}
ORV_TYPE_ITEMS(bool)::inside(const ZArrayT<int>& indexes, ZArrayT<int>& kept) const {
    for (int index : indexes)
        if (inRange(index) && !kept.append(index)) return false;
    return true;
}
ORV_TYPE_ITEMS(Self)::failed() const {
    ZError::fail();
    return Self();
}
ORV_TYPE_ITEMS(Self)::rearrange(const ZArrayT<int>& order) const {
    Self made;
    return order.isEmpty() || pick(order, made.items) ? made : failed();
}
ORV_TYPE_ITEMS(Self)::extract(const ZArrayT<int>& indexes) const {
    ZArrayT<int> kept;
    return inside(indexes, kept) ? rearrange(kept) : failed();
}
ORV_TYPE_ITEMS(Self)::extract(int index, int count) const {
    const large all = large(this->count());
    const large first = std::clamp<large>(index, 0, all), last = std::clamp<large>(large(index) + count, first, all);
    Self made;
    return first == last || made.items.append(items.data() + first, uint(last - first)) ? made : failed();
}
ORV_TYPE_ITEMS(Self)::extract(const ZVArray& indexes) const {
    ZArrayT<int> read;
    return readPositions(indexes, read) ? extract(read) : failed();
}
ORV_TYPE_ITEMS(Self)::extractRemove(const ZArrayT<int>& indexes) {
    ZArrayT<int> kept;
    Self made;
    const bool done = inside(indexes, kept) && (kept.isEmpty() || (pick(kept, made.items) && removeItems(kept)));
    return done ? made : failed();
}
ORV_TYPE_ITEMS(Self)::extractRemove(int index, int count) {
    ZFailGuard guard;
    Self made = extract(index, count);
    return guard.rose() || remove(index, count) ? made : failed();
}
ORV_TYPE_ITEMS(Self)::extractRemove(const ZVArray& indexes) {
    ZArrayT<int> read;
    return readPositions(indexes, read) ? extractRemove(read) : failed();
}

// Sharing

ORV_TYPE_ITEMS(bool)::detach(bool deep, bool grow) {
    const uint room = items.capacity();
    if (!deep) return items.detach() && (!grow || items.reserve(room));
    if (items.isEmpty()) return true;
    // Built aside: where one instance can't be copied, this array is as it was.
    const bool alone = items.isDetached();
    ZArrayT<Entry> made;
    if (!made.setExpand(expand()) || !made.reserve(grow ? room : count())) return false;
    for (const Entry& from : items) {
        Entry entry(from);
        // Besides this one and the item's own reference.
        if (from.type && (!alone || from.type->refcount() > 2)) {
            ZType* copy = from.type->copy();
            if (!copy) return false;
            entry.type = ZRetainPtrT<ZType>::adopt(copy);
        }
        if (!made.append(std::move(entry))) return false;
    }
    if (!made.setSorted(items.isSorted())) return false;
    std::swap(items, made);
    return true;
}
ORV_TYPE_ITEMS(bool)::deepDetach() {
    ZDetachContext* context = zmake<ZDetachContext>();
    const bool done = context && deepDetach(context);
    zrelease(context);
    return done;
}
ORV_TYPE_ITEMS(bool)::deepDetach(ZDetachContext* context) {
    if (!context) return deepDetach();
    if (!items.detach()) return false;
    for (uint i = 0; i < count(); ++i) {
        // The copy's own reference would count as somebody else's.
        ZType* held = items.entry(i)->type.give();
        const bool done = context->detachHeld(held);
        ZRetainPtrT<ZType> kept = ZRetainPtrT<ZType>::adopt(held);
        if (i >= count() || !items.detach()) return false;
        items.entry(i)->type = std::move(kept);
        if (!done) return false;
    }
    return items.setSorted(false);
}
ORV_TYPE_ITEMS(bool)::drop() {
    const bool last = isDetached();
    clear();
    return last;
}
ORV_TYPE_ITEMS(bool)::cleanupPtr(const void* instance) {
    if (!instance || findPointer(instance) < 0) return true;
    if (!items.detach() || !items.setSorted(false)) return false;
    // The last reference may be among them: it goes when the array is whole again.
    const ZRetainPtrT<ZType> held(static_cast<const ZType*>(instance));
    for (uint i = 0; i < count(); ++i)
        if (Entry* entry = items.entry(i); entry && entry->type.get() == instance) entry->type = {};
    return true;
}
ORV_TYPE_ITEMS(ZString)::toString() const { return row().text(); }

template class TypeItems<ZTypeArray, TypeItem>;
template class TypeItems<ZNamedTypeArray, NamedTypeItem>;

} // namespace orv
