#pragma once

#include "core/ZSelector.h"
#include "module/forward.h"
#include "object/forward.h"

/// What metatypes ask of packages. A null package has no types, and belongs to nobody.
namespace orv {

/// The selector that a package is known by; empty for null.
ZSelector packageName(const ZPackage* package);
/// Whether the root package finds its types.
bool isPublicPackage(const ZPackage* package);
/// Enters a type under its name; false without memory.
bool linkPackageType(ZPackage* package, ZMetaType* type);
void unlinkPackageType(ZPackage* package, ZMetaType* type);
/// The type of that name in a package and what it uses; with a null package in the root one. With `make`, also template
/// instances and qualified variants that aren't there yet.
ZMetaType* findPackageType(const ZPackage* package, const ZSelector& name, bool make);

} // namespace orv
