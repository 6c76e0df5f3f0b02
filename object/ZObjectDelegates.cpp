#include "core/ZSpinLock.h"
#include "core/construct.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/names.h"
#include "value/ZVariant.h"
#include "value/ZVariantDelegate.h"

// Delegates. Who delegates to whom is a graph of the process without cycles; it changes under one lock, under which
// nothing is allocated, freed or called. The list of one object changes under the lock of that object too, so that who
// reads it needs only that one.

using orv::ObjectData;

namespace {

constinit ZSpinLock graphLock;
/// The number of the last walk through the graph.
constinit uint graphWalks = 0;

/// Beyond this many delegates names are looked up by an index.
constexpr uint indexFrom = 16;
/// A delegate with no other bits only binds, and sees events and resources.
constexpr uint sparseTypes = 0xB1;

bool counts(uint type) { return (type & ~sparseTypes) != 0; }

// Under the lock of the graph.

/// Objects still to be looked at in one direction of the graph, linked through them: the two directions never have one
/// in common.
struct Frontier {
    ZObject* waiting = nullptr;
    uint mark;

    void add(ZObject* object) {
        ObjectData& data = ObjectData::at(object);
        if (data.visited == mark) return;
        data.visited = mark;
        data.nextVisited = std::exchange(waiting, object);
    }
    ZObject* take() { return std::exchange(waiting, ObjectData::at(waiting).nextVisited); }
};

/// Whether one object is among another's delegates or theirs. Both ends are looked from in turn, so that the smaller
/// side decides how long it takes.
bool reaches(ZObject* from, ZObject* to) {
    if (from == to) return true;
    if (ObjectData::at(from).delegates.isEmpty() || ObjectData::at(to).delegatedBy.isEmpty()) return false;
    graphWalks += 2;
    Frontier down{.mark = graphWalks - 1}, up{.mark = graphWalks};
    down.add(from);
    up.add(to);
    while (down.waiting && up.waiting) {
        for (ZObject* below : std::as_const(ObjectData::at(down.take()).delegates)) {
            if (ObjectData::at(below).visited == up.mark) return true;
            down.add(below);
        }
        for (ZObject* above : std::as_const(ObjectData::at(up.take()).delegatedBy)) {
            if (ObjectData::at(above).visited == down.mark) return true;
            up.add(above);
        }
    }
    return false;
}

bool isDelegate(const ObjectData& owner, const ObjectData& delegate) {
    return delegate.delegatedBy.count() < owner.delegates.count() ? delegate.delegatedBy.contains(owner.object)
                                                                  : owner.delegates.contains(delegate.object);
}

/// Takes an object out of a list whose order doesn't matter; from the front or the back, whichever is nearer.
void removeAnyOrder(ZArrayT<ZObject*>& list, const ZObject* object) {
    const uint count = list.count();
    for (uint i = 0; i < count; ++i) {
        const uint at = i & 1 ? i / 2 : count - 1 - i / 2;
        if (list.data()[at] != object) continue;
        // The list is never shared, so neither step needs memory.
        if (at != count - 1) list.set(at, list.data()[count - 1]);
        list.remove(count - 1);
        return;
    }
}

/// Takes a delegate out of an object; both stay alive. False if it is none.
bool disconnect(ObjectData& owner, ZObject* delegate) {
    ObjectData& part = ObjectData::at(delegate);
    if (!isDelegate(owner, part)) return false;
    orv::ObjectWrite held(owner.object);
    owner.delegates.remove(uint(owner.delegates.indexOf(delegate)));
    toolkit::addFetch(owner.delegatesChanged, 1u);
    if (owner.delegates.isEmpty()) owner.set(ObjectData::Delegates, false);
    if (counts(part.delegateType)) toolkit::store(owner.delegateCount, owner.delegateCount - 1);
    removeAnyOrder(part.delegatedBy, owner.object);
    return true;
}

/// Whether the index tells of the delegates as they are. Under the owner's lock.
bool indexHolds(const ObjectData& owner) {
    return owner.delegateNames && owner.delegateNames->changes == toolkit::loadAcquire(owner.delegatesChanged);
}
/// Puts in a retained delegate, under the owner's lock as well. Both lists have room.
void connect(ObjectData& owner, ObjectData& part) {
    const bool indexed = indexHolds(owner);
    owner.delegates.append(part.object);
    part.delegatedBy.append(owner.object);
    const uint changes = toolkit::addFetch(owner.delegatesChanged, 1u);
    if (indexed && owner.delegateNames->add(part.object)) owner.delegateNames->changes = changes;
    if (counts(part.delegateType)) toolkit::store(owner.delegateCount, owner.delegateCount + 1);
    owner.set(ObjectData::Delegates, true);
    part.set(ObjectData::Delegated, true);
}

/// Puts a retained delegate in the place of another, whose reference is the caller's then.
void replace(ObjectData& owner, uint at, ObjectData& part) {
    ObjectData& before = ObjectData::at(owner.delegates.data()[at]);
    const int more = int(counts(part.delegateType)) - int(counts(before.delegateType));
    if (more) toolkit::store(owner.delegateCount, owner.delegateCount + more);
    owner.delegates.set(at, part.object);
    toolkit::addFetch(owner.delegatesChanged, 1u);
    part.delegatedBy.append(owner.object);
    part.set(ObjectData::Delegated, true);
    removeAnyOrder(before.delegatedBy, owner.object);
}

/// Room for one more in a list, got with no lock held.

class Room {
public:
    /// Gives the list room; false if there isn't enough here. The list that it had goes with this.
    bool lend(ZArrayT<ZObject*>& list) {
        wanted = list.count() + 1;
        if (wanted <= list.capacity()) return true;
        if (wanted > spare.capacity()) return false;
        spare.append(list.data(), list.count());
        std::swap(spare, list);
        return true;
    }
    /// For the list that there wasn't enough for; false without memory.
    bool make() {
        spare.clear();
        return spare.reserve(wanted + wanted / 2 + 4);
    }

private:
    ZArrayT<ZObject*> spare;
    uint wanted = 1;
};

// Names of delegates, under the owner's lock.

ZObject* findNamed(const ObjectData& owner, uint key) {
    if (!key) return nullptr;
    if (indexHolds(owner)) return owner.delegateNames->find(key);
    for (ZObject* delegate : owner.delegates)
        if (ObjectData::at(delegate).selector.key() == key) return delegate;
    return nullptr;
}
bool wantsIndex(const ObjectData& owner) { return owner.delegates.count() >= indexFrom && !indexHolds(owner); }

/// Makes the index anew, where it is wanted. With no lock held. Without memory, and where delegates change meanwhile,
/// the list will do.
void freshIndex(const ZObject* object) {
    ObjectData& owner = ObjectData::at(object);
    uint count;
    {
        orv::ObjectRead held(owner);
        if (!wantsIndex(owner)) return;
        count = owner.delegates.count();
    }
    orv::NameIndex* fresh = orv::NameIndex::make(count * 2);
    if (!fresh) return;
    if (orv::ObjectWrite held(object); held) {
        fresh->changes = toolkit::loadAcquire(owner.delegatesChanged);
        bool whole = true;
        for (ZObject* delegate : std::as_const(owner.delegates)) whole = whole && fresh->add(delegate);
        if (whole) std::swap(owner.delegateNames, fresh);
    }
    orv::NameIndex::drop(fresh);
}
/// What `take` answers for the delegate of a name, or null, while it is in the list.
template <class F> auto takeNamed(const ZObject* object, const ZSelector& name, F take) {
    ObjectData* data = ObjectData::of(object);
    if (!data || !data->has(ObjectData::Delegates)) return take(nullptr);
    ObjectData& owner = *data;
    for (bool again = false;; again = true) {
        {
            orv::ObjectRead held(owner);
            if (again || !wantsIndex(owner)) return take(findNamed(owner, name.key()));
        }
        freshIndex(object);
    }
}
ZRetainPtrT<ZObject> holdNamed(const ZObject* object, const ZSelector& name) {
    return takeNamed(object, name, [](ZObject* found) { return ZRetainPtrT<ZObject>::adopt(::retain(found)); });
}

} // namespace

