#include "object/ZInlineMethod.h"

#include "object/HeldTarget.h"
#include "object/ZMetaTypeData.h"
#include "object/ZObject.h"
#include "object/inlineLinks.h"
#include "object/methodArguments.h"
#include "object/methodLookup.h"
#include "value/ZVariant.h"

namespace {

constinit ZSpinLock multiGuard;
constinit ZInlineMethod* multiFirst = nullptr;
ORV_THREAD_LOCAL ZInlineMethod::Stack* innermost = nullptr;

} // namespace

namespace orv {

void InlineLinks::link(MethodTables& tables, const ZInlineMethod* record) {
    ZScopedLock held(tables.inlineGuard);
    record->prev = nullptr;
    record->next = tables.inlineFirst;
    if (record->next) record->next->prev = const_cast<ZInlineMethod*>(record);
    tables.inlineFirst = const_cast<ZInlineMethod*>(record);
}
void InlineLinks::unlink(MethodTables& tables, const ZInlineMethod* record) {
    ZScopedLock held(tables.inlineGuard);
    if (tables.inlineFirst != record && !record->prev) return;
    (record->prev ? record->prev->next : tables.inlineFirst) = record->next;
    if (record->next) record->next->prev = record->prev;
    record->next = record->prev = nullptr;
}
void InlineLinks::reset(MethodTables& tables, const ZSelector* name) {
    ZScopedLock held(tables.inlineGuard);
    for (ZInlineMethod* at = tables.inlineFirst; at; at = at->next)
        if (!name || *name == at->signature || *name == at->name) at->reset();
}
void InlineLinks::drop(MethodTables& tables) {
    ZScopedLock held(tables.inlineGuard);
    while (ZInlineMethod* record = tables.inlineFirst) {
        tables.inlineFirst = record->next;
        record->reset();
        record->next = record->prev = nullptr;
        toolkit::storeRelease(record->ownerType, static_cast<ZMetaType*>(nullptr));
        ZScopedLock aimed(record->guard);
        record->linkedTo = nullptr;
    }
}
void InlineLinks::list(const ZInlineMethod* record) {
    ZScopedLock held(multiGuard);
    if (record->listed) return;
    record->listed = true;
    record->prevMulti = nullptr;
    record->nextMulti = multiFirst;
    if (multiFirst) multiFirst->prevMulti = const_cast<ZInlineMethod*>(record);
    multiFirst = const_cast<ZInlineMethod*>(record);
}
void InlineLinks::unlist(const ZInlineMethod* record) {
    ZScopedLock held(multiGuard);
    unlistHeld(record);
}
void InlineLinks::unlistHeld(const ZInlineMethod* record) {
    if (!record->listed) return;
    record->listed = false;
    (record->prevMulti ? record->prevMulti->nextMulti : multiFirst) = record->nextMulti;
    if (record->nextMulti) record->nextMulti->prevMulti = record->prevMulti;
    record->nextMulti = record->prevMulti = nullptr;
}

ZArrayT<ZMetaType*> InlineLinks::takeTypes(ZInlineMethod* record) {
    ZArrayT<ZMetaType*> types;
    record->reset();
    ZScopedLock held(record->guard);
    std::swap(types, record->paramTypes);
    return types;
}

} // namespace orv

using orv::MethodHit;

// What it stands for

ZInlineMethod::ZInlineMethod(const ZInlineMethod& other) { assign(other); }

