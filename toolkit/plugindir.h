#pragma once

#include "toolkit/types.h"

/// The directory of what is provided under each kind, such as "stream" or "function". Safe from any thread; entries
/// stay in the order in which they were added.
namespace toolkit {

struct PluginEntry {
    PluginEntry* next;
    const char* name;
    const void* provider; ///< what the owner registered; not owned
    const void* owner;
};

/// The first entry of a kind; null for one that isn't known. Entries stay valid until their owner removes them: a
/// walk and a removal by another thread have to be kept apart by the callers.
ORV_API const PluginEntry* pluginEntries(const char* kind);
/// Adds a provider; texts are copied. False if there is no memory, for an empty name, and if the
/// kind holds that name already.
ORV_API bool registerPlugin(const char* kind, const char* name, const void* provider, const void* owner);
/// Removes all that an owner has registered.
ORV_API void removePlugins(const void* owner);
/// Removes everything.
ORV_API void clearPlugins();

} // namespace toolkit
