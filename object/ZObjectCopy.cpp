#include "core/ZRetainPtrT.h"
#include "core/construct.h"
#include "object/ZMetaType.h"
#include "object/ZMethodRef.h"
#include "object/ZObject.h"
#include "object/ZObjectData.h"
#include "object/methodLookup.h"
#include "value/ZVArray.h"
#include "value/ZVariant.h"

// Copies with what belongs to an object, and new objects by the names of their types.

using orv::ObjectData;

namespace {

using Owned = ZRetainPtrT<ZObject>;

Owned copyOf(const ZObject* object) { return Owned::adopt(static_cast<ZObject*>(object->copy())); }

} // namespace

ZObject* ZObject::deepCopy() const {
    Owned made = copyOf(this);
    if (!made.get()) return nullptr;
    made->setDelegateType(delegateType());
    if (copyMembers()) return made.give();

    // The properties that hold children and delegates, before anything is changed.
    struct Holder {
        ZSelector name;
        const ZObject* object;
    };
    ZArrayT<ZSelector> stored;
    ZArrayT<Holder> holders;
    if (!storedPropertyNames(stored)) return nullptr;
    for (const ZSelector& name : std::as_const(stored))
        if (ZObject* held = orv::heldObject(this, name))
            if ((held->parent == this || hasDelegate(held)) && !holders.append({name, held})) return nullptr;

    for (ZObject* child = firstChild; child; child = child->nextSibling) {
        Owned copied = copyOf(child);
        if (!copied.get()) return nullptr;
        copied->setParent(made.get());
        if (hasDelegate(child) && !made->addDelegate(copied.get(), false)) return nullptr;
        for (const Holder& holder : std::as_const(holders))
            if (holder.object == child && !made->setProperty(holder.name, copied.get())) return nullptr;
    }
    ZArrayT<Owned> delegates;
    if (!orv::holdDelegates(this, delegates)) return nullptr;
    for (const ZObject* delegate : std::as_const(delegates)) {
        if (delegate->parent == this) continue;
        ZObject* held = nullptr;
        for (const Holder& holder : std::as_const(holders))
            if (!held && holder.object == delegate) held = orv::heldObject(made.get(), holder.name);
        const Owned copied = held ? Owned(held) : copyOf(delegate);
        if (!copied.get() || !made->addDelegate(copied.get(), false)) return nullptr;
    }
    return made.give();
}

// Loading

ZMetaType* ZObject::loadTypeFromName(const ZSelector& name) const {
    if (ZMetaType* found = metaType ? metaType->findType(name) : nullptr) return found;
    return ZMetaType::findExisting(name);
}

ZObject* ZObject::createObject(const ZSelector& type, const ZSelector& name, const ZVArray& arguments) {
    ZMetaType* found = loadTypeFromName(type);
    if (!found || !found->isZObject()) return nullptr;
    Owned made;
    if (arguments.isEmpty()) {
        made = Owned::adopt(static_cast<ZObject*>(found->createInstance()));
    } else {
        ZArrayT<ZMetaType*> types;
        if (!types.setCount(arguments.count() + 1)) return nullptr;
        for (uint i = 0; i < arguments.count(); ++i) types.set(i + 1, arguments.variant(int(i)).type());
        toolkit::EpochGuard guard;
        const ZSelector constructor = found->constructorName().methodName();
        ZMethod* method = found->multimethodType(nullptr, nullptr, constructor, types, true, true, false, {});
        const ZVariant answer = ZMethodRef(method, nullptr, found).invoke(arguments);
        made = Owned(answer.toObject());
    }
    if (!made.get()) return nullptr;
    made->setSelector(name);
    made->setParent(this);
    return made.get();
}