namespace orv {

void ownMethodsChanged(ZObject* object) {
    ObjectData& data = ObjectData::at(object);
    data.set(ObjectData::MultiStale, true);
    object->useDispatch();
    if (data.has(ObjectData::InlineRecords)) object->resetInlineMethods();
    if (toolkit::load(data.delegateType) & ZObject::Extension) {
        ZScopedLock graph(graphLock);
        for (ZObject* owner : std::as_const(data.delegatedBy))
            ObjectData::at(owner).set(ObjectData::ExtStale | ObjectData::MultiStale, true);
    }
}

void delegateTypeChanged(ZObject* object, uint type) {
    ZScopedLock graph(graphLock);
    ObjectData& data = ObjectData::at(object);
    const uint old = toolkit::exchange(data.delegateType, type);
    const int more = int(counts(type)) - int(counts(old));
    for (ZObject* owner : std::as_const(data.delegatedBy)) {
        ObjectData& to = ObjectData::at(owner);
        if (more) toolkit::store(to.delegateCount, to.delegateCount + more);
        if ((old ^ type) & ZObject::Extension) to.set(ObjectData::ExtStale | ObjectData::MultiStale, true);
    }
}

void nameChanged(ZObject* object) {
    if (ZObject* parent = object->getParent()) NameIndex::drop(ObjectData::at(parent).childNames);
    ZScopedLock graph(graphLock);
    for (ZObject* owner : std::as_const(ObjectData::at(object).delegatedBy))
        toolkit::addFetch(ObjectData::at(owner).delegatesChanged, 1u);
}

bool holdDelegates(const ZObject* object, ZArrayT<ZRetainPtrT<ZObject>>& delegates) {
    ObjectData* data = ObjectData::of(object);
    if (!data || !data->has(ObjectData::Delegates)) return true;
    for (;;) {
        uint wanted;
        {
            ObjectRead held(*data);
            wanted = data->delegates.count();
            if (wanted <= delegates.capacity()) {
                for (ZObject* delegate : std::as_const(data->delegates))
                    if (::retain(delegate)) delegates.append(ZRetainPtrT<ZObject>::adopt(delegate));
                return true;
            }
        }
        if (!delegates.reserve(wanted)) return false;
    }
}

void dropDelegates(ZObject* object) {
    ObjectData& data = ObjectData::at(object);
    if (!data.has(ObjectData::Delegates | ObjectData::Delegated)) return;
    ZArrayT<ZObject*> released;
    {
        ZScopedLock graph(graphLock);
        while (!data.delegatedBy.isEmpty()) disconnect(ObjectData::at(*data.delegatedBy.begin()), object);
        std::swap(released, data.delegates);
        for (ZObject* delegate : std::as_const(released)) removeAnyOrder(ObjectData::at(delegate).delegatedBy, object);
    }
    for (ZObject* delegate : std::as_const(released)) delegate->release();
}

} // namespace orv

