#include "core/ZHashSetT.h"
#include "object/DelegateWalk.h"
#include "object/HeldTarget.h"
#include "object/ZBinding.h"
#include "object/ZInlineMethod.h"
#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/methodLookup.h"
#include "value/ZVariant.h"

// The methods of an object: its own table, what extensions bring, and lookups through type and delegates.

using orv::ObjectData;
using MethodTable = ZObject::MethodTable;

namespace {

/// A share of a table, which may be read without the lock.
template <class Table> Table share(ObjectData& data, Table ObjectData::*table) {
    orv::ObjectRead held(data);
    return data.*table;
}
MethodTable ownMethods(const ZObject* object) {
    ObjectData* data = ObjectData::of(object);
    return data && data->has(ObjectData::Methods) ? share(*data, &ObjectData::methods) : MethodTable();
}

const ZSelector keyOf(const ZSelector& selector) {
    return selector.type() == ZSelector::Method ? selector.methodName() : selector;
}
/// The method of that signature and qualifier; of a mere name the first one that has the qualifier.
const ZMethodPtr* pick(const MethodTable& table, const ZSelector& selector, const ZSelector& qualifier) {
    const bool signature = selector.type() == ZSelector::Method;
    const ZMethodPtr* hit = nullptr;
    for (const ZMethodPtr* node = table.find(keyOf(selector)); node; node = table.findNext(node)) {
        if (signature && node->get()->getSelector() != selector) continue;
        if (node->get()->getQualifier() == qualifier) return node;
        if (!hit && node->get()->qualify(qualifier)) hit = node;
    }
    return hit;
}
const ZMethodPtr* exact(const MethodTable& table, const ZMethod* method) {
    for (const ZMethodPtr* node = table.find(method->methodName()); node; node = table.findNext(node))
        if (node->get()->getSelector() == method->getSelector() &&
            node->get()->getQualifier() == method->getQualifier())
            return node;
    return nullptr;
}
bool addAll(MethodTable& to, const MethodTable& from) {
    for (const ZMethodPtr& node : from)
        if (!exact(to, node.get()) && !to.add(node)) return false;
    return true;
}

/// The methods of all delegates with `Extension` that were written for instances such as this one. Under its lock;
/// `shares` keeps what they have now until the lock is free.
bool buildExtension(ObjectData& data, MethodTable& fresh, ZArrayT<MethodTable>& shares) {
    const ZMetaType* type = data.object->type();
    for (ZObject* delegate : std::as_const(data.delegates)) {
        if (!(toolkit::load(ObjectData::at(delegate).delegateType) & ZObject::Extension)) continue;
        const ZMetaType* other = delegate->type();
        if (other && !(type && type->typeOf(other))) continue;
        // Delegates have no cycles, so neither have their locks.
        if (!shares.append(ownMethods(delegate)) || !addAll(fresh, *(shares.end() - 1))) return false;
    }
    std::swap(data.extMethods, fresh);
    data.set(ObjectData::ExtMethods, !data.extMethods.isEmpty());
    return true;
}
MethodTable extension(const ZObject* object) {
    ObjectData* data = ObjectData::of(object);
    if (!data || !data->has(ObjectData::ExtStale | ObjectData::ExtMethods) || !orv::freshExtension(object)) return {};
    return data->has(ObjectData::ExtMethods) ? share(*data, &ObjectData::extMethods) : MethodTable();
}

/// The name by which a method is asked, when a path of properties leads to whose method it is.
bool deepMethod(const ZSelector& selector) {
    return selector.type() == ZSelector::UID ||
           (selector.type() == ZSelector::Method && selector.methodName().type() == ZSelector::UID);
}
/// Follows the path up to its last part; `last` is then what to ask the value for.
ZVariant followPath(const ZObject* object, const ZSelector& selector, ZSelector& last) {
    const bool signature = selector.type() == ZSelector::Method;
    const ZSelector path = signature ? selector.methodName() : selector;
    const int parts = path.parcount();
    if (parts < 2) return {};
    last = path.param(parts - 1);
    if (signature) last = ZSelector(last, selector.result(), selector.params(), selector.parcount(), ZSelector::Method);
    return object->getProperty(path.extract(0, parts - 1));
}

/// Where a method that was found by a path is called: on an instance that others hold too, since the value goes. Who is
/// looking keeps it, if only that of a delegate of the value isn't kept already.
bool aimAt(const ZVariant& value, const orv::HeldTarget& found, ZTypedPtr* typed) {
    if (!typed) return true;
    if (!value.isZType() || value.referenceCount() < 2) return false;
    *typed = found.typed.instance ? found.typed : ZTypedPtr(value);
    if (orv::HeldTarget* target = orv::HeldTarget::lookingFor(typed))
        target->keep(found.kept.get() ? found.kept.get() : value.toType());
    return true;
}

constexpr orv::DelegateWalk::Plan methodPlan = {
    ZObject::Extension | ZObject::Priority, {ZObject::Binder | ZObject::Dispatch, 0}, false};

} // namespace

