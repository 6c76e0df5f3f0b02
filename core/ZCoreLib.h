#pragma once

#include "core/ZArrayT.h"
#include "core/ZSelector.h"
#include "core/state.h"
#include "text/ZString.h"

class ZColorContext;

/// Brings the library up and down. An application makes one of these and destroys it at the end; a second one while the
/// first is alive only counts. The first binds the layer below and, in most forms, loads every subsystem in a fixed
/// order; destroying the last unloads them in nearly reverse order. Afterwards another first one may be made: nothing
/// of the earlier run is left. Construction, `load`, `unload` and destruction belong to the main thread.
class ORV_API ZCoreLib {
public:
    /// What a splash screen offers: three functions in this order.
    struct SplashTable {
        void (*open)();
        void (*text)(const char* text);
        void (*complete)();
    };
    using CrashCallback = void (*)(int signal);

    // Life

    /// Loads everything. `minimalLoad` leaves out global resources and the type name map; `restrictedLoad` keeps off
    /// the user's files; without `allowLocking` there are no locks and no threads. `pluginPath` may be null.
    ZCoreLib(const char* pluginPath, const char* clientName, bool toolkitOption, bool minimalLoad, bool restrictedLoad,
             bool allowLocking);
    /// Binds, and loads everything only with `loadNow`.
    ZCoreLib(const char* clientName, bool toolkitOption, bool applicationMode, bool loadNow);
    /// A passive instance: binds nothing, isn't counted and never becomes the current one.
    ZCoreLib();
    ~ZCoreLib();
    ZCoreLib(const ZCoreLib&) = delete;
    ZCoreLib& operator=(const ZCoreLib&) = delete;

    /// Opens the subsystems, or with `full` false only the core of them, up to the locks. A later full load completes a
    /// core that is open; a load of what is loaded does nothing. Does nothing while the library isn't `valid`.
    void load(const char* pluginPath, bool full, bool restrictedLoad);
    /// Closes what was opened; harmless if nothing was.
    void unload();
    /// A full load of the current instance with that plugin path, if there is one.
    static void loadCore(const char* pluginPath);

    /// The instance made last that is still there; null after the last has gone.
    static ZCoreLib* coreLib();
    /// Whether the layer below could be bound. False means that no subsystem is open and only this class may be used.
    static bool valid();
    /// Whether the running thread is the main thread: the one that made the first of the instances that are alive.
    static bool isMainThread();
    /// The table of service tables; null while not bound.
    static const void* main();

    // Packs and plugins

    /// Loads a pack by its name; the handle, or null.
    static void* load(const ZSelector& name);
    static void unload(void* pack);
    /// The names that the plugin directory holds under a kind, in its order; each as "kind/name" with `qualified`.
    /// Empty for an unknown kind, and without memory.
    static ZArrayT<ZSelector> getPlugins(const ZSelector& kind, bool qualified);
    static ZVArray plugins(const ZSelector& kind, bool qualified);

    // Switches of the current instance; while there is none, locking is allowed and the others are off

    static bool allowLocking();
    static bool minimalLoad();
    static bool cachedIcons();
    static void setCachedIcons(bool on);
    static bool applicationMode();
    static void setApplicationMode(bool on);
    /// Four numbers at the application's disposal; `index` 0 to 3, else 0 and no effect.
    static int getValue(int index);
    static void setValue(int index, int value);
    /// Numbered settings of the process; 0 while not bound. Slot 1 not 0: nothing is to be saved. Slot 2: application
    /// mode.
    static int getConfig(int slot);
    static void setConfig(int slot, int value);
    static ZColorContext* defaultCMS();
    static void setDefaultCMS(ZColorContext* context);

    // Environment

    static ZSelector getAppName();
    /// Whether files of the user may be used.
    static bool allowUserPath();
    static void applicationLoaded();
    /// Whether temporary files go when the library stops, as they do at first; else they stay.
    static void clearTempOnExit(bool on);
    /// Notes the present time as that of the newest event.
    static void captureEventTime();
    /// Names whoever works with the process.
    void selectUserInfo(const ZString& user, const ZString& info);
    static void setUserInfo(const ZString& user, const ZString& info);

    // Core lock: one recursive lock for the whole library; nothing when locking isn't allowed

    static void lock();
    static void unlock();

    // Splash screen: does nothing while no table is selected

    /// The table has to outlive its use; null for none.
    static void selectSplash(const SplashTable* table);
    static void openSplash();
    static void splashText(const ZString& text);
    static void splashText(const char* text);
    /// Calls the complete function and forgets the table.
    static void completeSplash();

    // Cache settings: 128, 80, 100 and 0x100000 where nothing else is configured

    /// False when there is no main configuration; the defaults are stored all the same.
    static bool loadCacheOptions(const ZSelector& section, const ZSelector& key, int& defCount, int& autoHash,
                                 int& maxNum, int& maxCost);
    static bool loadCacheOptions(const ZSelector& key, int& defCount, int& autoHash, int& maxNum, int& maxCost);

    // Product

    static const char* productLongName();
    static const char* versionToken();
    static int productVersion();
    static int storageVersion();

    // Stable identifiers, made once and kept in the user's store

    /// Makes `data` unreadable with a key; answers a counted block, its size the length, or null.
    using Coder = void* (*)(const ZSelector& coder, const void* key, size_t keyLength, const void* data, size_t length);
    /// The coder that identifiers are made with; null for none. Without one no identifier is made.
    static void setCoder(Coder coder);
    static ZString clientId();
    static ZString userId();
    /// Makes and stores the identifier unless there is one: the seed, with `withTime` behind the clock's 8 bytes, coded
    /// and written as hexadecimal (client) or as base64 without "+" and "/" (user), at most `maxLength` characters.
    static void setupClientId(const ZSelector& coder, const ZString& seed, int maxLength, bool withTime);
    static void setupUserId(const ZSelector& coder, const ZString& seed, int maxLength, bool withTime);

    // Process services

    static void setCrashCallback(CrashCallback callback);
    /// A line that is written out should the process crash.
    static void crashLog(const char* text);
    /// Gives memory that isn't used back to the system.
    static void drain();
    static void purgePools();
    /// Writes the memory figures to standard error.
    static void memoryState(const char* label);
    static ZString systemVersion();
    /// While on, each block made is noted until it is freed.
    static void trackLeaks(bool on);
    /// With leaks being tracked: a line on standard error for each block made or freed.
    static void logMemory(bool on);
    static void setDebugFunction(void (*function)(int code));
    static void callDebug(int code);

private:
    friend struct ZCoreLibSteps;
    void start(const char* pluginPath, const char* client, bool toolkitOption, bool loadNow, bool restrictedLoad);

    ZColorContext* cms = nullptr;
    ZString pluginPath;
    ZSelector appName;
    char* clientName = nullptr;
    char* userName = nullptr;
    char* userInformation = nullptr;
    int values[4] = {};
    bool minimal = false;
    bool locking = true;
    bool icons = false;
    bool application = true;
    bool counted = false;      ///< made by one of the two binding constructors
    ZCoreLib* older = nullptr; ///< the instance that was current before
};
