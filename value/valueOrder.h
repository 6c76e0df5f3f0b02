#pragma once

#include "object/forward.h"

/// Values of any type as keys, over their addresses: what containers and variants sort and find by.
namespace orv {

/// A total order of two values of a type: that of `ZMetaType::compareInstance`, but for reals (-0 equals 0,
/// not-a-number comes last) and for types without an order of their own, whose values are ordered by their bytes. Null
/// comes last.
ORV_API int orderValues(const ZMetaType* type, const void* a, const void* b);
/// Equal for values that `orderValues` finds equal: of a type's hash method, if it has one, else of the value's bytes;
/// all values of a type that has an order but no hash method hash alike. 0 for null.
ORV_API uint hashValue(const ZMetaType* type, const void* value);

} // namespace orv