// Asking

bool ZObject::getDelegates(ZArrayT<ZObject*>& delegates) const {
    ZArrayT<ZObject*> found;
    if (priv && priv->has(ObjectData::Delegates)) {
        orv::ObjectRead held(*priv);
        // Not a share of the list, which has to stay writable without memory.
        if (!found.append(priv->delegates.data(), priv->delegates.count())) return false;
    }
    std::swap(delegates, found);
    return true;
}
ZListT<ZObject*> ZObject::getDelegates() const {
    ZArrayT<ZObject*> found;
    ZListT<ZObject*> list;
    if (!getDelegates(found) || !list.append(found.data(), found.count())) ZError::fail();
    return list;
}
bool ZObject::getExtend(ZArrayT<ZObject*>& delegates) const {
    ZArrayT<ZRetainPtrT<ZObject>> all;
    ZArrayT<ZObject*> found;
    if (!orv::holdDelegates(this, all)) return false;
    for (const auto& delegate : std::as_const(all))
        if ((delegate->delegateType() & Extension) && !found.append(delegate.get())) return false;
    std::swap(delegates, found);
    return true;
}
ZListT<ZObject*> ZObject::getExtend() const {
    ZArrayT<ZObject*> found;
    ZListT<ZObject*> list;
    if (!getExtend(found) || !list.append(found.data(), found.count())) ZError::fail();
    return list;
}

