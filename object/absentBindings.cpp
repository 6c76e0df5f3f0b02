#include "object/ZMetaType.h"

// What types answer about bindings while the library has none: nothing is bound, so nothing is called or changed.

bool ZMetaType::callInstance(ZObject*, const ZSelector&) const { return false; }
bool ZMetaType::bindInstance(ZObject*) { return false; }
bool ZMetaType::bindInstance(ZObject*, const ZSelector&) { return false; }
bool ZMetaType::unbindInstance(ZObject*) { return false; }
bool ZMetaType::unbindInstance(ZObject*, const ZSelector&) { return false; }
void ZMetaType::changeInstanceBindings(ZMethod*) {}
