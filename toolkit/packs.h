#pragma once

#include "toolkit/types.h"

/// Packs: groups of services that are loaded and unloaded by name, such as "pack/datapack". Loading and unloading
/// belong to the main thread, since a pack may take its time to open; the rest is safe from any thread.
namespace toolkit {

/// A pack that can be loaded. `open` may refuse; `close` undoes it.
struct Pack {
    const char* name;
    const void* services; ///< the pack's table, known to whoever uses the pack
    bool (*open)();
    void (*close)();
};

class DataPack;

/// What "pack/datapack" offers: the stores under the ordered maps.
struct DataPackServices {
    DataPack* (*make)(uint32_t trees, size_t entrySize, uint32_t growth);
};

/// The handle of a loaded pack; null for a name that isn't there, or a pack that refuses. A pack that is loaded already
/// gives the same handle and counts.
ORV_API void* loadPack(const char* name);
/// Gives up one load; with the last the pack closes. Null and unknown handles do nothing.
ORV_API void unloadPack(void* handle);
/// The table of a loaded pack; null for null and for a pack that isn't loaded.
ORV_API const void* packServices(void* handle);
/// How often a pack is loaded now; 0 for a name that isn't there.
ORV_API int packLoads(const char* name);
/// Adds a pack of the caller's, which has to outlive its use. False if the name is taken or there is no room.
ORV_API bool addPack(const Pack& pack);

} // namespace toolkit
