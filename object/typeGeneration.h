#pragma once

#include "toolkit/atomic.h"

/// What holds what it looked up in types keeps this number with it, and looks up anew when it has changed.
namespace orv {

/// From 1. It is read on every lookup and written seldom, so it stands alone in its cache line.
struct alignas(64) TypeGeneration {
    ularge now = 1;
    ularge removals = 1; ///< how often types have gone
};
extern ORV_API TypeGeneration typeGenerationCell;

inline ularge typeGeneration() { return toolkit::loadAcquire(typeGenerationCell.now); }
/// To be called by whoever has changed, added or removed types, or published another table of one from which others
/// inherit: after the change is visible, and before what was replaced is retired.
inline void typesChanged() { toolkit::addFetch(typeGenerationCell.now, 1); }

/// What holds pointers to types compares this number.
inline ularge typeRemovals() { return toolkit::loadAcquire(typeGenerationCell.removals); }
/// To be called when types can't be found any more, and before they end.
inline void typesRemoved() {
    toolkit::addFetch(typeGenerationCell.removals, 1);
    typesChanged();
}

} // namespace orv
