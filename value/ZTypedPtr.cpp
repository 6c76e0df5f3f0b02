#include "value/ZTypedPtr.h"

#include "core/ZArrayT.h"
#include "object/HeldTarget.h"
#include "object/ZMetaType.h"
#include "object/ZMethod.h"
#include "object/ZMethodRef.h"
#include "object/ZObject.h"
#include "object/methodLookup.h"
#include "toolkit/epoch.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"
#include "value/plainProperties.h"
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

/// Follows a path, or a signature that names one, and asks what it leads to; `ask(end, rest)`.
template <class F> auto onPath(const ZTypedPtr& at, const ZSelector& selector, F&& ask) {
    using Answer = decltype(ask(std::declval<const plain::PathEnd&>(), selector));
    const bool isSignature = selector.type() == ZSelector::Method;
    const ZSelector path = isSignature ? selector.methodName() : selector;
    if (!path.deepName() || path.parcount() < 2) return Answer();
    const plain::PathEnd end(at, path);
    if (!end.found) return Answer();
    ZSelector rest = isSignature ? selector : end.name;
    return isSignature && !rest.setMethodName(end.name) ? Answer() : ask(end, rest);
}

/// The same for a method. A value that isn't an instance ends with the search: who wants the method's place gets no
/// method of such a one, nor who has a place already.
template <class F> ZMethod* methodOnPath(const ZTypedPtr& at, ZTypedPtr* typed, const ZSelector& selector, F&& find) {
    if (typed && typed->instance) return nullptr;
    return onPath(at, selector, [&](const plain::PathEnd& end, const ZSelector& rest) -> ZMethod* {
        if (typed && !end.holder.isZType()) return nullptr;
        ZMethod* found = find(end.at, rest);
        if (HeldTarget* target = found ? HeldTarget::lookingFor(typed) : nullptr) target->keep(end.holder.toType());
        return found;
    });
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
    return methodOnPath(*this, typed, selector, [&](const ZTypedPtr& part, const ZSelector& rest) {
        return part.method(typed, rest, qualifier);
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
    return methodOnPath(*this, typed, name, [&](const ZTypedPtr& part, const ZSelector& rest) {
        return part.multimethod(distance, typed, rest, types, implicit, skipResult, exact, qualifier);
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

ZVariant ZTypedPtr::invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const {
    if (!type) return {};
    if (ZType* object = instanceOf(*this); object && object->isObject()) return object->invoke(name, arguments);
    bool followed = false;
    ZVariant answer = onPath(*this, name, [&](const plain::PathEnd& end, const ZSelector& rest) {
        followed = true;
        return end.at.invoke(rest, arguments);
    });
    return followed ? answer : invokeByType(instance, type, name, arguments.data(), int(arguments.count()));
}

ZVariant ZTypedPtr::invoke(const ZSelector& name, const ZVArray& arguments) const {
    ZArrayT<ZVariant> list;
    for (int i = 0, count = int(arguments.count()); i < count; ++i)
        if (!list.append(arguments.variant(i))) return {};
    return invoke(name, list);
}

ZVariant ZTypedPtr::invoke(const ZSelector& name, std::initializer_list<ZVariant> arguments) const {
    ZArrayT<ZVariant> list;
    return list.append(arguments.begin(), uint(arguments.size())) ? invoke(name, list) : ZVariant();
}

bool ZTypedPtr::callV(const ZSelector& name) const { return callV(name, {}); }
bool ZTypedPtr::callV(const ZSelector& name, const ZSelector& qualifier) const {
    if (!type) return false;
    HeldTarget target;
    ZTypedPtr& place = target.typed;
    ZMethodRef ref;
    {
        toolkit::EpochGuard guard;
        HeldTarget::Lookup looking(target);
        ZMethod* found = nullptr;
        if (name.type() == ZSelector::Method)
            found = method(&place, name.method(), qualifier.isEmpty() ? name.methodQualifier() : qualifier);
        else if (ZArrayT<ZMetaType*> types; types.append(nullptr))
            found = multimethod(nullptr, &place, name, types, true, true, false, qualifier);
        if (found && !place.instance) place = *this;
        if (found) ref.set(found, place.instance, place.type);
    }
    if (ref.isValid()) {
        ref.invoke(nullptr, 0);
        return true;
    }
    return onPath(*this, name,
                  [&](const plain::PathEnd& end, const ZSelector& rest) { return end.at.callV(rest, qualifier); });
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
