#include "object/ZEnumType.h"
#include "object/ZMetaTypeData.h"

// The enumerations nested in a type, and the steps of an enumeration, asked of a type that may be none: it has no
// names, and each value stays where it is.

ZEnumType* ZMetaType::enumType() const {
    const ZMetaType* data = getDataType();
    return data == this ? nullptr : data->enumType();
}

ZCompositeType* ZMetaType::compositeType() const {
    const ZMetaType* data = getDataType();
    return data == this ? nullptr : data->compositeType();
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

bool ZMetaType::collectEnums(ZArrayT<ZEnumType*>& enums) const {
    const uint before = enums.count();
    bool whole = true;
    auto collect = [&](const ZMetaType* type) {
        for (const auto& entry : type->getTypes())
            if (ZEnumType* items = entry.value()->enumType(); items && whole) whole = enums.append(items);
        return whole;
    };
    if (collect(this)) orv::eachAncestor(this, [&](const orv::Ancestor& base) { return collect(base.type); });
    if (!whole) enums.remove(before, enums.count() - before);
    return whole;
}
