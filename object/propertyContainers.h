#pragma once

#include "toolkit/types.h"
#include "value/forward.h"

class ZMetaType;

/// What properties have to know of the containers that are typed at run time.
namespace orv {

struct ContainerTypes {
    enum Kind : byte { None, Array, HashSet, SelectMap, KeyMap };

    Kind kind = None;
    ZMetaType* item = nullptr;  ///< of the elements; null where the container has none yet
    ZMetaType* index = nullptr; ///< of the keys; null for arrays and sets

    /// The flags that such a value brings to a property that holds it itself.
    uint flags() const { return kind == None ? 0 : kind == Array || kind == HashSet ? 0xC000 : 0x4000; }
};

/// Whether the type of the value is one of these containers; then tells its types, as far as there is a container.
ORV_API bool containerTypes(const ZVariant& value, ContainerTypes& types);
/// Puts an empty container of the types where the value's type is one of these and there is none. False without memory.
ORV_API bool makeContainer(ZVariant& value, ZMetaType* item, ZMetaType* index);

} // namespace orv
