#pragma once

#include "object/ZMetaType.h"

namespace orv::detail {

/// The type under which a variant holds values of a type: without references and qualifiers, so that equal values have
/// equal types. Null without memory.
ZMetaType* variantType(ZMetaType* type);

/// The type of what stands at the address of a value held by a variant: of a pointer's target, else the type itself.
/// Null for pointers to pointers and to anything.
ZMetaType* pointedType(ZMetaType* type);

/// Whether values of the type are pointers to an instance of a `ZType` class.
bool refersToInstance(const ZMetaType* type);

} // namespace orv::detail
