#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/ZMethodDispatch.h"
#include "object/ZPropertyRef.h"
#include "object/bindingEnds.h"
#include "object/propertyPlace.h"
#include "value/ZTypedPtr.h"

// What objects, types, names and references offer of bindings; and questions about records.

using orv::bindingTable;
using orv::BindingTable;

// Questions

int ZBinding::first(const ZObject* object, const ZMethod* method) {
    if (!method) return -1;
    while (const ZMethod* base = method->getBaseMethod()) method = base;
    if (!object) return method->getTypeBinding();
    ZMethodBindings* table = bindingTable();
    if (!table || !object->hasBindings()) return -1;
    // From method to method of the object; what has changed meanwhile, and what is far, is looked up.
    constexpr int near = 8;
    const uint version = toolkit::loadAcquire(table->version);
    int index = toolkit::loadAcquire(BindingTable::source(const_cast<ZObject*>(object)));
    for (int steps = 0; index >= 0 && steps < near; ++steps) {
        const ZBinding* at = table->record(index);
        if (!at || toolkit::load(at->src) != object) break;
        if (toolkit::load(at->srcMethod) == method) return index;
        index = toolkit::load(at->groupNext);
    }
    if (index < 0 && ORV_LIKELY(toolkit::loadAcquire(table->version) == version)) return -1;
    ZScopedLock held(table->lock);
    return table->firstOfGroup(table->findGroup(object, method));
}

bool ZBinding::bindings(const ZObject* src, ZArrayT<int>& places) {
    return bindings(src, static_cast<const ZObject*>(nullptr), places);
}
bool ZBinding::bindings(const ZObject* src, const ZObject* dst, ZArrayT<int>& places) {
    ZMethodBindings* table = bindingTable();
    if (!table || !src) return table != nullptr;
    ZScopedLock held(table->lock);
    for (int index = BindingTable::source(const_cast<ZObject*>(src)); index >= 0; index = table->at(index).nextSrc)
        if ((!dst || table->at(index).dst == dst) && !places.append(index)) return false;
    return true;
}
bool ZBinding::bindings(const ZObject* src, const ZMethod* method, ZArrayT<int>& places) {
    ZMethodBindings* table = bindingTable();
    if (!table || !method) return table != nullptr;
    while (const ZMethod* base = method->getBaseMethod()) method = base;
    ZScopedLock held(table->lock);
    for (int index = table->firstOfGroup(table->findGroup(src, method));
         index >= 0 && table->at(index).srcMethod == method; index = table->at(index).nextSrc)
        if (!places.append(index)) return false;
    return true;
}
bool ZBinding::bindings(const ZMethod* method, ZArrayT<int>& places) {
    ZMethodBindings* table = bindingTable();
    if (!table || !method) return table != nullptr;
    while (const ZMethod* base = method->getBaseMethod()) method = base;
    ZScopedLock held(table->lock);
    for (int index = method->getBinding(false); index >= 0; index = table->at(index).next0)
        if (!places.append(index)) return false;
    return true;
}
bool ZBinding::bindingsTo(const ZObject* dst, ZArrayT<int>& places) {
    ZMethodBindings* table = bindingTable();
    if (!table || !dst) return table != nullptr;
    ZScopedLock held(table->lock);
    for (int index = BindingTable::destination(const_cast<ZObject*>(dst)); index >= 0; index = table->at(index).nextDst)
        if (table->at(index).index >= 0 && !places.append(index)) return false;
    return true;
}

namespace {
/// Reads or writes a record under the lock of the table; false if the place has none.
template <class Use> bool withRecord(int index, Use use) {
    ZMethodBindings* table = bindingTable();
    if (!table) return false;
    return table->with(index, use);
}
} // namespace

int ZBinding::getPriority(int index) {
    int found = Normal;
    withRecord(index, [&](const ZBinding& binding) {
        found = binding.priority;
        return true;
    });
    return found;
}
bool ZBinding::setPriority(int index, int priority) {
    return withRecord(index, [&](ZBinding& binding) { return bindingTable()->move(binding, priority); });
}
ZSelector ZBinding::bindingLabel(int index) {
    ZSelector found;
    withRecord(index, [&](const ZBinding& binding) {
        found = binding.label;
        return true;
    });
    return found;
}
bool ZBinding::setBindingLabel(int index, const ZSelector& label) {
    ZSelector fresh = label;
    return withRecord(index, [&](ZBinding& binding) {
        std::swap(binding.label, fresh);
        return true;
    });
}
bool ZBinding::enable(int index, bool on) {
    return withRecord(index, [&](ZBinding& binding) {
        toolkit::store(binding.enabled, byte(on));
        return true;
    });
}
bool ZBinding::countReference(int index, bool on) {
    return withRecord(index, [&](ZBinding& binding) {
        binding.countReferences = on;
        return true;
    });
}
bool ZBinding::setParams(int index, int position, const ZArrayT<ZVariant>& values) {
    if (position < 0) return false;
    // What it replaces goes when the lock is free.
    ZArrayT<ZVariant> fresh = values;
    return withRecord(index, [&](ZBinding& binding) {
        std::swap(binding.params, fresh);
        binding.paramPos = position;
        toolkit::store(binding.hasParams, byte(!binding.params.isEmpty()));
        ZMethodBindings::setDirect(binding);
        return true;
    });
}
bool ZBinding::setParam(int index, int position, const ZVariant& value) {
    ZArrayT<ZVariant> one;
    return one.append(value) && setParams(index, position, one);
}

