#include "object/ZObject.h"

// What objects answer about watchdogs while the library has no threads of its own: nothing is watched.

bool ZObject::addWatchdog(const ZSelector&, real) { return false; }
bool ZObject::removeWatchdog(const ZSelector&) { return false; }
