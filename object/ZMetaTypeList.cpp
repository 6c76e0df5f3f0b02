#include "core/ZRetainPtrT.h"
#include "core/memlock.h"
#include "object/ZMetaTypeData.h"

// What a type knows of its instances: how many hold it, the list of objects, the one that stands for all, and the
// delegates that new ones are given.

// Counting. A type of its own, and one whose package may go, is held by each instance.

void ZMetaType::addInstance(ZType* instance) {
    if ((getFlags() & Lockable) && !makelock(instance, spinLock(), true)) ZError::fail();
    if (own->hasDynamicProperties && !setupProperties(instance)) ZError::fail();
    if (!own->localType && !own->retainedType) return;
    retain();
    toolkit::addFetch(instanceCount, 1);
}
void ZMetaType::removeInstance(ZType*) {
    if (!own->localType && !own->retainedType) return;
    // Instances that came before the type was retained don't hold it.
    int seen = toolkit::load(instanceCount);
    while (seen > 0)
        if (toolkit::compareExchange(instanceCount, seen, seen - 1)) {
            release();
            return;
        }
}
int ZMetaType::getInstanceCount() const { return toolkit::load(instanceCount); }

// The list of objects

ZObject* ZMetaType::getTypeFirst() const { return toolkit::loadAcquire(own->firstInstance); }
ZObject* ZMetaType::getTypeLast() const { return toolkit::loadAcquire(own->lastInstance); }

void ZMetaType::linkObject(ZObject* object) {
    orv::MetaTypeData& data = *own;
    ZScopedLock held(data.instanceLock);
    object->typeNext = nullptr;
    object->typePrev = data.lastInstance;
    if (data.lastInstance) data.lastInstance->typeNext = object;
    if (!data.firstInstance) toolkit::storeRelease(data.firstInstance, object);
    toolkit::storeRelease(data.lastInstance, object);
    toolkit::store(data.objectCount, data.objectCount + 1);
}
void ZMetaType::unlinkObject(ZObject* object) {
    orv::MetaTypeData& data = *own;
    ZScopedLock held(data.instanceLock);
    ZObject *next = object->typeNext, *prev = object->typePrev;
    if (!prev && !next && data.firstInstance != object) return;
    if (prev)
        prev->typeNext = next;
    else
        toolkit::storeRelease(data.firstInstance, next);
    if (next)
        next->typePrev = prev;
    else
        toolkit::storeRelease(data.lastInstance, prev);
    toolkit::store(data.objectCount, data.objectCount - 1);
    object->typeNext = object->typePrev = nullptr;
}

bool ZMetaType::getTypeObjects(ZArrayT<ZRetainPtrT<ZObject>>& objects) const {
    orv::MetaTypeData& data = *own;
    for (;;) {
        // No memory is asked for under the lock.
        const uint room = toolkit::load(data.objectCount) + 16;
        if (!objects.reserve(objects.count() + room)) return false;
        ZScopedLock held(data.instanceLock);
        if (data.objectCount > room) continue;
        for (ZObject* object = data.firstInstance; object; object = object->typeNext)
            if (::retain(object)) objects.append(ZRetainPtrT<ZObject>::adopt(object));
        return true;
    }
}

void ZMetaType::dropObjects() {
    while (ZObject* object = getTypeFirst()) object->setType(static_cast<ZMetaType*>(nullptr));
}

// The one instance that stands for the type

bool ZMetaType::hasSingleton() const { return getSingleton() != nullptr; }
ZObject* ZMetaType::getSingleton() const { return toolkit::loadAcquire(described()->own->singleton); }
void ZMetaType::setSingleton(ZObject* object) {
    if (object == getSingleton()) return;
    if (object) object->retain();
    if (ZObject* old = toolkit::exchange(own->singleton, object)) old->release();
}

// Delegates

ZListT<ZObject*> ZMetaType::getTypeDelegates() const {
    ZScopedReadLock held(own->change);
    return own->typeDelegates;
}

bool ZMetaType::addTypeDelegate(ZObject* delegate) {
    if (!delegate) return false;
    {
        ZScopedLock held(own->change);
        if (own->typeDelegates.contains(delegate)) return true;
        if (!own->typeDelegates.append(delegate)) return false;
    }
    delegate->retain();
    return true;
}
bool ZMetaType::removeTypeDelegate(ZObject* delegate) {
    {
        ZScopedLock held(own->change);
        if (!own->typeDelegates.remove(delegate)) return false;
    }
    delegate->release();
    return true;
}
bool ZMetaType::setTypeDelegates(const ZListT<ZObject*>& delegates) {
    ZListT<ZObject*> fresh;
    if (!fresh.assign(delegates)) return false;
    for (ZObject* delegate : fresh) delegate->retain();
    {
        ZScopedLock held(own->change);
        std::swap(fresh, own->typeDelegates);
    }
    for (ZObject* delegate : fresh) delegate->release();
    return true;
}
