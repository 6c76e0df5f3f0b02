#pragma once

#include "module/ZPackage.h"
#include "object/glueRows.h"

/// The packages of this library and how they come and go. They are listed in packages.cpp: a type is declared by one
/// line there, behind its bases.
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

/// Opens a package that isn't open and sets it up. The answer is a reference for the caller; null if there is none of
/// that name. Until plugins know where packages are, those of this library can be had.
ORV_API ZPackage* loadPackage(const ZSelector& name);

/// Makes the metatype of a row and enters it in the package; null without memory. The package owns it.
ORV_API ZMetaType* makeType(ZPackage* package, const glue::ClassRow& row);

/// The type that a metatype of a row is an instance of; null as long as that isn't there.
ORV_API ZMetaType* typeOfType(const ZMetaType& type);

// Steps of start and stop

/// Links the names that code uses and makes the root package; counts. False without memory.
ORV_API bool openModule();
ORV_API void closeModule();
/// Opens all packages of this library.
ORV_API bool openPackages();
/// Ends all packages that are open, users before those that they use.
ORV_API void closePackages();

} // namespace orv
