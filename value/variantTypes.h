#pragma once

#include "object/ZMetaType.h"

namespace orv::detail {

/// The type under which a variant holds values of a type: without references and qualifiers, so that equal values have
/// equal types. Null without memory.
ZMetaType* variantType(ZMetaType* type);

/// The type of what stands at the address of a value held by a variant: of a pointer's target, else the type itself.
/// Null for pointers to pointers and to anything.
ZMetaType* pointedType(ZMetaType* type);

/// The number that a value of an enum type stands for; enums have 1, 2, 4 or 8 bytes.
int enumNumber(const ZMetaType* type, const void* value);
/// Writes it to `type->byteSize()` bytes.
bool setEnumNumber(const ZMetaType* type, void* value, large number);

/// Whether the operations of object/kindValues.h hold for values of the type: enums may have any size.
inline bool hasPlainKind(const ZMetaType* type) {
    return type->kind() <= ZMetaType::String && (type->kind() != ZMetaType::Enum || type->byteSize() == sizeof(int));
}

/// Whether values of the type are pointers to an instance of a `ZType` class.
bool refersToInstance(const ZMetaType* type);

} // namespace orv::detail
