#include "object/ZMetaType.h"
#include "object/ZProperty.h"
#include "toolkit/epoch.h"
#include "value/ZTypedPtr.h"

// Accessor methods. A name stands for the property that the instance itself has under it.

namespace {
/// Asks the type for an accessor of a property; the typed pointer starts at the instance.
template <class F> ZMethod* ask(const ZType* self, ZTypedPtr* typed, const ZProperty* prop, F lookUp) {
    ZMetaType* type = self->type();
    if (!type || !prop) return nullptr;
    ZTypedPtr at(self);
    ZMethod* method = lookUp(type, &at, prop);
    if (method && typed) *typed = at;
    return method;
}
template <class F> ZMethod* ask(const ZType* self, ZTypedPtr* typed, const ZSelector& name, F lookUp) {
    toolkit::EpochGuard guard;
    return ask(self, typed, self->findProperty(nullptr, name, true), lookUp);
}
} // namespace

ZMethod* ZType::getter(ZTypedPtr* typed, const ZSelector& name, bool ptrForm, bool constForm, bool item) const {
    return ask(this, typed, name, [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) {
        return type->getterMethod(at, of, ptrForm, constForm, item);
    });
}

ZMethod* ZType::getter(ZTypedPtr* typed, const ZProperty* prop, bool ptrForm, bool constForm, bool item) const {
    return ask(this, typed, prop, [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) {
        return type->getterMethod(at, of, ptrForm, constForm, item);
    });
}

ZMethod* ZType::setter(ZTypedPtr* typed, const ZSelector& name, bool item) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->setterMethod(at, of, item); });
}

ZMethod* ZType::setter(ZTypedPtr* typed, const ZProperty* prop, bool item) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->setterMethod(at, of, item); });
}

ZMethod* ZType::counter(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->counterMethod(at, of); });
}

ZMethod* ZType::counter(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->counterMethod(at, of); });
}

ZMethod* ZType::propByIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->propByIndexMethod(at, of); });
}

ZMethod* ZType::propByIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->propByIndexMethod(at, of); });
}

ZMethod* ZType::hasProp(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->hasPropMethod(at, of); });
}

ZMethod* ZType::hasProp(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->hasPropMethod(at, of); });
}

ZMethod* ZType::propKey(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->propKeyMethod(at, of); });
}

ZMethod* ZType::propKey(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->propKeyMethod(at, of); });
}

ZMethod* ZType::propIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->propIndexMethod(at, of); });
}

ZMethod* ZType::propIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->propIndexMethod(at, of); });
}

ZMethod* ZType::findKey(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->findKeyMethod(at, of); });
}

ZMethod* ZType::findKey(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->findKeyMethod(at, of); });
}

ZMethod* ZType::findIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->findIndexMethod(at, of); });
}

ZMethod* ZType::findIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->findIndexMethod(at, of); });
}

ZMethod* ZType::cleaner(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->cleanerMethod(at, of); });
}

ZMethod* ZType::cleaner(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->cleanerMethod(at, of); });
}

ZMethod* ZType::remover(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->removerMethod(at, of); });
}

ZMethod* ZType::remover(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->removerMethod(at, of); });
}

ZMethod* ZType::removeByIndex(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->removeByIndexMethod(at, of); });
}

ZMethod* ZType::removeByIndex(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->removeByIndexMethod(at, of); });
}

ZMethod* ZType::inserter(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->inserterMethod(at, of); });
}

ZMethod* ZType::inserter(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->inserterMethod(at, of); });
}

ZMethod* ZType::adder(ZTypedPtr* typed, const ZSelector& name) const {
    return ask(this, typed, name,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->adderMethod(at, of); });
}

ZMethod* ZType::adder(ZTypedPtr* typed, const ZProperty* prop) const {
    return ask(this, typed, prop,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return type->adderMethod(at, of); });
}
