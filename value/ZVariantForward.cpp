#include "object/ZMetaType.h"
#include "object/ZObject.h"
#include "object/ZProperty.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

// Methods

ZMethod* ZVariant::method(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).method(typed, selector, qualifier);
}
ZMethod* ZVariant::method(const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).method(selector, qualifier);
}
ZMethod* ZVariant::baseMethod(ZTypedPtr* typed, const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).baseMethod(typed, selector, qualifier);
}
ZMethod* ZVariant::multimethod(int* distance, ZTypedPtr* typed, const ZSelector& name, const ZArrayT<ZMetaType*>& types,
                               bool implicit, bool skipResult, bool exact, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).multimethod(distance, typed, name, types, implicit, skipResult, exact, qualifier);
}
ZMethod* ZVariant::multimethod(const ZSelector& name, const ZArrayT<ZMetaType*>& types) const {
    return ZTypedPtr(*this).multimethod(name, types);
}
ZMethod* ZVariant::baseMultimethod(int* distance, ZTypedPtr* typed, const ZSelector& name,
                                   const ZArrayT<ZMetaType*>& types, bool implicit, bool skipResult, bool exact,
                                   const ZSelector& qualifier) const {
    return ZTypedPtr(*this).baseMultimethod(distance, typed, name, types, implicit, skipResult, exact, qualifier);
}
bool ZVariant::implements(const ZSelector& selector, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).implements(selector, qualifier);
}
bool ZVariant::definesName(const ZSelector& name) const { return ZTypedPtr(*this).definesName(name); }
ZVariant ZVariant::invoke(const ZSelector& name, const ZArrayT<ZVariant>& arguments) const {
    return ZTypedPtr(*this).invoke(name, arguments);
}
ZVariant ZVariant::invoke(const ZSelector& name, const ZVArray& arguments) const {
    return ZTypedPtr(*this).invoke(name, arguments);
}
ZVariant ZVariant::invoke(const ZSelector& name, std::initializer_list<ZVariant> arguments) const {
    return ZTypedPtr(*this).invoke(name, arguments);
}
bool ZVariant::callV(const ZSelector& name) const { return ZTypedPtr(*this).callV(name); }
bool ZVariant::callV(const ZSelector& name, const ZSelector& qualifier) const {
    return ZTypedPtr(*this).callV(name, qualifier);
}

ZObject* ZVariant::ancestor(const ZSelector& name) const {
    ZObject* object = toObject();
    while (object && object->selector() != name) object = object->getParent();
    return object;
}
ZObject* ZVariant::descendant(const ZSelector& name) const {
    ZObject* object = toObject();
    return object ? object->findObject(name, true) : nullptr;
}

// Enums

bool ZVariant::enumValue(const ZSelector& path, int& value) const { return ZTypedPtr(*this).enumValue(path, value); }
ZSelector ZVariant::enumName(const ZSelector& enumType, int value) const {
    return ZTypedPtr(*this).enumName(enumType, value);
}
ZEnumType* ZVariant::findEnum(const ZSelector& name) const { return ZTypedPtr(*this).findEnum(name); }
int ZVariant::scanEnum(const ZSelector& enumType, const ZSelector& words) const {
    return ZTypedPtr(*this).scanEnum(enumType, words);
}
ZSelector ZVariant::outputEnum(const ZSelector& enumType, int flags) const {
    return ZTypedPtr(*this).outputEnum(enumType, flags);
}
ZSelector ZVariant::qualify() const {
    ZMetaType* main = mainType();
    if (!main || main->kind() != ZMetaType::Enum) return {};
    ZSelector item = toSelector();
    return item.isEmpty() ? item : main->getName().join("::").join(item);
}

// Properties

#define ORV_ASK(listing, result, operation, parameters, arguments, ...)                                                \
    result ZVariant::operation parameters const { return ZTypedPtr(*this).operation arguments; }
#define ORV_CHANGE(listing, result, operation, parameters, arguments, ...)                                             \
    result ZVariant::operation parameters { return ownValue() ? ZTypedPtr(*this).operation arguments : result(); }
#include "value/valueProperties.def"
