#pragma once

#include "core/loadSteps.h"

class ZCoreLib;

/// What single load steps do to the start and stop object.
struct ZCoreLibSteps {
    static void createCoreLock();
    static void destroyCoreLock();
    /// Keeps the plugin path and interns the client's name.
    static void setNames(ZCoreLib& core, const char* pluginPath);
    static void clearNames(ZCoreLib& core);
    /// Gives the process its two names.
    static void setProductNames();
    static void publishApplicationMode(const ZCoreLib& core);
};