void ZInlineMethod::init(const ZMetaType* type, const ZSelector& wanted, bool multi, bool base) {
    clear();
    ownerType = const_cast<ZMetaType*>(type);
    isMulti = multi;
    isBase = base;
    name = wanted;
    if (!multi) signature = wanted;
    link();
}
void ZInlineMethod::setSelector(const ZSelector& wanted, const ZSelector& words) { setSelector({}, {}, wanted, words); }
void ZInlineMethod::setSelector(const ZSelector& type, const ZSelector& wanted, const ZSelector& words) {
    setSelector({}, type, wanted, words);
}
void ZInlineMethod::forgetObject() {
    reset();
    ownerObject = nullptr;
}
void ZInlineMethod::setSelector(const ZSelector& module, const ZSelector& type, const ZSelector& wanted,
                                const ZSelector& words) {
    unlink();
    dropTypes();
    ownerType = nullptr;
    ownerObject = nullptr;
    package = module;
    typeName = type;
    signature = wanted;
    name = wanted.type() == ZSelector::Method ? wanted.methodName() : wanted;
    qualifier = words;
}
bool ZInlineMethod::setMethod(const ZMetaType* type, const ZSelector& wanted, const ZSelector& words) {
    ZMetaType* found = const_cast<ZMetaType*>(type);
    if (!found || (found == ownerType && !typeName.isEmpty())) {
        ownerType = nullptr;
        if (ZMetaType* named = findOwner()) found = named;
    }
    const ZSelector type0 = typeName, module = package;
    setSelector(module, type0, wanted, words);
    ownerType = found;
    link();
    toolkit::EpochGuard guard;
    return resolve().method != nullptr;
}
bool ZInlineMethod::setMethod(const ZObject* object, const ZSelector& wanted, const ZSelector& words) {
    setSelector(wanted, words);
    ownerObject = object;
    ownerType = object ? object->type() : nullptr;
    link();
    toolkit::EpochGuard guard;
    return resolve().method != nullptr;
}
bool ZInlineMethod::setMethod(const ZMetaType* type, const ZSelector& wanted, const ZArrayT<ZMetaType*>& types,
                              const ZSelector& words) {
    setSelector(wanted, words);
    ZMetaType::useTypes(types);
    paramTypes = types;
    isMulti = true;
    ownerType = const_cast<ZMetaType*>(type);
    link();
    toolkit::EpochGuard guard;
    return resolve().method != nullptr;
}
/// Of a record that isn't listed.
void ZInlineMethod::dropTypes() {
    ZMetaType::unuseTypes(paramTypes);
    paramTypes.clear();
}
void ZInlineMethod::setMode(uint flags) {
    reset();
    isType = flags & TypeMethod;
    isBase = flags & BaseMethod;
    isMulti = flags & MultiMethod;
}
void ZInlineMethod::setBaseMethod(bool on) {
    reset();
    isBase = on;
}
void ZInlineMethod::setMultiMethod(bool on) {
    reset();
    isMulti = on;
}
void ZInlineMethod::setTypeMethod(bool on) {
    reset();
    isType = on;
}
void ZInlineMethod::setPackage(const ZSelector& module) {
    unlink();
    ownerType = nullptr;
    package = module;
}
void ZInlineMethod::setQualifier(const ZSelector& words) {
    reset();
    qualifier = words;
}

// Looking up

