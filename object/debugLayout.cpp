#include "core/debugLayout.h"

#include "object/ZMetaTypeData.h"
#include "object/ZObjectData.h"
#include "value/ZVariant.h"

#include <cstddef>

// The classes have virtual functions or a base with data, but none of these bases is virtual.
#pragma GCC diagnostic ignored "-Winvalid-offsetof"

namespace orv::detail {

/// A friend of those whose protected members it tells.
struct ObjectLayout {
    static constexpr size_t typeOfInstance = offsetof(ZType, metaType), objectData = offsetof(ZObject, priv);
    static constexpr size_t typeData = offsetof(ZMetaType, own), mainType = offsetof(ZMetaType, mainType),
                            kind = offsetof(ZMetaType, typeKind), size = offsetof(ZMetaType, typeSize);
    static constexpr size_t variantValue = offsetof(ZVariant, data);
    static constexpr ularge variantTags = ZVariant::tagMask, variantInside = ZVariant::inside;
};

} // namespace orv::detail

using orv::detail::ObjectLayout;

const orv::detail::DebugRow orv_debug_object[] = {
    {"type.metaType", nullptr, ObjectLayout::typeOfInstance},
    {"object.data", nullptr, ObjectLayout::objectData},
    {"object.selector", nullptr, offsetof(orv::ObjectData, selector)},
    {"metatype.data", nullptr, ObjectLayout::typeData},
    {"metatype.mainType", nullptr, ObjectLayout::mainType},
    {"metatype.kind", nullptr, ObjectLayout::kind},
    {"metatype.size", nullptr, ObjectLayout::size},
    {"metatype.name", nullptr, offsetof(orv::MetaTypeData, name)},
    {"variant.value", nullptr, ObjectLayout::variantValue},
    {"variant.tags", nullptr, ObjectLayout::variantTags},
    {"variant.inside", nullptr, ObjectLayout::variantInside},
    {},
};
