#pragma once

#include "text/search.h"

// The cost of making one text from another by adding, removing and exchanging code points.
namespace orv::detail {

/// At most 2^31 - 1; -1 without memory. Costs below 0 count as 0.
template <class C> int distanceOf(Run<C> a, Run<C> b, int gap, int change);
/// Whether the distance is below `limit`; false without memory.
template <class C> bool distanceBelow(Run<C> a, Run<C> b, int gap, int change, int limit);

#define ORV_DISTANCE(C)                                                                                                \
    extern template int distanceOf(Run<C>, Run<C>, int, int);                                                          \
    extern template bool distanceBelow(Run<C>, Run<C>, int, int, int);
ORV_DISTANCE(char)
ORV_DISTANCE(wchar)
ORV_DISTANCE(ichar)
#undef ORV_DISTANCE

} // namespace orv::detail