namespace orv {

bool freshExtension(const ZObject* object) {
    ObjectData& data = ObjectData::at(object);
    if (!data.has(ObjectData::ExtStale)) return true;
    // What goes does so when the lock is free.
    ZObject::MethodTable fresh;
    ZArrayT<ZObject::MethodTable> shares;
    ObjectWrite held(object);
    if (!held) return false;
    if (!data.has(ObjectData::ExtStale)) return true;
    data.set(ObjectData::ExtStale, false);
    if (buildExtension(data, fresh, shares)) return true;
    data.set(ObjectData::ExtStale, true);
    return false;
}

} // namespace orv

// What the object has itself

bool ZObject::hasMethods() const { return priv && priv->has(ObjectData::Methods); }
int ZObject::methodCount() const { return int(ownMethods(this).count()); }
ZObject::MethodTable ZObject::getMethods() const { return ownMethods(this); }

namespace {
template <class List, class Take> bool collect(const MethodTable& table, List& list, Take take) {
    for (const ZMethodPtr& node : table)
        if (!take(list, node.get())) return false;
    return true;
}
} // namespace

bool ZObject::getMethods(ZArrayT<ZMethod*>& methods) const {
    return collect(ownMethods(this), methods, [](auto& list, ZMethod* method) { return list.append(method); });
}
bool ZObject::getMethods(const ZSelector& name, ZArrayT<ZMethod*>& methods) const {
    return collect(ownMethods(this), methods,
                   [&](auto& list, ZMethod* method) { return method->methodName() != name || list.append(method); });
}
bool ZObject::getMethods(ZArrayT<ZSelector>& signatures) const {
    return collect(ownMethods(this), signatures,
                   [](auto& list, ZMethod* method) { return list.append(method->getSelector()); });
}
bool ZObject::getMethods(ZHashSetT<ZSelector>& signatures) const {
    return collect(ownMethods(this), signatures,
                   [](auto& list, ZMethod* method) { return list.add(method->getSelector()); });
}
bool ZObject::getMethodsWithOptions(const ZSelector& words, ZArrayT<ZMethod*>& methods) const {
    return collect(ownMethods(this), methods, [&](auto& list, ZMethod* method) {
        return !method->getOptions().contains(words) || list.append(method);
    });
}
bool ZObject::getAutoBindMethods(ZArrayT<ZMethod*>& methods) const {
    return collect(ownMethods(this), methods,
                   [](auto& list, ZMethod* method) { return !method->autoBind() || list.append(method); });
}

const ZMethodPtr* ZObject::methodNode(const ZSelector& selector) const {
    return ownMethods(this).find(keyOf(selector));
}
const ZMethodPtr* ZObject::extMethodNode(const ZSelector& selector) const {
    return extension(this).find(keyOf(selector));
}

