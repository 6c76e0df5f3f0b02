#pragma once

#include "object/ZMetaType.h"
#include "value/ZTypedPtr.h"
#include "value/variantTypes.h"

namespace orv::detail {

/// The instance of a `ZType` class that a typed pointer leads to; null for other values.
inline ZType* instanceOf(const ZTypedPtr& at) {
    if (!at.type || !at.instance) return nullptr;
    return at.type->holdsZType() || refersToInstance(at.type) ? static_cast<ZType*>(at.instance) : nullptr;
}

} // namespace orv::detail
