#pragma once

#include "toolkit/atomic.h"

/// One count for all types: how often a published table of methods or properties, a list of bases or a template type
/// was replaced. What a cache took out of such tables is good as long as the count is what it was before the lookup.
/// Building a table at the first demand is no change: whoever looked before got it built.
namespace orv {

/// On a line of its own: everybody reads it, hardly anybody writes it.
struct alignas(64) TableGeneration {
    ularge now = 1;
};
extern ORV_API TableGeneration tableGenerationCell;

inline ularge tableGeneration() { return toolkit::loadAcquire(tableGenerationCell.now); }
/// To be called after another table was published and before the old one is retired.
inline void tablesChanged() { toolkit::addFetch(tableGenerationCell.now, 1ull); }

} // namespace orv
