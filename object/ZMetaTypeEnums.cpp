#include "object/ZEnumType.h"

// The steps of an enumeration, asked of a type that may be none: it has no names, and each value stays where it is.

ZEnumType* ZMetaType::enumType() const {
    const ZMetaType* data = getDataType();
    return data == this ? nullptr : data->enumType();
}

ZSelector ZMetaType::nextEnumName(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const ZEnumType* items = enumType();
    return items ? items->data().nextName(name) : ZSelector();
}
ZSelector ZMetaType::prevEnumName(const ZSelector& name) const {
    toolkit::EpochGuard guard;
    const ZEnumType* items = enumType();
    return items ? items->data().prevName(name) : ZSelector();
}
int ZMetaType::nextEnumValue(int value) const {
    toolkit::EpochGuard guard;
    const ZEnumType* items = enumType();
    return items ? items->data().nextValue(value) : value;
}
int ZMetaType::prevEnumValue(int value) const {
    toolkit::EpochGuard guard;
    const ZEnumType* items = enumType();
    return items ? items->data().prevValue(value) : value;
}
