#include "core/construct.h"
#include "core/debug.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/bindingEnds.h"
#include "value/ZTypedPtr.h"

// The table as a whole, and what leaves it.

using orv::BindingEnd;
using orv::BindingMethod;
using orv::bindingTable;
using orv::BindingTable;

ZMethodBindings* orv::bindings = nullptr;

bool ZBinding::open() {
    if (bindingTable()) return true;
    auto made = zmake<ZMethodBindings>();
    if (!made) return false;
    if (!made->open()) {
        zrelease(made);
        return false;
    }
    toolkit::storeRelease(orv::bindings, made);
    return true;
}
void ZBinding::close() {
    clear();
    zrelease(toolkit::exchange(orv::bindings, nullptr));
}
void ZBinding::clear() {
    ZMethodBindings* table = bindingTable();
    for (uint i = 0; table && i < table->count(); ++i) table->dropAt(int(i), true);
}

ZMethodBindings* ZBinding::bindings() { return bindingTable(); }
ZBinding* ZBinding::get(int index) {
    const ZMethodBindings* table = bindingTable();
    return table ? table->get(index) : nullptr;
}

// Pairs

bool ZBinding::remove(int index, bool all) {
    ZMethodBindings* table = bindingTable();
    return table && table->dropAt(index, all);
}
bool ZBinding::remove(const ZArrayT<int>& places) {
    bool any = false;
    for (int index : places) any |= remove(index, true);
    return any;
}

int ZBinding::find(const ZObject* src, const ZObject* dst, const ZMetaType* srcType, const ZMetaType* dstType,
                   const ZMethod* srcMethod, const ZMethod* dstMethod) {
    ZMethodBindings* table = bindingTable();
    if (!table || !srcMethod || !dstMethod) return -1;
    while (const ZMethod* base = srcMethod->getBaseMethod()) srcMethod = base;
    ZScopedLock held(table->lock);
    return table->findEqual(src, dst, srcType, dstType, srcMethod, dstMethod);
}
int ZBinding::find(const ZObject* src, const ZObject* dst, const ZMethod* srcMethod, const ZMethod* dstMethod) {
    return find(src, dst, nullptr, nullptr, srcMethod, dstMethod);
}

namespace {

/// Whether a name means a side of a record: a property, a signature, or a method of that plain name.
bool means(const ZSelector& name, const ZSelector& qualifier, const ZSelector& property, const ZSelector& signature,
           const ZSelector& words) {
    const bool named = name.isEmpty() || name == property || name == signature ||
                       (name.type() != ZSelector::Method && signature.methodName() == name);
    return named && (qualifier.isEmpty() || words == qualifier || words.contains(qualifier));
}

/// What a name stands for on one side, as it is: a signature, or all of a plain name.
bool signatures(const BindingEnd& end, ZArrayT<ZMethodRef>& all) {
    const ZSelector name = end.property ? end.setter : end.name;
    if (name.isEmpty()) return true;
    const ZSelector words = end.property ? ZSelector() : end.qualifier;
    if (name.type() != ZSelector::Method) return orv::overloads(end.object, nullptr, name, words, all);
    BindingMethod found;
    return !found.find(end.object, nullptr, name, words) || all.append(ZMethodRef(found.method, nullptr, nullptr));
}
/// Calls `use` with each bound pair of methods that two names stand for, until it answers false.
template <class Use>
void eachPair(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
              const ZSelector& srcQualifier, const ZSelector& dstQualifier, Use use) {
    toolkit::EpochGuard guard;
    BindingEnd from(src, srcName, srcQualifier), to(dst, dstName, dstQualifier);
    if (!from.prepare(false) || !to.prepare(false)) return;
    const ZSelector &one = from.property ? from.setter : from.name, &other = to.property ? to.setter : to.name;
    if (one.type() == ZSelector::Method && other.type() == ZSelector::Method) {
        BindingMethod a, b;
        if (!a.find(from.object, nullptr, one, from.property ? ZSelector() : from.qualifier) ||
            !b.find(to.object, nullptr, other, to.property ? ZSelector() : to.qualifier))
            return;
        const int index = ZBinding::find(a.object, b.object, a.method, b.method);
        if (index >= 0) use(index);
        return;
    }
    ZArrayT<ZMethodRef> sources, destinations;
    if (!signatures(from, sources) || !signatures(to, destinations)) return;
    for (const ZMethodRef& source : std::as_const(sources))
        for (const ZMethodRef& destination : std::as_const(destinations)) {
            BindingMethod a, b;
            const ZMethod *one = source.getMethod(), *other = destination.getMethod();
            if (!a.find(from.object, nullptr, one->getSelector(), one->getQualifier()) ||
                !b.find(to.object, nullptr, other->getSelector(), other->getQualifier()))
                continue;
            const int index = ZBinding::find(a.object, b.object, a.method, b.method);
            if (index >= 0 && !use(index)) return;
        }
}

} // namespace

