#include "core/debug.h"
#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/ZPropertyRef.h"
#include "object/bindingEnds.h"
#include "object/methodParams.h"
#include "value/ZTypedPtr.h"

// Making: from names to methods, from these to a record. Everything is looked up ahead of the lock.

using orv::BindingEnd;
using orv::BindingMethod;
using orv::BindingRequest;

namespace orv {

// The sides of a binding

BindingEnd::BindingEnd(ZObject* from, const ZSelector& given, const ZSelector& words) : object(from), name(given) {
    if (!from) return;
    object = from->resolveFieldName(given, name, qualifier);
    if (qualifier.isEmpty()) qualifier = words;
    if (name.type() != ZSelector::Method) findProperty();
}
BindingEnd::~BindingEnd() {
    if (property) property->release();
}
void BindingEnd::findProperty() {
    if (!object || name.isEmpty()) return;
    const ZPropertyRef found(object, name);
    if (found.isNull() || !found.owner() || !found.owner()->isObject()) return;
    if (property) property->release();
    property = found.property()->retain();
    object = static_cast<ZObject*>(found.owner());
    name = found.name();
}
bool BindingEnd::prepare(bool make) {
    if (!property || property->readOnly()) return true;
    {
        toolkit::EpochGuard guard;
        const ZMethod* declared = nullptr;
        if (!object->hasDynamicProperty(name) && object->type())
            declared = object->type()->setterMethod(nullptr, property, false);
        setter = declared ? declared->getSelector() : property->setter(false);
    }
    if (setter.isEmpty() || object->hasMethod(setter, {}) || !make) return true;
    // A record that several objects share has told this one nothing.
    return property->setupMethods(object, true);
}
bool BindingEnd::hasMethodNamed() const {
    toolkit::EpochGuard guard;
    return object && object->method(nullptr, name, qualifier);
}

bool BindingMethod::find(ZObject* on, ZMetaType* of, const ZSelector& name, const ZSelector& qualifier) {
    ZTypedPtr at;
    take(ZBinding::method(on, of, name, qualifier, &at), on, of, at);
    return method != nullptr;
}
void BindingMethod::take(ZMethod* found, ZObject* on, ZMetaType* of, const ZTypedPtr& at) {
    method = found;
    object = on;
    type = on ? on->type() : of;
    offset = 0;
    if (!found || !on || !at.instance || at.instance == static_cast<ZType*>(on)) return;
    if (type && at.type && type->typeOf(at.type)) {
        offset = int(static_cast<char*>(at.instance) - reinterpret_cast<char*>(on));
    } else if (at.type && at.type->isZObject()) {
        // A delegate that answers for the object is bound itself.
        object = static_cast<ZObject*>(static_cast<ZType*>(at.instance));
        type = object->type();
    } else {
        method = nullptr;
    }
}
bool BindingMethod::makeMissing(ZObject* on, ZMetaType* of, const ZSelector& signature, const ZSelector& qualifier) {
    ZMethod* made = ZMethod::create(signature, qualifier, ZMethod::Dynamic | ZMethod::Bindable, nullptr, nullptr);
    if (!made) return false;
    const bool added = on ? on->setMethod(made, false) : of && of->setUserMethod(made, false);
    ZMethod::release(made);
    return added && find(on, of, signature, qualifier);
}

namespace {
bool addOverload(ZArrayT<ZMethodRef>& all, const ZMethod* method) {
    for (const ZMethodRef& known : std::as_const(all))
        if (known.getMethod()->getSelector() == method->getSelector() &&
            known.getMethod()->getQualifier() == method->getQualifier())
            return true;
    return all.append(ZMethodRef(method, nullptr, nullptr));
}
/// What a type and those above it declare, each signature as the nearest of them has it.
template <class Take> bool eachTypeMethod(ZMetaType* type, Take take) {
    bool whole = true;
    auto ask = [&](const ZMetaType* asked) {
        for (const ZMetaType::MethodTable* table : {&asked->getUserMethods(), &asked->getMethodTypes()})
            for (const ZMethodPtr& entry : *table) whole = whole && take(entry.get());
        return whole;
    };
    if (type && ask(type)) eachAncestor(type, [&](const Ancestor& above) { return ask(above.type); });
    return whole;
}
} // namespace

bool overloads(ZObject* object, ZMetaType* type, const ZSelector& name, const ZSelector& qualifier,
               ZArrayT<ZMethodRef>& all) {
    toolkit::EpochGuard guard;
    auto take = [&](const ZMethod* method) {
        return method->methodName() != name || !method->qualify(qualifier) || addOverload(all, method);
    };
    if (object) {
        const ZObject::MethodTable own = object->getMethods();
        for (const ZMethodPtr& entry : own)
            if (!take(entry.get())) return false;
        type = object->type();
    }
    if (!eachTypeMethod(type, take)) return false;
    if (!all.isEmpty() || !object) return true;
    // A delegate may answer.
    const ZMethod* found = object->method(nullptr, name, qualifier);
    return !found || addOverload(all, found);
}
bool autoBindMethods(ZObject* object, ZArrayT<ZMethodRef>& all) {
    toolkit::EpochGuard guard;
    auto take = [&](const ZMethod* method) { return !method->autoBind() || addOverload(all, method); };
    const ZObject::MethodTable own = object->getMethods();
    for (const ZMethodPtr& entry : own)
        if (!take(entry.get())) return false;
    return eachTypeMethod(object->type(), take);
}
bool methodNames(ZObject* object, ZHashSetT<ZSelector>& names) {
    toolkit::EpochGuard guard;
    auto take = [&](const ZMethod* method) {
        return method->isConstructor() || method->isDestructor() || names.add(method->methodName());
    };
    const ZObject::MethodTable own = object->getMethods();
    for (const ZMethodPtr& entry : own)
        if (!take(entry.get())) return false;
    return eachTypeMethod(object->type(), take);
}

} // namespace orv

