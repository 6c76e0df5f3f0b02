#include "object/ZMetaTypeData.h"
#include "object/ZMethod.h"
#include "object/names.h"
#include "object/propertyTables.h"
#include "value/ZTypedPtr.h"

// Accessor methods. For the type's own declaration of a name the answer is kept with the name; for another property of
// that name, a dynamic one say, it is looked up each time.

namespace {

using orv::Accessor;
using orv::CachedMethod;
using orv::PropertyLookup;

/// Leads a typed pointer to what the method is called on.
ZMethod* answer(ZTypedPtr* typed, ZMethod* method, int offset) {
    if (!method || !typed) return method;
    if (method->getOwner()) typed->type = method->getOwner();
    if (typed->instance) typed->instance = static_cast<char*>(typed->instance) + offset;
    return method;
}

/// The accessor of a property: from its place in the row of its name, or looked up.
template <class F>
ZMethod* accessor(const ZMetaType* type, ZTypedPtr* typed, CachedMethod* place, F signature,
                  const ZSelector& qualifier) {
    int offset = 0;
    ZMethod* method;
    if (place) {
        method = orv::cachedMethod(type, *place, signature, qualifier, offset);
    } else {
        ZSelector text = signature();
        method = text.isEmpty() ? nullptr : type->methodType(&offset, text, qualifier);
    }
    return answer(typed, method, offset);
}

/// The row of a property's name, if it is about this very property.
PropertyLookup* rowOf(const ZMetaType* type, const ZProperty* prop) {
    PropertyLookup* row = orv::lookUpProperty(type, prop->name());
    return row && row->property == prop ? row : nullptr;
}

ZMethod* simple(const ZMetaType* type, ZTypedPtr* typed, const ZProperty* prop, PropertyLookup* row, Accessor which,
                ZSelector (ZProperty::*signature)() const) {
    return accessor(
        type, typed, row ? &row->places[int(which) - 1] : nullptr, [&] { return (prop->*signature)(); }, ZSelector());
}
ZMethod* simple(const ZMetaType* type, ZTypedPtr* typed, const ZSelector& name, Accessor which,
                ZSelector (ZProperty::*signature)() const) {
    toolkit::EpochGuard guard;
    PropertyLookup* row = orv::lookUpProperty(type, name);
    return row ? simple(type, typed, row->property, row, which, signature) : nullptr;
}
ZMethod* simple(const ZMetaType* type, ZTypedPtr* typed, const ZProperty* prop, Accessor which,
                ZSelector (ZProperty::*signature)() const) {
    if (!prop) return nullptr;
    toolkit::EpochGuard guard;
    return simple(type, typed, prop, rowOf(type, prop), which, signature);
}

ZMethod* getterOf(const ZMetaType* type, ZTypedPtr* typed, const ZProperty* prop, PropertyLookup* row, bool ptrForm,
                  bool constForm, bool item) {
    CachedMethod* place = row ? &row->getters[item ? 4 + ptrForm : constForm * 2 + ptrForm] : nullptr;
    if (item && !(place && toolkit::loadAcquire(place->state) != CachedMethod::Unknown))
        constForm = type->methodType(prop->getter(ptrForm, true, true), zsel<"const">()) != nullptr;
    return accessor(
        type, typed, place, [&] { return prop->getter(ptrForm, constForm, item); },
        constForm ? zsel<"const">() : ZSelector());
}
ZMethod* setterOf(const ZMetaType* type, ZTypedPtr* typed, const ZProperty* prop, PropertyLookup* row, bool item) {
    Accessor which = item ? Accessor::ItemSetter : Accessor::Setter;
    return accessor(
        type, typed, row ? &row->places[int(which) - 1] : nullptr, [&] { return prop->setter(item); }, ZSelector());
}

} // namespace

ZMethod* ZMetaType::getterMethod(ZTypedPtr* typed, const ZSelector& name, bool ptrForm, bool constForm,
                                 bool item) const {
    toolkit::EpochGuard guard;
    PropertyLookup* row = orv::lookUpProperty(this, name);
    return row ? getterOf(this, typed, row->property, row, ptrForm, constForm, item) : nullptr;
}

ZMethod* ZMetaType::getterMethod(ZTypedPtr* typed, const ZProperty* prop, bool ptrForm, bool constForm,
                                 bool item) const {
    if (!prop) return nullptr;
    toolkit::EpochGuard guard;
    return getterOf(this, typed, prop, rowOf(this, prop), ptrForm, constForm, item);
}

ZMethod* ZMetaType::setterMethod(ZTypedPtr* typed, const ZSelector& name, bool item) const {
    toolkit::EpochGuard guard;
    PropertyLookup* row = orv::lookUpProperty(this, name);
    return row ? setterOf(this, typed, row->property, row, item) : nullptr;
}

ZMethod* ZMetaType::setterMethod(ZTypedPtr* typed, const ZProperty* prop, bool item) const {
    if (!prop) return nullptr;
    toolkit::EpochGuard guard;
    return setterOf(this, typed, prop, rowOf(this, prop), item);
}

#define ORV_ACCESSOR(method, which, signature)                                                                         \
    ZMethod* ZMetaType::method(ZTypedPtr* typed, const ZSelector& name) const {                                        \
        return simple(this, typed, name, Accessor::which, &ZProperty::signature);                                      \
    }                                                                                                                  \
    ZMethod* ZMetaType::method(ZTypedPtr* typed, const ZProperty* prop) const {                                        \
        return simple(this, typed, prop, Accessor::which, &ZProperty::signature);                                      \
    }
ORV_ACCESSOR(counterMethod, Counter, counter)
ORV_ACCESSOR(propByIndexMethod, PropByIndex, byindex)
ORV_ACCESSOR(hasPropMethod, HasProp, hasProp)
ORV_ACCESSOR(propKeyMethod, PropKey, propKey)
ORV_ACCESSOR(propIndexMethod, PropIndex, propIndex)
ORV_ACCESSOR(findKeyMethod, FindKey, findKey)
ORV_ACCESSOR(findIndexMethod, FindIndex, findIndex)
ORV_ACCESSOR(cleanerMethod, Cleaner, cleaner)
ORV_ACCESSOR(removerMethod, Remover, remover)
ORV_ACCESSOR(removeByIndexMethod, RemoveByIndex, removeByIndex)
ORV_ACCESSOR(inserterMethod, Inserter, inserter)
ORV_ACCESSOR(adderMethod, Adder, adder)
#undef ORV_ACCESSOR
