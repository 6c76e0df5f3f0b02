#pragma once

#include "core/ZSelector.h"
#include "object/forward.h"

/// What instances and typed pointers answer about enumerations, by the type alone, which may be null.
namespace orv {

/// The enumeration of that name as the type finds it: nested in it, in a base, or in an outer type, else one of its
/// package or of all. Null if there is none.
ORV_API ZEnumType* findEnum(const ZMetaType* type, const ZSelector& name);
/// The value of "Enum::Item", or of an item of any enumeration nested in the type or its bases. False, with `value` as
/// it was, if there is none.
ORV_API bool enumValue(const ZMetaType* type, const ZSelector& path, int& value);
/// See `ZEnum::name`, `scan` and `output`; empty, or 0, without the enumeration.
ORV_API ZSelector enumName(const ZMetaType* type, const ZSelector& name, int value);
ORV_API int scanEnum(const ZMetaType* type, const ZSelector& name, const ZSelector& words);
ORV_API ZSelector outputEnum(const ZMetaType* type, const ZSelector& name, int flags);

} // namespace orv
