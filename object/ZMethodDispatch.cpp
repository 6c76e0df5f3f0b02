#include "object/ZMethodDispatch.h"

#include "core/SlotPool.h"
#include "object/HeldTarget.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/methodLookup.h"

using orv::HeldTarget;

namespace {
/// Changes when what was found on an object, or without one on a type, may be wrong: a sum of numbers that only rise.
/// Taken before the lookup.
ularge generationFor(const ZObject* object) {
    orv::ObjectData* data = object ? orv::ObjectData::of(object) : nullptr;
    return orv::typeGeneration() + (data ? toolkit::loadAcquire(data->methodChanges) : 0);
}

constinit orv::SlotPool<ZMethodDispatch> pool("ZMethodDispatch", 1024);
} // namespace

bool ZMethodDispatch::open() { return pool.open(); }
void ZMethodDispatch::close() { pool.close(); }

ZMethodDispatch::ZMethodDispatch(const ZSelector& dispatchName) : signal(dispatchName), name(dispatchName) {}
ZMethodDispatch::ZMethodDispatch(const ZSelector& dispatchName, const ZSelector& methodName, const ZSelector& qualifier)
    : signal(dispatchName), name(methodName), words(qualifier) {}
ZMethodDispatch::ZMethodDispatch(const ZSelector& dispatchName, const ZMethodRef& method)
    : signal(dispatchName), name(method.selector()), cache(method), bound(true) {}
ZMethodDispatch::ZMethodDispatch(ZObject* object, const ZSelector& dispatchName, const ZSelector& methodName,
                                 const ZSelector& qualifier)
    : signal(dispatchName), name(methodName), words(qualifier) {
    getMethod(object);
}
ZMethodDispatch::ZMethodDispatch(const ZMethodDispatch& other)
    : ZTreeItemT(other), signal(other.signal), name(other.name), words(other.words), bound(other.bound) {
    if (bound) cache = other.reference();
}

ZMethodRef ZMethodDispatch::reference() const {
    ZScopedLock held(guard);
    return cache;
}
void ZMethodDispatch::reset() const {
    if (bound) return;
    keep({}, {}, 0);
}

/// Another answer; the old one goes when the guard is free.
void ZMethodDispatch::keep(ZMethodRef found, ZArrayT<ZMetaType*> types, ularge generation) const {
    ZScopedLock held(guard);
    std::swap(cache, found);
    std::swap(cacheTypes, types);
    cacheGeneration = generation;
}
/// Whether the answer of the last lookup holds: for the same instance and type, and the same argument types.
bool ZMethodDispatch::known(const void* instance, const ZMetaType* type, const ZArrayT<ZMetaType*>& types,
                            ularge generation, ZMethodRef& found) const {
    ZScopedLock held(guard);
    if (!bound && (cacheGeneration != generation || cache.getInstance() != instance || cache.getType() != type ||
                   !(cacheTypes == types)))
        return false;
    found = cache;
    return true;
}

namespace {
/// What is found on another part of an object isn't kept: the next lookup asks for the object itself. Nor what
/// delegates have to do with: they change without their owners.
bool keeps(const ZObject* object) { return !object->hasDelegate(); }
} // namespace

ZMethodRef ZMethodDispatch::getMethod(const ZMetaType* type) const {
    ZMethodRef found;
    const ularge generation = generationFor(nullptr);
    if (!type || known(nullptr, type, {}, generation, found)) return found;
    found = ZMethodRef(type, name, words);
    keep(found, {}, generation);
    return found;
}
ZMethodRef ZMethodDispatch::getMethod(const ZMetaType* type, const ZArrayT<ZMetaType*>& types) const {
    ZMethodRef found;
    const ularge generation = generationFor(nullptr);
    if (!type || known(nullptr, type, types, generation, found)) return found;
    toolkit::EpochGuard guard;
    found.set(type->multimethodType(nullptr, nullptr, name, types, true, true, false, words), nullptr, type);
    keep(found, types, generation);
    return found;
}
ZMethodRef ZMethodDispatch::getMethod(const ZObject* object) const {
    ZRetainPtrT<ZType> kept;
    return getMethod(object, kept);
}
ZMethodRef ZMethodDispatch::getMethod(const ZObject* object, ZRetainPtrT<ZType>& kept) const {
    ZMethodRef found;
    const ularge generation = generationFor(object);
    if (!object || known(object, object->type(), {}, generation, found)) return found;
    toolkit::EpochGuard guard;
    HeldTarget target{ZTypedPtr(object)};
    found.set(target.method(object, name, words), target.typed.instance, target.typed.type);
    if (target.typed.instance == object && keeps(object)) keep(found, {}, generation);
    kept = std::move(target.kept);
    return found;
}
ZMethodRef ZMethodDispatch::getMethod(const ZObject* object, const ZArrayT<ZMetaType*>& types) const {
    ZMethodRef found;
    const ularge generation = generationFor(object);
    if (!object || known(object, object->type(), types, generation, found)) return found;
    toolkit::EpochGuard guard;
    ZTypedPtr typed(object);
    found.set(object->multimethod(nullptr, &typed, name, types, true, true, false, words), object, object->type());
    if (typed.instance != object)
        found.set(found.getMethod(), typed.instance, typed.type);
    else if (keeps(object))
        keep(found, types, generation);
    return found;
}

bool ZMethodDispatch::add(ZObject* object) const { return object && object->addDispatch(*this); }
int ZMethodDispatch::compare(const ZMethodDispatch& other) const {
    if (int found = signal.compare(other.signal)) return found;
    if (int found = name.compare(other.name)) return found;
    if (int found = words.compare(other.words)) return found;
    if (bound != other.bound) return bound ? 1 : -1;
    return bound ? reference().compare(other.reference()) : 0;
}

ZMethodDispatch* ZMethodDispatch::create(const ZMethodDispatch& source) { return pool.make(source); }
ZMethodDispatch* ZMethodDispatch::retain(const ZMethodDispatch* node) {
    return pool.retain(const_cast<ZMethodDispatch*>(node));
}
void ZMethodDispatch::release() { pool.releaseLater(this); }