namespace {

bool findOrMake(BindingMethod& found, ZObject* object, ZMetaType* type, const ZSelector& name,
                const ZSelector& qualifier, bool quiet) {
    if (found.find(object, type, name, qualifier)) return true;
    if (!quiet) zdebug("\"%s\" is bound and isn't there: an empty method is made", name.string());
    return found.makeMissing(object, type, name, qualifier);
}
/// The methods that a name stands for on one side.
bool candidates(ZObject* object, ZMetaType* type, const ZSelector& name, const ZSelector& qualifier, bool quiet,
                ZArrayT<ZMethodRef>& all) {
    if (name.type() != ZSelector::Method) return orv::overloads(object, type, name, qualifier, all);
    BindingMethod found;
    return findOrMake(found, object, type, name, qualifier, quiet) &&
           all.append(ZMethodRef(found.method, nullptr, nullptr));
}

bool agree(const ZMetaType* from, const ZMetaType* to) {
    return from && to && (from == to || from->isVariant() || to->isVariant() || from->distance(to, true) >= 0);
}
ZMetaType* typeOf(const ZProperty& property) {
    if (property.collection()) return property.value().type();
    return property.getItemType() ? property.getItemType() : property.value().type();
}

} // namespace

ZMethod* ZBinding::method(const ZObject* object, const ZMetaType* type, const ZSelector& name,
                          const ZSelector& qualifier, ZTypedPtr* at) {
    if (object) {
        if (at) *at = ZTypedPtr(object);
        return object->method(at, name, qualifier);
    }
    return type ? type->methodType(at, name, qualifier) : nullptr;
}
bool ZBinding::validate(const ZObject* object, const ZMethod*) { return !object || object->refcount() > 0; }

// The record

int ZBinding::make(const BindingRequest& wanted) {
    ZMethodBindings* table = orv::bindingTable();
    if (!table || !wanted.srcMethod || !wanted.dstMethod || !validate(wanted.src, wanted.srcMethod) ||
        !validate(wanted.dst, wanted.dstMethod))
        return -1;
    BindingRequest request = wanted;
    while (ZMethod* base = request.srcMethod->getBaseMethod()) request.srcMethod = base;
    if (request.src) request.srcType = request.src->type();
    if (request.dst) request.dstType = request.dst->type();
    if ((!request.src && !request.srcType) ||
        (!request.dst && !request.dstType && !(request.dstMethod->getFlags() & ZMethod::TypeMethod)))
        return -1;
    auto countAgain = [&] {
        const int known = table->findEqual(request.src, request.dst, request.srcType, request.dstType,
                                           request.srcMethod, request.dstMethod);
        if (known >= 0 && table->at(known).countReferences)
            toolkit::store(table->at(known).refs, table->at(known).refs + 1);
        return known;
    };
    if (!request.srcMethod->matchBinding(request.dstMethod, request.srcType, request.dstType)) return -1;
    bool needsCall, convertFirst, dropRest;
    request.srcMethod->fetchBindingOptions(request.dstMethod, needsCall, convertFirst, dropRest);
    if (needsCall && !request.dstMethod->hasFunc() && !request.dstMethod->hasStacked())
        zdebug("\"%s\" is bound to \"%s\", which does nothing", request.srcMethod->getSelector().string(),
               request.dstMethod->getSelector().string());
    ZScopedLock held(table->lock);
    if (const int known = countAgain(); known >= 0) return known;
    // One that has gone meanwhile would leave its record behind.
    if (!validate(request.src, request.srcMethod) || !validate(request.dst, request.dstMethod)) return -1;
    request.needsCall = needsCall;
    request.convertFirst = convertFirst;
    request.dropRest = dropRest;
    return table->add(request);
}
int ZBinding::bind(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, ZMethod* srcMethod,
                   ZMethod* dstMethod) {
    BindingRequest request;
    request.src = src;
    request.dst = dst;
    request.srcType = srcType;
    request.dstType = dstType;
    request.srcMethod = srcMethod;
    request.dstMethod = dstMethod;
    if (dst && dst->type() && dstMethod && dstMethod->getOwner())
        orv::upcastOffset(dst->type(), dstMethod->getOwner(), request.dstOffset);
    return make(request);
}

