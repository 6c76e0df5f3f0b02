#include "object/SyntheticType.h"

#include "object/ZProperty.h"
#include "value/ZTypedPtr.h"
#include "value/ZVariant.h"

namespace orv {

SyntheticType::SyntheticType(ZPackage* package, const ZSelector& name, Type kind, const __ZPassMetaType* type,
                             ZInternal* internal)
    : ZMetaType(package, name, kind, type, internal) {
    if (own) setSynthetic(true);
}
SyntheticType::SyntheticType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                             const __ZPassMetaType* type, ZInternal* internal)
    : ZMetaType(package, name, kind, bases, type, internal) {
    if (own) setSynthetic(true);
}

uint SyntheticType::syntheticPropertyCount(const ZTypedPtr& typed) const { return fieldCount(typed.instance); }
bool SyntheticType::syntheticPropertyNames(const ZTypedPtr& typed, ZArrayT<ZSelector>& names) const {
    return fieldNames(typed.instance, names);
}
bool SyntheticType::hasSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return fieldType(typed.instance, name) != nullptr;
}
ZMetaType* SyntheticType::getSyntheticPropertyType(const ZTypedPtr& typed, const ZSelector& name) const {
    return fieldType(typed.instance, name);
}

bool SyntheticType::syntheticProperty(const ZTypedPtr& typed, const ZSelector& name, ZProperty& found,
                                      bool resolve) const {
    ZMetaType* type = fieldType(typed.instance, name);
    if (!type) return false;
    ZFailGuard guard;
    found = ZProperty(name, type, ZProperty::Alias);
    if (resolve && typed.instance) found.setValue(readField(typed.instance, name));
    return !guard.rose();
}
ZVariant SyntheticType::getSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, bool) const {
    return typed.instance ? readField(typed.instance, name) : ZVariant();
}
bool SyntheticType::setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                         bool) const {
    return typed.instance && writeField(typed.instance, name, value);
}
bool SyntheticType::clearSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return typed.instance && clearField(typed.instance, name);
}

} // namespace orv
