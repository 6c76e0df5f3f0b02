#pragma once

#include "object/ZMethodDispatch.h"
#include "object/ZObject.h"
#include "value/forward.h"

namespace orv {

/// Calls what the entries of a name lead to, on an object and in their order: with all arguments as one array, which
/// only methods get that take it, or with the arguments as the methods' own parameters. True if any answered so, or
/// has no answer. The table is a share that nobody changes meanwhile; no lock is held. What the entries of an object's
/// own table have found is forgotten when its methods change, which those of a type's table don't hear of.
bool callEntries(const ZObject::DispatchTable& table, ZObject* object, const ZSelector& name,
                 const ZArrayT<ZVariant>& arguments, bool asArray, bool ownTable = false);

} // namespace orv
