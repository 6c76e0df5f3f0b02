#include "core/construct.h"
#include "core/debug.h"
#include "module/packages.h"
#include "object/names.h"
#include "object/typeGeneration.h"
#include "object/ztype.h"
#include "toolkit/epoch.h"

// How the packages of this library come and go.

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

ZModule* ownModule = nullptr;
ZPackage* rootPackage = nullptr;
int openCount = 0;

int placeOf(const ZSelector& name) {
    const auto rows = orv::corePackages();
    for (int i = 0; i < rows.count; ++i)
        if (name.check(rows.rows[i].name)) return i;
    return -1;
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
    const int place = placeOf(package->selector());
    if (place < 0) return false;
    const PackageRow& row = orv::corePackages().rows[place];
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

} // namespace

extern "C" {

/// What every module exports. The library's own is opened by its start and closed by its stop.
ORV_API bool openModule(ZModule*) { return orv::openModule(); }
ORV_API void closeModule(ZModule*) { orv::closeModule(); }
/// A new package of that name, not set up; null if the module has none.
ORV_API ZPackage* openPackage(ZModule*, const ZSelector& name) {
    const int place = placeOf(name);
    return place < 0 ? nullptr : makePackage(orv::corePackages().rows[place]);
}
}

namespace orv {

bool openModule() {
    if (openCount++ > 0) return true;
    if (!openNames(moduleNames())) return false;
    rootPackage = zmake<ZPackage>();
    ownModule = zmake<ZModule>(ZString("orvcore"), &::openPackage);
    if (!rootPackage || !ownModule || !ownModule->appendModule()) return false;
    rootPackage->setSelector(ZSelector("root"));
    return true;
}

void closeModule() {
    if (openCount == 0 || --openCount > 0) return;
    closePackages();
    ZModule::clearModules({});
    if (ownModule) std::exchange(ownModule, nullptr)->release();
    closeNames(moduleNames());
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
    // What was made before the types that it names.
    opened.each([](ZPackage* package) { package->resetBases(); });
    if (rootPackage) rootPackage->resetBases();
    if (ZMetaType* type = ztype<ZModule>(); type && ownModule) ownModule->setType(type);
    opened.each([](ZPackage* package) { package->setupImplicitMap(); });
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
    if (ownModule) ownModule->setType(static_cast<ZMetaType*>(nullptr));
    each([](ZPackage* package) { package->releasePackage(); });
    opened.releaseAll();
    if (rootPackage) std::exchange(rootPackage, nullptr)->release();
    typesChanged();
}

} // namespace orv
