#include "module/ZModule.h"

#include "core/ZSpinLock.h"
#include "core/memlock.h"
#include "module/ZPackage.h"
#include "object/ztype.h"

/// The modules in the order in which they were entered, each with one reference.
struct ModuleList {
    ZSpinLock guard;
    ZModule* first = nullptr;

    /// A module for which `is` answers true, with a reference; null for none.
    template <class F> ZRetainPtrT<ZModule> find(F is) {
        ZScopedLock held(guard);
        for (ZModule* module = first; module; module = module->nextModule)
            if (is(module)) return ZRetainPtrT<ZModule>(module);
        return {};
    }
    static ZModule*& nextOf(ZModule* module) { return module->nextModule; }
};

namespace {

constinit ModuleList list;

} // namespace

// Lifetime

ZModule::ZModule(const __ZPassMetaType* type, ZInternal* internal) : ZObject(orv::tagFor<ZModule>(type), internal) {
    if (!makelock(this, true, true)) ZError::fail();
    setmemlocklabel(this, "ZModule", 0);
}
ZModule::ZModule(const ZString& name, TModuleOpenPack openPackage, const __ZPassMetaType* type, ZInternal* internal)
    : ZModule(type, internal) {
    openPackageFunc = openPackage;
    loadMode = LoadApplication;
    if (!setName(name)) ZError::fail();
    setSelector(ZSelector(name));
}
ZModule::~ZModule() = default;

// The list of modules

ZModule* ZModule::findModule(const ZSelector& name) {
    if (name.isEmpty()) return nullptr;
    return list.find([&](const ZModule* module) { return module->selector() == name; }).get();
}
ZModule* ZModule::findModule(const ZString& file) {
    if (file.isEmpty()) return nullptr;
    return list.find([&](const ZModule* module) { return module->name == file; }).get();
}
ZModule::Modules ZModule::getModules() {
    Modules all;
    list.find([&](ZModule* module) {
        if (!all.set(ZRetainKeyT<ZSelector, ZModule>(module->selector(), module))) ZError::fail();
        return false;
    });
    return all;
}

bool ZModule::appendModule() {
    const ZSelector key = selector();
    if (key.isEmpty() || !retain()) return false;
    ZScopedLock held(list.guard);
    ZModule** end = &list.first;
    for (; *end; end = &(*end)->nextModule) {
        if ((*end)->selector() != key) continue;
        const bool known = *end == this;
        // The last reference is the caller's.
        decmemref(this);
        return known;
    }
    *end = this;
    return true;
}

void ZModule::clearModules(const ZSelector& type) {
    // They end with the list free.
    ZModule* gone = nullptr;
    {
        ZScopedLock held(list.guard);
        for (ZModule** link = &list.first; *link;) {
            ZModule* module = *link;
            if (!type.isEmpty() && !module->isType(type)) {
                link = &module->nextModule;
                continue;
            }
            *link = module->nextModule;
            module->nextModule = gone;
            gone = module;
        }
    }
    while (ZModule* module = gone) {
        gone = std::exchange(module->nextModule, nullptr);
        if (type.isEmpty()) module->setType(static_cast<ZMetaType*>(nullptr));
        module->release();
    }
}

// What it is

ZModule::LoadMode ZModule::getLoadMode() const { return toolkit::load(loadMode); }
bool ZModule::setLoadMode(LoadMode mode) {
    if (mode < LoadInvalid || mode > LoadOnCall) return false;
    toolkit::store(loadMode, mode);
    return true;
}
const ZString& ZModule::getName() const { return name; }
bool ZModule::setName(const ZString& text) {
    name = text;
    return name.length() == text.length();
}
bool ZModule::isNativeModule() const { return nativeModule; }
bool ZModule::setNativeModule(bool on) {
    nativeModule = on;
    return true;
}

// Packages

ZPackage* ZModule::openPackage(const ZSelector& package) {
    if (!openPackageFunc && !loadLibrary()) return nullptr;
    ZPackage* made = openPackageFunc ? openPackageFunc(this, package) : nullptr;
    if (!made) return nullptr;
    made->setModule(this);
    toolkit::increment(packageCount);
    return made;
}

ZPackage* ZModule::openFromAny(const ZSelector& package) {
    const Modules modules = getModules();
    for (const auto& entry : modules)
        if (ZPackage* made = entry.value()->openPackage(package)) {
            if (made->selector().isEmpty()) made->setSelector(package);
            return made;
        }
    return nullptr;
}

void ZModule::packageClosed(ZPackage* package) {
    toolkit::decrement(packageCount);
    if (package) package->setModule(nullptr);
}