bool ZObject::hasDelegate() const { return priv && priv->has(ObjectData::Delegates); }
bool ZObject::hasDelegate(const ZObject* object) const {
    if (!object || !hasDelegate() || !object->priv) return false;
    ZScopedLock graph(graphLock);
    return isDelegate(*priv, *object->priv);
}
bool ZObject::hasDelegate(const ZSelector& name) const { return findDelegate(name) != nullptr; }
ZObject* ZObject::findDelegate(const ZSelector& name) const { return holdNamed(this, name).get(); }

// Adding and removing

bool ZObject::addDelegate(ZObject* object, bool bind) {
    if (!object || !priv || !object->priv) return false;
    ObjectData& part = *object->priv;
    Room room, ownerRoom;
    bool known = false;
    uint type = None;
    // The lock is made here, if it isn't there yet.
    if (orv::ObjectWrite ready(this); !ready) return false;
    for (bool added = false; !added && !known;) {
        if (priv->has(ObjectData::Delegates)) freshIndex(this);
        bool roomy = true;
        {
            ZScopedLock graph(graphLock);
            type = part.delegateType;
            known = isDelegate(*priv, part);
            roomy = known || ownerRoom.lend(part.delegatedBy);
            if (!known && roomy) {
                if (reaches(object, this)) return false;
                orv::ObjectWrite held(this);
                if (findNamed(*priv, part.selector.key())) return false;
                roomy = room.lend(priv->delegates);
                // One that is on its way out can't be held.
                if (roomy && !::retain(object)) return false;
                if (roomy) connect(*priv, part);
                added = roomy;
            }
        }
        if (!roomy && !(room.make() && ownerRoom.make())) return false;
    }
    if (!known) {
        resetMethods();
        if (type & Child) object->setParent(this);
    }
    if (bind || (!known && (type & Binder))) autobind(object, false);
    return true;
}

namespace {
/// Gives up what an object had of a delegate that is disconnected.
void letGo(ZObject* owner, ZObject* delegate) {
    owner->resetMethods();
    if ((delegate->delegateType() & ZObject::Child) && delegate->getParent() == owner) delegate->setParent(nullptr);
    delegate->release();
}
} // namespace

bool ZObject::removeDelegate(ZObject* object) {
    if (!object || !hasDelegate() || !object->priv) return false;
    {
        ZScopedLock graph(graphLock);
        if (!disconnect(*priv, object)) return false;
    }
    letGo(this, object);
    return true;
}
bool ZObject::removeDelegate(const ZSelector& name) {
    if (!hasDelegate()) return false;
    const ZRetainPtrT<ZObject> found = holdNamed(this, name);
    return found.get() && removeDelegate(found.get());
}

bool ZObject::detachDelegates() {
    ZArrayT<ZRetainPtrT<ZObject>> all;
    if (!orv::holdDelegates(this, all)) return false;
    uint done = 0;
    for (const auto& held : std::as_const(all)) {
        ZObject* delegate = held.get();
        // The list has a reference, this has one, and one that is a child here is held once more.
        if (delegate->refcount() <= 2 + int(delegate->parent == this)) {
            ++done;
            continue;
        }
        Room room;
        const auto copied = ZRetainPtrT<ZObject>::adopt(static_cast<ZObject*>(delegate->copy()));
        if (!copied.get() || !room.make()) break;
        bool replaced = false, gone = false;
        {
            ZScopedLock graph(graphLock);
            orv::ObjectWrite write(this);
            const int at = priv->delegates.indexOf(delegate);
            gone = at < 0;
            replaced = !gone && write && room.lend(copied->priv->delegatedBy) && ::retain(copied.get());
            if (replaced) replace(*priv, uint(at), *copied->priv);
        }
        if (!replaced && !gone) break;
        ++done;
        if (!replaced) continue;
        if ((copied->delegateType() & Child) && delegate->parent == this) {
            copied->setParent(this);
            delegate->setParent(nullptr);
        }
        delegate->release();
    }
    resetMethods();
    return done == all.count();
}

