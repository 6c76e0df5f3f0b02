#include "core/ZRetainPtrT.h"
#include "core/construct.h"
#include "object/DelegateWalk.h"
#include "object/HeldTarget.h"
#include "object/ZMetaType.h"
#include "object/ZMethodCall.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/dispatchEntries.h"
#include "object/methodLookup.h"
#include "object/names.h"
#include "value/ZVariant.h"

// Signals: entries that tie a name to methods, and the walk that a signal takes.

using orv::HeldTarget;
using orv::ObjectData;
using DispatchTable = ZObject::DispatchTable;
using Arguments = ZArrayT<ZVariant>;

namespace {

DispatchTable entries(const ZObject* object) {
    ObjectData* data = ObjectData::of(object);
    if (!data || !data->has(ObjectData::Dispatch)) return {};
    orv::ObjectRead held(*data);
    return data->dispatch;
}

/// Whether the one parameter is the array of all arguments.
bool takesArray(const ZMethod& method) {
    return method.paramCount() == 1 && method.paramType(1).mainType() == zsel<"ZArrayT<ZVariant>">();
}

/// Whether its type alone decides what an object answers.
bool answersAsItsType(const ZObject* object) {
    const ObjectData* data = ObjectData::of(object);
    return !data || !data->has(ObjectData::Methods | ObjectData::ExtMethods | ObjectData::ExtStale |
                               ObjectData::ExtendTypes | ObjectData::Delegates);
}

bool callEntry(const ZMethodDispatch& entry, ZObject* object, const Arguments& arguments, bool asArray, bool ownEntry) {
    // A delegate may leave in its own handler.
    HeldTarget held{ZTypedPtr(object)};
    toolkit::EpochGuard guard;
    ZMethodRef target;
    if (ownEntry || entry.isBound() || answersAsItsType(object)) {
        target = entry.getMethod(object, held.kept);
    } else {
        ZMethod* found = held.method(object, entry.methodName(), entry.qualifier());
        target.set(found, held.typed.instance, held.typed.type);
    }
    ZMethod* method = target.getMethod();
    if (!method || (asArray && !takesArray(*method))) return false;
    const void* instance = target.getInstance() ? target.getInstance() : object;
    const ZMetaType* type = target.getInstance() ? target.getType() : object->type();
    const orv::MethodParams* params = method->params(type);
    if (!params || params->constructor || params->destructor) return false;
    ZFailGuard failures;
    // What a method does to the array is no affair of the next one.
    Arguments own(arguments);
    ZMethodCall call;
    bool ready = call.setup(instance, method, type);
    if (ready && asArray) ready = call.addp(&own);
    const bool open = method->openArgument() >= 0 || method->collectArgs();
    for (uint i = 0; ready && !asArray && i < arguments.count() && (open || int(i) + 1 < call.getParCount()); ++i)
        ready = call.add(arguments.data()[i]);
    const bool ran = ready && call.invoke();
    failures.forget();
    // A method that says nothing has answered.
    return ran && (!call.hasReturn() || call.takeResult().toBool());
}

/// The object that the first part of a path leads to, and the rest of the path.
ZVariant firstOfPath(const ZObject* object, const ZSelector& name, ZSelector& rest) {
    if (name.type() != ZSelector::UID || name.parcount() < 2) return {};
    ZVariant value = object->getProperty(name.param(0));
    if (value.toObject()) rest = name.extract(1, name.parcount());
    return value;
}
/// Follows a path until so few parts are left that each object on the way is asked for its own answer. `held` keeps the
/// object that is come to.
ZObject* followLongPath(ZObject* object, ZSelector& name, ZVariant& held) {
    const int parts = name.parcount();
    int at = 0;
    for (; parts - at > ZObject::depthLimit; ++at) {
        ZVariant value = object->getProperty(name.param(at));
        object = value.toObject();
        if (!object) return nullptr;
        held = std::move(value);
    }
    name = name.extract(at, parts);
    return object;
}

bool call(ZObject* object, const ZSelector& name, const Arguments& arguments, bool asArray) {
    return asArray ? object->callDispatch(name, arguments) : object->dispatchArgs(name, arguments);
}

/// What an object and its type answer, without delegates.
bool answer(ZObject* object, const ZSelector& name, const Arguments& arguments, bool asArray) {
    bool answered = false;
    ZSelector rest;
    const ZVariant value = firstOfPath(object, name, rest);
    if (ZObject* next = rest.isEmpty() ? nullptr : value.toObject()) answered = call(next, rest, arguments, asArray);
    object->cleanDispatch();
    answered |= orv::callEntries(entries(object), object, name, arguments, asArray, true);
    if (ZMetaType* type = object->type())
        answered |=
            asArray ? type->typeCallDispatch(object, name, arguments) : type->typeDispatch(object, name, arguments);
    return answered;
}

constexpr orv::DelegateWalk::Plan dispatchPlan = {0, {ZObject::Dispatch, ZObject::Extension}, true};

bool dispatch(ZObject* root, const ZSelector& name, const Arguments& arguments, bool asArray) {
    if (name.isEmpty()) return false;
    // Its own handler may let the last reference go.
    const ZRetainPtrT<ZObject> kept(root);
    if (!kept.get()) return false;
    if (ORV_UNLIKELY(name.type() == ZSelector::UID && name.parcount() > ZObject::depthLimit)) {
        ZSelector rest = name;
        ZVariant held;
        ZObject* object = followLongPath(root, rest, held);
        return object && call(object, rest, arguments, asArray);
    }
    const auto operation = asArray ? orv::WalkTurn::Dispatch : orv::WalkTurn::DispatchArguments;
    ObjectData* data = ObjectData::of(root);
    const bool alone = !data || (!toolkit::load(data->delegateCount) && !(data->parentDelegate & ZObject::Dispatch));
    if (orv::WalkTurn::take(root, operation, name) || alone) return answer(root, name, arguments, asArray);
    bool answered = false;
    orv::DelegateWalk walk(root, dispatchPlan);
    while (ZObject* object = walk.next()) {
        if (object == root) {
            answered |= answer(root, name, arguments, asArray);
            continue;
        }
        orv::WalkTurn turn(object, operation, name);
        answered |= call(object, name, arguments, asArray);
        if (!turn.taken()) walk.skipRest();
    }
    return answered;
}

} // namespace

