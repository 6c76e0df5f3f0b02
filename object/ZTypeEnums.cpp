#include "object/enumAccess.h"

#include "object/ZEnumType.h"
#include "object/ZMetaTypeData.h"
#include "value/ZTypedPtr.h"

// The enumerations that a type knows: nested in it or in one of its bases, or found by name from there.

namespace orv {

ZEnumType* findEnum(const ZMetaType* type, const ZSelector& name) {
    if (name.isEmpty()) return nullptr;
    // What isn't a plain name might make a type.
    ZMetaType* found = type && !name.specialChars() ? type->findType(name) : ZMetaType::findExisting(name);
    if (type && !found)
        eachAncestor(type, [&](const Ancestor& base) {
            const ZMetaType::Types nested = base.type->getTypes();
            const auto* entry = nested.get(name);
            found = entry ? entry->get() : nullptr;
            return !found;
        });
    return found ? found->enumType() : nullptr;
}

bool enumValue(const ZMetaType* type, const ZSelector& path, int& value) {
    const ZSelector space = path.nameSpace();
    if (!space.isEmpty()) {
        const ZEnumType* items = findEnum(type, space);
        return items ? items->value(path.baseName(), &value) : ZEnum::enumValue(path, &value);
    }
    ZArrayT<ZEnumType*> nested;
    if (!type || !type->collectEnums(nested)) return false;
    for (const ZEnumType* items : nested)
        if (items->value(path, &value)) return true;
    return false;
}

ZSelector enumName(const ZMetaType* type, const ZSelector& name, int value) {
    const ZEnumType* items = findEnum(type, name);
    return items ? items->name(value) : ZSelector();
}

int scanEnum(const ZMetaType* type, const ZSelector& name, const ZSelector& words) {
    toolkit::EpochGuard guard;
    const ZEnumType* items = findEnum(type, name);
    return items ? items->data().scan(words, false) : 0;
}

ZSelector outputEnum(const ZMetaType* type, const ZSelector& name, int flags) {
    toolkit::EpochGuard guard;
    const ZEnumType* items = findEnum(type, name);
    return items ? items->data().output(flags, false) : ZSelector();
}

} // namespace orv

bool ZType::enumValue(const ZSelector& path, int& value) const { return orv::enumValue(metaType, path, value); }
ZSelector ZType::enumName(const ZSelector& enumType, int value) const {
    return orv::enumName(metaType, enumType, value);
}
ZEnumType* ZType::findEnum(const ZSelector& name) const { return orv::findEnum(metaType, name); }
int ZType::scanEnum(const ZSelector& enumType, const ZSelector& words) const {
    return orv::scanEnum(metaType, enumType, words);
}
ZSelector ZType::outputEnum(const ZSelector& enumType, int flags) const {
    return orv::outputEnum(metaType, enumType, flags);
}
