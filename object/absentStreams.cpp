#include "object/ZMetaType.h"

// What types answer about streams while the library has none: nothing can be read or written, nothing is found, and a
// block that is asked for is neither opened nor closed.

bool ZType::openBlock(ZStream*) const { return false; }
bool ZType::openBlock(ZStream*) { return false; }
bool ZType::closeBlock(ZStream*) const { return false; }
bool ZType::closeBlock(ZStream*) { return false; }
bool ZType::read(ZStream*) { return false; }
bool ZType::write(ZStream*) const { return false; }
bool ZType::writeTyped(ZStream*) const { return false; }
bool ZType::writeBlock(ZStream*) const { return false; }
bool ZType::saveIntoFile(const ZFileName&, const ZSelector&) const { return false; }

bool ZMetaType::readInstance(void*, ZStream*) const { return false; }
void* ZMetaType::readInstance(ZStream*) const { return nullptr; }
bool ZMetaType::writeInstance(ZStream*, const void*) const { return false; }
ZType* ZMetaType::createType(ZStream*) { return nullptr; }