// Objects

int ZObject::binding(const ZMethod* method) const { return ZBinding::first(this, method); }
int ZObject::findBinding(const ZObject* target, const ZSelector& name, const ZSelector& targetName,
                         const ZSelector& qualifier, const ZSelector& targetQualifier) const {
    return ZBinding::find(this, target, name, targetName, qualifier, targetQualifier);
}
int ZObject::bind(ZObject* target, const ZSelector& name, const ZSelector& targetName, const ZSelector& qualifier,
                  const ZSelector& targetQualifier) {
    return ZBinding::bind(this, target, name, targetName, qualifier, targetQualifier);
}
bool ZObject::unbind(ZObject* target, const ZSelector& name, const ZSelector& targetName, const ZSelector& qualifier,
                     const ZSelector& targetQualifier) {
    return ZBinding::unbind(this, target, name, targetName, qualifier, targetQualifier);
}
bool ZObject::xbind(ZObject* target, const ZSelector& name, const ZSelector& targetName, const ZSelector& qualifier,
                    const ZSelector& targetQualifier) {
    if (!target) return false;
    const int there = bind(target, name, targetName, qualifier, targetQualifier);
    if (there < 0) return false;
    if (target->bind(this, targetName, name, targetQualifier, qualifier) >= 0) return true;
    ZBinding::remove(there, false);
    return false;
}
bool ZObject::xunbind(ZObject* target, const ZSelector& name, const ZSelector& targetName, const ZSelector& qualifier,
                      const ZSelector& targetQualifier) {
    if (!target) return false;
    const bool there = unbind(target, name, targetName, qualifier, targetQualifier);
    return target->unbind(this, targetName, name, targetQualifier, qualifier) | there;
}
int ZObject::bindArg(ZObject* target, const ZSelector& name, const ZSelector& targetName,
                     const ZArrayT<ZVariant>& arguments, int position) {
    const int made = position < 0 ? -1 : bind(target, name, targetName);
    if (made >= 0) ZBinding::setParams(made, position, arguments);
    return made;
}
int ZObject::bindService(const ZSelector& service, const ZSelector& name, const ZSelector& targetName) {
    return bind(publishedObject(service), name, targetName);
}
bool ZObject::unbindService(const ZSelector& service, const ZSelector& name, const ZSelector& targetName) {
    return unbind(publishedObject(service), name, targetName);
}
bool ZObject::autobind(ZObject* target, bool both) { return ZBinding::autobind(this, target, both); }
bool ZObject::unbindsrc(const ZSelector& name, const ZSelector& qualifier) {
    return ZBinding::unbindsrc(this, name, qualifier);
}
bool ZObject::unbinddst(const ZSelector& name, const ZSelector& qualifier) {
    return ZBinding::unbinddst(this, name, qualifier);
}
bool ZObject::unbindLabeled(const ZSelector& label) { return ZBinding::unbindLabeled(this, label); }
bool ZObject::unbindLabeled(ZObject* target, const ZSelector& label) {
    return target && ZBinding::unbindLabeled(this, target, label);
}
int ZObject::sbind(const ZSelector& source, const ZSelector& name, const ZSelector& targetName) {
    ZObject* from = publishedObject(source);
    return from ? from->bind(this, name, targetName) : -1;
}
bool ZObject::sxbind(const ZSelector& source, const ZSelector& name, const ZSelector& targetName) {
    ZObject* from = publishedObject(source);
    return from && from->xbind(this, name, targetName);
}
int ZObject::lbind(const ZSelector& label, ZObject* target, const ZSelector& name, const ZSelector& targetName) {
    const int made = bind(target, name, targetName);
    if (made >= 0) ZBinding::setBindingLabel(made, label);
    return made;
}
bool ZObject::lxbind(const ZSelector& label, ZObject* target, const ZSelector& name, const ZSelector& targetName) {
    if (!xbind(target, name, targetName)) return false;
    ZBinding::setBindingLabel(findBinding(target, name, targetName), label);
    ZBinding::setBindingLabel(target->findBinding(this, targetName, name), label);
    return true;
}
bool ZObject::bindings(ZArrayT<int>& places) const { return ZBinding::bindings(this, places); }
bool ZObject::bindings(const ZMethod* method, ZArrayT<int>& places) const {
    return ZBinding::bindings(this, method, places);
}
bool ZObject::bindings(const ZObject* target, ZArrayT<int>& places) const {
    return !target || ZBinding::bindings(this, target, places);
}
int ZObject::bindType(ZMetaType* type, const ZSelector& name, const ZSelector& targetName) {
    return ZBinding::bindtype(nullptr, this, type, nullptr, name, targetName);
}
bool ZObject::unbindType(ZMetaType* type, const ZSelector& name, const ZSelector& targetName) {
    return ZBinding::unbindtype(nullptr, this, type, nullptr, name, targetName);
}