int ZBinding::nearBinding(ZObject* src, const ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                          const ZSelector& srcQualifier, const ZSelector& dstQualifier) {
    constexpr int most = 8;
    ZMethodBindings* table = bindingTable();
    if (!table || !src->hasBindings()) return -1;
    ZScopedLock held(table->lock);
    int index = BindingTable::source(src);
    for (int steps = 0; index >= 0 && steps < most; ++steps) {
        const ZBinding& known = table->at(index);
        const bool named = known.selector0.isEmpty() ? known.mSelector0 == srcName : known.selector0 == srcName;
        const bool aimed = known.selector1.isEmpty() ? known.mSelector1 == dstName : known.selector1 == dstName;
        if (known.dst == dst && named && aimed && (srcQualifier.isEmpty() || srcQualifier == known.qualifier0) &&
            (dstQualifier.isEmpty() || dstQualifier == known.qualifier1))
            return index;
        index = known.nextSrc;
    }
    return -1;
}

int ZBinding::find(const ZObject* src, const ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                   const ZSelector& srcQualifier, const ZSelector& dstQualifier) {
    int found = -1;
    if (src && dst)
        eachPair(const_cast<ZObject*>(src), const_cast<ZObject*>(dst), srcName, dstName, srcQualifier, dstQualifier,
                 [&](int index) {
                     found = index;
                     return false;
                 });
    return found;
}
int ZBinding::find(const ZObject* src, const ZObject* dst, const char* srcName, const char* dstName) {
    return find(src, dst, ZSelector(srcName), ZSelector(dstName));
}

bool ZBinding::unbind(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, ZMethod* srcMethod,
                      ZMethod* dstMethod) {
    const int index = find(src, dst, srcType, dstType, srcMethod, dstMethod);
    return index >= 0 && remove(index, false);
}
bool ZBinding::unbind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                      const ZSelector& srcQualifier, const ZSelector& dstQualifier) {
    if (!src || !dst || srcName.isEmpty() || dstName.isEmpty()) return false;
    bool any = false;
    // Among a few, a record that was made by just these names is found sooner than what they lead to.
    if (const int near = nearBinding(src, dst, srcName, dstName, srcQualifier, dstQualifier); near >= 0)
        return remove(near, false);
    eachPair(src, dst, srcName, dstName, srcQualifier, dstQualifier,
             [&](int index) { return any |= remove(index, false); });
    ZMethodBindings* table = bindingTable();
    if (any || !table || !src->hasBindings()) return any;
    // What the names lead to may be another method, or none, by now.
    int index = -1;
    {
        ZScopedLock held(table->lock);
        for (index = BindingTable::source(src); index >= 0; index = table->at(index).nextSrc) {
            const ZBinding& known = table->at(index);
            if (known.dst == dst && means(srcName, srcQualifier, known.selector0, known.mSelector0, known.qualifier0) &&
                means(dstName, dstQualifier, known.selector1, known.mSelector1, known.qualifier1))
                break;
        }
    }
    return index >= 0 && remove(index, false);
}
bool ZBinding::unbind(ZObject* src, ZObject* dst, const char* srcName, const char* dstName) {
    return unbind(src, dst, ZSelector(srcName), ZSelector(dstName));
}
bool ZBinding::unbindmethod(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                            const ZSelector& srcQualifier, const ZSelector& dstQualifier) {
    if (srcName.type() == ZSelector::Method && dstName.type() == ZSelector::Method && src && dst) {
        toolkit::EpochGuard guard;
        BindingMethod a, b;
        return a.find(src, nullptr, srcName, srcQualifier) && b.find(dst, nullptr, dstName, dstQualifier) &&
               unbind(a.object, b.object, nullptr, nullptr, a.method, b.method);
    }
    return unbind(src, dst, srcName, dstName, srcQualifier, dstQualifier);
}
bool ZBinding::unbindprop(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName) {
    return unbind(src, dst, srcName, dstName);
}
bool ZBinding::unbindtype(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, const ZSelector& srcName,
                          const ZSelector& dstName) {
    ZMethodBindings* table = bindingTable();
    if (!table || (!src && !srcType) || (!dst && !dstType)) return false;
    int index = -1;
    {
        ZScopedLock held(table->lock);
        index = src ? BindingTable::source(src) : srcType->record().bindingSrc;
        for (; index >= 0; index = src ? table->at(index).nextSrc : table->at(index).nextSType) {
            const ZBinding& known = table->at(index);
            if (known.src == src && known.dst == dst && (src || known.srcType == srcType) &&
                (dst || known.dstType == dstType) &&
                means(srcName, {}, known.selector0, known.mSelector0, known.qualifier0) &&
                means(dstName, {}, known.selector1, known.mSelector1, known.qualifier1))
                break;
        }
    }
    return index >= 0 && remove(index, false);
}

