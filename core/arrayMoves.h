#pragma once

#include "toolkit/types.h"

/// What arrays of every kind do alike, whatever knows their items: growth, and moves by bytes.
namespace orv::detail {

inline constexpr uint arrayLimit = 0x7FFFFFFF; ///< positions are also told as int

/// The room for `more` items beyond `count`, of `capacity` that don't suffice. `expand` negative: a multiple of that
/// many items; positive: percent of the items in use on top; 0: as many again. At least what is needed, which may be
/// above `arrayLimit`.
ORV_API ularge grownCapacity(uint count, uint capacity, int16 expand, ularge more);
/// Records of one size: the one at `middle` comes to `first`, those in front of it behind the others.
ORV_API void rotateBytes(void* items, size_t size, size_t first, size_t middle, size_t last);

} // namespace orv::detail
