#include "core/ZCoreLib.h"

#include "core/ZCoreLibSteps.h"
#include "core/debug.h"
#include "toolkit/atomic.h"
#include "toolkit/binding.h"
#include "toolkit/clock.h"
#include "toolkit/lock.h"
#include "toolkit/packs.h"
#include "toolkit/plugindir.h"
#include "toolkit/system.h"
#include "toolkit/thread.h"

#include <cstring>

namespace {

ZCoreLib* current = nullptr;
TLockId coreLock = 0;
const ZCoreLib::SplashTable* splashTable = nullptr;
void (*stepTrace)(const char*) = nullptr;

/// What the last load opened; the present switches of an instance may differ by the time of the unload.
struct Opened {
    bool core = false, full = false, locking = false, application = false;
} opened;

bool applies(orv::LoadStep::When when, const orv::LoadRun& run) {
    switch (when) {
    case orv::LoadStep::Always:
        return true;
    case orv::LoadStep::Locking:
        return opened.locking;
    case orv::LoadStep::Application:
        return opened.application;
    case orv::LoadStep::Both:
        return opened.locking && opened.application;
    case orv::LoadStep::Restricted:
        return run.restricted;
    case orv::LoadStep::Unrestricted:
        return !run.restricted;
    case orv::LoadStep::NotMinimal:
        return !ZCoreLib::minimalLoad();
    }
    return false;
}

void runSteps(const orv::LoadOrder& order, int from, int to, orv::LoadRun& run) {
    for (int i = from; i < to; ++i) {
        const orv::LoadStep& step = order.steps[i];
        if (!applies(step.when, run)) continue;
        if (stepTrace) stepTrace(step.name);
        step.run(run);
    }
}

char* copyText(const char* text) {
    char* copy = nullptr;
    toolkit::setText(copy, text);
    return copy;
}

} // namespace

void orv::traceLoad(void (*step)(const char* name)) { stepTrace = step; }

// Life

ZCoreLib::ZCoreLib(const char* plugins, const char* client, bool toolkitOption, bool minimalLoad, bool restrictedLoad,
                   bool allowLocking)
    : minimal(minimalLoad), locking(allowLocking), counted(true) {
    start(plugins, client, toolkitOption, true, restrictedLoad);
}

ZCoreLib::ZCoreLib(const char* client, bool toolkitOption, bool applicationMode, bool loadNow)
    : application(applicationMode), counted(true) {
    start(nullptr, client, toolkitOption, loadNow, false);
}

ZCoreLib::ZCoreLib() = default;

void ZCoreLib::start(const char* plugins, const char* client, bool toolkitOption, bool loadNow, bool restrictedLoad) {
    older = current;
    current = this;
    toolkit::store(orv::coreState.allowLocking, locking);
    clientName = copyText(client);
    int others = orv::coreState.instances;
    toolkit::store(orv::coreState.instances, others + 1);
    if (others > 0) return;
    toolkit::store(orv::coreState.mainThread, toolkit::threadNumber());
    toolkit::store(orv::coreState.bound, toolkit::bind(clientName, toolkitOption) != toolkit::startFailed);
    if (loadNow) load(plugins, true, restrictedLoad);
}

ZCoreLib::~ZCoreLib() {
    bool last = counted && orv::coreState.instances == 1;
    if (last) unload();
    appName = ZSelector();
    pluginPath = ZString();
    for (char** text : {&clientName, &userName, &userInformation}) toolkit::freeBlock(*text);
    if (!counted) return;
    if (last) {
        toolkit::unbind();
        toolkit::store(orv::coreState.bound, false);
        toolkit::store(orv::coreState.mainThread, 0u);
    }
    ZCoreLib** at = &current;
    while (*at && *at != this) at = &(*at)->older;
    if (*at) *at = older;
    toolkit::store(orv::coreState.allowLocking, !current || current->locking);
    toolkit::store(orv::coreState.instances, orv::coreState.instances - 1);
}

