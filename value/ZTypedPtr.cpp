#include "value/ZTypedPtr.h"

#include "core/ZArrayT.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZMethodRef.h"
#include "object/ZObject.h"
#include "toolkit/epoch.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"
#include "value/typedInstance.h"

using namespace orv;
using detail::instanceOf;

ZTypedPtr::ZTypedPtr(const ZTypedPtr* other) {
    if (other) *this = *other;
}
ZTypedPtr::ZTypedPtr(const ZVariant& value) : type(value.mainType()), instance(const_cast<void*>(value.getPtr())) {
    // A pointer to a pointer leads to no value that the type knows.
    if (type && type->kind() == ZMetaType::Pointer) *this = ZTypedPtr();
}
ZTypedPtr::ZTypedPtr(const ZVariant* value) {
    if (value) *this = ZTypedPtr(*value);
}
ZTypedPtr::ZTypedPtr(const ZType* instance)
    : type(instance ? instance->type() : nullptr), instance(const_cast<ZType*>(instance)) {}

int ZTypedPtr::compare(const ZTypedPtr& other) const {
    auto mine = reinterpret_cast<uintptr_t>(type), theirs = reinterpret_cast<uintptr_t>(other.type);
    if (mine != theirs) return mine < theirs ? -1 : 1;
    return type ? type->compareInstance(instance, other.instance) : 0;
}

// Methods

namespace {

/// Tells `typed` where a method was found, unless it has an instance of its own.
void settle(ZTypedPtr* typed, const ZTypedPtr& place) {
    if (typed && !typed->instance) *typed = place;
}

/// Takes a path, or a signature that names one, apart: the property that it begins with, and what is asked of its
/// value.
bool splitPath(const ZSelector& selector, ZSelector& first, ZSelector& rest) {
    const bool isSignature = selector.type() == ZSelector::Method;
    const ZSelector path = isSignature ? selector.methodName() : selector;
    if (!path.deepName() || path.parcount() < 2) return false;
    first = path.param(0);
    if (!isSignature) {
        rest = path.suffix();
        return true;
    }
    rest = selector;
    return rest.setMethodName(path.suffix());
}

/// Asks the value of a path's first part for the rest. A value that isn't an instance ends here: who wants the method's
/// place gets no method of such a one, nor who has a place already.
template <class F> ZMethod* onPath(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& selector, F&& find) {
    ZSelector first, rest;
    if ((typed && typed->instance) || !splitPath(selector, first, rest)) return nullptr;
    ZVariant part = at.getProperty(first);
    if (part.isNull() || (typed && !part.isZType())) return nullptr;
    return find(ZTypedPtr(part), typed, rest);
}

} // namespace

ZMethod* ZTypedPtr::method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    if (!type) return nullptr;
    if (ZType* object = instanceOf(*this); object && object->isObject())
        return object->method(typed, selector, qualifier);
    ZTypedPtr place(*this);
    if (ZMethod* found = type->methodType(&place, selector, qualifier)) {
        settle(typed, place);
        return found;
    }
    return onPath(*this, typed, selector, [&](const ZTypedPtr& part, ZTypedPtr* partPlace, const ZSelector& rest) {
        return part.method(partPlace, rest, qualifier);
    });
}
ZMethod* ZTypedPtr::method(const ZSelector& selector, const ZSelector& qualifier) const {
    return method(nullptr, selector, qualifier);
}

ZMethod* ZTypedPtr::baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    if (!type) return nullptr;
    if (ZType* object = instanceOf(*this)) return object->baseMethod(typed, selector, qualifier);
    ZTypedPtr place(*this);
    ZMethod* found = type->baseMethodType(&place, selector, qualifier);
    if (found) settle(typed, place);
    return found;
}

ZMethod* ZTypedPtr::multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                const ZSelector& qualifier) const {
    if (distance) *distance = -1;
    if (!type) return nullptr;
    if (ZType* object = instanceOf(*this); object && object->isObject())
        return object->multimethod(distance, typed, name, types, implicit, skipResult, exact, qualifier);
    ZTypedPtr place(*this);
    if (ZMethod* found = type->multimethodType(distance, &place, name, types, implicit, skipResult, exact, qualifier)) {
        settle(typed, place);
        return found;
    }
    return onPath(*this, typed, name, [&](const ZTypedPtr& part, ZTypedPtr* partPlace, const ZSelector& rest) {
        return part.multimethod(distance, partPlace, rest, types, implicit, skipResult, exact, qualifier);
    });
}
ZMethod* ZTypedPtr::multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const {
    return multimethod(nullptr, nullptr, name, types, true, true, false, {});
}

ZMethod* ZTypedPtr::baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                    const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                    const ZSelector& qualifier) const {
    if (distance) *distance = -1;
    if (!type) return nullptr;
    if (ZType* object = instanceOf(*this))
        return object->baseMultimethod(distance, typed, name, types, implicit, skipResult, exact, qualifier);
    ZTypedPtr place(*this);
    ZMethod* found = type->baseMultimethodType(distance, &place, name, types, implicit, skipResult, exact, qualifier);
    if (found) settle(typed, place);
    return found;
}

