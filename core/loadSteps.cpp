#include "core/loadSteps.h"

#include "core/ZCoreLib.h"
#include "core/ZCoreLibSteps.h"
#include "core/ZLock.h"
#include "core/ZPointerIndex.h"
#include "core/ZUnique.h"
#include "module/packages.h"
#include "object/ZBinding.h"
#include "object/ZMethodDispatch.h"
#include "object/ZMethodPtr.h"
#include "object/ZMethodRef.h"
#include "object/ZNamedMethod.h"
#include "object/ZObject.h"
#include "object/ZPropertyPtr.h"
#include "text/strtable.h"
#include "toolkit/atomic.h"
#include "toolkit/environment.h"
#include "toolkit/epoch.h"
#include "toolkit/memory.h"
#include "toolkit/packs.h"
#include "toolkit/system.h"
#include "toolkit/text.h"

#include <iterator>

namespace {

constexpr const char* firstPacks[] = {"pack/datapack", "pack/xmlpack", "pack/cfgpack", "pack/streampack"};
constexpr const char* modulePacks[] = {"pack/mathpack", "pack/regexppack", "pack/computepack", "pack/comppack",
                                       "pack/cryptpack"};
/// Handles of all packs; null for one that isn't loaded.
void* firstHandles[std::size(firstPacks)];
void* moduleHandles[std::size(modulePacks)];

void loadFirstPacks(orv::LoadRun&) {
    for (size_t i = 0; i < std::size(firstPacks); ++i) firstHandles[i] = toolkit::loadPack(firstPacks[i]);
}
void unloadFirstPacks(orv::LoadRun&) {
    for (size_t i = std::size(firstPacks); i > 0; --i) {
        toolkit::unloadPack(firstHandles[i - 1]);
        firstHandles[i - 1] = nullptr;
    }
}
void openModule(orv::LoadRun&) {
    for (size_t i = 0; i < std::size(modulePacks); ++i)
        if (!moduleHandles[i]) moduleHandles[i] = toolkit::loadPack(modulePacks[i]);
    orv::openModule();
}
void closeModule(orv::LoadRun&) {
    orv::closeModule();
    // What reclaims a retired object may lie in the code that goes now.
    toolkit::epochDrain();
    for (size_t i = 0; i < std::size(modulePacks); ++i) {
        toolkit::unloadPack(moduleHandles[i]);
        moduleHandles[i] = nullptr;
    }
}
void finalDrain(orv::LoadRun&) {
    toolkit::epochDrain();
    toolkit::drain();
}
void splash(const char* text) { ZCoreLib::splashText(text); }

using Run = orv::LoadRun;
using When = orv::LoadStep::When;
using Steps = ZCoreLibSteps;

constexpr orv::LoadStep loadSteps[] = {
    {"packs", When::Always, loadFirstPacks},
    {"user path off", When::Restricted, [](Run&) { toolkit::environment()->userPath = 0; }},
    {"memory debug", When::Always, [](Run&) { toolkit::setMemoryDebug(true); }},
    {"splash open", When::Always, [](Run&) { ZCoreLib::openSplash(); }},
    {"internal strings", When::Always, [](Run&) { orv::strtable::open(); }},
    {"ZSelector::open", When::Always, [](Run&) { ZSelector::open(); }},
    {"ZMethod::open", When::Always, [](Run&) { ZMethod::open(); }},
    {"ZMethodPtr::open", When::Always, [](Run&) { ZMethodPtr::open(); }},
    {"ZMethodDispatch::open", When::Always, [](Run&) { ZMethodDispatch::open(); }},
    {"ZNamedMethod::open", When::Always, [](Run&) { ZNamedMethod::open(); }},
    {"ZPointerIndex::open", When::Always, [](Run&) { ZPointerIndex::open(); }},
    {"ZProperty::open", When::Always, [](Run&) { ZProperty::open(); }},
    {"ZPropertyPtr::open", When::Always, [](Run&) { ZPropertyPtr::open(); }},
    {"ZUnique::open", When::Always, [](Run&) { ZUnique::open(); }},
    {"ZBinding::open", When::Always, [](Run&) { ZBinding::open(); }},
    {"ZLock::open", When::Locking, [](Run&) { ZLock::open(128); }},
    {"core lock", When::Locking, [](Run&) { Steps::createCoreLock(); }},
    // Up to here a load that isn't full goes.
    {"names", When::Always, [](Run& run) { Steps::setNames(*run.core, run.pluginPath); }},
    {"openModule", When::Always, openModule},
    {"packages", When::Always, [](Run&) { orv::openPackages(); }},
    {"splash plugins", When::Always, [](Run&) { splash("Loading Plugins"); }},
    {"splash resources", When::Unrestricted, [](Run&) { splash("Loading Resources"); }},
    {"application names", When::Always, [](Run&) { Steps::setProductNames(); }},
    {"application mode", When::Always, [](Run& run) { Steps::publishApplicationMode(*run.core); }},
    {"loaded mark", When::Always, [](Run&) { toolkit::store(orv::coreState.coreLoaded, true); }},
    {"splash launch", When::Always, [](Run&) { splash("Launching Application"); }},
};
constexpr int coreSteps = 17;

constexpr orv::LoadStep unloadSteps[] = {
    {"first closing mark", When::Always, [](Run&) { toolkit::store(orv::coreState.notificationsClosed, true); }},
    {"packages", When::Always, [](Run&) { orv::closePackages(); }},
    {"closeModule", When::Always, closeModule},
    {"discard names", When::Always, [](Run& run) { Steps::clearNames(*run.core); }},
    {"core lock", When::Always, [](Run&) { Steps::destroyCoreLock(); }},
    {"ZLock::close", When::Always, [](Run&) { ZLock::close(); }},
    {"ZObject::closeNamed", When::Always, [](Run&) { ZObject::closeNamed(); }},
    {"ZBinding::close", When::Always, [](Run&) { ZBinding::close(); }},
    {"ZUnique::close", When::Always, [](Run&) { ZUnique::close(); }},
    {"second closing mark", When::Always, [](Run&) { toolkit::store(orv::coreState.typesClosed, true); }},
    {"retired objects", When::Always, [](Run&) { toolkit::epochDrain(); }},
    {"ZProperty::close", When::Always, [](Run&) { ZProperty::close(); }},
    {"ZPointerIndex::close", When::Always, [](Run&) { ZPointerIndex::close(); }},
    {"ZPropertyPtr::close", When::Always, [](Run&) { ZPropertyPtr::close(); }},
    {"ZMethodRef::close", When::Always, [](Run&) { ZMethodRef::close(); }},
    {"ZMethod::close", When::Always, [](Run&) { ZMethod::close(); }},
    {"ZMethodPtr::close", When::Always, [](Run&) { ZMethodPtr::close(); }},
    {"ZNamedMethod::close", When::Always, [](Run&) { ZNamedMethod::close(); }},
    {"ZMethodDispatch::close", When::Always, [](Run&) { ZMethodDispatch::close(); }},
    {"ZSelector::close", When::Always, [](Run&) { ZSelector::close(); }},
    {"internal strings", When::Always, [](Run&) { orv::strtable::close(); }},
    {"collation", When::Always, [](Run&) { toolkit::closeText(); }},
    {"final drain", When::Always, finalDrain},
    {"packs", When::Always, unloadFirstPacks},
};

} // namespace

namespace orv {

LoadOrder loadOrder() { return {loadSteps, int(std::size(loadSteps)), coreSteps}; }
LoadOrder unloadOrder() { return {unloadSteps, int(std::size(unloadSteps)), int(std::size(unloadSteps))}; }

} // namespace orv