ZMetaType* ZInlineMethod::findOwner() const {
    if (typeName.isEmpty()) return nullptr;
    const ZSelector full = package.isEmpty() ? typeName : ZSelector::combine(package, typeName, "::");
    return ZMetaType::find(full);
}
ZArrayT<ZMetaType*> ZInlineMethod::shareTypes() const {
    ZScopedLock held(guard);
    return paramTypes;
}
/// `target` keeps whose method it is, if the record's object has it from a delegate: the method is called there.
MethodHit ZInlineMethod::find(orv::HeldTarget& target) const {
    ZMetaType* type = toolkit::loadAcquire(ownerType);
    MethodHit hit;
    if (isMulti && signature.type() != ZSelector::Method) {
        // Without types only a call's arguments can choose.
        const ZArrayT<ZMetaType*> types = shareTypes();
        if (types.isEmpty()) return {};
        hit = orv::lookUpOverload(type, signature, types.data(), int(types.count()),
                                  orv::LookSkipResult | orv::LookImplicit, qualifier, isBase);
    } else if (type) {
        hit = orv::lookUpMethod(type, signature, qualifier, isBase);
    }
    if (ownerObject) {
        target.typed = ZTypedPtr(type, ownerObject);
        if (ZMethod* own = target.method(ownerObject, signature, qualifier)) {
            const auto part = static_cast<const char*>(target.typed.instance);
            const int offset = target.kept.get() ? 0 : int(part - reinterpret_cast<const char*>(ownerObject));
            hit = {own, offset, 0, type};
        }
    }
    if (!hit.method) return {};
    const uint flags = hit.method->getFlags();
    if (flags & ZMethod::Private || (isType && !(flags & ZMethod::TypeMethod))) return {};
    return hit;
}
void ZInlineMethod::publish(const MethodHit& hit, ularge generation) const {
    // An object's own methods change without the types; entries that look at their record need a guard around the call.
    const bool keep = hit.method && hit.method->isDeclared() && hit.method->hasFunc() && !ownerObject;
    ZScopedLock held(guard);
    toolkit::storeRelease(stamp, 0);
    toolkit::storeRelease(func, keep ? hit.method->getFunc() : nullptr);
    toolkit::storeRelease(method, keep ? hit.method : nullptr);
    toolkit::storeRelease(offset, hit.offset);
    toolkit::storeRelease(taking, keep ? hit.method->fastWords() : 0);
    if (keep && generation == orv::typeGeneration()) toolkit::storeRelease(stamp, generation);
}
MethodHit ZInlineMethod::resolve() const {
    orv::HeldTarget target;
    return resolve(target);
}
MethodHit ZInlineMethod::resolve(orv::HeldTarget& target) const {
    const ularge generation = orv::typeGeneration();
    if (!toolkit::loadAcquire(ownerType)) {
        ZMetaType* found = findOwner();
        if (!found) return {};
        {
            ZScopedLock held(guard);
            if (!ownerType) toolkit::storeRelease(ownerType, found);
        }
        link();
    }
    const MethodHit hit = find(target);
    publish(hit, generation);
    return hit;
}
void* ZInlineMethod::callSlow(const void* instance, const void* const* words, int count) const {
    orv::HeldTarget target;
    toolkit::EpochGuard guard;
    const MethodHit hit = resolve(target);
    if (!hit.method) return nullptr;
    const void* part = static_cast<const char*>(instance) + hit.offset;
    const ZMetaType* type = toolkit::loadAcquire(ownerType);
    if (target.kept.get()) {
        part = target.typed.instance;
        type = target.typed.type;
    }
    if (hit.method->hasFunc() && hit.method->fastWords() == count) return orv::callWords(hit.method, part, words);
    if (count > 0) return nullptr;
    const ZVariant result = hit.method->invoke(part, type, nullptr, 0);
    void* word = nullptr;
    if (result.type() && result.type()->byteSize() <= sizeof word && result.getPtr())
        __builtin_memcpy(&word, result.getPtr(), result.type()->byteSize());
    return word;
}
ZVariant ZInlineMethod::invoke(const void* instance, const ZVariant* args, int count) const {
    orv::HeldTarget target;
    toolkit::EpochGuard guard;
    MethodHit hit;
    ZMetaType* type = toolkit::loadAcquire(ownerType);
    if (isMulti && signature.type() != ZSelector::Method && type && count < 32 && shareTypes().isEmpty()) {
        const ZMetaType* types[33] = {};
        for (int i = 0; i < count; ++i) types[i + 1] = args[i].type();
        hit = orv::lookUpOverload(type, signature.isEmpty() ? name : signature, types, count + 1,
                                  orv::LookSkipResult | orv::LookImplicit, qualifier, isBase);
    } else {
        hit = resolve(target);
    }
    if (!hit.method) return {};
    if (target.kept.get()) return hit.method->invoke(target.typed.instance, target.typed.type, args, count);
    const char* part = instance ? static_cast<const char*>(instance) + hit.offset : nullptr;
    return hit.method->invoke(part, toolkit::loadAcquire(ownerType), args, count);
}
ZMethod* ZInlineMethod::getMethod() const {
    toolkit::EpochGuard guard;
    return resolve().method;
}
ZMethod::Func ZInlineMethod::getFunc() const {
    const ularge seen = toolkit::loadAcquire(stamp);
    const ZMethod::Func known = toolkit::loadAcquire(func);
    if (seen == orv::typeGeneration() && toolkit::load(stamp) == seen) return known;
    toolkit::EpochGuard guard;
    const MethodHit hit = resolve();
    return hit.method ? hit.method->getFunc() : &ZMethod::emptyFunc;
}
ZMetaType* ZInlineMethod::getParamType(int index) const {
    if (const ZArrayT<ZMetaType*> types = shareTypes(); index >= 0 && uint(index) < types.count())
        return types.data()[index];
    toolkit::EpochGuard guard;
    const MethodHit hit = resolve();
    return hit.method ? hit.method->parType(index, toolkit::loadAcquire(ownerType)) : nullptr;
}