bool ZTypedPtr::implements(const ZSelector& selector, const ZSelector& qualifier) const {
    if (ZType* object = instanceOf(*this)) return object->implements(selector, qualifier);
    return type && type->implementMethod(selector, qualifier);
}
bool ZTypedPtr::definesName(const ZSelector& name) const {
    if (ZType* object = instanceOf(*this)) return object->definesName(name);
    return type && (type->hasPropertyDef(name) || type->hasMultimethodType(name, {}));
}

namespace {

/// Finds what a call of a name, or of a signature, with arguments of those types runs; entry 0 is the result, which
/// doesn't count. A signature that the type has is taken as it is.
ZMethodRef resolve(const ZTypedPtr& at, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                   const ZSelector& qualifier) {
    toolkit::EpochGuard guard;
    ZTypedPtr place;
    ZMethod* found = nullptr;
    ZSelector called = name;
    if (name.type() == ZSelector::Method) {
        called = name.method();
        found = at.method(&place, called, qualifier);
        called = called.methodName();
    }
    if (!found) {
        place = ZTypedPtr();
        found = at.multimethod(nullptr, &place, called, types, true, true, false, qualifier);
    }
    if (!found) return {};
    if (!place.instance) place = at;
    return {found, place.instance, place.type};
}

} // namespace

ZVariant ZTypedPtr::invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const {
    if (!type) return {};
    ZArrayT<ZMetaType*> types;
    if (!types.append(nullptr)) return {};
    for (const ZVariant& argument : arguments)
        if (!types.append(argument.type())) return {};
    if (ZMethodRef ref = resolve(*this, name, types, name.methodQualifier()); ref.isValid())
        return ref.invoke(arguments);
    // The value of a path's first part lives as long as the call.
    ZSelector first, rest;
    if (!splitPath(name, first, rest)) return {};
    ZVariant part = getProperty(first);
    return ZTypedPtr(part).invoke(rest, arguments);
}

ZVariant ZTypedPtr::invoke(const ZSelector& name, const ZVArray& arguments) const {
    ZArrayT<ZVariant> list;
    for (int i = 0, count = int(arguments.count()); i < count; ++i)
        if (!list.append(arguments.variant(i))) return {};
    return invoke(name, list);
}

bool ZTypedPtr::callV(const ZSelector& name) const { return callV(name, {}); }
bool ZTypedPtr::callV(const ZSelector& name, const ZSelector& qualifier) const {
    if (!type) return false;
    ZArrayT<ZMetaType*> types;
    if (!types.append(nullptr)) return false;
    const ZSelector asked = qualifier.isEmpty() ? name.methodQualifier() : qualifier;
    if (ZMethodRef ref = resolve(*this, name, types, asked); ref.isValid()) {
        ref.invoke(nullptr, 0);
        return true;
    }
    ZSelector first, rest;
    if (!splitPath(name, first, rest)) return false;
    ZVariant part = getProperty(first);
    return ZTypedPtr(part).callV(rest, qualifier);
}

// Accessor methods

ZVariant ZTypedPtr::getVariant(ZMethod* method) const {
    return type && method ? type->getVariant(method, instance) : ZVariant();
}
ZVariant ZTypedPtr::getVariant(ZMethod* method, int key) const {
    return type && method ? type->getVariant(method, instance, key) : ZVariant();
}
ZVariant ZTypedPtr::getVariant(ZMethod* method, const ZSelector& key) const {
    return type && method ? type->getVariant(method, instance, key) : ZVariant();
}
ZVariant ZTypedPtr::getVariant(ZMethod* method, const void* key) const {
    return type && method ? type->getVariant(method, instance, key) : ZVariant();
}
ZVariant ZTypedPtr::getVariant(ZMethod* method, const ZVariant& key) const {
    return type && method ? type->getVariant(method, instance, key) : ZVariant();
}
bool ZTypedPtr::setVariant(ZMethod* method, const ZVariant& value) const {
    return type && method && type->setVariant(method, instance, value);
}
bool ZTypedPtr::setVariant(ZMethod* method, int key, const ZVariant& value) const {
    return type && method && type->setVariant(method, instance, key, value);
}
bool ZTypedPtr::setVariant(ZMethod* method, const ZSelector& key, const ZVariant& value) const {
    return type && method && type->setVariant(method, instance, key, value);
}
bool ZTypedPtr::setVariant(ZMethod* method, const ZVariant& key, const ZVariant& value) const {
    return type && method && type->setVariant(method, instance, key, value);
}
int ZTypedPtr::findVariant(ZMethod* method, const ZVariant& value) const {
    return type && method ? type->findVariant(method, instance, value) : -1;
}
