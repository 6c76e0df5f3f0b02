#include "object/propertyContainers.h"

#include "object/ZMetaType.h"
#include "object/ztype.h"
#include "value/ZVArray.h"
#include "value/ZVHashSet.h"
#include "value/ZVKeyMap.h"
#include "value/ZVSelectMap.h"

namespace orv {

namespace {
ContainerTypes::Kind containerKind(const ZMetaType* type) {
    if (!type) return ContainerTypes::None;
    if (type == ztype<ZVArray>()) return ContainerTypes::Array;
    if (type == ztype<ZVHashSet>()) return ContainerTypes::HashSet;
    if (type == ztype<ZVSelectMap>()) return ContainerTypes::SelectMap;
    if (type == ztype<ZVKeyMap>()) return ContainerTypes::KeyMap;
    return ContainerTypes::None;
}

/// The container that a variant refers to; null while there is none.
template <class T> const T* in(const ZVariant& value) { return static_cast<const T*>(value.getPtr()); }

/// Puts a new container into the variant.
template <class T, class... A> bool put(ZVariant& value, const A&... types) {
    ZFailGuard guard;
    T made(types...);
    ZVariant fresh(ztype<T>(), &made);
    if (guard.rose() || fresh.isNull()) {
        guard.forget();
        return false;
    }
    value = std::move(fresh);
    return true;
}
} // namespace

bool containerTypes(const ZVariant& value, ContainerTypes& types) {
    types = {};
    types.kind = containerKind(value.mainType());
    const void* there = types.kind == ContainerTypes::None ? nullptr : value.getPtr();
    switch (types.kind) {
    case ContainerTypes::Array:
        if (there) types.item = in<ZVArray>(value)->getValueType();
        break;
    case ContainerTypes::HashSet:
        if (there) types.item = in<ZVHashSet>(value)->getValueType();
        break;
    case ContainerTypes::SelectMap:
        types.index = ztype<ZSelector>();
        if (there) types.item = in<ZVSelectMap>(value)->getValueType();
        break;
    case ContainerTypes::KeyMap:
        if (there) {
            types.index = in<ZVKeyMap>(value)->getKeyType();
            types.item = in<ZVKeyMap>(value)->getValueType();
        }
        break;
    default:
        return false;
    }
    return true;
}

bool makeContainer(ZVariant& value, ZMetaType* item, ZMetaType* index) {
    ContainerTypes types;
    if (!containerTypes(value, types) || (value.getPtr() && types.item)) return true;
    switch (types.kind) {
    case ContainerTypes::Array:
        return put<ZVArray>(value, item);
    case ContainerTypes::HashSet:
        return put<ZVHashSet>(value, item);
    case ContainerTypes::SelectMap:
        return put<ZVSelectMap>(value, item);
    default:
        return put<ZVKeyMap>(value, index, item);
    }
}

} // namespace orv
