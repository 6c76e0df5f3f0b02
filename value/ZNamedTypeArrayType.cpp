#include "value/ZNamedTypeArrayType.h"

#include "core/construct.h"
#include "object/ztype.h"
#include "value/ZNamedTypeArray.h"

namespace {

/// A copy: it stays whole while it is asked.
ZNamedTypeArray arrayAt(const void* instance) {
    return instance ? *static_cast<const ZNamedTypeArray*>(instance) : ZNamedTypeArray();
}

} // namespace

ZNamedTypeArrayType::ZNamedTypeArrayType(ZPackage* package, const ZSelector& name, Type kind,
                                         const ZArrayT<ZSelector>& bases, const __ZPassMetaType* type,
                                         ZInternal* internal)
    : SyntheticType(package, name, kind, bases, orv::tagFor<ZNamedTypeArrayType>(type), internal) {}
ZNamedTypeArrayType::ZNamedTypeArrayType(const ZNamedTypeArrayType* source, const __ZPassMetaType* type,
                                         ZInternal* internal)
    : SyntheticType(source, orv::tagFor<ZNamedTypeArrayType>(type), internal) {}
ZNamedTypeArrayType::ZNamedTypeArrayType(const __ZPassMetaType* type, ZInternal* internal)
    : SyntheticType(nullptr, ZSelector(), Structure, orv::tagFor<ZNamedTypeArrayType>(type), internal) {}

ZType* ZNamedTypeArrayType::copy() const { return zmake<ZNamedTypeArrayType>(this, orv::passType(type())); }
ZMetaType* ZNamedTypeArrayType::makeVariant(const ZSelector& name) {
    return name.ptrCount() ? ZMetaType::makeVariant(name) : zmake<ZNamedTypeArrayType>(name, this);
}

bool ZNamedTypeArrayType::fieldNames(const void* instance, ZArrayT<ZSelector>& names) const {
    ZFailGuard guard;
    const ZArrayT<ZSelector> keys = arrayAt(instance).keys();
    if (!guard.rose()) return names.append(keys);
    guard.forget();
    return false;
}
uint ZNamedTypeArrayType::fieldCount(const void* instance) const { return arrayAt(instance).count(); }
ZMetaType* ZNamedTypeArrayType::fieldType(const void* instance, const ZSelector& name) const {
    const ZNamedTypeArray items = arrayAt(instance);
    const int at = items.findKey(name);
    if (at < 0) return nullptr;
    const ZMetaType* held = items.typeByIndex(at);
    return held ? held->getPtrType() : items.getValueType();
}
ZVariant ZNamedTypeArrayType::readField(const void* instance, const ZSelector& name) const {
    return arrayAt(instance).variant(name);
}
bool ZNamedTypeArrayType::writeField(void* instance, const ZSelector& name, const ZVariant& value) const {
    auto items = static_cast<ZNamedTypeArray*>(instance);
    return items->haskey(name) && items->set(name, value);
}
bool ZNamedTypeArrayType::clearField(void* instance, const ZSelector& name) const {
    return writeField(instance, name, ZVariant());
}