ZMethod* ZObject::methodBySelector(const ZSelector& selector, const ZSelector& qualifier) const {
    if (!priv ||
        !priv->has(ObjectData::Methods | ObjectData::ExtMethods | ObjectData::ExtStale | ObjectData::ExtendTypes))
        return nullptr;
    toolkit::EpochGuard guard;
    // Held, since a change frees the entries of a table that nobody shares.
    const MethodTable own = ownMethods(this);
    if (const ZMethodPtr* node = pick(own, selector, qualifier)) return node->get();
    const MethodTable extended = extension(this);
    if (const ZMethodPtr* node = pick(extended, selector, qualifier)) return node->get();
    ZArrayT<ZMetaType*> types;
    if (priv->has(ObjectData::ExtendTypes)) getExtendTypes(types);
    for (const ZMetaType* type : std::as_const(types))
        if (ZMethod* found = type->methodType(selector, qualifier)) return found;
    return nullptr;
}
bool ZObject::hasLocalMethod(const ZSelector& selector, const ZSelector& qualifier) const {
    return methodBySelector(selector, qualifier) || ZType::hasLocalMethod(selector, qualifier);
}

// Multi-methods

bool ZObject::calcMultiMethods() const {
    if (!priv) return false;
    if (!priv->has(ObjectData::MultiStale)) return true;
    if (!orv::freshExtension(this)) return false;
    MultiMethodTable fresh; // the old one goes when the lock is free
    orv::ObjectWrite held(this);
    if (!held) return false;
    if (!priv->has(ObjectData::MultiStale)) return true;
    for (const MethodTable* table : {&priv->methods, &priv->extMethods})
        for (const ZMethodPtr& node : *table) {
            ZNamedMethod* entry = ZNamedMethod::create(node.get());
            if (!entry) return false;
            if (fresh.add(entry)) continue;
            entry->release();
            return false;
        }
    std::swap(priv->multiMethods, fresh);
    priv->set(ObjectData::MultiStale, false);
    return true;
}
ZObject::MultiMethodTable ZObject::multiMethods() const {
    if (!priv || !priv->has(ObjectData::Methods | ObjectData::ExtMethods | ObjectData::ExtStale)) return {};
    if (!calcMultiMethods()) return {};
    return share(*priv, &ObjectData::multiMethods);
}

ZMethod* ZObject::findMultimethod(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& types, bool implicit,
                                  bool skipResult, bool exactCount, const ZSelector& qualifier) const {
    ZMethod* best = nullptr;
    int bestDistance = -1;
    toolkit::EpochGuard guard;
    const MultiMethodTable table = multiMethods();
    const byte flags = byte((implicit ? orv::LookImplicit : 0) | (skipResult ? orv::LookSkipResult : 0) |
                            (exactCount ? orv::LookExact : 0));
    const ZSelector key = keyOf(name);
    const bool signature = name.type() == ZSelector::Method;
    for (const ZNamedMethod* node = table.find(key); node && bestDistance != 0; node = table.findNext(node)) {
        ZMethod* method = node->get();
        if (!method->qualify(qualifier) || (signature && method->getSelector() != name)) continue;
        const orv::MethodParams* params = method->params(metaType);
        int far = params ? orv::matchArguments(method, *params, types.data(), int(types.count()), flags) : -1;
        if (far < 0 && signature) far = orv::distanceNamed;
        if (far < 0 || (best && far >= bestDistance)) continue;
        best = method;
        bestDistance = far;
    }
    ZArrayT<ZMetaType*> extending;
    if (priv && priv->has(ObjectData::ExtendTypes)) getExtendTypes(extending);
    for (const ZMetaType* type : std::as_const(extending)) {
        int far = -1;
        ZMethod* found = type->multimethodType(&far, nullptr, name, types, implicit, skipResult, exactCount, qualifier);
        if (!found || (best && far >= bestDistance)) continue;
        best = found;
        bestDistance = far;
    }
    if (best && best->getFlags() & ZMethod::BaseMethod) bestDistance = 0;
    if (best && best->synthetic()) ++bestDistance;
    if (distance) *distance = bestDistance;
    return best;
}

