#pragma once

#include "toolkit/types.h"

namespace toolkit {

/// How many allocations of the running thread found no memory. Whoever is about to keep that something isn't there
/// compares the number with that before the search: one that ran out of memory doesn't know.
ORV_API uint refusedAllocations();

} // namespace toolkit