bool ZObject::callMethodBindings(ZMethod* method, const ZArrayT<ZVariant>& arguments) {
    return ZBinding::callArgs(this, method, arguments.data(), int(arguments.count()));
}
bool ZObject::callPropertyBindings(const ZSelector& name, const ZVariant& value) {
    if (!ZBinding::isBound(this, nullptr)) return false;
    toolkit::EpochGuard guard;
    const ZMethod* setter = nullptr;
    {
        const orv::PropertyPlace place(this, name, true);
        if (place.kind == orv::PropertyPlace::Declared)
            if (const orv::CachedMethod* cached = orv::writeAccessor(place.type, place.row)) setter = cached->method;
    }
    // The object may have a method of its own in the place of the type's.
    if (const ZMethod* bound = ZBinding::boundSetter(this, setter, name))
        return ZBinding::callProperty(this, bound, value);
    return setter && ZBinding::callProperty(this, setter, value);
}
bool ZObject::invokePropertyBindings(const ZSelector& name, const ZVariant& value) {
    return setProperty(nullptr, name, value, false) && callPropertyBindings(name, getProperty(name));
}

/// A bound method of the object that sets that property; null for none. Under a guard.
const ZMethod* ZBinding::boundSetter(const ZObject* object, const ZMethod* declared, const ZSelector& name) {
    if (declared && first(object, declared) >= 0) return declared;
    ZMethodBindings* table = bindingTable();
    if (!table || !object->hasBindings()) return nullptr;
    ZScopedLock held(table->lock);
    for (int index = BindingTable::source(const_cast<ZObject*>(object)); index >= 0;) {
        const ZBinding& at = table->at(index);
        const ZMethod* method = at.srcMethod;
        if ((method->getFlags() & ZMethod::Property && method->getName() == name) || at.selector0 == name ||
            (declared && method->getSelector() == declared->getSelector()))
            return method;
        index = at.groupNext;
    }
    return nullptr;
}

// Types

bool ZMetaType::callInstance(ZObject* instance, const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const ZMethod* found = instance ? instance->method(nullptr, name, {}) : nullptr;
    if (found) ZBinding::callV(instance, found);
    return found != nullptr;
}
bool ZMetaType::bindInstance(ZObject* instance) { return ZBinding::autobind(instance, this, false); }
bool ZMetaType::bindInstance(ZObject* instance, const ZSelector& name) {
    return instance && instance->bind(this, name, name) >= 0;
}
bool ZMetaType::unbindInstance(ZObject* instance) {
    ZArrayT<int> places;
    return instance && ZBinding::bindings(instance, this, places) && ZBinding::remove(places);
}
bool ZMetaType::unbindInstance(ZObject* instance, const ZSelector& name) {
    return instance && instance->unbind(this, name, name);
}
void ZMetaType::changeInstanceBindings(ZMethod* method) {
    if (method) ZBinding::resetType(this, method->methodName());
}

bool orv::collectInstances(ZMetaType* type, ZArrayT<ZRetainPtrT<ZObject>>& instances) {
    ZArrayT<ZMetaType*> types;
    if (!type || !types.append(type) || !type->getDescendants(types)) return false;
    for (ZMetaType* each : std::as_const(types))
        if (!each->getTypeObjects(instances)) return false;
    return true;
}

// Names: a signature is the signal of any instance

namespace {
struct Ends {
    ZObject* object = nullptr;
    ZMetaType* type = nullptr;

    explicit Ends(const ZMethodRef& ref) : type(ref.getType()) {
        if (ref.getInstance() && type && type->isZObject())
            object = static_cast<ZObject*>(static_cast<ZType*>(const_cast<void*>(ref.getInstance())));
        if (!type && ref.getMethod()) type = ref.getMethod()->getOwner();
    }
};
} // namespace

