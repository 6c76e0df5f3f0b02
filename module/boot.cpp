#include "core/construct.h"
#include "core/debug.h"
#include "module/packages.h"
#include "object/names.h"
#include "object/typeGeneration.h"
#include "object/ztype.h"
#include "toolkit/epoch.h"

// How packages that are declared by rows come and go.

/// Packages that were opened by name, in that order, each with one reference.
struct LoadedPackages {
    ZSpinLock guard;
    ZPackage* first = nullptr;

    /// Takes the reference over; false if one of that name is there.
    bool add(ZPackage* package) {
        ZScopedLock held(guard);
        ZPackage** end = &first;
        for (; *end; end = &(*end)->nextLoaded)
            if ((*end)->packageName == package->packageName) return false;
        *end = package;
        return true;
    }
    template <class F> void each(F use) const {
        for (ZPackage* package = first; package; package = package->nextLoaded) use(package);
    }
    void releaseAll() {
        while (ZPackage* package = first) {
            first = std::exchange(package->nextLoaded, nullptr);
            package->release();
        }
    }
};

namespace {

using orv::PackageRow;

constinit LoadedPackages opened;

/// A module whose packages are declared by rows. It has a reference of the module.
struct DeclaredModule {
    DeclaredModule(const ZString& name, orv::glue::List<PackageRow> packages, const orv::ModuleNames& moduleNames);
    ~DeclaredModule() {
        if (module) module->release();
    }
    DeclaredModule(const DeclaredModule&) = delete;

    ZModule* module = nullptr;
    orv::glue::List<PackageRow> rows;
    orv::ModuleNames names;
    DeclaredModule* before;
};

DeclaredModule* newestModule = nullptr;
ZPackage* rootPackage = nullptr;
int openCount = 0;

const DeclaredModule* declaredModule(const ZModule* module) {
    const DeclaredModule* known = newestModule;
    while (known && known->module != module) known = known->before;
    return known;
}

const PackageRow* findRow(const orv::glue::List<PackageRow>& rows, const ZSelector& name) {
    for (const PackageRow& row : rows)
        if (name.check(row.name)) return &row;
    return nullptr;
}

bool makeType(ZPackage* package, const PackageRow& row, const orv::glue::ClassRow& type) {
    if (orv::makeType(package, type)) return true;
    zdebug("package %s: type %s couldn't be made", row.name, type.name);
    return false;
}

/// The setup function of every package of the list. The first type that can't be made ends the making of types;
/// packages are used whatever failed.
bool setupPackage(ZPackage* package, bool finished) {
    if (finished) return true;
    const DeclaredModule* declared = declaredModule(package->getModule());
    const PackageRow* found = declared ? findRow(declared->rows, package->selector()) : nullptr;
    if (!found) return false;
    const PackageRow& row = *found;
    const orv::glue::List<orv::glue::ClassRow> primitives =
        row.primitives ? *row.primitives : orv::glue::List<orv::glue::ClassRow>();
    bool done = package->setTypeCount(uint(primitives.count + row.types.count));
    for (int i = 0; i < primitives.count && done; ++i) done = makeType(package, row, primitives.rows[i]);
    for (int i = 0; i < row.types.count && done; ++i) done = makeType(package, row, *row.types.rows[i]);
    for (const char* used : row.uses)
        if (!package->use(ZSelector(used))) zdebug("package %s: %s isn't there to be used", row.name, used);
    return done;
}

ZPackage* makePackage(const PackageRow& row) {
    auto package = zmake<ZPackage>();
    if (!package) return nullptr;
    package->setSelector(ZSelector(row.name));
    if (package->selector().isEmpty()) { // no memory; without a name nobody would find it
        package->release();
        return nullptr;
    }
    package->setFlags(row.flags);
    if (row.options) package->setOptions(ZSelector(row.options));
    package->setSetupFunc(setupPackage);
    if (row.close) package->setCloseFunc(row.close);
    return package;
}

ZPackage* openDeclared(ZModule* module, const ZSelector& name) {
    const DeclaredModule* declared = declaredModule(module);
    const PackageRow* row = declared ? findRow(declared->rows, name) : nullptr;
    return row ? makePackage(*row) : nullptr;
}

DeclaredModule::DeclaredModule(const ZString& name, orv::glue::List<PackageRow> packages,
                               const orv::ModuleNames& moduleNames)
    : module(zmake<ZModule>(name, openDeclared)), rows(packages), names(moduleNames), before(newestModule) {
    if (!module) ZError::fail();
}

/// Several modules may be of one binary, and so have the same names.
void dropNames(const orv::ModuleNames& names) {
    for (const DeclaredModule* known = newestModule; known; known = known->before)
        if (known->names.selectors == names.selectors && known->names.types == names.types) return;
    orv::closeNames(names);
}

/// Links the names of a module and enters it in the lists; false and nothing done without memory, or where there is
/// one of that name.
bool enterModule(const ZString& name, orv::glue::List<PackageRow> packages, const orv::ModuleNames& names) {
    if (orv::openNames(names))
        if (auto declared = zmake<DeclaredModule>(name, packages, names)) {
            if (declared->module->appendModule()) {
                newestModule = declared;
                return true;
            }
            zrelease(declared);
        }
    dropNames(names);
    return false;
}

/// The last one entered first: what it names may be declared by the others.
void dropModules() {
    while (DeclaredModule* gone = newestModule) {
        newestModule = gone->before;
        const orv::ModuleNames names = gone->names;
        zrelease(gone);
        dropNames(names);
    }
}

/// Makes types that were made before those that they name whole, and works out what converts to them.
void finishTypes() {
    opened.each([](ZPackage* package) { package->resetBases(); });
    if (rootPackage) rootPackage->resetBases();
    opened.each([](ZPackage* package) { package->setupImplicitMap(); });
}

} // namespace