// Many at once

bool ZBinding::unbindsrc(ZObject* object, const ZSelector& name, const ZSelector& qualifier) {
    ZMethodBindings* table = bindingTable();
    return table && object &&
           table->dropWhere(
               ZMethodBindings::Sources, [&] { return BindingTable::source(object); },
               [&](const ZBinding& known) {
                   return means(name, qualifier, known.selector0, known.mSelector0, known.qualifier0);
               }) > 0;
}
bool ZBinding::unbinddst(ZObject* object, const ZSelector& name, const ZSelector& qualifier) {
    ZMethodBindings* table = bindingTable();
    return table && object &&
           table->dropWhere(
               ZMethodBindings::Destinations, [&] { return BindingTable::destination(object); },
               [&](const ZBinding& known) {
                   return means(name, qualifier, known.selector1, known.mSelector1, known.qualifier1);
               }) > 0;
}
bool ZBinding::unbindLabeled(ZObject* src, ZObject* dst, const ZSelector& label) {
    ZMethodBindings* table = bindingTable();
    return table && src &&
           table->dropWhere(
               ZMethodBindings::Sources, [&] { return BindingTable::source(src); },
               [&](const ZBinding& known) { return known.label == label && (!dst || known.dst == dst); }) > 0;
}
bool ZBinding::unbindLabeled(ZObject* src, const ZSelector& label) { return unbindLabeled(src, nullptr, label); }

void ZBinding::removeObject(ZObject* object) {
    ZMethodBindings* table = bindingTable();
    if (!object) return;
    ZBindingStack::forget(object);
    if (!table) return;
    auto all = [](const ZBinding&) { return true; };
    if (object->hasBindings())
        table->dropWhere(
            ZMethodBindings::Sources, [&] { return BindingTable::source(object); }, all);
    while (toolkit::load(BindingTable::destination(object)) >= 0) {
        constexpr int batch = 32;
        orv::DroppedBinding dropped[batch];
        int count = 0;
        ZScopedLock held(table->lock);
        for (int& head = BindingTable::destination(object); head >= 0 && count < batch;) {
            ZBinding& binding = table->at(head);
            const bool clears = binding.index >= 0 && table->drop(binding);
            if (clears)
                table->clearRecord(binding, dropped[count++]);
            else
                table->leaveDestination(binding);
        }
    }
}
void ZBinding::removeType(ZMetaType* type) {
    ZMethodBindings* table = bindingTable();
    if (!table || !type) return;
    auto all = [](const ZBinding&) { return true; };
    table->dropWhere(
        ZMethodBindings::SourceTypes, [&] { return type->record().bindingSrc; }, all);
    table->dropWhere(
        ZMethodBindings::DestinationTypes, [&] { return type->record().bindingDst; }, all);
}
void ZBinding::removeMethod(ZMethod* method) {
    ZMethodBindings* table = bindingTable();
    if (!table || !method) return;
    auto all = [](const ZBinding&) { return true; };
    table->dropWhere(
        ZMethodBindings::SourceMethods, [&] { return method->getBinding(false); }, all);
    table->dropWhere(
        ZMethodBindings::DestinationMethods, [&] { return method->getBinding(true); }, all);
}

