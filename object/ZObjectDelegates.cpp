#include "core/ZSpinLock.h"
#include "core/construct.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/names.h"
#include "value/ZVariant.h"
#include "value/ZVariantDelegate.h"

// Delegates. Who delegates to whom is a graph of the process without cycles; it changes under one lock, of which each
// change is short. The list of one object changes under the lock of that object too, so that who reads it needs only
// that one.

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

/// Objects still to be looked at in one direction of the graph.
struct Frontier {
    ZArrayT<ZObject*> waiting;
    uint mark;

    bool add(ZObject* object) {
        uint& visited = ObjectData::at(object).visited;
        if (visited == mark) return true;
        visited = mark;
        return waiting.append(object);
    }
    ZObject* take() {
        ZObject* object = waiting.data()[waiting.count() - 1];
        waiting.remove(waiting.count() - 1);
        return object;
    }
};

enum class Reach { No, Yes, NoMemory };

/// Whether one object is among another's delegates or theirs. Both ends are looked from in turn, so that the smaller
/// side decides how long it takes.
Reach reaches(ZObject* from, ZObject* to) {
    if (from == to) return Reach::Yes;
    if (ObjectData::at(from).delegates.isEmpty() || ObjectData::at(to).delegatedBy.isEmpty()) return Reach::No;
    graphWalks += 2;
    Frontier down{{}, graphWalks - 1}, up{{}, graphWalks};
    if (!down.add(from) || !up.add(to)) return Reach::NoMemory;
    while (!down.waiting.isEmpty() && !up.waiting.isEmpty()) {
        for (ZObject* below : std::as_const(ObjectData::at(down.take()).delegates)) {
            if (below == to || ObjectData::at(below).visited == up.mark) return Reach::Yes;
            if (!down.add(below)) return Reach::NoMemory;
        }
        for (ZObject* above : std::as_const(ObjectData::at(up.take()).delegatedBy)) {
            if (above == from || ObjectData::at(above).visited == down.mark) return Reach::Yes;
            if (!up.add(above)) return Reach::NoMemory;
        }
    }
    return Reach::No;
}

bool isDelegate(const ObjectData& owner, const ObjectData& delegate) {
    return delegate.delegatedBy.count() < owner.delegates.count() ? delegate.delegatedBy.contains(owner.object)
                                                                  : owner.delegates.contains(delegate.object);
}

