#include "value/ZVSelectMapType.h"

#include "core/construct.h"
#include "object/ZProperty.h"
#include "object/ztype.h"
#include "value/ZTypedPtr.h"
#include "value/ZVSelectMap.h"

namespace {

ZVSelectMap* mapAt(const ZTypedPtr& typed) { return static_cast<ZVSelectMap*>(typed.instance); }
const __ZPassMetaType* tagOf(const __ZPassMetaType* type) {
    return type ? type : orv::passType(ztype<ZVSelectMapType>());
}

} // namespace

ZVSelectMapType::ZVSelectMapType(ZPackage* package, const ZSelector& name, Type kind,
                                 const ZArrayT<ZSelector>& baseNames, const __ZPassMetaType* type, ZInternal* internal)
    : ZMetaType(package, name, kind, baseNames, tagOf(type), internal) {
    if (own) setSynthetic(true);
}
ZVSelectMapType::ZVSelectMapType(const ZVSelectMapType* source, const __ZPassMetaType* type, ZInternal* internal)
    : ZMetaType(source, tagOf(type), internal) {}

ZType* ZVSelectMapType::copy() const { return zmake<ZVSelectMapType>(this, orv::passType(metaType)); }
ZMetaType* ZVSelectMapType::makeVariant(const ZSelector& name) {
    if (name.ptrCount()) return ZMetaType::makeVariant(name);
    return zmake<ZVSelectMapType>(name, this);
}

uint ZVSelectMapType::syntheticPropertyCount(const ZTypedPtr& typed) const {
    return typed.instance ? uint(mapAt(typed)->count()) : 0;
}
bool ZVSelectMapType::syntheticPropertyNames(const ZTypedPtr& typed, ZArrayT<ZSelector>& names) const {
    if (!typed.instance) return false;
    const ZVSelectMap& map = *mapAt(typed);
    for (int i = 0, count = int(map.count()); i < count; ++i)
        if (!names.append(map.key(i))) return false;
    return true;
}
bool ZVSelectMapType::hasSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return typed.instance && mapAt(typed)->haskey(name);
}
ZMetaType* ZVSelectMapType::getSyntheticPropertyType(const ZTypedPtr& typed, const ZSelector& name) const {
    if (!hasSyntheticProperty(typed, name)) return nullptr;
    const ZVariant value = mapAt(typed)->variant(name);
    return value.isNull() ? mapAt(typed)->getValueType() : value.mainType();
}
bool ZVSelectMapType::syntheticProperty(const ZTypedPtr& typed, const ZSelector& name, ZProperty& found,
                                        bool resolve) const {
    if (!hasSyntheticProperty(typed, name)) return false;
    ZFailGuard guard;
    found = ZProperty(name, getSyntheticPropertyType(typed, name), ZProperty::Alias);
    if (resolve) found.setValue(mapAt(typed)->variant(name));
    return !guard.rose();
}
ZVariant ZVSelectMapType::getSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, bool expand) const {
    if (!typed.instance) return ZVariant();
    ZVariant value = mapAt(typed)->variant(name);
    return expand ? value.expand() : value;
}
bool ZVSelectMapType::setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                           bool) const {
    return hasSyntheticProperty(typed, name) && mapAt(typed)->set(name, value);
}
bool ZVSelectMapType::clearSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name) const {
    return typed.instance && mapAt(typed)->remove(name);
}
