#include "object/ZBindingLink.h"

#include "object/ZBinding.h"
#include "object/ZObjectData.h"
#include "object/names.h"
#include "object/ztype.h"
#include "value/ZVSelectMap.h"

namespace {

template <class T> int order(const T& a, const T& b) { return (a > b) - (a < b); }

/// One side of a link: its object and the field there.
struct Side {
    ZObject* object;
    ZSelector name, qualifier;
};
Side sideOf(ZObject* root, const ZSelector& whole) {
    Side side{};
    ZSelector path;
    ZBindingLink::normalize(whole, path, side.name, side.qualifier);
    side.object = ZBindingLink::findObject(root, path);
    return side;
}
Side sideOf(const ZVSelectMap& objects, const ZSelector& root, const ZSelector& whole) {
    Side side{};
    ZSelector path;
    ZBindingLink::normalize(whole, path, side.name, side.qualifier);
    side.object = ZBindingLink::findObject(objects, root, path);
    return side;
}
template <class T> bool bindSides(const T& rule, const Side& src, const Side& dst, bool on) {
    return rule.bind(src.object, dst.object, src.name, dst.name, src.qualifier, dst.qualifier, on);
}

/// The value of a property goes to one of another name.
void copyValue(ZObject* from, ZObject* to, const ZSelector& name, const ZSelector& toName) {
    if (!from->hasProperty(name)) return;
    if (name == toName)
        to->copyProperty(from, name);
    else
        to->setProperty(toName, from->getProperty(name));
}
bool isMethod(const ZSelector& name) { return name.type() == ZSelector::Method; }

} // namespace

// Links

bool ZBindingLink::setSource(const ZSelector& name) {
    sourceName = name;
    return true;
}
bool ZBindingLink::setTarget(const ZSelector& name) {
    targetName = name;
    return true;
}
bool ZBindingLink::setDirection(const Direction& direction) {
    if (direction < Forward || direction > Cross) return false;
    way = direction;
    return true;
}
int ZBindingLink::compare(const ZBindingLink& other) const {
    if (int by = sourceName.compare(other.sourceName)) return by;
    if (int by = targetName.compare(other.targetName)) return by;
    return order(way, other.way);
}
void ZBindingLink::swapDirection(bool turn) {
    std::swap(sourceName, targetName);
    if (turn) way = Direction((way & Forward ? Backward : 0) | (way & Backward ? Forward : 0));
}

void ZBindingLink::normalize(const ZSelector& whole, ZSelector& path, ZSelector& name, ZSelector& qualifier) {
    const bool function = isMethod(whole);
    const ZSelector method = function ? whole.method() : whole;
    qualifier = function ? whole.methodQualifier() : ZSelector();
    const ZSelector named = function ? method.methodName() : whole;
    const int parts = named.type() == ZSelector::UID ? named.parcount() : 1;
    path = parts > 1 ? named.extract(0, parts - 1) : ZSelector();
    name = parts > 1 ? named.param(parts - 1) : named;
    if (function) name = ZSelector(name, method.result(), method.params(), method.parcount(), ZSelector::Method);
}

ZObject* ZBindingLink::findObject(ZObject* root, const ZSelector& path) {
    if (path.isEmpty()) return root;
    const int parts = path.type() == ZSelector::UID ? path.parcount() : 1;
    ZObject* at = root;
    for (int i = 0; i < parts; ++i) {
        const ZSelector part = parts > 1 ? path.param(i) : path;
        ZObject* next = at ? orv::heldObject(at, part) : nullptr;
        if (!next && at) next = at->memberObject(part);
        if (!next) next = ZObject::publishedObject(part);
        if (!next) return nullptr;
        at = next;
    }
    return at;
}
ZObject* ZBindingLink::findObject(const ZVSelectMap& objects, const ZSelector& name, const ZSelector& path) {
    ZObject* const root = objects.variant(name).toObject();
    if (path.isEmpty()) return root;
    const int parts = path.type() == ZSelector::UID ? path.parcount() : 1;
    ZObject* named = objects.variant(parts > 1 ? path.param(0) : path).toObject();
    if (!named) return findObject(root, path);
    return parts > 1 ? findObject(named, path.extract(1, parts)) : named;
}

bool ZBindingLink::bind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                        const ZSelector& srcQualifier, const ZSelector& dstQualifier, bool on) const {
    if (!src || !dst) return false;
    if (on && !isMethod(srcName) && !isMethod(dstName)) {
        if (way & Forward)
            copyValue(src, dst, srcName, dstName);
        else if (way == Backward)
            copyValue(dst, src, dstName, srcName);
    }
    if (way & Forward) {
        if (on)
            src->bind(dst, srcName, dstName, srcQualifier, dstQualifier);
        else
            src->unbind(dst, srcName, dstName, srcQualifier, dstQualifier);
    }
    if (way & Backward) {
        if (on)
            dst->bind(src, dstName, srcName, dstQualifier, srcQualifier);
        else
            dst->unbind(src, dstName, srcName, dstQualifier, srcQualifier);
    }
    return true;
}
bool ZBindingLink::bind(ZObject* object, bool on) const { return bind(object, object, on); }
bool ZBindingLink::bind(ZObject* src, ZObject* dst, bool on) const {
    return bindSides(*this, sideOf(src, sourceName), sideOf(dst, targetName), on);
}
bool ZBindingLink::bind(const ZVSelectMap& objects, const ZSelector& root, bool on) const {
    return bindSides(*this, sideOf(objects, root, sourceName), sideOf(objects, root, targetName), on);
}