// By names

int ZBinding::bindmethod(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, const ZSelector& srcName,
                         const ZSelector& dstName, const ZSelector& srcQualifier, const ZSelector& dstQualifier,
                         bool quiet) {
    if (srcName.isEmpty() || dstName.isEmpty()) return -1;
    toolkit::EpochGuard guard;
    if (srcName.type() == ZSelector::Method && dstName.type() == ZSelector::Method) {
        BindingMethod a, b;
        const bool whole = findOrMake(a, src, srcType, srcName, srcQualifier, quiet) &&
                           findOrMake(b, dst, dstType, dstName, dstQualifier, quiet);
        return whole ? make(orv::requestFor(a, b)) : -1;
    }
    ZArrayT<ZMethodRef> from, to;
    if (!candidates(src, srcType, srcName, srcQualifier, quiet, from) ||
        !candidates(dst, dstType, dstName, dstQualifier, quiet, to))
        return -1;
    int last = -1;
    for (const ZMethodRef& source : std::as_const(from))
        for (const ZMethodRef& destination : std::as_const(to)) {
            BindingMethod a, b;
            const ZMethod *one = source.getMethod(), *other = destination.getMethod();
            if (!one->matchBinding(other)) continue;
            if (!a.find(src, srcType, one->getSelector(), one->getQualifier()) ||
                !b.find(dst, dstType, other->getSelector(), other->getQualifier()))
                continue;
            const int made = make(orv::requestFor(a, b));
            if (made >= 0) last = made;
        }
    return last;
}
int ZBinding::bindmethod(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                         const ZSelector& srcQualifier, const ZSelector& dstQualifier, bool quiet) {
    if (!src || !dst) return -1;
    return bindmethod(src, dst, nullptr, nullptr, srcName, dstName, srcQualifier, dstQualifier, quiet);
}
int ZBinding::bindtype(ZObject* src, ZObject* dst, ZMetaType* srcType, ZMetaType* dstType, const ZSelector& srcName,
                       const ZSelector& dstName) {
    if ((!src && !srcType) || (!dst && !dstType)) return -1;
    // A property stands for its setter.
    auto setter = [](ZObject* object, ZMetaType* type, const ZSelector& name) {
        toolkit::EpochGuard guard;
        ZMetaType* seen = object ? object->type() : type;
        if (name.type() == ZSelector::Method || !seen) return ZSelector();
        const ZProperty* property = seen->findPropertyDef(nullptr, name);
        const ZMethod* found = property ? seen->setterMethod(nullptr, property, false) : nullptr;
        return found ? found->getSelector() : ZSelector();
    };
    const ZSelector srcSetter = setter(src, srcType, srcName), dstSetter = setter(dst, dstType, dstName);
    const ZSelector &from = srcSetter.isEmpty() ? srcName : srcSetter, &to = dstSetter.isEmpty() ? dstName : dstSetter;
    if (from.type() != ZSelector::Method || to.type() != ZSelector::Method)
        return bindmethod(src, dst, srcType, dstType, from, to, {}, {}, false);
    toolkit::EpochGuard guard;
    BindingMethod a, b;
    if (!findOrMake(a, src, srcType, from, {}, false) || !findOrMake(b, dst, dstType, to, {}, false)) return -1;
    BindingRequest request = orv::requestFor(a, b);
    if (!srcSetter.isEmpty()) request.selector0 = srcName;
    if (!dstSetter.isEmpty()) request.selector1 = dstName;
    request.byProperty = !dstSetter.isEmpty() && b.method->getOwner();
    return make(request);
}