namespace orv {

bool callEntries(const DispatchTable& table, ZObject* object, const ZSelector& name, const ZArrayT<ZVariant>& arguments,
                 bool asArray, bool ownTable) {
    bool answered = false;
    for (const ZMethodDispatch* entry = table.find(name); entry; entry = table.findNext(entry))
        answered |= callEntry(*entry, object, arguments, asArray, ownTable);
    return answered;
}

} // namespace orv

bool ZObject::callDispatch(const ZSelector& name, const ZArrayT<ZVariant>& arguments) {
    return dispatch(this, name, arguments, true);
}
bool ZObject::callDispatch(const ZSelector& name) { return callDispatch(name, ZArrayT<ZVariant>()); }
bool ZObject::callDispatch(const ZSelector& name, const ZVariant& argument) {
    ZArrayT<ZVariant> arguments;
    return arguments.append(argument) && callDispatch(name, arguments);
}
bool ZObject::dispatchArgs(const ZSelector& name, const ZArrayT<ZVariant>& arguments) {
    return dispatch(this, name, arguments, false);
}

// The table

void ZObject::useDispatch() {
    if (!priv) return;
    toolkit::addFetch(priv->methodChanges, 1u);
    priv->set(ObjectData::DispatchUsed, true);
}
/// Entries know by themselves what doesn't hold any more; here they let it go, with no lock held.
void ZObject::cleanDispatch() {
    if (!priv || !priv->has(ObjectData::DispatchUsed)) return;
    DispatchTable used;
    if (priv->has(ObjectData::Dispatch)) {
        orv::ObjectWrite held(this);
        if (!held || !priv->has(ObjectData::DispatchUsed)) return;
        used = priv->dispatch;
        priv->set(ObjectData::DispatchUsed, false);
    } else {
        priv->set(ObjectData::DispatchUsed, false);
    }
    for (const ZMethodDispatch& entry : used) entry.reset();
}

bool ZObject::hasDispatch() const { return priv && priv->has(ObjectData::Dispatch); }
bool ZObject::hasDispatch(const ZSelector& name) const { return entries(this).contains(name); }
const ZMethodDispatch* ZObject::findDispatch(const ZSelector& name) const { return entries(this).find(name); }
const ZMethodDispatch* ZObject::findDispatch(const ZMethodDispatch& dispatch) const {
    const DispatchTable table = entries(this);
    for (const ZMethodDispatch* entry = table.find(dispatch.dispatchName()); entry; entry = table.findNext(entry))
        if (entry->compare(dispatch) == 0) return entry;
    return nullptr;
}
ZObject::DispatchTable ZObject::getMethodDispatch() const { return entries(this); }
bool ZObject::getMethodDispatch(ZArrayT<ZSelector>& names) const {
    for (const ZMethodDispatch& entry : entries(this))
        if (!names.contains(entry.dispatchName()) && !names.append(entry.dispatchName())) return false;
    return true;
}

