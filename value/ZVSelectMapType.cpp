#include "value/ZVSelectMapType.h"

#include "core/construct.h"
#include "object/ztype.h"
#include "value/ZTypedPtr.h"
#include "value/ZVSelectMap.h"

namespace {

const ZVSelectMap& mapAt(const void* instance) {
    static constinit const ZVSelectMap none;
    return instance ? *static_cast<const ZVSelectMap*>(instance) : none;
}

} // namespace

ZVSelectMapType::ZVSelectMapType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                                 const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(package, name, kind, bases, orv::tagFor<ZVSelectMapType>(type), internal) {}
ZVSelectMapType::ZVSelectMapType(const ZVSelectMapType* source, const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(source, orv::tagFor<ZVSelectMapType>(type), internal) {}
ZVSelectMapType::ZVSelectMapType(const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(nullptr, ZSelector(), Structure, orv::tagFor<ZVSelectMapType>(type), internal) {}

ZType* ZVSelectMapType::copy() const { return zmake<ZVSelectMapType>(this, orv::passType(type())); }
ZMetaType* ZVSelectMapType::makeVariant(const ZSelector& name) {
    return name.ptrCount() ? ZMetaType::makeVariant(name) : zmake<ZVSelectMapType>(name, this);
}

bool ZVSelectMapType::setSyntheticProperty(const ZTypedPtr& typed, const ZSelector& name, const ZVariant& value,
                                           bool add) const {
    auto map = static_cast<ZVSelectMap*>(typed.instance);
    return map && (add || map->haskey(name)) && map->set(name, value);
}

bool ZVSelectMapType::fieldNames(const void* instance, ZArrayT<ZSelector>& names) const {
    ZFailGuard guard;
    const ZArrayT<ZSelector> keys = mapAt(instance).keys();
    if (!guard.rose()) return names.append(keys);
    guard.forget();
    return false;
}
uint ZVSelectMapType::fieldCount(const void* instance) const { return mapAt(instance).count(); }
ZMetaType* ZVSelectMapType::fieldType(const void* instance, const ZSelector& name) const {
    const ZVSelectMap& map = mapAt(instance);
    const int at = map.findKey(name);
    if (at < 0) return nullptr;
    ZMetaType* type = map.getValueType();
    ZMetaType* held = type && type->isVariant() ? map.entry(at).type() : nullptr;
    return held ? held : type;
}
ZVariant ZVSelectMapType::readField(const void* instance, const ZSelector& name) const {
    return mapAt(instance).variant(name);
}
bool ZVSelectMapType::writeField(void* instance, const ZSelector& name, const ZVariant& value) const {
    auto map = static_cast<ZVSelectMap*>(instance);
    return map->setValue(map->findKey(name), value);
}
bool ZVSelectMapType::clearField(void* instance, const ZSelector& name) const {
    auto map = static_cast<ZVSelectMap*>(instance);
    ZMetaType* type = map->getValueType();
    if (!type) return false;
    return map->setValue(map->findKey(name), type->isVariant() ? ZVariant() : ZVariant(type));
}