bool ZBinding::leaveDestination(ZObject* object) {
    ZMethodBindings* table = bindingTable();
    if (!table || !object) return true;
    for (bool begun = false;; begun = true) {
        constexpr int batch = 32;
        orv::DroppedBinding dropped[batch];
        int count = 0;
        ZScopedLock held(table->lock);
        // One reference for all of this, and one for each call that is under way: who calls gives it up.
        if (!begun) incmemref(object, true);
        for (int index = BindingTable::destination(object); index >= 0 && count < batch;) {
            ZBinding& binding = table->at(index);
            index = binding.nextDst;
            if (binding.index >= 0 && table->drop(binding)) {
                table->clearRecord(binding, dropped[count++]);
                continue;
            }
            uint seen = toolkit::load(binding.active);
            while (!(seen & Owed) && !toolkit::compareExchange(binding.active, seen, seen | Owed)) {}
            if (!(seen & Owed)) incmemref(object, true);
        }
        if (count < batch) return decmemref(object) <= 0;
    }
}

// After changes of methods

namespace {

/// What a record was made of, for looking its methods up again.
struct Known {
    int index;
    ularge serial;
    ZRetainPtrT<ZObject> src, dst;
    bool hasSource, hasDestination;
    ZMetaType *srcType, *dstType;
    ZSelector mSelector0, mSelector1, qualifier0, qualifier1;
    ZMethodRef srcMethod, dstMethod; ///< held, so that other methods aren't taken for them
};

} // namespace

bool ZMethodBindings::snapshot(List list, int first, const ZSelector& name, ZArrayT<int>& places) {
    const bool isSource = list == Sources || list == SourceTypes;
    const ZMethod* last = nullptr;
    bool taken = true;
    for (int index = first; index >= 0;) {
        ZBinding& binding = at(index);
        const ZMethod* method = isSource ? binding.srcMethod : binding.dstMethod;
        if (!name.isEmpty() && method != last) {
            taken = method->methodName() == name;
            last = method;
        }
        if (taken && !places.append(index)) return false;
        // The first record of a method leads to that of the next.
        index = taken || list != Sources ? next(list, binding) : binding.groupNext;
    }
    return true;
}

bool ZMethodBindings::relink(ZBinding& binding, const orv::BindingRequest& request) {
    constexpr List plain[] = {Destinations, SourceTypes, DestinationTypes, SourceMethods, DestinationMethods};
    forgetPair(binding);
    for (List list : plain) unlink(list, binding);
    unlinkSource(binding);
    ZObject* const oldSource = binding.src;
    ZMethod* const oldMethod = binding.srcMethod;
    toolkit::store(binding.src, request.src);
    toolkit::store(binding.srcMethod, request.srcMethod);
    int level = levelFor(binding);
    const bool done = level >= 0;
    if (done) {
        ZMethod::retain(request.srcMethod);
        ZMethod::retain(request.dstMethod);
        toolkit::store(binding.dst, request.dst);
        binding.dstMethod = request.dstMethod;
        binding.srcType = request.srcType;
        binding.dstType = request.dstType;
        binding.dstOffset = request.dstOffset;
        binding.needsCall = request.needsCall;
        binding.convertFirst = request.convertFirst;
        binding.dropRest = request.dropRest;
        setDirect(binding);
    } else {
        // What it had stood for is there still.
        toolkit::store(binding.src, oldSource);
        toolkit::store(binding.srcMethod, oldMethod);
        level = levelFor(binding);
    }
    toolkit::storeRelease(binding.serial, nextSerial());
    rememberPair(binding);
    linkSource(binding, level);
    for (List list : plain) link(list, binding);
    return done;
}

