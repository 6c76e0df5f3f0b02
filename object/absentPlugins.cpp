#include "object/ZMetaType.h"

// What types answer about the tree of plugins while the library has none: no type belongs to a plugin.

ZPlugin* ZType::plugin() const { return nullptr; }
bool ZMetaType::isPluginType(const ZPlugin*) const { return false; }
