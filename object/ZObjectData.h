#pragma once

#include "core/ZSelector.h"
#include "object/ZObject.h"

namespace orv {

/// The private part of an object.
struct ObjectData {
    ZSelector selector;
    ZSelector typeName; ///< used while the object has no metatype
    bool isMetaType = false;
};

/// Bytes that a private part takes in an internal block: parts stand at multiples of 16.
constexpr int internalRoom(size_t bytes) { return int((bytes + 15) & ~size_t(15)); }

} // namespace orv
