#include "value/ZTypeNameMapType.h"

#include "core/construct.h"
#include "object/ztype.h"
#include "value/ZTypeNameMap.h"

ZTypeNameMapType::ZTypeNameMapType(ZPackage* package, const ZSelector& name, Type kind, const ZArrayT<ZSelector>& bases,
                                   const __ZPassMetaType* type, ZInternal* internal)
    : ZVSelectMapType(package, name, kind, bases, orv::tagFor<ZTypeNameMapType>(type), internal) {}
ZTypeNameMapType::ZTypeNameMapType(const ZTypeNameMapType* source, const __ZPassMetaType* type, ZInternal* internal)
    : ZVSelectMapType(source, orv::tagFor<ZTypeNameMapType>(type), internal) {}
ZTypeNameMapType::ZTypeNameMapType(const __ZPassMetaType* type, ZInternal* internal)
    : ZVSelectMapType(orv::tagFor<ZTypeNameMapType>(type), internal) {}

ZType* ZTypeNameMapType::copy() const { return zmake<ZTypeNameMapType>(this, orv::passType(type())); }
ZMetaType* ZTypeNameMapType::makeVariant(const ZSelector& name) {
    return name.ptrCount() ? ZMetaType::makeVariant(name) : zmake<ZTypeNameMapType>(name, this);
}

ZMetaType* ZTypeNameMapType::fieldType(const void* instance, const ZSelector& name) const {
    const ZType* held = instance ? static_cast<const ZTypeNameMap*>(instance)->get(name) : nullptr;
    return held ? held->type()->getPtrType() : ZVSelectMapType::fieldType(instance, name);
}