bool ZObject::addDispatch(const ZMethodDispatch& dispatch) {
    if (!priv || dispatch.dispatchName().isEmpty()) return false;
    const ZMethodRef bound = dispatch.isBound() ? dispatch.reference() : ZMethodRef();
    if (ZMethod* method = bound.getMethod(); method && !bound.getInstance()) {
        toolkit::EpochGuard guard;
        // One that its own instance answers needs no copy here.
        if (!this->method(method->getSelector(), method->getQualifier()) && !setMethod(method, false)) return false;
    }
    ZMethodDispatch* entry = ZMethodDispatch::create(dispatch);
    if (!entry) return false;
    DispatchTable before; // ends when the lock is free
    {
        orv::ObjectWrite held(this);
        if (held && !priv->dispatch.isDetached()) before = priv->dispatch;
        if (held && priv->dispatch.add(entry)) {
            priv->set(ObjectData::Dispatch, true);
            entry = nullptr;
        }
    }
    if (entry) {
        entry->release();
        return false;
    }
    useDispatch();
    return true;
}
bool ZObject::addDispatch(const ZSelector& name) { return addDispatch(ZMethodDispatch(name)); }
bool ZObject::addDispatch(const ZSelector& name, const ZSelector& methodName, const ZSelector& qualifier) {
    return addDispatch(ZMethodDispatch(name, methodName, qualifier));
}
bool ZObject::addDispatch(const ZSelector& name, const ZMethodRef& method) {
    return method.isValid() && addDispatch(ZMethodDispatch(name, method));
}
bool ZObject::addDispatch(const DispatchTable& dispatch) {
    for (const ZMethodDispatch& entry : dispatch)
        if (!findDispatch(entry) && !addDispatch(entry)) return false;
    return true;
}

bool ZObject::removeDispatch() {
    if (!hasDispatch()) return false;
    DispatchTable gone; // when the lock is free
    orv::ObjectWrite held(this);
    if (!held) return false;
    std::swap(gone, priv->dispatch);
    priv->set(ObjectData::Dispatch, false);
    return true;
}

namespace {
/// Takes out the entries of a name that `leaves` says; false if there are none, and without memory.
template <class Leaves> bool removeEntries(ZObject* object, const ZSelector& name, Leaves leaves) {
    if (!object->hasDispatch()) return false;
    ObjectData& data = ObjectData::at(object);
    DispatchTable before; // ends when the lock is free
    orv::ObjectWrite held(object);
    if (!held) return false;
    before = data.dispatch;
    if (!data.dispatch.detach()) return false;
    bool any = false;
    for (const ZMethodDispatch* entry = data.dispatch.find(name); entry;) {
        const ZMethodDispatch* next = data.dispatch.findNext(entry);
        if (leaves(*entry)) any |= data.dispatch.remove(entry);
        entry = next;
    }
    data.set(ObjectData::Dispatch, !data.dispatch.isEmpty());
    return any;
}
} // namespace

bool ZObject::removeDispatch(const ZSelector& name) {
    return removeEntries(this, name, [](const ZMethodDispatch&) { return true; });
}
bool ZObject::removeDispatch(const ZMethodDispatch& dispatch) {
    return removeEntries(this, dispatch.dispatchName(),
                         [&](const ZMethodDispatch& entry) { return entry.compare(dispatch) == 0; });
}

ZObject& ZObject::operator+=(const ZMethodDispatch& dispatch) {
    if (!addDispatch(dispatch)) ZError::fail();
    return *this;
}
ZObject& ZObject::operator-=(const ZMethodDispatch& dispatch) {
    removeDispatch(dispatch);
    return *this;
}

// By name alone

bool ZObject::allowNameInvoke(const ZSelector& name) const {
    ZSelector field;
    const ZObject* target = resolveFieldName(name, field);
    if (field.isEmpty()) return false;
    return (field.type() != ZSelector::Method && target->hasDispatch(field)) || target->hasMethod(field, {});
}
ZVariant ZObject::invokeName(const ZSelector& name) {
    ZSelector field;
    const ZRetainPtrT<ZObject> target(resolveFieldName(name, field));
    if (!target.get() || field.isEmpty()) return {};
    if (field.type() != ZSelector::Method && target->callDispatch(field)) return ZVariant(true);
    HeldTarget held{ZTypedPtr(target.get())};
    toolkit::EpochGuard guard;
    ZMethod* found = held.method(target.get(), field, {});
    return found ? orv::callFound(found, held.typed.instance, held.typed.type, nullptr, 0) : ZVariant();
}
