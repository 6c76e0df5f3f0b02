#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/ZPropertyPtr.h"

// The tree of objects. Nothing here recurses: a tree may be as deep as memory allows.

using orv::ObjectData;

namespace {

/// Children beyond this many are looked up by an index of their names.
constexpr uint indexFrom = 16;

bool matches(const ZObject* object, const ZMetaType* type, const ZSelector& name) {
    if (!name.isEmpty() && !ObjectData::at(object).selector.is(name)) return false;
    if (!type) return true;
    const ZMetaType* own = object->type();
    return own && (own == type || own->isSameType(type) || own->isBase(type));
}

/// The index of the children's names, made if need be; null without memory.
orv::NameIndex* childIndex(const ZObject* parent) {
    ObjectData& data = ObjectData::at(parent);
    orv::NameIndex* index = toolkit::loadAcquire(data.childNames);
    if (index) return index;
    orv::NameIndex* made = orv::NameIndex::make(data.childCount);
    if (!made) return nullptr;
    for (ZObject* child = parent->first(); child; child = child->next()) made->add(child);
    if (toolkit::compareExchange(data.childNames, index, made)) return made;
    zfree(made);
    return index;
}

ZObject* firstMatch(ZObject* from, const ZMetaType* type, const ZSelector& name) {
    while (from && !matches(from, type, name)) from = from->next();
    return from;
}
ZObject* lastMatch(ZObject* from, const ZMetaType* type, const ZSelector& name) {
    while (from && !matches(from, type, name)) from = from->previous();
    return from;
}

int depthOf(const ZObject* object) {
    int depth = 0;
    while ((object = object->getParent())) ++depth;
    return depth;
}

} // namespace

// Walking

ZObject* ZObject::getFirst(const ZMetaType* type, const ZSelector& name) const {
    if (name.isEmpty() || !priv || priv->childCount < indexFrom) return firstMatch(firstChild, type, name);
    orv::NameIndex* index = childIndex(this);
    return firstMatch(index ? index->find(name.key()) : firstChild, type, name);
}
ZObject* ZObject::getFirst(const ZMetaType* type) const { return getFirst(type, {}); }
ZObject* ZObject::getFirst(const ZSelector& name) const { return getFirst(nullptr, name); }
ZObject* ZObject::getLast(const ZMetaType* type, const ZSelector& name) const {
    return lastMatch(lastChild, type, name);
}
ZObject* ZObject::getLast(const ZMetaType* type) const { return getLast(type, {}); }
ZObject* ZObject::getLast(const ZSelector& name) const { return getLast(nullptr, name); }
ZObject* ZObject::getNext() const { return nextSibling; }
ZObject* ZObject::getNext(const ZMetaType* type, const ZSelector& name) const {
    return firstMatch(nextSibling, type, name);
}
ZObject* ZObject::getNext(const ZMetaType* type) const { return getNext(type, {}); }
ZObject* ZObject::getNext(const ZSelector& name) const { return getNext(nullptr, name); }
ZObject* ZObject::getPrev() const { return prevSibling; }
ZObject* ZObject::getPrev(const ZMetaType* type, const ZSelector& name) const {
    return lastMatch(prevSibling, type, name);
}
ZObject* ZObject::getPrev(const ZMetaType* type) const { return getPrev(type, {}); }
ZObject* ZObject::getPrev(const ZSelector& name) const { return getPrev(nullptr, name); }

bool ZObject::isDescendantOf(const ZObject* other) const {
    const ZObject* at = other ? parent : nullptr;
    while (at && at != other) at = at->parent;
    return at != nullptr;
}
bool ZObject::isParentOf(const ZObject* other) const { return other && other->isDescendantOf(this); }

ZObject* ZObject::sharedAncestor(const ZObject* other) const {
    if (!other || !other->parent) return nullptr;
    // From the parent of `other`, as an object isn't its own descendant.
    const ZObject *mine = this, *others = other->parent;
    int depth = depthOf(mine), otherDepth = depthOf(others);
    for (; depth > otherDepth; --depth) mine = mine->parent;
    for (; otherDepth > depth; --otherDepth) others = others->parent;
    while (mine != others) {
        mine = mine->parent;
        others = others->parent;
    }
    return const_cast<ZObject*>(mine);
}

ZArrayT<ZObject*> ZObject::getObjects(const ZSelector& name) const {
    ZArrayT<ZObject*> found;
    for (ZObject* child = firstChild; child; child = child->nextSibling)
        if (matches(child, nullptr, name) && !found.append(child)) {
            ZError::fail();
            return {};
        }
    return found;
}
int ZObject::countObjects() const { return priv ? int(priv->childCount) : 0; }

// Linking

namespace {
/// Whether an object would become its own ancestor. Without children nothing descends from it.
bool closesCircle(const ZObject* object, const ZObject* to) {
    return to == object || (to && object->first() && to->isDescendantOf(object));
}
} // namespace

void ZObject::link(ZObject* to, ZObject* before) {
    if (!to || closesCircle(this, to) || !priv || !to->priv) return;
    if (parent) unlink();
    if (before && before->parent != to) before = nullptr;
    parent = to;
    nextSibling = before;
    prevSibling = before ? before->prevSibling : to->lastChild;
    (prevSibling ? prevSibling->nextSibling : to->firstChild) = this;
    (before ? before->prevSibling : to->lastChild) = this;
    ++to->priv->childCount;
    // One at the end is never the first of its name if there is another.
    orv::NameIndex* index = to->priv->childNames;
    if (index && (before || !index->add(this))) orv::NameIndex::drop(to->priv->childNames);
}

void ZObject::unlink() {
    if (!parent) return;
    ObjectData& above = *parent->priv;
    if (above.childNames && above.childNames->find(priv->selector.key()) == this)
        orv::NameIndex::drop(above.childNames);
    (prevSibling ? prevSibling->nextSibling : parent->firstChild) = nextSibling;
    (nextSibling ? nextSibling->prevSibling : parent->lastChild) = prevSibling;
    --above.childCount;
    parent = nextSibling = prevSibling = nullptr;
}

void ZObject::linkParent(ZObject* to) {
    if (closesCircle(this, to)) return;
    unlink();
    if (!to) return;
    link(to, nullptr);
    if (ZThread* thread = to->objectThread(); thread && !objectThread()) setObjectThread(thread);
}

void ZObject::setParent(ZObject* to) {
    if (closesCircle(this, to)) return;
    const ZObject* before = parent;
    if (to && !before) retain();
    linkParent(to);
    if (!to && before && refcount() > 1) release();
}

// Iterator

ZObject* ZObject::iterator::nextObject() {
    ZObject* left = at;
    if (at) at = at->next();
    return left;
}
ZObject* ZObject::iterator::prevObject() {
    ZObject* before = at ? at->previous() : owner ? owner->last() : nullptr;
    if (before) at = before;
    return before;
}
bool ZObject::iterator::remove() {
    if (!at) return false;
    ZObject* gone = std::exchange(at, at->next());
    gone->unlink();
    gone->release();
    return true;
}
ZObject::iterator& ZObject::iterator::operator+=(int steps) {
    for (; steps > 0 && at; --steps) at = at->next();
    for (; steps < 0; ++steps) {
        ZObject* before = at ? at->previous() : owner ? owner->last() : nullptr;
        // In front of the first there is no place.
        if (!before) return *this;
        at = before;
    }
    return *this;
}
int ZObject::iterator::place() const {
    int count = 0;
    for (const ZObject* child = owner ? owner->first() : nullptr; child && child != at; child = child->next()) ++count;
    return count;
}
