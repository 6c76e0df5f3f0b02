#include "object/ZObject.h"

// What objects answer about animations while the library has none: none is taken.

bool ZObject::addObjectAnimation(ZAnimation*) { return false; }