/// Leads a record to the methods that its signatures find now.
void ZMethodBindings::refresh(int index) {
    Known known{};
    {
        ZScopedLock held(lock);
        const ZBinding* binding = get(index);
        if (!binding) return;
        known = {index,
                 binding->serial,
                 binding->src,
                 binding->dst,
                 binding->src != nullptr,
                 binding->dst != nullptr,
                 binding->srcType,
                 binding->dstType,
                 binding->mSelector0,
                 binding->mSelector1,
                 binding->qualifier0,
                 binding->qualifier1,
                 ZMethodRef(binding->srcMethod, nullptr, nullptr),
                 ZMethodRef(binding->dstMethod, nullptr, nullptr)};
    }
    // One that goes takes the record along.
    if ((known.hasSource && !known.src.get()) || (known.hasDestination && !known.dst.get())) return;
    toolkit::EpochGuard guard;
    BindingMethod from, to;
    if (!from.find(known.src.get(), known.srcType, known.mSelector0, known.qualifier0) ||
        !to.find(known.dst.get(), known.dstType, known.mSelector1, known.qualifier1)) {
        dropAt(index, true);
        return;
    }
    ZMethod* source = from.method;
    while (ZMethod* base = source->getBaseMethod()) source = base;
    ZMethod* destination = to.method;
    const bool sameTypes = from.type == known.srcType && to.type == known.dstType;
    if (source == known.srcMethod.getMethod() && destination == known.dstMethod.getMethod() && sameTypes) return;
    orv::BindingRequest request = orv::requestFor(from, to);
    request.srcMethod = source;
    source->fetchBindingOptions(destination, request.needsCall, request.convertFirst, request.dropRest);
    const bool matches = source->matchBinding(destination, from.type, to.type);
    orv::DroppedBinding dropped;
    ZScopedLock held(lock);
    ZBinding* binding = get(index);
    if (!binding || binding->serial != known.serial || binding->srcMethod != known.srcMethod.getMethod() ||
        binding->dstMethod != known.dstMethod.getMethod())
        return;
    const bool twice = findEqual(request.src, request.dst, nullptr, nullptr, source, destination) >= 0;
    uint seen = ZBinding::Idle;
    if (!matches || (twice && (source != binding->srcMethod || destination != binding->dstMethod))) {
        if (drop(*binding)) clearRecord(*binding, dropped);
    } else if (toolkit::compareExchange(binding->active, seen, uint(ZBinding::Taking))) {
        dropped.srcMethod = binding->srcMethod;
        dropped.dstMethod = binding->dstMethod;
        if (relink(*binding, request)) {
            toolkit::storeRelease(binding->active, uint(ZBinding::Idle));
        } else {
            dropped.srcMethod = dropped.dstMethod = nullptr;
            toolkit::storeRelease(binding->active, uint(ZBinding::Idle));
        }
    } else {
        // It runs: what runs stays as it is, and a new record takes its place.
        request.selector0 = binding->selector0;
        request.selector1 = binding->selector1;
        request.byProperty = binding->byProperty;
        if (const int made = add(request); made >= 0) {
            ZBinding& fresh = at(made);
            fresh.label = binding->label;
            fresh.params = binding->params;
            fresh.paramPos = binding->paramPos;
            toolkit::store(fresh.hasParams, binding->hasParams);
            setDirect(fresh);
            toolkit::store(fresh.refs, binding->refs);
            fresh.countReferences = binding->countReferences;
            toolkit::store(fresh.enabled, binding->enabled);
            move(fresh, binding->priority);
        }
        if (drop(*binding)) clearRecord(*binding, dropped);
    }
}

namespace {
/// Places that were looked at while nothing was locked may have other records by now: refreshing these does no harm.
template <class Collect> void refreshAll(ZMethodBindings& table, Collect collect) {
    ZArrayT<int> places;
    if (!collect(places)) zdebug("bindings stay with the methods that they had: out of memory");
    for (int index : std::as_const(places)) table.refresh(index);
}
} // namespace

void ZBinding::resetObject(ZObject* object, const ZSelector& name) {
    ZMethodBindings* table = bindingTable();
    if (!table || !object || (!object->hasBindings() && toolkit::load(BindingTable::destination(object)) < 0)) return;
    refreshAll(*table, [&](ZArrayT<int>& places) {
        ZScopedLock held(table->lock);
        return table->snapshot(ZMethodBindings::Sources, BindingTable::source(object), name, places) &&
               table->snapshot(ZMethodBindings::Destinations, BindingTable::destination(object), name, places);
    });
}
void ZBinding::resetType(ZMetaType* type, const ZSelector& name) {
    ZMethodBindings* table = bindingTable();
    if (!table || !type || !table->used()) return;
    ZArrayT<ZMetaType*> types;
    if (!types.append(type) || !type->getDescendants(types)) return;
    for (ZMetaType* each : std::as_const(types))
        refreshAll(*table, [&](ZArrayT<int>& places) {
            ZScopedLock held(table->lock);
            return table->snapshot(ZMethodBindings::SourceTypes, each->record().bindingSrc, name, places) &&
                   table->snapshot(ZMethodBindings::DestinationTypes, each->record().bindingDst, name, places);
        });
}
