#include "object/ZMetaType.h"

// What types answer about nodes of stored trees while the library has none: nothing can be loaded or stored.

bool ZType::loadXST(const ZXSTNode*) { return false; }
bool ZType::storeXST(ZXSTNode*) const { return false; }

bool ZMetaType::loadFromXST(void*, const ZXSTNode*) const { return false; }
bool ZMetaType::loadFromXST(void*, const ZXSTNode*, const ZSelector&) const { return false; }
void* ZMetaType::loadFromXST(const ZXSTNode*) const { return nullptr; }
void* ZMetaType::loadFromXST(const ZXSTNode*, const ZSelector&) const { return nullptr; }
bool ZMetaType::storeToXST(const void*, ZXSTNode*) const { return false; }
bool ZMetaType::storeToXST(const void*, ZXSTNode*, const ZSelector&) const { return false; }
ZType* ZMetaType::createType(const ZXSTNode*) { return nullptr; }