// Lookups

ZMethod* ZObject::method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    if (selector.isEmpty()) return nullptr;
    toolkit::EpochGuard guard;
    if (deepMethod(selector)) {
        ZSelector last;
        const ZVariant value = followPath(this, selector, last);
        if (!value.isNull()) {
            orv::HeldTarget at;
            orv::HeldTarget::Lookup looking(at);
            ZMethod* found = value.method(&at.typed, last, qualifier);
            return found && aimAt(value, at, typed) ? found : nullptr;
        }
    }
    auto ask = [&](const ZObject* object) -> ZMethod* {
        ZTypedPtr at(object->metaType, object);
        ZMethod* found = object->methodBySelector(selector, qualifier);
        if (!found && object->metaType) found = object->metaType->methodType(&at, selector, qualifier);
        if (found && typed) *typed = at;
        return found;
    };
    if (orv::WalkTurn::take(this, orv::WalkTurn::Method, selector) || !priv || !priv->has(ObjectData::Delegates))
        return ask(this);
    orv::DelegateWalk walk(const_cast<ZObject*>(this), methodPlan);
    while (const ZObject* object = walk.next()) {
        if (object == this) {
            if (ZMethod* found = ask(this)) return found;
            continue;
        }
        orv::WalkTurn turn(object, orv::WalkTurn::Method, selector);
        if (ZMethod* found = object->method(typed, selector, qualifier)) {
            if (orv::HeldTarget* target = orv::HeldTarget::lookingFor(typed)) target->keep(object);
            return found;
        }
        if (!turn.taken()) walk.skipRest();
    }
    return nullptr;
}
ZMethod* ZObject::method(const ZSelector& selector, const ZSelector& qualifier) const {
    return method(nullptr, selector, qualifier);
}
ZMethod* ZObject::method(ZTypedPtr* typed, const ZSelector& selector) const { return method(typed, selector, {}); }
ZMethod* ZObject::method(const ZSelector& selector) const { return method(nullptr, selector, {}); }
ZMethod* ZObject::baseMethod(const ZSelector& selector, const ZSelector& qualifier) const {
    return baseMethod(nullptr, selector, qualifier);
}
ZMethod* ZObject::baseMethod(const ZSelector& selector) const { return baseMethod(nullptr, selector, {}); }