void ZCoreLib::load(const char* plugins, bool full, bool restrictedLoad) {
    ORV_DEBUG_ASSERT(isMainThread());
    if (!valid() || opened.full) return;
    orv::LoadOrder order = orv::loadOrder();
    orv::LoadRun run{this, plugins, restrictedLoad};
    if (!opened.core) {
        opened = {true, false, locking, application};
        toolkit::store(orv::coreState.notificationsClosed, false);
        toolkit::store(orv::coreState.typesClosed, false);
        runSteps(order, 0, order.coreSteps, run);
    }
    if (!full) return;
    opened.full = true;
    opened.application = application;
    runSteps(order, order.coreSteps, order.count, run);
}

void ZCoreLib::unload() {
    if (!opened.core) return;
    ORV_DEBUG_ASSERT(isMainThread());
    orv::LoadOrder order = orv::unloadOrder();
    orv::LoadRun run{this, nullptr, false};
    runSteps(order, 0, order.count, run);
    toolkit::store(orv::coreState.coreLoaded, false);
    opened = {};
}

void ZCoreLib::loadCore(const char* plugins) {
    if (current) current->load(plugins, true, false);
}

ZCoreLib* ZCoreLib::coreLib() { return current; }
bool ZCoreLib::valid() { return toolkit::rootTable() && toolkit::rootTable()->system; }
bool ZCoreLib::isMainThread() {
    uint main = toolkit::load(orv::coreState.mainThread);
    return main && main == toolkit::threadNumber();
}
const void* ZCoreLib::main() { return toolkit::rootTable(); }

// Load steps

void ZCoreLibSteps::createCoreLock() { coreLock = toolkit::createLock(true, true); }
void ZCoreLibSteps::destroyCoreLock() {
    if (TLockId gone = toolkit::exchange(coreLock, TLockId(0))) toolkit::destroyLock(gone, true);
}
void ZCoreLibSteps::setNames(ZCoreLib& core, const char* plugins) {
    core.pluginPath = ZString(plugins, -1);
    core.appName = ZSelector(core.clientName);
}
void ZCoreLibSteps::clearNames(ZCoreLib& core) {
    core.appName = ZSelector();
    core.pluginPath = ZString();
}
void ZCoreLibSteps::setProductNames() {
    toolkit::Environment* environment = toolkit::environment();
    toolkit::setText(environment->appName, ZCoreLib::productLongName());
    toolkit::setText(environment->appLongName, ZCoreLib::productLongName());
}
void ZCoreLibSteps::publishApplicationMode(const ZCoreLib& core) { ZCoreLib::setConfig(2, core.application); }

// Packs and plugins

void* ZCoreLib::load(const ZSelector& name) { return toolkit::loadPack(name.string()); }
void ZCoreLib::unload(void* pack) { toolkit::unloadPack(pack); }

ZArrayT<ZSelector> ZCoreLib::getPlugins(const ZSelector& kind, bool qualified) {
    ZArrayT<ZSelector> names;
    const toolkit::PluginEntry* first = toolkit::pluginEntries(kind.string());
    uint count = 0;
    for (auto entry = first; entry; entry = entry->next) ++count;
    if (!count || !names.reserve(count)) return names;
    for (auto entry = first; entry; entry = entry->next) {
        ZSelector name;
        ZString full;
        if (!qualified)
            name = ZSelector(entry->name);
        else if (full.printf("%s/%s", kind.string(), entry->name))
            name = ZSelector(full);
        if (name.isEmpty() || !names.append(name)) return {};
    }
    return names;
}

// Switches

bool ZCoreLib::allowLocking() { return !current || current->locking; }
bool ZCoreLib::minimalLoad() { return current && current->minimal; }
bool ZCoreLib::cachedIcons() { return current && current->icons; }
void ZCoreLib::setCachedIcons(bool on) {
    if (current) current->icons = on;
}
bool ZCoreLib::applicationMode() { return current && current->application; }
void ZCoreLib::setApplicationMode(bool on) {
    if (current) current->application = on;
}
int ZCoreLib::getValue(int index) { return current && index >= 0 && index < 4 ? current->values[index] : 0; }
void ZCoreLib::setValue(int index, int value) {
    if (current && index >= 0 && index < 4) current->values[index] = value;
}
int ZCoreLib::getConfig(int slot) { return toolkit::getConfig(slot); }
void ZCoreLib::setConfig(int slot, int value) { toolkit::setConfig(slot, value); }
ZColorContext* ZCoreLib::defaultCMS() { return current ? current->cms : nullptr; }
void ZCoreLib::setDefaultCMS(ZColorContext* context) {
    if (current) current->cms = context;
}

