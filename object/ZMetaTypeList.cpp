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
    writeLock();
    object->typeNext = nullptr;
    object->typePrev = own->lastInstance;
    if (own->lastInstance) own->lastInstance->typeNext = object;
    if (!own->firstInstance) toolkit::storeRelease(own->firstInstance, object);
    toolkit::storeRelease(own->lastInstance, object);
    unlock();
}
void ZMetaType::unlinkObject(ZObject* object) {
    writeLock();
    ZObject *next = object->typeNext, *prev = object->typePrev;
    if (prev || next || own->firstInstance == object) {
        if (prev)
            prev->typeNext = next;
        else
            toolkit::storeRelease(own->firstInstance, next);
        if (next)
            next->typePrev = prev;
        else
            toolkit::storeRelease(own->lastInstance, prev);
    }
    object->typeNext = object->typePrev = nullptr;
    unlock();
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