ZObject* findNamed(ObjectData& owner, const ZSelector& name) {
    if (name.isEmpty()) return nullptr;
    const ZArrayT<ZObject*>& delegates = owner.delegates;
    if (delegates.count() >= indexFrom && !owner.delegateNames)
        if ((owner.delegateNames = orv::NameIndex::make(delegates.count() * 2)))
            for (ZObject* delegate : delegates) owner.delegateNames->add(delegate);
    if (owner.delegateNames) return owner.delegateNames->find(name);
    for (ZObject* delegate : delegates)
        if (ObjectData::at(delegate).selector == name) return delegate;
    return nullptr;
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
    orv::NameIndex::drop(owner.delegateNames);
    orv::ObjectWrite held(owner.object);
    owner.delegates.remove(uint(owner.delegates.indexOf(delegate)));
    ++owner.delegatesChanged;
    if (owner.delegates.isEmpty()) owner.set(ObjectData::Delegates, false);
    if (counts(part.delegateType)) toolkit::store(owner.delegateCount, owner.delegateCount - 1);
    removeAnyOrder(part.delegatedBy, owner.object);
    return true;
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

void rename(ZObject* object, const ZSelector& name) {
    if (ZObject* parent = object->getParent()) NameIndex::drop(ObjectData::at(parent).childNames);
    // Owners look for names on any thread.
    ZScopedLock graph(graphLock);
    ObjectData::at(object).selector = name;
    for (ZObject* owner : std::as_const(ObjectData::at(object).delegatedBy))
        NameIndex::drop(ObjectData::at(owner).delegateNames);
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
    ZArrayT<ZObject*> all, found;
    if (!getDelegates(all)) return false;
    for (ZObject* delegate : std::as_const(all))
        if ((delegate->delegateType() & Extension) && !found.append(delegate)) return false;
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
ZObject* ZObject::findDelegate(const ZSelector& name) const {
    if (!hasDelegate()) return nullptr;
    ZScopedLock graph(graphLock);
    return findNamed(*priv, name);
}

// Adding and removing

bool ZObject::addDelegate(ZObject* object, bool bind) {
    if (!object || !priv || !object->priv) return false;
    ObjectData& part = *object->priv;
    bool known = false;
    uint type = None;
    {
        ZScopedLock graph(graphLock);
        type = part.delegateType;
        known = isDelegate(*priv, part);
        if (!known) {
            if (findNamed(*priv, part.selector) || reaches(object, this) != Reach::No) return false;
            orv::ObjectWrite held(this);
            if (!held || !part.delegatedBy.append(this)) return false;
            const bool listed = priv->delegates.append(object);
            // One that is on its way out can't be held.
            if (!listed || !::retain(object)) {
                if (listed) priv->delegates.remove(priv->delegates.count() - 1);
                part.delegatedBy.remove(part.delegatedBy.count() - 1);
                return false;
            }
            ++priv->delegatesChanged;
            if (counts(type)) toolkit::store(priv->delegateCount, priv->delegateCount + 1);
            if (priv->delegateNames && !priv->delegateNames->add(object)) orv::NameIndex::drop(priv->delegateNames);
            priv->set(ObjectData::Delegates, true);
            part.set(ObjectData::Delegated, true);
        }
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
    ZObject* object = nullptr;
    {
        ZScopedLock graph(graphLock);
        object = findNamed(*priv, name);
        if (!object || !disconnect(*priv, object)) return false;
    }
    letGo(this, object);
    return true;
}

bool ZObject::detachDelegates() {
    ZArrayT<ZObject*> all;
    if (!getDelegates(all)) return false;
    uint done = 0;
    for (ZObject* delegate : std::as_const(all)) {
        // One that is a child here is held twice.
        if (delegate->refcount() <= 1 + int(delegate->parent == this)) {
            ++done;
            continue;
        }
        auto copied = static_cast<ZObject*>(delegate->copy());
        if (!copied) break;
        bool enough = true, replaced = false;
        {
            ZScopedLock graph(graphLock);
            orv::ObjectWrite held(this);
            const int at = priv->delegates.indexOf(delegate);
            // It may have gone meanwhile.
            if (at >= 0) enough = replaced = held && copied->priv->delegatedBy.append(this);
            if (replaced) {
                const int more = int(counts(copied->priv->delegateType)) - int(counts(delegate->priv->delegateType));
                if (more) toolkit::store(priv->delegateCount, priv->delegateCount + more);
                priv->delegates.set(uint(at), copied);
                ++priv->delegatesChanged;
                orv::NameIndex::drop(priv->delegateNames);
                copied->priv->set(ObjectData::Delegated, true);
                removeAnyOrder(delegate->priv->delegatedBy, this);
            }
        }
        if (replaced && (copied->delegateType() & Child) && delegate->parent == this) {
            copied->setParent(this);
            delegate->setParent(nullptr);
        }
        (replaced ? delegate : copied)->release();
        if (!enough) break;
        ++done;
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
ZVariantDelegate* propertyBag(const ZObject* object) {
    return dynamic_cast<ZVariantDelegate*>(object->findDelegate(zsel<"property">()));
}
} // namespace

bool ZObject::hasPropDelegate(const ZSelector& name) const {
    const ZVariantDelegate* bag = propertyBag(this);
    return bag && bag->hasPropDelegate(name);
}
ZVariant ZObject::getPropDelegate(const ZSelector& name) const {
    const ZVariantDelegate* bag = propertyBag(this);
    return bag ? bag->getPropDelegate(name) : ZVariant();
}
bool ZObject::setPropDelegate(const ZSelector& name, const ZVariant& value) {
    if (ZVariantDelegate* bag = propertyBag(this)) return bag->setPropDelegate(name, value);
    auto bag = zmake<ZVariantDelegate>();
    if (!bag) return false;
    bag->setSelector(zsel<"property">());
    bag->setDelegateType(Property);
    const bool done = bag->setPropDelegate(name, value) && addDelegate(bag, false);
    bag->release();
    return done;
}
bool ZObject::removePropDelegate(const ZSelector& name) {
    ZVariantDelegate* bag = propertyBag(this);
    return bag && bag->removePropDelegate(name);
}