bool ZSelector::bind(const ZMethodRef& method) const {
    if (type() != Method || !method.isValid()) return false;
    const Ends to(method);
    toolkit::EpochGuard guard;
    ZMethod* signal = to.type ? to.type->methodType(*this, {}) : nullptr;
    return signal && ZBinding::bind(nullptr, to.object, to.type, to.type, signal, method.getMethod()) >= 0;
}
bool ZSelector::unbind(const ZMethodRef& method) const {
    if (type() != Method || !method.isValid()) return false;
    const Ends to(method);
    toolkit::EpochGuard guard;
    ZMethod* signal = to.type ? to.type->methodType(*this, {}) : nullptr;
    return signal && ZBinding::unbind(nullptr, to.object, to.type, to.type, signal, method.getMethod());
}

// References to methods and properties

ZObject* ZMethodRef::object() const { return isAtObject() ? Ends(*this).object : nullptr; }
ZObject* ZPropertyRef::object() const {
    return record && instance && instance->isObject() ? static_cast<ZObject*>(instance) : nullptr;
}

namespace {
void bindMethods(ZObject* src, ZObject* dst, ZMethod* from, ZMethod* to, bool on) {
    if (!src || !dst || !from || !to) return;
    if (on)
        ZBinding::bind(src, dst, nullptr, nullptr, from, to);
    else
        ZBinding::unbind(src, dst, nullptr, nullptr, from, to);
}
void bindNames(ZObject* src, ZObject* dst, const ZSelector& from, const ZSelector& to, bool on) {
    if (!src || !dst) return;
    if (on)
        src->bind(dst, from, to);
    else
        src->unbind(dst, from, to);
}
void bindEntry(ZObject* src, ZMethod* from, const ZMethodDispatch& entry, bool on) {
    ZMethodRef found = entry.isBound() ? entry.reference() : ZMethodRef();
    if (!found.isValid() || !found.getInstance()) found = ZMethodRef(src, entry.methodName(), entry.qualifier());
    const Ends to(found);
    bindMethods(src, to.object, from, found.getMethod(), on);
}
} // namespace

ZMethodRef& ZMethodRef::operator+=(const ZMethodRef& to) {
    bindMethods(object(), to.object(), method, to.method, true);
    return *this;
}
ZMethodRef& ZMethodRef::operator-=(const ZMethodRef& to) {
    bindMethods(object(), to.object(), method, to.method, false);
    return *this;
}
ZMethodRef& ZMethodRef::operator+=(const ZMethodDispatch& to) {
    bindEntry(object(), method, to, true);
    return *this;
}
ZMethodRef& ZMethodRef::operator-=(const ZMethodDispatch& to) {
    bindEntry(object(), method, to, false);
    return *this;
}
ZMethodRef& ZMethodRef::operator+=(const ZPropertyRef& to) {
    bindNames(object(), to.owner() && to.owner()->isObject() ? static_cast<ZObject*>(to.owner()) : nullptr, selector(),
              to.name(), true);
    return *this;
}
ZMethodRef& ZMethodRef::operator-=(const ZPropertyRef& to) {
    bindNames(object(), to.owner() && to.owner()->isObject() ? static_cast<ZObject*>(to.owner()) : nullptr, selector(),
              to.name(), false);
    return *this;
}
ZMethodRef& ZMethodRef::operator+=(const ZSelector& to) {
    bindNames(object(), object(), selector(), to, true);
    return *this;
}
ZMethodRef& ZMethodRef::operator-=(const ZSelector& to) {
    bindNames(object(), object(), selector(), to, false);
    return *this;
}
ZMethodRef& ZMethodRef::operator+=(ZObject* to) {
    bindNames(object(), to, selector(), selector(), true);
    return *this;
}
ZMethodRef& ZMethodRef::operator-=(ZObject* to) {
    bindNames(object(), to, selector(), selector(), false);
    return *this;
}

ZPropertyRef& ZPropertyRef::operator+=(const ZPropertyRef& to) {
    bindNames(object(), to.object(), name(), to.name(), true);
    return *this;
}
ZPropertyRef& ZPropertyRef::operator-=(const ZPropertyRef& to) {
    bindNames(object(), to.object(), name(), to.name(), false);
    return *this;
}
ZPropertyRef& ZPropertyRef::operator+=(const ZMethodRef& to) {
    bindNames(object(), to.isValid() ? Ends(to).object : nullptr, name(), to.selector(), true);
    return *this;
}
ZPropertyRef& ZPropertyRef::operator-=(const ZMethodRef& to) {
    bindNames(object(), to.isValid() ? Ends(to).object : nullptr, name(), to.selector(), false);
    return *this;
}
ZPropertyRef& ZPropertyRef::operator+=(ZObject* to) {
    bindNames(object(), to, name(), name(), true);
    return *this;
}
ZPropertyRef& ZPropertyRef::operator-=(ZObject* to) {
    bindNames(object(), to, name(), name(), false);
    return *this;
}
