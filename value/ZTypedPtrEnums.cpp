#include "object/ZMetaType.h"
#include "object/enumAccess.h"
#include "value/ZTypedPtr.h"
#include "value/typedInstance.h"

// Enumerations as the type of what is pointed to knows them; an instance of a `ZType` class answers itself.

bool ZTypedPtr::enumValue(const ZSelector& path, int& value) const {
    if (ZType* object = orv::detail::instanceOf(*this)) return object->enumValue(path, value);
    return orv::enumValue(type, path, value);
}
ZSelector ZTypedPtr::enumName(const ZSelector& enumType, int value) const {
    if (ZType* object = orv::detail::instanceOf(*this)) return object->enumName(enumType, value);
    return orv::enumName(type, enumType, value);
}
ZEnumType* ZTypedPtr::findEnum(const ZSelector& name) const {
    if (ZType* object = orv::detail::instanceOf(*this)) return object->findEnum(name);
    return orv::findEnum(type, name);
}
int ZTypedPtr::scanEnum(const ZSelector& enumType, const ZSelector& words) const {
    if (ZType* object = orv::detail::instanceOf(*this)) return object->scanEnum(enumType, words);
    return orv::scanEnum(type, enumType, words);
}
ZSelector ZTypedPtr::outputEnum(const ZSelector& enumType, int flags) const {
    if (ZType* object = orv::detail::instanceOf(*this)) return object->outputEnum(enumType, flags);
    return orv::outputEnum(type, enumType, flags);
}