int ZBinding::bindprop(ZObject* src, ZObject* dst, const ZProperty* srcProp, const ZProperty* dstProp,
                       const ZSelector& srcSetter, const ZSelector& dstSetter, const ZSelector& srcName,
                       const ZSelector& dstName, const ZSelector& srcQualifier, const ZSelector& dstQualifier) {
    if (!src || !dst || (!srcProp && !dstProp)) return -1;
    if (srcProp && dstProp && !agree(typeOf(*srcProp), typeOf(*dstProp)) &&
        !agree(src->getProperty(srcName).type(), dst->getProperty(dstName).type()))
        return -1;
    const ZSelector& from = srcProp ? srcSetter : srcName;
    const ZSelector& to = dstProp ? dstSetter : dstName;
    if (from.isEmpty() || to.isEmpty()) return -1;
    if (from.type() != ZSelector::Method || to.type() != ZSelector::Method) {
        // All overloads of the method, by name.
        ZArrayT<ZMethodRef> some;
        const bool isSource = from.type() != ZSelector::Method;
        if (!orv::overloads(isSource ? src : dst, nullptr, isSource ? from : to, isSource ? srcQualifier : dstQualifier,
                            some))
            return -1;
        int last = -1;
        for (const ZMethodRef& method : std::as_const(some)) {
            const int made =
                bindprop(src, dst, srcProp, dstProp, srcSetter, dstSetter, isSource ? method.selector() : srcName,
                         isSource ? dstName : method.selector(), srcQualifier, dstQualifier);
            if (made >= 0) last = made;
        }
        return last;
    }
    toolkit::EpochGuard guard;
    BindingMethod a, b;
    if ((!a.find(src, nullptr, from, srcProp ? ZSelector() : srcQualifier) &&
         !a.makeMissing(src, nullptr, from, srcQualifier)) ||
        (!b.find(dst, nullptr, to, dstProp ? ZSelector() : dstQualifier) &&
         !b.makeMissing(dst, nullptr, to, dstQualifier)))
        return -1;
    BindingRequest request = orv::requestFor(a, b);
    if (srcProp) request.selector0 = srcName;
    if (dstProp) request.selector1 = dstName;
    // What a class declares is set by its name, which also tells those who are bound to that.
    request.byProperty = dstProp && b.method->getOwner();
    return make(request);
}

int ZBinding::bind(ZObject* src, ZObject* dst, const ZSelector& srcName, const ZSelector& dstName,
                   const ZSelector& srcQualifier, const ZSelector& dstQualifier) {
    if (!src || !dst || srcName.isEmpty() || dstName.isEmpty()) return -1;
    toolkit::EpochGuard guard;
    BindingEnd from(src, srcName, srcQualifier), to(dst, dstName, dstQualifier);
    if (from.property || to.property) {
        // A name that isn't there yet becomes a property with the value of the other side.
        const bool both = from.property && to.property;
        BindingEnd &known = from.property ? from : to, &other = from.property ? to : from;
        const bool plain = other.name.type() != ZSelector::Method && other.name.type() != ZSelector::UID;
        if (!both && plain && !other.hasMethodNamed()) {
            if (!other.object->setDynamicProperty(other.name, known.object->getProperty(known.name), true)) return -1;
            other.findProperty();
        }
        if (!from.prepare(true) || !to.prepare(true)) return -1;
    }
    const int made = from.property || to.property
                         ? bindprop(from.object, to.object, from.property, to.property, from.setter, to.setter,
                                    from.name, to.name, from.qualifier, to.qualifier)
                         : bindmethod(from.object, to.object, from.name, to.name, from.qualifier, to.qualifier, false);
    if (made < 0 && zdebugasked())
        zdebug("\"%s\" of %s \"%s\" can't be bound to \"%s\" of %s \"%s\"", srcName.string(),
               src->getTypeName().string(), src->selector().string() ? src->selector().string() : "", dstName.string(),
               dst->getTypeName().string(), dst->selector().string() ? dst->selector().string() : "");
    return made;
}
int ZBinding::bind(ZObject* src, ZObject* dst, const char* srcName, const char* dstName) {
    return bind(src, dst, ZSelector(srcName), ZSelector(dstName));
}

bool ZBinding::autobind(ZObject* src, ZObject* dst, bool both) {
    if (!src || !dst) return false;
    toolkit::EpochGuard guard;
    ZArrayT<ZMethodRef> marked;
    bool any = false;
    if (orv::autoBindMethods(src, marked))
        for (const ZMethodRef& method : std::as_const(marked)) {
            const ZSelector name = method.selector(), words = method.getMethod()->getQualifier();
            BindingMethod a, b;
            if (b.find(dst, nullptr, name, words) && a.find(src, nullptr, name, words) && a.object != b.object)
                any |= make(orv::requestFor(a, b)) >= 0;
        }
    return both ? autobind(dst, src, false) | any : any;
}