// Registration

void ZInlineMethod::link() const {
    ZMetaType* type = toolkit::loadAcquire(ownerType);
    if (isMulti) orv::InlineLinks::list(this);
    if (ownerObject) const_cast<ZObject*>(ownerObject)->linkInlineMethod(const_cast<ZInlineMethod*>(this));
    if (!type) return;
    {
        ZScopedLock held(guard);
        if (linkedTo) return;
        linkedTo = type;
    }
    type->linkInlineMethodType(const_cast<ZInlineMethod*>(this));
}
void ZInlineMethod::unlink() const {
    reset();
    ZMetaType* type;
    {
        ZScopedLock held(guard);
        type = std::exchange(linkedTo, nullptr);
    }
    if (type) type->unlinkInlineMethodType(const_cast<ZInlineMethod*>(this));
    if (ownerObject) const_cast<ZObject*>(ownerObject)->unlinkInlineMethod(const_cast<ZInlineMethod*>(this));
    orv::InlineLinks::unlist(this);
}
void ZInlineMethod::reset() const { toolkit::storeRelease(stamp, 0); }
void ZInlineMethod::clear() {
    unlink();
    dropTypes();
    isBase = isMulti = isType = false;
    ownerType = nullptr;
    ownerObject = nullptr;
    package = typeName = signature = name = qualifier = {};
}
void ZInlineMethod::assign(const ZInlineMethod& other) {
    if (this == &other) return;
    clear();
    isBase = other.isBase;
    isMulti = other.isMulti;
    isType = other.isType;
    ownerType = other.ownerType;
    ownerObject = other.ownerObject;
    package = other.package;
    typeName = other.typeName;
    signature = other.signature;
    name = other.name;
    qualifier = other.qualifier;
    paramTypes = other.paramTypes;
    ZMetaType::useTypes(paramTypes);
    link();
}

namespace {
/// Takes the types from multi-method records that are affected. All of it under the list's lock: a record may end as
/// soon as it is free.
template <class F> void clearRecords(F affected) {
    for (;;) {
        ZArrayT<ZMetaType*> types;
        {
            ZScopedLock held(multiGuard);
            ZInlineMethod* at = multiFirst;
            while (at && !affected(orv::InlineLinks::types(at))) at = orv::InlineLinks::nextListed(at);
            if (!at) return;
            types = orv::InlineLinks::takeTypes(at);
            orv::InlineLinks::unlistHeld(at);
        }
        ZMetaType::unuseTypes(types);
    }
}
} // namespace

void ZInlineMethod::clearMultiMethods(const ZMetaType* type) {
    clearRecords([=](const ZArrayT<ZMetaType*>& types) { return types.contains(const_cast<ZMetaType*>(type)); });
}
void ZInlineMethod::clearMultiMethods(const ZPackage* package) {
    clearRecords([=](const ZArrayT<ZMetaType*>& types) { return ZMetaType::hasPackage(types, package); });
}

// Nested calls

ZInlineMethod::Stack::Stack(ZInlineMethod& record)
    : kept(record), below(innermost), target(nullptr), types(record.shareTypes()), owner(record.ownerType),
      object(record.ownerObject) {
    ZMetaType::useTypes(types);
    toolkit::EpochGuard guard;
    target = ZMethod::retain(record.resolve().method);
    innermost = this;
}
ZInlineMethod::Stack::~Stack() {
    innermost = below;
    ZMethod::release(target);
    if (kept.ownerType != owner || kept.ownerObject != object || !(kept.shareTypes() == types)) {
        kept.unlink();
        ZMetaType::useTypes(types);
        ZMetaType::unuseTypes(kept.paramTypes);
        kept.paramTypes = types;
        kept.ownerType = owner;
        kept.ownerObject = object;
        kept.link();
    }
    ZMetaType::unuseTypes(types);
}
ZInlineMethod::Stack* ZInlineMethod::stack() { return innermost; }
