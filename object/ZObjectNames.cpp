#include "core/ZHashMapT.h"
#include "core/ZMapItems.h"
#include "core/ZSpinLock.h"
#include "core/construct.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/ZPropertyPtr.h"
#include "object/names.h"
#include "value/ZVariant.h"

// Objects by name: in the tables of the process, and along paths through the tree and the properties.

using orv::ObjectData;

namespace {

using NameTable = ZHashMapT<ZSelector, ZKeyValueT<ZSelector, ZObject*>>;

/// Objects by the name under which they were entered. Made when first wanted.
struct NameTables {
    NameTable published, propertyDelegates;
};
constinit ZSpinLock tablesLock;
constinit NameTables* tables = nullptr;

NameTable& tableOf(ObjectData::Bits bit) {
    return bit == ObjectData::Published ? tables->published : tables->propertyDelegates;
}
void leaveTable(NameTable& table, const ZSelector& name, const ZObject* object) {
    if (ZObject* const* entered = std::as_const(table).get(name); entered && *entered == object) table.remove(name);
}
bool enter(ZObject* object, ObjectData::Bits bit) {
    ObjectData& data = ObjectData::at(object);
    ZSelector name;
    ZScopedLock held(tablesLock);
    name = data.selector.get();
    if (name.isEmpty() || (!tables && !(tables = zmake<NameTables>()))) return false;
    if (!tableOf(bit).set(name, object)) return false;
    data.set(bit, true);
    return true;
}
void leave(ZObject* object, ObjectData::Bits bit) {
    ObjectData& data = ObjectData::at(object);
    ZSelector name;
    ZScopedLock held(tablesLock);
    name = data.selector.get();
    if (tables) leaveTable(tableOf(bit), name, object);
    data.set(bit, false);
}
ZObject* entered(const ZSelector& name, ObjectData::Bits bit) {
    ZScopedLock held(tablesLock);
    ZObject* const* found = tables ? std::as_const(tableOf(bit)).get(name) : nullptr;
    return found ? *found : nullptr;
}
/// Under the lock.
void move(ZObject* object, const ZSelector& from, const ZSelector& name, ObjectData::Bits bit) {
    ObjectData& data = ObjectData::at(object);
    if (!tables || !data.has(bit)) return;
    NameTable& table = tableOf(bit);
    leaveTable(table, from, object);
    if (name.isEmpty() || !table.set(name, object)) data.set(bit, false);
}

/// Parts of a path; a name that is none has itself as its only part.
struct Path {
    explicit Path(const ZSelector& name)
        : whole(name), deep(name.type() == ZSelector::UID), count(deep ? uint(name.parcount()) : 1),
          parts(deep ? name.params() : &whole) {}
    /// The parts from one place up to another, as a name.
    ZSelector range(uint from, uint to) const {
        if (from == 0 && to == count) return whole;
        return from < to ? ZSelector(parts + from, int(to - from), ZSelector::UID) : ZSelector();
    }

    const ZSelector whole;
    const bool deep;
    const uint count;
    const ZSelector* const parts;
};

/// The object behind the current one in the order of the tree, below `root`; null at the end.
ZObject* nextInTree(ZObject* at, const ZObject* root) {
    if (at->first()) return at->first();
    while (at && at != root && !at->next()) at = at->getParent();
    return at && at != root ? at->next() : nullptr;
}

/// The property as an object, if its type says that it holds one.
ZObject* objectProperty(const ZObject* object, const ZSelector& name, bool declared) {
    if (!object->hasProperty(name)) return nullptr;
    if (declared) {
        const ZMetaType* type = object->getPropertyType(name);
        if (!type || type->getType(true) != ZMetaType::Object) return nullptr;
    }
    return orv::heldObject(object, name);
}

/// How many parts of a path are taken together when a part of it is looked for as one name: with more, each try would
/// be as long as the path.
constexpr uint pathWindow = 64;

/// Part for part; where that ends, back along the way for an object that knows the rest by one name.
ZObject* followPath(const ZObject* from, const Path& path) {
    const ZObject* way[pathWindow] = {};
    const ZObject* at = from;
    uint i = 0;
    for (; i < path.count && at; ++i) {
        way[i % pathWindow] = at;
        at = at->findObject(path.parts[i], false);
    }
    if (at) return const_cast<ZObject*>(at);
    for (uint back = 0; back < pathWindow && i-- > 0; ++back) {
        if (i + 1 == path.count) continue; // it was asked for that
        at = way[i % pathWindow];
        const ZSelector rest = path.range(i, path.count);
        ZObject* found = i ? at->getFirst(rest) : nullptr;
        if (!found) found = objectProperty(at, rest, false);
        if (found) return found;
    }
    return nullptr;
}

} // namespace

namespace orv {

ZObject* heldObject(const ZType* owner, const ZSelector& name) {
    const ZVariant value = owner->getProperty(name);
    ZObject* object = value.toObject();
    return object && value.referenceCount() > 1 ? object : nullptr;
}

void forgetPublished(ZObject* object) { leave(object, ObjectData::Published); }
void forgetPropertyDelegate(ZObject* object) { leave(object, ObjectData::PropertyDelegate); }
bool rename(ZObject* object, const ZSelector& name) {
    ZSelector from;
    SharedName::Former former;
    // Names change under the lock of the tables, which would else keep one that nobody finds again.
    ZScopedLock held(tablesLock);
    from = ObjectData::at(object).selector.get();
    if (!ObjectData::at(object).selector.set(name, former)) return false;
    for (const auto bit : {ObjectData::Published, ObjectData::PropertyDelegate}) move(object, from, name, bit);
    return true;
}

} // namespace orv