extern "C" {

/// What every module exports. The library's own is opened by its start and closed by its stop.
ORV_API bool openModule(ZModule*) { return orv::openModule(); }
ORV_API void closeModule(ZModule*) { orv::closeModule(); }
/// A new package of that name, not set up; null if the module has none.
ORV_API ZPackage* openPackage(ZModule*, const ZSelector& name) {
    const PackageRow* row = findRow(orv::corePackages(), name);
    return row ? makePackage(*row) : nullptr;
}
}

namespace orv {

bool openModule() {
    if (openCount++ > 0) return true;
    if (!openNames(moduleNames())) return false;
    rootPackage = zmake<ZPackage>();
    if (!rootPackage || !enterModule(ZString("orvcore"), corePackages(), moduleNames())) return false;
    rootPackage->setSelector(ZSelector("root"));
    return true;
}

void closeModule() {
    if (openCount == 0 || --openCount > 0) return;
    closePackages();
    ZModule::clearModules({});
    dropModules();
}

bool registerPackages(const ZString& name, glue::List<PackageRow> packages, const ModuleNames& names) {
    if (!openCount || ZModule::findModule(name)) return false;
    for (const PackageRow& row : packages)
        if (ZPackage* known = ZPackage::retainPackage(ZSelector(row.name))) {
            known->release();
            return false;
        }
    if (!enterModule(name, packages, names)) return false;
    bool done = true;
    for (const PackageRow& row : packages) {
        ZPackage* package = loadPackage(ZSelector(row.name));
        done &= package && int(package->getTypes().count()) >= row.types.count;
        if (package) package->release();
    }
    finishTypes();
    return done;
}

/// A package can be found by its name before it is set up, so that packages may use each other in a circle.
ZPackage* loadPackage(const ZSelector& name) {
    if (ZPackage* known = ZPackage::retainPackage(name)) return known;
    if (name.isEmpty() || !openCount) return nullptr;
    ZPackage* package = ZModule::openFromAny(name);
    if (!package) return nullptr;
    if (!opened.add(package)) {
        // Another thread was first.
        package->release();
        return ZPackage::retainPackage(name);
    }
    if (!package->setup()) zdebug("package %s isn't whole", name.string());
    return retain(package);
}

bool openPackages() {
    bool done = true;
    for (const PackageRow& row : corePackages()) {
        ZPackage* package = loadPackage(ZSelector(row.name));
        done &= package != nullptr;
        if (package) package->release();
    }
    if (ZMetaType* type = ztype<ZModule>())
        for (DeclaredModule* known = newestModule; known; known = known->before) known->module->setType(type);
    finishTypes();
    return done;
}

void closePackages() {
    // What is retired may hold types.
    toolkit::epochDrain();
    ZArrayT<ZPackage*> all;
    bool ordered = true;
    opened.each([&](ZPackage* package) { ordered = ordered && all.append(package); });
    ordered = ordered && ZPackage::topologicalOrdering(all);
    // Without memory for the order they go as they were opened.
    auto each = [&](auto&& use) {
        if (!ordered) return opened.each(use);
        for (ZPackage* package : std::as_const(all)) use(package);
    };
    each([](ZPackage* package) { package->closePack(); });
    // Defaults of properties are values of types of any package.
    opened.each([](ZPackage* package) { package->dropValues(); });
    toolkit::epochDrain();
    opened.each([](ZPackage* package) { package->forgetMetaTypes(); });
    if (rootPackage) rootPackage->forgetMetaTypes();
    for (DeclaredModule* known = newestModule; known; known = known->before)
        known->module->setType(static_cast<ZMetaType*>(nullptr));
    each([](ZPackage* package) { package->releasePackage(); });
    opened.releaseAll();
    if (rootPackage) std::exchange(rootPackage, nullptr)->release();
    typesChanged();
}

} // namespace orv
