#include "toolkit/binding.h"

#include "toolkit/clock.h"
#include "toolkit/coding.h"
#include "toolkit/hash.h"
#include "toolkit/lock.h"
#include "toolkit/packs.h"
#include "toolkit/places.h"
#include "toolkit/system.h"
#include "toolkit/userstore.h"

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <unistd.h>

namespace toolkit {

namespace {
constexpr ModuleServices moduleServices{
    .loadPack = [](void*, const char* name) { return loadPack(name); },
    .unloadPack = unloadPack,
    .allocProvider = [](size_t size, size_t alignment,
                        uint) { return alignment <= 16 ? allocZeroedBlock(size) : nullptr; },
};
constexpr SystemServices systemServices{
    .clock = processClock,
    .increment = increment,
    .decrement = decrement,
    .userInformation = userInformation,
    .setCrashCallback = [](CrashCallback callback) { setCrashCallback(callback); },
    .crashLog = crashLog,
    .memoryState = memoryState,
    .systemVersion = systemVersion,
    .drain = drain,
    .createLock = createLock,
    .destroyLock = [](TLockId lock) { return destroyLock(lock, true); },
    .lock = lockAlone,
    .unlock = unlock,
    .loadUser = loadUserText,
    .storeUser = storeUserText,
};
constexpr MemoryServices memoryServices{
    .alloc = allocBlock,
    .allocZeroed = allocZeroedBlock,
    .realloc = reallocBlock,
    .free = freeBlock,
    .setDebug = setMemoryDebug,
};
constexpr StringServices stringServices{base64Encode, base64Decode, hexEncode};
constexpr RuntimeServices runtimeServices{environment, getConfig, setConfig, purgePools, hashData};
constexpr StreamServices streamServices{executablePath};
constexpr SortServices sortServices{
    [](void* base, size_t count, size_t size, int (*compare)(const void*, const void*)) {
        std::qsort(base, count, size, compare);
    }};
constexpr PluginServices pluginServices{pluginEntries, registerPlugin, removePlugins};

constexpr RootTable table{nullptr,          &moduleServices, &systemServices, &memoryServices, &stringServices,
                          &runtimeServices, &streamServices, &sortServices,   &pluginServices};

ConfigRecord* record = nullptr;
char layerFolder[pathRoom];
char* layerClient = nullptr; // a copy, since the client's own text may go first
const RootTable* root = nullptr;

int startLayer(ConfigRecord*, const RootTable** out, bool) {
    if (!openEnvironment()) return startFailed;
    *out = &table;
    return 0;
}
void stopLayer() {
    if (environment()->clearTemporary)
        cleanTemporary();
    else
        forgetTemporary();
    clearPlugins();
    closeEnvironment();
}

/// The entry of the first library: makes the layer's start known.
void wbnGetMainLibrary(ConfigRecord* config) { config->start = startLayer; }
/// The entry of the second: makes its stop known.
void wbnGetSystemLibrary(ConfigRecord* config) { config->stop = stopLayer; }

using LibraryEntry = void (*)(ConfigRecord*);
/// Looks an entry of one of the layer's files up. Both files are part of this library.
LibraryEntry entryOf(const char* name) {
    if (std::strcmp(name, "wbnGetMainLibrary") == 0) return wbnGetMainLibrary;
    if (std::strcmp(name, "wbnGetSystemLibrary") == 0) return wbnGetSystemLibrary;
    return nullptr;
}

/// Cuts `name` and the separator in front of it off the end; one trailing backslash is allowed.
void stripFolder(char* path, const char* name) {
    size_t length = std::strlen(path), size = std::strlen(name), end = length;
    if (end && path[end - 1] == '\\') --end;
    if (end <= size || std::memcmp(path + end - size, name, size) != 0) return;
    char separator = path[end - size - 1];
    if (separator == '/' || separator == '\\') path[end - size - 1] = 0;
}
} // namespace

size_t rootFolder(char* path) {
    char* cut = std::strrchr(path, '\\');
    if (!cut) cut = std::strrchr(path, '/');
    if (cut) *cut = 0;
    size_t length = std::strlen(path);
    if (length >= 4 && (std::strcmp(path + length - 4, "/orv") == 0 || std::strcmp(path + length - 4, "\\orv") == 0))
        path[length - 4] = 0;
    for (const char* folder : {"tools", "lumbra", "hule"}) stripFolder(path, folder);
    return std::strlen(path);
}

bool layerPaths(const char* rootPath, char* mainFile, char* systemFile, char* folder) {
    size_t length = std::strlen(rootPath);
    const char* separator = length && rootPath[length - 1] == '\\' ? "" : "\\";
    auto join = [&](char* out, const char* middle, const char* rest) {
        size_t middleLength = std::strlen(middle), restLength = std::strlen(rest);
        if (length + middleLength + restLength >= pathRoom) return false;
        std::memcpy(out, rootPath, length);
        std::memcpy(out + length, middle, middleLength);
        std::memcpy(out + length + middleLength, rest, restLength + 1);
        return true;
    };
    return join(mainFile, separator, "hule\\wbn\\wbncore.dll") &&
           join(systemFile, separator, "hule\\wbn\\wbnsys.dll") && join(folder, "", "/hule/wbn");
}

int executablePath(char* out, int room) {
    if (room < 2) return 0;
    ssize_t length = readlink("/proc/self/exe", out, size_t(room));
    if (length <= 0 || length >= room) return 0;
    out[length] = 0;
    return int(length);
}

int bind(const char* clientName, bool option) {
    if (root) return 0;
    char path[pathRoom], mainFile[pathRoom], systemFile[pathRoom];
    if (!executablePath(path, pathRoom)) path[0] = 0;
    rootFolder(path);
    if (!layerPaths(path, mainFile, systemFile, layerFolder)) return startFailed;
    auto config = static_cast<ConfigRecord*>(allocZeroedBlock(sizeof(ConfigRecord)));
    LibraryEntry first = entryOf("wbnGetMainLibrary"), second = entryOf("wbnGetSystemLibrary");
    setText(layerClient, clientName);
    int status = startFailed;
    if (config && first && second && (layerClient || !clientName)) {
        config->path = layerFolder;
        config->clientName = layerClient;
        config->numbers[0] = 0x40000;
        config->numbers[1] = 0x20000;
        config->numbers[2] = 90;
        config->limits[0] = 0x80000000u;
        config->limits[1] = 0x400000000u;
        first(config);
        second(config);
        status = config->start(config, &root, option);
    }
    if (status == startFailed) {
        freeBlock(config);
        setText(layerClient, nullptr);
        root = nullptr;
        return status;
    }
    record = config;
    return status;
}

void unbind() {
    if (!record) return;
    record->stop();
    freeBlock(record);
    setText(layerClient, nullptr);
    record = nullptr;
    root = nullptr;
}

const RootTable* rootTable() { return root; }

} // namespace toolkit
