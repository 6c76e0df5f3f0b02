#pragma once

#include "core/ZArrayT.h"
#include "core/ZRetainPtrT.h"
#include "object/ZMethodBindings.h"

namespace orv {

extern ZMethodBindings* bindings;
/// Null before `ZBinding::open`, and once it is closed.
inline ZMethodBindings* bindingTable() { return toolkit::loadAcquire(bindings); }

/// All objects of a type and of those that descend from it, retained; false without memory.
bool collectInstances(ZMetaType* type, ZArrayT<ZRetainPtrT<ZObject>>& instances);

} // namespace orv
