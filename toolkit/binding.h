#pragma once

#include "toolkit/environment.h"
#include "toolkit/memory.h"
#include "toolkit/plugindir.h"
#include "toolkit/types.h"

/// How the library finds the layer below it: two named entries fill a configuration record, whose start entry gives the
/// root table. Both entries are built in; the tables are for whoever looks a service up at run time, while the library
/// itself calls the functions directly.
namespace toolkit {

/// What the start of the layer is told, and what it answers; 96 bytes.
struct ConfigRecord {
    const char* path; ///< folder of the layer
    const char* clientName;
    uint32_t numbers[3];
    uint64_t limits[2];
    byte unused[24];
    int (*start)(ConfigRecord* record, const struct RootTable** root, bool option);
    void (*stop)();
    byte reserved[8];
};
static_assert(sizeof(ConfigRecord) == 96 && offsetof(ConfigRecord, numbers) == 16 &&
              offsetof(ConfigRecord, limits) == 32 && offsetof(ConfigRecord, start) == 72 &&
              offsetof(ConfigRecord, stop) == 80);

struct ModuleServices {
    void* (*loadPack)(void* context, const char* name);
    void (*unloadPack)(void* pack);
    void* (*allocProvider)(size_t size, size_t alignment, uint flags);
};
struct SystemServices {
    large (*clock)();
    int (*increment)(int& cell);
    int (*decrement)(int& cell);
    void (*userInformation)(const char* user, const char* information);
    void (*setCrashCallback)(void (*callback)(int signal));
    void (*crashLog)(const char* text);
    void (*memoryState)(const char* label);
    void (*systemVersion)(char* out, size_t room);
    void (*drain)();
    TLockId (*createLock)(bool spinning, bool recursive);
    bool (*destroyLock)(TLockId lock);
    bool (*lock)(TLockId lock);
    bool (*unlock)(TLockId lock);
    char* (*loadUser)(const char* name, size_t& length);
    bool (*storeUser)(const char* name, const char* text, size_t length);
};
struct MemoryServices {
    void* (*alloc)(size_t size);
    void* (*allocZeroed)(size_t size);
    void* (*realloc)(void* block, size_t size);
    void (*free)(void* block);
    void (*setDebug)(bool on);
};
struct StringServices {
    size_t (*base64Encode)(const void* data, size_t length, char* out);
    size_t (*base64Decode)(const char* text, size_t length, byte* out);
    size_t (*hexEncode)(const void* data, size_t length, char* out);
};
struct RuntimeServices {
    Environment* (*environment)();
    int (*getConfig)(int slot);
    void (*setConfig)(int slot, int value);
    void (*purgePools)();
    unsigned (*hashData)(unsigned method, const void* data, size_t length, unsigned limit);
};
struct StreamServices {
    int (*executablePath)(char* out, int room);
};
struct SortServices {
    void (*sort)(void* base, size_t count, size_t size, int (*compare)(const void*, const void*));
};
struct PluginServices {
    const PluginEntry* (*entries)(const char* kind);
    bool (*add)(const char* kind, const char* name, const void* provider, const void* owner);
    void (*remove)(const void* owner);
};

/// Entry 0 isn't used.
struct RootTable {
    const void* unused;
    const ModuleServices* module;
    const SystemServices* system;
    const MemoryServices* memory;
    const StringServices* string;
    const RuntimeServices* runtime;
    const StreamServices* stream;
    const SortServices* sort;
    const PluginServices* plugins;
};

/// The status of a start that failed.
inline constexpr int startFailed = 2;
inline constexpr size_t pathRoom = 1024;

/// Derives the root folder from the path of an executable: the folder it lies in, less a trailing "orv", then less
/// "tools", "lumbra" and "hule" in this order, each where the path ends in it. Works in place; answers the length.
ORV_API size_t rootFolder(char* path);
/// Writes the two library files and the folder of the layer under a root folder, each to `pathRoom` bytes. False if one
/// doesn't fit.
ORV_API bool layerPaths(const char* root, char* mainFile, char* systemFile, char* folder);
/// The path of the running executable, terminated; its length, or 0 if it isn't known or doesn't fit.
ORV_API int executablePath(char* out, int room);

/// Finds, fills and starts the layer. `startFailed` if it can't be had: then nothing is left open.
ORV_API int bind(const char* clientName, bool option);
/// Stops what `bind` started; harmless without.
ORV_API void unbind();
/// The root table while the layer is up, else null.
ORV_API const RootTable* rootTable();

} // namespace toolkit
