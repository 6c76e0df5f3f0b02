#pragma once

#include "object/typeGeneration.h"

namespace orv {

/// To be called after another table of methods or properties, or another list of bases, was published and before the
/// old one is retired: what was looked up in them is looked up anew. Building a table at the first demand is no change.
inline void tablesChanged() { typesChanged(); }

} // namespace orv