ZMethod* ZObject::multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                              bool implicit, bool skipResult, bool exactCount, const ZSelector& qualifier) const {
    ZMethod* best = nullptr;
    int bestDistance = -1;
    toolkit::EpochGuard guard;
    if (deepMethod(name)) {
        ZSelector last;
        const ZVariant value = followPath(this, name, last);
        if (!value.isNull()) {
            orv::HeldTarget at;
            orv::HeldTarget::Lookup looking(at);
            best =
                value.multimethod(&bestDistance, &at.typed, last, types, implicit, skipResult, exactCount, qualifier);
            if (best && !aimAt(value, at, typed)) best = nullptr;
            if (distance) *distance = best ? bestDistance : -1;
            return best;
        }
    }
    ZRetainPtrT<ZType> elsewhere; // whose method the best one is, if it isn't this object's
    auto keep = [&](ZMethod* found, int far, const ZTypedPtr& at) {
        if (!found || (best && far >= bestDistance)) return false;
        best = found;
        bestDistance = far;
        if (typed) *typed = at;
        elsewhere = {};
        return true;
    };
    auto ask = [&](const ZObject* object) {
        int far = -1;
        ZTypedPtr at(object->metaType, object);
        keep(object->findMultimethod(&far, name, types, implicit, skipResult, exactCount, qualifier), far, at);
        if (bestDistance == 0 || !object->metaType) return;
        ZMethod* found =
            object->metaType->multimethodType(&far, &at, name, types, implicit, skipResult, exactCount, qualifier);
        keep(found, far, at);
    };
    if (orv::WalkTurn::take(this, orv::WalkTurn::Multimethod, name) || !priv || !priv->has(ObjectData::Delegates)) {
        ask(this);
    } else {
        orv::DelegateWalk walk(const_cast<ZObject*>(this), methodPlan);
        while (const ZObject* object = bestDistance ? walk.next() : nullptr) {
            if (object == this) {
                ask(this);
                continue;
            }
            orv::WalkTurn turn(object, orv::WalkTurn::Multimethod, name);
            int far = -1;
            orv::HeldTarget at(ZTypedPtr(object->metaType, object));
            if (keep(at.multimethod(&far, object, name, types, implicit, skipResult, exactCount, qualifier), far,
                     at.typed)) {
                at.keep(object);
                elsewhere = std::move(at.kept);
            }
            if (!turn.taken()) walk.skipRest();
        }
    }
    if (elsewhere.get())
        if (orv::HeldTarget* target = orv::HeldTarget::lookingFor(typed)) target->keep(elsewhere.get());
    if (distance) *distance = bestDistance;
    return best;
}
ZMethod* ZObject::multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const {
    return multimethod(nullptr, nullptr, name, types, false, true, false, {});
}
ZMethod* ZObject::multimethod(int* distance, const ZSelector& name, const ZArrayT<ZMetaType*>& types, bool implicit,
                              bool skipResult, bool exactCount, const ZSelector& qualifier) const {
    return multimethod(distance, nullptr, name, types, implicit, skipResult, exactCount, qualifier);
}
ZMethod* ZObject::multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                              const ZSelector& qualifier) const {
    return multimethod(nullptr, nullptr, name, types, false, true, false, qualifier);
}
ZMethod* ZObject::baseMultimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const {
    return baseMultimethod(nullptr, nullptr, name, types, false, true, false, {});
}

bool ZObject::definesName(const ZSelector& name) const {
    return methodBySelector(name, {}) || ZType::definesName(name);
}
bool ZObject::implements(const ZSelector& selector, const ZSelector& qualifier) const {
    return ZType::implements(selector, qualifier);
}
bool ZObject::implements(const ZSelector& selector) const { return implements(selector, {}); }
bool ZObject::implements(const ZMethod* method) const {
    return method && implements(method->getSelector(), method->getQualifier());
}

// Changes

bool ZObject::setMethod(const ZMethodPtr& method) { return setMethod(method.get(), true); }
bool ZObject::setMethod(ZMethod* method, bool replace) {
    if (!method || !method->isValid() || !priv) return false;
    // What goes does so when the lock is free.
    ZMethodRef gone;
    MethodTable before;
    {
        orv::ObjectWrite held(this);
        if (!held) return false;
        if (!priv->methods.isDetached()) before = priv->methods;
        if (!priv->methods.detach()) return false;
        const ZMethodPtr* old = exact(priv->methods, method);
        if (old && old->get() == method) return true;
        if (old && !replace) return false;
        ZMethodPtr* entry = ZMethodPtr::create(method);
        if (!entry) return false;
        if (!priv->methods.add(entry)) {
            entry->release();
            return false;
        }
        // The table is this object's own by now, so that this needs no memory.
        if (old) {
            gone = ZMethodRef(old->get(), nullptr, nullptr);
            priv->methods.remove(old);
        }
        priv->set(ObjectData::Methods, true);
    }
    orv::ownMethodsChanged(this);
    ZBinding::resetObject(this, method->methodName());
    return true;
}

namespace {
/// Takes out what `leaves` says; the number of those.
template <class Leaves> int removeSome(MethodTable& table, Leaves leaves) {
    int count = 0;
    for (const ZMethodPtr* node = table.first(); node;) {
        const ZMethodPtr* next = MethodTable::next(node);
        if (leaves(node->get())) {
            table.remove(node);
            ++count;
        }
        node = next;
    }
    return count;
}
} // namespace