// Environment

ZSelector ZCoreLib::getAppName() { return current ? current->appName : ZSelector(); }

bool ZCoreLib::allowUserPath() {
    toolkit::Environment* environment = toolkit::environment();
    return environment && environment->userPath;
}
void ZCoreLib::applicationLoaded() {
    if (auto environment = toolkit::environment()) environment->applicationLoaded = 1;
}
void ZCoreLib::clearTempOnExit(bool on) {
    if (auto environment = toolkit::environment()) environment->clearTemporary = on;
}
void ZCoreLib::captureEventTime() {
    if (auto environment = toolkit::environment()) toolkit::store(environment->eventTime, toolkit::processClock());
}

static void replaceText(char*& text, const ZString& value) {
    toolkit::freeBlock(text);
    text = value.astr();
}

void ZCoreLib::selectUserInfo(const ZString& user, const ZString& info) {
    replaceText(userName, user);
    replaceText(userInformation, info);
    toolkit::userInformation(userName, userInformation);
}
void ZCoreLib::setUserInfo(const ZString& user, const ZString& info) {
    if (current) current->selectUserInfo(user, info);
}

// Core lock

void ZCoreLib::lock() {
    if (coreLock) toolkit::lockAlone(coreLock);
}
void ZCoreLib::unlock() {
    if (coreLock) toolkit::unlock(coreLock);
}

// Splash screen

void ZCoreLib::selectSplash(const SplashTable* table) { splashTable = table; }
void ZCoreLib::openSplash() {
    if (splashTable) splashTable->open();
}
void ZCoreLib::splashText(const ZString& text) {
    if (!splashTable) return;
    char* copy = text.astr();
    splashTable->text(copy ? copy : "");
    zfree(copy);
}
void ZCoreLib::splashText(const char* text) {
    if (splashTable) splashTable->text(text);
}
void ZCoreLib::completeSplash() {
    const SplashTable* table = splashTable;
    splashTable = nullptr;
    if (table) table->complete();
}

// Cache settings

bool ZCoreLib::loadCacheOptions(const ZSelector&, const ZSelector&, int& defCount, int& autoHash, int& maxNum,
                                int& maxCost) {
    defCount = 128;
    autoHash = 80;
    maxNum = 100;
    maxCost = 0x100000;
    return false;
}
bool ZCoreLib::loadCacheOptions(const ZSelector& key, int& defCount, int& autoHash, int& maxNum, int& maxCost) {
    return loadCacheOptions(ZSelector(), key, defCount, autoHash, maxNum, maxCost);
}

// Product

const char* ZCoreLib::productLongName() { return "Ombrelantine"; }
const char* ZCoreLib::versionToken() { return "v1.3.004"; }
int ZCoreLib::productVersion() { return 256; }
int ZCoreLib::storageVersion() { return 1; }

// Process services

void ZCoreLib::setCrashCallback(CrashCallback callback) { toolkit::setCrashCallback(callback); }
void ZCoreLib::crashLog(const char* text) { toolkit::crashLog(text); }
void ZCoreLib::drain() { toolkit::drain(); }
void ZCoreLib::purgePools() { toolkit::purgePools(); }
void ZCoreLib::memoryState(const char* label) { toolkit::memoryState(label); }
void ZCoreLib::logMemory(bool on) { toolkit::logMemory(on); }
void ZCoreLib::trackLeaks(bool on) { toolkit::trackLeaks(on); }
void ZCoreLib::setDebugFunction(void (*function)(int code)) { toolkit::setDebugFunction(function); }
void ZCoreLib::callDebug(int code) { toolkit::callDebug(code); }
ZString ZCoreLib::systemVersion() {
    char text[256];
    toolkit::systemVersion(text, sizeof text);
    return ZString(text, -1);
}
