#include "object/packageTypes.h"

namespace orv {

ZSelector packageName(const ZPackage*) { return {}; }
bool isPublicPackage(const ZPackage*) { return true; }
bool linkPackageType(ZPackage*, ZMetaType*) { return true; }
void unlinkPackageType(ZPackage*, ZMetaType*) {}
ZMetaType* findPackageType(const ZPackage*, const ZSelector&, bool) { return nullptr; }

} // namespace orv
