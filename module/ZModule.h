#pragma once

#include "core/ZHashMapT.h"
#include "core/ZRetainPtrT.h"
#include "module/forward.h"
#include "object/ZObject.h"
#include "text/ZString.h"

/// Makes the package of that name, not set up; null if the module has none of it.
using TModuleOpenPack = ZPackage* (*)(ZModule* module, const ZSelector& name);
using TModuleOpenFunc = bool (*)(ZModule* module);
using TModuleCloseFunc = void (*)(ZModule* module);

/// Code that hands out packages by name, this library among them. One that the application has linked tells the
/// function that makes its packages and enters itself in the list of modules by `appendModule`: from then on
/// `ZPackage::use` opens them. The list holds its modules, and they stay until the library ends. Any thread may look
/// modules up; they are entered by one thread at a time.
class ORV_API ZModule : public ZObject {
public:
    enum LoadMode : int {
        LoadInvalid,     ///< loading failed: it isn't tried again
        LoadApplication, ///< the application has linked the code
        LoadAlways,
        LoadIfNeed,
        LoadOnCall
    };
    using Modules = ZHashMapT<ZSelector, ZRetainKeyT<ZSelector, ZModule>>;

    explicit ZModule(const __ZPassMetaType* type = nullptr, ZInternal* internal = nullptr);
    /// Of code that is there; `name` is its selector too.
    ZModule(const ZString& name, TModuleOpenPack openPackage, const __ZPassMetaType* type = nullptr,
            ZInternal* internal = nullptr);
    ~ZModule() override;

    // The list of modules

    /// By its selector, or the name of its file; null if there is none.
    static ZModule* findModule(const ZSelector& name);
    static ZModule* findModule(const ZString& file);
    static Modules getModules();
    /// Takes those of a type out, for the empty selector all.
    static void clearModules(const ZSelector& type);

    // What it is

    virtual LoadMode getLoadMode() const;
    virtual bool setLoadMode(LoadMode mode);
    virtual const ZString& getName() const;
    virtual bool setName(const ZString& name);
    /// Enters it in the list; false without a selector, or where another one has it.
    virtual bool appendModule();
    /// Whether it stands for a library of machine code.
    virtual bool isNativeModule() const;
    virtual bool setNativeModule(bool on);

    // Packages

    /// A new package, not set up, which knows its module; null if the module has none of that name or isn't loaded.
    virtual ZPackage* openPackage(const ZSelector& name);
    /// Of the first module in the list that has it. The package bears its name.
    static ZPackage* openFromAny(const ZSelector& name);
    virtual bool loadPlugins();
    /// To be called by each package of the module as it ends; null for one that knows its module no more.
    virtual void packageClosed(ZPackage* package);
    /// False if the code can't be had.
    virtual bool loadLibrary();
    /// Of this module, open now.
    int getPackageCount() const { return toolkit::load(packageCount); }

private:
    friend struct ModuleList;

    ZModule* nextModule = nullptr;
    TModuleOpenPack openPackageFunc = nullptr;
    ZString name;
    LoadMode loadMode = LoadIfNeed;
    int packageCount = 0;
    bool nativeModule = true;
};
