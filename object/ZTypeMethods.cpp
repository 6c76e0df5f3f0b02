#include "object/HeldTarget.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "object/ZObjectData.h"
#include "object/methodArguments.h"
#include "object/methodLookup.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

// Methods of an instance: its type's. Objects, which have methods of their own and delegates, override the lookups.

using namespace orv;

// Queries

bool ZType::hasLocalMethod(const ZSelector& selector, const ZSelector& qualifier) const {
    return metaType && metaType->hasMethodType(selector, qualifier);
}
bool ZType::hasMethod(const ZSelector& selector, const ZSelector& qualifier) const {
    return method(nullptr, selector, qualifier) != nullptr;
}
bool ZType::hasMultimethod(const ZSelector& name, const ZSelector& qualifier) const {
    return metaType && metaType->methodType(name, qualifier);
}
ZMethod* ZType::fixedMethod(int index) const { return metaType ? metaType->getFixedMethod(index) : nullptr; }

// Lookup

bool ZType::definesName(const ZSelector& name) const {
    return hasProperty(name) || (metaType && metaType->methodType(name, {}));
}
bool ZType::implements(const ZSelector& selector, const ZSelector& qualifier) const {
    toolkit::EpochGuard guard;
    const ZMethod* found = method(nullptr, selector, qualifier);
    return found && (found->hasFunc() || found->hasStacked());
}
ZMethod* ZType::method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    return metaType ? metaType->methodType(typed, selector, qualifier) : nullptr;
}
ZMethod* ZType::method(const ZSelector& selector, const ZSelector& qualifier) const {
    return method(nullptr, selector, qualifier);
}
ZMethod* ZType::baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    return metaType ? metaType->baseMethodType(typed, selector, qualifier) : nullptr;
}
ZMethod* ZType::multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                            bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const {
    if (metaType)
        return metaType->multimethodType(distance, typed, name, types, implicit, skipResult, exact, qualifier);
    if (distance) *distance = -1;
    return nullptr;
}
ZMethod* ZType::multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const {
    return multimethod(nullptr, nullptr, name, types, false, true, false, {});
}
ZMethod* ZType::baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                const ZSelector& qualifier) const {
    if (metaType)
        return metaType->baseMultimethodType(distance, typed, name, types, implicit, skipResult, exact, qualifier);
    if (distance) *distance = -1;
    return nullptr;
}

// Calling

namespace {

/// Whether methods of an object can only be its type's.
bool hasTypeMethodsOnly(const ZType* instance) {
    if (!instance->isObject()) return true;
    const ObjectData* data = ObjectData::of(static_cast<const ZObject*>(instance));
    return data &&
           !data->has(ObjectData::Methods | ObjectData::ExtMethods | ObjectData::Delegates | ObjectData::ExtendTypes);
}
/// The overload that fits the arguments best; the types stand on the stack, or are few enough to do so.
MethodHit findForCall(const ZMetaType* type, const ZSelector& name, const ZVariant* args, int count) {
    constexpr int room = 16;
    const ZMetaType* few[room];
    const ZMetaType** types = few;
    void* block = nullptr;
    if (ORV_UNLIKELY(count >= room)) {
        block = __zalloc((size_t(count) + 1) * sizeof *types);
        if (!block) return {};
        types = static_cast<const ZMetaType**>(block);
    }
    types[0] = nullptr;
    for (int i = 0; i < count; ++i) types[i + 1] = args[i].type();
    const MethodHit hit = lookUpOverload(type, name, types, count + 1, LookImplicit | LookSkipResult, {}, false);
    zfree(block);
    return hit;
}
ZVariant callHit(const MethodHit& hit, const void* instance, const ZVariant* args, int count) {
    const void* part = instance ? static_cast<const char*>(instance) + hit.offset : nullptr;
    return callFound(hit.method, part, hit.type, args, count);
}

} // namespace

ZVariant ZType::invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const {
    const int count = int(arguments.count());
    if (hasTypeMethodsOnly(this)) {
        toolkit::EpochGuard guard;
        if (const MethodHit hit = findForCall(metaType, name, arguments.data(), count);
            ORV_LIKELY(hit.method != nullptr))
            return callHit(hit, this, arguments.data(), count);
    }
    ZArrayT<ZMetaType*> types;
    if (!types.setCount(uint(count) + 1)) return {};
    for (int i = 0; i < count; ++i) types.set(uint(i) + 1, arguments.data()[i].type());
    // An object looks among its own methods and those of its delegates, and follows paths.
    HeldTarget target(ZTypedPtr(metaType, this));
    toolkit::EpochGuard guard;
    if (const ZMethod* found = target.multimethod(nullptr, this, name, types, true, true, false, {}))
        return callFound(found, target.typed.instance, target.typed.type, arguments.data(), count);
    logFailedCall(metaType, name, arguments.data(), count);
    return {};
}
ZVariant ZType::invoke(const ZSelector& name, const ZVArray& arguments) const {
    const ZArrayT<ZVariant> list = variantList(arguments);
    return list.count() == arguments.count() ? invoke(name, list) : ZVariant();
}
ZVariant ZType::invoke(const ZSelector& name, std::initializer_list<ZVariant> arguments) const {
    ZArrayT<ZVariant> list;
    return list.append(arguments.begin(), uint(arguments.size())) ? invoke(name, list) : ZVariant();
}
bool ZType::callV(const ZSelector& name) const { return callV(name, {}); }
bool ZType::callV(const ZSelector& name, const ZSelector& qualifier) const {
    if (hasTypeMethodsOnly(this)) {
        toolkit::EpochGuard guard;
        const ZMetaType* types[] = {nullptr};
        const MethodHit hit = lookUpOverload(metaType, name, types, 1, LookImplicit | LookSkipResult, qualifier, false);
        if (ORV_LIKELY(hit.method != nullptr)) {
            callHit(hit, this, nullptr, 0);
            return true;
        }
    }
    if (isObject()) {
        ZArrayT<ZMetaType*> none;
        if (!none.append(nullptr)) return false;
        HeldTarget target(ZTypedPtr(metaType, this));
        toolkit::EpochGuard guard;
        if (const ZMethod* found = target.multimethod(nullptr, this, name, none, true, true, false, qualifier)) {
            callFound(found, target.typed.instance, target.typed.type, nullptr, 0);
            return true;
        }
    }
    logFailedCall(metaType, name, nullptr, 0);
    return false;
}

namespace orv {

ZVariant callFound(const ZMethod* method, const void* instance, const ZMetaType* type, const ZVariant* args,
                   int count) {
    const MethodParams* params = method->params(type);
    // On what lives already nothing is built or ended.
    if (ORV_UNLIKELY(!params || params->constructor || params->destructor)) return {};
    return method->invoke(instance, type, args, count);
}

ZVariant invokeByType(const void* instance, const ZMetaType* type, const ZSelector& name, const ZVariant* args,
                      int count) {
    if (ORV_UNLIKELY(!type || count < 0)) return {};
    toolkit::EpochGuard guard;
    const MethodHit hit = findForCall(type, name, args, count);
    if (ORV_LIKELY(hit.method != nullptr)) return callHit(hit, instance, args, count);
    logFailedCall(type, name, args, count);
    return {};
}

} // namespace orv