bool ZObject::removeMethod(const ZSelector& selector, const ZSelector& qualifier) {
    if (!hasMethods()) return false;
    ZMethodRef gone; // when the lock is free
    {
        orv::ObjectWrite held(this);
        if (!held || !priv->methods.detach()) return false;
        const ZMethodPtr* node = pick(priv->methods, selector, qualifier);
        if (!node) return false;
        gone = ZMethodRef(node->get(), nullptr, nullptr);
        priv->methods.remove(node);
        priv->set(ObjectData::Methods, !priv->methods.isEmpty());
    }
    orv::ownMethodsChanged(this);
    ZBinding::resetObject(this, keyOf(selector));
    return true;
}
bool ZObject::removeMethods() {
    if (!hasMethods()) return false;
    MethodTable gone;
    {
        orv::ObjectWrite held(this);
        if (!held) return false;
        std::swap(gone, priv->methods);
        priv->set(ObjectData::Methods, false);
    }
    orv::ownMethodsChanged(this);
    ZBinding::resetObject(this);
    return true;
}
bool ZObject::removeMethods(const ZSelector& name) {
    if (!hasMethods()) return false;
    MethodTable before; // ends when the lock is free
    {
        orv::ObjectWrite held(this);
        if (!held) return false;
        before = priv->methods;
        if (!priv->methods.detach()) return false;
        if (!removeSome(priv->methods, [&](const ZMethod* method) { return method->methodName() == name; }))
            return false;
        priv->set(ObjectData::Methods, !priv->methods.isEmpty());
    }
    orv::ownMethodsChanged(this);
    ZBinding::resetObject(this, name);
    return true;
}

void ZObject::resetMethods() {
    if (!priv) return;
    priv->set(ObjectData::ExtStale | ObjectData::MultiStale, true);
    useDispatch();
    if (priv->has(ObjectData::InlineRecords)) resetInlineMethods();
    ZBinding::resetObject(this);
}

// Inline methods that were looked up on this object

void ZObject::linkInlineMethod(ZInlineMethod* record) {
    if (!record || !priv) return;
    orv::ObjectWrite held(this);
    if (!held || priv->inlineRecords.contains(record)) return;
    if (!priv->inlineRecords.append(record)) {
        ZError::fail();
        return;
    }
    priv->set(ObjectData::InlineRecords, true);
}
void ZObject::unlinkInlineMethod(ZInlineMethod* record) {
    if (!priv || !priv->has(ObjectData::InlineRecords)) return;
    orv::ObjectWrite held(this);
    if (const int at = priv->inlineRecords.indexOf(record); at >= 0) priv->inlineRecords.remove(uint(at));
    if (priv->inlineRecords.isEmpty()) priv->set(ObjectData::InlineRecords, false);
}
void ZObject::resetInlineMethods() {
    if (!priv || !priv->has(ObjectData::InlineRecords)) return;
    orv::ObjectRead held(*priv);
    for (const ZInlineMethod* record : std::as_const(priv->inlineRecords)) record->reset();
}
void ZObject::resetInlineMethods(const ZSelector& name) {
    if (!priv || !priv->has(ObjectData::InlineRecords)) return;
    orv::ObjectRead held(*priv);
    for (const ZInlineMethod* record : std::as_const(priv->inlineRecords))
        if (record->getName() == name || record->getSelector() == name) record->reset();
}

// Operators

ZObject& ZObject::operator+=(const ZMethodPtr& method) {
    if (!setMethod(method)) ZError::fail();
    return *this;
}
ZObject& ZObject::operator-=(const ZMethodPtr& method) {
    if (method) removeMethod(method->getSelector(), method->getQualifier());
    return *this;
}
ZObject& ZObject::operator+=(const ZMethodRef& method) {
    if (!method.add(this, true)) ZError::fail();
    return *this;
}
ZObject& ZObject::operator-=(const ZMethodRef& method) {
    toolkit::EpochGuard guard;
    if (const ZMethod* held = method.getMethod()) removeMethod(held->getSelector(), held->getQualifier());
    return *this;
}
