#pragma once

#include "toolkit/types.h"

class ZCoreLib;

namespace orv {

/// What a load or unload knows while it runs.
struct LoadRun {
    ZCoreLib* core;
    const char* pluginPath;
    bool restricted;
};

/// One step of the start or stop of the library.
struct LoadStep {
    enum When : byte {
        Always,
        Locking,      ///< only where locking is allowed
        Application,  ///< only in application mode
        Both,         ///< only with locking and in application mode
        Unrestricted, ///< only without `restrictedLoad`
        Restricted,
        NotMinimal,
    };
    const char* name;
    When when;
    void (*run)(LoadRun& run);
};

/// The steps in the order in which they run. `coreSteps` is where a load that isn't full stops.
struct LoadOrder {
    const LoadStep* steps;
    int count;
    int coreSteps;
};
ORV_API LoadOrder loadOrder();
ORV_API LoadOrder unloadOrder();
/// Called with the name of each step that runs; null for none.
ORV_API void traceLoad(void (*step)(const char* name));

} // namespace orv
