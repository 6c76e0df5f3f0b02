#pragma once

#include "module/ZPackage.h"
#include "object/glueRows.h"
#include "object/names.h"

/// Packages whose types are declared by rows, and how they come and go. Those of this library are listed in
/// packages.cpp: a type is declared by one line there, behind its bases. A program, or a library of its own, lists its
/// own in the same form and hands them to `registerPackages`.
namespace orv {

/// A package of a module: its types in the order in which they are made, and the packages that it uses.
struct PackageRow {
    const char* name;
    uint flags;
    glue::List<const glue::ClassRow*> types;
    glue::List<const char*> uses;
    const glue::List<glue::ClassRow>* primitives = nullptr; ///< made first
    const char* options = nullptr;
    TClosePackage close = nullptr;
};

/// Of this library, in the order in which they are opened.
ORV_API glue::List<PackageRow> corePackages();

/// Makes the packages of a program or of another library known, and opens them: their types are then found by name as
/// any other. Called once a start, behind the construction of `ZCoreLib`:
///
///     constexpr const orv::glue::ClassRow* types[] = {orv::glue::rowOf<Gauge>()};
///     constexpr const char* uses[] = {"orv.core.object"};
///     constexpr orv::PackageRow packages[] = {{"plant.gauges", ZPackage::Public, types, uses}};
///     …
///     if (!orv::registerPackages("plant", packages)) …
///
/// `module` becomes the name of the `ZModule` that the packages know; `names` are the constants of the caller's code,
/// which are linked first: `zsel` and `ztype` work there from now on. Rows and names stay where they are until the
/// library has stopped, which ends the packages and lets go of the names. False if there is a module, or a package,
/// of such a name, the library isn't started, or there was no memory for all types: packages that were opened stay
/// then. What `uses` names and isn't there is passed over, and the debug log tells. One thread at a time.
ORV_API bool registerPackages(const ZString& module, glue::List<PackageRow> packages,
                              const ModuleNames& names = moduleNames());

/// Opens a package that isn't open and sets it up. The answer is a reference for the caller; null if there is none of
/// that name. Until plugins know where packages are, those of registered modules can be had.
ORV_API ZPackage* loadPackage(const ZSelector& name);

/// Makes the metatype of a row and enters it in the package; null without memory. The package owns it.
ORV_API ZMetaType* makeType(ZPackage* package, const glue::ClassRow& row);

/// The type that a metatype of a row is an instance of; null as long as that isn't there.
ORV_API ZMetaType* typeOfType(const ZMetaType& type);

/// Guards which package uses which, the counts of uses, and what each finds of those that it uses, of all packages. A
/// package's own lock, which guards its types and categories, may be held when this one is taken, never the other way
/// round; nobody takes two packages' own locks at once. Only memory is asked for under it.
extern ZSpinLock packageUses;

// Steps of start and stop

/// Links the names that code uses and makes the root package; counts. False without memory.
ORV_API bool openModule();
ORV_API void closeModule();
/// Opens all packages of this library.
ORV_API bool openPackages();
/// Ends all packages that are open, users before those that they use.
ORV_API void closePackages();

} // namespace orv