// Items

bool ZBindingItem::setChange(const ZSelector& name) {
    changeName = name;
    return true;
}
bool ZBindingItem::setSource(const ZSelector& name) {
    sourceName = name;
    return true;
}
bool ZBindingItem::setTarget(const ZSelector& name) {
    targetName = name;
    return true;
}
bool ZBindingItem::setParamPos(const int& arguments) {
    if (arguments < 0) return false;
    position = arguments;
    return true;
}
bool ZBindingItem::setParam(const ZVArray& values) {
    ZFailGuard failures;
    ZVArray fresh(values);
    if (failures.rose()) {
        failures.forget();
        return false;
    }
    fixed = std::move(fresh);
    return true;
}
bool ZBindingItem::setCrossBind(const bool& on) {
    cross = on;
    return true;
}
int ZBindingItem::compare(const ZBindingItem& other) const {
    if (int by = changeName.compare(other.changeName)) return by;
    if (int by = sourceName.compare(other.sourceName)) return by;
    if (int by = targetName.compare(other.targetName)) return by;
    if (int by = order(position, other.position)) return by;
    if (int by = order(cross, other.cross)) return by;
    return fixed.compare(other.fixed);
}

bool ZBindingItem::bind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                        const ZSelector& srcQualifier, const ZSelector& dstQualifier, bool on) const {
    if (!src || !dst) return false;
    ZSelector target = dstName, kept;
    if (!changeName.isEmpty() && !isMethod(dstName)) {
        kept = dstName;
        const ZSelector plain = isMethod(changeName) ? changeName.methodName() : changeName;
        target = zsel<"bool changeProperty(const ZVariant&, const ZSelector&)">();
        if (plain != zsel<"change">() && !target.setMethodName(plain)) return false;
    }
    if (!on) {
        bool gone = src->unbind(dst, srcName, target, srcQualifier, dstQualifier);
        if (cross) gone |= dst->unbind(src, dstName, srcName, dstQualifier, srcQualifier);
        return gone;
    }
    ZArrayT<ZVariant> values;
    for (uint i = 0; i < fixed.count(); ++i)
        if (!values.append(fixed.variant(int(i)))) return false;
    const bool byName = values.isEmpty() && !kept.isEmpty();
    if (byName && !values.append(ZVariant(kept))) return false;
    if (!isMethod(srcName) && !isMethod(dstName)) copyValue(src, dst, srcName, dstName);
    const int made = src->bind(dst, srcName, target, srcQualifier, dstQualifier);
    if (made >= 0 && !values.isEmpty()) ZBinding::setParams(made, byName ? 1 : position, values);
    if (cross) dst->bind(src, dstName, srcName, dstQualifier, srcQualifier);
    return made >= 0;
}
bool ZBindingItem::bind(ZObject* object, bool on) const { return bind(object, object, on); }
bool ZBindingItem::bind(ZObject* src, ZObject* dst, bool on) const {
    return bindSides(*this, sideOf(src, sourceName), sideOf(dst, targetName), on);
}
bool ZBindingItem::bind(const ZVSelectMap& objects, const ZSelector& root, bool on) const {
    return bindSides(*this, sideOf(objects, root, sourceName), sideOf(objects, root, targetName), on);
}

// Sets

ZBindingSet::ZBindingSet() { items.setType(ztype<ZBindingItem>()); }
bool ZBindingSet::setRootName(const ZSelector& name) {
    root = name;
    return true;
}
bool ZBindingSet::setBinding(const ZVArray& values) {
    if (!values.isEmpty() && !values.isType(ztype<ZBindingItem>())) return false;
    ZFailGuard failures;
    ZVArray fresh(values);
    if (failures.rose()) {
        failures.forget();
        return false;
    }
    items = std::move(fresh);
    return true;
}
bool ZBindingSet::addItem(const ZBindingItem& item) {
    // A set that was made ahead of the types learns its own now.
    if (!items.hasType() && !items.setType(ztype<ZBindingItem>())) return false;
    return items.appendItem(&item);
}
int ZBindingSet::compare(const ZBindingSet& other) const {
    if (int by = root.compare(other.root)) return by;
    return items.compare(other.items);
}
template <class Call> bool ZBindingSet::each(Call call) const {
    // What is bound may change the set.
    const ZVArray held(items);
    for (uint i = 0; i < held.count(); ++i) call(*static_cast<const ZBindingItem*>(held.constItemPtr(int(i))));
    return true;
}
bool ZBindingSet::bind(ZObject* object, bool on) const {
    return each([&](const ZBindingItem& item) { item.bind(object, on); });
}
bool ZBindingSet::bind(ZObject* src, ZObject* dst, bool on) const {
    return each([&](const ZBindingItem& item) { item.bind(src, dst, on); });
}
bool ZBindingSet::bind(const ZVSelectMap& objects, bool on) const {
    return each([&](const ZBindingItem& item) { item.bind(objects, root, on); });
}