bool ZObject::loadDelegate(const ZSelector& name, const ZSelector& kind) {
    if (kind.isEmpty()) return true;
    ZMetaType* found = loadTypeFromName(kind);
    if (!found || !found->isZObject()) return false;
    auto delegate = static_cast<ZObject*>(found->createInstance());
    if (!delegate) return false;
    delegate->setSelector(name);
    const bool added = addDelegate(delegate, delegate->delegateType() & Binder);
    delegate->release();
    return added;
}

// Types that extend an object

bool ZObject::getExtendTypes(ZArrayT<ZMetaType*>& types) const {
    ZArrayT<ZMetaType*> found;
    if (priv && priv->has(ObjectData::ExtendTypes)) {
        orv::ObjectRead held(*priv);
        found = priv->extendTypes;
    }
    std::swap(types, found);
    return true;
}
ZListT<ZMetaType*> ZObject::getExtendTypes() const {
    ZArrayT<ZMetaType*> found;
    ZListT<ZMetaType*> list;
    getExtendTypes(found);
    if (!list.append(found.data(), found.count())) ZError::fail();
    return list;
}
bool ZObject::addExtendType(ZMetaType* type) {
    // The entries of a class are called on its own instances only.
    if (!type || !priv || (type->declaration() && !isType(type))) return false;
    {
        orv::ObjectWrite held(this);
        if (!held) return false;
        if (priv->extendTypes.contains(type)) return true;
        if (!priv->extendTypes.append(type)) return false;
        ::retain(type);
        priv->set(ObjectData::ExtendTypes, true);
    }
    resetMethods();
    return true;
}
bool ZObject::removeExtendType(ZMetaType* type) {
    if (!priv || !priv->has(ObjectData::ExtendTypes)) return false;
    {
        orv::ObjectWrite held(this);
        const int at = priv->extendTypes.indexOf(type);
        if (at < 0 || !priv->extendTypes.remove(uint(at))) return false;
        if (priv->extendTypes.isEmpty()) priv->set(ObjectData::ExtendTypes, false);
    }
    resetMethods();
    type->release();
    return true;
}

// The delegate "property"

namespace {
/// Only a bag of values: a name like any other may stand for something else.
ZRetainPtrT<ZVariantDelegate> propertyBag(const ZObject* object) {
    ZRetainPtrT<ZObject> found = holdNamed(object, zsel<"property">());
    auto bag = dynamic_cast<ZVariantDelegate*>(found.get());
    if (bag) (void)found.give();
    return ZRetainPtrT<ZVariantDelegate>::adopt(bag);
}
} // namespace

bool ZObject::hasPropDelegate(const ZSelector& name) const {
    const auto bag = propertyBag(this);
    return bag.get() && bag->hasPropDelegate(name);
}
ZVariant ZObject::getPropDelegate(const ZSelector& name) const {
    const auto bag = propertyBag(this);
    return bag.get() ? bag->getPropDelegate(name) : ZVariant();
}
bool ZObject::setPropDelegate(const ZSelector& name, const ZVariant& value) {
    if (const auto bag = propertyBag(this); bag.get()) return bag->setPropDelegate(name, value);
    auto bag = zmake<ZVariantDelegate>();
    if (!bag) return false;
    bag->setSelector(zsel<"property">());
    bag->setDelegateType(Property);
    const bool done = bag->setPropDelegate(name, value) && addDelegate(bag, false);
    bag->release();
    return done;
}
bool ZObject::removePropDelegate(const ZSelector& name) {
    const auto bag = propertyBag(this);
    return bag.get() && bag->removePropDelegate(name);
}