// The tables

bool ZObject::openNamed() { return true; }
void ZObject::closeNamed() {
    ZScopedLock held(tablesLock);
    zrelease(std::exchange(tables, nullptr));
}
ZObject* ZObject::publishedObject(const ZSelector& name) { return entered(name, ObjectData::Published); }
ZObject* ZObject::propertyDelegate(const ZSelector& name) { return entered(name, ObjectData::PropertyDelegate); }

bool ZObject::publishNamed() { return priv && enter(this, ObjectData::Published); }
bool ZObject::removeNamed() {
    if (!priv || !priv->has(ObjectData::Published)) return false;
    leave(this, ObjectData::Published);
    return true;
}
bool ZObject::setPropertyDelegate(bool on) {
    if (!priv) return false;
    if (on) return enter(this, ObjectData::PropertyDelegate);
    if (priv->has(ObjectData::PropertyDelegate)) leave(this, ObjectData::PropertyDelegate);
    return true;
}

// Paths

ZObject* ZObject::memberObject(const ZSelector& name) const {
    const Path path(name);
    const ZObject* at = this;
    for (uint i = 0; i < path.count && at; ++i) at = path.parts[i].isEmpty() ? nullptr : at->getFirst(path.parts[i]);
    return const_cast<ZObject*>(at);
}

ZObject* ZObject::findObject(const ZSelector& name, bool deep) const {
    if (name.isEmpty()) return firstChild;
    if (name == zsel<"self">()) return const_cast<ZObject*>(this);
    if (name == zsel<"parent">()) return parent;
    if (ZObject* child = getFirst(name)) return child;
    if (const Path path(name); path.deep) {
        if (ZObject* found = followPath(this, path)) return found;
    } else if (ZObject* held = objectProperty(this, name, true)) {
        return held;
    }
    if (deep)
        for (ZObject* at = firstChild; at; at = nextInTree(at, this))
            if (ZObject* found = at->findObject(name, false)) return found;
    return nullptr;
}

ZObject* ZObject::findObject(const ZSelector& name, ZSelector& rest) const {
    const Path path(name);
    const ZObject* at = this;
    uint i = 0;
    for (; i < path.count; ++i) {
        const ZSelector& part = path.parts[i];
        const ZObject* next = part == zsel<"parent">() ? at->parent : at->getFirst(part);
        if (!next && !part.isEmpty()) next = objectProperty(at, part, true);
        if (!next) break;
        at = next;
    }
    rest = path.range(i, path.count);
    return const_cast<ZObject*>(at);
}

ZObject* ZObject::resolveObjectName(const ZSelector& name, ZSelector& field) const {
    const Path path(name);
    const ZObject* at = this;
    uint done = 0;
    // The last part alone is the field: it names what is wanted of an object.
    while (done + 1 < path.count) {
        uint end = path.count - done > pathWindow ? done + pathWindow : path.count - 1;
        ZObject* found = nullptr;
        for (; end > done; --end) {
            const ZSelector prefix = path.range(done, end);
            found = at->memberObject(prefix);
            if (!found) found = orv::heldObject(at, prefix);
            if (found) break;
        }
        if (!found) break;
        at = found;
        done = end;
        if (path.count <= pathWindow) break;
    }
    field = path.range(done, path.count);
    return const_cast<ZObject*>(at);
}
ZObject* ZObject::resolveFieldName(const ZSelector& name, ZSelector& field) const {
    ZSelector qualifier;
    return resolveFieldName(name, field, qualifier);
}
ZObject* ZObject::resolveFieldName(const ZSelector& name, ZSelector& field, ZSelector& qualifier) const {
    if (name.type() != ZSelector::Method || name.methodName().type() != ZSelector::UID)
        return resolveObjectName(name, field);
    const ZSelector function = name.method();
    qualifier = name.methodQualifier();
    ZSelector last;
    ZObject* object = resolveObjectName(function.methodName(), last);
    field = ZSelector(last, function.result(), function.params(), function.parcount(), ZSelector::Method);
    return object;
}

// Searches

ZObject* ZObject::objectByProperty(const ZSelector& name, const ZVariant& value, bool deep) const {
    auto inChildren = [&](const ZObject* of) -> ZObject* {
        for (ZObject* child = of->first(); child; child = child->next())
            if (child->hasProperty(name) && child->getProperty(name).compare(value) == 0) return child;
        return nullptr;
    };
    ZObject* found = inChildren(this);
    for (ZObject* at = deep ? firstChild : nullptr; at && !found; at = nextInTree(at, this)) found = inChildren(at);
    return found;
}
ZObject* ZObject::objectOfType(const ZMetaType* type, const ZSelector& name) const {
    ZObject* found = getFirst(type, name);
    for (ZObject* at = firstChild; at && !found; at = nextInTree(at, this)) found = at->getFirst(type, name);
    return found;
}
