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

// The others take nothing but the property.

namespace {
using Lookup = ZMethod* (ZMetaType::*)(ZTypedPtr*, const ZProperty*) const;

template <class P> ZMethod* askFor(const ZType* self, ZTypedPtr* typed, const P& property, Lookup lookUp) {
    return ask(self, typed, property,
               [&](ZMetaType* type, ZTypedPtr* at, const ZProperty* of) { return (type->*lookUp)(at, of); });
}
} // namespace

#define ORV_ACCESSOR(accessor, lookUp)                                                                                 \
    ZMethod* ZType::accessor(ZTypedPtr* typed, const ZSelector& name) const {                                          \
        return askFor<ZSelector>(this, typed, name, &ZMetaType::lookUp);                                                  \
    }                                                                                                                  \
    ZMethod* ZType::accessor(ZTypedPtr* typed, const ZProperty* prop) const {                                          \
        return askFor<const ZProperty*>(this, typed, prop, &ZMetaType::lookUp);                                           \
    }
ORV_ACCESSOR(counter, counterMethod)
ORV_ACCESSOR(propByIndex, propByIndexMethod)
ORV_ACCESSOR(hasProp, hasPropMethod)
ORV_ACCESSOR(propKey, propKeyMethod)
ORV_ACCESSOR(propIndex, propIndexMethod)
ORV_ACCESSOR(findKey, findKeyMethod)
ORV_ACCESSOR(findIndex, findIndexMethod)
ORV_ACCESSOR(cleaner, cleanerMethod)
ORV_ACCESSOR(remover, removerMethod)
ORV_ACCESSOR(removeByIndex, removeByIndexMethod)
ORV_ACCESSOR(inserter, inserterMethod)
ORV_ACCESSOR(adder, adderMethod)
#undef ORV_ACCESSOR
