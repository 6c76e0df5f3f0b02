#pragma once

#include "toolkit/types.h"

/// What the rest of the library asks of the start and stop object without including it.
namespace orv {

struct CoreState {
    int instances = 0;                ///< counted `ZCoreLib` objects
    uint mainThread = 0;              ///< the number of the thread that made the first of these, 0 while there is none
    bool bound = false;               ///< the layer below is up
    bool allowLocking = true;         ///< of the current core library
    bool coreLoaded = false;          ///< a full load has ended
    bool notificationsClosed = false; ///< first closing mark
    bool typesClosed = false;         ///< second closing mark
};
/// Written on the main thread only and read on any, so by `toolkit::store` and `toolkit::load`.
extern ORV_API CoreState coreState;

} // namespace orv
